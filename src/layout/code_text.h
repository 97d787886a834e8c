#pragma once
// The formatted-text language of labels, headings and text objects: one line of plain text that carries
// fonts, slant, weight, scripts, Greek, colours and line ends as codes that begin with a backslash.
//
// "\< CDCl\-1 3\-0 \>" is CDCl with a lowered 3. A text that does not begin with "\<" is in the older group
// form, "\i(in italics)", and is rewritten before it is read. Lengths are in the units of the canvas; texts
// are UTF-8, and a character of code hh ("\'b0:") is meant in the Windows code page 1252.

#include "core/data_set.h"
#include "layout/canvas.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nmr {

/// The font argument of all operations. The flags are -1 or 0.
struct FontSpec {
    std::string Name = "Liberation Sans";
    float Size = 10.0F; ///< points
    std::int16_t Bold = 0, Italic = 0, Underline = 0, Strikeout = 0;
    std::int32_t Color = 0; ///< red + 256 green + 65536 blue
    std::int16_t Charset = 0;
};
FontSpec ToFontSpec(const FontRec& font);

inline constexpr std::int16_t kSymbolCharset = 2;
inline constexpr int kNormalWeight = 400;

/// What the language takes from the settings.
struct CodeTextStyle {
    double SuperSubSize = 0.65; ///< size of scripts, a factor
    std::string GreekFontName = "Symbol";
};

// --- Runs: letters of one font

struct RunExtent {
    double width = 0, height = 0, ascent = 0;
};
/// Extent of letters that stand in one font: measured at ten times the size without hinting, one letter at a
/// time, so that a layout is the same on every target. Nothing for an empty run.
/// @param scale canvas units in a point
RunExtent Measure_Run(Canvas& device, std::string_view run, const FontSpec& font, double scale,
                      int weight = kNormalWeight);
/// Draws a run with the upper left corner of its cell at x, y; letters in the Symbol face are drawn as
/// Unicode letters of an ordinary face. Returns its extent.
/// @param angle_deg counter-clockwise
/// @param direction 1: y runs down, -1: up
RunExtent Text_Run(Canvas& device, double x, double y, std::string_view run, const FontSpec& font, double angle_deg,
                   double scale, int weight = kNormalWeight, int direction = 1);
/// Unicode letter of a code of the Symbol face (also where it lies at U+F000); others stay.
char32_t SymbolToUnicode(char32_t code);

// --- Whole texts

enum class Lines { first_only, all };
/// Width of a text: of its first line, or the widths of all lines added up.
double Measure_CodeText(Canvas& device, std::string_view text, const FontSpec& font, double scale,
                        Lines lines = Lines::first_only, int weight = kNormalWeight, const CodeTextStyle& style = {});

/// Where and how a text is drawn, and what is known of it afterwards.
struct CodeTextPlace {
    int direction = 1;      ///< 1: y runs down, -1: up, 0: lay out only
    double x = 0, y = 0;    ///< upper left corner of the first line
    double angle_deg = 0;   ///< counter-clockwise, about that corner
    bool one_line = false;  ///< stop at the first line end or wrap and return the rest
    double right_limit = 0; ///< in: lines are wrapped here, 0: never; out: the widest line
    double left_margin = 0; ///< of all lines but the first
    double scale = 1;       ///< canvas units in a point
    int weight = kNormalWeight;
    double bottom = 0; ///< out: of the last line, from y
};
/// Draws a text; @return with `one_line` the rest as a text of its own, "" when nothing of it would show
std::string Draw_CodeText(Canvas& device, std::string_view text, const FontSpec& font, CodeTextPlace& place,
                          const CodeTextStyle& style = {});

/// Height of the line that begins at a byte of a text in current form: of the base font, or of a larger size
/// that the line asks for.
double Line_Height(std::string_view text, std::size_t position, const FontSpec& font, double scale);

// --- Forms of a text

/// The older group form into the current form; a text in current form stays as it is.
std::string Group_To_Code(std::string_view text);
/// The current form for an older reader.
std::string Code_To_Group(std::string_view text);
/// Plain text: line ends become codes, a tab four blanks, a backslash two.
std::string Code_From_Plain(std::string_view text);
/// The letters alone; line ends are "\n", tabs "\t".
std::string Plain_From_Code(std::string_view text);
/// The same text without codes that change nothing, so that editing it again and again does not make it grow.
std::string Tidy_Code(std::string_view text, const FontSpec& font);

enum class ExponentSigns { plain, typographic }; ///< "x" and "-", or U+00D7 and U+00AD
/// A value as mantissa times ten to a raised exponent, a piece of a text in current form: "1.5x10\+1 -3\+0 ".
/// @param digits of the mantissa behind the point, at most
std::string Format_Exp(double value, int digits, ExponentSigns signs);

} // namespace nmr
