#include "session/list_commands.h"

#include "core/error_report.h"
#include "core/text.h"
#include "formats/list_files.h"
#include "session/folders.h"
#include "session/list_tables.h"
#include "session/read_flow.h"
#include "session/text_save.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <span>

namespace nmr {
namespace {

namespace fs = std::filesystem;

using Writer = Status (*)(const std::string& path, const GlobalBlock& g, ListUnit unit);

/// A form that a list can be saved in.
struct FormRow {
    const char* description;
    const char* extension;
    Writer write;
};
constexpr FormRow kPeakForms[] = {
    {"ASCII Format", ".red", WriteDataRed},
    {"JEOL Type", ".red",
     [](const std::string& path, const GlobalBlock& g, ListUnit) { return WriteDataRedAls(path, g); }},
};
constexpr FormRow kIntegralForms[] = {{"ASCII Format", ".int", WriteDataInt},
                                      {"ASCII Format", ".Ilist", WriteDataIntList}};
constexpr FormRow kCurveForms[] = {{"ASCII Format", ".int", WriteDataInt}, {"Running Sums", ".csv", WriteDataIntCurve}};

struct ListKind {
    const char* title;
    std::span<const FormRow> forms;
    std::int32_t Settings::*first; ///< the form that the dialog begins with, from 1
};
constexpr ListKind kPeaks{"Save Peak List", kPeakForms, &Settings::init_file_red};
constexpr ListKind kIntegrals{"Save Integral List", kIntegralForms, &Settings::init_file_int};
constexpr ListKind kCurve{"Save Integral Curve", kCurveForms, &Settings::init_file_intcuv};

std::size_t FirstForm(const GlobalBlock& g, const ListKind& kind)
{
    const int last = static_cast<int>(kind.forms.size()) - 1;
    return static_cast<std::size_t>(std::clamp(g.settings.*kind.first - 1, 0, last));
}

FileDialog DialogOf(const GlobalBlock& g, const ListKind& kind)
{
    FileDialog dialog;
    dialog.kind = FileDialog::Kind::save;
    dialog.title = kind.title;
    for (const FormRow& form : kind.forms)
        dialog.filters.push_back({form.description, std::string("*") + form.extension});
    dialog.filters.push_back({"All Files", "*.*"});
    const std::size_t first = FirstForm(g, kind);
    dialog.filter_index = static_cast<int>(first) + 1;
    dialog.folder = DialogFolder(g, FolderGroup::save);
    dialog.extension = kind.forms[first].extension;
    dialog.name = fs::path(g.Slots[0].par.FileName).stem().string() + dialog.extension;
    return dialog;
}

/// The form of a name: that of the chosen filter, unless the name has the extension of another.
const FormRow& FormOf(const ListKind& kind, const std::string& path, std::size_t chosen)
{
    const std::string extension = fs::path(path).extension().string();
    const FormRow& wanted = kind.forms[std::min(chosen, kind.forms.size() - 1)];
    const auto fits = [&](const FormRow& form) { return EqualsNoCase(form.extension, extension); };
    if (fits(wanted)) return wanted;
    const auto other = std::ranges::find_if(kind.forms, fits);
    return other == kind.forms.end() ? wanted : *other;
}

/// The dialog asks about the name that was typed; another name that comes of it is asked about here.
bool MayReplace(Asker& asker, const char* title, const std::string& path)
{
    std::error_code ignored;
    if (!fs::exists(path, ignored)) return true;
    return asker.Message({path + "\nThis File exists already. Do you overwrite it?",
                          title,
                          {Button::yes, Button::no},
                          Icon::question,
                          false}) == Button::yes;
}

Status Save(Session& s, const std::string& path, const FormRow& form)
{
    const std::string file = AbsolutePath(path);
    if (IsFileInUse(s.g, file)) return TellInUse(s.asker, "SaveList/1DF1");
    s.asker.Notice("Write");
    if (Status written = form.write(file, s.g, ShownListUnit(s.g)); !written) {
        Error error = written.error();
        ErrorReport(s.asker, error);
        error.user_knows = true;
        return error;
    }
    RememberFolder(s.g, FolderGroup::save, file);
    s.g.SettingsChanged = true;
    return {};
}

void SaveByDialog(Session& s, const ListKind& kind)
{
    const auto choice = s.asker.File(DialogOf(s.g, kind));
    if (!choice || choice->path.empty()) return;
    const bool all_files = choice->filter_index < 1 || choice->filter_index > static_cast<int>(kind.forms.size());
    const std::size_t chosen = all_files ? FirstForm(s.g, kind) : static_cast<std::size_t>(choice->filter_index) - 1;
    const FormRow& form = FormOf(kind, choice->path, chosen);
    std::string path = choice->path;
    if (!fs::path(path).has_extension()) {
        path += form.extension;
        if (!MayReplace(s.asker, kind.title, path)) return;
    }
    if (!Save(s, path, form)) return; // the user has been told
    s.g.settings.*kind.first = static_cast<std::int32_t>(&form - kind.forms.data()) + 1;
}

} // namespace

void PeakList_Click(Session& s)
{
    s.asker.Form({kPeakListWindow, {}});
}

void IntegralCommand3_Click(Session& s)
{
    s.asker.Form({kIntegralListWindow, {}});
}

void CopyPeaks_Click(Session& s)
{
    if (s.g.Slots[0].Peaks.empty()) {
        s.asker.Notice("No peaks are picked");
        return;
    }
    const PaperText text = PeaksForPaper(s.g);
    if (s.copy_text) s.copy_text(text.plain, text.html);
    s.asker.Notice("Copied: " + text.plain);
}

void m17_Click(Session& s)
{
    SaveByDialog(s, kPeaks);
}

void m173_Click(Session& s)
{
    SaveByDialog(s, kIntegrals);
}

void m131_Click(Session& s)
{
    SaveByDialog(s, kCurve);
}

Status Save_Peak_List(Session& s, const std::string& path)
{
    return Save(s, path, FormOf(kPeaks, path, 0));
}

Status Save_Integral_List(Session& s, const std::string& path)
{
    const ListKind& kind = EqualsNoCase(fs::path(path).extension().string(), ".csv") ? kCurve : kIntegrals;
    return Save(s, path, FormOf(kind, path, 1));
}

} // namespace nmr
