#include "layout/canvas.h"

#include <vector>

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
