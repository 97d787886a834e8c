#include "core/journal.h"
#include "core/state_image.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace {

using namespace nmr;

/// The sections of a small set.
StateImage SmallImage(GlobalBlock& g)
{
    static_cast<void>(AllocateSpecBuffer(g, 4, 0));
    g.Slots[0].par.POINT = 4;
    g.Slots[0].par.SMODE = 1;
    return TakeWholeImage(g);
}

} // namespace

// Any bytes as a journal, and as one section among good ones.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const auto block = std::make_unique<GlobalBlock>();
    static const StateImage good = SmallImage(*block);
    const auto bytes = std::as_bytes(std::span(data, size));
    static_cast<void>(ParseJournal(bytes, 0));
    if (size == 0) return 0;
    const auto section = static_cast<Section>(data[0] % 12);
    StateImage image = good;
    image[{0, section}].assign(bytes.begin() + 1, bytes.end());
    image[{-1, section}] = image[{0, section}];
    DataSet set;
    static_cast<void>(PutSlot(image, 0, set));
    static_cast<void>(PutGlobals(image, *block));
    return 0;
}
