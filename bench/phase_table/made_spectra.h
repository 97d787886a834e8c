#pragma once
// Spectra of known phase over a wide range of kinds, each from a seed.

#include <cstdint>
#include <string>
#include <vector>

namespace nmr::bench {

struct MadeSpectrum {
    std::string kind;
    std::vector<float> re, im;
    /// What turns it into phase: i turns by p0 + i * p1 / n degrees.
    double p0_deg = 0, p1_deg = 0;
    bool dept = false; ///< of a pulse program whose lines have both signs
    std::string nucleus;
};

/// Number of kinds.
int MadeKinds();
std::string KindName(int kind);
MadeSpectrum MakeSpectrum(int kind, unsigned seed, int points = 65536);

} // namespace nmr::bench
