#include "session/folders.h"

#include "core/file_layer.h"

namespace nmr {
namespace {

struct GroupRow {
    std::string Settings::*fixed;
    std::string Settings::*last; ///< nullptr: forgotten with the run
};
// In the order of FolderGroup.
constexpr GroupRow kGroups[] = {
    {&Settings::data_set_dir, &Settings::access_read_dir},
    {&Settings::data_write_dir, &Settings::access_write_dir},
    {&Settings::data_image_dir, nullptr},
};

} // namespace

std::string DialogFolder(const GlobalBlock& g, FolderGroup group)
{
    const auto index = static_cast<std::size_t>(group);
    const std::string& fixed = g.settings.*(kGroups[index].fixed);
    if (g.settings.setting_folder_mode != 0 && !fixed.empty() && IsFolder(fixed)) return fixed;
    for (const std::string& folder : {g.LastDirs[index], g.LastDirs[0]})
        if (!folder.empty() && IsFolder(folder)) return folder;
    return {};
}

void RememberFolder(GlobalBlock& g, FolderGroup group, const std::filesystem::path& file)
{
    const auto index = static_cast<std::size_t>(group);
    g.LastDirs[index] = file.parent_path().string();
    if (kGroups[index].last != nullptr) g.settings.*(kGroups[index].last) = g.LastDirs[index];
}

void RecallFolders(GlobalBlock& g)
{
    for (std::size_t index = 0; index < std::size(kGroups); ++index) {
        if (kGroups[index].last == nullptr) continue;
        const std::string& folder = g.settings.*(kGroups[index].last);
        if (!folder.empty() && IsFolder(folder)) g.LastDirs[index] = folder;
    }
}

} // namespace nmr
