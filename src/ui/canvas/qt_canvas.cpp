#include "ui/canvas/qt_canvas.h"

#include "layout/code_tokens.h"
#include "ui/canvas/letter_face.h"
#include "ui/canvas/stripes.h"

#include <QPaintDevice>

#include <algorithm>
#include <cmath>
#include <limits>

namespace nmr {
namespace {

QRectF ToQt(const RectD& rect)
{
    return {rect.x, rect.y, rect.width, rect.height};
}

QList<QPointF> ToQt(std::span<const PointD> points)
{
    QList<QPointF> list;
    list.reserve(static_cast<qsizetype>(points.size()));
    for (const PointD& point : points) list.append({point.x, point.y});
    return list;
}

/// Letters are laid out so much larger and drawn through the painter's scale: a font has whole pixels only,
/// and would round its letters' places to them.
constexpr double kLargerFont = 10;
constexpr int kMostPixels = 20000;

/// A clear picture in memory that stays: fresh pages would cost more than the drawing.
QImage ScratchImage(int width, int height)
{
    thread_local std::vector<QRgb> memory;
    const auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    if (memory.size() < size) memory.resize(size);
    std::fill_n(memory.begin(), size, 0U);
    return {reinterpret_cast<uchar*>(memory.data()), width, height, 4 * static_cast<qsizetype>(width),
            QImage::Format_ARGB32_Premultiplied};
}

} // namespace

QColor ToQColor(Rgba color)
{
    return {color.red, color.green, color.blue, color.alpha};
}

QString ToQString(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

QImage ToQImage(const Raster& raster)
{
    if (!raster.valid()) return {};
    QImage image(raster.width, raster.height, QImage::Format_ARGB32);
    std::size_t next = 0;
    for (int y = 0; y < raster.height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < raster.width; ++x, ++next) {
            const Rgba& color = raster.pixels[next];
            line[x] = qRgba(color.red, color.green, color.blue, color.alpha);
        }
    }
    return image;
}

QtCanvas::QtCanvas(QPainter& painter, Target target, double vector_resolution) :
    painter_(painter), straight_(target == Target::raster && painter.deviceTransform().type() <= QTransform::TxScale &&
                                 painter.deviceTransform().m11() > 0 && painter.deviceTransform().m22() > 0),
    resolution_(target == Target::vector ? vector_resolution : std::max(1e-6, painter.deviceTransform().m11()))
{
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setRenderHint(QPainter::TextAntialiasing);
    painter_.setRenderHint(QPainter::LosslessImageRendering);
    SetPen({});
    SetBrush({0, 0, 0, 0});
    SetFont({});
}

void QtCanvas::SetPen(const Pen& pen)
{
    pen_ = pen;
    const double finest = straight_ || !(pen.width > 0) ? 1 / resolution_ : 0;
    const double width = std::max(pen.width, finest);
    const auto style = pen.style == PenStyle::none ? Qt::NoPen : Qt::SolidLine;
    QPen qt_pen(ToQColor(pen.color), width, style, Qt::FlatCap, Qt::MiterJoin);
    qt_pen.setMiterLimit(2);
    if (auto dashes = DashesOf(pen); !dashes.empty()) {
        for (double& length : dashes) length /= width; // a QPen counts in pen widths
        qt_pen.setDashPattern(QList<qreal>(dashes.begin(), dashes.end()));
    }
    painter_.setPen(qt_pen);
}

void QtCanvas::SetBrush(Rgba fill)
{
    painter_.setBrush(fill.alpha == 0 ? QBrush(Qt::NoBrush) : QBrush(ToQColor(fill)));
}

void QtCanvas::SetFont(const FontSpecD& font)
{
    face_ = &FaceOf(font);
    em_ = font.size;
    underline_ = font.underline;
    strikeout_ = font.strikeout;
}

void QtCanvas::Polyline(std::span<const PointD> points)
{
    painter_.save();
    painter_.setBrush(Qt::NoBrush);
    QPen pen = painter_.pen();
    pen.setJoinStyle(Qt::BevelJoin); // mitres of a noisy curve would shoot beyond its peaks
    painter_.setPen(pen);
    painter_.drawPolyline(ToQt(points));
    painter_.restore();
}

void QtCanvas::Polygon(std::span<const PointD> points)
{
    painter_.drawPolygon(ToQt(points));
}

int QtCanvas::PenPixels() const
{
    return std::max(1, static_cast<int>(std::lround(pen_.width * resolution_)));
}

/// Fills whole device pixels; the corner is given in them.
void QtCanvas::FillPixels(double x, double y, double width, double height)
{
    const QTransform device = painter_.deviceTransform();
    painter_.fillRect(QRectF((x - device.dx()) / device.m11(), (y - device.dy()) / device.m22(), width / device.m11(),
                             height / device.m22()),
                      painter_.pen().color());
}

/// A solid upright or level line on whole pixels; false for any other.
bool QtCanvas::DrawPixelLine(const Segment& segment)
{
    const bool upright = segment.from.x == segment.to.x, level = segment.from.y == segment.to.y;
    if (!straight_ || pen_.style != PenStyle::solid || upright == level) return false;
    const QTransform device = painter_.deviceTransform();
    const QPointF a = device.map(QPointF(segment.from.x, segment.from.y));
    const QPointF b = device.map(QPointF(segment.to.x, segment.to.y));
    const int thick = PenPixels();
    const auto across = [thick](double at) { return std::floor(at - (thick - 1) / 2.0 + 1e-6); };
    if (upright) {
        const double top = std::floor(std::min(a.y(), b.y()) + 1e-6), bottom = std::round(std::max(a.y(), b.y()));
        FillPixels(across(a.x()), top, thick, bottom - top);
    } else {
        // Both ends of a level line reach to the far side of an upright line that ends there.
        const double left = across(std::min(a.x(), b.x())), right = across(std::max(a.x(), b.x())) + thick;
        FillPixels(left, across(a.y()), right - left, thick);
    }
    return true;
}

void QtCanvas::Lines(std::span<const Segment> segments)
{
    if (pen_.style == PenStyle::none) return;
    QList<QLineF> others;
    painter_.setRenderHint(QPainter::Antialiasing, false);
    for (const Segment& segment : segments)
        if (!DrawPixelLine(segment)) others.append({segment.from.x, segment.from.y, segment.to.x, segment.to.y});
    const bool dashed = straight_ && pen_.style != PenStyle::solid;
    painter_.setRenderHint(QPainter::Antialiasing, !dashed);
    painter_.drawLines(others);
    painter_.setRenderHint(QPainter::Antialiasing);
}

void QtCanvas::Stripes(double x, double stripe_width, std::span<const Stripe> stripes)
{
    if (!straight_) {
        Canvas::Stripes(x, stripe_width, stripes);
        return;
    }
    float top = std::numeric_limits<float>::infinity(), bottom = -top;
    for (const Stripe& stripe : stripes) {
        if (!(stripe.top < stripe.bottom)) continue;
        top = std::min(top, stripe.top);
        bottom = std::max(bottom, stripe.bottom);
    }
    if (!(top < bottom) || !std::isfinite(bottom - top)) return;
    const QTransform device = painter_.deviceTransform();
    const double width = stripe_width * device.m11();
    const int left = static_cast<int>(std::lround(x * device.m11() + device.dx()));
    const int first = static_cast<int>(std::floor(static_cast<double>(top) * device.m22() + device.dy()));
    const int last = static_cast<int>(std::ceil(static_cast<double>(bottom) * device.m22() + device.dy()));
    const int columns = static_cast<int>(std::ceil(static_cast<double>(stripes.size()) * width - 1e-6));
    if (columns <= 0 || columns > 32767 || last - first > 32767) return;
    QImage image = ScratchImage(columns, last - first);
    FillStripes(image, stripes, {0, width, device.dy() - first, device.m22()}, ToQColor(pen_.color).rgba());
    // Pixel on pixel: the painter's own scale is undone for the one picture.
    painter_.save();
    painter_.setWorldTransform(device.inverted() * painter_.worldTransform());
    painter_.drawImage(QPoint(left, first), image);
    painter_.restore();
}

void QtCanvas::Rectangle(const RectD& rect)
{
    if (!straight_ || (pen_.style != PenStyle::solid && pen_.style != PenStyle::none)) {
        painter_.drawRect(ToQt(rect));
        return;
    }
    painter_.setRenderHint(QPainter::Antialiasing, false);
    if (painter_.brush().style() != Qt::NoBrush) painter_.fillRect(ToQt(rect), painter_.brush());
    painter_.setRenderHint(QPainter::Antialiasing);
    if (pen_.style == PenStyle::none) return;
    const PointD a{rect.x, rect.y}, b{rect.right(), rect.y}, c{rect.right(), rect.bottom()}, d{rect.x, rect.bottom()};
    const Segment sides[] = {{a, b}, {b, c}, {d, c}, {a, d}};
    Lines(sides);
}

void QtCanvas::Ellipse(const RectD& rect)
{
    painter_.drawEllipse(ToQt(rect));
}

void QtCanvas::Picture(const RectD& rect, const Raster& raster)
{
    if (raster.valid()) painter_.drawImage(ToQt(rect), ToQImage(raster));
}

void QtCanvas::Text(PointD at, std::string_view utf8, TextAlign align, double angle_deg)
{
    if (utf8.empty() || !(em_ > 0)) return;
    const double width = align == TextAlign::left ? 0 : Measure(utf8).width;
    const double shift = align == TextAlign::centre ? -width / 2 : align == TextAlign::right ? -width : 0;
    const int pixels = std::clamp(static_cast<int>(std::lround(em_ * kLargerFont)), 1, kMostPixels);
    const double scale = em_ / pixels;
    const QTransform before = painter_.worldTransform();
    QTransform letters = before;
    letters.translate(at.x, at.y);
    if (angle_deg != 0) letters.rotate(-angle_deg);
    letters.scale(scale, scale);
    painter_.setFont(face_->FontOf(pixels, underline_, strikeout_));
    painter_.setWorldTransform(letters);
    painter_.drawText(QPointF(shift / scale, 0), face_->Drawable(utf8));
    painter_.setWorldTransform(before);
}

TextExtent QtCanvas::Measure(std::string_view utf8)
{
    TextExtent extent{0, face_->ascent() * em_, face_->descent() * em_};
    for (std::size_t at = 0; at < utf8.size();) extent.width += face_->Width(TakeUtf8(utf8, at));
    extent.width *= em_;
    return extent;
}

void QtCanvas::PushClip(const RectD& rect)
{
    clips_.push_back(clips_.empty() ? ToQt(rect) : clips_.back().intersected(ToQt(rect)));
    painter_.setClipRect(clips_.back());
}

void QtCanvas::PopClip()
{
    clips_.pop_back();
    if (clips_.empty())
        painter_.setClipping(false);
    else
        painter_.setClipRect(clips_.back());
}

void QtCanvas::BeginGroup(std::string_view) {}
void QtCanvas::EndGroup() {}

} // namespace nmr
