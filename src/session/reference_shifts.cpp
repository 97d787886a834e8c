#include "session/reference_shifts.h"

#include "core/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nmr {
namespace {

constexpr ReferenceShift kShifts[] = {
    {"TMS", "Si(CH3)4", "1H", 0.00},        {"TMS", "Si(CH3)4", "13C", 0.00},
    {"DSS", "Si(CH3)3", "1H", 0.00},        {"DSS", "Si(CH3)3", "13C", 0.00},
    {"CDCl3", "CHCl3", "1H", 7.26},         {"CDCl3", "CDCl3", "13C", 77.16},
    {"DMSO-d6", "CHD2", "1H", 2.50},        {"DMSO-d6", "CD3", "13C", 39.52},
    {"Acetone-d6", "CHD2", "1H", 2.05},     {"Acetone-d6", "CD3", "13C", 29.84},
    {"Acetone-d6", "CO", "13C", 206.26},    {"CD3OD", "CHD2", "1H", 3.31},
    {"CD3OD", "CD3", "13C", 49.00},         {"D2O", "HDO", "1H", 4.79},
    {"CD3CN", "CHD2", "1H", 1.94},          {"CD3CN", "CD3", "13C", 1.32},
    {"CD3CN", "CN", "13C", 118.26},         {"C6D6", "C6HD5", "1H", 7.16},
    {"C6D6", "C6D6", "13C", 128.06},        {"CD2Cl2", "CHDCl2", "1H", 5.32},
    {"CD2Cl2", "CD2Cl2", "13C", 53.84},     {"Toluene-d8", "CHD2", "1H", 2.08},
    {"Toluene-d8", "CD3", "13C", 20.43},    {"Toluene-d8", "C(ipso)", "13C", 137.48},
    {"THF-d8", "C(2)HD", "1H", 3.58},       {"THF-d8", "C(3)HD", "1H", 1.72},
    {"THF-d8", "C(2)", "13C", 67.21},       {"THF-d8", "C(3)", "13C", 25.31},
    {"Methanol in D2O", "CH3", "1H", 3.34}, {"Methanol in D2O", "CH3", "13C", 49.50},
    {"Dioxane in D2O", "CH2", "1H", 3.75},  {"Dioxane in D2O", "CH2", "13C", 67.19},
    {"Acetone in D2O", "CH3", "1H", 2.22},  {"Acetone in D2O", "CH3", "13C", 30.89},
};

/// What files call a solvent, by a part of the name.
constexpr std::array<std::pair<std::string_view, std::string_view>, 18> kNames{{{"cdcl3", "CDCl3"},
                                                                                {"chloroform", "CDCl3"},
                                                                                {"dmso", "DMSO-d6"},
                                                                                {"acetone", "Acetone-d6"},
                                                                                {"meod", "CD3OD"},
                                                                                {"cd3od", "CD3OD"},
                                                                                {"methanol", "CD3OD"},
                                                                                {"d2o", "D2O"},
                                                                                {"cd3cn", "CD3CN"},
                                                                                {"acetonitrile", "CD3CN"},
                                                                                {"c6d6", "C6D6"},
                                                                                {"benzene", "C6D6"},
                                                                                {"cd2cl2", "CD2Cl2"},
                                                                                {"dichloromethane", "CD2Cl2"},
                                                                                {"methylene", "CD2Cl2"},
                                                                                {"tol", "Toluene-d8"},
                                                                                {"thf", "THF-d8"},
                                                                                {"tetrahydrofuran", "THF-d8"}}};

/// Of the solvent that a text speaks of; empty for one that is not known.
std::string_view KnownSolvent(std::string_view text)
{
    for (const auto& [part, name] : kNames)
        if (ContainsNoCase(text, part)) return name;
    return {};
}

} // namespace

std::span<const ReferenceShift> ReferenceShifts()
{
    return kShifts;
}

std::vector<ReferenceShift> ReferenceShiftsFor(std::string_view nucleus, std::string_view solvent)
{
    const std::string_view own = KnownSolvent(solvent);
    std::vector<ReferenceShift> rows;
    std::ranges::copy_if(kShifts, std::back_inserter(rows),
                         [&](const ReferenceShift& r) { return r.nucleus == nucleus; });
    std::stable_partition(rows.begin(), rows.end(),
                          [&](const ReferenceShift& r) { return !own.empty() && r.compound.ends_with(own); });
    return rows;
}

std::string UsualSolventName(std::string_view solvent)
{
    const std::string_view text = Trim(solvent), known = KnownSolvent(text);
    const bool mixture = text.find_first_of("+/:, ") != std::string_view::npos;
    return std::string(known.empty() || mixture ? text : known);
}

} // namespace nmr
