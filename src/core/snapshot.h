#pragma once
// The points of a set in a file of their own, for steps that are too large to be kept in memory: no
// head, the real parts of all rows as 32-bit floats, row by row, then the imaginary parts likewise.

#include "core/data_set.h"
#include "core/result.h"

#include <filesystem>

namespace nmr {

/// RowCount rows of POINT points. Row by row, so that no second copy of the points is made; a file that
/// could not be written whole is removed.
Status WriteSpcDataTemp(const DataSet& set, const std::filesystem::path& file);

/// The same back into DataRe/DataIm.
/// @return false when the file is missing or too short for the set's rows, which then stay as they are
bool ReadSpcDataTemp(DataSet& set, const std::filesystem::path& file);

/// Whether the file holds exactly the points of the set.
bool HoldsSnapshotOf(const DataSet& set, const std::filesystem::path& file);

/// The contents of two files change places; both must exist.
bool ExchangeFiles(const std::filesystem::path& a, const std::filesystem::path& b);

/// Moves `from` to the first free name `stem` + "001" ... "999" beside it, never over a file of another
/// run.
/// @return the new path; empty when all names are taken or the file can't be moved
std::filesystem::path MoveToFreeNumber(const std::filesystem::path& from, const std::filesystem::path& stem);

} // namespace nmr
