#pragma once
// Reading a text table without the detection.

#include "formats/csv.h"
#include "support/scripted_asker.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

namespace nmr::test {

inline FileType CsvType(const std::string& path = {})
{
    FileType type;
    type.code = 0x100E;
    type.tag = "CSV1";
    type.path = path;
    return type;
}

/// Takes what the reader proposes, changed or not; boxes get their first button.
class ProposalTaker : public Asker {
public:
    explicit ProposalTaker(std::function<void(CsvChoice&)> change) : change_(std::move(change)) {}
    Button Message(const MessageBox& box) override
    {
        boxes.push_back(box);
        return box.buttons.front();
    }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest& request) override
    {
        forms.push_back(request);
        CsvChoice choice(request.values);
        if (change_) change_(choice);
        return {"OK", choice.ToValues()};
    }
    void Beep() override {}
    void Notice(const std::string&) override {}
    std::vector<MessageBox> boxes;
    std::vector<FormRequest> forms;

private:
    std::function<void(CsvChoice&)> change_;
};

/// One read into slot 0 of a block of its own (which is large, so it stands on the heap).
struct CsvRead {
    std::unique_ptr<GlobalBlock> g = std::make_unique<GlobalBlock>();
    ProposalTaker asker;
    Status status;

    explicit CsvRead(const std::string& text, std::function<void(CsvChoice&)> change = {}) : asker(std::move(change))
    {
        g->nuclides = NuclearTable::BuiltIn();
        const FileType type = CsvType();
        status = ReadCsvText({*g, asker, type, 0}, text);
    }
    const DataSet& set() const { return g->Slots[0]; }
    const ParamBlock& par() const { return set().par; }
};

} // namespace nmr::test
