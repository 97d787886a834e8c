#pragma once
// The row that the tools of the main form work on.

#include "core/global_block.h"

#include <algorithm>

namespace nmr {

/// CurrentRow of a set, held inside its rows.
inline std::size_t ShownRowIndex(const GlobalBlock& g, const DataSet& set)
{
    const std::size_t rows = set.spec.DataRe.rows();
    const auto row = static_cast<std::size_t>(std::max<std::int32_t>(g.CurrentRow, 0));
    return rows == 0 ? 0 : std::min(row, rows - 1);
}

/// Points of a row that axis and arrays all hold; 0 for an empty set.
inline std::size_t HeldPoints(const DataSet& set)
{
    const auto points = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    if (set.spec.DataRe.rows() == 0) return 0;
    return std::min({points, set.spec.DataRe.columns(), set.spec.XAxis.size()});
}

} // namespace nmr
