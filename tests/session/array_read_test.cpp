// Files of several rows: what becomes of them by the user's answer.

#include "session/rig.h"

#include <fmt/format.h>

#include <algorithm>

namespace nmr::test {
namespace {

constexpr int kPoints = 200, kRowBytes = 2048; ///< 1600 bytes of points, filled up to a multiple of 1024

void AppendInt(std::string& out, int value)
{
    for (int shift = 0; shift < 32; shift += 8) out += static_cast<char>((value >> shift) & 0xFF);
}

struct SerSpec {
    int rows = 4, told_rows = 4, fn_mode = 1;
    std::string list_name = "vdlist", list = "2s\n500m\n0.001\n30u\n";
    std::size_t cut = 0; ///< bytes missing at the end
};

/// Row r is a line at the carrier of height 1000 * (r + 1).
std::string WriteSer(const std::filesystem::path& folder, const SerSpec& spec)
{
    BrukerSpec fid;
    fid.points = kPoints;
    std::filesystem::remove(WriteBrukerFid(folder, fid));
    std::string ser;
    for (int row = 0; row < spec.rows; ++row) {
        std::string bytes;
        for (int i = 0; i < kPoints; ++i) {
            AppendInt(bytes, 1000 * (row + 1) * (kPoints - i) / kPoints);
            AppendInt(bytes, 0);
        }
        bytes.resize(kRowBytes);
        ser += bytes;
    }
    ser.resize(ser.size() - spec.cut);
    WriteText(folder / "ser", ser);
    WriteText(folder / "acqu2s", fmt::format("##TITLE= p\n##ORIGIN= Bruker\n##$FnMODE= {}\n##$TD= {}\n##END=\n",
                                             spec.fn_mode, spec.told_rows));
    if (!spec.list.empty()) WriteText(folder / spec.list_name, spec.list);
    return (folder / "ser").string();
}

FormAnswer Rows(const char* mode, const char* descending = "0")
{
    return Pressed("OK", {{forms::kArrayMode, mode}, {forms::kDescending, descending}});
}

double Top(const DataSet& set, std::size_t row)
{
    double top = 0;
    for (const float v : set.spec.DataRe[row]) top = std::max(top, static_cast<double>(std::abs(v)));
    return top;
}

TEST(ArrayRead, ListsTellTheValuesOfRows)
{
    struct Case {
        const char* name;
        SerSpec spec;
        std::vector<float> values;
        std::string parameter, unit;
        std::size_t warnings;
    };
    const Case cases[] = {
        {"delays with suffixes", {}, {2, 0.5F, 0.001F, 30e-6F}, "vd", "s", 0},
        {"pulses", {.list_name = "vplist", .list = "10u\n1m\n5\n7\n"}, {10, 1000, 5, 7}, "vp", "us", 1},
        {"counts", {.list_name = "vclist", .list = "1\n2\n4\n8"}, {1, 2, 4, 8}, "vc", "", 0},
        {"temperatures", {.list_name = "vtlist", .list = "280\n290\n300\n310"}, {280, 290, 300, 310}, "vt", "K", 0},
        {"too short", {.list = "1s\n2s\n"}, {1, 2, 1, 2}, "vd", "s", 1},
        {"a line that is no value", {.list = "# times\n1s\n2s\n3s\n4s\n"}, {1, 2, 3, 4}, "vd", "s", 1},
        {"nothing usable", {.list = "none\n"}, {1, 2, 3, 4}, "No.", "", 2},
        {"rows missing", {.rows = 2}, {2, 0.5F}, "vd", "s", 2},
        {"cut in the last row", {.cut = 1200}, {2, 0.5F, 0.001F, 30e-6F}, "vd", "s", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Rig rig({Rows("1"), Pressed(forms::kFirstRow)});
        rig.Boot();
        ASSERT_TRUE(Read_Path(rig.s, WriteSer(rig.folder.path() / "exp", c.spec)));
        const DataSet& set = rig.g.Slots[0];
        ASSERT_EQ(set.RowCount, static_cast<std::int32_t>(c.values.size()));
        for (std::size_t row = 0; row < c.values.size(); ++row) EXPECT_FLOAT_EQ(set.RowValueA[row], c.values[row]);
        EXPECT_EQ(set.RowParamName, c.parameter);
        EXPECT_EQ(set.RowParamUnit, c.unit);
        EXPECT_EQ(set.Warnings.size(), c.warnings);
        EXPECT_EQ(set.par.FIDPoints, kPoints);
        // The last row of the cut file is shorter, so only the first two are compared.
        EXPECT_NEAR(Top(set, 1) / Top(set, 0), 2, 0.01) << "one scale holds for all rows";
    }
}

TEST(ArrayRead, APlaneStaysRefused)
{
    for (const SerSpec& spec : {SerSpec{.fn_mode = 6}, SerSpec{.list = ""}, SerSpec{.rows = 200, .told_rows = 200}}) {
        Rig rig;
        rig.Boot();
        const Status read = Read_Path(rig.s, WriteSer(rig.folder.path() / "exp", spec));
        ASSERT_FALSE(read);
        EXPECT_EQ(read.error().code, spec.rows > 128 ? ErrorCode::too_large : ErrorCode::two_dimensional);
    }
}

TEST(ArrayRead, TheAnswerDecidesOnOrderAndPhasedRow)
{
    struct Case {
        const char* name;
        FormAnswer rows, phase;
        float first;
        std::int16_t shown;
    };
    for (const Case& c : {Case{"file, first", Rows("1"), Pressed(forms::kFirstRow), 2, 0},
                          Case{"file, last", Rows("1"), Pressed(forms::kLastRow), 2, 3},
                          Case{"rising", Rows("2"), Pressed(forms::kLastRow), 30e-6F, 3},
                          Case{"falling", Rows("2", "1"), Pressed(forms::kFirstRow), 2, 0}}) {
        SCOPED_TRACE(c.name);
        Rig rig({c.rows, c.phase});
        rig.Boot();
        ASSERT_TRUE(Read_Path(rig.s, WriteSer(rig.folder.path() / "exp", {})));
        EXPECT_FLOAT_EQ(rig.g.Slots[0].RowValueA[0], c.first);
        EXPECT_EQ(rig.g.CurrentRow, c.shown);
        EXPECT_EQ(rig.asker.forms[0].values.at(forms::kRows), "4");
    }
}

TEST(ArrayRead, CancelInEitherFormEndsTheRead)
{
    for (const bool second : {false, true}) {
        Rig rig;
        rig.Boot();
        ScriptedAsker asker =
            second ? ScriptedAsker({Rows("1"), Pressed("CANCEL")}) : ScriptedAsker({Pressed("CANCEL")});
        Session session{rig.g, asker, {}, {}, {}, {}};
        const Status read = Read_Path(session, WriteSer(rig.folder.path() / "exp", {}));
        ASSERT_FALSE(read);
        EXPECT_EQ(read.error().code, ErrorCode::cancelled);
        EXPECT_TRUE(IsEmpty(rig.g.Slots[0]));
    }
}

TEST(ArrayRead, RowsBecomeSpectraOfTheirOwn)
{
    struct Case {
        const char* name;
        const char* mode;
        int rows;
        std::vector<float> heights; ///< of the slots, from 0, over that of slot 0
        std::int32_t dept;
    };
    for (const Case& c : {Case{"multi", "3", 4, {1, 2, 3, 4}, 0}, Case{"DEPT of four", "4", 4, {1, 2, 3, 4}, 1},
                          Case{"DEPT of three", "4", 3, {1, 2, 2, 3}, 1}}) {
        SCOPED_TRACE(c.name);
        Rig rig({Rows(c.mode)});
        rig.Boot();
        SerSpec spec;
        spec.rows = spec.told_rows = c.rows;
        ASSERT_TRUE(Read_Path(rig.s, WriteSer(rig.folder.path() / "exp", spec)));
        for (std::size_t slot = 0; slot < c.heights.size(); ++slot) {
            const DataSet& set = rig.g.Slots[slot];
            ASSERT_EQ(set.RowCount, 1);
            EXPECT_EQ(set.par.SlotNumber, static_cast<std::int16_t>(slot));
            EXPECT_EQ(set.par.POINT, rig.g.Slots[0].par.POINT);
            EXPECT_EQ(set.spec.XAxis, rig.g.Slots[0].spec.XAxis);
            EXPECT_NEAR(Top(set, 0) / Top(rig.g.Slots[0], 0), c.heights[slot], 0.01);
            EXPECT_FLOAT_EQ(set.par.DataMax, *std::ranges::max_element(set.spec.DataRe[0]));
        }
        EXPECT_TRUE(IsEmpty(rig.g.Slots[c.heights.size()]));
        EXPECT_EQ(rig.g.settings.dept_mode, c.dept);
        EXPECT_TRUE(rig.g.NoFIDFile);
    }
}

TEST(ArrayRead, OnlyTheFirstTwentyRowsBecomeSpectra)
{
    Rig rig({Rows("3")});
    rig.Boot();
    SerSpec spec;
    spec.rows = spec.told_rows = 25;
    ASSERT_TRUE(Read_Path(rig.s, WriteSer(rig.folder.path() / "exp", spec)));
    EXPECT_FALSE(IsEmpty(rig.g.Slots[19]));
    EXPECT_TRUE(IsEmpty(rig.g.Slots[20]));
}

} // namespace
} // namespace nmr::test
