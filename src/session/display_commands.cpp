#include "session/display_commands.h"

#include "core/error_report.h"
#include "session/inversion.h"

namespace nmr {
namespace {

void Refresh(const Session& s)
{
    if (s.display_changed) s.display_changed();
}

void Toggle(Session& s, std::int32_t Settings::*shown)
{
    s.g.settings.*shown = s.g.settings.*shown != 0 ? 0 : 1;
    s.g.SettingsChanged = true;
    Refresh(s);
}

/// A property of the data set, which its file keeps.
void PlacePeakData(Session& s, std::int16_t flags)
{
    DataSet& set = s.g.Slots[0];
    if (set.PeakFlags != flags) {
        set.par.DataChanged = 1;
        set.par.DataFromFile = 0;
    }
    set.PeakFlags = flags;
    Refresh(s);
}

} // namespace

void m34_Click(Session& s)
{
    s.g.AbsoluteMode = s.g.AbsoluteMode != 0 ? 0 : 1;
    Refresh(s);
}

void m38_Click(Session& s)
{
    s.asker.Form({kDistanceWindow, {}});
}

void m291_Click(Session& s)
{
    if (const Status inverted = Invert_Spectrum(s.g); !inverted) {
        ErrorReport(s.asker, inverted.error());
        return;
    }
    Refresh(s);
}

void m361_Click(Session& s)
{
    Toggle(s, &Settings::integral_disp);
}

void m368_Click(Session& s)
{
    Toggle(s, &Settings::integ_base_disp);
}

void m362_Click(Session& s)
{
    Toggle(s, &Settings::peak_pick_disp);
}

void m365_Click(Session& s)
{
    Toggle(s, &Settings::peak_top_disp);
}

void m366_Click(Session& s)
{
    Toggle(s, &Settings::peak_num_disp);
}

void m367_Click(Session& s)
{
    Toggle(s, &Settings::display_grid);
}

void m369_Click(Session& s)
{
    Toggle(s, &Settings::r_color_disp);
}

void m371_Click(Session& s)
{
    PlacePeakData(s, 0);
}

void m372_Click(Session& s)
{
    PlacePeakData(s, 1);
}

} // namespace nmr
