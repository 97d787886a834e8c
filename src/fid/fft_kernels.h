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
inline void StagesInRegisters(float* work, std::size_t stride, const double* twiddles)
{
    Point x[R];
    for (std::size_t i = 0; i < R; ++i) x[i] = {LoadF(work + i * stride), LoadF(work + i * stride + kFftBlock)};
    Stages<R>(x, twiddles);
    for (std::size_t i = 0; i < R; ++i) {
        StoreF(work + i * stride, x[i].re);
        StoreF(work + i * stride + kFftBlock, x[i].im);
    }
}

/// The same on points that stay in memory, for machines without registers for all of them: there a
/// float is widened faster from memory than from a register, and that is what takes the time.
inline void ButterflyInPlace(float* p, float* q, D sine, D cosine)
{
    const D real = WidenFrom(p) - WidenFrom(q);
    const D imag = WidenFrom(p + kFftBlock) - WidenFrom(q + kFftBlock);
    const F sum_re = LoadF(p) + LoadF(q);
    const F sum_im = LoadF(p + kFftBlock) + LoadF(q + kFftBlock);
    NarrowTo(q, imag * sine + real * cosine);
    NarrowTo(q + kFftBlock, imag * cosine - real * sine);
    StoreF(p, sum_re);
    StoreF(p + kFftBlock, sum_im);
}

template <std::size_t R>
inline void StagesInPlace(float* x, std::size_t stride, const double* twiddles)
{
    constexpr std::size_t half = R / 2;
    constexpr std::size_t quarter = half == 1 ? 1 : half / 2;
    for (std::size_t i = 0; i < half; ++i)
        ButterflyInPlace(x + i * stride, x + (i + half) * stride, LoadD(twiddles + i * kFftBlock),
                         LoadD(twiddles + (i + quarter) * kFftBlock));
    if constexpr (half > 1) {
        StagesInPlace<half>(x, stride, twiddles + (half + quarter) * kFftBlock);
        StagesInPlace<half>(x + half * stride, stride, twiddles + (half + quarter) * kFftBlock);
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

/// Lines that are needed next, from more places at once than the machine foresees by itself.
inline void Fetch(const float* line, std::size_t stride, std::size_t count)
{
    for (; count > 0; --count, line += stride) _mm_prefetch(reinterpret_cast<const char*>(line), _MM_HINT_T0);
}

/// One pass over part of the work row: R runs of `points`, `stride` floats from one to the next.
template <std::size_t R>
void WorkPass(float* work, std::size_t points, std::size_t stride, const double* twiddles)
{
    for (float* const end = work + 2 * points; work != end; work += 2 * kFftBlock) {
        if constexpr (kStagesInMemory)
            StagesInPlace<R>(work, stride, twiddles);
        else
            StagesInRegisters<R>(work, stride, twiddles);
        twiddles += VectorsOfPass<R>() * kFftBlock;
    }
}

/// The first pass, of radix 4, which brings the row into the work row.
void FirstPass(const FFT_Plan& plan, const float* re, const float* im)
{
    const std::size_t run = plan.n() / 4;
    const std::size_t stride = kFftParts / 4 * plan.part_stride();
    const double* twiddles = plan.passes()[0].twiddles;
    for (std::size_t j = 0; j < run; j += kFftBlock) {
        Point x[4];
        for (std::size_t i = 0; i < 4; ++i) x[i] = {LoadF(re + i * run + j), LoadF(im + i * run + j)};
        Stages<4>(x, twiddles);
        float* const first = plan.work() + 2 * j + j / plan.part_points() * kFftGap;
        for (std::size_t i = 0; i < 4; ++i) {
            StoreF(first + i * stride, x[i].re);
            StoreF(first + i * stride + kFftBlock, x[i].im);
        }
        twiddles += VectorsOfPass<4>() * kFftBlock;
    }
}

inline void RunInnerPass(const FFT_Pass& pass, float* work, std::size_t count)
{
    const std::size_t points = pass.size / pass.radix;
    for (; count > 0; --count, work += 2 * pass.size) {
        switch (pass.radix) {
        case 2:
            WorkPass<2>(work, points, 2 * points, pass.twiddles);
            break;
        case 4:
            WorkPass<4>(work, points, 2 * points, pass.twiddles);
            break;
        default:
            WorkPass<8>(work, points, 2 * points, pass.twiddles);
        }
    }
}

constexpr std::size_t kInnerPoints = 2048; // 16 kB: stays in the first-level cache beside its twiddles

/// The passes within a part; depth first, so that what a pass leaves is taken up while in the cache.
void RunInnerPasses(const FFT_Pass* pass, const FFT_Pass* end, float* work, std::size_t size)
{
    if (size <= kInnerPoints) {
        for (; pass != end; ++pass) RunInnerPass(*pass, work, size / pass->size);
        return;
    }
    RunInnerPass(*pass, work, 1);
    const std::size_t next = size / pass->radix;
    for (std::size_t i = 0; i < pass->radix; ++i) RunInnerPasses(pass + 1, end, work + 2 * i * next, next);
}

/// The second pass, of radix 8, over the four quarters side by side: the longest rows come from main
/// memory, and so their twiddles come only once.
void SecondPass(const FFT_Plan& plan)
{
    const std::size_t stride = plan.part_stride();
    const std::size_t last = plan.part_points() - kFftBlock;
    const double* twiddles = plan.passes()[1].twiddles;
    for (std::size_t j = 0; j <= last; j += kFftBlock) {
        const std::size_t ahead = std::min(j + 2 * kFftBlock, last);
        for (std::size_t part = 0; part < kFftParts; part += 8) {
            Fetch(plan.work() + 2 * ahead + part * stride, stride, 8);
            WorkPass<8>(plan.work() + 2 * j + part * stride, kFftBlock, stride, twiddles);
        }
        twiddles += VectorsOfPass<8>() * kFftBlock;
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

constexpr std::size_t kTiles = kFftParts / kFftBlock;

struct TileRows {
    alignas(64) float re[kFftBlock][kTiles * kFftBlock];
    alignas(64) float im[kFftBlock][kTiles * kFftBlock];
};

/// The last three stages of 8 blocks, one from every fourth part, turned so that each vector has
/// the points of one place in all of them, in reversed order of the parts.
inline void LastTile(const float* blocks, std::size_t stride, TileRows& rows, std::size_t tile,
                     const std::array<FFT_Twiddle, 3>& twiddles)
{
    F re[kFftBlock], im[kFftBlock];
    for (std::size_t i = 0; i < kFftBlock; ++i) {
        re[i] = LoadF(blocks + kReversed[i] * stride);
        im[i] = LoadF(blocks + kReversed[i] * stride + kFftBlock);
    }
    Transpose(re);
    Transpose(im);
    Point x[kFftBlock];
    for (std::size_t i = 0; i < kFftBlock; ++i) x[i] = {re[i], im[i]};
    LastStages(x, twiddles);
    for (std::size_t i = 0; i < kFftBlock; ++i) {
        StoreF(rows.re[i] + tile * kFftBlock, x[i].re);
        StoreF(rows.im[i] + tile * kFftBlock, x[i].im);
    }
}

inline void CopyRun(float* to, const float* from)
{
    F run[kTiles];
    for (std::size_t i = 0; i < kTiles; ++i) run[i] = LoadF(from + i * kFftBlock);
    for (std::size_t i = 0; i < kTiles; ++i) StoreF(to + i * kFftBlock, run[i]);
}

/// The last three stages and the bit reversal: the 32 blocks that stand at one place of their parts
/// become 8 runs of 32 points of the row. They are gathered first: runs written in pieces would be
/// thrown out of the cache between two pieces, their distances being powers of two.
inline void LastGroup(const FFT_Plan& plan, float* re, float* im, const FFT_Group& group)
{
    const std::size_t run = plan.n() / kFftBlock;
    const std::size_t stride = plan.part_stride();
    constexpr std::size_t reversed_tile[kTiles] = {0, 2, 1, 3};
    const float* const first = plan.work() + group.block * 2 * kFftBlock;
    TileRows rows;
    for (std::size_t tile = 0; tile < kTiles; ++tile)
        LastTile(first + reversed_tile[tile] * stride, kTiles * stride, rows, tile, plan.last());
    const std::size_t place = group.reversed * kFftParts;
    for (std::size_t i = 0; i < kFftBlock; ++i) CopyRun(re + kReversed[i] * run + place, rows.re[i]);
    for (std::size_t i = 0; i < kFftBlock; ++i) CopyRun(im + kReversed[i] * run + place, rows.im[i]);
}

void LastPass(const FFT_Plan& plan, float* re, float* im)
{
    const auto groups = plan.groups();
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (i + 1 < groups.size())
            Fetch(plan.work() + groups[i + 1].block * 2 * kFftBlock, plan.part_stride(), kFftParts);
        LastGroup(plan, re, im, groups[i]);
    }
}

void Run(const FFT_Plan& plan, float* re, float* im)
{
    FirstPass(plan, re, im);
    SecondPass(plan);
    const FFT_Pass* const inner = plan.passes().data() + 2;
    const FFT_Pass* const end = plan.passes().data() + plan.passes().size();
    for (std::size_t part = 0; part < kFftParts; ++part)
        RunInnerPasses(inner, end, plan.work() + part * plan.part_stride(), plan.part_points());
    LastPass(plan, re, im);
}

} // namespace
} // namespace nmr
