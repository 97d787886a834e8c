// Probes of the native files and of the binary files of Nuts, Aspect and Macintosh programs.
// Native Ver.4: the address table of our own format. Nuts: the published common data file format,
// words of 32 bits, little-endian. Aspect: words of 24 bits. Nothing is published of the Mac files.

#include "core/text.h"
#include "formats/probes.h"

#include <algorithm>

namespace nmr {

using namespace probe_detail;

namespace {

std::size_t Index(std::int64_t offset)
{
    return static_cast<std::size_t>(offset);
}

// --- Native Ver.4

constexpr std::int64_t kTavo4Table = 520;       ///< entries of the data blocks 0 to 19
constexpr std::int64_t kTavo4TableBehind = 832; ///< entries 20 to 39
constexpr int kTavo4Blocks = 40;
constexpr std::int64_t kTavo4Head = 1280;

struct Section {
    std::int64_t address = 0;
    std::int64_t length = 0;
    bool present() const { return address > 0 && length > 0; }
};

Section SectionAt(ByteSpan head, std::int64_t offset)
{
    return {GetLongLE(head, Index(offset)), GetLongLE(head, Index(offset + 4))};
}

Section FirstDataBlock(ByteSpan head)
{
    for (int i = 0; i < kTavo4Blocks; ++i) {
        const Section section = SectionAt(head, i < 20 ? kTavo4Table + 8 * i : kTavo4TableBehind + 8 * (i - 20));
        if (section.present()) return section;
    }
    return {};
}

/// SMODE of the first data block: its parameter section holds it.
ProbeAnswer FirstBlockMode(ByteSpan head)
{
    const Section block = FirstDataBlock(head);
    if (!block.present()) return Failed();
    const std::int64_t parameters_entry = block.address + 16 + 40;
    if (!Holds(head, parameters_entry, 8)) return Short();
    const Section parameters = SectionAt(head, parameters_entry);
    if (!parameters.present()) return Failed();
    if (!Holds(head, parameters.address, 654)) return Short();
    if (FieldText(head, parameters.address, 16) != "%% PARAMETER") return Failed();
    return Found("1D:V4", GetShortLE(head, Index(parameters.address + 652)) != 0);
}

// --- Nuts

constexpr std::int64_t kNutsSmallest = 4 * 99;

/// The text form of a Nuts file carries the labels of JCAMP-DX.
ProbeAnswer NutsText(ByteSpan head)
{
    LineReader reader(head);
    bool nuts = false, spectrum = false;
    for (;;) {
        const std::string line(Trim(reader.Read_TextLine()));
        LabelledRecord record;
        if (!Split_Value(line, record)) break;
        nuts = nuts || record.label.starts_with("##JCAMP-DXB");
        if (record.label == "##DATA TYPE") spectrum = ContainsNoCase(record.value, "SPECTRUM");
    }
    if (!nuts) return Failed();
    ProbeAnswer answer = Found("1D:W_", spectrum);
    answer.needs_more = reader.at_end();
    return answer;
}

} // namespace

ProbeAnswer ReadModeTavo4(ByteSpan head, const ProbeContext&)
{
    const std::string banner = FieldText(head, 0, 16);
    if ((banner != "TA NMR Ver.4.00" && banner != "TA NMR Ver.4.01") || !Holds(head, 0, kTavo4Head)) return Failed();
    ProbeAnswer block = FirstBlockMode(head);
    // The address table always has the label of a 2D section; with data behind it it is longer.
    const bool two_dimensional = GetLongLE(head, 516) >= 19;
    if (!two_dimensional) return block;
    const bool spectrum = block.status == 0 && block.spectrum_flag == 1;
    ProbeAnswer answer = Found("V2D:V4", spectrum);
    answer.needs_more = block.needs_more;
    return answer;
}

/// The banner and the character behind it are all that is known of Ver.3 files: whether the points
/// are a FID is left to a reader, and the flag stays that of a FID.
ProbeAnswer ReadModeTavo3(ByteSpan head, const ProbeContext&)
{
    if (!Holds(head, 0, 17) || FieldText(head, 0, 16) != "TA NMR Ver.3.00") return Failed();
    const bool two_dimensional = std::to_integer<char>(head[16]) == '2';
    return Found(two_dimensional ? "V2D:V3" : "1D:V3", false);
}

/// Binary files: word 2 the dimensions, 7 the points of the second one, 96 the points, 97 real or
/// complex, 98 time or frequency domain. Words out of range mean another file that happens to begin
/// with the same four bytes. "X_" marks the binary and "W_" the text form.
ProbeAnswer ReadModeNut(ByteSpan head, const ProbeContext&)
{
    if (FieldText(head, 0, 10).starts_with("##")) return NutsText(head);
    if (!Holds(head, 0, kNutsSmallest) || GetLongLE(head, 0) != 0x04030201) return Failed();
    const auto word = [&](std::size_t number) { return GetLongLE(head, 4 * number); };
    const bool sane = word(2) >= 0 && word(2) <= 4 && word(7) >= 0 && word(96) > 0 && word(97) >= 0 && word(97) <= 2 &&
                      word(98) >= 0 && word(98) <= 1;
    if (!sane) return Failed();
    const bool two_dimensional = word(2) > 1 || word(7) > 1;
    return Found(two_dimensional ? "V_" : "1D:X_", word(98) == 1);
}

ProbeAnswer ReadModeMSL(ByteSpan head, const ProbeContext&)
{
    if (!Holds(head, 0, 126) || (GetInt24BE(head, 0) & 0xFFFFFF) != 0x4784F5) return Failed();
    return Found("1D:SINGLE PULSE", GetInt24BE(head, 123) != 0);
}

/// Only the experiment's name and one flag are known of these files, so the name must be text.
ProbeAnswer ReadModeMac(ByteSpan head, const ProbeContext&)
{
    if (!Holds(head, 1114, 6)) return Failed();
    const std::string experiment = FieldText(head, 1114, 6);
    const bool text = std::ranges::none_of(experiment, [](char c) { return static_cast<unsigned char>(c) < 32; });
    if (experiment.empty() || !text) return Failed();
    return Found("1D:" + experiment, std::to_integer<int>(head[1032]) != 0);
}

} // namespace nmr
