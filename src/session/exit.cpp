// The way out: one question about unsaved data, the settings, and the files that this run leaves.

#include "core/error_report.h"
#include "core/file_layer.h"
#include "core/log.h"
#include "core/settings_file.h"
#include "session/forms.h"
#include "session/other_runs.h"
#include "session/read_flow.h"
#include "session/recovery.h"
#include "session/save_flow.h"
#include "session/startup.h"
#include "session/tool_commands.h"

#include <array>
#include <system_error>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOwnPatterns[] = {"temp*.emf", "temp*.wmf", "temp*.temp", "Temp.dat"};
constexpr const char* kMultiSnapshots = "UndoSpecData2.*";

void Write_Settings(Session& s)
{
    for (const Status& written : {WriteUserSettings(s.g), WriteCommonSettings(s.g)})
        if (!written) ErrorReport(s.asker, written.error());
}

void Offer_Instrument_Table(Session& s)
{
    if (!s.g.InstrumentsChanged) return;
    const MessageBox box{"Do you save Instrumental Data for Reference setting?",
                         "Save Instrumental Data",
                         {Button::yes, Button::no},
                         Icon::question,
                         false};
    if (s.asker.Message(box) != Button::yes) return;
    if (const Status saved = SaveInstrumentTable(s.g); !saved) ErrorReport(s.asker, saved.error());
}

/// Only files right in the data folder: a path that has strayed must never delete anything else.
void Remove_Own(const GlobalBlock& g, const fs::path& file)
{
    if (file.empty() || file.parent_path() != g.AppPath) return;
    std::error_code ignored;
    if (fs::is_regular_file(fs::symlink_status(file, ignored))) fs::remove(file, ignored);
}

void Remove_Files(Session& s)
{
    GlobalBlock& g = s.g;
    if (g.AppPath.empty()) return;
    End_Journal(s);
    // What belongs to work that is kept for later must outlive this run too.
    const bool another = s.another_run_present ? s.another_run_present() : AnotherRunPresent();
    const bool alone = !another && !OtherJournals(g);
    // Another run may still want to take its steps back.
    g.Undo.RemoveFiles(g, alone);
    for (const char* pattern : kOwnPatterns)
        for (const std::string& name : ListFiles(g.AppPath, pattern)) Remove_Own(g, g.AppPath / name);
    Remove_Own(g, g.BackupFile);
    Remove_Own(g, g.FIDWorkFile);
    Remove_Own(g, g.WorkFile);
    if (!alone) return;
    // What runs that were killed have left goes too.
    for (const char* pattern : {kMultiSnapshots, kWorkFilePattern})
        for (const std::string& name : ListFiles(g.AppPath, pattern)) Remove_Own(g, g.AppPath / name);
}

} // namespace

bool m19_Click(Session& s)
{
    if (!Close_Tool(s) || !Settle_Unsaved(s, "Exit 1D NMR", "Before End, Data is")) {
        s.g.DialogResult = forms::kCancel;
        return false;
    }
    Write_Settings(s);
    Offer_Instrument_Table(s);
    WriteLog(s.g, s.asker, kLogExit, s.g.Slots[0].par.FileName);
    Remove_Files(s);
    s.g.DialogResult = forms::kEnd;
    return true;
}

} // namespace nmr
