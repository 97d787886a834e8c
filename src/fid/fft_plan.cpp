#include "fid/fft_plan.h"

#include "fid/fft.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <new>

namespace nmr {
namespace {

constexpr std::size_t kTurn = kSineTableSize;
constexpr std::size_t kCacheLine = 64;
constexpr int kNearBits = 2; // measured: 4 groups write 512 bytes in a row, more gains nothing

template <class T>
T* AllocateLines(std::size_t count)
{
    const std::size_t bytes = (count * sizeof(T) + kCacheLine - 1) / kCacheLine * kCacheLine;
    void* memory = std::aligned_alloc(kCacheLine, std::max(bytes, kCacheLine));
    if (memory == nullptr) throw std::bad_alloc();
    return static_cast<T*>(memory);
}

/// Vectors of doubles that one stage of a pass reads for each step: `half` sines of neighbouring
/// parts of the half turn and their cosines, which are sines a quarter turn on and so partly shared.
constexpr std::size_t StageVectors(std::size_t half)
{
    return half == 1 ? 2 : half + half / 2;
}

std::size_t PassVectors(std::size_t radix)
{
    std::size_t count = 0;
    for (std::size_t half = radix / 2; half > 0; half /= 2) count += StageVectors(half);
    return count;
}

std::size_t PassDoubles(const FFT_Pass& pass)
{
    return pass.size / pass.radix * PassVectors(pass.radix);
}

double* FillPass(double* out, const FFT_Pass& pass, std::span<const double> sine)
{
    for (std::size_t first = 0; first < pass.size / pass.radix; first += kFftBlock) {
        for (std::size_t half = pass.radix / 2; half > 0; half /= 2) {
            const std::size_t step = kTurn / (pass.size / pass.radix * half * 2);
            const std::size_t spacing = half == 1 ? kTurn / 4 : kTurn / (2 * half);
            for (std::size_t vector = 0; vector < StageVectors(half); ++vector)
                for (std::size_t lane = 0; lane < kFftBlock; ++lane)
                    *out++ = sine[(first + lane) * step + vector * spacing];
        }
    }
    return out;
}

std::size_t Reversed(std::size_t value, int bits)
{
    std::size_t reversed = 0;
    for (int i = 0; i < bits; ++i) reversed |= (value >> i & 1U) << (bits - 1 - i);
    return reversed;
}

} // namespace

void FFT_Plan::Free::operator()(void* memory) const
{
    std::free(memory);
}

FFT_Plan::FFT_Plan(std::size_t n, std::span<const double> sine_table) :
    n_(n), source_(sine_table.data()), work_(AllocateLines<float>(2 * n + kFftParts * kFftGap))
{
    ChoosePasses();
    OrderGroups();
    FillTwiddles(sine_table);
    for (std::size_t i = 0; i < last_.size(); ++i) {
        const std::size_t index = (i + 1) * (kTurn / 8);
        last_[i] = {sine_table[index], sine_table[index + kTurn / 4]};
    }
}

void FFT_Plan::ChoosePasses()
{
    std::size_t size = n_;
    const auto add = [&](std::size_t radix) {
        passes_.push_back({.size = size, .radix = radix});
        size /= radix;
    };
    add(4);
    add(8);
    while (size > kFftBlock) {
        const std::size_t rest = size / kFftBlock;
        // Two passes of radix 4 rather than one of 8 and one of 2, which does little for its loads.
        add(rest == 2 ? 2 : rest == 4 || rest == 16 ? 4 : 8);
    }
}

void FFT_Plan::OrderGroups()
{
    const int bits = std::countr_zero(part_points() / kFftBlock);
    const int near = bits < 2 * kNearBits ? 0 : kNearBits;
    const std::size_t few = std::size_t{1} << near;
    groups_.reserve(std::size_t{1} << bits);
    for (std::size_t i = 0; i < std::size_t{1} << bits; ++i) {
        // Counting up: first the neighbours on the side of the row, then those in the work row.
        const std::size_t block = Reversed(i % few, bits) | i / few;
        groups_.push_back({.block = block, .reversed = Reversed(block, bits)});
    }
}

void FFT_Plan::FillTwiddles(std::span<const double> sine_table)
{
    std::size_t count = 0;
    for (const FFT_Pass& pass : passes_) count += PassDoubles(pass);
    twiddles_.reset(AllocateLines<double>(count));
    double* next = twiddles_.get();
    for (FFT_Pass& pass : passes_) {
        pass.twiddles = next;
        next = FillPass(next, pass, sine_table);
    }
}

const FFT_Plan& FFT_Plan_For(std::size_t n, std::span<const double> sine_table)
{
    // One plan is enough: a session keeps to one length, and at the longest row a plan takes 22 MB.
    thread_local std::unique_ptr<const FFT_Plan> plan;
    if (!plan || !plan->Fits(n, sine_table)) {
        plan.reset(); // before the new one is made: two would be twice the memory
        plan = std::make_unique<const FFT_Plan>(n, sine_table);
    }
    return *plan; // NOLINT(clang-analyzer-cplusplus.NewDelete): it takes thread_local for a local
}

} // namespace nmr
