#include "session/startup.h"

#include <gtest/gtest.h>

#include <memory>

namespace nmr {
namespace {

TEST(CommandLine, IsUnpackedToTheLetter)
{
    struct Case {
        const char* name;
        std::string line, file;
        bool no_bounce;
    };
    const Case cases[] = {
        {"nothing", "", "", false},
        {"blanks", "   \t ", "", false},
        {"too short", "ab", "", false},
        {"plain", "/data/exp/1/fid", "/data/exp/1/fid", false},
        {"blanks around", "  /data/fid  ", "/data/fid", false},
        {"cut at the first blank", "/data/my exp/fid", "/data/my", false},
        {"in quotes", "\"/data/my exp/fid\"", "/data/my exp/fid", false},
        {"no closing quote", "\"/data/my exp/fid", "/data/my exp/fid", false},
        {"handed over", "$C:\\a.tvo", "C:\\a.tvo", true},
        {"handed over, in quotes", "\"$C:\\a b.tvo\"", "C:\\a b.tvo", true},
        {"the sign behind the quote stays", "\"C:\\a b.tvo\"$", "C:\\a b.tvo\"$", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto g = std::make_unique<GlobalBlock>();
        g->CmdLineFile = "old";
        g->NoBounce = true;
        ParseCommandLine(*g, c.line);
        EXPECT_EQ(g->CmdLineFile, c.file);
        EXPECT_EQ(g->NoBounce, c.no_bounce);
    }
}

TEST(CommandLine, AnArgumentWithBlanksSurvivesTheUnpacking)
{
    struct Case {
        std::string argument, file;
        bool no_bounce;
    };
    for (const Case& c : {Case{"/data/fid", "/data/fid", false}, Case{"/my data/fid", "/my data/fid", false},
                          Case{"$/my data/fid", "/my data/fid", true}, Case{"$\"/my data/fid\"", "/my data/fid", true},
                          Case{"\"/my data/fid\"", "/my data/fid", false}}) {
        SCOPED_TRACE(c.argument);
        const auto g = std::make_unique<GlobalBlock>();
        ParseCommandLine(*g, CommandLineFromArgument(c.argument));
        EXPECT_EQ(g->CmdLineFile, c.file);
        EXPECT_EQ(g->NoBounce, c.no_bounce);
    }
}

TEST(Version, NamesThreeNumbers)
{
    EXPECT_TRUE(VersionText().starts_with("Ver."));
    EXPECT_EQ(VersionText().find(".."), std::string::npos) << VersionText();
}

} // namespace
} // namespace nmr
