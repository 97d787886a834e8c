#include "ui/tool_overlay.h"

#include "core/list_values.h"
#include "ui/canvas/qt_canvas.h"

#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kReach = 6;     // pixels around a mark that take hold of it
constexpr double kLeastDrag = 4; // a shorter way is a click
// Visible on light and dark ground.
const QColor kMark(213, 94, 0), kSecond(0, 158, 115), kLevel(204, 121, 167), kBase(0, 158, 115), kOnLine(204, 51, 17);

struct LevelRow {
    ToolAction action;
    const char* label;
};
constexpr LevelRow kLevels[] = {
    {ToolAction::noise_level, "Noise"}, {ToolAction::detect_level, "Threshold"}, {ToolAction::base_level, "Base"}};

const char* LabelOf(ToolAction level)
{
    const auto row = std::ranges::find(kLevels, level, &LevelRow::action);
    return row == std::end(kLevels) ? "" : row->label;
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

/// A word on a coloured ground, its left edge and its upper edge given.
void Flag(QPainter& painter, QPointF corner, const QString& text, const QColor& color)
{
    const QRectF box(corner, QSizeF(painter.fontMetrics().horizontalAdvance(text) + 8, painter.fontMetrics().height()));
    painter.fillRect(box, color);
    painter.setPen(Qt::white);
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
    return tools_.open() == Tool::none || !Inside(frame, at) ? std::string() : tools_.StatusText(PlaceAt(frame, at));
}

bool ToolOverlay::Grab(const PlotFrame& frame, QPointF at, Qt::KeyboardModifiers keys)
{
    if (tools_.open() == Tool::none || !Inside(frame, at) || (keys & Qt::ShiftModifier)) return false;
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
    if (tools_.open() == Tool::none || !Inside(frame, at)) return std::nullopt;
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
    QColor band = kMark;
    band.setAlpha(50);
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
    QColor band = kBase;
    band.setAlpha(36);
    canvas.painter().fillRect(QRectF(left, frame.rect.y, right - left, frame.rect.height), band);
    for (const double x : {left, right})
        canvas.painter().fillRect(QRectF(Snap(canvas, x), frame.rect.y, pixel, frame.rect.height), kBase);
}

/// One value a column is enough: the curve has no lines.
void ToolOverlay::DrawBaseLine(QtCanvas& canvas, const PlotFrame& frame) const
{
    if (marks_.base_line.empty()) return;
    QPolygonF line;
    const double step = 1 / canvas.Resolution();
    for (double x = frame.rect.x; x <= frame.rect.right(); x += step) {
        const auto point = static_cast<std::size_t>(PpmToPoint(g_.Slots[0], frame.Ppm(x)));
        if (point < marks_.base_line.size()) line << QPointF(x, frame.Y(static_cast<double>(marks_.base_line[point])));
    }
    QPainter& painter = canvas.painter();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kBase, 1.5));
    painter.drawPolyline(line);
}

void ToolOverlay::DrawPoints(QtCanvas& canvas, const PlotFrame& frame) const
{
    QPainter& painter = canvas.painter();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, 1));
    for (const ToolMarks::Point& point : marks_.points) {
        painter.setBrush(point.on_line ? kOnLine : kBase);
        painter.drawEllipse(QPointF(frame.X(point.ppm), frame.Y(point.height)), 3.5, 3.5);
    }
}

void ToolOverlay::DrawLevels(QtCanvas& canvas, const PlotFrame& frame) const
{
    QPainter& painter = canvas.painter();
    const double pixel = std::max(1 / canvas.Resolution(), 1.0);
    for (const ToolMarks::Level& level : marks_.levels) {
        const double y = Snap(canvas, frame.Y(level.height));
        painter.fillRect(QRectF(frame.rect.x, y, frame.rect.width, pixel), kLevel);
        const QString text = QLatin1String(LabelOf(level.action));
        // Side by side: the levels often lie close together.
        const auto place = std::ranges::find(kLevels, level.action, &LevelRow::action) - std::begin(kLevels);
        const double left = frame.rect.x + 4 + 76 * static_cast<double>(place);
        Flag(painter, {left, y - painter.fontMetrics().height()}, text, kLevel);
    }
}

void ToolOverlay::DrawVerticals(QtCanvas& canvas, const PlotFrame& frame) const
{
    QPainter& painter = canvas.painter();
    const double pixel = std::max(1 / canvas.Resolution(), 1.0);
    for (const ToolMarks::Vertical& mark : marks_.verticals) {
        const QColor color = mark.label == "P2" ? kSecond : kMark;
        const double x = Snap(canvas, frame.X(mark.ppm));
        painter.fillRect(QRectF(x, frame.rect.y, pixel, frame.rect.height), color);
        if (mark.label.empty()) continue;
        const QString text = ToQString(mark.label);
        const double width = painter.fontMetrics().horizontalAdvance(text) + 8;
        const double left = x + width > frame.rect.right() ? x - width : x;
        Flag(painter, {left, frame.rect.y}, text, color);
    }
}

} // namespace nmr
