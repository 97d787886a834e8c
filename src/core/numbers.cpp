#include "core/numbers.h"

#include "core/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace nmr {

namespace {

/// |value| = 0.d1d2d3... times 10^point, without trailing zeros; no digits for 0.
struct Decimal {
    std::string digits;
    int point = 0;
};

Decimal ShortestDecimal(double value)
{
    std::array<char, 40> buffer;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value), std::chars_format::scientific).ptr;
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    const std::size_t e = text.find('e');
    Decimal decimal;
    for (const char c : text.substr(0, e))
        if (c != '.') decimal.digits += c;
    while (!decimal.digits.empty() && decimal.digits.back() == '0') decimal.digits.pop_back();
    if (decimal.digits.empty()) return decimal;
    const std::string_view exponent = text.substr(e + (text[e + 1] == '+' ? 2U : 1U));
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), decimal.point);
    ++decimal.point;
    return decimal;
}

/// Keeps `count` digits (none when below 0), a half away from zero.
void RoundDigits(Decimal& decimal, int count)
{
    auto& digits = decimal.digits;
    if (count >= static_cast<int>(digits.size())) return;
    const bool up = count >= 0 && digits[static_cast<std::size_t>(count)] >= '5';
    digits.resize(static_cast<std::size_t>(std::max(count, 0)));
    if (up) {
        while (!digits.empty() && digits.back() == '9') digits.pop_back();
        if (digits.empty()) {
            digits.assign(1, '1');
            ++decimal.point;
        } else {
            ++digits.back();
        }
    }
    while (!digits.empty() && digits.back() == '0') digits.pop_back();
}

/// The digit places of a pattern and where they stand in it.
struct Places {
    std::size_t begin = 0, end = 0;
    int integer_least = 0, integer_count = 0;
    int decimals_least = 0, decimals_most = 0;
    bool has_point = false;
    int exponent_least = 0; ///< digits of the exponent, 0: no scientific notation
    bool exponent_plus = false;
};

bool IsPlace(char c)
{
    return c == '#' || c == '0';
}

void FindExponent(std::string_view pattern, Places& places)
{
    std::size_t i = places.end;
    if (i + 2 >= pattern.size() || (pattern[i] != 'E' && pattern[i] != 'e')) return;
    if ((pattern[i + 1] != '+' && pattern[i + 1] != '-') || !IsPlace(pattern[i + 2])) return;
    places.exponent_plus = pattern[i + 1] == '+';
    places.exponent_least = 1;
    int zeros = 0;
    for (i += 2; i < pattern.size() && IsPlace(pattern[i]); ++i) zeros += pattern[i] == '0' ? 1 : 0;
    places.exponent_least = std::max(zeros, 1);
    places.end = i;
}

Places FindPlaces(std::string_view pattern)
{
    Places places;
    std::size_t i = pattern.find_first_of("#0");
    if (i == std::string_view::npos) {
        places.begin = places.end = pattern.size();
        return places;
    }
    if (i > 0 && pattern[i - 1] == '.') --i;
    places.begin = i;
    // Behind the first "0" every further place shows its digit too.
    for (; i < pattern.size() && IsPlace(pattern[i]); ++i) {
        ++places.integer_count;
        if (pattern[i] == '0' || places.integer_least > 0) ++places.integer_least;
    }
    if (i < pattern.size() && pattern[i] == '.') {
        places.has_point = true;
        for (++i; i < pattern.size() && IsPlace(pattern[i]); ++i) {
            ++places.decimals_most;
            if (pattern[i] == '0') places.decimals_least = places.decimals_most;
        }
    }
    places.end = i;
    FindExponent(pattern, places);
    return places;
}

std::string FixedText(const Decimal& decimal, const Places& places, int integer_least)
{
    const int length = static_cast<int>(decimal.digits.size());
    const auto digit = [&](int i) { return i >= 0 && i < length ? decimal.digits[static_cast<std::size_t>(i)] : '0'; };
    const int integer_digits = length == 0 ? 0 : std::max(decimal.point, 0);
    std::string text(static_cast<std::size_t>(std::max(integer_least - integer_digits, 0)), '0');
    for (int i = 0; i < integer_digits; ++i) text += digit(i);
    if (places.has_point) text += '.';
    const int significant = length == 0 ? 0 : length - decimal.point;
    const int decimals = std::clamp(significant, places.decimals_least, places.decimals_most);
    for (int i = 0; i < decimals; ++i) text += digit(decimal.point + i);
    return text;
}

std::string ScientificText(Decimal decimal, const Places& places)
{
    // The mantissa always shows a digit, or 0 would read ".E+0".
    const int integer_digits = std::max(places.integer_count, 1);
    RoundDigits(decimal, integer_digits + places.decimals_most);
    const int exponent = decimal.digits.empty() ? 0 : decimal.point - integer_digits;
    decimal.point -= exponent;
    std::string text = FixedText(decimal, places, std::max(places.integer_least, 1)) + 'E';
    if (exponent < 0)
        text += '-';
    else if (places.exponent_plus)
        text += '+';
    const std::string digits = std::to_string(std::abs(exponent));
    text.append(static_cast<std::size_t>(std::max(places.exponent_least - static_cast<int>(digits.size()), 0)), '0');
    return text + digits;
}

std::string PlainText(double value)
{
    std::array<char, 40> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return std::string(buffer.data(), end);
}

/// The number alone, without the text around it.
std::string NumberText(const Places& places, double value)
{
    if (!std::isfinite(value)) return std::isnan(value) ? "NaN" : value < 0 ? "-Inf" : "Inf";
    Decimal decimal = ShortestDecimal(value);
    if (places.exponent_least == 0) RoundDigits(decimal, decimal.point + places.decimals_most);
    std::string text(value < 0 && !decimal.digits.empty() ? 1U : 0U, '-');
    return text.append(places.exponent_least > 0 ? ScientificText(decimal, places)
                                                 : FixedText(decimal, places, places.integer_least));
}

/// Without blanks around and without a leading plus; empty when that leaves no number.
std::string_view NumberPart(std::string_view text)
{
    text = Trim(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') text.remove_prefix(1);
    return text;
}

} // namespace

std::int32_t RoundHalfEven(double value)
{
    if (std::isnan(value)) return 0;
    constexpr double kLow = std::numeric_limits<std::int32_t>::min();
    constexpr double kHigh = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(std::nearbyint(value), kLow, kHigh));
}

std::string FormatNumber(std::string_view pattern, double value)
{
    const Places places = FindPlaces(pattern);
    if (places.begin < pattern.size()) {
        std::string text(pattern.substr(0, places.begin));
        text += NumberText(places, value);
        text += pattern.substr(places.end);
        return text;
    }
    const std::size_t at = pattern.find('@');
    if (at == std::string_view::npos) return pattern.empty() ? PlainText(value) : std::string(pattern);
    std::string text(pattern.substr(0, at));
    text += PlainText(value);
    text += pattern.substr(at + 1);
    return text;
}

double ShortestDouble(float value)
{
    if (!std::isfinite(value)) return static_cast<double>(value);
    std::array<char, 40> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    double decimal = 0;
    std::from_chars(buffer.data(), end, decimal);
    return decimal;
}

std::optional<double> ParseNumber(std::string_view text)
{
    text = NumberPart(text);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || text.empty()) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Too small is 0, too large is no number that can be held.
        const std::size_t e = text.find_first_of("eE");
        if (e == std::string_view::npos || text.substr(e + 1, 1) != "-") return std::nullopt;
        return text[0] == '-' ? -0.0 : 0.0;
    }
    if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<std::int64_t> ParseInteger(std::string_view text)
{
    text = NumberPart(text);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

} // namespace nmr
