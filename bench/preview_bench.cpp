// From a moved control of the transform form to the data of the repainted preview, at two lengths.

#include "bench.h"
#include "sample_block.h"
#include "session/fft_form.h"

#include <fmt/format.h>

namespace nmr::bench {
namespace {

std::vector<BenchRow> AtLength(std::int32_t points, double limit_ms)
{
    SampleBlock sample(65536);
    FftForm form(sample.g(), sample.asker());
    std::vector<BenchRow> rows;
    if (!form.Open() || !form.SetZeroFill(points / sample.g().Slots[0].par.FIDPointsRaw)) return rows;
    ParamBlock& par = sample.g().Slots[0].par;
    const auto add = [&](const char* name, const std::function<void()>& body) {
        rows.push_back({fmt::format("{} points, {}", points, name), BestMs(15, body), "ms", limit_ms, {}});
    };
    double width = 0.2;
    add("window, with automatic phase", [&] {
        SetWindowField(par, WindowField::bf1, width += 0.1);
        static_cast<void>(form.WindowChanged());
    });
    form.SetAutoPhase(false);
    add("window", [&] {
        SetWindowField(par, WindowField::bf1, width += 0.1);
        static_cast<void>(form.WindowChanged());
    });
    std::int32_t shift = 0;
    add("shift", [&] { form.SetShift(++shift % 5); });
    add("phase of order 0", [&] { form.AddPhase0(1); });
    form.SetPhase1(30);
    add("phase of order 1", [&] { form.AddPhase1(1); });
    return rows;
}

std::vector<BenchRow> Preview()
{
    auto rows = AtLength(131072, 10);
    for (BenchRow& row : AtLength(kMaxPoints, 60)) rows.push_back(std::move(row));
    return rows;
}

const bool registered = Register("preview", Preview);

} // namespace
} // namespace nmr::bench
