// The ppm axis that a transform gives its spectrum.

#include "core/dates.h"
#include "core/text.h"
#include "fid/fft_pipeline.h"
#include "fid/transform_set.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace nmr {

namespace {

/// MHz by which the frequency of an instrument's row may differ, the limit itself included. The
/// allowance of 1 mHz lets frequencies whose decimals differ by exactly 0.05 match.
constexpr double kInstrumentWindow = 0.05 + 1e-9;
constexpr std::size_t kInstrumentRows = 2001;
/// Share of the observe frequency by which the last transform's may differ for its centre to hold.
constexpr double kSameFrequency = 0.01;
/// Hz around 0 ppm in which the TMS line is expected when the reference is roughly known.
constexpr double kTmsBelow = -200.0, kTmsAbove = 100.0;

double Width(const DataSet& set)
{
    return static_cast<double>(set.par.FREQU);
}

/// XAxis[i] = (i - p) * step + d, with the reference as the record holds it.
void FillAxis(DataSet& set)
{
    const auto n = static_cast<std::size_t>(set.par.POINT);
    const double step = Width(set) / set.par.POINT / set.par.OBFRQ0PPM;
    const auto reference = static_cast<double>(set.par.RefX);
    const double point = set.par.SMTMS;
    if (set.spec.XAxis.size() < n) set.spec.XAxis.resize(n + 1);
    for (std::size_t i = 0; i < n; ++i) set.spec.XAxis[i] = (static_cast<double>(i) - point) * step + reference;
    set.par.Resolution2 = step;
}

void SetReference(DataSet& set, double ppm, std::int32_t point)
{
    set.par.SMEXR = static_cast<float>(ppm);
    set.par.RefX = set.par.SMEXR;
    set.par.SMTMS = point;
}

/// 0 ppm frequency from the reference point, then the axis.
void FrequencyAndAxis(DataSet& set)
{
    const double from_centre = static_cast<double>(set.par.SMTMS) / set.par.POINT - 0.5;
    set.par.OBFRQ0PPM =
        (set.par.ObsCenter + from_centre * Width(set) * 1e-6) / (static_cast<double>(set.par.RefX) * 1e-6 + 1.0);
    if (!(set.par.OBFRQ0PPM > 0.0) || !std::isfinite(set.par.OBFRQ0PPM)) {
        set.par.OBFRQ0PPM = 1.0;
        set.Warnings.emplace_back("The observe frequency is missing: the axis is in Hz, not in ppm.");
    }
    FillAxis(set);
}

/// The axis from a known 0 ppm frequency, with the carrier's shift at `point`.
void UseZeroPpmFrequency(DataSet& set, double mhz, std::int32_t point)
{
    set.par.OBFRQ0PPM = mhz;
    set.par.SpanOrg = mhz;
    set.par.RefState = 0;
    SetReference(set, (set.par.ObsCenter - mhz) / mhz * 1e6, point);
    FillAxis(set);
}

InstrumentRow* FindInstrument(GlobalBlock& g, const ParamBlock& par)
{
    const auto same = [](const std::string& a, const std::string& b) { return ToUpper(a) == ToUpper(b); };
    const std::size_t rows = std::min(g.Instruments.size(), kInstrumentRows);
    for (std::size_t i = 0; i < rows; ++i) {
        InstrumentRow& row = g.Instruments[i];
        if (row.ppm0 > 0.0 && std::abs(row.frequency - par.ObsCenter) <= kInstrumentWindow &&
            same(row.instrument, par.InstrumentID) && same(row.probe, par.Probe) && same(row.nucleus, par.OBNUC))
            return &row;
    }
    return nullptr;
}

/// The shown row and its axis, as the search of lines reads them.
void RefreshShownRow(const GlobalBlock& g, DataSet& set)
{
    const auto n = static_cast<std::size_t>(set.par.POINT);
    const std::size_t row = ShownRow(g, set);
    if (set.par.POINT < 1 || row >= set.spec.DataRe.rows() || set.spec.DataRe.columns() < n) return;
    set.spec.IntegralCurve.Resize(1, n + 1);
    set.spec.IntegralSum.assign(n + 1, 0.0F);
    std::ranges::copy(set.spec.DataRe[row].first(n), set.spec.IntegralCurve[0].begin());
    for (std::size_t i = 0; i < n; ++i) set.spec.IntegralSum[i] = static_cast<float>(set.spec.XAxis[i]);
}

struct PointRange {
    std::int32_t from, to;
};

/// Puts 0 ppm on the TMS line when the search finds one.
void ReferenceToTms(const GlobalBlock& g, DataSet& set, PointRange range)
{
    RefreshShownRow(g, set);
    const std::int32_t found = Search_TMS(set, range.from, range.to);
    if (found < 0 || set.spec.AllocatedPoints <= 0) return;
    const double share = static_cast<double>(found) / set.spec.AllocatedPoints;
    const std::int32_t point = std::clamp(RoundHalfEven(share * set.par.POINT), 0, set.par.POINT - 1);
    const double axis_step = set.spec.XAxis[static_cast<std::size_t>(point)] -
                             static_cast<double>(set.spec.IntegralSum[static_cast<std::size_t>(found)]);
    set.par.SMEXR = 0.0F;
    set.par.RefX = static_cast<float>(axis_step);
    set.par.SMTMS = point;
    FrequencyAndAxis(set);
}

/// Points from -200 to +100 Hz around 0 ppm.
PointRange AroundZeroPpm(const DataSet& set)
{
    const double first = set.spec.XAxis[0];
    const double span = set.spec.XAxis[static_cast<std::size_t>(set.par.POINT - 1)] - first;
    const auto point = [&](double hz) {
        if (span == 0.0) return 0;
        return RoundHalfEven((hz / set.par.OBFRQ0PPM - first) * (set.spec.AllocatedPoints - 1) / span);
    };
    return {point(kTmsBelow), point(kTmsAbove)};
}

} // namespace

void Set_Frequency_Axis(GlobalBlock& g, std::int16_t slot)
{
    if (slot < 0 || slot >= kSlotCount) return;
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    ParamBlock& par = set.par;
    if (par.POINT < 1) return;

    const std::int32_t centre = RoundHalfEven(par.POINT / 2.0);
    InstrumentRow* row = par.OBFRQ0PPM > 0.0 ? FindInstrument(g, par) : nullptr;
    if (row != nullptr) {
        row->date = FormatDate("dd/mmm/yyyy hh:nn:ss", NowLocal());
        UseZeroPpmFrequency(set, row->ppm0, centre);
        return;
    }
    if (g.settings.ref_initital == 1 && par.FileRefMHz > 0.0 && par.ObsCenter > 0.0) {
        // The carrier's own bin stands one point below the middle. A reference that the instrument
        // gives holds for that very bin; the middle would put every line one point too low.
        UseZeroPpmFrequency(set, par.FileRefMHz, std::max(centre - 1, 0));
        return;
    }
    const bool fine = g.settings.ref_fine_set == 1;
    if (std::abs(g.LastObsCenter - par.ObsCenter) < kSameFrequency * par.ObsCenter) {
        const double moved = (g.LastObsCenter - par.ObsCenter) / par.ObsCenter * 1e6;
        SetReference(set, g.LastCentre - moved, centre);
        FrequencyAndAxis(set);
        if (fine) ReferenceToTms(g, set, AroundZeroPpm(set));
        return;
    }
    SetReference(set, 0.0, 0);
    FrequencyAndAxis(set);
    if (fine) ReferenceToTms(g, set, {0, par.POINT - 1});
}

} // namespace nmr
