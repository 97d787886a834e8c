#include "analysis/base_line.h"

#include "analysis/shown_row.h"
#include "analysis/smooth_base_line.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

constexpr double kFirstLimit = 1.4, kSecondLimit = 1.2;
constexpr double kFarOff = 5.0;    ///< noise levels between a base point and the smooth curve, when it is on a line
constexpr double kFlatRatio = 4.0; ///< taken where the points lie on the line exactly
constexpr std::int32_t kMostParts = 50; ///< a point is looked for in each fiftieth of the row

std::span<const float> SourceRow(const GlobalBlock& g)
{
    const DataSet& set = g.Slots[0];
    const std::size_t n = std::min(HeldPoints(set), set.spec.SourceRe.columns());
    const std::size_t row = ShownRowIndex(g, set);
    return row < set.spec.SourceRe.rows() ? set.spec.SourceRe[row].first(n) : std::span<const float>{};
}

LineFit FitLine(std::span<const float> row, std::int32_t center, std::int32_t half)
{
    const auto last = static_cast<std::int32_t>(row.size()) - 1;
    double n = 0, sx = 0, sxx = 0, sy = 0, sxy = 0;
    for (std::int32_t j = std::max(center - half, 0); j <= std::min(center + half, last); ++j) {
        const double x = j - center, y = static_cast<double>(row[static_cast<std::size_t>(j)]);
        n += 1;
        sx += x;
        sxx += x * x;
        sy += y;
        sxy += x * y;
    }
    const double d = sx * sx - n * sxx;
    // One point has a level, but no slope.
    if (d == 0.0) return {0.0, n > 0 ? sy / n : 0.0};
    return {(sx * sy - n * sxy) / d, (sx * sxy - sy * sxx) / d};
}

/// How much more the row jumps from point to point than it strays from the line: 2 for noise, near 0 on a line.
double JumpRatio(std::span<const float> row, std::int32_t center, std::int32_t half, const LineFit& fit)
{
    double jumps = 0, strays = 0;
    for (std::int32_t j = center - half; j <= center + half; ++j) {
        const double y = static_cast<double>(row[static_cast<std::size_t>(j)]);
        const double stray = y - (fit.slope * (j - center) + fit.intercept);
        strays += stray * stray;
        if (j == center + half) break;
        const double jump = static_cast<double>(row[static_cast<std::size_t>(j) + 1]) - y;
        jumps += jump * jump;
    }
    return strays == 0.0 ? kFlatRatio : jumps / strays;
}

/// Appends the point when the row is quiet around it.
void TryPoint(GlobalBlock& g, std::span<const float> row, std::int32_t i, std::int32_t half, double limit)
{
    const LineFit fit = FitLine(row, i, half);
    if (JumpRatio(row, i, half, fit) > limit) g.BasePoints.push_back({i, static_cast<float>(fit.intercept)});
}

void FirstPass(GlobalBlock& g, std::span<const float> row, std::int32_t half, std::int32_t step)
{
    const auto n = static_cast<std::int32_t>(row.size());
    const auto flag = [&g, n](std::int32_t j) {
        return j >= 0 && j < n && g.PointFlag[static_cast<std::size_t>(j)] > 0;
    };
    // Flagged points from i - half to i + half, carried along.
    std::int32_t count = 0, counted_to = -1, counted_from = 0;
    const auto count_around = [&](std::int32_t i) {
        if (i - half > counted_to) {
            count = 0;
            counted_from = i - half;
            counted_to = counted_from - 1;
        }
        while (counted_to < i + half) count += flag(++counted_to) ? 1 : 0;
        while (counted_from < i - half) count -= flag(counted_from++) ? 1 : 0;
        return count;
    };
    for (std::int32_t i = half; i < n - half && g.BasePoints.size() < kMaxBasePoints;) {
        if (!flag(i) || half / 5.0 >= count_around(i)) {
            ++i;
            continue;
        }
        TryPoint(g, row, i, half, kFirstLimit);
        i += step;
    }
}

} // namespace

void Mark_Signal_Points(GlobalBlock& g)
{
    const DataSet& set = g.Slots[0];
    const auto re = SourceRow(g);
    const std::size_t n = re.size();
    g.PointFlag.assign(std::max(g.PointFlag.size(), n + 1), 0);
    const std::size_t shown = ShownRowIndex(g, set);
    if (n < 3 || shown >= set.spec.SourceIm.rows() || set.spec.SourceIm.columns() < n) return;
    const float *x = re.data(), *y = set.spec.SourceIm[shown].data();
    std::int16_t* flag = g.PointFlag.data();
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double dx = static_cast<double>(x[i]) - static_cast<double>(x[i - 1]);
        const double dy = static_cast<double>(y[i]) - static_cast<double>(y[i - 1]);
        const double next_dx = static_cast<double>(x[i + 1]) - static_cast<double>(x[i]);
        const double next_dy = static_cast<double>(y[i + 1]) - static_cast<double>(y[i]);
        flag[i] = next_dx * dy - dx * next_dy > 0.0 ? 1 : 0;
    }
}

LineFit Line_Fit(const GlobalBlock& g, std::int32_t center, std::int32_t half)
{
    return FitLine(SourceRow(g), center, half);
}

void Auto_Base_Points(GlobalBlock& g, std::int32_t average_points)
{
    g.BasePoints.clear();
    const auto row = SourceRow(g);
    const auto n = static_cast<std::int32_t>(row.size());
    const std::int32_t half = std::clamp(average_points, 0, kMaxPoints);
    if (n == 0) return;
    Mark_Signal_Points(g);
    const std::int32_t step = std::max(RoundHalfEven(n / static_cast<double>(kMostParts)), 1);
    FirstPass(g, row, half, step);
    if (!g.BasePoints.empty()) return;
    for (std::int32_t i = half; i <= n - half - 1 && g.BasePoints.size() < kMaxBasePoints; i += step)
        TryPoint(g, row, i, half, kSecondLimit);
}

std::int32_t Add_Base_Point(GlobalBlock& g, std::int32_t point, std::int32_t average_points)
{
    const auto row = SourceRow(g);
    if (point < 0 || static_cast<std::size_t>(point) >= row.size()) return -1;
    const auto place = std::ranges::lower_bound(g.BasePoints, point, {}, &BasePointEntry::Point);
    const auto index = static_cast<std::int32_t>(place - g.BasePoints.begin());
    const auto level = static_cast<float>(FitLine(row, point, std::clamp(average_points, 0, kMaxPoints)).intercept);
    if (place != g.BasePoints.end() && place->Point == point)
        place->Value = level;
    else if (g.BasePoints.size() < kMaxBasePoints)
        g.BasePoints.insert(place, {point, level});
    else
        return -1;
    return index;
}

std::int32_t Find_Base_Point(const GlobalBlock& g, std::int32_t point, std::int32_t reach)
{
    std::int32_t best = -1, nearest = reach;
    for (std::size_t i = 0; i < g.BasePoints.size(); ++i) {
        const std::int32_t away = std::abs(g.BasePoints[i].Point - point);
        if (away > nearest) continue;
        nearest = away;
        best = static_cast<std::int32_t>(i);
    }
    return best;
}

bool Delete_Base_Point(GlobalBlock& g, std::int32_t index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= g.BasePoints.size()) return false;
    g.BasePoints.erase(g.BasePoints.begin() + index);
    return true;
}

bool Set_Base_Level_Of(GlobalBlock& g, std::int32_t index, float value)
{
    if (index < 0 || static_cast<std::size_t>(index) >= g.BasePoints.size() || !std::isfinite(value)) return false;
    g.BasePoints[static_cast<std::size_t>(index)].Value = value;
    return true;
}

namespace {

/// Calls set(i, level) with the level in double at each point of the row.
template <class Set>
void EachLevel(const GlobalBlock& g, std::int32_t n, Set set)
{
    const std::vector<BasePointEntry>& list = g.BasePoints;
    if (list.empty()) return;
    const auto value = [&](std::size_t k) { return static_cast<double>(list[k].Value); };
    for (std::int32_t i = 0; i < std::min(list.front().Point, n); ++i) set(i, value(0));
    for (std::size_t k = 0; k + 1 < list.size(); ++k) {
        const std::int32_t from = list[k].Point, to = list[k + 1].Point;
        for (std::int32_t i = std::max(from, 0); i < std::min(to, n); ++i)
            set(i,
                (static_cast<double>(to - i) * value(k) + static_cast<double>(i - from) * value(k + 1)) / (to - from));
    }
    for (std::int32_t i = std::max(list.back().Point, 0); i < n; ++i) set(i, value(list.size() - 1));
}

std::span<float> DataRow(GlobalBlock& g, std::size_t n)
{
    DataSet& set = g.Slots[0];
    return set.spec.DataRe[ShownRowIndex(g, set)].first(n);
}

} // namespace

std::vector<std::size_t> Base_Points_On_Lines(const GlobalBlock& g)
{
    const auto row = SourceRow(g);
    const auto mask = Signal_Mask(row);
    const std::vector<float> curve = Whittaker_Base_Line(row);
    const double limit = kFarOff * Noise_Deviation(row);
    std::vector<std::size_t> found;
    for (std::size_t k = 0; k < g.BasePoints.size(); ++k) {
        const auto i = static_cast<std::size_t>(g.BasePoints[k].Point);
        if (i >= row.size() || mask[i] == 0) continue;
        const double off = static_cast<double>(g.BasePoints[k].Value) - static_cast<double>(curve[i]);
        if (std::abs(off) > limit) found.push_back(k);
    }
    return found;
}

std::size_t Drop_Base_Points_On_Lines(GlobalBlock& g)
{
    const std::vector<std::size_t> found = Base_Points_On_Lines(g);
    for (auto index = found.rbegin(); index != found.rend(); ++index)
        g.BasePoints.erase(g.BasePoints.begin() + static_cast<std::ptrdiff_t>(*index));
    return found.size();
}

std::vector<float> Straight_Base_Line(const GlobalBlock& g)
{
    std::vector<float> curve(SourceRow(g).size());
    EachLevel(g, static_cast<std::int32_t>(curve.size()),
              [&](std::int32_t i, double level) { curve[static_cast<std::size_t>(i)] = static_cast<float>(level); });
    return curve;
}

void Subtract_Straight_Base_Line(GlobalBlock& g)
{
    const auto source = SourceRow(g);
    if (source.empty() || g.BasePoints.empty()) return;
    const auto data = DataRow(g, source.size());
    EachLevel(g, static_cast<std::int32_t>(source.size()), [&](std::int32_t i, double level) {
        const auto at = static_cast<std::size_t>(i);
        data[at] = static_cast<float>(static_cast<double>(source[at]) - level);
    });
}

void Subtract_Base_Line(GlobalBlock& g, std::span<const float> curve)
{
    const auto source = SourceRow(g);
    if (source.empty() || curve.size() < source.size()) return;
    const auto data = DataRow(g, source.size());
    for (std::size_t i = 0; i < source.size(); ++i) data[i] = source[i] - curve[i];
}

} // namespace nmr
