#include "ui/zoom_panel.h"

#include "ui/canvas/qt_canvas.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace nmr {
namespace {

constexpr double kLeastDrag = 4; // pixels; a shorter one is a click

// One notch of the wheel is 120 eighths of a degree.
double Notches(const QWheelEvent& event)
{
    const QPoint delta = event.angleDelta();
    return (delta.y() != 0 ? delta.y() : delta.x()) / 120.0;
}

} // namespace

ZoomPanel::ZoomPanel(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void ZoomPanel::ShowAll()
{
    view_.ShowAll();
    update();
}

void ZoomPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QtCanvas canvas(painter);
    frame_ = Frame(canvas);
    Draw(canvas, frame_);
    if (drag_ != Drag::zoom || std::abs(now_x_ - from_x_) < kLeastDrag) return;
    QColor band = palette().highlight().color();
    band.setAlpha(60);
    const auto& r = frame_.rect;
    painter.fillRect(QRectF(std::min(from_x_, now_x_), r.y, std::abs(now_x_ - from_x_), r.height), band);
}

void ZoomPanel::wheelEvent(QWheelEvent* event)
{
    const double factor = std::pow(1.25, Notches(*event));
    if (event->modifiers() & Qt::ControlModifier)
        view_.ScaleWidth(frame_.Ppm(event->position().x()), 1 / factor);
    else
        view_.ScaleHeight(factor);
    event->accept();
    update();
}

void ZoomPanel::mousePressEvent(QMouseEvent* event)
{
    from_x_ = now_x_ = event->position().x();
    if (event->button() == Qt::LeftButton)
        drag_ = GrabMark(from_x_) ? Drag::mark : Drag::zoom;
    else if (event->button() == Qt::RightButton)
        drag_ = Drag::pan;
}

void ZoomPanel::mouseMoveEvent(QMouseEvent* event)
{
    const double before = now_x_;
    now_x_ = event->position().x();
    switch (drag_) {
    case Drag::none:
        setCursor(MarkUnder(now_x_) ? Qt::SplitHCursor : Qt::ArrowCursor);
        return;
    case Drag::zoom:
        break;
    case Drag::pan:
        view_.Pan(frame_.Ppm(before) - frame_.Ppm(now_x_));
        break;
    case Drag::mark:
        MoveMark(now_x_);
        break;
    }
    update();
}

void ZoomPanel::mouseReleaseEvent(QMouseEvent*)
{
    if (drag_ == Drag::mark) DropMark();
    if (drag_ == Drag::zoom && std::abs(now_x_ - from_x_) >= kLeastDrag)
        view_.ZoomInto(frame_.Ppm(from_x_), frame_.Ppm(now_x_));
    drag_ = Drag::none;
    update();
}

void ZoomPanel::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return;
    drag_ = Drag::none;
    view_.ZoomBack();
    update();
}

} // namespace nmr
