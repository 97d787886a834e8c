// A page-wide plot with its axis as a picture file of each format: processor time and size.

#include "bench.h"
#include "offscreen.h"

#include "layout/spectrum_scene.h"
#include "ui/canvas/picture_writer.h"

#include <QGuiApplication>

#include <cmath>
#include <memory>
#include <random>

namespace nmr::bench {
namespace {

constexpr std::size_t kPoints = 65'536;
constexpr double kWidthPpm = 12;
constexpr int kTimes = 10;
constexpr PictureSize kPage{297, 210, true, 300};

struct Limit {
    PictureFormat format;
    double ms, kilobytes; ///< 0: none
};
constexpr Limit kLimits[] = {{PictureFormat::pdf, 60, 150},
                             {PictureFormat::svg, 60, 300},
                             {PictureFormat::emf, 20, 0},
                             {PictureFormat::png, 400, 0},
                             {PictureFormat::bmp, 0, 0}};

/// Groups of sharp lines on noise.
std::vector<float> SpectrumRow(float noise_level)
{
    std::mt19937 random(1);
    std::normal_distribution<float> noise(0, noise_level);
    std::vector<float> row(kPoints);
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double ppm = kWidthPpm * static_cast<double>(i) / (kPoints - 1);
        double height = 0;
        for (const double at : {1.2, 1.21, 1.23, 3.5, 3.51, 3.52, 7.26, 7.3, 7.31, 7.4})
            height += 1 / (1 + std::pow((ppm - at) / 0.0012, 2));
        row[i] = static_cast<float>(height) + noise(random);
    }
    return row;
}

void Measure(std::vector<BenchRow>& rows, const std::string& name, float noise)
{
    const auto row = SpectrumRow(noise);
    auto pyramid = std::make_shared<MinMaxPyramid>();
    pyramid->Build(row);
    SpectrumScene scene;
    scene.curves.push_back(
        {row, pyramid, 0, kWidthPpm / (kPoints - 1), {{0, 114, 178}, 0.1 * kUnitsPerMillimetre, PenStyle::solid}});
    scene.left_ppm = kWidthPpm;
    scene.low = -0.05;
    scene.high = 1.05;
    scene.axis.font.size = 13;
    PictureJob job;
    job.size = kPage;
    job.draw = [&scene](Canvas& canvas, const RectD& rect) { DrawSpectrumScene(canvas, rect, scene); };
    for (const Limit& limit : kLimits) {
        job.format = limit.format;
        std::size_t bytes = 0;
        const double best = BestCpuMs(kTimes, [&] {
            const auto picture = MakePicture(job);
            bytes = picture ? picture->size() : 0;
        });
        const std::string what(RowOf(limit.format).extension.substr(1));
        rows.push_back({name + ", " + what, best, "ms", limit.ms});
        rows.push_back({name + ", " + what + ", size", static_cast<double>(bytes) / 1000, "kB", limit.kilobytes});
    }
}

std::vector<BenchRow> Measurements()
{
    const Offscreen<QGuiApplication> application;
    std::vector<BenchRow> rows;
    Measure(rows, "A4, 65536 points", 0.003F);
    Measure(rows, "A4, 65536 points of strong noise", 0.2F);
    return rows;
}

const bool kRegistered = Register("picture", Measurements);

} // namespace
} // namespace nmr::bench
