#include "core/journal.h"

#include "core/byte_image.h"
#include "core/checksum.h"
#include "core/record_members.h"
#include "core/state_image.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <sys/resource.h>

namespace nmr {
namespace {

using test::TempFolder;

constexpr std::uint64_t kLayout = 7;
constexpr std::size_t kHeadSize = 32, kRecordHeadSize = 16;

struct Sample {
    TempFolder folder;
    std::vector<std::vector<std::byte>> payloads;
    Bytes file;

    explicit Sample(unsigned seed = 1)
    {
        std::mt19937 random(seed);
        JournalWriter writer;
        for (const std::size_t size : {20U, 0U, 1U, 33U, 64U, 7U}) {
            auto& payload = payloads.emplace_back(size);
            for (std::byte& byte : payload) byte = static_cast<std::byte>(random());
        }
        const JournalRecord first{0, payloads[0]};
        EXPECT_TRUE(writer.Begin(path(), kLayout, std::span(&first, 1)));
        for (std::uint32_t i = 1; i < payloads.size(); ++i) EXPECT_TRUE(writer.Append(i, payloads[i]));
        file = *ReadWholeFile(path());
    }
    std::string path() const { return folder / "Journal_1D0000.jnl"; }
    std::size_t EndOf(std::size_t record) const
    {
        std::size_t end = kHeadSize;
        for (std::size_t i = 0; i <= record; ++i) end += kRecordHeadSize + payloads[i].size();
        return end;
    }
    /// The records are the first `count` ones, to the bit.
    void ExpectFirst(const Result<JournalContents>& read, std::size_t count) const
    {
        ASSERT_TRUE(read);
        ASSERT_EQ(read->records.size(), count);
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(read->records[i].kind, i);
            EXPECT_TRUE(std::ranges::equal(read->records[i].payload, payloads[i]));
        }
    }
    /// Whole records that end at or before a place.
    std::size_t WholeBefore(std::size_t place) const
    {
        std::size_t count = 0;
        while (count < payloads.size() && EndOf(count) <= place) ++count;
        return count;
    }
};

TEST(Journal, EveryCutBringsBackTheWholeRecordsBeforeIt)
{
    const Sample s;
    ASSERT_EQ(s.file.size(), s.EndOf(s.payloads.size() - 1));
    for (std::size_t size = 0; size <= s.file.size(); ++size) {
        SCOPED_TRACE(size);
        const auto read = ParseJournal(std::span(s.file).first(size), kLayout);
        if (size < kHeadSize) {
            EXPECT_FALSE(read);
            continue;
        }
        const std::size_t whole = s.WholeBefore(size);
        s.ExpectFirst(read, whole);
        EXPECT_EQ(read->cut, size != (whole == 0 ? kHeadSize : s.EndOf(whole - 1)));
    }
}

TEST(Journal, NoChangedByteIsEverTakenForARecord)
{
    const Sample s;
    for (std::size_t at = 0; at < s.file.size(); ++at)
        for (int value = 0; value < 256; ++value) {
            Bytes changed = s.file;
            if (changed[at] == static_cast<std::byte>(value)) continue;
            changed[at] = static_cast<std::byte>(value);
            const auto read = ParseJournal(changed, kLayout);
            if (at < kHeadSize) {
                ASSERT_FALSE(read) << at;
                continue;
            }
            SCOPED_TRACE(at);
            s.ExpectFirst(read, s.WholeBefore(at));
            ASSERT_TRUE(read->cut);
        }
}

TEST(Journal, RecordsOfAnotherFileOrPlaceAreNone)
{
    const Sample a(1), b(1); // the same payloads
    const auto record = [](const Sample& s, std::size_t i) {
        const std::size_t begin = i == 0 ? kHeadSize : s.EndOf(i - 1);
        return std::span(s.file).subspan(begin, s.EndOf(i) - begin);
    };
    const auto joined = [](std::span<const std::byte> head, std::initializer_list<std::span<const std::byte>> parts) {
        Bytes bytes(head.begin(), head.end());
        for (const auto part : parts) bytes.insert(bytes.end(), part.begin(), part.end());
        return bytes;
    };
    const auto head = std::span(a.file).first(kHeadSize);
    a.ExpectFirst(ParseJournal(joined(head, {record(a, 0), record(b, 1)}), kLayout), 1);
    a.ExpectFirst(ParseJournal(joined(head, {record(a, 0), record(a, 2)}), kLayout), 1);
    a.ExpectFirst(ParseJournal(joined(head, {record(a, 0), record(a, 1), record(a, 1)}), kLayout), 2);
    EXPECT_FALSE(ParseJournal(a.file, kLayout + 1)) << "of another version";
}

// The lock goes with the file that the name leads to, whoever holds the old one.
TEST(Journal, OneRunHoldsIt)
{
    TempFolder folder;
    const std::filesystem::path path = folder / "Journal_1D0000.jnl";
    const JournalRecord first{};
    {
        JournalWriter writer;
        ASSERT_TRUE(writer.Begin(path, kLayout, std::span(&first, 1)));
        EXPECT_FALSE(LockJournal(path, LockFor::look));
        ASSERT_TRUE(writer.Begin(path, kLayout, std::span(&first, 1)));
        EXPECT_FALSE(LockJournal(path, LockFor::take));
    }
    const LockedFile looker = LockJournal(path, LockFor::look);
    EXPECT_TRUE(looker);
    EXPECT_TRUE(LockJournal(path, LockFor::look));
    EXPECT_FALSE(LockJournal(path, LockFor::take));
}

// A disk that is full in the middle of a record: what was there stays readable, and the next one follows it.
TEST(Journal, AnAppendThatFailsLeavesNoHalfRecord)
{
    Sample s;
    JournalWriter writer;
    const JournalRecord first{0, s.payloads[0]};
    ASSERT_TRUE(writer.Begin(s.path(), kLayout, std::span(&first, 1)));
    const std::vector<std::byte> large(100000);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_FALSE(writer.Append(1, large));
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(writer.Append(1, s.payloads[1]));
    s.ExpectFirst(ParseJournal(*ReadWholeFile(s.path()), kLayout), 2);
}

TEST(Checksum, TellsEveryChangedBitAndLength)
{
    std::vector<std::byte> bytes(77, std::byte{3});
    const std::uint64_t sum = Checksum64(bytes);
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        auto changed = bytes;
        changed[bit / 8] ^= static_cast<std::byte>(1U << (bit % 8));
        EXPECT_NE(Checksum64(changed), sum) << bit;
    }
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_NE(Checksum64(std::span(bytes).first(size)), sum) << size;
    EXPECT_NE(Checksum64(std::vector<std::byte>(8)), Checksum64(std::vector<std::byte>(16)));
    EXPECT_NE(Checksum64(bytes, 1), sum);
}

// --- The state that the records hold

/// Places of the members that a list names.
class Places {
public:
    template <class... T>
    void operator()(const T&... members)
    {
        (places_.push_back({reinterpret_cast<const std::byte*>(&members), sizeof(T), alignof(T)}), ...);
    }
    /// Nothing lies between the members but what their alignment asks for; `skipped` may be left out.
    void ExpectWhole(const void* record, std::size_t size, std::size_t skipped = 0)
    {
        std::ranges::sort(places_, {}, &Place::at);
        const std::byte* end = static_cast<const std::byte*>(record);
        std::size_t gaps = 0;
        for (const Place& place : places_) {
            const auto used = static_cast<std::size_t>(end - static_cast<const std::byte*>(record));
            const std::size_t aligned = (used + place.alignment - 1) / place.alignment * place.alignment;
            gaps += static_cast<std::size_t>(place.at - static_cast<const std::byte*>(record)) - aligned;
            end = place.at + place.size;
        }
        EXPECT_EQ(gaps, skipped);
        EXPECT_LT(size - static_cast<std::size_t>(end - static_cast<const std::byte*>(record)), 8U);
    }

private:
    struct Place {
        const std::byte* at;
        std::size_t size, alignment;
    };
    std::vector<Place> places_;
};

// A member that is added to a record and not to its list would be lost in a crash.
TEST(StateImage, TheListsNameEveryMember)
{
    const auto expect = [](const auto& record, std::size_t skipped = 0) {
        Places places;
        EachMember(places, record);
        places.ExpectWhole(&record, sizeof record, skipped);
    };
    expect(ParamBlock{});
    expect(PeakEntry{});
    expect(IntegralEntry{});
    expect(MultiViewEntry{});
    expect(FontRec{});
    const auto set = std::make_unique<DataSet>();
    expect(*set, sizeof(SpecBuffer));
}

struct Filled {
    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    GlobalBlock& g = *block;
    explicit Filled(unsigned seed)
    {
        std::mt19937 random(seed);
        NumberSlots(g);
        for (const std::int16_t slot : {std::int16_t{0}, std::int16_t{7}}) {
            DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
            set.RowCount = 2;
            EXPECT_TRUE(AllocateSpecBuffer(g, 32, slot));
            set.par.POINT = 32;
            set.par.SMODE = 1;
            set.par.OBFRQ0PPM = 400;
            set.par.COMNT = std::string("a\0b", 3);
            set.HistoryA = {"x", ""};
            set.Peaks.resize(random() % 4);
            set.MultiViews.resize(2);
            set.MultiViews[1].Labels[3] = "Hz";
            set.Carried.push_back({"## PICTURE-0", 12, Bytes(9, std::byte{7})});
            set.vendor.window = VendorWindow{};
            set.vendor.window->trapezoid_percent = {1, 2, 3, 4};
            for (double& ppm : set.spec.XAxis) ppm = static_cast<double>(random());
            for (float& value : set.spec.DataRe.all()) value = static_cast<float>(random());
        }
        g.BasePoints = {{3, 1.5F}};
        g.RowPhase0 = {1, 2};
        g.settings.grid_width = 3;
    }
};

TEST(StateImage, ASlotComesBackToTheBitAndNothingElseIsTaken)
{
    const Filled a(1);
    const StateImage image = TakeWholeImage(a.g);
    const auto b = std::make_unique<GlobalBlock>();
    for (const std::int16_t slot : {std::int16_t{0}, std::int16_t{7}}) {
        DataSet& set = b->Slots[static_cast<std::size_t>(slot)];
        ASSERT_TRUE(PutSlot(image, slot, set));
        set.spec.DataRe = a.g.Slots[static_cast<std::size_t>(slot)].spec.DataRe;
        set.spec.DataIm = a.g.Slots[static_cast<std::size_t>(slot)].spec.DataIm;
        set.spec.AllocatedPoints = 32;
    }
    ASSERT_TRUE(PutGlobals(image, *b));
    EXPECT_EQ(TakeWholeImage(*b), image);
    EXPECT_EQ(ChecksumOf(TakeWholeImage(*b)), ChecksumOf(image));
    EXPECT_NE(ChecksumOf(TakeWholeImage(Filled(2).g)), ChecksumOf(image));

    for (const auto& [key, bytes] : image) {
        if (key.section == Section::points) continue;
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            StateImage cut = image;
            cut[key].resize(size);
            DataSet set;
            EXPECT_FALSE(key.slot < 0 ? PutGlobals(cut, *b) : PutSlot(cut, key.slot, set)) << size;
        }
    }
}

// An axis that follows from the parameters is told in a few bytes, any other value by value, both exactly.
TEST(StateImage, TheAxisIsExactEitherWay)
{
    Filled f(3);
    DataSet& set = f.g.Slots[0];
    set.par.FREQU = 8000.7F;
    set.par.SMTMS = 11;
    set.par.RefX = 0.3F;
    const double step = static_cast<double>(set.par.FREQU) / set.par.POINT / set.par.OBFRQ0PPM;
    for (std::size_t i = 0; i < 32; ++i)
        set.spec.XAxis[i] = (static_cast<double>(i) - 11) * step + static_cast<double>(0.3F);
    const std::size_t told = AxisImage(set).size();
    EXPECT_LT(told, 32 * sizeof(double));
    const auto comes_back = [&] {
        DataSet back;
        return PutSlot(TakeWholeImage(f.g), 0, back) && back.spec.XAxis == set.spec.XAxis;
    };
    EXPECT_TRUE(comes_back());
    const std::uint64_t glance = GlanceAxis(set);
    for (double& ppm : set.spec.XAxis) ppm += 0.1;
    EXPECT_NE(GlanceAxis(set), glance);
    EXPECT_TRUE(comes_back());
    EXPECT_GT(AxisImage(set).size(), told);
}

} // namespace
} // namespace nmr
