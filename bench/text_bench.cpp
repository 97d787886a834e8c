// Labels of a page: formatted texts drawn into a picture in memory.

#include "bench.h"
#include "offscreen.h"

#include "layout/code_text.h"
#include "ui/canvas/qt_canvas.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <string>

namespace nmr::bench {
namespace {

constexpr int kObjects = 200, kTimes = 20;
constexpr double kLimitMs = 10, kScale = 96.0 / 72;

struct Case {
    const char *name, *text;
};
// Each has 40 letters.
constexpr Case kCases[] = {
    {"plain", "\\< strychnine in chloroform, 25 C, 600.13 M\\>"},
    {"with scripts, Greek and italics",
     "\\< \\+1 13\\+0 C{\\+1 1\\+0 H} NMR, \\g1 d\\g0 \\-1 C\\-0 /ppm, \\i1 J\\i0  = 7.1 Hz, CDCl\\-1 3\\-0 , "
     "298K\\>"}};

BenchRow Row(const Case& c, double angle_deg)
{
    QImage image(1600, 900, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    QtCanvas canvas(painter);
    const FontSpec font;
    const double best = BestMs(kTimes, [&] {
        for (int i = 0; i < kObjects; ++i) {
            CodeTextPlace place{
                .x = 10.0 + i % 4 * 390, .y = 20.0 + i / 4 * 17, .angle_deg = angle_deg, .scale = kScale};
            static_cast<void>(Draw_CodeText(canvas, c.text, font, place));
        }
    });
    return {std::string("200 texts of 40 letters, ") + c.name + (angle_deg == 0 ? "" : ", turned"), best, "ms",
            kLimitMs};
}

std::vector<BenchRow> Measurements()
{
    const Offscreen<QGuiApplication> application;
    std::vector<BenchRow> rows;
    for (const Case& c : kCases)
        for (const double angle : {0.0, 30.0}) rows.push_back(Row(c, angle));
    return rows;
}

const bool kRegistered = Register("text", Measurements);

} // namespace
} // namespace nmr::bench
