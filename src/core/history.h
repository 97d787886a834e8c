#pragma once
// What was done to a measurement, by whom and when; it travels with the data in the native file.

#include "core/data_set.h"
#include "core/dates.h"

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

struct HistoryRow {
    std::string subject, operator_name, date;
};
/// Rows of the list: the measurement, then each entry. A measurement before 1960 has no date; of an entry
/// that begins with no date the whole text is the subject.
std::vector<HistoryRow> HistoryRows(const DataSet& set);

/// The longest beginning of a UTF-8 text that takes at most `bytes` bytes in the code page of the files.
std::string CutForFile(std::string_view utf8, std::size_t bytes);

} // namespace nmr
