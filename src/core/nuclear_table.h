#pragma once
// The table of nuclides: names and resonance data, read from Nuclear.dat, with a built-in copy for
// a missing file.

#include <string>
#include <string_view>
#include <vector>

namespace nmr {

struct Nuclide {
    std::string name;      ///< upper case as written in data, "13C", "31P"
    std::string element;   ///< "CARBON"
    double spin = 0;       ///< 0.5, 1, 1.5 ...
    double abundance = 0;  ///< percent
    double gamma = 0;      ///< 1e7 rad / (T s), signed
    double frequency = 0;  ///< Xi: MHz where the protons of TMS resonate at 100 MHz
    double quadrupole = 0; ///< fm^2 (1e-30 m^2)
};

class NuclearTable {
public:
    /// The built-in table of 140 nuclides.
    static NuclearTable BuiltIn();
    /// Lines of fields ended by ";": name, then numbers. Names are stored in upper case, an empty
    /// name skips the line, an empty number reads as 0; at most 141 lines.
    static NuclearTable Parse(std::string_view text);

    const std::vector<Nuclide>& rows() const { return rows_; }
    const Nuclide* Find(std::string_view name) const; ///< case-blind; nullptr when none

    /// "1H" of "H1", "PROTON", "Proton"; "NUL", "OFF"; element names as instruments write them
    /// ("Fluorine19"); "??" when nothing fits.
    std::string Nucleus_Normalize(std::string_view text) const;

private:
    std::vector<Nuclide> rows_;
};

/// "1H" when the frequency is that of protons in one of the usual magnets, else the empty string.
std::string Nucleus_From_Frequency(double mhz);

/// 0 for 1H (and "H1", "NUL" and no name), 1 for 13C ("C13"), 2 for all others: the group of presets.
int NucleusGroup(std::string_view nucleus);

} // namespace nmr
