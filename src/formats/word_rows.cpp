// Rows of plain words, from the file into a slot.

#include "formats/fid_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <thread>
#include <type_traits>
#include <vector>

namespace nmr {
namespace {

constexpr std::size_t kPiece = 16384;                         // points: a piece and its words stay in the cache
constexpr std::uint64_t kSharedFrom = std::uint64_t{8} << 20; // bytes that are worth more than one thread
constexpr unsigned kMostThreads = 4;                          // memory gives no more
constexpr std::uint32_t kAllButSign = 0x7FFFFFFF;

/// The word of the file as it waits in a row of floats: 32 bits, integers with their sign.
template <class Bits, bool swap>
std::uint32_t WaitingWord(const std::byte* at)
{
    Bits bits;
    std::memcpy(&bits, at, sizeof bits);
    if constexpr (swap) bits = word_detail::Swapped(bits);
    if constexpr (sizeof(Bits) == 2)
        return static_cast<std::uint32_t>(std::int32_t{static_cast<std::int16_t>(bits)});
    else
        return bits;
}

/// Rises with the size of the value. Floats: their bits, above all others what is no number.
template <class Number>
std::uint32_t SizeOf(std::uint32_t word)
{
    if constexpr (std::is_same_v<Number, float>)
        return word & kAllButSign;
    else
        return static_cast<std::int32_t>(word) < 0 ? 0U - word : word;
}

template <class Number>
double ValueOf(const float& waiting)
{
    const auto word = std::bit_cast<std::uint32_t>(waiting);
    if constexpr (std::is_same_v<Number, float>)
        return static_cast<double>(std::bit_cast<float>(word));
    else
        return static_cast<double>(static_cast<std::int32_t>(word));
}

/// Puts pairs of words into their two rows and returns the size of the largest.
template <class Bits, class Number, bool swap>
std::uint32_t SortPairs(const std::byte* at, std::span<float> re, std::span<float> im)
{
    std::uint32_t largest = 0;
    float *to_re = re.data(), *to_im = im.data();
    const std::size_t count = re.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t real = WaitingWord<Bits, swap>(at + 2 * i * sizeof(Bits));
        const std::uint32_t imaginary = WaitingWord<Bits, swap>(at + (2 * i + 1) * sizeof(Bits));
        std::memcpy(to_re + i, &real, sizeof real);
        std::memcpy(to_im + i, &imaginary, sizeof imaginary);
        largest = std::max(largest, std::max(SizeOf<Number>(real), SizeOf<Number>(imaginary)));
    }
    return largest;
}

template <class Bits, class Number, bool swap>
std::uint32_t SortWords(const std::byte* at, std::span<float> row)
{
    std::uint32_t largest = 0;
    float* to = row.data();
    const std::size_t count = row.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t word = WaitingWord<Bits, swap>(at + i * sizeof(Bits));
        std::memcpy(to + i, &word, sizeof word);
        largest = std::max(largest, SizeOf<Number>(word));
    }
    return largest;
}

template <class Number>
double SizeAsNumber(std::uint32_t size)
{
    if constexpr (std::is_same_v<Number, float>)
        return static_cast<double>(std::bit_cast<float>(size));
    else
        return static_cast<double>(size);
}

/// Takes what is no number out of the words of a row and returns the size of the largest that stays.
template <class Number>
std::uint32_t MendWords(std::span<float> row, std::uint64_t& damaged)
{
    std::uint32_t largest = 0;
    for (float& waiting : row) {
        const auto size = SizeOf<Number>(std::bit_cast<std::uint32_t>(waiting));
        if (SizeAsNumber<Number>(size) <= kMaxFidValue) { // false for what is no number
            largest = std::max(largest, size);
            continue;
        }
        waiting = 0;
        ++damaged;
    }
    return largest;
}

/// The numbers of one part of a row, in place of their words.
template <class Number>
void Scale(std::span<float> row, double largest, double sign)
{
    const auto tail = row.last(TailOf(row.size()));
    std::array<double, 4> sum{};
    const std::size_t whole = tail.size() / 4 * 4;
    for (std::size_t i = 0; i < whole; i += 4)
        for (std::size_t k = 0; k < 4; ++k) sum[k] += ValueOf<Number>(tail[i + k]);
    for (std::size_t i = whole; i < tail.size(); ++i) sum[0] += ValueOf<Number>(tail[i]);
    const double mean = tail.empty() ? 0 : (sum[0] + sum[1] + sum[2] + sum[3]) / static_cast<double>(tail.size());
    const double factor = sign * (1 / largest);
    if (std::isnormal(factor)) {
        for (float& value : row) value = static_cast<float>((ValueOf<Number>(value) - mean) * factor);
        return;
    }
    for (float& value : row) value = static_cast<float>((ValueOf<Number>(value) - mean) / (sign * largest));
}

struct RowSize {
    std::uint32_t largest = 0;
    std::uint64_t damaged = 0;
    bool whole = true; ///< the source held what it had promised
};

template <class Bits, class Number, bool swap>
RowSize FetchRow(const ByteSource& source, const WordRows& layout, std::size_t row, SpecBuffer& spec, Bytes& buffer)
{
    RowSize size;
    const std::size_t held = layout.Held(source, row), point = layout.PointBytes();
    for (std::size_t first = 0; first < held; first += kPiece) {
        const std::size_t count = std::min(kPiece, held - first);
        const ByteSpan bytes = source.Read(layout.offset(row) + first * point, count * point, buffer);
        if (bytes.size() < count * point) {
            size.whole = false;
            return size;
        }
        const auto re = spec.DataRe[row].subspan(first, count), im = spec.DataIm[row].subspan(first, count);
        const std::uint32_t largest = layout.parts == 1 ? SortWords<Bits, Number, swap>(bytes.data(), re)
                                                        : SortPairs<Bits, Number, swap>(bytes.data(), re, im);
        size.largest = std::max(size.largest, largest);
    }
    if (SizeAsNumber<Number>(size.largest) <= kMaxFidValue) return size;
    size.largest = std::max(MendWords<Number>(spec.DataRe[row].first(held), size.damaged),
                            MendWords<Number>(spec.DataIm[row].first(held), size.damaged));
    return size;
}

/// Calls body(first, last) for parts of the rows, side by side when there is much to do.
template <class Body>
void ShareRows(std::size_t rows, std::uint64_t bytes, const Body& body)
{
    const std::size_t most = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
    const std::size_t shares = bytes < kSharedFrom ? 1 : std::min(most, rows);
    std::vector<std::jthread> others;
    for (std::size_t share = 1; share < shares; ++share)
        others.emplace_back([&body, rows, shares, share] { body(rows * share / shares, rows * (share + 1) / shares); });
    body(0, rows / shares);
}

template <class Bits, class Number, bool swap>
Result<std::uint64_t> Store(const ByteSource& source, const WordRows& layout, SpecBuffer& spec)
{
    std::vector<RowSize> sizes(layout.rows);
    ShareRows(layout.rows, source.size(), [&](std::size_t first, std::size_t last) {
        Bytes buffer;
        for (std::size_t row = first; row < last; ++row)
            sizes[row] = FetchRow<Bits, Number, swap>(source, layout, row, spec, buffer);
    });
    RowSize all;
    for (const RowSize& size : sizes) {
        all.largest = std::max(all.largest, size.largest);
        all.damaged += size.damaged;
        all.whole = all.whole && size.whole;
    }
    if (!all.whole) return Error{ErrorCode::truncated, "StoreWordRows/1DDRW", "the file could not be read to its end"};
    if (all.largest == 0) return all.damaged;
    const double largest = SizeAsNumber<Number>(all.largest);
    ShareRows(layout.rows, source.size(), [&](std::size_t first, std::size_t last) {
        for (std::size_t row = first; row < last; ++row) {
            const std::size_t held = layout.Held(source, row);
            Scale<Number>(spec.DataRe[row].first(held), largest, 1);
            if (layout.parts == 2) Scale<Number>(spec.DataIm[row].first(held), largest, layout.imaginary_sign);
        }
    });
    return all.damaged;
}

/// Numbers of 8 bytes have no room to wait in: the rows are read twice.
Result<std::uint64_t> StoreWide(const ByteSource& source, const WordRows& layout, SpecBuffer& spec)
{
    Bytes buffer;
    bool whole = true;
    const FidRows rows{layout.rows, layout.points, [&](std::size_t row, std::span<double> re, std::span<double> im) {
                           std::size_t held = layout.Held(source, row);
                           const ByteSpan bytes = source.Read(layout.offset(row), held * layout.PointBytes(), buffer);
                           whole = whole && bytes.size() == held * layout.PointBytes();
                           held = bytes.size() / layout.PointBytes();
                           if (layout.parts == 1) {
                               DecodeWords(bytes, layout.kind, layout.order, re.first(held));
                               std::ranges::fill(im.first(held), 0.0);
                               return held;
                           }
                           DecodePairs(bytes, layout.kind, layout.order, re.first(held), im.first(held));
                           for (double& value : im.first(held)) value *= layout.imaginary_sign;
                           return held;
                       }};
    const std::uint64_t damaged = StoreFidRows(rows, spec);
    if (!whole) return Error{ErrorCode::truncated, "StoreWordRows/1DDRW", "the file could not be read to its end"};
    return damaged;
}

} // namespace

std::size_t WordRows::Held(const ByteSource& source, std::size_t row) const
{
    const std::uint64_t begin = offset(row);
    if (begin >= source.size()) return 0;
    return static_cast<std::size_t>(std::min<std::uint64_t>(points, (source.size() - begin) / PointBytes()));
}

Result<std::uint64_t> StoreWordRows(const ByteSource& source, const WordRows& layout, SpecBuffer& spec)
{
    if (layout.kind == WordKind::float64) return StoreWide(source, layout, spec);
    Result<std::uint64_t> damaged = std::uint64_t{0};
    word_detail::WithWords(layout.kind, layout.order, [&]<class Bits, class Number, bool swap>() {
        if constexpr (sizeof(Bits) <= 4) damaged = Store<Bits, Number, swap>(source, layout, spec);
    });
    return damaged;
}

} // namespace nmr
