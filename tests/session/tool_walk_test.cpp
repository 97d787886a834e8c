// Walks at random through the tools of the main form: whatever was done, taking all of it back gives the bits
// of the start, doing it again those of the end, and a native file brings the end back.

#include "session/inversion.h"
#include "session/tool_commands.h"
#include "session/tools.h"

#include "core/list_values.h"
#include "core/state_image.h"
#include "formats/tavo4.h"
#include "support/files.h"
#include "support/row_block.h"

#include <functional>
#include <random>

namespace nmr::test {
namespace {

using Random = std::mt19937_64;
constexpr std::int32_t kPoints = 600, kRows = 3;
constexpr std::size_t kMostSteps = 18; // below what the stack keeps

/// Any button of those offered.
struct AnyAnswer : Asker {
    explicit AnyAnswer(Random& r) : random(r) {}
    Button Message(const MessageBox& box) override { return box.buttons[random() % box.buttons.size()]; }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest&) override { return {"CANCEL", {}}; }
    void Beep() override {}
    void Notice(const std::string&) override {}
    Random& random;
};

struct Walker {
    Random random;
    TempFolder folder;
    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    GlobalBlock& g = *block;
    AnyAnswer asker{random};
    Session s{g, asker, {}, {}, {}, {}, false};
    Tools tools{s};
    std::string told;

    explicit Walker(std::uint64_t seed) : random(seed)
    {
        const bool descending = seed % 2 == 1;
        g.AppPath = folder.path();
        s.tools = &tools;
        ClearDataSet(g, 0);
        DataSet& set = g.Slots[0];
        set.RowCount = kRows;
        EXPECT_TRUE(AllocateSpecBuffer(g, kPoints, 0));
        set.par.POINT = kPoints;
        set.par.SMODE = 1;
        set.par.OBFRQ0PPM = set.par.ObsCenter = 500;
        set.par.OBNUC = "1H";
        // Steps and ends that float holds, as native files keep them.
        set.par.Resolution2 = descending ? -0.015625 : 0.015625;
        for (std::int32_t i = 0; i < kPoints; ++i)
            set.spec.XAxis[static_cast<std::size_t>(i)] = (descending ? 8.5 : -1.0) + set.par.Resolution2 * i;
        for (std::size_t row = 0; row < kRows; ++row) {
            const LineRow lines = Lines(kPoints, {{100, 50, 3}, {300 + 20.0 * static_cast<double>(row), 90, 3}}, 0.5,
                                        static_cast<unsigned>(row + seed));
            std::ranges::transform(lines.re, set.spec.DataRe[row].begin(), [](double y) { return float(y + 3); });
            std::ranges::copy(lines.im, set.spec.DataIm[row].begin());
        }
        CopyDataToSource(set);
        FillDisplayLimits(set);
        Set_Detect_Level(set, 0.1);
        Set_Noise_Level(set, 0.05);
        g.ViewLeft = 8;
        g.ViewRight = 0;
        g.RowPhase0.assign(kRows, 0);
        g.RowPhase1 = g.RowPhase0;
    }
    double Between(double low, double high) { return std::uniform_real_distribution(low, high)(random); }
    bool Coin() { return random() % 2 == 0; }

    void Mouse()
    {
        constexpr std::int32_t kActions = static_cast<std::int32_t>(ToolAction::delete_region);
        if (Coin()) tools.SetAction(static_cast<ToolAction>(1 + static_cast<std::int32_t>(random() % kActions)));
        // Levels are settings, not edits.
        if (tools.open() == Tool::peaks && tools.action() >= ToolAction::noise_level &&
            tools.action() <= ToolAction::base_level)
            tools.SetAction(ToolAction::add_peak);
        const PlotPoint from{Between(-2, 9.5), Between(-10, 100), 0.1, 0};
        tools.MouseDown(from);
        PlotPoint at = from;
        for (int moves = static_cast<int>(random() % 4); moves > 0; --moves) {
            at = {Between(-2, 9.5), Between(-10, 100), 0.1, 0};
            tools.MouseMove(at);
        }
        switch (random() % 8) {
        case 0:
            return tools.Cancel(); // Esc
        case 1:
            return m20_Click(s);
        case 2:
            return tools.SetRow(static_cast<std::int16_t>(random() % kRows));
        case 3:
            return; // the button is still down
        default:
            tools.MouseUp(at);
        }
    }
    void Step()
    {
        struct Move {
            const char* name;
            std::function<void()> go;
        };
        const Move moves[] = {
            {"enter", [&] { tools.Enter(static_cast<Tool>(random() % 8 == 6 ? 0 : 1 + random() % 5)); }},
            {"regions", [&] { tools.Enter(Tool::regions); }},
            {"mouse", [&] { Mouse(); }},
            {"mouse", [&] { Mouse(); }},
            {"mouse", [&] { Mouse(); }},
            {"mouse", [&] { Mouse(); }},
            {"fix", [&] { tools.Fix(); }},
            {"cancel", [&] { tools.Cancel(); }},
            {"row", [&] { tools.SetRow(static_cast<std::int16_t>(random() % kRows)); }},
            {"phase 0", [&] { tools.SetPhase0(Between(-200, 200)); }},
            {"phase 1", [&] { tools.SetPhase1(Between(-500, 500)); }},
            {"pivot", [&] { tools.SetPivot(static_cast<std::int32_t>(random() % kPoints)); }},
            {"auto phase", [&] { Coin() ? tools.AutoPhase() : tools.AutoPhaseRobust(); }},
            {"all rows", [&] { tools.SamePhaseToAllRows(); }},
            {"base points", [&] { Coin() ? tools.AutoBasePoints() : tools.DeleteAllBasePoints(); }},
            {"method", [&] { tools.SetBaseLineMethod(static_cast<std::int32_t>(random() % 3)); }},
            {"preview", [&] { tools.SetPreview(Coin()); }},
            {"pick", [&] { tools.PickShown(); }},
            {"delete peaks",
             [&] {
                 Coin() ? tools.DeleteAllPeaks() : tools.DeletePeaks({random() % 4, random() % 4});
             }},
            {"delete integrals",
             [&] { random() % 4 == 0 ? tools.DeleteAllIntegrals() : tools.DeleteIntegrals({random() % 4}); }},
            {"reference integral", [&] { tools.MakeReference(static_cast<std::int32_t>(random() % 4)); }},
            {"scale", [&] { tools.SetIntegralScale(Between(-1, 5)); }},
            {"B0", [&] { Coin() ? tools.SetB0(Between(-0.1, 0.1)) : tools.SetB1(Between(-1, 1)); }},
            {"held",
             [&] {
                 if (!tools.PressB0B1()) return;
                 Coin() ? tools.StepB0(3) : tools.StepB1(-2);
             }},
            {"reference", [&] { tools.SetReference(Between(0, 8), Between(-1, 10)); }},
            {"reset regions", [&] { tools.ResetRegions(); }},
            {"inversion",
             [&] {
                 if (!Close_Tool(s)) return;
                 EXPECT_TRUE(Invert_Spectrum(g));
             }},
            {"undo", [&] { m20_Click(s); }},
            {"redo", [&] { ReDo_Click(s); }},
        };
        const Move& move = moves[random() % std::size(moves)];
        told += std::string(move.name) + ", ";
        move.go();
    }
    /// What belongs to the set, apart from what is only shown of it.
    StateImage Set() const
    {
        StateImage image = TakeWholeImage(g);
        std::erase_if(image, [](const auto& entry) { return entry.first.slot != 0; });
        return image;
    }
};

std::string Differences(const StateImage& a, const StateImage& b)
{
    std::string sections;
    for (const auto& [key, bytes] : a) {
        const auto other = b.find(key);
        if (other == b.end() || other->second != bytes) sections += std::to_string(int(key.section)) + " ";
    }
    return sections;
}

/// A native file of the block, read into another one.
void ExpectKept(Walker& w)
{
    for (IntegralEntry& entry : w.g.Slots[0].Integrals) entry.B1 = 0; // the file has no place for it
    Calc_All_Integrals(w.g);
    const auto file = EncodeTavo4(w.g, "walk.tvo1", 0);
    ASSERT_TRUE(file);
    auto again = std::make_unique<GlobalBlock>();
    ASSERT_TRUE(DecodeTavo4(*again, w.asker, *file, 0));
    const DataSet &set = w.g.Slots[0], &read = again->Slots[0];
    EXPECT_EQ(MarkPoints(read), MarkPoints(set));
    for (const std::size_t i : {0, kPoints - 1}) EXPECT_NEAR(read.spec.XAxis[i], set.spec.XAxis[i], 2e-6);
    ASSERT_EQ(read.Peaks.size(), set.Peaks.size());
    for (std::size_t i = 0; i < set.Peaks.size(); ++i) {
        EXPECT_EQ(read.Peaks[i].Position, set.Peaks[i].Position);
        EXPECT_EQ(PeakIndex(read, read.Peaks[i]), PeakIndex(set, set.Peaks[i]));
    }
    ASSERT_EQ(read.Integrals.size(), set.Integrals.size());
    again->CurrentRow = w.g.CurrentRow;
    Calc_All_Integrals(*again); // as a read does; files don't keep the sums
    for (std::size_t i = 0; i < set.Integrals.size(); ++i) {
        EXPECT_EQ(read.Integrals[i].StartPoint, set.Integrals[i].StartPoint);
        EXPECT_EQ(read.Integrals[i].EndPoint, set.Integrals[i].EndPoint);
        EXPECT_EQ(ListedIntegral(read, i), ListedIntegral(set, i));
    }
    for (std::size_t i = 0; i < set.Regions.size(); ++i) EXPECT_EQ(read.Regions[i].Start, set.Regions[i].Start);
}

/// The stored sums and the drawn curves follow one rule.
void ExpectCurvesEndAtValues(Walker& w)
{
    const IntegralCurves curves = CurvesOf(w.g);
    Calc_All_Integrals(w.g);
    for (const IntegralEntry& entry : w.g.Slots[0].Integrals) {
        const double stored = static_cast<double>(entry.Value);
        EXPECT_NEAR(curves.Total(entry), stored, 1e-5 * (1 + std::abs(stored)));
        EXPECT_NEAR(entry.Start, PointToPpm(w.g.Slots[0], entry.StartPoint) - w.g.Slots[0].spec.XAxis[0], 1e-4);
    }
}

TEST(ToolWalk, IsTakenBackDoneAgainAndKept)
{
    for (std::uint64_t seed = 1; seed <= 80; ++seed) {
        Walker w(seed);
        const StateImage start = w.Set();
        for (int step = 0; step < 80 && w.g.Undo.steps().size() < kMostSteps; ++step) w.Step();
        w.tools.StopDrag();
        w.tools.Cancel();
        ASSERT_EQ(w.tools.open(), Tool::none) << seed << ": " << w.told;
        while (w.g.Undo.can_redo()) ReDo_Click(w.s);
        ExpectCurvesEndAtValues(w);
        const StateImage end = w.Set();
        while (!w.g.Undo.empty()) m20_Click(w.s);
        ASSERT_EQ(Differences(start, w.Set()), "") << seed << ": " << w.told;
        while (w.g.Undo.can_redo()) ReDo_Click(w.s);
        ASSERT_EQ(Differences(end, w.Set()), "") << seed << ": " << w.told;
        ExpectKept(w); // writing mends words of the record, so it comes last
        ASSERT_FALSE(testing::Test::HasFailure()) << seed << ": " << w.told;
    }
}

} // namespace
} // namespace nmr::test
