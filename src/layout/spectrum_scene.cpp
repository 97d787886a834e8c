#include "layout/spectrum_scene.h"

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kFill = 0.95;         ///< share of the height above zero that the highest point takes
constexpr double kFoot = 0.04;         ///< room below the base line, of the full height, for its noise
constexpr double kBelowNegative = 1.1; ///< room for negative signals, of their depth
// White paper becomes this grey in the dark, black ink nearly white.
constexpr double kDarkGround = 0.115, kDarkSpan = 0.82;

double Lightness(double red, double green, double blue)
{
    return (std::max({red, green, blue}) + std::min({red, green, blue})) / 2;
}

std::uint8_t Byte(double share)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(share, 0.0, 1.0) * 255));
}

double PenWidth(double setting)
{
    return std::clamp(setting, 1.0, 20.0);
}

/// Lines as they are on paper, where settings count in tenths of a mm.
void ThinForPaper(SpectrumScene& scene, const Settings& settings)
{
    constexpr double kUnit = 0.1 * kUnitsPerMillimetre;
    scene.axis.pen.width = PenWidth(settings.draw_width_axis) * kUnit;
    scene.grid.pen.width = PenWidth(settings.grid_width) * kUnit;
    scene.peaks.line.width = scene.peaks.top.width = PenWidth(settings.draw_width_peak) * kUnit;
    scene.integrals.curve.width = PenWidth(settings.draw_width_integ) * kUnit;
    for (SceneCurve& curve : scene.curves) curve.pen.width = PenWidth(settings.draw_width_spec) * kUnit;
    scene.background = FromSetting(settings.col_bg_print);
    if (settings.col_bg_print_trans != 0) scene.background.alpha = 0;
}

FontSpecD AxisFont(const Settings& settings)
{
    const double size = settings.disp_axfont_size;
    return {"Liberation Sans", std::clamp(size > 0 ? size : 10.0, 6.0, 72.0) * 96 / 72, settings.disp_axfont_bold != 0,
            settings.disp_axfont_italic != 0};
}

std::string_view UnitName(XUnit unit)
{
    constexpr std::string_view kNames[] = {"ppm", "Hz", "kHz"};
    return kNames[static_cast<std::size_t>(unit)];
}

/// The label of the set, which the settings fill; the bare unit where there is none.
std::string TitleOfAxis(const DataSet& set, XUnit unit)
{
    constexpr std::string DataSet::*kLabels[] = {&DataSet::XLabelPpm, &DataSet::XLabelHz, &DataSet::XLabelKHz};
    const std::string& label = set.*kLabels[static_cast<std::size_t>(unit)];
    return label.empty() ? std::string(UnitName(unit)) : label;
}

std::string TitleOf(const DataSet& set)
{
    const ParamBlock& par = set.par;
    for (const std::string* text : {&par.ExpTitle, &par.SampleName, &par.COMNT})
        if (!text->empty()) return text->substr(0, text->find_first_of("\r\n"));
    return {};
}

SceneCurve MakeCurve(const DataSet& set, const SceneOptions& options, std::shared_ptr<const MinMaxPyramid> pyramid)
{
    SceneCurve curve;
    const auto points = static_cast<std::size_t>(set.par.POINT);
    const bool instead = options.instead.size() >= points;
    curve.row =
        instead ? options.instead.first(points) : set.spec.DataRe[static_cast<std::size_t>(options.row)].first(points);
    if (!pyramid || pyramid->size() != points) {
        auto own = std::make_shared<MinMaxPyramid>();
        own->Build(curve.row);
        pyramid = std::move(own);
    }
    curve.pyramid = std::move(pyramid);
    curve.first_ppm = set.spec.XAxis.front();
    // The ends of the axis give the step that all points fit best.
    curve.step_ppm = points > 1 ? (set.spec.XAxis[points - 1] - curve.first_ppm) / static_cast<double>(points - 1) : 1;
    return curve;
}

/// The coloured regions of one row, the larger shift first; rows of an array are told apart otherwise.
std::vector<SceneRegion> RegionsOf(const DataSet& set, const Settings& settings, bool dark)
{
    std::vector<SceneRegion> regions;
    if (settings.r_color_disp == 0 || set.RowCount > 1) return regions;
    for (const RegionColor& region : set.Regions) {
        const auto [low, high] = std::minmax({static_cast<double>(region.Start), static_cast<double>(region.End)});
        if (region.Color < 0 || !(low < high)) continue;
        const Rgba color = FromSetting(region.Color);
        regions.push_back({high, low, dark ? ForDarkGround(color) : color});
    }
    std::ranges::sort(regions, std::ranges::greater{}, &SceneRegion::left_ppm);
    return regions;
}

/// The part of a frame between two positions on its axis, on whole device pixels, so that parts fit together.
PlotFrame PartOf(const PlotFrame& frame, double left_ppm, double right_ppm, double resolution)
{
    const auto pixel = [&](double ppm) {
        const double x = std::clamp(frame.X(ppm), frame.rect.x, frame.rect.right());
        return std::round(x * resolution) / resolution;
    };
    PlotFrame part = frame;
    part.rect.x = pixel(left_ppm);
    part.rect.width = pixel(right_ppm) - part.rect.x;
    part.left_ppm = frame.Ppm(part.rect.x);
    part.right_ppm = frame.Ppm(part.rect.right());
    return part;
}

void DrawPart(Canvas& canvas, const PlotFrame& frame, const SceneCurve& curve, const Rgba& color)
{
    if (frame.rect.width <= 0) return;
    Pen pen = curve.pen;
    pen.color = color;
    DrawCurve(canvas, frame, *curve.pyramid, curve.row, curve.first_ppm, curve.step_ppm, pen);
}

/// A curve in its own colour, and in that of each region.
void DrawInParts(Canvas& canvas, const PlotFrame& frame, const SceneCurve& curve,
                 const std::vector<SceneRegion>& regions)
{
    double from = frame.left_ppm;
    for (const SceneRegion& region : regions) {
        if (region.right_ppm >= from || region.left_ppm <= frame.right_ppm) continue; // beside the shown range
        const double start = std::min(region.left_ppm, from);
        DrawPart(canvas, PartOf(frame, from, start, canvas.Resolution()), curve, curve.pen.color);
        DrawPart(canvas, PartOf(frame, start, region.right_ppm, canvas.Resolution()), curve, region.color);
        from = region.right_ppm;
    }
    if (from == frame.left_ppm)
        DrawPart(canvas, frame, curve, curve.pen.color);
    else
        DrawPart(canvas, PartOf(frame, from, frame.right_ppm, canvas.Resolution()), curve, curve.pen.color);
}

void AddMarks(SpectrumScene& scene, const DataSet& set, const Settings& settings, std::span<const float> row,
              const SceneOptions& options)
{
    const auto color = [dark = options.dark](std::int32_t setting) {
        return dark ? ForDarkGround(FromSetting(setting)) : FromSetting(setting);
    };
    scene.peaks = MakePeakMarks(set, row, settings, color(settings.peak_num_col));
    scene.peaks.top = {color(settings.peak_top_col), std::clamp(settings.disp_peaktopwidt, 1.0, 20.0), PenStyle::solid};
    // Their values are those of the real row, whatever is shown in its place.
    const auto real = set.spec.DataRe[static_cast<std::size_t>(options.row)].first(row.size());
    scene.integrals = MakeIntegralMarks(set, real, settings, color(settings.col_integ_value), options.integrals);
    scene.integrals.curve.color = color(settings.integral_col);
}

/// Heights that rows of labels take beside the plot.
struct LabelRows {
    double above = 0, integrals = 0, below = 0; ///< the last two below the axis, the integrals first
};

LabelRows RowsOf(Canvas& canvas, const SpectrumScene& scene)
{
    LabelRows rows;
    const double peaks = scene.peaks.empty() ? 0 : PeakRowHeight(canvas, scene.peaks);
    (scene.peaks.at_bottom ? rows.below : rows.above) = peaks;
    rows.integrals = scene.integrals.empty() ? 0 : IntegralRowHeight(canvas, scene.integrals);
    return rows;
}

void DrawMarks(Canvas& canvas, const PlotFrame& frame, const SpectrumScene& scene)
{
    const LabelRows rows = RowsOf(canvas, scene);
    const double under_axis = frame.rect.bottom() + XAxisHeight(canvas, scene.axis);
    const SceneCurve& curve = scene.curves.front();
    if (!scene.integrals.empty())
        DrawIntegralMarks(canvas, frame, scene.integrals, curve.first_ppm, curve.step_ppm, under_axis);
    if (!scene.peaks.empty())
        DrawPeakMarks(canvas, frame, scene.peaks, scene.peaks.at_bottom ? under_axis + rows.integrals : frame.rect.y);
}

bool CanShow(const DataSet& set, std::int32_t row)
{
    const auto points = static_cast<std::size_t>(std::max(0, set.par.POINT));
    return !IsEmpty(set) && row >= 0 && static_cast<std::size_t>(row) < set.spec.DataRe.rows() &&
           set.spec.DataRe.columns() >= points && set.spec.XAxis.size() >= points;
}

} // namespace

std::vector<float> AbsoluteRow(const DataSet& set, std::int32_t row)
{
    if (!CanShow(set, row)) return {};
    const auto points = static_cast<std::size_t>(set.par.POINT);
    const auto re = set.spec.DataRe[static_cast<std::size_t>(row)].first(points);
    std::vector<float> absolute(re.begin(), re.end());
    const bool complex = static_cast<std::size_t>(row) < set.spec.DataIm.rows() && set.spec.DataIm.columns() >= points;
    for (std::size_t i = 0; i < points; ++i)
        absolute[i] = complex ? std::hypot(re[i], set.spec.DataIm[static_cast<std::size_t>(row)][i]) : std::abs(re[i]);
    return absolute;
}

Rgba ForDarkGround(Rgba color)
{
    const double red = color.red / 255.0, green = color.green / 255.0, blue = color.blue / 255.0;
    const double old_light = Lightness(red, green, blue);
    const double new_light = kDarkGround + (1 - old_light) * kDarkSpan;
    // Same hue, same share of the colourfulness that the lightness allows.
    const double old_room = std::min(old_light, 1 - old_light), new_room = std::min(new_light, 1 - new_light);
    const double stretch = old_room > 0 ? new_room / old_room : 0;
    const auto turned = [&](double part) { return Byte(new_light + (part - old_light) * stretch); };
    return {turned(red), turned(green), turned(blue), color.alpha};
}

PlotColors ColorsOf(const Settings& settings, bool dark)
{
    PlotColors colors;
    colors.background = FromSetting(settings.col_background);
    colors.curve = FromSetting(settings.main_spect_col);
    colors.imaginary = FromSetting(settings.image_data_col);
    colors.window = FromSetting(settings.window_func_col);
    colors.axis = colors.text = FromSetting(settings.x_axis_col);
    colors.grid = FromSetting(settings.grid_col);
    colors.mark = FromSetting(settings.cursor_col_start);
    if (!dark) return colors;
    for (Rgba* color : {&colors.background, &colors.curve, &colors.imaginary, &colors.window, &colors.axis,
                        &colors.text, &colors.grid, &colors.mark})
        *color = ForDarkGround(*color);
    return colors;
}

IntensityRange ChooseIntensityRange(const MinMaxPyramid& pyramid, const DataSet& set, double magnification)
{
    IntensityRange range;
    if (pyramid.size() == 0) return range;
    const auto all = pyramid.Over(0, pyramid.size() - 1);
    const double highest = static_cast<double>(all.high), lowest = static_cast<double>(all.low);
    if (!std::isfinite(highest) || !std::isfinite(lowest)) return range;
    range.full = std::max(highest, static_cast<double>(set.par.DispLeft));
    if (!(range.full > 0)) range.full = std::max(-lowest, 1e-30);
    const double base = std::clamp(static_cast<double>(set.par.DispBase), 0.0, 0.9);
    const double scale = magnification > 0 && std::isfinite(magnification) ? 1 / magnification : 1;
    range.high = range.full / kFill * scale;
    range.low = std::min(-(base + kFoot) * range.full, kBelowNegative * lowest) * scale;
    return range;
}

AxisStyle AxisStyleOf(const Settings& settings, const DataSet& set, const PlotColors& colors)
{
    AxisStyle style;
    const bool has_frequency = set.par.OBFRQ0PPM > 0;
    if (has_frequency && settings.axis_mode_ppm >= 0 && settings.axis_mode_ppm <= 2)
        style.unit = static_cast<XUnit>(settings.axis_mode_ppm);
    style.hz_per_ppm = has_frequency ? set.par.OBFRQ0PPM : 1;
    style.individual = settings.axis_tic_mode != 0;
    style.step_ppm = settings.axis_tic_step;
    style.step_hz = settings.axis_tic_step_2;
    const int divisions = style.unit == XUnit::ppm ? settings.axis_tic_div : settings.axis_tic_div_2;
    style.divisions = std::clamp(divisions, 1, 100);
    style.title = TitleOfAxis(set, style.unit);
    style.pen = {colors.axis, PenWidth(settings.disp_axis_width), PenStyle::solid};
    style.text = colors.text;
    style.font = AxisFont(settings);
    return style;
}

GridStyle GridStyleOf(const Settings& settings, const PlotColors& colors)
{
    GridStyle style;
    style.x_auto = settings.grid_x_auto != 0;
    style.y_auto = settings.grid_y_auto != 0;
    style.x_step_ppm = settings.grid_x_inc;
    style.x_step_hz = settings.grid_x_inc_hz;
    style.y_step = settings.grid_y_inc;
    style.pen = {colors.grid, PenWidth(settings.disp_grid_width), PenStyle::solid};
    return style;
}

SpectrumScene MakeScene(const DataSet& set, const Settings& settings, const SceneOptions& options,
                        std::shared_ptr<const MinMaxPyramid> pyramid)
{
    const PlotColors colors = ColorsOf(settings, options.dark);
    SpectrumScene scene;
    scene.axis = AxisStyleOf(settings, set, colors);
    scene.grid = GridStyleOf(settings, colors);
    scene.show_grid = settings.display_grid != 0;
    scene.background = colors.background;
    scene.text = colors.text;
    scene.left_ppm = options.left_ppm;
    scene.right_ppm = options.right_ppm;
    if (options.paper) ThinForPaper(scene, settings); // also where there is nothing but the ground
    if (!CanShow(set, options.row)) return scene;
    if (options.title) scene.title = TitleOf(set);
    SceneCurve curve = MakeCurve(set, options, std::move(pyramid));
    curve.pen = {colors.curve, PenWidth(settings.disp_spec_width), PenStyle::solid};
    if (scene.left_ppm == scene.right_ppm) {
        const double last = curve.first_ppm + curve.step_ppm * static_cast<double>(curve.row.size() - 1);
        scene.left_ppm = std::max(curve.first_ppm, last);
        scene.right_ppm = std::min(curve.first_ppm, last);
    }
    const IntensityRange range = ChooseIntensityRange(*curve.pyramid, set, options.magnification);
    scene.low = range.low;
    scene.high = range.high;
    scene.grid.y_full = range.full;
    scene.regions = RegionsOf(set, settings, options.dark);
    if (options.marks) AddMarks(scene, set, settings, curve.row, options);
    scene.curves.push_back(std::move(curve));
    if (options.paper) ThinForPaper(scene, settings);
    return scene;
}

PlotFrame SceneFrame(Canvas& canvas, const RectD& rect, const SpectrumScene& scene)
{
    PlotFrame frame{rect, scene.left_ppm, scene.right_ppm, scene.low, scene.high};
    if (!scene.show_axis) return frame;
    const double right = XAxisOverhang(canvas, scene.axis);
    double below = XAxisHeight(canvas, scene.axis);
    const double letter = canvas.Measure("X").height();
    const double left = right - XAxisTitleWidth(canvas, scene.axis);
    double above = 0.6 * letter;
    if (!scene.title.empty()) {
        canvas.SetFont(scene.title_font);
        above += canvas.Measure("X").height();
    }
    const LabelRows rows = RowsOf(canvas, scene);
    above += rows.above;
    below += rows.integrals + rows.below;
    // Whole units, so that the axis lies on pixels.
    frame.rect.x = std::round(rect.x + left);
    frame.rect.y = std::round(rect.y + above);
    frame.rect.width = std::max(1.0, std::floor(rect.right() - right) - frame.rect.x);
    frame.rect.height = std::max(1.0, std::floor(rect.bottom() - below) - frame.rect.y);
    return frame;
}

void DrawSpectrumScene(Canvas& canvas, const RectD& rect, const SpectrumScene& scene)
{
    if (scene.background.alpha > 0) {
        canvas.SetPen({scene.background, 0, PenStyle::none});
        canvas.SetBrush(scene.background);
        canvas.Rectangle(rect);
        canvas.SetBrush({0, 0, 0, 0});
    }
    const PlotFrame frame = SceneFrame(canvas, rect, scene);
    if (scene.show_grid && !scene.curves.empty()) DrawGrid(canvas, frame, scene.axis, scene.grid);
    canvas.BeginGroup("spectra");
    for (std::size_t i = 0; i < scene.curves.size(); ++i)
        DrawInParts(canvas, frame, scene.curves[i], i == 0 ? scene.regions : std::vector<SceneRegion>());
    canvas.EndGroup();
    if (scene.show_axis && !scene.curves.empty()) {
        const RectD below{frame.rect.x, frame.rect.bottom(), frame.rect.width, rect.bottom() - frame.rect.bottom()};
        DrawXAxis(canvas, below, frame.left_ppm, frame.right_ppm, scene.axis);
    }
    if (!scene.curves.empty()) DrawMarks(canvas, frame, scene);
    if (scene.title.empty()) return;
    const double above = RowsOf(canvas, scene).above;
    canvas.SetFont(scene.title_font);
    canvas.SetPen({scene.text, 1, PenStyle::solid});
    canvas.Text({frame.rect.x, frame.rect.y - above - 0.4 * canvas.Measure("X").height()}, scene.title);
}

} // namespace nmr
