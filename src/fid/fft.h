#pragma once
// The transform itself: radix 2, decimation in frequency, table driven, float storage with double
// intermediates. Vector code is chosen at run time and gives the bits of the plain loops.

#include "core/row_array.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace nmr {

inline constexpr std::int32_t kSineTableSize = 1'048'576;

/// Sine by index over 5/4 turns: table[i] = sin(i * (2 * pi / T)); cosine at i + T/4.
void Make_Sine_Table(std::vector<double>& table);
/// What transforms of n points read of the table, n a power of two up to T; where the rest is not made yet
/// it is no number. The whole table takes longer than the processing of one FID.
void Ready_Sine_Table(std::vector<double>& table, std::int32_t n);

/// Butterflies and bit reversal of one row in place, without scaling. n = re.size() must be a power
/// of two from 1 to T, im as long.
void FFT_Transform(std::span<float> re, std::span<float> im, std::span<const double> sine_table);

/// Left rotation by one point and exchange of the halves: index i then holds bin (i + n/2 + 1) mod n.
void FFT_Rotate_And_Swap(std::span<float> re, std::span<float> im);

enum class Conjugate { no, yes };
/// The plain transform of the first n points of every row, each point divided by n at the end.
void FFT_Block(RowArray<float>& re, RowArray<float>& im, std::int32_t n, Conjugate conjugate,
               std::span<const double> sine_table);

/// "avx512", "avx2" or "plain": what FFT_Transform runs on this machine.
std::string_view FFT_Vector_Set();

} // namespace nmr
