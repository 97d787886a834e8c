#include "session/menu.h"

#include "session/list_commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>

namespace nmr {
namespace {

using Controls = std::initializer_list<std::string_view>;

// Every control of the main form's tree, then the row selector of its tool bar.
constexpr std::string_view kControls[] = {"NMR_m1",
                                          "NMR1D_m11",
                                          "NMR1D_m112",
                                          "NMR1D_m111",
                                          "m121",
                                          "m47",
                                          "m10",
                                          "m10_4",
                                          "m10_3",
                                          "m10_1",
                                          "m10_5",
                                          "m10_6",
                                          "m10_8",
                                          "m10_9",
                                          "m10_7",
                                          "m11X",
                                          "m18X",
                                          "m18Z",
                                          "m185",
                                          "m18M",
                                          "m186",
                                          "m18K",
                                          "m189",
                                          "m18N",
                                          "m187",
                                          "m18L",
                                          "m188",
                                          "m18P",
                                          "m181",
                                          "m18Y",
                                          "m182",
                                          "m10_10",
                                          "m10_10_A",
                                          "m10_10_B",
                                          "m131",
                                          "m14",
                                          "m15",
                                          "m17",
                                          "m172",
                                          "m173",
                                          "m171",
                                          "m16",
                                          "m102",
                                          "m1003",
                                          "RecentFile",
                                          "m19",
                                          "m2",
                                          "m20",
                                          "m22",
                                          "m21",
                                          "m23",
                                          "m24",
                                          "m25",
                                          "m26",
                                          "m242",
                                          "m27",
                                          "m273",
                                          "m2731",
                                          "m271",
                                          "m272",
                                          "m29",
                                          "m291",
                                          "m292",
                                          "m209",
                                          "m3",
                                          "m31",
                                          "m331",
                                          "m332",
                                          "m30",
                                          "m32",
                                          "m35",
                                          "m36",
                                          "m361",
                                          "m368",
                                          "m362",
                                          "m365",
                                          "m366",
                                          "m363",
                                          "m364",
                                          "m369",
                                          "m367",
                                          "m37",
                                          "m371",
                                          "m372",
                                          "m38",
                                          "m39",
                                          "m34",
                                          "m6",
                                          "m341",
                                          "m343",
                                          "m342",
                                          "m293",
                                          "m61",
                                          "m52",
                                          "m5",
                                          "m51",
                                          "m40",
                                          "m42",
                                          "m43",
                                          "m44",
                                          kRedoControl,
                                          "BasicCommand1",
                                          "m41",
                                          "m45",
                                          "m46",
                                          "m48",
                                          "m99",
                                          "m8",
                                          "m801",
                                          "DataCombo",
                                          "Label6",
                                          "PeakList",
                                          "IntegralList",
                                          "CopyPeaks",
                                          kSavePictureControl,
                                          kPrintControl,
                                          kCopyControl};

// ToolMode 1 to 8.
constexpr std::string_view kTools[] = {"m22", "m21", "m23", "m24", "m25", "m26", "m242", "m273"};
constexpr std::string_view kNumbered[] = {"m181", "m182", "m185", "m186", "m187", "m188", "m189", "m2731"};
constexpr std::string_view kVer4Captions[] = {"Ver.4 type(*.tvo1)", "Ver.4 type(*.tvo)", "Ver.4 type(*.tv1)"};

struct DisplaySwitch {
    std::string_view control;
    std::int32_t Settings::*shown;
};
constexpr DisplaySwitch kSwitches[] = {
    {"m361", &Settings::integral_disp},   {"m368", &Settings::integ_base_disp}, {"m362", &Settings::peak_pick_disp},
    {"m365", &Settings::peak_top_disp},   {"m366", &Settings::peak_num_disp},   {"m363", &Settings::multi_view_disp},
    {"m364", &Settings::multi_spec_disp}, {"m367", &Settings::display_grid},    {"m369", &Settings::r_color_disp}};

class Builder {
public:
    explicit Builder(const GlobalBlock& g) : g_(g), set_(g.Slots[0]) {}

    MenuState Build()
    {
        for (const std::string_view control : kControls) state_[std::string(control)];
        BeforeData();
        AlwaysEnabled();
        if (set_.par.POINT < 1) {
            NothingLoaded();
            return std::move(state_);
        }
        SaveGroup();
        Enable({"m14", "m15", "m16", "m17", "m172", "m173"}, true);
        NumberedSpectra();
        Tools();
        Dept();
        DisplayGroup();
        Rows();
        return std::move(state_);
    }

private:
    MenuItemState& At(std::string_view control) { return state_.find(control)->second; }
    void Enable(Controls controls, bool enabled)
    {
        for (const std::string_view control : controls) At(control).enabled = enabled;
    }
    void Check(Controls controls, bool checked)
    {
        for (const std::string_view control : controls) At(control).checked = checked;
    }
    void Show(Controls controls, bool visible)
    {
        for (const std::string_view control : controls) At(control).visible = visible;
    }

    /// What hangs on settings and lists alone.
    void BeforeData()
    {
        const Settings& settings = g_.settings;
        Show({"m10_1", "m18K"}, settings.als_save_ok != 0);
        Show({"m10_8", "m18P"}, settings.nuts_save_ok != 0);
        Show({"m10_3", "m18M", "m10_10_B"}, settings.ver3_save_ok != 0);
        Show({"m102", "m1003", "RecentFile"}, !g_.RecentFiles.empty());
        const auto extension = static_cast<std::size_t>(std::clamp(settings.tvo_extension, 0, 2));
        for (const std::string_view control : {"m10_4", "m18Z", "m10_10_A"})
            At(control).caption = kVer4Captions[extension];
        // Two-dimensional data have no place in a file of this program.
        Show({"m10_4", "m18Z"}, (set_.par.DataKind & 0x2000) == 0);
        // The points of the base line have steps of their own, which come first.
        const bool points = g_.ToolMode == 3;
        const UndoStack& undo = points && !g_.PointUndo.empty() ? g_.PointUndo : g_.Undo;
        const UndoStack& redo = points && g_.PointUndo.can_redo() ? g_.PointUndo : g_.Undo;
        At("m20").caption = undo.Caption();
        Enable({"m20"}, !undo.empty());
        At(kRedoControl).caption = redo.RedoCaption();
        Enable({kRedoControl}, redo.can_redo());
        Enable({"BasicCommand1", kPeakListWindow, kIntegralListWindow}, set_.par.POINT > 0);
        Enable({"CopyPeaks"}, set_.par.POINT > 0 && !set_.Peaks.empty());
        Enable({kSavePictureControl, kPrintControl, kCopyControl}, set_.par.POINT > 0 && !g_.NoSpectrumYet);
        Enable({"DataCombo"}, false);
        Show({"DataCombo", "Label6"}, false);
    }

    void AlwaysEnabled()
    {
        Enable({"NMR1D_m11", "m121", "m102", "m16", "m19", "m32", "m331", "m332", "m40", "m41", "m42", "m43", "m44",
                "m45", "m46", "m47", "m48"},
               true);
        const bool offered = g_.settings.t1_indiv_file != 0;
        Enable({"NMR1D_m111"}, offered);
        Show({"NMR1D_m111"}, offered);
    }

    void NothingLoaded()
    {
        Enable({"m5",   "m6",  "m10",  "m10_10", "m18X", "m131", "m14", "m15", "m16",  "m17", "m172", "m173",
                "m171", "m61", "m21",  "m22",    "m23",  "m24",  "m25", "m26", "m242", "m27", "m271", "m272",
                "m273", "m29", "m209", "m34",    "m31",  "m35",  "m36", "m37", "m38",  "m39"},
               false);
        Check({"m21", "m22", "m23", "m24", "m25", "m26", "m242", "m35"}, false);
        MarkPeakPosition();
    }

    void MarkPeakPosition()
    {
        const bool at_bottom = set_.PeakFlags != 0;
        Check({"m371"}, !at_bottom);
        Check({"m372"}, at_bottom);
    }

    void SaveGroup()
    {
        Enable({"m5"}, true);
        if (g_.NoSpectrumYet) {
            Enable({"m10", "m18X", "m18P", "m131", "m10_10"}, false);
            return;
        }
        Enable({"m10", "m10_3", "m10_4", "m10_1", "m10_7", "m10_8", "m10_5", "m10_6", "m18X", "m131"}, true);
        Enable({"m10_10"}, g_.DiffMode == 1 && g_.DiffCount >= 2);
    }

    bool MultiInUse() const
    {
        return std::any_of(g_.Slots.begin() + 1, g_.Slots.end(), [](const DataSet& set) { return set.par.POINT > 0; });
    }

    void NumberedSpectra()
    {
        // The last slot has no number in any list.
        for (int number = 1; number < kSlotCount; ++number) {
            if (g_.Slots[static_cast<std::size_t>(number - 1)].par.POINT < 1) continue;
            for (const std::string_view control : kNumbered)
                state_[NumberedItem(control, number)].caption = fmt::format("Spectrum {}", number);
        }
        if (!MultiInUse() || g_.NoSpectrumYet) Enable({"m18X"}, false);
    }

    void Tools()
    {
        Enable({"m21", "m22", "m23", "m24", "m25", "m26", "m27", "m273", "m242", "m29", "m209"}, true);
        for (const std::string_view tool : kTools) Check({tool}, false);
        if (g_.ToolMode >= 1 && g_.ToolMode <= static_cast<std::int32_t>(std::size(kTools)))
            Check({kTools[g_.ToolMode - 1]}, true);
    }

    void Dept()
    {
        if (g_.DEPTMode == 1) {
            Enable({"m271", "m171", "m61", "m341", "m6", "DataCombo"}, false);
            Check({"m341"}, false);
            Enable({"m272"}, true);
            return;
        }
        Enable({"m272"}, false);
        Enable({"m271"}, MultiInUse());
    }

    void DisplayGroup()
    {
        Enable({"m31", "m34", "m35", "m36", "m37", "m38", "m39"}, true);
        for (const DisplaySwitch& row : kSwitches) Check({row.control}, g_.settings.*row.shown != 0);
        if (set_.RowCount >= 2) Check({"m369"}, false);
        Enable({"m368"}, At("m361").checked);
        Check({"m35"}, std::all_of(std::begin(kSwitches), std::end(kSwitches),
                                   [&](const DisplaySwitch& row) { return At(row.control).checked; }));
        MarkPeakPosition();
        Check({"m34"}, g_.AbsoluteMode != 0);
    }

    void Rows()
    {
        const bool several = set_.RowCount >= 2;
        Enable({"m6", "m171", "m61", "m293", "m341", "m342", "m343", "m52", "DataCombo"}, several);
        Show({"DataCombo", "Label6"}, several);
        Check({"m341"}, several && g_.ArrayMode == 1);
        if (!several) return;
        Check({"m343"}, g_.ArrayReverse != 0);
        if (g_.ArrayMode == 1) Enable({"DataCombo"}, false);
        for (int row = 0; row < set_.RowCount; ++row)
            state_[NumberedItem("DataCombo", row + 1)].caption = RowCaption(set_, row);
    }

    const GlobalBlock& g_;
    const DataSet& set_;
    MenuState state_;
};

} // namespace

std::string RowCaption(const DataSet& set, int row)
{
    const auto rows = std::min(static_cast<std::size_t>(std::max(set.RowCount, 0)), set.RowValueA.size());
    const auto index = static_cast<std::size_t>(row);
    // Values that only count the rows say nothing more than their number.
    bool values = false;
    for (std::size_t i = 0; i < rows; ++i)
        values = values || (set.RowValueA[i] != 0 && set.RowValueA[i] != static_cast<float>(i + 1));
    if (!values || index >= rows) return fmt::format("{}", row + 1);
    const std::string_view unit = set.RowParamUnit;
    return fmt::format("{}:  {:g}{}{}", row + 1, set.RowValueA[index], unit.empty() ? "" : " ", unit);
}

std::string NumberedItem(std::string_view control, int number)
{
    return fmt::format("{}({})", control, number);
}

MenuState SetMenuActivateForm1(const GlobalBlock& g)
{
    return Builder(g).Build();
}

} // namespace nmr
