#include "core/text.h"

#include <gtest/gtest.h>

#include <random>

using namespace nmr;
using namespace std::string_literals;

TEST(Text, TrimsCutsAndCompares)
{
    EXPECT_EQ(Trim(" \t\r\n a b \0"s), "a b");
    EXPECT_EQ(Trim("\x01\x02"), "");
    EXPECT_EQ(Left("abc", 2), "ab");
    EXPECT_EQ(Left("abc", 9), "abc");
    EXPECT_EQ(ToUpper("fid\xE4_1r"), "FID\xE4_1R");
    EXPECT_TRUE(EqualsNoCase("ACQUS", "acqus"));
    EXPECT_FALSE(EqualsNoCase("acqu", "acqus"));
    EXPECT_FALSE(EqualsNoCase("@", "`")); // 32 apart, but no letters
    EXPECT_TRUE(ContainsNoCase("SIMULTANEOUS", "taneo"));
    EXPECT_TRUE(ContainsNoCase("x", ""));
    EXPECT_FALSE(ContainsNoCase("", "x"));
    EXPECT_EQ(Split("a,,b,", ','), (std::vector<std::string>{"a", "", "b", ""}));
    EXPECT_EQ(Split("", ','), std::vector<std::string>{""});
}

// Byte values from the published CP932 table.
TEST(Text, ShiftJisGoesBothWays)
{
    struct Case {
        const char* name;
        std::string cp932, utf8;
    };
    const Case cases[] = {
        {"ASCII with backslash and tilde", "C:\\a~b", "C:\\a~b"},
        {"hiragana a", "\x82\xA0", "\xE3\x81\x82"},
        {"kanji whose second byte is a backslash", "\x95\x5C", "\xE8\xA1\xA8"},
        {"one-byte katakana", "\xB1", "\xEF\xBD\xB1"},
        {"extension of the vendor: circled one", "\x87\x40", "\xE2\x91\xA0"},
        {"micro sign letter in a text", "10 \x83\xCAs", "10 \xCE\xBCs"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(FromCp932(c.cp932), c.utf8);
        EXPECT_EQ(ToCp932(c.utf8), c.cp932);
    }
}

TEST(Text, WhatCanNotBeConvertedIsMarkedAndTheRestKept)
{
    const std::string mark = "\xEF\xBF\xBD";
    EXPECT_EQ(FromCp932("a\xFF"
                        "b"),
              "a" + mark + "b");
    EXPECT_EQ(FromCp932("a\x82"), "a" + mark); // cut inside a character
    EXPECT_EQ(ToCp932("a\xC3\xA4"
                      "b"),
              "a?b");                              // a umlaut
    EXPECT_EQ(ToCp932("\xF0\x9F\x98\x80!"), "?!"); // outside the basic plane
    EXPECT_EQ(ToCp932("a\xFF"
                      "b\xE3\x81"),
              "a?b??");
}

TEST(Text, AnUnknownCodePageGivesValidTextOnce)
{
    EXPECT_EQ(FromUnknownCodePage("5 \xB5s"), "5 \xC2\xB5s");
    EXPECT_EQ(FromUnknownCodePage("5 \xC2\xB5s"), "5 \xC2\xB5s");
    EXPECT_EQ(FromUnknownCodePage("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80"); // a surrogate is no UTF-8
    EXPECT_EQ(FromUnknownCodePage("\xC0\xAF"), "\xC3\x80\xC2\xAF");             // nor an overlong form
}

TEST(Text, NoByteStringDoesHarm)
{
    std::mt19937 random(3);
    for (int i = 0; i < 3000; ++i) {
        std::string bytes(random() % 40, '\0');
        for (char& c : bytes) c = static_cast<char>(random());
        const std::string text = FromUnknownCodePage(bytes);
        EXPECT_EQ(FromUnknownCodePage(text), text);
        const std::string japanese = FromCp932(bytes);
        EXPECT_EQ(FromUnknownCodePage(japanese), japanese) << "no valid UTF-8";
        ToCp932(bytes);
    }
}
