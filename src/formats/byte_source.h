#pragma once
// The bytes of a file for readers that take it piece by piece.

#include "core/file_layer.h"
#include "formats/data_conversion.h"

#include <cstdint>

namespace nmr {

/// Either bytes in memory or an opened file, of which only the pieces asked for ever stand in memory. What it
/// is made from must outlive it.
class ByteSource {
public:
    ByteSource(ByteSpan bytes) : bytes_(bytes) {}        // NOLINT: readers are handed either
    ByteSource(const OpenedFile& file) : file_(&file) {} // NOLINT
    std::uint64_t size() const { return file_ != nullptr ? file_->size() : bytes_.size(); }
    /// `count` bytes from an offset, in `buffer` when they come from a file. Fewer at the end of the source, and
    /// when the file has become shorter or can't be read. May be called from several threads at once.
    ByteSpan Read(std::uint64_t offset, std::size_t count, Bytes& buffer) const
    {
        if (file_ == nullptr) {
            const auto from = static_cast<std::size_t>(std::min<std::uint64_t>(offset, bytes_.size()));
            return bytes_.subspan(from, std::min(count, bytes_.size() - from));
        }
        if (buffer.size() < count) buffer.resize(count);
        return ByteSpan(buffer).first(file_->ReadAt(offset, std::span(buffer).first(count)));
    }

private:
    ByteSpan bytes_;
    const OpenedFile* file_ = nullptr;
};

} // namespace nmr
