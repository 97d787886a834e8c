#pragma once
// A rectangular array, rows first, in one allocation.

#include "core/zeroed_block.h"

#include <cstddef>
#include <span>
#include <vector>

namespace nmr {

template <class T>
class RowArray {
public:
    /// Every element zero; what was held is discarded.
    void Resize(std::size_t rows, std::size_t columns)
    {
        rows_ = columns_ = 0; // what stands when there is no memory
        values_.Reset(rows * columns);
        rows_ = rows;
        columns_ = columns;
    }
    void Release()
    {
        values_ = {};
        rows_ = columns_ = 0;
    }
    std::span<T> operator[](std::size_t row) { return all().subspan(row * columns_, columns_); }
    std::span<const T> operator[](std::size_t row) const { return all().subspan(row * columns_, columns_); }
    std::size_t rows() const { return rows_; }
    std::size_t columns() const { return columns_; }
    bool empty() const { return values_.all().empty(); }
    std::span<T> all() { return values_.all(); }
    std::span<const T> all() const { return values_.all(); }

private:
    ZeroedBlock<T> values_;
    std::size_t rows_ = 0;
    std::size_t columns_ = 0;
};

/// A line with a negative side: index 0 stands `origin` elements behind the first.
template <class T>
class OffsetLine {
public:
    explicit OffsetLine(std::ptrdiff_t origin) : origin_(origin) {}
    /// Bounds -origin .. last, every element zero.
    void Resize(std::ptrdiff_t last) { values_.assign(static_cast<std::size_t>(origin_ + last + 1), T{}); }
    void Release() { std::vector<T>().swap(values_); }
    std::ptrdiff_t first() const { return -origin_; }
    std::ptrdiff_t last() const { return static_cast<std::ptrdiff_t>(values_.size()) - origin_ - 1; }
    bool empty() const { return values_.empty(); }
    T& operator[](std::ptrdiff_t i) { return values_[static_cast<std::size_t>(i + origin_)]; }
    const T& operator[](std::ptrdiff_t i) const { return values_[static_cast<std::size_t>(i + origin_)]; }
    /// Elements 0 .. last as one span.
    std::span<const T> from_zero() const
    {
        return std::span<const T>(values_).subspan(static_cast<std::size_t>(origin_));
    }

private:
    std::ptrdiff_t origin_;
    std::vector<T> values_;
};

} // namespace nmr
