// Byte decoders and the line reader. VAX floats: the byte pairs of a PDP-11 word are swapped; 48-bit
// floats: two 24-bit words of the Aspect computer, the exponent in the second.

#include "formats/data_conversion.h"

#include "core/text.h"

#include <bit>
#include <cassert>
#include <cmath>

namespace nmr {
namespace {

unsigned At(ByteSpan bytes, std::size_t offset)
{
    assert(offset < bytes.size());
    return std::to_integer<unsigned>(bytes[offset]);
}

template <class Word>
Word BigEndian(ByteSpan bytes, std::size_t offset)
{
    Word word = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i)
        word = static_cast<Word>((std::uint64_t{word} << 8) | At(bytes, offset + i));
    return word;
}

template <class Word>
Word LittleEndian(ByteSpan bytes, std::size_t offset)
{
    Word word = 0;
    for (std::size_t i = sizeof(Word); i-- > 0;)
        word = static_cast<Word>((std::uint64_t{word} << 8) | At(bytes, offset + i));
    return word;
}

/// How a byte of Shift-JIS text takes part in a character.
enum class TextByte { single, lead, dropped };

TextByte TextByteOf(unsigned byte)
{
    if ((byte >= 129 && byte <= 159) || (byte >= 224 && byte <= 252)) return TextByte::lead;
    if (byte == 128 || byte >= 253) return TextByte::dropped;
    return TextByte::single;
}

/// Raw text of a file on its way to UTF-8. Plain ASCII, nearly every line, needs no conversion.
class ShiftJisText {
public:
    bool empty() const { return raw_.empty(); }
    void Add(unsigned byte)
    {
        raw_ += static_cast<char>(byte);
        ascii_ = ascii_ && byte < 128;
    }
    std::string ToUtf8() && { return ascii_ ? std::move(raw_) : FromCp932(raw_); }

private:
    std::string raw_;
    bool ascii_ = true;
};

std::string TrimBlanks(const std::string& text)
{
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

char BcdDigit(unsigned nibble)
{
    return nibble < 10 ? static_cast<char>('0' + nibble) : '?';
}

char SixBitCharacter(unsigned code)
{
    if (code == 0) return ' ';
    return static_cast<char>(code < 32 ? code + 64 : code);
}

} // namespace

double GetDoubleBE(ByteSpan bytes, std::size_t offset)
{
    // Files hold zeros whose last bytes are not cleared.
    if (At(bytes, offset) == 0 && At(bytes, offset + 1) == 0) return 0.0;
    return std::bit_cast<double>(BigEndian<std::uint64_t>(bytes, offset));
}

double GetDoubleLE(ByteSpan bytes, std::size_t offset)
{
    return std::bit_cast<double>(LittleEndian<std::uint64_t>(bytes, offset));
}

std::int32_t GetLongBE(ByteSpan bytes, std::size_t offset)
{
    return static_cast<std::int32_t>(BigEndian<std::uint32_t>(bytes, offset));
}

std::int32_t GetLongLE(ByteSpan bytes, std::size_t offset)
{
    return static_cast<std::int32_t>(LittleEndian<std::uint32_t>(bytes, offset));
}

std::int16_t GetShortBE(ByteSpan bytes, std::size_t offset)
{
    return static_cast<std::int16_t>(BigEndian<std::uint16_t>(bytes, offset));
}

std::int16_t GetShortLE(ByteSpan bytes, std::size_t offset)
{
    return static_cast<std::int16_t>(LittleEndian<std::uint16_t>(bytes, offset));
}

float GetSingleBE(ByteSpan bytes, std::size_t offset)
{
    return std::bit_cast<float>(BigEndian<std::uint32_t>(bytes, offset));
}

float GetSingleLE(ByteSpan bytes, std::size_t offset)
{
    return std::bit_cast<float>(LittleEndian<std::uint32_t>(bytes, offset));
}

float GetSingleVAX(ByteSpan bytes, std::size_t offset)
{
    const unsigned b0 = At(bytes, offset), b1 = At(bytes, offset + 1);
    if (b0 == 0 && b1 == 0) return 0.0F;
    const int exponent = static_cast<int>((b1 & 127) * 2 + (b0 >> 7)) - 152;
    const unsigned mantissa = ((b0 & 127) + 128) * 65536 + At(bytes, offset + 3) * 256 + At(bytes, offset + 2);
    const double value = std::ldexp(static_cast<double>(mantissa), exponent);
    return static_cast<float>((b1 & 128) != 0 ? -value : value);
}

double GetDoubleVAX(ByteSpan bytes, std::size_t offset)
{
    const unsigned b0 = At(bytes, offset), b1 = At(bytes, offset + 1);
    if (b0 == 0 && b1 == 0) return 0.0;
    const auto term = [&](std::size_t index, int shift) { return std::ldexp(At(bytes, offset + index), shift); };
    const int exponent = static_cast<int>((b1 & 127) * 2 + (b0 >> 7)) - 168;
    // 56 bits of mantissa: the last three do not fit a double and are rounded away by the sum.
    const double mantissa = std::ldexp((b0 & 127) + 128, 32) + term(3, 24) + term(2, 16) + term(5, 8) + term(4, 0) +
                            term(7, -8) + term(6, -16);
    const double value = std::ldexp(mantissa, exponent);
    return (b1 & 128) != 0 ? -value : value;
}

std::int32_t GetInt24BE(ByteSpan bytes, std::size_t offset)
{
    const auto word =
        static_cast<std::int32_t>(At(bytes, offset) << 16 | At(bytes, offset + 1) << 8 | At(bytes, offset + 2));
    return word >= 0x800000 ? word - 0x1000000 : word;
}

double GetFloat48(ByteSpan bytes, std::size_t offset)
{
    const bool negative = (At(bytes, offset) & 128) != 0;
    // The exponent is never complemented, only the mantissa around it.
    int exponent = static_cast<int>(At(bytes, offset + 3) * 8 + (At(bytes, offset + 4) >> 5));
    if (exponent > 1024) exponent -= 2048;
    const unsigned mask = negative ? 255U : 0U;
    const auto part = [&](std::size_t index) { return At(bytes, offset + index) ^ mask; };
    const double mantissa =
        std::ldexp(part(0), 29) + std::ldexp(part(1), 21) + std::ldexp(part(2), 13) + (part(4) % 32) * 256.0 + part(5);
    const double value = std::ldexp(mantissa, exponent - 36);
    return negative ? -value : value;
}

std::string GetText(ByteSpan bytes, std::size_t offset, std::size_t length)
{
    ShiftJisText text;
    for (std::size_t i = 0; i < length; ++i) {
        const unsigned byte = At(bytes, offset + i);
        if (byte == 0) break;
        const TextByte kind = TextByteOf(byte);
        if (kind == TextByte::dropped) continue;
        if (kind == TextByte::single) {
            text.Add(byte);
            continue;
        }
        if (i + 1 == length || At(bytes, offset + i + 1) == 0) break; // half a character
        text.Add(byte);
        text.Add(At(bytes, offset + ++i));
    }
    return TrimBlanks(std::move(text).ToUtf8());
}

std::string GetBCDText(ByteSpan bytes, std::size_t offset)
{
    std::string text;
    for (std::size_t i = 0; i < 3; ++i) {
        if (i > 0) text += ' ';
        text += BcdDigit(At(bytes, offset + i) >> 4);
        text += BcdDigit(At(bytes, offset + i) & 15);
    }
    return text;
}

std::string GetSixBitText(ByteSpan bytes, std::size_t offset)
{
    const auto word = static_cast<unsigned>(GetInt24BE(bytes, offset));
    std::string text;
    for (int shift = 18; shift >= 0; shift -= 6) text += SixBitCharacter((word >> shift) & 63);
    return text;
}

std::string LineReader::Read_TextLine()
{
    ShiftJisText line;
    while (position_ < bytes_.size()) {
        const unsigned byte = At(bytes_, position_++);
        if (byte < 32 && line.empty()) continue;
        if (byte == 10 || byte == 13) break;
        const TextByte kind = TextByteOf(byte);
        if (kind == TextByte::dropped) continue;
        line.Add(byte);
        if (kind != TextByte::lead || position_ >= bytes_.size()) continue;
        // In text of another code page such a byte may stand last: it must not swallow the line's end.
        const unsigned trail = At(bytes_, position_);
        if (trail >= 32) {
            line.Add(trail);
            ++position_;
        }
    }
    return std::move(line).ToUtf8();
}

bool Split_Value(const std::string& line, LabelledRecord& out)
{
    if (!line.starts_with("##") && !line.starts_with("$$")) return false;
    const auto end = line.find_first_of("=\t");
    out.label = ToUpper(Trim(std::string_view(line).substr(0, end)));
    out.value = end == std::string::npos ? std::string() : line.substr(end + 1);
    for (char& c : out.value)
        if (static_cast<unsigned char>(c) < 32) c = ' ';
    out.value = std::string(Trim(out.value));
    return true;
}

} // namespace nmr
