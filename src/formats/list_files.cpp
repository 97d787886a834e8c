// Layouts: one head, one line an entry, fields separated by a comma and a blank. Numbers go by patterns, so
// that columns of old and new files agree to the digit.

#include "formats/list_files.h"

#include "core/file_layer.h"
#include "core/integral_curve.h"
#include "core/list_values.h"
#include "core/numbers.h"
#include "core/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

namespace nmr {

namespace {

constexpr std::string_view kAmplitude = "######0.0###", kHeight = "####0.0##", kNumber = "####0";
constexpr std::string_view kPosition = "#####0.0####";
constexpr std::string_view kBaseWord = "#0.0#####";
constexpr std::uint64_t kLongestList = 64U << 20;

struct UnitRow {
    std::string_view name;      ///< in the column heads
    std::string_view frequency; ///< pattern of a peak's second position
    std::string_view ends;      ///< pattern of a region's ends; empty: by nucleus
    double from_hz;             ///< of the unit; 0: it is no frequency
};
constexpr std::array kUnits{UnitRow{"ppm", "######0.0###", "", 0.0}, UnitRow{"Hz", "######0.0###", "####0.00", 1.0},
                            UnitRow{"kHz", "######0.0##", " ###0.000", 1e-3}};

const UnitRow& RowOf(ListUnit unit)
{
    return kUnits.at(static_cast<std::size_t>(unit));
}
/// Peaks always have a frequency beside their ppm.
const UnitRow& FrequencyRow(ListUnit unit)
{
    return RowOf(unit == ListUnit::khz ? ListUnit::khz : ListUnit::hz);
}

std::size_t ShownRow(const GlobalBlock& g)
{
    return static_cast<std::size_t>(std::max<std::int32_t>(g.CurrentRow, 0));
}

std::string Joined(const std::vector<std::string>& fields, std::string_view between = ", ")
{
    return fmt::format("{}", fmt::join(fields, between));
}

std::vector<std::string> PeakHeads(ListUnit unit)
{
    return {"No", "Position(ppm)", fmt::format("Frequency({})", FrequencyRow(unit).name), "Amplitude", "Height(%)"};
}

std::vector<std::string> PeakFields(const PeakLine& line, ListUnit unit)
{
    const UnitRow& row = FrequencyRow(unit);
    return {FormatNumber(kNumber, line.number), FormatNumber(kPosition, line.ppm),
            FormatNumber(row.frequency, line.hz * row.from_hz), FormatNumber(kAmplitude, line.amplitude),
            FormatNumber(kHeight, line.height_percent)};
}

/// A comment of several lines would look like entries.
std::string OneLine(std::string text)
{
    std::ranges::replace_if(
        text, [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return text;
}

std::string Head(const DataSet& set)
{
    return "File: " + set.par.FileName + "\r\nComment:  " + OneLine(set.par.COMNT) + "\r\n";
}

Status Write(const std::string& path, const std::string& text, std::string_view where)
{
    Status written = WriteWholeFile(path, text);
    if (written) return written;
    Error error = written.error();
    error.where = where;
    return error;
}

std::string IntegralText(const GlobalBlock& g, ListUnit unit)
{
    const DataSet& set = g.Slots[0];
    const UnitRow& row = RowOf(unit);
    const std::string_view by_nucleus = set.par.OBNUC == "1H" ? "##0.0000" : "#0.00000";
    const auto end = [&](double ppm) {
        return row.from_hz == 0.0 ? FormatNumber(by_nucleus, ppm)
                                  : FormatNumber(row.ends, PpmToHz(set, ppm) * row.from_hz);
    };
    std::string text = Head(set);
    text += Joined({"No", "Integral", fmt::format("Start({})", row.name), fmt::format("End({})", row.name), "B0/Ymax",
                    "B1/Ymax"}) +
            "\r\n";
    for (const IntegralLine& line : IntegralLines(set))
        text += Joined({FormatNumber("##0", line.number),
                        line.value ? FormatNumber(" #####0.0", *line.value) : std::string(), end(line.start_ppm),
                        end(line.end_ppm), FormatNumber(kBaseWord, line.b0), FormatNumber(kBaseWord, line.b1)}) +
                "\r\n";
    return text;
}

Error ReadError(ErrorCode code, std::string_view where, std::string text)
{
    return {code, std::string(where), std::move(text)};
}

Result<std::vector<std::string>> ReadLines(const std::string& path, std::string_view where)
{
    auto bytes = ReadWholeFile(path, kLongestList);
    if (!bytes) {
        Error error = bytes.error();
        error.where = where;
        return error;
    }
    const std::string text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    std::vector<std::string> lines = Split(text, '\n');
    for (std::string& line : lines) line = std::string(Trim(line));
    return lines;
}

/// The lines below the one that begins with "No,"; nothing when there is none.
struct Table {
    std::vector<std::string> heads;
    std::vector<std::vector<std::string>> rows;
};
std::optional<Table> TableOf(const std::vector<std::string>& lines)
{
    Table table;
    for (const std::string& line : lines) {
        if (line.empty()) continue;
        std::vector<std::string> fields = Split(line, ',');
        for (std::string& field : fields) field = std::string(Trim(field));
        if (!table.heads.empty())
            table.rows.push_back(std::move(fields));
        else if (fields[0] == "No")
            table.heads = std::move(fields);
    }
    return table.heads.empty() ? std::nullopt : std::optional(std::move(table));
}

/// The numbers of a row from its second field on; nothing when one is none. An empty field counts as `empty`.
std::optional<std::vector<double>> Numbers(const std::vector<std::string>& fields, std::size_t count)
{
    if (fields.size() < count + 1) return std::nullopt;
    std::vector<double> numbers;
    for (std::size_t i = 1; i <= count; ++i) {
        const auto number = fields[i].empty() ? std::optional(0.0) : ParseNumber(fields[i]);
        if (!number) return std::nullopt;
        numbers.push_back(*number);
    }
    return numbers;
}

std::string BadLine(std::size_t number)
{
    return fmt::format("Entry {} of the list is no line of numbers.", number);
}

} // namespace

ListUnit ShownListUnit(const GlobalBlock& g)
{
    return static_cast<ListUnit>(std::clamp(g.settings.axis_mode_ppm, 0, 2));
}

Status WriteDataRed(const std::string& path, const GlobalBlock& g, ListUnit unit)
{
    const DataSet& set = g.Slots[0];
    std::string text = Head(set) + fmt::format("Data No.= {}\r\n", set.Peaks.size()) + Joined(PeakHeads(unit)) + "\r\n";
    for (const PeakLine& line : PeakLines(set, ShownRow(g))) text += Joined(PeakFields(line, unit)) + "\r\n";
    return Write(path, text, "WriteDataRed/1DDRW");
}

Status WriteDataRedAls(const std::string& path, const GlobalBlock& g)
{
    const DataSet& set = g.Slots[0];
    const auto& par = set.par;
    const auto seven = [](double value) { return FormatNumber("######0.0000000", value); };
    const std::vector<PeakLine> lines = PeakLines(set, ShownRow(g));
    double highest = 0;
    for (const PeakLine& line : lines) highest = std::max(highest, line.amplitude);
    const double hz = set.spec.XAxis.size() < 2 ? 0.0 : PpmToHz(set, PointToPpm(set, 1) - PointToPpm(set, 0));
    const double ppm = par.OBFRQ0PPM == 0.0 ? 0.0 : hz / par.OBFRQ0PPM;
    std::string text = "NO.           PPM      INT(%)      FREQ(Hz)  POSITION  \r\n";
    text += "PEAK  " + FormatNumber("######0", static_cast<double>(set.Peaks.size())) + "\r\n";
    text += "MXINT " + seven(highest) + "\r\n";
    text += "RESOL " + seven(std::abs(hz)) + " Hz\r\n";
    text += "RESOL " + seven(std::abs(ppm)) + " PPM\r\n";
    text += "EXREF " + seven(ShortestDouble(par.SMEXR)) + " PPM\r\n";
    text += "ABOBS " + seven(par.ObsCenter * 1e3) + " kHz\r\n";
    text += "NGAIN 1\r\n";
    text += "COMNT  " + OneLine(par.COMNT) + "\r\n";
    for (const PeakLine& line : lines)
        text += fmt::format("{:>3}{:>15}{:>10}\r\n", FormatNumber("##0", line.number),
                            FormatNumber("########0.00000", line.ppm), FormatNumber("###0.00000", line.height_percent));
    return Write(path, text, "WriteDataRedAls/1DDRW");
}

Status WriteDataIntList(const std::string& path, const GlobalBlock& g, ListUnit unit)
{
    return Write(path, "List of Integral Intensity\r\n" + IntegralText(g, unit), "WriteDataIntList/1DDRW");
}

Status WriteDataInt(const std::string& path, const GlobalBlock& g, ListUnit unit)
{
    return Write(path, IntegralText(g, unit), "WriteDataInt/1DDRW");
}

Status WriteDataIntCurve(const std::string& path, const GlobalBlock& g, ListUnit unit)
{
    const DataSet& set = g.Slots[0];
    const std::size_t shown = ShownRow(g);
    const UnitRow& row = RowOf(unit);
    const auto points = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    const std::size_t n = shown < set.spec.DataRe.rows() ? std::min(points, set.spec.DataRe.columns()) : 0;
    const IntegralCurves curves =
        n == 0 ? IntegralCurves()
               : IntegralCurves(set.spec.DataRe[shown].first(n), static_cast<double>(set.par.DispLeft));
    std::string text = Head(set) + Joined({"No", fmt::format("Position({})", row.name), "Sum", "Integral"}) + "\r\n";
    for (std::size_t i = 0; i < set.Integrals.size(); ++i) {
        const IntegralEntry& entry = set.Integrals[i];
        const auto value = ListedIntegral(set, i);
        const double total = curves.Total(entry), share = value && total != 0 ? *value / total : 0;
        const auto first = std::min(entry.StartPoint, static_cast<std::int32_t>(n) - 1);
        for (std::int32_t p = first; p >= std::max(entry.EndPoint, 0); --p) {
            const double ppm = PointToPpm(set, p), sum = curves.At(entry, p);
            const double at = row.from_hz == 0.0 ? ppm : PpmToHz(set, ppm) * row.from_hz;
            fmt::format_to(std::back_inserter(text), "{}, {:.6f}, {:.6g}, {:.6g}\r\n", i + 1, at, sum, sum * share);
        }
    }
    return Write(path, text, "WriteDataInt/1DDRW");
}

Result<std::vector<ListedPeak>> ReadDataRed(const std::string& path)
{
    constexpr std::string_view kWhere = "ReadDataRed/1DDRW";
    const auto lines = ReadLines(path, kWhere);
    if (!lines) return lines.error();
    const auto table = TableOf(*lines);
    if (!table || table->heads.size() < 5 || !table->heads[2].starts_with("Frequency"))
        return ReadError(ErrorCode::bad_format, kWhere, "This is no list of peaks.");
    const double to_hz = table->heads[2] == "Frequency(kHz)" ? 1e3 : 1.0;
    std::vector<ListedPeak> peaks;
    for (const auto& fields : table->rows) {
        const auto numbers = Numbers(fields, 4);
        if (!numbers) return ReadError(ErrorCode::bad_format, kWhere, BadLine(peaks.size() + 1));
        peaks.push_back({(*numbers)[0], (*numbers)[1] * to_hz, (*numbers)[2], (*numbers)[3]});
    }
    return peaks;
}

Result<IntegralListFile> ReadDataInt(const std::string& path)
{
    constexpr std::string_view kWhere = "ReadDataInt/1DDRW";
    const auto lines = ReadLines(path, kWhere);
    if (!lines) return lines.error();
    const auto table = TableOf(*lines);
    if (!table || table->heads.size() < 6 || table->heads[1] != "Integral")
        return ReadError(ErrorCode::bad_format, kWhere, "This is no list of integrals.");
    IntegralListFile file;
    for (std::size_t i = 0; i < kUnits.size(); ++i)
        if (table->heads[2] == fmt::format("Start({})", kUnits[i].name)) file.unit = static_cast<ListUnit>(i);
    for (const auto& fields : table->rows) {
        const auto n = Numbers(fields, 5);
        if (!n) return ReadError(ErrorCode::bad_format, kWhere, BadLine(file.regions.size() + 1));
        file.regions.push_back({!fields[1].empty(), (*n)[0], (*n)[1], (*n)[2], (*n)[3], (*n)[4]});
    }
    return file;
}

} // namespace nmr
