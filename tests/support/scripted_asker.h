#pragma once
// Answers questions from a script: fails the test on a question too many, and in its destructor on
// an answer too many.

#include "core/asker.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <variant>
#include <vector>

namespace nmr::test {

class ScriptedAsker : public Asker {
public:
    using Answer = std::variant<Button, std::optional<FileChoice>, FormAnswer>;
    ScriptedAsker() = default;
    explicit ScriptedAsker(std::initializer_list<Answer> answers) : answers_(answers) {}
    ~ScriptedAsker() override { EXPECT_TRUE(answers_.empty()) << answers_.size() << " answers were not asked for"; }

    /// The answers to what comes, for a script that is known only when the test runs.
    void Expect(const std::vector<Answer>& answers) { answers_.insert(answers_.end(), answers.begin(), answers.end()); }

    Button Message(const MessageBox& box) override
    {
        boxes.push_back(box);
        if (box.buttons.size() == 1) return box.buttons.front();
        return Next<Button>("message \"" + box.text + "\"", Button::cancel);
    }
    std::optional<FileChoice> File(const FileDialog& dialog) override
    {
        dialogs.push_back(dialog);
        return Next<std::optional<FileChoice>>("file dialog \"" + dialog.title + "\"", std::nullopt);
    }
    FormAnswer Form(const FormRequest& request) override
    {
        forms.push_back(request);
        return Next<FormAnswer>("form " + request.form, FormAnswer{"CANCEL", {}});
    }
    void Beep() override { ++beeps; }
    void Notice(const std::string& text) override { notices.push_back(text); }

    std::vector<MessageBox> boxes;
    std::vector<FileDialog> dialogs;
    std::vector<FormRequest> forms;
    std::vector<std::string> notices;
    int beeps = 0;

private:
    template <class T>
    T Next(const std::string& question, T none)
    {
        if (answers_.empty() || !std::holds_alternative<T>(answers_.front())) {
            ADD_FAILURE() << "no answer for " << question;
            return none;
        }
        T answer = std::get<T>(answers_.front());
        answers_.pop_front();
        return answer;
    }
    std::deque<Answer> answers_;
};

} // namespace nmr::test
