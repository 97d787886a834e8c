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
};
/// Rows in the order of the bar. Only entries whose function exists stand here.
std::span<const MenuRow> MenuRows();

struct MenuItemState {
    bool visible = true;
    bool enabled = true;
    bool checked = false;
    std::string caption; ///< when set, in place of the table's
};
using MenuState = std::map<std::string, MenuItemState, std::less<>>;

/// State of every control of the full tree, also of those that have no entry yet. Pure.
MenuState SetMenuActivateForm1(const GlobalBlock& g);

} // namespace nmr
