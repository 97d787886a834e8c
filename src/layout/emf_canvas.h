#pragma once
// Drawings as enhanced metafile, for office programs: lines as 16-bit records in a page window of 0.01 mm, text
// as UTF-16 with the width of every letter, so that it stands alike also where the font is missing.
//
// The format knows no opacity: colours are mixed with the white of the paper. Dashes are drawn one by one, since
// players take them for whole lines or have lengths of their own. The records are written here
// because the library that Debian has for them clips nothing and knows neither poly-polylines nor comments, and
// because a file must hang on nothing but what is drawn.

#include "layout/emf_records.h"
#include "layout/vector_canvas.h"

#include <optional>
#include <vector>

namespace nmr {

class EmfCanvas : public VectorCanvas {
public:
    /// @param width, height canvas units. Steps are 0.01 mm; pictures above 320 mm get coarser ones, as 16 bits ask.
    EmfCanvas(Canvas& metrics, double width, double height);

    void Polyline(std::span<const PointD> points) override;
    void Polygon(std::span<const PointD> points) override;
    void Lines(std::span<const Segment> segments) override;
    void Rectangle(const RectD& rect) override;
    void Ellipse(const RectD& rect) override;
    void Picture(const RectD& rect, const Raster& raster) override;
    void Text(PointD at, std::string_view utf8, TextAlign align = TextAlign::left, double angle_deg = 0) override;
    void PushClip(const RectD& rect) override;
    void PopClip() override;
    void BeginGroup(std::string_view name) override;
    void EndGroup() override;

    /// The whole file. @param title UTF-8
    std::string Finish(std::string_view title);

private:
    struct Step {
        std::int32_t x = 0, y = 0;
        friend bool operator==(const Step&, const Step&) = default;
    };
    /// One of the three kinds of objects, in two indices that take turns: the new one is selected before the old
    /// one goes.
    struct Tool {
        std::int32_t first; ///< the lower index
        std::int32_t stock; ///< selected when the tool is not in use
        std::string key{};  ///< of what is selected; empty: the stock object
        bool upper = false; ///< which index holds it
        bool made = false;  ///< whether there is an object at the index
    };

    std::int32_t Length(double units) const;
    Step At(PointD point) const { return {Length(point.x), Length(point.y)}; }
    std::vector<Step> Steps(std::span<const PointD> points) const;
    EmfRect RectOf(const RectD& rect) const;
    void PutPoints(EmfType type, const std::vector<Step>& points);
    void PutParts(const std::vector<std::vector<PointD>>& parts);
    bool IsDashed() const { return HasLine() && pen().style != PenStyle::solid; }
    enum class Join : std::int32_t { bevel = 0x1000, miter = 0x2000 };
    /// A closed shape by `put`, and its outline in dashes where the pen has them.
    template <class Put>
    void Shape(std::span<const PointD> outline, Put put);
    template <class Create>
    void Use(Tool& tool, const std::string& key, Create create);
    void UseStock(Tool& tool);
    void DropTools();
    void UsePen(Join join);
    void UseBrush();
    void UseFont(double angle_deg);
    void PutFont(std::int32_t index, std::int32_t tenths);
    std::vector<std::int32_t> Advances(std::string_view utf8);

    EmfRecords out_;
    double steps_; ///< in one canvas unit
    std::int32_t width_hmm_, height_hmm_;
    Tool pen_tool_, brush_tool_, font_tool_;
    std::optional<Rgba> text_color_;
};

} // namespace nmr
