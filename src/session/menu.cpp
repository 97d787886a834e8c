#include "session/menu.h"

#include "session/ascii_commands.h"
#include "session/display_commands.h"
#include "session/instrument_table.h"
#include "session/list_commands.h"
#include "session/picture_commands.h"
#include "session/save_flow.h"
#include "session/text_save.h"
#include "session/tool_commands.h"

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
    {"m10_4", "m10", "Ver.4 type(*.tvo) ", "Ctrl+S", false, false, m10_4_Click},
    {"m10_5", "m10", "JCAMP(Ext.) type(*.dx)", "", false, false, m10_5_Click},
    {"m10_6", "m10", "JCAMP(Red) type(*.dx)", "", false, false, m10_6_Click},
    {"m10_7", "m10", "ASCII type(*.txt, *.dat, *.asc)", "", false, false, m10_7_Click},
    {"m18X", "NMR_m1", "Save Multi Spectra as", ""},
    {"m18Z", "m18X", "Ver.4 type(*.tvo1)", ""},
    {"m185", "m18Z", "", "", false, false, nullptr, SaveMultiVer4},
    {"m18N", "m18X", "JCAMP(Ext.) type(*.dx)", ""},
    {"m187", "m18N", "", "", false, false, nullptr, SaveMultiJcamp},
    {"m18L", "m18X", "JCAMP(red.) type(*.dx)", ""},
    {"m188", "m18L", "", "", false, false, nullptr, SaveMultiJcampPages},
    {"m131", "NMR_m1", "Save Integral Curve (ASCII Type)", "", kSeparator, false, m131_Click},
    {"m17", "NMR_m1", "Save Peak List on File", "", false, false, m17_Click},
    {"m173", "NMR_m1", "Save Integral List on File", "", false, false, m173_Click},
    {kSavePictureControl, "NMR_m1", "Save Picture", "Ctrl+Shift+P", false, false, SavePicture_Click},
    {kPrintControl, "NMR_m1", "Print", "Ctrl+P", false, false, PrintPicture_Click},
    {kRecentControl, "NMR_m1", "", "", kSeparator},
    {"m102", "NMR_m1", "Delete History", "", false, false, m102_Click},
    {kExitControl, "NMR_m1", "Exit", "Ctrl+Q", kSeparator},

    {"m2", "", "Edit", ""},
    {"m20", "m2", "UnDo", "Ctrl+Z", false, false, m20_Click},
    {kRedoControl, "m2", "ReDo", "Ctrl+Shift+Z", false, false, ReDo_Click},
    {kCopyControl, "m2", "Copy", "Ctrl+C", kSeparator, false, CopyPicture_Click},
    {"m22", "m2", "Phase Correction", "Ctrl+1", kSeparator, kCheckable, m22_Click},
    {"m21", "m2", "Set Reference (Main Spectrum)", "Ctrl+2", false, kCheckable, m21_Click},
    {"m23", "m2", "Base Line Correction", "Ctrl+3", false, kCheckable, m23_Click},
    {"m24", "m2", "Peak Picking", "Ctrl+4", false, kCheckable, m24_Click},
    {"m25", "m2", "Integral", "Ctrl+5", false, kCheckable, m25_Click},
    {"m242", "m2", "Set Color on the Selected Region", "", false, kCheckable, m242_Click},
    {kPeakListWindow, "m2", "Peak List", "Ctrl+L", kSeparator, kCheckable, PeakList_Click},
    {kIntegralListWindow, "m2", "Integral List", "Ctrl+Shift+L", false, kCheckable, IntegralCommand3_Click},
    {"CopyPeaks", "m2", "Copy Peaks as Text", "Ctrl+Shift+C", false, false, CopyPeaks_Click},
    {"m29", "m2", "Other Setting", "", kSeparator},
    {"m291", "m29", "Inversion of Spectrum", "", false, false, m291_Click},
    {"m292", "m29", "Edit Parameters", "", false, false, m292_Click},
    {"m209", "m2", "Show History", "", false, false, m209_Click},
    {"BasicCommand1", "m2", "Show Parameter", "Ctrl+I", false, false, BasicCommand1_Click},

    {"m3", "", "Display/Environment", ""},
    {"m31", "m3", "Display Area", "", false, false, m31_Click},
    {"m30", "m3", "Set Grid", "", false, false, m30_Click},
    {"m35", "m3", "Show All Data", "", kSeparator, false, m35_Click},
    {"m36", "m3", "Object of Display", ""},
    {"m361", "m36", "Integral", "", false, kCheckable, m361_Click},
    {"m368", "m36", "Integral Base Line", "", false, kCheckable, m368_Click},
    {"m362", "m36", "Peak Data", "", false, kCheckable, m362_Click},
    {"m365", "m36", "Peak Top Mark", "", false, kCheckable, m365_Click},
    {"m366", "m36", "Peak Number", "", false, kCheckable, m366_Click},
    {"m369", "m36", "Color on Selected Region", "", false, kCheckable, m369_Click},
    {"m367", "m36", "Grid", "", false, kCheckable, m367_Click},
    {"m37", "m3", "Position of Peak Data", ""},
    {"m371", "m37", "Top", "", false, kCheckable, m371_Click},
    {"m372", "m37", "Bottom", "", false, kCheckable, m372_Click},
    {"m38", "m3", "Show Distance of Peaks/Cursol Data", "Ctrl+D", false, false, m38_Click},
    {"m34", "m3", "Absoluter Spectrum Mode", "", false, kCheckable, m34_Click},

    {"m40", "", "ETC", ""},
    {"m42", "m40", "Edit Parameter File", "", false, false, m42_Click},
    {"m43", "m40", "Add/Delete Operator Name", "", false, false, m43_Click},
    {"m44", "m40", "Arrange Instrumental Data for Reference Setting", "", false, false, m44_Click},
    {"m41", "m40", "Version", "", false, false, m41_Click},
    {"m46", "m40", "About Processable Files", "", false, false, m47_Click},
};

} // namespace

std::span<const MenuRow> MenuRows()
{
    return kRows;
}

} // namespace nmr
