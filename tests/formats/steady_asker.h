#pragma once
// Answers every question alike, however often it is asked.

#include "core/asker.h"

#include <algorithm>

namespace nmr::test {

class SteadyAsker : public Asker {
public:
    explicit SteadyAsker(Button answer) : answer_(answer) {}
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

} // namespace nmr::test
