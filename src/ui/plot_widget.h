#pragma once
// The spectrum of slot 0 in the main window, and the narrow overview of its whole axis above it.

#include "core/global_block.h"
#include "layout/spectrum_scene.h"
#include "ui/plot_tool.h"
#include "ui/zoom_panel.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace nmr {

/// What the status line says of a place in the plot.
struct PlotPosition {
    double ppm = 0, hz = 0;
    bool has_hz = false;
    double intensity = 0; ///< of the nearest point
    bool on_data = false;
    std::string tool_text; ///< what a press would do here
};

class PlotWidget : public ZoomPanel {
public:
    explicit PlotWidget(GlobalBlock& g, QWidget* parent = nullptr);

    /// Data, row, settings or ViewLeft and ViewRight changed.
    void Refresh();
    /// The points of the shown row changed, and nothing else.
    void PointsChanged();
    bool HasSpectrum() const;
    /// The whole axis, left the larger.
    ZoomView::Range Whole() const { return view().whole(); }
    /// Moves the shown range so that its middle lies at a position.
    void CentreOn(double ppm);
    std::shared_ptr<const MinMaxPyramid> pyramid() const { return pyramid_; }
    SpectrumScene Scene() const;
    /// What is drawn of the row: its real part, or its magnitude in absolute mode.
    std::span<const float> ShownRow() const;
    /// Tools that get the mouse before the zoom does, the first one first; they must outlive the plot.
    void AddTool(PlotTool& tool) { tools_.push_back(&tool); }

    std::function<void()> view_changed;
    std::function<void(const std::optional<PlotPosition>&)> cursor_moved;
    std::function<void()> read_asked;       ///< a click into the empty plot
    std::function<void()> axis_title_asked; ///< a double click on the title of the axis

protected:
    PlotFrame Frame(QtCanvas& canvas) override;
    void Draw(QtCanvas& canvas, const PlotFrame& frame) override;
    bool GrabMark(double x) override;
    void MoveMark(double x) override;
    void DropMark() override;
    Qt::CursorShape CursorShapeAt(double x) const override;
    void ViewChanged() override;
    void CursorMoved(std::optional<QPointF> at) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void DrawInvitation(QtCanvas& canvas);
    std::optional<PlotPosition> PositionAt(QPointF at) const;
    void TakeOverView();
    void TakePoints();
    std::span<const float> RealRow() const;

    GlobalBlock& g_;
    std::vector<PlotTool*> tools_;
    PlotTool* held_ = nullptr;    ///< has the mouse
    std::vector<float> absolute_; ///< magnitude of the shown row; empty outside of absolute mode
    std::shared_ptr<MinMaxPyramid> pyramid_;
    mutable std::shared_ptr<const IntegralCurves> integrals_;
    const float* built_for_ = nullptr; ///< the row that the pyramid was built over
    SpectrumScene scene_;
    std::optional<QPointF> cursor_;
};

/// The whole spectrum, small, with the shown range; a drag moves the range.
class OverviewStrip : public QWidget {
public:
    explicit OverviewStrip(PlotWidget& plot, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void mouseMoveEvent(QMouseEvent*) override;
    QSize sizeHint() const override { return {400, 46}; }

private:
    PlotFrame Frame() const;
    PlotWidget& plot_;
};

} // namespace nmr
