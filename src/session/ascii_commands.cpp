#include "session/ascii_commands.h"

#include "core/error_report.h"
#include "core/text.h"
#include "session/display_scope.h"
#include "session/folders.h"
#include "session/forms.h"
#include "session/menu.h"
#include "session/read_flow.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>

namespace nmr {
namespace {

std::optional<std::string> AskForName(Session& s)
{
    const GlobalBlock& g = s.g;
    FileDialog dialog;
    dialog.kind = FileDialog::Kind::save;
    dialog.title = "Save Data(ASCII)";
    dialog.filters = {{"ASCII", "*.txt;*.dat;*.asc"}, {"CSV with all parameters", "*.csv"}, {"All File", "*.*"}};
    dialog.folder = DialogFolder(g, FolderGroup::save);
    dialog.extension = ".txt";
    const std::filesystem::path file(g.Slots[0].par.FileName);
    dialog.name = file.stem().string() + dialog.extension;
    const std::optional<FileChoice> choice = s.asker.File(dialog);
    if (!choice || choice->path.empty()) return std::nullopt;
    return choice->path;
}

/// What NMR1D_Form104 was answered with; nothing after "Quit".
std::optional<AsciiChoice> AskForData(Session& s)
{
    const FormAnswer answer = s.asker.Form(
        {forms::kAsciiData,
         {{forms::kPoints, fmt::format("{}", s.g.Slots[0].par.POINT)}, {forms::kDept, forms::Switch(false)}}});
    s.g.DialogResult = answer.dialog_result;
    return ParseAsciiWord(answer.dialog_result);
}

void RememberSave(Session& s, const std::string& path)
{
    GlobalBlock& g = s.g;
    const std::string file = AbsolutePath(path);
    RememberFolder(g, FolderGroup::save, file);
    g.SettingsChanged = true;
    g.Slots[0].par.FileName = file;
    g.Slots[0].par.DataChanged = 0;
    AddRecentFile(g, file);
    if (s.set_title) s.set_title(WindowTitle(file));
    if (s.display_changed) s.display_changed();
}

} // namespace

bool IsCsvName(const std::string& path)
{
    return EqualsNoCase(std::filesystem::path(path).extension().string(), ".csv");
}

Status Save_Ascii(const GlobalBlock& g, const std::string& path, const AsciiChoice& choice)
{
    if (IsCsvName(path)) return WriteAscii2(path, g, 0);
    return WriteDataAscii(path, g, choice.mode, 0, choice.points, FullScale(g.Slots[0]));
}

void m10_7_Click(Session& s)
{
    const std::optional<std::string> path = AskForName(s);
    if (!path) return;
    AsciiChoice choice;
    if (!IsCsvName(*path)) {
        const std::optional<AsciiChoice> asked = AskForData(s);
        if (!asked) return;
        choice = *asked;
    }
    s.asker.Notice("Write");
    if (Status saved = Save_Ascii(s.g, *path, choice); !saved) {
        ErrorReport(s.asker, saved.error());
        return;
    }
    RememberSave(s, *path);
}

void NMR1D_m112_Command(Session& s)
{
    static_cast<void>(NMR1D_m112_Click(s)); // the user has been told
}

} // namespace nmr
