// Where the dialogs begin.

#include "session/folders.h"

#include "session/rig.h"

namespace nmr::test {
namespace {

TEST(Folders, TheModeAndWhatIsThereDecide)
{
    TempFolder disk;
    for (const char* name : {"read", "save", "set", "write"}) std::filesystem::create_directories(disk / name);
    struct Case {
        const char* name;
        int mode;
        FolderGroup group;
        const char* gone; ///< a folder that is not there any more
        const char* begins;
    };
    const Case cases[] = {
        {"last read", 0, FolderGroup::read, "", "read"},
        {"last save", 0, FolderGroup::save, "", "save"},
        {"nothing saved there yet", 0, FolderGroup::image, "", "read"},
        {"last save gone", 0, FolderGroup::save, "save", "read"},
        {"set for reads", 1, FolderGroup::read, "", "set"},
        {"set for saves", 1, FolderGroup::save, "", "write"},
        {"set for saves, gone", 1, FolderGroup::save, "write", "save"},
        {"none set", 1, FolderGroup::image, "", "read"},
        {"all gone", 0, FolderGroup::read, "read", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Rig rig;
        rig.g.settings.setting_folder_mode = c.mode;
        rig.g.settings.data_set_dir = disk / "set";
        rig.g.settings.data_write_dir = disk / "write";
        RememberFolder(rig.g, FolderGroup::read, disk / "read/a.tvo1");
        RememberFolder(rig.g, FolderGroup::save, disk / "save/a.tvo1");
        const std::string gone = disk / c.gone;
        if (*c.gone != '\0') std::filesystem::rename(gone, gone + "_");
        EXPECT_EQ(DialogFolder(rig.g, c.group), *c.begins == '\0' ? "" : disk / c.begins);
        // The next run begins where this one has left.
        Rig next;
        next.g.settings = rig.g.settings;
        RecallFolders(next.g);
        EXPECT_EQ(DialogFolder(next.g, c.group), DialogFolder(rig.g, c.group));
        if (*c.gone != '\0') std::filesystem::rename(gone + "_", gone);
    }
}

} // namespace
} // namespace nmr::test
