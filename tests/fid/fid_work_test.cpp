// The kept FID and the zero fill.

#include "fid_support.h"
#include "support/files.h"

#include <cstring>

namespace nmr::test {
namespace {

/// Rows of numbers that tell where they belong: 1000 * row + point, imaginary parts negative.
Complex Tag(std::size_t row, int point)
{
    const double value = 1000.0 * static_cast<double>(row) + point;
    return {value, -value - 0.5};
}

std::unique_ptr<GlobalBlock> Tagged(std::int32_t n, std::int32_t rows)
{
    auto g = MakeBlock(n, rows);
    for (std::size_t row = 0; row < static_cast<std::size_t>(rows); ++row)
        Fill(
            *g, [row](int i) { return Tag(row, i); }, row);
    return g;
}

void ExpectTagged(const GlobalBlock& g, int measured)
{
    for (std::size_t row = 0; row < static_cast<std::size_t>(g.Slots[0].RowCount); ++row)
        for (int i = 0; i < g.Slots[0].par.POINT; ++i) {
            const auto at = static_cast<std::size_t>(i);
            const Complex expected = i < measured ? Tag(row, i) : Complex();
            ASSERT_EQ(Complex(g.WorkRe[row][at], g.WorkIm[row][at]), expected) << row << " " << i;
        }
}

TEST(FidWork, ComesBackFromMemoryAndFileAlsoInALongerRow)
{
    const TempFolder folder;
    for (const bool in_file : {false, true}) {
        SCOPED_TRACE(in_file);
        auto g = Tagged(64, 3);
        if (in_file) g->FIDWorkFile = folder / "fid.dat";
        ASSERT_TRUE(Write_FID_Work(*g));
        EXPECT_FALSE(g->NoFIDFile);
        EXPECT_EQ(g->FidMemory.empty(), in_file);
        ASSERT_TRUE(AllocateSpecBuffer(*g, 256, 0)); // loses the FID of the slot
        g->Slots[0].par.POINT = 256;
        ASSERT_TRUE(Load_FID_Work(*g));
        ExpectTagged(*g, 64);
    }
}

TEST(FidWork, TheFileHoldsRealRowsThenImaginaryRowsWithoutAHead)
{
    const TempFolder folder;
    auto g = Tagged(4, 2);
    g->FIDWorkFile = folder / "fid.dat";
    ASSERT_TRUE(Write_FID_Work(*g));
    const std::string bytes = ReadText(folder / "fid.dat");
    const float expected[] = {0,    1,    2,    3,    1000,    1001,    1002,    1003,
                              -0.5, -1.5, -2.5, -3.5, -1000.5, -1001.5, -1002.5, -1003.5};
    ASSERT_EQ(bytes.size(), sizeof(expected));
    EXPECT_EQ(std::memcmp(bytes.data(), expected, sizeof(expected)), 0);
}

TEST(FidWork, AFailedWriteLeavesOneTransform)
{
    const TempFolder folder;
    WriteText(folder / "file", "in the way");
    auto g = Tagged(64, 2);
    g->FIDWorkFile = folder / "file/fid.dat";
    EXPECT_FALSE(Write_FID_Work(*g));
    EXPECT_TRUE(g->NoFIDFile);
    EXPECT_TRUE(Load_FID_Work(*g));
    ExpectTagged(*g, 64);
    EXPECT_FALSE(Zero_Fill_Double(*g, 0));
    EXPECT_FALSE(Set_Zero_Fill(*g, 0, 2));
    g->settings.auto_zerofill = 1;
    Auto_ZeroFill(*g, 0);
    EXPECT_EQ(g->Slots[0].par.POINT, 64);
    EXPECT_TRUE(Commit_Transform(*g));
    EXPECT_EQ(g->Slots[0].par.SMODE, 1);
    const float first = g->Slots[0].spec.DataRe[1][0];
    EXPECT_FALSE(Commit_Transform(*g));
    EXPECT_EQ(g->Slots[0].spec.DataRe[1][0], first);
}

TEST(FidWork, AMissingOrCutFileChangesNothing)
{
    const TempFolder folder;
    auto g = Tagged(64, 1);
    g->FIDWorkFile = folder / "fid.dat";
    Keep(*g);
    WriteText(folder / "fid.dat", ReadText(folder / "fid.dat").substr(1));
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(Set_Zero_Fill(*g, 0, 4));
        EXPECT_FALSE(Zero_Fill_Double(*g, 0));
        EXPECT_FALSE(Commit_Transform(*g));
        EXPECT_EQ(g->Slots[0].par.POINT, 64);
        EXPECT_EQ(g->Slots[0].ProcMark1, 1);
        EXPECT_EQ(g->Slots[0].par.SMODE, 0);
        ExpectTagged(*g, 64);
        std::filesystem::remove(folder / "fid.dat");
    }
}

TEST(ZeroFill, AutomaticFillGoesToTheSettingInPowersOfTwo)
{
    struct Case {
        const char* name;
        std::int32_t on, size, points, factor;
    };
    const Case cases[] = {
        {"twice", 1, 2048, 2048, 2},
        {"sixteen times", 1, 16384, 16384, 16},
        {"not a power of two: the next one", 1, 3000, 4096, 4},
        {"as long as the FID", 1, 1024, 1024, 1},
        {"shorter than the FID", 1, 512, 1024, 1},
        {"switched off", 0, 4096, 1024, 1},
        {"above the limit", 1, 1048577, 1024, 1},
        {"nonsense", 1, -5, 1024, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = Tagged(1024, 1);
        Keep(*g);
        g->settings.auto_zerofill = c.on;
        g->settings.zerofillsize = c.size;
        Auto_ZeroFill(*g, 0);
        EXPECT_EQ(g->Slots[0].par.POINT, c.points);
        EXPECT_EQ(g->Slots[0].ProcMark1, c.factor);
        EXPECT_EQ(g->Slots[0].par.FIDPointsRaw, 1024);
        EXPECT_EQ(g->WindowCurve.last(), c.points);
        EXPECT_EQ(g->WindowCurve[1023], 1.0F);
        if (c.points > 1024) {
            EXPECT_EQ(g->WindowCurve[1024], 0.0F);
        }
        ExpectTagged(*g, 1024);
    }
}

TEST(ZeroFill, DoublesUpToTheLargestLengthAndThenDoesNothing)
{
    auto g = Tagged(1 << 17, 1);
    Keep(*g);
    g->Slots[0].ProcMark2 = 4;
    g->PivotPoint = (1 << 16) - 1; // zero frequency
    for (const int factor : {2, 4, 8}) {
        EXPECT_TRUE(Zero_Fill_Double(*g, 0));
        EXPECT_EQ(g->Slots[0].ProcMark1, factor);
        EXPECT_EQ(g->Slots[0].ProcMark2, 1);
        EXPECT_EQ(g->Slots[0].par.POINT, factor << 17);
        EXPECT_EQ(g->PivotPoint, (factor << 16) - 1);
    }
    EXPECT_FALSE(Zero_Fill_Double(*g, 0));
    EXPECT_EQ(g->Slots[0].par.POINT, 1048576);
    ExpectTagged(*g, 1 << 17);
    EXPECT_TRUE(Set_Zero_Fill(*g, 0, 1));
    EXPECT_EQ(g->Slots[0].par.POINT, 1 << 17);
    for (const int factor : {0, -2, 3, 16, 1 << 30}) EXPECT_FALSE(Set_Zero_Fill(*g, 0, factor)) << factor;
}

} // namespace
} // namespace nmr::test
