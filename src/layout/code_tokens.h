#pragma once
// The walk over a text in the current form of the text language, shared by drawing, measuring and the
// conversions.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nmr {

enum class CodeKind { end, character, open, close, code };

struct CodeToken {
    CodeKind kind = CodeKind::end;
    char32_t character = 0;     ///< of a character, and of "\'hh:"
    bool coded = false;         ///< the character was written as "\'hh:"
    std::string_view code = {}; ///< "i1", "cr"; "f:", "p:" and "c:" for those with a value
    std::string_view value = {};
    bool Is(std::string_view text) const { return kind == CodeKind::code && code == text; }
};

/// Reads one token after the other; what is unterminated reads to the end of the text.
class CodeReader {
public:
    enum class Open { swallows_blank, leaves_blank };
    explicit CodeReader(std::string_view text, Open open = Open::swallows_blank, std::size_t position = 0) :
        text_(text), position_(position), open_(open)
    {
    }
    CodeToken Next();
    std::size_t position() const { return position_; } ///< of what is read next
    std::string_view rest() const { return text_.substr(position_); }

private:
    char Take() { return text_[position_++]; }
    bool AtEnd() const { return position_ >= text_.size(); }
    void SkipBlank();
    std::string_view TakeValue();
    CodeToken TakeCode();
    CodeToken TakeCoded();

    std::string_view text_;
    std::size_t position_;
    Open open_;
};

/// Reads one character of UTF-8 and moves on; a byte that begins none is taken as Latin-1.
char32_t TakeUtf8(std::string_view text, std::size_t& position);
void AppendUtf8(std::string& text, char32_t character);
/// Of the Windows code page 1252.
char32_t FromCp1252(unsigned char byte);
std::optional<unsigned char> ToCp1252(char32_t character);

/// Size of "\p:", when it counts: 1 and more.
std::optional<double> CodeSize(std::string_view value);
/// Colour of "\c:"; what is no hexadecimal digit is passed over.
std::int32_t CodeColor(std::string_view value);
/// Hexadecimal digits of a text, others passed over; the low 32 bits.
std::uint32_t HexDigits(std::string_view text);

} // namespace nmr
