#pragma once
// Answers for a run that nobody watches: each question takes the answer that loses nothing, and is
// reported as a warning.

#include "core/asker.h"

#include <optional>
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

    /// Values of the form for text tables that the user gave, in place of what the file shows.
    void SetTableValues(std::map<std::string, std::string> values) { table_values_ = std::move(values); }

    /// Which data set of a file of several is meant, from 1.
    void SetBlock(std::optional<int> block) { block_ = block; }
    /// A data set was wanted by number, but the file had no choice to offer.
    bool BlockIsMissing() const { return block_ > 1 && !block_asked_; }

private:
    /// The form for text tables: what was found out from the file is taken.
    FormAnswer TakeFound(const FormRequest& request);

    std::map<std::string, std::string> table_values_;
    std::optional<int> block_;
    bool block_asked_ = false;
    std::vector<std::string> warnings_;
};

} // namespace nmr
