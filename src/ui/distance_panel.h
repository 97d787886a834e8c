#pragma once
// Two cursors in the plot, and the small window that tells where they stand and how far apart.

#include "core/global_block.h"
#include "session/cursor_distance.h"
#include "ui/plot_tool.h"

#include <QFrame>

#include <array>
#include <optional>

class QLabel;

namespace nmr {

class PlotWidget;

class DistancePanel : public QFrame, public PlotTool {
public:
    DistancePanel(GlobalBlock& g, PlotWidget& plot);

    void Toggle();
    /// Data, row or range changed.
    void Refresh();
    /// In the upper corner of the plot where the spectrum is lower, until it is dragged elsewhere.
    void MoveToCorner();
    const CursorDistance& cursors() const { return cursors_; }

    bool Grab(const PlotFrame& frame, QPointF at, Qt::KeyboardModifiers keys) override;
    void Move(const PlotFrame& frame, QPointF at) override;
    void Drop(const PlotFrame& frame) override;
    std::optional<Qt::CursorShape> Shape(const PlotFrame& frame, QPointF at) const override;
    void Draw(QtCanvas& canvas, const PlotFrame& frame) override;

protected:
    void mousePressEvent(QMouseEvent*) override;
    void mouseMoveEvent(QMouseEvent*) override;

private:
    std::optional<std::size_t> CursorAt(const PlotFrame& frame, QPointF at) const;
    void BringHere();
    void ChooseCorner();

    GlobalBlock& g_;
    PlotWidget& plot_;
    CursorDistance cursors_;
    std::array<QLabel*, 3> lines_{}; ///< both cursors, then their distance
    std::optional<std::size_t> held_;
    bool placed_ = false;  ///< dragged to a place of its own
    bool at_left_ = false; ///< of the two corners
    QPoint grip_;          ///< where the drag took hold, inside the panel
};

} // namespace nmr
