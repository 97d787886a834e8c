// FIDs of Bruker instruments, transformed with the operator's window, size and phases, beside the real
// spectrum that the instrument's software made of them.

#include "session/rig.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <numeric>

namespace nmr::test {
namespace {

using Points = std::vector<std::complex<double>>;

/// Row 0 with rising ppm; the imaginary part turned so that it goes with that direction.
Points Rising(const DataSet& set)
{
    Points out;
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.par.POINT); ++i)
        out.emplace_back(static_cast<double>(set.spec.DataRe[0][i]), static_cast<double>(set.spec.DataIm[0][i]));
    if (set.par.Resolution2 >= 0) return out;
    std::ranges::reverse(out);
    for (auto& z : out) z = std::conj(z);
    return out;
}

Points ReadAll(const std::string& path)
{
    Rig rig;
    rig.Boot();
    EXPECT_TRUE(Read_Path(rig.s, path));
    return Rising(rig.g.Slots[0]);
}

double Correlation(const Points& a, const Points& b)
{
    double ab = 0, aa = 0, bb = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        ab += a[i].real() * b[i].real();
        aa += a[i].real() * a[i].real();
        bb += b[i].real() * b[i].real();
    }
    return ab / std::sqrt(aa * bb);
}

/// Largest phase between the two, in degrees, over the ten strongest lines above 5 % of the highest.
double LargestPhase(const Points& own, const Points& vendor)
{
    const std::size_t n = vendor.size(), apart = 3 * n / 1000, half = 25;
    std::vector<std::size_t> order(n), lines;
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, std::greater{}, [&](std::size_t i) { return std::abs(vendor[i]); });
    double largest = 0;
    for (const std::size_t i : order) {
        if (lines.size() == 10 || std::abs(vendor[i]) < 0.05 * std::abs(vendor[order[0]])) break;
        if (std::ranges::any_of(lines, [&](std::size_t k) { return (i > k ? i - k : k - i) <= apart; })) continue;
        lines.push_back(i);
        std::complex<double> sum;
        for (std::size_t k = i - std::min(i, half); k < std::min(n, i + half + 1); ++k)
            sum += own[k] * std::conj(vendor[k]);
        largest = std::max(largest, std::abs(std::arg(sum)) * 57.29577951308232);
    }
    return largest;
}

struct PhaseCase {
    std::string folder;
    double correlation, degrees;
};

// Left out: sets whose 1r is a magnitude or power spectrum.
const PhaseCase kCases[] = {
    {"bruker-13c-fid-600", 0.999, 2},
    // The instrument's software predicted 22 points in front of the FID, which zeros stand for here.
    {"bruker-13c-fid-dspfvs-minus1-600", 0.98, 16},
    // Its noise is another than that of the FID.
    {"bruker-13c-fid-gaba-500", 0.85, 4},
    {"bruker-1h-fid-aspirin-300", 0.999, 2},
    {"bruker-1h-fid-coffee-400", 0.999, 2},
    {"bruker-1h-fid-strychnine-400", 0.999, 2},
    {"bruker-1h-noesy-coffee-400", 0.999, 2},
    {"bruker-1h-noesy-urine-700-be", 0.999, 2},
    {"bruker-31p-fid-600", 0.999, 2},
};

TEST(VendorStart, TheFirstPictureIsTheOperatorsOwn)
{
    if (RealData("").empty()) GTEST_SKIP() << "no real data here";
    for (const PhaseCase& c : kCases) {
        SCOPED_TRACE(c.folder);
        const std::string folder = RealData(c.folder).string();
        const Points vendor = ReadAll(folder + "/pdata/1/1r"), own = ReadAll(folder + "/fid");
        ASSERT_EQ(own.size(), vendor.size());
        const double correlation = Correlation(own, vendor), degrees = LargestPhase(own, vendor);
        EXPECT_GT(correlation, c.correlation);
        EXPECT_LT(degrees, c.degrees);
        std::printf("%-36s correlation %.4f, largest phase %.1f degrees\n", c.folder.c_str(), correlation, degrees);
    }
}

} // namespace
} // namespace nmr::test
