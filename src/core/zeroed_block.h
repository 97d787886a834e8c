#pragma once
// Memory for many numbers that begin as zero.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace nmr {

/// Zeroed bytes, aligned for every type. From kMappedBytes on they come straight from the system, on large
/// pages where it has them: such memory is zero without being written, so that arrays which a command never
/// touches cost nothing, and the others a fraction of their usual page faults.
/// @throws std::bad_alloc
void* AllocateZeroed(std::size_t bytes);
void FreeZeroed(void* block, std::size_t bytes) noexcept;
inline constexpr std::size_t kMappedBytes = std::size_t{4} << 20;

template <class T>
class ZeroedBlock {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    ZeroedBlock() = default;
    ZeroedBlock(const ZeroedBlock& other) { *this = other; }
    ZeroedBlock(ZeroedBlock&& other) noexcept { Swap(other); }
    ZeroedBlock& operator=(const ZeroedBlock& other)
    {
        if (this == &other) return *this;
        if (other.size_ > capacity_) Replace(other.size_);
        size_ = other.size_;
        if (size_ > 0) std::memcpy(data_, other.data_, size_ * sizeof(T));
        return *this;
    }
    ZeroedBlock& operator=(ZeroedBlock&& other) noexcept
    {
        ZeroedBlock(std::move(other)).Swap(*this);
        return *this;
    }
    ~ZeroedBlock() { FreeZeroed(data_, capacity_ * sizeof(T)); }

    /// `count` zeros; what was held is discarded.
    void Reset(std::size_t count)
    {
        const bool fresh = count > capacity_ || count * sizeof(T) >= kMappedBytes;
        if (fresh) Replace(count);
        size_ = count;
        if (!fresh) std::ranges::fill(all(), T{});
    }
    std::span<T> all() { return {data_, size_}; }
    std::span<const T> all() const { return {data_, size_}; }

private:
    void Replace(std::size_t count)
    {
        *this = ZeroedBlock(); // gives the old memory back first
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_alloc();
        data_ = static_cast<T*>(AllocateZeroed(count * sizeof(T)));
        capacity_ = count;
    }
    void Swap(ZeroedBlock& other) noexcept
    {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

    T* data_ = nullptr;
    std::size_t size_ = 0, capacity_ = 0;
};

} // namespace nmr
