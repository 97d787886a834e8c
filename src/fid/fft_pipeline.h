#pragma once
// From FID to spectrum: zero fill, filter, shift, window, transform, phase, axis, in the one order
// that preview and commit share.

#include "core/global_block.h"

#include <functional>

namespace nmr {

/// The FID of slot 0 (DataRe/DataIm) into the FID work file, or into memory when there is none.
/// Real parts of all rows, then imaginary parts, 32-bit floats without a head. Sets FIDPointsRaw.
/// A failure sets NoFIDFile and leaves the FID in WorkRe/WorkIm: one transform of it is still possible.
Status Write_FID_Work(GlobalBlock& g);
/// The FID back into WorkRe/WorkIm, zero-filled to POINT, which becomes their upper bound. With
/// NoFIDFile set nothing is loaded, and it fails once the one transform has used the rows up.
/// @return truncated when the kept FID is shorter than RowCount and FIDPointsRaw say; nothing changes
Status Load_FID_Work(GlobalBlock& g);

// The three fills make the arrays anew, load the FID, recompute the window and keep pivot and second
// mark on their frequencies; the caller runs the preview.

/// Zero fill by the settings AUTO ZEROFILL and ZEROFILLSIZE, before the form opens.
void Auto_ZeroFill(GlobalBlock& g, std::int16_t slot);
/// Doubles the length; false at the limit and without a kept FID, where nothing happens.
bool Zero_Fill_Double(GlobalBlock& g, std::int16_t slot);
/// Sets the fill factor: a power of two with FIDPointsRaw * factor at most kMaxPoints.
Status Set_Zero_Fill(GlobalBlock& g, std::int16_t slot, std::int32_t factor);

/// Transforms the FID of CurrentRow into SourceRe/SourceIm; chooses FilterKind; sets DispLeft to the
/// largest magnitude and DispRight to 0.
void FFT_Preview(GlobalBlock& g, std::int32_t shift);
/// Transforms one row in place inside WorkRe/WorkIm with the FilterKind of the last preview.
void FFT_Row(GlobalBlock& g, std::int32_t row, std::int32_t shift);
/// Rotates one row of WorkRe/WorkIm in place about PivotPoint.
void Apply_Phase_Row(GlobalBlock& g, float ph0, float ph1, std::int32_t n, std::int32_t row);

/// All rows from the FID to a referenced, phased spectrum in slot 0, which then has SMODE 1. The phases
/// are reset, WorkRe, WorkIm and WindowCurve released. It uses the FilterKind of the last preview, so a
/// preview must have run for the present FIDShift; the window is computed anew.
/// `progress` gets percents and may be empty.
/// @return a failure to get the FID or the window, which leaves the set a FID
Status Commit_Transform(GlobalBlock& g, const std::function<void(int)>& progress = {});

/// The frequency axis of a transformed slot: instrument table, then the file's own reference when
/// REF INITITAL is 1, then the last transform, then 0 ppm at the first point.
void Set_Frequency_Axis(GlobalBlock& g, std::int16_t slot);

/// FIDShift and Phase1Deg to start from: remembered shift of the experiment, else of the family and
/// nucleus, else the group delay of the file; the fraction of it becomes first-order phase.
void Set_Initial_Shift(GlobalBlock& g);

/// Finds the TMS line of the shown row between two points; -1 when none can be told. The header of
/// tms_search.cpp says how it decides.
std::int32_t Search_TMS(const DataSet& set, std::int32_t from, std::int32_t to);

} // namespace nmr
