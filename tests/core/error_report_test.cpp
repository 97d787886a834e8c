#include "core/error_report.h"

#include "support/scripted_asker.h"

#include <gtest/gtest.h>

#include <cerrno>

using namespace nmr;
using nmr::test::ScriptedAsker;

TEST(ErrorReport, NamesPlaceNumberAndText)
{
    ScriptedAsker asker;
    ErrorReport(asker, "ReadDataTavo4/1DDRW", 9, "Subscript");
    ErrorReport(asker, Error{ErrorCode::truncated, "ReadDataBruker/1DDRW", "The file is cut."});
    ASSERT_EQ(asker.boxes.size(), 2U);
    for (const char* part : {"ReadDataTavo4/1DDRW", "9", "Subscript"})
        EXPECT_NE(asker.boxes[0].text.find(part), std::string::npos) << part;
    for (const char* part : {"ReadDataBruker/1DDRW", "The file is cut."})
        EXPECT_NE(asker.boxes[1].text.find(part), std::string::npos) << part;
}

TEST(ErrorReport, FileErrorsAnswerByTheButtonPressed)
{
    struct Case {
        const char* name;
        int number;
        std::optional<Button> pressed; ///< none: the only button
        const char* text;
        int answer;
    };
    const Case cases[] = {
        {"single button", 53, {}, "File is not found(Open/1D)", 2},
        {"two buttons, OK", 71, Button::ok, "Colse Door, after setting Disk on Drive(Open/1D)", 0},
        {"two buttons, cancel", 71, Button::cancel, "Colse Door, after setting Disk on Drive(Open/1D)", 2},
        {"retry", 71, Button::retry, "Colse Door, after setting Disk on Drive(Open/1D)", 0},
        {"ignore", 71, Button::ignore, "Colse Door, after setting Disk on Drive(Open/1D)", 1},
        {"something else", 71, Button::no, "Colse Door, after setting Disk on Drive(Open/1D)", 3},
        {"unknown number", 999, {}, "words of the system(Open/1D)", 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedAsker asker;
        if (c.pressed) {
            ScriptedAsker scripted({ScriptedAsker::Answer(*c.pressed)});
            EXPECT_EQ(File_Error(scripted, c.number, "Open/1D"), c.answer);
            ASSERT_EQ(scripted.boxes.size(), 1U);
            EXPECT_EQ(scripted.boxes[0].text, c.text);
            EXPECT_EQ(scripted.boxes[0].buttons, (std::vector<Button>{Button::ok, Button::cancel}));
            continue;
        }
        EXPECT_EQ(File_Error(asker, c.number, "Open/1D", "words of the system"), c.answer);
        ASSERT_EQ(asker.boxes.size(), 1U);
        EXPECT_EQ(asker.boxes[0].text, c.text);
        EXPECT_EQ(asker.boxes[0].title, "Disk Error");
    }
    ScriptedAsker silent;
    EXPECT_EQ(File_Error(silent, 0), 0);
    EXPECT_TRUE(silent.boxes.empty());
    EXPECT_EQ(FileErrorText(62), "EOF is not standard format\nor read files beyond EOF");
}

TEST(ErrorReport, EveryErrnoHasANumberWithWords)
{
    EXPECT_EQ(RuntimeErrorNumber(ENOENT), 53);
    EXPECT_EQ(RuntimeErrorNumber(ENOSPC), 61);
    EXPECT_EQ(RuntimeErrorNumber(ENOTDIR), 76);
    EXPECT_EQ(RuntimeErrorNumber(EPROTO), 57);
    for (int number = 1; number < 134; ++number) EXPECT_NE(FileErrorText(RuntimeErrorNumber(number)), "") << number;
}
