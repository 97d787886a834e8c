#include "core/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <iconv.h>

namespace nmr {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD"; // U+FFFD

bool IsSpace(char c)
{
    return static_cast<unsigned char>(c) <= ' ' || c == '\x7F';
}

char Upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsAscii(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Length of the well-formed UTF-8 sequence at the start of `text`, 0 when there is none: no overlong
/// forms, no surrogates, nothing above U+10FFFF.
std::size_t Utf8Length(std::string_view text)
{
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = at(0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : (lead & 0xF0U) == 0xE0       ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((at(i) & 0xC0U) != 0x80) return 0;
    const unsigned second = at(1);
    const bool bad = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                     (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return bad ? 0 : length;
}

bool IsUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = Utf8Length(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

void AppendUtf8(std::string& out, unsigned code)
{
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0U | (code >> 6U));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    } else {
        out += static_cast<char>(0xE0U | (code >> 12U));
        out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    }
}

class Converter {
public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    ~Converter()
    {
        if (valid()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    // iconv_open gives the pointer -1 when the C library has no such converter.
    bool valid() const { return reinterpret_cast<std::ptrdiff_t>(handle_) != -1; }

    /// Converts the longest good start of `in`, appends it to `out`, and drops it from `in`.
    void Advance(std::string_view& in, std::string& out)
    {
        std::array<char, 1024> buffer;
        for (;;) {
            char* source = const_cast<char*>(in.data()); // iconv never writes through it
            std::size_t source_left = in.size();
            char* target = buffer.data();
            std::size_t target_left = buffer.size();
            const std::size_t answer = iconv(handle_, &source, &source_left, &target, &target_left);
            const bool full = answer == static_cast<std::size_t>(-1) && errno == E2BIG;
            out.append(buffer.data(), buffer.size() - target_left);
            in.remove_prefix(in.size() - source_left);
            if (!full) return;
        }
    }

private:
    iconv_t handle_;
};

/// To UTF-8; each byte that can't be converted becomes U+FFFD.
std::string ConvertAll(Converter& converter, std::string_view bytes)
{
    std::string out;
    for (;;) {
        converter.Advance(bytes, out);
        if (bytes.empty()) return out;
        out += kReplacement;
        bytes.remove_prefix(1);
    }
}

bool IsCp932Lead(unsigned char c)
{
    return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC);
}

/// Without a converter only ASCII and the one-byte katakana are known.
std::string FromCp932Plain(std::string_view bytes)
{
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c >= 0xA1 && c <= 0xDF) {
            AppendUtf8(out, 0xFF61U + (c - 0xA1U));
        } else {
            out += kReplacement;
            if (IsCp932Lead(c)) ++i;
        }
    }
    return out;
}

} // namespace

std::string_view Trim(std::string_view text)
{
    while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::string ToUpper(std::string_view text)
{
    std::string out(text);
    std::ranges::transform(out, out.begin(), Upper);
    return out;
}

std::string ToLower(std::string_view text)
{
    std::string out(text);
    std::ranges::transform(out, out.begin(), Lower);
    return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, Upper, Upper);
}

bool ContainsNoCase(std::string_view text, std::string_view part)
{
    const auto same = [](char a, char b) { return Upper(a) == Upper(b); };
    return part.empty() || std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

std::string_view Left(std::string_view text, std::size_t count)
{
    return text.substr(0, count);
}

std::vector<std::string> Split(std::string_view text, char separator)
{
    std::vector<std::string> parts;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(separator, start);
        parts.emplace_back(text.substr(start, end - start));
        if (end == std::string_view::npos) return parts;
        start = end + 1;
    }
}

std::string FromCp932(std::string_view bytes)
{
    if (IsAscii(bytes)) return std::string(bytes);
    Converter converter("UTF-8", "CP932");
    return converter.valid() ? ConvertAll(converter, bytes) : FromCp932Plain(bytes);
}

std::string FromCodePage(std::string_view bytes, const char* page)
{
    if (IsAscii(bytes)) return std::string(bytes);
    Converter converter("UTF-8", page);
    return converter.valid() ? ConvertAll(converter, bytes) : FromUnknownCodePage(bytes);
}

std::string ToCp932(std::string_view utf8)
{
    if (IsAscii(utf8)) return std::string(utf8);
    Converter converter("CP932", "UTF-8");
    std::string out;
    while (!utf8.empty()) {
        if (converter.valid()) {
            converter.Advance(utf8, out);
            if (utf8.empty()) break;
        }
        const std::size_t length = std::max<std::size_t>(Utf8Length(utf8), 1);
        out += length == 1 && static_cast<unsigned char>(utf8.front()) < 0x80 ? utf8.front() : '?';
        utf8.remove_prefix(length);
    }
    return out;
}

std::string FromUnknownCodePage(std::string_view bytes)
{
    if (IsUtf8(bytes)) return std::string(bytes);
    std::string out;
    out.reserve(bytes.size() * 2);
    for (const char c : bytes) AppendUtf8(out, static_cast<unsigned char>(c));
    return out;
}

} // namespace nmr
