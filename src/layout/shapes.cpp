#include "layout/shapes.h"

#include "core/numbers.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace nmr {
namespace {

constexpr double kArcStep = 0.05; // canvas units that a chord may leave the arc
constexpr double kMostPieces = 100'000;

PointD Between(const PointD& a, const PointD& b, double share)
{
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

double Distance(const PointD& a, const PointD& b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

} // namespace

std::vector<PointD> ArcPoints(const RectD& rect, double start_deg, double sweep_deg)
{
    const double rx = rect.width / 2, ry = rect.height / 2, radius = std::max({std::abs(rx), std::abs(ry), 1.0});
    const double step = 2 * std::acos(1 - std::min(1.0, kArcStep / radius));
    const double sweep = std::clamp(sweep_deg, -360.0, 360.0) * kDegToRad;
    const int parts = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / step)));
    std::vector<PointD> points;
    for (int i = 0; i <= parts; ++i) {
        const double angle = start_deg * kDegToRad + sweep * i / parts;
        points.push_back({rect.x + rx + rx * std::cos(angle), rect.y + ry - ry * std::sin(angle)});
    }
    return points;
}

std::vector<PointD> CornersOf(const RectD& rect)
{
    return {{rect.x, rect.y},
            {rect.right(), rect.y},
            {rect.right(), rect.bottom()},
            {rect.x, rect.bottom()},
            {rect.x, rect.y}};
}

std::vector<std::vector<PointD>> DashPieces(std::span<const PointD> points, std::span<const double> dashes)
{
    std::vector<std::vector<PointD>> pieces;
    double length = 0;
    for (std::size_t i = 1; i < points.size(); ++i) length += Distance(points[i - 1], points[i]);
    const double period = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    if (dashes.empty() || !(period > 0) || !(length / period * static_cast<double>(dashes.size()) < kMostPieces)) {
        pieces.emplace_back(points.begin(), points.end());
        return pieces;
    }
    std::size_t dash = 0;
    double left = dashes[0]; // of the dash or gap under way
    pieces.push_back({points[0]});
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double way = Distance(points[i - 1], points[i]);
        double gone = 0;
        while (way - gone > left) {
            gone += left;
            const PointD at = Between(points[i - 1], points[i], gone / way);
            if (dash % 2 == 0)
                pieces.back().push_back(at);
            else
                pieces.push_back({at});
            dash = (dash + 1) % dashes.size();
            left = dashes[dash];
        }
        left -= way - gone;
        if (dash % 2 == 0) pieces.back().push_back(points[i]);
    }
    if (pieces.back().size() < 2) pieces.pop_back();
    return pieces;
}

} // namespace nmr
