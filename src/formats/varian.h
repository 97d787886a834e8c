#pragma once
// Varian data sets: fid (FID or array of FIDs), data and phasefile (spectra), with procpar or curpar.
//
// What it rests on: the public description of the file and block heads and of the parameter grammar,
// and nine published data sets (VNMR 6.1 to VnmrJ 4.2; int32 and float32; arrays of 4, 12 and 24 rows).
// Spectra (data, phasefile) were not among them: their layout is that of the description alone.
// Learnt from the sets:
// - The status word tells the number type; one set lacks its "holds data" bit, so that bit decides nothing.
// - A parameter may be switched off and still have a value: lsfid and temp then mean nothing.
// - Every block has a head of its own, and everything is big-endian.
// - rfl = sw/2 - (sfrq - reffrq) * 1E6 + rfp holds in all of them to 1E-6 Hz, and gives the shift of the centre.

#include "formats/byte_source.h"
#include "formats/registry.h"
#include "formats/varian_procpar.h"

#include <string>
#include <vector>

namespace nmr {

/// The first 32 bytes of a file of points.
struct VarianHead {
    std::int32_t blocks = 0;      ///< one for each row of an array
    std::int32_t traces = 0;      ///< rows in a block; 1 but for two-dimensional spectra
    std::int32_t values = 0;      ///< of a row, real and imaginary ones counted separately
    std::int32_t value_bytes = 0; ///< 2 or 4
    std::int32_t block_bytes = 0; ///< with the block heads
    std::int16_t status = 0;
    std::int32_t block_heads = 0; ///< low four bits: heads before each block
};

enum class VarianNumber { int16, int32, float32 };

/// How the rows lie in the file; made by FindVarianLayout.
struct VarianLayout {
    VarianNumber number = VarianNumber::int32;
    bool complex = true;  ///< pairs; a phasefile holds real values only
    std::size_t rows = 0; ///< that the file begins
    std::size_t promised_rows = 0;
    std::size_t points = 0; ///< of a row
    std::size_t block_bytes = 0, heads_bytes = 0, row_bytes = 0, traces = 1;
    std::vector<std::string> warnings;

    std::size_t Offset(std::size_t row) const ///< of the first value
    {
        return kHeadBytes + row / traces * block_bytes + heads_bytes + row % traces * row_bytes;
    }
    static constexpr std::size_t kHeadBytes = 32;
};

enum class VarianUse { fid, spectrum };

/// Reads the head and checks it against the length of the file.
/// @return bad_value for counts that can't be, too_large above 128 rows or kMaxPoints points,
///         truncated when not even the first row begins in the file
Result<VarianLayout> FindVarianLayout(const ByteSource& file, VarianUse use);

/// The names in "array": levels from the slowest to the fastest, each of names that step together
/// ("d2,pw" has two levels, "(sw,d1)" one).
std::vector<std::vector<std::string>> ParseVarianArray(std::string_view text);

/// Row values, name, unit and heading of an array, for RowCount rows. What can't be told is numbered.
void ApplyVarianArray(const VarianParameters& parameters, DataSet& set);

/// How the console made the spectrum: fn, window, lsfid, rp and lp.
VendorProcessing FindVarianProcessing(const VarianParameters& parameters);

/// Fields of the slot; bad_value without a usable frequency and width.
Status FillParaVarian(GlobalBlock& g, std::int16_t slot, const VarianParameters& parameters);

/// Real path of the parameter file for a folder of points; empty when there is none. A FID goes by
/// procpar, a spectrum by curpar, each here or one folder above, else by the other of the two.
std::string FindVarianParameters(const std::string& folder, VarianUse use);

/// Parameters into the slot. `path` may be empty: not_found.
Result<VarianParameters> ReadParaVarian(const ReadRequest& request, const std::string& path);

/// Points of a FID whose parameters stand in the slot, with its row values. Rows that the file lacks
/// are left away, points that it lacks are 0, both with a warning.
Status ReadDataVarian(GlobalBlock& g, std::int16_t slot, const VarianParameters& parameters, const ByteSource& fid);

/// Points of a spectrum and its axis, from high to low ppm as in the file. The phase of the operator
/// is not applied to `data`.
Status ReadDataVarianProc(GlobalBlock& g, std::int16_t slot, const VarianParameters& parameters,
                          const ByteSource& data);

/// Family 6.
Status ReadVarian(const ReadRequest& request);

/// "SPEC.VARF" or "SPEC.VARD" beside the data, so that a file association can open the folder. Only
/// the window calls it, and nothing is said where the folder can't be written.
void LeaveVarianDummy(const FileType& type);

} // namespace nmr
