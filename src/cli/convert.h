#pragma once
// `convert`: reads a file as the window does and saves its spectrum in another form.

#include "cli/options.h"
#include "formats/ascii.h"

#include <string>

namespace nmr {

struct ConvertOptions {
    std::string in, out;
    AsciiChoice ascii;    ///< for .txt, .dat and .asc
    bool reduced = false; ///< for .dx
    bool file_reference = true;
    std::int32_t row = 1;     ///< from 1
    std::optional<int> block; ///< of a file of several data sets, from 1
    TableValues table;
};

/// A FID is transformed and phased on the way. The form of OUT goes by its extension.
Exit RunConvert(const ConvertOptions& options);

/// The extensions and what stands for each, one line each, for the help text.
std::string ConvertHelp();

} // namespace nmr
