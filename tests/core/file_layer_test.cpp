#include "core/file_layer.h"

#include "support/files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

using namespace nmr;
using nmr::test::ReadText;
using nmr::test::TempFolder;
using nmr::test::WriteText;
namespace fs = std::filesystem;

namespace {

std::string TextOf(const Result<Bytes>& bytes)
{
    if (!bytes) return "(" + bytes.error().text + ")";
    return {reinterpret_cast<const char*>(bytes->data()), bytes->size()};
}

std::size_t FileCount(const fs::path& folder)
{
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

} // namespace

TEST(FileLayer, SplitsPaths)
{
    struct Case {
        const char *path, *directory, *name, *extension;
    };
    const Case cases[] = {
        {"C:\\data\\alpha.jdf", "C:\\data", "alpha", ".JDF"},
        {"/data/a.b/alpha.tvo1", "/data/a.b", "alpha", ".TVO1"},
        {"exp.fid/fid", "exp.fid", "fid", ""},
        {"mixed\\way/to.d\\fid", "mixed\\way/to.d", "fid", ""},
        {"one.two.dx", "", "one.two", ".DX"},
        {"a/.fid", "a", "", ".FID"},
        {"a/name.", "a", "name.", ""}, // the last character is not looked at
        {"dir/sub/", "dir", "sub/", ""},
        {"/fid", "", "fid", ""},
        {"ab", "", "", ""},
        {"", "", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        const PathParts parts = Path_Split(c.path);
        EXPECT_EQ(parts.directory, c.directory);
        EXPECT_EQ(parts.name, c.name);
        EXPECT_EQ(parts.extension, c.extension);
    }
    EXPECT_EQ(Path_Split("a\\fid.x", NameCase::upper).name, "FID");
}

TEST(FileLayer, FindsNamesOfAnyCaseAndSeparatorButPrefersTheExactOne)
{
    TempFolder folder;
    WriteText(folder / "Exp/1/Acqus", "a");
    WriteText(folder / "Exp/1/fid", "lower");
    WriteText(folder / "Exp/1/FID", "upper");
    WriteText(folder / "Exp/1/Ser", "S");
    WriteText(folder / "Exp/1/SER", "SS");
    WriteText(folder / "Exp/back\\slash", "literal");
    fs::create_symlink("nowhere", folder / "Exp/Broken");
    struct Case {
        const char *name, *found;
    };
    const Case cases[] = {
        {"Exp/1/acqus", "Exp/1/Acqus"},  {"exp\\1\\ACQUS", "Exp/1/Acqus"},
        {"EXP/1/fid", "Exp/1/fid"},      {"EXP/1/FID", "Exp/1/FID"},
        {"EXP/1/Fid", "Exp/1/FID"}, // the alphabetically first of two
        {"exp//1/./ser", "Exp/1/./SER"}, {"Exp/back\\slash", "Exp/back\\slash"},
        {"exp/2/fid", nullptr},          {"exp/broken", nullptr},
        {"exp/1/fid/x", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto path = ResolvePath(folder / c.name);
        ASSERT_EQ(path.has_value(), c.found != nullptr);
        if (path) {
            EXPECT_EQ(path->string(), folder / c.found);
        }
    }
    EXPECT_EQ(TextOf(ReadWholeFile((folder / "exp") + "\\1\\fid")), "lower");
    EXPECT_FALSE(ResolvePath(""));
    EXPECT_FALSE(ResolvePath(std::string_view("/tmp\0x", 6)));
    EXPECT_EQ(FindInFolder(folder / "exp/1", "aCQUS"), fs::path(folder / "Exp/1/Acqus"));
    EXPECT_EQ(FindInFolder(folder / "exp/1/", "\\acqus"), fs::path(folder / "Exp/1/Acqus"));
    EXPECT_FALSE(FindInFolder(folder / "exp", ""));
    EXPECT_TRUE(IsFolder(folder / "EXP"));
    EXPECT_FALSE(IsFolder(folder / "exp/1/fid"));
    EXPECT_EQ(FileLen(folder / "exp/1/fid"), 5);
    EXPECT_EQ(FileLen(folder / "exp/1"), -1);
    EXPECT_EQ(FileLen(folder / "none"), -1);
}

TEST(FileLayer, ReadsWholeFilesAndHeads)
{
    TempFolder folder;
    const std::string text(200'000, 'x');
    WriteText(folder / "big", text);
    WriteText(folder / "empty", "");
    EXPECT_EQ(TextOf(ReadWholeFile(folder / "big")), text);
    EXPECT_EQ(TextOf(ReadWholeFile(folder / "big", text.size())), text);
    EXPECT_EQ(TextOf(ReadWholeFile(folder / "empty")), "");
    EXPECT_EQ(TextOf(ReadFileHead(folder / "big", 100)), text.substr(0, 100));
    EXPECT_EQ(TextOf(ReadFileHead(folder / "big", SIZE_MAX)), text);
    EXPECT_EQ(TextOf(ReadFileHead(folder / "empty", 100)), "");
    // Files of the kernel claim a length of 0 and hold more.
    EXPECT_FALSE(TextOf(ReadWholeFile("/proc/self/status")).empty());
}

TEST(FileLayer, RefusesWhatIsNoOrdinaryFileWithoutWaiting)
{
    TempFolder folder;
    WriteText(folder / "file", "abc");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    fs::create_directory(folder / "folder");
    struct Case {
        std::string path;
        ErrorCode code;
    };
    const Case cases[] = {
        {folder / "pipe", ErrorCode::unreadable},     {folder / "folder", ErrorCode::unreadable},
        {"/dev/zero", ErrorCode::unreadable},         {folder / "none", ErrorCode::not_found},
        {folder / "file/none", ErrorCode::not_found}, {"", ErrorCode::not_found},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        const auto whole = ReadWholeFile(c.path);
        ASSERT_FALSE(whole);
        EXPECT_EQ(whole.error().code, c.code);
        const auto head = ReadFileHead(c.path, 16);
        ASSERT_FALSE(head);
        EXPECT_EQ(head.error().code, c.code);
        EXPECT_FALSE(head.error().text.empty());
    }
    if (geteuid() != 0) { // no folder is closed to root
        WriteText(folder / "folder/hidden", "x");
        ASSERT_EQ(chmod((folder / "folder").c_str(), 0), 0);
        const auto hidden = ReadWholeFile(folder / "folder/hidden");
        ASSERT_FALSE(hidden);
        EXPECT_EQ(hidden.error().code, ErrorCode::unreadable);
        ASSERT_EQ(chmod((folder / "folder").c_str(), 0700), 0);
    }
    const auto limited = ReadWholeFile(folder / "file", 2);
    ASSERT_FALSE(limited);
    EXPECT_EQ(limited.error().code, ErrorCode::too_large);
}

TEST(FileLayer, WritingReplacesTheWholeFileAndLeavesNothingElse)
{
    TempFolder folder;
    const fs::path path = folder / "set.ini";
    ASSERT_TRUE(WriteWholeFile(path, std::string_view("first")));
    EXPECT_EQ(ReadText(path), "first");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_TRUE(WriteWholeFile(path, std::string_view("")));
    EXPECT_EQ(ReadText(path), "");
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0640U) << "the rights of the old file";
    fs::create_symlink("set.ini", folder / "link");
    ASSERT_TRUE(WriteWholeFile(folder / "link", std::string_view("through")));
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(ReadText(path), "through");
    const std::string longest(255, 'n');
    EXPECT_TRUE(WriteWholeFile(folder / longest, std::string_view("x")));
    EXPECT_EQ(FileCount(folder.path()), 3U);
}

TEST(FileLayer, AFailedWriteSaysWhyAndChangesNothing)
{
    TempFolder folder;
    fs::create_directory(folder / "folder");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const std::string& path : {folder / "folder", folder / "pipe", folder / "no/where", folder / "", std::string(),
                                    folder / std::string(256, 'n'), std::string("/proc/nothing")}) {
        SCOPED_TRACE(path);
        const Status status = WriteWholeFile(path, std::string_view("x"));
        ASSERT_FALSE(status);
        EXPECT_EQ(status.error().code, ErrorCode::unwritable);
        EXPECT_NE(status.error().text.find("Can't write"), std::string::npos) << status.error().text;
    }
    EXPECT_EQ(FileCount(folder.path()), 2U);
    const Status full = WriteWholeFile("/dev/full", std::string_view("x"));
    EXPECT_FALSE(full);
    if (geteuid() == 0) return; // nothing is read-only for root
    WriteText(folder / "kept", "old");
    ASSERT_EQ(chmod((folder / "kept").c_str(), 0444), 0);
    EXPECT_FALSE(WriteWholeFile(folder / "kept", std::string_view("new")));
    EXPECT_EQ(ReadText(folder / "kept"), "old");
}

TEST(FileLayer, ListsFilesByPattern)
{
    TempFolder folder;
    for (const char* name : {"NMRCOL.INI", "nmrcol0001.ini", "NmrCol0002.Ini", "other.txt", "x[1].txt"})
        WriteText(folder / name, "");
    fs::create_directory(folder / "nmrcolx.ini");
    using Names = std::vector<std::string>;
    EXPECT_EQ(ListFiles(folder.path(), "NMRCOL*.ini"), (Names{"NMRCOL.INI", "NmrCol0002.Ini", "nmrcol0001.ini"}));
    EXPECT_EQ(ListFiles(folder.path(), "nmrcol????.ini"), (Names{"NmrCol0002.Ini", "nmrcol0001.ini"}));
    EXPECT_EQ(ListFiles(folder.path(), "*[1]*"), Names{"x[1].txt"});
    EXPECT_EQ(ListFiles(folder.path(), "*").size(), 5U);
    EXPECT_TRUE(ListFiles(folder.path(), "").empty());
    EXPECT_TRUE(ListFiles(folder / "none", "*").empty());
    // A pattern that tries every split of a name must still end at once.
    WriteText(folder / std::string(200, 'a'), "");
    EXPECT_TRUE(ListFiles(folder.path(), "*a*a*a*a*a*a*a*a*a*a*a*a*b").empty());
}

TEST(FileLayer, SettingsOfOtherSystemsMapToPlacesHere)
{
    EXPECT_EQ(Below("/data", "\\Work_File_1D0001.wkf"), fs::path("/data/Work_File_1D0001.wkf"));
    EXPECT_EQ(Below("/data", "/a\\b"), fs::path("/data/a/b"));
    EXPECT_EQ(MapDrivePath("/data", "C:\\NMRLog"), fs::path("/data/NMRLog"));
    EXPECT_EQ(MapDrivePath("/data", "d:/a\\b\\"), fs::path("/data/a/b"));
    EXPECT_EQ(MapDrivePath("/data", "C:"), fs::path("/data"));
    EXPECT_EQ(MapDrivePath("/data", "/var\\log"), fs::path("/var/log"));
    EXPECT_EQ(MapDrivePath("/data", "1:\\x"), fs::path("1:/x"));
    TempFolder folder;
    EXPECT_TRUE(IsWritableFolder(folder.path()));
    EXPECT_FALSE(IsWritableFolder(folder / "none"));
    EXPECT_FALSE(IsWritableFolder("/proc/self"));
    WriteText(folder / "file", "");
    EXPECT_FALSE(IsWritableFolder(folder / "file"));
}
