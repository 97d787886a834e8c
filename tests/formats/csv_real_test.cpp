// Published text tables, against figures that were measured outside this program: first points and
// counts as they stand in the files, strongest lines from a plain Fourier transform of them.

#include "formats/csv_fixture.h"

#include "core/numbers.h"
#include "support/files.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace nmr {
namespace {

using namespace test;
using Complex = std::complex<double>;

struct RealCase {
    const char* file;
    const char* summary;
    std::int32_t points, rows;
    std::int16_t smode;
    double width_hz;
    std::vector<Complex> first;
    double line_hz; ///< of the strongest line of row 0: above the carrier, or on the axis
};

// clang-format off
const RealCase kCases[] = {
    {"ascii-fid-3column/1D_COMMA_XRI.txt", "separator comma, decimal point, positions (s) in column 1, real 2, imaginary 3, FID",
     2048, 1, 0, 50000, {{0.3830222215594888, 0.3213938048432694}, {0.0588205839479093, 0.49328423440025537}, {-0.29289874058538184, 0.3972781873277558}}, 6005.859},
    {"ascii-fid-3column/1D_COMMA_RI.txt", "separator comma, decimal point, real 1, imaginary 2, FID",
     2048, 1, 0, 2048, {{0.3830222216, 0.3213938048}, {0.0588205839, 0.4932842344}, {-0.2928987406, 0.3972781873}}, 6005.859 / 50000 * 2048},
    {"ascii-spectrum-columns/1D_TAB_XRI.txt", "separator tab, decimal point, positions (Hz) in column 1, real 2, imaginary 3, spectrum",
     2048, 1, 1, 50000, {{0.06401227078590035, -0.07507227570469205}, {0.06438099444999779, -0.07503421671887212}}, 6005.859},
    {"ascii-spectrum-columns/1D_COMMA_XR.txt", "separator comma, decimal point, positions (Hz) in column 1, real 2, spectrum",
     2048, 1, 1, 50000, {{0.06401227078590035, 0}, {0.06438099444999779, 0}}, 6030.273},
    {"csv-fid-rows-benchtop/data.csv", "separator comma, decimal point, each line a row of real and imaginary values in turn, FID",
     1024, 4, 0, 1024, {{-40.4298, -2.71261}, {-21.5172, -34.6912}, {14.4276, -39.414}, {38.7331, -13.12}}, 0.1376953 * 1024},
    {"csv-fid-semicolon-decimal-comma/csv_example.csv",
     "separator semicolon, decimal comma, 1 head line, positions (\xC2\xB5s) in column 1, real 2, imaginary 4, FID",
     1024, 1, 0, 50000, {{2.70e4, 6.00e3}, {5.00e3, 2.50e4}, {-3.70e4, -8.90e4}}, -7121.3},
};
// clang-format on

std::string TextOf(const char* file)
{
    return ReadText(RealData(".") / file);
}

/// Magnitude of the plain transform at an offset; of a spectrum, of the point that stands there.
double MagnitudeAt(const DataSet& set, double hz)
{
    const auto re = set.spec.DataRe[0], im = set.spec.DataIm[0];
    if (set.par.SMODE == 1) {
        const auto at = static_cast<std::size_t>(PpmToPoint(set, hz / set.par.OBFRQ0PPM));
        return std::hypot(re[at], im[at]);
    }
    Complex sum = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.par.POINT); ++i)
        sum += Complex(re[i], im[i]) * std::polar(1.0, -2 * std::numbers::pi * hz * static_cast<double>(i) /
                                                           static_cast<double>(set.par.FREQU));
    return std::abs(sum);
}

TEST(RealCsv, TablesAreReadAsTheyStand)
{
    NMR1D_REAL_DATA(readme, "README.md");
    for (const RealCase& c : kCases) {
        SCOPED_TRACE(c.file);
        const std::string text = TextOf(c.file);
        EXPECT_EQ(ProposeCsv(text).Summary(), c.summary);
        const CsvRead read(text);
        ASSERT_TRUE(read.status) << read.status.error().text;
        const DataSet& set = read.set();
        EXPECT_EQ(set.par.POINT, c.points);
        EXPECT_EQ(set.RowCount, c.rows);
        ASSERT_EQ(set.par.SMODE, c.smode);
        EXPECT_NEAR(static_cast<double>(set.par.FREQU), c.width_hz, 1e-6 * c.width_hz);
        for (std::size_t i = 0; i < c.first.size(); ++i) {
            EXPECT_EQ(set.spec.DataRe[0][i], static_cast<float>(c.first[i].real())) << i;
            EXPECT_EQ(set.spec.DataIm[0][i], static_cast<float>(c.first[i].imag())) << i;
        }
        const double there = MagnitudeAt(set, c.line_hz);
        EXPECT_GT(there, 1.5 * MagnitudeAt(set, -c.line_hz)) << "not mirrored";
        for (double hz = -c.width_hz / 2; hz < c.width_hz / 2; hz += c.width_hz / 499)
            EXPECT_LE(MagnitudeAt(set, hz), 1.01 * there) << hz;
    }
}

/// A FID with times, the same without, and the spectrum made of it elsewhere: one line, one place.
TEST(RealCsv, EveryFormOfOneExperimentHasItsLineAtOnePlace)
{
    NMR1D_REAL_DATA(readme, "README.md");
    const auto with_frequency = [](CsvChoice& choice) {
        choice.parameters[1] = "100";
        choice.parameters[2] = "50000";
    };
    const CsvRead timed(TextOf(kCases[0].file), with_frequency), plain(TextOf(kCases[1].file), with_frequency);
    const CsvRead spectrum(TextOf(kCases[2].file), with_frequency);
    ASSERT_TRUE(timed.status && plain.status && spectrum.status);
    EXPECT_TRUE(timed.set().Warnings.empty());
    EXPECT_EQ(timed.par().FREQU, plain.par().FREQU);
    for (std::size_t i = 0; i < 2048; ++i) {
        EXPECT_NEAR(timed.set().spec.DataRe[0][i], plain.set().spec.DataRe[0][i], 5e-9F);
        EXPECT_NEAR(timed.set().spec.DataIm[0][i], plain.set().spec.DataIm[0][i], 5e-9F);
    }
    EXPECT_NEAR(spectrum.set().spec.XAxis[0], -250, 1e-9);
    // The spectrum is the plain transform of the FID but for the first point's weight.
    for (const double hz : {6005.859375, 4003.90625, -1000.9765625}) {
        const double in_fid = MagnitudeAt(timed.set(), hz), in_spectrum = MagnitudeAt(spectrum.set(), hz);
        EXPECT_NEAR(in_fid, in_spectrum, 0.35) << hz;
    }
}

} // namespace
} // namespace nmr
