#pragma once
// Day numbers and date patterns. A DateSerial counts days from 30 Dec 1899; no time zone is ever
// applied, so that results don't depend on the machine.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nmr {

inline constexpr std::int32_t kUnixEpochSerial = 25569;  ///< 1970-01-01
inline constexpr std::int32_t kDeltaEpochSerial = 32874; ///< 1990-01-01

struct DateTime {
    std::int32_t serial = 0;      ///< days from 30 Dec 1899
    double fraction_of_day = 0.0; ///< 0 <= x < 1
};

/// "yyyy" year, "mm" month number, "mmm" short month name, "dd" day, "ddd" short day name; in a time
/// "hh", "nn", "ss". Everything else is kept: FormatDate("dd/mmm/yyyy hh:nn:ss", t).
std::string FormatDate(std::string_view pattern, const DateTime& when);

/// Reads the date texts that the system and instruments write: "dd/mmm/yyyy[ hh:nn:ss]",
/// "yyyy/mm/dd[ hh:nn:ss]", "yyyy-mm-dd", "mmm dd yyyy", "yyyymmddThhnnss", "Mon Feb 01 15:24:11 2021".
std::optional<DateTime> Parse_DateTime(std::string_view text);

/// Now, in local time.
DateTime NowLocal();

/// The same from seconds since 1970-01-01 (UTC, not shifted).
DateTime FromUnixSeconds(double seconds);

} // namespace nmr
