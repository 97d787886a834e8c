#pragma once
// One order of the phase: field, scroll bar and step labels, all for the same number of degrees.

#include "ui/form_fields.h"

#include <QScrollBar>

#include <functional>
#include <vector>

namespace nmr {

class PhaseControl : public QWidget {
public:
    /// What the control is for. `get` and `set` are the logic's; `add` changes by degrees.
    struct Order {
        const char* caption;
        const char* field_name; ///< object names of the field, the scroll bar and the step labels
        const char* bar_name;
        const char* label_name;
        int limit_tenths;
        std::function<double()> get;
        std::function<void(double)> set;
        std::function<void(double)> add;
    };
    /// Tall: three lines, for a column; flat: two, for a bar.
    enum class Form { tall, flat };
    PhaseControl(const Order& order, QWidget* parent, Form form = Form::tall);
    /// After a change of the phase from anywhere.
    void Show();

private:
    QWidget* MakeSteps(const Order& order, Form form);

    std::function<double()> get_;
    ValueEdit* edit_;
    QScrollBar* bar_;
};

} // namespace nmr
