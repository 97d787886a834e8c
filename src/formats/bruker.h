#pragma once
// Bruker directories (fid, ser, 1r, 1i with acqus and procs) and flat files (.fid/.aqs, .1r/.fqs).
//
// What it rests on: the vendor's reference of acquisition and processing parameters, and 17 published
// data sets (XWIN-NMR 1.3 to TopSpin 4.0, both byte orders, int32, float32 and float64). Learnt from them:
// - The fid of a folder and its 1r may differ in byte order, so each file goes by its own parameters.
// - A fid may be padded beyond TD; TD need not be a power of two.
// - Flat files hold float32 although their DTYPA and DTYPP say 0 (int32); they are taken for float32
//   when nearly all words are plausible floats, which words of measured integers never are.
// - DIGMOD 0 (analogue) means no delay of a digital filter even where GRPDLY still names one: the
//   three CDCl3 lines of such a set agree in phase within 2 degrees without a delay and differ by 43 with it.

#include "core/vendor_processing.h"
#include "formats/byte_source.h"
#include "formats/registry.h"
#include "formats/word_block.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace nmr {

enum class BrukerNumber { int32 = 0, float32 = 1, float64 = 2 };

/// A parameter file: text, or the values of an array, by name. Names keep their case (SW is not SW_h).
class BrukerParameters {
public:
    static Result<BrukerParameters> Read(const std::string& path);
    /// bad_format for a line that is no record, or a text without its closing bracket. Any code page.
    static Result<BrukerParameters> Parse(ByteSpan bytes);

    std::optional<std::string> Text(std::string_view name) const; ///< without angle brackets; UTF-8
    std::optional<double> Number(std::string_view name) const;    ///< finite numbers only
    std::vector<double> Numbers(std::string_view name) const;     ///< of an array record
    const std::string& origin() const { return origin_; }
    const std::string& title() const { return title_; }
    /// ORIGIN names one of the vendor's programs.
    bool IsVendorFile() const;
    /// The file has its ##END record: nothing was cut off.
    bool ended() const { return ended_; }
    /// What the user said of the numbers of the file of points; nothing when not asked.
    std::optional<BrukerNumber> asked_number;

private:
    void Add(std::string_view label, std::string_view value);
    const std::string* Find(std::string_view name) const;

    std::map<std::string, std::string, std::less<>> records_;
    std::string origin_, title_;
    bool ended_ = false;
};

/// Complex points of delay of the digital filter: GRPDLY, else the table of DSPFVS and DECIM; 0 for none.
double BrukerGroupDelay(const BrukerParameters& acqus);

/// How the vendor made the spectrum of a FID whose parameters stand in `par`: points, window, phases.
/// bruker_processing.cpp says how its phases count.
VendorProcessing FindBrukerProcessing(const BrukerParameters& procs, const ParamBlock& par);

/// What a record of acqus is wanted for: a spectrum has width and point count from procs.
enum class BrukerUse { fid, spectrum };

/// Copies the records of acqus into the fields where they belong. Fields whose record is missing keep
/// their value; nothing is refused here.
void ApplyBrukerRecords(const BrukerParameters& acqus, BrukerUse use, const NuclearTable& nuclides, ParamBlock& par);

struct BrukerCode {
    BrukerNumber number = BrukerNumber::int32;
    bool big_endian = false;
};
WordKind KindOf(BrukerNumber number);
std::endian OrderOf(BrukerCode code);
enum class BrukerFamily { directory, flat };

/// Whether a 0 ppm frequency can belong to what was observed: within 2 %, which no chemical shift exceeds.
bool IsSameNucleus(double zero_ppm_mhz, double observed_mhz);

/// How a file of `count` values is stored: 8 bytes for each value force float64, else what the user was asked
/// decides, else DTYPA or DTYPP (`type_name`), 0 without it; the byte order is BYTORDA or BYTORDP (`order_name`).
BrukerCode FindBrukerCode(const BrukerParameters& parameters, std::string_view type_name, std::string_view order_name,
                          BrukerFamily family, ByteSpan file, std::uint64_t count);

/// The first `count` values as stored, or as many as the bytes hold. What is no number, or beyond 1E30,
/// reads as 0 and is counted in `damaged`.
std::vector<double> DecodeBruker(ByteSpan file, BrukerCode code, std::uint64_t count, std::uint64_t& damaged);

// Each step hands back the parameters it has read. The paths are real paths.
Result<BrukerParameters> ReadParaBruker(const ReadRequest& request, const std::string& acqus_path);
Result<BrukerParameters> ReadParaBrukerAcq(const ReadRequest& request, const std::string& acqus_path);
Result<BrukerParameters> ReadParaBrukerProcs(const ReadRequest& request, const std::string& procs_path);

/// Fields of the slot from the parameters, checked: too_large or bad_value, with the parameter's name,
/// when they can't be right.
Status FillParaBruker(GlobalBlock& g, std::int16_t slot, const BrukerParameters& acqus);
Status FillParaBrukerProcs(GlobalBlock& g, std::int16_t slot, const BrukerParameters& procs);

/// Points of a FID whose parameters stand in the slot: even values real, odd values imaginary, the mean
/// of the last 40 % taken off, divided by the largest value. REVERSE in procs (may be nullptr) negates
/// the imaginary part. A file with fewer values than TD is filled up with zeros; that, values
/// beyond TD and its block, and a FID without any signal leave warnings.
Status ReadDataBruker(GlobalBlock& g, std::int16_t slot, const BrukerParameters& acqus, const BrukerParameters* procs,
                      BrukerFamily family, ByteSpan fid);

/// Whether a file holds rows: ser of a folder, or a flat *.ser.
bool IsBrukerRows(const FileType& type);

/// A file of rows that are an array, not the second dimension of a plane: acqu2s has no quadrature in
/// that direction (FnMODE 0 or 1) and a list (vdlist, vplist, vclist, vtlist) tells the value of each row.
bool IsBrukerArray(const FileType& type);
/// By the parameters of the second direction; missing ones count as none.
bool HasNoQuadrature(const BrukerParameters& indirect);

/// A list of row values: "vdlist" and its like, one value a line.
struct BrukerList {
    std::string name, text;
};
/// Values, name and unit of the rows, RowCount of them; without a usable list they are numbered.
void SetBrukerRowValues(const BrukerList& list, DataSet& set);

/// Rows of such a file, as ReadDataBruker reads one, all on one scale so that their heights keep their
/// ratios; RowValueA, name and unit from the list in `folder`.
/// @return too_large above kMaxRows rows, truncated when the file becomes shorter meanwhile
Status ReadBrukerArray(GlobalBlock& g, std::int16_t slot, const BrukerParameters& acqus, const BrukerParameters* procs,
                       BrukerFamily family, const std::string& folder, const ByteSource& ser);

/// Points of a spectrum whose parameters stand in the slot, and its axis, from high to low ppm. Run with
/// the bytes of 1r and of 1i; an empty 1i leaves the imaginary part 0.
Status ReadDataBrukerProc(GlobalBlock& g, std::int16_t slot, const BrukerParameters& procs, BrukerFamily family,
                          ByteSpan re, ByteSpan im);

/// Families 4 and 8: parameters, then points.
Status ReadBruker(const ReadRequest& request);

/// "SPEC.BRUD" or "SPEC.BRUF" beside the data, so that a file association can open the folder. Only
/// the window calls it, and nothing is said where the folder can't be written.
void LeaveBrukerDummy(const FileType& type);

} // namespace nmr
