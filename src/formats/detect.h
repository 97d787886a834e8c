#pragma once
// Which family a file belongs to, one- or two-dimensional, FID or spectrum.

#include "core/asker.h"
#include "core/nuclear_table.h"
#include "core/result.h"
#include "formats/data_conversion.h"

#include <cstdint>
#include <string>

namespace nmr {

inline constexpr std::int32_t kSpectrumBit = 0x0100;
inline constexpr std::int32_t kOneDimensionalBit = 0x1000;
inline constexpr std::int32_t kTwoDimensionalBit = 0x2000;

inline bool IsOneDimensional(std::int32_t code)
{
    return code > 0 && (code & ~0xFFF) == kOneDimensionalBit;
}
inline bool IsTwoDimensional(std::int32_t code)
{
    return code >= 8192 && code < 12288;
}
inline bool IsSpectrum(std::int32_t code)
{
    return (code & kSpectrumBit) != 0;
}
inline int FamilyOf(std::int32_t code)
{
    return code & 0xFF;
}

/// The answer of the detection.
struct FileType {
    std::int32_t code = -1;  ///< DataTypeCode; -1 when no family has it
    std::string tag = "ERR"; ///< "BRU1"
    std::string mode;        ///< DataMode, "1D:zg30"
    std::string path;        ///< real path of the data file
    std::string directory;   ///< real path of its folder
    std::string extension;   ///< corrected, upper case, with its dot
    std::string data_name;   ///< "FID", "1R", ... or empty
    int acq_mode = 2;        ///< ##$AQ_mod: 1 gives 0, 2 gives 1, anything else 2
    int byte_order = 0;      ///< 1 big-endian
    int kind_2d = -1;        ///< 0 VPH_HOMO, 1 V_HOMO, 3 VPH_HETERO, 4 V_HETERO
};

/// Sniffs the head of the file ("ECP", "TAV1", "CSV TYPE 0", ... or empty).
Result<std::string> ReadDataMode(const std::string& path);

/// Content first, extension second, then the family's own probe. A folder stands for the data file
/// inside it. Never alters anything on the disk. Array questions of Varian data go to the asker.
FileType ReadFileType(const std::string& path, Asker& asker, const NuclearTable& nuclides);

} // namespace nmr
