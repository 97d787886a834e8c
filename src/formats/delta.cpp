// Points of Delta files: layout, FID, spectrum.

#include "formats/delta.h"

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"
#include "formats/delta_fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace nmr {

namespace {

constexpr int kReal = 1, kComplex = 3;    // axis type
constexpr int kFloat64 = 0, kFloat32 = 1; // number type
constexpr double kMaxValue = 1e30;
constexpr double kSameWidth = 0.01;
// Head, parameters and two sections of the largest data set, with room for what stands behind them.
constexpr std::uint64_t kMaxFile = (std::uint64_t{64} << 20) + std::uint64_t{4} * kMaxPoints * 8;

Error Bad(ErrorCode code, std::string text)
{
    return {code, std::string(kDeltaWhere), std::move(text)};
}

/// Numbers of a blank-separated list; empty when one is none.
std::vector<double> Numbers(std::string_view text)
{
    std::vector<double> numbers;
    for (const std::string& word : Split(text, ' ')) {
        if (Trim(word).empty()) continue;
        const auto number = ParseNumber(word);
        if (!number || !(*number >= 1 && *number <= 1e6)) return {};
        numbers.push_back(*number);
    }
    return numbers;
}

std::size_t SectionsOf(const DeltaHeader& header, std::uint64_t section_bytes, std::vector<std::string>& warnings)
{
    if (header.axis_type == kReal) return 1;
    if (header.axis_type == kComplex) return 2;
    const std::size_t sections = header.data_bytes >= 2 * section_bytes ? 2 : 1;
    warnings.push_back(
        fmt::format("The axis type {} is not known: {} section(s) of points are read.", header.axis_type, sections));
    return sections;
}

} // namespace

std::optional<double> DeltaGroupDelay(std::string_view orders, std::string_view factors)
{
    const std::vector<double> order = Numbers(orders), factor = Numbers(factors);
    if (order.empty() || order[0] != static_cast<double>(factor.size()) || order.size() != factor.size() + 1)
        return std::nullopt;
    double delay = 0, product = 1;
    for (std::size_t i = factor.size(); i-- > 0;) {
        product *= factor[i];
        delay += 0.5 * (order[i + 1] - 1) / product;
    }
    return delay;
}

Result<DeltaLayout> FindDeltaLayout(const DeltaHeader& header, std::vector<std::string>& warnings)
{
    DeltaLayout layout;
    const int type = header.number_type >> 6;
    if (type != kFloat64 && type != kFloat32)
        return Bad(ErrorCode::bad_format, fmt::format("numbers of type {} are not known", type));
    layout.value_bytes = type == kFloat32 ? 4 : 8;
    if (header.points < 1) return Bad(ErrorCode::bad_value, "the file holds no points");
    std::uint64_t first = header.first_valid, last = header.last_valid;
    if (first > last || last >= header.points) {
        warnings.push_back(
            fmt::format("Points {} to {} can't be the valid ones of {}: all are read.", first, last, header.points));
        first = 0;
        last = header.points - 1;
    }
    if (last - first + 1 > static_cast<std::uint64_t>(kMaxPoints))
        return Bad(ErrorCode::too_large, fmt::format("{} points", last - first + 1));
    layout.stored = header.points;
    layout.first = static_cast<std::size_t>(first);
    layout.points = static_cast<std::size_t>(last - first + 1);
    layout.start = header.data_start;
    layout.sections = SectionsOf(header, std::uint64_t{header.points} * layout.value_bytes, warnings);
    const std::uint64_t bytes = layout.sections * layout.stored * layout.value_bytes;
    if (header.data_bytes != 0 && header.data_bytes != bytes)
        warnings.push_back(fmt::format("The head gives {} bytes for points that take {}.", header.data_bytes, bytes));
    return layout;
}

namespace {

struct Held {
    std::size_t points = 0; ///< that the file holds of a section
    std::uint64_t damaged = 0;
};

/// The valid points of a section into a row.
Held ReadSection(ByteSpan file, const DeltaLayout& layout, bool little, std::size_t section, std::span<float> row)
{
    Held held;
    const std::uint64_t start =
        layout.start + (std::uint64_t{section} * layout.stored + layout.first) * layout.value_bytes;
    if (start >= file.size()) return held;
    held.points = std::min<std::size_t>(layout.points, (file.size() - start) / layout.value_bytes);
    for (std::size_t i = 0; i < held.points; ++i) {
        const std::size_t at = static_cast<std::size_t>(start) + i * layout.value_bytes;
        const double value = layout.value_bytes == 8 ? (little ? GetDoubleLE(file, at) : GetDoubleBE(file, at))
                                                     : (little ? GetSingleLE(file, at) : GetSingleBE(file, at));
        const bool sound = std::fabs(value) <= kMaxValue; // false for NaN
        row[i] = sound ? static_cast<float>(value) : 0.0F;
        held.damaged += sound ? 0 : 1;
    }
    return held;
}

Status ReadPoints(DataSet& set, ByteSpan file, const DeltaLayout& layout, bool little)
{
    std::size_t held = 0;
    std::uint64_t damaged = 0;
    for (std::size_t section = 0; section < layout.sections; ++section) {
        const Held part =
            ReadSection(file, layout, little, section, section == 0 ? set.spec.DataRe[0] : set.spec.DataIm[0]);
        held += part.points;
        damaged += part.damaged;
    }
    const std::size_t wanted = layout.sections * layout.points;
    if (held == 0) return Bad(ErrorCode::truncated, "the file ends before its points");
    if (held < wanted)
        set.Warnings.push_back(
            fmt::format("The file is cut short: {} of {} values are there, the rest is zero.", held, wanted));
    if (damaged > 0) set.Warnings.push_back(fmt::format("{} values are no numbers and read as zero.", damaged));
    return {};
}

void StoreDelay(const DeltaParameters& parameters, DataSet& set)
{
    const std::string orders = parameters.Text("ORDERS"), factors = parameters.Text("FACTORS");
    if (EqualsNoCase(parameters.Text("DIGITAL_FILTER"), "FALSE") || (orders.empty() && factors.empty())) return;
    const auto delay = DeltaGroupDelay(orders, factors);
    if (delay && *delay < 0.5 * set.par.POINT)
        set.par.GroupDelay = *delay;
    else
        set.Warnings.push_back(
            fmt::format("The filter's orders \"{}\" and factors \"{}\" give no delay.", orders, factors));
}

/// Width in Hz: X_SWEEP, else from the time axis, whose last point stands n-1 dwell times from the first.
double WidthHz(const DeltaHeader& header, const DeltaParameters& parameters, std::size_t points,
               std::vector<std::string>& warnings)
{
    const double told = parameters.Number("X_SWEEP").value_or(0);
    const double span = (header.axis_stop - header.axis_start) * DeltaPrefixFactor(header.axis_prefix);
    const double by_axis = span > 0 && points > 1 ? static_cast<double>(points - 1) / span : 0;
    const auto possible = [](double hz) { return hz > 0 && hz < 1e9; };
    if (!possible(told)) {
        if (!possible(by_axis)) return 0;
        warnings.emplace_back("There is no X_SWEEP: the width follows from the time axis.");
        return by_axis;
    }
    if (possible(by_axis) && std::fabs(by_axis - told) > kSameWidth * told)
        warnings.push_back(fmt::format("X_SWEEP is {:.3f} Hz, the time axis gives {:.3f} Hz.", told, by_axis));
    return told;
}

Status FinishFid(DataSet& set, const DeltaHeader& header, const DeltaParameters& parameters, const DeltaLayout& layout)
{
    ParamBlock& par = set.par;
    par.SMODE = 0;
    par.FIDPoints = par.POINT;
    const double width = WidthHz(header, parameters, layout.points, set.Warnings);
    if (width == 0) return Bad(ErrorCode::bad_value, "the file gives no width");
    par.FREQU = static_cast<float>(width);
    par.RESOL = width / par.POINT;
    if (par.ACQTM == 0) par.ACQTM = static_cast<float>(par.POINT / width);
    if (const auto told = parameters.Number("X_POINTS"); told && *told != par.POINT)
        set.Warnings.push_back(fmt::format("X_POINTS is {}, but the file holds {} points.", *told, par.POINT));
    const auto centre = DeltaCentrePpm(parameters, par.ObsCenter);
    if (!centre) set.Warnings.emplace_back("The file gives no reference (X_OFFSET).");
    par.OBFRQ0PPM = par.ObsCenter / (1 + centre.value_or(0) * 1e-6);
    if (centre) par.FileRefMHz = par.OBFRQ0PPM;
    par.SMEXR = par.RefX = static_cast<float>(centre.value_or(0));
    par.SMTMS = par.POINT / 2;
    StoreDelay(parameters, set);
    if (layout.sections == 1)
        set.Warnings.emplace_back("The FID has one channel: every line has a mirror image at the other side of the "
                                  "carrier.");
    return {};
}

/// Value of the axis in ppm.
double AxisPpm(const DeltaHeader& header, double value, double mhz)
{
    const double base = value * DeltaPrefixFactor(header.axis_prefix);
    return static_cast<DeltaUnit>(header.axis_unit) == DeltaUnit::hertz ? base / mhz : base;
}

void Reverse(SpecBuffer& spec, std::size_t points)
{
    std::ranges::reverse(spec.DataRe[0].first(points));
    std::ranges::reverse(spec.DataIm[0].first(points));
}

Status FinishSpectrum(DataSet& set, const DeltaHeader& header, const DeltaParameters& parameters,
                      const DeltaLayout& layout)
{
    ParamBlock& par = set.par;
    const double mhz = par.ObsCenter;
    double low = AxisPpm(header, header.axis_stop, mhz), high = AxisPpm(header, header.axis_start, mhz);
    if (!(std::fabs(low) < 1e5 && std::fabs(high) < 1e5) || low == high || layout.points < 2)
        return Bad(ErrorCode::bad_value, fmt::format("the axis runs from {} to {} ppm", high, low));
    if (low < high)
        Reverse(set.spec, layout.points);
    else
        std::swap(low, high);
    par.SMODE = 1;
    par.Resolution2 = (high - low) / static_cast<double>(layout.points - 1);
    for (std::size_t i = 0; i < set.spec.XAxis.size(); ++i)
        set.spec.XAxis[i] = low + static_cast<double>(i) * par.Resolution2;
    par.OBFRQ0PPM = par.FileRefMHz = mhz;
    par.FREQU = static_cast<float>(par.Resolution2 * mhz * par.POINT);
    par.RESOL = par.Resolution2 * mhz;
    par.SMEXR = par.RefX = static_cast<float>(low);
    par.SMTMS = 0;
    par.FIDPoints = static_cast<std::int32_t>(
        std::clamp(parameters.Number("X_POINTS").value_or(0), 0.0, static_cast<double>(kMaxPoints)));
    if (layout.sections == 1)
        set.Warnings.emplace_back("The spectrum has no imaginary part: the phase can't be changed.");
    CopyDataToSource(set);
    FillDisplayLimits(set);
    return {};
}

} // namespace

Status ReadDataDelta(GlobalBlock& g, std::int16_t slot, ByteSpan file)
{
    if (!StartsDeltaFile(file)) return Bad(ErrorCode::bad_format, "this is no Delta file, or its head is cut");
    const DeltaHeader header = ReadDeltaHeader(file, file.size());
    if (!header.OneDimensional()) return Bad(ErrorCode::two_dimensional, "2D Data!");
    const DeltaParameters parameters = DeltaParameters::Parse(file, header);
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    if (parameters.cut()) set.Warnings.emplace_back("The file ends inside its parameters.");
    if (Status filled = FillParaDelta(g, slot, header, parameters); !filled) return filled;
    const auto layout = FindDeltaLayout(header, set.Warnings);
    if (!layout) return layout.error();
    set.par.POINT = static_cast<std::int32_t>(layout->points);
    set.RowCount = 1;
    if (Status made = AllocateSpecBuffer(g, set.par.POINT, slot); !made) return made;
    if (Status read = ReadPoints(set, file, *layout, header.little()); !read) return read;
    if (header.IsSpectrum()) return FinishSpectrum(set, header, parameters, *layout);
    set.vendor = FindDeltaProcessing(file, header, set.par.POINT);
    return FinishFid(set, header, parameters, *layout);
}

Status ReadDelta(const ReadRequest& request)
{
    const auto bytes = ReadWholeFile(request.type.path, kMaxFile);
    if (!bytes) return Bad(bytes.error().code, bytes.error().text);
    return ReadDataDelta(request.g, request.slot, *bytes);
}

} // namespace nmr
