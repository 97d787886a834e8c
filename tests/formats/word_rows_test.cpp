// Rows of words: the shared and the plain way to a slot give the same bits, from memory and from a file.

#include "core/spec_buffer.h"
#include "formats/fid_rows.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <random>

namespace nmr::test {
namespace {

struct Case {
    const char* name;
    WordKind kind;
    std::endian order;
    std::size_t parts = 2;
    double sign = 1;
    std::size_t rows = 3, points = 40000; ///< of more than one piece
    std::size_t missing = 0;              ///< bytes cut off the end
    bool damaged = false;                 ///< words that are no numbers
};

constexpr std::size_t kHead = 28;

/// Random words; every float is of ordinary size, unless the case wants damage.
Bytes RandomFile(const Case& c)
{
    Bytes bytes(c.rows * (kHead + c.points * c.parts * BytesOf(c.kind)) - c.missing);
    std::mt19937_64 random(7);
    for (std::size_t i = 0; i + 8 <= bytes.size(); i += 8) {
        const std::uint64_t word = random();
        std::memcpy(bytes.data() + i, &word, 8);
    }
    const bool floats = c.kind == WordKind::float32 || c.kind == WordKind::float64;
    if (!floats || c.damaged) return bytes;
    const std::size_t size = BytesOf(c.kind), exponent = c.order == std::endian::big ? 0 : size - 1;
    for (std::size_t row = 0; row < c.rows; ++row)
        for (std::size_t i = 0; i < c.points * c.parts; ++i) {
            const std::size_t at = row * (kHead + c.points * c.parts * size) + kHead + i * size + exponent;
            if (at < bytes.size()) bytes[at] = (bytes[at] & std::byte{0x80}) | std::byte{0x3F};
        }
    return bytes;
}

WordRows LayoutOf(const Case& c)
{
    return {c.rows, c.points, c.kind, c.order, c.parts, c.sign, [c](std::size_t row) {
                return kHead + row * (kHead + c.points * c.parts * BytesOf(c.kind));
            }};
}

struct Slot {
    std::unique_ptr<GlobalBlock> g = std::make_unique<GlobalBlock>();
    explicit Slot(const Case& c)
    {
        g->Slots[0].RowCount = static_cast<std::int32_t>(c.rows);
        EXPECT_TRUE(AllocateSpecBuffer(*g, static_cast<std::int32_t>(c.points), 0));
    }
    SpecBuffer& spec() { return g->Slots[0].spec; }
};

/// The plain way, row by row through doubles.
std::uint64_t StorePlainly(const Case& c, ByteSpan file, SpecBuffer& spec)
{
    const WordRows layout = LayoutOf(c);
    return StoreFidRows({c.rows, c.points,
                         [&](std::size_t row, std::span<double> re, std::span<double> im) {
                             const std::size_t held = layout.Held(file, row);
                             std::vector<double> words(held * c.parts);
                             DecodeWords(file.subspan(layout.offset(row)), c.kind, c.order, words);
                             for (std::size_t i = 0; i < held; ++i) {
                                 re[i] = words[c.parts * i];
                                 im[i] = c.parts == 2 ? c.sign * words[2 * i + 1] : 0;
                             }
                             return held;
                         }},
                        spec);
}

void ExpectSameBits(SpecBuffer& a, SpecBuffer& b)
{
    const auto same = [](std::span<const float> x, std::span<const float> y) {
        return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size_bytes()) == 0;
    };
    EXPECT_TRUE(same(a.DataRe.all(), b.DataRe.all()));
    EXPECT_TRUE(same(a.DataIm.all(), b.DataIm.all()));
}

TEST(WordRowsOfAFile, HaveTheBitsOfThePlainWay)
{
    using enum WordKind;
    const Case cases[] = {
        {"int32, little", int32, std::endian::little},
        {"int32, big, reversed", int32, std::endian::big, 2, -1},
        {"int16", int16, std::endian::big},
        {"int16, real rows", int16, std::endian::little, 1},
        {"float32", float32, std::endian::big, 2, -1},
        {"float32 with damage", float32, std::endian::little, 2, 1, 2, 5000, 0, true},
        {"float64", float64, std::endian::little},
        {"float64 with damage, reversed", float64, std::endian::big, 2, -1, 2, 5000, 0, true},
        {"real rows of floats", float32, std::endian::big, 1},
        {"cut inside the last row", int32, std::endian::little, 2, 1, 3, 40000, 100001},
        {"cut inside the last but one", int32, std::endian::little, 2, 1, 3, 40000, 400000},
        {"enough for several threads", int32, std::endian::big, 2, 1, 32, 40000},
    };
    const TempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes bytes = RandomFile(c);
        ASSERT_TRUE(WriteWholeFile(folder.path() / "rows", ByteSpan(bytes)));
        const auto file = OpenedFile::Open(folder / "rows", kAnySize);
        ASSERT_TRUE(file);
        Slot plain(c), memory(c), disk(c);
        const std::uint64_t damaged = StorePlainly(c, bytes, plain.spec());
        EXPECT_EQ(damaged > 0, c.damaged);
        for (const auto& [source, slot] : {std::pair<ByteSource, Slot*>{ByteSpan(bytes), &memory}, {*file, &disk}}) {
            const auto stored = StoreWordRows(source, LayoutOf(c), slot->spec());
            ASSERT_TRUE(stored);
            EXPECT_EQ(*stored, damaged);
            ExpectSameBits(plain.spec(), slot->spec());
        }
    }
}

TEST(WordRowsOfAFile, AFileThatShrinksMeanwhileIsAnError)
{
    const TempFolder folder;
    for (const WordKind kind : {WordKind::int32, WordKind::float64}) {
        const Case c{"", kind, std::endian::little};
        ASSERT_TRUE(WriteWholeFile(folder.path() / "rows", ByteSpan(RandomFile(c))));
        const auto file = OpenedFile::Open(folder / "rows", kAnySize);
        ASSERT_TRUE(file);
        std::filesystem::resize_file(folder.path() / "rows", 1000);
        Slot slot(c);
        const auto stored = StoreWordRows(*file, LayoutOf(c), slot.spec());
        ASSERT_FALSE(stored);
        EXPECT_EQ(stored.error().code, ErrorCode::truncated);
    }
}

TEST(RowArrays, AreZeroAfterEveryResizeAndCopyTheirValues)
{
    RowArray<float> rows;
    // Sizes on both sides of what is mapped, growing and shrinking.
    for (const std::size_t columns : {10UL, 300000UL, 2000000UL, 1100000UL, 5UL, 300000UL}) {
        rows.Resize(1, columns);
        EXPECT_TRUE(std::ranges::all_of(rows.all(), [](float value) { return value == 0; })) << columns;
        std::ranges::fill(rows.all(), 2.5F);
        const RowArray<float> copy = rows;
        rows[0][columns - 1] = 7;
        EXPECT_EQ(copy[0][columns - 1], 2.5F);
        RowArray<float> other;
        other.Resize(1, 1500000);
        other = copy;
        EXPECT_EQ(other.columns(), columns);
        EXPECT_TRUE(std::ranges::equal(other.all(), copy.all()));
    }
}

} // namespace
} // namespace nmr::test
