#pragma once
// The peak list and the integral list as tables of text, as a window shows them and as they are copied; and
// the line of peaks that a paper prints.

#include "core/global_block.h"
#include "formats/list_files.h"

#include <string>
#include <vector>

namespace nmr {

/// Rows as they are to be shown. All columns count as numbers when they are sorted.
struct ListTable {
    struct Row {
        std::size_t index = 0;          ///< of the entry in its list
        std::vector<std::string> cells; ///< one a column
        std::vector<double> keys;       ///< one a column, what sorting goes by; NaN stands last
        bool marked = false;            ///< the reference integral
    };
    std::vector<std::string> heads;
    std::vector<Row> rows;
};

/// Peaks of the shown row: number, position, frequency in Hz or kHz, amplitude, height in percent of the highest
/// point; with INTERPOLATE TOPS also the tops between the samples, apart from these.
ListTable PeakListTable(const GlobalBlock& g, ListUnit unit);
/// Integrals: number, value relative to the reference, ends in the unit, sum of the points, B0, B1.
ListTable IntegralListTable(const GlobalBlock& g, ListUnit unit);

/// Rows that compare equal keep their order.
void SortTable(ListTable& table, std::size_t column, bool descending);
/// Heads and rows, fields separated by tabs, each line ended by a line feed.
std::string TabbedText(const ListTable& table);

/// Peaks as a paper prints them, shifts in descending order:
/// "1H NMR (300 MHz, CDCl3) δ 8.03, 7.55, 2.29." Two decimals for protons, one for other nuclei. With
/// INTERPOLATE TOPS the shifts are those between the samples.
struct PaperText {
    std::string plain;
    std::string html; ///< the same with raised mass numbers and lowered indices
};
PaperText PeaksForPaper(const GlobalBlock& g);

} // namespace nmr
