#pragma once
// The phase of each line by itself, whatever base line it stands on.
//
// A line out of phase is a pole in the complex plane, a + i*b*w for a line at a with half width w; its residue
// carries the phase. Around a top the row is fitted by such a pole on a sloping complex base line. A line
// shape that is the same to both sides of its top gives its phase all the same; a rolling base line and the feet of
// neighbours go into the slope.
//
// Linear fit of a rational function: E. C. Levy, IRE Trans. Autom. Control 4 (1959) 37; weights by the denominator
// of the round before: C. K. Sanathanan, J. Koerner, IEEE Trans. Autom. Control 8 (1963) 56.

#include <cstddef>
#include <span>
#include <vector>

namespace nmr {

struct LinePhase {
    double point = 0;      ///< of the top, in points
    double half_width = 0; ///< points
    double height = 0;     ///< above the base line
    double angle_deg = 0;  ///< that the line is turned by; in phase 0, pointing down 180
    double side = 1;       ///< of the pole; -1 for a row whose imaginary part is mirrored
    double misfit = 0;     ///< root mean square of what the fit leaves, over the height
    double overlap = 0;    ///< how high a neighbour stands at the end of what was fitted, over the height; 0 when alone
};

/// A row as the fit reads it; three spans of one length.
struct ComplexRow {
    std::span<const float> re, im, magnitude;
};

/// Points of the tops of more than `least`, the highest first.
std::vector<std::size_t> Tops_Of(std::span<const float> magnitude, double least);

/// The lines with tops of at least `least` whose fit is believable, at most `most`, no more than a few of them in one
/// sixty-fourth of the row, the highest first.
std::vector<LinePhase> Find_Line_Phases(const ComplexRow& row, double least, double noise, std::size_t most);

} // namespace nmr
