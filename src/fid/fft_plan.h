#pragma once
// What one length of row needs beyond the row itself: the order of the passes, the twiddle factors
// in the order in which the kernels read them, and a work row.

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace nmr {

/// Points of one block of the work row: 8 real parts, then their 8 imaginary parts, one cache line.
inline constexpr std::size_t kFftBlock = 8;
/// The work row lies in 32 parts with a cache line between them: the last pass reads all of them at
/// once, and at distances of a power of two they would push each other out of the cache.
inline constexpr std::size_t kFftParts = 32;
inline constexpr std::size_t kFftGap = 2 * kFftBlock;
/// One block in each part; shorter rows go by the plain loops.
inline constexpr std::size_t kFftShortest = kFftParts * kFftBlock;

/// Several stages done in one go: `radix` points `size / radix` apart stay in registers.
struct FFT_Pass {
    std::size_t size = 0;
    std::size_t radix = 0;
    const double* twiddles = nullptr;
};

/// Sine and cosine of one twiddle factor.
struct FFT_Twiddle {
    double sine = 0.0;
    double cosine = 1.0;
};

/// The 32 blocks that stand at one place of their parts, and that place's bits reversed.
struct FFT_Group {
    std::size_t block = 0;
    std::size_t reversed = 0;
};

class FFT_Plan {
public:
    /// @param n  points of the row, a power of two from kFftShortest to kSineTableSize
    FFT_Plan(std::size_t n, std::span<const double> sine_table);

    bool Fits(std::size_t n, std::span<const double> sine_table) const
    {
        return n == n_ && sine_table.data() == source_;
    }
    std::size_t n() const { return n_; }
    std::size_t part_points() const { return n_ / kFftParts; }
    /// Floats from one part of the work row to the next.
    std::size_t part_stride() const { return 2 * part_points() + kFftGap; }
    /// The first of radix 4 and the second of radix 8 end with the 32 parts, the others lie within one.
    std::span<const FFT_Pass> passes() const { return passes_; }
    /// The groups of the last pass in an order that keeps to few pages and lines on both sides.
    std::span<const FFT_Group> groups() const { return groups_; }
    float* work() const { return work_.get(); }
    /// Of legs 4 points apart: 1/8, 2/8 and 3/8 of a turn; the second also serves legs 2 points apart.
    const std::array<FFT_Twiddle, 3>& last() const { return last_; }

private:
    struct Free {
        void operator()(void* memory) const;
    };

    void ChoosePasses();
    void OrderGroups();
    void FillTwiddles(std::span<const double> sine_table);

    std::size_t n_;
    const double* source_;
    std::vector<FFT_Pass> passes_;
    std::vector<FFT_Group> groups_;
    std::unique_ptr<double[], Free> twiddles_;
    std::unique_ptr<float[], Free> work_;
    std::array<FFT_Twiddle, 3> last_;
};

/// The plan of the calling thread, made anew when length or table differ from the last call's.
const FFT_Plan& FFT_Plan_For(std::size_t n, std::span<const double> sine_table);

void FFT_Run_Avx2(const FFT_Plan& plan, float* re, float* im);
void FFT_Run_Avx512(const FFT_Plan& plan, float* re, float* im);

} // namespace nmr
