#include "core/dates.h"

#include "core/numbers.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ctime>
#include <fmt/format.h>
#include <vector>

namespace nmr {

namespace {

constexpr std::array<std::string_view, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<std::string_view, 7> kWeekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::int32_t kFirstSerial = -693593; ///< 0001-01-01
constexpr std::int32_t kLastSerial = 2958465;  ///< 9999-12-31
constexpr int kSecondsPerDay = 86400;

/// A day and the whole second in it, as they are printed.
struct Moment {
    std::chrono::year_month_day date;
    unsigned weekday = 0;
    int second = 0;
};

Moment MomentOf(const DateTime& when)
{
    std::int32_t serial = std::clamp(when.serial, kFirstSerial, kLastSerial);
    const double fraction = std::isfinite(when.fraction_of_day) ? std::clamp(when.fraction_of_day, 0.0, 1.0) : 0.0;
    int second = RoundHalfEven(fraction * kSecondsPerDay);
    if (second >= kSecondsPerDay) { // the last half second belongs to the next day
        second = 0;
        serial = std::min(serial + 1, kLastSerial);
    }
    const std::chrono::sys_days days{std::chrono::days{serial - kUnixEpochSerial}};
    return {days, std::chrono::weekday(days).c_encoding(), second};
}

using Writer = std::string (*)(const Moment&);
struct DateToken {
    std::string_view text;
    Writer write;
};
// Longer words before their own beginnings.
constexpr DateToken kTokens[] = {
    {"yyyy", [](const Moment& m) { return fmt::format("{:04}", static_cast<int>(m.date.year())); }},
    {"mmm", [](const Moment& m) { return std::string(kMonths[static_cast<unsigned>(m.date.month()) - 1]); }},
    {"mm", [](const Moment& m) { return fmt::format("{:02}", static_cast<unsigned>(m.date.month())); }},
    {"ddd", [](const Moment& m) { return std::string(kWeekdays[m.weekday]); }},
    {"dd", [](const Moment& m) { return fmt::format("{:02}", static_cast<unsigned>(m.date.day())); }},
    {"hh", [](const Moment& m) { return fmt::format("{:02}", m.second / 3600); }},
    {"nn", [](const Moment& m) { return fmt::format("{:02}", m.second / 60 % 60); }},
    {"ss", [](const Moment& m) { return fmt::format("{:02}", m.second % 60); }},
};

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::string_view TakeWhile(std::string_view& text, bool (*belongs)(char))
{
    const auto end = std::ranges::find_if_not(text, belongs);
    const auto taken = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(taken.size());
    return taken;
}

int NumberOf(std::string_view digits)
{
    return static_cast<int>(ParseInteger(digits).value_or(-1));
}

/// What a date text is made of, gathered from left to right.
struct DateParts {
    std::vector<std::string_view> numbers;
    int month = 0; ///< by its name
    double second = -1;
    bool failed = false;
};

std::optional<double> SecondOfDay(int hour, int minute, double second)
{
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || !(second >= 0 && second < 60)) return std::nullopt;
    return hour * 3600 + minute * 60 + second;
}

/// Takes ":nn[:ss[.fff]]" behind an hour, and a zone such as "+0100", which is not applied.
void TakeTime(std::string_view hour, std::string_view& rest, DateParts& parts)
{
    rest.remove_prefix(1);
    const auto minute = TakeWhile(rest, IsDigit);
    double second = 0;
    if (!rest.empty() && rest.front() == ':') {
        rest.remove_prefix(1);
        const auto text = TakeWhile(rest, [](char c) { return IsDigit(c) || c == '.'; });
        second = ParseNumber(text).value_or(-1);
    }
    const auto whole =
        minute.size() == 2 && hour.size() <= 2 ? SecondOfDay(NumberOf(hour), NumberOf(minute), second) : std::nullopt;
    if (!whole || parts.second >= 0)
        parts.failed = true;
    else
        parts.second = *whole;
    std::string_view zone = Trim(rest);
    if (!zone.empty() && (zone.front() == '+' || zone.front() == '-')) {
        zone.remove_prefix(1);
        TakeWhile(zone, [](char c) { return IsDigit(c) || c == ':'; });
        rest = zone;
    }
}

/// A month, a weekday, "AM" or "PM", the "T" between date and time, or the name of a time zone.
void TakeWord(std::string_view word, DateParts& parts)
{
    const auto is_start = [&](std::string_view name) {
        return EqualsNoCase(word.substr(0, 3), name) && word.size() >= 3;
    };
    if (const auto month = std::ranges::find_if(kMonths, is_start); month != kMonths.end()) {
        if (parts.month != 0) parts.failed = true;
        parts.month = static_cast<int>(month - kMonths.begin()) + 1;
        return;
    }
    if (std::ranges::any_of(kWeekdays, is_start) || EqualsNoCase(word, "T")) return;
    constexpr double kNoon = kSecondsPerDay / 2;
    const bool morning = EqualsNoCase(word, "AM"), afternoon = EqualsNoCase(word, "PM");
    const bool zone = word.size() <= 5 && word == ToUpper(word);
    if (parts.second < 0 || !(morning || afternoon || zone)) parts.failed = true;
    if (morning && parts.second >= kNoon) parts.second -= kNoon;
    if (afternoon && parts.second >= 0 && parts.second < kNoon) parts.second += kNoon;
}

DateParts Gather(std::string_view rest)
{
    DateParts parts;
    while (!rest.empty() && !parts.failed) {
        if (IsDigit(rest.front())) {
            const auto digits = TakeWhile(rest, IsDigit);
            if (!rest.empty() && rest.front() == ':')
                TakeTime(digits, rest, parts);
            else
                parts.numbers.push_back(digits);
        } else if (IsLetter(rest.front())) {
            TakeWord(TakeWhile(rest, IsLetter), parts);
        } else {
            if (std::string_view(" \t,/-.").find(rest.front()) == std::string_view::npos) parts.failed = true;
            rest.remove_prefix(1);
        }
    }
    return parts;
}

std::optional<std::int32_t> SerialOf(int year, int month, int day)
{
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok()) return std::nullopt;
    return static_cast<std::int32_t>(std::chrono::sys_days(date).time_since_epoch().count()) + kUnixEpochSerial;
}

/// "20210201" and "152411" of the compact form.
std::optional<DateTime> CompactDate(const DateParts& parts)
{
    const std::string_view day = parts.numbers[0];
    const auto serial = SerialOf(NumberOf(day.substr(0, 4)), NumberOf(day.substr(4, 2)), NumberOf(day.substr(6, 2)));
    if (!serial) return std::nullopt;
    if (parts.numbers.size() == 1) return DateTime{*serial, std::max(parts.second, 0.0) / kSecondsPerDay};
    const std::string_view time = parts.numbers[1];
    if (time.size() != 6 || parts.numbers.size() > 2 || parts.second >= 0) return std::nullopt;
    const auto second =
        SecondOfDay(NumberOf(time.substr(0, 2)), NumberOf(time.substr(2, 2)), NumberOf(time.substr(4, 2)));
    if (!second) return std::nullopt;
    return DateTime{*serial, *second / kSecondsPerDay};
}

/// The day of a text with the month by name: day and year in either order, told apart by the length.
std::optional<std::int32_t> NamedMonthDay(const DateParts& parts)
{
    if (parts.numbers.size() != 2) return std::nullopt;
    std::string_view day = parts.numbers[0], year = parts.numbers[1];
    if (day.size() == 4) std::swap(day, year);
    if (day.size() > 2 || (year.size() != 4 && year.size() != 2)) return std::nullopt;
    int full_year = NumberOf(year);
    if (year.size() == 2) full_year += full_year < 70 ? 2000 : 1900;
    return SerialOf(full_year, parts.month, NumberOf(day));
}

} // namespace

std::string FormatDate(std::string_view pattern, const DateTime& when)
{
    const Moment moment = MomentOf(when);
    std::string text;
    while (!pattern.empty()) {
        const auto token =
            std::ranges::find_if(kTokens, [&](const DateToken& t) { return pattern.starts_with(t.text); });
        if (token == std::end(kTokens)) {
            text += pattern.front();
            pattern.remove_prefix(1);
        } else {
            text += token->write(moment);
            pattern.remove_prefix(token->text.size());
        }
    }
    return text;
}

std::optional<DateTime> Parse_DateTime(std::string_view text)
{
    const DateParts parts = Gather(Trim(text));
    if (parts.failed || parts.numbers.empty()) return std::nullopt;
    if (parts.month == 0 && parts.numbers[0].size() == 8) return CompactDate(parts);
    std::optional<std::int32_t> serial;
    if (parts.month != 0)
        serial = NamedMonthDay(parts);
    else if (parts.numbers.size() == 3 && parts.numbers[0].size() == 4)
        serial = SerialOf(NumberOf(parts.numbers[0]), NumberOf(parts.numbers[1]), NumberOf(parts.numbers[2]));
    if (!serial) return std::nullopt;
    return DateTime{*serial, std::max(parts.second, 0.0) / kSecondsPerDay};
}

DateTime NowLocal()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (localtime_r(&now, &local) == nullptr) return FromUnixSeconds(static_cast<double>(now));
    // The local calendar and clock, counted as if they were UTC.
    return FromUnixSeconds(static_cast<double>(timegm(&local)));
}

DateTime FromUnixSeconds(double seconds)
{
    if (!std::isfinite(seconds)) return {kUnixEpochSerial, 0.0};
    const double day = std::floor(seconds / kSecondsPerDay);
    const double serial = day + kUnixEpochSerial;
    if (serial < kFirstSerial) return {kFirstSerial, 0.0};
    if (serial > kLastSerial) return {kLastSerial, 0.0};
    const double fraction = (seconds - day * kSecondsPerDay) / kSecondsPerDay;
    return {static_cast<std::int32_t>(serial), std::clamp(fraction, 0.0, std::nextafter(1.0, 0.0))};
}

} // namespace nmr
