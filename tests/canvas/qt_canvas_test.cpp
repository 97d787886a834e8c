#include "app.h"
#include "support/files.h"
#include "ui/canvas/picture_writer.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/canvas/stripes.h"

#include <QImage>
#include <QPainter>

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <set>

namespace nmr {
namespace {

using namespace test;

QImage Paper(int width, int height, double scale)
{
    QImage image(static_cast<int>(width * scale), static_cast<int>(height * scale), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    return image;
}

TEST(QtCanvas, UprightAndLevelLinesCoverWholePixelsAtEveryScale)
{
    App();
    struct Case {
        double scale, pen;
        int pixels;
    };
    for (const Case& c : {Case{1, 1, 1}, {1.25, 1, 1}, {1.5, 1, 2}, {2, 1, 2}, {3, 1, 3}, {1, 3, 3}, {2, 0.1, 1}}) {
        SCOPED_TRACE(testing::Message() << "scale " << c.scale << " pen " << c.pen);
        QImage image = Paper(40, 40, c.scale);
        {
            QPainter painter(&image);
            QtCanvas canvas(painter);
            canvas.SetPen({{0, 0, 0}, c.pen, PenStyle::solid});
            const Segment lines[] = {{{10.3, 5}, {10.3, 35}}, {{5, 20.7}, {35, 20.7}}};
            canvas.Lines(lines);
        }
        int across = 0, down = 0;
        const int row = static_cast<int>(10 * c.scale), column = static_cast<int>(25 * c.scale);
        std::set<QRgb> colors;
        for (int x = 0; x < image.width(); ++x) {
            colors.insert(image.pixel(x, row));
            if (image.pixel(x, row) == 0xff000000) ++across;
        }
        for (int y = 0; y < image.height(); ++y) {
            colors.insert(image.pixel(column, y));
            if (image.pixel(column, y) == 0xff000000) ++down;
        }
        EXPECT_EQ(across, c.pixels);
        EXPECT_EQ(down, c.pixels);
        EXPECT_THAT(colors, testing::ElementsAre(0xff000000, 0xffffffff)) << "no grey beside a line";
    }
}

TEST(FillStripes, PixelsTakeTheShareThatIsCovered)
{
    // Against counting of 64 sample rows a pixel.
    constexpr int kWidth = 37, kHeight = 50, kParts = 4, kSamples = 64;
    std::mt19937 random(5);
    std::uniform_real_distribution<float> anywhere(-10, 60), small(0, 3);
    for (int trial = 0; trial < 20; ++trial) {
        std::vector<Stripe> stripes(kWidth * kParts);
        for (Stripe& s : stripes) {
            s.top = anywhere(random);
            s.bottom = s.top + (trial % 2 == 0 ? small(random) : anywhere(random));
        }
        QImage image(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        FillStripes(image, stripes, {0, 1.0 / kParts, 0, 1}, qRgb(255, 0, 0));
        for (int x = 0; x < kWidth; ++x) {
            for (int y = 0; y < kHeight; ++y) {
                int covered = 0;
                for (int k = 0; k < kParts * kSamples; ++k) {
                    const Stripe& s = stripes[static_cast<std::size_t>(x * kParts + k / kSamples)];
                    const float at = static_cast<float>(y) + (static_cast<float>(k % kSamples) + 0.5F) / kSamples;
                    covered += at >= s.top && at < s.bottom ? 1 : 0;
                }
                ASSERT_NEAR(qAlpha(image.pixel(x, y)), 255.0 * covered / (kParts * kSamples), 6) << x << "," << y;
            }
        }
    }
}

PictureJob RedJob(PictureFormat format, const PictureSize& size)
{
    PictureJob job;
    job.format = format;
    job.size = size;
    job.draw = [](Canvas& canvas, const RectD& rect) {
        canvas.SetPen({{}, 0, PenStyle::none});
        canvas.SetBrush({255, 0, 0});
        canvas.Rectangle({0, 0, rect.width / 2, rect.height});
    };
    return job;
}

TEST(MakePicture, HasTheSizeThatWasAskedFor)
{
    App();
    struct Case {
        const char* name;
        PictureFormat format;
        PictureSize size;
        QSize pixels;
        double dpi;
    };
    for (const Case& c : {Case{"pixels", PictureFormat::png, {400, 200}, {400, 200}, 96},
                          {"pixels of a fine picture", PictureFormat::bmp, {400, 200, false, 192}, {400, 200}, 192},
                          {"mm", PictureFormat::png, {50.8, 25.4, true}, {600, 300}, 300},
                          {"mm with dots", PictureFormat::bmp, {100, 50, true, 254}, {1000, 500}, 254}}) {
        SCOPED_TRACE(c.name);
        const auto file = MakePicture(RedJob(c.format, c.size));
        ASSERT_TRUE(file);
        const QImage image = QImage::fromData(QByteArray::fromStdString(*file));
        EXPECT_EQ(image.size(), c.pixels);
        EXPECT_NEAR(image.dotsPerMeterX() * 0.0254, c.dpi, 0.1);
        EXPECT_EQ(image.pixel(image.width() / 2 - 1, image.height() - 1), qRgb(255, 0, 0));
        EXPECT_EQ(image.pixel(image.width() / 2, 0), qRgb(255, 255, 255)) << "paper is white";
    }
    EXPECT_THAT(*MakePicture(RedJob(PictureFormat::pdf, {400, 200})), testing::HasSubstr("MediaBox [0 0 300"));
    EXPECT_THAT(*MakePicture(RedJob(PictureFormat::svg, {100, 50, true})), testing::HasSubstr("width=\"100mm\""));
    const auto wrong = MakePicture(RedJob(PictureFormat::png, {0, 200}));
    ASSERT_FALSE(wrong);
    EXPECT_THAT(wrong.error().text, testing::HasSubstr("20 to 20000 pixels"));
}

TEST(QtCanvas, MeasuresWhatItDraws)
{
    App();
    for (const double scale : {1.0, 2.0}) {
        QImage image = Paper(300, 100, scale);
        QPainter painter(&image);
        QtCanvas canvas(painter);
        canvas.SetFont({"Liberation Sans", 30});
        const TextExtent extent = canvas.Measure("HHHH");
        canvas.SetPen({});
        canvas.Text({50, 60}, "HHHH");
        painter.end();
        int left = 9999, right = -1, top = 9999, bottom = -1;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qGray(image.pixel(x, y)) > 128) continue;
                left = std::min(left, x), right = std::max(right, x);
                top = std::min(top, y), bottom = std::max(bottom, y);
            }
        }
        EXPECT_NEAR(left / scale, 50 + 2.4, 2) << "the letter's own bearing";
        EXPECT_NEAR((right - left) / scale, extent.width - 4.8, 2.5);
        EXPECT_NEAR((bottom + 1) / scale, 60, 1) << "letters stand on the base line";
        EXPECT_NEAR((bottom + 1 - top) / scale, 0.688 * 30, 1) << "capitals of this face are 1409/2048 em tall";
    }
}

} // namespace
} // namespace nmr
