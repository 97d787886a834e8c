// Base line, peaks and integrals by the command line, on the sample and on real sets.

#include "cli/cli_run.h"

#include <cmath>
#include <fstream>
#include <regex>
#include <vector>

namespace nmr::test {
namespace {

using CliAnalysis = CliSample;

TEST_F(CliAnalysis, ReportsPeaksAndIntegrals)
{
    const Outcome run = Cli("process " + Quoted(Sample()) +
                            " --json --baseline whittaker --peaks detect=0.1,noise=0.02,interpolate=on"
                            " --integrate 10:5,2:1 --ref-integral 2=3 --out " +
                            Quoted(Path("a.red")) + " --out " + Quoted(Path("a.Ilist")) + " --out " +
                            Quoted(Path("a.int")) + " --out " + Quoted(Path("a.csv")));
    ASSERT_EQ(run.exit, 0);
    const Json json = run.json();
    ASSERT_FALSE(json["peaks"].empty());
    for (const Json& peak : json["peaks"]) {
        const double axis = json["axis"]["first_ppm"].get<double>() +
                            json["axis"]["step_ppm"].get<double>() * peak["point"].get<double>();
        EXPECT_NEAR(peak["ppm"].get<double>(), axis, 1e-5);
        EXPECT_NEAR(peak["hz"].get<double>(), axis * json["ppm0_mhz"].get<double>(), 1e-2);
        EXPECT_GE(peak["height_percent"].get<double>(), 9.9);
        EXPECT_NEAR(peak["top"]["ppm"].get<double>(), axis, std::abs(json["axis"]["step_ppm"].get<double>()));
        EXPECT_GE(peak["top"]["height"].get<double>(), peak["height"].get<double>() * 0.999999);
    }
    ASSERT_EQ(json["integrals"].size(), 2U);
    const Json &left = json["integrals"][0], &right = json["integrals"][1]; // in the order given
    EXPECT_NEAR(left["from_ppm"].get<double>(), 10, 0.01);
    EXPECT_NEAR(right["to_ppm"].get<double>(), 1, 0.01);
    EXPECT_NEAR(right["relative"].get<double>(), 3, 1e-6);
    EXPECT_NEAR(left["relative"].get<double>(), 3 * left["value"].get<double>() / right["value"].get<double>(), 1e-4);
    // The sum of the written points, over the highest magnitude, is the value: their quotient is free of the unit.
    std::ifstream csv(Path("a.csv"));
    double sums[2] = {0, 0};
    for (std::string line; std::getline(csv, line);) {
        double ppm = 0, value = 0;
        if (std::sscanf(line.c_str(), "%lf,%lf", &ppm, &value) != 2) continue;
        for (int i = 0; i < 2; ++i) {
            const Json& region = json["integrals"][static_cast<std::size_t>(i)];
            const double step = std::abs(json["axis"]["step_ppm"].get<double>());
            if (ppm < region["from_ppm"].get<double>() + step / 2 && ppm > region["to_ppm"].get<double>() - step / 2)
                sums[i] += value;
        }
    }
    EXPECT_NEAR(sums[0] / sums[1], left["value"].get<double>() / right["value"].get<double>(), 1e-3);
    EXPECT_NE(ReadText(Path("a.red")).find("Data No.= " + std::to_string(json["peaks"].size())), std::string::npos);
    EXPECT_TRUE(ReadText(Path("a.Ilist")).starts_with("List of Integral Intensity"));
    EXPECT_TRUE(ReadText(Path("a.int")).starts_with("File: "));
}

TEST_F(CliAnalysis, RefusesWhatItCanNotDo)
{
    struct Case {
        const char* options;
        int exit;
    };
    const Case cases[] = {{"--baseline spline", 2},
                          {"--baseline auto:points", 2},
                          {"--baseline off:points=3", 2},
                          {"--baseline auto:degree=3", 2},
                          {"--baseline auto:points=0", 2},
                          {"--baseline auto:lines=1", 2},
                          {"--baseline auto:lines=on,points=7", 0},
                          {"--baseline bernstein:degree=2.5", 2},
                          {"--baseline whittaker:bend=nan", 2},
                          {"--baseline whittaker:bend=2.5", 0},
                          {"--peaks noise", 2},
                          {"--peaks noise=1e300", 2},
                          {"--ref-integral 1=2", 2},
                          {"--integrate 5:4 --ref-integral 1=1e300", 2},
                          {"--peaks loud=1", 2},
                          {"--peaks noise=x", 2},
                          {"--integrate 5", 2},
                          {"--integrate 5:5", 2},
                          {"--integrate 900:800", 5},
                          {"--integrate 5:4 --ref-integral 2=1", 5},
                          {"--ref-integral 1=0", 2},
                          {"--ref-integral x=1", 2},
                          {"--baseline off --peaks", 0}};
    for (const Case& c : cases)
        EXPECT_EQ(Cli("process " + Quoted(Sample()) + " " + c.options).exit, c.exit) << c.options;
}

TEST_F(CliAnalysis, PeaksTakesAValueOnlyWithAKey)
{
    std::filesystem::copy(Sample(), Path("a=b"), std::filesystem::copy_options::recursive);
    const Json plain = Cli("process " + Quoted(Sample()) + " --json --peaks").json()["peaks"];
    ASSERT_FALSE(plain.empty());
    for (const std::string& file : {Sample(), Path("a=b")})
        for (const char* value : {"", "detect=0.9", "negative=off,detect=0.9"}) {
            const Outcome run = Cli("process --json --peaks " + std::string(value) + " " + Quoted(file));
            ASSERT_EQ(run.exit, 0) << file << " " << value;
            if (*value == 0)
                EXPECT_EQ(run.json()["peaks"], plain);
            else
                EXPECT_LT(run.json()["peaks"].size(), plain.size());
        }
}

struct VendorPeak {
    double ppm, height;
};
std::vector<VendorPeak> VendorPeaks(const std::filesystem::path& file)
{
    const std::string text = ReadText(file);
    const std::regex row("<Peak1D F1=\"([^\"]+)\"[^>]*intensity=\"([^\"]+)\"");
    std::vector<VendorPeak> peaks;
    for (std::sregex_iterator i(text.begin(), text.end(), row), end; i != end; ++i)
        peaks.push_back({std::stod((*i)[1]), std::stod((*i)[2])});
    return peaks;
}

TEST(CliAnalysisReal, FindsThePeaksOfTheInstrumentsList)
{
    NMR1D_REAL_DATA(root, "");
    struct Case {
        const char *folder, *file;
        double tolerance_ppm;
    };
    // The last list is of a spectrum that its FID does not give by a transform alone.
    for (const Case& c :
         {Case{"bruker-1h-fid-aspirin-300", "fid", 0.0015}, Case{"bruker-1h-fid-strychnine-400", "fid", 0.0015},
          Case{"bruker-13c-fid-gaba-500", "fid", 0.03}, Case{"bruker-1h-fid-pulsecal", "pdata/1/1r", 0.0015}}) {
        SCOPED_TRACE(c.folder);
        const auto vendor = VendorPeaks(root / c.folder / "pdata/1/peaklist.xml");
        ASSERT_FALSE(vendor.empty());
        double highest = 0;
        for (const VendorPeak& peak : vendor) highest = std::max(highest, peak.height);
        const Outcome run = Cli("process " + Quoted((root / c.folder / c.file).string()) +
                                " --json --baseline whittaker --peaks noise=0.0005,detect=0.02");
        ASSERT_EQ(run.exit, 0);
        const Json json = run.json();
        for (const VendorPeak& peak : vendor) {
            if (peak.height <= 0.05 * highest) continue;
            double nearest = 1e9;
            for (const Json& own : json["peaks"])
                nearest = std::min(nearest, std::abs(own["ppm"].get<double>() - peak.ppm));
            EXPECT_LT(nearest, c.tolerance_ppm) << peak.ppm;
        }
    }
}

/// Integrals over the amounts expected, their mean set to 1.
std::vector<double> Shares(const std::filesystem::path& path, const std::string& options,
                           const std::vector<double>& expected)
{
    const Outcome run = Cli("process " + Quoted(path.string()) + " --json " + options);
    EXPECT_EQ(run.exit, 0);
    std::vector<double> shares;
    double sum = 0, total = 0;
    for (const Json& region : run.exit == 0 ? run.json()["integrals"] : Json::array()) {
        const double amount = expected.empty() ? 1.0 : expected[shares.size()];
        shares.push_back(region["value"].get<double>() / amount);
        sum += region["value"].get<double>();
        total += amount;
    }
    for (double& share : shares) share *= total / sum;
    return shares;
}

TEST(CliAnalysisReal, IntegralsOfKnownCompoundsCountTheirProtons)
{
    NMR1D_REAL_DATA(root, "");
    struct Case {
        const char *path, *regions;
        std::vector<double> protons;
    };
    const Case cases[] = {
        // Acetylsalicylic acid: two ring protons and the methyl group; the third ring proton stands on the solvent's
        // line, the fourth on the acid's broad one.
        {"bruker-1h-fid-aspirin-300", "7.598:7.468,7.128:7.010,2.341:2.211", {1, 1, 3}},
        // What the instrument's own report gives for five regions of the same set.
        {"bruker-1h-fid-aspirin-300",
         "8.379:8.001,7.598:7.468,7.345:7.227,7.128:7.010,2.341:2.211",
         {2.57899, 1, 1.06864, 0.97164, 2.95309}},
        {"jcamp-1h-spectrum-assignments-ethanol/ethanol_nmr.jdx", "3.9:3.5,1.35:1.05", {2, 3}},
        {"jeol-1h-spectrum-hz-ethanol-90", "4:3.3,1.6:0.8", {2, 3}},
    };
    for (const Case& c : cases)
        for (const char* method :
             {"auto", "auto:points=20", "auto:points=40,lines=on --zero-fill off", "whittaker", "bernstein"}) {
            SCOPED_TRACE(std::string(c.path) + " " + method);
            std::filesystem::path path = root / c.path;
            if (std::string(c.path).starts_with("jeol")) path = std::filesystem::directory_iterator(path)->path();
            const auto shares =
                Shares(path, std::string("--baseline ") + method + " --integrate " + c.regions, c.protons);
            ASSERT_EQ(shares.size(), c.protons.size());
            for (const double share : shares) EXPECT_NEAR(share, 1.0, 0.03);
        }
}

TEST(CliAnalysisReal, IntegralsOfAFidAreThoseOfTheOperatorsSpectrum)
{
    NMR1D_REAL_DATA(root, "");
    // The sample holds more than its main compound, so the operator's own spectrum is the measure.
    const std::string regions = "--integrate 8.16:8.03,5.98:5.85,3.76:3.66,2.41:2.28,1.93:1.83,1.5:1.39,1.31:1.2";
    const auto folder = root / "bruker-1h-fid-strychnine-400";
    const auto vendor = Shares(folder / "pdata/1/1r", regions, {});
    const auto own = Shares(folder, "--baseline whittaker " + regions, {});
    ASSERT_EQ(own.size(), vendor.size());
    for (std::size_t i = 0; i < own.size(); ++i) EXPECT_NEAR(own[i], vendor[i], 0.03 * vendor[i]) << i;
}

} // namespace
} // namespace nmr::test
