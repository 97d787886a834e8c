#pragma once
// Rounding, number patterns and the two literals that stand for pi and degrees everywhere.

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nmr {

// Not library constants: results of phase and transform depend on these very digits.
inline constexpr double kPi = 3.14159265358979;
inline constexpr double kDegToRad = 0.0174532925199433;

inline constexpr std::int32_t kMaxPoints = 1'048'576; ///< largest POINT of a row
inline constexpr std::int32_t kMaxRows = 128;         ///< largest RowCount of a set

/// Nearest integer, a half to the even neighbour; saturates at the limits of s32, NaN gives 0.
std::int32_t RoundHalfEven(double value);

/// Formats by a number pattern: "#" digit shown when significant, "0" digit always shown, "." the
/// decimal point, which is always printed where it stands in the pattern ("###." of 4 is "4.");
/// "E+##" after it gives scientific notation; "@" stands for the value as text. Digits beyond the
/// pattern's are rounded half away from zero on the decimal text. Text around the pattern is kept.
/// "#" alone gives no digit for 0.
std::string FormatNumber(std::string_view pattern, double value);

/// The double nearest to the shortest decimal text of a float (0.1F gives 0.1): what a pattern with
/// many digits is to be given, or it prints the float's binary tail.
double ShortestDouble(float value);

/// The ordinary text-to-number conversion: blanks around are allowed, the point is the decimal sign
/// whatever the locale, "D" exponents are not. Nothing when the text is not one number.
std::optional<double> ParseNumber(std::string_view text);
std::optional<std::int64_t> ParseInteger(std::string_view text);

} // namespace nmr
