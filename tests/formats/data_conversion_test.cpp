#include "formats/data_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace nmr {
namespace {

using Raw = std::vector<std::byte>;

Raw Of(std::initializer_list<unsigned> values)
{
    Raw bytes;
    for (const unsigned value : values) bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

Raw Of(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

/// The machine's own bytes of a value, after one byte that the offset has to skip.
template <class T>
Raw Native(T value, std::endian order)
{
    Raw bytes(sizeof(T));
    std::memcpy(bytes.data(), &value, sizeof(T));
    if (order != std::endian::native) std::reverse(bytes.begin(), bytes.end());
    bytes.insert(bytes.begin(), std::byte{0x5A});
    return bytes;
}

template <class T, class Decode>
void ExpectDecodes(T value, std::endian order, Decode decode)
{
    const T decoded = decode(Native(value, order), 1);
    EXPECT_EQ(std::memcmp(&decoded, &value, sizeof(T)), 0) << value << " became " << decoded;
}

TEST(DataConversion, IntegersAndIeeeFloatsInBothOrders)
{
    std::mt19937_64 random(20240501);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t bits = random();
        const auto s32 = static_cast<std::int32_t>(bits);
        const auto s16 = static_cast<std::int16_t>(bits);
        const float f32 = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        const double f64 = std::bit_cast<double>(bits);
        ExpectDecodes(s32, std::endian::big, GetLongBE);
        ExpectDecodes(s32, std::endian::little, GetLongLE);
        ExpectDecodes(s16, std::endian::big, GetShortBE);
        ExpectDecodes(s16, std::endian::little, GetShortLE);
        ExpectDecodes(f32, std::endian::big, GetSingleBE);
        ExpectDecodes(f32, std::endian::little, GetSingleLE);
        ExpectDecodes(f64, std::endian::little, GetDoubleLE);
        if (bits >> 48 != 0) ExpectDecodes(f64, std::endian::big, GetDoubleBE);
    }
}

TEST(DataConversion, BigEndianDoubleWithoutExponentIsZero)
{
    // What stands behind two zero bytes is no number that a spectrometer stored.
    EXPECT_EQ(GetDoubleBE(Of({0, 0, 1, 2, 3, 4, 5, 6}), 0), 0.0);
    EXPECT_EQ(GetDoubleBE(Of({0x3F, 0xF0, 0, 0, 0, 0, 0, 0}), 0), 1.0);
    EXPECT_EQ(GetDoubleBE(Of({0xC0, 0x59, 0, 0, 0, 0, 0, 0}), 0), -100.0);
}

TEST(DataConversion, VaxFloatsWorkedByHand)
{
    struct Case {
        const char* name;
        std::initializer_list<unsigned> bytes;
        double value;
    };
    const Case cases[] = {
        {"zero, whatever follows", {0, 0, 0xFF, 0xFF}, 0.0},
        {"1", {0x80, 0x40, 0, 0}, 1.0},
        {"-1", {0x80, 0xC0, 0, 0}, -1.0},
        {"0.5", {0x00, 0x40, 0, 0}, 0.5},
        {"10", {0x20, 0x42, 0, 0}, 10.0},
        {"-400", {0xC8, 0xC4, 0, 0}, -400.0},
        {"1 + 2^-23, the last bit", {0x80, 0x40, 0x01, 0x00}, 1.00000011920928955078125},
        {"1 + 2^-15, in the fourth byte", {0x80, 0x40, 0x00, 0x01}, 1.000030517578125},
        {"pi", {0x49, 0x41, 0xDB, 0x0F}, 3.1415927410125732},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(static_cast<double>(GetSingleVAX(Of(c.bytes), 0)), c.value);
        // The double is the single with four more bytes.
        Raw wide = Of(c.bytes);
        wide.resize(8);
        EXPECT_EQ(GetDoubleVAX(wide, 0), c.value);
    }
}

/// Stores a number as a VAX D float: exponent in excess of 128 over 0.5 <= m < 1, the leading one
/// hidden, 16-bit words in falling order of weight.
Raw EncodeVaxD(double value)
{
    int exponent = 0;
    const double share = std::frexp(std::fabs(value), &exponent);
    const auto mantissa = static_cast<std::uint64_t>(std::ldexp(share, 56));
    const std::uint64_t image = (std::signbit(value) ? std::uint64_t{1} << 63 : 0) |
                                static_cast<std::uint64_t>(exponent + 128) << 55 |
                                (mantissa & ((std::uint64_t{1} << 55) - 1));
    Raw bytes;
    for (int word = 3; word >= 0; --word) {
        bytes.push_back(static_cast<std::byte>(image >> (16 * word) & 255));
        bytes.push_back(static_cast<std::byte>(image >> (16 * word + 8) & 255));
    }
    return bytes;
}

TEST(DataConversion, VaxFloatsOfAllMagnitudes)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> exponent(-37.0, 37.0);
    for (int i = 0; i < 2000; ++i) {
        const double value = (i % 2 == 0 ? 1.0 : -1.0) * std::pow(10.0, exponent(random));
        EXPECT_EQ(GetDoubleVAX(EncodeVaxD(value), 0), value);
        // F keeps the first 24 bits of the mantissa.
        int power = 0;
        const double share = std::frexp(value, &power);
        const double cut = std::ldexp(std::trunc(std::ldexp(share, 24)), power - 24);
        EXPECT_EQ(static_cast<double>(GetSingleVAX(EncodeVaxD(value), 0)), cut);
    }
}

TEST(DataConversion, AspectWords)
{
    EXPECT_EQ(GetInt24BE(Of({0x00, 0x00, 0x01}), 0), 1);
    EXPECT_EQ(GetInt24BE(Of({0xFF, 0xFF, 0xFF}), 0), -1);
    EXPECT_EQ(GetInt24BE(Of({0x7F, 0xFF, 0xFF}), 0), 8388607);
    EXPECT_EQ(GetInt24BE(Of({0x80, 0x00, 0x00}), 0), -8388608);

    struct Case {
        const char* name;
        std::initializer_list<unsigned> bytes;
        double value;
    };
    const Case cases[] = {
        {"0", {0, 0, 0, 0, 0, 0}, 0.0},
        {"1", {0x40, 0, 0, 0, 0x20, 0}, 1.0},
        {"-1: mantissa complemented, exponent as stored", {0xBF, 0xFF, 0xFF, 0, 0x3F, 0xFF}, -1.0},
        {"400", {0x64, 0, 0, 1, 0x20, 0}, 400.0},
        {"-400", {0x9B, 0xFF, 0xFF, 1, 0x3F, 0xFF}, -400.0},
        {"2^-5: negative exponent", {0x40, 0, 0, 0xFF, 0x80, 0}, 0.03125},
        {"1 + 2^-35: the last bit", {0x40, 0, 0, 0, 0x20, 1}, 1.0 + 0x1p-35},
        {"1 + 2^-27: the fifth byte", {0x40, 0, 0, 0, 0x21, 0}, 1.0 + 0x1p-27},
        {"1 + 2^-22: the third byte", {0x40, 0, 1, 0, 0x20, 0}, 1.0 + 0x1p-22},
    };
    for (const Case& c : cases) EXPECT_EQ(GetFloat48(Of(c.bytes), 0), c.value) << c.name;
}

TEST(DataConversion, PackedText)
{
    EXPECT_EQ(GetBCDText(Of({0x98, 0x07, 0x31}), 0), "98 07 31");
    // Z = 26, blank = 0, "1" = 49, A = 1: 011010 000000 110001 000001
    EXPECT_EQ(GetSixBitText(Of({0x68, 0x0C, 0x41}), 0), "Z 1A");
    EXPECT_EQ(GetSixBitText(Of({0xFF, 0xFF, 0xFF}), 0), "????");
}

TEST(DataConversion, GetText)
{
    struct Case {
        const char* name;
        std::string_view bytes;
        const char* text;
    };
    using namespace std::string_view_literals;
    const Case cases[] = {
        {"stops at the first zero", "abc\0def"sv, "abc"},
        {"trimmed of blanks", "  a b  "sv, "a b"},
        {"keeps other white space", "a\t"sv, "a\t"},
        {"a Shift-JIS pair", "\x93\xFA"sv, "日"},
        {"a pair whose second byte is ASCII", "\x83\x5C-"sv, "ソ-"},
        {"half-width katakana", "\xB1"sv, "ｱ"},
        {"a lead byte in the last place", "ab\x93"sv, "ab"},
        {"a lead byte before the zero", "ab\x93\0c"sv, "ab"},
        {"bytes that no text has",
         "a\x80\xFD\xFF"
         "b"sv,
         "ab"},
    };
    for (const Case& c : cases) EXPECT_EQ(GetText(Of(c.bytes), 0, c.bytes.size()), c.text) << c.name;
    EXPECT_EQ(GetText(Of("abcdef"), 2, 3), "cde");
}

TEST(DataConversion, LinesOfAFile)
{
    struct Case {
        const char* name;
        std::string_view bytes;
        std::vector<std::string> lines;
    };
    using namespace std::string_view_literals;
    const Case cases[] = {
        {"all line ends", "a\nb\r\nc\rd"sv, {"a", "b", "c", "d"}},
        {"blank lines and control bytes before a line", "\n\n\x1A\t\0a\n"sv, {"a"}},
        {"tab inside a line", "a\tb\n"sv, {"a\tb"}},
        {"only blanks is a line", "  \na"sv, {"  ", "a"}},
        {"Shift-JIS", "\x93\xFA\n\xB1\n"sv, {"日", "ｱ"}},
        {"a lead byte does not swallow the line's end", "caf\xE9\n##END=\n"sv, {"caf\xEF\xBF\xBD", "##END="}},
        {"a line of dropped bytes only", "\xFF\xFE\na\n"sv, {"a"}},
        {"nothing", ""sv, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Raw bytes = Of(c.bytes);
        LineReader reader(bytes);
        std::vector<std::string> lines;
        for (std::string line; !(line = reader.Read_TextLine()).empty();) lines.push_back(line);
        EXPECT_EQ(lines, c.lines);
        EXPECT_TRUE(reader.at_end());
        EXPECT_EQ(reader.Read_TextLine(), "");
        reader.Rewind();
        EXPECT_EQ(reader.Read_TextLine(), c.lines.empty() ? "" : c.lines.front());
    }
}

TEST(DataConversion, LabelledRecords)
{
    struct Case {
        const char* line;
        bool record;
        const char* label;
        const char* value;
    };
    const Case cases[] = {
        {"##Title= a = b", true, "##TITLE", "a = b"},
        {"##$PULPROG=\t<zg>  ", true, "##$PULPROG", "<zg>"},
        {"##.Observe Frequency\t400", true, "##.OBSERVE FREQUENCY", "400"},
        {"##DATE= a\tb\x01", true, "##DATE", "a b"},
        {"##END", true, "##END", ""},
        {"$$ End of Bruker specific parameters", true, "$$ END OF BRUKER SPECIFIC PARAMETERS", ""},
        {"0 1 2", false, "", ""},
        {"#TITLE=", false, "", ""},
        {"", false, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        LabelledRecord record;
        ASSERT_EQ(Split_Value(c.line, record), c.record);
        EXPECT_EQ(record.label, c.label);
        EXPECT_EQ(record.value, c.value);
    }
}

} // namespace
} // namespace nmr
