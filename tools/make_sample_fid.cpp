// make_sample_fid <folder>    writes the sample, a Bruker experiment folder "1", into <folder>
// make_sample_fid --lines     prints its lines as JSON
//
// The FID is what a console with a digital receiver stores. The signal starts at t = 0 and passes a
// linear-phase FIR low-pass that lasts twice the group delay, so the first points rise slowly and the
// decay proper begins near point 68, the fraction of a point included. Output of the filter for a
// damped exponential s(t) = exp(p t), t >= 0, with taps h_j at delays tau_j (unit: one dwell):
//
//     z(n) = sum over tau_j <= n of h_j exp(p (n - tau_j)),
//
// which is exp(p n) times a constant once the filter is full. Line above the carrier: z turns with
// exp(+i w t), so that the index of sum z exp(-2 pi i k t / n) rises with ppm.

#include "core/numbers.h"
#include "sample_molecule.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using nmr::kPi;
using nmr::SampleConsole;
using nmr::SampleLine;
using Complex = std::complex<double>;

constexpr int kTapsPerPoint = 16;

/// Impulse response of the raised cosine that falls to one half at the Nyquist frequency; x in points.
double RaisedCosine(double x)
{
    if (x == 0) return 1;
    const double pole = 1 - 4 * x * x; // 0 at half a point, where sine and pole cancel
    return std::abs(pole) < 1e-9 ? 0.5 : std::sin(2 * kPi * x) / (2 * kPi * x) / pole;
}

/// Windowed raised cosine, symmetric about the group delay. Its step response hardly rings, so that the
/// points before the delay hold next to nothing of the signal and dropping them leaves the base line flat.
struct Filter {
    std::vector<double> delay; ///< rising, in points
    std::vector<double> tap;   ///< their sum is 1
};

Filter MakeFilter(double group_delay)
{
    Filter filter;
    const int half = static_cast<int>(group_delay * kTapsPerPoint);
    double sum = 0;
    for (int j = -half; j <= half; ++j) {
        const double x = static_cast<double>(j) / kTapsPerPoint;
        const double angle = kPi * x / group_delay; // Blackman window, 0 at both ends
        filter.delay.push_back(group_delay + x);
        filter.tap.push_back(RaisedCosine(x) * (0.42 + 0.5 * std::cos(angle) + 0.08 * std::cos(2.0 * angle)));
        sum += filter.tap.back();
    }
    for (double& tap : filter.tap) tap /= sum;
    return filter;
}

/// Adds one line as it leaves the filter, at its full height: the filter falls off within the spectrum, as
/// one that a console would use does not, and areas must stay in the ratio of the protons.
void AddLine(const SampleLine& line, const SampleConsole& console, const Filter& filter, std::vector<Complex>& fid)
{
    const double offset_hz = (line.ppm - console.centre_ppm()) * console.sf_mhz();
    const Complex p(-kPi * line.width_hz / console.sweep_hz, 2.0 * kPi * offset_hz / console.sweep_hz);
    std::vector<Complex> sums; // of h_j exp(-p tau_j), up to each tap
    Complex sum = 0;
    for (std::size_t j = 0; j < filter.tap.size(); ++j) {
        sum += filter.tap[j] * std::exp(-p * filter.delay[j]);
        sums.push_back(sum);
    }
    const double gain = std::abs(sum * std::exp(p * console.group_delay));
    const Complex start = std::polar(line.area * console.proton_amplitude / gain, console.phase_deg * nmr::kDegToRad);
    std::size_t filled = 0;
    for (std::size_t n = 0; n < fid.size(); ++n) {
        while (filled < sums.size() && filter.delay[filled] <= static_cast<double>(n)) ++filled;
        if (filled > 0) fid[n] += start * std::exp(p * static_cast<double>(n)) * sums[filled - 1];
    }
}

/// Normal deviates from a generator whose sequence the standard fixes; the library's own
/// distributions differ from one implementation to the next.
class Noise {
public:
    explicit Noise(std::uint64_t seed) : engine_(seed) {}
    Complex Next() // Box and Muller: both deviates of a pair
    {
        const double radius = std::sqrt(-2.0 * std::log(1.0 - Uniform()));
        return std::polar(radius, 2.0 * kPi * Uniform());
    }

private:
    double Uniform() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
    std::mt19937_64 engine_;
};

/// The receiver's noise passes the same filter: it too is weak until the filter is full.
void AddNoise(const SampleConsole& console, const Filter& filter, std::vector<Complex>& fid)
{
    std::vector<double> energy;
    double sum = 0;
    for (double tap : filter.tap) energy.push_back(sum += tap * tap);
    Noise noise(console.seed);
    std::size_t filled = 0;
    for (std::size_t n = 0; n < fid.size(); ++n) {
        while (filled < energy.size() && filter.delay[filled] <= static_cast<double>(n)) ++filled;
        const double share = filled == 0 ? 0.0 : std::sqrt(energy[filled - 1] / sum);
        fid[n] += console.noise * share * noise.Next();
    }
}

std::string Bytes(const std::vector<Complex>& fid)
{
    std::string bytes;
    bytes.reserve(fid.size() * 8);
    for (const Complex& z : fid)
        for (double part : {z.real(), z.imag()}) {
            const auto value = static_cast<std::uint32_t>(std::lrint(part));
            for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(value >> shift & 0xFFU));
        }
    return bytes;
}

std::string List(std::string_view name, int count, std::initializer_list<double> first)
{
    std::string text = fmt::format("##${}= (0..{})\n", name, count - 1);
    auto value = first.begin();
    for (int i = 0; i < count; ++i) {
        const double shown = value == first.end() ? 0.0 : *value++;
        text += fmt::format("{}{}", shown, i % 16 == 15 || i + 1 == count ? '\n' : ' ');
    }
    return text;
}

constexpr std::string_view kHead = "##TITLE= Parameter file, make_sample_fid\n##JCAMPDX= 5.0\n"
                                   "##DATATYPE= Parameter Values\n##ORIGIN= UXNMR, computed by make_sample_fid\n"
                                   "##OWNER= nmr1d\n";

std::string Acqus(const SampleConsole& c)
{
    std::string text(kHead);
    text += fmt::format("##$AQ_mod= 3\n##$BF1= {}\n##$BYTORDA= 0\n", c.bf1_mhz);
    text += List("CNST", 64, {1, 1, 145});
    text += List("D", 64, {0, 2});
    text += fmt::format("##$DATE= {}\n##$DE= 6.5\n##$DECIM= {}\n##$DECNUC= <off>\n##$DIGMOD= 1\n##$DS= 2\n"
                        "##$DSPFVS= 20\n##$DTYPA= 0\n##$FW= 125000\n##$GRPDLY= {}\n##$INSTRUM= <computed>\n"
                        "##$NC= 0\n##$NS= 16\n##$NUC1= <1H>\n##$NUC2= <off>\n##$NUCLEUS= <off>\n##$O1= {}\n",
                        c.date, c.decimation, c.group_delay, c.o1_hz);
    text += List("P", 64, {10, 10, 20});
    text += fmt::format("##$PROBHD= <5 mm computed>\n##$PULPROG= <zg30>\n##$RG= 101\n##$RO= 0\n##$SFO1= {:.9f}\n"
                        "##$SOLVENT= <CDCl3>\n##$SW= {:.12f}\n##$SW_h= {}\n##$TD= {}\n##$TE= 298\n##END=\n",
                        c.sfo1_mhz(), c.sweep_hz / c.sfo1_mhz(), c.sweep_hz, 2 * c.points);
    return text;
}

std::string Procs(const SampleConsole& c)
{
    const double offset = c.centre_ppm() + 0.5 * c.sweep_hz / c.sf_mhz();
    return std::string(kHead) +
           fmt::format("##$BC_mod= 2\n##$BYTORDP= 0\n##$DTYPP= 0\n##$FT_mod= 6\n##$LB= 0.3\n##$NC_proc= 0\n"
                       "##$OFFSET= {:.6f}\n##$PHC0= 0\n##$PHC1= 0\n##$REVERSE= no\n##$SF= {:.9f}\n##$SI= {}\n"
                       "##$SW_p= {}\n##$WDW= 1\n##END=\n",
                       offset, c.sf_mhz(), c.points, c.sweep_hz);
}

bool WriteFile(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) fmt::print(stderr, "cannot write {}\n", path.string());
    return static_cast<bool>(out);
}

int WriteSample(const std::filesystem::path& folder)
{
    const SampleConsole console;
    const auto experiment = folder / "1";
    const auto processed = experiment / "pdata" / "1";
    std::error_code failed;
    std::filesystem::create_directories(processed, failed);
    if (failed) {
        fmt::print(stderr, "cannot create {}: {}\n", processed.string(), failed.message());
        return 1;
    }
    const Filter filter = MakeFilter(console.group_delay);
    std::vector<Complex> fid(static_cast<std::size_t>(console.points));
    for (const SampleLine& line : nmr::SampleLines(console)) AddLine(line, console, filter, fid);
    AddNoise(console, filter, fid);
    const bool written =
        WriteFile(experiment / "acqus", Acqus(console)) && WriteFile(experiment / "acqu", Acqus(console)) &&
        WriteFile(processed / "procs", Procs(console)) && WriteFile(processed / "proc", Procs(console)) &&
        WriteFile(processed / "title", "Ethyl vanillin in CDCl3\n1H, computed sample\n") &&
        WriteFile(experiment / "fid", Bytes(fid));
    return written ? 0 : 1;
}

void PrintLines()
{
    const SampleConsole c;
    fmt::print("{{\n  \"compound\": \"ethyl vanillin\", \"solvent\": \"CDCl3\", \"nucleus\": \"1H\",\n"
               "  \"obs_mhz\": {:.9f}, \"ppm0_mhz\": {:.9f}, \"sweep_hz\": {}, \"points\": {}, \"group_delay\": {}, "
               "\"phase_deg\": {},\n  \"lines\": [",
               c.sfo1_mhz(), c.sf_mhz(), c.sweep_hz, c.points, c.group_delay, c.phase_deg);
    std::string_view comma = "";
    for (const SampleLine& line : nmr::SampleLines(c)) {
        fmt::print("{}\n    {{\"name\": \"{}\", \"ppm\": {:.9f}, \"area\": {}, \"width_hz\": {}}}", comma, line.name,
                   line.ppm, line.area, line.width_hz);
        comma = ",";
    }
    fmt::print("\n  ]\n}}\n");
}

} // namespace

int main(int count, char** arguments)
{
    const std::string_view argument = count == 2 ? arguments[1] : "";
    if (argument == "--lines") {
        PrintLines();
        return 0;
    }
    if (argument.empty() || argument.starts_with('-')) {
        fmt::print(stderr, "usage: make_sample_fid <folder> | --lines\n");
        return 2;
    }
    return WriteSample(argument);
}
