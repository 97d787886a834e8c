#include "cli/cli_asker.h"

#include "formats/csv_choice.h"
#include "formats/jcamp.h"

#include "session/forms.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nmr {
namespace {

// From what loses nothing to what would: the first that a box offers is taken. "No" stands before
// "Yes" because questions ask whether to go on with something; array data are read as one-dimensional.
constexpr std::array kSafestFirst{Button::cancel, Button::no,    Button::ok, Button::abort,
                                  Button::ignore, Button::retry, Button::yes};

std::string OneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

} // namespace

Button CliAsker::Message(const MessageBox& box)
{
    warnings_.push_back(OneLine(box.title.empty() ? box.text : box.title + ": " + box.text));
    for (Button button : kSafestFirst)
        if (std::find(box.buttons.begin(), box.buttons.end(), button) != box.buttons.end()) return button;
    return Button::cancel;
}

std::optional<FileChoice> CliAsker::File(const FileDialog& dialog)
{
    warnings_.push_back("a file was asked for: " + dialog.title);
    return std::nullopt;
}

FormAnswer CliAsker::Form(const FormRequest& request)
{
    // The reader itself says which data set it took when nothing was told.
    if (request.form == forms::kQuestion && forms::Text(request.values, forms::kTitle) == kJcampTitle) {
        block_asked_ = true;
        return {block_ ? fmt::format("{}{}", kBlockAnswer, *block_) : std::string(), {}};
    }
    if (request.form == kCsvForm) return TakeFound(request);
    // All rows are read and written as they stand; --row chooses the one whose phase is corrected.
    if (request.form == forms::kArrayData) return {forms::kOk, {{forms::kArrayMode, "1"}, {forms::kDescending, "0"}}};
    if (request.form == forms::kPhaseRow) return {forms::kFirstRow, {}};
    warnings_.push_back("the form " + request.form + " was answered with Cancel");
    return {"CANCEL", {}};
}

FormAnswer CliAsker::TakeFound(const FormRequest& request)
{
    std::map<std::string, std::string> values = request.values;
    for (const auto& [key, value] : table_values_) values[key] = value;
    warnings_.push_back("The table was read as it looks: " + CsvChoice(values).Summary() + ".");
    return {"OK", values};
}

void CliAsker::Notice(const std::string& text)
{
    fmt::print(stderr, "nmr1d-cli: {}\n", OneLine(text));
}

} // namespace nmr
