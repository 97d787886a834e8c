#include "core/settings_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace nmr {
namespace {

std::uint64_t Fnv1a(const std::string& text)
{
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    return hash;
}

std::string Value(const Settings& settings, std::string_view key)
{
    const SettingRow* row = FindSetting(key);
    return row == nullptr ? "no such key" : SettingText(settings, *row);
}

void Set(Settings& settings, std::string_view key, std::string_view text)
{
    const SettingRow* row = FindSetting(key);
    ASSERT_NE(row, nullptr) << key;
    SetSetting(settings, *row, text);
}

void Change(std::string& value)
{
    value += "x";
}
template <class Number>
void Change(Number& value)
{
    value += 1;
}

TEST(SettingsTable, KeysAndTheirOrderAreThoseOfExistingFiles)
{
    // Other programs read these files by key; the hash is that of the list agreed on, made apart from
    // this code. The last seven keys repeat and are no rows.
    std::string list;
    for (const SettingRow& row : SettingRows()) list += std::string(row.key) + '\n';
    for (const char* key : {"OPERATOR INDEX", "RECENT FILE", "INSTRUMENT", "FID SHIFT VAL", "REF CENTER FRQ",
                            "REF CENTER EX", "INSTRUMENT ID"})
        list += std::string(key) + '\n';
    EXPECT_EQ(SettingRows().size() + 7, 733U);
    EXPECT_EQ(Fnv1a(list), 0x96d9667266a56f94U);
}

TEST(SettingsTable, EveryRowHasAMemberOfItsOwn)
{
    const Settings defaults;
    std::vector<std::string> standard;
    for (const SettingRow& row : SettingRows()) standard.push_back(SettingText(defaults, row));
    for (std::size_t changed = 0; changed < standard.size(); ++changed) {
        const SettingRow& row = SettingRows()[changed];
        Settings settings;
        std::visit([&](auto member) { Change(settings.*member); }, row.member);
        std::size_t differing = 0;
        for (std::size_t i = 0; i < standard.size(); ++i)
            differing += SettingText(settings, SettingRows()[i]) != standard[i] ? 1 : 0;
        EXPECT_EQ(differing, 1U) << row.key;
    }
}

TEST(SettingsTable, DefaultsLieInsideTheirLimits)
{
    Settings checked;
    CheckSettings(checked);
    const Settings defaults;
    for (const SettingRow& row : SettingRows())
        EXPECT_EQ(SettingText(checked, row), SettingText(defaults, row)) << row.key;
}

TEST(SettingsTable, StatedDefaults)
{
    struct Case {
        const char* key;
        const char* value;
    };
    const Case cases[] = {
        {"ACCESS COUNT", "1"},
        {"START MODE", "1"},
        {"DISPLAY MIN", "131072"},
        {"TVO EXTENSION", "0"},
        {"FFT GAMEN RATIO", "0.4"},
        {"ZEROFILLSIZE", "131072"},
        {"X-LENGTH", "20"},
        {"Y-LENGTH", "15"},
        {"PAPER SIZE", "9"},
        {"PAPER ORIENT", "2"},
        {"PAPER BIN", "7"},
        {"PAPER DUPLEX", "1"},
        {"AXIS TIC MODE", "0"},
        {"X-RIGHT PRESET", "0"},
        {"X-LEFT PRESET", "9.9"},
        {"X-L PRESET C4", "240"},
        {"X-R PRESET X3 HZ", "-20000"},
        {"LP ORDER", "50"},
        {"LP POINT", "70"},
        {"LP START", "10"},
        {"LP BACKWARD", "2"},
        {"AVERAGE POINT", "5"},
        {"MAGNIFICATION", "0.8"},
        {"DEPT CH3 90", "1.414"},
        {"DEPT CH2 45", "1"},
        {"DEPT CH MUL", "0"},
        {"DEF REGION COLOR", "255"},
        {"INITIATL FILE", "1"},
        {"INIT FILE INT", "2"},
        {"MULTI EXPAND X", "2"},
        {"AX TIC STEP2 1H", "500"},
        {"AX TIC STEP OTHER", "10"},
        {"AX TIC DIV 2 13C", "10"},
        {"GRID X INC HZ", "100"},
        {"GRID Y INC", "0.5"},
        {"AUTO FID SHIFT", "1"},
        {"AUTO ZEROFILL", "1"},
        {"REF INITITAL", "1"},
        {"REF FINE SET", "0"},
        {"SIM HENDOU POS", "0.001"},
        {"SIM SORT ORDER", "1"},
        {"SIM DATA MIN", "2000"},
        {"SUPER/SUB SIZE", "0.65"},
        {"XLABEL", R"(\< \g1 d\g0 /ppm)"},
        {"X AXIS RATIO", "0.2"},
        {"Y AXIS RATIO", "0.3"},
        {"SIM CRITIC POS", "1e-06"},
        {"CAL XLABEL", R"(\< t / s)"},
    };
    for (const Case& c : cases) EXPECT_EQ(Value(Settings{}, c.key), c.value) << c.key;
}

TEST(SettingsTable, LinesAreSplitByTheFirstSemicolonOrByWidth)
{
    struct Case {
        const char* name;
        const char* line;
        std::size_t width;
        const char* key;
        const char* value;
    };
    const Case cases[] = {
        {"written form", "START MODE                ; 1", 21, "START MODE", "1"},
        {"no blanks", "K;v", 21, "K", "v"},
        {"second semicolon belongs to the value", "KEY ; a;b", 21, "KEY", "a;b"},
        {"tab ends the value", "KEY ; 12\told note", 21, "KEY", "12"},
        {"tab before the value is a blank", "KEY ;\t12", 21, "KEY", "12"},
        {"empty value", "KEY ;", 21, "KEY", ""},
        {"semicolon first: fixed column", ";ABCDEFGHIJKLMNOPQRST 5", 21, ";ABCDEFGHIJKLMNOPQRST", "5"},
        {"no semicolon: column 21", "CURSOR COL 0         99", 21, "CURSOR COL 0", "99"},
        {"no semicolon: column 17", "CURSOR COL 0     99", 17, "CURSOR COL 0", "99"},
        {"exactly the width", "CURSOR COL 000000", 17, "CURSOR COL 000000", ""},
        {"shorter than the width", "CURSOR COL 0", 17, "", ""},
        {"semicolon first, too short", ";5", 17, "", ""},
        {"empty", "", 17, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const SettingLine line = SplitSettingLine(c.line, c.width);
        EXPECT_EQ(line.key, c.key);
        EXPECT_EQ(line.value, c.value);
    }
}

TEST(SettingsTable, OlderSpellingsFindTheirRow)
{
    struct Case {
        const char* old_key;
        const char* key;
    };
    const Case cases[] = {
        {"CURSOL COL 0", "CURSOR COL 0"},
        {"SHOW CURSOL", "SHOW CURSOR"},
        {"AXIS TIC INCRE 2", "AXIS TIC STEP 2"},
        {"AX TIC INCR2 OTH", "AX TIC STEP2 OTHER"},
        {"AX TIC STEP OTH", "AX TIC STEP OTHER"},
        {"INTEGRAL LIST HEIGHT", "INTEGRALK LIST HEIGHT"},
        {"INTEGRALK LIST HEIGHT", "INTEGRALK LIST HEIGHT"},
        {"MU BG COLOR", "MUL BG COLOR"},
        {"PARA TABLE", "PARAMETER TABLE"},
        {"DEFAULT FONT", "DEFAULT FONT ENG"},
        {"INTEGRAL DIGIT", "DEFAULT INTEG DIGIT"},
        {"PEAK-VAL UNIT", "DEFAULT PEAK UNIT"},
        {"AXIS FONT BLD", "AXIS FONT BOLD"},
        {"DISP PFONT ITA", "DISP PFONT ITALIC"},
        {"MUL AX FONTITA", "MUL AX FONTITA"},
        {"SIM SPEC MODE", "SIM SPEC  MODE"},
        {"DATA SET DIR", "DATA  SET DIR"},
        {"START   MODE", "START MODE"},
    };
    for (const Case& c : cases) {
        ASSERT_NE(FindSetting(c.old_key), nullptr) << c.old_key;
        EXPECT_EQ(FindSetting(c.old_key)->key, c.key);
    }
    for (const char* unknown : {"", " ", "start mode", "COMMENT POSITION", "SIM PRINT SET", "ITA", "BLD", "STARTMODE"})
        EXPECT_EQ(FindSetting(unknown), nullptr) << unknown;
}

TEST(SettingsTable, DamagedValuesKeepTheOldOnesOrFallBack)
{
    struct Case {
        const char* name;
        const char* key;
        const char* text;
        const char* after_reading;
        const char* mended;
    };
    const Case cases[] = {
        {"no number", "LP ORDER", "many", "50", "50"},
        {"empty", "LP ORDER", "", "50", "50"},
        {"rounded half to even", "LP ORDER", "12.5", "12", "12"},
        {"exponent", "LP ORDER", "1E2", "100", "100"},
        {"beyond 32 bits", "START MODE", "99999999999", "1", "1"},
        {"not finite", "X-LENGTH", "nan", "20", "20"},
        {"out of limits keeps", "TVO EXTENSION", "3", "0", "0"},
        {"zero fill below 0", "ZEROFILLSIZE", "-1", "-1", "65536"},
        {"zero fill too large", "ZEROFILLSIZE", "1048577", "1048577", "65536"},
        {"zero fill largest", "ZEROFILLSIZE", "1048576", "1048576", "1048576"},
        {"zero fill unreadable", "ZEROFILLSIZE", "big", "131072", "131072"},
        {"display minimum", "DISPLAY MIN", "0", "0", "65536"},
        {"colour below 0", "GRID COL", "-5", "-5", "0"},
        {"colour above white", "GRID COL", "16777216", "16777216", "16777215"},
        {"line width 0", "DRAW WIDTH SPEC", "0", "0", "1"},
        {"font of text objects", "TEXT SIZE", "0", "0", "20"},
        {"digits", "DEFAULT PEAK DIGIT", "99", "3", "3"},
        {"tick step 0", "AXIS TIC STEP", "0", "1", "1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Settings settings;
        Set(settings, c.key, c.text);
        EXPECT_EQ(Value(settings, c.key), c.after_reading);
        CheckSettings(settings);
        EXPECT_EQ(Value(settings, c.key), c.mended);
    }
}

TEST(SettingsTable, MendsWhatTheProgramItselfSpoiled)
{
    Settings settings;
    settings.magnification = std::numeric_limits<double>::quiet_NaN();
    settings.phase_0 = std::numeric_limits<double>::infinity();
    settings.draw_width_axis = -std::numeric_limits<double>::infinity();
    settings.lp_order = -1;
    settings.color[7] = -1;
    ClearTickSettings(settings);
    EXPECT_EQ(settings.ax_tic_step2_13c, 0);
    CheckSettings(settings);
    EXPECT_EQ(settings.magnification, 0.8);
    EXPECT_EQ(settings.phase_0, 0);
    EXPECT_EQ(settings.draw_width_axis, 1);
    EXPECT_EQ(settings.lp_order, 50);
    EXPECT_EQ(settings.color[7], 0);
    EXPECT_EQ(settings.ax_tic_step2_13c, 2000);
}

TEST(SettingsTable, NumbersComeBackToTheSameBits)
{
    const SettingRow* row = FindSetting("PHASE 1");
    ASSERT_NE(row, nullptr);
    for (const double value : {0.1, -1.0 / 3, 1e-300, 123456789.123456789, std::nextafter(1.0, 2.0), 4e15, -0.0}) {
        Settings settings, read;
        settings.phase_1 = value;
        ASSERT_TRUE(SetSetting(read, *row, SettingText(settings, *row)));
        EXPECT_EQ(read.phase_1, value);
        EXPECT_EQ(std::signbit(read.phase_1), std::signbit(value));
    }
}

TEST(SettingsTable, NumberedKeys)
{
    const IndexedSetting& color = IndexedSettings().front();
    ASSERT_EQ(color.key, "COLOR");
    struct Case {
        const char* key;
        std::size_t index;
    };
    for (const Case& c :
         {Case{"COLOR-00", 0}, Case{"COLOR-19", 19}, Case{"COLOR-7", 7}, Case{"COLOR-20", 20}, Case{"COLOR", 20},
          Case{"COLOR-", 20}, Case{"COLOR-1x", 20}, Case{"COLOR--1", 20}, Case{"COLOR-99999999999999999999", 20}})
        EXPECT_EQ(IndexOfKey(color, c.key), c.index) << c.key;
}

TEST(SettingsTable, ColoursOfNeighboursDiffer)
{
    const Settings settings;
    EXPECT_EQ(std::set<std::int32_t>(settings.color.begin(), settings.color.end()).size(), kSpectrumColors);
}

} // namespace
} // namespace nmr
