#pragma once
// The mouse of the open tool in the main plot, and its marks over the spectrum.

#include "session/tools.h"
#include "ui/plot_tool.h"

#include <QPolygonF>

namespace nmr {

class ToolOverlay : public PlotTool {
public:
    ToolOverlay(Tools& tools, const GlobalBlock& g) : tools_(tools), g_(g) {}

    /// The marks are to be asked for again at the next paint.
    void Refresh() { stale_ = true; }
    /// Shift leaves the drag to the zoom.
    bool Grab(const PlotFrame& frame, QPointF at, Qt::KeyboardModifiers keys) override;
    void Move(const PlotFrame& frame, QPointF at) override;
    void Drop(const PlotFrame& frame) override;
    std::optional<Qt::CursorShape> Shape(const PlotFrame& frame, QPointF at) const override;
    std::string StatusText(const PlotFrame& frame, QPointF at) const override;
    void Draw(QtCanvas& canvas, const PlotFrame& frame) override;

private:
    void DrawBaseLine(QtCanvas& canvas, const PlotFrame& frame) const;
    QPolygonF StraightLines(const PlotFrame& frame) const;
    QPolygonF SmoothLine(const PlotFrame& frame, double step) const;
    void DrawVerticals(QtCanvas& canvas, const PlotFrame& frame) const;
    void DrawLevels(QtCanvas& canvas, const PlotFrame& frame) const;
    void DrawPoints(QtCanvas& canvas, const PlotFrame& frame) const;
    void DrawRange(QtCanvas& canvas, const PlotFrame& frame) const;
    void DrawSelection(QtCanvas& canvas, const PlotFrame& frame) const;

    Tools& tools_;
    const GlobalBlock& g_;
    ToolMarks marks_;
    bool stale_ = true;
    QPointF from_, last_;
    bool dragging_ = false; ///< moved far enough not to be a click
};

} // namespace nmr
