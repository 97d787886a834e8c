// JCAMP-DX: the bytes of a file; what is read as a spectrum is written and read again.

#include "formats/jcamp.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace nmr;

namespace {

void Require(bool holds)
{
    if (!holds) std::abort();
}

/// No one is there: the first of several blocks is taken.
class NoAsker : public Asker {
public:
    Button Message(const MessageBox&) override { return Button::cancel; }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest&) override { return {"CANCEL", {}}; }
    void Beep() override {}
    void Notice(const std::string&) override {}
};

bool Read(GlobalBlock& g, std::string_view text)
{
    static NoAsker asker;
    static const FileType type;
    ClearDataSet(g, 0);
    Status status = ReadJcampBytes({g, asker, type, 0}, text);
    if (!status) Require(!status.error().text.empty());
    return static_cast<bool>(status);
}

void CheckSet(const DataSet& set)
{
    const ParamBlock& par = set.par;
    Require(par.POINT >= 1 && par.POINT <= kMaxPoints && par.FIDPoints >= 1 && par.FIDPoints <= par.POINT);
    Require(set.spec.AllocatedPoints >= par.POINT);
    for (const auto* rows : {&set.spec.DataRe, &set.spec.DataIm})
        for (float value : rows->all()) Require(std::fabs(value) <= 1.01e30F); // false for NaN
    if (par.SMODE == 0) {
        Require(par.FREQU > 0 && par.GroupDelay >= 0);
        return;
    }
    for (double ppm : set.spec.XAxis) Require(std::isfinite(ppm));
    Require(std::isfinite(par.OBFRQ0PPM) && par.OBFRQ0PPM > 0);
}

void ReadBack(GlobalBlock& g, bool pages)
{
    const auto text = pages ? JcampPagesText(g.Slots[0], 0) : JcampText(g.Slots[0], 0);
    if (!text) return; // a single point, or an axis without extent
    const std::vector<float> before(g.Slots[0].spec.DataRe.all().begin(), g.Slots[0].spec.DataRe.all().end());
    const auto points = static_cast<std::size_t>(g.Slots[0].par.POINT);
    double largest = 0;
    for (std::size_t i = 0; i < points; ++i) largest = std::max(largest, std::fabs(static_cast<double>(before[i])));
    const double step = std::max(1e-10, 1e-7 * largest);
    // An axis that fades into the last printed digit can't come back.
    if (!Read(g, *text)) return;
    for (std::size_t i = 0; i < points; ++i)
        Require(std::fabs(static_cast<double>(g.Slots[0].spec.DataRe[0][i]) - static_cast<double>(before[i])) <= step);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    static GlobalBlock g;
    if (g.nuclides.rows().empty()) g.nuclides = NuclearTable::BuiltIn();
    const std::string_view text(reinterpret_cast<const char*>(input), size);
    std::string line(text.substr(0, text.find('\n'))), label;
    std::vector<std::string> fields;
    Split_Label(line, label, fields);
    Require(fields.size() >= 4 && fields.size() <= kMostFields);
    Split_PrivateLine(line, label, fields);
    std::size_t position = 0;
    while (position < size) {
        const std::size_t before = position;
        const AsdfItem item = Read_AsdfValue(text, position, AsdfE::squeezed);
        if (item.kind == AsdfKind::error || item.kind == AsdfKind::end) break;
        Require(position > before);
    }
    if (!Read(g, text)) return 0;
    CheckSet(g.Slots[0]);
    // Large rows cost time and show nothing new.
    if (g.Slots[0].par.SMODE == 1 && g.Slots[0].par.POINT <= 4096) ReadBack(g, size % 2 == 1);
    return 0;
}
