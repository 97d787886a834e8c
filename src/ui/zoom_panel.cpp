#include "ui/zoom_panel.h"

#include "ui/canvas/qt_canvas.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace nmr {
namespace {

constexpr double kLeastDrag = 4; // pixels; a shorter one is a click
constexpr double kPanStep = 0.1; // of the shown width
constexpr double kKeyStep = 1.25;

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

void ZoomPanel::Changed()
{
    ViewChanged();
    update();
}

void ZoomPanel::ShowAll()
{
    view_.ShowAll();
    Changed();
}

void ZoomPanel::ZoomBack()
{
    view_.ZoomBack();
    Changed();
}

void ZoomPanel::ScaleHeight(double factor)
{
    view_.ScaleHeight(factor);
    Changed();
}

void ZoomPanel::ScaleWidth(double factor)
{
    const auto& shown = view_.shown();
    const double middle = (shown.left + shown.right) / 2;
    view_.ScaleWidth(cursor_ ? frame_.Ppm(cursor_->x()) : middle, factor);
    Changed();
}

void ZoomPanel::PanBy(double share)
{
    const auto& shown = view_.shown();
    view_.Pan((shown.right - shown.left) * share);
    Changed();
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
    cursor_ = event->position();
    if (event->modifiers() & Qt::ControlModifier)
        ScaleWidth(1 / factor);
    else
        ScaleHeight(factor);
    event->accept();
}

void ZoomPanel::mousePressEvent(QMouseEvent* event)
{
    if (drag_ != Drag::none) return; // another button does not end what the first one does
    from_x_ = now_x_ = event->position().x();
    cursor_y_ = event->position().y();
    press_keys_ = event->modifiers();
    press_button_ = event->button();
    if (event->button() == Qt::LeftButton)
        drag_ = GrabMark(from_x_) ? Drag::mark : Drag::zoom;
    else if (event->button() == Qt::RightButton || event->button() == Qt::MiddleButton)
        drag_ = Drag::pan;
}

void ZoomPanel::mouseMoveEvent(QMouseEvent* event)
{
    const double before = now_x_;
    now_x_ = event->position().x();
    cursor_y_ = event->position().y();
    cursor_ = event->position();
    CursorMoved(cursor_);
    switch (drag_) {
    case Drag::none:
        setCursor(CursorShapeAt(now_x_));
        return;
    case Drag::zoom:
        break;
    case Drag::pan:
        view_.Pan(frame_.Ppm(before) - frame_.Ppm(now_x_));
        ViewChanged();
        break;
    case Drag::mark:
        MoveMark(now_x_);
        break;
    }
    update();
}

void ZoomPanel::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != press_button_) return;
    if (drag_ == Drag::mark) DropMark();
    if (drag_ == Drag::zoom && std::abs(now_x_ - from_x_) >= kLeastDrag)
        view_.ZoomInto(frame_.Ppm(from_x_), frame_.Ppm(now_x_));
    drag_ = Drag::none;
    Changed();
}

void ZoomPanel::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return;
    drag_ = Drag::none;
    ZoomBack();
}

bool ZoomPanel::RunKey(int key, bool control)
{
    switch (key) {
    case Qt::Key_Left:
        PanBy(-kPanStep);
        return true;
    case Qt::Key_Right:
        PanBy(kPanStep);
        return true;
    case Qt::Key_Up:
        ScaleHeight(kKeyStep);
        return true;
    case Qt::Key_Down:
        ScaleHeight(1 / kKeyStep);
        return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the plus of a keyboard without number pad, unshifted
        control ? ScaleWidth(1 / kKeyStep) : ScaleHeight(kKeyStep);
        return true;
    case Qt::Key_Minus:
        control ? ScaleWidth(kKeyStep) : ScaleHeight(1 / kKeyStep);
        return true;
    case Qt::Key_Home:
        ShowAll();
        return true;
    case Qt::Key_Backspace:
        ZoomBack();
        return true;
    default:
        return false;
    }
}

void ZoomPanel::keyPressEvent(QKeyEvent* event)
{
    if (!RunKey(event->key(), event->modifiers() & Qt::ControlModifier)) QWidget::keyPressEvent(event);
}

void ZoomPanel::leaveEvent(QEvent*)
{
    cursor_.reset();
    CursorMoved(std::nullopt);
    update();
}

} // namespace nmr
