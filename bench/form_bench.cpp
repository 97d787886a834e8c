// From a moved control of "FFT & Phase" to both plots repainted, as a user waits for it.

#include "bench.h"
#include "offscreen.h"
#include "sample_block.h"
#include "session/fft_form.h"
#include "ui/fft_dialog.h"
#include "ui/fft_panels.h"

#include <QApplication>

#include <fmt/format.h>

namespace nmr::bench {
namespace {

std::vector<BenchRow> AtLength(std::int32_t points, double limit_ms)
{
    SampleBlock sample(65536);
    FftForm form(sample.g(), sample.asker());
    if (!form.Open() || !form.SetZeroFill(points / 65536)) return {};
    form.SetAutoPhase(false);
    FftDialog dialog(form);
    dialog.resize(1180, 780);
    dialog.show();
    QApplication::processEvents();
    std::vector<BenchRow> rows;
    const auto add = [&](const char* name, const std::function<void()>& change) {
        const double ms = BestMs(15, [&] {
            change();
            dialog.fid().Refresh();
            dialog.preview().Refresh();
            dialog.fid().repaint();
            dialog.preview().repaint();
        });
        rows.push_back({fmt::format("{} points, {}", points, name), ms, "ms", limit_ms, {}});
    };
    int shift = 0;
    double width = 0.2;
    add("phase", [&] { form.AddPhase0(1); });
    add("shift", [&] { form.SetShift(++shift % 5); });
    add("shift beyond 10, which filters", [&] { form.SetShift(20 + ++shift % 2); });
    add("window", [&] {
        SetWindowField(sample.g().Slots[0].par, WindowField::bf1, width += 0.1);
        static_cast<void>(form.WindowChanged());
    });
    form.SetAutoPhase(true);
    add("shift with automatic phase", [&] {
        sample.g().PhasedRows.clear(); // each is searched anew
        form.SetShift(++shift % 5);
    });
    return rows;
}

std::vector<BenchRow> Form()
{
    const Offscreen<QApplication> application;
    auto rows = AtLength(131072, 10);
    for (BenchRow& row : AtLength(kMaxPoints, 60)) rows.push_back(std::move(row));
    return rows;
}

const bool registered = Register("form", Form);

} // namespace
} // namespace nmr::bench
