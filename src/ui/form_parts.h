#pragma once
// What the small forms are put together from.

#include <QButtonGroup>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <functional>
#include <string>
#include <vector>

namespace nmr {

inline QString Qs(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline constexpr int kFormWidth = 380; ///< least; narrower windows cut their titles

inline constexpr int kExplanationIndent = 20; ///< under the text of a radio button

/// A modal dialog with a column of widgets and a row of buttons at its foot.
class PlainForm : public QDialog {
public:
    PlainForm(const QString& title, QWidget* parent) : QDialog(parent), column_(new QVBoxLayout(this))
    {
        setWindowTitle(title);
        column_->setSpacing(10);
        column_->setContentsMargins(18, 16, 18, 14);
        // Never smaller than what is in it, also where the screen is so small that forms are fitted to it.
        column_->setSizeConstraint(QLayout::SetMinimumSize);
        column_->addStrut(kFormWidth - 36);
    }
    QVBoxLayout* column() { return column_; }

    QLabel* AddText(const QString& text)
    {
        auto* label = new QLabel(text, this);
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);
        column_->addWidget(label);
        return label;
    }
    /// The foot: `accept` is the default button; an empty `reject` leaves that button out.
    QDialogButtonBox* AddFoot(const QString& accept, const QString& reject)
    {
        auto* box = new QDialogButtonBox(this);
        box->addButton(accept, QDialogButtonBox::AcceptRole)->setDefault(true);
        if (!reject.isEmpty()) box->addButton(reject, QDialogButtonBox::RejectRole);
        connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
        column_->addSpacing(4);
        column_->addWidget(box);
        return box;
    }

private:
    QVBoxLayout* column_;
};

/// One of several options, each with an optional line of explanation under it.
struct Choice {
    std::string word; ///< what it stands for
    std::string caption;
    std::string explanation;
};
class ChoiceGroup {
public:
    ChoiceGroup(PlainForm& form, const std::vector<Choice>& choices) : choices_(choices)
    {
        for (std::size_t i = 0; i < choices.size(); ++i) {
            auto* button = new QRadioButton(Qs(choices[i].caption).replace('&', "&&"), &form);
            button->setChecked(i == 0);
            group_.addButton(button, static_cast<int>(i));
            auto* lines = new QVBoxLayout;
            lines->setSpacing(2);
            lines->addWidget(button);
            form.column()->addLayout(lines);
            if (choices[i].explanation.empty()) continue;
            auto* label = new QLabel(Qs(choices[i].explanation), &form);
            label->setIndent(kExplanationIndent);
            label->setForegroundRole(QPalette::PlaceholderText);
            lines->addWidget(label);
        }
    }
    void SetEnabled(bool on)
    {
        for (QAbstractButton* button : group_.buttons()) button->setEnabled(on);
    }
    void WhenChosen(const std::function<void(const std::string&)>& chosen)
    {
        QObject::connect(&group_, &QButtonGroup::idClicked, &group_, [this, chosen] { chosen(word()); });
    }
    const std::string& word() const { return choices_[static_cast<std::size_t>(group_.checkedId())].word; }

private:
    std::vector<Choice> choices_;
    QButtonGroup group_;
};

/// A field for a number; the point is the decimal sign everywhere.
inline QLineEdit* NumberField(QWidget* parent, double value)
{
    auto* edit = new QLineEdit(QString::number(value, 'g', 9), parent);
    auto* validator = new QDoubleValidator(edit);
    validator->setLocale(QLocale::c());
    edit->setValidator(validator);
    edit->setAlignment(Qt::AlignRight);
    edit->setMinimumWidth(96);
    return edit;
}

} // namespace nmr
