#pragma once
// The editor of formatted texts: a pane to edit in, a tool bar, and the text as it is drawn.

#include "layout/code_text.h"

#include <QWidget>

#include <memory>
#include <string>
#include <vector>

class QBoxLayout;
class QComboBox;
class QToolButton;

namespace nmr {

class CodePicture;
class TextPane;

class TextEditor : public QWidget {
public:
    enum class Kind { rich, codes };
    TextEditor(Kind kind, const std::string& code, const FontSpec& font, QWidget* parent);
    ~TextEditor() override;

    /// In current form; "" for a text without letters.
    std::string code() const;
    void SetCode(const std::string& code);

private:
    void BuildToolBar(QBoxLayout& column);
    void AddMarks(QBoxLayout& bar);
    void AddFonts(QBoxLayout& bar);
    void AddColors(QBoxLayout& bar);
    void AddLetters(QBoxLayout& bar);
    QToolButton* AddTool(QBoxLayout& bar, const QString& name, const QString& text, const QString& tip);
    void TakePane(std::unique_ptr<TextPane> pane);
    void ShowCaret();
    void ShowText();

    const Kind kind_;
    const FontSpec font_;
    std::unique_ptr<TextPane> pane_;
    QBoxLayout* pane_place_ = nullptr;
    CodePicture* picture_ = nullptr;
    QToolButton *undo_ = nullptr, *redo_ = nullptr;
    std::vector<QToolButton*> marks_;
    QComboBox *faces_ = nullptr, *sizes_ = nullptr;
};

} // namespace nmr
