#pragma once
// The tool that colours regions: its tool bar, and the drag in the plot. A drag colours what it passes over,
// a click into a coloured region takes it away.

#include "session/session.h"
#include "ui/plot_tool.h"

#include <QToolBar>

class QAction;

namespace nmr {

class RegionBar : public QToolBar, public PlotTool {
public:
    RegionBar(Session& session, QWidget* parent);

    /// Shown only while its tool is open.
    void Refresh();

    bool Grab(const PlotFrame& frame, QPointF at) override;
    void Move(const PlotFrame& frame, QPointF at) override;
    void Drop(const PlotFrame& frame) override;
    void Draw(QtCanvas& canvas, const PlotFrame& frame) override;

private:
    bool IsOpen() const;
    QColor color() const;
    void ChooseColor();

    Session& session_;
    GlobalBlock& g_;
    QAction *color_ = nullptr, *reset_all_ = nullptr;
    bool dragging_ = false;
    double from_x_ = 0, now_x_ = 0;
};

} // namespace nmr
