// Phase, base line, peaks and integrals on rows of the largest and of a usual length.

#include "analysis/base_line.h"
#include "analysis/integrals.h"
#include "analysis/peak_pick.h"
#include "analysis/phase.h"
#include "analysis/robust_phase.h"
#include "analysis/smooth_base_line.h"
#include "bench.h"
#include "layout/integral_marks.h"
#include "phase_table/made_spectra.h"

#include <algorithm>
#include <memory>

namespace nmr::bench {
namespace {

std::unique_ptr<GlobalBlock> BlockOf(const MadeSpectrum& made)
{
    auto g = std::make_unique<GlobalBlock>();
    const auto n = static_cast<std::int32_t>(made.re.size());
    if (!AllocateSpecBuffer(*g, n, 0)) return nullptr;
    DataSet& set = g->Slots[0];
    set.par.POINT = n;
    set.par.SMODE = 1;
    set.par.OBFRQ0PPM = 500;
    set.par.OBNUC = made.nucleus;
    for (std::size_t i = 0; i < made.re.size(); ++i) set.spec.XAxis[i] = -2.0 + 16.0 * static_cast<double>(i) / n;
    for (auto* rows : {&set.spec.SourceRe, &set.spec.DataRe}) std::ranges::copy(made.re, (*rows)[0].begin());
    for (auto* rows : {&set.spec.SourceIm, &set.spec.DataIm}) std::ranges::copy(made.im, (*rows)[0].begin());
    FillDisplayLimits(set);
    return g;
}

constexpr int kRuns = 12;

void PhaseRows(std::vector<BenchRow>& rows)
{
    const auto g = BlockOf(MakeSpectrum(1, 7));
    if (!g) return;
    const std::int32_t n = g->Slots[0].par.POINT;
    rows.push_back(
        {"Auto_Phase, 65536 points", BestMs(kRuns, [&] { Auto_Phase(*g, PhaseMode::full, n); }), "ms", 25, {}});
    double worst = 0;
    for (int kind = 0; kind < MadeKinds(); ++kind) {
        const auto each = BlockOf(MakeSpectrum(kind, 7));
        worst = std::max(worst, BestMs(3, [&] {
                             each->PhasedRows.clear(); // searched anew
                             Auto_Phase_Robust(*each, n);
                         }));
    }
    rows.push_back({"robust phase, 65536 points, the slowest of all kinds", worst, "ms", 50, {}});
}

void LongRows(std::vector<BenchRow>& rows)
{
    const auto g = BlockOf(MakeSpectrum(0, 7, kMaxPoints));
    if (!g) return;
    DataSet& set = g->Slots[0];
    const auto pick = [&] {
        set.Peaks.clear();
        Peak_Pick(*g, 0, kMaxPoints - 1);
    };
    rows.push_back({"Peak_Pick, 1048576 points", BestMs(kRuns, pick), "ms", 10, {}});
    rows.push_back({"base points, 1048576 points", BestMs(kRuns, [&] { Auto_Base_Points(*g, 5); }), "ms", 10, {}});
    const auto row = set.spec.SourceRe[0].first(kMaxPoints);
    rows.push_back({"Whittaker, 1048576 points", BestMs(3, [&] { Whittaker_Base_Line(row); }), "ms", 0, {}});
    rows.push_back({"Bernstein, 1048576 points", BestMs(3, [&] { Bernstein_Base_Line(row); }), "ms", 0, {}});
}

/// A frame of a drag: one region is summed anew, and the curves of all are worked out as they are drawn, two places
/// a pixel; their strokes are the plot's.
void DragRow(std::vector<BenchRow>& rows)
{
    constexpr int kRegions = 200, kPlaces = 2 * 1500;
    const auto g = BlockOf(MakeSpectrum(0, 7, kMaxPoints));
    if (!g) return;
    DataSet& set = g->Slots[0];
    for (int i = 0; i < kRegions; ++i) Add_Integral(*g, -1.9 + 0.07 * i, -1.9 + 0.07 * i + 0.06);
    const auto curves = std::make_shared<IntegralCurves>(CurvesOf(*g));
    const auto row = set.spec.DataRe[0].first(kMaxPoints);
    double sum = 0, way = 0.01;
    const double frame = BestMs(kRuns, [&] {
        Move_Integral(*g, 100, way);
        way = -way;
        const IntegralMarks marks = MakeIntegralMarks(set, row, g->settings, {}, curves);
        for (const IntegralMark& mark : marks.marks)
            for (std::int32_t p = mark.start; p >= mark.end; p -= kMaxPoints / kPlaces)
                sum += curves->At(mark.entry, p);
    });
    rows.push_back({"drag among 200 integrals, 1048576 points, one frame", sum == 0 ? 0 : frame, "ms", 4, {}});
}

std::vector<BenchRow> Analysis()
{
    std::vector<BenchRow> rows;
    PhaseRows(rows);
    LongRows(rows);
    DragRow(rows);
    return rows;
}

const bool registered = Register("analysis", Analysis);

} // namespace
} // namespace nmr::bench
