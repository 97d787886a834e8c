#include "layout/code_pieces.h"
#include "layout/code_rtf.h"
#include "layout/code_text.h"
#include "layout/code_tokens.h"
#include "support/recording_canvas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace nmr {
namespace {

using test::RecordingCanvas;

// The recording canvas makes every byte 0.6 of the size wide; an em of 10 gives letters of 6.
constexpr double kLetter = 6, kLine = 11;

FontSpec Font()
{
    return FontSpec{};
}

double Width(std::string_view text, Lines lines = Lines::first_only)
{
    RecordingCanvas canvas;
    return Measure_CodeText(canvas, text, Font(), 1, lines);
}

struct Drawn {
    RecordingCanvas canvas;
    CodeTextPlace place;
    std::string rest;
    std::string letters;
};
Drawn Draw(std::string_view text, CodeTextPlace place = {})
{
    Drawn drawn;
    drawn.place = place;
    drawn.rest = Draw_CodeText(drawn.canvas, text, Font(), drawn.place);
    for (const auto& item : drawn.canvas.texts) drawn.letters += item.text + "|";
    return drawn;
}

TEST(CodeText, RunsThatAreDrawn)
{
    struct Row {
        const char *text, *runs;
    };
    const Row rows[] = {
        {"\\< plain\\>", "plain|"},
        {"\\<plain\\>", "plain|"},
        {"\\< x\\+1 2\\+0 \\>", "x|2|"},
        {"\\< x\\+1  2\\+0\\>", "x| 2|"}, // one blank belongs to the code
        {"\\< \\'b0:C\\>", "°C|"},
        {"\\< 25\\'b0: C\\>", "25° C|"},
        {"\\< a\\\\b\\>", "a\\b|"},
        {"\\< a\\cr b\\>", "a|b|"},
        {"\\< a\\tb b\\>", "a|b|"},
        {"\\< a\\>lost", "a|"},
        {"\\< \\g1 abd\\g0 abd\\>", "αβδ|abd|"},
        {"\\< \\f:Symbol: m\\f0 s\\>", "μ|s|"},
        {"\\< a\\zz b\\>", "a|b|"}, // an unknown code goes with its blank
        {"\\< a\\I1 b\\>", "a|b|"}, // capitals are other codes
        {"\\< a\x01"
         "b\\>",
         "ab|"},
        {"\\< a\\f:Name", "a|"}, // unterminated: to the end
        {"\\< a\\", "a|"},
        {"\\< 5\\'ad:3\\>", "5−3|"},
        {"5\\i(abc)", "5|abc|"},
        {"", ""},
    };
    for (const Row& row : rows) EXPECT_EQ(Draw(row.text).letters, row.runs) << row.text;
}

TEST(CodeText, PlacesOfRuns)
{
    const double ascent = 0.9;
    // A script has 0.65 of the size; a lowered one stands on the bottom of the line, a raised one higher by
    // the share that it lacks.
    const Drawn scripts = Draw("\\< a\\-1 b\\-0 \\+1 c\\>");
    ASSERT_EQ(scripts.canvas.texts.size(), 3U);
    const auto at = [&](std::size_t i) { return scripts.canvas.texts[i].at; };
    EXPECT_NEAR(at(0).y, ascent * 10, 1e-9);
    EXPECT_NEAR(at(1).x, kLetter, 1e-9);
    EXPECT_NEAR(at(1).y, kLine - 0.65 * kLine + ascent * 6.5, 1e-5);
    EXPECT_NEAR(at(2).x, kLetter * 1.65, 1e-5);
    EXPECT_NEAR(at(2).y, kLine - 0.35 * kLine - 0.65 * kLine + ascent * 6.5, 1e-5);

    // A slanted letter is moved off the upright one, a second code is not.
    EXPECT_NEAR(Draw("\\< a\\i1 \\i1 b\\>").canvas.texts[1].at.x, kLetter + 0.05 * kLine, 1e-9);
    // Tab stops stand 3.8 sizes apart.
    EXPECT_NEAR(Draw("\\< a\\tb b\\>").canvas.texts[1].at.x, 38, 1e-9);
    EXPECT_NEAR(Draw("\\< \\tb \\tb b\\>").canvas.texts[0].at.x, 76, 1e-9);

    // Line ends: to the margin, down by the height of the next line.
    const Drawn lines = Draw("\\< ab\\cr \\p:20: c\\>", {.left_margin = 3});
    EXPECT_NEAR(lines.canvas.texts[1].at.x, 3, 1e-9);
    EXPECT_NEAR(lines.place.bottom, kLine + 2 * kLine, 1e-9);
    EXPECT_NEAR(lines.place.right_limit, 15, 1e-9);
    // Too small a size is ignored.
    EXPECT_NEAR(Draw("\\< \\p:0.5: ab\\>").place.right_limit, 12, 1e-9);
}

TEST(CodeText, TurnsWithItsOrigin)
{
    for (const double angle : {0.0, 30.0, 90.0, 200.0, -45.0, 750.0})
        for (const int direction : {1, -1}) {
            const Drawn level = Draw("\\< ab\\+1 c\\+0 d\\cr e\\>", {.direction = direction});
            const Drawn turned =
                Draw("\\< ab\\+1 c\\+0 d\\cr e\\>", {.direction = direction, .x = 100, .y = 50, .angle_deg = angle});
            ASSERT_EQ(level.canvas.texts.size(), turned.canvas.texts.size());
            const double a = angle * 3.14159265358979 / 180, c = std::cos(a), s = std::sin(a) * direction;
            for (std::size_t i = 0; i < level.canvas.texts.size(); ++i) {
                const PointD from = level.canvas.texts[i].at, to = turned.canvas.texts[i].at;
                EXPECT_NEAR(to.x, 100 + c * from.x + s * from.y, 1e-6) << angle;
                EXPECT_NEAR(to.y, 50 - s * from.x + c * from.y, 1e-6) << angle;
            }
        }
    EXPECT_TRUE(Draw("\\< ab\\>", {.direction = 0}).canvas.texts.empty());
}

TEST(CodeText, WidthIsThatOfTheFirstLine)
{
    EXPECT_NEAR(Width("\\< a\\cr b\\>"), 2 * kLetter, 1e-9); // the blank behind the opening counts
    EXPECT_NEAR(Width("\\<a\\cr b\\>", Lines::all), 2 * kLetter, 1e-9);
    EXPECT_NEAR(Width("\\<x\\+1 2\\+0 \\>"), kLetter * 1.65, 1e-5);
    EXPECT_EQ(Width(""), 0);
    EXPECT_EQ(Width("\\<\\i1 \\>"), 0);
    FontSpec slanted = Font();
    slanted.Italic = -1;
    RecordingCanvas canvas;
    EXPECT_NEAR(Measure_CodeText(canvas, "\\<a\\>", slanted, 2), 2 * (kLetter + 0.05 * kLine), 1e-9);
}

TEST(CodeText, WrapsAndPages)
{
    const Drawn wrapped = Draw("\\< abcdefg\\>", {.right_limit = 20});
    EXPECT_EQ(wrapped.letters, "abc|def|g|");
    EXPECT_NEAR(wrapped.place.bottom, 3 * kLine, 1e-9);
    EXPECT_NEAR(wrapped.place.right_limit, 20, 1e-9);
    // A letter that is wider than the line stands alone, and the walk ends.
    EXPECT_EQ(Draw("\\< abc\\>", {.right_limit = 1}).letters, "a|b|c|");

    // Line by line: the same runs as at once, the state kept over the breaks.
    std::string text = "\\< ab\\i1 cd\\cr \\cr \\+1 ef\\p:12: \\f:Mono: ghijk\\>", letters;
    int lines = 0;
    for (; !text.empty() && lines < 20; ++lines) {
        const Drawn line = Draw(text, {.one_line = true, .right_limit = 30});
        letters += line.letters;
        text = line.rest;
    }
    EXPECT_EQ(letters, "ab|cd|ef|ghij|k|");
    EXPECT_EQ(lines, 4);
    EXPECT_EQ(Draw("\\< \\i1 \\b1 a\\cr b\\>", {.one_line = true}).rest, "\\< \\i1 \\b1 b\\>");
    EXPECT_EQ(Draw("\\< a\\cr \\cr \\i1 \\>", {.one_line = true}).rest, "") << "nothing of it would show";
    EXPECT_EQ(Draw("\\< \\s1 \\u1 \\-1 \\p:12: \\g1 \\b1 \\c:ff: a\\cr b\\>", {.one_line = true}).rest,
              "\\< \\c:ff: \\b1 \\g1 \\s1 \\u1 \\-1 \\p:12: b\\>");
    // A slanted letter wider than the line: each line takes one, so that a caller comes to an end.
    EXPECT_EQ(Draw("\\< \\i1 ab\\>", {.one_line = true, .right_limit = 1}).rest, "\\< \\i1 b\\>");
}

TEST(CodeText, GroupForm)
{
    struct Row {
        const char *group, *code;
    };
    const Row rows[] = {
        {"5\\i(abc)", "\\< 5\\i1 abc\\i0 \\>"},
        {"CDCl\\-(3)", "\\< CDCl\\-1 3\\-0 \\>"},
        {"\\+(1)H (ppm)", "\\< \\+1 1\\+0 H (ppm)\\>"},
        {"\\b(a\\i(b)c)d", "\\< \\b1 a\\i1 b\\i0 c\\b0 d\\>"},
        {"\\B(a)", "\\< \\b1 a\\b0 \\>"},
        {"\\f:Arial(x)", "\\< \\f:Arial: x\\f0 \\>"},
        {"\\cff(x)\\h00FF(y)", "\\< \\c:ff: x\\c0 \\c:00FF: y\\c0 \\>"},
        {"\\p12(x)", "\\< \\p:12: x\\p0 \\>"},
        {"\\r(x)", "\\< x\\>"},
        {"a\\(13)b\\(176)\\(7)\\(65)", "\\< a\\cr b\\'b0:A\\>"},
        {"\\=(a,b),c", "\\< \\d1 a\\u1 b\\+0 ,c\\>"},
        {"a\r\nb\n", "\\< a\\cr b\\>"},
        {"a)b", "\\< a)b\\>"},
        {"\\i(a", "\\< \\i1 a\\>"},
        {"", "\\< \\>"},
    };
    for (const Row& row : rows) EXPECT_EQ(Group_To_Code(row.group), row.code) << row.group;

    struct Back {
        const char *code, *group;
    };
    const Back backs[] = {
        {"\\< 5\\i1 abc\\i0 \\>", "5\\i(abc)"},
        {"\\< \\b1 a\\i1 b\\b0 c\\>", "\\b(a)\\i(\\b(b))\\i(c)"},
        {"\\< \\g1 a\\g0 (x)\\cr \\'b0:\\>", "\\g(a)(x)\\(13)\\(176)"},
        {"\\< :)\\>", ":\\(41)"},
        {"\\< \\c:ff: \\p:12: x\\>", "\\cff(\\p12(x))"},
    };
    for (const Back& row : backs) {
        EXPECT_EQ(Code_To_Group(row.code), row.group) << row.code;
        EXPECT_EQ(Draw(Code_To_Group(row.code)).letters, Draw(row.code).letters) << row.code;
    }
}

TEST(CodeText, PlainTextAndNumbers)
{
    EXPECT_EQ(Code_From_Plain("a\\b\tc\r\nd"), "\\< a\\\\b    c\\cr d\\>");
    EXPECT_EQ(Plain_From_Code(Code_From_Plain("a\\b (c)\nd")), "a\\b (c)\nd");
    EXPECT_EQ(Plain_From_Code("\\< \\g1 d\\g0 \\tb \\'b0:\\>"), "δ\t°");
    EXPECT_EQ(Format_Exp(-0.0015, 3, ExponentSigns::plain), "-1.5x10\\+1 -3\\+0 ");
    EXPECT_EQ(Format_Exp(2e7, 3, ExponentSigns::typographic), "2×10\\+1 7\\+0 ");
    EXPECT_EQ(Plain_From_Code("\\< " + Format_Exp(-1e-5, 0, ExponentSigns::typographic) + "\\>"), "−1×10−5");
}

TEST(CodeText, RichTextByTheTable)
{
    const FontSpec font{.Name = "Arial", .Size = 10, .Color = 0xFF};
    const std::string head = "{\\rtf1{\\fonttbl{\\f0\\fnil\\fcharset0 Arial;}{\\f1\\fnil\\fcharset2 Symbol;}}"
                             "{\\colortbl ;\\red255\\green0\\blue0;}\\viewkind\\uc14\\pard\\cf1\\f0\\fs20 ";
    struct Row {
        const char *code, *body;
    };
    const Row rows[] = {
        {"\\+1 a\\+0 \\-1 b\\-0 ", "\\up6 a\\up0 \\dn6 b\\dn0 "},
        {"\\i1 a\\i0 \\b1 b\\b0 ", "\\i a\\i0 \\b b\\b0 "},
        {"\\u1 a\\u0 \\s1 b\\s0 ", "\\ul a\\ulnone \\strike b\\strike0 "},
        {"\\g1 a\\g0 \\p:7.5: b\\p0 ", "\\f1 a\\f0 \\fs15 b\\fs20 "},
        {"\\c:ff: a\\c0 \\tb b\\cr c", "\\cf1 a\\cf1 \\tab b\\par c"},
        {"\\'b0:é{}\\\\", "\\'b0\\'e9\\{\\}\\\\"},
        {"a\\cr ", "a"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Code_To_Rtf(std::string("\\< ") + row.code + "\\>", font, 10), head + row.body + "\\par }")
            << row.code;
    EXPECT_EQ(Code_To_Rtf("", font, 10), "");
    const std::string faces = Code_To_Rtf("\\< \\f:Courier: \\c:ff00: a\\>", font, 10);
    EXPECT_NE(faces.find("{\\f2\\fnil\\fcharset0 Courier;}"), std::string::npos);
    EXPECT_NE(faces.find(";\\red0\\green255\\blue0;"), std::string::npos);
    EXPECT_NE(faces.find("\\f2 \\cf2 a"), std::string::npos);
}

TEST(CodeText, RichTextRead)
{
    const FontSpec font{.Name = "Arial"};
    const std::string head =
        "{\\rtf1\\ansi{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}{\\f1 Symbol;}{\\f2 A:B;}"
        "{\\f3\\fcharset204 Cyr;}{\\f4\\fcharset161 Gr;}{\\f5\\fcharset128 Jap;}}"
        "{\\colortbl;\\red0\\green0\\blue0;\\red255\\green0\\blue1;}{\\info{\\title no}}{\\*\\gen no;}";
    struct Row {
        const char *rich, *code;
    };
    const Row rows[] = {
        {"a\\par b\\par }", "a\\cr b"},
        {"\\i a\\i0  b\\b1 c\\ul d\\ul0 e\\ulnone}", "\\i1 a\\i0  b\\b1 c\\u1 d\\u0 e\\u0 "},
        {"\\super 1\\nosupersub H\\sub 2\\dn0 \\up4 x\\up0}", "\\+1 1\\+0 H\\-1 2\\-0 \\+1 x\\+0 "},
        {"\\f1 d\\f0  \\f2 x}", "\\g1 d\\g0  \\f:AB: x"},
        {"\\fs24 a\\fs20 b\\cf2 c\\cf1 d}", "\\p:12: a\\p0 b\\c:100ff: c\\c0 d"},
        {"\\'b0C\\'41}", "\\'b0:CA"},
        {"\\u945?\\u-10179 ?z}", "αz"}, // half a pair is no letter
        {"{\\b a}b}", "\\b1 a\\b0 b"},  // what a group began ends with it
        {"a\\{\\}\\\\b\\~c}", "a{}\\\\b c"},
        {"\\pard x}", "\\i0 \\b0 \\u0 \\s0 \\f0 \\p0 \\c0 \\+0 x"},
        {"{\\pict\\bin3 }}}}x}", "x"},
        {"\\f3 \\'f4\\f4 \\'e4\\f5 \\'82\\'a0}", "\\f:Cyr: ф\\f:Gr: δ\\f:Jap: あ"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Rtf_To_Code(head + row.rich, font), std::string("\\< ") + row.code + "\\>") << row.rich;
    EXPECT_EQ(Rtf_To_Code("no rich text", font), "no rich text");
    EXPECT_EQ(Rtf_Plain(head + "\\f1 d\\f0 \\'b0C\\par x\\par }"), "δ°C\nx");
    EXPECT_EQ(Rtf_Scale("{\\rtf1\\fs20 a\\up6\\b b\\fscale3}", 1.5), "{\\rtf1\\fs30 a\\up9\\b b\\fscale3}");
}

/// A text of random codes and letters of several alphabets.
std::string RandomText(std::mt19937& random)
{
    static constexpr const char* kPieces[] = {
        "a",        "B ",        "\\i1 ",       "\\i0 ",    "\\b1 ", "\\b0 ", "\\u1 ",  "\\u0 ",
        "\\s1 ",    "\\s0 ",     "\\+1 ",       "\\-1 ",    "\\+0 ", "\\-0 ", "\\g1 ",  "\\g0 ",
        "\\p:12: ", "\\p:7.5: ", "\\p0 ",       "\\c:ff: ", "\\c0 ", "\\cr ", "\\'b0:", "\\f:Courier: ",
        "\\f0 ",    "\\\\",      "{",           "}",        "(x)",   "é",     "\\tb ",  "日本",
        "δ",        "7",         "\\c:a0b0c: ", "~",        "ф",     "č"};
    std::string text = "\\< ";
    for (int i = 0; i < 30; ++i) text += kPieces[random() % std::size(kPieces)];
    return text + "z\\>"; // a final line end would go
}

TEST(CodeText, RandomTextsSurviveTheirOtherForms)
{
    std::mt19937 random(1);
    const FontSpec font = Font();
    for (int i = 0; i < 500; ++i) {
        const std::string text = RandomText(random), tidy = Tidy_Code(text, font);
        EXPECT_EQ(Plain_From_Code(tidy), Plain_From_Code(text)) << text;
        EXPECT_EQ(Tidy_Code(tidy, font), tidy) << text;
        EXPECT_EQ(Code_To_Group(tidy), Code_To_Group(text)) << text;
        const std::string back = Rtf_To_Code(Code_To_Rtf(text, font, 10), font);
        // The bytes of the code page come back as codes; what they draw is the same.
        EXPECT_EQ(Plain_From_Code(back), Plain_From_Code(text)) << text;
        EXPECT_EQ(Tidy_Code(Rtf_To_Code(Code_To_Rtf(back, font, 10), font), font), Tidy_Code(back, font)) << text;
        EXPECT_EQ(Rtf_Plain(Code_To_Rtf(text, font, 10)), Plain_From_Code(text)) << text;
        // As an editor holds it: the same drawing, and its own normal form.
        const std::string edited = Pieces_To_Code(Code_To_Pieces(text, font), font);
        EXPECT_EQ(Plain_From_Code(edited), Plain_From_Code(text)) << text;
        EXPECT_EQ(Pieces_To_Code(Code_To_Pieces(edited, font), font), edited) << text;
        EXPECT_EQ(Draw(edited).canvas.texts.back().text.back(), Draw(text).canvas.texts.back().text.back()) << text;
        // Measured is drawn, but for what drawing adds: slanted starts and tabs.
        if (text.find("\\i1") == std::string::npos && text.find("\\tb") == std::string::npos &&
            text.find("\\cr") == std::string::npos) {
            EXPECT_NEAR(Width("\\<" + text.substr(3)), Draw(text).place.right_limit, 1e-5) << text;
        }
    }
}

TEST(CodeText, AnyBytesAreTaken)
{
    std::mt19937 random(2);
    const FontSpec font = Font();
    const std::string_view alphabet = "\\\\\\{}()<>:'ifpcgbu+-=01 \x81\xE9\xFF,;af*";
    for (int i = 0; i < 2000; ++i) {
        std::string text = i % 2 == 0 ? "{\\rtf1" : "\\<";
        for (std::size_t n = random() % 60; n > 0; --n) text += alphabet[random() % alphabet.size()];
        RecordingCanvas canvas;
        CodeTextPlace place;
        const std::string code = Rtf_To_Code(text, font);
        Draw_CodeText(canvas, code, font, place);
        EXPECT_TRUE(std::isfinite(place.right_limit));
        EXPECT_TRUE(Code_To_Rtf(code, font, 10).starts_with("{\\rtf1"));
        static_cast<void>(Code_To_Group(code));
    }
    // No time beyond linear, and no stack: with the square of their length these would take hours.
    std::string names = "\\<", faces = "{\\rtf1{\\fonttbl";
    for (int i = 0; i < 20'000; ++i) {
        names += "\\f:face" + std::to_string(i) + ": \\c:" + std::to_string(i) + ": a";
        faces += "{\\f" + std::to_string(i) + " face;}";
    }
    faces += "{\\f20001 " + std::string(1'000'000, 'n') + ";}}";
    for (int i = 0; i < 50'000; ++i) faces += "\\f19999 a\\f20001 b";
    EXPECT_LT(Rtf_To_Code(faces, font).size(), 100 * faces.size());
    EXPECT_TRUE(Code_To_Rtf(names, font, 10).ends_with("\\par }"));
    std::string wide = "\\<" + std::string(100'000, 'w'), open_faces;
    RecordingCanvas canvas;
    CodeTextPlace narrow{.direction = 0, .right_limit = 5};
    Draw_CodeText(canvas, wide, font, narrow);
    EXPECT_NEAR(narrow.bottom, 100'000 * kLine, 1e-3);
    for (int i = 0; i < 300'000; ++i) open_faces += "\\f:";
    EXPECT_FALSE(Group_To_Code(open_faces).empty());
    const std::string deep = "{\\rtf1" + std::string(1'000'000, '{') + std::string(1'000'000, '\\');
    EXPECT_TRUE(Rtf_To_Code(deep, font).starts_with("\\<"));
    EXPECT_FALSE(Group_To_Code(std::string(100'000, '(') + std::string(500'000, '\\')).empty());
}

} // namespace
} // namespace nmr
