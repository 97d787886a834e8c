// nmr1d-cli convert, and text tables through the program: a process with arguments, its output, its exit code.

#include "support/files.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <string>

namespace nmr::test {
namespace {

using Json = nlohmann::json;

struct Outcome {
    int exit = -1;
    std::string out;
    Json json() const { return Json::parse(out); }
};

Outcome Command(const std::string& command)
{
    Outcome outcome;
    FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) return outcome;
    std::array<char, 4096> buffer{};
    while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), pipe))
        outcome.out.append(buffer.data(), got);
    outcome.exit = WEXITSTATUS(pclose(pipe));
    return outcome;
}

Outcome Cli(const std::string& arguments)
{
    return Command(NMR1D_BINARY_DIR "/bin/nmr1d-cli " + arguments);
}

TEST(CliConvert, WhatItWritesShowsTheSameSpectrum)
{
    const TempFolder folder;
    ASSERT_EQ(Command(NMR1D_BINARY_DIR "/bin/make_sample_fid " + (folder / "sample")).exit, 0);
    const std::string sample = folder / "sample/1";
    const Json before = Cli("process " + sample + " --json").json();
    struct Case {
        const char *name, *out, *options, *reading;
        double scale; ///< of the intensities
    };
    const double highest = before["max"]["intensity"];
    const Case cases[] = {
        {"every parameter", "a.csv", "", "", 1},
        {"columns", "a.txt", "", "--table OFR=400.13", 1},
        {"relative", "a.asc", "--ascii R1", "--table 'OFR = 400.13; POSITION UNIT=PPM'", 1 / highest},
        {"JCAMP", "a.dx", "", "", 1},
        {"JCAMP, both pages", "b.DX", "--reduced", "", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(Cli("convert " + sample + " " + (folder / c.out) + " " + c.options).exit, 0);
        const Outcome read = Cli("process " + (folder / c.out) + " --json " + c.reading);
        ASSERT_EQ(read.exit, 0);
        const Json after = read.json();
        EXPECT_EQ(after["points"], before["points"]);
        EXPECT_EQ(after["nucleus"], "1H");
        EXPECT_NEAR(after["axis"]["first_ppm"], before["axis"]["first_ppm"], 1e-6);
        EXPECT_NEAR(after["axis"]["last_ppm"], before["axis"]["last_ppm"], 1e-6);
        EXPECT_NEAR(after["max"]["ppm"], before["max"]["ppm"], 5e-4);
        EXPECT_NEAR(after["max"]["intensity"], c.scale * highest, 1e-2 * c.scale * highest);
    }
}

TEST(CliConvert, RefusesWithTheRightCode)
{
    const TempFolder folder;
    WriteText(folder / "a.csv", "12,1\n11,2\n10,3\n9,1\n");
    WriteText(folder / "bad.csv", "no numbers\n");
    struct Case {
        const char *name, *arguments;
        int exit;
    };
    const Case cases[] = {
        {"no form for the extension", "a.csv b.xyz", 2},
        {"into itself", "a.csv a.csv", 2},
        {"a word that is no choice", "a.csv b.txt --ascii R9", 2},
        {"a key that is none", "a.csv b.txt --table NEW=1", 2},
        {"no such file", "no.csv b.txt", 3},
        {"no data", "bad.csv b.txt", 3},
        {"no such row", "a.csv b.txt --row 2", 5},
        {"no such folder", "a.csv no/b.txt", 6},
        {"fine", "a.csv b.txt", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(
            Command("cd '" + folder.path().string() + "' && " NMR1D_BINARY_DIR "/bin/nmr1d-cli convert " + c.arguments)
                .exit,
            c.exit);
    }
    EXPECT_EQ(ReadText(folder / "a.csv"), "12,1\n11,2\n10,3\n9,1\n");
}

TEST(CliTable, TheFileIsTakenAsItLooksAndSoSaid)
{
    const TempFolder folder;
    std::string text = "Time (ms);real;imag\n";
    for (int i = 0; i < 256; ++i)
        text += std::to_string(i) + ",5;" + std::to_string(256 - i) + ";" + std::to_string(i % 3) + "\n";
    WriteText(folder / "fid.txt", text);
    const Json plain = Cli("process " + (folder / "fid.txt") + " --json").json();
    EXPECT_EQ(plain["sweep_hz"], 1000);
    EXPECT_EQ(plain["fid_points"], 256);
    EXPECT_EQ(plain["obs_mhz"], 1);
    EXPECT_EQ(plain["warnings"].size(), 2U);
    EXPECT_EQ(plain["warnings"][1], "The table was read as it looks: separator semicolon, decimal comma, 1 head line, "
                                    "positions (ms) in column 1, real 2, imaginary 3, FID.");
    const Json told = Cli("process " + (folder / "fid.txt") + " --json --table 'OFR=162;OBNUC=31P'").json();
    EXPECT_EQ(told["obs_mhz"], 162);
    EXPECT_EQ(told["nucleus"], "31P");
    EXPECT_EQ(told["warnings"].size(), 1U);
}

/// A falling spectrum of `points` points at 400 MHz.
std::string SmallSpectrum(int points)
{
    std::string text = "##TITLE=s\n##JCAMP-DX=5.00\n##DATA TYPE=NMR SPECTRUM\n##DATA CLASS=XYDATA\n"
                       "##.OBSERVE FREQUENCY=400\n##.OBSERVE NUCLEUS=^1H\n##XUNITS=PPM\n##FIRSTX=9\n##LASTX=1\n"
                       "##XFACTOR=1\n##YFACTOR=1\n##NPOINTS=" +
                       std::to_string(points) + "\n##XYDATA=(X++(Y..Y))\n";
    for (int i = 0; i < points; ++i) text += std::to_string(points - 1 - i) + " " + std::to_string(i * i) + "\n";
    return text + "##END=\n";
}

TEST(CliBlock, ChoosesOneDataSetOfAFileOfSeveral)
{
    const TempFolder folder;
    WriteText(folder.path() / "two.dx", "##TITLE=all\n##JCAMP-DX=5.00\n##DATA TYPE=LINK\n##BLOCKS=2\n" +
                                            SmallSpectrum(8) + SmallSpectrum(16) + "##END=\n");
    WriteText(folder.path() / "one.dx", SmallSpectrum(8));
    struct Case {
        const char *file, *options;
        int exit, points;
    };
    for (const Case& c :
         {Case{"two.dx", "", 0, 8}, Case{"two.dx", " --block 1", 0, 8}, Case{"two.dx", " --block 2", 0, 16},
          Case{"two.dx", " --block 3", 5, 0}, Case{"one.dx", " --block 1", 0, 8}, Case{"one.dx", " --block 2", 5, 0}}) {
        SCOPED_TRACE(std::string(c.file) + c.options);
        const Outcome out = Cli("process " + (folder / c.file) + c.options + " --json");
        EXPECT_EQ(out.exit, c.exit);
        if (c.exit == 0) {
            EXPECT_EQ(out.json()["points"], c.points);
        }
    }
}

} // namespace
} // namespace nmr::test
