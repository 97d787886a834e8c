// "UnDo" and "ReDo" of the main form.

#include "session/menu.h"

namespace nmr {
namespace {

void Refresh(const Session& s)
{
    if (s.display_changed) s.display_changed();
}

} // namespace

void m20_Click(Session& s)
{
    if (s.g.Undo.UnDo(s.g)) Refresh(s);
}

void ReDo_Click(Session& s)
{
    if (s.g.Undo.ReDo(s.g)) Refresh(s);
}

} // namespace nmr
