// The bar of the integrals.

#include "core/numbers.h"
#include "session/list_commands.h"
#include "ui/form_fields.h"
#include "ui/tool_panels.h"

#include <QMouseEvent>
#include <QPushButton>

#include <algorithm>

namespace nmr {
namespace {

constexpr char kBasePattern[] = "#0.0#####";

struct BaseRow {
    const char *name, *caption, *tip;
    const char *up, *up_tip, *down, *down_tip;
    float IntegralEntry::*value;
    bool (Tools::*set)(double);
    void (Tools::*step)(int);
};
const BaseRow kBases[] = {
    {"IntegralText2", "B0", "Base Line Offset", "Integral_B0_Up", "Offset Up(Fine)", "Integral_B0_Down",
     "Offset Down(Fine)", &IntegralEntry::B0, &Tools::SetB0, &Tools::StepB0},
    {"IntegralText3", "B1", "Bias of Base Line", "Integral_B1_Up", "Bias Up(Fine)", "Integral_B1_Down",
     "Bias Down(Fine)", &IntegralEntry::B1, &Tools::SetB1, &Tools::StepB1},
};

const IntegralEntry* Selected(const DataSet& set, std::int32_t index)
{
    const auto at = static_cast<std::size_t>(std::max(index, 0));
    return index >= 0 && at < set.Integrals.size() ? &set.Integrals[at] : nullptr;
}

/// Pushes its undo step when it goes down, before the first of its steps.
class FineButton : public HeldToolButton {
public:
    FineButton(QWidget* parent, Tools& tools, std::function<void()> step) :
        HeldToolButton(parent, std::move(step)), tools_(tools)
    {
    }

protected:
    bool event(QEvent* event) override
    {
        const bool press = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
        if (press && isEnabled() && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) tools_.PressB0B1();
        return HeldToolButton::event(event);
    }

private:
    Tools& tools_;
};

} // namespace

IntegralToolbar::IntegralToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::integrals, "IntegralToolbar", QStringLiteral("Integral"))
{
    BeginGroup();
    add_ = AddAction(ToolAction::add_integral, QStringLiteral("Add"), QStringLiteral("Drag over a region"));
    divide_ = AddAction(ToolAction::divide_integral, QStringLiteral("Divide"), QStringLiteral("Divide Integral"));
    AddAction(ToolAction::move_integral, QStringLiteral("Move"), QStringLiteral("Move Integral"));
    AddAction(ToolAction::enlarge_integral, QStringLiteral("Enlarge"), QStringLiteral("Enlarge Integral"));
    AddAction(ToolAction::delete_integral, QStringLiteral("Delete"), QStringLiteral("Delete Integral"));
    AddAction(ToolAction::reference_integral, QStringLiteral("Reference"), QStringLiteral("Set Ref Value Here"));
    delete_all_ = AddButton("IntegralCommand2", QStringLiteral("Delete All"), QStringLiteral("Delete All Integral"),
                            [this] { tools_.DeleteAllIntegrals(); });
    BeginGroup();
    scale_ = AddValue("IntegralText1", QStringLiteral("Ref"), QStringLiteral("Base Value of Integral"), 64);
    scale_->shown = [this] { return FormatNumber("####0.0###", ShortestDouble(g_.Slots[0].IntegralScale)); };
    scale_->typed = [this](double value) { tools_.SetIntegralScale(value); };
    AddBases();
    BeginGroup();
    AddButton("IntegralCommand3", QStringLiteral("Show List"), QStringLiteral("Show Integral and Print"),
              [this] { IntegralCommand3_Click(session_); });
    AddEnd("IntegralCommand1", QStringLiteral("Close"), QStringLiteral("Save Integral and Close"));
}

/// Base line of the selected region: fields, and fine buttons that step while they are held.
void IntegralToolbar::AddBases()
{
    for (const BaseRow& row : kBases) {
        BeginGroup();
        ValueEdit* field = AddValue(row.name, QLatin1String(row.caption), QLatin1String(row.tip), 76);
        field->shown = [this, value = row.value]() -> std::string {
            const IntegralEntry* entry = Selected(g_.Slots[0], tools_.selected());
            return entry == nullptr ? std::string() : FormatNumber(kBasePattern, ShortestDouble(entry->*value));
        };
        field->typed = [this, set = row.set](double value) { (tools_.*set)(value); };
        base_fields_.push_back(field);
        for (const int direction : {1, -1}) {
            auto* button =
                new FineButton(this, tools_, [this, step = row.step, direction] { (tools_.*step)(direction); });
            button->setObjectName(QLatin1String(direction > 0 ? row.up : row.down));
            button->setToolTip(QLatin1String(direction > 0 ? row.up_tip : row.down_tip));
            button->setArrowType(direction > 0 ? Qt::UpArrow : Qt::DownArrow);
            button->setAutoRaise(true);
            AddWidget(button);
            fine_buttons_.push_back(button);
        }
    }
}

void IntegralToolbar::Refresh()
{
    ToolPanel::Refresh();
    const std::size_t count = g_.Slots[0].Integrals.size();
    const bool room = count < kMaxIntegrals, selected = Selected(g_.Slots[0], tools_.selected()) != nullptr;
    add_->setEnabled(room);
    divide_->setEnabled(room && count > 0);
    delete_all_->setEnabled(count > 0);
    scale_->Show();
    for (ValueEdit* field : base_fields_) {
        field->setEnabled(selected);
        field->Show();
    }
    for (QToolButton* button : fine_buttons_) button->setEnabled(selected);
}

} // namespace nmr
