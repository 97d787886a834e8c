#pragma once
// Filling of stripes into pixels.

#include "layout/canvas.h"

#include <QImage>

#include <span>

namespace nmr {

/// Where the first stripe begins and how much a unit is, in pixels of the image.
struct StripePlace {
    double x = 0;     ///< left edge of the first stripe
    double width = 1; ///< of each stripe
    double y = 0;     ///< row of the canvas's y = 0
    double scale = 1; ///< rows in one unit
};
/// Adds the stripes to an image of Format_ARGB32_Premultiplied that is clear where they fall. Each pixel
/// takes the colour in the share that the stripes cover of it.
void FillStripes(QImage& image, std::span<const Stripe> stripes, const StripePlace& place, QRgb color);

} // namespace nmr
