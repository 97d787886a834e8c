#include "session/text_save.h"

#include "core/error_report.h"
#include "core/log.h"
#include "formats/jcamp.h"
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

std::string ProposedName(const GlobalBlock& g, const std::string& folder, const std::string& extension)
{
    const ParamBlock& par = g.Slots[0].par;
    const std::string stem = fs::path(par.FileName).stem().string();
    const std::string name = stem + extension;
    const fs::path file = fs::path(folder) / name;
    return file == fs::path(par.OrgFile) ? stem + "-processed" + extension : name;
}

Status TellInUse(Asker& asker)
{
    constexpr char kInUse[] = "This File is under using by other application";
    asker.Message({kInUse, "File Warning", {Button::ok}, Icon::warning, true});
    return Error{ErrorCode::in_use, kWhere, kInUse, 0, true};
}

Status Tell(Asker& asker, Error error)
{
    ErrorReport(asker, error);
    error.user_knows = true;
    return error;
}

void RememberSave(Session& s, const std::string& file)
{
    GlobalBlock& g = s.g;
    RememberFolder(g, FolderGroup::save, file);
    g.SettingsChanged = true;
    g.Slots[0].par.FileName = file;
    g.Slots[0].par.DataChanged = 0;
    AddRecentFile(g, file);
    ShowFileTitle(s, file);
    WriteLog(g, s.asker, kLogSave, file);
    if (s.display_changed) s.display_changed();
}

TextFileKind JcampFile(const char* title)
{
    return {title, {{"JCAMP", "*.dx;*.jdx"}}, ".dx"};
}

/// Text of the row that is shown.
using JcampWriter = Result<std::string> (*)(const DataSet& set, std::size_t row);

void SaveJcamp(Session& s, const char* title, JcampWriter writer)
{
    const std::optional<std::string> path = AskForTextFile(s, JcampFile(title));
    if (!path) return;
    const auto row = static_cast<std::size_t>(std::max<std::int16_t>(s.g.CurrentRow, 0));
    static_cast<void>(Save_Text(s, *path, writer(s.g.Slots[0], row))); // the user has been told
}

} // namespace

std::optional<std::string> AskForTextFile(Session& s, const TextFileKind& kind)
{
    const GlobalBlock& g = s.g;
    FileDialog dialog;
    dialog.kind = FileDialog::Kind::save;
    dialog.title = kind.title;
    dialog.filters = kind.filters;
    dialog.filters.push_back({"All File", "*.*"});
    dialog.folder = DialogFolder(g, FolderGroup::save);
    dialog.extension = kind.extension;
    dialog.name = ProposedName(g, dialog.folder, kind.extension);
    const std::optional<FileChoice> choice = s.asker.File(dialog);
    if (!choice || choice->path.empty()) return std::nullopt;
    return choice->path;
}

Status Save_Text(Session& s, const std::string& path, const Result<std::string>& text)
{
    if (!text) return Tell(s.asker, text.error());
    const std::string file = AbsolutePath(path);
    if (IsFileInUse(s.g, file)) return TellInUse(s.asker);
    s.asker.Notice("Write");
    const bool remove = s.g.settings.make_file_backup == kRemoveBackup;
    const ByteSpan bytes = std::as_bytes(std::span(*text));
    if (Status saved = Safe_Save(file, bytes, remove ? OldVersion::remove : OldVersion::keep); !saved)
        return Tell(s.asker, saved.error());
    RememberSave(s, file);
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

} // namespace nmr
