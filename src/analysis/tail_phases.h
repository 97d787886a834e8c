#pragma once
// The phase of groups of lines by their tails.
//
// Far from a group of lines in phase, whatever the shape of each, the row falls as the sum of all their heights times
// widths over the distance, in the imaginary part; out of phase, it turns like the group. Only this part falls as
// slowly as that: a base line is smooth, and what tells the shapes apart (splittings, an uneven shim, a window) falls
// faster. So the first terms of the series in one over the distance are fitted on both sides of a group, as one does
// with the far field of charges: one over the distance, its square, and a straight base line.

#include "analysis/line_phases.h"

#include <span>
#include <vector>

namespace nmr {

struct TailPhase {
    double point = 0;     ///< middle of the group
    double height = 0;    ///< of its highest line
    double angle_deg = 0; ///< that the group is turned by; in phase 0, pointing down 180
    double error_deg = 0; ///< standard deviation of that, from what the fit leaves
};

/// Of the groups around the highest tops of at least `least`, at most `most`, the highest first.
std::vector<TailPhase> Find_Tail_Phases(const ComplexRow& row, double least, std::size_t most);

} // namespace nmr
