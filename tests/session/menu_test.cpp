#include "session/menu.h"

#include "session/display_commands.h"
#include "session/display_scope.h"
#include "session/rig.h"

#include <algorithm>
#include <functional>
#include <set>

namespace nmr {
namespace {

using test::Pressed;
using test::Rig;

TEST(MenuRows, FormATreeInWhichEveryEntryDoesSomething)
{
    const auto g = std::make_unique<GlobalBlock>();
    const MenuState state = SetMenuActivateForm1(*g);
    std::set<std::string_view> controls, shortcuts;
    for (const MenuRow& row : MenuRows()) {
        SCOPED_TRACE(row.control);
        EXPECT_TRUE(controls.insert(row.control).second) << "twice";
        EXPECT_TRUE(state.contains(row.control)) << "nothing says when it may be chosen";
        EXPECT_TRUE(row.parent.empty() || controls.contains(row.parent)) << "its menu comes later or never";
        EXPECT_TRUE(row.shortcut.empty() || shortcuts.insert(row.shortcut).second);
        const bool is_menu = std::any_of(MenuRows().begin(), MenuRows().end(),
                                         [&](const MenuRow& other) { return other.parent == row.control; });
        const bool windows_own = row.control == kExitControl || row.control == kRecentControl;
        EXPECT_EQ(row.handler == nullptr, is_menu || windows_own || row.numbered != nullptr);
    }
}

struct Expected {
    const char* control;
    bool enabled;
    bool visible = true;
    bool checked = false;
};

void ExpectState(const GlobalBlock& g, const std::vector<Expected>& expected)
{
    const MenuState state = SetMenuActivateForm1(g);
    for (const Expected& e : expected) {
        SCOPED_TRACE(e.control);
        const auto found = state.find(e.control);
        ASSERT_NE(found, state.end());
        EXPECT_EQ(found->second.enabled, e.enabled);
        EXPECT_EQ(found->second.visible, e.visible);
        EXPECT_EQ(found->second.checked, e.checked);
    }
}

void Load(GlobalBlock& g)
{
    g.Slots[0].par.POINT = 1024;
    g.Slots[0].par.SMODE = 1;
}

TEST(MenuState, FollowsTheStateOfTheData)
{
    struct Case {
        const char* name;
        std::function<void(GlobalBlock&)> make;
        std::vector<Expected> expected;
    };
    const Case cases[] = {
        {"nothing loaded",
         [](GlobalBlock& g) { g.ToolMode = 3; },
         {{"NMR1D_m11", true},
          {"m19", true},
          {"m10", false},
          {kSavePictureControl, false},
          {kPrintControl, false},
          {kCopyControl, false},
          {"m16", false},
          {"m22", false},
          {"m23", false},
          {"m242", false},
          {"m31", false},
          {"m35", false},
          {"m36", false},
          {"m6", false},
          {"m5", false},
          {"m39", false},
          {"m209", false},
          {"m48", true},
          {"m30", true},
          {"m371", true, true, true},
          {"DataCombo", false, false}}},
        {"a spectrum",
         Load,
         {{"m10", true},
          {kSavePictureControl, true},
          {kPrintControl, true},
          {kCopyControl, true},
          {"m10_4", true},
          {"m16", true},
          {"m22", true},
          {"m27", true},
          {"m31", true},
          {"m6", false},
          {"m171", false},
          {"m61", false},
          {"m52", false},
          {"m18X", false},
          {"m271", false},
          {"m272", false},
          {"m10_10", false},
          {"DataCombo", false, false},
          {"Label6", true, false}}},
        {"a FID that is not transformed",
         [](GlobalBlock& g) {
             Load(g);
             g.NoSpectrumYet = true;
             g.Slots[4].par.POINT = 64;
             g.DiffMode = 1;
             g.DiffCount = 2;
         },
         {{"m10", false},
          {"m18X", false},
          {"m131", false},
          {"m10_10", false},
          {kSavePictureControl, false},
          {"m14", true},
          {"m5", true}}},
        {"a tool is open",
         [](GlobalBlock& g) {
             Load(g);
             g.ToolMode = 4;
         },
         {{"m24", true, true, true}, {"m22", true}, {"m21", true}, {"m23", true}, {"m25", true}}},
        {"the phase tool",
         [](GlobalBlock& g) {
             Load(g);
             g.ToolMode = 1;
         },
         {{"m22", true, true, true}, {"m21", true}}},
        {"a tool that does not exist",
         [](GlobalBlock& g) {
             Load(g);
             g.ToolMode = 9;
         },
         {{"m22", true}, {"m273", true}}},
        {"multi spectra",
         [](GlobalBlock& g) {
             Load(g);
             g.Slots[20].par.POINT = 64;
         },
         {{"m18X", true}, {"m271", true}}},
        {"difference of two",
         [](GlobalBlock& g) {
             Load(g);
             g.DiffMode = 1;
             g.DiffCount = 2;
         },
         {{"m10_10", true}}},
        {"difference of one",
         [](GlobalBlock& g) {
             Load(g);
             g.DiffMode = 1;
             g.DiffCount = 1;
         },
         {{"m10_10", false}}},
        {"array",
         [](GlobalBlock& g) {
             Load(g);
             g.Slots[0].RowCount = 2;
             g.ArrayReverse = 1;
             g.settings.r_color_disp = 1;
         },
         {{"m6", true},
          {"m171", true},
          {"m61", true},
          {"m293", true},
          {"m341", true},
          {"m342", true},
          {"m343", true, true, true},
          {"m52", true},
          {"DataCombo", true},
          {"Label6", true},
          {"m369", true}}},
        {"array, all rows drawn",
         [](GlobalBlock& g) {
             Load(g);
             g.Slots[0].RowCount = 5;
             g.ArrayMode = 1;
         },
         {{"m341", true, true, true}, {"DataCombo", false}}},
        {"DEPT display",
         [](GlobalBlock& g) {
             Load(g);
             g.DEPTMode = 1;
             g.ArrayMode = 1;
             g.Slots[2].par.POINT = 64;
         },
         {{"m272", true},
          {"m271", false},
          {"m171", false},
          {"m341", false},
          {"m6", false},
          {"DataCombo", false, false}}},
        {"integral base line only with the integral",
         [](GlobalBlock& g) {
             Load(g);
             g.settings.integral_disp = 0;
             g.settings.integ_base_disp = 1;
         },
         {{"m361", true}, {"m368", false, true, true}}},
        {"absolute display",
         [](GlobalBlock& g) {
             Load(g);
             g.AbsoluteMode = 1;
         },
         {{"m34", true, true, true}}},
        {"peak data at the bottom",
         [](GlobalBlock& g) {
             Load(g);
             g.Slots[0].PeakFlags = 1;
         },
         {{"m371", true}, {"m372", true, true, true}}},
        {"output formats switched on",
         [](GlobalBlock& g) {
             Load(g);
             g.settings.als_save_ok = g.settings.nuts_save_ok = g.settings.ver3_save_ok = 1;
             g.settings.t1_indiv_file = 1;
         },
         {{"m10_1", true}, {"m18K", true}, {"m10_8", true}, {"m18P", true}, {"m10_3", true}, {"NMR1D_m111", true}}},
        {"output formats switched off",
         [](GlobalBlock& g) {
             Load(g);
             g.settings.als_save_ok = g.settings.nuts_save_ok = g.settings.ver3_save_ok = 0;
             g.settings.t1_indiv_file = 0;
         },
         {{"m10_1", true, false}, {"m10_8", true, false}, {"m10_3", true, false}, {"NMR1D_m111", false, false}}},
        {"recent files", [](GlobalBlock& g) { g.RecentFiles = {"/a"}; }, {{"m102", true}, {"m1003", true}}},
        {"no recent files", [](GlobalBlock&) {}, {{"m102", true, false}, {"m1003", true, false}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto g = std::make_unique<GlobalBlock>();
        c.make(*g);
        ExpectState(*g, c.expected);
    }
}

TEST(MenuState, ShowAllIsMarkedOnlyWithEverySwitchOn)
{
    const auto g = std::make_unique<GlobalBlock>();
    Load(*g);
    std::int32_t* const switches[] = {
        &g->settings.integral_disp,   &g->settings.integ_base_disp, &g->settings.peak_pick_disp,
        &g->settings.peak_top_disp,   &g->settings.peak_num_disp,   &g->settings.multi_view_disp,
        &g->settings.multi_spec_disp, &g->settings.display_grid,    &g->settings.r_color_disp};
    for (std::int32_t* value : switches) *value = 1;
    EXPECT_TRUE(SetMenuActivateForm1(*g).find("m35")->second.checked);
    for (std::int32_t* value : switches) {
        *value = 0;
        EXPECT_FALSE(SetMenuActivateForm1(*g).find("m35")->second.checked);
        *value = 1;
    }
}

TEST(MenuState, NamesNumberedSpectraRowsAndTheOwnFormat)
{
    const auto g = std::make_unique<GlobalBlock>();
    Load(*g);
    g->Slots[2].par.POINT = 8;
    g->Slots[20].par.POINT = 8;
    g->Slots[0].RowCount = 2;
    g->Slots[0].RowValueA[1] = 0.25F;
    g->settings.tvo_extension = 1;
    const MenuState state = SetMenuActivateForm1(*g);
    EXPECT_EQ(state.find("m185(3)")->second.caption, "Spectrum 3");
    EXPECT_TRUE(state.contains("m2731(1)"));
    EXPECT_FALSE(state.contains("m185(2)"));
    EXPECT_FALSE(state.contains("m185(21)")) << "the last slot has no number";
    EXPECT_EQ(state.find("DataCombo(2)")->second.caption, "2:  0.25");
    g->Slots[0].RowParamUnit = "s";
    EXPECT_EQ(RowCaption(g->Slots[0], 1), "2:  0.25 s");
    g->Slots[0].RowValueA = {1, 2}; // rows without a parameter of their own are numbered
    EXPECT_EQ(RowCaption(g->Slots[0], 1), "2");
    EXPECT_EQ(state.find("m10_4")->second.caption, "Ver.4 type(*.tvo)");
}

TEST(Commands, HistoryIsDeletedAndRecentFilesAreRead)
{
    Rig rig;
    rig.Boot();
    rig.g.settings.auto_zerofill = 0;
    const std::string path = test::WriteBrukerFid(rig.folder.path() / "exp");
    AddRecentFile(rig.g, path);
    AddRecentFile(rig.g, "/other");
    RecentFile_Click(rig.s, 7);
    RecentFile_Click(rig.s, 1);
    EXPECT_EQ(rig.g.Slots[0].par.FileName, path);
    EXPECT_EQ(rig.g.LastRecent, 1);
    EXPECT_EQ(rig.g.RecentFiles.front(), path);
    m102_Click(rig.s);
    EXPECT_TRUE(rig.g.RecentFiles.empty());
}

TEST(Commands, FileTypesAreStoredOnOkAndGivenUpOnlyWhenTheUserMeansIt)
{
    forms::Values changed;
    for (int n = 1; n <= 5; ++n) {
        changed[forms::Indexed(forms::kExpression, n)] = n == 2 ? "-----" : "*.e" + std::to_string(n);
        changed[forms::Indexed(forms::kDescription, n)] = "Type " + std::to_string(n);
    }
    Rig rig{Pressed("CANCEL", changed), Button::no, Pressed("OK", changed)};
    rig.Boot();
    m121_Click(rig.s);
    EXPECT_EQ(rig.Texts().at(0), "Confirmation: The File Type has been changed! Anyway, close?");
    EXPECT_EQ(rig.asker.forms.at(1).values, changed) << "the form comes back as it was left";
    EXPECT_EQ(rig.g.FileTypeSlots[1], "*.e1");
    EXPECT_EQ(rig.g.FileTypeSlots[2], "");
    EXPECT_EQ(rig.g.FileTypeNames[5], "Type 5");

    const auto stored = rig.g.FileTypeSlots;
    Rig leaving{Pressed("CANCEL", {{"EXPRESSION 1", "*.x"}}), Button::yes};
    leaving.Boot();
    leaving.g.FileTypeSlots = stored;
    m121_Click(leaving.s);
    EXPECT_EQ(leaving.g.FileTypeSlots, stored);
}

TEST(Commands, TheScopeFormComesBackFromItsDefaultAreas)
{
    Rig scratch;
    scratch.Boot();
    scratch.g.Slots[0].par.OBNUC = "1H";
    scratch.g.ViewLeft = 5.0F;
    DisplayScope scope(scratch.g);
    DefaultAreas areas(scratch.g.settings);
    areas.Set(0, XUnit::ppm, 2, ScopeEdge::left, 11.0);
    areas.Ticks(0).step_ppm = 0.25;
    DisplayScope taken(scope);
    taken.Set(ScopeEdge::left, XUnit::ppm, 6.5);
    forms::Values answer = taken.ToValues();
    TickChoice{true, {0.2, 50, 4, 5}}.PutInto(answer);
    Rig rig{Pressed(forms::kEditAreas, scope.ToValues()), Pressed("OK", areas.ToValues()), Pressed("OK", answer)};
    rig.Boot();
    rig.g.Slots[0].par.OBNUC = "1H";
    m31_Click(rig.s);
    ASSERT_EQ(rig.asker.forms.size(), 3U);
    DisplayScope second(rig.asker.forms[2].values);
    second.TakePreset(2);
    EXPECT_EQ(second.Get(ScopeEdge::left, XUnit::ppm), 11.0) << "with the new preset";
    EXPECT_FLOAT_EQ(rig.g.ViewLeft, 6.5F);
    EXPECT_EQ(rig.repaints, 1);
    EXPECT_EQ(rig.g.settings.axis_tic_mode, 1);
    EXPECT_EQ(CurrentTicks(rig.g.settings), (TickSteps{0.2, 50, 4, 5}));
    EXPECT_EQ(GetTickPreset(rig.g.settings, 0).step_ppm, 0.25);
    TickChoice{false, {0, 50, 4, 5}}.Apply(rig.g.settings);
    EXPECT_EQ(rig.g.settings.axis_tic_mode, 1) << "a step of nothing changes nothing";
}

TEST(Commands, GridAndFileTable)
{
    GridChoice grid{0.5, 20.0, 1.0, false, false, true, 1.0};
    Rig rig{Pressed("OK", grid.ToValues()), Pressed("CLOSE")};
    rig.Boot();
    m30_Click(rig.s);
    EXPECT_EQ(rig.g.settings.grid_x_inc, 0.5);
    EXPECT_EQ(rig.g.settings.display_grid, 1);
    m367_Click(rig.s);
    EXPECT_EQ(rig.g.settings.display_grid, 0);
    rig.g.RequiredFiles = {{"Bruker", "fid", "note"}};
    m47_Click(rig.s);
    EXPECT_EQ(rig.asker.forms.at(1).values.at("COUNT"), "1");
    EXPECT_EQ(rig.asker.forms.at(1).values.at("REQUIRED 1"), "fid");
}

} // namespace
} // namespace nmr
