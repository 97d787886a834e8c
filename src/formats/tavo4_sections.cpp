#include "formats/tavo4_sections.h"

#include "core/text.h"
#include "formats/tavo4_tables.h"
#include "formats/tavo4_text.h"

#include <bit>
#include <cmath>

namespace nmr::tavo4 {
namespace {

constexpr std::size_t kMaxViews = 21;
constexpr std::size_t kRegionsAt = 32;
constexpr std::size_t kHistoryEntriesAt = 96;
constexpr std::size_t kHistoryText = 32;
constexpr std::size_t kHistoryEntrySize = 2 * kHistoryText;
constexpr std::size_t kRowValuesAt = 100;
constexpr std::size_t kHeadingAt = 112; ///< behind the values of all rows
constexpr std::size_t kHeadingSize = 16;
constexpr std::size_t kAxisLabelSize = 64;

/// A section of `size` bytes from its label on, which has been laid down already.
MutableBytes Section(FileImage& image, std::size_t size)
{
    const std::size_t start = image.size() - kLabelSize;
    image.Append(size - kLabelSize);
    return image.At(start, size);
}

/// How many entries of a list there are: what the file says, but never more than fit behind `head`.
std::size_t ListCount(ByteSpan section, std::size_t at, std::size_t head, std::size_t entry_size)
{
    if (section.size() < at + 4 || section.size() <= head) return 0;
    const auto told = FromLittle<std::int32_t>(section.subspan(at));
    if (told <= 0) return 0;
    return std::min(static_cast<std::size_t>(told), (section.size() - head) / entry_size);
}

template <class List, class Entries>
void ReadList(ByteSpan section, std::size_t entry_size, List& list, Entries cells, std::size_t most = SIZE_MAX)
{
    list.assign(std::min(ListCount(section, 16, kListHead, entry_size), most), {});
    for (std::size_t i = 0; i < list.size(); ++i)
        GetCells(section.subspan(kListHead + i * entry_size, entry_size), cells, list[i]);
}

// --- Parameters and points

std::size_t WriteParameters(const DataSet& set, FileImage& image)
{
    const MutableBytes section = Section(image, kParameterSize);
    PutCells(section, ParameterCells(), set.par);
    PutCells(section, PhaseTableCells(), set);
    return section.size();
}

void ReadParameters(DataSet& set, ByteSpan section)
{
    GetCells(section, ParameterCells(), set.par);
    GetCells(section, PhaseTableCells(), set);
}

void AppendRow(std::span<const float> row, FileImage& image)
{
    if constexpr (std::endian::native == std::endian::little) {
        image.Append(std::as_bytes(row));
    } else {
        const MutableBytes out = image.Append(row.size_bytes());
        for (std::size_t i = 0; i < row.size(); ++i) Store(out.subspan(4 * i), row[i]);
    }
}

/// No branch inside, so that it costs little beside the copy.
bool AllFinite(std::span<const float> row)
{
    // Adding the lowest bit of the exponent overflows into the sign only where all its bits are set.
    constexpr std::uint32_t kExponent = 0x7F800000, kLowest = 0x00800000, kSign = 0x80000000;
    std::uint32_t overflow = 0;
    for (const float value : row) overflow |= (std::bit_cast<std::uint32_t>(value) & kExponent) + kLowest;
    return (overflow & kSign) == 0;
}

/// Takes a row of the file; values that are none become 0 and are counted.
std::size_t TakeRow(ByteSpan in, std::span<float> row)
{
    if constexpr (std::endian::native == std::endian::little)
        std::memcpy(row.data(), in.data(), row.size_bytes());
    else
        for (std::size_t i = 0; i < row.size(); ++i) row[i] = FromLittle<float>(in.subspan(4 * i));
    if (AllFinite(row)) return 0;
    std::size_t damaged = 0;
    for (float& value : row)
        if (!std::isfinite(value)) {
            value = 0.0F;
            ++damaged;
        }
    return damaged;
}

std::size_t WriteMatrices(const DataSet& set, FileImage& image)
{
    const auto points = static_cast<std::size_t>(set.par.POINT);
    for (const RowArray<float>* matrix : {&set.spec.DataRe, &set.spec.DataIm})
        for (std::size_t row = 0; row < static_cast<std::size_t>(set.RowCount); ++row)
            AppendRow((*matrix)[row].first(points), image);
    return kLabelSize + MatrixBytes(set);
}

// --- Texts

std::size_t WriteText(std::string_view text, FileImage& image)
{
    const std::string bytes = ToCp932(text.substr(0, text.find('\0')));
    if (bytes.empty()) {
        image.Append(4);
        return 0;
    }
    std::ranges::copy(std::as_bytes(std::span(bytes)), image.Append(bytes.size()).begin());
    return kLabelSize + bytes.size();
}

/// Line ends and blanks stay: only the length tells where the text ends.
std::string ReadText(ByteSpan section)
{
    if (section.size() <= kLabelSize) return {};
    const ByteSpan body = section.subspan(kLabelSize);
    const std::string_view text(reinterpret_cast<const char*>(body.data()), body.size());
    return FromCp932(text.substr(0, text.find('\0')));
}

template <std::string DataSet::*Member>
std::size_t WriteMember(const DataSet& set, FileImage& image)
{
    return WriteText(set.*Member, image);
}

template <std::string DataSet::*Member>
void ReadMember(DataSet& set, ByteSpan section)
{
    set.*Member = ReadText(section);
}

std::size_t WriteComment(const DataSet& set, FileImage& image)
{
    return WriteText(PlainFromRtf(set.par.COMNT), image);
}

void ReadComment(DataSet& set, ByteSpan section)
{
    set.par.COMNT = ReadText(section);
}

/// Rich text that belongs to another comment than the present one has had its day.
std::string_view RichComment(const DataSet& set)
{
    if (IsRtf(set.par.COMNT)) return set.par.COMNT;
    return set.CommentRtfPlain == set.par.COMNT ? std::string_view(set.CommentRtf) : std::string_view();
}

bool HasRichComment(const DataSet& set)
{
    return !RichComment(set).empty();
}

std::size_t WriteRichComment(const DataSet& set, FileImage& image)
{
    return WriteText(RichComment(set), image);
}

void ReadRichComment(DataSet& set, ByteSpan section)
{
    set.CommentRtf = ReadText(section);
    if (set.par.COMNT.empty()) set.par.COMNT = PlainFromRtf(set.CommentRtf);
    set.CommentRtfPlain = set.par.COMNT;
}

std::size_t WritePlainSampleId(const DataSet& set, FileImage& image)
{
    return WriteText(PlainFromCode(set.par.SampleId), image);
}

std::size_t WriteSampleId(const DataSet& set, FileImage& image)
{
    return WriteText(set.par.SampleId, image);
}

void ReadSampleId(DataSet& set, ByteSpan section)
{
    set.par.SampleId = ReadText(section);
}

// --- Lists of the analysis

std::size_t WriteIntegrals(const DataSet& set, FileImage& image)
{
    const MutableBytes section = Section(image, kListHead + kIntegralEntrySize * set.Integrals.size());
    PutCells(section, IntegralCells(), set);
    for (std::size_t i = 0; i < set.Integrals.size(); ++i)
        PutCells(section.subspan(kListHead + kIntegralEntrySize * i), IntegralEntryCells(), set.Integrals[i]);
    return section.size();
}

void ReadIntegrals(DataSet& set, ByteSpan section)
{
    GetCells(section, IntegralCells(), set);
    ReadList(section, kIntegralEntrySize, set.Integrals, IntegralEntryCells());
}

std::size_t WritePeaks(const DataSet& set, FileImage& image)
{
    const MutableBytes section = Section(image, kListHead + kPeakEntrySize * set.Peaks.size());
    PutCells(section, PeakCells(), set);
    for (std::size_t i = 0; i < set.Peaks.size(); ++i)
        PutCells(section.subspan(kListHead + kPeakEntrySize * i), PeakEntryCells(), set.Peaks[i]);
    return section.size();
}

void ReadPeaks(DataSet& set, ByteSpan section)
{
    GetCells(section, PeakCells(), set);
    ReadList(section, kPeakEntrySize, set.Peaks, PeakEntryCells());
}

std::size_t WriteViews(const DataSet& set, FileImage& image)
{
    const std::size_t count = std::min(set.MultiViews.size(), kMaxViews);
    const MutableBytes section = Section(image, kListHead + kMultiViewSize * count);
    Store(section.subspan(16), static_cast<std::int32_t>(count));
    for (std::size_t i = 0; i < count; ++i)
        PutCells(section.subspan(kMultiViewSize * i), MultiViewCells(), set.MultiViews[i]);
    return section.size();
}

void ReadViews(DataSet& set, ByteSpan section)
{
    set.MultiViews.assign(std::min(ListCount(section, 16, kListHead, kMultiViewSize), kMaxViews), {});
    for (std::size_t i = 0; i < set.MultiViews.size(); ++i)
        GetCells(section.subspan(kMultiViewSize * i, kListHead + kMultiViewSize), MultiViewCells(), set.MultiViews[i]);
}

constexpr std::size_t kEmptySimulation = 18;

std::size_t WriteSimulation(const DataSet& set, FileImage& image)
{
    if (set.SimPeaks.empty()) return Section(image, kEmptySimulation).size();
    const MutableBytes section = Section(image, kSimPeaksAt + kSimPeakSize * set.SimPeaks.size());
    PutCells(section, SimulateCells(), set);
    for (std::size_t i = 0; i < set.SimPeaks.size(); ++i)
        PutCells(section.subspan(kSimPeaksAt + kSimPeakSize * i), SimPeakCells(), set.SimPeaks[i]);
    return section.size();
}

void ReadSimulation(DataSet& set, ByteSpan section)
{
    if (section.size() < kSimPeaksAt) return;
    GetCells(section, SimulateCells(), set);
    // The first word counts the peaks; where it can't, the length does.
    const std::size_t room = (section.size() - kSimPeaksAt) / kSimPeakSize;
    const std::int32_t told = set.SimWords[0];
    const bool good = told >= 0 && static_cast<std::size_t>(told) <= room;
    set.SimPeaks.assign(good ? static_cast<std::size_t>(told) : room, {});
    for (std::size_t i = 0; i < set.SimPeaks.size(); ++i)
        GetCells(section.subspan(kSimPeaksAt + kSimPeakSize * i, kSimPeakSize), SimPeakCells(), set.SimPeaks[i]);
}

// --- Display, rows, history

constexpr std::size_t kPrintSetSize = 272;

std::size_t WritePrintSet(const DataSet& set, FileImage& image)
{
    const MutableBytes section = Section(image, kPrintSetSize);
    PutCells(section, PrintSetCells(), set);
    PutCells(section, PrintSetParameterCells(), set.par);
    return section.size();
}

void ReadPrintSet(DataSet& set, ByteSpan section)
{
    GetCells(section, PrintSetCells(), set);
    GetCells(section, PrintSetParameterCells(), set.par);
}

std::size_t WriteArray(const DataSet& set, FileImage& image)
{
    const auto rows = static_cast<std::size_t>(set.RowCount);
    const MutableBytes section = Section(image, kHeadingAt + 8 * rows + kHeadingSize);
    PutCells(section, ArrayCells(), set);
    for (std::size_t i = 0; i < std::min(rows, set.RowValueA.size()); ++i) {
        Store(section.subspan(kRowValuesAt + 8 * i), set.RowValueB[i]);
        Store(section.subspan(kRowValuesAt + 8 * i + 4), set.RowValueA[i]);
    }
    StoreText(section.subspan(kHeadingAt + 8 * rows, kHeadingSize), set.RowHeading);
    return section.size();
}

void ReadArray(DataSet& set, ByteSpan section)
{
    GetCells(section, ArrayCells(), set);
    const auto rows = std::min(static_cast<std::size_t>(set.RowCount), set.RowValueA.size());
    for (std::size_t i = 0; i < rows && kRowValuesAt + 8 * i + 8 <= section.size(); ++i) {
        set.RowValueB[i] = FromLittle<float>(section.subspan(kRowValuesAt + 8 * i));
        set.RowValueA[i] = FromLittle<float>(section.subspan(kRowValuesAt + 8 * i + 4));
    }
    // A section may end before its heading.
    if (section.size() >= kHeadingAt + 8 * rows + kHeadingSize)
        set.RowHeading = GetText(section, kHeadingAt + 8 * rows, kHeadingSize);
}

void ReadHistory(DataSet& set, ByteSpan section)
{
    GetCells(section, HistoryCells(), set);
    const std::size_t count = ListCount(section, 80, kHistoryEntriesAt, kHistoryEntrySize);
    set.HistoryA.assign(count, {});
    set.HistoryB.assign(count, {});
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = kHistoryEntriesAt + kHistoryEntrySize * i;
        set.HistoryA[i] = GetText(section, at, kHistoryText);
        set.HistoryB[i] = GetText(section, at + kHistoryText, kHistoryText);
    }
}

struct FontPlace {
    std::size_t offset;
    FontRec DataSet::*font;
};
constexpr FontPlace kFonts[] = {{16, &DataSet::FontMain}, {64, &DataSet::FontPeak}, {112, &DataSet::FontInt}};
constexpr std::size_t kFontsSize = 384;

std::size_t WriteFonts(const DataSet& set, FileImage& image)
{
    const MutableBytes section = Section(image, kFontsSize);
    for (const FontPlace& place : kFonts) PutCells(section.subspan(place.offset), FontCellsA(), set.*(place.font));
    return section.size();
}

void ReadFonts(DataSet& set, ByteSpan section)
{
    for (const FontPlace& place : kFonts)
        if (place.offset + kFontSize <= section.size())
            GetCells(section.subspan(place.offset, kFontSize), FontCellsA(), set.*(place.font));
}

constexpr std::size_t kFileNameText = 255;

std::size_t WriteFileName(const DataSet& set, FileImage& image)
{
    const MutableBytes section = Section(image, kLabelSize + kFileNameText + 1);
    StoreText(section.subspan(kLabelSize, kFileNameText), set.par.FileName);
    return section.size();
}

void ReadFileName(DataSet& set, ByteSpan section)
{
    if (section.size() > kLabelSize) set.par.FileName = GetText(section, kLabelSize, section.size() - kLabelSize);
}

std::size_t WriteRegions(const DataSet& set, FileImage& image)
{
    const MutableBytes section = Section(image, kRegionsAt + kRegionSize * set.Regions.size());
    for (std::size_t i = 0; i < set.Regions.size(); ++i)
        PutCells(section.subspan(kRegionsAt + kRegionSize * i), RegionCells(), set.Regions[i]);
    return section.size();
}

void ReadRegions(DataSet& set, ByteSpan section)
{
    for (std::size_t i = 0; i < set.Regions.size(); ++i) {
        const std::size_t at = kRegionsAt + kRegionSize * i;
        if (at + kRegionSize > section.size()) return;
        GetCells(section.subspan(at, kRegionSize), RegionCells(), set.Regions[i]);
    }
}

constexpr std::string DataSet::*kAxisLabels[] = {&DataSet::XLabelPpm, &DataSet::XLabelHz, &DataSet::XLabelKHz};
constexpr std::size_t kAxisLabelsSize = kLabelSize + 3 * kAxisLabelSize;

template <bool Plain>
std::size_t WriteAxisLabels(const DataSet& set, FileImage& image)
{
    const MutableBytes section = Section(image, kAxisLabelsSize);
    std::size_t at = kLabelSize;
    for (const auto label : kAxisLabels) {
        StoreText(section.subspan(at, kAxisLabelSize), Plain ? PlainFromCode(set.*label) : set.*label);
        at += kAxisLabelSize;
    }
    return section.size();
}

/// A section may end behind any label; one that is not there or empty leaves what stands.
void ReadAxisLabels(DataSet& set, ByteSpan section)
{
    std::size_t at = kLabelSize;
    for (const auto label : kAxisLabels) {
        if (at >= section.size()) return;
        const std::string text = GetText(section, at, std::min(kAxisLabelSize, section.size() - at));
        if (!text.empty()) set.*label = text;
        at += kAxisLabelSize;
    }
}

// Of two rows for the same member the later one wins.
constexpr SectionRow kSections[] = {
    {"%% PARAMETER", kParameterEntry, nullptr, WriteParameters, ReadParameters},
    {"%% Data", kDataEntry, nullptr, WriteMatrices, nullptr},
    {"%% COMMENT", 56, nullptr, WriteComment, ReadComment},
    {"%% COMMENT RTF", 168, HasRichComment, WriteRichComment, ReadRichComment},
    {"%% SIM COMMENT", 176, nullptr, WriteMember<&DataSet::SimComment>, ReadMember<&DataSet::SimComment>},
    {"%% SAMPLE ID", 152, nullptr, WritePlainSampleId, ReadSampleId},
    {"%% SAMPLEID NEW", 192, nullptr, WriteSampleId, ReadSampleId},
    {"%% INTEGRAL", 64, nullptr, WriteIntegrals, ReadIntegrals},
    {"%% PEAK PICK", 72, nullptr, WritePeaks, ReadPeaks},
    {"%% MULTIVIEW", 80, nullptr, WriteViews, ReadViews},
    {"%% SIMULATE", 88, nullptr, WriteSimulation, ReadSimulation},
    {"%% PRINT SET", 96, nullptr, WritePrintSet, ReadPrintSet},
    {"%% ARRAY", kArrayEntry, nullptr, WriteArray, ReadArray},
    {"%% HISTORY", 112, nullptr, WriteHistory, ReadHistory},
    {"%% FONTS", 120, nullptr, WriteFonts, ReadFonts},
    {"%% FILENAME", kFileNameEntry, nullptr, WriteFileName, ReadFileName},
    {"%% REGION COLOR", 144, nullptr, WriteRegions, ReadRegions},
    {"%% X LABELS", 160, nullptr, WriteAxisLabels<true>, ReadAxisLabels},
    {"%% X LABELS NEW", 184, nullptr, WriteAxisLabels<false>, ReadAxisLabels},
};

} // namespace

std::span<const SectionRow> SectionRows()
{
    return kSections;
}

std::size_t WriteHistory(const DataSet& set, FileImage& image)
{
    const std::size_t count = std::max(set.HistoryA.size(), set.HistoryB.size());
    const MutableBytes section = Section(image, kHistoryEntriesAt + kHistoryEntrySize * count);
    PutCells(section, HistoryCells(), set);
    Store(section.subspan(80), static_cast<std::int32_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = kHistoryEntriesAt + kHistoryEntrySize * i;
        if (i < set.HistoryA.size()) StoreText(section.subspan(at, kHistoryText), set.HistoryA[i]);
        if (i < set.HistoryB.size()) StoreText(section.subspan(at + kHistoryText, kHistoryText), set.HistoryB[i]);
    }
    return section.size();
}

std::size_t MatrixBytes(const DataSet& set)
{
    return std::size_t{8} * static_cast<std::size_t>(set.RowCount) * static_cast<std::size_t>(set.par.POINT);
}

std::size_t ReadMatrices(DataSet& set, ByteSpan section)
{
    const auto points = static_cast<std::size_t>(set.par.POINT);
    std::size_t at = kLabelSize, damaged = 0;
    for (RowArray<float>* matrix : {&set.spec.DataRe, &set.spec.DataIm})
        for (std::size_t row = 0; row < static_cast<std::size_t>(set.RowCount); ++row, at += 4 * points)
            damaged += TakeRow(section.subspan(at, 4 * points), (*matrix)[row].first(points));
    return damaged;
}

} // namespace nmr::tavo4
