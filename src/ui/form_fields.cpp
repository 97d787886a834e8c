#include "ui/form_fields.h"

#include "core/numbers.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QWheelEvent>

namespace nmr {
namespace {

constexpr int kNotch = 120; // eighths of a degree

} // namespace

// ---- held button

HeldToolButton::HeldToolButton(QWidget* parent, std::function<void()> step) :
    QToolButton(parent), step_(std::move(step))
{
    setFocusPolicy(Qt::NoFocus);
    clock_.start();
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(this, &QAbstractButton::pressed, this, [this] { Start(); });
    connect(this, &QAbstractButton::released, this, [this] { held_.Release(); });
    connect(&timer_, &QTimer::timeout, this, [this] { Go(); });
}

void HeldToolButton::Start()
{
    held_.Press(clock_.elapsed());
    StepOnce();
    if (held_.held()) timer_.start(static_cast<int>(held_.Wait(clock_.elapsed())));
}

void HeldToolButton::Go()
{
    if (!isDown()) held_.Release();
    if (held_.Poll(clock_.elapsed())) StepOnce();
    if (held_.held()) timer_.start(static_cast<int>(held_.Wait(clock_.elapsed())));
}

// A step may open a message box, and the clock runs on behind it.
void HeldToolButton::StepOnce()
{
    if (stepping_) return;
    stepping_ = true;
    step_();
    stepping_ = false;
}

bool HeldToolButton::event(QEvent* event)
{
    // The release of the mouse goes to the window that came in front.
    if (event->type() == QEvent::WindowDeactivate || event->type() == QEvent::Hide) {
        held_.Release();
        setDown(false);
    }
    return QToolButton::event(event);
}

// ---- field

int WheelNotches::Take(const QWheelEvent& event)
{
    const QPoint delta = event.angleDelta();
    rest_ += delta.y() != 0 ? delta.y() : delta.x();
    const int notches = rest_ / kNotch;
    rest_ -= notches * kNotch;
    return notches;
}

ValueEdit::ValueEdit(QWidget* parent) : QLineEdit(parent)
{
    setAlignment(Qt::AlignRight);
}

void ValueEdit::Show()
{
    if (hasFocus() && isModified()) return;
    Forget();
}

void ValueEdit::Forget()
{
    if (shown) setText(QString::fromStdString(shown()));
    setModified(false);
}

void ValueEdit::Take()
{
    const auto value = ParseNumber(text().toStdString());
    setModified(false);
    if (value && typed) typed(*value);
    Forget();
    if (!value && refused) refused();
}

void ValueEdit::Step(int steps)
{
    if (isModified()) Take();
    if (stepped) stepped(steps);
}

void ValueEdit::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
        if (!isModified()) {
            event->ignore();
            return;
        }
        key == Qt::Key_Escape ? Forget() : Take();
        selectAll();
    } else if (stepped && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        Step(key == Qt::Key_Up ? 1 : -1);
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void ValueEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (isModified() && event->reason() != Qt::PopupFocusReason) Take();
}

void ValueEdit::wheelEvent(QWheelEvent* event)
{
    event->accept();
    const int notches = notches_.Take(*event);
    if (notches != 0) Step(event->modifiers() & Qt::ControlModifier ? 10 * notches : notches);
}

// ---- field with arrows

StepField::StepField(QWidget* parent, int field_width) :
    QWidget(parent), edit_(new ValueEdit(this)), up_(new HeldToolButton(this, [this] { edit_->Step(1); })),
    down_(new HeldToolButton(this, [this] { edit_->Step(-1); }))
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    edit_->setFixedWidth(field_width);
    row->addWidget(edit_);
    down_->setArrowType(Qt::DownArrow);
    up_->setArrowType(Qt::UpArrow);
    for (HeldToolButton* arrow : {down_, up_}) {
        arrow->setFixedSize(24, 24);
        row->addWidget(arrow);
    }
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

} // namespace nmr
