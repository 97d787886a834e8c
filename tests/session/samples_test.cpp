// The program's own samples, read as a user reads them: every form tells of the same lines.

#include "core/numbers.h"
#include "samples/samples.h"
#include "session/obliging_asker.h"
#include "session/rig.h"

#include <fmt/format.h>

#include <cmath>

namespace nmr::test {
namespace {

using namespace samples;

/// A row as magnitudes, or as real values where that is all there is.
struct Curve {
    std::vector<double> ppm, height;
};

Curve CurveOf(const DataSet& set, std::size_t row, bool has_imaginary)
{
    Curve curve;
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.par.POINT); ++i) {
        const auto re = static_cast<double>(set.spec.DataRe[row][i]), im = static_cast<double>(set.spec.DataIm[row][i]);
        curve.ppm.push_back(set.spec.XAxis[i]);
        curve.height.push_back(has_imaginary ? std::hypot(re, im) : re);
    }
    return curve;
}

struct Measured {
    double ppm = 0, height = 0, width_hz = 0;
};

/// Where the curve crosses half the height, from `top` in one direction.
double HalfWay(const Curve& c, std::size_t top, std::ptrdiff_t step)
{
    const double half = c.height[top] / 2;
    auto i = static_cast<std::ptrdiff_t>(top);
    while (i + step >= 0 && i + step < std::ssize(c.height) && c.height[static_cast<std::size_t>(i + step)] > half)
        i += step;
    const auto inside = static_cast<std::size_t>(i), outside = static_cast<std::size_t>(i + step);
    if (outside >= c.height.size()) return c.ppm[inside];
    const double share = (c.height[inside] - half) / (c.height[inside] - c.height[outside]);
    return c.ppm[inside] + share * (c.ppm[outside] - c.ppm[inside]);
}

/// The highest point within 0.3 ppm.
Measured Measure(const Curve& c, double ppm)
{
    std::size_t top = c.ppm.size();
    for (std::size_t i = 0; i < c.ppm.size(); ++i)
        if (std::fabs(c.ppm[i] - ppm) < 0.3 && (top == c.ppm.size() || c.height[i] > c.height[top])) top = i;
    if (top == c.ppm.size()) return {};
    return {c.ppm[top], c.height[top], std::fabs(HalfWay(c, top, 1) - HalfWay(c, top, -1)) * kMhz0};
}

void Write(const std::filesystem::path& folder, const Sample& sample)
{
    for (const SampleFile& file : sample.files) WriteText(folder / file.path, file.bytes);
}

/// Heights are compared with that of the first line of the first row.
void ExpectLines(const DataSet& set, const std::vector<double>& rows, bool has_imaginary)
{
    ASSERT_EQ(set.RowCount, static_cast<std::int32_t>(rows.size()));
    const double unit = Measure(CurveOf(set, 0, has_imaginary), kLines[0].ppm).height;
    const double width = has_imaginary ? std::sqrt(3.0) * kWidthHz : kWidthHz;
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (const KnownLine& line : kLines) {
            const Measured found = Measure(CurveOf(set, row, has_imaginary), line.ppm);
            EXPECT_NEAR(found.ppm, line.ppm, 0.006) << "row " << row;
            EXPECT_NEAR(found.height / unit, rows[row] * line.height, 0.03) << line.ppm << " ppm, row " << row;
            EXPECT_NEAR(found.width_hz, width, 0.12 * width) << line.ppm << " ppm, row " << row;
        }
}

TEST(Samples, EveryFormTellsOfTheSameLines)
{
    for (const Sample& sample : AllSamples()) {
        SCOPED_TRACE(sample.name);
        Rig rig;
        rig.Boot();
        const std::filesystem::path folder = rig.folder.path() / sample.name;
        Write(folder, sample);
        ObligingAsker asker;
        if (sample.family == 14 && sample.name != "csv-block")
            asker.table = {{"OFR", fmt::format("{:.6f}", sample.kind == Kind::fid ? kObserveMhz : kMhz0)},
                           {"OBNUC", "1H"}};
        Session s{rig.g, asker, {}, {}, {}, {}};
        // A window would change the widths.
        s.run_fft_form = [&](FftForm& form) {
            EXPECT_TRUE(form.SetZeroFill(kSpectrumPoints / kFidPoints));
            SetWindowField(rig.g.Slots[0].par, WindowField::bf1, 0);
            EXPECT_TRUE(form.SetWindowKind(WindowKind::exponential));
            EXPECT_TRUE(form.Command3());
            return rig.g.DialogResult;
        };
        const Status read = Read_Path(s, (folder / sample.entry).string());
        ASSERT_TRUE(read) << read.error().text;
        const DataSet& set = rig.g.Slots[0];
        EXPECT_EQ(FamilyOf(rig.g.DataKind), sample.family);
        EXPECT_EQ(set.par.OBNUC, "1H");
        EXPECT_EQ(set.par.POINT, kSpectrumPoints);
        DataSet shown = set;
        // Times tell the carrier, not where 0 ppm is.
        if (sample.family == 14 && sample.kind == Kind::fid)
            for (double& ppm : shown.spec.XAxis) ppm += kCarrierPpm;
        ExpectLines(shown, sample.row_heights, sample.has_imaginary);
    }
}

TEST(Samples, TheNativeFormTellsOfThemToo)
{
    Rig rig;
    rig.Boot();
    ASSERT_TRUE(Read_Path(rig.s, std::string(NMR1D_BINARY_DIR) + "/samples/native/sample.tvo1"));
    ExpectLines(rig.g.Slots[0], {1}, true);
}

} // namespace
} // namespace nmr::test
