#include "layout/code_pages.h"

#include "core/text.h"
#include "layout/code_tokens.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace nmr {
namespace {

// Numbers of the character sets in fonts: Rich Text Format Specification 1.9, "Font Table".
struct PageRow {
    std::int16_t charset;
    int number;
    const char* page;
};
constexpr std::array<PageRow, 14> kPages{{{77, 10000, "MACINTOSH"},
                                          {kShiftJisCharset, 932, "CP932"},
                                          {129, 949, "CP949"},
                                          {134, 936, "CP936"},
                                          {136, 950, "CP950"},
                                          {161, 1253, "CP1253"},
                                          {162, 1254, "CP1254"},
                                          {163, 1258, "CP1258"},
                                          {177, 1255, "CP1255"},
                                          {178, 1256, "CP1256"},
                                          {186, 1257, "CP1257"},
                                          {204, 1251, "CP1251"},
                                          {222, 874, "CP874"},
                                          {238, 1250, "CP1250"}}};
constexpr std::int16_t kGreek = 161, kCyrillic = 204, kEastEurope = 238;

using LetterMap = std::unordered_map<char32_t, ForeignLetter>;

LetterMap OneByteLetters()
{
    LetterMap letters;
    for (const std::int16_t charset : {kGreek, kCyrillic, kEastEurope}) {
        for (int byte = 128; byte < 256; ++byte) {
            const std::string one(1, static_cast<char>(byte));
            const std::string utf8 = FromCodePage(one, PageOfCharset(charset));
            std::size_t at = 0;
            const char32_t letter = TakeUtf8(utf8, at);
            constexpr char32_t kNone = 0xFFFD;
            if (letter != kNone) letters.try_emplace(letter, ForeignLetter{charset, one});
        }
    }
    return letters;
}

} // namespace

const char* PageOfCharset(int charset)
{
    const auto row = std::ranges::find(kPages, charset, &PageRow::charset);
    return row == kPages.end() ? nullptr : row->page;
}

const char* PageOfNumber(int number)
{
    const auto row = std::ranges::find(kPages, number, &PageRow::number);
    return row == kPages.end() ? nullptr : row->page;
}

ForeignLetter ToForeign(char32_t letter)
{
    static const LetterMap letters = OneByteLetters();
    if (const auto found = letters.find(letter); found != letters.end()) return found->second;
    std::string utf8;
    AppendUtf8(utf8, letter);
    return {kShiftJisCharset, ToCp932(utf8)};
}

} // namespace nmr
