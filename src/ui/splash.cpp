#include "ui/splash.h"

#include "session/startup.h"
#include "ui/canvas/qt_canvas.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <cmath>

namespace nmr {

Splash::Splash() : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint)
{
    setFixedSize(440, 220);
    const QScreen* where = QGuiApplication::primaryScreen();
    if (where != nullptr) move(where->availableGeometry().center() - rect().center());
}

void Splash::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), palette().base());
    // A quartet over the base line.
    constexpr double kPositions[] = {160, 200, 240, 280}, kHeights[] = {28, 84, 84, 28};
    QPainterPath curve;
    for (int x = 30; x <= width() - 30; ++x) {
        double y = 0;
        for (int i = 0; i < 4; ++i) y += kHeights[i] / (1 + std::pow((x - kPositions[i]) / 3.5, 2));
        x == 30 ? curve.moveTo(x, 122 - y) : curve.lineTo(x, 122 - y);
    }
    painter.setPen(QPen(palette().highlight().color(), 1.6));
    painter.drawPath(curve);
    painter.setPen(palette().text().color());
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    painter.setFont(large);
    painter.drawText(QRectF(0, 136, width(), 34), Qt::AlignCenter, QLatin1String(kSplashName));
    painter.setFont(font());
    painter.setPen(palette().placeholderText().color());
    painter.drawText(QRectF(0, 172, width(), 24), Qt::AlignCenter, QLatin1String(kSplashWait));
    painter.setPen(palette().mid().color());
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace nmr
