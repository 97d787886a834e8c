// Whole actions of the main window, from the press to the repainted window, on a noisy spectrum of the largest
// length. The peak list stands open from "pick everything" on.

#include "bench.h"
#include "offscreen.h"
#include "sample_block.h"
#include "session/display_commands.h"
#include "session/fft_form.h"
#include "session/list_commands.h"
#include "session/menu.h"
#include "session/tools.h"
#include "ui/asker_qt.h"
#include "ui/main_window.h"
#include "ui/plot_widget.h"

#include <fmt/format.h>

#include <QApplication>
#include <random>

namespace nmr::bench {
namespace {

constexpr double kLimitMs = 50; ///< below it an action feels instant

/// Noise of about a hundredth of the highest line: ten thousands of tops.
void AddNoise(DataSet& set)
{
    std::mt19937 engine(7);
    std::normal_distribution<float> normal(0.0F, 0.002F * set.par.DispLeft);
    for (auto* array : {&set.spec.DataRe, &set.spec.DataIm})
        for (float& value : array->all()) value += normal(engine);
    CopyDataToSource(set);
}

std::vector<BenchRow> Window()
{
    const Offscreen<QApplication> application;
    SampleBlock sample(kMaxPoints);
    GlobalBlock& g = sample.g();
    FftForm form(g, sample.asker());
    if (!form.Open() || !form.Command3()) return {};
    DataSet& set = g.Slots[0];
    AddNoise(set);
    QtAsker asker;
    Session session{g, sample.asker(), {}, {}, {}, {}}; // answers by itself
    NMR1D_Form1 window(session, asker);
    window.resize(1180, 780);
    window.show();
    Tools& tools = window.tools();
    QApplication::processEvents();

    std::vector<BenchRow> rows;
    const auto add = [&](const std::string& action, auto step, auto back) {
        double best = 1e9;
        for (int i = 0; i < 5; ++i) {
            best = std::min(best, OnceMs([&] {
                                step();
                                QApplication::processEvents();
                                window.repaint();
                            }));
            back();
            QApplication::processEvents();
        }
        rows.push_back({action, best, "ms", kLimitMs, {}});
    };
    const auto nothing = [] {};
    const auto undo = [&] { m20_Click(session); };
    add(
        "show all", [&] { m35_Click(session); }, nothing);
    add(
        "absolute", [&] { m34_Click(session); }, nothing);
    add(
        "inversion", [&] { m291_Click(session); }, nothing);
    add(
        "base line opened", [&] { tools.Enter(Tool::base_line); }, [&] { tools.Cancel(); });
    tools.Enter(Tool::base_line);
    add(
        "base points", [&] { tools.AutoBasePoints(); }, [&] { tools.UndoBasePoint(); });
    tools.SetBaseLineMethod(1);
    add(
        "Whittaker preview", [&] { tools.SetPreview(true); }, [&] { tools.SetPreview(false); });
    tools.Cancel();
    add(
        "base line fixed", [&] { tools.Fix(); },
        [&] {
            undo();
            tools.Enter(Tool::base_line);
        });
    tools.Cancel();
    tools.Enter(Tool::phase);
    add(
        "robust phase",
        [&] {
            g.PhasedRows.clear(); // searched anew
            tools.AutoPhaseRobust();
        },
        nothing);
    add(
        "phase fixed", [&] { tools.Fix(); },
        [&] {
            undo();
            tools.Enter(Tool::phase);
            tools.SetPhase0(5);
        });
    tools.Cancel();
    tools.Enter(Tool::integrals);
    const double left = set.spec.XAxis[800000], right = set.spec.XAxis[600000];
    add(
        "integral",
        [&] {
            tools.SetAction(ToolAction::add_integral);
            tools.MouseDown({left, 0, 0.01, 1});
            tools.MouseMove({right, 0, 0.01, 1});
            tools.MouseUp({right, 0, 0.01, 1});
        },
        undo);
    tools.Cancel();
    PeakList_Click(session);
    tools.Enter(Tool::peaks);
    tools.SetLevel(ToolAction::detect_level, 0.006);
    tools.SetLevel(ToolAction::noise_level, 0.004);
    add(
        "pick everything", [&] { tools.PickShown(); }, undo);
    tools.PickShown();
    const auto count = fmt::format("{} ", set.Peaks.size());
    add(
        "delete " + count + "peaks", [&] { tools.DeleteAllPeaks(); }, undo);
    add("undo of it", undo, [&] { tools.DeleteAllPeaks(); });
    undo();
    add("repaint with " + count + "peaks", nothing, nothing);
    add(
        "level dragged", [&] { tools.SetLevel(ToolAction::detect_level, 0.0061); }, nothing);
    return rows;
}

const bool registered = Register("window", Window);

} // namespace
} // namespace nmr::bench
