#include "form_rig.h"
#include "ui/form_dialogs.h"
#include "ui/picture_devices.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>

#include <gmock/gmock.h>

namespace nmr {
namespace {

using namespace test;

void Choose(QDialog& form, const char* name, int row)
{
    auto& box = Find<QComboBox>(form, name);
    box.setCurrentIndex(row);
    emit box.activated(row);
}

QPushButton& Ok(QDialog& form)
{
    return *static_cast<QPushButton*>(form.findChild<QDialogButtonBox*>()->buttons().constFirst());
}

TEST(SavePictureForm, KeepsTheSizeWhenTheUnitChangesAndRefusesWhatCanNotBe)
{
    App();
    QStringList hints;
    const auto hint = [](QDialog& form) { return Find<QLabel>(form, "Hint").text(); };
    WhenModal([&](QDialog& form) {
        Choose(form, "Format", 3); // PNG
        hints << hint(form);
        Choose(form, "Unit", 1);
        EXPECT_EQ(Find<QLineEdit>(form, "Combo51").text(), "600");
        EXPECT_EQ(Find<QLineEdit>(form, "Combo52").text(), "300");
        form.findChild<QCheckBox*>()->setChecked(true);
        Write(Find<QLineEdit>(form, "Combo52"), "150");
        EXPECT_EQ(Find<QLineEdit>(form, "Combo51").text(), "300") << "the other side follows";
        Write(Find<QLineEdit>(form, "Dpi"), "5");
        hints << hint(form);
        EXPECT_FALSE(Ok(form).isEnabled());
        Write(Find<QLineEdit>(form, "Dpi"), "150");
        EXPECT_TRUE(Ok(form).isEnabled());
        Ok(form).click();
    });
    const PictureChoice before{PictureFormat::pdf, {50.8, 25.4, true, 300}};
    const FormAnswer answer = SavePicture({forms::kSavePicture, before.ToValues()}, nullptr);
    EXPECT_EQ(answer.dialog_result, "OK");
    const PictureChoice after = PictureChoice::From(answer.values);
    EXPECT_EQ(after.format, PictureFormat::png);
    EXPECT_EQ(after.size, (PictureSize{300, 150, false, 150}));
    EXPECT_THAT(hints.value(0).toStdString(), testing::StartsWith("600 x 300 pixels"));
    EXPECT_THAT(hints.value(1).toStdString(), testing::HasSubstr("10 to 4800 dots"));
}

TEST(PrintForm, HandsBackPaperAndOrientation)
{
    App();
    WhenModal([&](QDialog& form) {
        Choose(form, "Orientation", 0);
        EXPECT_EQ(Find<QComboBox>(form, "Paper").currentText(), "A4: 210x297 mm Portrait");
        Choose(form, "Paper", 3);
        Ok(form).click();
    });
    const FormAnswer answer =
        PrintPlot({forms::kPrint, PrintChoice{"Laser", 1, Orientation::landscape}.ToValues()}, nullptr);
    const PrintChoice choice = PrintChoice::From(answer.values);
    EXPECT_EQ(choice.printer, "Laser");
    EXPECT_EQ(choice.paper, 3);
    EXPECT_EQ(choice.orientation, Orientation::portrait);
}

TEST(PictureDevices, TheClipboardHasDrawingsAndAPicture)
{
    App();
    QtPictureDevices devices;
    std::vector<CopiedPicture> pictures;
    for (const PictureFormatRow& row : PictureFormats()) {
        PictureJob job;
        job.format = row.format;
        job.size = {100, 50};
        job.draw = [](Canvas& canvas, const RectD& rect) { canvas.Ellipse(rect); };
        pictures.push_back({row.format, *devices.Make(job)});
    }
    devices.Copy(pictures);
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    for (const char* format : {"image/svg+xml", "application/pdf", "image/emf", "image/x-emf"})
        EXPECT_TRUE(data->hasFormat(format)) << format;
    EXPECT_EQ(qvariant_cast<QImage>(data->imageData()).size(), QSize(100, 50));
    EXPECT_EQ(devices.Open("no such printer"), nullptr);
}

} // namespace
} // namespace nmr
