#include "ui/text_field.h"

#include "layout/code_rtf.h"
#include "session/forms.h"
#include "session/text_forms.h"
#include "ui/code_picture.h"
#include "ui/form_dialogs.h"
#include "ui/form_parts.h"

#include <QPlainTextEdit>
#include <QScrollArea>

namespace nmr {
namespace {

constexpr char kEditText[] = "Edit Text...";

bool IsCoded(const std::string& text)
{
    return text.starts_with("\\<");
}

QPushButton* EditButton(QWidget* parent)
{
    auto* button = new QPushButton(kEditText, parent);
    button->setObjectName("Command4");
    button->setAutoDefault(false);
    return button;
}

} // namespace

TextField::TextField(const QString& title, const std::string& text, QWidget* parent) :
    QWidget(parent), title_(title), line_(new QLineEdit(this)), frame_(new QScrollArea(this)),
    picture_(new CodePicture(frame_))
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    frame_->setWidget(picture_);
    frame_->setWidgetResizable(true);
    frame_->setBackgroundRole(QPalette::Base);
    frame_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    row->addWidget(line_, 1);
    row->addWidget(frame_, 1);
    auto* button = EditButton(this);
    row->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this] { Edit(); });
    Show(text);
}

std::string TextField::text() const
{
    return code_.empty() ? line_->text().toStdString() : code_;
}

void TextField::Show(const std::string& text)
{
    code_ = IsCoded(text) ? text : std::string();
    line_->setText(Qs(code_.empty() ? text : std::string()));
    line_->setVisible(code_.empty());
    frame_->setVisible(!code_.empty());
    picture_->SetText(code_, FontSpec{});
    frame_->setFixedHeight(picture_->sizeHint().height() + 2 * frame_->frameWidth());
}

void TextField::Edit()
{
    const std::string now = text();
    // What older files hold is in the group form, and typed letters may look like its codes.
    const std::string code = code_.empty() ? Code_From_Plain(now) : code_;
    const FormAnswer answer =
        Form105({forms::kTextEditor, {{forms::kTitle, title_.toStdString()}, {forms::kText, code}}}, this);
    if (answer.dialog_result != forms::kOk) return;
    const std::string edited = forms::Text(answer.values, forms::kText);
    const std::string plain = Plain_From_Code(edited);
    // A text without formats stays plain.
    Show(edited.empty() || Tidy_Code(edited, {}) == Tidy_Code(Code_From_Plain(plain), {}) ? plain : edited);
}

CommentField::CommentField(const std::string& text, const std::string& rich, QWidget* parent) :
    QWidget(parent), box_(new QPlainTextEdit(Qs(text), this)), rich_(rich),
    rich_text_(box_->toPlainText().toStdString())
{
    box_->setObjectName("Comment");
    box_->setFixedHeight(box_->fontMetrics().height() * 4 + 14);
    box_->setTabChangesFocus(true);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(box_, 1);
    auto* button = EditButton(this);
    row->addWidget(button, 0, Qt::AlignTop);
    connect(button, &QPushButton::clicked, this, [this] { Edit(); });
}

std::string CommentField::text() const
{
    return box_->toPlainText().toStdString();
}

std::string CommentField::rich() const
{
    return text() == rich_text_ ? rich_ : std::string();
}

void CommentField::Edit()
{
    const FontSpec font;
    const std::string code = rich().empty() ? Code_From_Plain(text()) : Rtf_To_Code(rich(), font);
    const FormAnswer answer = Form105({forms::kTextEditor, {{forms::kTitle, "Comment"}, {forms::kText, code}}}, this);
    if (answer.dialog_result != forms::kOk) return;
    const std::string edited = forms::Text(answer.values, forms::kText);
    box_->setPlainText(Qs(Plain_From_Code(edited)));
    rich_ = Code_To_Rtf(edited, font, static_cast<double>(font.Size));
    rich_text_ = text();
}

} // namespace nmr
