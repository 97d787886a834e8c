#pragma once
// A fast checksum for files of our own: records of the journal, snapshots of points. It guards against
// damage, not against malice. A change of any one 8-byte word always changes it, because every step is a
// one-to-one map of the state; other damage passes with a chance of 2^-64.

#include <cstddef>
#include <cstdint>
#include <span>

namespace nmr {

/// @param seed tells files or places apart: the same bytes under another seed give another sum; a sum
///             used as seed continues it over the next piece
std::uint64_t Checksum64(std::span<const std::byte> bytes, std::uint64_t seed = 0);

} // namespace nmr
