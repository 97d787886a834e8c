// Repaint of the plot of a million points into an image of 1600 x 900 pixels.

#include "bench.h"
#include "layout/spectrum_scene.h"
#include "ui/canvas/qt_canvas.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <fmt/format.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace nmr::bench {
namespace {

constexpr std::size_t kPoints = 1'048'576;

// Noise with lines: the worst case for a polyline, since every column is full.
std::vector<float> Row()
{
    std::vector<float> row(kPoints);
    std::uint32_t state = 12345;
    for (std::size_t i = 0; i < kPoints; ++i) {
        state = state * 1664525U + 1013904223U;
        row[i] = static_cast<float>(state >> 8) / 16777216.0F * 0.1F;
        const double from_line = static_cast<double>(i % 50000) - 25000.0;
        row[i] += static_cast<float>(1.0 / (1.0 + from_line * from_line / 400.0));
    }
    return row;
}

std::vector<BenchRow> Plot()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = 1;
    char name[] = "nmr1d-bench";
    char* argv[] = {name, nullptr};
    const QGuiApplication application(argc, argv);
    const std::vector<float> row = Row();
    auto pyramid = std::make_shared<MinMaxPyramid>();
    std::vector<BenchRow> rows;
    rows.push_back({"reduction of 1048576 points", BestMs(10, [&] { pyramid->Build(row); }), "ms", 0, {}});
    SpectrumScene scene;
    scene.curves.push_back({row, pyramid, 0.0, 10.0 / kPoints, {}});
    scene.high = 1.2;
    scene.low = -0.2;
    QImage image(1600, 900, QImage::Format_ARGB32_Premultiplied);
    for (const double width : {1.0, 3.0})
        for (const double share : {1.0, 0.1, 0.001, 0.00001}) {
            scene.curves[0].pen = {{0, 114, 178}, width};
            scene.left_ppm = 5 + 5 * share;
            scene.right_ppm = 5 - 5 * share;
            const double ms = BestMs(20, [&] {
                QPainter painter(&image);
                QtCanvas canvas(painter);
                DrawSpectrumScene(canvas, {0, 0, 1600, 900}, scene);
            });
            rows.push_back(
                {fmt::format("repaint, pen {:.0f}, {:g} % of the axis", width, share * 100), ms, "ms", 2, {}});
        }
    return rows;
}

const bool registered = Register("plot", Plot);

} // namespace
} // namespace nmr::bench
