#include "analysis/integrals.h"

#include "analysis/shown_row.h"

#include <cmath>
#include <limits>
#include <utility>

namespace nmr {

namespace {

IntegralEntry* EntryOf(DataSet& set, std::int32_t index)
{
    const auto at = static_cast<std::size_t>(std::max(index, 0));
    return index >= 0 && at < set.Integrals.size() ? &set.Integrals[at] : nullptr;
}

/// Puts a region on two points, in either order.
void SetPoints(const DataSet& set, IntegralEntry& entry, std::int32_t a, std::int32_t b)
{
    const auto last = static_cast<std::int32_t>(HeldPoints(set)) - 1;
    entry.StartPoint = std::clamp(std::max(a, b), 0, last);
    entry.EndPoint = std::clamp(std::min(a, b), 0, last);
    entry.Start = static_cast<float>(PointToPpm(set, entry.StartPoint) - set.spec.XAxis[0]);
    entry.End = static_cast<float>(PointToPpm(set, entry.EndPoint) - set.spec.XAxis[0]);
}

void Recalculate(GlobalBlock& g, std::int32_t index)
{
    Calc_Integral(g, index, 0.0F);
}

/// Inserts in order of the point index; the reference stays with its region. The index of the new entry.
std::int32_t Insert(DataSet& set, IntegralEntry entry)
{
    const auto place =
        std::ranges::find_if(set.Integrals, [&](const IntegralEntry& e) { return e.StartPoint > entry.StartPoint; });
    const auto index = static_cast<std::int32_t>(place - set.Integrals.begin());
    const bool first = set.Integrals.empty();
    set.Integrals.insert(place, std::move(entry));
    if (first)
        set.IntegralRef = 0;
    else if (set.IntegralRef >= index)
        ++set.IntegralRef;
    return index;
}

} // namespace

float Calc_Integral(GlobalBlock& g, std::int32_t index, float result)
{
    DataSet& set = g.Slots[0];
    IntegralEntry* entry = EntryOf(set, index);
    const auto n = static_cast<std::int32_t>(HeldPoints(set));
    if (entry == nullptr || n == 0) return result;
    const auto full = static_cast<double>(set.par.DispLeft);
    if (full == 0.0) return entry->Value = 0.0F;
    const auto row = set.spec.DataRe[ShownRowIndex(g, set)];
    const IntegralRamp ramp(*entry, set.par.POINT);
    double sum = static_cast<double>(result);
    // A file may hold regions of a longer row.
    const std::int32_t end = std::max(entry->EndPoint, 0);
    for (std::int32_t p = std::min(entry->StartPoint, n - 1); p >= end; --p)
        sum = sum + static_cast<double>(row[static_cast<std::size_t>(p)]) / full - p * ramp.b + ramp.a;
    return entry->Value = static_cast<float>(sum);
}

void Calc_All_Integrals(GlobalBlock& g)
{
    if (g.Slots[0].Integrals.size() > kMaxIntegrals) return;
    for (std::size_t i = 0; i < g.Slots[0].Integrals.size(); ++i) Recalculate(g, static_cast<std::int32_t>(i));
}

std::int32_t Add_Integral(GlobalBlock& g, double a_ppm, double b_ppm)
{
    DataSet& set = g.Slots[0];
    const std::size_t n = HeldPoints(set);
    if (set.Integrals.size() >= kMaxIntegrals || n == 0 || !std::isfinite(a_ppm) || !std::isfinite(b_ppm)) return -1;
    const auto [low, high] = std::minmax(a_ppm, b_ppm);
    const auto [first, last] = std::minmax(set.spec.XAxis[0], set.spec.XAxis[n - 1]);
    if (high < first || low > last) return -1;
    IntegralEntry entry;
    SetPoints(set, entry, PpmToPoint(set, a_ppm), PpmToPoint(set, b_ppm));
    const std::int32_t index = Insert(set, std::move(entry));
    Recalculate(g, index);
    return index;
}

bool Divide_Integral(GlobalBlock& g, std::int32_t index, double ppm)
{
    DataSet& set = g.Slots[0];
    IntegralEntry* whole = EntryOf(set, index);
    if (whole == nullptr || set.Integrals.size() >= kMaxIntegrals || HeldPoints(set) == 0) return false;
    const std::int32_t cut = PpmToPoint(set, ppm);
    if (cut > whole->StartPoint || cut <= whole->EndPoint) return false;
    IntegralEntry rest = *whole;
    const double step = static_cast<double>(rest.B1) / set.par.POINT;
    rest.B0 = static_cast<float>(static_cast<double>(rest.B0) + step * (whole->StartPoint - (cut - 1)));
    rest.Label.clear();
    SetPoints(set, rest, cut - 1, whole->EndPoint);
    SetPoints(set, *whole, whole->StartPoint, cut);
    const auto at = static_cast<std::ptrdiff_t>(index);
    set.Integrals.insert(set.Integrals.begin() + at, rest); // lower points, so in front
    // The reference was the whole: it stays with the start of the region, which stands behind now.
    if (set.IntegralRef >= index) ++set.IntegralRef;
    Recalculate(g, index);
    Recalculate(g, index + 1);
    return true;
}

bool Move_Integral(GlobalBlock& g, std::int32_t index, double by_ppm)
{
    DataSet& set = g.Slots[0];
    IntegralEntry* entry = EntryOf(set, index);
    const auto last = static_cast<std::int32_t>(HeldPoints(set)) - 1;
    if (entry == nullptr || last < 1 || !std::isfinite(by_ppm)) return false;
    const double range = set.spec.XAxis[static_cast<std::size_t>(last)] - set.spec.XAxis[0];
    const double points = range == 0.0 ? 0.0 : by_ppm / range * last;
    const std::int32_t lowest = -entry->EndPoint, highest = std::max(last - entry->StartPoint, lowest);
    const std::int32_t by = std::clamp(RoundHalfEven(points), lowest, highest);
    if (by == 0) return false;
    SetPoints(set, *entry, entry->StartPoint + by, entry->EndPoint + by);
    Recalculate(g, index);
    return true;
}

bool Enlarge_Integral(GlobalBlock& g, std::int32_t index, IntegralEnd which, double ppm)
{
    DataSet& set = g.Slots[0];
    IntegralEntry* entry = EntryOf(set, index);
    if (entry == nullptr || HeldPoints(set) == 0 || !std::isfinite(ppm)) return false;
    const std::int32_t point = PpmToPoint(set, ppm);
    const std::int32_t moved = which == IntegralEnd::start ? entry->StartPoint : entry->EndPoint;
    if (point == moved) return false;
    SetPoints(set, *entry, point, which == IntegralEnd::start ? entry->EndPoint : entry->StartPoint);
    Recalculate(g, index);
    return true;
}

bool Delete_Integral(GlobalBlock& g, std::int32_t index)
{
    DataSet& set = g.Slots[0];
    if (EntryOf(set, index) == nullptr) return false;
    set.Integrals.erase(set.Integrals.begin() + index);
    if (set.IntegralRef > index)
        --set.IntegralRef;
    else if (set.IntegralRef == index)
        set.IntegralRef = 0; // lists need one; the first is what a new list begins with
    return true;
}

void Delete_All_Integrals(DataSet& set)
{
    set.Integrals.clear();
    set.IntegralRef = 0;
}

bool IsIntegralScale(double value)
{
    constexpr double kMost = static_cast<double>(std::numeric_limits<float>::max());
    return value <= kMost && value >= static_cast<double>(std::numeric_limits<float>::min());
}

bool Set_Integral_Reference(DataSet& set, std::int32_t index, std::optional<double> value)
{
    if (EntryOf(set, index) == nullptr) return false;
    if (value && !IsIntegralScale(*value)) return false;
    set.IntegralRef = static_cast<std::int16_t>(index);
    if (value) set.IntegralScale = static_cast<float>(*value);
    return true;
}

bool Set_B0_B1(GlobalBlock& g, std::int32_t index, float b0, float b1)
{
    IntegralEntry* entry = EntryOf(g.Slots[0], index);
    if (entry == nullptr || !std::isfinite(b0) || !std::isfinite(b1)) return false;
    if (entry->B0 == b0 && entry->B1 == b1) return false;
    entry->B0 = b0;
    entry->B1 = b1;
    Recalculate(g, index);
    return true;
}

std::int32_t Find_Integral(const DataSet& set, double ppm)
{
    if (HeldPoints(set) == 0) return -1;
    const std::int32_t point = PpmToPoint(set, ppm);
    std::int32_t best = -1, width = 0;
    for (std::size_t i = 0; i < set.Integrals.size(); ++i) {
        const IntegralEntry& e = set.Integrals[i];
        if (point > e.StartPoint || point < e.EndPoint) continue;
        if (best >= 0 && e.StartPoint - e.EndPoint >= width) continue;
        best = static_cast<std::int32_t>(i);
        width = e.StartPoint - e.EndPoint;
    }
    return best;
}

IntegralCurves CurvesOf(const GlobalBlock& g)
{
    const DataSet& set = g.Slots[0];
    const std::size_t n = HeldPoints(set);
    if (n == 0) return {};
    return {set.spec.DataRe[ShownRowIndex(g, set)].first(n), static_cast<double>(set.par.DispLeft)};
}

} // namespace nmr
