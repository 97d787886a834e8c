// A step of each drag in the main window, from the event of the mouse until all that it changes is painted.

#include "bench.h"
#include "offscreen.h"
#include "sample_block.h"
#include "session/fft_form.h"
#include "ui/main_window.h"

#include <QApplication>
#include <QMouseEvent>

#include <fmt/format.h>

namespace nmr::bench {
namespace {

constexpr int kRuns = 25, kRegions = 200;

/// The main window on a transformed spectrum.
class ToolWindow {
public:
    explicit ToolWindow(std::int32_t points) : sample_(points)
    {
        FftForm form(g(), sample_.asker());
        ready_ = form.Open() && form.SetZeroFill(1) && form.Command3();
        window_ = std::make_unique<NMR1D_Form1>(session_, asker_);
        window_->resize(1180, 780);
        window_->show();
        QApplication::processEvents();
    }
    bool ready() const { return ready_; }
    GlobalBlock& g() { return sample_.g(); }
    Tools& tools() { return window_->tools(); }
    PlotWidget& plot() { return window_->plot(); }
    double Ppm(double share) const
    {
        const ZoomView::Range whole = window_->plot().Whole();
        return whole.left + share * (whole.right - whole.left);
    }
    void Repaint()
    {
        window_->RefreshAll();
        window_->repaint();
    }
    void Send(QEvent::Type type, QPointF at)
    {
        const bool move = type == QEvent::MouseMove;
        QMouseEvent event(type, at, plot().mapToGlobal(at), move ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&plot(), &event);
    }
    /// The best of many steps of one drag to and fro.
    double DragMs(QPointF from, QPointF by)
    {
        Send(QEvent::MouseButtonPress, from);
        int step = 0;
        const double ms = BestMs(kRuns, [&] {
            Send(QEvent::MouseMove, from + by * (1 + ++step % 5));
            PaintChanges();
        });
        Send(QEvent::MouseButtonRelease, from);
        return ms;
    }
    double StepMs(const std::function<void()>& step)
    {
        return BestMs(kRuns, [&] {
            step();
            PaintChanges();
        });
    }

private:
    /// What the event loop does next: every widget that was changed, and no other.
    void PaintChanges() { QApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest); }

    SampleBlock sample_;
    QtAsker asker_;
    Session session_{sample_.g(), asker_, {}, {}, {}, {}};
    std::unique_ptr<NMR1D_Form1> window_;
    bool ready_ = false;
};

void AddRegions(ToolWindow& w)
{
    for (int i = 0; i < kRegions; ++i) Add_Integral(w.g(), w.Ppm((i + 0.1) / kRegions), w.Ppm((i + 0.9) / kRegions));
}

double IntegralDrag(ToolWindow& w, double shown)
{
    w.g().ViewLeft = static_cast<float>(w.Ppm(0.5 - shown / 2));
    w.g().ViewRight = static_cast<float>(w.Ppm(0.5 + shown / 2));
    w.tools().SetAction(ToolAction::move_integral);
    w.Repaint();
    const PlotFrame& frame = w.plot().frame();
    return w.DragMs({frame.X(w.Ppm(100.5 / kRegions)), 400}, {1, 0});
}

double LevelDrag(ToolWindow& w)
{
    w.Repaint();
    const double height =
        w.tools().LevelOf(ToolAction::detect_level) * static_cast<double>(w.g().Slots[0].par.DispLeft);
    return w.DragMs({400, w.plot().frame().Y(height)}, {0, -5});
}

double BasePointDrag(ToolWindow& w)
{
    w.tools().AutoBasePoints();
    w.tools().SetAction(ToolAction::move_base_point);
    w.Repaint();
    const BasePointEntry& point = w.g().BasePoints[w.g().BasePoints.size() / 2];
    const PlotFrame& frame = w.plot().frame();
    const double ppm = PointToPpm(w.g().Slots[0], point.Point);
    return w.DragMs({frame.X(ppm), frame.Y(static_cast<double>(point.Value))}, {0, -5});
}

std::vector<BenchRow> AtLength(std::int32_t points, double phase_limit_ms)
{
    ToolWindow w(points);
    if (!w.ready()) return {};
    std::vector<BenchRow> rows;
    const auto add = [&](const std::string& name, double ms, double limit) {
        rows.push_back({fmt::format("{} points, {}", w.g().Slots[0].par.POINT, name), ms, "ms", limit, {}});
    };
    w.tools().Enter(Tool::phase);
    double deg = 0;
    add("phase tool of the main window", w.StepMs([&] { w.tools().SetPhase0(deg += 1); }), phase_limit_ms);
    w.tools().Cancel();
    w.tools().Enter(Tool::base_line);
    add("drag of a base point", BasePointDrag(w), 4);
    w.tools().Cancel();
    w.tools().Enter(Tool::peaks);
    add("drag of a level", LevelDrag(w), 4);
    w.tools().PickShown();
    add(fmt::format("drag of a level, {} peaks", w.g().Slots[0].Peaks.size()), LevelDrag(w), 4);
    w.tools().DeleteAllPeaks();
    w.tools().Enter(Tool::integrals);
    AddRegions(w);
    for (const double shown : {1.0, 0.1, 0.005})
        add(fmt::format("drag of a region, {} integrals, {:g} % shown", kRegions, 100 * shown), IntegralDrag(w, shown),
            4);
    return rows;
}

std::vector<BenchRow> ToolDrags()
{
    const Offscreen<QApplication> application;
    auto rows = AtLength(131072, 4);
    for (BenchRow& row : AtLength(kMaxPoints, 20)) rows.push_back(std::move(row));
    return rows;
}

const bool registered = Register("tools", ToolDrags);

} // namespace
} // namespace nmr::bench
