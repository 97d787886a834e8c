#include "core/zeroed_block.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <new>

namespace nmr {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;

std::size_t WholePages(std::size_t bytes)
{
    return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

/// The system gives addresses of small pages: a large page more is asked for, and what stands before and
/// behind the aligned part goes back.
void* MapZeroed(std::size_t bytes)
{
    const std::size_t size = WholePages(bytes), asked = size + kLargePage;
    if (size < bytes || asked < size) throw std::bad_alloc();
    void* const mapped = ::mmap(nullptr, asked, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) throw std::bad_alloc();
    auto* const begin = static_cast<std::byte*>(mapped);
    const std::size_t before = (kLargePage - reinterpret_cast<std::uintptr_t>(begin) % kLargePage) % kLargePage;
    if (before > 0) ::munmap(begin, before);
    if (before < kLargePage) ::munmap(begin + before + size, kLargePage - before);
    ::madvise(begin + before, size, MADV_HUGEPAGE); // a system without large pages does without
    return begin + before;
}

} // namespace

void* AllocateZeroed(std::size_t bytes)
{
    if (bytes >= kMappedBytes) return MapZeroed(bytes);
    void* const block = bytes == 0 ? nullptr : std::calloc(bytes, 1);
    if (block == nullptr && bytes > 0) throw std::bad_alloc();
    return block;
}

void FreeZeroed(void* block, std::size_t bytes) noexcept
{
    if (bytes >= kMappedBytes)
        ::munmap(block, WholePages(bytes));
    else
        std::free(block);
}

} // namespace nmr
