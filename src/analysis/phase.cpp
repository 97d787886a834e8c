// The circle fit rests on this: a Lorentzian line traces a circle through the origin of the Argand
// plane, to both sides of the real axis alike once it is in phase. So around a peak the real part P is
// fitted against the imaginary part Q by a straight line, points weighted by Q^2; the slope is the
// tangent of the phase that is missing.

#include "analysis/phase.h"

#include "core/rotation.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace nmr {

namespace {

constexpr double kDegrees = 57.2957795130823;
constexpr std::int32_t kNearestSecond = 100; ///< points that a second peak must stand away

/// The row that is phased, with the lines that the fit works in.
struct Row {
    std::span<const float> source_re, source_im;
    std::span<float> re, im;

    std::int32_t size() const { return static_cast<std::int32_t>(re.size()); }
};

DataSet& PhasedSet(GlobalBlock& g)
{
    const int slot = g.CurrentMultiSlot;
    return g.Slots[static_cast<std::size_t>(slot > 0 && slot < kSlotCount ? slot : 0)];
}

/// The first n points of the shown row; fewer, or none, when the set has no more.
Row ShownRow(GlobalBlock& g, std::int32_t n)
{
    SpecBuffer& spec = PhasedSet(g).spec;
    const auto row = static_cast<std::size_t>(std::max<std::int32_t>(g.CurrentRow, 0));
    auto count = static_cast<std::size_t>(std::max(n, 0));
    for (const RowArray<float>* a : {&spec.SourceRe, &spec.SourceIm, &spec.DataRe, &spec.DataIm})
        count = std::min(count, row < a->rows() ? a->columns() : 0);
    if (count == 0) return {};
    return {spec.SourceRe[row].first(count), spec.SourceIm[row].first(count), spec.DataRe[row].first(count),
            spec.DataIm[row].first(count)};
}

double At(std::span<const float> line, std::int32_t i)
{
    return static_cast<double>(line[static_cast<std::size_t>(i)]);
}

double Finite(double value, double otherwise)
{
    return std::isfinite(value) ? value : otherwise;
}

/// Mean and standard deviation (of the population; 0 for a variance that rounding made negative).
struct Moments {
    double sum = 0, squares = 0;
    std::int32_t count = 0;

    void Add(double value)
    {
        sum += value;
        squares += value * value;
        ++count;
    }
    double Mean() const { return count > 0 ? sum / count : 0.0; }
    double Deviation() const
    {
        if (count == 0) return 0.0;
        const double variance = squares / count - Mean() * Mean();
        return variance < 0.0 ? 0.0 : std::sqrt(variance);
    }
};

/// Points lo..hi-1 around a peak: 1/32 of the row, held inside it.
struct FitRange {
    std::int32_t lo, hi;
};

FitRange RangeAround(std::int32_t center, std::int32_t n)
{
    const double half = n / 64.0;
    FitRange range{RoundHalfEven(center - half), RoundHalfEven(center + half)};
    if (range.lo < 1) return {1, RoundHalfEven(n / 32.0)};
    if (range.hi >= n - 1) return {RoundHalfEven(n * 31.0 / 32.0 - 1.0), n - 2};
    return range;
}

/// The work lines of one fit.
struct FitLines {
    std::span<float> step, p, q;
    std::span<std::int16_t> turns;  ///< 1 where the curve turns the way of a peak
    std::vector<std::int16_t> kept; ///< the same, without the points that the cleaning removed
};

FitLines LinesOf(GlobalBlock& g, std::size_t n)
{
    for (std::vector<float>* line : {&g.CrossLine, &g.SpareLines[0], &g.SpareLines[1], &g.SpareLines[2]})
        if (line->size() < n + 1) line->resize(n + 1);
    g.PointFlag.assign(std::max(g.PointFlag.size(), n + 1), 0);
    std::ranges::fill(g.SpareLines[0], 0.0F);
    return {g.SpareLines[0], g.SpareLines[1], g.SpareLines[2], g.PointFlag, {}};
}

/// Step lengths and the flags of the points where the curve turns one way.
void FlagTurns(GlobalBlock& g, const Row& row, FitRange range, FitLines& lines)
{
    for (std::int32_t i = range.lo; i < range.hi; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const double dx = At(row.re, i) - At(row.re, i - 1);
        const double dy = At(row.im, i) - At(row.im, i - 1);
        const double next_dx = At(row.re, i + 1) - At(row.re, i);
        const double next_dy = At(row.im, i + 1) - At(row.im, i);
        lines.step[at] = static_cast<float>(std::sqrt(dx * dx + dy * dy));
        g.CrossLine[at] = static_cast<float>(next_dx * dy - dx * next_dy);
        lines.turns[at] = g.CrossLine[at] > 0.0F ? 1 : 0;
    }
}

/// Copies of the points of the range, the offset of the row removed: the mean of its middle part
/// without the flagged points.
void RemoveOffset(const Row& row, FitRange range, FitLines& lines)
{
    const std::int32_t n = row.size();
    Moments x, y;
    const std::int32_t last = std::min(RoundHalfEven(n * 0.9), n - 1);
    for (std::int32_t i = RoundHalfEven(n * 0.1); i <= last; ++i) {
        if (lines.turns[static_cast<std::size_t>(i)] != 0) continue;
        x.Add(At(row.re, i));
        y.Add(At(row.im, i));
    }
    for (std::int32_t i = range.lo; i < range.hi; ++i) {
        lines.p[static_cast<std::size_t>(i)] = static_cast<float>(At(row.re, i) - x.Mean());
        lines.q[static_cast<std::size_t>(i)] = static_cast<float>(At(row.im, i) - y.Mean());
    }
}

double NoiseOf(const Row& row)
{
    Moments x;
    for (std::int32_t i = RoundHalfEven(row.size() * 0.9); i < row.size(); ++i) x.Add(At(row.re, i));
    return x.Deviation();
}

/// One pass of the cleaning; the number of points that lost their flag in it.
std::int32_t CleanOnce(FitRange range, FitLines& lines)
{
    Moments steps;
    for (std::int32_t i = range.lo; i < range.hi; ++i)
        if (lines.kept[static_cast<std::size_t>(i)] != 0) steps.Add(At(lines.step, i));
    const double limit = steps.Mean() + 2.0 * steps.Deviation();
    std::int32_t removed = 0;
    for (std::int32_t i = range.lo; i < range.hi; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (lines.kept[at] == 0) continue;
        // The neighbour is looked up in the first flags: in the cleaned ones each removal would take
        // the next point with it until none is left.
        if (At(lines.step, i) <= limit && At(lines.step, i + 1) <= limit && lines.turns[at - 1] == 1) continue;
        lines.kept[at] = 0;
        ++removed;
    }
    return removed;
}

void Clean(FitRange range, FitLines& lines)
{
    lines.kept.assign(lines.turns.begin(), lines.turns.end());
    std::int32_t before = range.hi - 2;
    for (std::int32_t removed = CleanOnce(range, lines); removed != before; removed = CleanOnce(range, lines))
        before = removed;
}

/// Degrees of the fit of P against Q over the points that kept their flag.
double FitAngle(FitRange range, FitLines& lines, double fallback)
{
    const auto kept = [&lines](std::int32_t i) { return lines.kept[static_cast<std::size_t>(i)] != 0; };
    Moments q_mean;
    for (std::int32_t i = range.lo; i < range.hi; ++i)
        if (kept(i)) q_mean.Add(At(lines.q, i));
    double s1 = 0, s2 = 0, s3 = 0, r1 = 0, r2 = 0;
    for (std::int32_t i = range.lo; i < range.hi; ++i) {
        float& stored = lines.q[static_cast<std::size_t>(i)];
        stored = static_cast<float>(static_cast<double>(stored) - q_mean.Mean());
        if (!kept(i)) continue;
        const double p = At(lines.p, i);
        const double q = At(lines.q, i);
        s1 += q * q;
        s2 += q * q * q;
        s3 += q * q * q * q;
        r1 += p * q * q;
        r2 += p * q * q * q;
    }
    const double d = s2 * s2 - s3 * s1;
    if (d == 0.0) return fallback;
    return Finite(std::atan((s2 * r1 - r2 * s1) / d) / kDegToRad, fallback);
}

struct CircleFit {
    double degrees;
    double noise;
};

CircleFit FitCircle(GlobalBlock& g, std::int32_t center, std::int32_t n, double fallback)
{
    std::int32_t point = 0;
    float top = 0;
    Find_Main_Peak(g, point, top, n);
    const Row row = ShownRow(g, n);
    if (row.size() < 3) return {fallback, 0.0};
    const FitRange range = RangeAround(std::clamp(center, 0, row.size() - 1), row.size());
    FitLines lines = LinesOf(g, static_cast<std::size_t>(row.size()));
    FlagTurns(g, row, range, lines);
    RemoveOffset(row, range, lines);
    const double noise = NoiseOf(row);
    Clean(range, lines);
    return {FitAngle(range, lines, fallback), noise};
}

struct Scan {
    std::int32_t from, to, step; ///< `to` is not looked at
    float start_maximum;
};

/// The top of the first line above the threshold, -1 when there is none.
std::int32_t FirstLine(std::span<const float> magnitude, const Scan& scan, double threshold)
{
    auto maximum = static_cast<double>(scan.start_maximum);
    std::int32_t found = -1;
    for (std::int32_t i = scan.from; i != scan.to; i += scan.step) {
        const double value = At(magnitude, i);
        if (value > threshold && value > maximum) {
            maximum = value;
            found = i;
        } else if (found >= 0 && value < maximum - threshold) {
            break;
        }
    }
    return found;
}

/// The farther from p of the outermost lines on both sides, -1 when there is none.
std::int32_t SecondPeak(const GlobalBlock& g, std::int32_t p, std::int32_t n, double threshold)
{
    const std::span<const float> magnitude(g.WorkLine);
    const std::int32_t left = p > 1 ? FirstLine(magnitude, {1, p, 1, magnitude[0]}, threshold) : -1;
    const std::int32_t right = FirstLine(magnitude, {n - 1, p, -1, -1.0F}, threshold);
    if (left < 0) return right;
    if (right < 0) return left;
    return right - p <= p - left ? left : right;
}

/// Height above which a line may be the second one. Protons have many small ones.
double SecondThreshold(GlobalBlock& g, double noise)
{
    const bool proton = PhasedSet(g).par.OBNUC == "1H";
    if (noise > 0.0) return (proton ? 100.0 : 10.0) * noise;
    return (proton ? 0.01 : 0.05) * std::abs(static_cast<double>(g.MaxMagnitude));
}

/// First order from the phase that is left at the second peak: by its angle, then by a fit around it.
void PhaseSecond(GlobalBlock& g, std::int32_t n)
{
    const std::int32_t distance = g.P2Point - g.PivotPoint;
    const auto add = [&](double degrees) {
        const double sum = static_cast<double>(g.Phase1Deg) + degrees * n / distance;
        g.Phase1Deg = static_cast<float>(Finite(sum, 0.0));
        Phase_Apply(g, g.Phase0Deg, g.Phase1Deg, n);
    };
    const Row row = ShownRow(g, n);
    const auto at = static_cast<std::size_t>(g.P2Point);
    add(-static_cast<double>(Angle_Of(row.re[at], row.im[at])));
    add(FitCircle(g, g.P2Point, n, -90.0).degrees);
}

void PhaseCore(GlobalBlock& g, PhaseMode mode, std::int32_t n)
{
    const CircleFit fit = FitCircle(g, g.PivotPoint, n, 90.0);
    g.Phase0Deg = static_cast<float>(Finite(static_cast<double>(g.Phase0Deg) + fit.degrees, 0.0));
    g.Phase1Deg = 0.0F;
    Phase_Apply(g, g.Phase0Deg, g.Phase1Deg, n);
    if (mode == PhaseMode::full) g.P2Point = SecondPeak(g, g.PivotPoint, n, SecondThreshold(g, fit.noise));
    const bool far_enough = std::abs(g.P2Point - g.PivotPoint) >= kNearestSecond;
    if (far_enough && g.P2Point >= 0 && g.P2Point < n) PhaseSecond(g, n);
}

} // namespace

float Angle_Of(float re, float im)
{
    const auto x = static_cast<double>(re);
    const auto y = static_cast<double>(im);
    if (std::abs(x) < std::abs(y)) {
        const double a = std::atan(x / y) * kDegrees;
        return static_cast<float>((y < 0.0 ? -90.0 : 90.0) - a);
    }
    if (x == 0.0) return 0.0F;
    const double a = std::atan(y / x) * kDegrees;
    if (x < 0.0) return static_cast<float>(y < 0.0 ? a - 180.0 : a + 180.0);
    return static_cast<float>(a);
}

void Phase_Apply(GlobalBlock& g, float ph0, float ph1, std::int32_t n)
{
    const Row row = ShownRow(g, n);
    if (row.size() == 0) return;
    RotateRow(row.source_re, row.source_im, row.re, row.im, row.size(), {ph0, ph1, g.PivotPoint});
}

void Find_Main_Peak(GlobalBlock& g, std::int32_t& point, float& max, std::int32_t n)
{
    point = 0;
    max = 0.0F;
    const Row row = ShownRow(g, n);
    const std::size_t count = row.source_re.size();
    if (g.WorkLine.size() < count + 1) g.WorkLine.resize(count + 1);
    for (std::size_t i = 0; i < count; ++i) {
        const auto re = static_cast<double>(row.source_re[i]);
        const auto im = static_cast<double>(row.source_im[i]);
        g.WorkLine[i] = static_cast<float>(std::sqrt(re * re + im * im));
    }
    for (std::size_t i = 0; i < count; ++i)
        if (g.WorkLine[i] > max) {
            max = g.WorkLine[i];
            point = static_cast<std::int32_t>(i);
        }
}

float Circle_Fit_Phase(GlobalBlock& g, std::int32_t center, std::int32_t n, float fallback)
{
    return static_cast<float>(FitCircle(g, center, n, static_cast<double>(fallback)).degrees);
}

void Auto_Phase(GlobalBlock& g, PhaseMode mode, std::int32_t n)
{
    const Row row = ShownRow(g, n);
    if (row.size() == 0) return;
    const std::int32_t points = row.size();
    Find_Main_Peak(g, PhasedSet(g).par.PhaseP0, g.MaxMagnitude, points);
    if (mode == PhaseMode::full) {
        g.PivotPoint = PhasedSet(g).par.PhaseP0;
        const auto p = static_cast<std::size_t>(g.PivotPoint);
        const double angle = static_cast<double>(Angle_Of(row.source_re[p], row.source_im[p]));
        g.Phase0Deg = static_cast<float>(-Finite(angle, 0.0));
        g.Phase1Deg = 0.0F;
        Phase_Apply(g, g.Phase0Deg, g.Phase1Deg, points);
    }
    g.PivotPoint = std::clamp(g.PivotPoint, 0, points - 1);
    PhaseCore(g, mode, points);
    const float wanted0 = std::exchange(g.Phase0Deg, std::clamp(g.Phase0Deg, -360.0F, 360.0F));
    const float wanted1 = std::exchange(g.Phase1Deg, std::clamp(g.Phase1Deg, -1800.0F, 1800.0F));
    // What is shown is what the numbers say.
    if (wanted0 != g.Phase0Deg || wanted1 != g.Phase1Deg) Phase_Apply(g, g.Phase0Deg, g.Phase1Deg, points);
}

} // namespace nmr
