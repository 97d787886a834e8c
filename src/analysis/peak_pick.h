#pragma once
// Peak picking of the shown row of slot 0: three levels, a scan for rises and falls, and the list edits of
// the mouse. No function here keeps an undo step; commands do that before they call.

#include "core/global_block.h"

#include <cstdint>

namespace nmr {

/// The shown row and its axis as the scan reads them: IntegralCurve row 0 and IntegralSum. Done by Peak_Pick.
void Refresh_Reduced_Copy(GlobalBlock& g);

/// Adds the peaks between two points of the shown row to the list, in order of Position; known ones (within
/// 0.01 Hz) are left. A top must reach DispLeft * PeakNoise, and the row must rise to it and fall behind it
/// by DispLeft * |PeakThreshold - PeakWidth|. Ends are ordered and held inside the row.
void Peak_Pick(GlobalBlock& g, std::int32_t first, std::int32_t last);
/// The same for tops below the base line, by the same levels: for DEPT and APT. Beside Peak_Pick, never in it.
void Peak_Pick_Negative(GlobalBlock& g, std::int32_t first, std::int32_t last);

// The three levels as the fields show them, fractions of DispLeft. PeakThreshold holds noise plus base, and
// PeakNoise the detect level: their names are crossed in the files.
double Noise_Level(const DataSet& set);
double Detect_Level(const DataSet& set);
double Base_Level(const DataSet& set);
/// Values that are no numbers are refused; false then. The base level keeps the noise level as it is.
bool Set_Noise_Level(DataSet& set, double level);
bool Set_Detect_Level(DataSet& set, double level);
bool Set_Base_Level(DataSet& set, double level);

/// Adds the highest top (with `negative` also the lowest) within `reach_ppm` of a position, or the nearest one
/// beyond; false when there is none or when it is listed already.
bool Add_Peak_At(GlobalBlock& g, double ppm, double reach_ppm, bool negative);
/// Whether Add_Peak_At would add one, so that a command keeps no empty step.
bool Would_Add_Peak(const GlobalBlock& g, double ppm, double reach_ppm, bool negative);
/// Index of the listed peak nearest to a position within `reach_ppm`, -1 for none.
std::int32_t Find_Peak(const DataSet& set, double ppm, double reach_ppm);
bool Delete_Peak_At(DataSet& set, double ppm, double reach_ppm);
/// Deletes what stands between two positions, ends included; the number deleted.
std::size_t Delete_Peaks_Between(DataSet& set, double a_ppm, double b_ppm);

} // namespace nmr
