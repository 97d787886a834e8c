#include "core/state_image.h"

#include "core/record_members.h"
#include "core/undo_parts.h"

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <span>

namespace nmr {
namespace {

constexpr std::size_t kGlances = 2048;
constexpr std::size_t kAxisGlances = 64;

/// An axis that a transform made is told by the numbers that it was made of, any other by its values.
struct AxisRecord {
    std::uint32_t computed = 0; ///< so many values are (i - point) * step + reference
    double point = 0, step = 0, reference = 0;
    std::vector<double> values; ///< those behind them

    double At(std::size_t i) const { return (static_cast<double>(i) - point) * step + reference; }
};
template <class Visit, Is<AxisRecord> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.computed, r.point, r.step, r.reference, r.values);
}

AxisRecord DescribeAxis(const DataSet& set)
{
    const ParamBlock& par = set.par;
    const std::vector<double>& axis = set.spec.XAxis;
    AxisRecord record;
    record.point = par.SMTMS;
    record.step = static_cast<double>(par.FREQU) / par.POINT / par.OBFRQ0PPM;
    record.reference = static_cast<double>(par.RefX);
    const std::size_t n = std::min(axis.size(), static_cast<std::size_t>(std::max(par.POINT, 0)));
    std::size_t same = 0;
    const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
    while (same < n && bits(axis[same]) == bits(record.At(same))) ++same;
    record.computed = same == n ? static_cast<std::uint32_t>(n) : 0;
    record.values.assign(axis.begin() + record.computed, axis.end());
    return record;
}

bool MakeAxis(const AxisRecord& record, std::vector<double>& axis)
{
    if (record.computed > static_cast<std::uint32_t>(kMaxPoints) + 1) return false;
    axis.resize(record.computed);
    for (std::size_t i = 0; i < axis.size(); ++i) axis[i] = record.At(i);
    axis.insert(axis.end(), record.values.begin(), record.values.end());
    return true;
}
template <class Visit, Is<GlobalBlock> T>
void Display(Visit& visit, T& g)
{
    visit(g.CurrentParameterSlot, g.CurrentMultiSlot, g.CurrentRow, g.DataKind, g.FormatIndex, g.Phase0Deg, g.Phase1Deg,
          g.PivotPoint, g.P2Point, g.MaxMagnitude, g.RowPhase0, g.RowPhase1, g.DataScale, g.LastObsCenter, g.LastCentre,
          g.GroupObsCenter, g.GroupCentre, g.DEPTMode, g.DiffMode, g.DiffCount, g.ReadAsArray, g.ArrayMode,
          g.ArrayReverse, g.AbsoluteMode, g.ViewLeft, g.ViewRight, g.ShownHzLeft, g.ShownHzRight, g.ArrayRowOffset,
          g.BasePoints);
}

template <class Visit>
void SettingValues(Visit& visit, UndoSettings& values)
{
    visit(values.switches, values.numbers);
}

struct SlotSection {
    Section section;
    void (*write)(const DataSet&, ImageWriter&);
    void (*read)(DataSet&, ImageReader&);
};

#define NMR1D_SECTION(id, list)                                                                                        \
    {                                                                                                                  \
        Section::id, [](const DataSet& set, ImageWriter& out) { list(out, set); },                                     \
            [](DataSet& set, ImageReader& in) { list(in, set); }                                                       \
    }
constexpr SlotSection kSlotSections[] = {
    NMR1D_SECTION(parameters, Parameters), NMR1D_SECTION(processing, Processing), NMR1D_SECTION(rows, Rows),
    NMR1D_SECTION(integrals, Integrals),   NMR1D_SECTION(peaks, Peaks),           NMR1D_SECTION(look, Look),
    NMR1D_SECTION(simulation, Simulation), NMR1D_SECTION(carried, Carried),
};
#undef NMR1D_SECTION

std::size_t RowsOf(const DataSet& set)
{
    return std::min(static_cast<std::size_t>(std::max(set.RowCount, 1)), set.spec.DataRe.rows());
}

std::size_t PointsOf(const DataSet& set)
{
    const auto points = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    return std::min({points, set.spec.DataRe.columns(), set.spec.DataIm.columns()});
}

template <class T>
std::uint64_t Glance(std::span<const T> values, std::size_t count, std::uint64_t seed)
{
    const std::size_t step = std::max<std::size_t>(values.size() / count, 1);
    std::vector<T> seen;
    seen.reserve(count + 2);
    for (std::size_t i = 0; i < values.size(); i += step) seen.push_back(values[i]);
    if (!values.empty()) seen.push_back(values.back());
    return Checksum64(std::as_bytes(std::span(seen)), seed + values.size());
}

std::vector<std::byte> Bytes(const auto& write)
{
    std::vector<std::byte> bytes;
    ImageWriter out(bytes);
    write(out);
    return bytes;
}

/// False when the section is missing or is not read to its end.
bool Read(const StateImage& image, SectionKey key, const auto& read)
{
    const auto found = image.find(key);
    if (found == image.end()) return false;
    ImageReader in(found->second);
    read(in);
    return in.complete();
}

} // namespace

PointsMark MarkPoints(const DataSet& set)
{
    PointsMark mark{static_cast<std::int32_t>(RowsOf(set)), static_cast<std::int32_t>(PointsOf(set)), 0};
    for (const auto* part : {&set.spec.DataRe, &set.spec.DataIm})
        for (std::size_t row = 0; row < RowsOf(set); ++row)
            mark.checksum = Checksum64(std::as_bytes((*part)[row].first(PointsOf(set))), mark.checksum);
    return mark;
}

std::uint64_t GlancePoints(const DataSet& set)
{
    std::uint64_t sum = PointsOf(set) * 1000003U + RowsOf(set);
    sum = Glance(set.spec.DataRe.all(), kGlances, sum);
    return Glance(set.spec.DataIm.all(), kGlances, sum);
}

std::uint64_t GlanceAxis(const DataSet& set)
{
    return Glance(std::span<const double>(set.spec.XAxis), kAxisGlances, 0);
}

bool IsKept(const DataSet& set)
{
    const SpecBuffer& spec = set.spec;
    const auto rows = static_cast<std::size_t>(std::max(set.RowCount, 0));
    const auto points = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    const auto fits = [&](const RowArray<float>& a) { return a.rows() >= rows && a.columns() >= points; };
    return !IsEmpty(set) && set.par.SMODE == 1 && rows > 0 && fits(spec.DataRe) && fits(spec.DataIm);
}

StateImage TakeImage(const GlobalBlock& g)
{
    StateImage image;
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot) {
        const DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
        if (!IsKept(set)) continue;
        for (const SlotSection& row : kSlotSections)
            image[{slot, row.section}] = Bytes([&](ImageWriter& out) { row.write(set, out); });
    }
    image[{-1, Section::display}] = Bytes([&](ImageWriter& out) { Display(out, g); });
    UndoSettings values = TakeUndoSettings(g.settings);
    image[{-1, Section::settings}] = Bytes([&](ImageWriter& out) { SettingValues(out, values); });
    return image;
}

std::vector<std::byte> AxisImage(const DataSet& set)
{
    return Bytes([&](ImageWriter& out) { out(DescribeAxis(set)); });
}

StateImage TakeWholeImage(const GlobalBlock& g)
{
    StateImage image = TakeImage(g);
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot) {
        const DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
        if (!IsKept(set)) continue;
        image[{slot, Section::axis}] = AxisImage(set);
        image[{slot, Section::points}] = Bytes([&](ImageWriter& out) { out(MarkPoints(set)); });
    }
    return image;
}

std::uint64_t ChecksumOf(const StateImage& image)
{
    std::uint64_t sum = 0;
    for (const auto& [key, bytes] : image)
        sum = Checksum64(bytes,
                         sum + static_cast<std::uint64_t>(key.slot + 1) * 64 + static_cast<std::uint64_t>(key.section));
    return sum;
}

bool PutSlot(const StateImage& image, std::int16_t slot, DataSet& set)
{
    for (const SlotSection& row : kSlotSections)
        if (!Read(image, {slot, row.section}, [&](ImageReader& in) { row.read(set, in); })) return false;
    AxisRecord axis;
    const bool told = Read(image, {slot, Section::axis}, [&](ImageReader& in) { in(axis); });
    return told && MakeAxis(axis, set.spec.XAxis);
}

bool PutSettings(const StateImage& image, GlobalBlock& g)
{
    UndoSettings values;
    const bool told = Read(image, {-1, Section::settings}, [&](ImageReader& in) { SettingValues(in, values); });
    return told && PutUndoSettings(g.settings, values);
}

bool PutGlobals(const StateImage& image, GlobalBlock& g)
{
    const bool told = Read(image, {-1, Section::display}, [&](ImageReader& in) { Display(in, g); });
    return told && PutSettings(image, g);
}

std::uint64_t ImageLayout()
{
    LayoutIdentity layout;
    const DataSet set;
    layout(set);
    const auto g = std::make_unique<const GlobalBlock>(); // too large for the stack
    Display(layout, *g);
    const UndoSettings values = TakeUndoSettings(g->settings);
    layout(PointsMark{}, AxisRecord{});
    const std::array counts{values.switches.size(), values.numbers.size()};
    return Checksum64(std::as_bytes(std::span(counts)), layout.value());
}

} // namespace nmr
