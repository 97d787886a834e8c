#pragma once
// A plot that obeys the mouse grammar: wheel = height, Ctrl + wheel = width around the cursor, drag =
// zoom into the range, double click = back one zoom, right or middle drag = pan; the same by keys.

#include "layout/plot.h"
#include "ui/zoom_view.h"

#include <QWidget>

#include <optional>

namespace nmr {

class QtCanvas;

class ZoomPanel : public QWidget {
public:
    explicit ZoomPanel(QWidget* parent = nullptr);

    const ZoomView& view() const { return view_; }
    double magnification() const { return view_.magnification(); }
    void ShowAll();
    /// Of the last paint; what mouse positions are read with.
    const PlotFrame& frame() const { return frame_; }
    void ZoomBack();
    void ScaleHeight(double factor);
    /// Around the cursor when it is over the plot, else around the middle.
    void ScaleWidth(double factor);
    /// By a share of the shown width, positive to the right.
    void PanBy(double share);

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
    /// Shape of the cursor over the panel while no button is down.
    virtual Qt::CursorShape CursorShapeAt(double x) const { return MarkUnder(x) ? Qt::SplitHCursor : Qt::ArrowCursor; }

    /// After each change of range or height by the user.
    virtual void ViewChanged() {}
    /// The cursor moved over the plot, or left it (nothing).
    virtual void CursorMoved(std::optional<QPointF> /*at*/) {}

    /// Height of the last press or move.
    double cursor_y() const { return cursor_y_; }
    Qt::KeyboardModifiers press_keys() const { return press_keys_; }
    void paintEvent(QPaintEvent*) override;
    void wheelEvent(QWheelEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void mouseMoveEvent(QMouseEvent*) override;
    void mouseReleaseEvent(QMouseEvent*) override;
    void mouseDoubleClickEvent(QMouseEvent*) override;
    void keyPressEvent(QKeyEvent*) override;
    void leaveEvent(QEvent*) override;

private:
    enum class Drag { none, zoom, pan, mark };
    ZoomView view_;
    PlotFrame frame_;
    Drag drag_ = Drag::none;
    double from_x_ = 0, now_x_ = 0, cursor_y_ = 0;
    std::optional<QPointF> cursor_;
    Qt::KeyboardModifiers press_keys_;
    Qt::MouseButton press_button_ = Qt::NoButton;

    void Changed();
    bool RunKey(int key, bool control);
};

} // namespace nmr
