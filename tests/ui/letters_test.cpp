// Letters on the Qt canvas: measured as drawn, at any size and scale, and never a box.

#include "form_rig.h"
#include "layout/code_text.h"
#include "ui/canvas/letter_face.h"
#include "ui/canvas/qt_canvas.h"

#include <QImage>
#include <QPainter>

#include <gmock/gmock.h>

namespace nmr {
namespace {

using namespace test;

QImage White(int width, int height, double scale)
{
    QImage image(static_cast<int>(width * scale), static_cast<int>(height * scale), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    return image;
}

/// First and last column or row with ink, in canvas units.
struct Ink {
    double first = 1e9, last = -1;
};
Ink InkOf(const QImage& image, bool across, double scale)
{
    Ink ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) > 128) continue;
            const double at = (across ? x : y) / scale;
            ink.first = std::min(ink.first, at);
            ink.last = std::max(ink.last, at + 1 / scale);
        }
    return ink;
}

TEST(Letters, InkOfATextIsWhereItWasMeasured)
{
    App();
    // Pairs that kerning would draw together, ligatures, sizes between whole pixels.
    const char* texts[] = {"\\<HAVATAR To fine office H\\>", "\\<H\\+1 13\\+0 C\\g1 d\\i1 f\\i0 \\g0 \\-1 2\\-0 H\\>"};
    for (const char* text : texts)
        for (const double size : {7.3, 10.0, 13.37})
            for (const double scale : {1.0, 1.25, 2.0})
                for (const double angle : {0.0, 90.0}) {
                    SCOPED_TRACE(testing::Message() << text << " " << size << " x" << scale << " at " << angle);
                    QImage image = White(400, 400, scale);
                    QPainter painter(&image);
                    QtCanvas canvas(painter);
                    FontSpec font;
                    font.Size = static_cast<float>(size);
                    CodeTextPlace place{.x = 50, .y = 350, .angle_deg = angle};
                    Draw_CodeText(canvas, text, font, place);
                    // The stems of an H stand off its sides by the same share at any size.
                    const double bearing = 2 * 0.079 * size;
                    painter.end();
                    const Ink ink = InkOf(image, angle == 0, scale);
                    EXPECT_NEAR(ink.last - ink.first, place.right_limit - bearing, 1.2 / scale + 0.3);
                }
}

TEST(Letters, WidthsDoNotHangOnTheTarget)
{
    App();
    std::vector<double> widths;
    for (const double scale : {1.0, 1.25, 2.0}) {
        QImage image = White(10, 10, scale);
        image.setDotsPerMeterX(static_cast<int>(5000 * scale));
        QPainter painter(&image);
        painter.scale(scale * 3, scale * 3);
        QtCanvas canvas(painter, QtCanvas::Target::vector);
        widths.push_back(Measure_CodeText(canvas, "\\< AVfi \\g1 d\\g0 \xE2\x82\xAC\\>", FontSpec{}, 1.37));
    }
    EXPECT_EQ(widths[0], widths[1]);
    EXPECT_EQ(widths[0], widths[2]);
}

TEST(Letters, MissingFacesAndLettersAreToldOnceAndNeverBoxes)
{
    App();
    std::vector<std::string> told;
    SetFontNotice([&](const std::string& text) { told.push_back(text); });
    const auto draw = [](const FontSpecD& font, const char* letters) {
        QImage image = White(200, 60, 1);
        QPainter painter(&image);
        QtCanvas canvas(painter);
        canvas.SetFont(font);
        canvas.Text({10, 40}, letters);
        painter.end();
        return image;
    };
    const FontSpecD plain{"Liberation Sans", 30};
    EXPECT_EQ(draw({"No Such Face", 30}, "ab"), draw(plain, "ab"));
    EXPECT_EQ(draw({"No Such Face", 30}, "ab"), draw(plain, "ab"));
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0], testing::AllOf(testing::HasSubstr("No Such Face"), testing::HasSubstr("Liberation Sans")));
    // Faces that are cut for the same widths need no word.
    EXPECT_EQ(draw({"Arial", 30}, "ab"), draw(plain, "ab"));
    EXPECT_EQ(told.size(), 1U);
    // A letter of no face: Linear B lies in no usual one.
    const char* odd = "\xF0\x90\x82\x80";
    EXPECT_EQ(draw(plain, odd), draw(plain, "?"));
    EXPECT_EQ(draw(plain, odd), draw(plain, "?"));
    ASSERT_EQ(told.size(), 2U);
    EXPECT_THAT(told[1], testing::HasSubstr("package"));
    SetFontNotice([](const std::string&) {});
}

} // namespace
} // namespace nmr
