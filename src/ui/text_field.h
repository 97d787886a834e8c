#pragma once
// Fields of a form whose text may be formatted: typed as plain text, formatted in an editor of its own.

#include <QWidget>

#include <string>

class QLineEdit;
class QPlainTextEdit;
class QScrollArea;

namespace nmr {

class CodePicture;

/// One line. A text with codes shows as it is drawn, and only the editor changes it.
class TextField : public QWidget {
public:
    TextField(const QString& title, const std::string& text, QWidget* parent);
    /// Plain, or a text of the text language when it has formats.
    std::string text() const;

private:
    void Show(const std::string& text);
    void Edit();

    const QString title_;
    std::string code_; ///< empty while the text is plain
    QLineEdit* line_;
    QScrollArea* frame_;
    CodePicture* picture_;
};

/// Several lines, with the rich text that goes with them.
class CommentField : public QWidget {
public:
    CommentField(const std::string& text, const std::string& rich, QWidget* parent);
    std::string text() const;
    /// "" when the text was typed over since.
    std::string rich() const;

private:
    void Edit();

    QPlainTextEdit* box_;
    std::string rich_, rich_text_;
};

} // namespace nmr
