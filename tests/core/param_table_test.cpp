#include "core/param_table.h"

#include "core/numbers.h"
#include "core/text.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

using namespace nmr;

TEST(ParamTable, KeysNamesAndLabelsAreSingle)
{
    std::set<std::string> keys, names, labels;
    for (const ParamField& field : ParamFields()) {
        SCOPED_TRACE(field.name);
        EXPECT_TRUE(names.emplace(field.name).second);
        EXPECT_FALSE(field.label.empty());
        EXPECT_TRUE(labels.emplace(field.label).second) << field.label;
        EXPECT_TRUE(field.key.empty() || keys.emplace(field.key).second);
        EXPECT_EQ(std::holds_alternative<std::string ParamBlock::*>(field.member), field.pattern.empty());
    }
}

// The keys of the exchange formats; a writer walks them, so none may be missing.
TEST(ParamTable, KnowsEveryKeyOfTheExchangeFormats)
{
    const char* keys =
        "DFILE ADBIT COMNT CSPED CTEMP DELAY DEADT DTYPE DUMMY EXMOD EXPCM FILTR FREQU IRFRQ INTVL IRATN IRFIN IRNUC "
        "IRPHS "
        "IRRPW IRSET INIWT LOOP1 LOOP2 LOOP3 LOOP4 LOOP5 OBATN OBFIN OBNUC OBSET OBFRQ PD PI1 PI2 PI3 PI4 PI5 POINT "
        "PS1 PS2 "
        "PS3 PS4 PS5 PW1 PW2 PW3 PW4 PW5 RESOL RGAIN SCANS SLVNT SMEXR SMODE SMTMS TIMES TOSCN TR TRATN TRFIN TRFRQ "
        "TRNUC "
        "TRRPW TRSET ACQTM CLFRQ CLPNT CLRSO DATIM FLT IFR IRFN2 IRST2 IWT OBFN2 OBPHS OBST2 TRFN2 TRST2";
    for (const std::string& key : Split(keys, ' ')) {
        EXPECT_NE(FindParam(key), nullptr) << key;
        EXPECT_EQ(FindParam(key), FindParam(ToLower(key)));
    }
    EXPECT_EQ(FindParam("FLT")->name, "FILTR");
    EXPECT_EQ(FindParam("ifr")->name, "FREQU");
    EXPECT_EQ(FindParam("INIWT")->name, "IWT");
    EXPECT_EQ(FindParam("PW3")->name, "PW3");
    for (const char* unknown : {"", "XYZ", "PW6", "PW"}) EXPECT_EQ(FindParam(unknown), nullptr) << unknown;
}

TEST(ParamTable, EveryFieldTakesAValueOfItsOwn)
{
    ParamBlock block;
    int value = 1;
    for (const ParamField& field : ParamFields())
        EXPECT_TRUE(SetParam(block, field, std::to_string(value++))) << field.name;
    value = 1; // two rows on one member would show here
    for (const ParamField& field : ParamFields()) {
        const std::string text = ParamText(block, field);
        EXPECT_EQ(ParseNumber(text).value_or(-1), value++) << field.name << " reads " << text;
    }
    EXPECT_EQ(block.PW[4], ParseNumber(ParamText(block, *FindParam("PW5"))));
}

TEST(ParamTable, ATextThatDoesNotFitLeavesTheValue)
{
    struct Case {
        const char *key, *text;
        bool taken;
        const char* shown;
    };
    const Case cases[] = {
        {"POINT", "131072", true, "131072"},   {"POINT", "16384.0", true, "16384"}, {"POINT", "2147483648", false, "5"},
        {"POINT", "-2147483649", false, "5"},  {"POINT", "1e300", false, "5"},      {"SMODE", "32768", false, "5"},
        {"SMODE", "-32768", true, "-32768"},   {"OBFRQ", "400.13", true, "400.13"}, {"OBFRQ", "1e39", false, "5.0"},
        {"OBFRQ", "400.13 MHz", false, "5.0"}, {"RESOL", "", false, "5.0"},         {"RESOL", "nan", false, "5.0"},
        {"RESOL", "0.12345", true, "0.12345"}, {"OBNUC", "13C", true, "13C"},       {"OBNUC", "", true, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.key << " = " << c.text);
        ParamBlock block;
        const ParamField* field = FindParam(c.key);
        ASSERT_NE(field, nullptr);
        ASSERT_TRUE(SetParam(block, *field, "5"));
        EXPECT_EQ(SetParam(block, *field, c.text), c.taken);
        EXPECT_EQ(ParamText(block, *field), c.shown);
    }
}
