#pragma once
// Many numbers of one type at once. The loops have no call and no check in them, so that arrays of
// megabytes take little longer than their copy; the bounds are checked by the caller.

#include "formats/data_conversion.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

namespace nmr {

enum class WordKind { int16, int32, float32, float64 };

constexpr std::size_t BytesOf(WordKind kind)
{
    return kind == WordKind::int16 ? 2 : kind == WordKind::float64 ? 8 : 4;
}

namespace word_detail {

template <class Bits>
Bits Swapped(Bits bits)
{
    if constexpr (sizeof(Bits) == 2) return __builtin_bswap16(bits);
    if constexpr (sizeof(Bits) == 4) return __builtin_bswap32(bits);
    if constexpr (sizeof(Bits) == 8) return __builtin_bswap64(bits);
}

template <class Bits, class Number, bool swap>
double Load(const std::byte* at)
{
    Bits bits;
    std::memcpy(&bits, at, sizeof bits);
    if constexpr (swap) bits = Swapped(bits);
    return static_cast<double>(std::bit_cast<Number>(bits));
}

template <class Bits, class Number, bool swap>
void Line(const std::byte* at, std::span<double> out)
{
    double* to = out.data();
    const std::size_t count = out.size();
    for (std::size_t i = 0; i < count; ++i) to[i] = Load<Bits, Number, swap>(at + i * sizeof(Bits));
}

template <class Bits, class Number, bool swap>
void Pairs(const std::byte* at, std::span<double> re, std::span<double> im)
{
    double *to_re = re.data(), *to_im = im.data();
    const std::size_t count = re.size();
    for (std::size_t i = 0; i < count; ++i) {
        to_re[i] = Load<Bits, Number, swap>(at + 2 * i * sizeof(Bits));
        to_im[i] = Load<Bits, Number, swap>(at + (2 * i + 1) * sizeof(Bits));
    }
}

/// Calls `body` with types that stand for the words: body.template operator()<Bits, Number, swap>().
template <class Body>
void WithWords(WordKind kind, std::endian order, Body&& body)
{
    const bool swap = order != std::endian::native;
    switch (kind) {
    case WordKind::int16:
        return swap ? body.template operator()<std::uint16_t, std::int16_t, true>()
                    : body.template operator()<std::uint16_t, std::int16_t, false>();
    case WordKind::int32:
        return swap ? body.template operator()<std::uint32_t, std::int32_t, true>()
                    : body.template operator()<std::uint32_t, std::int32_t, false>();
    case WordKind::float32:
        return swap ? body.template operator()<std::uint32_t, float, true>()
                    : body.template operator()<std::uint32_t, float, false>();
    case WordKind::float64:
        return swap ? body.template operator()<std::uint64_t, double, true>()
                    : body.template operator()<std::uint64_t, double, false>();
    }
}

} // namespace word_detail

/// out.size() numbers; `bytes` holds at least as many.
inline void DecodeWords(ByteSpan bytes, WordKind kind, std::endian order, std::span<double> out)
{
    word_detail::WithWords(kind, order, [&]<class Bits, class Number, bool swap>() {
        word_detail::Line<Bits, Number, swap>(bytes.data(), out);
    });
}

/// re.size() pairs of a real and an imaginary number; `im` is as long, `bytes` holds at least as many.
inline void DecodePairs(ByteSpan bytes, WordKind kind, std::endian order, std::span<double> re, std::span<double> im)
{
    word_detail::WithWords(kind, order, [&]<class Bits, class Number, bool swap>() {
        word_detail::Pairs<Bits, Number, swap>(bytes.data(), re, im);
    });
}

} // namespace nmr
