// Probes of the JEOL families. Delta: its published header, which is big-endian in every file seen,
// whatever byte 8 says of the sections behind it. Alice, Lambda, Alpha: the offsets are all that is
// known of these files; no sample was found.

#include "core/text.h"
#include "formats/probes.h"

#include <array>
#include <cmath>

namespace nmr {

using namespace probe_detail;

namespace {

std::size_t Index(std::int64_t offset)
{
    return static_cast<std::size_t>(offset);
}

bool WithinShare(double a, double b, double share)
{
    return std::fabs(a - b) <= std::fabs(a) * share;
}

// --- Delta

constexpr std::size_t kDeltaSmallest = 1537;
constexpr std::int64_t kDeltaRecordSmallest = 64;

struct DeltaSections {
    bool little_header = false;
    bool little_sections = false;
};

std::int64_t DeltaLong(ByteSpan head, std::int64_t offset, bool little)
{
    const std::int32_t word = little ? GetLongLE(head, Index(offset)) : GetLongBE(head, Index(offset));
    return static_cast<std::uint32_t>(word);
}

DeltaSections DeltaOrder(ByteSpan head)
{
    const bool little = std::to_integer<int>(head[8]) != 0;
    // Parameters stand close behind the header: read in the wrong order their place is beyond any file.
    const bool header_is_big = DeltaLong(head, 1212, false) < 0x1000000;
    return {.little_header = little && !header_is_big, .little_sections = little};
}

/// Text of the parameter "experiment"; empty when there is none.
std::string DeltaExperiment(ByteSpan head, const DeltaSections& order, bool& needs_more)
{
    const std::int64_t start = DeltaLong(head, 1212, order.little_header);
    if (!Holds(head, start, 16)) {
        needs_more = true;
        return {};
    }
    const std::int64_t size = DeltaLong(head, start, order.little_sections);
    const std::int64_t count = DeltaLong(head, start + 8, order.little_sections) + 1;
    if (size < kDeltaRecordSmallest) return {};
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t record = start + 16 + i * size;
        if (!Holds(head, record, size)) {
            needs_more = true;
            return {};
        }
        if (EqualsNoCase(FieldText(head, record + 36, 28), "EXPERIMENT")) return FieldText(head, record + 16, 16);
    }
    return {};
}

std::string DeltaMode2D(ByteSpan head, const DeltaSections& order, const NuclearTable& nuclides, int& kind)
{
    const auto points1 = static_cast<double>(DeltaLong(head, 176, order.little_header));
    const auto points2 = static_cast<double>(DeltaLong(head, 180, order.little_header));
    const auto length = static_cast<double>(DeltaLong(head, 1292, order.little_header));
    const double values = points1 * points2 * 8.0;
    const bool phase_sensitive = values > 0.0 && length / values > 2.0;
    const bool same =
        nuclides.Nucleus_Normalize(FieldText(head, 808, 8)) == nuclides.Nucleus_Normalize(FieldText(head, 840, 8));
    return ModeOf2D(phase_sensitive, same, kind);
}

// --- Alice

constexpr std::size_t kAliceSmallest = 2561;

double AliceFrequency(ByteSpan head, std::int64_t offset)
{
    const auto part = [&](std::int64_t step) { return static_cast<double>(GetSingleLE(head, Index(offset + step))); };
    return part(0) + part(4) * 0.001 + part(8) * 1e-6;
}

/// The stored length against the points of both axes tells how many parts each point has.
bool AlicePhaseSensitive(std::int64_t data_bytes, std::int64_t points1, std::int64_t points2, int dimensions)
{
    const auto values = static_cast<double>(data_bytes / 4);
    const double points = static_cast<double>(points1) * static_cast<double>(points2);
    if (values == points) return dimensions != 2;
    return values > 2.0 * points;
}

} // namespace

ProbeAnswer ReadModeECP(ByteSpan head, const ProbeContext& context)
{
    if (head.size() < kDeltaSmallest || GetText(head, 0, 8) != "JEOL.NMR") return Failed();
    const auto byte = [&](std::size_t offset) { return std::to_integer<int>(head[offset]); };
    const DeltaSections order = DeltaOrder(head);
    const bool one_dimension = byte(12) == 1 || (byte(34) == 0 && byte(35) == 0);
    // Base unit of the first axis: ppm or hertz; a FID has seconds.
    ProbeAnswer answer = Found("1D:", byte(33) == 26 || byte(33) == 13);
    if (!one_dimension) answer.mode = DeltaMode2D(head, order, context.nuclides, answer.kind_2d);
    answer.mode += DeltaExperiment(head, order, answer.needs_more);
    return answer;
}

ProbeAnswer ReadModeAls(ByteSpan head, const ProbeContext&)
{
    if (head.size() < kAliceSmallest) return Failed();
    std::int64_t shift = 0;
    if (GetText(head, 82, 32) == "WIN NMR VERSION 1.00")
        shift = 0;
    else if (GetText(head, 258, 32) == "WIN NMR VERSION 1.01")
        shift = 176;
    else
        return Failed();
    const std::int64_t base = shift + GetLongLE(head, Index(shift + 154));
    if (base < 0) return Failed();
    if (!Holds(head, base, 788)) return Short();

    const double frequency_a = AliceFrequency(head, base + 346);
    const double frequency_b = AliceFrequency(head, base + 382);
    const int dimensions = GetShortLE(head, Index(base + 782));
    const std::string text = FieldText(head, base + 584, 32);
    ProbeAnswer answer = Found("1D:" + text, GetShortLE(head, Index(base + 786)) != 0);
    if (dimensions <= 1) {
        const bool valid = dimensions >= 0 && frequency_a > 0.0;
        return valid ? answer : Failed();
    }
    // The header has a dimension count of its own at a place that is not known; the field agrees with
    // it in every file that the two-dimensional codes are made for.
    const bool phase_sensitive =
        AlicePhaseSensitive(GetLongLE(head, Index(shift + 166)), GetLongLE(head, Index(base + 698)),
                            GetLongLE(head, Index(base + 730)), dimensions);
    const bool same = WithinShare(frequency_a, frequency_b, 0.01);
    answer.mode = ModeOf2D(phase_sensitive, same, answer.kind_2d) + text;
    return answer;
}

ProbeAnswer ReadModeAlpha(ByteSpan head, const ProbeContext&)
{
    constexpr std::size_t kSmallest = 2305;
    if (head.size() < kSmallest || !GetText(head, 0, 10).starts_with("NFT1DT")) return Failed();
    const std::string text = FieldText(head, 5440, 8);
    ProbeAnswer answer = Found("1D:" + text, GetLongLE(head, 516) != 0);
    if (GetLongLE(head, 528) == 0) return answer;
    const double f1 = GetDoubleVAX(head, 2152) + GetDoubleVAX(head, 2184);
    const double f2 = GetDoubleVAX(head, 2168) + GetDoubleVAX(head, 2216);
    answer.mode = ModeOf2D(GetLongLE(head, 560) == 2, WithinShare(f1, f2, 0.05), answer.kind_2d) + text;
    return answer;
}

ProbeAnswer ReadModeLambda(ByteSpan head, const ProbeContext&)
{
    constexpr std::size_t kSmallest = 2305;
    if (head.size() < kSmallest || GetText(head, 0, 10) != "JEOLUSF001") return Failed();
    const std::int64_t base = GetLongLE(head, 64);
    if (base < 0) return Failed();
    if (!Holds(head, base, 3922)) return Short();
    const std::string text = FieldText(head, base + 373, 64);
    ProbeAnswer answer = Found("1D:" + text, GetShortLE(head, Index(base + 3920)) != 0);
    if (GetLongLE(head, Index(base + 732)) == 1) return answer;
    const auto frequency = [&](std::int64_t offset) { return GetDoubleLE(head, Index(base + offset)); };
    const double f1 = frequency(2000) + frequency(2064);
    const double f2 = frequency(2136) + frequency(2144);
    // A text field can mark further phase-sensitive sets, but where it stands is not known; these
    // files are refused as two-dimensional either way.
    const bool phase_sensitive = GetLongLE(head, Index(base + 660)) == 2;
    answer.mode = ModeOf2D(phase_sensitive, WithinShare(f1, f2, 0.01), answer.kind_2d) + text;
    return answer;
}

} // namespace nmr
