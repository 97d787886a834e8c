#include "layout/emf_records.h"

#include "layout/code_tokens.h"

#include <bit>

namespace nmr {
namespace {

constexpr std::int32_t kSignature = 0x464D4520, kVersion = 0x00010000; // " EMF"
constexpr std::int32_t kHeaderSize = 108, kEndSize = 20;
// The device that the picture is made for: 0.01 mm a pixel, so that device units and the frame are one.
constexpr std::int32_t kDevicePixels = 32000, kDeviceMillimetres = 320, kMicrometresInMillimetre = 1000;

void Append32(std::string& bytes, std::int32_t value)
{
    const auto word = static_cast<std::uint32_t>(value);
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(word >> shift & 0xFF);
}

void Patch32(std::string& bytes, std::size_t at, std::size_t value)
{
    for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

} // namespace

void EmfRecords::Begin(EmfType type)
{
    start_ = body_.size();
    Append32(body_, static_cast<std::int32_t>(type));
    Append32(body_, 0);
}

void EmfRecords::End()
{
    body_.append((4 - body_.size() % 4) % 4, '\0');
    Patch32(body_, start_ + 4, body_.size() - start_);
    ++count_;
}

void EmfRecords::Put32(std::int32_t word)
{
    Append32(body_, word);
}

void EmfRecords::Put16(std::int32_t half)
{
    body_ += static_cast<char>(half & 0xFF);
    body_ += static_cast<char>(half >> 8 & 0xFF);
}

void EmfRecords::PutFloat(float value)
{
    Append32(body_, std::bit_cast<std::int32_t>(value));
}

void EmfRecords::PutRect(const EmfRect& rect)
{
    for (const std::int32_t side : {rect.left, rect.top, rect.right, rect.bottom}) Put32(side);
}

void EmfRecords::Add(EmfType type, std::initializer_list<std::int32_t> words)
{
    Begin(type);
    for (const std::int32_t word : words) Put32(word);
    End();
}

std::string EmfRecords::File(std::int32_t width_hmm, std::int32_t height_hmm, std::int32_t handles,
                             std::u16string_view title) const
{
    // Program and title, each ended by a zero, and one more.
    std::u16string description = u"nmr1d";
    description += u'\0';
    description += title;
    description.append(2, u'\0');
    const std::size_t text_size = (description.size() * 2 + 3) / 4 * 4;
    std::string file;
    const auto put = [&file](std::initializer_list<std::int32_t> words) {
        for (const std::int32_t word : words) Append32(file, word);
    };
    const auto head_size = kHeaderSize + static_cast<std::int32_t>(text_size);
    put({static_cast<std::int32_t>(EmfType::header), head_size});
    put({0, 0, width_hmm - 1, height_hmm - 1}); // bounds, inclusive
    put({0, 0, width_hmm, height_hmm});         // frame
    put({kSignature, kVersion});
    put({head_size + static_cast<std::int32_t>(body_.size()) + kEndSize, count_ + 2, handles});
    put({static_cast<std::int32_t>(description.size()), kHeaderSize, 0});
    put({kDevicePixels, kDevicePixels, kDeviceMillimetres, kDeviceMillimetres});
    put({0, 0, 0}); // no pixel format, no OpenGL
    put({kDeviceMillimetres * kMicrometresInMillimetre, kDeviceMillimetres * kMicrometresInMillimetre});
    for (const char16_t unit : description) {
        file += static_cast<char>(unit & 0xFF);
        file += static_cast<char>(unit >> 8);
    }
    file.resize(static_cast<std::size_t>(head_size), '\0');
    file += body_;
    put({static_cast<std::int32_t>(EmfType::eof), kEndSize, 0, 16, kEndSize});
    return file;
}

std::u16string ToUtf16(std::string_view utf8)
{
    std::u16string text;
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t letter = TakeUtf8(utf8, at);
        if (letter < 0x10000) {
            text += static_cast<char16_t>(letter);
        } else {
            text += static_cast<char16_t>(0xD800 + ((letter - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + ((letter - 0x10000) & 0x3FF));
        }
    }
    return text;
}

} // namespace nmr
