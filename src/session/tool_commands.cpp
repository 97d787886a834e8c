#include "session/tool_commands.h"

#include "analysis/integrals.h"
#include "session/list_commands.h"
#include "session/read_flow.h"
#include "session/tools.h"

#include <algorithm>

namespace nmr {
namespace {

// The display, what is about the program, and what only looks at the data.
constexpr std::string_view kHarmlessMenus[] = {"m3", "m36", "m37", "m40"};
constexpr std::string_view kHarmless[] = {"m121",
                                          "m47",
                                          "m102",
                                          "m20",
                                          kRedoControl,
                                          "m21",
                                          "m22",
                                          "m23",
                                          "m24",
                                          "m25",
                                          "m242",
                                          "m131",
                                          "m17",
                                          "m173",
                                          kPeakListWindow,
                                          kIntegralListWindow,
                                          "CopyPeaks",
                                          "BasicCommand1",
                                          kSavePictureControl,
                                          kPrintControl,
                                          kCopyControl};

void Enter(Session& s, Tool tool)
{
    if (s.tools != nullptr) s.tools->Enter(tool);
}

/// After a step back or forth; one over a read shows another file.
void Show(const Session& s, const std::string& file_before)
{
    const std::string& file = s.g.Slots[0].par.FileName;
    Calc_All_Integrals(s.g); // the points may be others now
    if (file != file_before) ShowFileTitle(s, file);
    if (s.display_changed) s.display_changed();
}

/// Peaks, integrals and regions stand in the undo stack edit by edit, so that their tools stay open; the
/// others hold a step that isn't pushed yet.
bool ReadyForUndo(Session& s)
{
    const auto tool = static_cast<Tool>(s.g.ToolMode);
    if (tool == Tool::peaks || tool == Tool::integrals || tool == Tool::regions) return true;
    return Close_Tool(s);
}

} // namespace

void m21_Click(Session& s)
{
    Enter(s, Tool::reference);
}

void m22_Click(Session& s)
{
    Enter(s, Tool::phase);
}

void m23_Click(Session& s)
{
    Enter(s, Tool::base_line);
}

void m24_Click(Session& s)
{
    Enter(s, Tool::peaks);
}

void m25_Click(Session& s)
{
    Enter(s, Tool::integrals);
}

void m242_Click(Session& s)
{
    Enter(s, Tool::regions);
}

void m20_Click(Session& s)
{
    if (s.tools != nullptr && s.tools->StopDrag()) return; // the newest change is the one under the mouse
    if (s.tools != nullptr && s.tools->UndoBasePoint()) return;
    if (!ReadyForUndo(s)) return;
    const std::string file = s.g.Slots[0].par.FileName;
    if (s.g.Undo.UnDo(s.g)) Show(s, file);
}

void ReDo_Click(Session& s)
{
    if (s.tools != nullptr && s.tools->StopDrag()) return;
    if (s.tools != nullptr && s.tools->RedoBasePoint()) return;
    if (!ReadyForUndo(s)) return;
    const std::string file = s.g.Slots[0].par.FileName;
    if (s.g.Undo.ReDo(s.g)) Show(s, file);
}

bool Close_Tool(Session& s)
{
    if (s.tools != nullptr && s.tools->open() != Tool::none) return s.tools->Close();
    s.g.ToolMode = 0;
    return true;
}

bool Leaves_Tool_Open(const MenuRow& row)
{
    return std::ranges::find(kHarmlessMenus, row.parent) != std::end(kHarmlessMenus) ||
           std::ranges::find(kHarmless, row.control) != std::end(kHarmless);
}

} // namespace nmr
