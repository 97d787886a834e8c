#include "formats/ascii.h"

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"
#include "formats/csv.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace nmr {
namespace {

constexpr char kWhere[] = "WriteDataAscii/1DDRW";
constexpr std::string_view kWords[] = {"R", "R1", "R2", "D"}; // by AsciiMode
constexpr std::string_view kDept = "DEPT ";
constexpr std::size_t kLineLength = 28; // of an ordinary point, to reserve the text at once

/// The row that a command works on.
std::size_t ShownRow(const GlobalBlock& g, std::int16_t slot)
{
    return slot == 0 ? static_cast<std::size_t>(std::max<std::int16_t>(g.CurrentRow, 0)) : 0;
}

/// One row of a spectrum with its axis.
struct Curve {
    std::span<const double> ppm;
    std::span<const float> values;
};

Result<Curve> CurveOf(const GlobalBlock& g, std::int16_t slot)
{
    const Error none{ErrorCode::bad_value, kWhere, "There is no spectrum to write"};
    if (slot < 0 || slot >= kSlotCount) return none;
    const DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    const std::size_t row = ShownRow(g, slot), points = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    if (points == 0 || set.par.SMODE != 1 || row >= set.spec.DataRe.rows() || set.spec.DataRe.columns() < points ||
        set.spec.XAxis.size() < points)
        return none;
    return Curve{std::span(set.spec.XAxis).first(points), set.spec.DataRe[row].first(points)};
}

/// Height of the highest peak; of the deepest when all point down, 1 when there is none.
double Highest(std::span<const float> values)
{
    const auto [low, high] = std::ranges::minmax_element(values);
    if (*high > 0) return static_cast<double>(*high);
    return *low < 0 ? -static_cast<double>(*low) : 1.0;
}

double Divisor(const GlobalBlock& g, AsciiMode mode, const Curve& curve, double screen_height)
{
    switch (mode) {
    case AsciiMode::relative:
        return Highest(curve.values);
    case AsciiMode::relative_first: {
        const auto first = CurveOf(g, 0);
        return first ? Highest(first->values) : 1.0;
    }
    case AsciiMode::displayed:
        return screen_height > 0 ? screen_height : 1.0;
    case AsciiMode::raw:
        break;
    }
    return 1.0;
}

/// Which points go into the file.
struct Picked {
    std::size_t first = 0, last = 0, count = 0;
    std::size_t operator()(std::size_t i) const
    {
        if (count < 2) return first;
        const double step = static_cast<double>(last - first) / static_cast<double>(count - 1);
        return first + static_cast<std::size_t>(RoundHalfEven(static_cast<double>(i) * step));
    }
};

Picked Pick(const GlobalBlock& g, std::int16_t slot, std::size_t all, std::int32_t points)
{
    if (points < 1 || static_cast<std::size_t>(points) >= all) return {0, all - 1, all};
    const DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    std::size_t first = 0, last = all - 1;
    if (g.ViewLeft != g.ViewRight) {
        first = static_cast<std::size_t>(PpmToPoint(set, static_cast<double>(g.ViewLeft)));
        last = static_cast<std::size_t>(PpmToPoint(set, static_cast<double>(g.ViewRight)));
        if (first > last) std::swap(first, last);
    }
    // A narrow range has no more points than its own.
    return {first, last, std::min(static_cast<std::size_t>(points), last - first + 1)};
}

void AppendPoint(fmt::memory_buffer& text, double ppm, double value)
{
    fmt::format_to(std::back_inserter(text), "{:.9g}, {:.9g}\n", ppm, value);
}

void Append(fmt::memory_buffer& text, std::string_view part)
{
    text.append(part);
}

void AppendKey(fmt::memory_buffer& text, const ParamBlock& par, std::string_view key)
{
    fmt::format_to(std::back_inserter(text), "{},{},\n", key, CsvHeadValue(par, key));
}

void AppendShortHead(fmt::memory_buffer& text, const ParamBlock& par)
{
    Append(text, "$CSVSTART,,\n");
    for (const std::string_view key : {"OBNUC", "OFR", "FREQU"}) AppendKey(text, par, key);
    Append(text, "SMODE,1,\n$END,,\n");
}

Status Write(const std::string& path, const Result<std::string>& text)
{
    if (!text) return text.error();
    Status written = WriteWholeFile(path, std::string_view(*text));
    if (!written) return Error{written.error().code, kWhere, written.error().text};
    return {};
}

} // namespace

std::string AsciiWord(const AsciiChoice& choice)
{
    return fmt::format("{}{}, {}", choice.with_dept ? kDept : std::string_view(),
                       kWords[static_cast<std::size_t>(choice.mode)], choice.points);
}

std::optional<AsciiChoice> ParseAsciiWord(std::string_view word)
{
    AsciiChoice choice;
    choice.with_dept = word.starts_with(kDept);
    if (choice.with_dept) word.remove_prefix(kDept.size());
    const std::size_t comma = std::min(word.find(','), word.size());
    const auto mode = std::ranges::find(kWords, Trim(word.substr(0, comma)));
    const auto points = ParseInteger(comma < word.size() ? word.substr(comma + 1) : std::string_view("0"));
    if (mode == std::end(kWords) || !points || *points < 0 || *points > kMaxPoints) return std::nullopt;
    choice.mode = static_cast<AsciiMode>(mode - std::begin(kWords));
    choice.points = static_cast<std::int32_t>(*points);
    return choice;
}

Result<std::string> AsciiText(const GlobalBlock& g, AsciiMode mode, std::int16_t slot, std::int32_t points,
                              double screen_height)
{
    const auto curve = CurveOf(g, slot);
    if (!curve) return curve.error();
    const Picked picked = Pick(g, slot, curve->values.size(), points);
    const double divisor = Divisor(g, mode, *curve, screen_height);
    fmt::memory_buffer text;
    text.reserve(kLineLength * picked.count);
    if (mode == AsciiMode::displayed) AppendShortHead(text, g.Slots[static_cast<std::size_t>(slot)].par);
    for (std::size_t i = 0; i < picked.count; ++i) {
        const std::size_t point = picked(i);
        AppendPoint(text, curve->ppm[point], static_cast<double>(curve->values[point]) / divisor);
    }
    Append(text, "\n");
    return fmt::to_string(text);
}

Result<std::string> Ascii2Text(const GlobalBlock& g, std::int16_t slot)
{
    const auto curve = CurveOf(g, slot);
    if (!curve) return curve.error();
    const ParamBlock& par = g.Slots[static_cast<std::size_t>(slot)].par;
    fmt::memory_buffer text;
    text.reserve(kLineLength * curve->values.size());
    Append(text, "$CSVSTART,,\n");
    for (const std::string_view key : CsvHeadKeys()) AppendKey(text, par, key);
    Append(text, "$END,,\n");
    for (std::size_t i = 0; i < curve->values.size(); ++i)
        AppendPoint(text, curve->ppm[i], static_cast<double>(curve->values[i]));
    Append(text, "\n");
    return fmt::to_string(text);
}

Status WriteDataAscii(const std::string& path, const GlobalBlock& g, AsciiMode mode, std::int16_t slot,
                      std::int32_t points, double screen_height)
{
    return Write(path, AsciiText(g, mode, slot, points, screen_height));
}

Status WriteAscii2(const std::string& path, const GlobalBlock& g, std::int16_t slot)
{
    return Write(path, Ascii2Text(g, slot));
}

} // namespace nmr
