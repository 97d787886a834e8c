#pragma once
// The base line of the shown row of slot 0: points found by a noise test or set by hand, and straight lines
// through them. Two smooth curves stand beside them: analysis/smooth_base_line.h.

#include "core/global_block.h"

#include <cstdint>
#include <span>
#include <vector>

namespace nmr {

inline constexpr std::size_t kMaxBasePoints = 1001;

/// Fills PointFlag: 1 where the source of the shown row turns through the Argand plane as noise and the feet of
/// lines do between two points, else 0; points 0 and POINT-1 are 0.
void Mark_Signal_Points(GlobalBlock& g);

/// Least squares of SourceRe against j - center, j from center - half to center + half inside the row.
struct LineFit {
    double slope = 0, intercept = 0;
};
LineFit Line_Fit(const GlobalBlock& g, std::int32_t center, std::int32_t half);

/// Fills BasePoints anew; `average_points` is the half width of the local fit. A row without a quiet place
/// leaves the list empty.
void Auto_Base_Points(GlobalBlock& g, std::int32_t average_points);

// The point tool.
/// Adds a point by hand, at the level of the local fit; one that is there already takes the new level. Its index;
/// -1 outside the row or when the list is full.
std::int32_t Add_Base_Point(GlobalBlock& g, std::int32_t point, std::int32_t average_points);
/// Index of the base point nearest to a point within `reach` points, -1 for none.
std::int32_t Find_Base_Point(const GlobalBlock& g, std::int32_t point, std::int32_t reach);
bool Delete_Base_Point(GlobalBlock& g, std::int32_t index);
/// Drags a base point up or down.
bool Set_Base_Level_Of(GlobalBlock& g, std::int32_t index, float value);

/// Indices of the base points that seem to stand on lines: their levels lie well outside the noise around the smooth
/// curve, at places that carry signal. The noise test takes a slope for quiet where zero filling has made neighbours
/// alike.
std::vector<std::size_t> Base_Points_On_Lines(const GlobalBlock& g);
/// Takes those out of the list; how many they were.
std::size_t Drop_Base_Points_On_Lines(GlobalBlock& g);

/// The level at each point: straight lines between the base points, constant outside. All zero without points.
std::vector<float> Straight_Base_Line(const GlobalBlock& g);

/// DataRe of the shown row = SourceRe minus the straight lines; nothing without base points. The imaginary part
/// stays, so that a phase correction afterwards is wrong.
void Subtract_Straight_Base_Line(GlobalBlock& g);
/// The same with a curve of one level a point.
void Subtract_Base_Line(GlobalBlock& g, std::span<const float> curve);

} // namespace nmr
