#pragma once
// The phase rotation that preview, commit and phase tool share.

#include <cstdint>
#include <span>

namespace nmr {

struct PhaseTerms {
    float ph0_deg = 0;
    float ph1_deg = 0;      ///< over the whole row
    std::int32_t pivot = 0; ///< point that turns by ph0_deg alone
};

/// t = (ph0 + (i - p) * ph1 / n) * 0.0174532925199433; re' = re cos t - im sin t,
/// im' = re sin t + im cos t, for i in 0..n-1, computed in double and stored in float.
/// Source and target may be the same row.
void RotateRow(std::span<const float> source_re, std::span<const float> source_im, std::span<float> re,
               std::span<float> im, std::int32_t n, const PhaseTerms& phase);

} // namespace nmr
