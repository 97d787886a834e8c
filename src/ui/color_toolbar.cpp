// The bar of the coloured regions.

#include "session/color_regions.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/tool_panels.h"

#include <QColorDialog>
#include <QPushButton>

#include <algorithm>

namespace nmr {
namespace {

QIcon Swatch(const QColor& color)
{
    QPixmap pixmap(32, 32);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(color);
    return QIcon(pixmap);
}

} // namespace

ColorToolbar::ColorToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::regions, "ColorToolbar", QStringLiteral("Color of Regions"))
{
    BeginGroup();
    AddLabel(QStringLiteral("Drag over a region to colour it, click into one to take its colour away"));
    BeginGroup();
    color_ = AddButton("RegionColor", QStringLiteral("Color..."), QStringLiteral("Colour of the next regions"),
                       [this] { ChooseColor(); });
    color_->setMaximumWidth(QWIDGETSIZE_MAX); // it has a swatch too
    reset_all_ = AddButton("ResetRegions", QStringLiteral("Reset All"), QStringLiteral("Takes all colours away"),
                           [this] { tools_.ResetRegions(); });
    AddEnd("CloseRegions", QStringLiteral("Close"), QStringLiteral("Leaves the tool (Enter or Esc)"));
}

void ColorToolbar::Refresh()
{
    ToolPanel::Refresh();
    color_->setIcon(Swatch(ToQColor(FromSetting(g_.settings.def_region_color))));
    reset_all_->setEnabled(std::ranges::any_of(g_.Slots[0].Regions, IsColored));
}

void ColorToolbar::ChooseColor()
{
    const QColor now = ToQColor(FromSetting(g_.settings.def_region_color));
    const QColor chosen = QColorDialog::getColor(now, window(), QStringLiteral("Color of the Region"));
    if (!chosen.isValid()) return;
    g_.settings.def_region_color = chosen.red() + 256 * chosen.green() + 65536 * chosen.blue();
    g_.SettingsChanged = true;
    Refresh();
}

} // namespace nmr
