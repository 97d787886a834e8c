// The transform with vectors of 8 doubles.

#include "fid/fft_plan.h"

#if defined(__x86_64__)

#include <algorithm>
#include <immintrin.h>

// To the end of the file: templates take the target that holds where they are instantiated.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,avx512f,avx512dq,avx512vl"))), apply_to = function)
#else
#pragma GCC target("avx2,avx512f,avx512dq,avx512vl")
#endif

namespace nmr {
namespace {

using F = __m256;
using D = __m512d;

inline D LoadD(const double* from)
{
    return _mm512_load_pd(from);
}
inline D SplatD(double value)
{
    return _mm512_set1_pd(value);
}
inline D Widen(F value)
{
    return _mm512_maskz_cvtps_pd(0xff, value);
}
inline F Narrow(D value)
{
    return _mm512_maskz_cvtpd_ps(0xff, value);
}

inline D WidenFrom(const float* from)
{
    return Widen(_mm256_loadu_ps(from));
}
inline void NarrowTo(float* to, D value)
{
    _mm256_storeu_ps(to, Narrow(value));
}
constexpr bool kStagesInMemory = false; // measured: from memory is no faster, and 32 registers are enough

} // namespace
} // namespace nmr

#include "fid/fft_kernels.h"

namespace nmr {

void FFT_Run_Avx512(const FFT_Plan& plan, float* re, float* im)
{
    Run(plan, re, im);
}

} // namespace nmr

#if defined(__clang__)
#pragma clang attribute pop
#endif

#endif
