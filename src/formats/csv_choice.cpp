#include "formats/csv_choice.h"

#include "core/data_set.h"
#include "core/numbers.h"
#include "core/text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

// Names of the form's values.
constexpr char kSeparator[] = "SEPARATOR", kDecimal[] = "DECIMAL", kHeadLines[] = "HEAD LINES", kLayout[] = "LAYOUT",
               kPosition[] = "POSITION", kUnit[] = "POSITION UNIT", kReal[] = "REAL", kImaginary[] = "IMAGINARY",
               kMode[] = "SMODE", kLines[] = "LINES", kColumns[] = "COLUMNS", kPreview[] = "PREVIEW";

constexpr std::size_t kPreviewLines = 12, kPreviewWidth = 400;
constexpr std::size_t kFewestRowValues = 64; ///< a line this long, longer than the file has lines, is a row
constexpr int kMostColumns = 2 * kMaxRows + 1;
constexpr double kLongestStep = 0.02; ///< s between points; a longer one is none of seconds

using Values = std::map<std::string, std::string>;

std::string TextOf(const Values& values, const char* key)
{
    const auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
}

template <class Table, class T>
void TakeWord(const Table& table, const std::string& text, T& target)
{
    for (const auto& row : table)
        if (EqualsNoCase(row.word, text)) target = row.value;
}

template <class Table, class T>
const auto& RowOf(const Table& table, T value)
{
    return *std::ranges::find_if(table, [&](const auto& row) { return row.value == value; });
}

std::string JoinColumns(const std::vector<int>& columns)
{
    return fmt::format("{}", fmt::join(columns, " "));
}

int CountOf(const Values& values, const char* key, int fallback)
{
    const auto number = ParseInteger(TextOf(values, key));
    return number && *number >= 0 && *number <= kMaxPoints ? static_cast<int>(*number) : fallback;
}

// ---- what the numbers show

/// A column (or line) of the table, as far as it goes.
std::vector<double> Column(const CsvTable& table, std::size_t column)
{
    std::vector<double> values;
    for (std::size_t i = 0; i < table.lines(); ++i)
        if (column < table.line(i).size()) values.push_back(table.line(i)[column]);
    return values;
}

/// Rising or falling all the way by nearly equal steps.
bool IsAxis(const std::vector<double>& values)
{
    if (values.size() < 3) return false;
    const double step = (values.back() - values.front()) / static_cast<double>(values.size() - 1);
    if (!(std::fabs(step) > 0)) return false;
    for (std::size_t i = 1; i < values.size(); ++i)
        if (std::fabs(values[i] - values[i - 1] - step) > 0.6 * std::fabs(step)) return false;
    return true;
}

/// The length that most lines have.
std::size_t UsualWidth(const CsvTable& table)
{
    std::map<std::size_t, std::size_t> counts;
    for (std::size_t i = 0; i < table.lines(); ++i) ++counts[table.line(i).size()];
    const auto most = std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; });
    return most == counts.end() ? 0 : most->first;
}

bool Says(const std::vector<std::string>& headings, std::size_t column, std::initializer_list<std::string_view> words)
{
    if (column >= headings.size()) return false;
    return std::ranges::any_of(words, [&](std::string_view word) { return ContainsNoCase(headings[column], word); });
}

bool IsPositionHeading(const std::vector<std::string>& headings, std::size_t column)
{
    return Says(headings, column, {"time", "ppm", "shift", "freq", "(hz", "[hz", "delta"}) &&
           !Says(headings, column, {"intens", "ampl", "real", "imag"});
}

/// Unit by its name in a heading.
bool TakeUnitHeading(const std::vector<std::string>& headings, std::size_t column, CsvUnit& unit)
{
    struct Word {
        std::string_view text;
        CsvUnit unit;
    };
    // Longer words before their own beginnings.
    constexpr Word kWords[] = {{"ppm", CsvUnit::ppm},   {"khz", CsvUnit::khz},   {"hz", CsvUnit::hz},
                               {"(us", CsvUnit::us},    {"[us", CsvUnit::us},    {"\xC2\xB5s", CsvUnit::us},
                               {"micro", CsvUnit::us},  {"(ms", CsvUnit::ms},    {"[ms", CsvUnit::ms},
                               {"milli", CsvUnit::ms},  {"time", CsvUnit::s},    {"sec", CsvUnit::s},
                               {"shift", CsvUnit::ppm}, {"delta", CsvUnit::ppm}, {"freq", CsvUnit::hz}};
    for (const Word& word : kWords)
        if (Says(headings, column, {word.text})) {
            unit = word.unit;
            return true;
        }
    return false;
}

bool IsTime(CsvUnit unit)
{
    return unit == CsvUnit::s || unit == CsvUnit::ms || unit == CsvUnit::us;
}

/// Positions that begin at 0 and rise are times, others are shifts, or Hz when they reach too far.
CsvUnit GuessUnit(const std::vector<double>& positions)
{
    constexpr double kWidestPpm = 1000;
    const double step = (positions.back() - positions.front()) / static_cast<double>(positions.size() - 1);
    if (step > 0 && std::fabs(positions.front()) <= step / 1000)
        return step <= kLongestStep ? CsvUnit::s : step >= 1 ? CsvUnit::us : CsvUnit::ms;
    return std::fabs(positions.back() - positions.front()) > kWidestPpm ? CsvUnit::hz : CsvUnit::ppm;
}

void ProposePosition(const CsvSight& sight, const std::vector<double>& first, CsvChoice& choice)
{
    const bool named = IsPositionHeading(sight.headings, 0);
    if (!(named || IsAxis(first)) || first.size() < 2 || choice.columns < 2) return;
    choice.position = 1;
    if (!TakeUnitHeading(sight.headings, 0, choice.unit)) choice.unit = GuessUnit(first);
    choice.smode = IsTime(choice.unit) ? 0 : 1;
}

/// Columns by their headings; positions that are repeated are none of data.
bool TakeHeadings(const CsvSight& sight, CsvChoice& choice)
{
    for (std::size_t column = 0; column < choice.columns; ++column) {
        const int number = static_cast<int>(column) + 1;
        if (number == choice.position || IsPositionHeading(sight.headings, column)) continue;
        if (Says(sight.headings, column, {"imag"}))
            choice.imaginary.push_back(number);
        else if (column < sight.headings.size())
            choice.real.push_back(number);
    }
    const bool fits =
        !choice.real.empty() && (choice.imaginary.empty() || choice.imaginary.size() == choice.real.size());
    if (!fits) choice.real = choice.imaginary = {};
    return fits;
}

void ProposeColumns(const CsvTable& table, const CsvSight& sight, CsvChoice& choice)
{
    const std::vector<double> first = Column(table, 0);
    ProposePosition(sight, first, choice);
    if (sight.headings.size() >= choice.columns && TakeHeadings(sight, choice)) return;
    std::vector<int> data;
    for (std::size_t column = choice.position > 0 ? 1 : 0; column < choice.columns; ++column)
        if (choice.position == 0 || column == 0 || choice.columns < 4 || Column(table, column) != first)
            data.push_back(static_cast<int>(column) + 1);
    // Two columns of data are one complex row; more are spectra side by side, or complex rows of a FID.
    const bool complex = data.size() == 2 || (choice.smode == 0 && data.size() % 2 == 0);
    for (std::size_t i = 0; i < data.size(); ++i)
        (complex && i % 2 == 1 ? choice.imaginary : choice.real).push_back(data[i]);
}

void ProposeRows(const CsvTable& table, CsvChoice& choice)
{
    const std::vector<double> first(table.line(0).begin(), table.line(0).end());
    choice.layout = CsvLayout::pairs;
    if (!IsAxis(first) || table.lines() < 2) return;
    choice.layout = CsvLayout::rows;
    choice.position = 1;
    choice.unit = GuessUnit(first);
    choice.smode = IsTime(choice.unit) ? 0 : 1;
}

std::string Preview(std::string_view text)
{
    std::string out;
    CsvLines reader(text);
    std::string_view line;
    for (std::size_t i = 0; i < kPreviewLines && reader.Next(line); ++i)
        out += FromUnknownCodePage(line.substr(0, kPreviewWidth)) + "\n";
    return out;
}

} // namespace

std::vector<int> ParseCsvColumns(std::string_view text)
{
    std::string plain(text);
    std::ranges::replace(plain, ',', ' ');
    std::ranges::replace(plain, ';', ' ');
    std::vector<std::string_view> fields;
    SplitFields(plain, {' ', false}, fields);
    std::vector<int> columns;
    for (const std::string_view field : fields)
        if (const auto number = ParseInteger(field); number && *number >= 1 && *number <= kMostColumns)
            columns.push_back(static_cast<int>(*number));
    return columns;
}

CsvChoice::CsvChoice(const Values& values)
{
    TakeWord(kCsvSeparators, TextOf(values, kSeparator), text.separator);
    TakeWord(kCsvDecimals, TextOf(values, kDecimal), text.decimal_comma);
    TakeWord(kCsvLayouts, TextOf(values, kLayout), layout);
    TakeWord(kCsvUnits, TextOf(values, kUnit), unit);
    TakeWord(kCsvModes, TextOf(values, kMode), smode);
    head_lines = static_cast<std::size_t>(CountOf(values, kHeadLines, 0));
    position = CountOf(values, kPosition, 0);
    real = ParseCsvColumns(TextOf(values, kReal));
    imaginary = ParseCsvColumns(TextOf(values, kImaginary));
    lines = static_cast<std::size_t>(CountOf(values, kLines, 0));
    columns = static_cast<std::size_t>(CountOf(values, kColumns, 0));
    preview = TextOf(values, kPreview);
    for (std::size_t i = 0; i < parameters.size(); ++i)
        parameters[i] = TextOf(values, std::string(kCsvParameters[i].key).c_str());
}

Values CsvChoice::ToValues() const
{
    Values values{{kSeparator, std::string(RowOf(kCsvSeparators, text.separator).word)},
                  {kDecimal, std::string(RowOf(kCsvDecimals, text.decimal_comma).word)},
                  {kLayout, std::string(RowOf(kCsvLayouts, layout).word)},
                  {kUnit, std::string(RowOf(kCsvUnits, unit).word)},
                  {kMode, std::string(RowOf(kCsvModes, smode).word)},
                  {kHeadLines, fmt::format("{}", head_lines)},
                  {kPosition, fmt::format("{}", position)},
                  {kReal, JoinColumns(real)},
                  {kImaginary, JoinColumns(imaginary)},
                  {kLines, fmt::format("{}", lines)},
                  {kColumns, fmt::format("{}", columns)},
                  {kPreview, preview}};
    for (std::size_t i = 0; i < parameters.size(); ++i) values[std::string(kCsvParameters[i].key)] = parameters[i];
    return values;
}

const std::string& CsvChoice::Parameter(std::string_view key) const
{
    static const std::string kNone;
    const auto row = std::ranges::find(kCsvParameters, key, &CsvParameter::key);
    return row == std::end(kCsvParameters) ? kNone
                                           : parameters[static_cast<std::size_t>(row - std::begin(kCsvParameters))];
}

std::string CsvChoice::Missing() const
{
    if (layout == CsvLayout::columns && real.empty()) return "No column of real values";
    if (layout == CsvLayout::columns && !imaginary.empty() && imaginary.size() != real.size())
        return "Each real column needs its imaginary one, or none";
    if (smode == 0 && position > 0 && !IsTime(unit)) return "Positions of a FID are times";
    if (smode == 1 && position > 0 && IsTime(unit)) return "Positions of a spectrum are ppm or Hz";
    if (Parameter("OBNUC").empty()) return "ObNuc is required";
    const auto above_zero = [&](std::string_view key) { return ParseNumber(Parameter(key)).value_or(0) > 0; };
    if (!above_zero("OFR")) return "ObsFreq is required";
    if (position == 0 && !above_zero("FREQU")) return "Frequency(Span) is required without a column of positions";
    return {};
}

std::string CsvChoice::Summary() const
{
    std::string out = fmt::format("separator {}, decimal {}", ToLower(RowOf(kCsvSeparators, text.separator).word),
                                  ToLower(RowOf(kCsvDecimals, text.decimal_comma).word));
    if (head_lines > 0) out += fmt::format(", {} head line{}", head_lines, head_lines == 1 ? "" : "s");
    const bool in_columns = layout == CsvLayout::columns;
    if (position > 0)
        out += fmt::format(", positions ({}) in {} {}", RowOf(kCsvUnits, unit).caption, in_columns ? "column" : "line",
                           position);
    if (layout == CsvLayout::rows) out += ", each line a row of real values";
    if (layout == CsvLayout::pairs) out += ", each line a row of real and imaginary values in turn";
    if (in_columns) out += ", real " + JoinColumns(real);
    if (in_columns && !imaginary.empty()) out += ", imaginary " + JoinColumns(imaginary);
    return out + (smode == 0 ? ", FID" : ", spectrum");
}

CsvChoice ProposeCsv(const CsvTable& table, const CsvSight& sight)
{
    CsvChoice choice;
    choice.text = sight.text;
    choice.head_lines = sight.head_lines;
    choice.lines = table.lines();
    choice.columns = UsualWidth(table);
    choice.parameters[0] = "1H";
    if (choice.lines == 0) return choice;
    if (choice.columns >= kFewestRowValues && choice.columns > table.lines())
        ProposeRows(table, choice);
    else
        ProposeColumns(table, sight, choice);
    return choice;
}

CsvChoice ProposeCsv(std::string_view text)
{
    text = WithoutMark(text);
    const CsvSight sight = LookAtCsv(text);
    const auto table = CsvTable::Parse(text, sight.text, sight.head_lines);
    CsvChoice choice;
    if (table) choice = ProposeCsv(*table, sight);
    choice.preview = Preview(text);
    return choice;
}

} // namespace nmr
