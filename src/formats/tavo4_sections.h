#pragma once
// The sections of a data block: one row each, in the order of the file.

#include "core/data_set.h"
#include "formats/tavo4_cells.h"

#include <span>
#include <string_view>

namespace nmr::tavo4 {

struct SectionRow {
    std::string_view label;
    std::uint16_t entry; ///< place of its address in the block's table
    /// Whether the set has the section at all; nullptr: always.
    bool (*wanted)(const DataSet& set);
    /// Appends what stands behind the label; the length told in the table counts from the label and is
    /// 0 for a section without contents.
    std::size_t (*write)(const DataSet& set, FileImage& image);
    /// Takes the section, label included. Never fails: what it lacks keeps its default.
    void (*read)(DataSet& set, ByteSpan section);
};

std::span<const SectionRow> SectionRows();

/// The table entries of sections that are read by themselves.
inline constexpr std::uint16_t kOrgFileEntry = 32;
inline constexpr std::uint16_t kParameterEntry = 40;
inline constexpr std::uint16_t kDataEntry = 48;
inline constexpr std::uint16_t kArrayEntry = 104;
inline constexpr std::uint16_t kFileNameEntry = 128;

/// The history, which stands in the block of a set and once more in the file.
std::size_t WriteHistory(const DataSet& set, FileImage& image);

/// Points as the file holds them: rows of POINT values, real parts, then imaginary parts.
std::size_t MatrixBytes(const DataSet& set);
/// Copies both matrices into the allocated arrays of data and source; numbers that are none become 0 and are
/// counted.
std::size_t ReadMatrices(DataSet& set, ByteSpan section);

} // namespace nmr::tavo4
