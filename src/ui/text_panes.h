#pragma once
// The two panes that a formatted text is edited in: letters as they look, or the codes themselves.

#include "layout/code_text.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <string>

namespace nmr {

enum class TextMark { bold, italic, underline, strikeout, super, sub, greek };
inline constexpr int kTextMarks = 7;

/// What the tool bar shows of the letters at the caret.
struct CaretState {
    bool marks[kTextMarks] = {};
    std::string face;
    double size = 0;
};

class TextPane {
public:
    virtual ~TextPane() = default;
    virtual QWidget* widget() = 0;
    /// The text as it stands; one that was not touched is handed back to the letter.
    virtual std::string code() const = 0;
    /// Of the selection, or of what is typed next.
    virtual void Mark(TextMark mark, bool on) = 0;
    virtual void SetFace(const std::string& face) = 0; ///< "" is the text's own
    virtual void SetSize(double points) = 0;           ///< 0 is the text's own
    virtual void SetColor(std::int32_t color) = 0;     ///< -1 is the text's own
    /// Letters at the caret, UTF-8.
    virtual void Insert(const std::string& letters) = 0;
    virtual void UnDo() = 0;
    virtual void ReDo() = 0;
    virtual bool can_undo() const = 0;
    virtual bool can_redo() const = 0;
    /// Of the pane that edits codes nothing is known about the letters at the caret.
    virtual const CaretState* caret() const { return nullptr; }

    std::function<void()> changed;     ///< the text
    std::function<void()> caret_moved; ///< or what is typed next
};

std::unique_ptr<TextPane> MakeRichPane(const std::string& code, const FontSpec& font, QWidget* parent);
std::unique_ptr<TextPane> MakeCodePane(const std::string& code, QWidget* parent);

} // namespace nmr
