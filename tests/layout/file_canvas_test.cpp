// The canvases that write files by themselves: what stands in the files.

#include "layout/emf_canvas.h"
#include "layout/shapes.h"
#include "layout/svg_canvas.h"
#include "support/recording_canvas.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>
#include <map>
#include <utility>

namespace nmr {
namespace {

using test::RecordingCanvas;
using testing::HasSubstr;

/// Every operation once, some with values that no picture should hold.
void DrawAll(Canvas& canvas)
{
    const double huge = 1e300, none = std::numeric_limits<double>::quiet_NaN();
    const PointD points[] = {{0, 0}, {10, 10}, {20, 0}, {none, huge}, {-huge, 3}};
    const Segment lines[] = {{{0, 0}, {5, 5}}, {{1, 1}, {1, 1}}};
    const Rgba pixels[] = {{255, 0, 0}, {0, 255, 0, 0}, {0, 0, 255}, {1, 2, 3}};
    for (const PenStyle style : {PenStyle::none, PenStyle::solid, PenStyle::dash_dot_dot}) {
        canvas.BeginGroup("a <group> & more");
        canvas.SetPen({{10, 20, 30, 128}, style == PenStyle::solid ? 0.0 : 2.0, style});
        canvas.SetBrush({200, 100, 50, 200});
        canvas.Polyline(points);
        canvas.Polygon(points);
        canvas.Lines(lines);
        canvas.PushClip({1, 1, 30, 30});
        canvas.Rectangle({0, 0, 10, 10});
        canvas.Ellipse({0, 0, 10, 10});
        canvas.Arc({0, 0, 10, 10}, 30, -90);
        canvas.PopClip();
        canvas.Picture({5, 5, 10, 10}, {2, 2, pixels});
        canvas.Picture({5, 5, 10, 10}, {3, 2, pixels}); // says more pixels than it has
        canvas.SetFont({.family = "Liberation Sans \"face\" & more", .size = 12, .underline = true, .strikeout = true});
        canvas.Text({3, 3}, "a<b>&\x01\xCE\xB1\xF0\x9D\x9B\xBC", TextAlign::centre, 33.3);
        canvas.Text({3, 3}, "");
        canvas.Polyline({});
        canvas.Polygon({});
        canvas.Lines({});
        canvas.EndGroup();
    }
}

std::int32_t Word(const std::string& bytes, std::size_t at)
{
    std::int32_t word = 0;
    EXPECT_LE(at + 4, bytes.size());
    if (at + 4 <= bytes.size()) std::memcpy(&word, bytes.data() + at, 4);
    return word;
}

std::string DrawnEmf(double width, double height)
{
    RecordingCanvas metrics;
    EmfCanvas canvas(metrics, width, height);
    DrawAll(canvas);
    return canvas.Finish("A \xCE\xB1 title");
}

TEST(EmfCanvas, RecordsAndHeaderHoldTogether)
{
    const std::string file = DrawnEmf(96 * 4, 96 * 2);
    std::map<std::int32_t, int> counts;
    std::size_t at = 0;
    std::int32_t records = 0, saved = 0, groups = 0;
    std::map<std::int32_t, bool> made;
    while (at < file.size()) {
        const std::int32_t type = Word(file, at), size = Word(file, at + 4);
        ASSERT_GE(size, 8);
        ASSERT_EQ(size % 4, 0);
        ++records;
        ++counts[type];
        const std::int32_t index = size >= 12 ? Word(file, at + 8) : 0;
        const auto kind = static_cast<EmfType>(type);
        if (kind == EmfType::ext_create_pen || kind == EmfType::create_brush || kind == EmfType::create_font) {
            EXPECT_FALSE(made[index]) << "an index is free before it is used";
            EXPECT_LT(index, 7);
            made[index] = true;
        }
        if (kind == EmfType::select_object) {
            EXPECT_TRUE(index < 0 || made[index]);
        }
        if (kind == EmfType::delete_object) {
            EXPECT_TRUE(std::exchange(made[index], false));
        }
        if (kind == EmfType::save_dc) ++saved;
        if (kind == EmfType::restore_dc) --saved;
        if (kind == EmfType::gdi_comment) groups += Word(file, at + 16) == 2 ? 1 : -1;
        at += static_cast<std::size_t>(size);
    }
    EXPECT_EQ(at, file.size());
    EXPECT_EQ(saved, 0);
    EXPECT_EQ(groups, 0);
    for (const auto& [index, there] : made) EXPECT_FALSE(there) << "object " << index << " is left";
    EXPECT_EQ(Word(file, 0), 1);
    EXPECT_EQ(Word(file, 32), 10160) << "4 inches in 0.01 mm";
    EXPECT_EQ(Word(file, 36), 5080);
    EXPECT_EQ(Word(file, 40), 0x464D4520);
    EXPECT_EQ(Word(file, 48), static_cast<std::int32_t>(file.size()));
    EXPECT_EQ(Word(file, 52), records);
    EXPECT_EQ(Word(file, 56), 7);
    EXPECT_EQ(counts[static_cast<int>(EmfType::stretch_dibits)], 3) << "the picture that isn't valid is left out";
    EXPECT_EQ(counts[static_cast<int>(EmfType::ext_text_out)], 3);
    EXPECT_THAT(file, HasSubstr(std::string("\xB1\x03\x35\xD8\xFC\xDE", 6))) << "a letter beyond 16 bits takes two";
}

TEST(EmfCanvas, LargePicturesKeepTo16Bits)
{
    RecordingCanvas metrics;
    EmfCanvas canvas(metrics, 8000, 4000); // over two metres
    const PointD ends[] = {{0, 0}, {8000, 4000}};
    canvas.Polyline(ends);
    const std::string file = canvas.Finish("");
    const auto at = file.find(std::string("\x57\0\0\0", 4));
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(Word(file, at + 24), 2);
    EXPECT_EQ(Word(file, at + 32), 32000 | 16000 << 16);
    EXPECT_EQ(Word(file, 32), 211667);
}

TEST(SvgCanvas, IsWellFormedAndKeepsWhatIsDrawn)
{
    RecordingCanvas metrics;
    SvgCanvas canvas(metrics, [](const Raster&) { return std::string("PNG!"); });
    DrawAll(canvas);
    const std::string file = canvas.Finish(384, 192, "a < b");
    EXPECT_THAT(file, HasSubstr("width=\"101.6mm\" height=\"50.8mm\" viewBox=\"0 0 384 192\""));
    EXPECT_THAT(file, HasSubstr("<title>a &lt; b</title>"));
    EXPECT_THAT(file, HasSubstr("a&lt;b&gt;&amp; \xCE\xB1"));
    EXPECT_THAT(file, HasSubstr("Liberation Sans &quot;face&quot; &amp; more"));
    EXPECT_THAT(file, HasSubstr("base64,UE5HIQ==\""));
    // Tags open and close in order.
    std::vector<std::string> open;
    for (std::size_t at = file.find("<svg"); at != std::string::npos; at = file.find('<', at + 1)) {
        const auto end = file.find('>', at);
        ASSERT_NE(end, std::string::npos);
        if (file[end - 1] == '/') continue;
        const bool closes = file[at + 1] == '/';
        const auto from = at + (closes ? 2 : 1);
        const std::string name = file.substr(from, file.find_first_of(" >", from) - from);
        if (!closes) {
            open.push_back(name);
            continue;
        }
        ASSERT_FALSE(open.empty());
        EXPECT_EQ(open.back(), name);
        open.pop_back();
    }
    EXPECT_TRUE(open.empty());
}

TEST(SvgCanvas, PathsComeBackToTheirPoints)
{
    RecordingCanvas metrics;
    SvgCanvas canvas(metrics, {});
    std::vector<PointD> points;
    for (int i = 0; i < 400; ++i) points.push_back({i * 0.333, 50 - 49.9 * std::sin(i * 1.7)});
    canvas.Polyline(points);
    std::string file = canvas.Finish(200, 100, "");
    const auto begin = file.find(" d=\"M") + 5;
    file = file.substr(begin, file.find('"', begin) - begin);
    // Split as a reader does: at blanks and letters, before a sign, and before a second point.
    std::vector<double> numbers;
    std::string number;
    const auto flush = [&] {
        if (!number.empty()) numbers.push_back(std::stod(number));
        number.clear();
    };
    for (const char c : file) {
        if (c == ' ' || c == 'l' || c == '-' || (c == '.' && number.find('.') != std::string::npos)) flush();
        if (c != ' ' && c != 'l') number += c;
    }
    flush();
    ASSERT_EQ(numbers.size(), 2 * points.size());
    double x = 0, y = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        x += numbers[2 * i], y += numbers[2 * i + 1];
        ASSERT_NEAR(x, points[i].x, 0.0051) << i;
        ASSERT_NEAR(y, points[i].y, 0.0051) << i;
    }
}

TEST(DashPieces, CoverTheirShareOfALine)
{
    const PointD corner[] = {{0, 0}, {30, 0}, {30, 30}};
    struct Case {
        const char* name;
        std::vector<double> dashes;
        std::size_t pieces;
        double length;
    };
    for (const Case& c : {Case{"solid", {}, 1, 60},
                          {"dash", {4, 2}, 10, 40},
                          {"dash and dot", {4, 2, 1, 2}, 13, 34},
                          {"over the corner", {20, 5}, 3, 50},
                          {"too many", {1e-9, 1e-9}, 1, 60}}) {
        SCOPED_TRACE(c.name);
        const auto pieces = DashPieces(corner, c.dashes);
        double length = 0;
        for (const auto& piece : pieces)
            for (std::size_t i = 1; i < piece.size(); ++i)
                length += std::hypot(piece[i].x - piece[i - 1].x, piece[i].y - piece[i - 1].y);
        EXPECT_EQ(pieces.size(), c.pieces);
        EXPECT_NEAR(length, c.length, 1e-9);
    }
}

TEST(ArcPoints, LieOnTheEllipseAndGoCounterClockwise)
{
    const auto points = ArcPoints({10, 20, 40, 20}, 90, 90);
    EXPECT_NEAR(points.front().y, 20, 1e-9) << "the top";
    EXPECT_NEAR(points.back().x, 10, 1e-9) << "the left end";
    for (const PointD& p : points) EXPECT_NEAR(std::hypot((p.x - 30) / 20, (p.y - 30) / 10), 1, 1e-9);
    EXPECT_GT(ArcPoints({0, 0, 1000, 1000}, 0, 360).size(), 100U);
    EXPECT_LT(ArcPoints({0, 0, 1000, 1000}, 0, 1e9).size(), 1000U);
}

} // namespace
} // namespace nmr
