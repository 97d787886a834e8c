#pragma once
// What works with the mouse in the main plot besides the zoom.

#include "layout/plot.h"

#include <QPointF>

namespace nmr {

class QtCanvas;

class PlotTool {
public:
    virtual ~PlotTool() = default;
    /// A press of the left button: true when the tool takes it; Move and Drop then follow.
    virtual bool Grab(const PlotFrame& frame, QPointF at) = 0;
    virtual void Move(const PlotFrame& frame, QPointF at) = 0;
    virtual void Drop(const PlotFrame& frame) = 0;
    /// Something that could be dragged sideways lies under the cursor.
    virtual bool IsUnder(const PlotFrame&, QPointF) const { return false; }
    /// Over the spectrum, after each paint of it.
    virtual void Draw(QtCanvas& canvas, const PlotFrame& frame) = 0;
};

} // namespace nmr
