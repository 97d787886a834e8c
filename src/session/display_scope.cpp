#include "session/display_scope.h"

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kReadFill = 0.95; // the share of the height that a read gives the highest point

struct PresetMembers {
    double Settings::*left;
    double Settings::*right;
};
using S = Settings;
// [nucleus group][ppm, Hz][number - 1]
constexpr PresetMembers kPresets[3][2][kPresetCount] = {
    {{{&S::x_left_preset, &S::x_right_preset},
      {&S::x_l_preset_2, &S::x_r_preset_2},
      {&S::x_l_preset_3, &S::x_r_preset_3},
      {&S::x_l_preset_4, &S::x_r_preset_4}},
     {{&S::x_l_preset_1_hz, &S::x_r_preset_1_hz},
      {&S::x_l_preset_2_hz, &S::x_r_preset_2_hz},
      {&S::x_l_preset_3_hz, &S::x_r_preset_3_hz},
      {&S::x_l_preset_4_hz, &S::x_r_preset_4_hz}}},
    {{{&S::x_left_preset_2, &S::x_right_preset_2},
      {&S::x_l_preset_c2, &S::x_r_preset_c2},
      {&S::x_l_preset_c3, &S::x_r_preset_c3},
      {&S::x_l_preset_c4, &S::x_r_preset_c4}},
     {{&S::x_l_preset_c1_hz, &S::x_r_preset_c1_hz},
      {&S::x_l_preset_c2_hz, &S::x_r_preset_c2_hz},
      {&S::x_l_preset_c3_hz, &S::x_r_preset_c3_hz},
      {&S::x_l_preset_c4_hz, &S::x_r_preset_c4_hz}}},
    {{{&S::x_left_preset_3, &S::x_right_preset_3},
      {&S::x_l_preset_x2, &S::x_r_preset_x2},
      {&S::x_l_preset_x3, &S::x_r_preset_x3},
      {&S::x_l_preset_x4, &S::x_r_preset_x4}},
     {{&S::x_l_preset_x1_hz, &S::x_r_preset_x1_hz},
      {&S::x_l_preset_x2_hz, &S::x_r_preset_x2_hz},
      {&S::x_l_preset_x3_hz, &S::x_r_preset_x3_hz},
      {&S::x_l_preset_x4_hz, &S::x_r_preset_x4_hz}}},
};

std::size_t Clamped(int value, int low, int high)
{
    return static_cast<std::size_t>(std::clamp(value, low, high));
}

const PresetMembers& Members(int group, int n, XUnit unit)
{
    return kPresets[Clamped(group, 0, 2)][unit == XUnit::ppm ? 0 : 1][Clamped(n, 1, kPresetCount) - 1];
}

ShownRange Ordered(const ShownRange& range)
{
    return {std::max(range.left, range.right), std::min(range.left, range.right)};
}

bool Differs(const ShownRange& range)
{
    return std::isfinite(range.left) && std::isfinite(range.right) && range.left != range.right;
}

void PutRange(forms::Values& values, const std::string& key, const ShownRange& range)
{
    values[key + " LEFT"] = forms::NumberValue(range.left);
    values[key + " RIGHT"] = forms::NumberValue(range.right);
}

ShownRange TakeRange(const forms::Values& values, const std::string& key)
{
    return {forms::Number(values, key + " LEFT"), forms::Number(values, key + " RIGHT")};
}

double HzPerPpm(const ParamBlock& par)
{
    return par.OBFRQ0PPM > 0 ? par.OBFRQ0PPM : static_cast<double>(par.OBFRQ);
}

} // namespace

ShownRange GetPreset(const Settings& settings, int group, int n, XUnit unit)
{
    const PresetMembers& row = Members(group, n, unit);
    return {settings.*row.left, settings.*row.right};
}

void SetPreset(Settings& settings, int group, int n, XUnit unit, const ShownRange& range)
{
    const PresetMembers& row = Members(group, n, unit);
    settings.*row.left = range.left;
    settings.*row.right = range.right;
}

DisplayScope::DisplayScope(const GlobalBlock& g) :
    range_{static_cast<double>(g.ViewLeft), static_cast<double>(g.ViewRight)}, hz_per_ppm_(HzPerPpm(g.Slots[0].par)),
    unit_(static_cast<XUnit>(std::clamp(g.settings.axis_mode_ppm, 0, 2)))
{
    const int group = NucleusGroup(g.Slots[0].par.OBNUC);
    for (int n = 1; n <= kPresetCount; ++n) {
        presets_ppm_[static_cast<std::size_t>(n - 1)] = GetPreset(g.settings, group, n, XUnit::ppm);
        presets_hz_[static_cast<std::size_t>(n - 1)] = GetPreset(g.settings, group, n, XUnit::hz);
    }
}

DisplayScope::DisplayScope(const forms::Values& values) :
    range_(TakeRange(values, "RANGE")), hz_per_ppm_(forms::Number(values, "HZ PER PPM")),
    unit_(static_cast<XUnit>(std::clamp(static_cast<int>(forms::Number(values, "UNIT")), 0, 2))),
    default_changed_(forms::Text(values, "DEFAULT CHANGED") == "1")
{
    for (int n = 1; n <= kPresetCount; ++n) {
        presets_ppm_[static_cast<std::size_t>(n - 1)] = TakeRange(values, forms::Indexed("PPM", n));
        presets_hz_[static_cast<std::size_t>(n - 1)] = TakeRange(values, forms::Indexed("HZ", n));
    }
}

forms::Values DisplayScope::ToValues() const
{
    forms::Values values;
    PutRange(values, "RANGE", range_);
    values["HZ PER PPM"] = forms::NumberValue(hz_per_ppm_);
    values["UNIT"] = forms::NumberValue(static_cast<double>(unit_));
    values["DEFAULT CHANGED"] = forms::Switch(default_changed_);
    for (int n = 1; n <= kPresetCount; ++n) {
        PutRange(values, forms::Indexed("PPM", n), presets_ppm_[static_cast<std::size_t>(n - 1)]);
        PutRange(values, forms::Indexed("HZ", n), presets_hz_[static_cast<std::size_t>(n - 1)]);
    }
    return values;
}

/// What one ppm is in the unit.
double DisplayScope::HzPerUnit(XUnit unit) const
{
    if (unit == XUnit::ppm) return 1.0;
    return unit == XUnit::hz ? hz_per_ppm_ : hz_per_ppm_ / 1000.0;
}

double DisplayScope::Get(ScopeEdge edge, XUnit unit) const
{
    return (edge == ScopeEdge::left ? range_.left : range_.right) * HzPerUnit(unit);
}

bool DisplayScope::Set(ScopeEdge edge, XUnit unit, double value)
{
    const double factor = HzPerUnit(unit);
    if (!std::isfinite(value) || !(factor > 0)) return false;
    (edge == ScopeEdge::left ? range_.left : range_.right) = value / factor;
    return true;
}

void DisplayScope::SetDefaultValue()
{
    if (!IsUsable()) return;
    const ShownRange ppm = Ordered(range_);
    presets_ppm_[0] = ppm;
    // Both pairs, so that the default is the same range whatever unit the axis is in.
    if (hz_per_ppm_ > 0) presets_hz_[0] = {ppm.left * hz_per_ppm_, ppm.right * hz_per_ppm_};
    default_changed_ = true;
}

void DisplayScope::TakePreset(int n)
{
    const std::size_t i = Clamped(n, 1, kPresetCount) - 1;
    if (unit_ == XUnit::ppm || !(hz_per_ppm_ > 0)) {
        range_ = presets_ppm_[i];
        return;
    }
    range_ = {presets_hz_[i].left / hz_per_ppm_, presets_hz_[i].right / hz_per_ppm_};
}

DisplayScope DisplayScope::WithPresetsOf(const GlobalBlock& g) const
{
    DisplayScope scope(g);
    scope.range_ = range_;
    return scope;
}

bool DisplayScope::IsUsable() const
{
    // Shown ends are single precision: two that fall together there are no range.
    return Differs(range_) && static_cast<float>(range_.left) != static_cast<float>(range_.right);
}

Status DisplayScope::Apply(GlobalBlock& g) const
{
    if (!IsUsable()) return Error{ErrorCode::bad_value, "Command1/F31", "The ends of the range are equal"};
    const ShownRange range = Ordered(range_);
    g.ViewLeft = static_cast<float>(range.left);
    g.ViewRight = static_cast<float>(range.right);
    UpdateShownHz(g);
    if (!default_changed_) return {};
    const int group = NucleusGroup(g.Slots[0].par.OBNUC);
    SetPreset(g.settings, group, 1, XUnit::ppm, presets_ppm_[0]);
    SetPreset(g.settings, group, 1, XUnit::hz, presets_hz_[0]);
    g.SettingsChanged = true;
    return {};
}

namespace {

constexpr const char* kGroupNames[3] = {"1H", "13C", "OTHER"};

std::size_t AreaIndex(int group, XUnit unit, int n)
{
    return (Clamped(group, 0, 2) * 2 + (unit == XUnit::ppm ? 0 : 1)) * kPresetCount + Clamped(n, 1, kPresetCount) - 1;
}

std::string TickPrefix(int group)
{
    return std::string(kGroupNames[Clamped(group, 0, 2)]) + " TICK ";
}

/// Calls f(group, unit, n, key) for every preset.
template <class F>
void ForEachArea(F f)
{
    for (int group = 0; group < 3; ++group)
        for (const XUnit unit : {XUnit::ppm, XUnit::hz})
            for (int n = 1; n <= kPresetCount; ++n)
                f(group, unit, n,
                  forms::Indexed(std::string(kGroupNames[group]) + (unit == XUnit::ppm ? " PPM" : " HZ"), n));
}

} // namespace

DefaultAreas::DefaultAreas(const Settings& settings)
{
    ForEachArea([&](int group, XUnit unit, int n, const std::string&) {
        ranges_[AreaIndex(group, unit, n)] = GetPreset(settings, group, n, unit);
    });
    for (int group = 0; group < 3; ++group) Ticks(group) = GetTickPreset(settings, group);
}

DefaultAreas::DefaultAreas(const forms::Values& values)
{
    ForEachArea([&](int group, XUnit unit, int n, const std::string& key) {
        ranges_[AreaIndex(group, unit, n)] = TakeRange(values, key);
    });
    for (int group = 0; group < 3; ++group) Ticks(group) = TakeTicks(values, TickPrefix(group));
}

forms::Values DefaultAreas::ToValues() const
{
    forms::Values values;
    ForEachArea([&](int group, XUnit unit, int n, const std::string& key) {
        PutRange(values, key, ranges_[AreaIndex(group, unit, n)]);
    });
    for (int group = 0; group < 3; ++group)
        PutTicks(values, TickPrefix(group), ticks_[static_cast<std::size_t>(group)]);
    return values;
}

const ShownRange& DefaultAreas::At(int group, XUnit unit, int n) const
{
    return ranges_[AreaIndex(group, unit, n)];
}

bool DefaultAreas::Set(int group, XUnit unit, int n, ScopeEdge edge, double value)
{
    if (!std::isfinite(value)) return false;
    ShownRange& range = ranges_[AreaIndex(group, unit, n)];
    (edge == ScopeEdge::left ? range.left : range.right) = value;
    return true;
}

void DefaultAreas::Apply(Settings& settings) const
{
    ForEachArea([&](int group, XUnit unit, int n, const std::string&) {
        const ShownRange& range = ranges_[AreaIndex(group, unit, n)];
        if (Differs(range)) SetPreset(settings, group, n, unit, Ordered(range));
    });
    for (int group = 0; group < 3; ++group) SetTickPreset(settings, group, ticks_[static_cast<std::size_t>(group)]);
}

GridChoice GridChoice::From(const Settings& settings)
{
    GridChoice grid;
    grid.x_inc_ppm = settings.grid_x_inc;
    grid.x_inc_hz = settings.grid_x_inc_hz;
    grid.y_inc = settings.grid_y_inc;
    grid.x_auto = settings.grid_x_auto != 0;
    grid.y_auto = settings.grid_y_auto != 0;
    grid.shown = settings.display_grid != 0;
    grid.width = settings.grid_width;
    return grid;
}

GridChoice GridChoice::From(const forms::Values& values)
{
    GridChoice grid;
    grid.x_inc_ppm = forms::Number(values, "X INC", grid.x_inc_ppm);
    grid.x_inc_hz = forms::Number(values, "X INC HZ", grid.x_inc_hz);
    grid.y_inc = forms::Number(values, "Y INC", grid.y_inc);
    grid.x_auto = forms::Text(values, "X AUTO") == "1";
    grid.y_auto = forms::Text(values, "Y AUTO") == "1";
    grid.shown = forms::Text(values, "SHOWN") == "1";
    grid.width = forms::Number(values, "WIDTH", grid.width);
    return grid;
}

forms::Values GridChoice::ToValues() const
{
    return {{"X INC", forms::NumberValue(x_inc_ppm)}, {"X INC HZ", forms::NumberValue(x_inc_hz)},
            {"Y INC", forms::NumberValue(y_inc)},     {"X AUTO", forms::Switch(x_auto)},
            {"Y AUTO", forms::Switch(y_auto)},        {"SHOWN", forms::Switch(shown)},
            {"WIDTH", forms::NumberValue(width)}};
}

Status GridChoice::Apply(Settings& settings) const
{
    for (const double step : {x_inc_ppm, x_inc_hz, y_inc, width})
        if (!std::isfinite(step) || step <= 0)
            return Error{ErrorCode::bad_value, "Command1/F33", "A step of the grid must be above 0"};
    settings.grid_x_inc = x_inc_ppm;
    settings.grid_x_inc_hz = x_inc_hz;
    settings.grid_y_inc = y_inc;
    settings.grid_x_auto = x_auto ? 1 : 0;
    settings.grid_y_auto = y_auto ? 1 : 0;
    settings.display_grid = shown ? 1 : 0;
    settings.grid_width = width;
    return {};
}

void UpdateShownHz(GlobalBlock& g)
{
    const ParamBlock& par = g.Slots[0].par;
    const double hz = par.OBFRQ0PPMRead != 0 ? par.OBFRQ0PPMRead : par.OBFRQ0PPM;
    g.ShownHzLeft = static_cast<double>(g.ViewLeft) * hz;
    g.ShownHzRight = static_cast<double>(g.ViewRight) * hz;
}

ShownRange AxisEnds(const DataSet& set)
{
    const auto points = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    if (points == 0 || set.spec.XAxis.size() < points) return {};
    return Ordered({set.spec.XAxis[0], set.spec.XAxis[points - 1]});
}

double FullScale(const DataSet& set)
{
    const ParamBlock& par = set.par;
    const double magnitude = std::abs(static_cast<double>(par.DispLeft));
    const double value = std::max(std::abs(static_cast<double>(par.DataMax)), -static_cast<double>(par.DataMin));
    const bool as_read = par.SMODE == 1 && par.DataFromFile == 1;
    const double first = as_read ? value : magnitude;
    const double top = first > 0 ? first : std::max(magnitude, value);
    const double fill = par.YFill > 0 ? static_cast<double>(par.YFill) : kReadFill;
    return top > 0 && std::isfinite(top) ? top / fill : 1.0;
}

namespace {

/// The share that the transform or the read gives: rows of an array share the height.
double InitialFill(const DataSet& set)
{
    const bool stacked = set.RowCount > 1 && set.par.DataFromFile == 0;
    return stacked ? kReadFill / set.RowCount : kReadFill;
}

} // namespace

double Magnification(const DataSet& set)
{
    const double fill = set.par.YFill > 0 ? static_cast<double>(set.par.YFill) : kReadFill;
    return fill / InitialFill(set);
}

void SetMagnification(DataSet& set, double magnification)
{
    if (!std::isfinite(magnification) || magnification <= 0) return;
    // Far beyond any use, and well inside single precision.
    const double limited = std::clamp(magnification, 1e-6, 1e9);
    set.par.YFill = static_cast<float>(limited * InitialFill(set));
}

void BasicYMag_Up(DataSet& set)
{
    SetMagnification(set, Magnification(set) * kMagnificationStep);
}

void BasicYMag_Down(DataSet& set)
{
    SetMagnification(set, Magnification(set) / kMagnificationStep);
}

} // namespace nmr
