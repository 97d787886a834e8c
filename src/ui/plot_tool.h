#pragma once
// What works with the mouse in the main plot besides the zoom.

#include "layout/plot.h"

#include <QPointF>

#include <optional>
#include <string>

namespace nmr {

class QtCanvas;

class PlotTool {
public:
    virtual ~PlotTool() = default;
    /// A press of the left button: true when the tool takes it; Move and Drop then follow.
    virtual bool Grab(const PlotFrame& frame, QPointF at, Qt::KeyboardModifiers keys) = 0;
    virtual void Move(const PlotFrame& frame, QPointF at) = 0;
    virtual void Drop(const PlotFrame& frame) = 0;
    /// What the cursor shows of a press at a place; nothing when the tool would not take it.
    virtual std::optional<Qt::CursorShape> Shape(const PlotFrame&, QPointF) const { return std::nullopt; }
    /// What the status line says of a press at a place; empty for nothing.
    virtual std::string StatusText(const PlotFrame&, QPointF) const { return {}; }
    /// Over the spectrum, after each paint of it.
    virtual void Draw(QtCanvas& canvas, const PlotFrame& frame) = 0;
};

} // namespace nmr
