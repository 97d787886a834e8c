// The transform against FFTW (single precision, in place, measured plan, one thread) and the sine table.

#include "bench.h"

#include "fid/fft.h"
#include "fid/fft_paths.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <fmt/format.h>

#include <memory>
#include <random>

namespace nmr::bench {
namespace {

struct Signal {
    std::vector<float> re, im;
};

Signal MakeSignal(std::size_t n)
{
    std::mt19937 random(1);
    std::normal_distribution<float> noise;
    Signal signal{std::vector<float>(n), std::vector<float>(n)};
    for (std::size_t i = 0; i < n; ++i) {
        signal.re[i] = noise(random);
        signal.im[i] = noise(random);
    }
    return signal;
}

class FftwRow {
public:
    explicit FftwRow(std::size_t n) :
        points_(fftwf_alloc_complex(n)),
        plan_(fftwf_plan_dft_1d(static_cast<int>(n), points_, points_, FFTW_FORWARD, FFTW_MEASURE))
    {
    }
    ~FftwRow()
    {
        fftwf_destroy_plan(plan_);
        fftwf_free(points_);
    }
    FftwRow(const FftwRow&) = delete;
    FftwRow& operator=(const FftwRow&) = delete;
    void Fill(const Signal& signal)
    {
        for (std::size_t i = 0; i < signal.re.size(); ++i) {
            points_[i][0] = signal.re[i];
            points_[i][1] = signal.im[i];
        }
    }
    void Run() { fftwf_execute(plan_); }

private:
    fftwf_complex* points_;
    fftwf_plan plan_;
};

struct Length {
    std::size_t n;
    int times;
    double limit[3]; // by FFT_Path, in times FFTW; 0: none set
};

constexpr Length kLengths[] = {
    {65'536, 200, {0.0, 3.0, 2.0}},
    {131'072, 100, {0.0, 0.0, 0.0}},
    {1'048'576, 40, {0.0, 1.2, 0.9}},
};

void AddLength(std::vector<BenchRow>& rows, const Length& length, const std::vector<double>& table)
{
    const Signal signal = MakeSignal(length.n);
    Signal work = signal;
    FftwRow fftw(length.n);
    std::vector<Contender> contenders = {{[&] { fftw.Fill(signal); }, [&] { fftw.Run(); }}};
    std::vector<FFT_Path> paths;
    for (const FFT_Path path : {FFT_Path::avx512, FFT_Path::avx2, FFT_Path::plain}) {
        if (!FFT_Path_Available(path)) continue;
        paths.push_back(path);
        contenders.push_back({[&] {
                                  std::ranges::copy(signal.re, work.re.begin());
                                  std::ranges::copy(signal.im, work.im.begin());
                              },
                              [&work, &table, path] { FFT_Transform_By(path, work.re, work.im, table); }});
    }
    const auto best = BestMsInTurns(length.times, contenders);
    for (std::size_t i = 0; i < paths.size(); ++i)
        rows.push_back({.name = fmt::format("{} points, {}", length.n, FFT_Path_Name(paths[i])),
                        .measured = best[i + 1] / best[0],
                        .unit = "x FFTW",
                        .limit = length.limit[static_cast<std::size_t>(paths[i])],
                        .note = fmt::format("{:.3f} ms, FFTW {:.3f} ms", best[i + 1], best[0])});
}

std::vector<BenchRow> MeasureFft()
{
    std::vector<double> table;
    Make_Sine_Table(table);
    std::vector<BenchRow> rows;
    for (const Length& length : kLengths) AddLength(rows, length, table);
    Signal row = MakeSignal(1'048'576);
    rows.push_back({.name = "rotation and swap, 1048576 points",
                    .measured = BestMs(20, [&] { FFT_Rotate_And_Swap(row.re, row.im); })});
    rows.push_back({.name = "sine table", .measured = BestMs(5, [] {
                                              std::vector<double> fresh;
                                              Make_Sine_Table(fresh);
                                              benchmark::DoNotOptimize(fresh.data());
                                          })});
    return rows;
}

const bool registered = Register("fft", MeasureFft);

} // namespace
} // namespace nmr::bench
