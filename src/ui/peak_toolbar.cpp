// The bar of the peak picking.

#include "ui/tool_panels.h"

#include <QPushButton>

namespace nmr {

PeakToolbar::PeakToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::peaks, "PeakToolbar", QStringLiteral("Peak Picking"))
{
    BeginGroup();
    AddButton("PeakShown", QStringLiteral("Shown Range"), QStringLiteral("Picks in the whole shown range"),
              [this] { tools_.PickShown(); });
    AddAction(ToolAction::pick_range, QStringLiteral("Range"), QStringLiteral("Drag over the range to pick in"));
    AddAction(ToolAction::add_peak, QStringLiteral("Add"), QStringLiteral("Click at a top"));
    AddAction(ToolAction::delete_peak, QStringLiteral("Delete"), QStringLiteral("Click at a peak, or drag over some"));
    delete_all_ = AddButton("PeakCommand3", QStringLiteral("Delete All"), {}, [this] { tools_.DeleteAllPeaks(); });
    BeginGroup();
    AddAction(ToolAction::noise_level, QStringLiteral("Noise"), QStringLiteral("Move Noise Level"));
    AddAction(ToolAction::detect_level, QStringLiteral("Threshold"), QStringLiteral("Move Threshold Level"));
    AddAction(ToolAction::base_level, QStringLiteral("Base"), QStringLiteral("Move Base Level"));
    AddEnd("PeakCommand1", QStringLiteral("Close"), QStringLiteral("Leaves the tool (Enter or Esc)"));
}

void PeakToolbar::Refresh()
{
    ToolPanel::Refresh();
    delete_all_->setEnabled(!g_.Slots[0].Peaks.empty());
}

} // namespace nmr
