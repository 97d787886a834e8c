// Files of instruments are never altered: bytes and time stamps around a whole session, from the read to
// the exit.

#include "core/file_hash.h"
#include "core/history.h"
#include "samples/vendor_samples.h"
#include "session/ascii_commands.h"
#include "session/menu.h"
#include "session/rig.h"
#include "session/save_flow.h"

#include <functional>
#include <map>
#include <sys/stat.h>

namespace nmr::test {
namespace {

namespace fs = std::filesystem;

/// Every file below a folder: digest, size, rights and time of the last change.
std::map<std::string, std::string> Stamp(const fs::path& folder)
{
    std::map<std::string, std::string> stamps;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        struct stat info {};
        EXPECT_EQ(::stat(entry.path().c_str(), &info), 0);
        const auto digest = Sha256OfFile(entry.path());
        EXPECT_TRUE(digest);
        stamps[entry.path().string()] = (digest ? *digest : "") + " " + std::to_string(info.st_size) + " " +
                                        std::to_string(info.st_mode) + " " + std::to_string(info.st_mtim.tv_sec) + "." +
                                        std::to_string(info.st_mtim.tv_nsec);
    }
    return stamps;
}

std::string WriteVarian(const fs::path& folder)
{
    WriteText(folder / "procpar", SampleProcpar());
    WriteText(folder / "fid", VarianFile().str());
    return (folder / "fid").string();
}

std::string WriteDelta(const fs::path& folder)
{
    WriteText(folder / "a.jdf", DeltaSetFile().str());
    return (folder / "a.jdf").string();
}

/// Read, phase, undo and redo, two saves, another read over unsaved work and back, exit.
void RunSession(Rig& rig, const std::string& raw, const std::string& out)
{
    Session& s = rig.s;
    GlobalBlock& g = rig.g;
    ASSERT_TRUE(Read_Path(s, raw));
    if (!IsEmpty(g.Slots[0])) {
        UndoStep step = g.Undo.Begin(g, static_cast<std::int32_t>(UndoKind::phase));
        for (float& value : g.Slots[0].spec.DataRe.all()) value = -value;
        g.Slots[0].par.DataChanged = 1;
        EXPECT_TRUE(g.Undo.Commit(g, std::move(step)));
    }
    m20_Click(s);
    ReDo_Click(s);
    ASSERT_TRUE(Save_Ver4(s, out + "/a.tvo1"));
    ASSERT_TRUE(Save_Ver4(s, out + "/a.tvo1"));
    ASSERT_TRUE(Save_Ascii(g, out + "/a.csv", {}));
    g.Slots[0].par.DataChanged = 1;
    ASSERT_TRUE(Read_Path(s, raw));
    m20_Click(s);
    EXPECT_EQ(g.Slots[0].par.FileName, out + "/a.tvo1");
    EXPECT_TRUE(m19_Click(s));
}

TEST(Integrity, ASessionLeavesTheFilesOfInstrumentsAsTheyWere)
{
    struct Case {
        const char* name;
        std::function<std::string(const fs::path&)> write;
    };
    const Case cases[] = {
        {"Bruker FID", [](const fs::path& folder) { return WriteBrukerFid(folder); }},
        {"Bruker spectrum", [](const fs::path& folder) { return WriteBrukerSpectrum(folder, 256, 100); }},
        {"Varian FID", WriteVarian},
        {"Delta", WriteDelta},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Rig rig{Pressed("Do not Save"), Pressed("Do not Save")};
        rig.Boot();
        rig.g.BackupFile = rig.Path("BackUp1_1.tvo1");
        rig.g.UserIniFile = rig.Path("NMRCOL.INI");
        rig.s.another_run_present = [] { return true; };
        const TempFolder data, out;
        const std::string raw = c.write(data.path());
        const auto before = Stamp(data.path());
        RunSession(rig, raw, out.path().string());
        EXPECT_EQ(Stamp(data.path()), before);
        // The saved file tells which file it came from.
        const auto digest = Sha256OfFile(raw);
        ASSERT_TRUE(digest);
        EXPECT_EQ(rig.g.Slots[0].HistoryHead2, digest->substr(0, 32));
        EXPECT_EQ(CheckOriginal(rig.g.Slots[0]), Original::unchanged);
        WriteText(raw, "another");
        EXPECT_EQ(CheckOriginal(rig.g.Slots[0]), Original::changed);
        fs::remove(raw);
        EXPECT_EQ(CheckOriginal(rig.g.Slots[0]), Original::missing);
    }
    DataSet foreign;
    foreign.HistoryHead2 = "head of another program";
    NoteOriginal(foreign, "/etc/hostname");
    EXPECT_EQ(foreign.HistoryHead2, "head of another program") << "what stands there is kept";
    EXPECT_EQ(CheckOriginal(foreign), Original::not_noted);
}

} // namespace
} // namespace nmr::test
