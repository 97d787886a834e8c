#pragma once
// A canvas that writes down what it is told, in order, as readable lines, and keeps the shapes for
// tests of geometry. Letters are 0.6 of the font size wide.

#include "layout/canvas.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace nmr::test {

class RecordingCanvas : public Canvas {
public:
    struct TextItem {
        PointD at;
        std::string text;
        TextAlign align;
        RectD box; ///< that the letters take, without rotation
        double angle = 0;
    };

    struct Strip { ///< of one call of Stripes
        double x = 0, width = 0;
        Pen pen;
    };

    explicit RecordingCanvas(double resolution = 1, bool raster = true) : resolution_(resolution), stripes_(raster) {}

    void SetPen(const Pen& pen) override { pen_ = pen; }
    void SetBrush(Rgba fill) override { brush_ = fill; }
    void SetFont(const FontSpecD& font) override { size_ = font.size; }
    void Polyline(std::span<const PointD> points) override
    {
        polylines.emplace_back(points.begin(), points.end());
        Log(fmt::format("polyline {}", Points(points)));
    }
    void Polygon(std::span<const PointD> points) override { Log(fmt::format("polygon {}", Points(points))); }
    void Lines(std::span<const Segment> segments) override
    {
        for (const Segment& s : segments) {
            lines.push_back(s);
            Log(fmt::format("line {:.2f},{:.2f} {:.2f},{:.2f}", s.from.x, s.from.y, s.to.x, s.to.y));
        }
    }
    void Stripes(double x, double stripe_width, std::span<const Stripe> in) override
    {
        stripes_x = x;
        stripes_width = stripe_width;
        stripes.assign(in.begin(), in.end());
        strips.push_back({x, stripe_width * static_cast<double>(in.size()), pen_});
        Log(fmt::format("stripes {} from {:.2f} width {:.3f}", in.size(), x, stripe_width));
    }
    bool PrefersStripes() const override { return stripes_; }
    void Rectangle(const RectD& r) override
    {
        Log(fmt::format("rectangle {:.2f},{:.2f} {:.2f}x{:.2f}", r.x, r.y, r.width, r.height));
    }
    void Ellipse(const RectD& r) override
    {
        Log(fmt::format("ellipse {:.2f},{:.2f} {:.2f}x{:.2f}", r.x, r.y, r.width, r.height));
    }
    void Picture(const RectD& r, const Raster& raster) override
    {
        Log(fmt::format("picture {:.2f},{:.2f} {:.2f}x{:.2f} of {}x{}", r.x, r.y, r.width, r.height, raster.width,
                        raster.height));
    }
    void Text(PointD at, std::string_view utf8, TextAlign align, double angle_deg) override
    {
        const TextExtent e = Measure(utf8);
        const double shift = align == TextAlign::left ? 0 : align == TextAlign::centre ? e.width / 2 : e.width;
        texts.push_back(
            {at, std::string(utf8), align, {at.x - shift, at.y - e.ascent, e.width, e.height()}, angle_deg});
        Log(fmt::format("text {:.2f},{:.2f} {} \"{}\"", at.x, at.y, angle_deg, utf8));
    }
    TextExtent Measure(std::string_view utf8) override
    {
        return {0.6 * size_ * static_cast<double>(utf8.size()), 0.9 * size_, 0.2 * size_};
    }
    void PushClip(const RectD&) override { Log("clip"); }
    void PopClip() override { Log("unclip"); }
    void BeginGroup(std::string_view name) override { Log(fmt::format("begin {}", name)); }
    void EndGroup() override { Log("end"); }
    double Resolution() const override { return resolution_; }

    std::string log;
    std::vector<std::vector<PointD>> polylines;
    std::vector<Segment> lines;
    std::vector<TextItem> texts;
    std::vector<Stripe> stripes;
    double stripes_x = 0, stripes_width = 0;
    std::vector<Strip> strips;

private:
    void Log(const std::string& line) { log += line + "\n"; }
    static std::string Points(std::span<const PointD> points)
    {
        std::string text;
        for (const PointD& p : points) text += fmt::format("{:.2f},{:.2f} ", p.x, p.y);
        return text;
    }
    double resolution_, size_ = 10;
    bool stripes_;
    Pen pen_;
    Rgba brush_;
};

} // namespace nmr::test
