#pragma once
// The command tree of NMR1D_Form1 as one table, and the one place that says what may be done now.

#include "session/session.h"

#include <map>
#include <span>
#include <string>
#include <string_view>

namespace nmr {

struct MenuRow {
    std::string_view control; ///< "NMR1D_m11"
    std::string_view parent;  ///< control of the menu it stands in; empty for a menu of the bar
    std::string_view caption;
    std::string_view shortcut; ///< "Ctrl+O"; empty for none
    bool separator_before = false;
    bool checkable = false;
    void (*handler)(Session&) = nullptr; ///< nullptr: a menu, or one that the window itself carries out
    /// In place of a handler: one entry for each item NumberedItem(control, n) of the state, n the number of a
    /// spectrum, which is slot n - 1.
    void (*numbered)(Session&, std::int16_t slot) = nullptr;
};
/// Rows in the order of the bar, a menu before its entries. Only entries whose function exists stand
/// here. Two are the window's own: kExitControl closes it (the closing runs m19_Click), and
/// kRecentControl is the place of the recent files, one entry each with the text of RecentCaption,
/// carried out by RecentFile_Click.
std::span<const MenuRow> MenuRows();
inline constexpr char kExitControl[] = "m19";
inline constexpr char kRecentControl[] = "RecentFile";
inline constexpr char kRedoControl[] = "m20_ReDo";
// Entries for the plot alone, without a page around it.
inline constexpr char kSavePictureControl[] = "m14_Picture", kPrintControl[] = "m14_Print", kCopyControl[] = "m2_Copy";

// Commands.
void NMR1D_m11_Command(Session& s);   ///< Read
void NMR1D_m112_Command(Session& s);  ///< Read CSV Data
void m121_Click(Session& s);          ///< File Type definition
void m47_Click(Session& s);           ///< About Processable Files
void m102_Click(Session& s);          ///< Delete History
void m31_Click(Session& s);           ///< Display Area
void m30_Click(Session& s);           ///< Set Grid
void m35_Click(Session& s);           ///< Show All Data
void m41_Click(Session& s);           ///< Version
void m20_Click(Session& s);           ///< UnDo; of the base line's points while there are some
void ReDo_Click(Session& s);          ///< ReDo, likewise
void m209_Click(Session& s);          ///< Show History
void m292_Click(Session& s);          ///< Edit Parameters
void m42_Click(Session& s);           ///< Edit Parameter File
void m43_Click(Session& s);           ///< Add/Delete Operator Name
void BasicCommand1_Click(Session& s); ///< Show Parameter
/// Reads the recent file of an index; nothing for an index beyond the list.
void RecentFile_Click(Session& s, std::size_t index);

struct MenuItemState {
    bool visible = true;
    bool enabled = true;
    bool checked = false;
    std::string caption; ///< when set, in place of the table's
};
using MenuState = std::map<std::string, MenuItemState, std::less<>>;

/// Name of one item of a numbered list: "m185(2)".
std::string NumberedItem(std::string_view control, int number);
/// What the row selectors show of a row: its number, and its value where the rows have values.
std::string RowCaption(const DataSet& set, int row);
/// State of every control of the full tree, also of those that have no entry yet, and of the row
/// selector "DataCombo" with its label "Label6". Entries of numbered spectra and the rows of the
/// selector are items of their own: NumberedItem("m185", 2) is "Spectrum 2". Pure.
MenuState SetMenuActivateForm1(const GlobalBlock& g);

} // namespace nmr
