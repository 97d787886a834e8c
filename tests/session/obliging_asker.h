#pragma once
// Says yes to a read: rows are rows, tables are what they look like, and of several data sets the
// wanted one is taken.

#include "formats/csv_choice.h"
#include "formats/jcamp.h"
#include "session/forms.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace nmr::test {

class ObligingAsker : public Asker {
public:
    explicit ObligingAsker(int block = 0) : block_(block) {}

    Button Message(const MessageBox& box) override
    {
        texts.push_back(box.text);
        const bool asks = std::ranges::find(box.buttons, Button::no) != box.buttons.end();
        return asks ? Button::no : box.buttons.front();
    }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest& request) override
    {
        if (request.form == forms::kArrayData) return {forms::kOk, {{forms::kArrayMode, "1"}}};
        if (request.form == forms::kPhaseRow) return {forms::kFirstRow, {}};
        if (request.form == forms::kQuestion && block_ > 0)
            return {std::string(kBlockAnswer) + std::to_string(block_), {}};
        if (request.form != kCsvForm) return {forms::kCancel, {}};
        forms::Values values = request.values;
        for (const auto& [key, value] : table) values[key] = value;
        return {forms::kOk, values};
    }
    void Beep() override {}
    void Notice(const std::string&) override {}

    forms::Values table; ///< of the form for text tables, in place of what the file shows
    std::vector<std::string> texts;

private:
    int block_;
};

} // namespace nmr::test
