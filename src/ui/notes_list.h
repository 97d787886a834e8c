#pragma once
// What the last read mended or missed: a button in the status line, and a small list behind it.

#include <QToolButton>

#include <string>
#include <vector>

namespace nmr {

class NotesButton : public QToolButton {
public:
    explicit NotesButton(QWidget* parent);

    /// Nothing to see without notes.
    void SetNotes(const std::vector<std::string>& notes);
    /// The list over the button; a click elsewhere or Esc closes it.
    void ShowList();

private:
    std::vector<std::string> notes_;
};

} // namespace nmr
