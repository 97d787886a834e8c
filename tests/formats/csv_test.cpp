// Text tables: how their form is found out, the block form, and what happens to damaged files.

#include "formats/csv_fixture.h"

#include "core/dates.h"

#include <fmt/format.h>

#include <cmath>
#include <functional>

namespace nmr {
namespace {

using namespace test;

TEST(CsvText, SplitCommaTakesTheFirstTwo)
{
    struct Case {
        const char *line, *key, *value, *unit;
    };
    const Case cases[] = {
        {"FREQU, 1.2 ,KHZ", "FREQU", "1.2", "KHZ"},
        {"POINT,8,", "POINT", "8", ""},
        {"COMNT,a,b,c", "COMNT", "a", "b,c"},
        {"$END,,", "$END", "", ""},
        {"ALONE", "ALONE", "", ""},
        {"", "", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        std::string key = "x", value = "x", unit = "x";
        Split_Comma(c.line, key, value, unit);
        EXPECT_EQ(key, c.key);
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(unit, c.unit);
    }
}

TEST(CsvText, ColumnsAreNumbersOrNothing)
{
    constexpr CsvText kComma{',', false}, kSemicolon{';', true}, kBlank{' ', false};
    struct Case {
        const char* line;
        CsvText text;
        std::vector<double> numbers; ///< none: the line is no line of numbers
    };
    const Case cases[] = {
        {"1.5, -2e3", kComma, {1.5, -2000}},
        {" +1.5 , 2 ,", kComma, {1.5, 2}},
        {"\"1\",\"2\"", kComma, {1, 2}},
        {"1,,2", kComma, {}},
        {",1", kComma, {}},
        {"1,x", kComma, {}},
        {"nan,1", kComma, {}},
        {"1e999,1", kComma, {}},
        {"0,05", kComma, {}}, // a decimal comma
        {"", kComma, {}},
        {",,", kComma, {}},
        {"0;2,70E+04;-0,5;3", kSemicolon, {0, 27000, -0.5, 3}},
        {"1.234,5;2", kSemicolon, {}},
        {"5,;2", kSemicolon, {}},
        {"  1 \t 2   3 ", kBlank, {1, 2, 3}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        std::vector<double> numbers{9};
        EXPECT_EQ(Split_Columns(c.line, c.text, numbers), c.numbers.empty() ? 1 : 0);
        EXPECT_EQ(numbers, c.numbers);
    }
}

/// The same points in every form of text.
TEST(CsvText, TheFormIsFoundOutFromTheFile)
{
    struct Case {
        const char* name;
        CsvText text;
        const char* head;
        const char* line_end;
    };
    const Case cases[] = {
        {"comma", {',', false}, "", "\n"},
        {"comma and a blank", {',', false}, "", "\r\n"},
        {"tab", {'\t', false}, "", "\n"},
        {"tab, decimal comma", {'\t', true}, "", "\r\n"},
        {"semicolon", {';', false}, "Time (s);real;imag\n", "\n"},
        {"semicolon, decimal comma", {';', true}, "Time (s);real;imag\n", "\r"},
        {"blanks", {' ', false}, "# one line\n\n", "\n"},
        {"blanks, decimal comma", {' ', true}, "", "\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string text = c.head;
        for (int i = 0; i < 64; ++i) {
            std::string line;
            for (const double value : {i * 1e-3, std::cos(i) / 8, std::sin(i) * 1e5})
                line += fmt::format("{}{:.6g}", line.empty() ? "" : std::string(1, c.text.separator), value);
            if (c.text.decimal_comma) std::ranges::replace(line, '.', ',');
            text += line + c.line_end;
        }
        const CsvChoice choice = ProposeCsv(text);
        EXPECT_EQ(choice.text, c.text);
        EXPECT_EQ(choice.lines, 64U);
        EXPECT_EQ(choice.smode, 0);
        EXPECT_EQ(choice.position, 1);
        EXPECT_EQ(choice.unit, CsvUnit::s);
        EXPECT_EQ(choice.real, std::vector{2});
        EXPECT_EQ(choice.imaginary, std::vector{3});
    }
}

std::string Lines(int count, const std::function<std::string(int)>& line)
{
    std::string text;
    for (int i = 0; i < count; ++i) text += line(i) + "\n";
    return text;
}

TEST(CsvText, ColumnsHaveTheirMeaningFromHeadingsAndNumbers)
{
    const auto noise = [](int i) { return std::sin(7.0 * i * i); };
    struct Case {
        const char* name;
        std::string text;
        std::string summary; ///< behind the separator
    };
    const Case cases[] = {
        {"one column", Lines(50, [&](int i) { return fmt::format("{:.4f}", noise(i)); }), "real 1, FID"},
        {"one column, decimal comma", Lines(50, [](int i) { return fmt::format("{},{:03}", i % 3, 11 * i); }),
         "real 1, FID"},
        {"complex without times",
         Lines(50, [&](int i) { return fmt::format("{:.4f},{:.4f}", noise(i), noise(i + 9)); }),
         "real 1, imaginary 2, FID"},
        {"shifts, falling", Lines(50, [&](int i) { return fmt::format("{:.4f},{:.4f}", 12 - 0.1 * i, noise(i)); }),
         "positions (ppm) in column 1, real 2, spectrum"},
        {"Hz by its reach", Lines(50, [&](int i) { return fmt::format("{:.4f},{:.4f}", 5000 - 100.0 * i, noise(i)); }),
         "positions (Hz) in column 1, real 2, spectrum"},
        {"spectra side by side",
         Lines(50,
               [&](int i) {
                   return fmt::format("{:.3f} {:.4f} {:.4f} {:.4f}", 12 - 0.1 * i, noise(i), noise(i + 1),
                                      noise(i + 2));
               }),
         "positions (ppm) in column 1, real 2 3 4, spectrum"},
        {"microseconds",
         Lines(50, [&](int i) { return fmt::format("{},{:.4f},{:.4f}", 20 * i, noise(i), noise(i + 2)); }),
         "positions (\xC2\xB5s) in column 1, real 2, imaginary 3, FID"},
        {"what this program writes",
         "ppm,real,imaginary\n" +
             Lines(50, [&](int i) { return fmt::format("{},{:.4f},{:.4f}", 0.1 * i, noise(i), noise(i + 2)); }),
         "1 head line, positions (ppm) in column 1, real 2, imaginary 3, spectrum"},
        {"rows of pairs",
         Lines(3,
               [&](int row) {
                   std::string line;
                   for (int i = 0; i < 128; ++i) line += fmt::format("{}{:.3f}", i > 0 ? "," : "", noise(i + row));
                   return line;
               }),
         "each line a row of real and imaginary values in turn, FID"},
        {"a line of shifts, then spectra",
         Lines(3,
               [&](int row) {
                   std::string line;
                   for (int i = 0; i < 128; ++i)
                       line += fmt::format("{}{:.3f}", i > 0 ? "," : "", row == 0 ? 9 - 0.05 * i : noise(i + row));
                   return line;
               }),
         "positions (ppm) in line 1, each line a row of real values, spectrum"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CsvChoice choice = ProposeCsv(c.text);
        const std::string summary = choice.Summary();
        EXPECT_TRUE(summary.ends_with(", " + c.summary)) << summary;
        EXPECT_EQ(CsvChoice(choice.ToValues()).Summary(), summary) << "as the form hands it back";
    }
}

// ---- the block form

TEST(CsvBlock, KeysReachTheirFields)
{
    const std::string head = "$CSVSTART,,\nFREQU,1.2,KHZ\nRESOL,0.5,hz\nOFR,399.782198,\nOBNUC,Carbon13,\n"
                             "COMNT,two, parts,\nDET,12.5,\nFLT,4000,\nIFR,77,\nSCANS,16,\nSMODE,0,\nPOINT,4,\n"
                             "DATIM,2021-02-01 15:24:11,\nPW5,3.5,\nNEW,1,\nCGNBL, 1,\nADBIT,many,\n$END,,\n";
    const CsvRead read(head + "0, 1, 5\n0.001, 2, 6\n0.002, 3, 7\n0.003, 4, 8\n\n");
    ASSERT_TRUE(read.status) << read.status.error().text;
    const ParamBlock& par = read.par();
    EXPECT_EQ(par.FREQU, 1200.0F);
    EXPECT_EQ(par.RESOL, 0.5);
    EXPECT_EQ(par.ObsCenter, 399.782198);
    EXPECT_EQ(par.OBFRQ0PPM, 399.782198);
    EXPECT_EQ(par.OBFRQ, 399.782198F);
    EXPECT_EQ(par.OBNUC, "13C");
    EXPECT_EQ(par.COMNT, "two, parts");
    EXPECT_EQ(par.ExpTitle, "two, parts");
    EXPECT_EQ(par.DEADT, 12.5F);
    EXPECT_EQ(par.FILTR, 4000.0F);
    EXPECT_EQ(par.SCANS, 16);
    EXPECT_EQ(par.PW[4], 3.5F);
    EXPECT_EQ(par.ADBIT, 12.0F);
    EXPECT_EQ(par.EXMOD, "CSV");
    EXPECT_EQ(par.DTYPE, "CSV");
    EXPECT_EQ(par.DATIM, "01/Feb/2021 15:24:11");
    EXPECT_EQ(par.DateSerial, 44228); // days from 30 Dec 1899
    EXPECT_EQ(par.SMODE, 0);
    EXPECT_EQ(par.FIDPoints, 4);
    EXPECT_EQ(read.set().spec.DataRe[0][3], 4.0F);
    EXPECT_EQ(read.set().spec.DataIm[0][3], 8.0F);
    EXPECT_EQ(read.set().Warnings, (std::vector<std::string>{"ADBIT is no number and was passed over.",
                                                             "Keys that are not known were passed over: NEW"}));
    EXPECT_TRUE(read.asker.forms.empty()) << "the head says all";
}

TEST(CsvBlock, TheWidthIsThatOfTheBestSource)
{
    struct Case {
        const char *name, *head;
        double width_hz;
    };
    const Case cases[] = {
        {"its own key", "FREQU,1500,\nIFR,1000,\n", 1500},
        {"the other key alone", "IFR,1000,\n", 1000},
        {"the times", "", 500},
        {"MHz", "FREQU,0.0025,MHZ\n", 2500},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CsvRead read(std::string("$CSVSTART,,\nSMODE,0,\nOFR,100,\n") + c.head +
                           "$END,,\n0, 1, 0\n0.002, 2, 0\n0.004, 3, 0\n\n");
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_NEAR(static_cast<double>(read.par().FREQU), c.width_hz, 1e-4);
    }
}

TEST(CsvBlock, PositionsMakeTheAxisOfASpectrum)
{
    for (const double sign : {1.0, -1.0}) {
        SCOPED_TRACE(sign);
        std::string text = "$CSVSTART,,\nSMODE,1,\nOFR,400,\nFREQU,9999,\nPOINT,101,\n$END,,\n";
        for (int i = 0; i < 101; ++i) text += fmt::format("{:.9g}, {}\n", sign * (0.05 * i - 2), i == 30 ? 100 : i % 3);
        const CsvRead read(text);
        ASSERT_TRUE(read.status) << read.status.error().text;
        const DataSet& set = read.set();
        EXPECT_NEAR(set.par.Resolution2, sign * 0.05, 1e-9);
        EXPECT_NEAR(static_cast<double>(set.par.RefX), sign * -2, 1e-6);
        EXPECT_NEAR(set.par.RESOL, 20, 1e-6);
        EXPECT_NEAR(static_cast<double>(set.par.FREQU), 20 * 101, 1e-3);
        EXPECT_NEAR(set.spec.XAxis[30], sign * -0.5, 1e-9);
        EXPECT_EQ(set.spec.DataRe[0][30], 100.0F);
        EXPECT_EQ(set.par.DispLeft, 100.0F);
        EXPECT_TRUE(set.Warnings.empty()) << set.Warnings.front();
    }
}

TEST(CsvBlock, LinesStandWhereTheFileSaysEvenOnAnUnevenAxis)
{
    // Steps that grow along the axis, as of a spectrum cut together from two.
    std::string text = "$CSVSTART,,\nSMODE,1,\nOFR,400,\nPOINT,400,\n$END,,\n";
    for (int i = 0; i < 400; ++i) {
        const double ppm = 10 - 1e-2 * i - 2e-5 * i * i;
        text += fmt::format("{:.9g}, {:.9g}\n", ppm, 1 / (1 + std::pow((ppm - 6.2) / 0.08, 2)));
    }
    const CsvRead read(text);
    ASSERT_TRUE(read.status) << read.status.error().text;
    ASSERT_EQ(read.set().Warnings.size(), 1U);
    const auto row = read.set().spec.DataRe[0].first(400);
    const auto top = static_cast<std::size_t>(std::ranges::max_element(row) - row.begin());
    EXPECT_NEAR(read.set().spec.XAxis[top], 6.2, 0.02);
    EXPECT_NEAR(static_cast<double>(row[top]), 1, 0.02);
}

TEST(CsvBlock, WhatCannotBeReadIsRefused)
{
    struct Case {
        const char *name, *text;
        ErrorCode code;
    };
    const Case cases[] = {
        {"no end of the head", "$CSVSTART,,\nSMODE,1,\n1, 2\n2, 3\n", ErrorCode::truncated},
        {"no points", "$CSVSTART,,\nSMODE,1,\n$END,,\n", ErrorCode::truncated},
        {"one point", "$CSVSTART,,\nSMODE,1,\nOFR,400,\n$END,,\n1, 2\n", ErrorCode::truncated},
        {"too many points promised", "$CSVSTART,,\nPOINT,1048577,\n$END,,\n1, 2\n2, 3\n", ErrorCode::too_large},
        {"positions alike", "$CSVSTART,,\nSMODE,1,\nOFR,400,\n$END,,\n1, 2\n1, 3\n\n", ErrorCode::bad_value},
        {"positions to and fro", "$CSVSTART,,\nSMODE,1,\nOFR,400,\n$END,,\n1, 2\n7, 3\n2, 5\n4, 1\n\n",
         ErrorCode::bad_value},
        {"times that fall", "$CSVSTART,,\nSMODE,0,\nOFR,400,\n$END,,\n2, 2\n1, 3\n\n", ErrorCode::bad_value},
        {"words", "no numbers\nat all\n", ErrorCode::bad_format},
        {"nothing", "", ErrorCode::bad_format},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CsvRead read(c.text);
        ASSERT_FALSE(read.status);
        EXPECT_EQ(read.status.error().code, c.code);
        EXPECT_TRUE(read.asker.boxes.empty()) << "the flow tells";
    }
}

TEST(CsvBlock, EveryCutIsToldOrRefused)
{
    for (const bool counted : {true, false}) { // without POINT only the empty line at the end can tell
        std::string whole = "$CSVSTART,,\nOBNUC,1H,\nOFR,400,\nSMODE,1,\n";
        if (counted) whole += "POINT,12,\n";
        whole += "$END,,\n";
        for (int i = 0; i < 12; ++i) whole += fmt::format("{:.9g}, {:.9g}\n", 4 - 0.25 * i, 100.125 * i);
        const CsvRead all(whole + "\n");
        ASSERT_TRUE(all.status);
        EXPECT_TRUE(all.set().Warnings.empty());
        // Not the last line end: with POINT all points are there without the empty line behind them.
        for (std::size_t size = 0; size < whole.size() + (counted ? 0U : 1U); ++size) {
            const CsvRead cut((whole + "\n").substr(0, size));
            EXPECT_TRUE(!cut.status || !cut.set().Warnings.empty()) << "cut at " << size << " of " << whole.size();
        }
    }
}

// ---- the form without a head

TEST(CsvTableRead, TheFormsAnswerRules)
{
    const std::string text = Lines(32, [](int i) { return fmt::format("{};{};{};{}", 40 - i, i, 2 * i, 100 + i); });
    const CsvRead read(text, [](CsvChoice& choice) {
        choice.real = {4, 2};
        choice.unit = CsvUnit::hz;
        choice.parameters = {"31P", "10", "", "zg", "a, b", "CDCl3", "", "8", "25"};
    });
    ASSERT_TRUE(read.status) << read.status.error().text;
    ASSERT_EQ(read.asker.forms.size(), 1U);
    EXPECT_EQ(read.asker.forms[0].form, "NMR1D_Form103_CSV");
    const DataSet& set = read.set();
    EXPECT_EQ(set.RowCount, 2);
    EXPECT_EQ(set.spec.DataRe[0][3], 103.0F);
    EXPECT_EQ(set.spec.DataRe[1][3], 3.0F);
    EXPECT_EQ(set.RowValueA[1], 2.0F);
    EXPECT_NEAR(set.spec.XAxis[0], 4, 1e-12);
    EXPECT_NEAR(set.par.Resolution2, -0.1, 1e-12);
    EXPECT_EQ(set.par.OBNUC, "31P");
    EXPECT_EQ(set.par.EXMOD, "zg");
    EXPECT_EQ(set.par.COMNT, "a, b");
    EXPECT_EQ(set.par.SLVNT, "CDCl3");
    EXPECT_EQ(set.par.SCANS, 8);
    EXPECT_EQ(set.par.CTEMP, 25.0F);
    EXPECT_TRUE(set.Warnings.empty()) << set.Warnings.front();
}

TEST(CsvTableRead, CancelEndsTheRead)
{
    auto g = std::make_unique<GlobalBlock>();
    ScriptedAsker asker({FormAnswer{"CANCEL", {}}});
    const FileType type = CsvType();
    const Status status = ReadCsvText({*g, asker, type, 0}, "1,2\n2,3\n3,4\n");
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code, ErrorCode::cancelled);
}

TEST(CsvTableRead, OdditiesOfATableAreTold)
{
    struct Case {
        const char *name, *text, *warning;
    };
    const std::string many_rows = [] {
        std::string line = "1";
        for (int i = 0; i < 99; ++i) line += ",1";
        return line + "\n" + line + "\n" + line.substr(0, 151) + "\n";
    }();
    const Case cases[] = {
        {"words between", "3,4\n2,5\nstop\n1,6\n0,9\n", "1 lines are no rows of the table and were left out."},
        {"a line cut", "3,4\n2,5\n1,6\n0", "1 lines are no rows of the table and were left out."},
        {"no line end", "3,4\n2,5\n1,6\n0,1", "The last line has no end: it may be cut."},
        {"a short row", many_rows.c_str(), "1 rows are shorter than the others: zeros fill them."},
        {"no frequency", "3,4\n2,5\n1,6\n0,9\n",
         "The file gives no observe frequency: with the 1 MHz taken, ppm count Hz."},
        {"no width", "3.5\n2.5\n1.1\n0.5\n",
         "The file gives no spectral width: positions count points of the spectrum (1 Hz each)."},
        {"no imaginary part", "3.5\n2.5\n1.1\n0.5\n", "The FID has no imaginary part: every line has a mirror image."},
        {"beyond single precision", "3,4\n2,5\n1,1e300\n0,9\n", "1 values are too large for points and read as zero."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CsvRead read(c.text);
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_NE(std::ranges::find(read.set().Warnings, c.warning), read.set().Warnings.end());
    }
}

TEST(CsvTableRead, NoChoiceOfTheFormReadsBeyondTheTable)
{
    const std::string text = "1,2,3\n4,5,6\n7,8\n";
    for (const CsvLayout layout : {CsvLayout::columns, CsvLayout::rows, CsvLayout::pairs})
        for (int position = 0; position < 6; ++position)
            for (int column = 0; column < 6; ++column)
                for (const bool imaginary : {false, true}) {
                    const CsvRead read(text, [&](CsvChoice& choice) {
                        choice.layout = layout;
                        choice.position = position;
                        choice.real = column > 0 ? std::vector{1, column} : std::vector<int>{};
                        choice.imaginary = imaginary ? std::vector{2} : std::vector<int>{};
                    });
                    EXPECT_TRUE(!read.status || read.par().POINT >= 2);
                }
}

} // namespace
} // namespace nmr
