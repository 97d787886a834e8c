#include "layout/canvas.h"

#include "layout/shapes.h"

#include <algorithm>

namespace nmr {
Rgba FromSetting(std::int32_t color)
{
    const auto byte = [color](int shift) { return static_cast<std::uint8_t>((color >> shift) & 0xFF); };
    return {byte(0), byte(8), byte(16), 255};
}

std::int32_t ToSetting(Rgba color)
{
    return color.red | (color.green << 8) | (color.blue << 16);
}

std::vector<double> DashesOf(const Pen& pen)
{
    // In pen widths; a hair line's dashes are those of a line one unit wide.
    constexpr double kDash = 4, kDot = 1, kGap = 2;
    std::vector<double> dashes;
    switch (pen.style) {
    case PenStyle::dash:
        dashes = {kDash, kGap};
        break;
    case PenStyle::dot:
        dashes = {kDot, kGap};
        break;
    case PenStyle::dash_dot:
        dashes = {kDash, kGap, kDot, kGap};
        break;
    case PenStyle::dash_dot_dot:
        dashes = {kDash, kGap, kDot, kGap, kDot, kGap};
        break;
    default:
        break;
    }
    for (double& length : dashes) length *= std::max(1.0, pen.width);
    return dashes;
}

void Canvas::Arc(const RectD& rect, double start_deg, double sweep_deg)
{
    Polyline(ArcPoints(rect, start_deg, sweep_deg));
}

// For canvases without anything better: one line a stripe, down its middle.
void Canvas::Stripes(double x, double stripe_width, std::span<const Stripe> stripes)
{
    std::vector<Segment> segments;
    segments.reserve(stripes.size());
    double middle = x + stripe_width / 2;
    for (const Stripe& stripe : stripes) {
        if (stripe.top < stripe.bottom) segments.push_back({{middle, stripe.top}, {middle, stripe.bottom}});
        middle += stripe_width;
    }
    Lines(segments);
}

} // namespace nmr
