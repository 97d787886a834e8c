#pragma once
// The small modal forms that the logic asks for by name (session/forms.h names their values).

#include "core/asker.h"

class QWidget;

namespace nmr {

FormAnswer NMR1D_Form01(const FormRequest& request, QWidget* parent);  ///< user selection
FormAnswer NMR1D_Form20(const FormRequest& request, QWidget* parent);  ///< "Multi(Array) Data"
FormAnswer NMR1D_Form23(const FormRequest& request, QWidget* parent);  ///< "Confirm Deleting ..."
FormAnswer NMR1D_Form31(const FormRequest& request, QWidget* parent);  ///< "Change of Display Scope"
FormAnswer NMR1D_Form33(const FormRequest& request, QWidget* parent);  ///< "Setting of Grid"
FormAnswer NMR1D_Form34(const FormRequest& request, QWidget* parent);  ///< "Set Default Display Area"
FormAnswer NMR1D_Form93(const FormRequest& request, QWidget* parent);  ///< processable files
FormAnswer NMR1D_Form101(const FormRequest& request, QWidget* parent); ///< "Set File Extensions"
FormAnswer NMR1D_Form21(const FormRequest& request, QWidget* parent);  ///< "T1/T2 Data"
FormAnswer NMR1D_Form102(const FormRequest& request, QWidget* parent); ///< "Fourie Transform"
FormAnswer Form110(const FormRequest& request, QWidget* parent);       ///< a question with its own buttons
FormAnswer Form120(const FormRequest& request, QWidget* parent);       ///< number type

} // namespace nmr
