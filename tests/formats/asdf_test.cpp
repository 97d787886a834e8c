// The number forms of JCAMP-DX tables.

#include "formats/asdf.h"

#include <gtest/gtest.h>

#include <random>

namespace nmr {
namespace {

using Values = std::vector<double>;

struct TableCase {
    const char* name;
    std::string table;
    Values values;
    std::size_t failed_checks = 0;
    std::size_t unknown = 0;
};

// The example is worked through by hand: 100 105 105 105 98 98 -3, first in the standard's own forms.
const Values kWorked{100, 105, 105, 105, 98, 98, -3};
const TableCase kTables[] = {
    {"AFFN", "0 100 105 105 105 98 98 -3\n", kWorked},
    {"PAC", "0+100+105+105+105+98+98-3", kWorked},
    {"PAC with blanks for plus", "0 100 105 105 105 98 98-3", kWorked},
    {"SQZ", "0A00A05A05A05I8I8c", kWorked},
    {"SQZ and DUP", "0A00A05UI8Tc", kWorked},
    {"DIF", "0A00N%%p%j01", kWorked},
    {"DIF and DUP", "0A00N%Tp%j01", kWorked},
    {"DIF goes on after its check", "0A00N%Tp%j01\n6cL%\n", {100, 105, 105, 105, 98, 98, -3, 0, 0}},
    {"no check after a SQZ", "0A00A05\n2A05A06\n", {100, 105, 105, 106}},
    {"check decided by the last item", "0A00N\n1A05A06\n3A07\n", {100, 105, 106, 107}},
    {"last line holds the check alone", "0 A00N\n0 A05   $$ checkpoint\n", {100, 105}},
    {"failed check goes on from the check", "0A00N\n1A07J\n", {100, 105, 108}, 1},
    {"repeat of a difference", "0A00JU", {100, 101, 102, 103}},
    {"repeat of a value", "0A00U", {100, 100, 100}},
    {"repeat behind a check", "0A00J\n1A01U", {100, 101, 101, 101}},
    {"count of 1 behind each item", "0A00SJSKS", {100, 101, 103}},
    {"long run", "0@%S0", Values(11, 0)},
    {"exponents in AFFN", "0 1.5E+03 2e2 -2.5E-1", {1500, 200, -0.25}},
    {"nothing times any power", "0 0E8840 0e-9999 1", {0, 0, 1}},
    {"E is a digit where other letters are", "400E12F3", {512, 63}},
    {"line whose only letter is E", "1A0\n2E4420E5294\n", {10, 54420, 55294}},
    {"exponent of X in a table of letters", "0.0000000E+00A1B2", {11, 22}},
    {"decimals in X and DIF", "2391.3C7l9%", {37, -2, -2}},
    {"checksum and comment", "0 1 2 $ 99\n2 3 $$ 4\n$$ 5\n", {1, 2, 3}},
    {"unknown value", "0 1 ? 2", {1, 2}, 0, 1},
    {"CR LF and CR", "0 1\r\n1 2\r2 3", {1, 2, 3}},
    {"blank before X, tabs, zero bytes", std::string(" 0\t1\0 2", 7), {1, 2}},
    {"many digits", "0 123456789012345678901234", {123456789012345678901234.0}},
};

TEST(Asdf, TablesAreDecoded)
{
    for (const TableCase& c : kTables) {
        SCOPED_TRACE(c.name);
        Values values;
        const AsdfReport report = DecodeAsdfTable(c.table, 100, values);
        EXPECT_EQ(report.failure, AsdfReport::Failure::none);
        ASSERT_EQ(values.size(), c.values.size());
        for (std::size_t i = 0; i < values.size(); ++i) EXPECT_DOUBLE_EQ(values[i], c.values[i]) << i;
        EXPECT_EQ(report.failed_checks, c.failed_checks);
        EXPECT_EQ(report.unknown, c.unknown);
        EXPECT_EQ(report.misplaced, 0U);
    }
}

TEST(Asdf, TablesThatCantBeRightAreRefused)
{
    using enum AsdfReport::Failure;
    const struct {
        const char *name, *table;
        AsdfReport::Failure failure;
        std::size_t line;
    } cases[] = {
        {"strange letter", "0 1 2\n2 3 &\n", bad_character, 2},
        {"sign without a number", "0 1 - 2\n", bad_character, 1},
        {"point alone", "0 .\n", bad_character, 1},
        {"no X", "A00A01\n", no_x, 1},
        {"repeat of nothing", "0T\n", dup_first, 1},
        {"too many values", "0 1 2 3 4 5 6\n", too_many, 1},
        {"too many repeats", "0 A1s99999999999999999999\n", too_many, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Values values;
        const AsdfReport report = DecodeAsdfTable(c.table, 5, values);
        EXPECT_EQ(report.failure, c.failure);
        EXPECT_EQ(report.line, c.line);
        EXPECT_LE(values.size(), 6U);
    }
}

TEST(Asdf, ALostLineShowsInX)
{
    std::string table;
    for (int line = 0; line < 20; ++line)
        if (line != 7) table += std::to_string(200 - 10 * line) + " 1 2 3 4 5 6 7 8 9 10\n";
    Values values;
    EXPECT_EQ(DecodeAsdfTable(table, 1000, values).misplaced, 1U);
}

TEST(Asdf, ItemsCarryKindAndTag)
{
    const std::string text = "-1.5 B3 m4 W5 ? & ";
    const struct {
        AsdfKind kind;
        double value;
        std::string_view tag;
    } expected[] = {{AsdfKind::affn, -1.5, "AFFN"}, {AsdfKind::sqz, 23, "ASDF"}, {AsdfKind::dif, -44, "ASDF"},
                    {AsdfKind::dup, 0, "ASDF"},     {AsdfKind::unknown, 0, ""},  {AsdfKind::error, 0, "ERROR"}};
    std::size_t position = 0;
    for (const auto& e : expected) {
        const AsdfItem item = Read_AsdfValue(text, position, AsdfE::squeezed);
        EXPECT_EQ(item.kind, e.kind);
        EXPECT_EQ(item.value, e.value);
        EXPECT_EQ(AsdfTag(item.kind), e.tag);
        EXPECT_EQ(item.dup_count, item.kind == AsdfKind::dup ? 55U : 0U);
    }
}

TEST(Asdf, IntegersAreFormatted)
{
    const struct {
        std::int64_t value;
        AsdfForm form;
        const char* text;
    } cases[] = {{0, AsdfForm::sqz, "@"},     {100, AsdfForm::sqz, "A00"},  {-3, AsdfForm::sqz, "c"},
                 {0, AsdfForm::dif, "%"},     {-101, AsdfForm::dif, "j01"}, {9, AsdfForm::dif, "R"},
                 {2, AsdfForm::dup, "T"},     {9, AsdfForm::dup, "s"},      {173, AsdfForm::dup, "S73"},
                 {5, AsdfForm::pac, "+5"},    {-5, AsdfForm::pac, "-5"},    {0, AsdfForm::pac, "+0"},
                 {42, AsdfForm::affn, " 42"}, {-42, AsdfForm::affn, " -42"}};
    for (const auto& c : cases) EXPECT_EQ(Format_AsdfValue(c.value, c.form), c.text);
}

std::string WriteTable(const std::vector<std::int64_t>& values)
{
    std::string table;
    std::size_t last = 0;
    while (last + 1 < values.size()) last = Write_AsdfLine(values, last, static_cast<std::int64_t>(last), table);
    Write_AsdfLine(values, last, static_cast<std::int64_t>(last), table);
    return table;
}

TEST(Asdf, WhatIsWrittenReadsBack)
{
    std::mt19937 random(7);
    for (const int spread : {0, 1, 3, 40, 5000, 1'000'000'000}) {
        SCOPED_TRACE(spread);
        std::uniform_int_distribution<std::int64_t> value(-spread, spread);
        std::vector<std::int64_t> values(5000);
        for (std::int64_t& v : values) v = value(random);
        // Ramps and level stretches, whose repeats run over the end of lines.
        for (std::size_t i = 1000; i < 1400; ++i) values[i] = values[i - 1] + 3;
        for (std::size_t i = 2000; i < 2900; ++i) values[i] = values[i - 1];
        const std::string table = WriteTable(values);
        std::string_view rest = table;
        while (!rest.empty()) EXPECT_LE(TakeLine(rest).size(), 80U);
        Values read;
        const AsdfReport report = DecodeAsdfTable(table, values.size(), read);
        EXPECT_EQ(report.failure, AsdfReport::Failure::none);
        EXPECT_EQ(report.failed_checks + report.misplaced, 0U);
        EXPECT_EQ(read, Values(values.begin(), values.end()));
    }
    EXPECT_LT(WriteTable(std::vector<std::int64_t>(100'000, 5)).size(), 40U) << "one repeat";
}

} // namespace
} // namespace nmr
