#include "formats/cmx.h"

#include "core/dates.h"
#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/param_table.h"
#include "core/text.h"
#include "formats/fid_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>

namespace nmr {

namespace {

constexpr std::string_view kParaWhere = "ReadParaCMX/1DDRW";
constexpr std::string_view kDataWhere = "ReadDataCMX/1DDRW";
constexpr std::string_view kInstrument = "CMX***"; // the files do not name one
constexpr double kSameNucleus = 0.01;
constexpr std::uint64_t kMaxTextFile = std::uint64_t{4} << 20;
constexpr std::uint64_t kMaxDataFile = std::uint64_t{8} * kMaxPoints * kMaxRows;
constexpr int kPpmUnit = 1, kKilohertzUnit = 2; // rmvunits1
constexpr int kFloatData = 1;                   // datatype

std::optional<double> Number(const KeyValues& file, std::string_view key)
{
    const std::string* value = file.Find(key);
    return value == nullptr ? std::nullopt : ParseCmxNumber(*value);
}

int WholeNumber(const KeyValues& file, std::string_view key)
{
    const double value = Number(file, key).value_or(0);
    return value >= 0 && value <= 2.0 * kMaxPoints ? static_cast<int>(value) : 0;
}

std::string Text(const KeyValues& file, std::string_view key)
{
    const std::string* value = file.Find(key);
    return value == nullptr ? std::string() : *value;
}

struct CmxField {
    std::string_view key;
    double factor; ///< from the unit of the file to that of the field
    ParamMember member;
};

constexpr double kSecondsToMicro = 1e6, kKilo = 1e3;
// The file has seconds throughout, kHz for widths; the fields have microseconds for pulses and dead time.
const CmxField kFields[] = {
    {"PPFN", 1, &ParamBlock::PulseProg},
    {"PPFN", 1, &ParamBlock::EXMOD},
    {"SPEED", kKilo, &ParamBlock::CSPED},
    {"RG", 1, &ParamBlock::RGAIN},
    {"TEMP", 1, &ParamBlock::CTEMP},
    {"NA", 1, &ParamBlock::TIMES},
    {"DP", 1, &ParamBlock::DUMMY},
    {"RD", kSecondsToMicro, &ParamBlock::DEADT},
    {"AD", kSecondsToMicro, &ParamBlock::DELAY},
    {"PD", 1, &ParamBlock::PD},
    {"CT", kSecondsToMicro, Element(&ParamBlock::PS, 0)},
    {"AQTM", 1, &ParamBlock::ACQTM},
    {"RB", kKilo, &ParamBlock::FILTR},
    {"PW90H", kSecondsToMicro, Element(&ParamBlock::PW, 1)},
    {"PW90X", kSecondsToMicro, Element(&ParamBlock::PW, 0)},
};

void Store(std::string& field, const std::string& value, double)
{
    if (!value.empty()) field = value;
}

template <class T>
void Store(T& field, double value, double factor)
{
    const double limit = static_cast<double>(std::numeric_limits<T>::max());
    const double scaled = std::clamp(value * factor, -limit, limit);
    if constexpr (std::is_integral_v<T>)
        field = static_cast<T>(RoundHalfEven(scaled));
    else
        field = static_cast<T>(scaled);
}

template <class T>
void Store(T& field, const std::string& value, double factor)
{
    if (const auto number = ParseCmxNumber(value)) Store(field, *number, factor);
}

/// Frequency of a channel, MHz; 0 when it is not told.
double ChannelMHz(const KeyValues& acq, std::string_view channel)
{
    const auto number = Number(acq, channel);
    if (!number || !(*number >= 1 && *number <= 9)) return 0;
    return Number(acq, fmt::format("sf{}", static_cast<int>(*number))).value_or(0);
}

/// Width in Hz: from the dwell time of a complex point, else from sw, which is in kHz.
double WidthHz(const KeyValues& acq)
{
    const double dwell = Number(acq, "dw").value_or(0);
    return dwell > 0 ? 1 / dwell : kKilo * Number(acq, "sw").value_or(0);
}

/// "mm/dd/yy" or "mm/dd/yyyy" and "hh:mm:ss"; years of two digits below 80 are of this century.
std::optional<DateTime> ParseDate(const std::string& date, const std::string& time)
{
    const std::vector<std::string> parts = Split(date, '/');
    if (parts.size() != 3) return std::nullopt;
    const auto month = ParseInteger(parts[0]), day = ParseInteger(parts[1]);
    auto year = ParseInteger(parts[2]);
    if (!month || !day || !year || *month < 1 || *month > 12 || *day < 1 || *day > 31 || *year < 0 || *year > 9999)
        return std::nullopt;
    if (*year < 100) *year += *year < 80 ? 2000 : 1900;
    const std::string text = fmt::format("{:04}/{:02}/{:02}", *year, *month, *day);
    const auto whole = Parse_DateTime(text + " " + time);
    return whole ? whole : Parse_DateTime(text);
}

} // namespace

std::optional<double> ParseCmxNumber(std::string_view text)
{
    constexpr std::pair<char, double> kUnits[] = {{'s', 1}, {'m', 1e-3}, {'u', 1e-6}, {'n', 1e-9}, {'k', 1024}};
    text = Trim(text);
    if (text.starts_with("0x") || text.starts_with("0X")) {
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(text.data() + 2, text.data() + text.size(), value, 16);
        if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
        return static_cast<double>(value);
    }
    double factor = 1;
    for (const auto& [letter, scale] : kUnits) {
        if (text.empty() || text.back() != letter) continue;
        factor = scale;
        text.remove_suffix(1);
        break;
    }
    const auto number = ParseNumber(text);
    if (!number || !std::isfinite(*number * factor)) return std::nullopt;
    return *number * factor;
}

Status ReadParaCMX(GlobalBlock& g, std::int16_t slot, const CmxFiles& files)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    ParamBlock& par = set.par;
    par.Instrument = kInstrument;
    for (const CmxField& field : kFields)
        if (const std::string* value = files.acq.Find(field.key))
            std::visit([&](auto member) { Store(FieldOf(par, member), *value, field.factor); }, field.member);
    const double mhz = ChannelMHz(files.acq, "ch1"), width = WidthHz(files.acq);
    if (!(mhz > 0 && mhz < 1e5) || !(width > 0 && width < 1e9))
        return Error{ErrorCode::bad_value, std::string(kParaWhere),
                     fmt::format("the observe frequency is {} MHz, the width {} Hz", mhz, width)};
    par.ObsCenter = par.OBFRQ0PPM = mhz;
    par.OBFRQ = static_cast<float>(mhz);
    par.FREQU = static_cast<float>(width);
    par.IRFRQ = static_cast<float>(std::clamp(ChannelMHz(files.acq, "ch2"), 0.0, 1e5));
    const std::string guess = Nucleus_From_Frequency(mhz);
    par.OBNUC = guess.empty() ? "??" : guess;
    set.Warnings.push_back("The files name no nucleus" + (guess.empty() ? "." : ": taken for " + guess + "."));
    return {};
}

void ReadParaCMX2(ParamBlock& par, const KeyValues& acq_2)
{
    Store(par.SCANS, Text(acq_2, "AC"), 1);
    auto when = ParseDate(Text(acq_2, "END_DATE"), Text(acq_2, "END_TIME"));
    if (!when) when = ParseDate(Text(acq_2, "DATE"), Text(acq_2, "TIME"));
    if (!when) return;
    par.DateSerial = when->serial;
    par.TimeOfDay = static_cast<float>(when->fraction_of_day);
    par.DATIM = FormatDate("dd/mmm/yyyy hh:nn:ss", *when);
}

void ReadParaCMXProc(DataSet& set, const KeyValues& proc)
{
    ParamBlock& par = set.par;
    par.ExpTitle = par.COMNT = Text(proc, "COM");
    par.EXPCM = Text(proc, "COM_B");
    par.ExpComment2 = Text(proc, "COM_C");
    // The reference: an absolute frequency, and the value that the axis has there.
    const double at = Number(proc, "rmp1").value_or(0), value = Number(proc, "rmv1").value_or(0);
    const int unit = WholeNumber(proc, "rmvunits1");
    const double zero = unit == kPpmUnit ? at / (1 + value * 1e-6) : unit == kKilohertzUnit ? at - value * 1e-3 : 0;
    if (zero > 0 && std::fabs(zero - par.ObsCenter) <= kSameNucleus * par.ObsCenter)
        par.FileRefMHz = par.OBFRQ0PPM = zero;
    else
        set.Warnings.emplace_back("The files give no reference.");
    const int shift = WholeNumber(proc, "ds_num1");
    if (shift < par.FIDPoints / 2) par.FIDShift = shift;
}

namespace {

/// A dimension of an array: the names that step together in it.
struct CmxDimension {
    std::vector<std::string> names;
    std::size_t count = 1;
};

/// By their numbers; empty when the run used no array.
std::map<int, CmxDimension> Dimensions(const CmxFiles& files)
{
    constexpr std::string_view kCount = "array_num_values_";
    constexpr std::size_t kMostNames = 64; // each is looked up in the whole file
    std::map<int, CmxDimension> dimensions;
    if (WholeNumber(files.acq_2, "use_array") != 1) return dimensions;
    std::size_t names = 0;
    for (const auto& [key, value] : files.acq.lines()) {
        if (!key.starts_with(kCount) || ++names > kMostNames) continue;
        const std::string name = key.substr(kCount.size());
        const double count = ParseCmxNumber(value).value_or(0);
        if (!(count >= 1)) continue;
        CmxDimension& dimension = dimensions[WholeNumber(files.acq, "array_dim_" + name)];
        dimension.names.push_back(name);
        dimension.count = std::max(dimension.count, static_cast<std::size_t>(std::min(count, 1e6)));
    }
    return dimensions;
}

std::uint64_t RowsOf(const std::map<int, CmxDimension>& dimensions)
{
    std::uint64_t rows = 1;
    for (const auto& [number, dimension] : dimensions) rows = std::min<std::uint64_t>(rows * dimension.count, 1U << 30);
    return rows;
}

/// Values of the first name of a dimension over the rows; the lowest dimension varies fastest.
void StoreRowValues(const CmxFiles& files, const CmxDimension& dimension, std::size_t stride, std::size_t rows,
                    std::array<float, 128>& values)
{
    for (std::size_t row = 0; row < std::min(rows, values.size()); ++row) {
        const std::size_t index = row / stride % dimension.count;
        const auto number = Number(files.acq, fmt::format("{}[{}]", dimension.names.front(), index));
        Store(values[row], number.value_or(static_cast<double>(index + 1)), 1);
    }
}

void ApplyArray(const CmxFiles& files, const std::map<int, CmxDimension>& dimensions, DataSet& set)
{
    set.par.RowCountCopy = set.RowCount;
    std::size_t stride = 1;
    const auto rows = static_cast<std::size_t>(set.RowCount);
    for (const auto& [number, dimension] : dimensions) {
        if (stride == 1) {
            StoreRowValues(files, dimension, stride, rows, set.RowValueA);
            set.RowParamName = set.RowHeading = dimension.names.front();
        } else {
            StoreRowValues(files, dimension, stride, rows, set.RowValueB);
        }
        stride *= dimension.count;
        if (stride >= rows) return;
    }
}

/// Complex points of a row: al, unless the file has the length of a zero-filled one.
std::uint64_t PointsOf(const CmxFiles& files, std::uint64_t rows, std::uint64_t size)
{
    const auto al = static_cast<std::uint64_t>(WholeNumber(files.acq, "al"));
    const auto filled = static_cast<std::uint64_t>(WholeNumber(files.proc, "current_size1"));
    return al == 0 || (size != 8 * al * rows && size == 8 * filled * rows) ? filled : al;
}

Status CheckCounts(const CmxFiles& files, std::uint64_t rows, std::uint64_t points, std::uint64_t size)
{
    if (rows == 1 && WholeNumber(files.acq, "al2") > 1)
        return Error{ErrorCode::two_dimensional, std::string(kDataWhere), "rows of two-dimensional data"};
    if (points < 1) return Error{ErrorCode::bad_value, std::string(kDataWhere), "the files give no number of points"};
    if (rows > static_cast<std::uint64_t>(kMaxRows) || points > static_cast<std::uint64_t>(kMaxPoints))
        return Error{ErrorCode::too_large, std::string(kDataWhere), fmt::format("{} points in {} rows", points, rows)};
    if (size < 4 * points * rows + 4)
        return Error{ErrorCode::truncated, std::string(kDataWhere), "data ends before the imaginary values"};
    if (WholeNumber(files.proc, "domain1") != 0)
        return Error{ErrorCode::unsupported, std::string(kDataWhere),
                     "Varian CMX: spectra of this family can't be read, only FIDs"};
    return {};
}

void WarnOfCount(DataSet& set, std::uint64_t held, std::uint64_t wanted)
{
    if (held < wanted)
        set.Warnings.push_back(
            fmt::format("data is cut short: {} of {} values are there, the rest is zero.", held, wanted));
    if (held > wanted) set.Warnings.push_back(fmt::format("data holds {} values, {} are read.", held, wanted));
}

} // namespace

Status ReadDataCMX(GlobalBlock& g, std::int16_t slot, const CmxFiles& files, ByteSpan data)
{
    const std::map<int, CmxDimension> dimensions = Dimensions(files);
    const std::uint64_t rows = RowsOf(dimensions), points = PointsOf(files, rows, data.size());
    if (Status counts = CheckCounts(files, rows, points, data.size()); !counts) return counts;
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    if (WholeNumber(files.acq, "al") == 0)
        set.Warnings.push_back(fmt::format("acq gives no number of points (al): {} by proc.", points));
    set.par.SMODE = 0;
    set.par.POINT = set.par.FIDPoints = static_cast<std::int32_t>(points);
    set.RowCount = static_cast<std::int32_t>(rows);
    if (Status made = AllocateSpecBuffer(g, set.par.POINT, slot); !made) return made;
    const std::uint64_t values = data.size() / 4;
    WarnOfCount(set, values, 2 * points * rows);
    const bool floats = WholeNumber(files.proc, "datatype") == kFloatData;
    const auto value = [&](std::uint64_t index) -> double {
        if (index >= values) return 0;
        const auto offset = static_cast<std::size_t>(4 * index);
        return floats ? static_cast<double>(GetSingleBE(data, offset)) : GetLongBE(data, offset);
    };
    const auto decode = [&](std::size_t row, std::span<double> re, std::span<double> im) {
        for (std::size_t i = 0; i < re.size(); ++i) {
            re[i] = value(row * points + i);
            im[i] = value((rows + row) * points + i);
        }
        return re.size();
    };
    const std::uint64_t damaged =
        StoreFidRows({static_cast<std::size_t>(rows), static_cast<std::size_t>(points), decode}, set.spec);
    if (damaged > 0) set.Warnings.push_back(fmt::format("{} values are no numbers and read as zero.", damaged));
    set.par.RESOL = static_cast<double>(set.par.FREQU) / set.par.POINT;
    if (set.RowCount > 1) ApplyArray(files, dimensions, set);
    return {};
}

namespace {

/// A last line without its end is one that was cut, and with it perhaps others.
Result<KeyValues> ReadKeys(DataSet& set, const std::string& folder, std::string_view name, std::string_view where)
{
    const auto path = FindInFolder(folder, name);
    if (!path) return Error{ErrorCode::not_found, std::string(where), fmt::format("there is no {}", name)};
    const auto bytes = ReadWholeFile(path->string(), kMaxTextFile);
    if (!bytes) return Error{bytes.error().code, std::string(where), bytes.error().text};
    if (!bytes->empty() && bytes->back() != std::byte{'\n'})
        set.Warnings.push_back(fmt::format("{} ends early: parameters may be missing.", name));
    return KeyValues::Parse(*bytes);
}

/// A file that can be done without.
KeyValues ReadSpareKeys(DataSet& set, const std::string& folder, std::string_view name)
{
    auto keys = ReadKeys(set, folder, name, name);
    if (keys) return std::move(*keys);
    set.Warnings.push_back(fmt::format("{} can't be read: {}.", name, keys.error().text));
    return {};
}

} // namespace

Status ReadCmx(const ReadRequest& request)
{
    DataSet& set = request.g.Slots[static_cast<std::size_t>(request.slot)];
    const std::string& folder = request.type.directory;
    auto acq = ReadKeys(set, folder, "acq", kParaWhere);
    if (!acq) return acq.error();
    const CmxFiles files{std::move(*acq), ReadSpareKeys(set, folder, "acq_2"), ReadSpareKeys(set, folder, "proc")};
    if (Status para = ReadParaCMX(request.g, request.slot, files); !para) return para;
    const auto path = FindInFolder(folder, "data");
    if (!path) return Error{ErrorCode::not_found, std::string(kDataWhere), "there is no data"};
    const auto bytes = ReadWholeFile(path->string(), kMaxDataFile);
    if (!bytes) return Error{bytes.error().code, std::string(kDataWhere), bytes.error().text};
    if (Status read = ReadDataCMX(request.g, request.slot, files, *bytes); !read) return read;
    ReadParaCMX2(set.par, files.acq_2);
    ReadParaCMXProc(set, files.proc);
    return {};
}

} // namespace nmr
