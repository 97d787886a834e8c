// The commands of the main form that stand by themselves.

#include "core/text.h"
#include "session/display_scope.h"
#include "session/forms.h"
#include "session/menu.h"
#include "session/read_flow.h"
#include "session/startup.h"

#include <fmt/format.h>

namespace nmr {
namespace {

void Refresh(const Session& s)
{
    if (s.display_changed) s.display_changed();
}

forms::Values FileTypeValues(const GlobalBlock& g)
{
    forms::Values values;
    for (int n = 1; n <= forms::kFileTypeSlots; ++n) {
        values[forms::Indexed(forms::kExpression, n)] = g.FileTypeSlots.at(static_cast<std::size_t>(n));
        values[forms::Indexed(forms::kDescription, n)] = g.FileTypeNames.at(static_cast<std::size_t>(n));
    }
    return values;
}

void StoreFileTypes(GlobalBlock& g, const forms::Values& values)
{
    for (int n = 1; n <= forms::kFileTypeSlots; ++n) {
        const auto slot = static_cast<std::size_t>(n);
        const std::string expression(Trim(forms::Text(values, forms::Indexed(forms::kExpression, n))));
        const bool empty = expression.empty() || expression == "-----";
        g.FileTypeSlots.at(slot) = empty ? std::string() : expression;
        g.FileTypeNames.at(slot) = empty ? std::string() : forms::Text(values, forms::Indexed(forms::kDescription, n));
    }
    g.SettingsChanged = true;
}

bool MayDropChanges(Session& s)
{
    const MessageBox box{"The File Type has been changed! Anyway, close?",
                         "Confirmation",
                         {Button::yes, Button::no},
                         Icon::question,
                         false};
    return s.asker.Message(box) == Button::yes;
}

} // namespace

void NMR1D_m11_Command(Session& s)
{
    static_cast<void>(NMR1D_m11_Click(s)); // the user has been told
}

void m121_Click(Session& s)
{
    const forms::Values before = FileTypeValues(s.g);
    for (forms::Values now = before;;) {
        const FormAnswer answer = s.asker.Form({forms::kFileTypes, now});
        if (answer.dialog_result == forms::kOk) {
            StoreFileTypes(s.g, answer.values);
            return;
        }
        if (answer.values.empty() || answer.values == before || MayDropChanges(s)) return;
        now = answer.values;
    }
}

void m47_Click(Session& s)
{
    forms::Values values;
    int row = 0;
    for (const RequiredFile& file : s.g.RequiredFiles) {
        ++row;
        values[forms::Indexed(forms::kRowName, row)] = file.format;
        values[forms::Indexed(forms::kRequired, row)] = file.required;
        values[forms::Indexed(forms::kNotes, row)] = file.notes;
    }
    values[forms::kCount] = fmt::format("{}", row);
    s.asker.Form({forms::kProcessableFiles, values});
}

void m102_Click(Session& s)
{
    s.g.RecentFiles.clear();
    s.g.SettingsChanged = true;
    Refresh(s);
}

void m31_Click(Session& s)
{
    DisplayScope scope(s.g);
    TickChoice ticks = TickChoice::From(s.g.settings);
    for (;;) {
        forms::Values shown = scope.ToValues();
        ticks.PutInto(shown);
        const FormAnswer answer = s.asker.Form({forms::kDisplayScope, shown});
        if (answer.dialog_result == forms::kEditAreas) {
            const FormAnswer areas = s.asker.Form({forms::kDefaultAreas, DefaultAreas(s.g.settings).ToValues()});
            if (areas.dialog_result == forms::kOk) {
                DefaultAreas(areas.values).Apply(s.g.settings);
                s.g.SettingsChanged = true;
            }
            scope = DisplayScope(answer.values).WithPresetsOf(s.g);
            ticks = TickChoice::From(answer.values);
            continue;
        }
        if (answer.dialog_result != forms::kOk || !DisplayScope(answer.values).Apply(s.g)) return;
        TickChoice::From(answer.values).Apply(s.g.settings);
        s.g.SettingsChanged = true;
        Refresh(s);
        return;
    }
}

void m30_Click(Session& s)
{
    const FormAnswer answer = s.asker.Form({forms::kGrid, GridChoice::From(s.g.settings).ToValues()});
    if (answer.dialog_result != forms::kOk) return;
    const GridChoice choice = GridChoice::From(answer.values);
    if (Settings tried = s.g.settings; !choice.Apply(tried)) return;
    PushUndoStep(s.g, UndoKind::change_grid);
    static_cast<void>(choice.Apply(s.g.settings));
    s.g.SettingsChanged = true;
    Refresh(s);
}

void m35_Click(Session& s)
{
    Show_All_Data(s.g);
    Refresh(s);
}

void m41_Click(Session& s)
{
    s.asker.Message(
        {std::string(kSplashName) + "\n" + VersionText(), "Version", {Button::ok}, Icon::information, false});
}

void RecentFile_Click(Session& s, std::size_t index)
{
    if (index >= s.g.RecentFiles.size()) return;
    s.g.LastRecent = static_cast<std::int32_t>(index);
    s.g.CmdLineFile = s.g.RecentFiles[index];
    NMR1D_m11_Command(s);
}

} // namespace nmr
