#pragma once
// A formatted text as pieces of equal letters, as editors hold it.

#include "layout/code_state.h"
#include "layout/code_text.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

struct CodePiece {
    enum class Kind { letters, tab, line_end } kind = Kind::letters;
    std::string text; ///< of letters, UTF-8; those of the Symbol face as Unicode has them
    FontSpec font;    ///< its size before the reduction of a script; never the Symbol face
    Script script = Script::none;
};

std::vector<CodePiece> Code_To_Pieces(std::string_view text, const FontSpec& base, const CodeTextStyle& style = {});
/// The text in its normal form (Tidy_Code), "" without letters. Letters that the Windows code page lacks and the
/// Symbol face has are written in it, as older readers need them.
std::string Pieces_To_Code(const std::vector<CodePiece>& pieces, const FontSpec& base);

/// Code in the Symbol face of a Unicode letter that the Windows code page 1252 lacks.
std::optional<unsigned char> SymbolCodeOf(char32_t letter);

} // namespace nmr
