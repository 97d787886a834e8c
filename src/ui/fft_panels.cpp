#include "ui/fft_panels.h"

#include "layout/spectrum_scene.h"
#include "ui/canvas/qt_canvas.h"

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kMargin = 16;
constexpr double kMarkReach = 6;     // pixels on either side at which a mark can be taken hold of
constexpr double kWaitingReach = 11; // the same for a name without a line
constexpr double kMarkName = 10;     // from the top of the plot to the foot of a mark's name

void Fill(QtCanvas& canvas, const QWidget& widget, Rgba color)
{
    canvas.painter().fillRect(widget.rect(), ToQColor(color));
}

const char* PreviewTitle(const ParamBlock& par)
{
    return par.FileRefMHz > 0 ? "ppm" : "ppm from the carrier";
}

std::span<const float> ShownRow(const RowArray<float>& rows, std::int16_t row, std::size_t points)
{
    const auto r = static_cast<std::size_t>(row);
    return r < rows.rows() ? rows[r].first(std::min(points, rows.columns())) : std::span<const float>();
}

std::span<const float> WindowLine(const GlobalBlock& g, std::size_t points)
{
    if (g.WindowCurve.empty()) return {};
    const auto line = g.WindowCurve.from_zero();
    return line.first(std::min(points, line.size()));
}

// Room of a plot inside its panel, the same for both, so that their frames stand above each other.
RectD FrameRect(QtCanvas& canvas, const QWidget& panel, const AxisStyle& style)
{
    const double below = std::ceil(XAxisHeight(canvas, style)) + 6;
    const double beside = std::ceil(XAxisOverhang(canvas, style)) + 6;
    return {kMargin, 8, std::max(10.0, panel.width() - kMargin - beside), std::max(10.0, panel.height() - 8 - below)};
}

RectD AxisRect(const PlotFrame& frame, const QWidget& panel)
{
    return {frame.rect.x, frame.rect.bottom(), frame.rect.width, panel.height() - frame.rect.bottom()};
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
    const GlobalBlock& g = logic_.block();
    const ParamBlock& par = g.Slots[0].par;
    const auto measured = static_cast<std::size_t>(std::max(par.FIDPoints, 1));
    re_.Build(ShownRow(g.WorkRe, g.CurrentRow, measured));
    im_.Build(ShownRow(g.WorkIm, g.CurrentRow, measured));
    window_.Build(WindowLine(g, re_.size()));
    full_ = 1e-30;
    for (const SeenRow* part : {&re_, &im_}) {
        const auto range = part->Limits();
        full_ = std::max({full_, std::abs(static_cast<double>(range.low)), std::abs(static_cast<double>(range.high))});
    }
    const double shift = par.FIDShift;
    // A shift moves the left end only: who looks at the start of the FID goes on looking there.
    view().FollowWhole({std::max(0.0, shift) * Dwell(), -static_cast<double>(re_.size()) * Dwell()});
    update();
}

AxisStyle FidPanel::Style() const
{
    const GlobalBlock& g = logic_.block();
    AxisStyle style = AxisStyleOf(g.settings, g.Slots[0], ColorsOf(g.settings, dark()));
    style.unit = XUnit::ppm; // the axis counts as it is told, in seconds
    style.individual = false;
    style.title = "s";
    return style;
}

PlotFrame FidPanel::Frame(QtCanvas& canvas)
{
    PlotFrame frame;
    // As wide as the plot below, whatever the titles are.
    AxisStyle style = Style();
    style.title = PreviewTitle(logic_.block().Slots[0].par);
    frame.rect = FrameRect(canvas, *this, style);
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
    if (re_.size() < 2) return;
    const double dwell = Dwell(), first = g.Slots[0].par.FIDShift * dwell;
    PlotFrame scaled = frame;
    scaled.low *= full_;
    scaled.high *= full_;
    canvas.PushClip(frame.rect);
    im_.Draw(canvas, scaled, ShownRow(g.WorkIm, g.CurrentRow, im_.size()), first, -dwell, {colors.imaginary, 1});
    re_.Draw(canvas, scaled, ShownRow(g.WorkRe, g.CurrentRow, re_.size()), first, -dwell, {colors.curve, 1});
    PlotFrame unit = frame; // the window is drawn at its own height whatever the height of the FID
    unit.high = 1.05;
    unit.low = -1.05;
    window_.Draw(canvas, unit, WindowLine(g, window_.size()), 0, -dwell, {colors.window, 2});
    if (g.Slots[0].par.FIDShift > 0) {
        const Segment zero{{frame.X(0), frame.rect.y}, {frame.X(0), frame.rect.bottom()}};
        canvas.SetPen({colors.mark, 1, PenStyle::dash});
        canvas.Lines(std::span(&zero, 1));
    }
    canvas.PopClip();
    // Time runs to the right, so the frame counts it downwards from zero.
    DrawXAxis(canvas, AxisRect(frame, *this), -frame.left_ppm, -frame.right_ppm, Style());
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
    style.title = PreviewTitle(g.Slots[0].par);
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
    low_share_ = LowShare();
    update();
}

double PreviewPanel::LowShare() const
{
    const double full = static_cast<double>(logic_.block().Slots[0].par.DispLeft);
    if (re_.size() < 1 || !(full > 0)) return 0.25;
    const double needed = -1.08 * static_cast<double>(re_.Limits().low) / full;
    for (const double share : {0.25, 0.6})
        if (needed <= share) return share;
    return 1.08;
}

PlotFrame PreviewPanel::Frame(QtCanvas& canvas)
{
    PlotFrame frame;
    frame.rect = FrameRect(canvas, *this, Style());
    frame.left_ppm = view().shown().left;
    frame.right_ppm = view().shown().right;
    const auto& par = logic_.block().Slots[0].par;
    const double full = par.DispLeft > 0 ? static_cast<double>(par.DispLeft) : 1;
    frame.high = 1.08 * full / view().magnification();
    frame.low = -low_share_ * full / view().magnification();
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
        im_.Draw(canvas, frame, ShownRow(spec.DataIm, g.CurrentRow, im_.size()), axis.first, axis.step,
                 {colors.imaginary, 1});
    re_.Draw(canvas, frame, ShownRow(spec.DataRe, g.CurrentRow, re_.size()), axis.first, axis.step, {colors.curve, 1});
    canvas.PopClip();
    DrawMarks(canvas, frame);
    DrawXAxis(canvas, AxisRect(frame, *this), frame.left_ppm, frame.right_ppm, Style());
}

void PreviewPanel::DrawMarks(QtCanvas& canvas, const PlotFrame& frame) const
{
    const GlobalBlock& g = logic_.block();
    const PlotColors colors = ColorsOf(g.settings, dark());
    const double pivot = PointX(frame, g.PivotPoint), second = SecondX(frame);
    canvas.SetFont({"Liberation Sans", 12, true, false});
    const auto draw = [&](double x, const char* name, double label_y) {
        if (x < frame.rect.x - 1 || x > frame.rect.right() + 1) return;
        canvas.SetPen({colors.mark, 1, PenStyle::dash});
        const Segment line{{x, label_y + 4}, {x, frame.rect.bottom()}};
        canvas.Lines(std::span(&line, 1));
        canvas.SetPen({colors.mark, 1});
        canvas.Text({std::clamp(x, frame.rect.x + 9, frame.rect.right() - 9), label_y}, name, TextAlign::centre);
    };
    draw(pivot, "PP", frame.rect.y + kMarkName);
    const bool names_meet = std::abs(pivot - second) < 22;
    if (g.P2Point >= 0) {
        draw(second, "P2", frame.rect.y + (names_meet ? 2.2 : 1) * kMarkName);
        return;
    }
    // Without a second mark its name waits in the corner to be dragged in.
    canvas.SetPen({colors.mark, 1});
    canvas.Text({second, frame.rect.y + (names_meet ? 2.2 : 1) * kMarkName}, "P2", TextAlign::centre);
}

double PreviewPanel::PointX(const PlotFrame& frame, std::int32_t point) const
{
    const Axis axis = PreviewAxis();
    return frame.X(axis.first + point * axis.step);
}

double PreviewPanel::SecondX(const PlotFrame& frame) const
{
    const std::int32_t second = logic_.block().P2Point;
    return second >= 0 ? PointX(frame, second) : frame.rect.right() - 9;
}

PreviewPanel::Mark PreviewPanel::NearestMark(PointD at) const
{
    const GlobalBlock& g = logic_.block();
    const double to_pivot = std::abs(PointX(frame(), g.PivotPoint) - at.x);
    double to_second = std::abs(SecondX(frame()) - at.x);
    if (g.P2Point < 0 && at.y > frame().rect.y + 3 * kMarkName) to_second = 2 * kWaitingReach;
    const double reach = g.P2Point < 0 && to_second < to_pivot ? kWaitingReach : kMarkReach;
    if (std::min(to_pivot, to_second) > reach) return Mark::none;
    return to_second < to_pivot ? Mark::second : Mark::pivot;
}

bool PreviewPanel::GrabMark(double x)
{
    grabbed_ = NearestMark({x, cursor_y()});
    return grabbed_ != Mark::none;
}

void PreviewPanel::MoveMark(double x)
{
    const Axis axis = PreviewAxis();
    const double place = (frame().Ppm(x) - axis.first) / axis.step;
    const auto point = static_cast<std::int32_t>(std::clamp(std::round(place), 0.0, logic_.points() - 1.0));
    if (grabbed_ == Mark::pivot) logic_.SetPivot(point);
    // Dragged out of the plot, the second mark is taken away.
    const bool inside = x >= frame().rect.x - kMarkReach && x <= frame().rect.right() + kMarkReach;
    if (grabbed_ == Mark::second) logic_.SetSecond(inside ? point : -1);
    if (mark_moved) mark_moved();
}

void PreviewPanel::DropMark()
{
    grabbed_ = Mark::none;
    if (mark_dropped) mark_dropped();
}

} // namespace nmr
