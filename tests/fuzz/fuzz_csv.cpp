// Text tables: one byte of choices, three numbers that change what the form answers, the text of the file.

#include "formats/csv.h"

#include <cmath>
#include <cstdlib>

using namespace nmr;

namespace {

void Require(bool holds)
{
    if (!holds) std::abort();
}

/// Takes the proposal, or changes it as the input says.
class FuzzAsker : public Asker {
public:
    explicit FuzzAsker(std::span<const std::uint8_t> choices) : choices_(choices) {}
    Button Message(const MessageBox&) override { return Button::ok; }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest& request) override
    {
        CsvChoice choice(request.values);
        const unsigned bits = choices_[0];
        if ((bits & 1) != 0) choice.layout = static_cast<CsvLayout>(choices_[1] % 3);
        if ((bits & 2) != 0) choice.position = choices_[2] % 8;
        if ((bits & 4) != 0) choice.real = {choices_[3] % 8 + 1, 1};
        if ((bits & 8) != 0) choice.imaginary = {choices_[3] / 8 % 8 + 1, 2};
        if ((bits & 16) != 0) choice.unit = static_cast<CsvUnit>(choices_[1] / 3 % 6);
        if ((bits & 32) != 0) choice.smode ^= 1;
        if ((bits & 64) != 0) choice.text = {";,\t "[choices_[2] / 8 % 4], choices_[2] > 127};
        if ((bits & 128) != 0) choice.head_lines = choices_[1];
        return {"OK", choice.ToValues()};
    }
    void Beep() override {}
    void Notice(const std::string&) override {}

private:
    std::span<const std::uint8_t> choices_;
};

void Check(const DataSet& set)
{
    const ParamBlock& par = set.par;
    Require(par.POINT >= 2 && par.POINT <= kMaxPoints && set.RowCount >= 1 && set.RowCount <= kMaxRows);
    Require(par.FREQU > 0 && par.OBFRQ0PPM > 0 && (par.SMODE == 0 || par.SMODE == 1));
    Require(set.spec.DataRe.rows() == static_cast<std::size_t>(set.RowCount));
    Require(set.spec.AllocatedPoints >= par.POINT);
    for (const float value : set.spec.DataRe.all()) Require(std::isfinite(value));
    for (const float value : set.spec.DataIm.all()) Require(std::isfinite(value));
    for (const double ppm : set.spec.XAxis) Require(std::isfinite(ppm));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    constexpr std::size_t kChoices = 4;
    static GlobalBlock g;
    if (g.nuclides.rows().empty()) g.nuclides = NuclearTable::BuiltIn();
    if (size < kChoices) return 0;
    FuzzAsker asker(std::span(input, kChoices));
    ClearDataSet(g, 0);
    const FileType type;
    const std::string_view text(reinterpret_cast<const char*>(input) + kChoices, size - kChoices);
    static_cast<void>(IsCsvTable(text));
    if (ReadCsvText({g, asker, type, 0}, text)) Check(g.Slots[0]);
    return 0;
}
