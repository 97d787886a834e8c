// The tools of the main form through real keys and mouse events of the window.

#include "analysis/phase.h"
#include "session/color_regions.h"
#include "support/files.h"
#include "window_rig.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFrame>
#include <QMessageBox>
#include <QScrollBar>
#include <QTableWidget>

#include <gmock/gmock.h>

#include <random>

namespace nmr {
namespace {

using namespace test;

/// Lorentz lines at 2, 5 and 8 ppm, turned by a phase, on a level.
struct ToolRig : WindowRig {
    explicit ToolRig(double phase_deg = 0, int rows = 1) : WindowRig(rows)
    {
        g.AppPath = folder.path(); // for the points of the undo steps
        DataSet& set = g.Slots[0];
        const auto n = static_cast<std::size_t>(set.par.POINT);
        const double c = std::cos(phase_deg / 57.29577951308232), s = std::sin(phase_deg / 57.29577951308232);
        for (std::size_t row = 0; row < set.spec.DataRe.rows(); ++row)
            for (std::size_t i = 0; i < n; ++i) {
                double re = 0, im = 0;
                for (const double at : {2.0, 5.0, 8.0}) {
                    const double x = (set.spec.XAxis[i] - at) / 0.01;
                    re += 1000 / (1 + x * x);
                    im += -1000 * x / (1 + x * x);
                }
                set.spec.DataRe[row][i] = static_cast<float>(re * c - im * s + 20);
                set.spec.DataIm[row][i] = static_cast<float>(re * s + im * c);
            }
        set.par.SLVNT = "CDCl3";
        window->RefreshAll();
    }
    void Open(const QString& caption)
    {
        Entry(caption)->trigger();
        Settle(*window);
    }
    TempFolder folder;
    double Y(double height) const { return window->plot().frame().Y(height); }
    void Click(double ppm, double y = 60) { Drag(window->plot(), {X(ppm), y}, {X(ppm), y}); }
    std::vector<float> Row() const
    {
        const auto row = g.Slots[0].spec.DataRe[0].first(static_cast<std::size_t>(g.Slots[0].par.POINT));
        return {row.begin(), row.end()};
    }
    /// Runs a command whose question is answered; returns the question.
    QString Asked(const std::function<void()>& command, QMessageBox::StandardButton answer)
    {
        QString text;
        WhenModal([&](QDialog& box) {
            text = static_cast<QMessageBox&>(box).text();
            static_cast<QMessageBox&>(box).button(answer)->click();
        });
        command();
        return text;
    }
    PlotWidget& plot() { return window->plot(); }
    template <class Widget>
    Widget& Get(const char* name)
    {
        return Find<Widget>(*window, name);
    }
};

TEST(ToolWindow, EachEntryOpensItsBarAndEscLeavesIt)
{
    struct Case {
        const char *entry, *bar;
        Tool tool;
        const char* question; ///< of the second click on the entry
    };
    const Case cases[] = {
        {"Phase Correction", "PhaseToolbar", Tool::phase, "Will you Fix Phase Correction?"},
        {"Set Reference (Main Spectrum)", "ReferenceToolbar", Tool::reference, "Will you Fix Reference Setting?"},
        {"Base Line Correction", "BaselineToolbar", Tool::base_line, "Will you Fix Base Line Correction?"},
        {"Peak Picking", "PeakToolbar", Tool::peaks, ""},
        {"Integral", "IntegralToolbar", Tool::integrals, ""},
        {"Set Color on the Selected Region", "ColorToolbar", Tool::regions, ""}};
    ToolRig rig;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.entry);
        // "Integral" is also a switch of the display: the entry of the tool stands first.
        rig.Open(c.entry);
        EXPECT_EQ(rig.window->tools().open(), c.tool);
        EXPECT_TRUE(rig.Entry(c.entry)->isChecked());
        for (const Case& other : cases)
            EXPECT_EQ(rig.Get<QFrame>(other.bar).isVisible(), other.tool == c.tool) << other.bar;
        Key(rig.plot(), Qt::Key_Escape);
        EXPECT_EQ(rig.window->tools().open(), Tool::none);
        EXPECT_FALSE(rig.Get<QFrame>(c.bar).isVisible());
        EXPECT_FALSE(rig.Entry(c.entry)->isChecked());
        rig.Open(c.entry);
        for (const QWidget* child : rig.Get<QFrame>(c.bar).findChildren<QWidget*>())
            if (child->isVisible() &&
                (child->inherits("QAbstractButton") || child->inherits("QLineEdit") || child->inherits("QComboBox"))) {
                EXPECT_FALSE(child->toolTip().isEmpty()) << child->objectName().toStdString();
            }
        const auto again = [&] { rig.Entry(c.entry)->trigger(); };
        if (c.question[0] != 0) {
            EXPECT_EQ(rig.Asked(again, QMessageBox::Cancel), c.question);
            EXPECT_TRUE(rig.Entry(c.entry)->isChecked()) << "it stays open, and the menu says so";
            EXPECT_EQ(rig.Asked(again, QMessageBox::Yes), c.question);
        } else {
            again();
        }
        EXPECT_EQ(rig.window->tools().open(), Tool::none);
        rig.Open(c.entry);
        Key(rig.plot(), Qt::Key_Return);
        EXPECT_EQ(rig.window->tools().open(), Tool::none);
        EXPECT_TRUE(rig.g.Undo.empty()) << "nothing was changed";
    }
    rig.Open("Phase Correction");
    rig.window->resize(480, 600);
    Settle(*rig.window);
    EXPECT_LE(rig.window->width(), 520) << "a bar goes into lines instead of widening the window";
    for (const QWidget* child : rig.Get<QFrame>("PhaseToolbar").findChildren<QWidget*>())
        if (child->isVisible()) {
            EXPECT_LE(child->mapTo(rig.window.get(), QPoint(child->width(), 0)).x(), rig.window->width());
        }
}

TEST(ToolWindow, PhaseFollowsFieldsStepsKeysAndWheel)
{
    ToolRig rig(-40);
    const std::vector<float> before = rig.Row();
    rig.Open("Phase Correction");
    const auto phase0 = [&] { return rig.window->tools().phase0(); };
    const auto phase1 = [&] { return rig.window->tools().phase1(); };
    rig.Get<QAbstractButton>("Label1+5").click();
    EXPECT_EQ(phase0(), 5);
    EXPECT_EQ(rig.Get<QLineEdit>("PhaseText1").text(), "5.0");
    EXPECT_EQ(rig.Get<QScrollBar>("Phase0ScrollBar").value(), 50);
    rig.Get<QScrollBar>("Phase1ScrollBar").setValue(-123);
    EXPECT_NEAR(phase1(), -12.3, 1e-5);
    Type(rig.Get<QLineEdit>("PhaseText2"), "0");
    Type(rig.Get<QLineEdit>("PhaseText1"), "900");
    EXPECT_EQ(phase0(), 180) << "put back to the limit";
    Type(rig.Get<QLineEdit>("PhaseText1"), "10");
    rig.plot().setFocus();
    const struct {
        int key;
        Qt::KeyboardModifiers keys;
        double zero, first;
    } steps[] = {{Qt::Key_Right, Qt::ShiftModifier, 11, 0},
                 {Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier, 10.9, 0},
                 {Qt::Key_Up, Qt::ShiftModifier, 10.9, 1},
                 {Qt::Key_Down, Qt::ShiftModifier | Qt::ControlModifier, 10.9, 0.9},
                 {Qt::Key_Right, Qt::NoModifier, 10.9, 0.9}}; // the shown range moves as ever
    for (const auto& step : steps) {
        QKeyEvent press(QEvent::KeyPress, step.key, step.keys);
        QCoreApplication::sendEvent(&rig.plot(), &press);
        EXPECT_NEAR(phase0(), step.zero, 1e-5);
        EXPECT_NEAR(phase1(), step.first, 1e-5);
    }
    Wheel(rig.plot(), {200, 100}, 240, Qt::ShiftModifier);
    EXPECT_NEAR(phase0(), 12.9, 1e-5);
    Wheel(rig.plot(), {200, 100}, 240);
    EXPECT_GT(rig.plot().magnification(), 1.5) << "the wheel alone is the height's";
    rig.Get<QAbstractButton>("PhaseRobust").click();
    EXPECT_NEAR(phase0(), 40, 2);
    EXPECT_THAT(rig.Get<QLabel>("PhaseQuality").text().toStdString(), testing::MatchesRegex("Quality [0-9]+ %"));
    rig.Get<QAbstractButton>("PhaseCommand4").click();
    EXPECT_NEAR(phase0(), 40, 5);
    EXPECT_EQ(rig.Get<QLabel>("PhaseQuality").text(), "") << "of another phase";
    Key(rig.plot(), Qt::Key_Return);
    EXPECT_EQ(rig.window->tools().open(), Tool::none);
    EXPECT_NE(rig.Row(), before);
    rig.Entry("UnDo(Phase Correction)")->trigger();
    EXPECT_EQ(rig.Row(), before) << "one step for all of it";
    EXPECT_TRUE(rig.g.Undo.empty());
}

TEST(ToolWindow, PhaseMarksAreDraggedAndEscTakesADragBack)
{
    ToolRig rig;
    rig.Open("Phase Correction");
    Type(rig.Get<QLineEdit>("PhaseText2"), "300");
    const std::vector<float> turned = rig.Row();
    const std::int32_t pivot = rig.g.PivotPoint, at8 = PpmToPoint(rig.g.Slots[0], 8);
    const double pivot_ppm = PointToPpm(rig.g.Slots[0], pivot);
    Drag(rig.plot(), {rig.X(pivot_ppm) + 3, 100}, {rig.X(8), 100});
    EXPECT_NEAR(rig.g.PivotPoint, at8, 12);
    for (std::size_t i = 0; i < turned.size(); ++i) ASSERT_NEAR(rig.Row()[i], turned[i], 0.05) << "the look stays";
    const std::int32_t moved = rig.g.PivotPoint;
    const float phase0 = rig.g.Phase0Deg;
    Mouse(rig.plot(), QEvent::MouseButtonPress, {rig.X(8), 100});
    Mouse(rig.plot(), QEvent::MouseMove, {rig.X(3), 100});
    EXPECT_NE(rig.g.PivotPoint, moved);
    Key(rig.plot(), Qt::Key_Escape);
    EXPECT_EQ(rig.g.PivotPoint, moved);
    EXPECT_EQ(rig.g.Phase0Deg, phase0);
    Mouse(rig.plot(), QEvent::MouseButtonRelease, {rig.X(3), 100});
    EXPECT_EQ(rig.window->tools().open(), Tool::phase) << "only the drag was given up";
    // The other mark, by its button; then it is taken hold of whatever button is down.
    rig.Get<QAbstractButton>("Action2").click();
    rig.Click(2);
    EXPECT_NEAR(rig.g.P2Point, PpmToPoint(rig.g.Slots[0], 2), 12);
    rig.Get<QAbstractButton>("Action1").click();
    Drag(rig.plot(), {rig.X(2), 100}, {rig.X(3), 100});
    EXPECT_NEAR(rig.g.P2Point, PpmToPoint(rig.g.Slots[0], 3), 12);
    EXPECT_EQ(rig.g.PivotPoint, moved);
    // Shift leaves the drag to the zoom.
    QMouseEvent press(QEvent::MouseButtonPress, {rig.X(6), 100}, rig.plot().mapToGlobal(QPointF(rig.X(6), 100)),
                      Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
    const double to = rig.X(4);
    QCoreApplication::sendEvent(&rig.plot(), &press);
    Mouse(rig.plot(), QEvent::MouseMove, {to, 100});
    Mouse(rig.plot(), QEvent::MouseButtonRelease, {to, 100});
    EXPECT_NEAR(rig.Width(), 2, 0.05);
    EXPECT_EQ(rig.g.PivotPoint, moved);
}

TEST(ToolWindow, OtherCommandsAskFirstAndTheDisplayDoesNot)
{
    ToolRig rig;
    const std::vector<float> before = rig.Row();
    const auto invert = [&] { rig.Entry("Inversion of Spectrum")->trigger(); };
    constexpr char kQuestion[] = "Will you Fix Phase Correction?";
    rig.Open("Phase Correction");
    Type(rig.Get<QLineEdit>("PhaseText1"), "90");
    const std::vector<float> turned = rig.Row();
    rig.Entry("Grid")->trigger();
    rig.Entry("Show All Data")->trigger();
    EXPECT_EQ(rig.window->tools().open(), Tool::phase);
    EXPECT_EQ(rig.Asked(invert, QMessageBox::Cancel), kQuestion);
    EXPECT_EQ(rig.Row(), turned);
    EXPECT_EQ(rig.Asked([&] { rig.window->ReadPath("/nowhere"); }, QMessageBox::Cancel), kQuestion);
    EXPECT_EQ(rig.Asked([&] { rig.window->close(); }, QMessageBox::Cancel), kQuestion);
    EXPECT_TRUE(rig.window->isVisible());
    EXPECT_EQ(rig.Asked([&] { rig.Entry("Peak Picking")->trigger(); }, QMessageBox::Cancel), kQuestion);
    EXPECT_FALSE(rig.Entry("Peak Picking")->isChecked());
    EXPECT_EQ(rig.window->tools().open(), Tool::phase);
    EXPECT_EQ(rig.Asked([&] { rig.Entry("Peak Picking")->trigger(); }, QMessageBox::No), kQuestion);
    EXPECT_EQ(rig.Row(), before);
    EXPECT_EQ(rig.window->tools().open(), Tool::peaks);
    rig.Entry("Copy")->trigger();
    EXPECT_EQ(rig.window->tools().open(), Tool::peaks) << "a picture leaves the work as it is";
    invert(); // peaks stand without a question
    EXPECT_EQ(rig.window->tools().open(), Tool::none);
}

TEST(ToolWindow, BaseLinePointsAreClickedDraggedAndTakenBack)
{
    ToolRig rig;
    const std::vector<float> before = rig.Row();
    rig.Open("Base Line Correction");
    for (const double ppm : {0.0, 3.5, 11.0}) rig.Click(ppm);
    ASSERT_EQ(rig.g.BasePoints.size(), 3U);
    EXPECT_EQ(rig.window->tools().Marks().points.size(), 3U);
    rig.Entry("UnDo(Add Point)")->trigger();
    EXPECT_EQ(rig.g.BasePoints.size(), 2U);
    rig.Entry("ReDo(Add Point)")->trigger();
    EXPECT_EQ(rig.g.BasePoints.size(), 3U);
    rig.Get<QAbstractButton>("Action6").click();
    const float level = rig.g.BasePoints[1].Value;
    Drag(rig.plot(), {rig.X(3.5), rig.Y(20)}, {rig.X(3.5), rig.Y(120)});
    EXPECT_NEAR(rig.g.BasePoints[1].Value, level + 100, 3);
    rig.Get<QAbstractButton>("BasePointsUndo").click();
    EXPECT_EQ(rig.g.BasePoints[1].Value, level) << "a drag is one step";
    auto& preview = rig.Get<QAbstractButton>("BaseCorCommand1");
    preview.click();
    EXPECT_NEAR(rig.Row()[100], before[100] - 20, 1);
    preview.click();
    EXPECT_EQ(rig.Row(), before);
    preview.click();
    rig.Click(6.5); // the button is still "Move", and no point is there
    EXPECT_TRUE(preview.isChecked());
    rig.Get<QAbstractButton>("Action4").click();
    rig.Click(6.5);
    EXPECT_FALSE(preview.isChecked()) << "what was shown was of other points";
    EXPECT_EQ(rig.Row(), before);
    auto& method = rig.Get<QComboBox>("BaseLineMethod");
    for (const int index : {1, 2}) {
        method.setCurrentIndex(index);
        emit method.activated(index);
        EXPECT_TRUE(rig.Get<QLineEdit>(index == 1 ? "BaseLineBend" : "BaseLineDegree").isVisible());
        EXPECT_FALSE(rig.Get<QLineEdit>("BaselineText1").isVisible());
        preview.click();
        EXPECT_NEAR(rig.Row()[100], before[100] - 20, 3);
        preview.click();
        EXPECT_EQ(rig.Row(), before);
    }
    method.setCurrentIndex(0);
    emit method.activated(0);
    rig.Get<QAbstractButton>("BaseCorCommand2").click();
    EXPECT_EQ(rig.g.Slots[0].par.BaseLineDone, 1);
    EXPECT_EQ(rig.Asked([&] { rig.Open("Phase Correction"); }, QMessageBox::No).left(30),
              "Since BaseLine Correction has ");
    rig.Entry("UnDo(Base Line Correction)")->trigger();
    EXPECT_EQ(rig.Row(), before);
}

TEST(ToolWindow, ReferenceTakesTheLineUnderTheClick)
{
    ToolRig rig;
    std::mt19937 random(3);
    for (float& value : rig.g.Slots[0].spec.DataRe[0]) value += std::normal_distribution<float>(0, 5)(random);
    rig.Open("Set Reference (Main Spectrum)");
    auto& shift = rig.Get<QLineEdit>("ReferenceShift");
    EXPECT_FALSE(shift.isEnabled());
    Drag(rig.plot(), {rig.X(8) + 2, 100}, {rig.X(8) + 2, 100}); // beside it: the top is meant
    EXPECT_NEAR(rig.window->tools().reference_line(), 8, 0.001);
    EXPECT_EQ(rig.LabelText("ReferenceLine").left(7), "Line at");
    rig.Click(3.5, 100);
    EXPECT_EQ(rig.LabelText("ReferenceLine").left(13), "Only noise at");
    rig.Click(8, 100);
    auto& shifts = rig.Get<QComboBox>("ReferenceShifts");
    EXPECT_EQ(shifts.itemText(0), "CDCl3   CHCl3   7.26");
    emit shifts.activated(0);
    const DataSet& set = rig.g.Slots[0];
    const auto top =
        static_cast<std::size_t>(std::ranges::max_element(set.spec.DataRe[0].last(3000)) - set.spec.DataRe[0].begin());
    EXPECT_NEAR(set.spec.XAxis[top], 7.26, 0.002);
    Type(shift, "7.5");
    EXPECT_NEAR(set.spec.XAxis[top], 7.5, 0.002);
    Key(shift, Qt::Key_Return); // nothing typed: Enter is the tool's
    EXPECT_EQ(rig.window->tools().open(), Tool::none);
    EXPECT_NEAR(set.spec.XAxis[top], 7.5, 0.002);
    rig.Entry("UnDo(Set Reference)")->trigger();
    EXPECT_NEAR(set.spec.XAxis[top], 8, 0.002);
}

TEST(ToolWindow, TheInstrumentTableIsSearchedAndArranged)
{
    ToolRig rig;
    rig.g.Slots[0].par.InstrumentID = "gamma";
    rig.g.Slots[0].par.ObsCenter = 400.002;
    rig.g.Instruments = {{"alpha", "p1", "1H", 400, 399.99, "d"},
                         {"beta", "p2", "13C", 100, 99.9, "d"},
                         {"beta", "p3", "1H", 500, 499.9, "d"}};
    const auto arrange = [&](bool accept) {
        WhenModal([&, accept](QDialog& form) {
            auto& table = Find<QTableWidget>(form, "");
            Type(Find<QLineEdit>(form, "Search"), "BETA");
            EXPECT_TRUE(table.isRowHidden(0));
            EXPECT_FALSE(table.isRowHidden(1) || table.isRowHidden(2));
            table.selectRow(1);
            Find<QAbstractButton>(form, "Delete").click();
            for (int i = 0; i < 2; ++i) Find<QAbstractButton>(form, "Add").click();
            EXPECT_EQ(table.rowCount(), 3) << "the present data stand in it once";
            accept ? form.accept() : form.reject();
        });
        rig.Entry("Arrange Instrumental Data for Reference Setting")->trigger();
    };
    arrange(false);
    EXPECT_EQ(rig.g.Instruments.size(), 3U);
    EXPECT_FALSE(rig.g.InstrumentsChanged);
    arrange(true);
    ASSERT_EQ(rig.g.Instruments.size(), 3U);
    EXPECT_EQ(rig.g.Instruments[1].probe, "p3");
    EXPECT_EQ(rig.g.Instruments[2].instrument, "gamma");
    EXPECT_EQ(rig.g.Instruments[2].ppm0, 400);
    EXPECT_TRUE(rig.g.InstrumentsChanged);
}

/// Three levels in the plot, and their fields.
struct LevelRig : ToolRig {
    LevelRig()
    {
        Open("Peak Picking");
        Settle(*window);
    }
    void Set(double detect, double noise, double base)
    {
        window->tools().SetLevel(ToolAction::base_level, base);
        window->tools().SetLevel(ToolAction::noise_level, noise);
        window->tools().SetLevel(ToolAction::detect_level, detect);
        Settle(*window);
    }
    std::vector<double> Levels() const
    {
        const Tools& tools = window->tools();
        return {tools.LevelOf(ToolAction::detect_level), tools.LevelOf(ToolAction::noise_level),
                tools.LevelOf(ToolAction::base_level)};
    }
    double full() const { return static_cast<double>(g.Slots[0].par.DispLeft); }
};

TEST(ToolWindow, OfLevelsThatLieTogetherADragTakesTheOneThatIsMeant)
{
    struct Case {
        const char* name;
        std::vector<double> before; ///< detect, noise above base, base
        double from, to;            ///< of the mouse, shares of the full height
        int moved;                  ///< index
    };
    const Case cases[] = {
        {"the nearest, not the first", {0.52, 0.49, 0.01}, 0.516, 0.7, 0},
        {"the nearest below", {0.52, 0.49, 0.01}, 0.503, 0.3, 1},
        {"detect and noise on each other, up", {0.5, 0.4, 0.1}, 0.5, 0.8, 0},
        {"detect and noise on each other, down", {0.5, 0.4, 0.1}, 0.5, 0.3, 1},
        {"noise and base on each other, up", {0.9, 0, 0.3}, 0.3, 0.6, 1},
        {"noise and base on each other, down", {0.9, 0, 0.3}, 0.3, 0.1, 2},
        {"all on each other, up", {0.3, 0, 0.3}, 0.3, 0.6, 0},
        {"all on each other, down", {0.3, 0, 0.3}, 0.3, 0.1, 2},
        {"crossed: the noise below the base", {0.9, 0.2, 0.3}, 0.5, 0.2, 1},
        {"far out of the plot", {0.9, 0.1, 0}, 0.9, -3, 0},
    };
    LevelRig rig;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        rig.Set(c.before[0], c.before[1], c.before[2]);
        const auto before = rig.Levels();
        const QPointF from(400, rig.Y(c.from * rig.full())), to(430, rig.Y(c.to * rig.full()));
        Drag(rig.plot(), from, to);
        const auto after = rig.Levels();
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(after[static_cast<std::size_t>(i)] - before[static_cast<std::size_t>(i)],
                        i == c.moved ? c.to - c.from : 0, 1e-5)
                << i;
        EXPECT_TRUE(rig.g.Undo.empty()) << "levels are no edit of the list";
        rig.Get<QAbstractButton>("PeakShown").click();
        rig.Get<QAbstractButton>("PeakCommand3").click();
        rig.g.Undo.Empty();
    }
    rig.Set(0.5, 0.1, 0);
    rig.Get<QAbstractButton>("PeakShown").click();
    const auto before = rig.Levels();
    Mouse(rig.plot(), QEvent::MouseButtonPress, {400, rig.Y(0.5 * rig.full())});
    Mouse(rig.plot(), QEvent::MouseMove, {400, rig.Y(0.8 * rig.full())});
    EXPECT_NE(rig.Levels(), before);
    rig.Entry("UnDo(Add Peak,Auto)")->trigger();
    EXPECT_EQ(rig.Levels(), before) << "a step back during a drag is the drag";
    EXPECT_EQ(rig.g.Slots[0].Peaks.size(), 3U);
    Mouse(rig.plot(), QEvent::MouseButtonRelease, {400, rig.Y(0.8 * rig.full())});
    EXPECT_EQ(rig.Levels(), before);
}

TEST(ToolWindow, QuickClicksAreClicksOfTheToolAndShiftLeavesThemToTheZoom)
{
    ToolRig rig;
    rig.Open("Base Line Correction");
    const double width = rig.Width();
    const auto double_click = [&](double ppm, Qt::KeyboardModifiers keys) {
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                                QEvent::MouseButtonRelease}) {
            const QPointF at(rig.X(ppm), 60);
            QMouseEvent event(type, at, rig.plot().mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, keys);
            QCoreApplication::sendEvent(&rig.plot(), &event);
        }
    };
    rig.g.ViewLeft = 9, rig.g.ViewRight = 1;
    rig.window->RefreshAll();
    Settle(*rig.window);
    double_click(4, Qt::NoModifier);
    EXPECT_EQ(rig.g.BasePoints.size(), 1U);
    EXPECT_NEAR(rig.Width(), 8, 1e-4);
    double_click(4, Qt::ShiftModifier);
    EXPECT_NEAR(rig.Width(), width, 1e-4) << "back one zoom";
    // A smooth base line has no points: the mouse is the zoom's.
    auto& method = Find<QComboBox>(*rig.window, "BaseLineMethod");
    emit method.activated(1);
    Settle(*rig.window);
    rig.Click(6);
    Drag(rig.plot(), {rig.X(8), 60}, {rig.X(7), 60});
    EXPECT_EQ(rig.g.BasePoints.size(), 1U);
    EXPECT_NEAR(rig.Width(), 1, 0.05);
    EXPECT_TRUE(rig.window->tools().Marks().points.empty());
}

TEST(ToolWindow, ADragBeyondThePlotStopsAtTheEndOfTheAxis)
{
    ToolRig rig;
    const DataSet& set = rig.g.Slots[0];
    const std::int32_t last = set.par.POINT - 1;
    const auto pull = [&](double ppm, double x, double y = 100) { Drag(rig.plot(), {rig.X(ppm), 100}, {x, y}); };
    const auto act = [&](ToolAction action) { rig.window->tools().SetAction(action); };
    rig.Open("Integral");
    pull(8, -900);
    ASSERT_EQ(set.Integrals.size(), 1U);
    EXPECT_EQ(set.Integrals[0].StartPoint, last);
    const std::int32_t wide = last - set.Integrals[0].EndPoint;
    act(ToolAction::move_integral);
    pull(9, 9000);
    EXPECT_EQ(set.Integrals[0].EndPoint, 0);
    EXPECT_EQ(set.Integrals[0].StartPoint, wide);
    act(ToolAction::enlarge_integral);
    pull(PointToPpm(set, wide), -9000);
    EXPECT_EQ(set.Integrals[0].StartPoint, last);
    rig.Open("Phase Correction");
    pull(PointToPpm(set, rig.g.PivotPoint), -900);
    EXPECT_EQ(rig.g.PivotPoint, last);
    rig.window->tools().Cancel();
    rig.Open("Base Line Correction");
    rig.Click(3.5);
    act(ToolAction::move_base_point);
    Drag(rig.plot(), {rig.X(3.5), rig.Y(20)}, {rig.X(3.5), -5000});
    EXPECT_GT(rig.g.BasePoints[0].Value, 1000);
    rig.window->tools().Cancel();
    rig.Open("Set Color on the Selected Region");
    pull(8, -900);
    EXPECT_NEAR(std::max(set.Regions[0].Start, set.Regions[0].End), 12, 1e-3);
}

TEST(ToolWindow, RowsKeepTheirOwnPhases)
{
    ToolRig rig(0, 2);
    rig.Open("Phase Correction");
    Type(rig.Get<QLineEdit>("PhaseText1"), "30");
    rig.window->StepRow(1);
    EXPECT_EQ(rig.window->tools().phase0(), 0);
    EXPECT_EQ(rig.Get<QLineEdit>("PhaseText1").text(), "0.0");
    Type(rig.Get<QLineEdit>("PhaseText1"), "60");
    rig.window->StepRow(-1);
    EXPECT_EQ(rig.Get<QLineEdit>("PhaseText1").text(), "30.0");
    const auto& re = rig.g.Slots[0].spec.DataRe;
    const auto top = static_cast<std::size_t>(PpmToPoint(rig.g.Slots[0], 5));
    EXPECT_NEAR(re[1][top] / re[0][top], 0.5 / std::cos(30 / 57.29577951308232), 0.02);
    // The pivot moves while the first row is shown: the other keeps its look when it is touched again.
    rig.window->StepRow(1);
    Type(rig.Get<QLineEdit>("PhaseText2"), "400");
    const float before = re[1][top];
    rig.window->StepRow(-1);
    rig.Click(8);
    rig.window->StepRow(1);
    rig.window->tools().SetPhase1(rig.window->tools().phase1());
    EXPECT_NEAR(re[1][top], before, 1e-3 * std::abs(before));
    auto& all_rows = rig.Get<QAbstractButton>("PhaseAllRows");
    ASSERT_TRUE(all_rows.isVisible());
    all_rows.click();
    const std::vector<float> shown(re[1].begin(), re[1].end());
    for (std::size_t i = 0; i < shown.size(); ++i) ASSERT_EQ(re[0][i], shown[i]) << "the rows of this rig are equal";
    EXPECT_EQ(rig.g.CurrentRow, 1);
    Key(rig.plot(), Qt::Key_Return);
    rig.Entry("UnDo(Phase Correction)")->trigger();
    EXPECT_TRUE(rig.g.Undo.empty()) << "one step for all rows";
    EXPECT_NEAR(re[0][top], re[1][top], 1e-3);
    EXPECT_GT(re[0][top], 1000);
}

TEST(ToolWindow, BasePointsGoAlongToAnotherRow)
{
    ToolRig rig(0, 2);
    for (float& value : rig.g.Slots[0].spec.DataRe[1]) value += 50;
    rig.Open("Base Line Correction");
    for (const double ppm : {0.0, 11.0}) rig.Click(ppm);
    rig.Get<QAbstractButton>("BaseCorCommand1").click();
    const auto levels = [&] {
        std::vector<std::pair<std::int32_t, float>> all;
        for (const BasePointEntry& e : rig.g.BasePoints) all.push_back({e.Point, e.Value});
        return all;
    };
    const auto first = levels();
    ASSERT_EQ(first.size(), 2U);
    rig.window->StepRow(1);
    ASSERT_EQ(levels().size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(levels()[i].first, first[i].first);
        EXPECT_NEAR(levels()[i].second, first[i].second + 50, 0.1);
    }
    EXPECT_NEAR(rig.Row()[100], 20, 1) << "the preview of the row that was left is off";
}

} // namespace
} // namespace nmr
