#include "ui/picture_devices.h"

#include "ui/canvas/picture_writer.h"
#include "ui/canvas/qt_canvas.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPrinter>
#include <QPrinterInfo>

#include <algorithm>

namespace nmr {
namespace {

class QtPrintDevice : public PrintDevice {
public:
    explicit QtPrintDevice(const QPrinterInfo& info) : printer_(info, QPrinter::HighResolution)
    {
        printer_.setFullPage(true); // the page has margins of its own
    }
    RectD SetPaper(const PrintChoice& choice) override
    {
        const PaperRow& row = PaperOf(choice.paper);
        printer_.setPageSize(QPageSize(QSizeF(row.width_mm, row.height_mm), QPageSize::Millimeter, ToQString(row.name),
                                       QPageSize::FuzzyMatch));
        printer_.setPageOrientation(choice.orientation == Orientation::landscape ? QPageLayout::Landscape
                                                                                 : QPageLayout::Portrait);
        const QSizeF size = printer_.pageLayout().fullRect(QPageLayout::Millimeter).size();
        return {0, 0, size.width(), size.height()};
    }
    bool Print(const std::string& job_name, const DrawPage& draw) override
    {
        printer_.setDocName(ToQString(job_name));
        printer_.setCreator(QStringLiteral("nmr1d"));
        QPainter painter;
        if (!painter.begin(&printer_)) return false;
        const double scale = printer_.resolution() / kUnitsPerInch;
        painter.scale(scale, scale);
        QtCanvas canvas(painter, QtCanvas::Target::vector, std::min(scale, kPaperDpi / kUnitsPerInch));
        const QSizeF size = printer_.pageLayout().fullRect(QPageLayout::Inch).size() * kUnitsPerInch;
        draw(canvas, {0, 0, size.width(), size.height()});
        return painter.end() && printer_.printerState() != QPrinter::Error;
    }

private:
    QPrinter printer_;
};

} // namespace

Result<std::string> QtPictureDevices::Make(const PictureJob& job)
{
    return MakePicture(job);
}

void QtPictureDevices::Copy(const std::vector<CopiedPicture>& pictures)
{
    auto* data = new QMimeData; // the clipboard's from here on
    for (const CopiedPicture& picture : pictures) {
        const QByteArray bytes = QByteArray::fromStdString(picture.bytes);
        if (RowOf(picture.format).pixels) {
            data->setImageData(QImage::fromData(bytes));
            continue;
        }
        data->setData(ToQString(RowOf(picture.format).mime), bytes);
        if (picture.format == PictureFormat::emf) data->setData(QStringLiteral("image/x-emf"), bytes); // its older name
    }
    QGuiApplication::clipboard()->setMimeData(data);
}

std::unique_ptr<PrintDevice> QtPictureDevices::Open(const std::string& printer)
{
    const QPrinterInfo info = QPrinterInfo::printerInfo(ToQString(printer));
    if (info.isNull()) return nullptr;
    return std::make_unique<QtPrintDevice>(info);
}

} // namespace nmr
