// The bar of the phase correction.

#include "ui/fft_controls.h"
#include "ui/flow_layout.h"
#include "ui/tool_panels.h"

#include <QLabel>
#include <QPushButton>

namespace nmr {
namespace {

constexpr double kKeyStep = 1.0, kFineKeyStep = 0.1; // degrees

int Tenths(double degrees)
{
    return static_cast<int>(degrees * 10);
}

} // namespace

QString QualityText(const std::optional<double>& percent)
{
    return percent ? QStringLiteral("Quality %1 %").arg(*percent, 0, 'f', 0) : QString();
}

PhaseToolbar::PhaseToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::phase, "PhaseToolbar", QStringLiteral("Phase Corr."))
{
    AddOrders();
    BeginGroup();
    AddButton("PhaseRobust", QStringLiteral("Auto (robust)"),
              QStringLiteral("Tries several criteria and takes the best; also for DEPT, APT and crowded spectra"),
              [this] { tools_.AutoPhaseRobust(); });
    AddButton("PhaseCommand4", QStringLiteral("Auto"), QStringLiteral("A circle through the strongest line"),
              [this] { tools_.AutoPhase(); });
    AddButton("PhaseCommand3", QStringLiteral("SemiAuto"), QStringLiteral("The same at the marks PP and P2"),
              [this] { tools_.SemiAutoPhase(); });
    quality_ = AddLabel({});
    quality_->setObjectName(QStringLiteral("PhaseQuality"));
    quality_->setToolTip(QStringLiteral("How well the robust phase fits, 0 to 100 %"));
    // Its room is kept, or the bar would jump with each press.
    quality_->setMinimumWidth(quality_->fontMetrics().horizontalAdvance(QualityText(100)));
    all_rows_ = BeginGroup();
    AddButton("PhaseAllRows", QStringLiteral("Same Phase to All Rows"),
              QStringLiteral("All rows of the array take the phase of the shown one"),
              [this] { tools_.SamePhaseToAllRows(); });
    BeginGroup();
    AddLabel(QStringLiteral("Drag"));
    AddAction(ToolAction::pivot, QStringLiteral("PP"), QStringLiteral("Click or drag moves the pivot, which stays"));
    AddAction(ToolAction::second, QStringLiteral("P2"), QStringLiteral("Click or drag moves the second mark"));
    AddEnd("PhaseCommand1", QStringLiteral("Fix"), QStringLiteral("Keeps the phases of all rows (Enter)"),
           "PhaseCommand2", QStringLiteral("Cancel"), QStringLiteral("Puts the phases back (Esc)"));
}

void PhaseToolbar::AddOrders()
{
    using Order = PhaseControl::Order;
    const Order orders[] = {{.caption = "Zero order",
                             .field_name = "PhaseText1",
                             .bar_name = "Phase0ScrollBar",
                             .label_name = "Label1",
                             .limit_tenths = Tenths(Tools::kPhase0Limit),
                             .get = [this] { return tools_.phase0(); },
                             .set = [this](double deg) { tools_.SetPhase0(deg); },
                             .add = [this](double deg) { tools_.TurnPhase0(deg); }},
                            {.caption = "First order",
                             .field_name = "PhaseText2",
                             .bar_name = "Phase1ScrollBar",
                             .label_name = "Label13",
                             .limit_tenths = Tenths(Tools::kPhase1Limit),
                             .get = [this] { return tools_.phase1(); },
                             .set = [this](double deg) { tools_.SetPhase1(deg); },
                             .add = [this](double deg) { tools_.SetPhase1(tools_.phase1() + deg); }}};
    for (const Order& order : orders) {
        BeginGroup();
        orders_.push_back(new PhaseControl(order, this, PhaseControl::Form::flat));
        AddWidget(orders_.back());
    }
}

void PhaseToolbar::Refresh()
{
    ToolPanel::Refresh();
    for (PhaseControl* order : orders_) order->Show();
    all_rows_->setVisible(g_.Slots[0].spec.DataRe.rows() > 1);
    quality_->setText(QualityText(tools_.phase_quality()));
}

bool PhaseToolbar::TakeKey(int key, Qt::KeyboardModifiers keys)
{
    if (!(keys & Qt::ShiftModifier)) return false;
    const double step = keys & Qt::ControlModifier ? kFineKeyStep : kKeyStep;
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        tools_.TurnPhase0(key == Qt::Key_Right ? step : -step);
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        tools_.SetPhase1(tools_.phase1() + (key == Qt::Key_Up ? step : -step));
        return true;
    default:
        return false;
    }
}

bool PhaseToolbar::TakeWheel(int notches, Qt::KeyboardModifiers keys)
{
    const double turn = (keys & Qt::ControlModifier ? kFineKeyStep : kKeyStep) * notches;
    if (keys & Qt::ShiftModifier)
        tools_.TurnPhase0(turn);
    else if (keys & Qt::AltModifier)
        tools_.SetPhase1(tools_.phase1() + turn);
    else
        return false;
    return true;
}

} // namespace nmr
