#include "ui/fft_panels.h"

#include "core/axis_ticks.h"
#include "layout/spectrum_scene.h"
#include "ui/canvas/qt_canvas.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace nmr {
namespace {

constexpr double kMargin = 14;
constexpr double kMarkReach = 6; // pixels on either side at which a mark can be taken hold of

void Fill(QtCanvas& canvas, const QWidget& widget, Rgba color)
{
    canvas.painter().fillRect(widget.rect(), ToQColor(color));
}

std::span<const float> ShownRow(const RowArray<float>& rows, std::int16_t row, std::size_t points)
{
    const auto r = static_cast<std::size_t>(row);
    return r < rows.rows() ? rows[r].first(std::min(points, rows.columns())) : std::span<const float>();
}

// A time axis under the FID; time runs to the right, so the frame counts it downwards from zero.
void DrawTimeAxis(Canvas& canvas, const PlotFrame& frame, const AxisStyle& style)
{
    canvas.SetPen(style.pen);
    canvas.SetFont(style.font);
    const double base = frame.rect.bottom(), h = canvas.Measure("X").ascent;
    const Segment line{{frame.rect.x, base}, {frame.rect.right(), base}};
    canvas.Lines(std::span(&line, 1));
    const double from = -frame.left_ppm, to = -frame.right_ppm;
    const Ticks ticks = AutoTic(from, to);
    if (ticks.step <= 0) return;
    const int decimals = TickDecimals(ticks.step);
    for (int i = 0; i < 100; ++i) {
        const double t = ticks.first + i * ticks.step;
        if (t > to + 1e-9 * (to - from)) break;
        const double x = frame.X(-t);
        const Segment tick{{x, base}, {x, base + h}};
        canvas.Lines(std::span(&tick, 1));
        canvas.Text({x, base + 2.6 * h}, fmt::format("{:.{}f}", t, decimals), TextAlign::centre);
    }
    canvas.Text({frame.rect.right() + kMargin - 4, base + 2.6 * h}, "s", TextAlign::right);
}

} // namespace

// ---- FID

double FidPanel::Dwell() const
{
    const double sweep = logic_.block().Slots[0].par.FREQU;
    return sweep > 0 ? 1 / sweep : 1.0;
}

void FidPanel::Refresh()
{
    GlobalBlock& g = logic_.block();
    points_ = static_cast<std::size_t>(std::max(g.Slots[0].par.FIDPoints, 1));
    const auto re = ShownRow(g.WorkRe, g.CurrentRow, points_), im = ShownRow(g.WorkIm, g.CurrentRow, points_);
    points_ = re.size();
    re_.Build(re);
    im_.Build(im);
    window_.Build(g.WindowCurve.from_zero().first(std::min(points_, g.WindowCurve.from_zero().size())));
    full_ = 1e-30;
    if (points_ > 0)
        for (const MinMaxPyramid* p : {&re_, &im_}) {
            const auto range = p->Over(0, points_ - 1);
            full_ =
                std::max({full_, std::abs(static_cast<double>(range.low)), std::abs(static_cast<double>(range.high))});
        }
    const double shift = g.Slots[0].par.FIDShift;
    view().SetWhole({std::max(0.0, shift) * Dwell(), -static_cast<double>(points_) * Dwell()});
    update();
}

PlotFrame FidPanel::Frame(QtCanvas& canvas)
{
    const AxisStyle style =
        AxisStyleOf(logic_.block().settings, logic_.block().Slots[0], ColorsOf(logic_.block().settings, dark()));
    canvas.SetFont(style.font);
    PlotFrame frame;
    const double axis = canvas.Measure("X").ascent * 3.2;
    frame.rect = {kMargin, 8, width() - 2 * kMargin, std::max(10.0, height() - 8 - axis)};
    frame.left_ppm = view().shown().left;
    frame.right_ppm = view().shown().right;
    frame.high = 1.05 / view().magnification();
    frame.low = -frame.high;
    return frame;
}

void FidPanel::Draw(QtCanvas& canvas, const PlotFrame& frame)
{
    const GlobalBlock& g = logic_.block();
    const PlotColors colors = ColorsOf(g.settings, dark());
    Fill(canvas, *this, colors.background);
    if (points_ < 2) return;
    const double dwell = Dwell(), first = g.Slots[0].par.FIDShift * dwell;
    PlotFrame scaled = frame;
    scaled.low *= full_;
    scaled.high *= full_;
    canvas.PushClip(frame.rect);
    DrawCurve(canvas, scaled, im_, ShownRow(g.WorkIm, g.CurrentRow, points_), first, -dwell, {colors.imaginary, 1});
    DrawCurve(canvas, scaled, re_, ShownRow(g.WorkRe, g.CurrentRow, points_), first, -dwell, {colors.curve, 1});
    PlotFrame unit = frame; // the window is drawn at its own height whatever the height of the FID
    unit.high = 1.05;
    unit.low = -1.05;
    DrawCurve(canvas, unit, window_, g.WindowCurve.from_zero().first(window_.size()), 0, -dwell, {colors.window, 2});
    if (g.Slots[0].par.FIDShift > 0) {
        const Segment zero{{frame.X(0), frame.rect.y}, {frame.X(0), frame.rect.bottom()}};
        canvas.SetPen({colors.mark, 1, PenStyle::dash});
        canvas.Lines(std::span(&zero, 1));
    }
    canvas.PopClip();
    DrawTimeAxis(canvas, frame, AxisStyleOf(g.settings, g.Slots[0], colors));
}

// ---- spectrum

PreviewPanel::Axis PreviewPanel::PreviewAxis() const
{
    const ParamBlock& par = logic_.block().Slots[0].par;
    Axis axis;
    const double n = std::max(par.POINT, 1);
    axis.referenced = par.FileRefMHz > 0;
    axis.hz_per_ppm = axis.referenced ? par.FileRefMHz : par.ObsCenter > 0 ? par.ObsCenter : 1;
    axis.step = static_cast<double>(par.FREQU) / n / axis.hz_per_ppm;
    const double centre = axis.referenced ? (par.ObsCenter - par.FileRefMHz) / par.FileRefMHz * 1e6 : 0;
    axis.first = centre - n / 2 * axis.step;
    return axis;
}

AxisStyle PreviewPanel::Style() const
{
    const GlobalBlock& g = logic_.block();
    AxisStyle style = AxisStyleOf(g.settings, g.Slots[0], ColorsOf(g.settings, dark()));
    const Axis axis = PreviewAxis();
    style.unit = XUnit::ppm;
    style.hz_per_ppm = axis.hz_per_ppm;
    style.individual = false;
    style.title = axis.referenced ? "ppm" : "ppm from the carrier";
    return style;
}

void PreviewPanel::Refresh()
{
    const GlobalBlock& g = logic_.block();
    const auto points = static_cast<std::size_t>(std::max(logic_.points(), 0));
    re_.Build(ShownRow(g.Slots[0].spec.DataRe, g.CurrentRow, points));
    im_.Build(ShownRow(g.Slots[0].spec.DataIm, g.CurrentRow, points));
    const Axis axis = PreviewAxis();
    const double n = static_cast<double>(points);
    view().SetWhole({axis.first + n * axis.step, axis.first});
    update();
}

PlotFrame PreviewPanel::Frame(QtCanvas& canvas)
{
    const AxisStyle style = Style();
    const double below = XAxisHeight(canvas, style) + 6, beside = std::max(kMargin, XAxisOverhang(canvas, style) + 6);
    PlotFrame frame;
    frame.rect = {kMargin, 8, width() - kMargin - beside, std::max(10.0, height() - 8 - below)};
    frame.left_ppm = view().shown().left;
    frame.right_ppm = view().shown().right;
    const auto& par = logic_.block().Slots[0].par;
    const double full = par.DispLeft > 0 ? static_cast<double>(par.DispLeft) : 1;
    frame.high = 1.08 * full / view().magnification();
    frame.low = -0.25 * full / view().magnification();
    return frame;
}

void PreviewPanel::Draw(QtCanvas& canvas, const PlotFrame& frame)
{
    const GlobalBlock& g = logic_.block();
    const PlotColors colors = ColorsOf(g.settings, dark());
    Fill(canvas, *this, colors.background);
    if (re_.size() < 2) return;
    const Axis axis = PreviewAxis();
    canvas.PushClip(frame.rect);
    const Segment zero{{frame.rect.x, frame.Y(0)}, {frame.rect.right(), frame.Y(0)}};
    canvas.SetPen({colors.grid, 1});
    canvas.Lines(std::span(&zero, 1));
    const auto& spec = g.Slots[0].spec;
    if (show_imaginary)
        DrawCurve(canvas, frame, im_, ShownRow(spec.DataIm, g.CurrentRow, im_.size()), axis.first, axis.step,
                  {colors.imaginary, 1});
    DrawCurve(canvas, frame, re_, ShownRow(spec.DataRe, g.CurrentRow, re_.size()), axis.first, axis.step,
              {colors.curve, 1});
    canvas.PopClip();
    DrawMark(canvas, frame, g.PivotPoint, "PP");
    if (g.P2Point >= 0) DrawMark(canvas, frame, g.P2Point, "P2");
    DrawXAxis(canvas, {frame.rect.x, frame.rect.bottom(), frame.rect.width, height() - frame.rect.bottom()},
              frame.left_ppm, frame.right_ppm, Style());
}

void PreviewPanel::DrawMark(QtCanvas& canvas, const PlotFrame& frame, std::int32_t point, const char* name) const
{
    const Axis axis = PreviewAxis();
    const double x = frame.X(axis.first + point * axis.step);
    if (x < frame.rect.x - 1 || x > frame.rect.right() + 1) return;
    const PlotColors colors = ColorsOf(logic_.block().settings, dark());
    canvas.SetPen({colors.mark, 1, PenStyle::dash});
    const Segment line{{x, frame.rect.y + 14}, {x, frame.rect.bottom()}};
    canvas.Lines(std::span(&line, 1));
    canvas.SetPen({colors.mark, 1});
    canvas.SetFont({"Liberation Sans", 12, true, false});
    canvas.Text({std::clamp(x, frame.rect.x + 9, frame.rect.right() - 9), frame.rect.y + 10}, name, TextAlign::centre);
}

double PreviewPanel::MarkX(std::int32_t point) const
{
    const Axis axis = PreviewAxis();
    return frame().X(axis.first + point * axis.step);
}

PreviewPanel::Mark PreviewPanel::NearestMark(double x) const
{
    const GlobalBlock& g = logic_.block();
    const double to_pivot = std::abs(MarkX(g.PivotPoint) - x);
    const double to_second = g.P2Point >= 0 ? std::abs(MarkX(g.P2Point) - x) : 1e9;
    if (std::min(to_pivot, to_second) > kMarkReach) return Mark::none;
    return to_second < to_pivot ? Mark::second : Mark::pivot;
}

bool PreviewPanel::GrabMark(double x)
{
    grabbed_ = NearestMark(x);
    return grabbed_ != Mark::none;
}

void PreviewPanel::MoveMark(double x)
{
    const Axis axis = PreviewAxis();
    const double place = (frame().Ppm(x) - axis.first) / axis.step;
    const auto point = static_cast<std::int32_t>(std::clamp(std::round(place), 0.0, logic_.points() - 1.0));
    if (grabbed_ == Mark::pivot) logic_.SetPivot(point);
    if (grabbed_ == Mark::second) logic_.SetSecond(point);
    if (mark_moved) mark_moved();
}

void PreviewPanel::DropMark()
{
    grabbed_ = Mark::none;
    if (mark_dropped) mark_dropped();
}

} // namespace nmr
