// The sniffing of heads and every probe. The first byte of the input chooses which
// (below the number of probes: that probe) and, by its top bit, how questions are answered; the rest
// is the file.

#include "core/quiet_answers.h"
#include "formats/probes.h"

#include <cstdint>
#include <cstdlib>

namespace {

using namespace nmr;

void Require(bool condition)
{
    if (!condition) std::abort();
}

void RunProbe(const ProbeRow& row, ByteSpan file, const ProbeContext& context)
{
    const ProbeAnswer answer = row.probe(file, context);
    if (answer.status == 0)
        Require(!answer.mode.empty() && answer.spectrum_flag <= 1);
    else
        Require(answer.mode.empty() || answer.mode == "ERR");
}

void RunSniff(ByteSpan file)
{
    // The head alone must not lead astray: either it says the same as the whole, or it asks for more.
    const Sniff whole = SniffDataMode(file, file.size());
    Require(!whole.needs_more);
    const ByteSpan head = file.first(std::min<std::size_t>(file.size(), 600));
    const Sniff first = SniffDataMode(head, file.size());
    Require(first.needs_more || first.result == whole.result);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const NuclearTable kNuclides = NuclearTable::BuiltIn();
    if (size == 0) return 0;
    QuietAnswers asker((data[0] & 0x80) != 0 ? Button::yes : Button::no);
    const ByteSpan file = std::as_bytes(std::span(data + 1, size - 1));
    const std::size_t choice = data[0] & 0x7F;
    if (choice < Probes().size())
        RunProbe(Probes()[choice], file, {asker, kNuclides});
    else
        RunSniff(file);
    return 0;
}
