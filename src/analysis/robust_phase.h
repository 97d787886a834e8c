#pragma once
// The second automatic phase: several criteria each propose phases, and the proposal with the best quality is
// taken. It never gives a phase that is no number. The search runs again on its own result until that stays, so a
// second press turns nothing, and one on a row turned by hand comes back.
//
// Criteria and their sources: smallest absolute sum of the real part (an absorption line has a finite area, a
// dispersion line an endless one), and negative area: A. Heuer, J. Magn. Reson. 91 (1991) 241; the tails of each group
// of lines (analysis/tail_phases.h), flat where it is in phase, whatever the shape of its lines; the phase of each
// line by itself (analysis/line_phases.h), which stands on any base line; entropy of the derivative: L. Chen, Z. Weng,
// L. Goh, M. Garland, J. Magn. Reson. 158 (2002) 164; and the circle fit of analysis/phase.h. A strong slow part
// (analysis/slow_part.h) is taken off before they look.

#include "core/global_block.h"

#include <cstdint>
#include <functional>
#include <span>

namespace nmr {

enum class LineSigns { same, alternate, by_evidence };

/// Phases that turn as Phase_Apply does.
struct PhaseProposal {
    double phase0_deg = 0, phase1_deg = 0;
    std::int32_t pivot = 0;
};

struct PhaseHint {
    double phase1_deg = 0; ///< first order that is known beforehand, as of a group delay
    LineSigns signs = LineSigns::by_evidence;
    std::function<PhaseProposal()> circle{}; ///< what the circle fit proposes; asked at most once, late
};

/// Whose proposal was taken.
enum class PhaseCriterion {
    none,        ///< a row without lines
    one_sign,    ///< smallest absolute sum and negative area, with flat tails
    both_signs,  ///< smallest absolute sum, with flat tails
    lines,       ///< the phase of each line by itself
    entropy,     ///< smallest entropy of the derivative
    circle,      ///< the circle fit
    stays_as_is, ///< hardly off what the points show already
};

struct RobustPhase {
    double phase0_deg = 0, phase1_deg = 0; ///< turning as Phase_Apply does about `pivot`
    std::int32_t pivot = 0;                ///< the strongest point
    double quality = 0;       ///< 0 to 100 percent: how much worse any other phase does, and how well the lines agree
    bool alternating = false; ///< lines of both signs
    PhaseCriterion criterion = PhaseCriterion::none;
};

/// Phases of a spectrum of any length. O(n) and below 50 ms at 65,536 points.
RobustPhase Find_Robust_Phase(std::span<const float> re, std::span<const float> im, const PhaseHint& hint = {});

/// Whether the experiment is one whose lines have both signs (DEPT, APT, J-modulated echo), by EXMOD and pulse
/// program; else by evidence.
LineSigns Expected_Signs(const ParamBlock& par);

/// Phases the shown row from its source and sets PhaseP0, PivotPoint, P2Point, Phase0Deg and Phase1Deg, as Auto_Phase
/// does. The quality in percent.
double Auto_Phase_Robust(GlobalBlock& g, std::int32_t n, double known_phase1_deg = 0);
/// The shown row of the data is a result of it: a press on these points leaves them as they are. Auto_Phase_Robust
/// does so by itself; who stores its result with other bits (scaled) tells it here.
void Remember_Phased_Row(GlobalBlock& g, std::int32_t n, double quality);

} // namespace nmr
