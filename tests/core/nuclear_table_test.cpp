#include "core/nuclear_table.h"

#include "core/settings_file.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <string>

namespace nmr {
namespace {

const NuclearTable& BuiltIn()
{
    static const NuclearTable table = NuclearTable::BuiltIn();
    return table;
}

TEST(NuclearTable, IsConsistent)
{
    EXPECT_EQ(BuiltIn().rows().size(), 140U);
    const Nuclide* proton = BuiltIn().Find("1H");
    ASSERT_NE(proton, nullptr);
    std::map<std::string, double> abundance;
    std::map<std::string, std::string> symbol_of;
    std::set<std::string> names;
    for (const Nuclide& row : BuiltIn().rows()) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(names.insert(row.name).second);
        EXPECT_NEAR(std::abs(row.gamma) / proton->gamma / (row.frequency / 100), 1, 1e-3);
        EXPECT_GT(row.spin, 0);
        EXPECT_EQ(row.spin * 2, std::floor(row.spin * 2));
        // Nuclei of odd mass have half-integer spin, and only they.
        const int mass = std::stoi(row.name);
        EXPECT_EQ(std::fmod(row.spin, 1) != 0, mass % 2 == 1);
        EXPECT_TRUE(row.spin > 0.5 || row.quadrupole == 0);
        abundance[row.element] += row.abundance;
        const std::string symbol = row.name.substr(row.name.find_first_not_of("0123456789"));
        EXPECT_EQ(symbol_of.emplace(row.element, symbol).first->second, symbol);
    }
    for (const auto& [element, sum] : abundance) EXPECT_LE(sum, 100.5) << element;
}

TEST(NuclearTable, FrequencyRatiosOfIupac)
{
    // Pure Appl. Chem. 73 (2001) 1795, tables 1 and 2.
    const std::map<std::string, double> published{
        {"13C", 25.145020}, {"31P", 40.480742}, {"19F", 94.094011},  {"15N", 10.136767},   {"29SI", 19.867187},
        {"2H", 15.350609},  {"11B", 32.083974}, {"23NA", 26.451900}, {"195PT", 21.496784}, {"119SN", 37.290632}};
    for (const auto& [name, ratio] : published) {
        const Nuclide* row = BuiltIn().Find(name);
        ASSERT_NE(row, nullptr) << name;
        EXPECT_DOUBLE_EQ(row->frequency, ratio) << name;
    }
}

TEST(NuclearTable, FollowsTheMagneticMomentsOfBareNuclei)
{
    // Moments in nuclear magnetons (N. J. Stone, 2005) give g = moment / spin; the ratio to the proton,
    // 2.79284734 / 0.5, is Xi / 100 but for the shielding, which grows to 2 % in heavy elements.
    struct Case {
        const char* name;
        double moment, tolerance;
    };
    const Case cases[] = {
        {"2H", 0.857438, 1e-4},     {"3HE", -2.127625, 1e-4}, {"6LI", 0.822047, 5e-4},   {"7LI", 3.256427, 5e-4},
        {"10B", 1.800645, 5e-4},    {"11B", 2.688649, 5e-4},  {"13C", 0.702412, 5e-4},   {"14N", 0.403761, 5e-4},
        {"15N", -0.283189, 5e-4},   {"17O", -1.89379, 1e-3},  {"19F", 2.628868, 1e-3},   {"23NA", 2.217656, 1e-3},
        {"27AL", 3.641507, 1e-3},   {"29SI", -0.55529, 2e-3}, {"31P", 1.13160, 2e-3},    {"35CL", 0.821874, 2e-3},
        {"39K", 0.391466, 2e-3},    {"45SC", 4.756487, 2e-3}, {"51V", 5.148706, 3e-3},   {"55MN", 3.468717, 3e-3},
        {"75AS", 1.439475, 5e-3},   {"87RB", 2.751818, 4e-3}, {"133CS", 2.582025, 8e-3}, {"205TL", 1.638215, 2e-2},
        {"129XE", -0.777976, 6e-3}, {"235U", -0.38, 8e-2},    {"60CO", 3.799, 5e-3},     {"137CS", 2.8413, 8e-3},
    };
    for (const Case& c : cases) {
        const Nuclide* row = BuiltIn().Find(c.name);
        ASSERT_NE(row, nullptr) << c.name;
        const double ratio = c.moment / row->spin / (2.79284734 / 0.5);
        EXPECT_NEAR(std::copysign(row->frequency / 100, row->gamma) / ratio, 1, c.tolerance) << c.name;
    }
}

TEST(NuclearTable, TheShippedFileIsTheBuiltInTable)
{
    const NuclearTable shipped = NuclearTable::Parse(test::ReadText(NMR1D_SOURCE_DIR "/data/system/Nuclear.dat"));
    ASSERT_EQ(shipped.rows().size(), BuiltIn().rows().size());
    for (std::size_t i = 0; i < shipped.rows().size(); ++i) {
        EXPECT_EQ(shipped.rows()[i].name, BuiltIn().rows()[i].name);
        EXPECT_EQ(shipped.rows()[i].frequency, BuiltIn().rows()[i].frequency);
        EXPECT_EQ(shipped.rows()[i].element, BuiltIn().rows()[i].element);
    }
}

TEST(NuclearTable, ParsesTablesOfOthers)
{
    std::string text = "13c; 0.5 ;;x;25.1;\r\n;1;2;3\n\n 19F\n";
    for (int i = 0; i < 200; ++i) text += "1H;0.5\n";
    const NuclearTable table = NuclearTable::Parse(text);
    ASSERT_EQ(table.rows().size(), 139U); // 141 lines, two without a name
    EXPECT_EQ(table.rows()[0].name, "13C");
    EXPECT_EQ(table.rows()[0].spin, 0.5);
    EXPECT_EQ(table.rows()[0].abundance, 0);
    EXPECT_EQ(table.rows()[0].gamma, 0);
    EXPECT_EQ(table.rows()[0].frequency, 25.1);
    EXPECT_EQ(table.rows()[1].name, "19F");
    EXPECT_EQ(table.Nucleus_Normalize("Fluorine19"), "19F");
    EXPECT_EQ(table.Nucleus_Normalize("31P"), "??");
    EXPECT_TRUE(NuclearTable::Parse("").rows().empty());
}

TEST(NuclearTable, AMissingFileGivesTheBuiltInTable)
{
    const test::TempFolder folder;
    GlobalBlock g;
    g.AppPath = folder.path();
    LoadNuclearTable(g);
    EXPECT_EQ(g.nuclides.rows().size(), 140U);
    test::WriteText(folder.path() / "NUCLEAR.DAT", "13C;0.5\n");
    LoadNuclearTable(g);
    EXPECT_EQ(g.nuclides.rows().size(), 1U);
}

TEST(Nucleus, IsNormalized)
{
    struct Case {
        const char* text;
        const char* nucleus;
    };
    const Case cases[] = {
        {"", "NUL"},           {"  ", "NUL"},
        {"nul", "NUL"},        {"Off", "OFF"},
        {"proton", "1H"},      {"1H", "1H"},
        {"H1", "1H"},          {" h1 ", "1H"},
        {"<1H>", "1H"},        {"^13C", "13C"},
        {"D", "2H"},           {"2D", "2H"},
        {"D2", "2H"},          {"Deuterium", "2H"},
        {"carbon", "13C"},     {"Carbon13", "13C"},
        {"C13", "13C"},        {"N15", "15N"},
        {"15n", "15N"},        {"Si29", "29SI"},
        {"Fluorine19", "19F"}, {"Phosphorus31", "31P"},
        {"Nitrogen15", "15N"}, {"Silicon29", "29SI"},
        {"Boron11", "11B"},    {"Aluminum27", "27AL"},
        {"Tin119", "119SN"},   {"Proton1", "1H"},
        {"Deuterium2", "2H"},  {"Cesium133", "133CS"},
        {"Fluorine", "19F"},   {"Nitrogen", "14N"},
        {"12C", "??"},         {"Carbon12", "??"},
        {"13", "??"},          {"*", "??"},
        {"XX", "??"},          {"H1C13", "??"},
        {"\xB5", "??"},
    };
    for (const Case& c : cases) EXPECT_EQ(BuiltIn().Nucleus_Normalize(c.text), c.nucleus) << c.text;
}

TEST(Nucleus, OfAProtonFrequency)
{
    for (const double mhz : {59.4, 60.0, 60.6, 89.1, 272.7, 300.13, 399.95, 404.0, 500.13, 600.0, 800.2, 900.0, 1010.0})
        EXPECT_EQ(Nucleus_From_Frequency(mhz), "1H") << mhz;
    for (const double mhz : {0.0, -400.0, 59.39, 60.61, 100.6, 200.0, 404.0001, 700.0, 1010.1, std::nan("")})
        EXPECT_EQ(Nucleus_From_Frequency(mhz), "") << mhz;
}

TEST(Nucleus, Groups)
{
    for (const char* name : {"1H", "h1", "NUL", "", " "}) EXPECT_EQ(NucleusGroup(name), 0) << name;
    for (const char* name : {"13C", "C13", "c13"}) EXPECT_EQ(NucleusGroup(name), 1) << name;
    for (const char* name : {"31P", "2H", "OFF", "??"}) EXPECT_EQ(NucleusGroup(name), 2) << name;
}

} // namespace
} // namespace nmr
