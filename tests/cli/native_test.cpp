// Native files by way of the program: what it saves, tells and converts.

#include "cli/cli_run.h"

namespace nmr::test {
namespace {

Json Info(const std::string& path)
{
    return Cli("info " + Quoted(path) + " --json").json();
}

TEST_F(CliSample, ANativeFileHoldsTheSpectrumItsParametersAndItsHistory)
{
    const std::string native = Path("a.tvo1");
    const Outcome made = Cli("process " + Sample() + " --json --out " + native);
    ASSERT_EQ(made.exit, 0);
    const Json wanted = made.json(), info = Info(native);
    EXPECT_EQ(info["tag"], "TAVO1_V4");
    for (const char* same : {"nucleus", "obs_mhz", "ppm0_mhz", "sweep_hz", "points", "rows"})
        EXPECT_EQ(info[same], wanted[same]) << same;
    EXPECT_EQ(info["max"]["intensity"], wanted["max"]["intensity"]);
    EXPECT_EQ(info["axis"]["step_ppm"], wanted["axis"]["step_ppm"]);
    EXPECT_NEAR(info["axis"]["first_ppm"], wanted["axis"]["first_ppm"], 1e-6) << "the file keeps it as a float";
    const Json history = Cli("history " + native + " --json").json();
    EXPECT_EQ(history["original_state"], "unchanged");
    EXPECT_EQ(history["original_sha256_begin"].get<std::string>().size(), 32U);
    std::vector<std::string> subjects;
    for (const Json& row : history["history"]) subjects.push_back(row["subject"]);
    EXPECT_EQ(subjects, (std::vector<std::string>{"Measured", "FFT", "Saved"}));
    EXPECT_NE(Cli("history " + native).out.find(" (unchanged)\n"), std::string::npos);
}

TEST_F(CliSample, ConvertingToANativeFileAndBackLosesNoPoint)
{
    const std::string native = Path("b.tvo1"), again = Path("c.tvo"), table = Path("d.csv"), back = Path("e.tvo1");
    ASSERT_EQ(Cli("convert " + Sample() + " " + native).exit, 0);
    ASSERT_EQ(Cli("convert " + native + " " + again).exit, 0);
    for (const std::string& file : {native, again})
        ASSERT_EQ(Cli("process " + file + " --out " + file + ".npy").exit, 0);
    EXPECT_EQ(ReadText(native + ".npy"), ReadText(again + ".npy"));
    EXPECT_EQ(Cli("history " + again + " --json").json()["history"].size(), 4U) << "the second save is noted too";
    ASSERT_EQ(Cli("convert " + native + " " + table).exit, 0);
    ASSERT_EQ(Cli("convert " + table + " " + back).exit, 0);
    EXPECT_EQ(Info(back)["points"], Info(native)["points"]);
    // Highest is the magnitude where there is an imaginary part: the next point may be as high.
    const Json kept = Info(native);
    EXPECT_NEAR(Info(back)["max"]["ppm"], kept["max"]["ppm"], 1.01 * kept["axis"]["step_ppm"].get<double>());
    // A file that is there is replaced, and stays as a backup.
    const std::string before = ReadText(again);
    ASSERT_EQ(Cli("convert " + native + " " + again).exit, 0);
    EXPECT_EQ(ReadText(Path("c.$tvo")), before);
    EXPECT_EQ(Cli("convert " + native + " " + native).exit, 2) << "into itself";
    EXPECT_EQ(Cli("convert " + native + " " + Path("none/x.tvo1")).exit, 6);
}

} // namespace
} // namespace nmr::test
