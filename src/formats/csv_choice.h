#pragma once
// What NMR1D_Form103_CSV ("Edit Parameter") is about: how the table of a file without a parameter head
// is to be read, and the parameters that such a file lacks. The reader proposes what it has found out
// from the file; the form shows and changes it.

#include "formats/csv_table.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

inline constexpr char kCsvForm[] = "NMR1D_Form103_CSV";

/// How the points stand in the table.
enum class CsvLayout {
    columns, ///< one line a point, one or two columns a row of data
    rows,    ///< one line a row of data, real values
    pairs,   ///< one line a row of data, real and imaginary values alternate
};
/// What the positions count.
enum class CsvUnit { ppm, hz, khz, s, ms, us };

/// One entry of a choice: what stands for it among the form's values, and what the form shows.
template <class T>
struct CsvWord {
    T value;
    std::string_view word;
    std::string_view caption;
};
inline constexpr CsvWord<char> kCsvSeparators[] = {
    {',', "COMMA", "Comma"}, {';', "SEMICOLON", "Semicolon"}, {'\t', "TAB", "Tab"}, {' ', "BLANK", "Blanks"}};
inline constexpr CsvWord<bool> kCsvDecimals[] = {{false, "POINT", "Point"}, {true, "COMMA", "Comma"}};
inline constexpr CsvWord<CsvLayout> kCsvLayouts[] = {
    {CsvLayout::columns, "COLUMNS", "Columns: each line is a point"},
    {CsvLayout::rows, "ROWS", "Rows: each line is a spectrum or FID"},
    {CsvLayout::pairs, "PAIRS", "Rows of pairs: real, imaginary, real, ..."}};
inline constexpr CsvWord<CsvUnit> kCsvUnits[] = {{CsvUnit::ppm, "PPM", "ppm"}, {CsvUnit::hz, "HZ", "Hz"},
                                                 {CsvUnit::khz, "KHZ", "kHz"}, {CsvUnit::s, "S", "s"},
                                                 {CsvUnit::ms, "MS", "ms"},    {CsvUnit::us, "US", "\xC2\xB5s"}};
inline constexpr CsvWord<std::int16_t> kCsvModes[] = {{0, "0", "FID"}, {1, "1", "Spectrum"}};

/// A parameter that the form asks for as text, by its key of the block form.
struct CsvParameter {
    std::string_view key;
    std::string_view label; ///< with "*" when it is required
};
inline constexpr CsvParameter kCsvParameters[] = {
    {"OBNUC", "*ObNuc"}, {"OFR", "*ObsFreq (MHz)"}, {"FREQU", "Frequency(Span) (Hz)"},
    {"EXMOD", "ExMode"}, {"COMNT", "Comment"},      {"SLVNT", "Solvent"},
    {"DATIM", "Date"},   {"SCANS", "Scan"},         {"CTEMP", "Temperature"}};

struct CsvChoice {
    CsvText text;
    std::size_t head_lines = 0;
    CsvLayout layout = CsvLayout::columns;
    int position = 0;                 ///< column (or, for rows, line) of the positions, from 1; 0 for none
    CsvUnit unit = CsvUnit::ppm;      ///< of the positions
    std::vector<int> real, imaginary; ///< columns of the rows of data, from 1; imaginary ones may be missing
    std::int16_t smode = 0;           ///< 0 FID, 1 spectrum
    std::array<std::string, std::size(kCsvParameters)> parameters; ///< in the order of kCsvParameters
    std::size_t lines = 0, columns = 0;                            ///< of the table, for show
    std::string preview;                                           ///< first lines of the file, for show

    CsvChoice() = default;
    /// Of the form's values; what is missing or can't be read keeps its default.
    explicit CsvChoice(const std::map<std::string, std::string>& values);
    std::map<std::string, std::string> ToValues() const;

    const std::string& Parameter(std::string_view key) const;
    /// What keeps the choice from being read: "" when nothing does. For the form's note line.
    std::string Missing() const;
    /// "separator semicolon, decimal comma, 1 head line, positions (us) in column 1, real 2, imaginary 4, FID".
    std::string Summary() const;
};

/// What a text shows of itself: layout, columns and mode from the headings and the numbers.
CsvChoice ProposeCsv(std::string_view text);
/// The same for a table whose separators are known.
CsvChoice ProposeCsv(const CsvTable& table, const CsvSight& sight);

/// "2 4 6" or "2,4" as numbers from 1; what is no column number is left out.
std::vector<int> ParseCsvColumns(std::string_view text);

} // namespace nmr
