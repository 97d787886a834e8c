// Points of Varian files: file head, rows, FID and spectrum.

#include "core/numbers.h"
#include "formats/byte_fields.h"
#include "formats/fid_rows.h"
#include "formats/varian.h"
#include "formats/word_block.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace nmr {

namespace {

constexpr ByteField<VarianHead> kHead[] = {
    {0, &VarianHead::blocks},       {4, &VarianHead::traces},       {8, &VarianHead::values},
    {12, &VarianHead::value_bytes}, {20, &VarianHead::block_bytes}, {26, &VarianHead::status},
    {28, &VarianHead::block_heads},
};
constexpr std::uint64_t kBlockHeadBytes = 28;
constexpr int kStatusSpectrum = 0x2, kStatusLong = 0x4, kStatusFloat = 0x8, kStatusComplex = 0x10;
constexpr int kBlockHeadMask = 0xF; // newer programs keep flags above

constexpr std::string_view kFidWhere = "ReadDataVarian/1DDRW";
constexpr std::string_view kSpectrumWhere = "ReadDataVarianProc/1DDRW";

VarianHead DecodeHead(ByteSpan file)
{
    VarianHead head;
    DecodeFields<VarianHead>(kHead, file, std::endian::big, head);
    return head;
}

std::string Where(VarianUse use)
{
    return std::string(use == VarianUse::fid ? kFidWhere : kSpectrumWhere);
}

std::uint64_t BytesOf(VarianNumber number)
{
    return number == VarianNumber::int16 ? 2 : 4;
}

VarianNumber NumberOf(const VarianHead& head, std::vector<std::string>& warnings)
{
    if ((head.status & kStatusFloat) != 0) return VarianNumber::float32;
    if ((head.status & kStatusLong) != 0) return VarianNumber::int32;
    if (head.value_bytes != 4) return VarianNumber::int16;
    warnings.push_back(fmt::format("The status word (0x{:04x}) says 16-bit integers, but values have 4 bytes: "
                                   "read as 32-bit integers.",
                                   static_cast<unsigned>(head.status) & 0xFFFFU));
    return VarianNumber::int32;
}

Status CheckCounts(const VarianHead& head, VarianUse use)
{
    const std::uint64_t rows =
        static_cast<std::uint64_t>(std::max(head.blocks, 0)) * static_cast<std::uint64_t>(std::max(head.traces, 0));
    if (rows < 1 || head.values < 2)
        return Error{ErrorCode::bad_value, Where(use),
                     fmt::format("{} blocks of {} rows of {} values", head.blocks, head.traces, head.values)};
    if (rows > static_cast<std::uint64_t>(kMaxRows))
        return Error{ErrorCode::too_large, Where(use), fmt::format("{} rows", rows)};
    return {};
}

/// Bytes from one block to the next: what follows from the counts, unless the file is laid out as its
/// head says.
std::uint64_t BlockBytes(const VarianHead& head, std::uint64_t computed, std::uint64_t file_size,
                         std::vector<std::string>& warnings)
{
    const auto stated = static_cast<std::uint64_t>(std::max(head.block_bytes, 0));
    if (stated == computed) return computed;
    const std::uint64_t blocks = static_cast<std::uint64_t>(head.blocks);
    if (stated > computed && file_size == VarianLayout::kHeadBytes + blocks * stated) return stated;
    warnings.push_back(fmt::format("The head gives {} bytes for a block that takes {}.", head.block_bytes, computed));
    return computed;
}

/// Rows of which the file holds at least one value.
std::size_t RowsBegun(const VarianLayout& layout, std::uint64_t file_size)
{
    std::size_t begun = 0;
    while (begun < layout.promised_rows && layout.Offset(begun) + 2 * BytesOf(layout.number) <= file_size) ++begun;
    return begun;
}

WordKind KindOf(VarianNumber number)
{
    switch (number) {
    case VarianNumber::float32:
        return WordKind::float32;
    case VarianNumber::int32:
        return WordKind::int32;
    case VarianNumber::int16:
        break;
    }
    return WordKind::int16;
}

void WarnOfCut(DataSet& set, const VarianLayout& layout, std::size_t last_row_points)
{
    if (layout.rows < layout.promised_rows)
        set.Warnings.push_back(
            fmt::format("The file is cut short: {} of {} rows are there.", layout.rows, layout.promised_rows));
    if (last_row_points < layout.points)
        set.Warnings.push_back(fmt::format("The file is cut short: {} of {} points of row {} are there, the rest is "
                                           "zero.",
                                           last_row_points, layout.points, layout.rows));
}

WordRows WordsOf(const VarianLayout& layout)
{
    return {layout.rows,
            layout.points,
            KindOf(layout.number),
            std::endian::big,
            layout.complex ? std::size_t{2} : std::size_t{1},
            1,
            [&layout](std::size_t row) { return layout.Offset(row); }};
}

/// Layout and arrays of the slot.
Result<VarianLayout> Prepare(GlobalBlock& g, std::int16_t slot, VarianUse use, const ByteSource& file)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    auto layout = FindVarianLayout(file, use);
    if (!layout) return layout;
    set.par.POINT = static_cast<std::int32_t>(layout->points);
    set.RowCount = static_cast<std::int32_t>(layout->rows);
    set.Warnings.insert(set.Warnings.end(), layout->warnings.begin(), layout->warnings.end());
    if (Status made = AllocateSpecBuffer(g, set.par.POINT, slot); !made) return made.error();
    WarnOfCut(set, *layout, WordsOf(*layout).Held(file, layout->rows - 1));
    return layout;
}

void WarnOfDamage(DataSet& set, std::uint64_t damaged)
{
    if (damaged > 0) set.Warnings.push_back(fmt::format("{} values are no numbers and read as zero.", damaged));
}

void WarnOfOtherCount(DataSet& set, const VarianParameters& parameters, std::string_view name, std::size_t values)
{
    const auto told = parameters.Number(name);
    if (told && *told != static_cast<double>(values))
        set.Warnings.push_back(
            fmt::format("{} is {} in the parameters, but rows have {} values.", name, *told, values));
}

} // namespace

Result<VarianLayout> FindVarianLayout(const ByteSource& file, VarianUse use)
{
    Bytes buffer;
    const ByteSpan start = file.Read(0, VarianLayout::kHeadBytes + kBlockHeadBytes, buffer);
    if (start.size() < VarianLayout::kHeadBytes + kBlockHeadBytes)
        return Error{ErrorCode::truncated, Where(use), "the file ends inside its head"};
    const VarianHead head = DecodeHead(start);
    if (Status counts = CheckCounts(head, use); !counts) return counts.error();
    VarianLayout layout;
    layout.number = NumberOf(head, layout.warnings);
    layout.complex = use == VarianUse::fid || (head.status & kStatusComplex) != 0;
    layout.points = static_cast<std::size_t>(head.values) / (layout.complex ? 2 : 1);
    if (layout.points > static_cast<std::size_t>(kMaxPoints))
        return Error{ErrorCode::too_large, Where(use), fmt::format("{} points", layout.points)};
    if (((head.status & kStatusSpectrum) != 0) != (use == VarianUse::spectrum))
        layout.warnings.emplace_back(use == VarianUse::fid ? "The file of the FID is marked as a spectrum."
                                                           : "The file of the spectrum is marked as a FID.");
    layout.traces = static_cast<std::size_t>(head.traces);
    layout.row_bytes = static_cast<std::size_t>(head.values) * BytesOf(layout.number);
    const auto heads = static_cast<std::uint64_t>(std::max(head.block_heads & kBlockHeadMask, 1));
    layout.heads_bytes = heads * kBlockHeadBytes;
    layout.block_bytes =
        BlockBytes(head, layout.heads_bytes + layout.traces * layout.row_bytes, file.size(), layout.warnings);
    layout.promised_rows = static_cast<std::size_t>(head.blocks) * layout.traces;
    layout.rows = RowsBegun(layout, file.size());
    if (layout.rows == 0) return Error{ErrorCode::truncated, Where(use), "the file holds no points"};
    return layout;
}

Status ReadDataVarian(GlobalBlock& g, std::int16_t slot, const VarianParameters& parameters, const ByteSource& fid)
{
    const auto layout = Prepare(g, slot, VarianUse::fid, fid);
    if (!layout) return layout.error();
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    set.par.SMODE = 0;
    set.par.FIDPoints = set.par.POINT;
    WarnOfOtherCount(set, parameters, "np", 2 * layout->points);
    const auto damaged = StoreWordRows(fid, WordsOf(*layout), set.spec);
    if (!damaged) return Error{damaged.error().code, Where(VarianUse::fid), damaged.error().text};
    WarnOfDamage(set, *damaged);
    set.par.RESOL = static_cast<double>(set.par.FREQU) / set.par.POINT;
    ApplyVarianArray(parameters, set);
    set.vendor = FindVarianProcessing(parameters);
    return {};
}

namespace {

/// Stored numbers as they stand; what is no number reads as 0 and is counted.
Result<std::uint64_t> StoreSpectrum(const ByteSource& file, const VarianLayout& layout, SpecBuffer& spec)
{
    const WordRows words = WordsOf(layout);
    std::vector<double> re(layout.points), im(layout.points);
    std::uint64_t damaged = 0;
    const auto sound = [&](double value) {
        if (std::fabs(value) <= kMaxFidValue) return static_cast<float>(value);
        ++damaged;
        return 0.0F;
    };
    Bytes buffer;
    for (std::size_t row = 0; row < layout.rows; ++row) {
        const std::size_t held = words.Held(file, row);
        const ByteSpan bytes = file.Read(layout.Offset(row), held * words.PointBytes(), buffer);
        if (bytes.size() < held * words.PointBytes())
            return Error{ErrorCode::truncated, Where(VarianUse::spectrum), "the file could not be read to its end"};
        if (layout.complex)
            DecodePairs(bytes, words.kind, words.order, std::span(re).first(held), std::span(im).first(held));
        else
            DecodeWords(bytes, words.kind, words.order, std::span(re).first(held));
        std::ranges::transform(std::span(re).first(held), spec.DataRe[row].begin(), sound);
        std::ranges::transform(std::span(im).first(held), spec.DataIm[row].begin(), sound);
    }
    return damaged;
}

/// Point 0 is the left edge, the highest frequency; the last stands one step before the right edge.
void FillAxis(DataSet& set)
{
    ParamBlock& par = set.par;
    const double centre = (par.ObsCenter - par.FileRefMHz) * 1e6;
    const double step = static_cast<double>(par.FREQU) / par.POINT;
    const double first = centre + 0.5 * static_cast<double>(par.FREQU);
    for (std::size_t i = 0; i < set.spec.XAxis.size(); ++i)
        set.spec.XAxis[i] = (first - static_cast<double>(i) * step) / par.OBFRQ0PPM;
    par.RESOL = step;
    par.Resolution2 = -step / par.OBFRQ0PPM;
    par.RefX = par.SMEXR = static_cast<float>(set.spec.XAxis[0]);
    par.SMTMS = 0;
}

void WarnOfPhase(DataSet& set, const VarianParameters& parameters, bool complex)
{
    if (!complex) {
        set.Warnings.emplace_back("The spectrum has no imaginary part: the phase can't be changed.");
        return;
    }
    const double rp = parameters.Number("rp").value_or(0), lp = parameters.Number("lp").value_or(0);
    if (rp != 0 || lp != 0)
        set.Warnings.push_back(fmt::format(
            "The spectrum stands in the file before phasing; the console used rp {:.1f}, lp {:.1f}.", rp, lp));
}

} // namespace

Status ReadDataVarianProc(GlobalBlock& g, std::int16_t slot, const VarianParameters& parameters, const ByteSource& data)
{
    const auto layout = Prepare(g, slot, VarianUse::spectrum, data);
    if (!layout) return layout.error();
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    set.par.SMODE = 1;
    set.par.FIDPoints = static_cast<std::int32_t>(
        std::clamp(parameters.Number("np").value_or(0) / 2, 0.0, static_cast<double>(kMaxPoints)));
    const auto damaged = StoreSpectrum(data, *layout, set.spec);
    if (!damaged) return damaged.error();
    WarnOfDamage(set, *damaged);
    FillAxis(set);
    WarnOfPhase(set, parameters, layout->complex);
    if (std::ranges::all_of(set.spec.DataRe.all(), [](float value) { return value == 0; }))
        set.Warnings.emplace_back("All points are zero: the spectrum was not written when it was last shown.");
    ApplyVarianArray(parameters, set);
    CopyDataToSource(set);
    FillDisplayLimits(set);
    return {};
}

} // namespace nmr
