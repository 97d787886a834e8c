#include "session/inversion.h"

#include "analysis/integrals.h"

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr char kWhere[] = "m291_Click/1DF1";
constexpr double kMostOff = 2.0; // points that the carrier may lie beside the middle of the axis

using Points = std::size_t;

/// The position that stays where it is.
double MirrorPpm(const DataSet& set, Points points)
{
    const auto& axis = set.spec.XAxis;
    const double middle = (axis[0] + axis[points - 1]) / 2;
    const double step = std::abs(axis[points - 1] - axis[0]) / static_cast<double>(std::max<Points>(points - 1, 1));
    const ParamBlock& par = set.par;
    if (!(par.OBFRQ0PPM > 0)) return middle;
    const double carrier = (par.ObsCenter - par.OBFRQ0PPM) / par.OBFRQ0PPM * 1e6;
    return std::abs(carrier - middle) <= kMostOff * step ? carrier : middle;
}

void Reverse(RowArray<float>& rows, Points points)
{
    if (rows.columns() < points) return;
    for (Points row = 0; row < rows.rows(); ++row) std::ranges::reverse(rows[row].first(points));
}

void Negate(RowArray<float>& rows, Points points)
{
    if (rows.columns() < points) return;
    for (Points row = 0; row < rows.rows(); ++row)
        for (float& value : rows[row].first(points)) value = -value;
}

void MirrorAxis(std::vector<double>& axis, Points points, double about)
{
    std::reverse(axis.begin(), axis.begin() + static_cast<std::ptrdiff_t>(points));
    for (Points i = 0; i < points; ++i) axis[i] = 2 * about - axis[i];
}

/// From one offset from the first point to another: `sum` is twice the mirror less both first points.
void MirrorPeaks(DataSet& set, double sum_ppm)
{
    const double sum_hz = sum_ppm * set.par.OBFRQ0PPM;
    for (PeakEntry& peak : set.Peaks) {
        peak.Position = sum_hz - peak.Position;
        peak.Point = std::clamp(set.par.POINT - 1 - peak.Point, 0, set.par.POINT - 1);
    }
    std::ranges::sort(set.Peaks, {}, &PeakEntry::Position);
}

void MirrorIntegrals(DataSet& set, double sum_ppm)
{
    const auto mirrored = [&](float ppm) { return static_cast<float>(sum_ppm - static_cast<double>(ppm)); };
    for (IntegralEntry& integral : set.Integrals) {
        // The start stays the end with the larger shift.
        const IntegralEntry old = integral;
        integral.Start = mirrored(old.End);
        integral.End = mirrored(old.Start);
        integral.StartPoint = set.par.POINT - 1 - old.EndPoint;
        integral.EndPoint = set.par.POINT - 1 - old.StartPoint;
        // The same base line, told from its other end.
        const double points = static_cast<double>(old.StartPoint) - old.EndPoint;
        integral.B0 = static_cast<float>(static_cast<double>(old.B0) +
                                         static_cast<double>(old.B1) * points / std::max(set.par.POINT, 1));
        integral.B1 = -old.B1;
    }
    // In order of the point index again, with the reference at its region.
    std::ranges::reverse(set.Integrals);
    const auto count = static_cast<std::int32_t>(set.Integrals.size());
    if (set.IntegralRef >= 0 && set.IntegralRef < count)
        set.IntegralRef = static_cast<std::int16_t>(count - 1 - set.IntegralRef);
}

void MirrorRegions(DataSet& set, double about)
{
    const auto mirrored = [&](float ppm) { return static_cast<float>(2 * about - static_cast<double>(ppm)); };
    for (RegionColor& region : set.Regions)
        if (region.Start != region.End) region = {region.Color, mirrored(region.End), mirrored(region.Start)};
}

} // namespace

Status Invert_Spectrum(GlobalBlock& g)
{
    DataSet& set = g.Slots[0];
    const auto points = static_cast<Points>(std::max(set.par.POINT, 0));
    if (IsEmpty(set) || set.par.SMODE != 1 || set.spec.XAxis.size() < points)
        return Error{ErrorCode::bad_value, kWhere, "There is no spectrum"};
    UndoStep step = g.Undo.Begin(g, kInversionKind);
    const double about = MirrorPpm(set, points), old_first = set.spec.XAxis[0];
    for (RowArray<float>* rows : {&set.spec.DataRe, &set.spec.DataIm, &set.spec.SourceRe, &set.spec.SourceIm})
        Reverse(*rows, points);
    for (RowArray<float>* rows : {&set.spec.DataIm, &set.spec.SourceIm}) Negate(*rows, points);
    MirrorAxis(set.spec.XAxis, points, about);
    // The axis has only moved, by what the mirror lies beside its middle.
    const auto moved = static_cast<float>(set.spec.XAxis[0] - old_first);
    set.par.RefX += moved;
    set.par.SMEXR += moved;
    const double sum = 2 * about - old_first - set.spec.XAxis[0];
    MirrorPeaks(set, sum);
    MirrorIntegrals(set, sum);
    MirrorRegions(set, about);
    Calc_All_Integrals(g);
    set.par.DataChanged = 1;
    set.par.DataFromFile = 0;
    static_cast<void>(g.Undo.Commit(g, std::move(step))); // without a step the inversion stands all the same
    return {};
}

} // namespace nmr
