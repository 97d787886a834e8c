#pragma once
// "Parameters": the list of all parameters of a set as text, in the window and in a file.

#include "core/data_set.h"

#include <string>
#include <vector>

namespace nmr {

struct ParameterRow {
    std::string label, value; ///< value with its unit; empty when the data tell none
};
/// The rows of a set in the order of the list; those of the window function follow WindowFunc.
std::vector<ParameterRow> ParameterRows(const DataSet& set);
/// The same as lines "label", tab, "value" for "Save List"; a line break within a value becomes " / ".
std::string ParameterListText(const DataSet& set);

} // namespace nmr
