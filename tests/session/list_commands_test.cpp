// Saving and copying the lists, as the user meets it.

#include "session/list_commands.h"

#include "session/rig.h"

#include <gmock/gmock.h>

namespace nmr {
namespace {

using namespace test;
using testing::EndsWith;
using testing::HasSubstr;

/// A spectrum of one triangle with a peak and a region on it.
struct Listed : Rig {
    Listed()
    {
        Boot();
        EXPECT_TRUE(Read_Path(s, WriteBrukerSpectrum(folder.path() / "exp", 1024, 500)));
        DataSet& set = g.Slots[0];
        set.Peaks = {{.Point = 500, .Position = (set.spec.XAxis[500] - set.spec.XAxis[0]) * set.par.OBFRQ0PPM}};
        set.Integrals = {{.StartPoint = 520, .EndPoint = 480, .Value = 1, .Label = {}}};
        set.par.FileName = Path("exp.tvo1");
    }
};

TEST(SaveLists, EachDialogWritesTheFormThatItsNameTells)
{
    using Command = void (*)(Session&);
    struct Case {
        const char* name;
        Command save;
        const char *title, *proposed; ///< of the dialog
        const char* typed;
        int filter;
        const char *file, *holds;
        int next_filter;
    };
    const Case cases[] = {
        {"peaks", m17_Click, "Save Peak List", "exp.red", "a.red", 1, "a.red", "No, Position(ppm)", 1},
        {"fixed report", m17_Click, "Save Peak List", "exp.red", "b.red", 2, "b.red", "NO.           PPM", 2},
        {"no extension", m173_Click, "Save Integral List", "exp.Ilist", "c", 2, "c.Ilist", "List of Integral", 2},
        {"extension of another filter", m173_Click, "Save Integral List", "exp.Ilist", "d.int", 2, "d.int",
         "No, Integral", 1},
        {"all files", m173_Click, "Save Integral List", "exp.Ilist", "e.txt", 3, "e.txt", "List of Integral", 2},
        {"curve", m131_Click, "Save Integral Curve", "exp.csv", "f", 2, "f.csv", "No, Position(ppm), Sum", 2},
        {"curve's values", m131_Click, "Save Integral Curve", "exp.csv", "g", 1, "g.int", "No, Integral", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Listed rig;
        rig.asker.Expect({Chosen(rig.Path(c.typed), c.filter), NothingChosen()});
        c.save(rig.s);
        EXPECT_EQ(rig.asker.dialogs.back().title, c.title);
        EXPECT_EQ(rig.asker.dialogs.back().name, c.proposed);
        EXPECT_THAT(ReadText(rig.Path(c.file)), HasSubstr(c.holds));
        EXPECT_TRUE(rig.Texts().empty());
        c.save(rig.s);
        EXPECT_EQ(rig.asker.dialogs.back().filter_index, c.next_filter) << "the form used last comes first";
        EXPECT_EQ(rig.asker.dialogs.back().folder, rig.folder.path());
    }
}

TEST(SaveLists, AsksBeforeANameOfItsOwnMakingReplacesAFile)
{
    for (const Button answer : {Button::yes, Button::no}) {
        Listed rig;
        WriteText(rig.Path("a.red"), "an older one");
        rig.asker.Expect({Chosen(rig.Path("a")), answer});
        m17_Click(rig.s);
        EXPECT_EQ(rig.Texts(), std::vector{"Save Peak List: " + rig.Path("a.red") +
                                           "\nThis File exists already. Do you overwrite it?"});
        EXPECT_EQ(ReadText(rig.Path("a.red")) == "an older one", answer == Button::no);
    }
    Listed rig;
    rig.asker.Expect({Chosen(rig.Path("no/such/a.red"))});
    m17_Click(rig.s);
    EXPECT_EQ(rig.Texts().size(), 1U) << "says that it failed";
    EXPECT_FALSE(Save_Integral_List(rig.s, rig.Path("no/such/a.int")));
    EXPECT_TRUE(Save_Integral_List(rig.s, rig.Path("a.csv")));
    EXPECT_TRUE(Save_Peak_List(rig.s, rig.Path("p.red")));
}

TEST(CopyPeaks, PutsTheLineOfAPaperOnTheClipboard)
{
    Listed rig;
    std::string plain, html;
    rig.s.copy_text = [&](const std::string& text, const std::string& rich) { plain = text, html = rich; };
    CopyPeaks_Click(rig.s);
    EXPECT_THAT(plain, HasSubstr(" NMR ("));
    EXPECT_THAT(html, HasSubstr("<sup>"));
    plain.clear();
    rig.g.Slots[0].Peaks.clear();
    CopyPeaks_Click(rig.s);
    EXPECT_EQ(plain, "") << "what is on the clipboard stays";
}

} // namespace
} // namespace nmr
