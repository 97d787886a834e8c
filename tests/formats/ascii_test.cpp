// Spectra written as text, read back by the program's own reader and by a few lines of this file.

#include "formats/ascii.h"

#include "core/text.h"
#include "formats/csv_fixture.h"
#include "support/files.h"

#include <cmath>
#include <sstream>

namespace nmr {
namespace {

using namespace test;

constexpr int kPoints = 1000;

/// Slot 0 with a spectrum of 12 to -2 ppm (or the other way), slot 3 with one three times as high.
std::unique_ptr<GlobalBlock> Spectra(bool rising = false)
{
    auto g = std::make_unique<GlobalBlock>();
    g->nuclides = NuclearTable::BuiltIn();
    for (const std::int16_t slot : {std::int16_t{0}, std::int16_t{3}}) {
        EXPECT_TRUE(AllocateSpecBuffer(*g, kPoints, slot));
        DataSet& set = g->Slots[static_cast<std::size_t>(slot)];
        set.par.POINT = kPoints;
        set.par.SMODE = 1;
        set.par.OBNUC = "13C";
        set.par.ObsCenter = set.par.OBFRQ0PPM = 100.525303123;
        set.par.Resolution2 = (rising ? 14.0 : -14.0) / (kPoints - 1);
        for (std::size_t i = 0; i < kPoints; ++i) {
            set.spec.XAxis[i] = (rising ? -2.0 : 12.0) + static_cast<double>(i) * set.par.Resolution2;
            const double height =
                1e7 / (1 + std::pow((set.spec.XAxis[i] - 3.21) / 0.05, 2)) + std::sin(50.0 * static_cast<double>(i));
            set.spec.DataRe[0][i] = static_cast<float>(slot == 0 ? height : 3 * height);
        }
        set.par.RESOL = 14.0 / (kPoints - 1) * set.par.OBFRQ0PPM;
        set.par.FREQU = static_cast<float>(set.par.RESOL * kPoints);
    }
    g->ViewLeft = 5;
    g->ViewRight = 1;
    return g;
}

struct Written {
    std::vector<std::string> head;
    std::vector<std::pair<double, double>> points;
    bool blank_at_end = false;
};

Written ReadBack(const std::string& path)
{
    Written file;
    std::istringstream in(ReadText(path));
    for (std::string line; std::getline(in, line);) {
        const auto comma = line.find(", ");
        file.blank_at_end = line.empty();
        if (line.empty()) continue;
        if (line[0] == '$' || (line[0] >= 'A' && line[0] <= 'Z'))
            file.head.push_back(line);
        else
            file.points.emplace_back(std::stod(line.substr(0, comma)), std::stod(line.substr(comma + 2)));
    }
    return file;
}

TEST(WriteDataAscii, ScalesAsItsModeSays)
{
    const auto g = Spectra();
    const double top0 = static_cast<double>(*std::ranges::max_element(g->Slots[0].spec.DataRe[0]));
    struct Case {
        const char* name;
        AsciiMode mode;
        std::int16_t slot;
        double highest;
    };
    const Case cases[] = {
        {"raw", AsciiMode::raw, 0, top0},
        {"relative", AsciiMode::relative, 0, 1},
        {"relative, another", AsciiMode::relative, 3, 1},
        {"relative to the first", AsciiMode::relative_first, 3, 3},
        {"displayed", AsciiMode::displayed, 0, top0 / 2e7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        ASSERT_TRUE(WriteDataAscii(folder / "a.txt", *g, c.mode, c.slot, 0, 2e7));
        const Written file = ReadBack(folder / "a.txt");
        ASSERT_EQ(file.points.size(), static_cast<std::size_t>(kPoints));
        EXPECT_TRUE(file.blank_at_end);
        const auto top = std::ranges::max_element(file.points, {}, &std::pair<double, double>::second);
        EXPECT_NEAR(top->second, c.highest, 1e-7 * c.highest);
        EXPECT_NEAR(top->first, 3.21, 0.008);
        EXPECT_EQ(file.head.empty(), c.mode != AsciiMode::displayed);
        if (c.mode != AsciiMode::displayed) continue;
        EXPECT_EQ(file.head, (std::vector<std::string>{"$CSVSTART,,", "OBNUC,13C,", "OFR,100.525303123,",
                                                       "FREQU,1408.7631,", "SMODE,1,", "$END,,"}));
    }
}

TEST(WriteDataAscii, FewerPointsStandOverTheShownRange)
{
    for (const bool rising : {false, true}) {
        const auto g = Spectra(rising);
        const TempFolder folder;
        ASSERT_TRUE(WriteDataAscii(folder / "a.txt", *g, AsciiMode::raw, 0, 100));
        const Written file = ReadBack(folder / "a.txt");
        ASSERT_EQ(file.points.size(), 100U);
        const double step = 14.0 / 999;
        EXPECT_NEAR(file.points.front().first, rising ? 1 : 5, step);
        EXPECT_NEAR(file.points.back().first, rising ? 5 : 1, step);
        for (std::size_t i = 1; i < 100; ++i)
            EXPECT_NEAR(std::fabs(file.points[i].first - file.points[i - 1].first), 4.0 / 99, 1.01 * step);
        // More than the range has: each of its points once.
        ASSERT_TRUE(WriteDataAscii(folder / "a.txt", *g, AsciiMode::raw, 0, 900));
        EXPECT_NEAR(static_cast<double>(ReadBack(folder / "a.txt").points.size()), 4 / step + 1, 1.5);
    }
}

TEST(WriteDataAscii, WhatIsNoSpectrumIsRefused)
{
    const TempFolder folder;
    const auto g = Spectra();
    EXPECT_EQ(WriteDataAscii(folder / "a.txt", *g, AsciiMode::raw, 5).error().code, ErrorCode::bad_value);
    EXPECT_EQ(WriteDataAscii(folder / "a.txt", *g, AsciiMode::raw, 21).error().code, ErrorCode::bad_value);
    g->Slots[0].par.SMODE = 0;
    EXPECT_EQ(WriteAscii2(folder / "a.csv", *g, 0).error().code, ErrorCode::bad_value);
    EXPECT_EQ(WriteDataAscii(folder / "no/such/a.txt", *g, AsciiMode::raw, 3).error().code, ErrorCode::unwritable);
    EXPECT_FALSE(std::filesystem::exists(folder / "a.txt"));
}

TEST(WriteAscii2, ReadsBackAsItWas)
{
    for (const bool rising : {false, true}) {
        const auto g = Spectra(rising);
        DataSet& set = g->Slots[0];
        set.par.COMNT = "one, two\nthree";
        set.par.DATIM = "01/Feb/2021 15:24:11";
        set.par.DELAY = 0.1F;
        set.par.DEADT = 12.5F;
        set.par.FILTR = 3.3e4F;
        set.par.IRNUC = "1H";
        set.par.PW[3] = 7.25F;
        set.par.RGAIN = 27;
        set.par.SCANS = 1024;
        set.par.SLVNT = "CDCl3";
        set.par.EXMOD = "zg30";
        const TempFolder folder;
        ASSERT_TRUE(WriteAscii2(folder / "a.csv", *g, 0));
        const CsvRead read(ReadText(folder / "a.csv"));
        ASSERT_TRUE(read.status) << read.status.error().text;
        const ParamBlock& par = read.par();
        EXPECT_TRUE(read.set().Warnings.empty()) << read.set().Warnings.front();
        EXPECT_EQ(par.COMNT, "one, two three");
        EXPECT_EQ(par.DATIM, set.par.DATIM);
        EXPECT_EQ(par.DELAY, set.par.DELAY);
        EXPECT_EQ(par.DEADT, set.par.DEADT);
        EXPECT_EQ(par.FILTR, set.par.FILTR);
        EXPECT_EQ(par.IRNUC, "1H");
        EXPECT_EQ(par.PW, set.par.PW);
        EXPECT_EQ(par.RGAIN, 27);
        EXPECT_EQ(par.SCANS, 1024);
        EXPECT_EQ(par.SLVNT, "CDCl3");
        EXPECT_EQ(par.EXMOD, "zg30");
        EXPECT_EQ(par.OBNUC, "13C");
        EXPECT_EQ(par.OBFRQ0PPM, set.par.OBFRQ0PPM);
        EXPECT_NEAR(static_cast<double>(par.FREQU), static_cast<double>(set.par.FREQU),
                    1e-6 * static_cast<double>(set.par.FREQU));
        EXPECT_EQ(par.POINT, kPoints);
        for (std::size_t i = 0; i < kPoints; ++i) {
            EXPECT_EQ(read.set().spec.DataRe[0][i], set.spec.DataRe[0][i]) << "9 digits hold a float";
            EXPECT_NEAR(read.set().spec.XAxis[i], set.spec.XAxis[i], 1e-6);
        }
    }
}

TEST(WriteAscii2, WritesTheKeysInTheirOrder)
{
    const auto g = Spectra();
    const TempFolder folder;
    ASSERT_TRUE(WriteAscii2(folder / "a.csv", *g, 0));
    std::string keys;
    for (const std::string& line : ReadBack(folder / "a.csv").head) keys += line.substr(0, line.find(',')) + " ";
    EXPECT_EQ(keys,
              "$CSVSTART ACQTM ADBIT CGNBL CPHBL COMNT CSPED CTEMP DATIM DELAY DET EXMOD EXPCM FLT FREQU IFR "
              "IRATN IRNUC IRPHS IRRPW OBATN OBNUC OBPHS OFR PD PI1 PI2 PI3 POINT PW1 PW2 PW3 PW4 PW5 RESOL RGAIN "
              "SMODE SCANS SLVNT TOSCN $END ");
    const std::string text = ReadText(folder / "a.csv");
    EXPECT_NE(text.find("\nCGNBL, 1,\nCPHBL, 0,\n"), std::string::npos);
}

TEST(WriteDataAscii, TheHeadedModeReadsBackInPlace)
{
    const auto g = Spectra();
    const TempFolder folder;
    ASSERT_TRUE(WriteDataAscii(folder / "a.txt", *g, AsciiMode::displayed, 0, 0, 1e7));
    const CsvRead read(ReadText(folder / "a.txt"));
    ASSERT_TRUE(read.status) << read.status.error().text;
    EXPECT_TRUE(read.set().Warnings.empty());
    for (std::size_t i = 0; i < kPoints; ++i) {
        EXPECT_NEAR(read.set().spec.XAxis[i], g->Slots[0].spec.XAxis[i], 1e-6);
        const double value = static_cast<double>(g->Slots[0].spec.DataRe[0][i]) / 1e7;
        EXPECT_NEAR(static_cast<double>(read.set().spec.DataRe[0][i]), value, 1e-7 * std::fabs(value));
    }
}

TEST(AsciiWord, IsReadAsItIsWritten)
{
    for (const AsciiChoice& choice :
         {AsciiChoice{AsciiMode::raw, false, 8192}, AsciiChoice{AsciiMode::relative, true, 1},
          AsciiChoice{AsciiMode::relative_first, false, 0}, AsciiChoice{AsciiMode::displayed, true, 1048576}})
        EXPECT_EQ(ParseAsciiWord(AsciiWord(choice)), choice);
    EXPECT_EQ(AsciiWord({AsciiMode::relative, true, 8192}), "DEPT R1, 8192");
    for (const char* word : {"CANCEL", "", "R3, 5", "R, -1", "R, many"}) EXPECT_FALSE(ParseAsciiWord(word)) << word;
}

} // namespace
} // namespace nmr
