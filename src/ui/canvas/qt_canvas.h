#pragma once
// The Canvas over a QPainter: window, printer, picture files.

#include "layout/vector_canvas.h"

#include <QImage>
#include <QPainter>

#include <vector>

namespace nmr {

class LetterFace;

QColor ToQColor(Rgba color);
QString ToQString(std::string_view utf8);
/// A copy of the pixels; a null image for a raster that is not valid.
QImage ToQImage(const Raster& raster);

/// Draws on a painter that is active as long as the canvas lives. Rasters get axis-parallel lines on
/// whole device pixels, so that they are crisp at any scale, and curves as stripes; paper and SVG get
/// what they are told, as paths.
class QtCanvas : public Canvas {
public:
    enum class Target { raster, vector };
    /// @param vector_resolution finest steps in one unit worth drawing on a vector target
    explicit QtCanvas(QPainter& painter, Target target = Target::raster,
                      double vector_resolution = kPaperDpi / kUnitsPerInch);

    void SetPen(const Pen& pen) override;
    void SetBrush(Rgba fill) override;
    void SetFont(const FontSpecD& font) override;
    void Polyline(std::span<const PointD> points) override;
    void Polygon(std::span<const PointD> points) override;
    void Lines(std::span<const Segment> segments) override;
    void Stripes(double x, double stripe_width, std::span<const Stripe> stripes) override;
    bool PrefersStripes() const override { return straight_; }
    void Rectangle(const RectD& rect) override;
    void Ellipse(const RectD& rect) override;
    void Picture(const RectD& rect, const Raster& raster) override;
    void Text(PointD at, std::string_view utf8, TextAlign align = TextAlign::left, double angle_deg = 0) override;
    TextExtent Measure(std::string_view utf8) override;
    void PushClip(const RectD& rect) override;
    void PopClip() override;
    void BeginGroup(std::string_view name) override;
    void EndGroup() override;
    double Resolution() const override { return resolution_; }

    QPainter& painter() { return painter_; }

private:
    int PenPixels() const;
    void FillPixels(double x, double y, double width, double height);
    bool DrawPixelLine(const Segment& segment);

    QPainter& painter_;
    bool straight_; ///< a raster that is only moved and scaled: device pixels can be aimed at
    double resolution_;
    Pen pen_;
    LetterFace* face_ = nullptr;
    double em_ = 10;
    bool underline_ = false, strikeout_ = false;
    std::vector<QRectF> clips_;
};

} // namespace nmr
