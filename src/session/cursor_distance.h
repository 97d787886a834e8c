#pragma once
// Two cursors on the spectrum and the distance between them.

#include "core/global_block.h"

#include <array>
#include <string>

namespace nmr {

/// ppm of the tallest top (or, upside down, bottom) of a row within `reach_ppm` of a position; the position
/// itself when none lies there.
double NearestTop(const DataSet& set, std::int32_t row, double ppm, double reach_ppm);

class CursorDistance {
public:
    /// A third and two thirds of the way through the shown range.
    void PlaceIn(double left_ppm, double right_ppm);
    /// Cursor 0 or 1; what is no number is passed over.
    void Move(std::size_t cursor, double ppm);
    double ppm(std::size_t cursor) const { return ppm_.at(cursor); }

    /// "7.2601 ppm   2905.03 Hz"; without the Hz for data without a frequency.
    std::string Position(const DataSet& set, std::size_t cursor) const;
    /// The same of the difference, which is never negative.
    std::string Distance(const DataSet& set) const;

private:
    std::array<double, 2> ppm_{};
};

} // namespace nmr
