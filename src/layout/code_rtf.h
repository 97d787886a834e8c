#pragma once
// Between the text language and rich text (RTF 1), as rich-text editors and data files carry it.

#include "layout/code_text.h"

#include <string>
#include <string_view>

namespace nmr {

/// Rich text of a text; "" for an empty one. Table entry 0 is the base font, 1 the Symbol face. Characters
/// that the Windows code page 1252 lacks are written in a font of a character set that has them, Greek ... Japanese.
/// @param size points of the base font
std::string Code_To_Rtf(std::string_view text, const FontSpec& font, double size, const CodeTextStyle& style = {});

/// The text of rich text; what is no rich text stays as it is. Pictures, objects and whatever the language
/// can't say are left out. Any bytes are taken; the time is linear in their number.
std::string Rtf_To_Code(std::string_view rich, const FontSpec& font);

/// The letters of rich text alone; what is no rich text stays as it is.
std::string Rtf_Plain(std::string_view rich);

/// Rich text with every size and rise ("\fs", "\up", "\dn") multiplied by a factor.
std::string Rtf_Scale(std::string_view rich, double factor);

} // namespace nmr
