#pragma once
// Cells of the native file: a cell is an offset, a width and a member of a record. Writer and reader
// walk the same tables of cells, so that the two can't disagree about a place. All little-endian.

#include "formats/data_conversion.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace nmr::tavo4 {

using MutableBytes = std::span<std::byte>;

/// Bytes of a number, least significant first.
template <class T>
std::array<std::byte, sizeof(T)> ToLittle(T value)
{
    auto bytes = std::bit_cast<std::array<std::byte, sizeof(T)>>(value);
    if constexpr (std::endian::native == std::endian::big) std::ranges::reverse(bytes);
    return bytes;
}

template <class T>
T FromLittle(ByteSpan bytes)
{
    std::array<std::byte, sizeof(T)> raw;
    std::ranges::copy(bytes.first(sizeof(T)), raw.begin());
    if constexpr (std::endian::native == std::endian::big) std::ranges::reverse(raw);
    return std::bit_cast<T>(raw);
}

/// `text` in CP932 without control characters and blanks at its ends, cut between two characters to
/// `width` bytes. What a reader would trim is not written, so that a second save lays down the same.
std::string FieldText(std::string_view text, std::size_t width);

/// A member of another width than its cell: integers saturate, raw words keep their low bits.
template <class To, class From>
To Convert(From value)
{
    if constexpr (std::is_same_v<To, From> || std::is_floating_point_v<To>) {
        return static_cast<To>(value);
    } else if constexpr (std::is_floating_point_v<From>) {
        constexpr double kLow = std::numeric_limits<To>::min(), kHigh = std::numeric_limits<To>::max();
        const auto wide = static_cast<double>(value);
        return wide == wide ? static_cast<To>(std::clamp(wide, kLow, kHigh)) : To{0};
    } else if constexpr (std::is_unsigned_v<From>) {
        return static_cast<To>(static_cast<std::make_unsigned_t<To>>(value));
    } else if constexpr (std::is_unsigned_v<To>) {
        return static_cast<To>(static_cast<std::make_unsigned_t<From>>(value));
    } else {
        using Limits = std::numeric_limits<To>;
        const auto wide = static_cast<std::int64_t>(value);
        return static_cast<To>(std::clamp<std::int64_t>(wide, Limits::min(), Limits::max()));
    }
}

template <class Record>
struct Cell {
    std::uint16_t offset = 0;
    std::uint16_t width = 0;
    void (*put)(const Record& record, MutableBytes cell) = nullptr; ///< nullptr: read only
    void (*get)(Record& record, ByteSpan cell) = nullptr;           ///< nullptr: written only
};

template <class T>
struct MemberTraits;
template <class Class, class Type>
struct MemberTraits<Type Class::*> {
    using Record = Class;
    using Value = Type;
};
template <auto Member>
using RecordOf = typename MemberTraits<decltype(Member)>::Record;
template <auto Member>
using ValueOf = typename MemberTraits<decltype(Member)>::Value;

template <class Stored>
void Store(MutableBytes cell, Stored value)
{
    std::ranges::copy(ToLittle(value), cell.begin());
}

/// A number, stored as `Stored`: by default the member's own type.
template <auto Member, class Stored = ValueOf<Member>>
constexpr Cell<RecordOf<Member>> Number(std::uint16_t offset)
{
    using Record = RecordOf<Member>;
    return {offset, sizeof(Stored),
            [](const Record& record, MutableBytes cell) { Store(cell, Convert<Stored>(record.*Member)); },
            [](Record& record, ByteSpan cell) { record.*Member = Convert<ValueOf<Member>>(FromLittle<Stored>(cell)); }};
}

/// One element of an array member.
template <auto Member, std::size_t Index, class Stored = typename ValueOf<Member>::value_type>
constexpr Cell<RecordOf<Member>> Element(std::uint16_t offset)
{
    using Record = RecordOf<Member>;
    using Value = typename ValueOf<Member>::value_type;
    return {offset, sizeof(Stored),
            [](const Record& record, MutableBytes cell) { Store(cell, Convert<Stored>((record.*Member)[Index])); },
            [](Record& record, ByteSpan cell) { (record.*Member)[Index] = Convert<Value>(FromLittle<Stored>(cell)); }};
}

/// A run of elements from `First` on, packed without gaps.
template <auto Member, std::size_t First = 0>
constexpr Cell<RecordOf<Member>> Run(std::uint16_t offset)
{
    using Record = RecordOf<Member>;
    using Value = typename ValueOf<Member>::value_type;
    constexpr std::size_t kCount = std::tuple_size_v<ValueOf<Member>> - First;
    return {offset, kCount * sizeof(Value),
            [](const Record& record, MutableBytes cell) {
                for (std::size_t i = 0; i < kCount; ++i)
                    Store(cell.subspan(i * sizeof(Value)), (record.*Member)[First + i]);
            },
            [](Record& record, ByteSpan cell) {
                for (std::size_t i = 0; i < kCount; ++i)
                    (record.*Member)[First + i] = FromLittle<Value>(cell.subspan(i * sizeof(Value)));
            }};
}

inline void StoreText(MutableBytes cell, std::string_view text)
{
    const std::string bytes = FieldText(text, cell.size());
    std::ranges::copy(std::as_bytes(std::span(bytes)), cell.begin());
}

/// A text of `width` bytes, filled up with zeros.
template <auto Member>
constexpr Cell<RecordOf<Member>> Text(std::uint16_t offset, std::uint16_t width)
{
    using Record = RecordOf<Member>;
    return {offset, width, [](const Record& record, MutableBytes cell) { StoreText(cell, record.*Member); },
            [](Record& record, ByteSpan cell) { record.*Member = GetText(cell, 0, cell.size()); }};
}

/// Lays the cells of a record into a region that is zero.
template <class Record>
void PutCells(MutableBytes region, std::span<const Cell<std::type_identity_t<Record>>> cells, const Record& record)
{
    for (const auto& cell : cells)
        if (cell.put != nullptr) cell.put(record, region.subspan(cell.offset, cell.width));
}

/// Takes the cells that the region holds whole; the others leave their members alone.
template <class Record>
void GetCells(ByteSpan region, std::span<const Cell<std::type_identity_t<Record>>> cells, Record& record)
{
    for (const auto& cell : cells)
        if (cell.get != nullptr && std::size_t{cell.offset} + cell.width <= region.size())
            cell.get(record, region.subspan(cell.offset, cell.width));
}

/// Entry of an address table: the absolute offset of a section's label and the length from there.
struct Entry {
    std::int64_t address = 0;
    std::int64_t length = 0;
    bool present() const { return address > 0 && length > 0; }
};

inline constexpr std::size_t kLabelSize = 16;

/// The file as it grows. Sections start on the next boundary of 16 bytes behind the last.
class FileImage {
public:
    explicit FileImage(std::size_t expected) { bytes_.reserve(expected); }
    std::size_t size() const { return bytes_.size(); }
    /// Zero bytes up to the start of the next section; returns it.
    std::size_t Align()
    {
        bytes_.resize((bytes_.size() / 16 + 1) * 16);
        return bytes_.size();
    }
    /// Appends `count` zero bytes and returns them; good until the next append.
    MutableBytes Append(std::size_t count)
    {
        bytes_.resize(bytes_.size() + count);
        return MutableBytes(bytes_).last(count);
    }
    /// Appends bytes that are there already.
    void Append(ByteSpan bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
    void Label(std::string_view label)
    {
        std::ranges::copy(std::as_bytes(std::span(label)), Append(kLabelSize).begin());
    }
    MutableBytes At(std::size_t offset, std::size_t count) { return MutableBytes(bytes_).subspan(offset, count); }
    void PutEntry(std::size_t offset, std::size_t address, std::size_t length)
    {
        Store(At(offset, 4), static_cast<std::int32_t>(address));
        Store(At(offset + 4, 4), static_cast<std::int32_t>(length));
    }
    std::vector<std::byte> Take() { return std::move(bytes_); }

private:
    std::vector<std::byte> bytes_;
};

} // namespace nmr::tavo4
