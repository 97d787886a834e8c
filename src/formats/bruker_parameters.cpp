// Parameter files of the Bruker family: the record grammar and the delay of the digital filter.
//
//   ##$NAME= value            number or bare word
//   ##$NAME= <text>           may run over lines to its ">"
//   ##$NAME= (0..63)          that many values, on this line or the following ones
//   $$ comment                date, path
//   ##END=

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"
#include "formats/bruker.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

constexpr std::uint64_t kMaxParameterFile = std::uint64_t{16} << 20;

std::string_view AsText(ByteSpan bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Cuts the next line off, whatever ends it.
std::string_view TakeLine(std::string_view& rest)
{
    const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return line;
}

bool StartsRecord(std::string_view line)
{
    return line.starts_with("##");
}

Error BadLine(std::string_view line)
{
    return {ErrorCode::bad_format, "Bruker_Line/1DDRW",
            "bad parameter line: " + FromUnknownCodePage(Left(Trim(line), 60))};
}

bool IsOpenText(std::string_view value)
{
    return value.starts_with('<') && value.find('>') == std::string_view::npos;
}

/// Appends the lines that belong to a record: all of an array, a text up to its closing bracket.
/// False when the bracket never comes.
bool TakeContinuation(std::string& value, std::string_view& rest)
{
    const bool is_text = IsOpenText(value);
    if (!is_text && !value.starts_with('(')) return true;
    while (!rest.empty() && !StartsRecord(rest) && (is_text || !rest.starts_with("$$"))) {
        const std::string_view line = TakeLine(rest);
        value += '\n';
        value += line;
        if (is_text && line.find('>') != line.npos) return true;
    }
    return !is_text;
}

} // namespace

Result<BrukerParameters> BrukerParameters::Read(const std::string& path)
{
    const auto bytes = ReadWholeFile(path, kMaxParameterFile);
    if (!bytes) return bytes.error();
    return Parse(*bytes);
}

Result<BrukerParameters> BrukerParameters::Parse(ByteSpan bytes)
{
    BrukerParameters parameters;
    std::string_view rest = AsText(bytes);
    while (!rest.empty() && !parameters.ended_) {
        const std::string_view line = TakeLine(rest);
        if (!StartsRecord(line)) continue;
        const std::size_t equals = line.find('=');
        const std::string_view label = Trim(line.substr(2, equals == line.npos ? line.npos : equals - 2));
        if (EqualsNoCase(label, "END")) {
            parameters.ended_ = true;
            break;
        }
        if (equals == line.npos || label.empty()) return BadLine(line);
        std::string value(Trim(line.substr(equals + 1)));
        if (!TakeContinuation(value, rest)) return BadLine(line);
        parameters.Add(label, value);
    }
    return parameters;
}

void BrukerParameters::Add(std::string_view label, std::string_view value)
{
    if (label.front() == '$')
        records_.insert_or_assign(std::string(label.substr(1)), std::string(value));
    else if (EqualsNoCase(label, "ORIGIN"))
        origin_ = FromUnknownCodePage(value);
    else if (EqualsNoCase(label, "TITLE"))
        title_ = FromUnknownCodePage(value);
}

const std::string* BrukerParameters::Find(std::string_view name) const
{
    const auto exact = records_.find(name);
    if (exact != records_.end()) return &exact->second;
    // Converters write the names in upper case; no two names differ by case alone.
    const auto same = std::find_if(records_.begin(), records_.end(),
                                   [&](const auto& record) { return EqualsNoCase(record.first, name); });
    return same == records_.end() ? nullptr : &same->second;
}

std::optional<std::string> BrukerParameters::Text(std::string_view name) const
{
    const std::string* value = Find(name);
    if (value == nullptr) return std::nullopt;
    std::string text = *value;
    if (text.starts_with('<')) text = text.substr(1, text.find('>') - 1);
    std::ranges::replace(text, '\n', ' ');
    return FromUnknownCodePage(Trim(text));
}

std::optional<double> BrukerParameters::Number(std::string_view name) const
{
    const std::string* value = Find(name);
    const auto number = value == nullptr ? std::nullopt : ParseNumber(*value);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::vector<double> BrukerParameters::Numbers(std::string_view name) const
{
    std::vector<double> numbers;
    const std::string* value = Find(name);
    if (value == nullptr) return numbers;
    std::string_view rest = *value;
    if (rest.starts_with('(')) rest.remove_prefix(std::min(rest.find(')'), rest.size() - 1) + 1);
    while (true) {
        const std::size_t start = rest.find_first_not_of(" \t\r\n");
        if (start == rest.npos) return numbers;
        rest.remove_prefix(start);
        const std::size_t end = std::min(rest.find_first_of(" \t\r\n"), rest.size());
        const auto number = ParseNumber(rest.substr(0, end));
        if (!number || !std::isfinite(*number)) return numbers;
        numbers.push_back(*number);
        rest.remove_prefix(end);
    }
}

bool BrukerParameters::IsVendorFile() const
{
    return std::ranges::any_of(std::initializer_list<std::string_view>{"UXNMR", "BRUKER", "XWIN-NMR"},
                               [&](std::string_view program) { return ContainsNoCase(origin_, program); });
}

namespace {

/// Delay in units of 1/(2 DECIM) points, for the firmware versions DSPFVS 10, 11 and 12. Whole numbers,
/// since the delay of a cascade of symmetric filters is half its length; a list with decimals that is
/// often quoted for version 12 rounds them, which turns a spectrum by up to 7 degrees.
struct DelayRow {
    int decim;
    int delay[3];
};
constexpr DelayRow kDelays[] = {
    {2, {179, 184, 184}},
    {3, {201, 219, 219}},
    {4, {533, 384, 384}},
    {6, {709, 602, 602}},
    {8, {1097, 852, 852}},
    {12, {1449, 1668, 1668}},
    {16, {2225, 2312, 2292}},
    {24, {2929, 3368, 3368}},
    {32, {4481, 4656, 4616}},
    {48, {5889, 6768, 6768}},
    {64, {8993, 9344, 9264}},
    {96, {11809, 13568, 13568}},
    {128, {18017, 18560, 18560}},
    {192, {23649, 27392, 27392}},
    {256, {36065, 36992, 36992}},
    {384, {47329, 55040, 55040}},
    {512, {72161, 73856, 73856}},
    {768, {94689, 110336, 110336}},
    {1024, {144353, 147584, 147584}},
    {1536, {189409, 220928, 220928}},
    {2048, {288737, 295040, 295040}},
};
constexpr int kLastDecim13 = 96; // version 13: 3 - 1/(2 DECIM) points, for the same rates up to this

} // namespace

double BrukerGroupDelay(const BrukerParameters& acqus)
{
    if (acqus.Number("DIGMOD").value_or(1) == 0) return 0;
    const double given = acqus.Number("GRPDLY").value_or(-1);
    if (given > 0)
        return given < 0.5 * acqus.Number("TD").value_or(HUGE_VAL) ? given : 0; // longer than the FID: nonsense
    const double version = acqus.Number("DSPFVS").value_or(0);
    const double decim = acqus.Number("DECIM").value_or(0);
    const auto row = std::ranges::find_if(kDelays, [&](const DelayRow& r) { return r.decim == decim; });
    if (row == std::end(kDelays)) return 0;
    if (version == 13) return decim <= kLastDecim13 ? 3 - 1 / (2 * decim) : 0;
    if (version != 10 && version != 11 && version != 12) return 0;
    return row->delay[static_cast<int>(version) - 10] / (2 * decim);
}

} // namespace nmr
