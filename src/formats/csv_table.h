#pragma once
// Tables of numbers in text: which separator and decimal sign a file uses, and its numbers line by line.

#include "core/result.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

/// How the numbers of a line are told apart.
struct CsvText {
    char separator = ','; ///< ',', ';', '\t', or ' ' for any run of blanks and tabs
    bool decimal_comma = false;
    bool operator==(const CsvText&) const = default;
};

/// Lines of a text, ended by LF, CR or both.
class CsvLines {
public:
    explicit CsvLines(std::string_view text) : rest_(text) {}
    /// False behind the last line. A text that ends with a line end has no empty line behind it.
    bool Next(std::string_view& line);
    /// The last line given had its line end.
    bool ended() const { return ended_; }
    /// What has not been given yet.
    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
    bool ended_ = true;
};

/// Splits "KEY,value,unit" at its first two commas and trims each part.
void Split_Comma(std::string_view line, std::string& key, std::string& value, std::string& unit);

/// The fields of a line, trimmed and without quotes; empty fields at the end of the line are left out.
void SplitFields(std::string_view line, const CsvText& text, std::vector<std::string_view>& fields);

/// The numbers of one line of a table.
/// @return 0, or 1 for a line with a field that is no finite number, or without any; `numbers` is then empty
int Split_Columns(std::string_view line, const CsvText& text, std::vector<double>& numbers);

/// A table as it stands in the file: the lines may differ in length.
class CsvTable {
public:
    /// Lines of numbers behind `head_lines` lines of anything.
    /// @return too_large when the numbers would fill more than half a gigabyte
    static Result<CsvTable> Parse(std::string_view text, const CsvText& form, std::size_t head_lines);

    std::size_t lines() const { return starts_.size() - 1; }
    std::span<const double> line(std::size_t i) const
    {
        return std::span(numbers_).subspan(starts_[i], starts_[i + 1] - starts_[i]);
    }
    std::size_t left_out() const { return left_out_; }  ///< lines among the table that are no numbers
    bool ends_in_line() const { return ends_in_line_; } ///< the last line lacks its line end
    bool ends_blank() const { return ends_blank_; }     ///< an empty line stands behind the table

private:
    std::vector<double> numbers_;
    std::vector<std::size_t> starts_{0};
    std::size_t left_out_ = 0;
    bool ends_in_line_ = false, ends_blank_ = false;
};

/// What the first lines of a text show.
struct CsvSight {
    CsvText text;
    std::size_t head_lines = 0;        ///< before the first line of numbers
    std::size_t number_lines = 0;      ///< of those looked at, from the first line of numbers on
    std::size_t other_lines = 0;       ///< likewise, that are neither numbers nor empty
    std::vector<std::string> headings; ///< fields of the last line before the numbers, without comment signs
};
/// Looks at the first lines (200, and not much more than 256 kB of text). number_lines is 0 when none
/// of them is a line of numbers. Where a comma could be either, it separates, unless a number behind
/// it begins with a needless zero ("0,05").
CsvSight LookAtCsv(std::string_view text);

/// A table of numbers, perhaps behind some lines of words: what the detection asks of a text file.
bool IsCsvTable(std::string_view head);

/// Without a byte order mark.
std::string_view WithoutMark(std::string_view text);

} // namespace nmr
