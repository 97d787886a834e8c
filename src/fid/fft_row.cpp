// One row of a FID to one row of a spectrum: filter, shift, window, conjugation, transform, rotation
// by one point, exchange of the halves. Preview and commit run the same code, so they give the same bits.

#include "core/rotation.h"
#include "fid/fft.h"
#include "fid/fft_pipeline.h"
#include "fid/filter.h"
#include "fid/transform_set.h"
#include "fid/window.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace nmr {

namespace {

/// Shifts above it come from data with a large group delay, whose start the filter smooths.
constexpr std::int32_t kLargestUnfilteredShift = 10;

struct TargetLines {
    std::span<float> re, im;
};

/// The FID of the lines after the filter, in FilterRe/FilterIm.
FidLines Filtered(GlobalBlock& g, const FidLines& fid, DataSet& set)
{
    g.FilterRe.assign(fid.re.size(), 0.0F);
    g.FilterIm.assign(fid.re.size(), 0.0F);
    if (g.FilterKind == kFilterMovingAverage) set.par.RowBase = g.DigitalFilterPoints;
    Filter_Fid(g.FilterKind, fid, {g.FilterRe, g.FilterIm}, g.DigitalFilterPoints);
    return {g.FilterRe, g.FilterIm};
}

/// target[i] = fid[i + shift] * window[i], zero where the FID has no such point; the imaginary part
/// changes its sign, which turns the sense of frequency so that ppm rise with the index.
void ShiftAndWindow(const FidLines& fid, const OffsetLine<float>& window, const TargetLines& out, std::int32_t shift)
{
    const auto n = static_cast<std::ptrdiff_t>(out.re.size());
    const std::ptrdiff_t by = std::clamp<std::ptrdiff_t>(shift, -n, n);
    const std::ptrdiff_t first = std::max<std::ptrdiff_t>(0, -by);
    const std::ptrdiff_t last = std::min(n, n - by);
    const std::span<const float> w = window.from_zero();
    std::fill(out.re.begin(), out.re.begin() + first, 0.0F);
    std::fill(out.im.begin(), out.im.begin() + first, 0.0F);
    const float* x = fid.re.data() + by;
    const float* y = fid.im.data() + by;
    for (std::ptrdiff_t i = first; i < last; ++i) {
        const float factor = w[static_cast<std::size_t>(i)];
        out.re[static_cast<std::size_t>(i)] = x[i] * factor;
        out.im[static_cast<std::size_t>(i)] = -y[i] * factor;
    }
    std::fill(out.re.begin() + last, out.re.end(), 0.0F);
    std::fill(out.im.begin() + last, out.im.end(), 0.0F);
}

void Transform(GlobalBlock& g, const FidLines& fid, const TargetLines& out, std::int32_t shift)
{
    ShiftAndWindow(fid, g.WindowCurve, out, shift);
    FFT_Transform(out.re, out.im, g.SineTable);
    FFT_Rotate_And_Swap(out.re, out.im);
}

/// Largest re^2 + im^2. Eight running maxima side by side let the compiler use vectors.
double LargestSquare(std::span<const float> re, std::span<const float> im)
{
    constexpr std::size_t kLanes = 8;
    std::array<double, kLanes> top{};
    const auto square = [&](std::size_t i) {
        const auto a = static_cast<double>(re[i]);
        const auto b = static_cast<double>(im[i]);
        return a * a + b * b;
    };
    std::size_t i = 0;
    for (; i + kLanes <= re.size(); i += kLanes)
        for (std::size_t k = 0; k < kLanes; ++k) {
            const double s = square(i + k);
            top[k] = s > top[k] ? s : top[k];
        }
    for (; i < re.size(); ++i) top[0] = std::max(top[0], square(i));
    return *std::ranges::max_element(top);
}

bool HasRow(const RowArray<float>& rows, std::size_t row, std::size_t points)
{
    return row < rows.rows() && rows.columns() >= points;
}

/// True when the row can be transformed: lengths fit, the sine table stands, the curve covers the row.
bool Ready(GlobalBlock& g, const DataSet& set, std::size_t row)
{
    if (!IsTransformLength(set.par.POINT)) return false;
    const auto n = static_cast<std::size_t>(set.par.POINT);
    if (!HasRow(g.WorkRe, row, n) || !HasRow(g.WorkIm, row, n)) return false;
    Ready_Sine_Table(g.SineTable, set.par.POINT);
    if (g.WindowCurve.last() >= set.par.POINT - 1) return true;
    const auto slot = static_cast<std::int16_t>(&set - g.Slots.data());
    return static_cast<bool>(Make_Window_Function(g, slot)) || g.WindowCurve.last() >= set.par.POINT - 1;
}

} // namespace

void FFT_Preview(GlobalBlock& g, std::int32_t shift)
{
    g.FilterKind = shift > kLargestUnfilteredShift ? kFilterFirstOrder : kFilterNone;
    DataSet& set = TransformSet(g);
    const std::size_t row = ShownRow(g, set);
    const auto n = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    if (!Ready(g, set, row) || !HasRow(set.spec.SourceRe, row, n) || !HasRow(set.spec.SourceIm, row, n)) return;

    FidLines fid{g.WorkRe[row].first(n), g.WorkIm[row].first(n)};
    // The plain copy of filter kind 0 is left out: the rows can be read where they stand.
    if (g.FilterKind != kFilterNone) fid = Filtered(g, fid, set);
    const TargetLines out{set.spec.SourceRe[row].first(n), set.spec.SourceIm[row].first(n)};
    Transform(g, fid, out, shift);
    set.par.DispLeft = static_cast<float>(std::sqrt(LargestSquare(out.re, out.im)));
    set.par.DispRight = 0.0F;
}

void FFT_Row(GlobalBlock& g, std::int32_t row, std::int32_t shift)
{
    DataSet& set = TransformSet(g);
    if (row < 0 || !Ready(g, set, static_cast<std::size_t>(row))) return;
    const auto n = static_cast<std::size_t>(set.par.POINT);
    const TargetLines out{g.WorkRe[static_cast<std::size_t>(row)].first(n),
                          g.WorkIm[static_cast<std::size_t>(row)].first(n)};
    // In place: the lines must be read from a copy, which every filter kind makes.
    const FidLines fid = Filtered(g, {out.re, out.im}, set);
    Transform(g, fid, out, shift);
}

void Apply_Phase_Row(GlobalBlock& g, float ph0, float ph1, std::int32_t n, std::int32_t row)
{
    const auto count = static_cast<std::size_t>(std::max(n, 0));
    if (row < 0 || !HasRow(g.WorkRe, static_cast<std::size_t>(row), count)) return;
    const auto re = g.WorkRe[static_cast<std::size_t>(row)];
    const auto im = g.WorkIm[static_cast<std::size_t>(row)];
    RotateRow(re, im, re, im, n, {ph0, ph1, g.PivotPoint});
}

} // namespace nmr
