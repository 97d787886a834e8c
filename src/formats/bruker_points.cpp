// Points of the Bruker family: number types, byte orders, FID and spectrum.

#include "core/numbers.h"
#include "core/text.h"
#include "formats/bruker.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

constexpr double kMaxValue = 1e30; // nothing an instrument writes comes near
constexpr double kMeanShare = 0.4; // of the FID, at its end, taken for the base line
constexpr float kSilence = 1e-10F; // of the largest value: what rounding leaves of a constant
constexpr float kFidScale = 0.1F;  // intensity factor of all FIDs of this family
constexpr int kMaxExponent = 60;   // of NC_proc, up or down: the squares of values stay finite
constexpr double kMaxShift = 1e9;  // ppm
constexpr std::size_t kSmallestValue = 4;
constexpr std::int16_t kOneChannel = 1, kSequential = 3; // AcqMode
constexpr std::size_t kBlock = 1024;                     // bytes; instruments fill the last block of a file with zeros

std::size_t BytesOf(BrukerNumber number)
{
    return number == BrukerNumber::float64 ? 8 : 4;
}

/// Small integers are denormal floats and negative ones are no numbers at all, so hardly any word of a
/// measured integer file looks like a float of ordinary size.
bool LooksLikeFloats(ByteSpan file, bool big_endian)
{
    const std::size_t words = file.size() / 4;
    std::size_t plausible = 0, zeros = 0;
    for (std::size_t i = 0; i < words; ++i) {
        const double size = std::fabs(big_endian ? GetSingleBE(file, 4 * i) : GetSingleLE(file, 4 * i));
        if (size == 0)
            ++zeros;
        else if (size > 1e-15 && size < 1e20)
            ++plausible;
    }
    return plausible > 0 && plausible >= (words - zeros) - (words - zeros) / 50;
}

/// One-channel data hold only real values, taken at twice the rate of the pairs of all other modes.
int ValuesOfPoint(const ParamBlock& par)
{
    return par.AcqMode == kOneChannel ? 1 : 2;
}

/// Names the parameter with what the file says of it.
Error ParameterError(ErrorCode code, std::string_view where, const BrukerParameters& parameters, std::string_view name)
{
    const auto text = parameters.Text(name);
    const std::string_view fault = code == ErrorCode::too_large ? "too many points" : "no usable value";
    return {code, std::string(where),
            text ? fmt::format("{} is \"{}\": {}", name, Left(*text, 40), fault) : fmt::format("{} is missing", name)};
}

std::int32_t PowerOfTwoFrom(std::int32_t points)
{
    std::int32_t power = 1;
    while (power < points) power *= 2;
    return power;
}

bool IsFrequency(double mhz)
{
    return mhz >= 1e-4 && mhz < 1e5;
}
bool IsWidth(double hz)
{
    return hz >= 1e-3 && hz < 1e9;
}

/// Values that a file holds beyond `count`, but for those that fill its last block up.
std::uint64_t SurplusValues(ByteSpan file, BrukerCode code, std::uint64_t count)
{
    const std::uint64_t size = BytesOf(code.number), blocks = (count * size + kBlock - 1) / kBlock * kBlock;
    return file.size() < blocks + size ? 0 : file.size() / size - count;
}

/// Stored values of one file; what is missing of `count`, beyond it or damaged is noted.
Result<std::vector<double>> ReadValues(DataSet& set, std::string_view where, std::string_view name, ByteSpan file,
                                       BrukerCode code, std::uint64_t count)
{
    std::uint64_t damaged = 0;
    std::vector<double> values = DecodeBruker(file, code, count, damaged);
    if (values.empty()) return Error{ErrorCode::truncated, std::string(where), fmt::format("{} holds no points", name)};
    if (values.size() < count)
        set.Warnings.push_back(
            fmt::format("{} is cut short: {} of {} values are there, the rest is zero.", name, values.size(), count));
    if (const std::uint64_t surplus = SurplusValues(file, code, count); surplus > 0)
        set.Warnings.push_back(fmt::format("{} is longer than its parameters say: {} values are read, at least {} more "
                                           "are left out.",
                                           name, count, surplus));
    if (damaged > 0)
        set.Warnings.push_back(fmt::format("{} values of {} are no numbers and read as zero.", damaged, name));
    return values;
}

} // namespace

WordKind KindOf(BrukerNumber number)
{
    switch (number) {
    case BrukerNumber::float64:
        return WordKind::float64;
    case BrukerNumber::float32:
        return WordKind::float32;
    case BrukerNumber::int32:
        break;
    }
    return WordKind::int32;
}

std::endian OrderOf(BrukerCode code)
{
    return code.big_endian ? std::endian::big : std::endian::little;
}

BrukerCode FindBrukerCode(const BrukerParameters& parameters, std::string_view type_name, std::string_view order_name,
                          BrukerFamily family, ByteSpan file, std::uint64_t count)
{
    BrukerCode code;
    code.big_endian = parameters.Number(order_name).value_or(0) == 1;
    const double type = parameters.Number(type_name).value_or(0);
    if (parameters.asked_number && file.size() != 8 * count)
        code.number = *parameters.asked_number;
    else if (file.size() == 8 * count || type == 2)
        code.number = BrukerNumber::float64;
    else if (type == 1 || (family == BrukerFamily::flat && LooksLikeFloats(file, code.big_endian)))
        code.number = BrukerNumber::float32;
    return code;
}

bool IsSameNucleus(double zero_ppm_mhz, double observed_mhz)
{
    constexpr double kLargestShift = 0.02;
    return std::fabs(zero_ppm_mhz - observed_mhz) <= kLargestShift * observed_mhz;
}

std::vector<double> DecodeBruker(ByteSpan file, BrukerCode code, std::uint64_t count, std::uint64_t& damaged)
{
    std::vector<double> values(std::min<std::uint64_t>(count, file.size() / BytesOf(code.number)));
    DecodeWords(file, KindOf(code.number), OrderOf(code), values);
    for (double& value : values) {
        if (std::fabs(value) <= kMaxValue) continue; // false for NaN
        value = 0;
        ++damaged;
    }
    return values;
}

Status FillParaBruker(GlobalBlock& g, std::int16_t slot, const BrukerParameters& acqus)
{
    constexpr std::string_view where = "ReadParaBruker/1DDRW";
    ParamBlock& par = g.Slots[static_cast<std::size_t>(slot)].par;
    ApplyBrukerRecords(acqus, BrukerUse::fid, g.nuclides, par);
    const double td = acqus.Number("TD").value_or(0);
    double width = acqus.Number("SW_h").value_or(0);
    const auto refused = [&](ErrorCode code, std::string_view name) {
        return ParameterError(code, where, acqus, name);
    };
    if (!(td >= 2)) return refused(ErrorCode::bad_value, "TD");
    if (!IsFrequency(par.ObsCenter)) return refused(ErrorCode::bad_value, "SFO1");
    if (!IsWidth(width)) return refused(ErrorCode::bad_value, "SW_h");
    if (td > 2.0 * kMaxPoints + 1) return refused(ErrorCode::too_large, "TD");
    par.FIDPoints = static_cast<std::int32_t>(td) / ValuesOfPoint(par);
    if (par.FIDPoints > kMaxPoints) return refused(ErrorCode::too_large, "TD");
    width *= 2.0 / ValuesOfPoint(par);
    par.FREQU = static_cast<float>(width);
    par.POINT = PowerOfTwoFrom(par.FIDPoints);
    par.SMODE = 0;
    if (!IsSameNucleus(par.OBFRQ0PPM, par.ObsCenter)) par.OBFRQ0PPM = par.ObsCenter;
    par.FileRefMHz = par.OBFRQ0PPM;
    par.GroupDelay = BrukerGroupDelay(acqus);
    par.ACQTM = static_cast<float>(par.FIDPoints / width);
    return {};
}

namespace {

double Mean(const std::vector<double>& values, std::size_t first, std::size_t step)
{
    double sum = 0;
    std::size_t count = 0;
    for (std::size_t i = first; i < values.size(); i += step, ++count) sum += values[i];
    return count == 0 ? 0 : sum / static_cast<double>(count);
}

/// The largest absolute value is found before the mean is taken off, and the mean comes from measured
/// points alone: what fills the row up stays exactly 0.
void StoreFid(std::vector<double> values, std::size_t parts, double sign, SpecBuffer& spec)
{
    const std::size_t present = values.size() / parts;
    values.resize(present * parts);
    const std::size_t tail = parts * static_cast<std::size_t>(kMeanShare * static_cast<double>(present));
    double largest = 0;
    for (double value : values) largest = std::max(largest, std::fabs(value));
    if (largest == 0) return;
    for (std::size_t part = 0; part < parts; ++part) {
        const double mean = Mean(values, values.size() - tail + part, parts);
        const double divisor = part == 0 ? largest : sign * largest; // its inverse may not be finite
        auto row = part == 0 ? spec.DataRe[0] : spec.DataIm[0];
        for (std::size_t i = 0; i < present; ++i)
            row[i] = static_cast<float>((values[parts * i + part] - mean) / divisor);
    }
}

} // namespace

Status ReadDataBruker(GlobalBlock& g, std::int16_t slot, const BrukerParameters& acqus, const BrukerParameters* procs,
                      BrukerFamily family, ByteSpan fid)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    const std::size_t parts = static_cast<std::size_t>(ValuesOfPoint(set.par));
    const std::uint64_t count = static_cast<std::uint64_t>(set.par.FIDPoints) * parts;
    const auto td = static_cast<std::uint64_t>(acqus.Number("TD").value_or(0));
    const BrukerCode code = FindBrukerCode(acqus, "DTYPA", "BYTORDA", family, fid, td);
    const auto values = ReadValues(set, "ReadDataBruker/1DDRW", "fid", fid, code, count);
    if (!values) return values.error();
    set.RowCount = 1;
    if (Status made = AllocateSpecBuffer(g, set.par.POINT, slot); !made) return made;
    const bool reversed = procs != nullptr && EqualsNoCase(procs->Text("REVERSE").value_or("no"), "yes");
    StoreFid(*values, parts, reversed ? -1 : 1, set.spec);
    const auto silent = [](float value) { return std::fabs(value) < kSilence; };
    if (std::ranges::all_of(set.spec.DataRe[0], silent) && std::ranges::all_of(set.spec.DataIm[0], silent))
        set.Warnings.emplace_back("fid holds no signal: all its values are the same.");
    if (parts == 1)
        set.Warnings.emplace_back("The FID has one channel (AQ_mod 0): every line has a mirror image at the other side "
                                  "of the carrier.");
    if (set.par.AcqMode == kSequential)
        set.Warnings.emplace_back("The FID was taken sequentially (AQ_mod 2): its imaginary part, taken half a point "
                                  "later, is moved to the times of the real part.");
    g.DataScale = kFidScale;
    set.par.Limit164 = kFidScale;
    return {};
}

Status FillParaBrukerProcs(GlobalBlock& g, std::int16_t slot, const BrukerParameters& procs)
{
    constexpr std::string_view where = "ReadParaBrukerProcs/1DDRW";
    ParamBlock& par = g.Slots[static_cast<std::size_t>(slot)].par;
    const double points = procs.Number("SI").value_or(0);
    const double mhz = procs.Number("SF").value_or(0);
    const double width = procs.Number("SW_p").value_or(0);
    const auto offset = procs.Number("OFFSET");
    const auto refused = [&](ErrorCode code, std::string_view name) {
        return ParameterError(code, where, procs, name);
    };
    if (!(points >= 1)) return refused(ErrorCode::bad_value, "SI");
    if (!IsFrequency(mhz)) return refused(ErrorCode::bad_value, "SF");
    if (!IsWidth(width)) return refused(ErrorCode::bad_value, "SW_p");
    if (!offset || std::fabs(*offset) > kMaxShift) return refused(ErrorCode::bad_value, "OFFSET");
    if (std::fabs(procs.Number("NC_proc").value_or(0)) > kMaxExponent) return refused(ErrorCode::bad_value, "NC_proc");
    if (points > kMaxPoints) return refused(ErrorCode::too_large, "SI");
    par.POINT = static_cast<std::int32_t>(points);
    par.SMODE = 1;
    par.FREQU = static_cast<float>(width);
    par.RESOL = width / par.POINT;
    par.OBFRQ0PPM = mhz;
    par.FileRefMHz = mhz;
    par.Resolution2 = -width / mhz / par.POINT;
    par.RefX = par.SMEXR = static_cast<float>(*offset);
    par.SMTMS = 0;
    if (!IsFrequency(par.ObsCenter)) { // no acqus at hand: the middle of the axis
        par.ObsCenter = mhz * (1 + 1e-6 * (*offset + 0.5 * par.POINT * par.Resolution2));
        par.OBFRQ = static_cast<float>(par.ObsCenter);
    }
    return {};
}

namespace {

/// One part of the spectrum into its row; 2^NC_proc belongs to integers only.
Status StorePart(DataSet& set, const BrukerParameters& procs, BrukerFamily family, std::string_view name, ByteSpan file,
                 std::span<float> row)
{
    const auto count = static_cast<std::uint64_t>(set.par.POINT);
    const BrukerCode code = FindBrukerCode(procs, "DTYPP", "BYTORDP", family, file, count);
    const auto values = ReadValues(set, "ReadDataBrukerProc/1DDRW", name, file, code, count);
    if (!values) return values.error();
    const bool integers = code.number == BrukerNumber::int32;
    const int exponent = integers ? static_cast<int>(procs.Number("NC_proc").value_or(0)) : 0;
    std::ranges::transform(*values, row.begin(),
                           [&](double value) { return static_cast<float>(std::ldexp(value, exponent)); });
    return {};
}

} // namespace

Status ReadDataBrukerProc(GlobalBlock& g, std::int16_t slot, const BrukerParameters& procs, BrukerFamily family,
                          ByteSpan re, ByteSpan im)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    if (re.size() < kSmallestValue)
        return Error{ErrorCode::truncated, "ReadDataBrukerProc/1DDRW", "1r holds no points"};
    set.RowCount = 1;
    if (Status made = AllocateSpecBuffer(g, set.par.POINT, slot); !made) return made;
    if (Status read = StorePart(set, procs, family, "1r", re, set.spec.DataRe[0]); !read) return read;
    if (im.size() < kSmallestValue)
        set.Warnings.emplace_back("There is no imaginary part (1i): the phase can't be changed.");
    else if (Status read = StorePart(set, procs, family, "1i", im, set.spec.DataIm[0]); !read)
        return read;
    const double first = *procs.Number("OFFSET");
    for (std::size_t i = 0; i < set.spec.XAxis.size(); ++i)
        set.spec.XAxis[i] = first + static_cast<double>(i) * set.par.Resolution2;
    CopyDataToSource(set);
    FillDisplayLimits(set);
    return {};
}

} // namespace nmr
