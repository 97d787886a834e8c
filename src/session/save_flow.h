#pragma once
// Save: from the question about unsaved work to a file that is whole on the disk whatever happens.

#include "core/dates.h"
#include "core/result.h"
#include "formats/data_conversion.h"
#include "session/session.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace nmr {

/// What becomes of the version before.
enum class OldVersion { keep, remove };

/// Puts bytes at `file` in place of what stands there, which becomes the backup "name.$ext"; a backup
/// that is there already waits as "name.$$ext" until the write is done. At every moment the old or the
/// new file stands at the name, whole; bytes and names are on the disk when the call returns. After a
/// failure everything stands as before, and the error tells errno.
Status Safe_Save(const std::filesystem::path& file, ByteSpan bytes, OldVersion old_version);
/// "x.$tvo" of "x.tvo" for the mark "$"; a name without extension gets ".$" behind it.
std::filesystem::path BackupName(const std::filesystem::path& file, std::string_view mark);

/// ".tvo1", ".tvo" or ".tv1", by the setting TVO EXTENSION.
std::string Ver4Extension(const Settings& settings);

/// Saves slot 0 with every used slot as Ver.4 to a path, and one line into its history; another slot alone,
/// as the first spectrum of its file. The user has been told of every failure; the data are then as before,
/// and still unsaved.
/// @return in_use, too_large, bad_value without data (not told), or unwritable
Status Save_Ver4(Session& s, const std::string& path, std::int16_t slot = 0);

/// The same by way of the save dialog. @return cancelled too, when the user gave up
Status Save_Ver4_As(Session& s, std::int16_t slot = 0);

void m10_4_Click(Session& s);                      ///< Save as Ver.4
void SaveMultiVer4(Session& s, std::int16_t slot); ///< m185: one of the multi spectra

/// Asks what becomes of unsaved work (Form110: "Save", "Do not Save", "Cancel") and saves it when told
/// to. True when the data may go: they are saved, given up, or were not changed.
bool Settle_Unsaved(Session& s, const std::string& title, const std::string& text);

} // namespace nmr
