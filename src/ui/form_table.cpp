#include "ui/form_table.h"

#include "formats/csv_choice.h"
#include "session/display_commands.h"
#include "session/forms.h"
#include "session/list_commands.h"
#include "session/text_forms.h"
#include "ui/form_dialogs.h"

#include <algorithm>

namespace nmr {

std::span<const FormTableRow> FormTable()
{
    static constexpr FormTableRow kRows[] = {
        {forms::kUserSelection, NMR1D_Form01},
        {forms::kArrayData, NMR1D_Form20},
        {forms::kPhaseRow, NMR1D_Form21},
        {forms::kDeleteMulti, NMR1D_Form23},
        {forms::kDisplayScope, NMR1D_Form31},
        {forms::kGrid, NMR1D_Form33},
        {forms::kDefaultAreas, NMR1D_Form34},
        {forms::kProcessableFiles, NMR1D_Form93},
        {forms::kFileTypes, NMR1D_Form101},
        {forms::kFourierState, NMR1D_Form102},
        {forms::kParameterEditor, NMR1D_Form103},
        {forms::kParameterList, NMR1D_ListView},
        {forms::kParameterFile, Form17},
        {kCsvForm, NMR1D_Form103_CSV},
        {forms::kAsciiData, NMR1D_Form104},
        {forms::kQuestion, Form110},
        {forms::kHistoryForm, Form111_History},
        {forms::kNumberType, Form120},
        {forms::kOperatorForm, Operator_Form22},
        {kDistanceWindow, Picture3},
        {kPeakListWindow, ToggleList},
        {kIntegralListWindow, ToggleList},
        {forms::kTextEditor, Form105},
        {forms::kTextEditorTwin, Form105},
        {forms::kCodeEditor, Form105Ext},
        {forms::kSpecialLetters, Form105_X},
        {forms::kNoteOnCodes, Form106RTF},
        {forms::kInstrumentForm, Instrument_Form},
        {forms::kSavePicture, SavePicture},
        {forms::kPrint, PrintPlot},
    };
    return kRows;
}

FormFunction FindForm(std::string_view name)
{
    const auto rows = FormTable();
    const auto row = std::ranges::find(rows, name, [](const FormTableRow& r) { return r.name; });
    return row == rows.end() ? nullptr : row->show;
}

} // namespace nmr
