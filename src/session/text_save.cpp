#include "session/text_save.h"

#include "core/error_report.h"
#include "core/log.h"
#include "formats/jcamp.h"
#include "session/color_regions.h"
#include "session/folders.h"
#include "session/read_flow.h"
#include "session/save_flow.h"

#include <algorithm>
#include <filesystem>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr char kWhere[] = "SaveText/1DF1";
constexpr int kRemoveBackup = 1; // value of MAKE FILE BACKUP

std::string ProposedName(const ParamBlock& par, const std::string& folder, const std::string& extension)
{
    const std::string stem = fs::path(par.FileName).stem().string();
    const std::string name = stem + extension;
    const fs::path file = fs::path(folder) / name;
    return file == fs::path(par.OrgFile) ? stem + "-processed" + extension : name;
}

Status Tell(Asker& asker, Error error)
{
    ErrorReport(asker, error);
    error.user_knows = true;
    return error;
}

void RememberSave(Session& s, const std::string& file, std::int16_t slot)
{
    GlobalBlock& g = s.g;
    RememberFolder(g, FolderGroup::save, file);
    g.SettingsChanged = true;
    ParamBlock& par = g.Slots.at(static_cast<std::size_t>(slot)).par;
    par.FileName = file;
    par.DataChanged = 0;
    AddRecentFile(g, file);
    if (slot == 0) ShowFileTitle(s, file);
    WriteLog(g, s.asker, kLogSave, file);
    if (s.display_changed) s.display_changed();
}

TextFileKind JcampFile(const char* title)
{
    return {title, {{"JCAMP", "*.dx;*.jdx"}}, ".dx"};
}

/// Text of the row that is shown.
using JcampWriter = Result<std::string> (*)(const DataSet& set, std::size_t row);

void SaveJcamp(Session& s, const char* title, JcampWriter writer, std::int16_t slot = 0)
{
    const std::optional<std::string> path = AskForTextFile(s, JcampFile(title), slot);
    if (!path) return;
    const std::int16_t row = slot == 0 ? std::max<std::int16_t>(s.g.CurrentRow, 0) : std::int16_t{0};
    const DataSet& set = s.g.Slots.at(static_cast<std::size_t>(slot));
    static_cast<void>(Save_Text(s, *path, writer(set, static_cast<std::size_t>(row)), slot)); // the user has been told
}

} // namespace

Status TellInUse(Asker& asker, const char* where)
{
    constexpr char kInUse[] = "This File is under using by other application";
    asker.Message({kInUse, "File Warning", {Button::ok}, Icon::warning, true});
    return Error{ErrorCode::in_use, where, kInUse, 0, true};
}

std::optional<std::string> AskForTextFile(Session& s, const TextFileKind& kind, std::int16_t slot)
{
    const GlobalBlock& g = s.g;
    FileDialog dialog;
    dialog.kind = FileDialog::Kind::save;
    dialog.title = kind.title;
    dialog.filters = kind.filters;
    dialog.filters.push_back({"All File", "*.*"});
    dialog.folder = DialogFolder(g, FolderGroup::save);
    dialog.extension = kind.extension;
    dialog.name = ProposedName(g.Slots.at(static_cast<std::size_t>(slot)).par, dialog.folder, kind.extension);
    const std::optional<FileChoice> choice = s.asker.File(dialog);
    if (!choice || choice->path.empty()) return std::nullopt;
    return choice->path;
}

Status Save_Text(Session& s, const std::string& path, const Result<std::string>& text, std::int16_t slot)
{
    if (!text) return Tell(s.asker, text.error());
    const std::string file = AbsolutePath(path);
    if (IsFileInUse(s.g, file)) return TellInUse(s.asker, kWhere);
    s.asker.Notice("Write");
    const bool remove = s.g.settings.make_file_backup == kRemoveBackup;
    const ByteSpan bytes = std::as_bytes(std::span(*text));
    if (Status saved = Safe_Save(file, bytes, remove ? OldVersion::remove : OldVersion::keep); !saved)
        return Tell(s.asker, saved.error());
    RememberSave(s, file, slot);
    // It counts as saved all the same, so nobody will ask about them.
    const DataSet& set = s.g.Slots.at(static_cast<std::size_t>(slot));
    if (!set.Peaks.empty() || !set.Integrals.empty() || std::ranges::any_of(set.Regions, IsColored))
        s.asker.Notice("This form keeps no peaks, integrals and coloured regions: a Ver.4 file does.");
    return {};
}

void m10_5_Click(Session& s)
{
    SaveJcamp(s, "Save Data(JCAMP)", JcampText);
}

void m10_6_Click(Session& s)
{
    SaveJcamp(s, "Save Data(JCAMP Reduced)", JcampPagesText);
}

void SaveMultiJcamp(Session& s, std::int16_t slot)
{
    SaveJcamp(s, "Save Data(JCAMP)", JcampText, slot);
}

void SaveMultiJcampPages(Session& s, std::int16_t slot)
{
    SaveJcamp(s, "Save Data(JCAMP Reduced)", JcampPagesText, slot);
}

} // namespace nmr
