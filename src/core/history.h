#pragma once
// What was done to a measurement, by whom and when; it travels with the data in the native file.

#include "core/data_set.h"
#include "core/dates.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

/// The file keeps no more of each text.
inline constexpr std::size_t kHistoryBytes = 32;

// Subjects.
inline constexpr char kHistoryMeasured[] = "Measured";
inline constexpr char kHistoryTransform[] = "FFT";
inline constexpr char kHistorySave[] = "Saved";

/// Appends one entry: HistoryA the operator, HistoryB "yyyy-mm-dd hh:nn:ss subject", each cut to what
/// the file keeps.
void AppendHistory(DataSet& set, std::string_view operator_name, std::string_view subject, const DateTime& when);
void AppendHistory(DataSet& set, std::string_view operator_name, std::string_view subject);

/// Notes in HistoryHead2 which file the data came from, when nothing stands there: the first half of its
/// SHA-256, which is what the field has room for. A file that can't be read is not noted, nor
/// one above 256 MB: reading it once more would hold the session up.
void NoteOriginal(DataSet& set, const std::filesystem::path& file);
/// Whether OrgFile is still the file that was noted.
enum class Original { not_noted, unchanged, changed, missing };
Original CheckOriginal(const DataSet& set);

struct HistoryRow {
    std::string subject, operator_name, date;
};
/// Rows of the list: the measurement, then each entry. A measurement before 1960 has no date; of an entry
/// that begins with no date the whole text is the subject.
std::vector<HistoryRow> HistoryRows(const DataSet& set);

/// The longest beginning of a UTF-8 text that takes at most `bytes` bytes in the code page of the files.
std::string CutForFile(std::string_view utf8, std::size_t bytes);

} // namespace nmr
