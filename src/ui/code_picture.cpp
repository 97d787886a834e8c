#include "ui/code_picture.h"

#include "layout/code_pieces.h"
#include "layout/spectrum_scene.h"
#include "ui/canvas/qt_canvas.h"

#include <QImage>
#include <QPainter>

#include <cmath>

namespace nmr {
namespace {

constexpr double kPixelsPerPoint = 96.0 / 72;
constexpr int kMargin = 8, kMostPixels = 100'000;

} // namespace

QColor ShownColor(std::int32_t color, std::int32_t base, const QPalette& palette)
{
    if (color == base) return palette.color(QPalette::Text);
    const bool dark = palette.color(QPalette::Base).lightness() < 128;
    return ToQColor(dark ? ForDarkGround(FromSetting(color)) : FromSetting(color));
}

CodePicture::CodePicture(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
}

void CodePicture::SetText(const std::string& code, const FontSpec& font, const CodeTextStyle& style)
{
    code_ = code;
    font_ = font;
    style_ = style;
    QImage none(1, 1, QImage::Format_RGB32); // letters are as wide everywhere
    QPainter painter(&none);
    QtCanvas canvas(painter);
    CodeTextPlace place{.direction = 0, .scale = kPixelsPerPoint};
    static_cast<void>(Draw_CodeText(canvas, code_, font_, place, style_));
    const double least = static_cast<double>(font_.Size) * kPixelsPerPoint * 1.1;
    const auto pixels = [](double length) {
        return static_cast<int>(std::min<double>(std::ceil(length), kMostPixels));
    };
    size_ = {pixels(place.right_limit) + 2 * kMargin, pixels(std::max(place.bottom, least)) + 2 * kMargin};
    updateGeometry();
    update();
}

void CodePicture::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QtCanvas canvas(painter);
    auto pieces = Code_To_Pieces(code_, font_, style_);
    FontSpec base = font_;
    const auto shown = [&](std::int32_t color) {
        const QColor c = ShownColor(color, font_.Color, palette());
        return ToSetting({static_cast<std::uint8_t>(c.red()), static_cast<std::uint8_t>(c.green()),
                          static_cast<std::uint8_t>(c.blue())});
    };
    base.Color = shown(font_.Color);
    bool same = base.Color == font_.Color;
    for (CodePiece& piece : pieces) {
        const std::int32_t color = shown(piece.font.Color);
        same = same && color == piece.font.Color;
        piece.font.Color = color;
    }
    const std::string code = same ? code_ : Pieces_To_Code(pieces, base);
    CodeTextPlace place{.x = kMargin, .y = kMargin, .scale = kPixelsPerPoint};
    static_cast<void>(Draw_CodeText(canvas, code, base, place, style_));
}

} // namespace nmr
