// nmr1d-cli as a user runs it: a process with arguments, its output and its exit code.

#include "../../tools/sample_molecule.h"
#include "cli/cli_run.h"

#include <cmath>
#include <complex>
#include <cstring>
#include <vector>

namespace nmr::test {
namespace {

// NumPy file with complex64 values of one row.
std::vector<std::complex<float>> ReadNpy(const std::string& path, std::string& head)
{
    const std::string file = ReadText(path);
    if (file.size() < 10 || file.compare(0, 8, std::string("\x93NUMPY\x01\x00", 8)) != 0) return {};
    const std::size_t length = static_cast<unsigned char>(file[8]) + 256U * static_cast<unsigned char>(file[9]);
    head = file.substr(10, length);
    std::vector<std::complex<float>> values((file.size() - 10 - length) / sizeof(std::complex<float>));
    std::memcpy(values.data(), file.data() + 10 + length, values.size() * sizeof(std::complex<float>));
    return values;
}

TEST_F(CliSample, PutsTheKnownLinesAtTheirPlacesAndInPhase)
{
    const auto run = Cli("process " + Sample() + " --json --out " + Path("s.npy"));
    ASSERT_EQ(run.exit, 0);
    const Json json = run.json();
    EXPECT_EQ(json["tag"], "BRU1");
    EXPECT_EQ(json["code"], 4100);
    EXPECT_EQ(json["nucleus"], "1H");
    EXPECT_EQ(json["fid_points"], 65536);
    EXPECT_TRUE(json["warnings"].empty());
    std::string head;
    const auto points = ReadNpy(Path("s.npy"), head);
    ASSERT_EQ(points.size(), json["points"].get<std::size_t>());
    EXPECT_NE(head.find("'<c8'"), std::string::npos);
    EXPECT_EQ((head.size() + 10) % 64, 0U);

    const double first = json["axis"]["first_ppm"], step = json["axis"]["step_ppm"];
    ASSERT_GT(step, 0);
    const auto height = [&](std::ptrdiff_t i) { return points[static_cast<std::size_t>(i)].real(); };
    for (const SampleLine& line : SampleLines()) {
        if (line.width_hz > 3) continue; // noise moves the top of a broad line by more than a point
        SCOPED_TRACE(line.ppm);
        const auto at = static_cast<std::ptrdiff_t>(std::lround((line.ppm - first) / step));
        std::ptrdiff_t top = at - 3;
        for (std::ptrdiff_t i = at - 3; i <= at + 3; ++i)
            if (height(i) > height(top)) top = i;
        EXPECT_LE(std::abs(top - at), 1);
    }
    double positive = 0, negative = 0;
    for (const auto& p : points) (p.real() > 0 ? positive : negative) += std::abs(static_cast<double>(p.real()));
    EXPECT_LT(negative / positive, 0.02);
}

TEST_F(CliSample, HistoryBeginsWithTheMeasurement)
{
    const auto json = Cli("history " + Sample() + " --json");
    ASSERT_EQ(json.exit, 0);
    ASSERT_EQ(json.json()["history"].size(), 1U) << "nothing has been done to a FID";
    EXPECT_EQ(json.json()["history"][0]["subject"], "Measured");
    const auto text = Cli("history " + Sample());
    EXPECT_EQ(text.exit, 0);
    EXPECT_TRUE(text.out.starts_with("Original File Name " + Sample()));
    EXPECT_NE(text.out.find("\nMeasured"), std::string::npos);
    EXPECT_EQ(Cli("history " + Path("missing")).exit, 3);
    EXPECT_EQ(Cli("history").exit, 2);
}

TEST_F(CliSample, OptionsOfTheTransformDoWhatTheySay)
{
    struct Case {
        const char* name;
        std::string options;
        std::function<void(const Json&)> expect;
    };
    const Case cases[] = {
        {"no fill", "--zero-fill off", [](const Json& j) { EXPECT_EQ(j["points"], 65536); }},
        {"fourfold", "--zero-fill x4", [](const Json& j) { EXPECT_EQ(j["points"], 262144); }},
        {"points, raised to a power of two", "--zero-fill 200000",
         [](const Json& j) { EXPECT_EQ(j["points"], 262144); }},
        {"the largest", "--zero-fill x1000", [](const Json& j) { EXPECT_EQ(j["points"], 1048576); }},
        {"group delay as shift", "", [](const Json& j) { EXPECT_EQ(j["fid_shift"], 68); }},
        {"own shift", "--shift 70", [](const Json& j) { EXPECT_EQ(j["fid_shift"], 70); }},
        {"given phase", "--phase 12.5,-30,1000",
         [](const Json& j) {
             EXPECT_DOUBLE_EQ(j["phase"]["p0_deg"], 12.5);
             EXPECT_DOUBLE_EQ(j["phase"]["p1_deg"], -30);
             EXPECT_EQ(j["phase"]["pivot"], 1000);
         }},
        {"no phase", "--phase off",
         [](const Json& j) {
             EXPECT_EQ(j["phase"]["p0_deg"], 0);
             EXPECT_EQ(j["phase"]["p1_deg"], 0);
         }},
        {"without the file's reference", "--reference none",
         [](const Json& j) { EXPECT_NEAR(j["axis"]["first_ppm"].get<double>(), 0.0, 1e-9); }},
        {"a window", "--window gaussian:bf=1,gf=0.5",
         [](const Json& j) {
             EXPECT_FLOAT_EQ(j["params"]["BF2"].get<float>(), 1.0F);
             EXPECT_FLOAT_EQ(j["params"]["GF"].get<float>(), 0.5F);
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto run = Cli("process " + Sample() + " --json " + c.options);
        ASSERT_EQ(run.exit, 0);
        c.expect(run.json());
    }
}

TEST_F(CliSample, PicturesHaveTheirSizeAndHangOnNoScreen)
{
    if (!std::filesystem::exists(kBin + "nmr1d-picture.so")) GTEST_SKIP() << "built without the window";
    const auto side = [](const std::string& png, std::size_t at) {
        return int(static_cast<unsigned char>(png[at])) * 256 + static_cast<unsigned char>(png[at + 1]);
    };
    struct Case {
        const char* options;
        int width, height;
    };
    for (const Case& c : {Case{"", 1200, 700},
                          {"--size 640x480", 640, 480},
                          {"--dpi 192 --size 640x480", 640, 480},
                          {"--size 254x127mm --dpi 100", 1000, 500},
                          {"--size 25.4x12.7mm", 300, 150}}) {
        SCOPED_TRACE(c.options);
        ASSERT_EQ(Cli("process " + Sample() + " --out " + Path("s.png") + " " + c.options).exit, 0);
        const std::string png = ReadText(Path("s.png"));
        EXPECT_EQ(side(png, 18), c.width);
        EXPECT_EQ(side(png, 22), c.height);
    }
    for (const char* name : {"i.png", "i.svg", "i.pdf", "i.emf", "i.bmp"}) {
        SCOPED_TRACE(name);
        const std::string command = kBin + "nmr1d-cli process " + Sample() + " --size 120x80mm --out " + Path(name);
        std::string first;
        for (const char* scale : {"1", "1.25", "2"}) {
            ASSERT_EQ(RunCommand("QT_SCALE_FACTOR=" + std::string(scale) + " " + command).exit, 0);
            const std::string file = ReadText(Path(name));
            if (first.empty()) first = file;
            EXPECT_TRUE(file == first) << scale;
        }
    }
}

TEST_F(CliSample, ABadSizeOfAPictureIsToldBeforeAnyWork)
{
    struct Case {
        const char* options;
        const char* words;
    };
    for (const Case& c : {Case{"--size 12", "WIDTHxHEIGHT"},
                          {"--size 0x10", "20 to 20000 pixels"},
                          {"--size 1x1mm", "5 to 2000 mm"},
                          {"--dpi none", "such as 300"},
                          {"--dpi 9999", "10 to 4800"},
                          {"--size 1000x1000mm --dpi 1200", "20 to 20000 pixels, not 47244"}}) {
        SCOPED_TRACE(c.options);
        const auto run = RunCommand("{ " + kBin + "nmr1d-cli process " + Sample() + " --out " + Path("no.png") + " " +
                                    c.options + " 2>&1; }");
        EXPECT_EQ(run.exit, 2);
        EXPECT_NE(run.out.find(c.words), std::string::npos) << run.out;
        EXPECT_FALSE(std::filesystem::exists(Path("no.png")));
    }
}

TEST_F(CliSample, ABroaderWindowMakesBroaderAndLowerLines)
{
    const auto narrow = Cli("process " + Sample() + " --json --window exponential:lb=0.1").json();
    const auto broad = Cli("process " + Sample() + " --json --window exponential:lb=10").json();
    EXPECT_LT(broad["max"]["intensity"].get<double>(), 0.5 * narrow["max"]["intensity"].get<double>());
}

TEST_F(CliSample, WritesEachKindOfFileAndTheRangeOfTheCsv)
{
    std::string options = " --out " + Path("a.csv");
    const bool pictures = std::filesystem::exists(kBin + "nmr1d-picture.so"); // not in a build without the window
    for (const char* name : {"a.png", "a.svg", "a.pdf", "a.emf", "a.bmp"})
        if (pictures) options += " --out " + Path(name);
    ASSERT_EQ(Cli("process " + Sample() + " --range 5:4" + options).exit, 0);
    if (pictures) {
        EXPECT_EQ(ReadText(Path("a.png")).substr(1, 3), "PNG");
        EXPECT_EQ(ReadText(Path("a.pdf")).substr(0, 4), "%PDF");
        EXPECT_NE(ReadText(Path("a.svg")).find("<svg"), std::string::npos);
        EXPECT_EQ(ReadText(Path("a.emf")).substr(40, 4), " EMF");
        EXPECT_EQ(ReadText(Path("a.bmp")).substr(0, 2), "BM");
    }
    std::istringstream csv(ReadText(Path("a.csv")));
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line, "ppm,real,imaginary");
    double before = 3.99;
    int lines = 0;
    while (std::getline(csv, line)) {
        const double ppm = std::stod(line);
        EXPECT_GT(ppm, before);
        EXPECT_LE(ppm, 5.0);
        before = ppm;
        ++lines;
    }
    EXPECT_NEAR(lines, 500.13 / 10000.0 * 131072, 3); // one ppm of points
}

TEST_F(CliSample, ExitCodesTellWhatWentWrong)
{
    const std::string cut = Path("cut"), empty = Path("empty.fid"), large = Path("large");
    for (const std::string& copy : {cut, large}) ASSERT_EQ(RunCommand("cp -r " + Sample() + " " + copy).exit, 0);
    WriteText(cut + "/fid", "");
    WriteText(empty, "");
    std::string acqus = ReadText(large + "/acqus");
    const auto td = acqus.find("##$TD=");
    acqus.replace(td, acqus.find('\n', td) - td, "##$TD= 1099511627776");
    WriteText(large + "/acqus", acqus);
    struct Case {
        const char* name;
        std::string arguments;
        int exit;
    };
    const Case cases[] = {
        {"no command", "", 2},
        {"unknown option", "process --fast x", 2},
        {"unknown window", "process " + Sample() + " --window triangle", 2},
        {"parameter of another window", "process " + Sample() + " --window hann:lb=1", 2},
        {"unknown extension", "process " + Sample() + " --out x.jpeg", 2},
        {"missing file", "process " + Path("nowhere"), 3},
        {"empty file", "process " + empty, 3},
        {"empty FID", "process " + cut, 3},
        {"too large", "process " + large, 5},
        {"a row that is not there", "process " + Sample() + " --row 2", 5},
        {"a folder that is not there", "process " + Sample() + " --out " + Path("no/such/folder.csv"), 6},
        {"version", "--version", 0},
        {"families", "formats", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Cli(c.arguments).exit, c.exit);
    }
}

TEST_F(CliSample, InfoTellsTheParametersOfTheFidWithoutTransformingIt)
{
    const auto run = Cli("info " + Sample() + " --json");
    ASSERT_EQ(run.exit, 0);
    const Json json = run.json();
    EXPECT_EQ(json["fid_points"], 65536);
    EXPECT_FALSE(json.contains("axis"));
    EXPECT_NEAR(json["sweep_hz"].get<double>(), 10000.0, 1e-3);
    EXPECT_NEAR(json["obs_mhz"].get<double>(), 500.13 + 3001.23e-6, 1e-9);
}

TEST_F(CliSample, NeverWritesBesideTheData)
{
    const auto list = [&] {
        return RunCommand("cd " + Sample() + " && find . -type f -printf '%p %s %T@\\n' | sort").out;
    };
    const std::string before = list();
    ASSERT_EQ(Cli("process " + Sample() + " --json").exit, 0);
    ASSERT_EQ(Cli("info " + Sample()).exit, 0);
    EXPECT_EQ(list(), before);
}

// Positions measured on the magnitude spectrum, with the reference of procs or else BF1.
TEST(CliRealData, StrongestLinesStandWhereTheCollectionSays)
{
    struct Case {
        const char* folder;
        double ppm, tolerance;
    };
    const Case cases[] = {
        {"bruker-1h-fid-aspirin-300", 2.2942, 0.02},
        {"bruker-1h-fid-coffee-400", 3.3690, 0.02},
        {"bruker-1h-noesy-coffee-400", 3.1769, 0.02},
        {"bruker-13c-fid-gaba-500", 37.1800, 0.2},
        {"bruker-31p-fid-600", 2.7724, 0.2},
        {"bruker-13c-fid-600", 76.6361, 0.2},
        {"bruker-13c-fid-dspfvs-minus1-600", 180.9825, 0.2},
        {"bruker-1h-noesy-urine-700-be", -0.0001, 0.02},
        {"bruker-25mg-fid-float64", 4.8676, 0.2},
        {"bruker-1h-fid-pulsecal", 0.0, 0.02},
        {"bruker-1h-processed-only-aspirin", 2.2942, 0.02},
    };
    if (RealData("").empty()) GTEST_SKIP() << "no real data here";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.folder);
        const auto run = Cli("process " + RealData(c.folder).string() + " --json");
        ASSERT_EQ(run.exit, 0);
        EXPECT_NEAR(run.json()["max"]["ppm"].get<double>(), c.ppm, c.tolerance);
    }
}

TEST(CliRealData, TheRobustPhaseIsTheOperators)
{
    if (RealData("").empty()) GTEST_SKIP() << "no real data here";
    // The third lacks its first 22 points.
    for (const char* folder : {"bruker-1h-fid-strychnine-400", "bruker-31p-fid-600", "bruker-13c-fid-dspfvs-minus1-600",
                               "varian-31p-fid-float-600"}) {
        const std::string path = RealData(folder).string();
        const Json own = Cli("process " + path + " --json").json(),
                   theirs = Cli("process " + path + " --json --phase vendor").json();
        const double pivot = own["phase"]["pivot"].get<double>(), points = own["points"].get<double>(); // strongest
        const Json& phase = theirs["phase"];
        const double there = phase["p0_deg"].get<double>() +
                             (pivot - phase["pivot"].get<double>()) * phase["p1_deg"].get<double>() / points;
        EXPECT_NEAR(std::remainder(own["phase"]["p0_deg"].get<double>() - there, 180), 0, 10) << folder;
    }
}

// Values of the last lines from the vendor's own fit of the set, heights over that of the longest delay.
TEST(CliRealData, RowsOfAnInversionRecoveryKeepTheirRatios)
{
    if (RealData("").empty()) GTEST_SKIP() << "no real data here";
    const std::string path = RealData("bruker-1h-t1-inversion-recovery").string();
    const auto all = Cli("process " + path + " --json --phase vendor");
    ASSERT_EQ(all.exit, 0);
    EXPECT_EQ(all.json()["rows"], 10);
    EXPECT_EQ(all.json()["code"], 8196);
    struct Row {
        int row;
        double height;
    };
    for (const Row& r : {Row{1, 1.0}, Row{4, 12.322 / 15.51}, Row{6, 0.45257 / 15.51}, Row{8, -10.882 / 15.51},
                         Row{10, -14.807 / 15.51}}) {
        SCOPED_TRACE(r.row);
        TempFolder folder;
        const auto one = Cli("process " + path + " --json --phase vendor --window vendor --range 4.36:4.32 --row " +
                             std::to_string(r.row) + " --out " + (folder / "row.csv"));
        ASSERT_EQ(one.exit, 0);
        std::istringstream csv(ReadText(folder / "row.csv"));
        std::string line;
        std::getline(csv, line);
        double strongest = 0;
        while (std::getline(csv, line)) {
            const double height = std::stod(line.substr(line.find(',') + 1));
            if (std::abs(height) > std::abs(strongest)) strongest = height;
        }
        static double longest = 0;
        if (r.row == 1) longest = strongest;
        EXPECT_NEAR(strongest / longest, r.height, 0.03);
    }
}

TEST(CliRealData, RefusesTwoDimensionsAndParametersAlone)
{
    if (RealData("").empty()) GTEST_SKIP() << "no real data here";
    EXPECT_EQ(Cli("process " + RealData("bruker-2d-hsqc").string()).exit, 4);
    EXPECT_EQ(Cli("process " + RealData("bruker-odd-parameters-only").string()).exit, 3);
    EXPECT_EQ(Cli("process " + RealData("jeol-2d-hsqc").string()).exit, 3);
}

} // namespace
} // namespace nmr::test
