#include "analysis/peak_pick.h"

#include "analysis/shown_row.h"

#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace nmr {

namespace {

constexpr double kSamePeakHz = 0.01;

bool Before(const PeakEntry& a, const PeakEntry& b)
{
    return a.Position < b.Position;
}

/// The row as it is picked.
struct Scan {
    std::span<const float> y;
    float sign = 1.0F; ///< -1: tops below the base line
    double step = 0;   ///< rise and fall that a peak needs
    double detect = 0;

    double At(std::size_t i) const { return static_cast<double>(sign * y[i]); }
};

/// Indices of the tops between two points, ascending.
std::vector<std::size_t> FindTops(const Scan& scan, std::size_t first, std::size_t last)
{
    std::vector<std::size_t> tops;
    double top = scan.At(first), valley = top;
    std::size_t at = first;
    bool rising = false;
    for (std::size_t i = first; i <= last; ++i) {
        const double y = scan.At(i);
        if (y > top) {
            if (!rising) {
                if (y - valley < scan.step) {
                    if (y < valley) valley = y;
                    continue;
                }
                rising = true;
            }
            top = y;
            at = i;
            continue;
        }
        if (y < top && top - y >= scan.step && top >= scan.detect && rising) {
            tops.push_back(at);
            valley = y;
            rising = false;
        }
        // Behind a closed peak too: the search begins at the point that closed it.
        if (!rising && valley >= y) {
            valley = top = y;
            at = i;
        }
    }
    return tops;
}

/// By the axis in float, the width of the scan's copy.
PeakEntry EntryAt(const DataSet& set, std::size_t n, std::size_t top)
{
    const double first_ppm = set.spec.XAxis[0];
    const auto x = static_cast<double>(static_cast<float>(set.spec.XAxis[top]));
    const double range = set.spec.XAxis[n - 1] - first_ppm;
    PeakEntry entry;
    entry.Position = (x - first_ppm) * set.par.OBFRQ0PPM;
    entry.Point = range == 0.0 ? 0 : RoundHalfEven((x - first_ppm) / range * static_cast<double>(n));
    return entry;
}

bool Known(const std::vector<PeakEntry>& sorted, double position)
{
    const auto next = std::ranges::lower_bound(sorted, position, {}, &PeakEntry::Position);
    const auto same = [&](const PeakEntry& e) { return std::abs(e.Position - position) < kSamePeakHz; };
    return (next != sorted.end() && same(*next)) || (next != sorted.begin() && same(*std::prev(next)));
}

/// Takes new entries, which rise or fall in Position, into the list: sorted once, since a low level can
/// bring hundreds of thousands.
void Merge(std::vector<PeakEntry>& peaks, std::vector<PeakEntry> found)
{
    if (!std::ranges::is_sorted(peaks, Before)) std::ranges::stable_sort(peaks, Before);
    std::vector<PeakEntry> fresh;
    for (const PeakEntry& entry : found) {
        const bool twice = !fresh.empty() && std::abs(fresh.back().Position - entry.Position) < kSamePeakHz;
        if (!twice && !Known(peaks, entry.Position)) fresh.push_back(entry);
    }
    std::ranges::stable_sort(fresh, Before);
    const auto middle = static_cast<std::ptrdiff_t>(peaks.size());
    peaks.insert(peaks.end(), fresh.begin(), fresh.end());
    std::inplace_merge(peaks.begin(), peaks.begin() + middle, peaks.end(), Before);
}

void Pick(GlobalBlock& g, std::int32_t first, std::int32_t last, float sign)
{
    DataSet& set = g.Slots[0];
    const std::size_t n = HeldPoints(set);
    if (n < 2) return;
    Refresh_Reduced_Copy(g);
    const auto end = static_cast<std::int32_t>(n) - 1;
    first = std::clamp(first, 0, end);
    last = std::clamp(last, 0, end);
    if (first > last) std::swap(first, last);
    // In float, as the level words are: a tenth of 10 is a rise of 1.
    const float full = set.par.DispLeft;
    const float step = std::abs(full * set.PeakThreshold - full * set.PeakWidth), detect = full * set.PeakNoise;
    const Scan scan{set.spec.IntegralCurve[0].first(n), sign, static_cast<double>(step), static_cast<double>(detect)};
    std::vector<PeakEntry> found;
    for (const std::size_t top : FindTops(scan, static_cast<std::size_t>(first), static_cast<std::size_t>(last)))
        found.push_back(EntryAt(set, n, top));
    Merge(set.Peaks, std::move(found));
}

bool IsTop(std::span<const float> y, std::size_t i, float sign)
{
    const float here = sign * y[i];
    return here >= sign * y[i - 1] && here >= sign * y[i + 1] && (y[i] != y[i - 1] || y[i] != y[i + 1]);
}

/// Index of the top that a click means; the size of the row for none.
std::size_t TopNear(const GlobalBlock& g, double ppm, double reach_ppm, bool negative)
{
    const DataSet& set = g.Slots[0];
    const std::size_t n = HeldPoints(set);
    if (n < 3) return n;
    const auto y = set.spec.DataRe[ShownRowIndex(g, set)].first(n);
    const auto top = [&](std::size_t i) { return IsTop(y, i, 1.0F) || (negative && IsTop(y, i, -1.0F)); };
    const std::int32_t a = PpmToPoint(set, ppm - reach_ppm), b = PpmToPoint(set, ppm + reach_ppm);
    const auto size = [&](std::size_t i) { return negative ? std::abs(y[i]) : y[i]; };
    const auto inside = [&](std::int32_t i) {
        return static_cast<std::size_t>(std::clamp(i, 1, static_cast<int>(n) - 2));
    };
    std::size_t best = n;
    for (std::size_t i = inside(std::min(a, b)); i <= inside(std::max(a, b)); ++i)
        if (top(i) && (best == n || size(i) > size(best))) best = i;
    if (best != n) return best;
    const std::size_t centre = inside(PpmToPoint(set, ppm));
    for (std::size_t away = 0; away < n; ++away) {
        if (centre >= away + 1 && top(centre - away)) return centre - away;
        if (centre + away + 1 < n && top(centre + away)) return centre + away;
    }
    return n;
}

bool SetLevel(float& word, double value)
{
    if (!(std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max()))) return false;
    word = static_cast<float>(value);
    return true;
}

} // namespace

void Refresh_Reduced_Copy(GlobalBlock& g)
{
    DataSet& set = g.Slots[0];
    SpecBuffer& spec = set.spec;
    const std::size_t n = HeldPoints(set);
    const std::size_t length = std::max(n, static_cast<std::size_t>(std::max(spec.AllocatedPoints, 0))) + 1;
    if (spec.IntegralCurve.rows() < 1 || spec.IntegralCurve.columns() < length) spec.IntegralCurve.Resize(1, length);
    if (spec.IntegralSum.size() < length) spec.IntegralSum.resize(length);
    if (n == 0) return;
    std::ranges::copy(spec.DataRe[ShownRowIndex(g, set)].first(n), spec.IntegralCurve[0].begin());
    for (std::size_t i = 0; i < n; ++i) spec.IntegralSum[i] = static_cast<float>(spec.XAxis[i]);
}

void Peak_Pick(GlobalBlock& g, std::int32_t first, std::int32_t last)
{
    Pick(g, first, last, 1.0F);
}

void Peak_Pick_Negative(GlobalBlock& g, std::int32_t first, std::int32_t last)
{
    Pick(g, first, last, -1.0F);
}

double Noise_Level(const DataSet& set)
{
    return static_cast<double>(set.PeakThreshold) - static_cast<double>(set.PeakWidth);
}

double Detect_Level(const DataSet& set)
{
    return static_cast<double>(set.PeakNoise);
}

double Base_Level(const DataSet& set)
{
    return static_cast<double>(set.PeakWidth);
}

bool Set_Noise_Level(DataSet& set, double level)
{
    return SetLevel(set.PeakThreshold, level + Base_Level(set));
}

bool Set_Detect_Level(DataSet& set, double level)
{
    return SetLevel(set.PeakNoise, level);
}

bool Set_Base_Level(DataSet& set, double level)
{
    const double noise = Noise_Level(set);
    return SetLevel(set.PeakWidth, level) && Set_Noise_Level(set, noise);
}

bool Would_Add_Peak(const GlobalBlock& g, double ppm, double reach_ppm, bool negative)
{
    const DataSet& set = g.Slots[0];
    const std::size_t n = HeldPoints(set), top = TopNear(g, ppm, reach_ppm, negative);
    if (top >= n) return false;
    const double position = EntryAt(set, n, top).Position;
    return std::ranges::none_of(set.Peaks,
                                [&](const PeakEntry& e) { return std::abs(e.Position - position) < kSamePeakHz; });
}

bool Add_Peak_At(GlobalBlock& g, double ppm, double reach_ppm, bool negative)
{
    if (!Would_Add_Peak(g, ppm, reach_ppm, negative)) return false;
    DataSet& set = g.Slots[0];
    Merge(set.Peaks, {EntryAt(set, HeldPoints(set), TopNear(g, ppm, reach_ppm, negative))});
    return true;
}

std::int32_t Find_Peak(const DataSet& set, double ppm, double reach_ppm)
{
    std::int32_t best = -1;
    double nearest = reach_ppm;
    for (std::size_t i = 0; i < set.Peaks.size(); ++i) {
        const double away = std::abs(PeakPpm(set, set.Peaks[i]) - ppm);
        if (away > nearest) continue;
        nearest = away;
        best = static_cast<std::int32_t>(i);
    }
    return best;
}

bool Delete_Peak_At(DataSet& set, double ppm, double reach_ppm)
{
    const std::int32_t index = Find_Peak(set, ppm, reach_ppm);
    if (index < 0) return false;
    set.Peaks.erase(set.Peaks.begin() + index);
    return true;
}

std::size_t Delete_Peaks_Between(DataSet& set, double a_ppm, double b_ppm)
{
    const auto [low, high] = std::minmax(a_ppm, b_ppm);
    return std::erase_if(set.Peaks, [&, low = low, high = high](const PeakEntry& e) {
        const double ppm = PeakPpm(set, e);
        return ppm >= low && ppm <= high;
    });
}

} // namespace nmr
