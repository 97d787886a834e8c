#pragma once
// Spectra as arrays for other programs.

#include "core/data_set.h"
#include "core/result.h"

#include <optional>
#include <string>
#include <utility>

namespace nmr {

/// NumPy file format 1.0, complex64, C order, shape (rows, points); the index rises with ppm whatever
/// the direction of the set's axis.
Status WriteNpy(const DataSet& set, const std::string& path);

/// "ppm,real,imaginary" and one line a point of one row, with rising ppm; only the points inside `range_ppm` (left,
/// right) when it is given.
Status WriteCsv(const DataSet& set, std::size_t row, const std::optional<std::pair<double, double>>& range_ppm,
                const std::string& path);

} // namespace nmr
