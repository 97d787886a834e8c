// Every way to name a data set on the command line, and what a run leaves behind.

#include "cli/cli_run.h"

#include <sys/stat.h>
#include <unistd.h>

namespace nmr::test {
namespace {

namespace fs = std::filesystem;

/// A folder of `parent` with the sample as a directory ("exp"), a spectrum in it, and as flat files.
class CliPaths : public CliSample {
protected:
    void SetUp() override
    {
        fs::copy(Sample(), root() / "exp", fs::copy_options::recursive);
        const std::string acqus = ReadText(root() / "exp/acqus");
        std::string procs = ReadText(root() / "exp/pdata/1/procs");
        procs.replace(procs.find("##$SI= 65536"), 12, "##$SI= 256");
        const std::string points = std::string(512, '\1') + std::string(512, '\2');
        for (const char* number : {"7", "1042"}) {
            WriteText(root() / "exp/pdata" / number / "procs", procs);
            WriteText(root() / "exp/pdata" / number / "1r", points);
        }
        fs::copy(root() / "exp/fid", flat() / "001001.FID");
        WriteText(flat() / "001001.AQS", acqus);
        WriteText(flat() / "001001.FQS", procs);
        WriteText(flat() / "001001.1R", points);
        WriteText(flat() / "001002.AQS", acqus);
        WriteText(flat() / "001002.FQS", procs);
        WriteText(flat() / "001002.1R", points);
        fs::copy(root() / "exp",
                 root() / "pr\xC3\xB6"
                          "be 1 \xE6\x97\xA5",
                 fs::copy_options::recursive);
        fs::copy(root() / "exp", root() / "processed", fs::copy_options::recursive);
        fs::remove(root() / "processed/fid");
        fs::create_directory(root() / "links");
        fs::create_symlink("../exp", root() / "links/folder");
        fs::create_symlink("../exp/fid", root() / "links/points");
    }
    fs::path root() const { return folder_.path(); }
    fs::path flat() const
    {
        fs::create_directories(root() / "flat");
        return root() / "flat";
    }

private:
    TempFolder folder_;
};

TEST_F(CliPaths, FilesFoldersLinksAndLettersOfEitherCase)
{
    struct Case {
        const char* path; ///< from the folder of all
        int exit;
        const char* tag;
        int points;
    };
    constexpr int kFid = 131072, kSpectrum = 256;
    const Case cases[] = {
        {"exp", 0, "BRU1", kFid},
        {"exp/", 0, "BRU1", kFid},
        {"./exp//", 0, "BRU1", kFid},
        {"exp/fid", 0, "BRU1", kFid},
        {"EXP/Fid", 0, "BRU1", kFid},
        {"exp\\fid", 0, "BRU1", kFid},
        {"exp/pdata/7/../..", 0, "BRU1", kFid},
        {"pr\xC3\xB6"
         "be 1 \xE6\x97\xA5",
         0, "BRU1", kFid},
        {"pr\xC3\xB6"
         "be 1 \xE6\x97\xA5/FID",
         0, "BRU1", kFid},
        {"links/folder", 0, "BRU1", kFid},
        {"links/folder/pdata/7", 0, "BRU1", kSpectrum},
        {"links/points", 0, "BRU1", kFid},
        {"exp/pdata/7", 0, "BRU1", kSpectrum},
        {"exp/pdata/1042/", 0, "BRU1", kSpectrum},
        {"exp/pdata/1042/1R", 0, "BRU1", kSpectrum},
        {"processed", 0, "BRU1", kSpectrum},
        {"flat/001001.FID", 0, "BRUX1F", kFid},
        {"flat/001001.fid", 0, "BRUX1F", kFid},
        {"Flat/001001.1r", 0, "BRUX1D", kSpectrum},
        {"flat/001002.1R", 0, "BRUX1D", kSpectrum},
        {"flat/001002.FID", 3, "ERR", 0},
        {"exp/pdata/8", 3, "ERR", 0},
        {"links", 3, "ERR", 0},
        {"", 3, "ERR", 0},
        {"/", 3, "ERR", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        const auto run =
            RunCommand("cd " + Quoted(root()) + " && " + kBin + "nmr1d-cli process --json " + Quoted(c.path));
        ASSERT_EQ(run.exit, c.exit);
        EXPECT_EQ(run.json()["tag"], c.tag);
        EXPECT_EQ(run.json()["file"], c.path);
        if (c.exit == 0) {
            EXPECT_EQ(run.json()["points"], c.points);
        }
    }
}

TEST_F(CliPaths, SaysWhichRightIsMissing)
{
    if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
    const std::string folder = root() / "exp", file = root() / "exp/fid";
    for (const auto& [closed, asked] : {std::pair{file, file}, {file, folder}, {folder, folder}, {folder, file}}) {
        SCOPED_TRACE(closed + " closed, " + asked + " asked for");
        ASSERT_EQ(chmod(closed.c_str(), 0000), 0);
        const auto run = Cli("process --json " + Quoted(asked));
        ASSERT_EQ(chmod(closed.c_str(), 0700), 0);
        EXPECT_EQ(run.exit, 3);
        EXPECT_NE(run.json()["error"].get<std::string>().find("Permission denied"), std::string::npos);
    }
}

TEST_F(CliPaths, WritesWhatItIsToldAndNothingElse)
{
    const auto list = [&] {
        return RunCommand("cd " + Quoted(root()) + " && find . -printf '%p %s %T@ %C@\\n' | sort").out;
    };
    for (const char* name : {"home", "out"}) fs::create_directory(root() / name);
    RunCommand("chmod -R a-w " + Quoted(root() / "exp"));
    const std::string home = Quoted(root() / "home");
    const std::string surroundings = "cd " + home + " && env -i HOME=" + home + " XDG_CONFIG_HOME=" + home +
                                     " XDG_DATA_HOME=" + home + " XDG_CACHE_HOME=" + home + " XDG_RUNTIME_DIR=" + home +
                                     " TMPDIR=" + home + " " + kBin + "nmr1d-cli ";
    const std::string before = list();
    for (const std::string arguments : {"process ../exp --json", "process ../flat/001001.FID", "process ../exp/pdata/7",
                                        "info ../exp", "process nowhere", "formats"})
        EXPECT_NE(RunCommand(surroundings + arguments).exit, 70) << arguments;
    EXPECT_EQ(list(), before);
    ASSERT_EQ(RunCommand(surroundings + "process ../exp --out ../out/a.npy --out ../out/a.csv").exit, 0);
    ASSERT_EQ(RunCommand(surroundings + "process ../exp --out ../out/b.npy").exit, 0);
    fs::rename(root() / "out", root() / "out-of-the-way");
    EXPECT_EQ(RunCommand("ls " + Quoted(root() / "out-of-the-way")).out, "a.csv\na.npy\nb.npy\n");
    EXPECT_TRUE(fs::is_empty(root() / "home"));
    EXPECT_TRUE(ReadText(root() / "out-of-the-way/a.npy") == ReadText(root() / "out-of-the-way/b.npy"))
        << "two runs give the same bytes";
    RunCommand("chmod -R u+w " + Quoted(root() / "exp"));
}

} // namespace
} // namespace nmr::test
