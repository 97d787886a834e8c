#include "layout/code_tokens.h"

#include "core/numbers.h"

#include <algorithm>
#include <array>

namespace nmr {
namespace {

// 0x80 to 0x9F; 0 where the page has no character.
constexpr std::array<char16_t, 32> kCp1252High{0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                               0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

int HexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

char32_t TakeUtf8(std::string_view text, std::size_t& position)
{
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(position++);
    const int more = first >= 0xF0 && first < 0xF8   ? 3
                     : first >= 0xE0 && first < 0xF0 ? 2
                     : first >= 0xC2 && first < 0xE0 ? 1
                                                     : 0;
    if (more == 0) return first;
    char32_t character = first & (0x3FU >> static_cast<unsigned>(more));
    for (int i = 0; i < more; ++i) {
        const std::size_t at = position + static_cast<std::size_t>(i);
        if (at >= text.size() || (byte(at) & 0xC0U) != 0x80U) return first;
        character = character << 6U | (byte(at) & 0x3FU);
    }
    position += static_cast<std::size_t>(more);
    return character;
}

void AppendUtf8(std::string& text, char32_t character)
{
    const auto put = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    const auto tail = [&](unsigned shift) { put(0x80U | (character >> shift & 0x3FU)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0U | character >> 6U);
        tail(0);
    } else if (character < 0x10000) {
        put(0xE0U | character >> 12U);
        tail(6);
        tail(0);
    } else {
        put(0xF0U | (character >> 18U & 7U));
        tail(12);
        tail(6);
        tail(0);
    }
}

char32_t FromCp1252(unsigned char byte)
{
    if (byte < 0x80 || byte >= 0xA0) return byte;
    const char32_t character = kCp1252High[byte - 0x80U];
    return character == 0 ? byte : character;
}

std::optional<unsigned char> ToCp1252(char32_t character)
{
    if (character < 0x80 || (character >= 0xA0 && character < 0x100)) return static_cast<unsigned char>(character);
    const auto found = std::ranges::find(kCp1252High, static_cast<char16_t>(character));
    if (character > 0xFFFF || found == kCp1252High.end()) return std::nullopt;
    return static_cast<unsigned char>(0x80 + (found - kCp1252High.begin()));
}

std::uint32_t HexDigits(std::string_view text)
{
    std::uint32_t value = 0;
    for (const char c : text)
        if (const int digit = HexDigit(c); digit >= 0) value = value << 4U | static_cast<std::uint32_t>(digit);
    return value;
}

std::int32_t CodeColor(std::string_view value)
{
    return static_cast<std::int32_t>(HexDigits(value) & 0xFFFFFFU);
}

std::optional<double> CodeSize(std::string_view value)
{
    constexpr double kLargest = 10000; // a page is no larger
    std::string digits;
    std::ranges::copy_if(value, std::back_inserter(digits), [](char c) { return c == '.' || (c >= '0' && c <= '9'); });
    const auto size = ParseNumber(digits);
    if (!size || *size < 1) return std::nullopt;
    return std::min(*size, kLargest);
}

void CodeReader::SkipBlank()
{
    if (!AtEnd() && text_[position_] == ' ') ++position_;
}

std::string_view CodeReader::TakeValue()
{
    const std::size_t end = std::min(text_.find(':', position_), text_.size());
    const std::string_view value = text_.substr(position_, end - position_);
    position_ = std::min(end + 1, text_.size());
    return value;
}

CodeToken CodeReader::TakeCoded()
{
    CodeToken token{.kind = CodeKind::character, .coded = true};
    token.value = TakeValue();
    token.character = HexDigits(token.value) & 0xFFU;
    return token;
}

CodeToken CodeReader::TakeCode()
{
    if (AtEnd()) return {};
    const std::size_t begin = position_;
    switch (Take()) {
    case '<':
        if (open_ == Open::swallows_blank) SkipBlank();
        return {.kind = CodeKind::open};
    case '>':
        return {.kind = CodeKind::close};
    case '\\':
        return {.kind = CodeKind::character, .character = U'\\'};
    case '\'':
        return TakeCoded();
    default:
        break;
    }
    position_ = begin; // two characters, of whatever length
    static_cast<void>(TakeUtf8(text_, position_));
    if (AtEnd()) return {};
    const char32_t second = TakeUtf8(text_, position_);
    CodeToken token{.kind = CodeKind::code, .code = text_.substr(begin, position_ - begin)};
    const bool takes_value = text_[begin] == 'f' || text_[begin] == 'p' || text_[begin] == 'c';
    if (second == U':' && takes_value) token.value = TakeValue();
    SkipBlank();
    return token;
}

CodeToken CodeReader::Next()
{
    while (!AtEnd()) {
        if (text_[position_] == '\\') {
            ++position_;
            return TakeCode();
        }
        const char32_t character = TakeUtf8(text_, position_);
        if (character >= 32) return {.kind = CodeKind::character, .character = character};
    }
    return {};
}

} // namespace nmr
