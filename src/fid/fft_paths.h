#pragma once
// The ways to run the transform, for the dispatch of fft.cpp and for tests and timings that force one.

#include <cstdint>
#include <span>
#include <string_view>

namespace nmr {

enum class FFT_Path : std::uint8_t { plain, avx2, avx512 };

std::string_view FFT_Path_Name(FFT_Path path);

/// False when this build or this machine can't run it; plain is always there.
bool FFT_Path_Available(FFT_Path path);

/// FFT_Transform by one certain path, which must be available. Every path gives the same bits.
void FFT_Transform_By(FFT_Path path, std::span<float> re, std::span<float> im, std::span<const double> sine_table);

} // namespace nmr
