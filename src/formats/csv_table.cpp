#include "formats/csv_table.h"

#include "core/numbers.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace nmr {
namespace {

constexpr std::size_t kMaxNumbers = std::size_t{1} << 26;
constexpr std::size_t kSampleLines = 200;
constexpr std::size_t kSampleBytes = std::size_t{256} << 10;
constexpr std::size_t kMostHeadLines = 100;
constexpr std::size_t kLongestNumber = 64;

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::string_view Unquoted(std::string_view field)
{
    field = Trim(field);
    if (field.size() >= 2 && field.front() == '"' && field.back() == '"') field = field.substr(1, field.size() - 2);
    return Trim(field);
}

/// "05" of "0,05": no program writes a whole number so, so that the comma before it is a decimal sign.
bool HasNeedlessZero(std::string_view field)
{
    return field.size() >= 2 && field[0] == '0' && IsDigit(field[1]);
}

std::optional<double> NumberOf(std::string_view field, const CsvText& text)
{
    if (field.empty() || field.size() > kLongestNumber) return std::nullopt;
    if (!text.decimal_comma) return ParseNumber(field);
    const auto comma = field.find(',');
    if (comma == std::string_view::npos) return ParseNumber(field);
    // A comma needs digits behind it and no point beside it, or it is no decimal sign.
    if (field.find('.') != std::string_view::npos || comma + 1 >= field.size() || !IsDigit(field[comma + 1]))
        return std::nullopt;
    std::array<char, kLongestNumber> copy{};
    std::ranges::copy(field, copy.begin());
    copy[comma] = '.';
    return ParseNumber(std::string_view(copy.data(), field.size()));
}

void SplitAtBlanks(std::string_view line, std::vector<std::string_view>& fields)
{
    for (std::size_t at = 0; at < line.size();) {
        const std::size_t end = std::min(line.find_first_of(" \t", at), line.size());
        if (end > at) fields.push_back(Unquoted(line.substr(at, end - at)));
        at = end + 1;
    }
}

/// The forms tried, the likelier of two that fit alike first. A file that does not contain the
/// separator has one column: point, or comma where the point does not fit.
struct Form {
    CsvText text;
    bool must_occur;
};
constexpr Form kForms[] = {{{'\t', false}, true}, {{'\t', true}, true}, {{';', false}, true}, {{';', true}, true},
                           {{',', false}, false}, {{' ', false}, true}, {{' ', true}, true},  {{';', true}, false}};

struct Fit {
    std::size_t first = 0, numbers = 0, others = 0; ///< first line of numbers; lines from there on
    bool occurs = false;
};

Fit TryForm(const std::vector<std::string_view>& sample, const CsvText& text)
{
    Fit fit;
    std::vector<double> numbers;
    for (std::size_t i = 0; i < sample.size(); ++i) {
        if (Trim(sample[i]).empty()) continue;
        if (Split_Columns(sample[i], text, numbers) != 0) {
            fit.others += fit.numbers > 0 ? 1 : 0;
            continue;
        }
        if (fit.numbers++ == 0) fit.first = i;
        fit.occurs = fit.occurs || numbers.size() > 1;
    }
    return fit;
}

std::vector<std::string_view> Sample(std::string_view text)
{
    std::vector<std::string_view> lines;
    std::size_t bytes = 0;
    CsvLines reader(text);
    for (std::string_view line; lines.size() < kSampleLines && bytes < kSampleBytes && reader.Next(line);) {
        lines.push_back(line);
        bytes += line.size() + 1;
    }
    return lines;
}

std::vector<std::string> Headings(const std::vector<std::string_view>& sample, std::size_t first, const CsvText& text)
{
    std::size_t line = first;
    while (line > 0 && Trim(sample[line - 1]).empty()) --line;
    if (line == 0) return {};
    std::string_view words = Trim(sample[line - 1]);
    while (!words.empty() && (words.front() == '#' || words.front() == '%' || words.front() == '/'))
        words.remove_prefix(1);
    std::vector<std::string_view> fields;
    SplitFields(Trim(words), text, fields);
    return {fields.begin(), fields.end()};
}

} // namespace

bool CsvLines::Next(std::string_view& line)
{
    if (rest_.empty()) return false;
    const std::size_t end = rest_.find_first_of("\r\n");
    line = rest_.substr(0, end);
    ended_ = end != std::string_view::npos;
    if (!ended_) {
        rest_ = {};
        return true;
    }
    const bool both = rest_[end] == '\r' && end + 1 < rest_.size() && rest_[end + 1] == '\n';
    rest_.remove_prefix(end + (both ? 2 : 1));
    return true;
}

void Split_Comma(std::string_view line, std::string& key, std::string& value, std::string& unit)
{
    const std::size_t first = std::min(line.find(','), line.size());
    const std::size_t second = first < line.size() ? std::min(line.find(',', first + 1), line.size()) : first;
    key = Trim(line.substr(0, first));
    value = first < line.size() ? Trim(line.substr(first + 1, second - first - 1)) : std::string_view();
    unit = second < line.size() ? Trim(line.substr(second + 1)) : std::string_view();
}

void SplitFields(std::string_view line, const CsvText& text, std::vector<std::string_view>& fields)
{
    fields.clear();
    if (text.separator == ' ') {
        SplitAtBlanks(line, fields);
        return;
    }
    for (std::size_t at = 0; at <= line.size();) {
        const std::size_t end = std::min(line.find(text.separator, at), line.size());
        fields.push_back(Unquoted(line.substr(at, end - at)));
        at = end + 1;
    }
    while (!fields.empty() && fields.back().empty()) fields.pop_back();
}

int Split_Columns(std::string_view line, const CsvText& text, std::vector<double>& numbers)
{
    numbers.clear();
    const bool blanks = text.separator == ' ';
    const char closing[] = {text.separator, ' ', '\t', '\0'};
    bool more = true;
    for (std::size_t at = 0; more;) {
        if (blanks)
            while (at < line.size() && IsBlank(line[at])) ++at;
        const std::size_t end =
            std::min(blanks ? line.find_first_of(" \t", at) : line.find(text.separator, at), line.size());
        const std::string_view field = Unquoted(line.substr(at, end - at));
        more = end < line.size();
        at = end + 1;
        // Separators may close a line; anywhere else a field must not be empty.
        if (field.empty() && line.find_first_not_of(closing, at) == std::string_view::npos) break;
        const auto number = NumberOf(field, text);
        const bool doubtful = text.separator == ',' && !numbers.empty() && HasNeedlessZero(field);
        if (!number || !std::isfinite(*number) || doubtful) {
            numbers.clear();
            return 1;
        }
        numbers.push_back(*number);
    }
    return numbers.empty() ? 1 : 0;
}

Result<CsvTable> CsvTable::Parse(std::string_view text, const CsvText& form, std::size_t head_lines)
{
    CsvTable table;
    CsvLines reader(text);
    std::vector<double> numbers;
    std::string_view line;
    for (std::size_t i = 0; i < head_lines && reader.Next(line); ++i) {
    }
    while (reader.Next(line)) {
        table.ends_blank_ = Trim(line).empty();
        if (table.ends_blank_) continue;
        table.ends_in_line_ = !reader.ended();
        if (Split_Columns(line, form, numbers) != 0) {
            ++table.left_out_;
            continue;
        }
        if (table.numbers_.size() + numbers.size() > kMaxNumbers)
            return Error{ErrorCode::too_large, "ReadDataCSV/1DDRW", "The table holds too many numbers"};
        table.numbers_.insert(table.numbers_.end(), numbers.begin(), numbers.end());
        table.starts_.push_back(table.numbers_.size());
    }
    return table;
}

CsvSight LookAtCsv(std::string_view text)
{
    const std::vector<std::string_view> sample = Sample(text);
    CsvSight sight;
    for (const Form& form : kForms) {
        const Fit fit = TryForm(sample, form.text);
        if (fit.numbers <= sight.number_lines || (form.must_occur && !fit.occurs)) continue;
        sight.text = form.text;
        sight.head_lines = fit.first;
        sight.number_lines = fit.numbers;
        sight.other_lines = fit.others;
    }
    if (sight.number_lines > 0) sight.headings = Headings(sample, sight.head_lines, sight.text);
    return sight;
}

bool IsCsvTable(std::string_view head)
{
    head = WithoutMark(head);
    const CsvSight sight = LookAtCsv(head);
    if (sight.number_lines == 0 || sight.head_lines > kMostHeadLines) return false;
    // Behind words it takes more than one line to be a table; the last line may be cut.
    return sight.head_lines == 0 || (sight.number_lines >= 2 && 10 * sight.other_lines <= sight.number_lines + 9);
}

std::string_view WithoutMark(std::string_view text)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    return text.starts_with(kMark) ? text.substr(kMark.size()) : text;
}

} // namespace nmr
