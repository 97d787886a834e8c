// The bar of the integrals.

#include "ui/tool_panels.h"

#include <QPushButton>

namespace nmr {

IntegralToolbar::IntegralToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::integrals, "IntegralToolbar", QStringLiteral("Integral"))
{
    BeginGroup();
    AddAction(ToolAction::add_integral, QStringLiteral("Add"), QStringLiteral("Drag over a region"));
    AddAction(ToolAction::divide_integral, QStringLiteral("Divide"), QStringLiteral("Divide Integral"));
    AddAction(ToolAction::move_integral, QStringLiteral("Move"), QStringLiteral("Move Integral"));
    AddAction(ToolAction::enlarge_integral, QStringLiteral("Enlarge"), QStringLiteral("Enlarge Integral"));
    AddAction(ToolAction::delete_integral, QStringLiteral("Delete"), QStringLiteral("Delete Integral"));
    AddAction(ToolAction::reference_integral, QStringLiteral("Ref"), QStringLiteral("Set Ref Value Here"));
    delete_all_ = AddButton("IntegralCommand2", QStringLiteral("Delete All"), QStringLiteral("Delete All Integral"),
                            [this] { tools_.DeleteAllIntegrals(); });
    AddEnd("IntegralCommand1", QStringLiteral("Close"), QStringLiteral("Save Integral and Close"));
}

void IntegralToolbar::Refresh()
{
    ToolPanel::Refresh();
    delete_all_->setEnabled(!g_.Slots[0].Integrals.empty());
}

} // namespace nmr
