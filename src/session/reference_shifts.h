#pragma once
// Shifts that spectra are referenced to: residual signals of deuterated solvents, and standards.

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

struct ReferenceShift {
    std::string_view compound; ///< "CDCl3"
    std::string_view signal;   ///< "CHCl3", "(CD3)2CO"
    std::string_view nucleus;  ///< "1H" or "13C"
    double ppm;
};

/// Relative to tetramethylsilane at 25 degrees Celsius; D2O relative to the methyl groups of DSS.
/// Sources: H. E. Gottlieb, V. Kotlyar, A. Nudelman, J. Org. Chem. 62 (1997) 7512 (D2O and what stands in it);
/// G. R. Fulmer et al., Organometallics 29 (2010) 2176 (the others).
std::span<const ReferenceShift> ReferenceShifts();

/// Those of a nucleus; of the data's own solvent ("CDCl3", "Chloroform-d", "DMSO") first.
std::vector<ReferenceShift> ReferenceShiftsFor(std::string_view nucleus, std::string_view solvent);

/// What papers call a solvent that a file names in its own way: "CDCl3" for "CHLOROFORM-D". A name that is not
/// known, or a mixture, stays as it is.
std::string UsualSolventName(std::string_view solvent);

} // namespace nmr
