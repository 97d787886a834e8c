#include "ui/plot_widget.h"

#include "session/display_scope.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/theme.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace nmr {
namespace {

constexpr char kInvitation[] = "Read (Ctrl+O), or drop a file or folder here";
constexpr int kSideMargin = 14; // of the overview strip

/// Cursor line and other hints: the text colour, far back.
QColor Faint(const Rgba& color)
{
    QColor faint = ToQColor(color);
    faint.setAlpha(70);
    return faint;
}

} // namespace

PlotWidget::PlotWidget(GlobalBlock& g, QWidget* parent) : ZoomPanel(parent), g_(g)
{
    setMinimumSize(240, 160);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

// A FID under way is the transform form's to show.
bool PlotWidget::HasSpectrum() const
{
    const DataSet& set = g_.Slots[0];
    return !IsEmpty(set) && set.par.SMODE == 1 && !g_.NoSpectrumYet && g_.CurrentRow >= 0 &&
           static_cast<std::size_t>(g_.CurrentRow) < set.spec.DataRe.rows() &&
           set.spec.DataRe.columns() >= static_cast<std::size_t>(set.par.POINT) &&
           set.spec.XAxis.size() >= static_cast<std::size_t>(set.par.POINT);
}

void PlotWidget::TakeOverView()
{
    const ShownRange axis = AxisEnds(g_.Slots[0]);
    const ZoomView::Range whole{axis.left, axis.right};
    const ZoomView::Range wanted{static_cast<double>(g_.ViewLeft), static_cast<double>(g_.ViewRight)};
    const auto& shown = view().shown();
    // The block keeps single precision only: what it has of our own range is no wish of anybody's.
    const bool own = static_cast<float>(shown.left) == g_.ViewLeft && static_cast<float>(shown.right) == g_.ViewRight;
    if (whole != view().whole())
        view().StartFrom(whole, wanted);
    else if (!own)
        view().SetShown(wanted);
    view().SetMagnification(Magnification(g_.Slots[0]));
}

// Built in the same pyramid, whose memory is there: scenes of the row before are not drawn any more.
void PlotWidget::TakePoints()
{
    absolute_ = g_.AbsoluteMode != 0 ? AbsoluteRow(g_.Slots[0], g_.CurrentRow) : std::vector<float>();
    if (!pyramid_) pyramid_ = std::make_shared<MinMaxPyramid>();
    pyramid_->Build(ShownRow());
    integrals_.reset();
    built_for_ = RealRow().data();
}

void PlotWidget::PointsChanged()
{
    if (HasSpectrum()) TakePoints();
    update();
}

void PlotWidget::Refresh()
{
    if (HasSpectrum()) {
        TakePoints();
        TakeOverView();
    } else {
        pyramid_.reset();
        built_for_ = nullptr;
    }
    if (!HasSpectrum()) setCursor(Qt::ArrowCursor);
    update();
    if (view_changed) view_changed();
}

std::span<const float> PlotWidget::RealRow() const
{
    const auto points = static_cast<std::size_t>(g_.Slots[0].par.POINT);
    return g_.Slots[0].spec.DataRe[static_cast<std::size_t>(g_.CurrentRow)].first(points);
}

std::span<const float> PlotWidget::ShownRow() const
{
    return absolute_.empty() ? RealRow() : std::span<const float>(absolute_);
}

SpectrumScene PlotWidget::Scene() const
{
    SceneOptions options;
    options.row = g_.CurrentRow;
    options.left_ppm = view().shown().left;
    options.right_ppm = view().shown().right;
    options.magnification = view().magnification();
    options.dark = dark();
    options.instead = absolute_;
    // Made for the first paint that needs them; a drag of a region asks the same ones again.
    if (!integrals_ && !g_.Slots[0].Integrals.empty())
        integrals_ = std::make_shared<IntegralCurves>(RealRow(), static_cast<double>(g_.Slots[0].par.DispLeft));
    options.integrals = integrals_;
    return MakeScene(g_.Slots[0], g_.settings, options, pyramid_);
}

PlotFrame PlotWidget::Frame(QtCanvas& canvas)
{
    // Commands report what they change, but a paint may come in the midst of one.
    const bool stale = pyramid_ && (!HasSpectrum() || pyramid_->size() != std::size_t(g_.Slots[0].par.POINT) ||
                                    RealRow().data() != built_for_);
    if (stale || !pyramid_) {
        scene_ = SpectrumScene{};
        scene_.background = ColorsOf(g_.settings, dark()).background;
        scene_.text = ColorsOf(g_.settings, dark()).text;
    } else {
        scene_ = Scene();
    }
    return SceneFrame(canvas, {0, 0, double(width()), double(height())}, scene_);
}

void PlotWidget::Draw(QtCanvas& canvas, const PlotFrame& frame)
{
    DrawSpectrumScene(canvas, {0, 0, double(width()), double(height())}, scene_);
    if (scene_.curves.empty()) {
        DrawInvitation(canvas);
        return;
    }
    for (PlotTool* tool : tools_) tool->Draw(canvas, frame);
    // A zoom by key moves the spectrum under a resting cursor.
    if (cursor_ && cursor_moved) cursor_moved(PositionAt(*cursor_));
    if (!cursor_ || cursor_->x() < frame.rect.x || cursor_->x() > frame.rect.right()) return;
    const double pixel = 1 / canvas.Resolution();
    const double x = std::floor(cursor_->x() / pixel) * pixel;
    canvas.painter().fillRect(QRectF(x, frame.rect.y, pixel, frame.rect.height), Faint(scene_.text));
}

void PlotWidget::DrawInvitation(QtCanvas& canvas)
{
    QPainter& painter = canvas.painter();
    painter.save();
    const QRectF all = rect();
    const QRectF box(all.center() - QPointF(240, 62), QSizeF(480, 124));
    QColor line = ToQColor(scene_.text);
    line.setAlpha(60);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(line, 1.4, Qt::DashLine));
    if (box.width() < all.width() - 20) painter.drawRoundedRect(box, 12, 12);
    QFont font = this->font();
    font.setPointSizeF(font.pointSizeF() * 1.25);
    painter.setFont(font);
    QColor text = ToQColor(scene_.text);
    text.setAlpha(170);
    painter.setPen(text);
    painter.drawText(all.adjusted(12, 0, -12, 0), Qt::AlignCenter | Qt::TextWordWrap, QLatin1String(kInvitation));
    painter.restore();
}

bool PlotWidget::GrabMark(double x)
{
    if (!HasSpectrum()) {
        if (read_asked) read_asked();
        return true;
    }
    const auto takes = [&](PlotTool* tool) { return tool->Grab(frame(), {x, cursor_y()}, press_keys()); };
    const auto tool = std::ranges::find_if(tools_, takes);
    held_ = tool == tools_.end() ? nullptr : *tool;
    return held_ != nullptr;
}

void PlotWidget::MoveMark(double x)
{
    if (held_ != nullptr) held_->Move(frame(), {x, cursor_y()});
}

void PlotWidget::DropMark()
{
    if (PlotTool* tool = std::exchange(held_, nullptr)) tool->Drop(frame());
}

Qt::CursorShape PlotWidget::CursorShapeAt(double x) const
{
    for (const PlotTool* tool : tools_)
        if (const auto shape = tool->Shape(frame(), {x, cursor_y()})) return *shape;
    return Qt::ArrowCursor;
}

void PlotWidget::ViewChanged()
{
    if (!HasSpectrum()) return;
    g_.ViewLeft = static_cast<float>(view().shown().left);
    g_.ViewRight = static_cast<float>(view().shown().right);
    UpdateShownHz(g_);
    SetMagnification(g_.Slots[0], view().magnification());
    if (view_changed) view_changed();
}

void PlotWidget::CentreOn(double ppm)
{
    const auto& shown = view().shown();
    view().Pan(ppm - (shown.left + shown.right) / 2);
    ViewChanged();
    update();
}

std::optional<PlotPosition> PlotWidget::PositionAt(QPointF at) const
{
    const RectD& rect = frame().rect;
    if (!HasSpectrum() || at.x() < rect.x || at.x() > rect.right()) return std::nullopt;
    const DataSet& set = g_.Slots[0];
    PlotPosition position;
    position.ppm = frame().Ppm(at.x());
    position.hz = PpmToHz(set, position.ppm);
    position.has_hz = set.par.OBFRQ0PPM > 0;
    const auto whole = Whole();
    position.on_data = position.ppm <= whole.left && position.ppm >= whole.right;
    if (position.on_data) {
        const auto point = static_cast<std::size_t>(PpmToPoint(set, position.ppm));
        if (point < ShownRow().size()) position.intensity = static_cast<double>(ShownRow()[point]);
    }
    for (const PlotTool* tool : tools_)
        if (position.tool_text.empty()) position.tool_text = tool->StatusText(frame(), at);
    return position;
}

void PlotWidget::CursorMoved(std::optional<QPointF> at)
{
    cursor_ = at;
    if (cursor_moved) cursor_moved(at ? PositionAt(*at) : std::nullopt);
    update();
}

void PlotWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    // The title stands behind the end of the axis, and nothing else does.
    const QPointF at = event->position();
    const bool on_title = HasSpectrum() && at.x() >= frame().rect.right() && at.y() >= frame().rect.bottom();
    // Two quick clicks of a tool are two clicks.
    const bool to_tool =
        HasSpectrum() && event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier) &&
        std::ranges::any_of(tools_, [&](PlotTool* tool) { return tool->Shape(frame(), at).has_value(); });
    if (to_tool)
        ZoomPanel::mousePressEvent(event);
    else if (on_title && event->button() == Qt::LeftButton && axis_title_asked)
        axis_title_asked();
    else
        ZoomPanel::mouseDoubleClickEvent(event);
}

OverviewStrip::OverviewStrip(PlotWidget& plot, QWidget* parent) : QWidget(parent), plot_(plot)
{
    setFixedHeight(46);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::OpenHandCursor);
    setToolTip(QStringLiteral("The whole spectrum: drag to move the shown range"));
}

PlotFrame OverviewStrip::Frame() const
{
    const auto whole = plot_.Whole();
    return {
        {kSideMargin, 5, std::max(1.0, width() - 2.0 * kSideMargin), height() - 9.0}, whole.left, whole.right, 0, 1};
}

void OverviewStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const SpectrumScene scene = plot_.Scene();
    painter.fillRect(rect(), ToQColor(scene.background));
    painter.fillRect(QRectF(0, height() - 1, width(), 1), palette().mid());
    if (scene.curves.empty() || !plot_.pyramid()) return;
    QtCanvas canvas(painter);
    PlotFrame frame = Frame();
    const auto all = plot_.pyramid()->Over(0, plot_.pyramid()->size() - 1);
    frame.low = std::min(0.0, static_cast<double>(all.low));
    frame.high = std::max(1e-30, static_cast<double>(all.high) * 1.05);
    const SceneCurve& curve = scene.curves.front();
    Pen pen = curve.pen;
    pen.width = 1;
    DrawCurve(canvas, frame, *plot_.pyramid(), curve.row, curve.first_ppm, curve.step_ppm, pen);
    const double left = std::clamp(frame.X(scene.left_ppm), 0.0, double(width()));
    const double right = std::clamp(frame.X(scene.right_ppm), 0.0, double(width()));
    QColor veil = ToQColor(scene.background);
    veil.setAlpha(170);
    painter.fillRect(QRectF(0, 0, left, height() - 1), veil);
    painter.fillRect(QRectF(right, 0, width() - right, height() - 1), veil);
    QColor edge = palette().highlight().color();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(edge, 1));
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawRect(QRectF(std::floor(left), 1, std::max(3.0, std::floor(right - left)), height() - 4));
}

void OverviewStrip::mousePressEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton) plot_.CentreOn(Frame().Ppm(event->position().x()));
}

void OverviewStrip::mouseMoveEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

} // namespace nmr
