#include "core/undo.h"

#include "core/file_layer.h"
#include "core/global_block.h"
#include "core/param_edit.h"
#include "core/param_table.h"
#include "core/snapshot.h"
#include "core/state_image.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <set>

namespace nmr {
namespace {

using test::TempFolder;

/// Everything that an edit may change: two states are the same when their bytes are.
class Fingerprint {
public:
    explicit Fingerprint(const GlobalBlock& g) : image_(TakeWholeImage(g))
    {
        // The source of the next rotation has no snapshot of its own.
        for (const DataSet& set : g.Slots)
            for (const auto* part : {&set.spec.SourceRe, &set.spec.SourceIm})
                for (std::size_t row = 0; row < part->rows(); ++row)
                    source_ =
                        Checksum64(std::as_bytes((*part)[row].first(static_cast<std::size_t>(set.par.POINT))), source_);
    }
    bool operator==(const Fingerprint&) const = default;

private:
    StateImage image_;
    std::uint64_t source_ = 0;
};

struct Bench {
    TempFolder folder;
    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    GlobalBlock& g = *block;
    std::mt19937 random{7};

    explicit Bench(std::int32_t points = 64, std::int32_t rows = 3)
    {
        NumberSlots(g);
        g.AppPath = folder.path();
        Fill(0, points, rows);
        Fill(4, 16, 1);
    }
    void Fill(std::int16_t slot, std::int32_t points, std::int32_t rows)
    {
        DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
        set.RowCount = rows;
        EXPECT_TRUE(AllocateSpecBuffer(g, points, slot));
        set.par.POINT = points;
        set.par.SMODE = 1;
        set.par.DataFromFile = 1;
        for (RowArray<float>* part : {&set.spec.DataRe, &set.spec.DataIm})
            for (float& value : part->all()) value = Value();
        for (double& ppm : set.spec.XAxis) ppm = Value();
        CopyDataToSource(set);
    }
    float Value() { return std::uniform_real_distribution<float>(-1e6F, 1e6F)(random); }
    int Index(std::size_t count) { return static_cast<int>(random() % count); }
};

// What a tool of a part does to the data.
using Edit = void (*)(Bench&);
struct PartEdit {
    std::uint32_t part;
    Edit edit;
};

void EditPoints(Bench& b)
{
    DataSet& set = b.g.Slots[0];
    for (float& value : set.spec.DataRe.all()) value = b.Value();
    set.spec.DataRe[0][1] = std::bit_cast<float>(0x7fc00123U); // even a NaN keeps its bits
    for (float& value : set.spec.DataIm.all()) value *= -0.7F;
    CopyDataToSource(set);
    set.par.DataMax = b.Value();
    set.par.BaseLineDone = static_cast<std::int16_t>(b.Index(2));
}

void EditPhase(Bench& b)
{
    b.g.RowPhase0[1] = b.Value();
    b.g.Phase1Deg = b.Value();
    b.g.PivotPoint = b.Index(64);
    b.g.Slots[0].par.PhaseP0 = b.Index(64);
}

void EditPeaks(Bench& b)
{
    auto& peaks = b.g.Slots[0].Peaks;
    if (b.Index(4) == 0) peaks.clear();
    peaks.push_back({b.Index(64), b.Value(), b.Value(), static_cast<double>(b.Value()), 1});
}

void EditIntegrals(Bench& b)
{
    auto& integrals = b.g.Slots[0].Integrals;
    if (b.Index(4) == 0) integrals.clear();
    IntegralEntry entry;
    entry.Start = b.Value();
    entry.EndPoint = b.Index(64);
    entry.B0 = b.Value();
    entry.Label = std::to_string(b.Index(1000));
    integrals.push_back(entry);
    b.g.Slots[0].IntegralRef = static_cast<std::int16_t>(integrals.size() - 1);
}

void EditViews(Bench& b)
{
    auto& views = b.g.Slots[0].MultiViews;
    if (views.size() > 3) views.erase(views.begin());
    views.emplace_back().Offset = b.Value();
    views.back().Labels[2] = "ppm";
}

void EditRegions(Bench& b)
{
    b.g.Slots[0].Regions[static_cast<std::size_t>(b.Index(41))] = {b.Index(1000), b.Value(), b.Value()};
}

void EditReference(Bench& b)
{
    DataSet& set = b.g.Slots[0];
    const double shift = static_cast<double>(b.Value());
    for (double& ppm : set.spec.XAxis) ppm += shift / 3; // rounds: adding it back would not be exact
    set.par.SMEXR = b.Value();
    set.par.RefX = b.Value();
    set.par.OBFRQ0PPM = shift;
    b.g.ViewLeft += b.Value();
}

void EditLabels(Bench& b)
{
    b.g.Slots[0].XLabelHz = std::to_string(b.Index(9999));
    b.g.settings.xlabel_hz = b.g.Slots[0].XLabelHz;
}

void EditParameters(Bench& b)
{
    for (const ParamEditRow& row : ParamEditRows())
        EXPECT_TRUE(SetParam(b.g.Slots[0].par, *FindParamByName(row.name), std::to_string(b.Index(30000))));
    b.g.Slots[0].par.DateSerial = b.Index(50000);
    b.g.Slots[0].par.RefX = b.Value();
}

void EditGrid(Bench& b)
{
    b.g.settings.display_grid ^= 1;
    b.g.settings.grid_x_inc = static_cast<double>(b.Value());
    b.g.settings.grid_width = static_cast<double>(b.Value());
}

void EditArrayDisplay(Bench& b)
{
    b.g.settings.disp_array_mode ^= 1;
    b.g.ArrayMode = static_cast<std::int16_t>(b.Index(2));
}

void EditMulti(Bench& b)
{
    b.g.settings.multi_spec_shift = static_cast<double>(b.Value());
    b.g.DiffCount = static_cast<std::int16_t>(b.Index(3));
    b.g.Slots[4].par.COMNT = std::to_string(b.Index(9999));
    b.g.Slots[4].RowHeading += "x";
    EditPeaks(b); // of slot 0, which the step names too
}

void EditDept(Bench& b)
{
    b.g.settings.dept_ch_90 = static_cast<double>(b.Value());
}

void EditBasePoints(Bench& b)
{
    if (b.Index(5) == 0) b.g.BasePoints.clear();
    b.g.BasePoints.push_back({b.Index(64), b.Value()});
}

constexpr PartEdit kEdits[] = {
    {kUndoPoints, EditPoints},
    {kUndoPhase, EditPhase},
    {kUndoPeaks, EditPeaks},
    {kUndoLabels, EditLabels},
    {kUndoIntegrals, EditIntegrals},
    {kUndoViews, EditViews},
    {kUndoRegions, EditRegions},
    {kUndoReference, EditReference},
    {kUndoParameters, EditParameters},
    {kUndoGrid, EditGrid},
    {kUndoArrayDisplay, EditArrayDisplay},
    {kUndoMulti, EditMulti},
    {kUndoDept, EditDept},
    {kUndoBasePoints, EditBasePoints},
};

constexpr std::uint32_t kSettingsOnly = kUndoGrid | kUndoArrayDisplay | kUndoDept | kUndoBasePoints;

void ChangeParts(Bench& b, std::uint32_t parts)
{
    for (const PartEdit& row : kEdits)
        if ((row.part & parts) != 0) row.edit(b);
    if ((parts & kSettingsOnly) == 0) {
        b.g.Slots[0].par.DataChanged = 1;
        b.g.Slots[0].par.DataFromFile = 0;
    }
}

/// One edit as its tool does it, with its step.
void Do(Bench& b, UndoStack& stack, const UndoKindRow& kind)
{
    constexpr std::int32_t kSlots[] = {0, 4};
    if ((kind.parts & kUndoPoints) != 0) {
        UndoStep step = stack.Begin(b.g, kind.kind);
        ChangeParts(b, kind.parts);
        EXPECT_TRUE(stack.Commit(b.g, std::move(step)));
        return;
    }
    const bool multi = (kind.parts & kUndoMulti) != 0;
    stack.Push(b.g, kind.kind, multi ? std::span<const std::int32_t>(kSlots) : std::span<const std::int32_t>());
    ChangeParts(b, kind.parts);
}

void WalkBackAndForth(Bench& b, UndoStack& stack, const std::vector<Fingerprint>& states)
{
    const std::size_t last = states.size() - 1;
    for (std::size_t i = last; i > 0; --i) {
        ASSERT_TRUE(stack.UnDo(b.g));
        ASSERT_EQ(Fingerprint(b.g), states[i - 1]) << "back to " << i - 1;
    }
    EXPECT_FALSE(stack.UnDo(b.g));
    for (std::size_t i = 1; i <= last; ++i) {
        ASSERT_TRUE(stack.ReDo(b.g));
        ASSERT_EQ(Fingerprint(b.g), states[i]) << "on to " << i;
    }
    EXPECT_FALSE(stack.ReDo(b.g));
}

TEST(Undo, EveryKindComesBackToTheBitAndForthAgain)
{
    struct Table {
        const char* name;
        std::span<const UndoKindRow> kinds;
        UndoStack GlobalBlock::*stack;
    };
    for (const Table& table : {Table{"main form", UndoKinds(), &GlobalBlock::Undo},
                               Table{"point tool", PointUndoKinds(), &GlobalBlock::PointUndo}})
        for (const UndoKindRow& kind : table.kinds) {
            if ((kind.parts & kUndoBackup) != 0) continue;
            SCOPED_TRACE(std::string(table.name) + ": " + std::string(kind.caption));
            Bench b;
            std::vector<Fingerprint> states{Fingerprint(b.g)};
            for (int i = 0; i < 3; ++i) {
                Do(b, b.g.*table.stack, kind);
                states.emplace_back(b.g);
                EXPECT_NE(states[states.size() - 2], states.back()) << "the edit changes nothing that is looked at";
            }
            EXPECT_EQ((b.g.*table.stack).Caption(), kind.caption);
            WalkBackAndForth(b, b.g.*table.stack, states);
        }
}

TEST(Undo, RandomWalksOfAllKindsNeverLoseAState)
{
    std::vector<UndoKindRow> kinds;
    for (const UndoKindRow& kind : UndoKinds())
        if ((kind.parts & kUndoBackup) == 0) kinds.push_back(kind);
    for (unsigned seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE(seed);
        Bench b(32, 2);
        b.random.seed(seed);
        std::vector<Fingerprint> states{Fingerprint(b.g)};
        std::size_t now = 0, oldest = 0;
        for (int move = 0; move < 150; ++move) {
            const int dice = b.Index(10);
            if (dice < 6) {
                Do(b, b.g.Undo, kinds[static_cast<std::size_t>(b.Index(kinds.size()))]);
                states.resize(++now, states.front());
                states.emplace_back(b.g);
                if (now - oldest > kUndoDepth) oldest = now - kUndoDepth;
            } else if (dice < 9) {
                ASSERT_EQ(b.g.Undo.UnDo(b.g), now > oldest);
                if (now > oldest) --now;
            } else {
                ASSERT_EQ(b.g.Undo.ReDo(b.g), now + 1 < states.size());
                if (now + 1 < states.size()) ++now;
            }
            ASSERT_EQ(Fingerprint(b.g), states[now]) << "move " << move;
        }
    }
}

TEST(Undo, CaptionsFollowTheNewestStepAndTheDepthIsTwenty)
{
    Bench b;
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo");
    EXPECT_EQ(b.g.Undo.RedoCaption(), "ReDo");
    PushUndoStep(b.g, UndoKind::add_peak);
    for (int i = 0; i < 20; ++i) PushUndoStep(b.g, UndoKind::add_view);
    EXPECT_EQ(b.g.Undo.steps().size(), kUndoDepth);
    PushUndoStep(b.g, UndoKind::change_multi).Name = "UnDo(Change Difference Specrum)";
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Change Difference Specrum)");
    EXPECT_TRUE(b.g.Undo.UnDo(b.g));
    EXPECT_EQ(b.g.Undo.RedoCaption(), "ReDo(Change Difference Specrum)");
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo(Add View)");
    for (int i = 0; i < 19; ++i) EXPECT_TRUE(b.g.Undo.UnDo(b.g));
    EXPECT_FALSE(b.g.Undo.UnDo(b.g)) << "the first step has fallen out";
    EXPECT_EQ(b.g.Undo.Caption(), "UnDo");
}

// Enumerators and table rows are two lists of the same kinds.
TEST(Undo, EveryKindHasItsRow)
{
    std::set<std::int32_t> kinds;
    for (const UndoKindRow& row : UndoKinds()) {
        EXPECT_TRUE(kinds.insert(row.kind).second);
        EXPECT_TRUE(row.caption.starts_with("UnDo("));
        EXPECT_NE(row.parts, 0U);
    }
    const std::set<std::int32_t> named{1,  2,  3,  4,  6,   8,   11,  16,  33,  51,  52,  53, 54,
                                       55, 56, 57, 58, 59,  61,  62,  63,  64,  65,  66,  67, 68,
                                       69, 71, 81, 91, 105, 141, 142, 201, 205, 291, 5001};
    EXPECT_EQ(kinds, named);
    for (const ParamEditRow& row : ParamEditRows()) EXPECT_NE(FindParamByName(row.name), nullptr) << row.name;
}

UndoKindRow PhaseKind()
{
    return *std::ranges::find(UndoKinds(), 6, &UndoKindRow::kind);
}

TEST(Undo, SnapshotFilesCarryTheNamesOfTheirSteps)
{
    Bench b;
    const auto names = [&] { return ListFiles(b.folder.path(), "UndoSpecData1.*"); };
    test::WriteText(b.folder / "UndoSpecData1.002", "another run's");
    Do(b, b.g.Undo, PhaseKind());
    Do(b, b.g.Undo, PhaseKind());
    EXPECT_EQ(names(), (std::vector<std::string>{"UndoSpecData1.001", "UndoSpecData1.002", "UndoSpecData1.003",
                                                 "UndoSpecData1.00X"}));
    EXPECT_EQ(FileLen(b.folder / "UndoSpecData1.001"), 2 * 3 * 64 * 4);
    EXPECT_TRUE(b.g.Undo.UnDo(b.g));
    EXPECT_TRUE(HoldsSnapshotOf(b.g.Slots[0], b.folder.path() / "UndoSpecData1.00X"));
    // A new edit instead of doing again: the number is free for it.
    Do(b, b.g.Undo, PhaseKind());
    EXPECT_EQ(names().size(), 4U);
    b.g.Undo.RemoveFiles(b.g, false);
    EXPECT_EQ(names(), std::vector<std::string>{"UndoSpecData1.002"});
    b.g.Undo.RemoveFiles(b.g, true);
    EXPECT_TRUE(names().empty());
}

TEST(Undo, ASecondRunHasALiveSnapshotOfItsOwn)
{
    Bench first, second;
    second.g.AppPath = first.g.AppPath;
    first.g.WorkFile = first.folder / "Work_File_1D0000.wkf";
    second.g.WorkFile = first.folder / "Work_File_1D0001.wkf";
    second.g.WorkNumber = 1;
    test::WriteText(first.g.WorkFile, "");
    Do(first, first.g.Undo, PhaseKind());
    test::WriteText(second.g.WorkFile, "");
    second.random.seed(99);
    const Fingerprint before(second.g), first_before(first.g);
    Do(second, second.g.Undo, PhaseKind());
    EXPECT_GT(FileLen(first.folder / "UndoSpecData1.00X0001"), 0);
    Do(first, first.g.Undo, PhaseKind());
    EXPECT_EQ(FileLen(first.folder / "UndoSpecData1.00X0000"), -1) << "the first run keeps the name it began with";
    EXPECT_TRUE(first.g.Undo.UnDo(first.g));
    EXPECT_TRUE(second.g.Undo.UnDo(second.g));
    EXPECT_EQ(Fingerprint(second.g), before);
    EXPECT_EQ(Fingerprint(first.g), first_before);
}

struct Fault {
    const char* name;
    void (*spoil)(Bench&);
};

// A snapshot that can't be used leaves the data as they are; the step is gone all the same.
TEST(Undo, ASpoiltSnapshotChangesNothing)
{
    const Fault faults[] = {
        {"missing", [](Bench& b) { std::filesystem::remove(b.folder / "UndoSpecData1.001"); }},
        {"one byte short",
         [](Bench& b) { std::filesystem::resize_file(b.folder / "UndoSpecData1.001", 2 * 3 * 64 * 4 - 1); }},
        {"empty", [](Bench& b) { std::filesystem::resize_file(b.folder / "UndoSpecData1.001", 0); }},
        {"of other data", [](Bench& b) { b.Fill(0, 32, 1); }},
        {"a folder",
         [](Bench& b) {
             std::filesystem::remove(b.folder / "UndoSpecData1.001");
             std::filesystem::create_directory(b.folder / "UndoSpecData1.001");
         }},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.name);
        Bench b;
        Do(b, b.g.Undo, PhaseKind());
        fault.spoil(b);
        const Fingerprint before(b.g);
        EXPECT_TRUE(b.g.Undo.UnDo(b.g));
        EXPECT_EQ(Fingerprint(b.g), before);
        EXPECT_TRUE(b.g.Undo.empty());
        EXPECT_FALSE(b.g.Undo.can_redo());
    }
}

TEST(Undo, AToolGoesOnWithoutAStepWhenNoSnapshotCanBeKept)
{
    const Fault faults[] = {
        {"no data folder", [](Bench& b) { b.g.AppPath.clear(); }},
        {"the folder is gone", [](Bench& b) { b.g.AppPath /= "gone"; }},
        {"all numbers taken",
         [](Bench& b) {
             for (int i = 1; i <= 999; ++i) {
                 std::string digits = std::to_string(1000 + i).substr(1);
                 test::WriteText(b.folder / ("UndoSpecData1." + digits), "");
             }
         }},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.name);
        Bench b;
        fault.spoil(b);
        UndoStep step = b.g.Undo.Begin(b.g, 8);
        EditPoints(b);
        const Fingerprint after(b.g);
        EXPECT_FALSE(b.g.Undo.Commit(b.g, std::move(step)));
        EXPECT_FALSE(b.g.Undo.UnDo(b.g));
        EXPECT_EQ(Fingerprint(b.g), after);
    }
}

// A tool that keeps no steps has changed the points since the last one.
TEST(Undo, AStaleLiveSnapshotIsSeen)
{
    Bench b;
    Do(b, b.g.Undo, PhaseKind());
    b.g.Slots[0].spec.DataRe[2][5] += 1;
    CopyDataToSource(b.g.Slots[0]);
    const Fingerprint changed(b.g);
    Do(b, b.g.Undo, PhaseKind());
    EXPECT_TRUE(b.g.Undo.UnDo(b.g));
    EXPECT_EQ(Fingerprint(b.g), changed);
    b.g.Slots[0].spec.DataIm[0][0] += 1;
    CopyDataToSource(b.g.Slots[0]);
    const Fingerprint again(b.g);
    EXPECT_TRUE(b.g.Undo.UnDo(b.g));
    EXPECT_TRUE(b.g.Undo.ReDo(b.g));
    EXPECT_EQ(Fingerprint(b.g), again);
}

// The journal counts on the points that it saw last until it has seen the next ones.
TEST(Undo, WhatTheLiveSnapshotHeldStaysSomewhere)
{
    Bench b;
    const auto kept = [&](const DataSet& set) {
        const auto names = ListFiles(b.folder.path(), "UndoSpecData1.*");
        return std::ranges::any_of(names,
                                   [&](const auto& name) { return HoldsSnapshotOf(set, b.folder.path() / name); });
    };
    ASSERT_EQ(b.g.Undo.KeepLive(b.g), b.folder.path() / "UndoSpecData1.00X");
    const DataSet first = b.g.Slots[0];
    EditPoints(b); // without a step
    ASSERT_FALSE(b.g.Undo.KeepLive(b.g).empty());
    EXPECT_TRUE(kept(first) && kept(b.g.Slots[0]));
    const DataSet second = b.g.Slots[0];
    Do(b, b.g.Undo, PhaseKind());
    EXPECT_TRUE(kept(second) && kept(b.g.Slots[0]));
    EXPECT_TRUE(b.g.Undo.UnDo(b.g));
    EXPECT_TRUE(kept(second));
    // Of another slot: the live snapshot of the first is not touched.
    UndoStep step = b.g.Undo.Begin(b.g, 8, 4);
    b.g.Slots[4].spec.DataRe[0][1] += 1;
    EXPECT_TRUE(b.g.Undo.Commit(b.g, std::move(step)));
    EXPECT_TRUE(HoldsSnapshotOf(b.g.Slots[0], b.folder.path() / "UndoSpecData1.00X"));
    EXPECT_EQ(b.g.Undo.point_changes(4), 1U);
    EXPECT_EQ(b.g.Undo.point_changes(0), 2U);
}

TEST(Undo, ASaveMakesEveryOtherStateAChangedOne)
{
    Bench b;
    DataSet& set = b.g.Slots[0];
    Do(b, b.g.Undo, UndoKinds()[0]);
    Do(b, b.g.Undo, UndoKinds()[0]);
    EXPECT_TRUE(b.g.Undo.UnDo(b.g));
    set.par.DataChanged = 0; // saved
    set.par.DataFromFile = 1;
    b.g.Undo.NoteSaved();
    EXPECT_TRUE(b.g.Undo.UnDo(b.g));
    EXPECT_EQ(set.par.DataChanged, 1) << "the file holds the peak that was just taken back";
    EXPECT_TRUE(b.g.Undo.ReDo(b.g));
    EXPECT_EQ(set.par.DataChanged, 0) << "back at what the file holds";
    EXPECT_TRUE(b.g.Undo.ReDo(b.g));
    EXPECT_EQ(set.par.DataChanged, 1);
}

} // namespace
} // namespace nmr
