#include "measure.h"

#include "analysis/phase.h"
#include "analysis/robust_phase.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <vector>

namespace nmr::bench {
namespace {

std::vector<double> MagnitudesAboveShare(std::span<const float> re, std::span<const float> im)
{
    std::vector<double> magnitudes;
    for (std::size_t i = 0; i < re.size(); ++i)
        magnitudes.push_back(std::hypot(static_cast<double>(re[i]), static_cast<double>(im[i])));
    const double least = magnitudes.empty() ? 0.0 : 0.05 * *std::ranges::max_element(magnitudes);
    for (double& m : magnitudes)
        if (m < least) m = 0;
    return magnitudes;
}

template <class Body>
double Milliseconds(Body body)
{
    // Processor time: other work on the machine does not count.
    const std::clock_t start = std::clock();
    body();
    return 1e3 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

struct Row {
    std::span<float> re, im;
};

Row SourceRow(GlobalBlock& g, std::int32_t n)
{
    const auto row = static_cast<std::size_t>(g.CurrentRow), count = static_cast<std::size_t>(n);
    auto& spec = g.Slots[0].spec;
    return {spec.SourceRe[row].first(count), spec.SourceIm[row].first(count)};
}

/// As "Fix" does: later phases start from here.
void FixRow(GlobalBlock& g, std::int32_t n)
{
    const auto row = static_cast<std::size_t>(g.CurrentRow), count = static_cast<std::size_t>(n);
    const auto [re, im] = SourceRow(g, n);
    std::ranges::copy(g.Slots[0].spec.DataRe[row].first(count), re.begin());
    std::ranges::copy(g.Slots[0].spec.DataIm[row].first(count), im.begin());
}

/// Largest turn of a point that carries signal.
double LargestTurn(const Row& row, const Turn& turn)
{
    const auto n = static_cast<double>(row.re.size());
    const std::vector<double> magnitudes = MagnitudesAboveShare(row.re, row.im);
    double largest = 0;
    for (std::size_t i = 0; i < magnitudes.size(); ++i)
        if (magnitudes[i] > 0)
            largest = std::max(largest, std::abs(std::remainder(turn.At(static_cast<double>(i), n), 360.0)));
    return largest;
}

double PressOnFixed(GlobalBlock& g, std::int32_t n, double turned_deg)
{
    FixRow(g, n);
    if (turned_deg != 0.0) {
        Phase_Apply(g, static_cast<float>(turned_deg), 0.0F, n);
        FixRow(g, n);
    }
    g.PhasedRows.clear(); // the search itself is asked
    Auto_Phase_Robust(g, n);
    Turn whole = PresentTurn(g);
    whole.p0 += turned_deg;
    return LargestTurn(SourceRow(g, n), whole);
}

} // namespace

Turn PresentTurn(const GlobalBlock& g)
{
    return {static_cast<double>(g.Phase0Deg), static_cast<double>(g.Phase1Deg), static_cast<double>(g.PivotPoint)};
}

double LeftDegrees(std::span<const float> re, std::span<const float> im, const Turn& truth, const Turn& found)
{
    const auto n = static_cast<double>(re.size());
    const std::vector<double> magnitudes = MagnitudesAboveShare(re, im);
    double best = 1e9;
    for (const double half : {0.0, 180.0}) {
        double sum = 0, weight = 0;
        for (std::size_t i = 0; i < magnitudes.size(); ++i) {
            if (magnitudes[i] == 0.0) continue;
            const auto at = static_cast<double>(i);
            const double d = std::remainder(truth.At(at, n) - found.At(at, n) + half, 360.0);
            sum += magnitudes[i] * d * d;
            weight += magnitudes[i];
        }
        best = std::min(best, std::sqrt(sum / std::max(weight, 1e-300)));
    }
    return best;
}

Score Measure(GlobalBlock& g, std::int32_t n, const Turn& truth, double known_p1)
{
    const auto [re, im] = SourceRow(g, n);
    Score score;
    score.plain_ms = Milliseconds([&] { Auto_Phase(g, PhaseMode::full, n); });
    // What the transform form adds where one line tells no first order.
    if (g.Phase1Deg == 0.0F) g.Phase1Deg = static_cast<float>(known_p1);
    score.plain = LeftDegrees(re, im, truth, PresentTurn(g));
    score.robust_ms = Milliseconds([&] { score.quality = Auto_Phase_Robust(g, n, known_p1); });
    score.robust = LeftDegrees(re, im, truth, PresentTurn(g));
    for (int press = 0; press < 2; ++press) score.again = std::max(score.again, PressOnFixed(g, n, 0.0));
    score.back = PressOnFixed(g, n, 20.0);
    return score;
}

} // namespace nmr::bench
