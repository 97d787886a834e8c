// Reader of the native file. Offsets and counts of the file are checked before they size or index
// anything; what is missing keeps its default.

#include "core/dates.h"
#include "core/file_layer.h"
#include "core/spec_buffer.h"
#include "formats/tavo4.h"
#include "formats/tavo4_layout.h"
#include "formats/tavo4_sections.h"
#include "formats/tavo4_tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace nmr {

using namespace tavo4;

namespace {

constexpr char kWhere[] = "ReadDataTavo4/1DDRW";
constexpr std::string_view kBanner400 = "TA NMR Ver.4.00";
constexpr std::string_view kBanner401 = "TA NMR Ver.4.01";
constexpr std::string_view kBlockBanner = "1D NORM NORM";
constexpr std::int64_t kNoBlock = 256; ///< a block is longer than this
constexpr std::uint64_t kLargestFile = 0x7FFFFFFF;
constexpr std::size_t kBlockHead = 256;
constexpr float kReadYFill = 0.95F;
constexpr std::int32_t kFirstWindowPoint = -5000;
constexpr double kFarthestPpm = 1e30; ///< the file keeps the first position as a float

Error Bad(std::string text)
{
    return {ErrorCode::bad_format, kWhere, std::move(text)};
}

DataSet& SlotOf(GlobalBlock& g, std::int16_t slot)
{
    return g.Slots[static_cast<std::size_t>(slot)];
}

/// The address table of a block, without the sections that pass its end.
class BlockTable {
public:
    BlockTable(ByteSpan file, std::int64_t start, std::int64_t end) :
        file_(file), table_(static_cast<std::size_t>(start)), end_(end)
    {
    }
    /// The section, label included; empty when there is none.
    ByteSpan Section(std::uint16_t entry) const
    {
        const Entry found = ReadEntry(file_, table_ + entry);
        if (!Fits(found, end_)) return {};
        return file_.subspan(static_cast<std::size_t>(found.address), static_cast<std::size_t>(found.length));
    }

private:
    ByteSpan file_;
    std::size_t table_;
    std::int64_t end_;
};

void ReadNames(DataSet& set, const BlockTable& table)
{
    const ByteSpan original = table.Section(kOrgFileEntry);
    set.par.OrgFile = GetText(original, 0, original.size());
    set.par.FileName = set.par.OrgFile;
}

/// The text in the system's own form, and the numbers that go with it.
void NormalizeDate(ParamBlock& par)
{
    const auto when = Parse_DateTime(par.DATIM);
    if (!when) return;
    par.DateSerial = when->serial;
    par.TimeOfDay = static_cast<float>(when->fraction_of_day);
    par.DATIM = FormatDate("dd/mmm/yyyy hh:nn:ss", *when);
}

/// Rows of the matrices: the parameters tell it, and the array description once more.
std::int32_t CountRows(const DataSet& set, const BlockTable& table)
{
    const auto good = [](std::int32_t rows) { return rows >= 1 && rows <= kMaxRows; };
    if (good(set.par.RowCountCopy)) return set.par.RowCountCopy;
    const ByteSpan array = table.Section(kArrayEntry);
    const std::int32_t told = array.size() < 100 ? 1 : FromLittle<std::int32_t>(array.subspan(96));
    return good(told) ? told : 1;
}

/// Words that other code takes as an index or divides by.
void Confine(ParamBlock& par)
{
    if (par.SMODE != 0) par.SMODE = 1;
    if (par.WindowFunc < 0 || par.WindowFunc > 4) par.WindowFunc = 0;
    par.FIDShift = std::clamp(par.FIDShift, kFirstWindowPoint, par.POINT - 1);
    if (!std::isfinite(par.YFill) || par.YFill <= 0) par.YFill = kReadYFill;
    for (float* value : {&par.DispBase, &par.YMag, &par.DispLeft, &par.FREQU, &par.SMEXR, &par.RefX})
        if (!std::isfinite(*value)) *value = 0.0F;
    for (double* value : {&par.ObsCenter, &par.OBFRQ0PPM, &par.RESOL})
        if (!std::isfinite(*value)) *value = 0.0;
}

Status CheckPoints(const DataSet& set, ByteSpan data)
{
    const std::int32_t points = set.par.POINT;
    if (points > kMaxPoints)
        return Error{ErrorCode::too_large, kWhere, fmt::format("{} points are more than a row can hold", points)};
    if (points < 1) return Bad("The data have no points");
    if (data.size() < kLabelSize + MatrixBytes(set)) return Bad("The points are not all there");
    return {};
}

Status BuildAxis(DataSet& set)
{
    ParamBlock& par = set.par;
    std::vector<double>& axis = set.spec.XAxis;
    const auto points = static_cast<std::size_t>(par.POINT);
    // A counter of 32 bits, which converts to double in vectors.
    double* const ppm = axis.data();
    if (par.Resolution2 != 0) {
        const double first_ppm = static_cast<double>(par.PhaseWord1), step = par.Resolution2;
        for (std::int32_t i = 0; i < par.POINT; ++i) ppm[i] = first_ppm + i * step;
    } else {
        if (!(par.OBFRQ0PPM > 0)) return Bad("The data have no axis");
        const double step = static_cast<double>(par.FREQU) / par.OBFRQ0PPM / par.POINT;
        for (std::int32_t i = 0; i < par.POINT; ++i)
            ppm[i] = (static_cast<double>(i) - par.SMTMS) * step + static_cast<double>(par.RefX);
        par.Resolution2 = step;
    }
    // Written so that what is no number fails too.
    const bool good = std::abs(axis[0]) < kFarthestPpm && std::abs(axis[points - 1]) < kFarthestPpm;
    return good ? Status() : Bad("The axis of the data is no good");
}

Status ReadPoints(GlobalBlock& g, std::int16_t slot, ByteSpan data)
{
    DataSet& set = SlotOf(g, slot);
    if (Status allocated = AllocateToOverwrite(g, set.par.POINT, slot); !allocated) return allocated;
    if (Status axis = BuildAxis(set); !axis) return axis;
    if (const std::size_t damaged = ReadMatrices(set, data); damaged > 0)
        set.Warnings.push_back(fmt::format("{} values of the file are no numbers and were read as 0", damaged));
    CopyDataToSource(set);
    return {};
}

Status ReadBlock(GlobalBlock& g, std::int16_t slot, const BlockTable& table)
{
    DataSet& set = SlotOf(g, slot);
    ReadNames(set, table);
    const ByteSpan data = table.Section(kDataEntry);
    for (const SectionRow& row : SectionRows()) {
        const ByteSpan section = table.Section(row.entry);
        if (row.entry == kDataEntry) {
            // Everything behind the points may count on them.
            NormalizeDate(set.par);
            set.RowCount = CountRows(set, table);
            if (data.empty()) return Bad("There are no points");
            if (Status good = CheckPoints(set, data); !good) return good;
            // Adding 0 makes +0 of -0, which the writer puts there.
            if (!(set.par.RESOL > 0)) set.par.RESOL = set.par.Resolution2 * set.par.OBFRQ0PPM + 0.0;
            if (Status read = ReadPoints(g, slot, data); !read) return read;
        } else if (!section.empty()) {
            row.read(set, section);
        } else if (row.entry == kParameterEntry) {
            return Bad("There are no parameters");
        }
    }
    Confine(set.par);
    return {};
}

/// The slot as before a read. What the detection said of the file stays.
void Prepare(GlobalBlock& g, std::int16_t slot)
{
    const std::int16_t kind = g.Slots[0].par.DataKind;
    ClearDataSet(g, slot);
    ParamBlock& par = SlotOf(g, slot).par;
    par.DataKind = kind;
    par.YFill = kReadYFill;
    par.DispBase = 0.0F;
}

void Empty(GlobalBlock& g, std::int16_t slot)
{
    ClearDataSet(g, slot);
    SlotOf(g, slot).spec = SpecBuffer{};
}

std::optional<Version> VersionOf(ByteSpan file)
{
    const std::string banner = GetText(file, 0, std::min<std::size_t>(file.size(), 16));
    if (banner == kBanner400) return Version::v400;
    if (banner == kBanner401) return Version::v401;
    return std::nullopt;
}

/// Entries of the data blocks. A stored length gives way to the distance to the next block.
std::array<Entry, kBlocks> ReadBlockEntries(ByteSpan file)
{
    std::array<Entry, kBlocks> blocks;
    for (std::size_t i = 0; i < kBlocks; ++i) blocks[i] = ReadEntry(file, BlockEntry(i));
    for (std::size_t i = 0; i < 20; ++i) {
        const std::int64_t next = i < 19 ? blocks[i + 1].address : ReadEntry(file, kFirstLayoutEntry).address;
        const std::int64_t distance = next - blocks[i].address - static_cast<std::int64_t>(kLabelOfBlock);
        if (blocks[i].address != 0 && next != 0 && distance > kNoBlock) blocks[i].length = distance;
    }
    for (std::size_t i = 20; i < kBlocks; ++i)
        if (!Fits(blocks[i], static_cast<std::int64_t>(file.size()))) blocks[i].length = 0;
    return blocks;
}

bool MayOverwrite(GlobalBlock& g, Asker& asker, std::int16_t slot, const Entry& block)
{
    if (slot == 0 || IsEmpty(SlotOf(g, slot)) || block.length <= kNoBlock) return true;
    const MessageBox box{fmt::format("Overwrite on existing Data ({})?", slot + 1),
                         "Query of Overwrite on the Data",
                         {Button::yes, Button::no},
                         Icon::question,
                         false};
    return asker.Message(box) == Button::yes;
}

/// Reads one block into a slot; tells the user when it is no good.
Status LoadBlock(GlobalBlock& g, Asker& asker, ByteSpan file, const Entry& block, std::int16_t slot)
{
    const std::int64_t start = block.address + static_cast<std::int64_t>(kLabelOfBlock);
    Status read = ReadDataBlock4(g, file, start, start + block.length, slot);
    if (read) return read;
    asker.Message({fmt::format("{}th Spectrum Data is invalid\nPress OK to continue.", slot), "Data Error"});
    Error error = read.error();
    error.user_knows = true;
    return error;
}

/// All blocks into their slots. Only a failure of the first one is a failure of the read.
Status LoadAll(GlobalBlock& g, Asker& asker, ByteSpan file, std::span<const Entry> blocks)
{
    std::array<bool, kSlotCount> load{};
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot) {
        const Entry& block = blocks[static_cast<std::size_t>(slot)];
        load[static_cast<std::size_t>(slot)] = block.present() && MayOverwrite(g, asker, slot, block);
    }
    if (!load[0]) return Bad("The file has no first spectrum");
    Status first;
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot) {
        if (!load[static_cast<std::size_t>(slot)]) continue;
        Status read = LoadBlock(g, asker, file, blocks[static_cast<std::size_t>(slot)], slot);
        if (slot == 0) first = read;
    }
    return first;
}

} // namespace

Status ReadDataBlock4(GlobalBlock& g, ByteSpan file, std::int64_t start, std::int64_t end, std::int16_t slot)
{
    Prepare(g, slot);
    end = std::min(end, static_cast<std::int64_t>(file.size()));
    Status read = Bad("The data block is no good");
    if (start >= 0 && start + static_cast<std::int64_t>(kBlockHead) <= end &&
        GetText(file, static_cast<std::size_t>(start), 16) == kBlockBanner)
        read = ReadBlock(g, slot, BlockTable(file, start, end));
    if (!read) {
        Empty(g, slot);
        return read;
    }
    SlotOf(g, slot).par.DataChanged = 0;
    SlotOf(g, slot).par.DataFromFile = 1;
    return {};
}

Status DecodeTavo4(GlobalBlock& g, Asker& asker, ByteSpan file, std::int16_t slot)
{
    if (slot < 0 || slot >= kSlotCount) return Error{ErrorCode::internal, kWhere, "There is no such slot"};
    const auto version = VersionOf(file);
    if (!version) {
        asker.Message({"Invalid Data", "Data Error(RDR V4 in DRW)"});
        Error error = Bad("This is no native file of version 4");
        error.user_knows = true;
        return error;
    }
    if (file.size() < kHeadSize) return Error{ErrorCode::truncated, kWhere, "The file ends before its address table"};
    const auto blocks = ReadBlockEntries(file);
    if (slot != 0) {
        if (!blocks[0].present()) return Bad("The file has no first spectrum");
        return LoadBlock(g, asker, file, blocks[0], slot);
    }
    if (Status loaded = LoadAll(g, asker, file, blocks); !loaded) return loaded;
    g.Slots[0].Carried = ReadCarried(file, *version);
    return {};
}

Status ReadDataTavo4(GlobalBlock& g, Asker& asker, const std::string& path, std::int16_t slot)
{
    const auto bytes = ReadWholeFile(path, kLargestFile);
    if (!bytes) return bytes.error();
    return DecodeTavo4(g, asker, *bytes, slot);
}

Status ReadTavo4(const ReadRequest& request)
{
    if (IsTwoDimensional(request.type.code))
        return Error{ErrorCode::two_dimensional, kWhere, "Two-dimensional data can't be read here"};
    return ReadDataTavo4(request.g, request.asker, request.type.path, request.slot);
}

} // namespace nmr
