// Damaged native files: whatever one byte says, and wherever a file ends, a read gives a message or a
// set that holds together, can be saved, and comes back as it was saved.

#include "core/quiet_answers.h"
#include "formats/tavo4_fixture.h"

#include <cmath>
#include <cstdlib>
#include <iostream>

namespace nmr::test {
namespace {

void ExpectWhole(const DataSet& set)
{
    const auto points = static_cast<std::size_t>(set.par.POINT), rows = static_cast<std::size_t>(set.RowCount);
    ASSERT_LE(points, static_cast<std::size_t>(kMaxPoints));
    ASSERT_TRUE(rows >= 1 && rows <= static_cast<std::size_t>(kMaxRows));
    ASSERT_EQ(set.spec.XAxis.size(), points + 1);
    ASSERT_EQ(set.spec.DataRe.rows(), rows);
    ASSERT_EQ(set.spec.SourceIm.columns(), points + 1);
    ASSERT_TRUE(std::isfinite(set.spec.XAxis[0]) && std::isfinite(set.spec.XAxis[points - 1]));
    for (const RowArray<float>* matrix : {&set.spec.DataRe, &set.spec.DataIm})
        for (const float value : matrix->all()) ASSERT_TRUE(std::isfinite(value));
    ASSERT_EQ(set.HistoryA.size(), set.HistoryB.size());
    ASSERT_LE(set.MultiViews.size(), 21U);
    ASSERT_TRUE(set.par.WindowFunc >= 0 && set.par.WindowFunc <= 4 && set.par.YFill > 0);
}

/// One damaged file; true when it was read.
bool Try(GlobalBlock& g, GlobalBlock& again, const FileBytes& file)
{
    QuietAnswers asker(Button::no);
    const bool read = static_cast<bool>(DecodeTavo4(g, asker, file, 0));
    if (!read) {
        EXPECT_TRUE(IsEmpty(g.Slots[0]) || g.Slots[0].par.POINT == 8);
        return false;
    }
    for (const DataSet& set : g.Slots)
        if (!IsEmpty(set)) ExpectWhole(set);
    const auto saved = EncodeTavo4(g, kTavo4Path, 0);
    EXPECT_TRUE(saved);
    if (!saved) return true;
    EXPECT_TRUE(DecodeTavo4(again, asker, *saved, 0));
    const auto twice = EncodeTavo4(again, kTavo4Path, 0);
    EXPECT_TRUE(twice) << "saving what was read";
    if (!twice || *twice == *saved) return true;
    const auto differs = std::ranges::mismatch(*twice, *saved);
    ADD_FAILURE() << "saving what was read changes byte " << differs.in1 - twice->begin() << " of " << twice->size()
                  << ", " << saved->size();
    return true;
}

struct Store {
    std::unique_ptr<GlobalBlock> g = NewBlock(), again = NewBlock();
    FileBytes file;
    Store()
    {
        auto source = NewBlock();
        FillSet(*source, 0);
        FillPoints(*source, 1, 4);
        CarriedSection text{"## TEXT DATA-0", 1 << 20, FileBytes(100)};
        PutLong(text.Bytes, 16, 1);
        PutLong(text.Bytes, 20, (1 << 20) + 24);
        source->Slots[0].Carried = {text};
        file = Encoded(*source);
    }
    void EmptySlots()
    {
        for (std::size_t slot = 1; slot < g->Slots.size(); ++slot)
            g->Slots[slot].par.POINT = again->Slots[slot].par.POINT = 0;
    }
};

/// Whether a byte belongs to the address tables of the file (its blocks) and of its two blocks.
bool InTables(const FileBytes& file, std::size_t at)
{
    const auto inside = [at](std::size_t start, std::size_t size) { return at >= start && at < start + size; };
    const auto second = static_cast<std::size_t>(Long(file, 528)) + 16;
    return inside(512, 16) || inside(1328 + 32, 168) || inside(second + 32, 168);
}

/// What a byte is replaced by: a few telling values; in the address tables, and with NMR1D_LONG_TESTS set
/// everywhere, every other one.
std::vector<std::byte> Replacements(std::byte old, bool all)
{
    std::vector<std::byte> values;
    if (all || std::getenv("NMR1D_LONG_TESTS") != nullptr) {
        for (int value = 0; value < 256; ++value) values.push_back(static_cast<std::byte>(value));
    } else {
        for (const int value : {0x00, 0x01, 0x20, 0x7F, 0x80, 0xFF}) values.push_back(static_cast<std::byte>(value));
        values.push_back(old ^ std::byte{1});
        values.push_back(old ^ std::byte{0x80});
    }
    std::erase(values, old);
    return values;
}

TEST(Tavo4Damage, EverySingleByte)
{
    Store store;
    const FileBytes whole = store.file;
    int tried = 0, read = 0;
    for (std::size_t at = 0; at < store.file.size(); ++at) {
        const std::byte old = store.file[at];
        for (const std::byte value : Replacements(old, InTables(whole, at))) {
            SCOPED_TRACE(testing::Message() << "byte " << at << " is " << std::to_integer<int>(value));
            store.file[at] = value;
            store.EmptySlots();
            read += Try(*store.g, *store.again, store.file) ? 1 : 0;
            ++tried;
            if (HasFailure()) return;
        }
        store.file[at] = old;
    }
    std::cout << store.file.size() << " bytes, " << tried << " files, " << read << " read\n";
    EXPECT_GT(read, tried / 2) << "most bytes of the file are values, not structure";
    EXPECT_LT(read, tried);
}

TEST(Tavo4Damage, EveryCut)
{
    Store store;
    const std::size_t points_end = static_cast<std::size_t>(Long(store.file, 1328 + 48)) + 16 + 8 * 8 * 2;
    for (std::size_t size = 0; size <= store.file.size(); ++size) {
        SCOPED_TRACE(size);
        const FileBytes cut(store.file.begin(), store.file.begin() + static_cast<std::ptrdiff_t>(size));
        store.EmptySlots();
        const bool read = Try(*store.g, *store.again, cut);
        EXPECT_EQ(read, size >= points_end) << "what is there of a block whose points are whole is taken";
        if (HasFailure()) return;
    }
}

TEST(Tavo4Damage, TwoBytesAtOnce)
{
    Store store;
    std::uint64_t state = 20240501;
    const auto next = [&](std::size_t below) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::size_t>((state >> 33) % below);
    };
    for (int i = 0; i < 20000; ++i) {
        FileBytes file = store.file;
        // Half of them in the head and the tables, where structure stands.
        for (int k = 0; k < 4; ++k) file[next(k % 2 == 0 ? file.size() : 1600)] = static_cast<std::byte>(next(256));
        SCOPED_TRACE(i);
        store.EmptySlots();
        Try(*store.g, *store.again, file);
        if (HasFailure()) return;
    }
}

} // namespace
} // namespace nmr::test
