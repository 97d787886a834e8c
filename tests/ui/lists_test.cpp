// Peaks and integrals in the main window: the bars, the mouse in the plot, the lists beside it.

#include "core/list_values.h"
#include "form_rig.h"
#include "session/read_flow.h"
#include "session/tools.h"
#include "support/files.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/list_dock.h"
#include "ui/main_window.h"
#include "ui/theme.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QTableView>
#include <QToolButton>

#include <functional>

namespace nmr {
namespace {

using namespace test;

/// A window on 4097 points over 0 to 10 ppm: lines of 1000, 500 and -400 at 8, 5 and 2 ppm, ten points wide.
struct ListsRig {
    ListsRig()
    {
        App();
        ApplyTheme(App(), 1);
        Start_Batch(g);
        constexpr int kPoints = 4097;
        DataSet& set = g.Slots[0];
        EXPECT_TRUE(AllocateSpecBuffer(g, kPoints, 0));
        set.par.POINT = kPoints;
        set.par.SMODE = 1;
        set.par.ObsCenter = set.par.OBFRQ0PPM = 400;
        set.par.OBNUC = "1H";
        set.par.YFill = 0.95F;
        set.par.DispLeft = set.par.DataMax = 1000;
        for (int i = 0; i < kPoints; ++i) set.spec.XAxis[static_cast<std::size_t>(i)] = 10.0 * i / (kPoints - 1);
        for (const auto& [ppm, height] : {std::pair{8.0, 1000.0}, {5.0, 500.0}, {2.0, -400.0}})
            for (int i = -40; i <= 40; ++i)
                set.spec.DataRe[0][static_cast<std::size_t>(PpmToPoint(set, ppm) + i)] +=
                    static_cast<float>(height / (1 + i * i / 25.0));
        Show_All_Data(g);
        window = std::make_unique<NMR1D_Form1>(session, asker);
        asker.SetParent(window.get());
        window->resize(1200, 700);
        Settle(*window);
    }
    template <class Widget>
    Widget& Get(const char* name)
    {
        return Find<Widget>(*window, name);
    }
    void Press(const char* name) { Get<QAbstractButton>(name).click(); }
    void Act(ToolAction action) { Press(("Action" + std::to_string(static_cast<int>(action))).c_str()); }
    QPointF At(double ppm, double height = 600) const
    {
        QImage image(window->plot().size(), QImage::Format_RGB32);
        QPainter painter(&image);
        QtCanvas canvas(painter);
        const PlotFrame frame =
            SceneFrame(canvas, {0, 0, double(image.width()), double(image.height())}, window->plot().Scene());
        return {frame.X(ppm), frame.Y(height)};
    }
    void Pull(double from, double to)
    {
        window->plot().grab();
        Drag(window->plot(), At(from), At(to));
    }
    void ClickAt(double ppm)
    {
        window->plot().grab();
        Mouse(window->plot(), QEvent::MouseButtonPress, At(ppm));
        Mouse(window->plot(), QEvent::MouseButtonRelease, At(ppm));
    }
    DataSet& set() { return g.Slots[0]; }

    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    GlobalBlock& g = *block;
    QtAsker asker;
    Session session{g, asker, {}, {}, {}, {}};
    std::unique_ptr<NMR1D_Form1> window;
};

struct Step {
    const char* name;
    std::function<void(ListsRig&)> act;
    const char* caption; ///< of "UnDo" after it
    std::size_t count;   ///< entries of the list
};

/// Every step by the mouse; then all of them are taken back one by one, and each brings its list back.
void Walk(ListsRig& rig, const std::vector<Step>& steps, const std::function<std::vector<double>()>& list)
{
    std::vector<std::vector<double>> before;
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        before.push_back(list());
        step.act(rig);
        EXPECT_EQ(rig.g.Undo.Caption(), step.caption);
        EXPECT_EQ(list().size(), step.count);
        EXPECT_NE(list(), before.back());
    }
    for (auto kept = before.rbegin(); kept != before.rend(); ++kept) {
        ASSERT_TRUE(rig.g.Undo.UnDo(rig.g));
        EXPECT_EQ(list(), *kept);
    }
    EXPECT_TRUE(rig.g.Undo.empty());
}

TEST(PeakTool, EachEditByTheMouseIsOneStep)
{
    ListsRig rig;
    rig.window->tools().Enter(Tool::peaks);
    const auto peaks = [&] {
        std::vector<double> ppm;
        for (const PeakEntry& peak : rig.set().Peaks) ppm.push_back(PeakPpm(rig.set(), peak));
        return ppm;
    };
    Walk(
        rig,
        {{"shown range", [](ListsRig& r) { r.Press("PeakShown"); }, "UnDo(Add Peak,Auto)", 2},
         {"delete by click", [](ListsRig& r) { r.Act(ToolAction::delete_peak), r.ClickAt(8); }, "UnDo(Delete Peak)", 1},
         {"add by click", [](ListsRig& r) { r.Act(ToolAction::add_peak), r.ClickAt(8.01); }, "UnDo(Add Peak)", 2},
         {"delete a range", [](ListsRig& r) { r.Act(ToolAction::delete_peak), r.Pull(9, 4); }, "UnDo(Delete Peak)", 0},
         {"negative too, by a range",
          [](ListsRig& r) { r.Press("NegativePeaks"), r.Act(ToolAction::pick_range), r.Pull(6, 1); },
          "UnDo(Add Peak,Auto)", 2},
         {"delete all", [](ListsRig& r) { r.Press("PeakCommand3"); }, "UnDo(Delete All Peaks)", 0}},
        peaks);
    // A level is dragged whatever button is down, and shows in its field.
    rig.window->plot().grab();
    const double before = rig.window->tools().LevelOf(ToolAction::detect_level);
    Type(rig.Get<QLineEdit>("PeakText1"), "0.3");
    rig.window->plot().grab();
    Drag(rig.window->plot(), rig.At(6.5, 300), rig.At(6.5, 700));
    EXPECT_NEAR(rig.window->tools().LevelOf(ToolAction::detect_level), 0.7, 0.01);
    EXPECT_NE(before, 0.7);
    EXPECT_NEAR(rig.Get<QLineEdit>("PeakText1").text().toDouble(), 0.7, 0.01);
    rig.Press("PeakShown");
    EXPECT_EQ(peaks().size(), 1U);
    EXPECT_TRUE(rig.set().Peaks.front().Position > 7.9 * 400);
}

TEST(IntegralTool, EachEditByTheMouseIsOneStep)
{
    ListsRig rig;
    rig.window->tools().Enter(Tool::integrals);
    const auto values = [&] {
        std::vector<double> all;
        for (const IntegralEntry& e : rig.set().Integrals)
            all.push_back(static_cast<double>(e.Value) +
                          1000 * (&e == &rig.set().Integrals[0]) * rig.set().IntegralRef +
                          static_cast<double>(rig.set().IntegralScale) * 1e-3 + e.StartPoint + 7 * e.EndPoint);
        return all;
    };
    Walk(rig,
         {{"add", [](ListsRig& r) { r.Pull(8.5, 7.5); }, "UnDo(Add Integral)", 1},
          {"add from the right", [](ListsRig& r) { r.Pull(4.6, 5.4); }, "UnDo(Add Integral)", 2},
          {"divide", [](ListsRig& r) { r.Act(ToolAction::divide_integral), r.ClickAt(7.99); }, "UnDo(Divide Integral)",
           3},
          {"move", [](ListsRig& r) { r.Act(ToolAction::move_integral), r.Pull(5, 5.1); }, "UnDo(Move Integral)", 3},
          {"enlarge", [](ListsRig& r) { r.Act(ToolAction::enlarge_integral), r.Pull(4.72, 4.3); },
           "UnDo(Enlarge Integral)", 3},
          {"reference", [](ListsRig& r) { r.Act(ToolAction::reference_integral), r.ClickAt(7.7); },
           "UnDo(Set Integral Reference)", 3},
          {"scale", [](ListsRig& r) { Type(r.Get<QLineEdit>("IntegralText1"), "3"); }, "UnDo(Set Integral Reference)",
           3},
          {"offset", [](ListsRig& r) { Type(r.Get<QLineEdit>("IntegralText2"), "0.01"); }, "UnDo(Adjust Integral)", 3},
          {"held button",
           [](ListsRig& r) {
               auto& up = r.Get<QToolButton>("Integral_B1_Up");
               Mouse(up, QEvent::MouseButtonPress, {5, 5});
               for (int i = 0; i < 50; ++i) r.window->tools().StepB1(1); // as the clock does
               Mouse(up, QEvent::MouseButtonRelease, {5, 5});
           },
           "UnDo(Change B0,B1)", 3},
          {"delete", [](ListsRig& r) { r.Act(ToolAction::delete_integral), r.ClickAt(5); }, "UnDo(Delete Integral)", 2},
          {"delete all", [](ListsRig& r) { r.Press("IntegralCommand2"); }, "UnDo(Delete All Integral)", 0}},
         values);
    rig.window->RefreshAll();
    EXPECT_FALSE(rig.Get<QLineEdit>("IntegralText2").isEnabled()) << "no region is selected";
    for (int i = 0; i < 200; ++i) Add_Integral(rig.g, 1 + 0.04 * i, 1.03 + 0.04 * i);
    rig.window->RefreshAll();
    const std::string add = "Action" + std::to_string(static_cast<int>(ToolAction::add_integral));
    EXPECT_FALSE(rig.Get<QToolButton>(add.c_str()).isEnabled()) << "200 at most";
}

TEST(Lists, StandBesideTheSpectrumAndFollowIt)
{
    ListsRig rig;
    rig.window->tools().Enter(Tool::peaks);
    rig.Press("NegativePeaks");
    rig.Press("PeakShown");
    rig.Press("ShowPeaks");
    Settle(*rig.window);
    auto& dock = rig.Get<ListDock>("PeakList");
    ASSERT_TRUE(dock.isVisible());
    auto& view = Find<QTableView>(dock, {});
    const auto cell = [&](int row, int column) { return view.model()->index(row, column).data().toString(); };
    ASSERT_EQ(view.model()->rowCount(), 3);
    EXPECT_EQ(cell(0, 1), "1.9995");
    view.sortByColumn(4, Qt::DescendingOrder);
    EXPECT_EQ(cell(0, 1), "8.0005");
    EXPECT_EQ(cell(2, 4), "-40.00");
    rig.Press("InterpolateTops");
    EXPECT_EQ(view.model()->columnCount(), 8);
    EXPECT_EQ(cell(0, 1), "8.0005") << "the order stays";

    view.selectRow(0);
    Find<QPushButton>(dock, "CopyList").click();
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("No\tPosition(ppm)"));
    EXPECT_EQ(QApplication::clipboard()->text().count('\n'), 2) << "the head and the selected line";
    Find<QPushButton>(dock, "CopyPaper").click();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("1H NMR (400 MHz) δ 8.00, 5.00, 2.00."));
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->html().contains("<sup>1</sup>H"));
    Key(view, Qt::Key_Delete);
    EXPECT_EQ(rig.set().Peaks.size(), 2U);
    EXPECT_EQ(view.model()->rowCount(), 2);
    ASSERT_TRUE(rig.g.Undo.UnDo(rig.g));
    rig.window->RefreshAll();
    EXPECT_EQ(view.model()->rowCount(), 3);
    rig.Press("ShowPeaks");
    EXPECT_FALSE(dock.isVisible());

    rig.window->tools().Enter(Tool::integrals);
    for (const double ppm : {2.0, 5.0}) Add_Integral(rig.g, ppm + 0.2, ppm - 0.2);
    rig.set().Integrals[0].B0 = 0.25F;
    rig.window->tools().SelectIntegral(1);
    rig.Press("IntegralCommand3");
    auto& regions = Find<QTableView>(rig.Get<ListDock>("IntegralList"), {});
    emit regions.doubleClicked(regions.model()->index(0, 0));
    EXPECT_EQ(rig.Get<QLineEdit>("IntegralText2").text(), "0.25") << "the fields are those of the region chosen";
}

TEST(Lists, TheNameToSaveGoesWithTheFilter)
{
    ListsRig rig;
    TempFolder folder;
    FileDialog dialog;
    dialog.kind = FileDialog::Kind::save;
    dialog.filters = {{"ASCII Format", "*.int"}, {"ASCII Format", "*.Ilist"}, {"All Files", "*.*"}};
    dialog.folder = folder.path().string();
    dialog.name = "a.b.int";
    dialog.extension = ".int";
    QStringList names;
    WhenModal([&](QDialog& form) {
        auto& window = dynamic_cast<QFileDialog&>(form);
        for (const QString& filter : window.nameFilters()) {
            emit window.filterSelected(filter);
            names << QFileInfo(window.selectedFiles().value(0)).fileName();
        }
    });
    EXPECT_FALSE(rig.asker.File(dialog));
    EXPECT_EQ(names, (QStringList{"a.b.int", "a.b.Ilist", "a.b.Ilist"}));
}

} // namespace
} // namespace nmr
