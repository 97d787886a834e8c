// The vector code of the transform, included by one file for each vector set, which first declares
// the types F (8 floats) and D (8 doubles) with Widen, Narrow, LoadD and arithmetic.
// Everything here stays in an unnamed namespace: code for one vector set must never be merged with
// that of another by the linker. No fused multiply-add: the plain loops round every product.

namespace nmr {
namespace {

struct Point {
    F re, im;
};

inline F LoadF(const float* from)
{
    return _mm256_loadu_ps(from);
}
inline void StoreF(float* to, F value)
{
    _mm256_storeu_ps(to, value);
}

/// Zeros with the signs of the values.
inline F SignedZero(F value)
{
    return _mm256_and_ps(value, _mm256_set1_ps(-0.0F));
}

/// Row i, place j to row j, place i.
inline void Transpose(F* rows)
{
    F pairs[8];
    for (std::size_t i = 0; i < 8; i += 2) {
        pairs[i] = _mm256_unpacklo_ps(rows[i], rows[i + 1]);
        pairs[i + 1] = _mm256_unpackhi_ps(rows[i], rows[i + 1]);
    }
    F quads[8];
    for (std::size_t i = 0; i < 8; i += 4) {
        quads[i] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0x44);
        quads[i + 1] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0xee);
        quads[i + 2] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0x44);
        quads[i + 3] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0xee);
    }
    for (std::size_t i = 0; i < 4; ++i) {
        rows[i] = _mm256_permute2f128_ps(quads[i], quads[i + 4], 0x20);
        rows[i + 4] = _mm256_permute2f128_ps(quads[i], quads[i + 4], 0x31);
    }
}

inline void Butterfly(Point& p, Point& q, D sine, D cosine)
{
    const D real = Widen(p.re) - Widen(q.re);
    const D imag = Widen(p.im) - Widen(q.im);
    p.re = p.re + q.re; // in float: the rounded exact sum either way
    p.im = p.im + q.im;
    q.re = Narrow(imag * sine + real * cosine);
    q.im = Narrow(imag * cosine - real * sine);
}

/// All stages of one pass on R points held in registers; the order of the twiddles is that of FFT_Plan.
template <std::size_t R>
inline void Stages(Point* x, const double* twiddles)
{
    constexpr std::size_t half = R / 2;
    constexpr std::size_t quarter = half == 1 ? 1 : half / 2;
    for (std::size_t i = 0; i < half; ++i)
        Butterfly(x[i], x[i + half], LoadD(twiddles + i * kFftBlock), LoadD(twiddles + (i + quarter) * kFftBlock));
    if constexpr (half > 1) {
        Stages<half>(x, twiddles + (half + quarter) * kFftBlock);
        Stages<half>(x + half, twiddles + (half + quarter) * kFftBlock);
    }
}

template <std::size_t R>
constexpr std::size_t VectorsOfPass()
{
    if constexpr (R == 2)
        return 2;
    else
        return R / 2 + R / 4 + VectorsOfPass<R / 2>();
}

/// Where the block of the work row that begins with point j stands.
inline std::size_t WorkIndex(std::size_t j)
{
    return 2 * j;
}

/// One pass over `count` neighbouring parts of the work row.
template <std::size_t R>
void WorkPass(float* work, std::size_t size, std::size_t count, const double* all_twiddles)
{
    const std::size_t stride = size / R * 2;
    for (; count > 0; --count, work += 2 * size) {
        const double* twiddles = all_twiddles;
        for (std::size_t j = 0; j < size / R; j += kFftBlock) {
            float* const first = work + WorkIndex(j);
            Point x[R];
            for (std::size_t i = 0; i < R; ++i)
                x[i] = {LoadF(first + i * stride), LoadF(first + i * stride + kFftBlock)};
            Stages<R>(x, twiddles);
            for (std::size_t i = 0; i < R; ++i) {
                StoreF(first + i * stride, x[i].re);
                StoreF(first + i * stride + kFftBlock, x[i].im);
            }
            twiddles += VectorsOfPass<R>() * kFftBlock;
        }
    }
}

/// The first pass, which brings the row into the work row.
template <std::size_t R>
void FirstPass(const float* re, const float* im, float* work, std::size_t size, const double* twiddles)
{
    const std::size_t stride = size / R;
    for (std::size_t j = 0; j < stride; j += kFftBlock) {
        Point x[R];
        for (std::size_t i = 0; i < R; ++i) x[i] = {LoadF(re + i * stride + j), LoadF(im + i * stride + j)};
        Stages<R>(x, twiddles);
        float* const first = work + WorkIndex(j);
        for (std::size_t i = 0; i < R; ++i) {
            StoreF(first + 2 * i * stride, x[i].re);
            StoreF(first + 2 * i * stride + kFftBlock, x[i].im);
        }
        twiddles += VectorsOfPass<R>() * kFftBlock;
    }
}

inline void RunWorkPass(const FFT_Pass& pass, float* work, std::size_t count)
{
    switch (pass.radix) {
    case 2:
        return WorkPass<2>(work, pass.size, count, pass.twiddles);
    case 4:
        return WorkPass<4>(work, pass.size, count, pass.twiddles);
    case 8:
        return WorkPass<8>(work, pass.size, count, pass.twiddles);
    default:
        return WorkPass<16>(work, pass.size, count, pass.twiddles);
    }
}

inline void RunFirstPass(const FFT_Pass& pass, const float* re, const float* im, float* work)
{
    switch (pass.radix) {
    case 2:
        return FirstPass<2>(re, im, work, pass.size, pass.twiddles);
    case 4:
        return FirstPass<4>(re, im, work, pass.size, pass.twiddles);
    case 8:
        return FirstPass<8>(re, im, work, pass.size, pass.twiddles);
    default:
        return FirstPass<16>(re, im, work, pass.size, pass.twiddles);
    }
}

constexpr std::size_t kInnerPoints = 2048; // 16 kB: stays in the first-level cache beside its twiddles

/// Depth first, so that a part is finished while it is in the cache.
void RunParts(const FFT_Pass* pass, const FFT_Pass* end, float* work, std::size_t parts)
{
    if (pass == end) return;
    if (pass->size <= kInnerPoints) {
        for (std::size_t part = 0; part < parts;) {
            const std::size_t together = std::min(parts - part, kInnerPoints / pass->size);
            const std::size_t points = together * pass->size;
            for (const FFT_Pass* p = pass; p != end; ++p)
                RunWorkPass(*p, work + 2 * part * pass->size, points / p->size);
            part += together;
        }
        return;
    }
    for (std::size_t part = 0; part < parts; ++part) {
        float* const here = work + 2 * part * pass->size;
        RunWorkPass(*pass, here, 1);
        RunParts(pass + 1, end, here, pass->radix);
    }
}

/// A butterfly whose factor is 1: no products, but zeros keep the sign that sine 0 would give them.
inline void ButterflyByOne(Point& p, Point& q)
{
    const F real = p.re - q.re;
    const F imag = p.im - q.im;
    p.re = p.re + q.re;
    p.im = p.im + q.im;
    q.re = real + SignedZero(imag);
    q.im = imag - SignedZero(real);
}

/// The last three stages, each lane of a tile being one group of 8 neighbouring points.
inline void LastStages(Point* x, const std::array<FFT_Twiddle, 3>& twiddles)
{
    ButterflyByOne(x[0], x[4]);
    for (std::size_t i = 1; i < 4; ++i)
        Butterfly(x[i], x[i + 4], SplatD(twiddles[i - 1].sine), SplatD(twiddles[i - 1].cosine));
    for (std::size_t i = 0; i < 8; i += 4) {
        ButterflyByOne(x[i], x[i + 2]);
        Butterfly(x[i + 1], x[i + 3], SplatD(twiddles[1].sine), SplatD(twiddles[1].cosine));
    }
    for (std::size_t i = 0; i < 8; i += 2) ButterflyByOne(x[i], x[i + 1]);
}

constexpr std::size_t kReversed[kFftBlock] = {0, 4, 2, 6, 1, 5, 3, 7};

/// The last stages and the bit reversal of the 8 blocks that share the middle bits of their index:
/// those bits reversed are `target`, and the 8 by 8 points go out as 8 runs of 8.
inline void LastTile(const float* blocks, std::size_t stride, float* re, float* im, std::size_t run,
                     const std::array<FFT_Twiddle, 3>& twiddles)
{
    F rows_re[kFftBlock], rows_im[kFftBlock];
    for (std::size_t i = 0; i < kFftBlock; ++i) {
        rows_re[i] = LoadF(blocks + kReversed[i] * stride);
        rows_im[i] = LoadF(blocks + kReversed[i] * stride + kFftBlock);
    }
    Transpose(rows_re);
    Transpose(rows_im);
    Point x[kFftBlock];
    for (std::size_t i = 0; i < kFftBlock; ++i) x[i] = {rows_re[i], rows_im[i]};
    LastStages(x, twiddles);
    for (std::size_t i = 0; i < kFftBlock; ++i) {
        StoreF(re + kReversed[i] * run, x[i].re);
        StoreF(im + kReversed[i] * run, x[i].im);
    }
}

void LastPass(const FFT_Plan& plan, float* re, float* im)
{
    const std::size_t middles = plan.n() / kFftShortest;
    const std::size_t run = plan.n() / kFftBlock;
    std::size_t reversed = 0;
    for (std::size_t middle = 0; middle < middles; ++middle) {
        LastTile(plan.work() + middle * 2 * kFftBlock, middles * 2 * kFftBlock, re + reversed * kFftBlock,
                 im + reversed * kFftBlock, run, plan.last());
        std::size_t bit = middles / 2;
        for (; (reversed & bit) != 0; bit /= 2) reversed ^= bit;
        reversed ^= bit;
    }
}

void Run(const FFT_Plan& plan, float* re, float* im)
{
    const auto passes = plan.passes();
    RunFirstPass(passes[0], re, im, plan.work());
    RunParts(passes.data() + 1, passes.data() + passes.size(), plan.work(), passes[0].radix);
    LastPass(plan, re, im);
}

} // namespace
} // namespace nmr
