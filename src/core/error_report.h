#pragma once
// The general error box and the words for run-time errors of files.

#include "core/asker.h"
#include "core/result.h"

#include <string>
#include <string_view>

namespace nmr {

/// Shows where an error was met ("ReadDataTavo4/1DDRW"), its number and text. Never ends the program.
void ErrorReport(Asker& asker, std::string_view location, int number, std::string_view description);
void ErrorReport(Asker& asker, const Error& error);

/// The system's words for a run-time error number (53 "File is not found"); for a number that the
/// table lacks, `system_text`.
std::string FileErrorText(int number, std::string_view system_text = {});

/// Run-time error number of an errno value (ENOENT 53, ENOSPC 61, ...); 57 when nothing fits.
int RuntimeErrorNumber(int errno_value);

/// The box "Disk Error" for a number, with the location in "(" and ")" behind the text when given.
/// Error 71 offers OK and Cancel, any other only OK.
/// @return 0 without error; in the single-button box OK or Retry gives 2, in the other 0; Ignore 1,
///         Cancel or Abort 2, anything else 3
int File_Error(Asker& asker, int number, std::string_view location = {}, std::string_view system_text = {});

} // namespace nmr
