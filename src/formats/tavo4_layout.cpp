#include "formats/tavo4_layout.h"

#include "formats/tavo4_sections.h"
#include "formats/tavo4_text.h"

#include <fmt/format.h>

#include <algorithm>

namespace nmr::tavo4 {
namespace {

/// A value inside a carried section that is an address of the file.
enum class Inner { none, text, picture };

struct LayoutRow {
    std::string_view label;
    std::uint16_t entry;
    std::uint16_t entry_400 = 0; ///< in the shorter table of version 4.00; 0: not there
    Inner inner = Inner::none;
    /// Lays the section from the set; nullptr: only carried.
    std::size_t (*write)(const DataSet& set, const CarriedSection* carried, FileImage& image) = nullptr;
};

constexpr std::size_t kAxisLabelSize = 64;
constexpr std::size_t kAxisLabelsSize = 528;

/// The three labels of the main set; what stands behind them is carried.
template <bool Plain>
std::size_t WriteLabels(const DataSet& set, const CarriedSection* carried, FileImage& image)
{
    const std::size_t start = image.size() - kLabelSize;
    image.Append(kAxisLabelsSize - kLabelSize);
    const MutableBytes section = image.At(start, kAxisLabelsSize);
    if (carried != nullptr)
        for (std::size_t i = kLabelSize; i < std::min(carried->Bytes.size(), kAxisLabelsSize); ++i)
            section[i] = carried->Bytes[i];
    std::size_t at = kLabelSize;
    for (const auto label : {&DataSet::XLabelPpm, &DataSet::XLabelHz, &DataSet::XLabelKHz}) {
        const MutableBytes field = section.subspan(at, kAxisLabelSize);
        std::ranges::fill(field, std::byte{0});
        StoreText(field, Plain ? PlainFromCode(set.*label) : set.*label);
        at += kAxisLabelSize;
    }
    return kAxisLabelsSize;
}

std::size_t WriteFileHistory(const DataSet& set, const CarriedSection*, FileImage& image)
{
    return WriteHistory(set, image);
}

// In the order of the file.
constexpr LayoutRow kLayout[] = {
    {"## PRINTSET 1D", 688, 688},
    {"## X-AXIS LABEL", 816, 816, Inner::none, WriteLabels<true>},
    {"##XN-AXIS LABEL", 824, 824, Inner::none, WriteLabels<false>},
    {"## PRINTSET 2D", 696, 696},
    {"## SIM PRINTSET", 704, 712},
    {"## T1Cal SET", 712, 720},
    {"## LINE DATA 2D", 720},
    {"## LINE DATA-0", 768, 768},
    {"## LINE DATA-SIM", 744},
    {"## TEXT DATA 2D", 728, 0, Inner::text},
    {"## TEXT DATA-0", 776, 776, Inner::text},
    {"## TEXT DATA-SIM", 752, 0, Inner::text},
    {"## PICTURE 2D", 736, 0, Inner::picture},
    {"## PICTUREEX 2D", 1072, 0, Inner::picture},
    {"## PICTURE-0", 784, 784, Inner::picture},
    {"## PICTUREEX-0", 1064, 0, Inner::picture},
    {"## PICTURE-SIM", 760, 0, Inner::picture},
    {"## PICTUREEX-SIM", 1080, 0, Inner::picture},
    {"## CIRCLE -0", 1008},
    {"## CIRCLE-SIM", 1040},
    {"## CIRCLE -2D", 992},
    {"## RECTANGLE-0", 1016},
    {"## RECTANGLE-S", 1048},
    {"## RECTANGLE-2D", 1000},
    {"##DRAW ORDER 1D", 1024},
    {"##DRAW ORDER SIM", 1056},
    {"##DRAW ORDER 2D", 1032},
    {"## STRUCTURE", 792, 792},
    {"## PRINT LIST", 800, 800},
    {"## HISTORY", 808, 808, Inner::none, WriteFileHistory},
};

/// Moves addresses inside a section from the place where it stood to its new one.
class Mender {
public:
    Mender(MutableBytes section, std::int64_t old_start, std::int64_t new_start) :
        section_(section), old_(old_start), delta_(new_start - old_start)
    {
    }

    /// Mends the address at an offset; how far it points into the section, or -1 when it does not.
    std::int64_t Mend(std::size_t offset)
    {
        if (offset + 4 > section_.size()) return -1;
        const std::int64_t inside = std::int64_t{FromLittle<std::int32_t>(section_.subspan(offset))} - old_;
        if (inside < static_cast<std::int64_t>(kLabelSize) || inside > static_cast<std::int64_t>(section_.size()))
            return -1;
        Store(section_.subspan(offset), static_cast<std::int32_t>(old_ + inside + delta_));
        return inside;
    }

    /// Number of entries told behind the label, as far as the section has room for them.
    std::size_t Count(std::size_t entry_size) const
    {
        if (section_.size() < kLabelSize + 4) return 0;
        const auto told = FromLittle<std::int32_t>(section_.subspan(kLabelSize));
        return told <= 0 ? 0 : std::min(static_cast<std::size_t>(told), section_.size() / entry_size);
    }

private:
    MutableBytes section_;
    std::int64_t old_, delta_;
};

// Behind the count: an address for each record; in the record the addresses of its two texts.
void MendTexts(Mender mender)
{
    for (std::size_t i = 0; i < mender.Count(4); ++i) {
        const std::int64_t record = mender.Mend(20 + 4 * i);
        if (record < 0) continue;
        mender.Mend(static_cast<std::size_t>(record) + 32);
        mender.Mend(static_cast<std::size_t>(record) + 40);
    }
}

// Cells of 32 bytes; the fifth word of each is the address of its image.
void MendPictures(Mender mender)
{
    for (std::size_t i = 0; i < mender.Count(32); ++i) mender.Mend(20 + 32 * i + 16);
}

void MendBlock(Mender mender)
{
    for (std::size_t at = kBlockTable; at < kBlockTableEnd; at += 8) mender.Mend(kLabelOfBlock + at);
}

const CarriedSection* Find(const DataSet* set, std::string_view label)
{
    if (set == nullptr) return nullptr;
    const auto found = std::ranges::find(set->Carried, label, &CarriedSection::Label);
    return found == set->Carried.end() || found->Bytes.size() < kLabelSize ? nullptr : &*found;
}

/// Appends the bytes behind the label, which is there already, and mends them.
MutableBytes AppendCarried(const CarriedSection& section, FileImage& image)
{
    const std::size_t start = image.size() - kLabelSize;
    const MutableBytes body = image.Append(section.Bytes.size() - kLabelSize);
    std::ranges::copy(ByteSpan(section.Bytes).subspan(kLabelSize), body.begin());
    return image.At(start, section.Bytes.size());
}

std::size_t WriteSection(const LayoutRow& row, const DataSet* set, FileImage& image)
{
    const CarriedSection* carried = Find(set, row.label);
    if (set != nullptr && row.write != nullptr) return row.write(*set, carried, image);
    if (carried == nullptr) return 0;
    const auto start = static_cast<std::int64_t>(image.size() - kLabelSize);
    const Mender mender(AppendCarried(*carried, image), carried->Address, start);
    if (row.inner == Inner::text) MendTexts(mender);
    if (row.inner == Inner::picture) MendPictures(mender);
    return carried->Bytes.size();
}

CarriedSection Carry(ByteSpan file, std::string label, std::int64_t address, std::int64_t length)
{
    const ByteSpan bytes = file.subspan(static_cast<std::size_t>(address), static_cast<std::size_t>(length));
    return {std::move(label), address, {bytes.begin(), bytes.end()}};
}

} // namespace

Entry ReadEntry(ByteSpan file, std::size_t offset)
{
    return {FromLittle<std::int32_t>(file.subspan(offset)), FromLittle<std::int32_t>(file.subspan(offset + 4))};
}

bool Fits(const Entry& entry, std::int64_t end)
{
    return entry.present() && entry.address + entry.length <= end;
}

std::string BlockLabel(std::size_t block)
{
    return fmt::format("## 1D Data {:02}", block);
}

std::vector<CarriedSection> ReadCarried(ByteSpan file, Version version)
{
    std::vector<CarriedSection> carried;
    const auto size = static_cast<std::int64_t>(file.size());
    // Sections don't overlap, so all of them are never larger than the file.
    std::int64_t room = size;
    const auto take = [&](std::string label, const Entry& entry) {
        if (!Fits(entry, size) || entry.length < static_cast<std::int64_t>(kLabelSize) || entry.length > room) return;
        room -= entry.length;
        carried.push_back(Carry(file, std::move(label), entry.address, entry.length));
    };
    for (const LayoutRow& row : kLayout) {
        const std::size_t entry = version == Version::v400 ? row.entry_400 : row.entry;
        if (entry != 0) take(std::string(row.label), ReadEntry(file, entry));
    }
    for (std::size_t block = kSlotCount; block < kBlocks; ++block) {
        Entry entry = ReadEntry(file, BlockEntry(block));
        if (entry.length > 0) entry.length += kLabelOfBlock;
        take(BlockLabel(block), entry);
    }
    return carried;
}

void WriteCarriedBlocks(const DataSet& set, FileImage& image)
{
    for (std::size_t block = kSlotCount; block < kBlocks; ++block) {
        const CarriedSection* carried = Find(&set, BlockLabel(block));
        if (carried == nullptr) continue;
        const std::size_t start = image.Align();
        image.Label(carried->Label);
        MendBlock(Mender(AppendCarried(*carried, image), carried->Address, static_cast<std::int64_t>(start)));
        image.PutEntry(BlockEntry(block), start, carried->Bytes.size() - kLabelOfBlock);
    }
}

void WriteLayout(const DataSet* set, FileImage& image)
{
    for (const LayoutRow& row : kLayout) {
        const std::size_t start = image.Align();
        image.Label(row.label);
        const std::size_t length = WriteSection(row, set, image);
        image.PutEntry(row.entry, start, length);
    }
}

} // namespace nmr::tavo4
