#pragma once
// The character sets that fonts of rich text are in, and the code pages behind them.

#include <cstdint>
#include <string>
#include <string_view>

namespace nmr {

inline constexpr std::int16_t kShiftJisCharset = 128;

/// Code page of a character set; nullptr where bytes are letters of the Windows page 1252 (or of the Symbol
/// face), and for a set that is not known.
const char* PageOfCharset(int charset);
/// Name of a numbered page ("CP1251"), as rich text names its own; nullptr for 1252 and for unknown ones.
const char* PageOfNumber(int number);

/// A letter that the Windows page 1252 lacks, in a character set that has it; "?" where none has.
struct ForeignLetter {
    std::int16_t charset = kShiftJisCharset;
    std::string bytes;
};
ForeignLetter ToForeign(char32_t letter);

} // namespace nmr
