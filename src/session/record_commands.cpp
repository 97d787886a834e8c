// History, operators, parameters: the commands that show and change what is known about the data.

#include "core/error_report.h"
#include "core/file_layer.h"
#include "core/history.h"
#include "core/operators.h"
#include "core/param_edit.h"
#include "core/settings_file.h"
#include "core/text.h"
#include "session/folders.h"
#include "session/forms.h"
#include "session/menu.h"
#include "session/parameter_list.h"
#include "session/text_forms.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace nmr {
namespace {

void Refresh(const Session& s)
{
    if (s.display_changed) s.display_changed();
}

DataSet& ListedSet(GlobalBlock& g)
{
    return g.Slots[static_cast<std::size_t>(std::clamp(g.CurrentParameterSlot, 0, kSlotCount - 1))];
}

forms::Values ListValues(const DataSet& set)
{
    forms::Values values;
    int n = 0;
    for (const ParameterRow& row : ParameterRows(set)) {
        ++n;
        values[forms::Indexed(forms::kRowName, n)] = row.label;
        values[forms::Indexed(forms::kValue, n)] = row.value;
    }
    values[forms::kCount] = fmt::format("{}", n);
    values[forms::kTitle] = set.par.FileName;
    return values;
}

void SaveList(Session& s, const DataSet& set)
{
    FileDialog dialog;
    dialog.kind = FileDialog::Kind::save;
    dialog.title = "Save List";
    dialog.filters = {{"Text File", "*.txt"}, {"All File", "*.*"}};
    dialog.folder = DialogFolder(s.g, FolderGroup::save);
    dialog.name = std::filesystem::path(set.par.FileName).stem().string() + ".txt";
    dialog.extension = ".txt";
    const std::optional<FileChoice> choice = s.asker.File(dialog);
    if (!choice || choice->path.empty()) return;
    if (const Status written = WriteWholeFile(choice->path, ParameterListText(set)); !written)
        ErrorReport(s.asker, written.error());
}

// ---- the parameter editor ----

/// Sample ID and comment have boxes of their own at the foot of the form.
const char* BoxOf(const ParamEditRow& row)
{
    if (row.name == "SampleId") return forms::kSampleId;
    return row.name == "COMNT" ? forms::kComment : nullptr;
}

std::string ValueKey(const ParamEditRow& row, int n)
{
    const char* box = BoxOf(row);
    return box != nullptr ? std::string(box) : forms::Indexed(forms::kValue, n);
}

/// As the field shows; a temperature that stands for none is an empty field.
std::string EditText(const ParamBlock& par, const ParamEditRow& row)
{
    const bool none = (row.name == "CTEMP" && par.CTEMP == kNoTemperature) ||
                      (row.name == "TempSet" && par.TempSet == kNoTemperature);
    return none ? std::string() : ParamText(par, *FindParamByName(row.name));
}

bool TakeText(ParamBlock& par, const ParamEditRow& row, const std::string& text)
{
    const bool temperature = row.name == "CTEMP" || row.name == "TempSet";
    if (temperature && Trim(text).empty()) {
        (row.name == "CTEMP" ? par.CTEMP : par.TempSet) = kNoTemperature;
        return true;
    }
    return SetParam(par, *FindParamByName(row.name), text);
}

forms::Values EditorValues(const GlobalBlock& g)
{
    const ParamBlock& par = g.Slots[0].par;
    forms::Values values;
    int n = 0;
    for (const ParamEditRow& row : ParamEditRows()) {
        if (BoxOf(row) == nullptr) ++n;
        values[ValueKey(row, n)] = EditText(par, row);
        if (BoxOf(row) != nullptr) continue;
        const ParamField& field = *FindParamByName(row.name);
        const char* kind = row.is_list ? forms::kListRow : field.pattern.empty() ? forms::kTextRow : forms::kNumberRow;
        values[forms::Indexed(forms::kRowKind, n)] = kind;
        values[forms::Indexed(forms::kRowName, n)] =
            std::string(row.label) + (field.unit.empty() ? "" : fmt::format(" ({})", Trim(field.unit)));
    }
    const DataSet& set = g.Slots[0];
    values[forms::kCommentRtf] = set.CommentRtfPlain == par.COMNT ? set.CommentRtf : std::string();
    values[forms::kCount] = fmt::format("{}", n);
    values[forms::kNames] = forms::JoinLines(g.Operators);
    return values;
}

/// Takes what was changed: a number that was left alone keeps the digits that its pattern does not show.
/// @return the row that holds no number, or none
const ParamEditRow* TakeEdits(ParamBlock& par, const forms::Values& before, const forms::Values& after, int& wrong)
{
    int n = 0;
    for (const ParamEditRow& row : ParamEditRows()) {
        if (BoxOf(row) == nullptr) ++n;
        const std::string key = ValueKey(row, n);
        const auto typed = after.find(key);
        if (typed == after.end() || typed->second == forms::Text(before, key)) continue;
        if (TakeText(par, row, typed->second)) continue;
        wrong = n;
        return &row;
    }
    return nullptr;
}

void StoreParameters(Session& s, const ParamBlock& edited, const std::string& comment_rtf)
{
    PushUndoStep(s.g, UndoKind::change_parameter);
    s.g.Slots[0].CommentRtf = comment_rtf;
    s.g.Slots[0].CommentRtfPlain = edited.COMNT; // another comment, by undo too, makes the rich text stale
    ParamBlock& par = s.g.Slots[0].par;
    par = edited;
    par.DataChanged = 1;
    par.DataFromFile = 0;
    Refresh(s);
}

// ---- the parameter file ----

constexpr char kPublicTable[] = "1D_Eng.prt";

forms::Values TableValues(const std::vector<ParamTableEntry>& table)
{
    forms::Values values;
    int n = 0;
    for (const ParamTableEntry& entry : table) {
        ++n;
        values[forms::Indexed(forms::kKey, n)] = entry.Key;
        values[forms::Indexed(forms::kLabel, n)] = entry.Label;
        values[forms::Indexed(forms::kFormat, n)] = entry.Format;
    }
    values[forms::kCount] = fmt::format("{}", n);
    return values;
}

std::vector<ParamTableEntry> TableOf(const forms::Values& values)
{
    std::vector<ParamTableEntry> table;
    const int count = static_cast<int>(forms::Number(values, forms::kCount));
    for (int n = 1; n <= count; ++n)
        table.push_back({forms::Text(values, forms::Indexed(forms::kKey, n)),
                         forms::Text(values, forms::Indexed(forms::kLabel, n)),
                         forms::Text(values, forms::Indexed(forms::kFormat, n))});
    // A row without a key would be read back as something else.
    std::erase_if(table, [](const ParamTableEntry& entry) { return Trim(entry.Key).empty(); });
    return table;
}

bool IsPrt(const std::string& path)
{
    return EqualsNoCase(std::filesystem::path(path).extension().string(), ".prt");
}

FileDialog TableDialog(const GlobalBlock& g, FileDialog::Kind kind, const std::string& file)
{
    FileDialog dialog;
    dialog.kind = kind;
    dialog.title = kind == FileDialog::Kind::open ? "Read Parameter File" : "Save Parameter File";
    dialog.filters = {{"Parameter File", "*.prt"}};
    const std::filesystem::path path(file);
    dialog.folder = path.has_parent_path() ? path.parent_path().string() : g.AppPath.string();
    dialog.name = path.filename().string();
    dialog.extension = ".prt";
    return dialog;
}

constexpr char kAboutTable[] =
    "A parameter file says which parameters the box on the page shows, in which order and how.\n\n"
    "Key: the parameter, such as OBFRQ. \"$\" makes a heading of the label, \";\" a remark.\n"
    "Label: the text in front of the value.\n"
    "Format: \"#\" is a digit that shows when it counts, \"0\" one that always shows, \"@\" the value as text; "
    "what stands behind is the unit, as in \"#####0.0### MHz\".\n\n"
    "The program starts with the file 1D_Eng.prt.";

std::string PublicFile(const GlobalBlock& g)
{
    return (g.AppPath / kPublicTable).string();
}

/// The file that the run's table comes from.
std::string FileInUse(const GlobalBlock& g)
{
    const std::string& name = g.settings.parameter_table;
    if (name.empty()) return PublicFile(g);
    const std::string beside = Below(g.AppPath, name).string();
    return FileLen(beside) >= 0 ? beside : name;
}

/// One showing after another of the parameter-file form, with what its buttons do in between.
class TableEditor {
public:
    explicit TableEditor(Session& s) : s_(s), file_(FileInUse(s.g)), values_(TableValues(s.g.ParamTable)) {}

    void Run()
    {
        for (;;) {
            values_[forms::kFile] = file_;
            values_[forms::kChanged] = forms::Switch(changed_);
            const FormAnswer answer = s_.asker.Form({forms::kParameterFile, values_});
            if (!answer.values.empty()) {
                values_ = answer.values;
                changed_ = forms::Text(values_, forms::kChanged) == "1";
            }
            if (answer.dialog_result == forms::kOpenFile)
                Open();
            else if (answer.dialog_result == forms::kSaveFile)
                Save();
            else if (answer.dialog_result == forms::kPublicFile)
                Load(PublicFile(s_.g));
            else if (answer.dialog_result == forms::kAboutFile)
                s_.asker.Message({kAboutTable, "About Parameter File", {Button::ok}, Icon::information, false});
            else if (MayDrop())
                return;
        }
    }

private:
    bool MayDrop()
    {
        if (!changed_) return true;
        const MessageBox box{"The Parameter File has been changed! Anyway, close?",
                             "Confirmation",
                             {Button::yes, Button::no},
                             Icon::question,
                             false};
        return s_.asker.Message(box) == Button::yes;
    }
    void Open()
    {
        const auto choice = s_.asker.File(TableDialog(s_.g, FileDialog::Kind::open, file_));
        if (choice && !choice->path.empty()) Load(choice->path);
    }
    void Load(const std::string& path)
    {
        if (!MayDrop()) return;
        const auto table = LoadParamTable(path);
        if (!table) {
            ErrorReport(s_.asker, table.error());
            return;
        }
        values_ = TableValues(*table);
        file_ = path;
        changed_ = false;
    }
    void Save()
    {
        const auto choice = s_.asker.File(TableDialog(s_.g, FileDialog::Kind::save, file_));
        if (!choice || choice->path.empty()) return;
        std::filesystem::path path(choice->path);
        if (!path.has_extension()) path += ".prt";
        if (!IsPrt(path.string())) {
            s_.asker.Message({"Extension of File is not .PRT", "File Error", {Button::ok}, Icon::warning, true});
            return;
        }
        const std::vector<ParamTableEntry> table = TableOf(values_);
        if (const Status saved = SaveParamTable(path, table); !saved) {
            ErrorReport(s_.asker, saved.error());
            return;
        }
        // The box on the page follows the file that it is printed by.
        if (path == FileInUse(s_.g)) s_.g.ParamTable = table;
        file_ = path.string();
        changed_ = false;
    }

    Session& s_;
    std::string file_;
    forms::Values values_;
    bool changed_ = false;
};

} // namespace

void m209_Click(Session& s)
{
    const DataSet& set = s.g.Slots[0];
    forms::Values values{{forms::kHead, set.par.OrgFile}};
    int n = 0;
    for (const HistoryRow& row : HistoryRows(set)) {
        ++n;
        values[forms::Indexed(forms::kSubject, n)] = row.subject;
        values[forms::Indexed(forms::kOperator, n)] = row.operator_name;
        values[forms::Indexed(forms::kDate, n)] = row.date;
    }
    values[forms::kCount] = fmt::format("{}", n);
    s.asker.Form({forms::kHistoryForm, values});
}

void m43_Click(Session& s)
{
    const FormAnswer answer = s.asker.Form({forms::kOperatorForm, {{forms::kNames, forms::JoinLines(s.g.Operators)}}});
    if (!answer.values.contains(forms::kNames)) return;
    std::vector<std::string> names;
    for (const std::string& name : forms::SplitLines(answer.values.at(forms::kNames))) AddOperator(names, name);
    if (names == s.g.Operators) return;
    s.g.Operators = std::move(names);
    s.g.SettingsChanged = true;
}

void BasicCommand1_Click(Session& s)
{
    const DataSet& set = ListedSet(s.g);
    while (s.asker.Form({forms::kParameterList, ListValues(set)}).dialog_result == forms::kSaveList) SaveList(s, set);
}

void m292_Click(Session& s)
{
    const forms::Values before = EditorValues(s.g);
    for (forms::Values shown = before;;) {
        const FormAnswer answer = s.asker.Form({forms::kParameterEditor, shown});
        if (answer.dialog_result != forms::kOk) return;
        ParamBlock edited = s.g.Slots[0].par;
        int wrong = 0;
        const ParamEditRow* refused = TakeEdits(edited, before, answer.values, wrong);
        if (refused == nullptr) {
            const bool changed = std::ranges::any_of(
                answer.values, [&](const auto& value) { return value.second != forms::Text(before, value.first); });
            if (changed) StoreParameters(s, edited, forms::Text(answer.values, forms::kCommentRtf));
            return;
        }
        s.asker.Message({fmt::format("{}: the value is not a number, or out of range", refused->label),
                         "Parameter Error",
                         {Button::ok},
                         Icon::warning,
                         true});
        for (const auto& [key, value] : answer.values) shown[key] = value;
        shown[forms::kWrong] = fmt::format("{}", wrong);
    }
}

void m42_Click(Session& s)
{
    TableEditor(s).Run();
}

} // namespace nmr
