#include "session/startup.h"

#include "core/file_layer.h"
#include "core/log.h"
#include "core/numbers.h"
#include "core/settings_file.h"
#include "core/text.h"
#include "fid/fft.h"
#include "formats/detect.h"
#include "formats/registry.h"
#include "session/folders.h"
#include "session/forms.h"
#include "session/journal_records.h"
#include "session/read_flow.h"
#include "session/recovery.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <set>
#include <system_error>
#include <unistd.h>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr int kWorkNumbers = 10000;
constexpr std::size_t kShortestCommandLine = 3;

void Number_Slots(GlobalBlock& g)
{
    g.ScratchSet.spec = SpecBuffer{};
    g.ScratchSet.par.SlotNumber = kScratchSlotNumber;
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot)
        g.Slots[static_cast<std::size_t>(slot)].par.SlotNumber = slot < kSlotCount - 1 ? slot : std::int16_t{0};
}

fs::path WithoutSeparatorAtEnd(const fs::path& folder)
{
    return folder.has_filename() || !folder.has_parent_path() ? folder : folder.parent_path();
}

/// True when the run ends because another one has the file.
bool Refuse_File_In_Use(Session& s)
{
    if (!IsFileInUse(s.g, s.g.CmdLineFile)) return false;
    if (s.set_title) s.set_title({});
    s.asker.Message(
        {"This File is under using by other application", "File Warning", {Button::ok}, Icon::warning, true});
    return true;
}

/// True when the sibling program has taken the file over. Without it the run goes on, empty.
bool Hand_To_Sibling(Session& s, const fs::path& sibling)
{
    GlobalBlock& g = s.g;
    const FileType type = ReadFileType(g.CmdLineFile, s.asker, NuclearTable::BuiltIn());
    g.DataKind = type.code;
    if (!IsTwoDimensional(type.code) || IsRowArray(type) || g.NoBounce) return false;
    // The sign behind the name tells the sibling who started it, so that no file goes round for ever.
    const std::string argument = fmt::format("\"{}\"$", AbsolutePath(g.CmdLineFile));
    if (s.start_program && s.start_program(sibling.string(), argument)) return true;
    s.asker.Message(
        {"Two-dimensional data: the program " + sibling.filename().string() + " is not installed beside this one",
         "Data Error",
         {Button::ok},
         Icon::warning,
         true});
    g.CmdLineFile.clear();
    return false;
}

/// True when the run ends before it has begun.
bool Take_Command_Line(Session& s, const StartOptions& options)
{
    ParseCommandLine(s.g, options.command_line);
    if (s.g.CmdLineFile.empty()) return false;
    return Refuse_File_In_Use(s) || Hand_To_Sibling(s, options.sibling);
}

void Use_Common_Settings(GlobalBlock& g)
{
    g.CurrentUser = "COMMON";
    g.UserIniFile = FindInFolder(g.AppPath.string(), "NMRCOL.INI").value_or(g.AppPath / "NMRCOL.INI");
}

/// False on "Quit".
bool Choose_User(Session& s)
{
    GlobalBlock& g = s.g;
    if (g.common.UserMode != 0) {
        Use_Common_Settings(g);
        return true;
    }
    std::vector<std::string> names;
    for (const auto& [name, file] : ListUsers(g.AppPath)) names.push_back(name);
    s.asker.Beep();
    const FormAnswer answer = s.asker.Form(
        {forms::kUserSelection, {{forms::kUsers, forms::JoinLines(names)}, {forms::kLatest, g.common.LatestUser}}});
    g.DialogResult = answer.dialog_result;
    if (answer.dialog_result != forms::kOk) return false;
    SelectUser(g, forms::Text(answer.values, forms::kName));
    if (forms::Text(answer.values, forms::kDoNotOpen) == "1") g.common.UserMode = 1;
    return true;
}

void Quit_Early(Session& s)
{
    const GlobalBlock& g = s.g;
    std::error_code ignored;
    fs::remove(g.AppPath / "Temp", ignored);
    End_Journal(s);
    fs::remove(g.WorkFile, ignored);
    // The claims of other runs hold their files and numbers.
    if (OtherJournals(g)) return;
    for (const std::string& name : ListFiles(g.AppPath, kWorkFilePattern)) fs::remove(g.AppPath / name, ignored);
}

void Make_Store(GlobalBlock& g)
{
    g.MaxPoints = kMaxPoints;
    g.DefaultPoints = 8192;
    static_cast<void>(AllocateSpecBuffer(g, g.DefaultPoints, 0));
}

/// The folder that the first file dialog shows: that of the last read, else the current one.
void Remember_First_Folder(GlobalBlock& g)
{
    std::error_code failed;
    const fs::path current = fs::current_path(failed);
    if (!failed) g.LastDirs[0] = current.string();
}

void Load_User_Settings(GlobalBlock& g)
{
    if (auto table = LoadParamTable(g.AppPath / "1D_Eng.prt")) g.ParamTable = std::move(*table);
    const fs::path asked_for = g.UserIniFile;
    ReadUserSettings(g);
    if (g.UserIniFile != asked_for) g.SettingsChanged = true;
    RecallFolders(g);
}

/// Numbers of claims, and of journals that outlived theirs.
std::set<int> Used_Work_Numbers(const fs::path& folder)
{
    std::set<int> used;
    for (const char* pattern : {kWorkFilePattern, kJournalPattern})
        for (const std::string& name : ListFiles(folder, pattern))
            if (const auto number = WorkNumberOf(name)) used.insert(*number);
    return used;
}

/// False when a run that starts at the same moment was quicker. Any other failure is no reason to go on
/// searching: the run then has no claim.
bool Create_Claim(const fs::path& file)
{
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (descriptor < 0) return errno != EEXIST;
    ::close(descriptor);
    return true;
}

void Take_Work_Number(GlobalBlock& g, int number)
{
    g.WorkNumber = static_cast<std::int16_t>(number);
    g.WorkFile = g.AppPath / fmt::format("Work_File_1D{:04}.wkf", number);
    g.FIDWorkFile = g.AppPath / fmt::format("FID_Work_File_1D{:04}.dat", number);
}

} // namespace

std::string VersionText()
{
    // The pattern "###." shows no digit for 0, and "Ver..1" would look broken.
    const std::string major = FormatNumber(kVersionMajor == 0 ? "0." : "###.", kVersionMajor);
    return "Ver." + major + FormatNumber("##0.", kVersionMinor) + FormatNumber("#####0", kVersionRevision);
}

std::string CommandLineFromArgument(const std::string& argument)
{
    if (argument.find(' ') == std::string::npos || argument.starts_with('"')) return argument;
    // The unpacking wants the "$" inside the quotes.
    if (argument.starts_with("$\"")) return fmt::format("\"${}", argument.substr(2));
    return fmt::format("\"{}\"", argument);
}

void ParseCommandLine(GlobalBlock& g, std::string line)
{
    line = std::string(Trim(line));
    g.CmdLineFile.clear();
    g.NoBounce = false;
    if (line.size() < kShortestCommandLine) return;
    if (line.front() == '"') {
        line.erase(0, 1);
        if (line.ends_with('"')) line.pop_back();
    } else {
        line = line.substr(0, line.find(' '));
    }
    if (line.starts_with('$')) {
        g.NoBounce = true;
        line.erase(0, 1);
    }
    g.CmdLineFile = line;
}

void Claim_Work_File(GlobalBlock& g)
{
    const std::set<int> used = Used_Work_Numbers(g.AppPath);
    for (int number = 0; number < kWorkNumbers; ++number) {
        if (used.contains(number) && number < kWorkNumbers - 1) continue;
        Take_Work_Number(g, number);
        if (Create_Claim(g.WorkFile)) return;
    }
}

StartResult Start(Session& s, const StartOptions& options)
{
    GlobalBlock& g = s.g;
    Number_Slots(g);
    g.AppPath = WithoutSeparatorAtEnd(options.app_path);
    if (Take_Command_Line(s, options)) return StartResult::ended;
    if (options.show_splash) options.show_splash();
    Claim_Work_File(g);
    Begin_Journal(s);
    LoadInstrumentTable(g);
    LoadNuclearTable(g);
    InitGlobals(g);
    ReadCommonSettings(g);
    const bool user_chosen = Choose_User(s);
    if (!user_chosen) Quit_Early(s);
    if (user_chosen) {
        Make_Store(g);
        Make_Sine_Table(g.SineTable);
        Remember_First_Folder(g);
        Load_User_Settings(g);
        LoadRequiredFiles(g);
    }
    if (options.hide_splash) options.hide_splash();
    g.LastRecent = -1;
    if (user_chosen) WriteLog(g, s.asker, kLogStart, VersionText());
    return user_chosen ? StartResult::run : StartResult::ended;
}

void Read_Command_Line_File(Session& s)
{
    if (!s.g.CmdLineFile.empty()) static_cast<void>(NMR1D_m11_Click(s));
}

void Start_Batch(GlobalBlock& g, const fs::path& app_path)
{
    Number_Slots(g);
    g.AppPath = WithoutSeparatorAtEnd(app_path);
    g.WorkFile.clear();
    g.FIDWorkFile.clear();
    if (g.AppPath.empty()) {
        g.nuclides = NuclearTable::BuiltIn();
    } else {
        LoadInstrumentTable(g);
        LoadNuclearTable(g);
    }
    InitGlobals(g);
    Make_Store(g);
}

} // namespace nmr
