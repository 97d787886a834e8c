#pragma once
// Values as bytes and back, for files that only this program reads, on the machine that wrote them:
// bytes of numbers as they lie in memory, texts and lists behind their count. One list of members
// (record_members.h) serves the writer, the reader and the layout's identity.

#include "core/checksum.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace nmr {

// No bool: not every byte is one.
template <class T>
concept Plain = (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) || std::is_enum_v<T>;

template <class T>
inline constexpr bool kIsVector = false;
template <class T>
inline constexpr bool kIsVector<std::vector<T>> = true;
template <class T>
inline constexpr bool kIsArray = false;
template <class T, std::size_t N>
inline constexpr bool kIsArray<std::array<T, N>> = true;
template <class T>
inline constexpr bool kIsOptional = false;
template <class T>
inline constexpr bool kIsOptional<std::optional<T>> = true;

class ImageWriter {
public:
    explicit ImageWriter(std::vector<std::byte>& out) : out_(out) {}

    template <class... T>
    void operator()(const T&... values)
    {
        (Put(values), ...);
    }
    void Raw(std::span<const std::byte> bytes)
    {
        const std::size_t at = out_.size();
        out_.resize(at + bytes.size());
        if (!bytes.empty()) std::memcpy(out_.data() + at, bytes.data(), bytes.size());
    }

private:
    template <class T>
    void Put(const T& value)
    {
        if constexpr (Plain<T>) {
            Raw(std::as_bytes(std::span(&value, 1)));
        } else if constexpr (std::is_same_v<T, std::string> || kIsVector<T>) {
            Put(static_cast<std::uint32_t>(value.size()));
            Elements(value);
        } else if constexpr (kIsArray<T>) {
            Elements(value);
        } else if constexpr (kIsOptional<T>) {
            Put(static_cast<std::uint8_t>(value.has_value()));
            if (value) Put(*value);
        } else {
            EachMember(*this, value);
        }
    }
    template <class List>
    void Elements(const List& list)
    {
        if constexpr (Plain<typename List::value_type>)
            Raw(std::as_bytes(std::span(list)));
        else
            for (const auto& value : list) Put(value);
    }

    std::vector<std::byte>& out_;
};

/// Never reads beyond its bytes, and makes no list longer than they could hold.
class ImageReader {
public:
    explicit ImageReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    template <class... T>
    void operator()(T&... values)
    {
        (Get(values), ...);
    }
    /// Everything was there so far.
    bool good() const { return good_; }
    /// ... and nothing is left over.
    bool complete() const { return good_ && bytes_.empty(); }
    std::span<const std::byte> Raw(std::size_t count)
    {
        if (count > bytes_.size()) {
            good_ = false;
            return {};
        }
        const auto taken = bytes_.first(count);
        bytes_ = bytes_.subspan(count);
        return taken;
    }

private:
    template <class T>
    void Get(T& value)
    {
        if constexpr (Plain<T>) {
            Copy(std::as_writable_bytes(std::span(&value, 1)));
        } else if constexpr (std::is_same_v<T, std::string> || kIsVector<T>) {
            std::uint32_t count = 0;
            Get(count);
            constexpr std::size_t least = Plain<typename T::value_type> ? sizeof(typename T::value_type) : 1;
            if (!good_ || count > bytes_.size() / least) {
                good_ = false;
                return;
            }
            value.resize(count);
            Elements(value);
        } else if constexpr (kIsArray<T>) {
            Elements(value);
        } else if constexpr (kIsOptional<T>) {
            std::uint8_t there = 0;
            Get(there);
            if (there != 0)
                Get(value.emplace());
            else
                value.reset();
        } else {
            EachMember(*this, value);
        }
    }
    template <class List>
    void Elements(List& list)
    {
        if constexpr (Plain<typename List::value_type>)
            Copy(std::as_writable_bytes(std::span(list)));
        else
            for (auto& value : list) Get(value);
    }
    void Copy(std::span<std::byte> to)
    {
        const auto from = Raw(to.size());
        if (!from.empty()) std::memcpy(to.data(), from.data(), from.size());
    }

    std::span<const std::byte> bytes_;
    bool good_ = true;
};

/// Kinds and widths of the members in their order: another list of members has another identity.
class LayoutIdentity {
public:
    template <class... T>
    void operator()(const T&... values)
    {
        (Add(values), ...);
    }
    std::uint64_t value() const { return sum_; }

private:
    void Mix(std::uint64_t word) { sum_ = Checksum64(std::as_bytes(std::span(&word, 1)), sum_); }
    template <class T>
    void Add(const T& value)
    {
        if constexpr (Plain<T>) {
            Mix(std::is_floating_point_v<T> ? 64 + sizeof(T) : sizeof(T));
        } else if constexpr (std::is_same_v<T, std::string>) {
            Mix(128);
        } else if constexpr (kIsVector<T>) {
            Mix(129);
            Add(typename T::value_type{});
        } else if constexpr (kIsArray<T>) {
            Mix(1000 + value.size());
            Add(value[0]);
        } else if constexpr (kIsOptional<T>) {
            Mix(130);
            Add(typename T::value_type{});
        } else {
            EachMember(*this, value);
        }
    }
    std::uint64_t sum_ = 0;
};

} // namespace nmr
