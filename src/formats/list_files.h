#pragma once
// The list files of peaks and integrals, and their reading.

#include "core/global_block.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nmr {

/// What the second axis of a list counts; the numbers are those of AXIS MODE PPM.
enum class ListUnit : std::int32_t { ppm = 0, hz = 1, khz = 2 };
/// The unit of the plot's axis.
ListUnit ShownListUnit(const GlobalBlock& g);

// All of slot 0 and its shown row. Each writes the whole file or, with an Error of code unwritable, nothing.
/// Comma list of peaks, ".red"; frequencies in kHz when `unit` is khz, else in Hz.
Status WriteDataRed(const std::string& path, const GlobalBlock& g, ListUnit unit);
/// Peaks as the fixed report of the Alice style.
Status WriteDataRedAls(const std::string& path, const GlobalBlock& g);
/// Integrals, ".Ilist"; the ends in `unit`. The value is the listed one, empty without a reference value.
Status WriteDataIntList(const std::string& path, const GlobalBlock& g, ListUnit unit);
/// The same without its title line, ".int".
Status WriteDataInt(const std::string& path, const GlobalBlock& g, ListUnit unit);
/// The curves of the integrals, running sums at full data: a line for each point of each region, with its position,
/// the sum of the points up to it in units of DispLeft, and that in the units of the listed values.
Status WriteDataIntCurve(const std::string& path, const GlobalBlock& g, ListUnit unit);

/// A line of a .red file. Amplitude and height are those of the file.
struct ListedPeak {
    double ppm = 0, hz = 0, amplitude = 0, height_percent = 0;
};
Result<std::vector<ListedPeak>> ReadDataRed(const std::string& path);
/// A line of a .int or .Ilist file.
struct ListedRegion {
    bool has_value = false;
    double value = 0;
    double start = 0, end = 0; ///< in `unit` of the list
    double b0 = 0, b1 = 0;
};
struct IntegralListFile {
    ListUnit unit = ListUnit::ppm;
    std::vector<ListedRegion> regions;
};
Result<IntegralListFile> ReadDataInt(const std::string& path);

} // namespace nmr
