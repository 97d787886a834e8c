#include "session/color_regions.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace nmr {
namespace {

using Regions = decltype(DataSet::Regions);

float Low(const RegionColor& region)
{
    return std::min(region.Start, region.End);
}
float High(const RegionColor& region)
{
    return std::max(region.Start, region.End);
}

/// A region from its high to its low end, as the axis is shown.
RegionColor Region(std::int32_t color, float low, float high)
{
    return {color, high, low};
}

/// What is left of a region beside a range.
void AddRest(std::vector<RegionColor>& rest, const RegionColor& region, float low, float high)
{
    if (High(region) > high) rest.push_back(Region(region.Color, std::max(Low(region), high), High(region)));
    if (Low(region) < low) rest.push_back(Region(region.Color, Low(region), std::min(High(region), low)));
}

bool Holds(const RegionColor& region, double ppm)
{
    return IsColored(region) && ppm >= static_cast<double>(Low(region)) && ppm <= static_cast<double>(High(region));
}

void Store(GlobalBlock& g, UndoKind kind, const std::vector<RegionColor>& regions)
{
    PushUndoStep(g, kind);
    DataSet& set = g.Slots[0];
    set.Regions.fill({});
    std::ranges::copy(regions, set.Regions.begin());
    set.par.DataChanged = 1;
    set.par.DataFromFile = 0;
}

} // namespace

bool IsColored(const RegionColor& region)
{
    return region.Color >= 0 && region.Start != region.End && std::isfinite(region.Start) && std::isfinite(region.End);
}

bool SetColorRegion(GlobalBlock& g, double a_ppm, double b_ppm, std::int32_t color)
{
    const auto low = static_cast<float>(std::min(a_ppm, b_ppm)), high = static_cast<float>(std::max(a_ppm, b_ppm));
    if (!std::isfinite(a_ppm) || !std::isfinite(b_ppm) || !(low < high) || color < 0) return false;
    std::vector<RegionColor> regions;
    for (const RegionColor& region : g.Slots[0].Regions)
        if (IsColored(region)) AddRest(regions, region, low, high);
    regions.push_back(Region(color, low, high));
    if (regions.size() > g.Slots[0].Regions.size()) return false;
    // From left to right, as lists and files show them.
    std::ranges::sort(regions, [](const RegionColor& a, const RegionColor& b) { return High(a) > High(b); });
    Store(g, UndoKind::set_color_region, regions);
    return true;
}

bool ResetColorRegion(GlobalBlock& g, double ppm)
{
    std::vector<RegionColor> kept;
    bool found = false;
    for (const RegionColor& region : g.Slots[0].Regions) {
        const bool goes = !found && Holds(region, ppm);
        found = found || goes;
        if (!goes && IsColored(region)) kept.push_back(region);
    }
    if (found) Store(g, UndoKind::reset_color_region, kept);
    return found;
}

bool ResetAllColorRegions(GlobalBlock& g)
{
    if (std::ranges::none_of(g.Slots[0].Regions, IsColored)) return false;
    Store(g, UndoKind::reset_color_region, {});
    return true;
}

} // namespace nmr
