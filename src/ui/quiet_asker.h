#pragma once
// The answers of a run that makes a picture or a measurement.

#include "ui/asker_qt.h"

namespace nmr {

/// Asks nothing: messages go to standard error and take their last button, which loses nothing; the user
/// is the common one.
class QuietAsker : public QtAsker {
public:
    Button Message(const MessageBox& box) override;
    std::optional<FileChoice> File(const FileDialog& dialog) override;
    FormAnswer Form(const FormRequest& request) override;
    void Beep() override {}

    std::string shown_form; ///< the one form that is shown all the same
    bool failed = false;    ///< something was said that a user would have had to read
};

} // namespace nmr
