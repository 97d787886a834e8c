#include "session/list_tables.h"

#include "analysis/shown_row.h"
#include "core/list_values.h"
#include "core/numbers.h"
#include "core/text.h"
#include "session/reference_shifts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace nmr {
namespace {

bool IsProton(const DataSet& set)
{
    return set.par.OBNUC == "1H" || set.par.OBNUC == "H1";
}

/// A column: its head, the number of a line, and how that is written. Decimals are fixed, so that they stand
/// under each other.
template <class Line>
struct Column {
    std::string head;
    std::function<double(const Line&)> value; ///< NaN for none
    std::string format;
};

template <class Line>
ListTable TableOf(const std::vector<Column<Line>>& columns, const std::vector<Line>& lines)
{
    ListTable table;
    for (const Column<Line>& column : columns) table.heads.push_back(column.head);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        ListTable::Row row{i, {}, {}, false};
        for (const Column<Line>& column : columns) {
            const double value = column.value(lines[i]);
            row.cells.push_back(std::isnan(value) ? std::string() : fmt::format(fmt::runtime(column.format), value));
            row.keys.push_back(value);
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

/// How positions are written in a unit.
struct UnitFormat {
    std::string name, format;
    double per_ppm;
};
UnitFormat FormatOf(const DataSet& set, ListUnit unit)
{
    if (unit == ListUnit::hz) return {"Hz", "{:.2f}", set.par.OBFRQ0PPM};
    if (unit == ListUnit::khz) return {"kHz", "{:.5f}", set.par.OBFRQ0PPM * 1e-3};
    return {"ppm", IsProton(set) ? "{:.4f}" : "{:.3f}", 1.0};
}

/// Six digits of the largest amplitude; the others stand under them.
std::string AmplitudeFormat(const std::vector<PeakLine>& lines)
{
    double largest = 0;
    for (const PeakLine& line : lines) largest = std::max(largest, std::abs(line.amplitude));
    if (!(largest > 0) || largest >= 1e12 || largest < 1e-6) return "{:.5g}";
    return fmt::format("{{:.{}f}}", std::clamp(5 - static_cast<int>(std::floor(std::log10(largest))), 0, 9));
}

/// "1H" as "<sup>1</sup>H", "CDCl3" as "CDCl<sub>3</sub>".
std::string WithDigitsIn(std::string_view text, std::string_view open, std::string_view close)
{
    std::string out;
    bool inside = false;
    for (const char c : text) {
        const bool digit = c >= '0' && c <= '9';
        if (digit != inside) out += digit ? open : close;
        inside = digit;
        if (c == '<' || c == '>' || c == '&')
            out += c == '&' ? "&amp;" : c == '<' ? "&lt;" : "&gt;";
        else
            out += c;
    }
    return inside ? out + std::string(close) : out;
}

/// "C13" as "13C": papers put the mass in front.
std::string MassFirst(const std::string& nucleus)
{
    const auto digits = nucleus.find_first_of("0123456789");
    if (digits == 0 || digits == std::string::npos) return nucleus;
    return nucleus.substr(digits) + nucleus.substr(0, digits);
}

/// Indices stand low; the d that counts deuterons is slanted.
std::string SolventHtml(const std::string& solvent)
{
    std::string html = WithDigitsIn(solvent, "<sub>", "</sub>");
    if (const auto at = html.find("-d<sub>"); at != std::string::npos) html.replace(at, 2, "-<i>d</i>");
    return html;
}

std::string ShiftText(double ppm, bool proton)
{
    std::string text = fmt::format("{:.{}f}", ppm, proton ? 2 : 1);
    const bool zero = text.find_first_not_of("-0.") == std::string::npos;
    return zero && text.starts_with('-') ? text.substr(1) : text;
}

} // namespace

ListTable PeakListTable(const GlobalBlock& g, ListUnit unit)
{
    const DataSet& set = g.Slots[0];
    const UnitFormat ppm = FormatOf(set, ListUnit::ppm);
    const UnitFormat hz = FormatOf(set, unit == ListUnit::khz ? unit : ListUnit::hz);
    const double share = unit == ListUnit::khz ? 1e-3 : 1.0;
    const std::vector<PeakLine> lines = PeakLines(set, ShownRowIndex(g, set));
    const std::string amplitude = AmplitudeFormat(lines);
    std::vector<Column<PeakLine>> columns = {
        {"No", [](const PeakLine& line) { return double(line.number); }, "{:.0f}"},
        {"Position(ppm)", [](const PeakLine& line) { return line.ppm; }, ppm.format},
        {"Frequency(" + hz.name + ")", [=](const PeakLine& line) { return line.hz * share; }, hz.format},
        {"Amplitude", [](const PeakLine& line) { return line.amplitude; }, amplitude},
        {"Height(%)", [](const PeakLine& line) { return line.height_percent; }, "{:.2f}"},
    };
    if (g.settings.interpolate_tops == 1) {
        columns.push_back({"Top(ppm)", [](const PeakLine& line) { return line.top.ppm; }, ppm.format});
        columns.push_back(
            {"Top(" + hz.name + ")", [=](const PeakLine& line) { return line.top.hz * share; }, hz.format});
        columns.push_back({"Top Amplitude", [](const PeakLine& line) { return line.top.amplitude; }, amplitude});
    }
    return TableOf(columns, lines);
}

ListTable IntegralListTable(const GlobalBlock& g, ListUnit unit)
{
    const DataSet& set = g.Slots[0];
    const UnitFormat ends = FormatOf(set, unit);
    const int digits = std::clamp(g.settings.default_integ_digit, 0, 9);
    const double none = std::numeric_limits<double>::quiet_NaN();
    const std::vector<Column<IntegralLine>> columns = {
        {"No", [](const IntegralLine& line) { return double(line.number); }, "{:.0f}"},
        {"Integral", [=](const IntegralLine& line) { return line.value.value_or(none); },
         fmt::format("{{:.{}f}}", digits)},
        {"Start(" + ends.name + ")", [=](const IntegralLine& line) { return line.start_ppm * ends.per_ppm; },
         ends.format},
        {"End(" + ends.name + ")", [=](const IntegralLine& line) { return line.end_ppm * ends.per_ppm; }, ends.format},
        {"Sum", [](const IntegralLine& line) { return line.sum; }, "{:.5f}"},
        {"B0/Ymax", [](const IntegralLine& line) { return line.b0; }, "{:g}"},
        {"B1/Ymax", [](const IntegralLine& line) { return line.b1; }, "{:g}"},
    };
    const std::vector<IntegralLine> lines = IntegralLines(set);
    ListTable table = TableOf(columns, lines);
    for (std::size_t i = 0; i < lines.size(); ++i) table.rows[i].marked = lines[i].reference;
    return table;
}

void SortTable(ListTable& table, std::size_t column, bool descending)
{
    if (column >= table.heads.size()) return;
    std::ranges::stable_sort(table.rows, [=](const ListTable::Row& a, const ListTable::Row& b) {
        const double x = a.keys[column], y = b.keys[column];
        if (std::isnan(x) || std::isnan(y)) return !std::isnan(x) && std::isnan(y);
        return descending ? x > y : x < y;
    });
}

std::string TabbedText(const ListTable& table)
{
    std::string text = fmt::format("{}\n", fmt::join(table.heads, "\t"));
    for (const ListTable::Row& row : table.rows) text += fmt::format("{}\n", fmt::join(row.cells, "\t"));
    return text;
}

PaperText PeaksForPaper(const GlobalBlock& g)
{
    const DataSet& set = g.Slots[0];
    std::vector<double> shifts;
    for (const PeakLine& line : PeakLines(set, ShownRowIndex(g, set)))
        shifts.push_back(g.settings.interpolate_tops == 1 ? line.top.ppm : line.ppm);
    std::ranges::sort(shifts, std::greater{});
    std::vector<std::string> texts;
    for (const double shift : shifts) texts.push_back(ShiftText(shift, IsProton(set)));
    const std::string nucleus = MassFirst(set.par.OBNUC), solvent = UsualSolventName(set.par.SLVNT);
    const std::string frequency = fmt::format("{:.0f} MHz", set.par.ObsCenter);
    const std::string list = fmt::format("{}{}", fmt::join(texts, ", "), texts.empty() ? "" : ".");
    const auto build = [&](const std::string& what, const std::string& in) {
        return what + " NMR (" + frequency + (in.empty() ? "" : ", " + in) + ") δ " + list;
    };
    return {build(nucleus, solvent), build(WithDigitsIn(nucleus, "<sup>", "</sup>"), SolventHtml(solvent))};
}

} // namespace nmr
