#pragma once
// The file-level sections behind the data blocks: page layout, labels, history. What is not used here
// travels as bytes.

#include "core/data_set.h"
#include "formats/tavo4_cells.h"

#include <vector>

namespace nmr::tavo4 {

inline constexpr std::size_t kBlocks = 40;
inline constexpr std::size_t kHeadSize = 1296; ///< with the label of the 2D section
enum class Version { v400, v401 };

/// Place of a data block's entry in the file's address table.
constexpr std::size_t BlockEntry(std::size_t block)
{
    return block < 20 ? 520 + 8 * block : 672 + 8 * block;
}
inline constexpr std::size_t kFirstLayoutEntry = 688;
inline constexpr std::size_t kLabelOfBlock = 16; ///< stands before a block, outside of its length
inline constexpr std::size_t kBlockTable = 32;   ///< addresses inside a block ...
inline constexpr std::size_t kBlockTableEnd = 200;

Entry ReadEntry(ByteSpan file, std::size_t offset);
/// Whether a section lies inside the first `end` bytes of the file.
bool Fits(const Entry& entry, std::int64_t end);
std::string BlockLabel(std::size_t block);

/// Layout sections and blocks beyond the last slot, as they stand in the file.
std::vector<CarriedSection> ReadCarried(ByteSpan file, Version version);

/// Blocks beyond the last slot, each behind its label, with their entries.
void WriteCarriedBlocks(const DataSet& set, FileImage& image);
/// All layout sections with their entries. Without a set, and where the set carries nothing, only the
/// label is laid down and the length stays 0.
void WriteLayout(const DataSet* set, FileImage& image);

} // namespace nmr::tavo4
