#pragma once
// Every question to the user goes through an Asker: the window shows it, nmr1d-cli answers it with
// what loses nothing, a test answers it from a script.

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace nmr {

enum class Button { ok, cancel, yes, no, retry, abort, ignore };
enum class Icon { none, information, question, warning, error };

/// A message box; text, title and buttons are shown to the letter.
struct MessageBox {
    std::string text;
    std::string title;
    std::vector<Button> buttons{Button::ok};
    Icon icon = Icon::warning;
    bool beep = false;
};

struct FilterRow {
    std::string description; ///< "JCAMP File"
    std::string expression;  ///< "*.jdx;*.dx"
};

struct FileDialog {
    enum class Kind { open, save, folder };
    Kind kind = Kind::open;
    std::string title;
    std::vector<FilterRow> filters;
    int filter_index = 1; ///< 1-based row that is shown first
    std::string folder;
    std::string name;      ///< proposed file name
    std::string extension; ///< added to a typed name without one, with its dot
};
struct FileChoice {
    std::string path;
    int filter_index = 1;
};

/// A modal form, by its name ("NMR1D_Form102"), with the values it starts from.
struct FormRequest {
    std::string form;
    std::map<std::string, std::string> values;
};
/// How a form ended: the DialogResult word ("OK", "CANCEL", "CLOSE", "END" or a word of the form's own).
struct FormAnswer {
    std::string dialog_result;
    std::map<std::string, std::string> values;
};

class Asker {
public:
    virtual ~Asker() = default;
    virtual Button Message(const MessageBox& box) = 0;
    virtual std::optional<FileChoice> File(const FileDialog& dialog) = 0;
    virtual FormAnswer Form(const FormRequest& request) = 0;
    virtual void Beep() = 0;
    /// One line for the status line or standard error: nothing to answer.
    virtual void Notice(const std::string& text) = 0;
};

} // namespace nmr
