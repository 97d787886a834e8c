#include "layout/picture_job.h"

#include <gmock/gmock.h>

namespace nmr {
namespace {

TEST(PictureSize, IsReadAsItIsWritten)
{
    struct Case {
        const char* text;
        PictureSize size;
    };
    for (const Case& c : {Case{"1200x700", {1200, 700}},
                          {"160x90mm", {160, 90, true}},
                          {" 80.5 X 60 MM ", {80.5, 60, true}},
                          {"640x480px", {640, 480}}}) {
        const auto size = ParsePictureSize(c.text);
        ASSERT_TRUE(size) << c.text;
        EXPECT_EQ(*size, c.size) << c.text;
    }
}

TEST(PictureSize, SaysWhatIsWrong)
{
    struct Case {
        const char* text;
        const char* reason;
    };
    for (const Case& c : {Case{"", "WIDTHxHEIGHT"},
                          {"800", "not \"800\""},
                          {"x600", "WIDTHxHEIGHT"},
                          {"800x", "WIDTHxHEIGHT"},
                          {"800x600cm", "WIDTHxHEIGHT"},
                          {"8e2x-5", "20 to 20000 pixels, not -5"},
                          {"nanx100", "WIDTHxHEIGHT"},
                          {"1e9x10", "not 1e+09"},
                          {"1x1mm", "5 to 2000 mm, not 1"},
                          {"100.5x60", "whole numbers"}}) {
        const auto size = ParsePictureSize(c.text);
        ASSERT_FALSE(size) << c.text;
        EXPECT_THAT(size.error().text, testing::HasSubstr(c.reason)) << c.text;
    }
}

TEST(PictureSize, IsCheckedForItsFormat)
{
    struct Case {
        const char* name;
        PictureSize size;
        PictureFormat format;
        const char* reason; ///< empty: it can be made
    };
    for (const Case& c :
         {Case{"A4 at 300", {297, 210, true}, PictureFormat::png, ""},
          {"a poster", {1200, 900, true}, PictureFormat::pdf, ""},
          {"a poster in pixels", {1200, 900, true, 600}, PictureFormat::png, "20 to 20000 pixels, not 28346"},
          {"too many in all", {15000, 15000}, PictureFormat::bmp, "too large"},
          {"no resolution", {100, 100, true, -1}, PictureFormat::svg, "10 to 4800 dots"},
          {"hardly any", {40, 40, true, 10}, PictureFormat::png, "pixels, not 16"}}) {
        SCOPED_TRACE(c.name);
        const Status status = CheckPictureSize(c.size, c.format);
        EXPECT_EQ(static_cast<bool>(status), *c.reason == 0);
        EXPECT_THAT(status.error().text, testing::HasSubstr(c.reason));
    }
}

TEST(PictureFormats, AreToldByTheExtension)
{
    EXPECT_EQ(PictureFormatOf("a/b.PNG"), PictureFormat::png);
    EXPECT_EQ(PictureFormatOf("a.emf"), PictureFormat::emf);
    for (const char* path : {"", ".png", "a.jpg", "png", "a.png "}) EXPECT_FALSE(PictureFormatOf(path)) << path;
    EXPECT_EQ(PictureExtensions(), ".pdf, .svg, .emf, .png or .bmp");
}

} // namespace
} // namespace nmr
