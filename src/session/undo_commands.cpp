// "UnDo" and "ReDo" of the main form.

#include "analysis/integrals.h"
#include "session/menu.h"
#include "session/read_flow.h"

namespace nmr {
namespace {

/// After a step back or forth; one over a read shows another file.
void Show(const Session& s, const std::string& file_before)
{
    const std::string& file = s.g.Slots[0].par.FileName;
    // The points may be others now.
    Calc_All_Integrals(s.g);
    if (file != file_before) ShowFileTitle(s, file);
    if (s.display_changed) s.display_changed();
}

} // namespace

void m20_Click(Session& s)
{
    const std::string file = s.g.Slots[0].par.FileName;
    if (s.g.Undo.UnDo(s.g)) Show(s, file);
}

void ReDo_Click(Session& s)
{
    const std::string file = s.g.Slots[0].par.FileName;
    if (s.g.Undo.ReDo(s.g)) Show(s, file);
}

} // namespace nmr
