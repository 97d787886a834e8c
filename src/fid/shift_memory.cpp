#include "fid/shift_memory.h"

#include "core/text.h"
#include "fid/fft_pipeline.h"
#include "fid/transform_set.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

using ShiftMember = std::int32_t Settings::*;

/// In the order of Settings::fid_shift_delay. Threes: other families, Bruker, Varian, JEOL; in each
/// 13C, 1H, other nuclei.
constexpr std::array<ShiftMember, kFidShiftKeys> kShiftMembers{
    &Settings::fid_shift_c13,   &Settings::fid_shift_h1,      &Settings::fid_shift_x,      &Settings::fid_shft_c13_bru,
    &Settings::fid_shft_h1_bru, &Settings::fid_shft_x_bru,    &Settings::fid_shft_c13_var, &Settings::fid_shft_h1_var,
    &Settings::fid_shft_x_var,  &Settings::fid_shft_c13_jeol, &Settings::fid_shft_h1_jeol, &Settings::fid_shft_x_jeol,
};

std::size_t VendorOf(std::int32_t family)
{
    switch (family) {
    case 4:
    case 8:
        return 1;
    case 6:
    case 9:
        return 2;
    case 0:
    case 1:
    case 2:
    case 3:
    case 5:
        return 3;
    default:
        return 0;
    }
}

/// Index of the setting of the data's family and nucleus.
std::size_t ShiftKey(const GlobalBlock& g, const ParamBlock& par)
{
    constexpr std::array<std::size_t, 3> kColumn{1, 0, 2}; // by NucleusGroup
    return 3 * VendorOf(g.FormatIndex) + kColumn[static_cast<std::size_t>(NucleusGroup(par.OBNUC))];
}

/// Within one point; a negative delay was never stored.
bool SameDelay(double remembered, const ParamBlock& par)
{
    return remembered >= 0.0 && std::abs(remembered - par.GroupDelay) <= 1.0;
}

/// A larger first-order phase than the controls can hold is not started with.
constexpr double kLargestPhase1 = 1800.0;

} // namespace

std::string ExperimentKey(const ParamBlock& par)
{
    const std::string& instrument = par.InstrumentID.empty() ? par.Instrument : par.InstrumentID;
    const std::string& experiment = par.PulseProg.empty() ? par.EXMOD : par.PulseProg;
    std::string key = instrument + "/" + par.OBNUC + "/" + experiment;
    // A row of the settings file ends its key at a semicolon and is one line.
    std::ranges::replace_if(
        key, [](char c) { return c == ';' || static_cast<unsigned char>(c) < ' '; }, '_');
    return std::string(Trim(key));
}

void RememberShift(GlobalBlock& g, const DataSet& set)
{
    const std::string key = ExperimentKey(set.par);
    auto row = std::ranges::find(g.ExpShiftTable, key, &ExpShiftRow::instrument);
    if (row == g.ExpShiftTable.end()) row = std::ranges::find(g.ExpShiftTable, std::string(), &ExpShiftRow::instrument);
    if (row != g.ExpShiftTable.end()) {
        row->instrument = key;
        row->FIDShift = set.par.FIDShift;
        row->ref_center_frq = g.LastObsCenter;
        row->ref_center = g.LastCentre;
        row->instrument_id = set.par.InstrumentID;
        row->group_delay = set.par.GroupDelay;
    }
    const std::size_t key_index = ShiftKey(g, set.par);
    g.settings.*kShiftMembers[key_index] = set.par.FIDShift;
    g.settings.fid_shift_delay[key_index] = set.par.GroupDelay;
}

std::optional<std::int32_t> RememberedShift(const GlobalBlock& g, const DataSet& set)
{
    const auto& table = g.ExpShiftTable;
    const auto row = std::ranges::find(table, ExperimentKey(set.par), &ExpShiftRow::instrument);
    if (row != table.end() && SameDelay(row->group_delay, set.par)) return row->FIDShift;
    const std::size_t key_index = ShiftKey(g, set.par);
    if (SameDelay(g.settings.fid_shift_delay[key_index], set.par)) return g.settings.*kShiftMembers[key_index];
    return std::nullopt;
}

void Set_Initial_Shift(GlobalBlock& g)
{
    DataSet& set = TransformSet(g);
    ParamBlock& par = set.par;
    const bool has_delay = par.GroupDelay > 0.0 && par.GroupDelay < par.POINT;
    const auto remembered = RememberedShift(g, set);
    const bool by_delay = !remembered && has_delay && g.settings.auto_fid_shift == 1;
    if (remembered) par.FIDShift = *remembered;
    if (by_delay) par.FIDShift = RoundHalfEven(par.GroupDelay);
    // What is left of the delay turns the phase by one turn a point over the whole width, and not at
    // all at zero frequency, which therefore is the pivot.
    const double left = has_delay ? (par.GroupDelay - par.FIDShift) * 360.0 : 0.0;
    const bool shifted = remembered.has_value() || by_delay;
    g.Phase0Deg = 0.0F;
    g.Phase1Deg = shifted && std::abs(left) <= kLargestPhase1 ? static_cast<float>(left) : 0.0F;
    g.PivotPoint = std::max(par.POINT / 2 - 1, 0);
    g.P2Point = -1;
}

} // namespace nmr
