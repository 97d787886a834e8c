#pragma once
// What the canvases share that write picture files by themselves: the state of drawing, and letters that
// another canvas measures, because fonts are the toolkit's.

#include "layout/canvas.h"

#include <string>

namespace nmr {

/// Steps of a curve worth drawing on paper: finer ones would vanish in its line, which is 0.1 mm and more.
inline constexpr double kPaperDpi = 400;

class VectorCanvas : public Canvas {
public:
    /// @param metrics measures the letters; it must outlive this canvas, and its font is set here
    explicit VectorCanvas(Canvas& metrics) : metrics_(metrics) { SetFont({}); }

    void SetPen(const Pen& pen) override { pen_ = pen; }
    void SetBrush(Rgba fill) override { brush_ = fill; }
    void SetFont(const FontSpecD& font) override
    {
        family_ = font.family;
        font_ = font;
        font_.family = family_;
        metrics_.SetFont(font_);
    }
    TextExtent Measure(std::string_view utf8) override { return metrics_.Measure(utf8); }
    double Resolution() const override { return kPaperDpi / kUnitsPerInch; }

protected:
    bool HasLine() const { return pen_.style != PenStyle::none && pen_.color.alpha > 0; }
    bool HasFill() const { return brush_.alpha > 0; }
    const Pen& pen() const { return pen_; }
    Rgba brush() const { return brush_; }
    const FontSpecD& font() const { return font_; }

private:
    Canvas& metrics_;
    Pen pen_;
    Rgba brush_{0, 0, 0, 0};
    std::string family_;
    FontSpecD font_;
};

} // namespace nmr
