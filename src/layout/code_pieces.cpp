#include "layout/code_pieces.h"

#include "layout/code_tokens.h"

#include <fmt/format.h>

#include <unordered_map>

namespace nmr {
namespace {

/// The state of a piece's letters as codes, whatever stood before.
std::string CodesOf(const CodePiece& piece, const FontSpec& base, bool symbol)
{
    const auto flag = [](char letter, std::int16_t on) { return fmt::format("\\{}{} ", letter, on != 0 ? 1 : 0); };
    const FontSpec& font = piece.font;
    std::string codes = symbol ? "\\g1 " : font.Name == base.Name ? "\\f0 " : fmt::format("\\f:{}: ", font.Name);
    codes += font.Color == base.Color ? "\\c0 " : fmt::format("\\c:{:x}: ", font.Color);
    codes += flag('i', font.Italic) + flag('b', font.Bold) + flag('u', font.Underline) + flag('s', font.Strikeout);
    codes += piece.script == Script::super ? "\\+1 " : piece.script == Script::sub ? "\\-1 " : "\\+0 ";
    return codes + (font.Size == base.Size ? "\\p0 " : fmt::format("\\p:{}: ", font.Size));
}

bool SameLetters(const CodePiece& a, const FontSpec& font, Script script)
{
    const auto key = [](const FontSpec& f) {
        return std::tuple(f.Name, f.Size, f.Bold, f.Italic, f.Underline, f.Strikeout, f.Color);
    };
    return a.kind == CodePiece::Kind::letters && a.script == script && key(a.font) == key(font);
}

void AppendCoded(std::string& out, char32_t letter)
{
    if (letter == U'\\')
        out += "\\\\";
    else
        AppendUtf8(out, letter);
}

} // namespace

std::vector<CodePiece> Code_To_Pieces(std::string_view text, const FontSpec& base, const CodeTextStyle& style)
{
    std::vector<CodePiece> pieces;
    if (text.empty()) return pieces;
    const std::string code = Group_To_Code(text);
    CodeState state(base, style);
    CodeReader reader(code);
    for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
         token = reader.Next()) {
        FontSpec font = state.font();
        font.Size = static_cast<float>(state.size());
        if (state.greek()) {
            font.Name = base.Name;
            font.Charset = base.Charset;
        }
        if (token.Is("cr") || token.Is("tb")) {
            const auto kind = token.Is("cr") ? CodePiece::Kind::line_end : CodePiece::Kind::tab;
            pieces.push_back({kind, {}, font, state.script()});
        } else if (token.kind == CodeKind::character) {
            if (pieces.empty() || !SameLetters(pieces.back(), font, state.script()))
                pieces.push_back({CodePiece::Kind::letters, {}, font, state.script()});
            AppendUtf8(pieces.back().text, LetterOf(token, state.greek()));
        } else {
            state.Apply(token);
        }
    }
    return pieces;
}

std::string Pieces_To_Code(const std::vector<CodePiece>& pieces, const FontSpec& base)
{
    std::string code = "\\< ";
    bool any = false;
    for (const CodePiece& piece : pieces) {
        if (piece.kind != CodePiece::Kind::letters) {
            code += piece.kind == CodePiece::Kind::tab ? "\\tb " : "\\cr ";
            continue;
        }
        bool symbol = false, begun = false;
        for (std::size_t at = 0; at < piece.text.size();) {
            const char32_t letter = TakeUtf8(piece.text, at);
            const auto in_symbol = SymbolCodeOf(letter);
            if (!begun || symbol != in_symbol.has_value()) code += CodesOf(piece, base, in_symbol.has_value());
            begun = any = true;
            symbol = in_symbol.has_value();
            if (symbol && *in_symbol > 127)
                code += fmt::format("\\'{:02x}:", *in_symbol);
            else
                AppendCoded(code, symbol ? char32_t{*in_symbol} : letter);
        }
    }
    return any ? Tidy_Code(code + "\\>", base) : std::string();
}

std::optional<unsigned char> SymbolCodeOf(char32_t letter)
{
    static const auto codes = [] {
        std::unordered_map<char32_t, unsigned char> map;
        for (unsigned code = 0x20; code < 0x100; ++code) {
            const char32_t unicode = SymbolToUnicode(code);
            if (unicode > 0xFF && !ToCp1252(unicode)) map.try_emplace(unicode, static_cast<unsigned char>(code));
        }
        return map;
    }();
    const auto found = codes.find(letter);
    return found == codes.end() ? std::nullopt : std::optional(found->second);
}

} // namespace nmr
