#pragma once
// The one record of a run: the store of data sets, the settings, the state of display and commands.
// Main makes it and passes it by reference; a test makes its own.

#include "core/data_set.h"
#include "core/nuclear_table.h"
#include "core/numbers.h"
#include "core/result.h"
#include "core/settings.h"
#include "core/undo.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace nmr {

/// Row of the instrument table \OB_0ppm.frq: the 0 ppm frequency last set on an instrument.
struct InstrumentRow {
    std::string instrument, probe, nucleus;
    double frequency = 0; ///< MHz, centre of the spectrum
    double ppm0 = 0;      ///< MHz, 0 ppm frequency
    std::string date;
};

/// Row of ExpShiftTable: what the last transform of an experiment used.
struct ExpShiftRow {
    std::string instrument; ///< experiment key, "INSTRUMENT" of the settings
    std::int32_t FIDShift = 0;
    double ref_center_frq = 0; ///< MHz
    double ref_center = 0;     ///< ppm at the centre
    std::string instrument_id;
    double group_delay = -1; ///< of the data that FIDShift came from, points; negative: not known
};

struct ParamTableEntry {
    std::string Key, Label, Format;
};

/// Row of \requiredFile1D_E.txt.
struct RequiredFile {
    std::string format, required, notes;
};

/// The keys of \1DCommon.ini.
struct CommonSettings {
    std::string LogDir = "C:\\NMRLog";
    std::int32_t LogMode = 0;
    std::int32_t AccessCount = 0;
    std::int32_t UserMode = 0;
    std::string LatestUser;
};

inline constexpr std::ptrdiff_t kWindowOrigin = 5000;

/// A row that the robust phase has turned, to be known again by its points.
struct PhasedRow {
    std::uint64_t digest = 0;
    std::int32_t pivot = 0;
    double quality = 0; ///< percent
};

struct GlobalBlock {
    std::array<DataSet, kSlotCount> Slots;
    DataSet ScratchSet;
    std::int32_t CurrentParameterSlot = 0;
    std::int16_t CurrentMultiSlot = 0;
    std::int16_t CurrentRow = 0;

    Settings settings;
    CommonSettings common;
    NuclearTable nuclides;
    std::vector<InstrumentRow> Instruments; ///< at most 2001 rows
    bool InstrumentsChanged = false;
    std::array<ExpShiftRow, 100> ExpShiftTable{};
    std::vector<ParamTableEntry> ParamTable;
    std::vector<RequiredFile> RequiredFiles;
    std::vector<std::string> RecentFiles;     ///< newest first, at most 21
    std::vector<std::string> Operators;       ///< at most 101
    std::array<std::string, 6> FileTypeSlots; ///< expressions of the open dialog, 1 to 5 used
    std::array<std::string, 6> FileTypeNames; ///< their descriptions
    std::array<std::string, 3> LastDirs;      ///< last folders of reads and saves
    bool SettingsChanged = false;

    // This run.
    std::filesystem::path AppPath;
    std::filesystem::path WorkFile;    ///< claims the data file in use; empty: no claim (batch)
    std::filesystem::path FIDWorkFile; ///< empty: the FID is kept in memory
    std::int16_t WorkNumber = 0;
    std::filesystem::path UserIniFile;
    std::string CurrentUser = "COMMON";
    std::string CmdLineFile;
    bool NoBounce = false;
    std::int32_t DataKind = 0;    ///< DataTypeCode of the last detection
    std::int32_t FormatIndex = 0; ///< its family
    std::string DialogResult;
    std::filesystem::path BackupFile;
    std::string OverwriteBackupName; ///< backup of the unsaved data that a read has replaced; empty: none
    std::int32_t PrinterCount = 0;
    std::int32_t MaxPoints = kMaxPoints;
    std::int32_t DefaultPoints = 8192;
    std::int32_t LastRecent = -1;

    // Transform and phase.
    std::vector<double> SineTable; ///< sine by index, cosine at index + T/4; Ready_Sine_Table before use
    RowArray<float> WorkRe, WorkIm;
    RowArray<float> FidMemory; ///< the FID when there is no FIDWorkFile: real rows, then imaginary rows
    OffsetLine<float> WindowCurve{kWindowOrigin};
    std::vector<float> FilterRe, FilterIm;
    std::int32_t FilterKind = 0;
    std::int32_t DigitalFilterPoints = 1;
    float Phase0Deg = 0, Phase1Deg = 0;
    std::int32_t PivotPoint = 0;
    std::vector<PhasedRow> PhasedRows; ///< results of the robust phase in this run, the newest last
    std::int32_t P2Point = -1;
    float MaxMagnitude = 0;
    std::vector<float> RowPhase0, RowPhase1;
    std::vector<float> WorkLine, CrossLine;
    std::array<std::vector<float>, 4> SpareLines;
    std::vector<std::int16_t> PointFlag;
    float DataScale = 1.0F;
    bool NoFIDFile = false; ///< the FID could not be kept: no further transform of it
    double LastObsCenter = 0, LastCentre = 0;
    // The same for 1H, 13C and other nuclei, by NucleusGroup.
    std::array<double, 3> GroupObsCenter{}, GroupCentre{};

    // Commands and display.
    bool NoSpectrumYet = false;
    std::int16_t DEPTMode = 0, DiffMode = 0, DiffCount = 0;
    std::int16_t ReadAsArray = 0; ///< of the last array: 0 in the order of the file, 1 by parameter
    std::int16_t ArrayMode = 0, ArrayReverse = 0, AbsoluteMode = 0;
    std::int32_t ToolMode = 0;
    float ViewLeft = 0, ViewRight = 0; ///< shown range, ppm; left is the larger
    double ShownHzLeft = 0, ShownHzRight = 0;
    float ArrayRowOffset = 0;

    // Edits that can be taken back.
    std::vector<BasePointEntry> BasePoints; ///< of the base line, in ascending order of Point
    UndoStack Undo{UndoKinds(), "UndoSpecData1."};
    UndoStack PointUndo{PointUndoKinds(), {}}; ///< point tool of the base line; no points of data
};

/// (Re)creates the arrays of a slot with `points` as upper bound of the point index, and for slot 0
/// the work arrays too; what they held is lost. RowCount is raised to 1 first.
/// @return too_large above kMaxPoints or kMaxRows, bad_value below 0 or for a slot outside 0..20
Status AllocateSpecBuffer(GlobalBlock& g, std::int32_t points, std::int16_t slot);

/// Every field but SlotNumber back to its default, all lists empty; the point arrays stay.
void ClearDataSet(GlobalBlock& g, std::int16_t slot);
/// The same for a set outside the table.
void ClearDataSet(DataSet& set, const Settings& settings);

/// Gives every slot its own index and ScratchSet its number; once, before the first use of the store.
void NumberSlots(GlobalBlock& g);

/// A set is empty when it has no points or no arrays.
inline bool IsEmpty(const DataSet& set)
{
    return set.par.POINT == 0 || set.spec.AllocatedPoints == 0;
}

/// The spectrum's source for the next phase: DataRe/DataIm into SourceRe/SourceIm.
void CopyDataToSource(DataSet& set);

/// After a read of a spectrum: DispLeft the largest magnitude over all rows when the file brought
/// none, DispRight the smallest real value.
void FillDisplayLimits(DataSet& set);

} // namespace nmr
