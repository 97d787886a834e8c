#include "layout/code_state.h"

#include <fmt/format.h>

#include <array>

namespace nmr {
namespace {

constexpr std::int16_t kOn = -1;
/// A longer name is no face's; kept whole it would be repeated at every change of the letters.
constexpr std::size_t kLongestFace = 100;

std::string FaceOf(std::string_view value)
{
    if (value.size() <= kLongestFace) return std::string(value);
    std::size_t end = kLongestFace;
    while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0U) == 0x80U) --end; // not inside a letter
    return std::string(value.substr(0, end));
}

struct Switch {
    char letter;
    std::int16_t FontSpec::*flag;
};
constexpr std::array<Switch, 4> kSwitches{
    {{'i', &FontSpec::Italic}, {'b', &FontSpec::Bold}, {'s', &FontSpec::Strikeout}, {'u', &FontSpec::Underline}}};

} // namespace

CodeState::CodeState(const FontSpec& base, const CodeTextStyle& style) :
    base_(&base), style_(&style), shape_(base), size_(static_cast<double>(base.Size))
{
}

bool CodeState::ApplyValue(const CodeToken& token)
{
    if (token.code == "f:") {
        shape_.Name = FaceOf(token.value);
        shape_.Charset =
            token.value == style_->GreekFontName || token.value == "Symbol" ? kSymbolCharset : base_->Charset;
        return true;
    }
    if (token.code == "c:") shape_.Color = CodeColor(token.value);
    if (token.code != "p:") return token.code == "c:";
    if (const auto size = CodeSize(token.value)) size_ = *size;
    return true;
}

bool CodeState::Apply(const CodeToken& token)
{
    if (token.kind != CodeKind::code || token.code.size() != 2) return false;
    const char letter = token.code[0], value = token.code[1];
    if (value == ':') return ApplyValue(token);
    if (value != '0' && value != '1') return false;
    const bool on = value == '1';
    for (const Switch& s : kSwitches)
        if (s.letter == letter) {
            shape_.*s.flag = on ? kOn : std::int16_t{0};
            return true;
        }
    if (letter == '+' || letter == '-') {
        script_ = !on ? Script::none : letter == '+' ? Script::super : Script::sub;
    } else if (letter == 'g' || (letter == 'f' && !on)) {
        shape_.Name = letter == 'g' && on ? style_->GreekFontName : base_->Name;
        shape_.Charset = letter == 'g' && on ? kSymbolCharset : base_->Charset;
    } else if (letter == 'p' && !on) {
        size_ = static_cast<double>(base_->Size);
    } else if (letter == 'c' && !on) {
        shape_.Color = base_->Color;
    } else {
        return false;
    }
    return true;
}

FontSpec CodeState::font() const
{
    FontSpec font = shape_;
    font.Size = static_cast<float>(script_ == Script::none ? size_ : size_ * style_->SuperSubSize);
    return font;
}

std::string CodeState::CodesFrom(const CodeState& other) const
{
    std::string codes, symbol;
    if (shape_.Name != other.shape_.Name || shape_.Charset != other.shape_.Charset) {
        if (shape_.Name == style_->GreekFontName && greek())
            symbol = "\\g1 ";
        else if (shape_.Name == base_->Name && shape_.Charset == base_->Charset)
            codes = other.shape_.Name == style_->GreekFontName ? "\\g0 " : "\\f0 ";
        else
            codes = fmt::format("\\f:{}: ", shape_.Name);
    }
    if (shape_.Color != other.shape_.Color)
        codes += shape_.Color == base_->Color ? "\\c0 " : fmt::format("\\c:{:x}: ", shape_.Color);
    for (const Switch& s : kSwitches) {
        if (s.letter == 's') codes += symbol; // its place among the codes of a rest
        if ((shape_.*s.flag != 0) != (other.shape_.*s.flag != 0))
            codes += fmt::format("\\{}{} ", s.letter, shape_.*s.flag != 0 ? 1 : 0);
    }
    if (script_ != other.script_)
        codes += script_ == Script::super         ? "\\+1 "
                 : script_ == Script::sub         ? "\\-1 "
                 : other.script_ == Script::super ? "\\+0 "
                                                  : "\\-0 ";
    if (size_ != other.size_)
        codes += size_ == static_cast<double>(base_->Size) ? "\\p0 " : fmt::format("\\p:{}: ", size_);
    return codes;
}

char32_t LetterOf(const CodeToken& token, bool greek)
{
    constexpr char32_t kSoftHyphen = 0xAD, kMinus = 0x2212;
    if (greek) return SymbolToUnicode(token.character);
    if (token.character == kSoftHyphen) return kMinus; // older texts mean the sign, which shows
    return token.coded ? FromCp1252(static_cast<unsigned char>(token.character)) : token.character;
}

} // namespace nmr
