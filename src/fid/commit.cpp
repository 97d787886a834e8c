// The commit: all rows of a FID become the spectrum of their slot.

#include "core/dates.h"
#include "fid/fft.h"
#include "fid/fft_pipeline.h"
#include "fid/shift_memory.h"
#include "fid/transform_set.h"
#include "fid/window.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

constexpr float kFullScaleShare = 0.95F; ///< of the plot height that the highest point reaches

/// FID, arrays and curve for the transform; nothing of the set has changed when it fails.
Status Prepare(GlobalBlock& g, const DataSet& set, std::int16_t slot)
{
    const std::int32_t points = set.par.POINT;
    const auto rows = static_cast<std::size_t>(std::max(set.RowCount, 1));
    if (!IsTransformLength(points))
        return Error{ErrorCode::bad_value, "Commit_Transform", "The length of the FID is no power of two."};
    const auto fits = [&](const RowArray<float>& a) {
        return a.rows() >= rows && a.columns() >= static_cast<std::size_t>(points);
    };
    const SpecBuffer& spec = set.spec;
    if (!fits(spec.DataRe) || !fits(spec.DataIm) || !fits(spec.SourceRe) || !fits(spec.SourceIm))
        return Error{ErrorCode::bad_value, "Commit_Transform", "The set has no room for the spectrum."};
    if (Status loaded = Load_FID_Work(g); !loaded) return loaded;
    Ready_Sine_Table(g.SineTable, points);
    // The curve follows from the parameters: a curve that can't be must not give a spectrum of zeros.
    return Make_Window_Function(g, slot);
}

/// Hz per point. It starts from the FID as read each time: otherwise a second transform of the same
/// FID would divide by the fill twice.
void SetResolution(DataSet& set)
{
    ParamBlock& par = set.par;
    if (par.FIDPointsRaw > 0 && par.FREQU > 0.0F) par.RESOL = static_cast<double>(par.FREQU) / par.FIDPointsRaw;
    if (set.ProcMark1 > 1) {
        par.RESOL /= set.ProcMark1;
    } else if (set.ProcMark2 > 1) {
        par.RESOL /= set.ProcMark2;
    }
}

/// Largest magnitude and smallest real value of the points stored so far.
struct Extremes {
    float magnitude = 0.1F;
    float minimum = 0.0F;

    void Add(float value, float magnitude_of_value)
    {
        // A point that sets a new largest magnitude is not looked at for the minimum.
        if (magnitude_of_value > magnitude) {
            magnitude = magnitude_of_value;
        } else if (value < minimum) {
            minimum = value;
        }
    }
};

void ScaleInto(std::span<const float> work, float scale, std::span<float> data, std::span<float> source)
{
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = scale * work[i];
    std::ranges::copy(data, source.begin());
}

/// The transformed row into DataRe/DataIm and, as origin of later phasing, SourceRe/SourceIm.
void StoreRow(const GlobalBlock& g, DataSet& set, std::size_t row, Extremes& extremes)
{
    const auto n = static_cast<std::size_t>(set.par.POINT);
    const auto re = g.WorkRe[row].first(n);
    const auto im = g.WorkIm[row].first(n);
    const auto data = set.spec.DataRe[row].first(n);
    ScaleInto(re, g.DataScale, data, set.spec.SourceRe[row]);
    ScaleInto(im, g.DataScale, set.spec.DataIm[row].first(n), set.spec.SourceIm[row]);
    const auto scale = static_cast<double>(g.DataScale);
    for (std::size_t i = 0; i < n; ++i) {
        const auto a = static_cast<double>(re[i]);
        const auto b = static_cast<double>(im[i]);
        extremes.Add(data[i], static_cast<float>(scale * std::sqrt(a * a + b * b)));
    }
}

void TransformRows(GlobalBlock& g, DataSet& set, const std::function<void(int)>& progress)
{
    const std::int32_t rows = std::max(set.RowCount, 1);
    Extremes extremes;
    if (progress && rows > 1) progress(0);
    for (std::int32_t row = 0; row < rows; ++row) {
        FFT_Row(g, row, set.par.FIDShift);
        Apply_Phase_Row(g, g.Phase0Deg, g.Phase1Deg, set.par.POINT, row);
        StoreRow(g, set, static_cast<std::size_t>(row), extremes);
        if (progress) progress((row + 1) * 100 / rows);
    }
    set.par.DispLeft = extremes.magnitude;
    set.par.DispRight = extremes.minimum;
    set.par.YOffset = extremes.minimum;
    set.par.YMag = std::max(extremes.magnitude, std::abs(extremes.minimum));
}

void NameInstrument(ParamBlock& par)
{
    if (!par.InstrumentID.empty()) return;
    if (par.Instrument.empty()) par.Instrument = "NULL";
    par.InstrumentID = par.Instrument;
}

/// Frequency and centre of this transform, for the axis of the next.
void RememberCentre(GlobalBlock& g, const DataSet& set)
{
    g.LastObsCenter = set.par.ObsCenter;
    g.LastCentre = set.spec.XAxis[static_cast<std::size_t>(set.par.POINT / 2)];
    const auto group = static_cast<std::size_t>(NucleusGroup(set.par.OBNUC));
    g.GroupObsCenter[group] = g.LastObsCenter;
    g.GroupCentre[group] = g.LastCentre;
}

void SetDisplay(GlobalBlock& g, DataSet& set, std::int16_t slot)
{
    g.ShownHzLeft = static_cast<double>(g.ViewLeft) * set.par.OBFRQ0PPMRead;
    g.ShownHzRight = static_cast<double>(g.ViewRight) * set.par.OBFRQ0PPMRead;
    set.par.YFill = kFullScaleShare;
    if (set.RowCount < 2 || slot != 0) return;
    const auto rows = static_cast<float>(set.RowCount);
    set.par.YFill = kFullScaleShare / rows;
    g.ArrayRowOffset = 1.0F / rows;
}

void MarkAsSpectrum(GlobalBlock& g, DataSet& set)
{
    set.par.SMODE = 1;
    // No file holds the spectrum yet, and no base line of it has been corrected.
    set.par.DataChanged = 1;
    set.par.DataFromFile = 0;
    set.par.BaseLineDone = 0;
    set.FFTUser = g.CurrentUser + " " + FormatDate("dd/mmm/yyyy hh:nn:ss", NowLocal());
    // The rotated data are the spectrum now.
    g.Phase0Deg = 0.0F;
    g.Phase1Deg = 0.0F;
}

} // namespace

Status Commit_Transform(GlobalBlock& g, const std::function<void(int)>& progress)
{
    DataSet& set = TransformSet(g);
    const auto slot = static_cast<std::int16_t>(&set - g.Slots.data());
    if (Status ready = Prepare(g, set, slot); !ready) return ready;
    SetResolution(set);
    TransformRows(g, set, progress);
    NameInstrument(set.par);
    Set_Frequency_Axis(g, slot);
    if (set.par.OBFRQ0PPMRead == 0.0) set.par.OBFRQ0PPMRead = set.par.OBFRQ0PPM;
    RememberCentre(g, set);
    SetDisplay(g, set, slot);
    MarkAsSpectrum(g, set);
    RememberShift(g, set);
    g.WorkRe.Release();
    g.WorkIm.Release();
    g.WindowCurve.Release();
    return {};
}

} // namespace nmr
