#include "session/read_flow.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <memory>

namespace nmr {
namespace {

TEST(RecentFiles, NewestFirstNeverDoubledTwentyOneAtMost)
{
    const auto g = std::make_unique<GlobalBlock>();
    for (int i = 0; i < 25; ++i) AddRecentFile(*g, fmt::format("/data/{}", i));
    ASSERT_EQ(g->RecentFiles.size(), 21U);
    EXPECT_EQ(g->RecentFiles.front(), "/data/24");
    EXPECT_EQ(g->RecentFiles.back(), "/data/4");
    AddRecentFile(*g, "/data/10");
    EXPECT_EQ(g->RecentFiles.size(), 21U);
    EXPECT_EQ(g->RecentFiles.front(), "/data/10");
    EXPECT_EQ(g->RecentFiles.back(), "/data/4");
    EXPECT_EQ(std::count(g->RecentFiles.begin(), g->RecentFiles.end(), "/data/10"), 1);
}

TEST(RecentFiles, LongPathsGiveWayInTheMiddle)
{
    struct Case {
        const char* name;
        std::string path, shortened;
    };
    const Case cases[] = {
        {"short", "/data/exp/1/fid", "/data/exp/1/fid"},
        {"forty characters", "/data/" + std::string(30, 'a') + "/fid", "/data/" + std::string(30, 'a') + "/fid"},
        {"long", "/home/somebody/measurements/november/sucrose/10/fid", "/home/.../november/sucrose/10/fid"},
        {"no folder", std::string(50, 'x'), "..." + std::string(37, 'x')},
        {"long last name", "/a/" + std::string(60, 'y'), "..." + std::string(37, 'y')},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ShortenPath(c.path), c.shortened);
    }
}

TEST(RecentFiles, NoCharacterIsCutInTwo)
{
    const std::string umlauts =
        "/data/" + std::string(30, 'a') + "/\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA4\xC3\xB6\xC3\xBC.fid";
    for (std::size_t limit = 1; limit < 50; ++limit) {
        const std::string shortened = ShortenPath(umlauts, limit);
        std::size_t characters = 0;
        for (const char c : shortened)
            if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) ++characters;
        EXPECT_LE(characters, limit);
        EXPECT_NE(static_cast<unsigned char>(shortened.front()) & 0xC0U, 0x80U) << "starts inside a character";
    }
}

TEST(RecentFiles, CaptionsHaveAccessKeysUpToNine)
{
    const auto g = std::make_unique<GlobalBlock>();
    for (int i = 12; i > 0; --i) AddRecentFile(*g, fmt::format("/a&b/{}", i));
    EXPECT_EQ(RecentCaption(*g, 0), "  &1. /a&&b/1");
    EXPECT_EQ(RecentCaption(*g, 8), "  &9. /a&&b/9");
    EXPECT_EQ(RecentCaption(*g, 9), "  10. /a&&b/10");
    EXPECT_EQ(RecentCaption(*g, 12), "");
}

} // namespace
} // namespace nmr
