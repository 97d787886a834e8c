// Where the points of a JCAMP-DX table stand.

#include "core/text.h"
#include "formats/jcamp.h"

#include <fmt/format.h>

#include <cmath>

namespace nmr {

namespace {

constexpr double kSameNucleus = 0.01; // largest relative distance of SF from the observe frequency
constexpr double kSameWidth = 2e-3;   // of SW_p from the width of the table, relative
constexpr double kLargestPpm = 1e9;
constexpr std::string_view kWhere = "ReadDataJCAMP/1DDRW";

bool IsFrequency(double mhz)
{
    return mhz > 0 && mhz < 1e5;
}

/// Hz in one unit of X; 0 for ppm and for units that are told nowhere.
double HertzPerUnit(std::string_view units)
{
    if (units.find("PPM") != units.npos) return 0;
    if (units.find("KHZ") != units.npos) return 1e3;
    if (units.find("MHZ") != units.npos) return 1e6;
    return units.find("HZ") != units.npos || units.find("HERTZ") != units.npos ? 1 : 0;
}

double SecondsPerUnit(std::string_view units)
{
    if (units.find("MICRO") != units.npos || units.find("USEC") != units.npos || units == "US") return 1e-6;
    if (units.find("MILLI") != units.npos || units.find("MSEC") != units.npos || units == "MS") return 1e-3;
    return 1;
}

/// Step of X from its ends; from DELTAX where an end is missing. 0 when neither tells it.
double Step(const JcampX& x)
{
    if (x.first && x.last && x.count > 1) {
        const double step = (*x.last - *x.first) / (x.count - 1);
        if (std::isfinite(step) && step != 0) return step;
    }
    return x.delta.value_or(0);
}

double Reading(const BrukerParameters* bruker, std::string_view name)
{
    return bruker == nullptr ? 0 : bruker->Number(name).value_or(0);
}

/// SF of the Bruker block, if it belongs to the observed nucleus.
double BrukerReference(const BrukerParameters* bruker, double center_mhz)
{
    const double mhz = Reading(bruker, "SF");
    if (!IsFrequency(mhz)) return 0;
    return !IsFrequency(center_mhz) || std::fabs(mhz - center_mhz) <= kSameNucleus * center_mhz ? mhz : 0;
}

/// "##.SHIFT REFERENCE= INTERNAL, CDCl3, 1, 15.478": the shift of a point that counts from 1.
struct ShiftReference {
    double point = 0; ///< from 0
    double ppm = 0;
};

std::optional<ShiftReference> FindShiftReference(const JcampBlock& block, std::int32_t count)
{
    // Files of this program count the point in another way.
    if (ContainsNoCase(block.Value("JCAMPDXPROGRAM"), "ACD/")) return std::nullopt;
    std::string_view text = block.Value(".SHIFTREFERENCE");
    if (text.starts_with('(')) text.remove_prefix(1);
    if (text.ends_with(')')) text.remove_suffix(1);
    const std::vector<std::string> fields = SplitColumns(text, 4);
    if (fields.size() < 4) return std::nullopt;
    const auto point = JcampNumber(fields[fields.size() - 2]), ppm = JcampNumber(fields.back());
    if (!point || !ppm || *point < 1 || *point > count || std::fabs(*ppm) > kLargestPpm) return std::nullopt;
    return ShiftReference{*point - 1, *ppm};
}

/// An axis in Hz on its way to ppm: the sign of the step is the direction.
struct HertzAxis {
    double step = 0;  ///< Hz
    double first = 0; ///< Hz, as the file counts them
    double center_mhz = 0;
    std::int32_t count = 0;
    double Width() const { return std::fabs(step) * count; }
};

JcampAxis FromFirstPoint(const HertzAxis& hz, double first_ppm, double mhz0)
{
    JcampAxis axis;
    axis.first_ppm = first_ppm;
    axis.mhz0 = mhz0;
    axis.step_hz = std::fabs(hz.step);
    axis.step_ppm = hz.step / mhz0;
    return axis;
}

/// The first point of a Bruker spectrum is its left edge, at OFFSET.
std::optional<JcampAxis> FromBruker(HertzAxis hz, const BrukerParameters* bruker)
{
    const double mhz = BrukerReference(bruker, hz.center_mhz);
    const auto offset = bruker == nullptr ? std::nullopt : bruker->Number("OFFSET");
    if (mhz == 0 || !offset || std::fabs(*offset) > kLargestPpm) return std::nullopt;
    const double width = Reading(bruker, "SW_p"), points = Reading(bruker, "SI");
    if (width > 0 && points == hz.count && std::fabs(width - hz.Width()) <= kSameWidth * width)
        hz.step = std::copysign(width / points, hz.step);
    JcampAxis axis = FromFirstPoint(hz, *offset, mhz);
    if (axis.step_ppm > 0) axis.first_ppm -= (hz.count - 1) * axis.step_ppm; // turned round on export
    axis.has_reference = true;
    return axis;
}

std::optional<JcampAxis> FromShiftReference(const HertzAxis& hz, const JcampBlock& block)
{
    const auto reference = FindShiftReference(block, hz.count);
    if (!reference) return std::nullopt;
    const double mhz_there = hz.center_mhz + (reference->point - 0.5 * hz.count) * hz.step * 1e-6;
    const double mhz0 = mhz_there / (1 + reference->ppm * 1e-6);
    if (!IsFrequency(mhz0)) return std::nullopt;
    JcampAxis axis = FromFirstPoint(hz, reference->ppm, mhz0);
    axis.first_ppm -= reference->point * axis.step_ppm;
    axis.has_reference = true;
    return axis;
}

/// JEOL programs: the reference point counts from the end of high ppm, and has the shift SMEXR.
std::optional<double> FirstPpmOfJeol(const HertzAxis& hz, const JcampBlock& block)
{
    if (!block.has_jeol || hz.step >= 0) return std::nullopt;
    const auto number = [&](std::string_view key, double fallback) {
        const JcampPrivate* entry = block.Own(key);
        return entry == nullptr ? fallback : JcampNumber(entry->value).value_or(fallback);
    };
    const double index = number("SMTMS", 0), shift = number("SMEXR", 0);
    if (!(index > 0) || index > hz.count) return std::nullopt;
    return shift - index * hz.step / hz.center_mhz;
}

/// Programs that count Hz from the right edge may tell how far 0 ppm is from it.
std::optional<double> FirstPpmOfReferencePoint(const HertzAxis& hz, const JcampBlock& block, double last)
{
    if (last != 0 || hz.step >= 0) return std::nullopt;
    for (const JcampPrivate& entry : block.loose)
        if (EqualsNoCase(entry.key, "REFERENCE_POINT"))
            if (const auto right = JcampNumber(entry.value))
                return (-*right - (hz.count - 1) * hz.step) / hz.center_mhz;
    return std::nullopt;
}

/// Programs that count Hz from 0 ppm divide by the observe frequency: so does every reader of their files.
JcampAxis FromHertz(const HertzAxis& hz, const JcampBlock& block, double last)
{
    JcampAxis axis = FromFirstPoint(hz, hz.first / hz.center_mhz, hz.center_mhz);
    if (const auto told = FirstPpmOfJeol(hz, block))
        axis.first_ppm = *told;
    else if (const auto shifted = FirstPpmOfReferencePoint(hz, block, last))
        axis.first_ppm = *shifted;
    axis.mhz0 = ZeroPpmFrequency(hz.center_mhz, hz.Width(), axis.first_ppm, hz.step);
    return axis;
}

bool IsUsable(const JcampAxis& axis)
{
    return std::isfinite(axis.first_ppm) && std::isfinite(axis.step_ppm) && axis.step_ppm != 0 &&
           std::fabs(axis.first_ppm) < kLargestPpm && std::fabs(axis.step_ppm) < kLargestPpm && IsFrequency(axis.mhz0);
}

} // namespace

double ZeroPpmFrequency(double center_mhz, double width_hz, double first_ppm, double direction)
{
    const double half = std::copysign(0.5 * width_hz * 1e-6, direction);
    return (center_mhz - half) / (first_ppm * 1e-6 + 1);
}

Result<JcampAxis> FindJcampAxis(const JcampBlock& block, const BrukerParameters* bruker, const JcampX& x,
                                double center_mhz, std::vector<std::string>& warnings)
{
    double step = Step(x);
    if (step == 0 && bruker != nullptr && x.count > 0) step = -Reading(bruker, "SW_p") / x.count;
    const Error bad{ErrorCode::bad_value, std::string(kWhere), "The file gives no X axis that could be right"};
    if (!std::isfinite(step) || step == 0 || x.count < 1) return bad;
    const double unit = HertzPerUnit(x.units);
    const bool has_center = IsFrequency(center_mhz);
    JcampAxis axis;
    if (unit == 0) {
        if (x.units.find("PPM") == x.units.npos)
            warnings.push_back(fmt::format("The unit of the axis is \"{}\": it is taken for ppm.", x.units));
        const double mhz = has_center ? center_mhz : 1;
        axis.first_ppm = x.first.value_or(0);
        axis.step_ppm = step;
        axis.step_hz = std::fabs(step) * mhz;
        axis.mhz0 = has_center ? ZeroPpmFrequency(mhz, axis.step_hz * x.count, axis.first_ppm, step) : 1;
    } else {
        const HertzAxis hz{step * unit, x.first.value_or(0) * unit, has_center ? center_mhz : 1, x.count};
        if (const auto from_block = FromBruker(hz, bruker))
            axis = *from_block;
        else if (const auto referenced = has_center ? FromShiftReference(hz, block) : std::nullopt)
            axis = *referenced;
        else if (has_center)
            axis = FromHertz(hz, block, x.last.value_or(1) * unit);
        else
            axis = FromFirstPoint(hz, hz.first, 1);
    }
    if (!has_center && !axis.has_reference)
        warnings.emplace_back("The observe frequency is missing: Hz can't be turned into ppm.");
    if (!IsUsable(axis)) return bad;
    return axis;
}

Result<double> FindDwell(const JcampX& x, const BrukerParameters* bruker)
{
    double dwell = std::fabs(Step(x)) * SecondsPerUnit(x.units);
    if (const double width = Reading(bruker, "SW_h"); dwell == 0 && width > 0) dwell = 1 / width;
    if (!(dwell > 1e-9) || !(dwell < 1e3))
        return Error{ErrorCode::bad_value, std::string(kWhere), "The file gives no time axis that could be right"};
    return dwell;
}

double FidReference(const JcampBlock& block, const BrukerParameters* bruker, double center_mhz, double width_hz,
                    std::int32_t points)
{
    if (const double mhz = BrukerReference(bruker, center_mhz); mhz > 0) return mhz;
    const auto reference = FindShiftReference(block, points);
    if (!reference || !IsFrequency(center_mhz)) return 0;
    // Points of the spectrum count from its left edge.
    const double mhz_there = center_mhz + (0.5 * points - reference->point) * width_hz / points * 1e-6;
    const double mhz0 = mhz_there / (1 + reference->ppm * 1e-6);
    return IsFrequency(mhz0) ? mhz0 : 0;
}

} // namespace nmr
