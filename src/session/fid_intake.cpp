#include "session/fid_intake.h"

#include "core/numbers.h"
#include "fid/fft.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numeric>
#include <vector>

namespace nmr {
namespace {

std::int32_t NextPowerOfTwo(std::int32_t count)
{
    std::int64_t power = 1;
    while (power < count) power *= 2;
    return static_cast<std::int32_t>(power);
}

void CopyHead(const RowArray<float>& from, RowArray<float>& to, std::size_t count)
{
    for (std::size_t row = 0; row < std::min(from.rows(), to.rows()); ++row)
        std::copy_n(from[row].begin(), std::min({count, from.columns(), to.columns()}), to[row].begin());
}

template <class Values>
void Reorder(Values& values, const std::vector<std::size_t>& order)
{
    const Values old = values;
    for (std::size_t row = 0; row < order.size() && row < values.size(); ++row) values[row] = old[order[row]];
}

void ReorderRows(RowArray<float>& rows, const std::vector<std::size_t>& order)
{
    const RowArray<float> old = rows;
    for (std::size_t row = 0; row < order.size() && row < rows.rows(); ++row)
        std::copy(old[order[row]].begin(), old[order[row]].end(), rows[row].begin());
}

/// One row, half a point earlier.
void DelayByHalfAPoint(std::span<float> row, std::span<const double> sine_table)
{
    const std::size_t n = row.size();
    std::vector<float> re(row.begin(), row.end()), im(n, 0.0F);
    FFT_Transform(re, im, sine_table);
    for (std::size_t k = 0; k < n; ++k) {
        const double index = static_cast<double>(k) - (k < n / 2 ? 0.0 : static_cast<double>(n));
        const std::complex<double> turned =
            std::complex<double>(re[k], im[k]) * std::polar(1.0, -kPi * index / static_cast<double>(n));
        // Conjugate, so that the second transform is the inverse one.
        re[k] = static_cast<float>(turned.real());
        im[k] = static_cast<float>(-turned.imag());
    }
    FFT_Transform(re, im, sine_table);
    for (std::size_t i = 0; i < n; ++i) row[i] = re[i] / static_cast<float>(n);
}

} // namespace

void AlignSequential(GlobalBlock& g)
{
    DataSet& set = g.Slots[0];
    if (set.par.POINT < 2) return;
    Ready_Sine_Table(g.SineTable, set.par.POINT);
    for (std::size_t row = 0; row < set.spec.DataIm.rows(); ++row)
        DelayByHalfAPoint(set.spec.DataIm[row].first(static_cast<std::size_t>(set.par.POINT)), g.SineTable);
}

Status PadToPowerOfTwo(GlobalBlock& g)
{
    DataSet& set = g.Slots[0];
    const std::int32_t measured = set.par.POINT;
    if (measured > kMaxPoints) return Error{ErrorCode::too_large, "NMR1D_m11_Click/1DF1", "Too many points"};
    if (set.par.FIDPoints < 1) set.par.FIDPoints = measured;
    const std::int32_t padded = NextPowerOfTwo(measured);
    set.par.FIDPointsRaw = padded;
    if (padded == measured) return {};
    const RowArray<float> re = std::move(set.spec.DataRe);
    const RowArray<float> im = std::move(set.spec.DataIm);
    if (Status allocated = AllocateSpecBuffer(g, padded, 0); !allocated) return allocated;
    CopyHead(re, set.spec.DataRe, static_cast<std::size_t>(measured));
    CopyHead(im, set.spec.DataIm, static_cast<std::size_t>(measured));
    set.par.POINT = padded;
    return {};
}

void ApplySense(DataSet& set, FidSense sense)
{
    if (sense != FidSense::opposite) return;
    for (float& value : set.spec.DataIm.all()) value = -value;
}

void SortRows(DataSet& set, ArraySort order)
{
    if (order == ArraySort::none || set.RowCount < 2) return;
    const auto count = std::min<std::size_t>(static_cast<std::size_t>(set.RowCount), set.RowValueA.size());
    std::vector<std::size_t> rows(count);
    std::iota(rows.begin(), rows.end(), std::size_t{0});
    std::stable_sort(rows.begin(), rows.end(), [&](std::size_t a, std::size_t b) {
        return order == ArraySort::ascending ? set.RowValueA[a] < set.RowValueA[b]
                                             : set.RowValueA[a] > set.RowValueA[b];
    });
    Reorder(set.RowValueA, rows);
    Reorder(set.RowValueB, rows);
    ReorderRows(set.spec.DataRe, rows);
    ReorderRows(set.spec.DataIm, rows);
}

void FillDataLimits(DataSet& set, std::int16_t row)
{
    const RowArray<float>& data = set.spec.DataRe;
    const auto points = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    if (row < 0 || static_cast<std::size_t>(row) >= data.rows() || points == 0 || data.columns() < points) return;
    const auto shown = data[static_cast<std::size_t>(row)].first(points);
    const auto [low, high] = std::minmax_element(shown.begin(), shown.end());
    set.par.DataMin = *low;
    set.par.DataMax = *high;
}

} // namespace nmr
