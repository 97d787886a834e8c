#pragma once
// Answers for a flow that must not bother the user.

#include "core/asker.h"

#include <algorithm>
#include <optional>

namespace nmr {

/// Gives one answer to every question that offers it, else the first; closes dialogs and forms.
class QuietAnswers : public Asker {
public:
    explicit QuietAnswers(Button answer) : answer_(answer) {}
    Button Message(const MessageBox& box) override
    {
        const bool offered = std::ranges::find(box.buttons, answer_) != box.buttons.end();
        return offered || box.buttons.empty() ? answer_ : box.buttons.front();
    }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest&) override { return {"CANCEL", {}}; }
    void Beep() override {}
    void Notice(const std::string&) override {}

private:
    Button answer_;
};

} // namespace nmr
