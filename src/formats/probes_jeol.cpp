// Probes of the JEOL families. Alice, Lambda, Alpha: the offsets are all that is known of these files; no
// sample was found.

#include "formats/delta_header.h"
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

std::string DeltaMode2D(const DeltaHeader& header, const NuclearTable& nuclides, int& kind)
{
    const double values = static_cast<double>(header.points) * static_cast<double>(header.points2) * 8.0;
    const bool phase_sensitive = values > 0.0 && static_cast<double>(header.data_bytes) / values > 2.0;
    const bool same = nuclides.Nucleus_Normalize(header.nucleus) == nuclides.Nucleus_Normalize(header.nucleus2);
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
    if (!StartsDeltaFile(head)) return Failed();
    const DeltaHeader header = ReadDeltaHeader(head, kDeltaUnknownSize);
    ProbeAnswer answer = Found("1D:", header.IsSpectrum());
    if (!header.OneDimensional()) answer.mode = DeltaMode2D(header, context.nuclides, answer.kind_2d);
    const DeltaParameters parameters = DeltaParameters::Parse(head, header);
    answer.needs_more = parameters.cut() && parameters.Find("EXPERIMENT") == nullptr;
    answer.mode += parameters.Text("EXPERIMENT");
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
