#include "session/save_flow.h"

#include "core/error_report.h"
#include "core/file_layer.h"
#include "core/history.h"
#include "core/log.h"
#include "core/text.h"
#include "formats/tavo4.h"
#include "session/folders.h"
#include "session/forms.h"
#include "session/read_flow.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr char kWhere[] = "WriteDataTavo4/1DDRW";
constexpr char kTitle[] = "Save Data(Ver.4)";
constexpr std::array<const char*, 3> kExtensions{".tvo1", ".tvo", ".tv1"};
constexpr int kRemoveBackup = 1;  ///< value of MAKE FILE BACKUP
constexpr int kPathNotFound = 76; ///< run-time error number

Error Cancelled()
{
    return {ErrorCode::cancelled, kWhere, "Cancelled"};
}

/// Says in the system's words why a file could not be written.
Error Tell(Asker& asker, Error error)
{
    if (error.system_error == 0) {
        ErrorReport(asker, error);
    } else {
        // What is missing of a file that is to be made is its folder.
        const bool no_folder = error.system_error == ENOENT;
        const int number = no_folder ? kPathNotFound : RuntimeErrorNumber(error.system_error);
        File_Error(asker, number, kWhere, std::strerror(error.system_error));
        asker.Notice(error.text); // the box does not say which file
    }
    error.user_knows = true;
    return error;
}

/// What a save changes in the record, to be taken back when it fails.
struct Mark {
    std::string exmod, file_name;
    std::size_t history_a, history_b;

    explicit Mark(const DataSet& set) :
        exmod(set.par.EXMOD), file_name(set.par.FileName), history_a(set.HistoryA.size()),
        history_b(set.HistoryB.size())
    {
    }
    void Restore(DataSet& set) const
    {
        set.par.EXMOD = exmod;
        set.par.FileName = file_name;
        set.HistoryA.resize(history_a);
        set.HistoryB.resize(history_b);
    }
};

Status WriteFile(GlobalBlock& g, const fs::path& file, std::int16_t slot)
{
    const auto bytes = EncodeTavo4(g, file.string(), slot);
    if (!bytes) return bytes.error();
    const bool remove = g.settings.make_file_backup == kRemoveBackup;
    return Safe_Save(file, *bytes, remove ? OldVersion::remove : OldVersion::keep);
}

/// Every used slot, or one other than 0.
void MarkSaved(GlobalBlock& g, std::int16_t slot)
{
    for (std::size_t i = 0; i < g.Slots.size(); ++i) {
        ParamBlock& par = g.Slots[i].par;
        if ((slot != 0 && i != static_cast<std::size_t>(slot)) || IsEmpty(g.Slots[i])) continue;
        par.DataChanged = 0;
        par.DataFromFile = 1;
    }
}

void RememberSaved(Session& s, const fs::path& file, std::int16_t slot)
{
    GlobalBlock& g = s.g;
    MarkSaved(g, slot);
    RememberFolder(g, FolderGroup::save, file);
    if (slot == 0) g.Undo.NoteSaved();
    AddRecentFile(g, file.string());
    if (slot == 0) ShowFileTitle(s, file.string());
    WriteLog(g, s.asker, kLogSave, file.string());
    if (s.display_changed) s.display_changed();
}

// --- The dialog

FileDialog SaveDialog(const GlobalBlock& g, std::int16_t slot)
{
    FileDialog dialog;
    dialog.kind = FileDialog::Kind::save;
    dialog.title = kTitle;
    dialog.extension = Ver4Extension(g.settings);
    dialog.filters.push_back({"Ver.4 type", "*" + dialog.extension});
    for (const char* extension : kExtensions)
        if (dialog.extension != extension) dialog.filters.push_back({"Ver.4 type", std::string("*") + extension});
    dialog.filters.push_back({"All File", "*.*"});
    dialog.folder = DialogFolder(g, FolderGroup::save);
    const DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    dialog.name = fs::path(set.par.FileName).stem().string() + dialog.extension;
    return dialog;
}

/// The name with the extension that is set; nothing for one of another kind of file.
std::optional<fs::path> WithExtension(const fs::path& typed, const std::string& extension)
{
    const std::string given = ToLower(typed.extension().string());
    const bool ours = std::ranges::find(kExtensions, given) != kExtensions.end();
    if (!given.empty() && given != "." && !ours) return std::nullopt;
    if (given == extension) return typed;
    return fs::path(typed).replace_extension(extension);
}

bool RetryOtherName(Asker& asker)
{
    return asker.Message({"Invalid File, or\nExtension of File is not TVO1/.TVO/.TV1/ALS",
                          "File Name Error",
                          {Button::retry, Button::cancel},
                          Icon::warning,
                          true}) == Button::retry;
}

/// The dialog asks about the name that was typed; another name that comes of it is asked about here.
bool MayTakeName(Asker& asker, const fs::path& typed, const fs::path& file)
{
    std::error_code ignored;
    if (typed == file || !fs::exists(file, ignored)) return true;
    return asker.Message({file.string() + "\nThis File exists already. Do you overwrite it?",
                          kTitle,
                          {Button::yes, Button::no},
                          Icon::question,
                          false}) == Button::yes;
}

/// Runs the dialog until a name is good; nothing when the user gives up.
std::optional<fs::path> AskForName(Session& s, std::int16_t slot)
{
    for (FileDialog dialog = SaveDialog(s.g, slot);;) {
        const std::optional<FileChoice> choice = s.asker.File(dialog);
        if (!choice || choice->path.empty()) return std::nullopt;
        const fs::path typed = choice->path;
        const std::optional<fs::path> file = WithExtension(typed, dialog.extension);
        if (file && MayTakeName(s.asker, typed, *file)) return file;
        if (!file && !RetryOtherName(s.asker)) return std::nullopt;
        dialog.folder = typed.parent_path().string();
        dialog.name = typed.stem().string() + dialog.extension;
    }
}

} // namespace

std::string Ver4Extension(const Settings& settings)
{
    return kExtensions.at(static_cast<std::size_t>(std::clamp(settings.tvo_extension, 0, 2)));
}

Status Save_Ver4(Session& s, const std::string& path, std::int16_t slot)
{
    GlobalBlock& g = s.g;
    DataSet& set = g.Slots.at(static_cast<std::size_t>(slot));
    if (IsEmpty(set)) return Error{ErrorCode::bad_value, kWhere, "There are no data to save"};
    // Names of new files are taken to the letter, never in other case.
    std::error_code failed;
    const fs::path file = fs::absolute(path, failed).lexically_normal();
    if (IsFileInUse(g, file.string())) {
        constexpr char kInUse[] = "This File is under using by other application";
        s.asker.Message({kInUse, "File Warning", {Button::ok}, Icon::warning, true});
        return Error{ErrorCode::in_use, kWhere, kInUse, 0, true};
    }
    const Mark before(set);
    if (set.par.EXMOD.empty()) set.par.EXMOD = "NON";
    set.par.FileName = file.string();
    AppendHistory(set, g.CurrentUser, kHistorySave);
    if (Status written = WriteFile(g, file, slot); !written) {
        before.Restore(set);
        return Tell(s.asker, written.error());
    }
    RememberSaved(s, file, slot);
    const auto ramp = [](const IntegralEntry& entry) { return entry.B1 != 0; };
    if (std::ranges::any_of(set.Integrals, ramp))
        s.asker.Notice("Files keep no B1 of integrals: read again, those with one will have other values.");
    return {};
}

Status Save_Ver4_As(Session& s, std::int16_t slot)
{
    if (IsEmpty(s.g.Slots.at(static_cast<std::size_t>(slot)))) return Cancelled();
    const std::optional<fs::path> file = AskForName(s, slot);
    if (!file) return Cancelled();
    return Save_Ver4(s, file->string(), slot);
}

void m10_4_Click(Session& s)
{
    static_cast<void>(Save_Ver4_As(s)); // the user has been told
}

void SaveMultiVer4(Session& s, std::int16_t slot)
{
    static_cast<void>(Save_Ver4_As(s, slot)); // the user has been told
}

bool Settle_Unsaved(Session& s, const std::string& title, const std::string& text)
{
    if (s.g.Slots[0].par.DataChanged != 1) return true;
    const FormAnswer answer = s.asker.Form({forms::kQuestion,
                                            {{forms::kTitle, title},
                                             {forms::kText, text},
                                             {forms::kCount, "3"},
                                             {forms::Indexed(forms::kButton, 1), "Save"},
                                             {forms::Indexed(forms::kButton, 2), "Do not Save"},
                                             {forms::Indexed(forms::kButton, 3), "Cancel"}}});
    if (answer.dialog_result == "Save") return static_cast<bool>(Save_Ver4_As(s));
    return answer.dialog_result == "Do not Save";
}

} // namespace nmr
