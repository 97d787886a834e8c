#pragma once
// Read: from a user's choice to a filled slot 0 on the display.

#include "core/result.h"
#include "formats/detect.h"
#include "session/session.h"

#include <string>
#include <utility>
#include <vector>

namespace nmr {

/// The whole of "Read": questions, file dialog (CmdLineFile when it is set), detection, reader, and
/// for a FID the transform form. What the user had is brought back when the read fails.
Status NMR1D_m11_Click(Session& s);

/// "Read CSV Data": the same for a text table, whatever the file is called.
Status NMR1D_m112_Click(Session& s);

/// The same for a path at hand, without the file dialog: drag and drop, recent files, nmr1d-cli.
///
/// @return not_found, unreadable, not_nmr, two_dimensional, unsupported or in_use before anything is touched;
///         what the reader said (too_large, bad_value, truncated ...); cancelled when a question or
///         the transform form was answered so. The user has been told of each but cancelled. Unsaved
///         data that were replaced are back after every failure, with DataChanged 1; without unsaved
///         data a read that failed behind its first questions leaves slot 0 empty.
Status Read_Path(Session& s, const std::string& path);
/// The same, and what the detection said of the path.
Status Read_Path(Session& s, const std::string& path, FileType& detected);

enum class MultiState : std::int16_t { normal = 0, keep = 3 };
/// Sets and their slots.
using MultiSpectra = std::vector<std::pair<std::size_t, DataSet>>;
/// Asks what becomes of the multi spectra when slots 1 to 20 hold some; false when the read is to end.
/// What it deletes goes into `deleted`, so that a read that fails can bring it back.
bool ConfirmDeleteMulti(Session& s, MultiState state, MultiSpectra* deleted = nullptr);

/// Work files of all runs in a data folder.
inline constexpr char kWorkFilePattern[] = "Work_File_1D*.wkf";
/// The real path of a name, absolute and without "." and ".."; of a name that does not exist too.
std::string AbsolutePath(const std::string& path);
/// Another run has the file open (its work file names it). Never true without a data folder.
bool IsFileInUse(const GlobalBlock& g, const std::string& path);
/// Writes the path of the open data file as the only line of WorkFile; an empty one gives the file up.
void ClaimFile(const GlobalBlock& g, const std::string& path);

/// "3 notes on reading: " and the first of them, for one line; empty without any.
std::string NotesLine(const std::vector<std::string>& notes);

/// Window title with the file that is open.
void ShowFileTitle(const Session& s, const std::string& file);

/// Shown range and divisions of the axis after a read: those of the nucleus.
void Set_Display_Range(GlobalBlock& g);
/// The whole axis.
void Show_All_Data(GlobalBlock& g);

/// Title of the window over an open file.
std::string WindowTitle(const std::string& file);
/// Moves a path to the front of the recent files; 21 at most.
void AddRecentFile(GlobalBlock& g, const std::string& path);
/// At most 40 characters: the middle of a long path gives way.
std::string ShortenPath(const std::string& path, std::size_t limit = 40);
/// "  &1. /data/exp/1/fid"; from the tenth on without the access key.
std::string RecentCaption(const GlobalBlock& g, std::size_t index);

} // namespace nmr
