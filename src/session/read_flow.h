#pragma once
// Read: from a user's choice to a filled slot 0 on the display.

#include "core/result.h"
#include "session/session.h"

#include <string>

namespace nmr {

/// The whole of "Read": questions, file dialog (CmdLineFile when it is set), detection, reader, and
/// for a FID the transform form. What the user had is brought back when the read fails.
Status NMR1D_m11_Click(Session& s);

/// The part behind the dialog, for a path at hand: detection to display. Used by NMR1D_m11_Click,
/// by drag and drop, and by nmr1d-cli.
Status Read_Path(Session& s, const std::string& path);

enum class MultiState : std::int16_t { normal = 0, keep = 3 };
/// Asks what becomes of the multi spectra when slots 1 to 20 hold some; false when the read is to end.
bool ConfirmDeleteMulti(Session& s, MultiState state);

/// Another run has the file open (its work file names it).
bool IsFileInUse(const GlobalBlock& g, const std::string& path);
/// Writes the path of the open data file as the only line of WorkFile.
void ClaimFile(const GlobalBlock& g, const std::string& path);

/// Shown range after a read: the preset group of the nucleus.
void Set_Display_Range(GlobalBlock& g);
/// The whole axis.
void Show_All_Data(GlobalBlock& g);

/// Moves a path to the front of the recent files; 21 at most.
void AddRecentFile(GlobalBlock& g, const std::string& path);
/// At most 40 characters: the middle of a long path gives way.
std::string ShortenPath(const std::string& path, std::size_t limit = 40);
/// "  &1. /data/exp/1/fid"; from the tenth on without the access key.
std::string RecentCaption(const GlobalBlock& g, std::size_t index);

} // namespace nmr
