#pragma once
// One small file or folder of every form that is read, all made from the same lines. make_samples writes
// them out; the tests read each and look for the lines.

#include <complex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nmr::samples {

/// A Lorentzian line of kWidthHz, full width at half height.
struct KnownLine {
    double ppm = 0, height = 0;
};
// No line stands where the mirror image of another would, so that a turned axis shows.
inline constexpr KnownLine kLines[] = {{8.125, 1.0}, {5.625, 0.5}, {2.5, 0.25}};

inline constexpr double kMhz0 = 400.0; ///< 0 ppm
inline constexpr double kCarrierPpm = 5.0;
inline constexpr double kSweepHz = 4000.0; ///< 0 to 10 ppm
inline constexpr double kWidthHz = 20.0;
inline constexpr double kObserveMhz = kMhz0 * (1 + 1e-6 * kCarrierPpm);
inline constexpr int kFidPoints = 256, kSpectrumPoints = 1024;

enum class Kind { fid, spectrum };

/// What a cut at the end of a file may do without a word: nothing, or lose lines of a text that has no
/// mark of its end, or lose nothing that the data need (titles).
enum class Cut { shows, may_be_silent };

struct SampleFile {
    std::string path, bytes;
    Cut cut = Cut::shows;
};

struct Sample {
    std::string name, what;
    int family = 0;
    Kind kind = Kind::fid;
    std::string entry; ///< what to open, below the sample's folder
    std::vector<SampleFile> files;
    std::vector<double> row_heights{1}; ///< of each row, times the lines' heights
    bool has_imaginary = true;
};

/// The signal at point n of the FID, in the sense of exp(+i w t) for a line above the carrier; nothing
/// before `delay`, which may be a fraction.
std::complex<double> FidPoint(double n, double delay = 0);
/// The spectrum at a shift: absorption and dispersion.
std::complex<double> SpectrumPoint(double ppm);
/// Shift of point i of a spectrum of kSpectrumPoints, from 10 ppm down.
double FallingPpm(int i);

/// All samples but those of the native form, whose bytes only its writer knows.
std::vector<Sample> AllSamples();

/// Ordinates as text of one of the forms of JCAMP-DX tables, by an encoder of its own: tests of the
/// reader must not go by the program's writer.
enum class TableForm { affn, pac, sqz, dif, difdup };
std::string TableText(const std::vector<long>& values, TableForm form);

} // namespace nmr::samples
