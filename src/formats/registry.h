#pragma once
// The families that the detection knows, and what can be done with each.

#include "core/asker.h"
#include "core/global_block.h"
#include "formats/detect.h"

#include <span>
#include <string_view>

namespace nmr {

/// How the FID of a family is stored: the transform negates the imaginary part once, which fits
/// `as_transformed`; the read flow negates that of `opposite` families before anything else.
enum class FidSense { as_transformed, opposite };

/// What a reader is handed. It fills slot `slot` of g, which has been cleared; a failure leaves the
/// slot to the caller.
struct ReadRequest {
    GlobalBlock& g;
    Asker& asker;
    const FileType& type;
    std::int16_t slot = 0;
};
using ReadFunction = Status (*)(const ReadRequest& request);

struct FormatRow {
    int family = 0;
    std::string_view name;  ///< "Bruker directory"
    std::string_view files; ///< "fid, ser, 1r (acqus, procs)"
    std::string_view tag_1d, tag_2d_spectrum, tag_2d_fid;
    FidSense sense = FidSense::as_transformed;
    ReadFunction read = nullptr; ///< nullptr: recognised only
    bool writes = false;
};

/// Rows 0 to 17, by family number.
std::span<const FormatRow> FormatRows();
const FormatRow* FindFormat(int family);

/// Whether a file of the form of a plane holds rows of one dimension, measured along a list of values.
bool IsRowArray(const FileType& type);
/// Such a file as what it is then: code and tag of its family's one-dimensional data.
FileType AsRowArray(FileType type);

/// The choice table of the open dialog: 20 rows and the empty row 0 ("-----").
struct FileTypeRow {
    std::string_view expression;
    std::string_view description;
};
std::span<const FileTypeRow> FileTypeTable();

/// Seven filter rows at most: Ver.3/4 first, the five slots, all files last.
std::vector<FilterRow> OpenDialogFilters(const GlobalBlock& g);

} // namespace nmr
