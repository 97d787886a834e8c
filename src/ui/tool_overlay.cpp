#include "ui/tool_overlay.h"

#include "core/list_values.h"
#include "layout/spectrum_scene.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/theme.h"

#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kReach = 6;     // pixels around a mark that take hold of it
constexpr double kLeastDrag = 4; // a shorter way is a click
constexpr double kFlagPadding = 4, kFlagGap = 6;
constexpr double kDot = 3.5;
constexpr double kDash = 6, kDashGap = 4;
constexpr int kBandAlpha = 50;
// Visible on light and dark ground, and on a curve in its usual colour.
const QColor kMark(213, 94, 0), kSelection(0, 158, 115);

struct LevelRow {
    ToolAction action;
    const char* label;
    std::int32_t Settings::*color;
};
constexpr LevelRow kLevels[] = {{ToolAction::noise_level, "Noise", &Settings::nl_color},
                                {ToolAction::detect_level, "Threshold", &Settings::th_color},
                                {ToolAction::base_level, "Base", &Settings::ba_color}};

/// A colour of the settings, in the dark turned round as the curves are unless it is light as it stands.
QColor SettingColor(std::int32_t setting)
{
    const Rgba color = FromSetting(setting);
    const QColor as_set = ToQColor(color), turned = ToQColor(ForDarkGround(color));
    return IsDark() && turned.lightness() > as_set.lightness() ? turned : as_set;
}

PlotPoint PlaceAt(const PlotFrame& frame, QPointF at)
{
    return {frame.Ppm(at.x()), frame.Value(at.y()), std::abs(frame.Ppm(at.x() + kReach) - frame.Ppm(at.x())),
            std::abs(frame.Value(at.y() + kReach) - frame.Value(at.y()))};
}

bool Inside(const PlotFrame& frame, QPointF at)
{
    const RectD& r = frame.rect;
    return at.x() >= r.x && at.x() <= r.right() && at.y() >= r.y && at.y() <= r.bottom();
}

double FlagWidth(const QPainter& painter, const QString& text)
{
    return painter.fontMetrics().horizontalAdvance(text) + 2 * kFlagPadding;
}

/// A word on a coloured ground, its left edge and its upper edge given.
void Flag(QPainter& painter, QPointF corner, const QString& text, const QColor& color)
{
    const QRectF box(corner, QSizeF(FlagWidth(painter, text), painter.fontMetrics().height()));
    painter.fillRect(box, color);
    painter.setPen(color.lightness() > 140 ? Qt::black : Qt::white);
    painter.drawText(box, Qt::AlignCenter, text);
}

/// On whole device pixels.
double Snap(QtCanvas& canvas, double x)
{
    const double pixel = 1 / canvas.Resolution();
    return std::floor(x / pixel) * pixel;
}

bool IsLevel(ToolAction action)
{
    return action == ToolAction::noise_level || action == ToolAction::detect_level || action == ToolAction::base_level;
}

} // namespace

std::string ToolOverlay::StatusText(const PlotFrame& frame, QPointF at) const
{
    return !tools_.UsesMouse() || !Inside(frame, at) ? std::string() : tools_.StatusText(PlaceAt(frame, at));
}

bool ToolOverlay::Grab(const PlotFrame& frame, QPointF at, Qt::KeyboardModifiers keys)
{
    if (!tools_.UsesMouse() || !Inside(frame, at) || (keys & Qt::ShiftModifier)) return false;
    from_ = last_ = at;
    dragging_ = false;
    tools_.MouseDown(PlaceAt(frame, at));
    return true;
}

void ToolOverlay::Move(const PlotFrame& frame, QPointF at)
{
    last_ = at;
    if (!dragging_ && (at - from_).manhattanLength() < kLeastDrag) return;
    dragging_ = true;
    tools_.MouseMove(PlaceAt(frame, at));
}

void ToolOverlay::Drop(const PlotFrame& frame)
{
    tools_.MouseUp(PlaceAt(frame, dragging_ ? last_ : from_));
    dragging_ = false;
}

std::optional<Qt::CursorShape> ToolOverlay::Shape(const PlotFrame& frame, QPointF at) const
{
    if (!tools_.UsesMouse() || !Inside(frame, at)) return std::nullopt;
    const auto near = [](double a, double b) { return std::abs(a - b) <= kReach; };
    for (const auto& level : marks_.levels)
        if (near(frame.Y(level.height), at.y())) return Qt::SplitVCursor;
    const auto under = [&](const ToolMarks::Vertical& mark) { return near(frame.X(mark.ppm), at.x()); };
    if (tools_.open() == Tool::phase)
        return std::ranges::any_of(marks_.verticals, under) ? Qt::SplitHCursor : Qt::ArrowCursor;
    switch (tools_.action()) {
    case ToolAction::move_base_point:
        return Qt::SizeVerCursor;
    case ToolAction::move_integral:
    case ToolAction::enlarge_integral:
        return tools_.StatusText(PlaceAt(frame, at)).empty() ? Qt::ArrowCursor : Qt::SizeHorCursor;
    case ToolAction::divide_integral:
    case ToolAction::delete_integral:
    case ToolAction::reference_integral:
        return tools_.StatusText(PlaceAt(frame, at)).empty() ? Qt::ArrowCursor : Qt::PointingHandCursor;
    default:
        return IsLevel(tools_.action()) ? Qt::SplitVCursor : Qt::CrossCursor;
    }
}

void ToolOverlay::Draw(QtCanvas& canvas, const PlotFrame& frame)
{
    if (tools_.open() == Tool::none) return;
    // The curve of a base line costs more than the paint, and the cursor repaints at each move.
    if (std::exchange(stale_, false)) marks_ = tools_.Marks();
    QPainter& painter = canvas.painter();
    painter.save();
    painter.setFont(QGuiApplication::font()); // not that of the axis
    const RectD& r = frame.rect;
    painter.setClipRect(QRectF(r.x, r.y, r.width, r.height), Qt::IntersectClip);
    DrawRange(canvas, frame);
    DrawSelection(canvas, frame);
    DrawBaseLine(canvas, frame);
    DrawLevels(canvas, frame);
    DrawPoints(canvas, frame);
    DrawVerticals(canvas, frame);
    painter.restore();
}

void ToolOverlay::DrawRange(QtCanvas& canvas, const PlotFrame& frame) const
{
    if (!marks_.range_ppm) return;
    QColor band = tools_.open() == Tool::regions ? SettingColor(g_.settings.def_region_color) : kMark;
    band.setAlpha(kBandAlpha);
    const auto [left, right] = std::minmax({frame.X(marks_.range_ppm->first), frame.X(marks_.range_ppm->second)});
    canvas.painter().fillRect(QRectF(left, frame.rect.y, right - left, frame.rect.height), band);
}

/// The selected region, with the ends that can be dragged.
void ToolOverlay::DrawSelection(QtCanvas& canvas, const PlotFrame& frame) const
{
    const DataSet& set = g_.Slots[0];
    const auto index = static_cast<std::size_t>(std::max(tools_.selected(), 0));
    if (tools_.open() != Tool::integrals || tools_.selected() < 0 || index >= set.Integrals.size()) return;
    const IntegralEntry& entry = set.Integrals[index];
    const auto [left, right] =
        std::minmax({frame.X(IntegralStartPpm(set, entry)), frame.X(IntegralEndPpm(set, entry))});
    const double pixel = std::max(1 / canvas.Resolution(), 1.0);
    QColor band = kSelection;
    band.setAlpha(36);
    canvas.painter().fillRect(QRectF(left, frame.rect.y, right - left, frame.rect.height), band);
    for (const double x : {left, right})
        canvas.painter().fillRect(QRectF(Snap(canvas, x), frame.rect.y, pixel, frame.rect.height), kSelection);
}

/// From point to point, level beyond the outer ones; held inside the frame, as places far off overflow a painter.
QPolygonF ToolOverlay::StraightLines(const PlotFrame& frame) const
{
    QPolygonF all;
    for (const ToolMarks::Point& point : marks_.points) all << QPointF(frame.X(point.ppm), frame.Y(point.height));
    std::ranges::sort(all, {}, &QPointF::x);
    const auto at = [&](double x) {
        const auto next = std::ranges::upper_bound(all, x, {}, &QPointF::x);
        if (next == all.begin()) return QPointF(x, all.front().y());
        if (next == all.end()) return QPointF(x, all.back().y());
        const QPointF a = *(next - 1), b = *next;
        return QPointF(x, a.y() + (b.y() - a.y()) * (x - a.x()) / (b.x() - a.x()));
    };
    QPolygonF line{at(frame.rect.x)};
    for (const QPointF& point : all)
        if (point.x() > frame.rect.x && point.x() < frame.rect.right()) line << point;
    return line << at(frame.rect.right());
}

/// One value a column is enough: the curve has no lines.
QPolygonF ToolOverlay::SmoothLine(const PlotFrame& frame, double step) const
{
    QPolygonF line;
    for (double x = frame.rect.x; x <= frame.rect.right(); x += step) {
        const auto point = static_cast<std::size_t>(PpmToPoint(g_.Slots[0], frame.Ppm(x)));
        if (point < marks_.base_line.size()) line << QPointF(x, frame.Y(static_cast<double>(marks_.base_line[point])));
    }
    return line;
}

void ToolOverlay::DrawBaseLine(QtCanvas& canvas, const PlotFrame& frame) const
{
    if (tools_.previewed() || (marks_.base_line.empty() && marks_.points.empty())) return;
    QPainter& painter = canvas.painter();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kMark, 2));
    painter.drawPolyline(marks_.base_line.empty() ? StraightLines(frame) : SmoothLine(frame, 1 / canvas.Resolution()));
}

void ToolOverlay::DrawPoints(QtCanvas& canvas, const PlotFrame& frame) const
{
    QPainter& painter = canvas.painter();
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ToolMarks::Point& point : marks_.points) {
        const QPointF center(frame.X(point.ppm), frame.Y(point.height));
        painter.setPen(QPen(Qt::white, 1));
        painter.setBrush(kMark);
        painter.drawEllipse(center, kDot, kDot);
        if (!point.on_line) continue;
        painter.setPen(QPen(kMark, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(center, 2 * kDot, 2 * kDot);
    }
}

void ToolOverlay::DrawLevels(QtCanvas& canvas, const PlotFrame& frame) const
{
    QPainter& painter = canvas.painter();
    const double pixel = std::max(1 / canvas.Resolution(), 1.0);
    const auto y_of = [&](ToolAction action) {
        const auto level = std::ranges::find(marks_.levels, action, &ToolMarks::Level::action);
        return Snap(canvas, frame.Y(level->height));
    };
    if (marks_.levels.size() != std::size(kLevels)) return;
    for (const LevelRow& row : kLevels)
        painter.fillRect(QRectF(frame.rect.x, y_of(row.action), frame.rect.width, pixel),
                         SettingColor(g_.settings.*row.color));
    // Side by side and over all lines: the levels often lie close together.
    double left = frame.rect.x + kFlagGap;
    for (const LevelRow& row : kLevels) {
        const QString text = QLatin1String(row.label);
        Flag(painter, {left, y_of(row.action) - painter.fontMetrics().height()}, text,
             SettingColor(g_.settings.*row.color));
        left += FlagWidth(painter, text) + kFlagGap;
    }
}

void ToolOverlay::DrawVerticals(QtCanvas& canvas, const PlotFrame& frame) const
{
    QPainter& painter = canvas.painter();
    const double pixel = std::max(1 / canvas.Resolution(), 1.0);
    for (const ToolMarks::Vertical& mark : marks_.verticals) {
        const QColor color = SettingColor(mark.label == "P2" ? g_.settings.pp2_color : g_.settings.pp_color);
        const double x = Snap(canvas, frame.X(mark.ppm));
        // Dashed: the line that it stands on is to be seen.
        for (double y = frame.rect.y; y < frame.rect.bottom(); y += kDash + kDashGap)
            painter.fillRect(QRectF(x, y, pixel, kDash), color);
        if (mark.label.empty()) continue;
        const QString text = ToQString(mark.label);
        const double width = FlagWidth(painter, text);
        const double left = x + width > frame.rect.right() ? x - width : x;
        Flag(painter, {left, frame.rect.y}, text, color);
    }
}

} // namespace nmr
