#pragma once
// The small modal forms that the logic asks for by name (session/forms.h names their values).

#include "core/asker.h"

class QWidget;

namespace nmr {

FormAnswer NMR1D_Form01(const FormRequest& request, QWidget* parent);      ///< user selection
FormAnswer NMR1D_Form20(const FormRequest& request, QWidget* parent);      ///< "Multi(Array) Data"
FormAnswer NMR1D_Form21(const FormRequest& request, QWidget* parent);      ///< "T1/T2 Data"
FormAnswer NMR1D_Form23(const FormRequest& request, QWidget* parent);      ///< "Confirm Deleting ..."
FormAnswer NMR1D_Form31(const FormRequest& request, QWidget* parent);      ///< "Change of Display Scope"
FormAnswer NMR1D_Form33(const FormRequest& request, QWidget* parent);      ///< "Setting of Grid"
FormAnswer NMR1D_Form34(const FormRequest& request, QWidget* parent);      ///< "Set Default Display Area"
FormAnswer NMR1D_Form93(const FormRequest& request, QWidget* parent);      ///< processable files
FormAnswer NMR1D_Form101(const FormRequest& request, QWidget* parent);     ///< "Set File Extensions"
FormAnswer NMR1D_Form102(const FormRequest& request, QWidget* parent);     ///< "Fourie Transform"
FormAnswer NMR1D_Form103_CSV(const FormRequest& request, QWidget* parent); ///< "Edit Parameter"
FormAnswer NMR1D_Form104(const FormRequest& request, QWidget* parent);     ///< "Set ASCII Data"
FormAnswer Form110(const FormRequest& request, QWidget* parent);           ///< a question with its own buttons
FormAnswer Form120(const FormRequest& request, QWidget* parent);           ///< number type
FormAnswer NMR1D_Form103(const FormRequest& request, QWidget* parent);     ///< "Edit Parameters"
FormAnswer NMR1D_ListView(const FormRequest& request, QWidget* parent);    ///< "Parameters"
FormAnswer Form17(const FormRequest& request, QWidget* parent);            ///< "Edit Parameter File"
FormAnswer Form111_History(const FormRequest& request, QWidget* parent);   ///< "History of Data"
FormAnswer Instrument_Form(const FormRequest& request, QWidget* parent);   ///< table of 0 ppm frequencies
FormAnswer Picture3(const FormRequest& request, QWidget* parent);          ///< distance of two cursors
FormAnswer ToggleList(const FormRequest& request, QWidget* parent);        ///< peak list, integral list
FormAnswer Operator_Form22(const FormRequest& request, QWidget* parent);   ///< "Add/Delete Operator Name"
FormAnswer SavePicture(const FormRequest& request, QWidget* parent);       ///< a picture file of the plot
FormAnswer PrintPlot(const FormRequest& request, QWidget* parent);         ///< printer and paper

FormAnswer Form105(const FormRequest& request, QWidget* parent);    ///< a formatted text
FormAnswer Form105Ext(const FormRequest& request, QWidget* parent); ///< "Edit with Internal Code"
FormAnswer Form105_X(const FormRequest& request, QWidget* parent);  ///< "Special Charactor"
FormAnswer Form106RTF(const FormRequest& request, QWidget* parent); ///< "Note of Internal Control Codes"

} // namespace nmr
