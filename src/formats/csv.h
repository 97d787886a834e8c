#pragma once
// Text tables: the block form, with a head of "KEY,value,unit" lines between "$CSVSTART" and "$END",
// and plain tables of numbers.
//
// What it rests on: the form's own description for the block form; for plain tables four published
// sets (FIDs with and without times, a spectrum over Hz, a FID as rows, semicolons with decimal commas).
// Learnt from them:
// - FIDs in text have the sense of exp(+i w t) for a line above the carrier: shown on a FID and the
//   spectrum that was published with it.
// - A table may stand behind a line of headings, which name columns and units; times may stand in
//   every second column.

#include "formats/csv_choice.h"
#include "formats/registry.h"

#include <optional>

namespace nmr {

/// What the detection says of a file that is to be taken for a text table whatever its name; code -1
/// when it is none, which the user has been told.
FileType CsvFileType(const std::string& path, Asker& asker, const NuclearTable& nuclides);

/// Family 14. Asks NMR1D_Form103_CSV for a table without a head; "Cancel" there ends the read.
Status ReadDataCSV(const ReadRequest& request);
/// The same for the text of a file.
Status ReadCsvText(const ReadRequest& request, std::string_view text);

/// The head of the block form.
struct CsvHead {
    bool ended = false;                ///< its "$END" is there
    std::optional<std::int64_t> point; ///< of its POINT line
    bool has_smode = false, has_ofr = false, has_frequ = false, has_resol = false, has_acqtm = false;
};
/// Reads the lines up to "$END" into the parameters of a set; `lines` stands behind "$CSVSTART" and then
/// behind the head. Keys compare exactly; what is unknown or no number is told in the set's warnings.
CsvHead ReadCsvHead(CsvLines& lines, const NuclearTable& nuclides, DataSet& set);

/// Keys of the head in the order in which they are written.
std::span<const std::string_view> CsvHeadKeys();
/// The value of a key as the head has it; numbers with 9 significant digits.
std::string CsvHeadValue(const ParamBlock& par, std::string_view key);

} // namespace nmr
