#pragma once
// Folders in which the file dialogs begin.

#include "core/global_block.h"

#include <filesystem>
#include <string>

namespace nmr {

/// Groups of dialogs that remember a folder each: elements of LastDirs.
enum class FolderGroup : std::size_t { read = 0, save = 1, image = 2 };

/// Where a dialog begins: by SETTING FOLDER MODE 0 in the folder last used by its group, else in the one
/// that the settings name for it. One that is gone gives way to the last one used, then to that of the
/// reads; empty when none is there.
std::string DialogFolder(const GlobalBlock& g, FolderGroup group);

/// After a read or a save: the folder of `file` becomes the last one of its group, and is kept in the
/// settings.
void RememberFolder(GlobalBlock& g, FolderGroup group, const std::filesystem::path& file);

/// At start: the folders of the run before, where they are still there.
void RecallFolders(GlobalBlock& g);

} // namespace nmr
