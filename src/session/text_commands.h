#pragma once
// The texts that are edited in place: axis labels and the expressions of the window functions.

#include "core/asker.h"
#include "core/global_block.h"
#include "fid/window.h"
#include "session/session.h"

namespace nmr {

/// A double click on the title of the axis: the label of the unit that is shown, of the data and of the
/// settings, which data to come take it from. An empty one gives way to the bare unit.
void Edit_Axis_Label(Session& s);

/// The expression of a window function as it is shown; only a text.
std::string& ExpressionOf(Settings& settings, WindowKind kind);
/// Command3 of the window dialog. @return whether there is a new expression
bool Edit_Expression(GlobalBlock& g, Asker& asker, WindowKind kind);
/// Command16: the one that the program came with.
void Set_Initial_Expression(GlobalBlock& g, WindowKind kind);

} // namespace nmr
