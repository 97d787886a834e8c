#pragma once
// Drawings as SVG: text stays text, groups keep their names, curves are paths in steps of 1/9600 inch.
// The output hangs on nothing but what is drawn: no dates, no random names.
//
// Source: W3C, Scalable Vector Graphics (SVG) 1.1, second edition.

#include "layout/vector_canvas.h"

#include <functional>

namespace nmr {

/// Bytes of a PNG file with these pixels.
using PngEncoder = std::function<std::string(const Raster&)>;

class SvgCanvas : public VectorCanvas {
public:
    /// @param png for pictures of pixels; without it they are left out
    SvgCanvas(Canvas& metrics, PngEncoder png) : VectorCanvas(metrics), png_(std::move(png)) {}

    void Polyline(std::span<const PointD> points) override;
    void Polygon(std::span<const PointD> points) override;
    void Lines(std::span<const Segment> segments) override;
    void Rectangle(const RectD& rect) override;
    void Ellipse(const RectD& rect) override;
    void Picture(const RectD& rect, const Raster& raster) override;
    void Text(PointD at, std::string_view utf8, TextAlign align = TextAlign::left, double angle_deg = 0) override;
    void PushClip(const RectD& rect) override;
    void PopClip() override { body_ += "</g>\n"; }
    void BeginGroup(std::string_view name) override;
    void EndGroup() override { body_ += "</g>\n"; }

    /// The whole file. @param width, height canvas units
    std::string Finish(double width, double height, std::string_view title) const;

private:
    std::string LineStyle(std::string_view join) const;
    std::string FillStyle() const;
    void Path(const std::string& data, const std::string& style);
    void OpenPath(const std::string& data, const std::string& style);

    PngEncoder png_;
    std::string body_;
    int clips_ = 0;
    std::size_t open_end_ = 0; ///< where the last lines ended, and how they look
    std::string open_style_;
};

} // namespace nmr
