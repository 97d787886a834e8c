// The icons of the tool bar, as strokes on a grid of 24 by 24.

#include "ui/theme.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <initializer_list>

namespace nmr {
namespace {

using Points = std::initializer_list<QPointF>;

void Line(QPainterPath& path, Points points)
{
    bool first = true;
    for (const QPointF& point : points) {
        if (first)
            path.moveTo(point);
        else
            path.lineTo(point);
        first = false;
    }
}

/// A narrow signal of a given height on its base line.
void Peak(QPainterPath& path, double x, double top, double half_width)
{
    path.moveTo(x - half_width, 19.5);
    path.cubicTo(x - half_width * 0.35, 19.5, x - half_width * 0.25, top, x, top);
    path.cubicTo(x + half_width * 0.25, top, x + half_width * 0.35, 19.5, x + half_width, 19.5);
}

void Arrow(QPainterPath& path, QPointF tip, QPointF tail, QPointF side)
{
    Line(path, {tail, tip});
    const QPointF back = (tail - tip) * 0.45;
    Line(path, {tip + back + side, tip, tip + back - side});
}

QPainterPath Shape(Glyph glyph)
{
    QPainterPath path;
    switch (glyph) {
    case Glyph::open:
        Line(path, {{3.5, 18.5}, {3.5, 5.5}, {9, 5.5}, {11.5, 8}, {19, 8}, {19, 10.5}});
        Line(path, {{3.5, 18.5}, {6.5, 10.5}, {21.5, 10.5}, {18.5, 18.5}, {3.5, 18.5}});
        break;
    case Glyph::all:
        Line(path, {{3.5, 5}, {3.5, 19}});
        Line(path, {{20.5, 5}, {20.5, 19}});
        Arrow(path, {6, 12}, {12, 12}, {0, 2.7});
        Arrow(path, {18, 12}, {12, 12}, {0, 2.7});
        break;
    case Glyph::back:
        path.moveTo(4.5, 9);
        path.lineTo(14, 9);
        path.cubicTo(22, 9, 22, 19, 14, 19);
        path.lineTo(8, 19);
        Line(path, {{8.5, 5}, {4.5, 9}, {8.5, 13}});
        break;
    case Glyph::taller:
        Peak(path, 9, 4.5, 6);
        Arrow(path, {19, 5}, {19, 14}, {2.7, 0});
        break;
    case Glyph::lower:
        Peak(path, 9, 12, 6);
        Arrow(path, {19, 14}, {19, 5}, {2.7, 0});
        break;
    case Glyph::grid:
        path.addRect(4, 4, 16, 16);
        Line(path, {{4, 9.33}, {20, 9.33}});
        Line(path, {{4, 14.66}, {20, 14.66}});
        Line(path, {{9.33, 4}, {9.33, 20}});
        Line(path, {{14.66, 4}, {14.66, 20}});
        break;
    case Glyph::wider:
        Arrow(path, {3.5, 12}, {10.5, 12}, {0, 2.7});
        Arrow(path, {20.5, 12}, {13.5, 12}, {0, 2.7});
        break;
    case Glyph::narrower:
        Arrow(path, {10.5, 12}, {3.5, 12}, {0, 2.7});
        Arrow(path, {13.5, 12}, {20.5, 12}, {0, 2.7});
        break;
    case Glyph::previous:
        Line(path, {{14.5, 6}, {8.5, 12}, {14.5, 18}});
        break;
    case Glyph::next:
        Line(path, {{9.5, 6}, {15.5, 12}, {9.5, 18}});
        break;
    case Glyph::parameters:
        path.addRoundedRect(4.5, 3.5, 15, 17, 1.5, 1.5);
        for (const double y : {8.0, 12.0, 16.0}) {
            Line(path, {{7.5, y}, {10, y}});
            Line(path, {{12.5, y}, {16.5, y}});
        }
        break;
    }
    return path;
}

class GlyphEngine : public QIconEngine {
public:
    explicit GlyphEngine(Glyph glyph) : glyph_(glyph) {}

    // Colours are asked for at each paint, so that a change of the theme needs no new icons.
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const double scale = std::min(rect.width(), rect.height()) / 24.0;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(scale, scale);
        painter->setPen(QPen(QApplication::palette().color(group, QPalette::ButtonText), 1.6, Qt::SolidLine,
                             Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(Shape(glyph_));
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }
    QIconEngine* clone() const override { return new GlyphEngine(glyph_); }

private:
    Glyph glyph_;
};

} // namespace

QIcon GlyphIcon(Glyph glyph)
{
    return QIcon(new GlyphEngine(glyph));
}

} // namespace nmr
