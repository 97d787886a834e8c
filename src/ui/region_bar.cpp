#include "ui/region_bar.h"

#include "session/color_regions.h"
#include "session/display_commands.h"
#include "ui/canvas/qt_canvas.h"

#include <QAction>
#include <QColorDialog>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kLeastDrag = 4; // pixels; a shorter one is a click

QIcon Swatch(const QColor& color)
{
    QPixmap pixmap(32, 32);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(color);
    return QIcon(pixmap);
}

} // namespace

RegionBar::RegionBar(Session& session, QWidget* parent) : QToolBar(parent), session_(session), g_(session.g)
{
    setObjectName(QStringLiteral("ColorToolbar"));
    setMovable(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setIconSize(QSize(16, 16));
    addWidget(new QLabel(QStringLiteral("  Drag over a region to colour it, click into one to take its colour away   "),
                         this));
    color_ = addAction(QStringLiteral(" Color..."));
    connect(color_, &QAction::triggered, this, [this] { ChooseColor(); });
    reset_all_ = addAction(QStringLiteral("Reset All"));
    connect(reset_all_, &QAction::triggered, this, [this] {
        ResetAllColorRegions(g_);
        if (session_.display_changed) session_.display_changed();
    });
    addSeparator();
    connect(addAction(QStringLiteral("Close (Esc)")), &QAction::triggered, this, [this] { LeaveTool(session_); });
    hide();
}

bool RegionBar::IsOpen() const
{
    return g_.ToolMode == kRegionTool;
}

QColor RegionBar::color() const
{
    return ToQColor(FromSetting(g_.settings.def_region_color));
}

void RegionBar::Refresh()
{
    setVisible(IsOpen());
    color_->setIcon(Swatch(color()));
    reset_all_->setEnabled(std::ranges::any_of(g_.Slots[0].Regions, IsColored));
}

void RegionBar::ChooseColor()
{
    const QColor chosen = QColorDialog::getColor(color(), window(), QStringLiteral("Color of the Region"));
    if (!chosen.isValid()) return;
    g_.settings.def_region_color = chosen.red() + 256 * chosen.green() + 65536 * chosen.blue();
    g_.SettingsChanged = true;
    Refresh();
}

bool RegionBar::Grab(const PlotFrame&, QPointF at)
{
    if (!IsOpen()) return false;
    dragging_ = true;
    from_x_ = now_x_ = at.x();
    return true;
}

void RegionBar::Move(const PlotFrame&, QPointF at)
{
    now_x_ = at.x();
}

void RegionBar::Drop(const PlotFrame& frame)
{
    if (!std::exchange(dragging_, false)) return;
    const double from = frame.Ppm(from_x_), to = frame.Ppm(now_x_);
    const bool changed = std::abs(now_x_ - from_x_) < kLeastDrag
                             ? ResetColorRegion(g_, from)
                             : SetColorRegion(g_, from, to, g_.settings.def_region_color);
    if (changed && session_.display_changed) session_.display_changed();
}

void RegionBar::Draw(QtCanvas& canvas, const PlotFrame& frame)
{
    if (!dragging_ || std::abs(now_x_ - from_x_) < kLeastDrag) return;
    QColor band = color();
    band.setAlpha(60);
    const double left = std::min(from_x_, now_x_);
    canvas.painter().fillRect(QRectF(left, frame.rect.y, std::abs(now_x_ - from_x_), frame.rect.height), band);
}

} // namespace nmr
