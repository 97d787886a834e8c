#include "ui/quiet_asker.h"

#include "formats/csv_choice.h"
#include "session/display_commands.h"
#include "session/forms.h"

#include <cstdio>

namespace nmr {

Button QuietAsker::Message(const MessageBox& box)
{
    std::fprintf(stderr, "nmr1d: %s: %s\n", box.title.c_str(), box.text.c_str());
    // A question of the read has its answer here; what is said without one has to be read by somebody.
    failed = failed || box.icon != Icon::question;
    return box.buttons.empty() ? Button::ok : box.buttons.back();
}

std::optional<FileChoice> QuietAsker::File(const FileDialog&)
{
    return std::nullopt;
}

FormAnswer QuietAsker::Form(const FormRequest& request)
{
    if (request.form == forms::kUserSelection) return {forms::kOk, {{forms::kName, "COMMON"}}};
    if (request.form == shown_form || request.form == kDistanceWindow) return QtAsker::Form(request);
    if (request.form == kCsvForm) return {forms::kOk, request.values}; // as the table looks
    // All rows, in the order of the file.
    if (request.form == forms::kArrayData) return {forms::kOk, {{forms::kArrayMode, "1"}, {forms::kDescending, "0"}}};
    if (request.form == forms::kPhaseRow) return {forms::kFirstRow, {}};
    std::fprintf(stderr, "nmr1d: %s is not answered\n", request.form.c_str());
    failed = true;
    return {forms::kCancel, {}};
}

} // namespace nmr
