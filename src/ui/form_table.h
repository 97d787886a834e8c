#pragma once
// Every form that can be asked for by name, and the transform form.

#include "core/asker.h"

#include <span>
#include <string>
#include <string_view>

class QWidget;

namespace nmr {

/// Shows a form over `parent` until it is answered.
using FormFunction = FormAnswer (*)(const FormRequest& request, QWidget* parent);
struct FormTableRow {
    std::string_view name; ///< "NMR1D_Form102"
    FormFunction show;
};
std::span<const FormTableRow> FormTable();
/// nullptr for a form that does not exist.
FormFunction FindForm(std::string_view name);

} // namespace nmr
