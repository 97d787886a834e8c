#pragma once
// JCAMP-DX: spectra and FIDs as labelled text, read and written.
//
// Source: JCAMP-DX 4.24, 5.00, 5.01 and the draft of 6.00, the published conformance files, and files
// of TopSpin, XWIN-NMR, Delta, WIN-NMR, VNMR, MestReNova, ACD, Nanalysis and Magritek programs. Learnt
// from these:
// - Labels come with and without blanks, "-", "/" and "_", in any case, with blanks before "##".
// - NPOINTS may be one more than the points of the table (VNMR), and be written as a decimal number.
// - In files of Bruker programs the Hz axis counts from the right edge, so Hz divided by the observe
//   frequency is no shift: the first point stands at $OFFSET, and SF is the 0 ppm frequency.
// - All other programs that count Hz from 0 ppm divide by the observe frequency to get the shift. The
//   0 ppm frequency in its place would put the lines of a 13C spectrum up to 0.03 ppm aside.
// - Most axes fall. The carrier stands in the middle of the spectrum, so the 0 ppm frequency follows
//   from the first point by half a width up or down, as the axis runs.
// - FIDs of JEOL instruments turn the other way round than those of all other programs.
// - Arrays are called "nD NMR ...". A plane has evenly spaced times or frequencies along its second
//   direction; rows along a list of delays have uneven times, or carry their list ("vdlist") along.
// - The block of a LINK file that holds the spectrum may be its third; lists of peaks and structures
//   stand before it, under the same data type.

#include "formats/asdf.h"
#include "formats/bruker.h"
#include "formats/registry.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nmr {

// --- The record layer

inline constexpr std::size_t kMostFields = 100;

/// Label ("##..." or "$$..." up to the first "=" or tab, upper case) of a line, and its value split at
/// commas and tabs into trimmed fields. False, and nothing altered but `fields`, which then holds four
/// empty ones, when the line is no record. `fields` never has fewer than four.
bool Split_Label(const std::string& line, std::string& label, std::vector<std::string>& fields);

/// Key and values of a line "##$KEY= value ...", inside a private block; false for any other line.
/// Values are separated by commas, tabs or blanks, but text in angle brackets is one value; a unit
/// behind "$$" is no value.
bool Split_PrivateLine(const std::string& line, std::string& label, std::vector<std::string>& fields);

/// Upper case, without blanks, "-", "/" and "_": two labels mean the same when they are equal so.
std::string NormalLabel(std::string_view label);

/// A number as files write it: with a decimal comma too.
std::optional<double> JcampNumber(std::string_view text);

/// A list of columns. Where commas are decimal signs too, only a comma with a blank behind it separates;
/// which of both holds follows from the number of columns (0: not known).
std::vector<std::string> SplitColumns(std::string_view text, std::size_t columns);

/// One value of a private block, with the unit behind "$$".
struct JcampPrivate {
    std::string key, value, unit;
};

struct JcampTable {
    std::string label;     ///< normal: "XYDATA", "DATATABLE", "XYPOINTS", "PEAKTABLE"
    char symbol = 0;       ///< of its ordinates, upper case: 'Y', 'R', 'I'
    std::string abscissa;  ///< symbol of its X, upper case: "X", "T2" of "(T2++(R..R))"
    std::string page;      ///< of the PAGE record before it: "N=1", "T1=0.01"
    std::string_view text; ///< the lines behind the label's
};

/// What stands between a ##TITLE and its ##END.
struct JcampBlock {
    std::vector<std::pair<std::string, std::string>> records; ///< normal label and value, in order
    std::vector<JcampTable> tables;
    std::vector<JcampPrivate> own;   ///< of the JEOL or NMR block
    std::vector<JcampPrivate> loose; ///< outside of all private blocks
    std::string bruker;              ///< records of the Bruker block, one a line
    std::string bruker_f1;           ///< the same of the second dimension
    std::string list_name, list;     ///< a list of row values that the file carries along: "vdlist"
    bool has_jeol = false, has_bruker = false;
    bool ended = false; ///< its ##END is there

    /// Value of the first record of that label that is not empty; empty when there is none.
    std::string_view Value(std::string_view normal_label) const;
    std::optional<double> Number(std::string_view normal_label) const;
    const JcampPrivate* Own(std::string_view key) const;
};

struct JcampFile {
    std::vector<JcampBlock> blocks; ///< in order of their titles; the outer block of a LINK file first
    bool ended = false;             ///< the outermost ##END is there
};

/// Takes a file apart. The tables look into `bytes`. Nothing fails here: what is no record is passed over.
JcampFile ScanJcamp(std::string_view bytes);

// --- Reading

enum class JcampKind { none, fid, spectrum, two_dimensional };
/// What a block says it holds.
JcampKind KindOf(const JcampBlock& block);

/// Rows of one dimension, at most kMaxRows of them, in the form of a plane.
bool IsArrayBlock(const JcampBlock& block);
/// A file without data of one dimension that holds such rows.
bool IsJcampArray(const FileType& type);

/// Family 13: parameters, points and axis of the slot; of an array all rows with their values. A file with
/// several data sets asks which one is meant (form "Form110"; kBlockAnswer and a number from 1 is an answer
/// too); an answer that is none of its buttons takes the first.
/// @return not_nmr, two_dimensional; bad_format for a table that can't be read; truncated without any
///         point; bad_value, too_large for counts or axes that can't be right; cancelled
Status ReadDataJCAMP(const ReadRequest& request);

/// Who answers with a number instead of a button says so: "BLOCK 3".
inline constexpr std::string_view kBlockAnswer = "BLOCK ";
inline constexpr std::string_view kJcampTitle = "JCAMP-DX"; ///< of the question

/// The same from bytes at hand.
Status ReadJcampBytes(const ReadRequest& request, std::string_view bytes);

// --- The axis, shared by reader and writers

/// X of a table: the head's words on it, and how many points they count.
struct JcampX {
    std::optional<double> first, last, delta;
    std::string units; ///< upper case
    std::int32_t count = 0;
};

/// The axis of a spectrum: point i stands at first_ppm + i * step_ppm.
struct JcampAxis {
    double first_ppm = 0, step_ppm = 0;
    double step_hz = 0;         ///< size of a step
    double mhz0 = 0;            ///< 0 ppm frequency
    bool has_reference = false; ///< mhz0 was told by the file, not worked out
};

/// 0 ppm frequency of a spectrum whose middle stands at `center_mhz` and whose first point at
/// `first_ppm`; a negative `direction` for an axis that falls.
double ZeroPpmFrequency(double center_mhz, double width_hz, double first_ppm, double direction);

/// Result is bad_value when the head gives no usable axis. Oddities go to `warnings`.
Result<JcampAxis> FindJcampAxis(const JcampBlock& block, const BrukerParameters* bruker, const JcampX& x,
                                double center_mhz, std::vector<std::string>& warnings);

/// Seconds between two points of a FID.
Result<double> FindDwell(const JcampX& x, const BrukerParameters* bruker);

/// 0 ppm frequency that a FID's file gives; 0 when it gives none.
double FidReference(const JcampBlock& block, const BrukerParameters* bruker, double center_mhz, double width_hz,
                    std::int32_t points);

// --- Writing

/// Extended form: the shown row of a spectrum as one XYDATA table. Reports with "WriteDataDX/1DDRW".
Status WriteDataDX(const std::string& path, const GlobalBlock& g, std::int16_t slot);
/// Reduced form: real and imaginary page. Reports with "WriteDataDx2/1DDRW".
Status WriteDataDx2(const std::string& path, const GlobalBlock& g, std::int16_t slot);

/// The text that they write.
Result<std::string> JcampText(const DataSet& set, std::size_t row);
Result<std::string> JcampPagesText(const DataSet& set, std::size_t row);

} // namespace nmr
