#include "core/global_block.h"

#include "core/spec_buffer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <utility>

namespace nmr {

namespace {

/// A store kept from a set many times larger is given back, or one large file would hold its memory
/// for the rest of the run.
/// Whether arrays that have the right size already are zeroed, too.
enum class Contents { zero, any };

template <class T>
void SizeRows(RowArray<T>& array, std::size_t rows, std::size_t columns, Contents contents = Contents::zero)
{
    if (contents == Contents::any && array.rows() == rows && array.columns() == columns) return;
    if (array.rows() * array.columns() / 4 > rows * columns) array.Release();
    array.Resize(rows, columns);
}

template <class T>
void SizeLine(std::vector<T>& line, std::size_t count, Contents contents = Contents::zero)
{
    if (contents == Contents::any && line.size() == count) return;
    if (line.capacity() / 4 > count) std::vector<T>().swap(line);
    line.assign(count, T{});
}

void SizeSpecBuffer(SpecBuffer& spec, std::size_t rows, std::size_t columns, bool with_aux, Contents contents)
{
    SizeLine(spec.XAxis, columns, contents);
    for (auto* array : {&spec.DataRe, &spec.DataIm, &spec.SourceRe, &spec.SourceIm})
        SizeRows(*array, rows, columns, contents);
    SizeRows(spec.IntegralCurve, 1, columns, contents);
    SizeLine(spec.IntegralSum, columns, contents);
    if (with_aux)
        SizeRows(spec.AuxCurve, 1, columns);
    else
        spec.AuxCurve.Release();
}

void SizeWorkArrays(GlobalBlock& g, std::size_t rows, std::int32_t points, Contents contents)
{
    const std::size_t columns = static_cast<std::size_t>(points) + 1;
    SizeLine(g.RowPhase0, rows);
    SizeLine(g.RowPhase1, rows);
    SizeRows(g.WorkRe, rows, columns, contents);
    SizeRows(g.WorkIm, rows, columns, contents);
    if (contents == Contents::zero || g.WindowCurve.last() != points) {
        if (g.WindowCurve.last() / 4 > points) g.WindowCurve.Release();
        g.WindowCurve.Resize(points);
    }
    SizeLine(g.WorkLine, columns, contents);
    SizeLine(g.CrossLine, columns, contents);
    for (auto& line : g.SpareLines) SizeLine(line, columns, contents);
    SizeLine(g.PointFlag, columns, contents);
}

Error AllocateError(ErrorCode code, std::string text)
{
    return {code, "AllocateSpecBuffer/1DBuf", std::move(text)};
}

Status Allocate(GlobalBlock& g, std::int32_t points, std::int16_t slot, Contents contents)
{
    if (slot < 0 || slot >= kSlotCount)
        return AllocateError(ErrorCode::bad_value, "There is no slot " + std::to_string(slot) + ".");
    if (points < 0) return AllocateError(ErrorCode::bad_value, "The number of points is negative.");
    if (points > kMaxPoints)
        return AllocateError(ErrorCode::too_large, std::to_string(points) + " points are more than a row can hold.");
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    set.RowCount = std::max(set.RowCount, 1);
    if (set.RowCount > kMaxRows)
        return AllocateError(ErrorCode::too_large,
                             std::to_string(set.RowCount) + " rows are more than a set can hold.");
    const auto rows = static_cast<std::size_t>(set.RowCount);
    try {
        SizeSpecBuffer(set.spec, rows, static_cast<std::size_t>(points) + 1, slot != 0, contents);
        if (slot == 0) SizeWorkArrays(g, rows, points, contents);
    } catch (const std::bad_alloc&) {
        set.spec = SpecBuffer{};
        return AllocateError(ErrorCode::too_large, "There is not enough memory for the points.");
    }
    set.spec.AllocatedPoints = points;
    return {};
}

} // namespace

Status AllocateSpecBuffer(GlobalBlock& g, std::int32_t points, std::int16_t slot)
{
    return Allocate(g, points, slot, Contents::zero);
}

Status AllocateToOverwrite(GlobalBlock& g, std::int32_t points, std::int16_t slot)
{
    if (Status allocated = Allocate(g, points, slot, Contents::any); !allocated) return allocated;
    SpecBuffer& spec = g.Slots[static_cast<std::size_t>(slot)].spec;
    spec.XAxis.back() = 0.0;
    for (auto* array : {&spec.DataRe, &spec.DataIm, &spec.SourceRe, &spec.SourceIm})
        for (std::size_t row = 0; row < array->rows(); ++row) (*array)[row].back() = 0.0F;
    return {};
}

void ClearDataSet(DataSet& set, const Settings& settings)
{
    SpecBuffer spec = std::move(set.spec);
    const std::int16_t number = set.par.SlotNumber;
    set = DataSet{};
    set.spec = std::move(spec);
    set.par.SlotNumber = number;
    for (FontRec* font : {&set.FontMain, &set.FontPeak, &set.FontInt})
        if (!settings.default_font_eng.empty()) font->Name = settings.default_font_eng;
    set.XLabelPpm = settings.xlabel;
    set.XLabelHz = settings.xlabel_hz;
    set.XLabelKHz = settings.xlabel_khz;
}

void ClearDataSet(GlobalBlock& g, std::int16_t slot)
{
    if (slot < 0 || slot >= kSlotCount) return;
    ClearDataSet(g.Slots[static_cast<std::size_t>(slot)], g.settings);
}

void NumberSlots(GlobalBlock& g)
{
    // The last slot stands in no list of spectra, so it has no number of its own.
    for (int i = 0; i < kSlotCount - 1; ++i)
        g.Slots[static_cast<std::size_t>(i)].par.SlotNumber = static_cast<std::int16_t>(i);
    g.Slots.back().par.SlotNumber = 0;
    g.ScratchSet.par.SlotNumber = kScratchSlotNumber;
}

void CopyDataToSource(DataSet& set)
{
    set.spec.SourceRe = set.spec.DataRe;
    set.spec.SourceIm = set.spec.DataIm;
}

void FillDisplayLimits(DataSet& set)
{
    if (set.par.DispLeft != 0.0F) return;
    const std::size_t points =
        std::min(static_cast<std::size_t>(std::max(set.par.POINT, 0)), set.spec.DataRe.columns());
    const std::size_t rows = std::min(static_cast<std::size_t>(std::max(set.RowCount, 0)), set.spec.DataRe.rows());
    if (points == 0 || rows == 0) return;
    double largest = 0.0;
    float smallest = std::numeric_limits<float>::infinity();
    for (std::size_t row = 0; row < rows; ++row) {
        const auto re = set.spec.DataRe[row], im = set.spec.DataIm[row];
        for (std::size_t i = 0; i < points; ++i) {
            const double x = re[i], y = im[i];
            largest = std::max(largest, x * x + y * y);
            smallest = std::min(smallest, re[i]);
        }
    }
    set.par.DispLeft = static_cast<float>(std::sqrt(largest));
    set.par.DispRight = std::isfinite(smallest) ? smallest : 0.0F;
}

} // namespace nmr
