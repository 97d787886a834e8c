// The bar of the peak picking.

#include "session/list_commands.h"
#include "ui/form_fields.h"
#include "ui/tool_panels.h"

#include <fmt/format.h>

#include <QCheckBox>
#include <QPushButton>

#include <cmath>

namespace nmr {
namespace {

constexpr double kLevelStep = 1.1;  // of a turn of the wheel
constexpr double kBaseStep = 0.001; // likewise, for the base level, which may be 0 and below

struct LevelField {
    ToolAction level;
    const char *name, *caption, *tip;
};
constexpr LevelField kLevels[] = {
    {ToolAction::detect_level, "PeakText1", "Threshold", "Input Threshold Level"},
    {ToolAction::noise_level, "PeakText2", "Noise", "Input Noise Level"},
    {ToolAction::base_level, "PeakText3", "Base", "Input Base Line Level"},
};

} // namespace

PeakToolbar::PeakToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::peaks, "PeakToolbar", QStringLiteral("Peak Picking"))
{
    BeginGroup();
    AddButton("PeakShown", QStringLiteral("Shown"), QStringLiteral("Picks in the whole shown range"),
              [this] { tools_.PickShown(); });
    AddAction(ToolAction::pick_range, QStringLiteral("Range"), QStringLiteral("Drag over the range to pick in"));
    AddAction(ToolAction::add_peak, QStringLiteral("Add"), QStringLiteral("Click at a top"));
    AddAction(ToolAction::delete_peak, QStringLiteral("Delete"), QStringLiteral("Click at a peak, or drag over some"));
    delete_all_ = AddButton("PeakCommand3", QStringLiteral("Delete All"), QStringLiteral("Deletes all peaks"),
                            [this] { tools_.DeleteAllPeaks(); });
    BeginGroup();
    negative_ = AddSwitch("NegativePeaks", QStringLiteral("Negative"),
                          QStringLiteral("Picks tops below the base line too, as DEPT and APT have them"),
                          &Settings::negative_peaks);
    interpolate_ = AddSwitch("InterpolateTops", QStringLiteral("Interpolate tops"),
                             QStringLiteral("Marks and lists the top between the points, beside the point itself"),
                             &Settings::interpolate_tops);
    AddLevels();
    BeginGroup();
    AddButton("ShowPeaks", QStringLiteral("Show List"), QStringLiteral("Peak List (Ctrl+L)"),
              [this] { PeakList_Click(session_); });
    AddEnd("PeakCommand1", QStringLiteral("Close"), QStringLiteral("Leaves the tool (Enter or Esc)"));
}

/// Each level as a field; the lines in the plot are dragged too, whatever button is down.
void PeakToolbar::AddLevels()
{
    BeginGroup();
    for (const LevelField& row : kLevels) {
        ValueEdit* field = AddValue(row.name, QLatin1String(row.caption), QLatin1String(row.tip), 52);
        field->shown = [this, row] { return fmt::format("{:.4g}", tools_.LevelOf(row.level)); };
        field->typed = [this, row](double level) { tools_.SetLevel(row.level, level); };
        field->stepped = [this, row](int steps) {
            const double now = tools_.LevelOf(row.level);
            const bool by_share = row.level != ToolAction::base_level && now != 0.0;
            tools_.SetLevel(row.level, by_share ? now * std::pow(kLevelStep, steps) : now + kBaseStep * steps);
        };
        levels_.push_back(field);
    }
}

QCheckBox* PeakToolbar::AddSwitch(const char* name, const QString& caption, const QString& tip,
                                  std::int32_t Settings::*on)
{
    auto* box = new QCheckBox(caption, this);
    box->setObjectName(QLatin1String(name));
    box->setToolTip(tip);
    box->setFocusPolicy(Qt::NoFocus);
    connect(box, &QCheckBox::clicked, this, [this, on](bool checked) {
        g_.settings.*on = checked ? 1 : 0;
        g_.SettingsChanged = true;
        if (session_.display_changed) session_.display_changed();
    });
    AddWidget(box);
    return box;
}

void PeakToolbar::Refresh()
{
    ToolPanel::Refresh();
    delete_all_->setEnabled(!g_.Slots[0].Peaks.empty());
    for (ValueEdit* field : levels_) field->Show();
    negative_->setChecked(g_.settings.negative_peaks == 1);
    interpolate_->setChecked(g_.settings.interpolate_tops == 1);
}

} // namespace nmr
