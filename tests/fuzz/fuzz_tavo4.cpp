// Native file Ver.4: the input is the file. What can be read can be saved, and is then stable.

#include "core/quiet_answers.h"
#include "formats/tavo4.h"

#include <cstdlib>

using namespace nmr;

namespace {

void Require(bool holds)
{
    if (!holds) std::abort();
}

void EmptySlots(GlobalBlock& g)
{
    for (DataSet& set : g.Slots) set.par.POINT = 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    static GlobalBlock g, again;
    static QuietAnswers asker(Button::no);
    EmptySlots(g);
    EmptySlots(again);
    if (!DecodeTavo4(g, asker, std::as_bytes(std::span(input, size)), 0)) return 0;
    const auto saved = EncodeTavo4(g, "/data/a.tvo1", 0);
    Require(static_cast<bool>(saved));
    Require(static_cast<bool>(DecodeTavo4(again, asker, *saved, 0)));
    const auto twice = EncodeTavo4(again, "/data/a.tvo1", 0);
    Require(twice && *twice == *saved);
    return 0;
}
