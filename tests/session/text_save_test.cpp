// "Save as" JCAMP, as the user meets it.

#include "session/text_save.h"

#include "session/rig.h"

#include <gmock/gmock.h>

namespace nmr {
namespace {

using namespace test;
using testing::HasSubstr;

using Command = void (*)(Session&);

TEST(SaveJcamp, BothFormsReadBackAndCloseTheWork)
{
    struct Case {
        const char* name;
        Command save;
        const char* mark;
    };
    for (const Case& c : {Case{"extended", m10_5_Click, "##XYDATA="}, Case{"reduced", m10_6_Click, "##NTUPLES="}}) {
        SCOPED_TRACE(c.name);
        Rig rig;
        rig.Boot();
        ASSERT_TRUE(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp")));
        const double before = HighestPpm(rig.g.Slots[0]);
        rig.asker.Expect({Chosen(rig.Path("other.dx")), Chosen(rig.Path("saved.dx"))});
        ASSERT_EQ(rig.g.Slots[0].par.DataChanged, 1);
        c.save(rig.s);
        const auto told = [&] {
            return std::ranges::count(rig.asker.notices, "This form keeps no peaks, integrals and "
                                                         "coloured regions: a Ver.4 file does.");
        };
        EXPECT_EQ(told(), 0);
        rig.g.Slots[0].par.FileName = rig.Path("fid");
        rig.g.Slots[0].Peaks.emplace_back();
        c.save(rig.s);
        EXPECT_EQ(told(), 1);
        EXPECT_EQ(rig.asker.dialogs.back().name, "fid.dx");
        EXPECT_THAT(ReadText(rig.Path("saved.dx")), HasSubstr(c.mark));
        EXPECT_EQ(rig.g.Slots[0].par.DataChanged, 0);
        EXPECT_EQ(rig.g.RecentFiles.front(), rig.Path("saved.dx"));
        EXPECT_EQ(rig.titles.back(), WindowTitle(rig.Path("saved.dx")));
        ASSERT_TRUE(Read_Path(rig.s, rig.Path("saved.dx")));
        EXPECT_NEAR(HighestPpm(rig.g.Slots[0]), before, 1e-6);
        EXPECT_TRUE(rig.Texts().empty());
    }
}

TEST(SaveJcamp, OneOfTheMultiSpectraIsSavedAlone)
{
    for (const auto save : {SaveMultiJcamp, SaveMultiJcampPages}) {
        Rig rig;
        rig.Boot();
        ASSERT_TRUE(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp")));
        DataSet& second = rig.g.Slots[1] = rig.g.Slots[0];
        second.par.FileName = rig.Path("second.tvo1");
        const double top = HighestPpm(second);
        rig.g.Slots[0].spec.DataRe[0][3] = 1e9F; // another spectrum
        const std::string title = rig.titles.back();
        rig.asker.Expect({Chosen(rig.Path("saved.dx"))});
        save(rig.s, 1);
        EXPECT_EQ(rig.asker.dialogs.back().name, "second.dx");
        EXPECT_EQ(second.par.DataChanged, 0);
        EXPECT_EQ(rig.g.Slots[0].par.DataChanged, 1);
        EXPECT_EQ(rig.titles.back(), title);
        rig.g.Slots[0].par.DataChanged = 0;
        rig.g.Slots[1] = DataSet();
        ASSERT_TRUE(Read_Path(rig.s, rig.Path("saved.dx")));
        EXPECT_NEAR(HighestPpm(rig.g.Slots[0]), top, 1e-6);
    }
}

TEST(SaveJcamp, TheOldFileStaysAsItsBackupAndAFailureChangesNothing)
{
    Rig rig;
    rig.Boot();
    ASSERT_TRUE(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp")));
    WriteText(rig.Path("a.dx"), "an older one");
    rig.asker.Expect({Chosen(rig.Path("a.dx")), Chosen(rig.Path("no/such/a.dx")), NothingChosen()});
    m10_5_Click(rig.s);
    EXPECT_EQ(ReadText(rig.Path("a.$dx")), "an older one");
    rig.g.Slots[0].par.DataChanged = 1;
    m10_5_Click(rig.s);
    EXPECT_EQ(rig.Texts().size(), 1U);
    m10_6_Click(rig.s);
    EXPECT_EQ(rig.g.Slots[0].par.DataChanged, 1);
    EXPECT_EQ(rig.g.Slots[0].par.FileName, rig.Path("a.dx"));
}

TEST(SaveJcamp, TheFileOfTheMeasurementIsNeverProposed)
{
    Rig rig;
    rig.Boot();
    ASSERT_TRUE(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp")));
    rig.asker.Expect({Chosen(rig.Path("a.dx")), NothingChosen()});
    m10_5_Click(rig.s);
    ASSERT_TRUE(Read_Path(rig.s, rig.Path("a.dx")));
    m10_5_Click(rig.s);
    EXPECT_EQ(rig.asker.dialogs.back().name, "a-processed.dx");
}

} // namespace
} // namespace nmr
