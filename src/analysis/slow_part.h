#pragma once
// What changes slowly along a row beside its lines: a rolling base line, the hump of a probe. It has no phase of its
// own, so the robust phase looks at a row without it.

#include "analysis/line_phases.h"

#include <span>
#include <vector>

namespace nmr {

/// Subtracts the slow part from both rows, in place. The lines that are known are taken off before it is estimated, so
/// that their far feet don't count as base line; the estimate is a running median over some 1/32 of the row, joined
/// by straight lines. Rows of fewer than 2048 points stay as they are.
void Subtract_Slow_Part(std::span<float> re, std::span<float> im, const std::vector<LinePhase>& lines);

} // namespace nmr
