// Our own transform of measured FIDs beside the spectra that the instruments' software made of them.
//
// Magnitudes are compared, since the phases were set by hand. Our side takes the line broadening and the
// number of points of the vendor's, as its procs tells.

#include "formats/bruker.h"
#include "session/rig.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace nmr::test {
namespace {

struct Spectrum {
    std::vector<double> height;
    double first_ppm = 0, step_ppm = 0; ///< rising

    double PpmAt(double index) const { return first_ppm + index * step_ppm; }
    double IndexOf(double ppm) const { return (ppm - first_ppm) / step_ppm; }
};

Spectrum Magnitude(const DataSet& set)
{
    Spectrum out;
    const auto n = static_cast<std::size_t>(set.par.POINT);
    for (std::size_t i = 0; i < n; ++i) {
        const auto re = static_cast<double>(set.spec.DataRe[0][i]), im = static_cast<double>(set.spec.DataIm[0][i]);
        out.height.push_back(std::hypot(re, im));
    }
    out.first_ppm = set.spec.XAxis[0];
    out.step_ppm = (set.spec.XAxis[n - 1] - set.spec.XAxis[0]) / static_cast<double>(n - 1);
    if (out.step_ppm < 0) {
        std::ranges::reverse(out.height);
        out.first_ppm = set.spec.XAxis[n - 1];
        out.step_ppm = -out.step_ppm;
    }
    return out;
}

struct Top {
    double index = 0, height = 0;
};

/// The top of a parabola through the highest of the points and its neighbours.
Top TopBetween(const Spectrum& s, double from, double to)
{
    const auto last = static_cast<double>(s.height.size()) - 2;
    const auto low = static_cast<std::size_t>(std::clamp(std::floor(from), 1.0, last));
    const auto high = static_cast<std::size_t>(std::clamp(std::ceil(to), 1.0, last));
    std::size_t best = low;
    for (std::size_t i = low; i <= high; ++i)
        if (s.height[i] > s.height[best]) best = i;
    const double left = s.height[best - 1], mid = s.height[best], right = s.height[best + 1];
    const double bend = left - 2 * mid + right;
    const double shift = bend < 0 ? std::clamp(0.5 * (left - right) / bend, -0.5, 0.5) : 0;
    return {static_cast<double>(best) + shift, mid - 0.25 * (left - right) * shift};
}

/// The strongest points that are the highest within 0.3 % of the spectrum to both sides: lines, not the
/// ripples on the foot of one.
std::vector<Top> StrongestLines(const Spectrum& s, std::size_t count)
{
    const std::size_t n = s.height.size(), apart = 3 * n / 1000;
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, std::greater{}, [&](std::size_t i) { return s.height[i]; });
    std::vector<char> covered(n, 0); // by a higher point
    std::vector<Top> lines;
    for (std::size_t i : order) {
        if (lines.size() == count) break;
        const std::size_t from = i - std::min(i, apart), to = std::min(i + apart + 1, n);
        if (covered[i] == 0) lines.push_back(TopBetween(s, static_cast<double>(i), static_cast<double>(i)));
        for (std::size_t k = from; k < to; ++k) covered[k] = 1;
    }
    return lines;
}

/// Full width at half height of a line, ppm.
double WidthOf(const Spectrum& s, const Top& top)
{
    const double half = top.height / 2;
    double width = 0;
    for (const int step : {-1, 1}) {
        auto i = static_cast<std::ptrdiff_t>(std::lround(top.index));
        const auto at = [&](std::ptrdiff_t k) { return s.height[static_cast<std::size_t>(k)]; };
        while (i + step > 0 && i + step + 1 < std::ssize(s.height) && at(i + step) > half) i += step;
        const double share = std::clamp((at(i) - half) / (at(i) - at(i + step)), 0.0, 1.0);
        width += std::fabs(static_cast<double>(i) + step * share - top.index);
    }
    return width * s.step_ppm;
}

struct VendorCase {
    std::string folder;
    double height = 0.1;   ///< largest relative deviation of a line's height from the others'
    double weakest = 0.05; ///< smallest line looked at, of the strongest
    double offset = 0.1;   ///< largest median deviation of place, in points
    std::string fid = "/fid", spectrum = "/pdata/1/1r", procs = "/pdata/1/procs";

    std::string Path(const std::string& name) const { return RealData(folder).string() + name; }
};

/// The transform with the vendor's line broadening, at the vendor's number of points where it can be had.
Spectrum OwnSpectrum(const VendorCase& c, std::size_t points)
{
    Rig rig;
    rig.Boot();
    const auto procs = BrukerParameters::Read(c.Path(c.procs));
    const double lb = procs && procs->Number("WDW") == 1.0 ? procs->Number("LB").value_or(0) : 0;
    rig.s.run_fft_form = [&](FftForm& form) {
        ParamBlock& par = rig.g.Slots[0].par;
        form.SetAutoPhase(false);
        const auto raw = static_cast<std::size_t>(par.FIDPointsRaw);
        EXPECT_TRUE(form.SetZeroFill(static_cast<std::int32_t>(std::max<std::size_t>(points / raw, 1))));
        par.WindowFunc = static_cast<std::int16_t>(WindowKind::exponential);
        SetWindowField(par, WindowField::bf1, lb);
        EXPECT_TRUE(form.SetWindowKind(WindowKind::exponential));
        EXPECT_TRUE(form.Command3());
        return rig.g.DialogResult;
    };
    const Status read = Read_Path(rig.s, c.Path(c.fid));
    EXPECT_TRUE(read);
    return read ? Magnitude(rig.g.Slots[0]) : Spectrum{};
}

double Median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values.empty() ? 0 : values[values.size() / 2];
}

struct Deviations {
    std::vector<double> points; ///< own minus vendor, in points of the coarser grid
    std::vector<double> ratio;  ///< own height over vendor height
    std::vector<double> width;  ///< own width over vendor width
};

Deviations Compare(const Spectrum& own, const Spectrum& vendor, double weakest)
{
    const double grid = std::max(vendor.step_ppm, own.step_ppm), reach = 10 * grid / own.step_ppm;
    Deviations out;
    const std::vector<Top> lines = StrongestLines(vendor, 10);
    for (const Top& line : lines) {
        if (line.height < weakest * lines[0].height) break;
        const double ppm = vendor.PpmAt(line.index), at = own.IndexOf(ppm);
        const Top top = TopBetween(own, at - reach, at + reach);
        out.points.push_back((own.PpmAt(top.index) - ppm) / grid);
        out.ratio.push_back(top.height / line.height);
        out.width.push_back(WidthOf(own, top) / WidthOf(vendor, line));
    }
    return out;
}

// Left out: the pulse calibration (a power spectrum, mirrored about its middle) and pdata/999 of the set
// labelled 15N, which is no transform of that FID.
const VendorCase kCases[] = {
    {"bruker-1h-fid-aspirin-300"},
    {"bruker-1h-fid-coffee-400"},
    {"bruker-1h-noesy-coffee-400"},
    {"bruker-13c-fid-gaba-500"},
    {"bruker-31p-fid-600"},
    {"bruker-13c-fid-600"},
    {"bruker-1h-fid-strychnine-400"},
    {"bruker-13c-fid-dspfvs-minus1-600"},
    {"bruker-1h-noesy-urine-700-be"},
    // The real part alone: it stands for the magnitude where the phase is right.
    {"bruker-1h-fid-odnp-labelled-15n", 0.25},
    // A broad pattern, eight times zero filled: only its three horns are lines.
    {"bruker-flat-23na", 0.1, 0.5, 1.0, "/001001.FID", "/001001.1R", "/001001.FQS"},
};

TEST(VendorSpectrum, OwnMagnitudeAgreesInPlaceAndHeight)
{
    if (RealData("").empty()) GTEST_SKIP() << "no real data here";
    for (const VendorCase& c : kCases) {
        SCOPED_TRACE(c.folder);
        Rig rig;
        rig.Boot();
        ASSERT_TRUE(Read_Path(rig.s, c.Path(c.spectrum)));
        const Spectrum vendor = Magnitude(rig.g.Slots[0]);
        const Spectrum own = OwnSpectrum(c, vendor.height.size());
        EXPECT_EQ(own.height.size(), vendor.height.size());
        const Deviations found = Compare(own, vendor, c.weakest);
        ASSERT_GE(found.points.size(), 3U);
        const double ratio = Median(found.ratio), offset = Median(found.points), width = Median(found.width);
        double farthest = 0, highest = 0;
        for (double points : found.points) farthest = std::max(farthest, std::abs(points));
        for (double r : found.ratio) highest = std::max(highest, std::abs(r / ratio - 1));
        EXPECT_LT(farthest, 2);
        EXPECT_LT(std::abs(offset), c.offset) << "all lines are displaced";
        EXPECT_LT(highest, c.height);
        EXPECT_NEAR(width, 1, c.height);
        std::printf("%-40s %2zu lines: median %+.3f, farthest %.3f points; heights within %.1f %%, widths x %.3f\n",
                    c.folder.c_str(), found.points.size(), offset, farthest, 100 * highest, width);
    }
}

} // namespace
} // namespace nmr::test
