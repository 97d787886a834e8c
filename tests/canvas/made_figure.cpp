#include "made_figure.h"

#include "layout/code_text.h"
#include "layout/spectrum_scene.h"

#include <cmath>
#include <memory>
#include <random>

namespace nmr::test {
namespace {

constexpr double kMm = kUnitsPerMillimetre;
constexpr Rgba kBlack{0, 0, 0}, kBlue{0, 114, 178}, kRed{213, 94, 0}, kGreen{0, 158, 115}, kNone{0, 0, 0, 0};

/// 65,536 points: sharp lines on noise.
struct MadeSpectrum {
    MadeSpectrum() : row(65536)
    {
        std::mt19937 random(11);
        std::normal_distribution<float> noise(0, 0.004F);
        for (std::size_t i = 0; i < row.size(); ++i) {
            const double ppm = kFirst + kStep * static_cast<double>(i);
            double height = 0;
            for (const double at : {1.18, 1.2, 1.22, 3.6, 3.62, 3.64, 3.66, 7.26, 8.1})
                height += 1 / (1 + std::pow((ppm - at) / 0.0015, 2));
            row[i] = static_cast<float>(height) + noise(random);
        }
        auto pyramid = std::make_shared<MinMaxPyramid>();
        pyramid->Build(row);
        scene.curves.push_back({row, pyramid, kFirst, kStep, {kBlue, 0.1 * kMm, PenStyle::solid}});
        scene.left_ppm = 10;
        scene.right_ppm = 0;
        scene.low = -0.05;
        scene.high = 1.2;
        scene.background = kNone;
        scene.axis.title = "\\< \\g1 d\\g0 (\\+1 1\\+0 H) / ppm\\>";
        scene.axis.pen = {kBlack, 0.15 * kMm, PenStyle::solid};
        scene.axis.font.size = 9 * kUnitsPerPoint;
        scene.title = "Spectrum & <axis>";
    }
    static constexpr double kFirst = -0.5, kStep = 11.0 / 65535;
    std::vector<float> row;
    SpectrumScene scene;
};

void DrawSpectrum(Canvas& canvas)
{
    static const MadeSpectrum made;
    DrawSpectrumScene(canvas, {5 * kMm, 5 * kMm, 150 * kMm, 50 * kMm}, made.scene);
}

FigureObject CodeText(std::string name, double x_mm, double y_mm, std::string text, double angle_deg, FontSpec font)
{
    return {std::move(name), [=](Canvas& canvas) {
                CodeTextPlace place{.x = x_mm * kMm, .y = y_mm * kMm, .angle_deg = angle_deg, .scale = kUnitsPerPoint};
                static_cast<void>(Draw_CodeText(canvas, text, font, place));
            }};
}

FigureObject LineOf(const char* name, PenStyle style, double width, double y_mm)
{
    return {std::string("pen ") + name, [=](Canvas& canvas) {
                canvas.SetPen({kBlack, width, style});
                const Segment line[] = {{{8 * kMm, y_mm * kMm}, {48 * kMm, y_mm * kMm}}};
                canvas.Lines(line);
            }};
}

void DrawPicture(Canvas& canvas)
{
    std::vector<Rgba> pixels;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 12; ++x)
            pixels.push_back({std::uint8_t(x * 20), std::uint8_t(y * 30), std::uint8_t(220 - x * 10)});
    canvas.Picture({55 * kMm, 90 * kMm, 18 * kMm, 12 * kMm}, {12, 8, pixels});
}

void DrawClipped(Canvas& canvas)
{
    canvas.PushClip({80 * kMm, 90 * kMm, 14 * kMm, 12 * kMm});
    canvas.SetPen({kRed, 0.5 * kMm, PenStyle::solid});
    canvas.SetBrush(kNone);
    for (int i = 0; i < 9; ++i)
        canvas.Ellipse({(78 + i) * kMm, (88 + i) * kMm, (18 - 2 * i) * kMm, (16 - 2 * i) * kMm});
    canvas.PopClip();
}

void DrawFilled(Canvas& canvas, Rgba pen, Rgba fill, const std::function<void()>& shape)
{
    canvas.SetPen({pen, 0.4 * kMm, PenStyle::solid});
    canvas.SetBrush(fill);
    shape();
    canvas.SetBrush(kNone);
}

void DrawAligned(Canvas& canvas)
{
    canvas.SetFont({"Liberation Sans", 9 * kUnitsPerPoint});
    canvas.SetPen({kBlack, 1, PenStyle::solid});
    canvas.Text({143 * kMm, 92 * kMm}, "to the right", TextAlign::right);
    canvas.Text({130 * kMm, 97 * kMm}, "in the middle", TextAlign::centre);
    canvas.Text({153 * kMm, 95 * kMm}, "turned, right", TextAlign::right, 30);
}

std::vector<FigureObject> MakeObjects()
{
    const FontSpec plain{.Size = 12}, red{.Size = 11, .Color = ToSetting(kRed)}, bold{.Size = 11, .Bold = -1};
    std::vector<FigureObject> objects;
    objects.push_back({"frame", [](Canvas& canvas) {
                           canvas.SetPen({kBlack, 0.2 * kMm, PenStyle::solid});
                           canvas.SetBrush(kNone);
                           canvas.Rectangle({2 * kMm, 2 * kMm, 156 * kMm, 106 * kMm});
                       }});
    objects.push_back({"spectrum", DrawSpectrum});
    objects.push_back(CodeText("Greek", 8, 58, "\\< \\g1 abgdlpDSW\\g0  = 109.5\\'b0:\\>", 0, plain));
    objects.push_back(
        CodeText("scripts", 52, 58,
                 "\\< C\\-1 6\\-0 H\\-1 5\\-0 CH\\-1 3\\-0 , 1.5\\'d7:10\\+1 -3\\+0  mol L\\+1 -1\\+0 \\>", 0, plain));
    objects.push_back(CodeText("slanted and struck", 110, 58,
                               "\\< \\i1 J\\i0 \\-1 HH\\-0 , \\u1 under\\u0 , \\s1 out\\s0 \\>", 0, red));
    objects.push_back(CodeText("bold at 30 degrees", 100, 84, "\\< Turned \\g1 a\\g0 \\+1 2\\+0 \\>", 30, bold));
    objects.push_back(CodeText("text at 90 degrees", 145, 86, "\\< Intensity\\cr second\\>", 90, plain));
    const struct {
        const char* name;
        PenStyle style;
    } pens[] = {{"solid", PenStyle::solid},
                {"dash", PenStyle::dash},
                {"dot", PenStyle::dot},
                {"dash dot", PenStyle::dash_dot},
                {"dash dot dot", PenStyle::dash_dot_dot}};
    double y_mm = 70;
    for (const auto& pen : pens) objects.push_back(LineOf(pen.name, pen.style, 0.5 * kMm, y_mm += 3));
    objects.push_back(LineOf("of a point", PenStyle::solid, kUnitsPerPoint, y_mm += 3));
    objects.push_back(LineOf("of two mm", PenStyle::solid, 2 * kMm, y_mm += 4));
    objects.push_back(LineOf("thin dash", PenStyle::dash, 0.2 * kMm, y_mm += 4));
    objects.push_back({"filled ellipse", [](Canvas& c) {
                           DrawFilled(c, kBlack, kGreen, [&] { c.Ellipse({55 * kMm, 68 * kMm, 18 * kMm, 10 * kMm}); });
                       }});
    objects.push_back(
        {"half clear rectangle", [](Canvas& c) {
             DrawFilled(c, kNone, {213, 94, 0, 128}, [&] { c.Rectangle({66 * kMm, 72 * kMm, 16 * kMm, 10 * kMm}); });
         }});
    objects.push_back({"arc", [](Canvas& canvas) {
                           canvas.SetPen({kBlue, 0.6 * kMm, PenStyle::solid});
                           canvas.Arc({84 * kMm, 68 * kMm, 14 * kMm, 14 * kMm}, 20, 250);
                       }});
    objects.push_back(
        {"polygon", [](Canvas& c) {
             const PointD points[] = {{100 * kMm, 100 * kMm}, {116 * kMm, 100 * kMm}, {108 * kMm, 90 * kMm}};
             DrawFilled(c, kBlue, {230, 200, 80}, [&] { c.Polygon(points); });
         }});
    objects.push_back({"picture", DrawPicture});
    objects.push_back({"clipped rings", DrawClipped});
    objects.push_back({"aligned text", DrawAligned});
    return objects;
}

} // namespace

const std::vector<FigureObject>& FigureObjects()
{
    static const std::vector<FigureObject> objects = MakeObjects();
    return objects;
}

PictureJob FigureJob(PictureFormat format, const std::string& without)
{
    PictureJob job;
    job.format = format;
    job.size = kFigureSize;
    job.title = "Made figure: \xCE\xB1 & <\xCE\xB2>";
    job.draw = [without](Canvas& canvas, const RectD&) {
        for (const FigureObject& object : FigureObjects()) {
            if (object.name == without) continue;
            canvas.BeginGroup(object.name);
            object.draw(canvas);
            canvas.EndGroup();
        }
    };
    return job;
}

} // namespace nmr::test
