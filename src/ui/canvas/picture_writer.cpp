#include "ui/canvas/picture_writer.h"

#include "layout/emf_canvas.h"
#include "layout/svg_canvas.h"
#include "ui/canvas/qt_canvas.h"

#include <QBuffer>
#include <QHashSeed>
#include <QImage>
#include <QPdfWriter>

#include <cmath>

namespace nmr {
namespace {

constexpr int kPdfDpi = 1200;

Error CanNot(std::string reason)
{
    return {ErrorCode::internal, "Picture", std::move(reason)};
}

/// Measures letters for canvases that write by themselves, as paper has them.
class Metrics {
public:
    Metrics() : image_(Blank()), painter_(&image_), canvas_(painter_) {}
    Canvas& canvas() { return canvas_; }

private:
    static QImage Blank()
    {
        QImage image(1, 1, QImage::Format_RGB32);
        const int dots = static_cast<int>(std::lround(kUnitsPerInch * 1000 / kMillimetresPerInch));
        image.setDotsPerMeterX(dots);
        image.setDotsPerMeterY(dots);
        return image;
    }
    QImage image_;
    QPainter painter_;
    QtCanvas canvas_;
};

Result<std::string> ImageFile(const QImage& image, const char* format)
{
    QBuffer file;
    if (!image.save(&file, format)) return CanNot("the picture can't be made");
    return file.data().toStdString();
}

std::string PngOf(const Raster& raster)
{
    const auto file = ImageFile(ToQImage(raster), "PNG");
    return file ? *file : std::string();
}

Result<std::string> MakeImage(const PictureJob& job, const char* format)
{
    const RectD pixels = PixelsOf(job.size);
    const double dpi = DpiOf(job.size), scale = dpi / kUnitsPerInch;
    QImage image(static_cast<int>(pixels.width), static_cast<int>(pixels.height), QImage::Format_RGB32);
    if (image.isNull()) return CanNot("there is not enough memory for the picture");
    image.fill(Qt::white);
    const auto dots = [](double per_inch) {
        return static_cast<int>(std::lround(per_inch * 1000 / kMillimetresPerInch));
    };
    // While it is drawn on, the image has the canvas's units; the file tells how large it is.
    image.setDotsPerMeterX(dots(kUnitsPerInch));
    image.setDotsPerMeterY(dots(kUnitsPerInch));
    image.setDevicePixelRatio(scale);
    {
        QPainter painter(&image);
        QtCanvas canvas(painter);
        job.draw(canvas, {0, 0, pixels.width / scale, pixels.height / scale});
    }
    image.setDevicePixelRatio(1);
    image.setDotsPerMeterX(dots(dpi));
    image.setDotsPerMeterY(dots(dpi));
    return ImageFile(image, format);
}

Result<std::string> MakeSvg(const PictureJob& job)
{
    Metrics metrics;
    SvgCanvas canvas(metrics.canvas(), PngOf);
    const RectD rect = UnitsOf(job.size);
    job.draw(canvas, rect);
    return canvas.Finish(rect.width, rect.height, job.title);
}

Result<std::string> MakeEmf(const PictureJob& job)
{
    Metrics metrics;
    const RectD rect = UnitsOf(job.size);
    EmfCanvas canvas(metrics.canvas(), rect.width, rect.height);
    job.draw(canvas, rect);
    return canvas.Finish(job.title);
}

/// Blanks out the date, so that the same drawing gives the same file; lengths and offsets stay.
void DropDate(std::string& pdf)
{
    constexpr std::string_view kDate = "/CreationDate (";
    const auto begin = pdf.rfind(kDate);
    if (begin == std::string::npos) return;
    const auto end = pdf.find(')', begin);
    if (end != std::string::npos) pdf.replace(begin, end + 1 - begin, end + 1 - begin, ' ');
}

/// While it lives, the toolkit's tables keep one order from run to run: that of the fonts in a PDF hangs on it.
struct SteadyOrder {
    SteadyOrder() { QHashSeed::setDeterministicGlobalSeed(); }
    ~SteadyOrder() { QHashSeed::resetRandomGlobalSeed(); }
    SteadyOrder(const SteadyOrder&) = delete;
    SteadyOrder& operator=(const SteadyOrder&) = delete;
};

Result<std::string> MakePdf(const PictureJob& job)
{
    const SteadyOrder order;
    const RectD rect = UnitsOf(job.size);
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&file);
        writer.setResolution(kPdfDpi);
        const QSizeF points(rect.width / kUnitsPerPoint, rect.height / kUnitsPerPoint);
        writer.setPageSize(QPageSize(points, QPageSize::Point, {}, QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer.setTitle(ToQString(job.title));
        writer.setCreator(QStringLiteral("nmr1d"));
        QPainter painter;
        if (!painter.begin(&writer)) return CanNot("the picture can't be made");
        painter.scale(kPdfDpi / kUnitsPerInch, kPdfDpi / kUnitsPerInch);
        QtCanvas canvas(painter, QtCanvas::Target::vector);
        job.draw(canvas, rect);
    }
    std::string pdf = file.data().toStdString();
    DropDate(pdf);
    return pdf;
}

} // namespace

Result<std::string> MakePicture(const PictureJob& job)
{
    if (const Status size = CheckPictureSize(job.size, job.format); !size) return size.error();
    switch (job.format) {
    case PictureFormat::pdf:
        return MakePdf(job);
    case PictureFormat::svg:
        return MakeSvg(job);
    case PictureFormat::emf:
        return MakeEmf(job);
    case PictureFormat::png:
        return MakeImage(job, "PNG");
    case PictureFormat::bmp:
        return MakeImage(job, "BMP");
    }
    return CanNot("there is no such format");
}

} // namespace nmr
