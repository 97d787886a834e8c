#include "session/text_commands.h"

#include "session/forms.h"
#include "session/text_forms.h"

#include <algorithm>
#include <array>
#include <optional>

namespace nmr {
namespace {

struct LabelRow {
    std::string DataSet::*label;
    std::string Settings::*setting;
};
// In the order of the axis units.
constexpr std::array<LabelRow, 3> kLabels{{{&DataSet::XLabelPpm, &Settings::xlabel},
                                           {&DataSet::XLabelHz, &Settings::xlabel_hz},
                                           {&DataSet::XLabelKHz, &Settings::xlabel_khz}}};

struct ExpressionRow {
    WindowKind kind;
    std::string Settings::*setting;
};
constexpr std::array<ExpressionRow, 5> kExpressions{{{WindowKind::exponential, &Settings::function_exponent},
                                                     {WindowKind::sine_bell, &Settings::function_sine_bell},
                                                     {WindowKind::hann, &Settings::function_sine_bell_2},
                                                     {WindowKind::gaussian, &Settings::function_gauss},
                                                     {WindowKind::blackman_harris, &Settings::function_blackman}}};

std::optional<std::string> Edited(Asker& asker, const std::string& title, const std::string& code, forms::Values values)
{
    values[forms::kTitle] = title;
    values[forms::kText] = code;
    const FormAnswer answer = asker.Form({forms::kTextEditor, values});
    if (answer.dialog_result != forms::kOk) return std::nullopt;
    return forms::Text(answer.values, forms::kText);
}

} // namespace

void Edit_Axis_Label(Session& s)
{
    const auto unit = static_cast<std::size_t>(std::clamp<std::int32_t>(s.g.settings.axis_mode_ppm, 0, 2));
    const LabelRow& row = kLabels[unit];
    std::string& label = s.g.Slots[0].*row.label;
    const Settings& settings = s.g.settings;
    const double size = settings.disp_axfont_size > 0 ? settings.disp_axfont_size : 10;
    const auto edited = Edited(s.asker, "Axis Label", label,
                               {{forms::kFontSize, forms::NumberValue(size)},
                                {forms::kFontBold, forms::Switch(settings.disp_axfont_bold != 0)},
                                {forms::kFontItalic, forms::Switch(settings.disp_axfont_italic != 0)}});
    if (!edited || *edited == label) return;
    PushUndoStep(s.g, UndoKind::axis_label);
    label = *edited;
    s.g.settings.*row.setting = *edited;
    s.g.Slots[0].par.DataChanged = 1;
    s.g.Slots[0].par.DataFromFile = 0;
    s.g.SettingsChanged = true;
    if (s.display_changed) s.display_changed();
}

std::string& ExpressionOf(Settings& settings, WindowKind kind)
{
    const auto row = std::ranges::find(kExpressions, kind, &ExpressionRow::kind);
    return settings.*(row == kExpressions.end() ? kExpressions.front() : *row).setting;
}

bool Edit_Expression(GlobalBlock& g, Asker& asker, WindowKind kind)
{
    std::string& expression = ExpressionOf(g.settings, kind);
    const auto edited = Edited(asker, "Edit Function Expression", expression, {});
    if (!edited || *edited == expression) return false;
    expression = *edited;
    g.SettingsChanged = true;
    return true;
}

void Set_Initial_Expression(GlobalBlock& g, WindowKind kind)
{
    const auto& rows = WindowRows();
    const auto row = std::ranges::find(rows, kind, &WindowRow::kind);
    if (row == rows.end()) return;
    ExpressionOf(g.settings, kind) = row->initial_expression;
    g.SettingsChanged = true;
}

} // namespace nmr
