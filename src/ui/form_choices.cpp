// Forms that are a question with a few answers.

#include "session/forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_parts.h"

#include <QCheckBox>
#include <QPushButton>

namespace nmr {
namespace {

using namespace forms;

// The form's word is the chosen option's; "CANCEL" when it is closed otherwise.
FormAnswer AskChoice(QWidget* parent, const QString& title, const QString& text, const std::vector<Choice>& choices)
{
    PlainForm form(title, parent);
    if (!text.isEmpty()) form.AddText(text);
    const ChoiceGroup group(form, choices);
    form.AddFoot("OK", "Cancel");
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    return {group.word(), {}};
}

} // namespace

FormAnswer NMR1D_Form102(const FormRequest&, QWidget* parent)
{
    return AskChoice(parent, "Fourie Transform", "Select Data type, and click \"OK\"",
                     {{kUntransformed, "Untransformed Data", "This data is not Fourie transformed."},
                      {kTransformed, "Transformed Data", "This data is already Fourie transformed."}});
}

FormAnswer Form120(const FormRequest&, QWidget* parent)
{
    return AskChoice(parent, "Select Data Type(Floating Point?)", {},
                     {{kLong, "Integer, 32 bits", {}},
                      {kSingle, "Floating point, 32 bits (single)", {}},
                      {kDouble, "Floating point, 64 bits (double)", {}}});
}

FormAnswer NMR1D_Form23(const FormRequest&, QWidget* parent)
{
    return AskChoice(
        parent, "Confirm Deleting \"Multi Spectra\"", {},
        {{kPreserve, "Preserve Present Multi Spectra", {}}, {kDeleteAll, "Delete present Multi Spectra ", {}}});
}

FormAnswer NMR1D_Form20(const FormRequest& request, QWidget* parent)
{
    PlainForm form("Multi(Array) Data", parent);
    form.AddText(Qs("Select process for Array Data. The file holds " + Text(request.values, kRows) + " rows."));
    ChoiceGroup mode(form, {{"1", "Read Array Data(According to File)", {}},
                            {"2", "Read as Array Data(According to Parameter)", {}},
                            {"3", "Read as Multi Spectum(First 20 Data) only", {}},
                            {"4", "Read as DEPT Data", {}}});
    QLabel* order_text = form.AddText("Order of the rows");
    ChoiceGroup order(form, {{"0", "Small =>Large", {}}, {"1", "Large => Small", {}}});
    // Only rows that are told apart by a parameter can be put in an order.
    const auto show = [&](const std::string& word) {
        order_text->setEnabled(word == "2");
        order.SetEnabled(word == "2");
    };
    mode.WhenChosen(show);
    show(mode.word());
    form.AddFoot("OK", "Cancel");
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    return {kOk, {{kArrayMode, mode.word()}, {kDescending, order.word()}}};
}

FormAnswer NMR1D_Form21(const FormRequest&, QWidget* parent)
{
    return AskChoice(parent, "T1/T2 Data", "Row for the phase correction",
                     {{kFirstRow, "The First Data (T2)", {}}, {kLastRow, "The Last Data (T1)", {}}});
}

FormAnswer Form110(const FormRequest& request, QWidget* parent)
{
    PlainForm form(Qs(Text(request.values, kTitle)), parent);
    form.AddText(Qs(Text(request.values, kText)))->setMinimumWidth(320);
    auto* row = new QHBoxLayout;
    row->addStretch();
    // Closing the form presses its last button, which is the one that changes nothing.
    const int count = static_cast<int>(Number(request.values, kCount));
    std::string pressed = Text(request.values, Indexed(kButton, count));
    for (int i = 1; i <= count; ++i) {
        const std::string caption = Text(request.values, Indexed(kButton, i));
        auto* button = new QPushButton(Qs(caption), &form);
        button->setDefault(i == count);
        QObject::connect(button, &QPushButton::clicked, &form, [&form, &pressed, caption] {
            pressed = caption;
            form.accept();
        });
        row->addWidget(button);
    }
    form.column()->addLayout(row);
    form.exec();
    return {pressed, {}};
}

} // namespace nmr
