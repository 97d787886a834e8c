#include "ui/canvas/picture_writer.h"

#include "ui/canvas/qt_canvas.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <cmath>

namespace nmr {
namespace {

constexpr double kUnitsPerInch = 96, kMillimetresPerInch = 25.4;
constexpr double kMostPixels = 20000; ///< a side of a PNG
constexpr double kPointsPerUnit = 72 / kUnitsPerInch;

/// The size in canvas units of 1/96 inch.
QSizeF SizeOf(const PictureJob& job)
{
    const double factor = job.millimetres ? kUnitsPerInch / kMillimetresPerInch : 1;
    return {job.width * factor, job.height * factor};
}

QString CannotWrite(const PictureJob& job, const QString& reason)
{
    return QStringLiteral("%1: %2").arg(ToQString(job.path), reason);
}

QString WritePng(const PictureJob& job, const QSizeF& size)
{
    const double scale = job.dpi / kUnitsPerInch;
    const double width = std::round(size.width() * scale), height = std::round(size.height() * scale);
    if (!(width >= 1 && height >= 1 && width <= kMostPixels && height <= kMostPixels))
        return CannotWrite(job, QStringLiteral("a picture of %1 x %2 pixels can't be made").arg(width).arg(height));
    QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGB32);
    if (image.isNull()) return CannotWrite(job, QStringLiteral("not enough memory for the picture"));
    image.setDotsPerMeterX(static_cast<int>(std::lround(kUnitsPerInch * 1000 / kMillimetresPerInch)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    image.setDevicePixelRatio(scale);
    {
        QPainter painter(&image);
        QtCanvas canvas(painter);
        DrawSpectrumScene(canvas, {0, 0, width / scale, height / scale}, *job.scene);
    }
    image.setDotsPerMeterX(static_cast<int>(std::lround(job.dpi * 1000 / kMillimetresPerInch)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    QFile file(ToQString(job.path));
    if (!file.open(QIODevice::WriteOnly)) return CannotWrite(job, file.errorString());
    if (!image.save(&file, "PNG") || !file.flush())
        return CannotWrite(job, QStringLiteral("the picture can't be written"));
    return {};
}

QString WriteSvg(const PictureJob& job, const QSizeF& size)
{
    QFile file(ToQString(job.path));
    if (!file.open(QIODevice::WriteOnly)) return CannotWrite(job, file.errorString());
    QSvgGenerator generator;
    generator.setOutputDevice(&file);
    generator.setResolution(static_cast<int>(kUnitsPerInch));
    generator.setSize(QSize(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height()))));
    generator.setViewBox(QRectF(QPointF(0, 0), size));
    generator.setTitle(ToQString(job.scene->title));
    QPainter painter;
    if (!painter.begin(&generator)) return CannotWrite(job, QStringLiteral("the picture can't be written"));
    QtCanvas canvas(painter, QtCanvas::Target::vector);
    DrawSpectrumScene(canvas, {0, 0, size.width(), size.height()}, *job.scene);
    painter.end();
    return file.flush() ? QString() : CannotWrite(job, file.errorString());
}

QString WritePdf(const PictureJob& job, const QSizeF& size)
{
    QFile file(ToQString(job.path));
    if (!file.open(QIODevice::WriteOnly)) return CannotWrite(job, file.errorString());
    QPdfWriter writer(&file);
    writer.setResolution(static_cast<int>(kUnitsPerInch));
    writer.setPageSize(QPageSize(size * kPointsPerUnit, QPageSize::Point, {}, QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setTitle(ToQString(job.scene->title));
    writer.setCreator(QStringLiteral("nmr1d"));
    QPainter painter;
    if (!painter.begin(&writer)) return CannotWrite(job, QStringLiteral("the picture can't be written"));
    QtCanvas canvas(painter, QtCanvas::Target::vector);
    DrawSpectrumScene(canvas, {0, 0, size.width(), size.height()}, *job.scene);
    painter.end();
    return file.flush() ? QString() : CannotWrite(job, file.errorString());
}

} // namespace

QString WritePictureFile(const PictureJob& job)
{
    const QSizeF size = SizeOf(job);
    const bool fits = size.width() >= 1 && size.height() >= 1 && size.width() <= 1e5 && size.height() <= 1e5;
    if (job.scene == nullptr || !fits || !(job.dpi >= 1 && job.dpi <= 10000))
        return CannotWrite(job, QStringLiteral("bad size of the picture"));
    struct Format {
        const char* extension;
        QString (*write)(const PictureJob&, const QSizeF&);
    };
    constexpr Format kFormats[] = {{"png", WritePng}, {"svg", WriteSvg}, {"pdf", WritePdf}};
    const QString extension = QFileInfo(ToQString(job.path)).suffix().toLower();
    for (const Format& format : kFormats)
        if (extension == QLatin1String(format.extension)) return format.write(job, size);
    return CannotWrite(job, QStringLiteral("no picture format of this extension"));
}

} // namespace nmr
