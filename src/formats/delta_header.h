#pragma once
// Head and parameters of JEOL Delta files, as the vendor's format text and about 30 published files
// have them (Delta 5.1.2 to 6.2, one file of a 90 MHz archive, sets converted from other vendors).
//
// - The head of 1360 bytes is big-endian in every file, whatever byte 8 says; byte 8 rules the
//   parameters and the points. A head that makes sense only in the other order is read in that one.
// - A unit is a signed prefix (powers of 1000, negative ones above 1) and a base unit; a number stands
//   in its prefixed unit.

#include "formats/data_conversion.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace nmr {

inline constexpr std::size_t kDeltaHeadBytes = 1360;
inline constexpr std::size_t kDeltaSmallest = 1537; ///< of a file with anything behind its head
/// Longer than any file: for a head whose file is not at hand.
inline constexpr std::uint64_t kDeltaUnknownSize = 0x1000000;

/// Base units that mean something here.
enum class DeltaUnit : std::uint8_t { none = 0, celsius = 4, hertz = 13, kelvin = 14, ppm = 26, second = 28 };

struct DeltaHeader {
    std::uint8_t little_sections = 0; ///< byte 8: not 0 for little-endian parameters and points
    std::uint8_t dimensions = 0;
    std::uint8_t number_type = 0; ///< high two bits: 0 float64, 1 float32
    std::uint8_t axis_type = 0;   ///< of axis 1: 1 real, 3 complex
    std::uint8_t axis_prefix = 0, axis_unit = 0;
    std::uint8_t second_prefix = 0, second_unit = 0;
    std::uint32_t points = 0, points2 = 0; ///< stored, on axis 1 and 2
    std::uint32_t first_valid = 0, last_valid = 0;
    double axis_start = 0, axis_stop = 0; ///< values at the first and the last valid point
    double base_mhz = 0;
    std::uint32_t parameter_start = 0, parameter_bytes = 0;
    std::uint32_t data_start = 0, data_bytes = 0;
    std::uint32_t context_start = 0, context_bytes = 0; ///< text of the experiment, and how to process it
    std::string title, site, author, comment, nucleus, nucleus2;

    bool little() const { return little_sections != 0; }
    bool OneDimensional() const { return dimensions == 1 || (second_prefix == 0 && second_unit == 0); }
    /// ppm or hertz on axis 1; a FID has seconds.
    bool IsSpectrum() const;
};

/// @param head  at least kDeltaHeadBytes bytes; fields that it lacks stay 0
/// @param file_size  starts of sections beyond it can't be right
DeltaHeader ReadDeltaHeader(ByteSpan head, std::uint64_t file_size);
bool StartsDeltaFile(ByteSpan head);

/// Factor from a prefixed unit to the base unit: byte 33 (micro) gives 1E-6, 241 (kilo) 1000.
double DeltaPrefixFactor(std::uint8_t prefix);

struct DeltaParameter {
    enum class Kind { text, number, other };
    Kind kind = Kind::text;
    std::string text;  ///< of a text
    double number = 0; ///< in the base unit
    DeltaUnit unit = DeltaUnit::none;
};

/// The parameter section. Names are upper case; of equal names the first counts.
class DeltaParameters {
public:
    /// Reads the records that lie wholly within the bytes and the section.
    static DeltaParameters Parse(ByteSpan file, const DeltaHeader& header);

    const DeltaParameter* Find(std::string_view name) const;   ///< nullptr when there is none
    std::optional<double> Number(std::string_view name) const; ///< finite, in the base unit
    std::string Text(std::string_view name) const;
    /// The bytes ended before the section did.
    bool cut() const { return cut_; }

private:
    std::map<std::string, DeltaParameter, std::less<>> parameters_;
    bool cut_ = false;
};

} // namespace nmr
