// The head of a file: banners at fixed places first, then the look of its text.

#include "formats/probes.h"

#include "core/numbers.h"
#include "core/text.h"

#include <algorithm>
#include <array>

namespace nmr {
namespace {

constexpr std::uint64_t kSmallestSniffed = 301;
constexpr std::size_t kTokenWindow = 100;

unsigned ByteAt(ByteSpan head, std::size_t offset)
{
    return std::to_integer<unsigned>(head[offset]);
}

std::string SniffSmallFile(ByteSpan head)
{
    if (head.size() < 6) return "UNKNOWN";
    const std::string word = GetText(head, 0, 6);
    return word == "VARIAN" || word == "BRUKER" ? word : std::string();
}

/// The native banner carries the version; one word behind it tells whether the file holds 2D data.
std::string SniffNative(ByteSpan head)
{
    const std::string banner = GetText(head, 0, 16);
    if (banner == "TA NMR Ver.3.00") return ByteAt(head, 16) == '2' ? "TAV2" : "TAV1";
    if (banner != "TA NMR Ver.4.00" && banner != "TA NMR Ver.4.01") return {};
    const std::int32_t length_2d = head.size() >= 520 ? GetLongLE(head, 516) : 0;
    return length_2d < 19 ? "TAVX_1" : "TAVX_2";
}

std::string SniffBanner(ByteSpan head)
{
    const std::string head10 = GetText(head, 0, 10);
    if (head10.starts_with("JEOL.NMR")) return "ECP";
    if (std::string native = SniffNative(head); !native.empty()) return native;
    if (GetText(head, 82, 21) == "WIN NMR VERSION 1.00" || GetText(head, 258, 21) == "WIN NMR VERSION 1.01")
        return "ALICE";
    if (head10 == "JEOLUSF001") return "LAMBDA";
    if (head10.starts_with("NFT1DT")) return "ALPHA";
    if (GetLongLE(head, 0) == 0x04030201) return "NUTS Type1,2";
    if ((GetInt24BE(head, 0) & 0xFFFFFF) == 0x4784F5) return "ASPECT";
    if (head10 == "$CSVSTART") return "CSV TYPE 1";
    if (GetText(head, 128, 4) == "DICM") return "IMA";
    return {};
}

bool IsLineSpace(unsigned byte)
{
    return byte == 9 || byte == 10 || byte == 13 || byte == ' ';
}

/// Plain text that begins with a number is a table; anything long or binary is not known.
std::string SniffToken(ByteSpan head)
{
    const std::size_t window = std::min(kTokenWindow, head.size());
    std::size_t begin = 0;
    while (begin < window && ByteAt(head, begin) <= 32) ++begin;
    std::size_t end = begin;
    while (end < window && ByteAt(head, end) > 32 && ByteAt(head, end) != ',') ++end;
    if (end - begin >= 10 || ByteAt(head, 0) < 32) return "UNKNOWN";
    // A token that ends at a byte no text holds is the beginning of binary points: an instrument's
    // file whose first value happens to look like a digit.
    if (end < window && ByteAt(head, end) != ',' && !IsLineSpace(ByteAt(head, end))) return "UNKNOWN";
    std::string token;
    for (std::size_t i = begin; i < end; ++i) token += static_cast<char>(ByteAt(head, i));
    return ParseNumber(token) ? "CSV TYPE 0" : "";
}

/// Labelled text: one label tells Nuts files from JCAMP-DX, which its extension tells.
Sniff SniffLabels(ByteSpan head, std::uint64_t length)
{
    LineReader reader(head);
    for (;;) {
        const std::string line(Trim(reader.Read_TextLine()));
        LabelledRecord record;
        if (!Split_Value(line, record)) break;
        if (record.label.starts_with("##JCAMP-DXB")) return {"NUTS Type3"};
    }
    return {{}, reader.at_end() && head.size() < length};
}

constexpr ProbeRow kProbes[] = {
    {"ReadModeAls", ReadModeAls},     {"ReadModeEX", ReadModeEX},           {"ReadModeLambda", ReadModeLambda},
    {"ReadModeECP", ReadModeECP},     {"ReadModeBruker", ReadModeBruker},   {"ReadModeBrukerProc", ReadModeBrukerProc},
    {"ReadModeAlpha", ReadModeAlpha}, {"ReadModeVarian", ReadModeVarian},   {"ReadModeNut", ReadModeNut},
    {"ReadModeCMX", ReadModeCMX},     {"ReadModeGEOmega", ReadModeGEOmega}, {"ReadModeTavo3", ReadModeTavo3},
    {"ReadModeTavo4", ReadModeTavo4}, {"ReadModeJCAMP", ReadModeJCAMP},     {"ReadModeCSV", ReadModeCSV},
    {"ReadModeMSL", ReadModeMSL},     {"ReadModeMac", ReadModeMac},
};

} // namespace

std::span<const ProbeRow> Probes()
{
    return kProbes;
}

Sniff SniffDataMode(ByteSpan head, std::uint64_t length)
{
    if (length < kSmallestSniffed || head.size() < kSmallestSniffed) return {SniffSmallFile(head)};
    if (std::string result = SniffBanner(head); !result.empty()) return {result};
    const std::string head10 = GetText(head, 0, 10);
    if (head10.starts_with("##") || head10.starts_with("$$")) return SniffLabels(head, length);
    return {SniffToken(head)};
}

namespace probe_detail {

std::string FieldText(ByteSpan bytes, std::int64_t offset, std::int64_t length)
{
    const auto size = static_cast<std::int64_t>(bytes.size());
    if (offset < 0 || offset >= size) return {};
    const std::int64_t held = std::min(length, size - offset);
    return GetText(bytes, static_cast<std::size_t>(offset), static_cast<std::size_t>(held));
}

std::string ModeOf2D(bool phase_sensitive, bool same_nucleus, int& kind)
{
    kind = (same_nucleus ? 0 : 3) + (phase_sensitive ? 0 : 1);
    return std::string(phase_sensitive ? "VPH_" : "V_") + (same_nucleus ? "HOMO:" : "HETERO:");
}

} // namespace probe_detail
} // namespace nmr
