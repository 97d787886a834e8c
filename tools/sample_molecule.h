#pragma once
// Every number of the bundled sample: the lines of ethyl vanillin (3-ethoxy-4-hydroxybenzaldehyde) in
// CDCl3 with TMS, and the console that pretends to have measured them. make_sample_fid writes the
// data set from this table and the tests look for what stands here.
//
// Shifts and couplings are those commonly tabulated for the compound, rounded to 0.01 ppm and 0.1 Hz;
// multiplets are expanded to first order. Widths and the amounts of TMS, residual CHCl3 and water are
// of our choosing.

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace nmr {

/// Splitting by `partners` equivalent protons.
struct SampleCoupling {
    double hz = 0;
    int partners = 0;
};

struct SampleMultiplet {
    std::string_view name;
    double shift_ppm = 0;
    double protons = 0;  ///< relative area of the whole multiplet
    double width_hz = 1; ///< Lorentzian, full width at half height
    std::array<SampleCoupling, 2> couplings{};
};

inline constexpr SampleMultiplet kSampleMultiplets[] = {
    {"CHO", 9.82, 1.0, 1.0, {}},
    {"H-6", 7.42, 1.0, 0.7, {{{8.1, 1}, {1.8, 1}}}},
    {"H-2", 7.40, 1.0, 0.7, {{{1.8, 1}}}},
    {"CHCl3", 7.26, 0.15, 0.8, {}},
    {"H-5", 7.03, 1.0, 1.0, {{{8.1, 1}}}},
    {"OH", 6.30, 1.0, 6.0, {}},
    {"OCH2", 4.18, 2.0, 0.9, {{{7.0, 3}}}},
    {"water", 1.56, 0.1, 2.0, {}},
    {"CH3", 1.48, 3.0, 0.9, {{{7.0, 2}}}},
    {"TMS", 0.0, 0.6, 0.7, {}},
};

/// What stands in acqus and procs, and what they don't tell.
struct SampleConsole {
    double bf1_mhz = 500.13;
    double o1_hz = 3001.23;
    double sr_hz = 5.75;       ///< SF - BF1: the sample's own 0 ppm
    double sweep_hz = 10000.0; ///< 20 MHz / decimation
    std::int32_t points = 65536;
    int decimation = 2000;
    double group_delay = 67.984130859375; ///< complex points
    double phase_deg = 52.0;              ///< of the receiver, the same for all lines
    double proton_amplitude = 800000.0;   ///< stored units at t = 0 for one proton
    double noise = 3000.0;                ///< standard deviation of the real and of the imaginary part, stored units
    std::uint64_t seed = 20240229;
    std::int64_t date = 1709208000; ///< seconds since 1970

    double sfo1_mhz() const { return bf1_mhz + o1_hz * 1e-6; }
    double sf_mhz() const { return bf1_mhz + sr_hz * 1e-6; }
    double centre_ppm() const { return (sfo1_mhz() - sf_mhz()) * 1e6 / sf_mhz(); }
};

/// One Lorentzian line.
struct SampleLine {
    std::string_view name;
    double ppm = 0;
    double area = 0; ///< protons
    double width_hz = 0;
};

/// All lines, high to low ppm within each multiplet.
inline std::vector<SampleLine> SampleLines(const SampleConsole& console = {})
{
    std::vector<SampleLine> lines;
    for (const SampleMultiplet& multiplet : kSampleMultiplets) {
        std::vector<SampleLine> parts{{multiplet.name, multiplet.shift_ppm, multiplet.protons, multiplet.width_hz}};
        for (const SampleCoupling& coupling : multiplet.couplings) {
            std::vector<SampleLine> split;
            for (const SampleLine& part : parts) {
                double share = 1.0 / static_cast<double>(1 << coupling.partners); // binomial, over 2^n
                for (int k = 0; k <= coupling.partners; ++k) {
                    SampleLine line = part;
                    line.ppm += (0.5 * coupling.partners - k) * coupling.hz / console.sf_mhz();
                    line.area *= share;
                    split.push_back(line);
                    share *= static_cast<double>(coupling.partners - k) / (k + 1);
                }
            }
            parts = split;
        }
        lines.insert(lines.end(), parts.begin(), parts.end());
    }
    return lines;
}

} // namespace nmr
