#pragma once
// The commands that read a file.

#include "cli/options.h"

namespace nmr {

Exit RunInfo(const std::string& path, bool json);
/// Rows of the history that travels with the data of a file.
Exit RunHistory(const std::string& path, bool json);
Exit RunProcess(const ProcessOptions& options);

} // namespace nmr
