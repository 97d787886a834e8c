// Writer of the native file.

#include "core/file_layer.h"
#include "formats/tavo4.h"
#include "formats/tavo4_layout.h"
#include "formats/tavo4_sections.h"
#include "formats/tavo4_tables.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace nmr {

using namespace tavo4;

namespace {

constexpr char kWhere[] = "WriteDataTavo4/1DDRW";
constexpr std::string_view kBanner = "TA NMR Ver.4.01";
constexpr std::size_t kPathSize = 255;
constexpr std::size_t kBlockHead = 768;
constexpr std::size_t kOrgFileAt = 256;
constexpr std::size_t kOrgFileSize = 256;
constexpr double kDrift = 0.01;

DataSet& SlotOf(GlobalBlock& g, std::int16_t slot)
{
    return g.Slots[static_cast<std::size_t>(slot)];
}

bool Drifted(double value, double right)
{
    return std::abs(value - right) > kDrift * std::abs(right);
}

/// The step that the reader turns into this axis; a step that does so to the bit is left alone, so that
/// saving what was read changes nothing.
void RepairStep(DataSet& set)
{
    ParamBlock& par = set.par;
    const std::size_t last = static_cast<std::size_t>(par.POINT) - 1;
    if (set.RowCount < 2 || last == 0) return;
    const double first_ppm = static_cast<double>(par.PhaseWord1);
    const bool exact = set.spec.XAxis[0] == first_ppm &&
                       set.spec.XAxis[last] == first_ppm + static_cast<double>(last) * par.Resolution2;
    if (!exact) par.Resolution2 = (set.spec.XAxis[last] - set.spec.XAxis[0]) / static_cast<double>(last);
}

/// Puts fields right that follow from others and may have drifted.
void Repair(GlobalBlock& g, std::int16_t slot)
{
    DataSet& set = SlotOf(g, slot);
    ParamBlock& par = set.par;
    const std::vector<double>& axis = set.spec.XAxis;
    // Adding 0 makes +0 of -0, as the sum of the reader does.
    par.PhaseWord1 = static_cast<float>(axis[0]) + 0.0F;
    if (par.ObsCenter == 0) par.ObsCenter = g.Slots[0].par.ObsCenter;
    if (par.OBFRQ0PPM == 0) par.OBFRQ0PPM = par.ObsCenter;
    const double width_hz = std::abs(axis[static_cast<std::size_t>(par.POINT) - 1] - axis[0]) * par.OBFRQ0PPM;
    // Without a frequency the width in Hz can't be told from the axis.
    if (width_hz > 0 && Drifted(par.FREQU, width_hz)) par.FREQU = static_cast<float>(width_hz);
    const double resolution_hz = static_cast<double>(par.FREQU) / par.POINT;
    if (Drifted(par.RESOL, resolution_hz)) par.RESOL = resolution_hz;
    par.RowCountCopy = set.RowCount;
    RepairStep(set);
    if (set.XLabelPpm.empty()) set.XLabelPpm = g.settings.xlabel;
    if (set.XLabelHz.empty()) set.XLabelHz = g.settings.xlabel_hz;
    if (set.XLabelKHz.empty()) set.XLabelKHz = g.settings.xlabel_khz;
}

Error Refused(ErrorCode code, std::string text)
{
    return {code, kWhere, std::move(text)};
}

/// The arrays hold what the record says.
bool HoldsItsPoints(const DataSet& set)
{
    const auto points = static_cast<std::size_t>(set.par.POINT), rows = static_cast<std::size_t>(set.RowCount);
    const SpecBuffer& spec = set.spec;
    return set.par.POINT <= spec.AllocatedPoints && spec.XAxis.size() >= points && spec.DataRe.columns() >= points &&
           spec.DataIm.columns() >= points && spec.DataRe.rows() >= rows && spec.DataIm.rows() >= rows;
}

/// Slots that go into the file, 0 first.
std::vector<std::int16_t> SlotsToWrite(const GlobalBlock& g, std::int16_t slot)
{
    if (slot != 0) return {slot};
    std::vector<std::int16_t> used;
    for (std::int16_t i = 0; i < kSlotCount; ++i)
        if (i == 0 || !IsEmpty(g.Slots[static_cast<std::size_t>(i)])) used.push_back(i);
    return used;
}

/// Bytes of a block, never too few.
std::size_t BlockBound(const DataSet& set)
{
    constexpr std::size_t kFixedSections = 8192;
    std::size_t texts =
        set.par.COMNT.size() + set.CommentRtf.size() + set.SimComment.size() + 2 * set.par.SampleId.size();
    texts += 64 * std::max(set.HistoryA.size(), set.HistoryB.size());
    return kFixedSections + MatrixBytes(set) + kMultiViewSize * set.MultiViews.size() +
           kIntegralEntrySize * set.Integrals.size() + kPeakEntrySize * set.Peaks.size() +
           kSimPeakSize * set.SimPeaks.size() + 8 * static_cast<std::size_t>(set.RowCount) + 2 * texts;
}

std::size_t FileBound(const GlobalBlock& g, std::span<const std::int16_t> slots)
{
    std::size_t bound = 4096;
    for (const std::int16_t slot : slots) bound += BlockBound(g.Slots[static_cast<std::size_t>(slot)]);
    const DataSet& main = g.Slots[0];
    bound += 64 * std::max(main.HistoryA.size(), main.HistoryB.size());
    for (const CarriedSection& section : main.Carried) bound += section.Bytes.size() + 32;
    return bound;
}

Status CheckSlots(GlobalBlock& g, std::span<const std::int16_t> slots)
{
    for (const std::int16_t slot : slots) {
        DataSet& set = SlotOf(g, slot);
        if (set.par.POINT < 1) return Refused(ErrorCode::bad_value, "There are no data to save");
        set.RowCount = std::max(set.RowCount, 1);
        if (set.par.POINT > kMaxPoints || set.RowCount > kMaxRows || !HoldsItsPoints(set))
            return Refused(ErrorCode::bad_value, "The data don't have the number of points that they tell");
    }
    if (FileBound(g, slots) > std::size_t{0x7FFFFFFF})
        return Refused(ErrorCode::too_large, "All data together are too large for one file");
    return {};
}

void PutHead(FileImage& image, const std::string& path)
{
    const MutableBytes head = image.Append(kHeadSize);
    const auto put = [&](std::size_t at, std::string_view text) {
        std::ranges::copy(std::as_bytes(std::span(text)), head.begin() + static_cast<std::ptrdiff_t>(at));
    };
    put(0, kBanner);
    StoreText(head.subspan(16, kPathSize), path);
    put(496, "## ADDRESS");
    put(1280, "## 2D Data");
    image.PutEntry(512, 1280, 0);
}

void WriteBlocks(GlobalBlock& g, FileImage& image, std::span<const std::int16_t> slots, std::int16_t wanted)
{
    for (const std::int16_t slot : slots) {
        // A slot that is saved alone is the first spectrum of its file.
        const std::size_t block = wanted == 0 ? static_cast<std::size_t>(slot) : 0;
        const std::size_t start = image.Align();
        image.Label(BlockLabel(block));
        const std::size_t end = WriteDataBlock4(g, image, slot);
        image.PutEntry(BlockEntry(block), start, end - start - kLabelSize);
    }
}

} // namespace

std::size_t WriteDataBlock4(GlobalBlock& g, FileImage& image, std::int16_t slot)
{
    Repair(g, slot);
    const DataSet& set = SlotOf(g, slot);
    const std::size_t start = image.size();
    image.Label("1D NORM NORM   ");
    image.Label("%% ADDRESS");
    image.Append(kBlockHead - 2 * kLabelSize);
    StoreText(image.At(start + kOrgFileAt, kOrgFileSize - 1), set.par.OrgFile);
    image.PutEntry(start + kOrgFileEntry, start + kOrgFileAt, kOrgFileSize);
    constexpr std::string_view kOrgFileLabel = "%% ORG FILE";
    std::ranges::copy(std::as_bytes(std::span(kOrgFileLabel)), image.At(start + 240, kLabelSize).begin());
    for (const SectionRow& row : SectionRows()) {
        if (row.wanted != nullptr && !row.wanted(set)) continue;
        // The parameters follow the head at once.
        const std::size_t at = row.entry == kParameterEntry ? image.size() : image.Align();
        image.Label(row.label);
        const std::size_t length = row.write(set, image);
        image.PutEntry(start + row.entry, at, length);
    }
    image.Align();
    image.Label("%% END");
    return image.size();
}

Result<std::vector<std::byte>> EncodeTavo4(GlobalBlock& g, const std::string& path, std::int16_t slot)
{
    if (slot < 0 || slot >= kSlotCount) return Refused(ErrorCode::internal, "There is no such slot");
    const std::vector<std::int16_t> slots = SlotsToWrite(g, slot);
    if (const Status good = CheckSlots(g, slots); !good) return good.error();
    try {
        FileImage image(FileBound(g, slots));
        PutHead(image, path);
        WriteBlocks(g, image, slots, slot);
        if (slot == 0) WriteCarriedBlocks(g.Slots[0], image);
        WriteLayout(slot == 0 ? &g.Slots[0] : nullptr, image);
        return image.Take();
    } catch (const std::bad_alloc&) {
        return Refused(ErrorCode::too_large, "There is not enough memory to save the data");
    }
}

Status WriteDataTavo4(GlobalBlock& g, const std::string& path, std::int16_t slot)
{
    const auto bytes = EncodeTavo4(g, path, slot);
    if (!bytes) return bytes.error();
    Status written = WriteWholeFile(path, *bytes, Flush::always);
    if (written) return {};
    Error error = written.error();
    error.where = kWhere;
    return error;
}

} // namespace nmr
