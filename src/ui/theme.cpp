#include "ui/theme.h"

#include <QApplication>
#include <QPalette>
#include <QProxyStyle>

namespace nmr {
namespace {

struct Tones {
    QRgb window, base, alternate, text, muted, button, line, accent, accent_text, link;
};
constexpr Tones kLight{0xfff5f6f7, 0xffffffff, 0xfff0f1f3, 0xff1d2126, 0xff6b7280,
                       0xfffcfcfd, 0xffc9ced4, 0xff0072b2, 0xffffffff, 0xff0062a0};
constexpr Tones kDark{0xff25282c, 0xff3a3f46, 0xff33373d, 0xffe4e7ea, 0xff969ca4,
                      0xff30343a, 0xff484d54, 0xff3d9fdc, 0xff0e1114, 0xff6cb8e8};

QPalette MakePalette(const Tones& tones)
{
    QPalette p;
    const auto set = [&](QPalette::ColorRole role, QRgb color) { p.setColor(role, QColor::fromRgb(color)); };
    set(QPalette::Window, tones.window);
    set(QPalette::WindowText, tones.text);
    set(QPalette::Base, tones.base);
    set(QPalette::AlternateBase, tones.alternate);
    set(QPalette::Text, tones.text);
    set(QPalette::PlaceholderText, tones.muted);
    set(QPalette::Button, tones.button);
    set(QPalette::ButtonText, tones.text);
    set(QPalette::BrightText, 0xffffffff);
    set(QPalette::Highlight, tones.accent);
    set(QPalette::HighlightedText, tones.accent_text);
    set(QPalette::Link, tones.link);
    set(QPalette::ToolTipBase, tones.base);
    set(QPalette::ToolTipText, tones.text);
    const bool dark = QColor::fromRgb(tones.window).lightness() < 128;
    set(QPalette::Mid, tones.line);
    p.setColor(QPalette::Light, QColor::fromRgb(dark ? tones.line : 0xffffffff));
    p.setColor(QPalette::Midlight, QColor::fromRgb(tones.alternate));
    p.setColor(QPalette::Dark, QColor::fromRgb(dark ? 0xff16181a : 0xffa6acb3));
    p.setColor(QPalette::Shadow, QColor::fromRgb(dark ? 0xff000000 : 0xff7c828a));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, role, QColor::fromRgb(tones.muted));
    return p;
}

/// Fusion, without pictures on the buttons of dialogs.
class QuietStyle : public QProxyStyle {
public:
    QuietStyle() : QProxyStyle(QStringLiteral("Fusion")) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

/// What the desktop handed over, before any palette of our own.
bool DesktopIsDark()
{
    static const bool dark = QApplication::palette().color(QPalette::Window).lightness() < 128;
    return dark;
}

} // namespace

void ApplyTheme(QApplication& app, std::int32_t theme)
{
    const bool desktop_dark = DesktopIsDark();
    if (dynamic_cast<QuietStyle*>(app.style()) == nullptr) QApplication::setStyle(new QuietStyle);
    const bool dark = theme == 2 || (theme != 1 && desktop_dark);
    QApplication::setPalette(MakePalette(dark ? kDark : kLight));
}

bool IsDark()
{
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace nmr
