#include "core/checksum.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace nmr {
namespace {

constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15U; // odd, so that multiplying by it loses nothing
constexpr std::size_t kLanes = 4; // independent chains: one multiplication need not wait for the last
constexpr std::size_t kWord = sizeof(std::uint64_t);

constexpr std::uint64_t Mix(std::uint64_t state, std::uint64_t word)
{
    return std::rotl((state ^ word) * kMultiplier, 29);
}

std::uint64_t LoadWord(const std::byte* from)
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, kWord);
    return word;
}

} // namespace

std::uint64_t Checksum64(std::span<const std::byte> bytes, std::uint64_t seed)
{
    std::array<std::uint64_t, kLanes> lanes{seed + 1, seed + 2, seed + 3, seed + 4};
    std::uint64_t sum = Mix(seed, bytes.size());
    for (; bytes.size() >= kLanes * kWord; bytes = bytes.subspan(kLanes * kWord))
        for (std::size_t i = 0; i < kLanes; ++i) lanes[i] = Mix(lanes[i], LoadWord(bytes.data() + i * kWord));
    while (!bytes.empty()) {
        std::array<std::byte, kWord> padded{};
        const std::size_t count = std::min(bytes.size(), kWord);
        std::memcpy(padded.data(), bytes.data(), count);
        lanes[0] = Mix(lanes[0], LoadWord(padded.data()));
        bytes = bytes.subspan(count);
    }
    for (const std::uint64_t lane : lanes) sum = Mix(sum, lane);
    return sum ^ (sum >> 32U);
}

} // namespace nmr
