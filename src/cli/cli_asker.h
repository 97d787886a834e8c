#pragma once
// Answers for a run that nobody watches: each question takes the answer that loses nothing, and is
// reported as a warning.

#include "core/asker.h"

#include <string>
#include <vector>

namespace nmr {

class CliAsker : public Asker {
public:
    Button Message(const MessageBox& box) override;
    std::optional<FileChoice> File(const FileDialog& dialog) override;
    FormAnswer Form(const FormRequest& request) override;
    void Beep() override {}
    void Notice(const std::string& text) override;

    const std::vector<std::string>& warnings() const { return warnings_; }

private:
    std::vector<std::string> warnings_;
};

} // namespace nmr
