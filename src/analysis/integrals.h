#pragma once
// Integral regions of slot 0: sums over the points of the shown row, each with a base line of its own, and
// the edits of the mouse. No function here keeps an undo step; commands do that before they call.

#include "core/global_block.h"
#include "core/integral_curve.h"

#include <cstdint>
#include <optional>

namespace nmr {

inline constexpr std::size_t kMaxIntegrals = 200;

/// Sum over the points of a region from StartPoint down to EndPoint, in units of DispLeft, with B0 + B1 * (s - p) / n
/// added at point p; `result` is the value it starts from. Stores the float in Value and returns it. 0 is stored
/// when the set has no DispLeft; an index outside the list gives `result`.
float Calc_Integral(GlobalBlock& g, std::int32_t index, float result);
/// All of them; after a change of the points, of the row, or an undo. Of a file's list that is longer than lists
/// may be, none: their sums would take long.
void Calc_All_Integrals(GlobalBlock& g);

/// Adds the region between two positions, in either order and on an axis of either direction; the list stays in
/// order of the point index, and the reference with its region. Returns its index; -1 when 200 exist, when the
/// set has no points, or when both positions lie beyond the same end of the axis.
std::int32_t Add_Integral(GlobalBlock& g, double a_ppm, double b_ppm);
/// Cuts a region in two at a position inside it; both together hold the sum of the whole, and the right half goes
/// on with the base line that the left half ends with. False at 200, or when nothing would be left on a side.
bool Divide_Integral(GlobalBlock& g, std::int32_t index, double ppm);
/// Shifts a region by whole points, held inside the row.
bool Move_Integral(GlobalBlock& g, std::int32_t index, double by_ppm);
enum class IntegralEnd { start, end };
/// Puts one end of a region to a position; beyond the other end both change places.
bool Enlarge_Integral(GlobalBlock& g, std::int32_t index, IntegralEnd which, double ppm);
bool Delete_Integral(GlobalBlock& g, std::int32_t index);
void Delete_All_Integrals(DataSet& set);
/// A value that the reference may have: above 0, and finite as the float that is kept.
bool IsIntegralScale(double value);
/// Makes a region the reference; with a value also its listed value, which must be above 0.
bool Set_Integral_Reference(DataSet& set, std::int32_t index, std::optional<double> value = std::nullopt);
/// New base-line terms; false when neither differs or one is no number.
bool Set_B0_B1(GlobalBlock& g, std::int32_t index, float b0, float b1);

/// The region at a position, -1 for none; of overlapping ones the narrowest.
std::int32_t Find_Integral(const DataSet& set, double ppm);

/// Of the shown row.
IntegralCurves CurvesOf(const GlobalBlock& g);

} // namespace nmr
