// Repaint of the plot into a picture in memory, with axis and background, as the window does it.

#include "bench.h"
#include "offscreen.h"

#include "layout/spectrum_scene.h"
#include "ui/canvas/qt_canvas.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <fmt/format.h>

#include <cmath>
#include <memory>
#include <random>

namespace nmr::bench {
namespace {

constexpr std::size_t kPoints = 1'048'576;
constexpr double kLimitMs = 2, kWidthPpm = 14, kLowPpm = -2;
constexpr int kWidth = 1600, kHeight = 900, kTimes = 40;

/// Groups of sharp lines on a little noise, heights up to 1.
std::vector<float> SpectrumRow()
{
    std::mt19937 random(1);
    std::normal_distribution<float> noise(0, 0.003F);
    std::vector<float> row(kPoints);
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double ppm = kLowPpm + kWidthPpm * static_cast<double>(i) / (kPoints - 1);
        double height = 0;
        for (const double at : {0.0, 1.2, 1.21, 1.23, 3.5, 3.51, 3.52, 7.26, 7.3, 7.31, 7.4})
            height += 1 / (1 + std::pow((ppm - at) / 0.0012, 2));
        row[i] = static_cast<float>(height) + noise(random);
    }
    return row;
}

/// The worst that can come: every column full from top to bottom.
std::vector<float> NoiseRow()
{
    std::mt19937 random(2);
    std::uniform_real_distribution<float> noise(-1, 1);
    std::vector<float> row(kPoints);
    for (float& value : row) value = noise(random);
    return row;
}

SpectrumScene SceneOf(const std::vector<float>& row, double low)
{
    auto pyramid = std::make_shared<MinMaxPyramid>();
    pyramid->Build(row);
    SpectrumScene scene;
    scene.curves.push_back({row, pyramid, kLowPpm, kWidthPpm / (kPoints - 1), {{0, 114, 178}, 1, PenStyle::solid}});
    scene.low = low;
    scene.high = 1.05;
    scene.axis.font.size = 13;
    return scene;
}

BenchRow Repaint(const std::string& name, SpectrumScene& scene, double span_ppm, double pen)
{
    const double middle = span_ppm >= kWidthPpm ? kLowPpm + kWidthPpm / 2 : 1.21;
    scene.left_ppm = middle + span_ppm / 2;
    scene.right_ppm = middle - span_ppm / 2;
    scene.curves.front().pen.width = pen;
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    const double best = BestMs(kTimes, [&] {
        QPainter painter(&image);
        QtCanvas canvas(painter);
        DrawSpectrumScene(canvas, {0, 0, kWidth, kHeight}, scene);
    });
    const double shown = span_ppm / kWidthPpm * static_cast<double>(kPoints);
    return {fmt::format("{}, {:.0f} points shown, pen {:g}", name, shown, pen), best, "ms", kLimitMs};
}

std::vector<BenchRow> Measurements()
{
    const Offscreen<QGuiApplication> application;
    const auto spectrum = SpectrumRow(), noise = NoiseRow();
    std::vector<BenchRow> rows;
    MinMaxPyramid pyramid;
    rows.push_back({"reduction of 1,048,576 points", BestMs(kTimes, [&] { pyramid.Build(spectrum); })});
    auto lines = SceneOf(spectrum, -0.04), full = SceneOf(noise, -1.05);
    for (const double span : {14.0, 1.4, 0.14, 0.02, 0.001, 0.0001}) {
        for (const double pen : {1.0, 3.0}) {
            rows.push_back(Repaint("spectrum", lines, span, pen));
            rows.push_back(Repaint("full-height noise", full, span, pen));
        }
    }
    return rows;
}

const bool kRegistered = Register("plot", Measurements);

} // namespace
} // namespace nmr::bench
