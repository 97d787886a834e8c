#include "session/tick_choice.h"

#include "core/nuclear_table.h"

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr int kMostDivisions = 100;
constexpr char kPrefix[] = "TICKS ";
constexpr char kIndividual[] = "TICKS INDIVIDUAL";

struct TickMembers {
    double Settings::*step_ppm;
    std::int32_t Settings::*divisions_ppm;
    double Settings::*step_hz;
    std::int32_t Settings::*divisions_hz;
};
using S = Settings;
constexpr TickMembers kCurrent{&S::axis_tic_step, &S::axis_tic_div, &S::axis_tic_step_2, &S::axis_tic_div_2};
constexpr TickMembers kGroups[] = {
    {&S::ax_tic_step_1h, &S::ax_tic_div_1h, &S::ax_tic_step2_1h, &S::ax_tic_div_2_1h},
    {&S::ax_tic_step_13c, &S::ax_tic_div_13c, &S::ax_tic_step2_13c, &S::ax_tic_div_2_13c},
    {&S::ax_tic_step_other, &S::ax_tic_div_other, &S::ax_tic_step2_other, &S::ax_tic_div_2_other}};

const TickMembers& Group(int group)
{
    return kGroups[std::clamp(group, 0, 2)];
}

TickSteps Get(const Settings& settings, const TickMembers& row)
{
    return {settings.*row.step_ppm, settings.*row.step_hz, settings.*row.divisions_ppm, settings.*row.divisions_hz};
}

void Set(Settings& settings, const TickMembers& row, const TickSteps& ticks)
{
    settings.*row.step_ppm = ticks.step_ppm;
    settings.*row.step_hz = ticks.step_hz;
    settings.*row.divisions_ppm = ticks.divisions_ppm;
    settings.*row.divisions_hz = ticks.divisions_hz;
}

int Divisions(const forms::Values& values, const std::string& key)
{
    return static_cast<int>(std::clamp(forms::Number(values, key), 0.0, kMostDivisions + 1.0));
}

} // namespace

TickSteps CurrentTicks(const Settings& settings)
{
    return Get(settings, kCurrent);
}

TickSteps GetTickPreset(const Settings& settings, int group)
{
    return Get(settings, Group(group));
}

void SetTickPreset(Settings& settings, int group, const TickSteps& ticks)
{
    if (IsUsable(ticks)) Set(settings, Group(group), ticks);
}

void TakeTickPreset(GlobalBlock& g)
{
    Set(g.settings, kCurrent, GetTickPreset(g.settings, NucleusGroup(g.Slots[0].par.OBNUC)));
}

bool IsUsable(const TickSteps& ticks)
{
    const auto step = [](double value) { return std::isfinite(value) && value > 0; };
    const auto count = [](int value) { return value >= 1 && value <= kMostDivisions; };
    return step(ticks.step_ppm) && step(ticks.step_hz) && count(ticks.divisions_ppm) && count(ticks.divisions_hz);
}

void PutTicks(forms::Values& values, const std::string& prefix, const TickSteps& ticks)
{
    values[prefix + "STEP PPM"] = forms::NumberValue(ticks.step_ppm);
    values[prefix + "STEP HZ"] = forms::NumberValue(ticks.step_hz);
    values[prefix + "DIVISIONS PPM"] = forms::NumberValue(ticks.divisions_ppm);
    values[prefix + "DIVISIONS HZ"] = forms::NumberValue(ticks.divisions_hz);
}

TickSteps TakeTicks(const forms::Values& values, const std::string& prefix)
{
    return {forms::Number(values, prefix + "STEP PPM"), forms::Number(values, prefix + "STEP HZ"),
            Divisions(values, prefix + "DIVISIONS PPM"), Divisions(values, prefix + "DIVISIONS HZ")};
}

TickChoice TickChoice::From(const Settings& settings)
{
    return {settings.axis_tic_mode != 0, CurrentTicks(settings)};
}

TickChoice TickChoice::From(const forms::Values& values)
{
    return {forms::Text(values, kIndividual) == "1", TakeTicks(values, kPrefix)};
}

void TickChoice::PutInto(forms::Values& values) const
{
    values[kIndividual] = forms::Switch(individual);
    PutTicks(values, kPrefix, steps);
}

void TickChoice::Apply(Settings& settings) const
{
    if (!IsUsable(steps)) return;
    settings.axis_tic_mode = individual ? 1 : 0;
    Set(settings, kCurrent, steps);
}

} // namespace nmr
