#pragma once
// The drawing surface that everything draws on: screen, printer, pictures and the recording canvas
// of the tests. Coordinates are in the canvas's own units (logical pixels, or points of 1/72 inch on
// paper), y runs down, angles are degrees counter-clockwise.

#include <cstdint>
#include <span>
#include <string_view>

namespace nmr {

struct Rgba {
    std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
    friend bool operator==(const Rgba&, const Rgba&) = default;
};
/// Colour of a setting: red + 256 green + 65536 blue.
Rgba FromSetting(std::int32_t color);
std::int32_t ToSetting(Rgba color);

enum class PenStyle { none, solid, dash, dot, dash_dot };
struct Pen {
    Rgba color;
    double width = 1.0;
    PenStyle style = PenStyle::solid;
};

struct PointD {
    double x = 0, y = 0;
};
struct RectD {
    double x = 0, y = 0, width = 0, height = 0;
    double right() const { return x + width; }
    double bottom() const { return y + height; }
};
struct Segment {
    PointD from, to;
};

struct FontSpecD {
    std::string_view family = "Liberation Sans";
    double size = 10.0; ///< height of the em in canvas units
    bool bold = false, italic = false, underline = false, strikeout = false;
};
struct TextExtent {
    double width = 0, ascent = 0, descent = 0;
    double height() const { return ascent + descent; }
};
enum class TextAlign { left, centre, right };

/// What a curve covers of one narrow column: from top down to bottom; nothing when top is not above bottom.
struct Stripe {
    float top = 0, bottom = -1;
};

class Canvas {
public:
    virtual ~Canvas() = default;
    virtual void SetPen(const Pen& pen) = 0;
    virtual void SetBrush(Rgba fill) = 0; ///< alpha 0: no fill
    virtual void SetFont(const FontSpecD& font) = 0;
    virtual void Polyline(std::span<const PointD> points) = 0;
    virtual void Polygon(std::span<const PointD> points) = 0;
    virtual void Lines(std::span<const Segment> segments) = 0; ///< unconnected, one call for many
    /// Columns of equal width from x to the right, filled in the pen's colour: curves of any density come
    /// down to this on a raster. The columns should lie within device pixels; edges are antialiased.
    virtual void Stripes(double x, double stripe_width, std::span<const Stripe> stripes);
    /// Whether curves should come as Stripes (a raster) or as polylines (paper, SVG).
    virtual bool PrefersStripes() const { return false; }
    virtual void Rectangle(const RectD& rect) = 0;
    virtual void Ellipse(const RectD& rect) = 0;
    /// Text in the pen's colour; `at` lies on the base line, at the side that `align` names.
    virtual void Text(PointD at, std::string_view utf8, TextAlign align = TextAlign::left, double angle_deg = 0) = 0;
    virtual TextExtent Measure(std::string_view utf8) = 0;
    virtual void PushClip(const RectD& rect) = 0;
    virtual void PopClip() = 0;
    virtual void BeginGroup(std::string_view name) = 0;
    virtual void EndGroup() = 0;
    /// Device pixels (or finest steps) in one unit: how fine a curve is worth drawing.
    virtual double Resolution() const = 0;
};

} // namespace nmr
