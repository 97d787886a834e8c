#pragma once
// Where every member stands in the sections of a native file: tables of cells, walked by writer and
// reader alike. Offsets count from the label of the section, in entries of lists from the entry.

#include "core/data_set.h"
#include "formats/tavo4_cells.h"

#include <span>

namespace nmr::tavo4 {

template <class Record>
using Cells = std::span<const Cell<Record>>;

Cells<ParamBlock> ParameterCells(); ///< "%% PARAMETER"
Cells<DataSet> PhaseTableCells();   ///< the phase tables inside it
Cells<DataSet> IntegralCells();
Cells<IntegralEntry> IntegralEntryCells();
Cells<DataSet> PeakCells();
Cells<PeakEntry> PeakEntryCells();
Cells<MultiViewEntry> MultiViewCells(); ///< offsets from the section's label, of the first entry
Cells<DataSet> SimulateCells();
Cells<SimPeak> SimPeakCells();
Cells<DataSet> PrintSetCells();
Cells<ParamBlock> PrintSetParameterCells();
Cells<DataSet> ArrayCells();
Cells<DataSet> HistoryCells();
Cells<RegionColor> RegionCells();
Cells<FontRec> FontCellsA(); ///< name behind the numbers
Cells<FontRec> FontCellsB(); ///< colour behind the name

inline constexpr std::size_t kFontSize = 48;
inline constexpr std::size_t kParameterSize = 2560;
inline constexpr std::size_t kListHead = 40; ///< of integrals, peaks and views: where the entries begin
inline constexpr std::size_t kIntegralEntrySize = 24;
inline constexpr std::size_t kPeakEntrySize = 24;
inline constexpr std::size_t kMultiViewSize = 512;
inline constexpr std::size_t kSimPeaksAt = 272;
inline constexpr std::size_t kSimPeakSize = 20;
inline constexpr std::size_t kRegionSize = 16;

} // namespace nmr::tavo4
