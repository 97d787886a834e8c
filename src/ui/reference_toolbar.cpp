// The bar of the reference.

#include "ui/form_fields.h"
#include "ui/tool_panels.h"

namespace nmr {

ReferenceToolbar::ReferenceToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::reference, "ReferenceToolbar", QStringLiteral("Set Reference"))
{
    AddEnd("ReferenceFix", QStringLiteral("Fix"), QStringLiteral("Keeps the reference (Enter)"), "ReferenceCancel",
           QStringLiteral("Cancel"), QStringLiteral("Puts the axis back (Esc)"));
}

void ReferenceToolbar::Refresh()
{
    ToolPanel::Refresh();
}

} // namespace nmr
