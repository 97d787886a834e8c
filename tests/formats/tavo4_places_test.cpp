// Where the writer lays things down, checked by a reader of its own: it knows nothing but literal numbers
// of bytes, so that a table that writer and reader share can't be wrong in both.

#include "formats/tavo4_rows.h"

#include <cstring>

namespace nmr::test {
namespace {

using Number = std::variant<float, double, std::int16_t, std::int32_t, std::uint32_t, std::string>;
/// A value that is not a member's own.
struct Literal {
    std::size_t entry, at;
    Number value;
};

using F = float;
using S = std::int16_t;
using L = std::int32_t;
using U = std::uint32_t;
// clang-format off
const Literal kLiterals[] = {
    {40, 16, "14/Mar/2024 15:09:26"}, {40, 304, "14/Mar/2024 15:09:26"}, {40, 432, S{0x4004}}, {40, 436, S{0x4008}},
    {40, 440, S{0x4006}}, {40, 452, S{0x4002}}, {40, 456, S{0x4003}}, {40, 464, S{0x4005}}, {40, 652, S{1}},
    {40, 656, L{-1}}, {40, 1132, S{1}}, {40, 1136, L{8}}, {40, 1140, F{87.5}}, {40, 1144, 87.5 / 8},
    {40, 1200, 400.002}, {40, 1208, 400.0}, {40, 1232, U{0x12345678}}, {40, 1240, L{2}}, {40, 1288, 0.03125},
    {40, 1296, F{-1.5}}, {56, 16, "\x83\x47\x83\x5E\x83\x6D\x81\x5B\x83\x8B in CDCl3\r\nsecond line "},
    {168, 16, "{\\rtf1 rich}"}, {64, 16, L{2}}, {64, 56, F{16777215}}, {64, 80, F{48}}, {72, 16, L{2}}, {72, 40, F{5}},
    {72, 64, F{16777216}}, {80, 16, L{2}}, {88, 20, L{2}}, {96, 100, S{-70}}, {104, 96, L{2}}, {112, 80, L{3}},
};
// The labels and lengths of the sections, in the order of the file.
const struct {
    std::size_t entry;
    const char* label;
    std::size_t length;
} kSections[] = {
    {40, "%% PARAMETER", 2560}, {48, "%% Data", 144}, {56, "%% COMMENT", 49}, {168, "%% COMMENT RTF", 28},
    {176, "%% SIM COMMENT", 20}, {152, "%% SAMPLE ID", 20}, {192, "%% SAMPLEID NEW", 20}, {64, "%% INTEGRAL", 88},
    {72, "%% PEAK PICK", 88}, {80, "%% MULTIVIEW", 1064}, {88, "%% SIMULATE", 312}, {96, "%% PRINT SET", 272},
    {104, "%% ARRAY", 144}, {112, "%% HISTORY", 288}, {120, "%% FONTS", 384}, {128, "%% FILENAME", 272},
    {144, "%% REGION COLOR", 688}, {160, "%% X LABELS", 208}, {184, "%% X LABELS NEW", 208},
};
// clang-format on

/// The plain reading of a little-endian file; it notes which bytes were looked at.
struct Plain {
    FileBytes file;
    std::vector<bool> seen = std::vector<bool>(file.size());
    template <class T>
    T Get(std::size_t at)
    {
        std::uint64_t bits = 0;
        for (std::size_t i = sizeof(T); i-- > 0;) bits = bits << 8 | std::to_integer<std::uint64_t>(file.at(at + i));
        std::fill_n(seen.begin() + static_cast<std::ptrdiff_t>(at), sizeof(T), true);
        T value;
        std::memcpy(&value, &bits, sizeof(T));
        return value;
    }
    std::string Text(std::size_t at, std::size_t width)
    {
        const std::string text(reinterpret_cast<const char*>(file.data()) + at, width);
        std::fill_n(seen.begin() + static_cast<std::ptrdiff_t>(at), width, true);
        return text.substr(0, text.find('\0'));
    }
    std::size_t Long(std::size_t at) { return static_cast<std::size_t>(Get<std::int32_t>(at)); }
    template <class T>
    void Expect(std::size_t at, const T& value)
    {
        if constexpr (std::is_same_v<T, std::string>)
            EXPECT_EQ(Text(at, value.size()), value);
        else
            EXPECT_EQ(Get<T>(at), value);
    }
};

constexpr std::size_t kBlock = 1328; ///< behind the label of the first block

TEST(Tavo4Places, HeadAndAddressTable)
{
    auto g = NewBlock();
    for (const auto slot : {std::int16_t{0}, std::int16_t{2}, std::int16_t{20}}) FillPoints(*g, slot, 4);
    Plain file{Encoded(*g)};
    EXPECT_EQ(file.Text(0, 16), "TA NMR Ver.4.01");
    EXPECT_EQ(file.Text(16, 255), kTavo4Path);
    EXPECT_EQ(file.Text(496, 16), "## ADDRESS");
    EXPECT_EQ(file.Long(512), 1280U);
    EXPECT_LT(file.Long(516), 19U) << "no two-dimensional data";
    EXPECT_EQ(file.Text(1280, 16), "## 2D Data");
    EXPECT_EQ(file.Long(520), 1312U);
    const std::pair<std::size_t, const char*> blocks[] = {
        {520, "## 1D Data 00"}, {536, "## 1D Data 02"}, {832, "## 1D Data 20"}};
    for (const auto& [entry, label] : blocks) {
        const std::size_t at = file.Long(entry), length = file.Long(entry + 4);
        EXPECT_EQ(at % 16, 0U);
        EXPECT_EQ(file.Text(at, 16), label);
        EXPECT_EQ(file.Text(at + 16, 16), "1D NORM NORM   ");
        EXPECT_EQ(file.Text(at + length, 16), "%% END") << "the last label of the block " << label;
    }
    // The page has labels only; its entries from 688 to 824 and from 992 on lead to them, and all else is zero.
    for (std::size_t entry = 688; entry < 1088; entry = entry == 824 ? 992 : entry + 8)
        EXPECT_TRUE(file.Text(file.Long(entry), 16).starts_with("##")) << entry;
    for (std::size_t at = 0; at < 1280; ++at)
        EXPECT_TRUE(file.seen[at] || (at >= 692 && at < 1088) || file.file[at] == std::byte{0}) << at;
}

TEST(Tavo4Places, EveryMemberStandsInItsPlace)
{
    auto g = NewBlock();
    DataSet& set = FillSet(*g, 0);
    const std::vector<Row> rows = Rows(set);
    FillUnique(set);
    for (const std::size_t i : {2U, 3U, 4U, 5U, 6U, 8U}) set.par.FlagCtoK[i] = 0xABC04000U + static_cast<U>(i);
    set.CommentRtfPlain = set.par.COMNT;
    set.par.Span2 = 0xAABBCCDD12345678U; // its upper half is another value's
    set.par.RGAIN = 40000;               // beyond 16 bits
    Plain file{Encoded(*g)};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.entry << " + " << row.at);
        std::visit([&](const auto* member) { file.Expect(file.Long(kBlock + row.entry) + row.at, *member); },
                   row.member);
    }
    for (const Literal& row : kLiterals) {
        SCOPED_TRACE(testing::Message() << row.entry << " + " << row.at);
        std::visit([&](const auto& value) { file.Expect(file.Long(kBlock + row.entry) + row.at, value); }, row.value);
    }
    const std::size_t points = file.Long(kBlock + 48) + 16, integral = file.Long(kBlock + 64);
    for (std::size_t i = 0; i < 16; ++i) {
        file.Expect(points + 4 * i, static_cast<float>(100 * (i / 8) + i % 8) + 0.5F);
        file.Expect(points + 64 + 4 * i, -(static_cast<float>(100 * (i / 8) + i % 8) + 0.5F) / 3.0F);
    }
    file.Expect(integral + 32, set.par.YFill);
    EXPECT_EQ(file.Text(file.Long(kBlock + 152) + 16, 4), set.par.SampleId);
    for (std::size_t i = 1; i < 40; ++i) file.Expect(file.Long(kBlock + 144) + 40 + 16 * i, L{-1});
    std::size_t before = 0;
    for (const auto& section : kSections) {
        SCOPED_TRACE(section.label);
        const std::size_t at = file.Long(kBlock + section.entry);
        EXPECT_EQ(file.Text(at, 16), section.label);
        EXPECT_EQ(file.Long(kBlock + section.entry + 4), section.length);
        EXPECT_TRUE(at % 16 == 0 && at > before) << "in the order of the file";
        before = at;
        for (std::size_t i = at; i < at + section.length; ++i)
            ASSERT_TRUE(file.seen[i] || file.file[i] == std::byte{0}) << "something unknown at " << i - at;
    }
    EXPECT_EQ(file.Long(kBlock + 40), kBlock + 768);
    EXPECT_EQ(file.Text(kBlock + 16, 16), "%% ADDRESS");
    EXPECT_EQ(file.Long(kBlock + 32), kBlock + 256);
    EXPECT_EQ(file.Long(kBlock + 36), 256U);
    EXPECT_EQ(file.Text(kBlock + 240, 16), "%% ORG FILE");
    EXPECT_EQ(file.Text(kBlock + 256, 255), "/data/raw/1/fid");
    EXPECT_EQ(file.Text(file.Long(808) + 16, 32), set.FFTUser) << "the history once more, for the file";
    EXPECT_EQ(file.Long(file.Long(808) + 80), 3U);
}

} // namespace
} // namespace nmr::test
