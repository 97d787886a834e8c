#pragma once
// The use log: one line for each event of a run, in a file for each month or day.

#include "core/asker.h"
#include "core/dates.h"
#include "core/global_block.h"

#include <filesystem>
#include <string_view>

namespace nmr {

/// Appends "yyyy/mmm/dd,hh:nn:ss,USER,text1,text2" to the log of the settings LOG DIR and LOG MODE: 0 a
/// file for each month, 1 for each day, anything else none. A folder that is not there is told in a
/// message box, but the default folder is made; a line that can't be written is dropped. Nothing happens
/// without a data folder.
void WriteLog(const GlobalBlock& g, Asker& asker, std::string_view text1, std::string_view text2);
void WriteLog(const GlobalBlock& g, Asker& asker, std::string_view text1, std::string_view text2, const DateTime& when);

/// The log's folder; a drive path lies below the data folder.
std::filesystem::path LogFolder(const GlobalBlock& g);

// First texts of the events, one word each, so that a log can be searched.
inline constexpr char kLogStart[] = "Start";
inline constexpr char kLogRead[] = "Read";
inline constexpr char kLogTransform[] = "Transform";
inline constexpr char kLogSave[] = "Save";
inline constexpr char kLogExit[] = "Exit";

} // namespace nmr
