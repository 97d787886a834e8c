#pragma once
// The drawing surface that everything draws on: screen, printer, pictures and the recording canvas
// of the tests. Coordinates are in the canvas's own units (logical pixels, or points of 1/72 inch on
// paper), y runs down, angles are degrees counter-clockwise.

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace nmr {

struct Rgba {
    std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
    friend bool operator==(const Rgba&, const Rgba&) = default;
};
/// Colour of a setting: red + 256 green + 65536 blue.
Rgba FromSetting(std::int32_t color);
std::int32_t ToSetting(Rgba color);

/// Canvas units of usual lengths where a canvas stands for paper: its unit is 1/96 inch.
inline constexpr double kUnitsPerInch = 96, kMillimetresPerInch = 25.4;
inline constexpr double kUnitsPerMillimetre = kUnitsPerInch / kMillimetresPerInch;
inline constexpr double kUnitsPerPoint = kUnitsPerInch / 72;

enum class PenStyle { none, solid, dash, dot, dash_dot, dash_dot_dot };
struct Pen {
    Rgba color;
    double width = 1.0; ///< canvas units; below one device pixel, 0 included, one pixel on a raster
    PenStyle style = PenStyle::solid;
};
/// Lengths of a style's dashes and of the gaps behind them, in turns, in canvas units; empty for a solid line.
std::vector<double> DashesOf(const Pen& pen);

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

/// A picture of pixels, row by row from the upper left corner; `pixels` holds width times height of them.
struct Raster {
    int width = 0, height = 0;
    std::span<const Rgba> pixels;
    bool valid() const
    {
        return width > 0 && height > 0 && pixels.size() / static_cast<std::size_t>(width) >= std::size_t(height);
    }
};

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
    /// A part of the line of an ellipse; angles counter-clockwise from its right end.
    virtual void Arc(const RectD& rect, double start_deg, double sweep_deg);
    /// Pixels spread over a rectangle; one that is not valid draws nothing.
    virtual void Picture(const RectD& rect, const Raster& raster) = 0;
    /// Text in the pen's colour; `at` lies on the base line, at the side that `align` names.
    virtual void Text(PointD at, std::string_view utf8, TextAlign align = TextAlign::left, double angle_deg = 0) = 0;
    virtual TextExtent Measure(std::string_view utf8) = 0;
    virtual void PushClip(const RectD& rect) = 0;
    virtual void PopClip() = 0;
    /// A named part of the drawing, which formats that know of groups keep; groups and clips nest.
    virtual void BeginGroup(std::string_view name) = 0;
    virtual void EndGroup() = 0;
    /// Device pixels (or finest steps) in one unit: how fine a curve is worth drawing.
    virtual double Resolution() const = 0;
};

} // namespace nmr
