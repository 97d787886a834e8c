#include "ui/fft_controls.h"

#include "core/numbers.h"

#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QWheelEvent>

#include <cmath>

namespace nmr {
namespace {

constexpr double kFineStep = 0.1; // degrees, one notch of the wheel
constexpr int kPageTenths = 50;

// Columns by size, so that a step back lies under its step forth.
constexpr const char* kSteps[2][7] = {{"-10", "-5", "-2", "-1", "-0.5", "-0.2", "-0.1"},
                                      {"+10", "+5", "+2", "+1", "+0.5", "+0.2", "+0.1"}};

/// A scroll bar whose wheel takes fine steps like the field's.
class PhaseBar : public QScrollBar {
public:
    PhaseBar(QWidget* parent, std::function<void(int)> wheel) :
        QScrollBar(Qt::Horizontal, parent), wheel_(std::move(wheel))
    {
    }

protected:
    void wheelEvent(QWheelEvent* event) override
    {
        event->accept();
        const int notches = notches_.Take(*event);
        if (notches != 0) wheel_(event->modifiers() & Qt::ControlModifier ? 10 * notches : notches);
    }

private:
    std::function<void(int)> wheel_;
    WheelNotches notches_;
};

} // namespace

PhaseControl::PhaseControl(const Order& order, QWidget* parent, Form form) :
    QWidget(parent), get_(order.get), edit_(new ValueEdit(this)),
    bar_(new PhaseBar(this, [this](int steps) { edit_->Step(steps); }))
{
    edit_->setObjectName(order.field_name);
    edit_->setFixedWidth(84);
    edit_->setToolTip("The wheel turns by 0.1 degrees, with Ctrl by 1 degree");
    edit_->shown = [this] { return FormatNumber("####0.0#", get_()); };
    edit_->typed = order.set;
    edit_->stepped = [add = order.add](int steps) { add(steps * kFineStep); };
    bar_->setObjectName(order.bar_name);
    bar_->setRange(-order.limit_tenths, order.limit_tenths);
    bar_->setPageStep(kPageTenths);
    bar_->setFocusPolicy(Qt::StrongFocus);
    bar_->setMinimumHeight(18);
    connect(bar_, &QScrollBar::valueChanged, this, [set = order.set](int tenths) { set(tenths / 10.0); });

    auto* caption = new QLabel(order.caption, this);
    caption->setBuddy(edit_);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(4);
    const bool flat = form == Form::flat;
    grid->setColumnStretch(flat ? 3 : 0, 1);
    grid->addWidget(caption, 0, 0);
    grid->addWidget(edit_, 0, 1);
    grid->addWidget(new QLabel("°", this), 0, 2);
    if (flat)
        grid->addWidget(bar_, 0, 3);
    else
        grid->addWidget(bar_, 1, 0, 1, 3);
    grid->addWidget(MakeSteps(order, form), flat ? 1 : 2, 0, 1, flat ? 4 : 3);
    Show();
}

QWidget* PhaseControl::MakeSteps(const Order& order, Form form)
{
    auto* steps = new QWidget(this);
    auto* grid = new QGridLayout(steps);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.9);
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 7; ++column) {
            const QString caption = kSteps[row][column];
            const double degrees = caption.toDouble();
            auto* label = new HeldToolButton(steps, [add = order.add, degrees] { add(degrees); });
            label->setText(QString(caption).replace('-', QChar(0x2212)));
            label->setAccessibleName(caption);
            label->setToolTip(QString("%1 by %2\u00b0").arg(QLatin1String(order.caption), label->text()));
            label->setObjectName(QString(order.label_name) + caption);
            label->setFont(small);
            label->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
            label->setMinimumWidth(10);
            // A bar has room for both orders side by side only with tight steps.
            if (form == Form::flat) label->setMaximumWidth(QFontMetrics(small).horizontalAdvance(label->text()) + 9);
            // In one line they grow from the middle to both sides.
            const int at = form == Form::tall || row == 0 ? column : 13 - column;
            grid->addWidget(label, form == Form::tall ? row : 0, at);
            grid->setColumnStretch(at, form == Form::tall ? 1 : 0);
        }
    return steps;
}

void PhaseControl::Show()
{
    edit_->Show();
    const QSignalBlocker quiet(bar_); // a phase between two tenths must not be rounded by being shown
    bar_->setValue(static_cast<int>(std::lround(get_() * 10)));
}

} // namespace nmr
