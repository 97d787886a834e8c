#include "session/menu.h"

#include "session/ascii_commands.h"

namespace nmr {
namespace {

constexpr bool kSeparator = true;
constexpr bool kCheckable = true;

constexpr MenuRow kRows[] = {
    {"NMR_m1", "", "File", ""},
    {"NMR1D_m11", "NMR_m1", "Read", "Ctrl+O", false, false, NMR1D_m11_Command},
    {"NMR1D_m112", "NMR_m1", "Read CSV Data", "", false, false, NMR1D_m112_Command},
    {"m121", "NMR_m1", "File Type definition", "", false, false, m121_Click},
    {"m47", "NMR_m1", "About Processable Files", "", false, false, m47_Click},
    {"m10", "NMR_m1", "Save as", "", kSeparator},
    {"m10_7", "m10", "ASCII type(*.txt, *.dat, *.asc)", "", false, false, m10_7_Click},
    {kRecentControl, "NMR_m1", "", "", kSeparator},
    {"m102", "NMR_m1", "Delete History", "", false, false, m102_Click},
    {kExitControl, "NMR_m1", "Exit", "Ctrl+Q", kSeparator},

    {"m3", "", "Display/Environment", ""},
    {"m31", "m3", "Display Area", "", false, false, m31_Click},
    {"m30", "m3", "Set Grid", "", false, false, m30_Click},
    {"m35", "m3", "Show All Data", "", kSeparator, false, m35_Click},
    {"m36", "m3", "Object of Display", ""},
    {"m367", "m36", "Grid", "", false, kCheckable, m367_Click},

    {"m40", "", "ETC", ""},
    {"m41", "m40", "Version", "", false, false, m41_Click},
    {"m46", "m40", "About Processable Files", "", false, false, m47_Click},
};

} // namespace

std::span<const MenuRow> MenuRows()
{
    return kRows;
}

} // namespace nmr
