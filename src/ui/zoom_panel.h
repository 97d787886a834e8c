#pragma once
// A plot that obeys the mouse grammar: wheel = height, Ctrl + wheel = width around the cursor, drag =
// zoom into the range, double click = back one zoom, right drag = pan.

#include "layout/plot.h"
#include "ui/zoom_view.h"

#include <QWidget>

namespace nmr {

class QtCanvas;

class ZoomPanel : public QWidget {
public:
    explicit ZoomPanel(QWidget* parent = nullptr);

    const ZoomView& view() const { return view_; }
    void ShowAll();

protected:
    ZoomView& view() { return view_; }
    bool dark() const { return palette().window().color().lightness() < 128; }

    /// The frame of the curves inside the widget, with the shown range and the intensities.
    virtual PlotFrame Frame(QtCanvas& canvas) = 0;
    virtual void Draw(QtCanvas& canvas, const PlotFrame& frame) = 0;
    /// A press of the left button: true when it took hold of something of the panel's own.
    virtual bool GrabMark(double /*x*/) { return false; }
    virtual void MoveMark(double /*x*/) {}
    virtual void DropMark() {}
    virtual bool MarkUnder(double /*x*/) const { return false; }

    /// Of the last paint; what mouse positions are read with.
    const PlotFrame& frame() const { return frame_; }

    void paintEvent(QPaintEvent*) override;
    void wheelEvent(QWheelEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void mouseMoveEvent(QMouseEvent*) override;
    void mouseReleaseEvent(QMouseEvent*) override;
    void mouseDoubleClickEvent(QMouseEvent*) override;

private:
    enum class Drag { none, zoom, pan, mark };
    ZoomView view_;
    PlotFrame frame_;
    Drag drag_ = Drag::none;
    double from_x_ = 0, now_x_ = 0;
};

} // namespace nmr
