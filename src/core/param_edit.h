#pragma once
// The parameters that a user may change by hand, with the labels of the editor.

#include "core/param_table.h"

#include <span>
#include <string_view>

namespace nmr {

struct ParamEditRow {
    std::string_view name;  ///< member name of a row of ParamFields()
    std::string_view label; ///< "Spinner Speed(Set)"
    bool is_list = false;   ///< the editor offers the names of the operators
};
/// In the order of the editor. The sample ID and the comment, which have boxes of their own, come last.
std::span<const ParamEditRow> ParamEditRows();

/// The table's row of a member name; never nullptr for a name of ParamEditRows().
const ParamField* FindParamByName(std::string_view name);

} // namespace nmr
