#pragma once
// Spectra as text: columns of position and intensity, and the block form with every parameter.

#include "core/global_block.h"

#include <optional>
#include <string>
#include <string_view>

namespace nmr {

/// What the intensities of WriteDataAscii are; the fourth carries a short head, so that it reads back.
enum class AsciiMode : std::int16_t {
    raw = 0,            ///< as they are
    relative = 1,       ///< over the height of the highest peak
    relative_first = 2, ///< over the largest height in spectrum 1
    displayed = 3,      ///< as on the screen, whose height is 1
};

/// The answer of NMR1D_Form104 ("Set ASCII Data").
struct AsciiChoice {
    AsciiMode mode = AsciiMode::raw;
    bool with_dept = false;
    std::int32_t points = 0; ///< 0: all
    bool operator==(const AsciiChoice&) const = default;
};
/// "R1, 8192" or "DEPT R1, 8192".
std::string AsciiWord(const AsciiChoice& choice);
std::optional<AsciiChoice> ParseAsciiWord(std::string_view word);

/// Writes "ppm, value" lines of the shown row (CurrentRow of slot 0, the first of others), 9 significant
/// digits each, and an empty line. Fewer points than the row has are taken by equal steps over the shown
/// range.
///
/// @param points         of the file; 0 or more than the row has: all
/// @param screen_height  intensity that fills the height of the screen, for AsciiMode::displayed
/// @return bad_value for a slot without a spectrum, unwritable
Status WriteDataAscii(const std::string& path, const GlobalBlock& g, AsciiMode mode, std::int16_t slot,
                      std::int32_t points = 0, double screen_height = 1.0);

/// The text that it writes.
Result<std::string> AsciiText(const GlobalBlock& g, AsciiMode mode, std::int16_t slot, std::int32_t points = 0,
                              double screen_height = 1.0);

/// Writes the block form: the full head, then all points of the shown row as they are.
Status WriteAscii2(const std::string& path, const GlobalBlock& g, std::int16_t slot);
Result<std::string> Ascii2Text(const GlobalBlock& g, std::int16_t slot);

} // namespace nmr
