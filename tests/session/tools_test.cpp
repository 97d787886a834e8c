// The tools of the main form: entering and leaving, the mouse, and what each step takes back.

#include "session/forms.h"
#include "session/instrument_table.h"
#include "session/reference_shifts.h"
#include "session/save_flow.h"
#include "session/tool_commands.h"
#include "session/tools.h"

#include "core/list_values.h"
#include "core/state_image.h"
#include "support/files.h"
#include "support/row_block.h"
#include "support/scripted_asker.h"

#include <cmath>

namespace nmr::test {
namespace {

/// 4000 points of 0.0025 ppm from -1 to 9 ppm: lines at 1, 4 and 7 ppm over a level of 2.
struct Desk {
    TempFolder folder;
    std::unique_ptr<GlobalBlock> block;
    GlobalBlock& g;
    ScriptedAsker asker;
    Session s;
    Tools tools{s};

    explicit Desk(std::initializer_list<ScriptedAsker::Answer> answers = {}) :
        block(Make()), g(*block), asker(answers), s{g, asker, {}, {}, {}, {}, false}
    {
        g.AppPath = folder.path();
        g.ViewLeft = 9;
        g.ViewRight = -1;
    }
    static std::unique_ptr<GlobalBlock> Make()
    {
        LineRow row = Lines(4000, {{800, 100, 4}, {2000, 60, 4}, {3200, 80, 4}}, 0.2);
        for (double& y : row.re) y += 2;
        auto made = BlockOf(row.re, {.first_ppm = -1, .step_ppm = 0.0025}, row.im);
        made->Slots[0].par.InstrumentID = "alpha";
        return made;
    }
    DataSet& set() { return g.Slots[0]; }
    std::vector<float> Row()
    {
        const auto row = set().spec.DataRe[0].first(4000);
        return {row.begin(), row.end()};
    }
    void Click(double ppm, double reach = 0.02)
    {
        tools.MouseDown({ppm, 0, reach});
        tools.MouseUp({ppm, 0, reach});
    }
    void Drag(double from, double to, double up = 0)
    {
        tools.MouseDown({from, 0, 0.02});
        tools.MouseMove({(from + to) / 2, up / 2, 0.02});
        tools.MouseUp({to, up, 0.02});
    }
    bool Undo() { return g.Undo.UnDo(g); }
    /// Opens the peak tool, with levels that find the three lines.
    void PickLines()
    {
        tools.Enter(Tool::peaks);
        tools.SetLevel(ToolAction::detect_level, 0.3);
        tools.SetLevel(ToolAction::noise_level, 0.1);
        tools.PickShown();
    }
};

TEST(Tools, EnteringClosesWhatStandsOpenByItsQuestion)
{
    struct Case {
        Tool tool;
        const char* question;
    };
    for (const Case& c :
         {Case{Tool::phase, "Will you Fix Phase Correction?"}, Case{Tool::reference, "Will you Fix Reference Setting?"},
          Case{Tool::base_line, "Will you Fix Base Line Correction?"}})
        for (const Button answer : {Button::yes, Button::no, Button::cancel}) {
            SCOPED_TRACE(c.question);
            Desk b({answer});
            const std::vector<float> before = b.Row();
            ASSERT_TRUE(b.tools.Enter(c.tool));
            EXPECT_EQ(b.g.ToolMode, static_cast<int>(c.tool));
            if (c.tool == Tool::phase) b.tools.SetPhase0(30);
            if (c.tool == Tool::reference) b.tools.SetReference(4, 4.5);
            if (c.tool == Tool::base_line) {
                b.Click(5.5);
                b.tools.PreviewBaseLine();
            }
            EXPECT_EQ(b.tools.Enter(Tool::peaks), answer != Button::cancel);
            ASSERT_EQ(b.asker.boxes.size(), 1U);
            EXPECT_EQ(b.asker.boxes[0].text, c.question);
            EXPECT_EQ(b.asker.boxes[0].buttons, (std::vector{Button::yes, Button::no, Button::cancel}));
            EXPECT_EQ(b.tools.open(), answer == Button::cancel ? c.tool : Tool::peaks);
            EXPECT_EQ(b.g.Undo.empty(), answer != Button::yes);
            if (answer == Button::no) {
                EXPECT_EQ(b.Row(), before);
                EXPECT_EQ(b.set().spec.XAxis[0], -1);
            }
            if (answer == Button::yes) {
                b.tools.Fix(); // peaks close without a question
                ASSERT_TRUE(b.Undo());
                EXPECT_EQ(b.Row(), before);
                EXPECT_EQ(b.set().spec.XAxis[0], -1);
            }
        }
    Desk warned({Button::no, Button::yes});
    warned.set().par.BaseLineDone = 1;
    EXPECT_FALSE(warned.tools.Enter(Tool::phase));
    EXPECT_TRUE(warned.tools.Enter(Tool::phase));
    EXPECT_EQ(warned.asker.boxes[0].text,
              "Since BaseLine Correction has been executed,\nthis Phase Correction will not "
              "give a correct result.\nContinue?");
    EXPECT_TRUE(warned.asker.boxes[0].beep);
    Desk none;
    none.set().par.POINT = 0;
    EXPECT_FALSE(none.tools.Enter(Tool::peaks));
    none.tools.MouseDown({});
    none.tools.MouseUp({});
    none.tools.Fix();
    none.tools.Cancel();
}

TEST(Tools, PhaseTurnsTheShownRowAndCancelBringsItBack)
{
    Desk b;
    const std::vector<float> before = b.Row();
    b.tools.Enter(Tool::phase);
    EXPECT_EQ(b.tools.Marks().verticals.at(0).label, "PP");
    b.tools.SetPhase0(999);
    EXPECT_EQ(b.tools.phase0(), 180);
    EXPECT_EQ(b.tools.PhaseText1(), "180.0");
    for (std::size_t i = 0; i < 4000; ++i) ASSERT_NEAR(b.Row()[i], -before[i], 1e-4);
    b.tools.SetPhase1(90);
    const std::vector<float> turned = b.Row();
    b.Drag(PointToPpm(b.set(), b.g.PivotPoint), 7); // the pivot is dragged: the look stays
    EXPECT_EQ(b.g.PivotPoint, 3200);
    for (std::size_t i = 0; i < 4000; ++i) ASSERT_NEAR(b.Row()[i], turned[i], 1e-2);
    b.tools.Cancel();
    EXPECT_EQ(b.Row(), before);
    EXPECT_TRUE(b.g.Undo.empty());
    b.tools.Enter(Tool::phase);
    b.tools.SetPhase0(40);
    b.tools.Fix();
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Phase Correction)");
    const std::vector<float> fixed = b.Row();
    b.tools.Enter(Tool::phase);
    EXPECT_EQ(b.tools.phase0(), 0);
    b.tools.AutoPhaseRobust(); // back to upright lines
    EXPECT_GT(b.tools.phase_quality().value_or(0), 50);
    EXPECT_NEAR(b.tools.phase0(), -40, 6);
    b.tools.Cancel();
    EXPECT_EQ(b.Row(), fixed) << "not what stood before the first session";
    ASSERT_TRUE(b.Undo());
    EXPECT_EQ(b.Row(), before);
}

TEST(Tools, BaseLinePointsHaveStepsOfTheirOwn)
{
    Desk b;
    const std::vector<float> before = b.Row();
    b.tools.Enter(Tool::base_line);
    b.Click(0);
    b.Click(5.5);
    b.Click(8.5);
    ASSERT_EQ(b.g.BasePoints.size(), 3U);
    b.tools.SetAction(ToolAction::move_base_point);
    const float level = b.g.BasePoints[1].Value;
    b.Drag(5.5, 5.5, 10);
    EXPECT_NEAR(b.g.BasePoints[1].Value, level + 10, 1e-4);
    EXPECT_TRUE(b.tools.UndoBasePoint());
    EXPECT_EQ(b.g.BasePoints[1].Value, level) << "a drag is one step";
    b.tools.SetAction(ToolAction::delete_base_point);
    b.Click(8.5);
    EXPECT_EQ(b.g.BasePoints.size(), 2U);
    EXPECT_EQ(b.g.PointUndo.Caption(), "UnDo(Delete Point)");
    EXPECT_TRUE(b.tools.UndoBasePoint() && b.tools.RedoBasePoint());
    EXPECT_EQ(b.tools.Marks().points.size(), 2U);
    b.tools.PreviewBaseLine();
    EXPECT_NE(b.Row(), before);
    b.tools.Fix();
    EXPECT_EQ(b.set().par.BaseLineDone, 1);
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Base Line Correction)");
    EXPECT_NEAR(b.Row()[2600], 0, 1.5);
    EXPECT_FALSE(b.tools.UndoBasePoint());
    ASSERT_TRUE(b.Undo());
    EXPECT_EQ(b.Row(), before);
    EXPECT_EQ(b.set().par.BaseLineDone, 0);
    b.tools.Enter(Tool::base_line);
    b.tools.Fix(); // without a point: nothing
    EXPECT_EQ(b.Row(), before);
    EXPECT_TRUE(b.g.Undo.empty());
    for (const int method : {1, 2}) {
        b.tools.Enter(Tool::base_line);
        b.tools.SetBaseLineMethod(method);
        b.tools.PreviewBaseLine();
        EXPECT_NEAR(b.Row()[2600], before[2600] - 2, 0.3);
        b.tools.Cancel();
        EXPECT_EQ(b.Row(), before);
    }
}

TEST(Tools, BasePointsOnLinesAreMarkedAndDeletedInOneStep)
{
    Desk b;
    b.tools.Enter(Tool::base_line);
    for (const double ppm : {0.0, 1.01, 5.5, 7.0}) b.Click(ppm);
    const auto marked = [&] {
        std::string text;
        for (const ToolMarks::Point& point : b.tools.Marks().points) text += point.on_line ? 'x' : '.';
        return text;
    };
    EXPECT_EQ(marked(), ".x.x");
    b.tools.DeleteBasePointsOnLines();
    EXPECT_EQ(marked(), "..");
    b.tools.DeleteBasePointsOnLines(); // nothing left to do, no step
    EXPECT_TRUE(b.tools.UndoBasePoint());
    EXPECT_EQ(marked(), ".x.x");
    b.tools.Cancel();
    b.tools.Enter(Tool::base_line);
    EXPECT_EQ(marked(), "");
}

TEST(Tools, PeaksAreListedByClickRangeAndLevel)
{
    Desk b;
    b.tools.Enter(Tool::peaks);
    b.tools.SetLevel(ToolAction::detect_level, 0.3);
    b.tools.SetLevel(ToolAction::noise_level, 0.1);
    const auto count = [&] { return b.set().Peaks.size(); };
    b.tools.PickShown();
    EXPECT_EQ(count(), 3U);
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Add Peak,Auto)");
    b.tools.PickShown(); // nothing new, so no step
    ASSERT_TRUE(b.Undo());
    EXPECT_EQ(count(), 0U);
    EXPECT_TRUE(b.g.Undo.empty());
    b.tools.SetAction(ToolAction::pick_range);
    b.Drag(5, 3);
    EXPECT_EQ(count(), 1U);
    b.tools.SetAction(ToolAction::add_peak);
    b.Click(1.01);
    EXPECT_EQ(count(), 2U);
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Add Peak)");
    b.tools.SetAction(ToolAction::delete_peak);
    b.Click(6); // none there
    b.Drag(0.5, 4.5);
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Delete Peak)");
    ASSERT_TRUE(b.Undo());
    EXPECT_EQ(count(), 2U);
    b.tools.DeleteAllPeaks();
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Delete All Peaks)");
    b.tools.SetAction(ToolAction::detect_level);
    EXPECT_EQ(b.tools.StatusText({}), "Move Threshold Level");
    b.tools.MouseDown({2, 30, 0});
    b.tools.MouseMove({2, 0.5 * static_cast<double>(b.set().par.DispLeft), 0});
    b.tools.MouseUp({2, 0.5 * static_cast<double>(b.set().par.DispLeft), 0});
    EXPECT_NEAR(b.tools.LevelOf(ToolAction::detect_level), 0.5, 1e-6);
    EXPECT_EQ(b.tools.Marks().levels.size(), 3U);
}

TEST(Tools, IntegralsAreEditedByTheMouse)
{
    Desk b;
    b.tools.Enter(Tool::integrals);
    b.Drag(4.2, 3.8);
    b.Drag(1.2, 0.8);
    b.Click(6); // no region without a drag
    auto& list = b.set().Integrals;
    ASSERT_EQ(list.size(), 2U);
    EXPECT_NEAR(IntegralStartPpm(b.set(), list[1]), 4.2, 0.003);
    const auto step = [&](ToolAction action, double from, double to, const char* caption, auto check) {
        SCOPED_TRACE(caption);
        const auto before = list;
        b.tools.SetAction(action);
        if (from == to)
            b.Click(from);
        else
            b.Drag(from, to);
        EXPECT_EQ(b.g.Undo.Caption(), caption);
        check();
        ASSERT_TRUE(b.Undo());
        ASSERT_EQ(list.size(), before.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            EXPECT_EQ(list[i].StartPoint, before[i].StartPoint);
            EXPECT_EQ(list[i].Value, before[i].Value);
        }
    };
    step(ToolAction::divide_integral, 4, 4, "UnDo(Divide Integral)", [&] { EXPECT_EQ(list.size(), 3U); });
    step(ToolAction::move_integral, 4, 5, "UnDo(Move Integral)",
         [&] { EXPECT_NEAR(IntegralStartPpm(b.set(), list[1]), 5.2, 0.003); });
    step(ToolAction::enlarge_integral, 3.81, 3, "UnDo(Enlarge Integral)",
         [&] { EXPECT_NEAR(IntegralEndPpm(b.set(), list[1]), 3, 0.003); });
    step(ToolAction::delete_integral, 1, 1, "UnDo(Delete Integral)", [&] { EXPECT_EQ(list.size(), 1U); });
    b.set().IntegralRef = 0;
    step(ToolAction::reference_integral, 4, 4, "UnDo(Set Integral Reference)",
         [&] { EXPECT_EQ(b.set().IntegralRef, 1); });
    EXPECT_EQ(b.set().IntegralRef, 0);
    EXPECT_EQ(b.tools.StatusText({6, 0, 0}), "");
    EXPECT_EQ(b.tools.StatusText({4, 0, 0}), "Set Ref Value Here");

    EXPECT_TRUE(b.tools.SetB0(0.5));
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Adjust Integral)");
    EXPECT_FALSE(b.tools.SetB0(0.5));
    ASSERT_TRUE(b.tools.PressB0B1());
    for (int i = 0; i < 5; ++i) b.tools.StepB1(1);
    EXPECT_NEAR(list[static_cast<std::size_t>(b.tools.selected())].B1, 5 * Tools::kB1Step, 1e-9);
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Change B0,B1)");
    ASSERT_TRUE(b.Undo()) << "a held button is one step";
    EXPECT_EQ(list[static_cast<std::size_t>(b.tools.selected())].B1, 0);
    EXPECT_FALSE(b.tools.SetIntegralScale(0));
    EXPECT_TRUE(b.tools.SetIntegralScale(2));
    b.tools.DeleteAllIntegrals();
    EXPECT_TRUE(list.empty());
    EXPECT_FALSE(b.tools.PressB0B1());
    EXPECT_FALSE(b.tools.SetB1(1));
    b.tools.Enter(Tool::regions);
    b.Drag(2, 3);
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Set Color Region)");
    b.tools.SetAction(ToolAction::delete_region);
    b.Click(2.5);
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(ReSet Color Region)");
    EXPECT_EQ(b.set().Regions[0].Start, 0);
}

TEST(Tools, EscDuringADragTakesBackTheDragAlone)
{
    Desk b;
    b.tools.Enter(Tool::integrals);
    b.Drag(4.2, 3.8);
    b.tools.SetAction(ToolAction::move_integral);
    b.tools.MouseDown({4, 0, 0});
    b.tools.MouseMove({6, 0, 0});
    b.tools.Cancel();
    EXPECT_EQ(b.tools.open(), Tool::integrals);
    EXPECT_NEAR(IntegralStartPpm(b.set(), b.set().Integrals[0]), 4.2, 0.003);
    b.tools.MouseUp({6, 0, 0});
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Add Integral)");
}

TEST(Tools, ADragUnderWayHoldsNothingUp)
{
    Desk b({Button::no});
    const std::vector<float> before = b.Row();
    b.tools.Enter(Tool::phase);
    b.tools.SetPhase1(300);
    b.tools.MouseDown({3, 0, 0.02});
    b.tools.MouseMove({2, 0, 0.02});
    EXPECT_TRUE(b.tools.Enter(Tool::integrals)); // by a key, with the button down
    EXPECT_EQ(b.Row(), before);
    b.Drag(4.2, 3.8);
    b.Drag(1.2, 0.8);
    b.s.tools = &b.tools;
    b.tools.SetAction(ToolAction::move_integral);
    b.tools.MouseDown({1, 0, 0.02});
    b.tools.MouseMove({2, 0, 0.02});
    m20_Click(b.s); // the drag is the newest change
    b.tools.MouseMove({3, 0, 0.02});
    b.tools.MouseUp({3, 0, 0.02});
    ASSERT_EQ(b.set().Integrals.size(), 2U);
    EXPECT_NEAR(IntegralStartPpm(b.set(), b.set().Integrals[0]), 1.2, 0.003);
    m20_Click(b.s);
    EXPECT_EQ(b.set().Integrals.size(), 1U);
    b.tools.MouseDown({4, 0, 0.02});
    b.tools.MouseMove({5, 0, 0.02});
    b.tools.DeleteIntegrals({0});
    b.tools.MouseUp({5, 0, 0.02});
    EXPECT_TRUE(b.set().Integrals.empty());
}

TEST(Tools, PhaseStepsGoRoundTheCircleAndEachRowKeepsItsOwnTurn)
{
    Desk b;
    b.tools.Enter(Tool::phase);
    for (const double start : {150.0, -150.0}) {
        b.tools.SetPhase0(start);
        b.tools.TurnPhase0(start / 3);
        EXPECT_NEAR(b.tools.phase0(), start + start / 3 - std::copysign(360.0, start), 1e-4);
    }
    // An automatic phase may lie past the limits of the bar.
    b.g.Phase0Deg = 230;
    b.tools.TurnPhase0(1);
    EXPECT_NEAR(b.tools.phase0(), -129, 1e-4);
    b.tools.Cancel();

    DataSet& set = b.set();
    const auto first = std::vector<float>(b.Row());
    set.RowCount = 2;
    for (RowArray<float>* rows : {&set.spec.DataRe, &set.spec.DataIm}) {
        const std::vector<float> row((*rows)[0].begin(), (*rows)[0].end());
        rows->Resize(2, row.size());
        for (const std::size_t i : {0, 1}) std::ranges::copy(row, (*rows)[i].begin());
    }
    b.tools.Enter(Tool::phase);
    b.tools.SetPhase1(200);
    const std::vector<float> turned = b.Row();
    b.tools.SetRow(1);
    b.tools.SetPivot(3200); // another one than the first row was turned about
    b.tools.SetRow(0);
    b.tools.TurnPhase0(0);
    for (std::size_t i = 0; i < 4000; ++i) ASSERT_NEAR(b.Row()[i], turned[i], 1e-2);
}

TEST(Tools, WhatIsEditedBesideAToolIsNotForgottenByItsEnd)
{
    Desk b;
    b.PickLines();
    b.tools.SetLevel(ToolAction::detect_level, 0.7);
    ASSERT_TRUE(b.Undo());
    EXPECT_NEAR(b.tools.LevelOf(ToolAction::detect_level), 0.7, 1e-6) << "the level for the next picking";
    EXPECT_TRUE(b.g.Undo.ReDo(b.g));
    b.tools.Fix();
    for (const bool fixed : {false, true}) {
        b.set().par.DataChanged = 0; // saved
        ASSERT_TRUE(b.tools.Enter(Tool::reference));
        b.g.ViewLeft = 7;
        b.tools.Cancel();
        EXPECT_EQ(b.g.ViewLeft, 7) << "a zoom stays";
        ASSERT_TRUE(b.tools.Enter(Tool::reference));
        b.tools.SetReference(4, 4.5);
        b.tools.DeletePeaks({0});
        fixed ? b.tools.Fix() : b.tools.Cancel();
        ASSERT_TRUE(!fixed || b.Undo());
        EXPECT_EQ(b.set().par.DataChanged, 1) << "a peak is gone";
    }
    b.tools.Enter(Tool::integrals);
    b.Drag(4.2, 3.8);
    EXPECT_FALSE(b.tools.SetIntegralScale(1e300)) << "more than is kept";
    EXPECT_FALSE(b.tools.SetLevel(ToolAction::noise_level, 1e300));
    const float value = b.set().Integrals[0].Value;
    b.tools.Enter(Tool::base_line);
    b.tools.SetBaseLineMethod(1);
    b.tools.PreviewBaseLine();
    EXPECT_LT(b.set().Integrals[0].Value, value) << "values go with what is shown";
    b.tools.Cancel();
    EXPECT_EQ(b.set().Integrals[0].Value, value);
    b.set().Integrals[0].B1 = 0.25F;
    ASSERT_TRUE(Save_Ver4(b.s, b.folder / "kept.tvo1"));
    EXPECT_NE(b.asker.notices.back().find("no B1"), std::string::npos) << "what a file does not keep is told";
}

TEST(Instruments, AreAskedAboutOnlyWhenTheTableHasChanged)
{
    Desk b({FormAnswer{"OK", {{forms::kRows, "1\n2\n"}}}, FormAnswer{"OK", {{forms::kRows, "2\n"}}}});
    b.g.Instruments = {{"a", "p", "1H", 400, 400, ""}, {"b", "p", "1H", 400, 400, ""}};
    m44_Click(b.s);
    EXPECT_FALSE(b.g.InstrumentsChanged);
    m44_Click(b.s);
    EXPECT_TRUE(b.g.InstrumentsChanged);
    EXPECT_EQ(b.g.Instruments.at(0).instrument, "b");
}

TEST(Reference, MovesTheAxisAndWhatBelongsToIt)
{
    Desk b;
    b.PickLines();
    Add_Integral(b.g, 4.2, 3.8);
    b.set().Regions[0] = {255, 4.5F, 3.5F};
    const StateImage before = TakeWholeImage(b.g);
    const double hz = b.set().Peaks[1].Position;
    const float value = b.set().Integrals[0].Value;
    // Frequencies of points don't depend on what is called 0 ppm.
    const auto mhz = [&](double ppm) { return b.set().par.OBFRQ0PPM * (1 + ppm * 1e-6); };
    const double line_mhz = mhz(4), first_mhz = mhz(b.set().spec.XAxis[0]);
    ASSERT_TRUE(b.tools.Enter(Tool::reference));
    b.Click(4);
    EXPECT_EQ(b.tools.reference_line(), 4);
    ASSERT_TRUE(b.tools.SetReference(4, 4.79));
    b.tools.SetUpdateInstrument(true);
    EXPECT_FALSE(b.tools.SetReference(4, std::nan("")));
    b.tools.Fix();
    EXPECT_NEAR(PointToPpm(b.set(), 2000), 4.79, 1e-9);
    EXPECT_NEAR(mhz(4.79), line_mhz, 1e-10);
    EXPECT_NEAR(mhz(b.set().spec.XAxis[0]), first_mhz, 1e-10);
    EXPECT_EQ(b.set().Peaks[1].Position, hz);
    EXPECT_NEAR(PeakPpm(b.set(), b.set().Peaks[1]), 4.79, 0.003);
    EXPECT_NEAR(IntegralStartPpm(b.set(), b.set().Integrals[0]), 4.99, 0.003);
    EXPECT_EQ(b.set().Integrals[0].Value, value);
    EXPECT_NEAR(b.set().Regions[0].Start, 5.29, 1e-4);
    EXPECT_NEAR(b.g.ViewLeft, 9.79, 1e-4);
    ASSERT_EQ(b.g.Instruments.size(), 1U);
    EXPECT_TRUE(b.g.InstrumentsChanged);
    EXPECT_NEAR(b.g.Instruments[0].ppm0, b.set().par.OBFRQ0PPM, 1e-9);
    EXPECT_TRUE(StoreInstrument(b.g)); // the same row
    EXPECT_EQ(b.g.Instruments.size(), 1U);
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Set Reference)");
    ASSERT_TRUE(b.Undo());
    const StateImage after = TakeWholeImage(b.g);
    for (const auto& [key, bytes] : before)
        EXPECT_TRUE(key.slot != 0 || after.at(key) == bytes) << static_cast<int>(key.section);
}

TEST(Reference, ShiftsOfTheOwnSolventComeFirst)
{
    struct Case {
        const char *nucleus, *solvent, *compound;
        double ppm;
    };
    for (const Case& c : {Case{"1H", "CDCl3", "CDCl3", 7.26}, Case{"13C", "Chloroform-d", "CDCl3", 77.16},
                          Case{"13C", "DMSO", "DMSO-d6", 39.52}, Case{"1H", "MeOD", "CD3OD", 3.31},
                          Case{"1H", "", "TMS", 0}, Case{"1H", "moon dust", "TMS", 0}}) {
        const auto rows = ReferenceShiftsFor(c.nucleus, c.solvent);
        ASSERT_FALSE(rows.empty());
        EXPECT_EQ(rows[0].compound, c.compound);
        EXPECT_EQ(rows[0].ppm, c.ppm);
        for (const ReferenceShift& row : rows) EXPECT_EQ(row.nucleus, c.nucleus);
    }
    EXPECT_TRUE(ReferenceShiftsFor("31P", "CDCl3").empty());
}

} // namespace
} // namespace nmr::test
