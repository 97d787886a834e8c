// The codes themselves, with a tool bar that writes them at the caret.

#include "layout/code_pieces.h"
#include "ui/form_parts.h"
#include "ui/text_panes.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QTextBlock>

#include <fmt/format.h>

namespace nmr {
namespace {

class CodePane : public TextPane {
public:
    CodePane(const std::string& code, QWidget* parent) : edit_(new QPlainTextEdit(parent))
    {
        edit_->setObjectName("Text1");
        edit_->setPlainText(Qs(code));
        edit_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        edit_->setTabChangesFocus(true);
        QTextCursor behind = edit_->textCursor();
        const int closing = code.ends_with("\\>") ? 2 : 0; // what is typed behind it would not show
        behind.setPosition(static_cast<int>(Qs(code).size()) - closing);
        edit_->setTextCursor(behind);
        QObject::connect(edit_, &QPlainTextEdit::textChanged, edit_, [this] {
            if (changed) changed();
        });
    }
    QWidget* widget() override { return edit_; }
    std::string code() const override
    {
        // Lines of the box are lines of the text.
        return edit_->toPlainText().replace('\n', QLatin1String("\\cr ")).toStdString();
    }
    void Mark(TextMark mark, bool on) override
    {
        static constexpr const char kLetters[] = {'b', 'i', 'u', 's', '+', '-', 'g'};
        const char letter = kLetters[static_cast<std::size_t>(mark)];
        if (on) Around(fmt::format("\\{}1 ", letter), fmt::format("\\{}0 ", letter));
    }
    void SetFace(const std::string& face) override
    {
        face.empty() ? Around("\\f0 ", "") : Around(fmt::format("\\f:{}: ", face), "\\f0 ");
    }
    void SetSize(double points) override
    {
        points < 1 ? Around("\\p0 ", "") : Around(fmt::format("\\p:{}: ", points), "\\p0 ");
    }
    void SetColor(std::int32_t color) override
    {
        color < 0 ? Around("\\c0 ", "") : Around(fmt::format("\\c:{:x}: ", color), "\\c0 ");
    }
    void Insert(const std::string& letters) override
    {
        std::string code;
        for (const char32_t letter : Qs(letters).toUcs4()) {
            const auto symbol = SymbolCodeOf(letter);
            if (symbol)
                code += *symbol < 128 ? fmt::format("\\g1 {}\\g0 ", static_cast<char>(*symbol))
                                      : fmt::format("\\g1 \\'{:02x}:\\g0 ", *symbol);
            else
                code += QString::fromUcs4(&letter, 1).toStdString();
        }
        edit_->textCursor().insertText(Qs(code));
        edit_->setFocus();
    }
    void UnDo() override { edit_->undo(); }
    void ReDo() override { edit_->redo(); }
    bool can_undo() const override { return edit_->document()->isUndoAvailable(); }
    bool can_redo() const override { return edit_->document()->isRedoAvailable(); }

private:
    /// Codes on both sides of the selection; without one the caret stands between them.
    void Around(const std::string& before, const std::string& behind)
    {
        QTextCursor cursor = edit_->textCursor();
        const QString inside = cursor.selectedText();
        cursor.insertText(Qs(before) + inside + Qs(behind));
        if (inside.isEmpty())
            cursor.movePosition(QTextCursor::Left, QTextCursor::MoveAnchor, static_cast<int>(behind.size()));
        edit_->setTextCursor(cursor);
        edit_->setFocus();
    }

    QPlainTextEdit* edit_;
};

} // namespace

std::unique_ptr<TextPane> MakeCodePane(const std::string& code, QWidget* parent)
{
    return std::make_unique<CodePane>(code, parent);
}

} // namespace nmr
