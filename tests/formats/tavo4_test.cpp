#include "core/file_layer.h"
#include "formats/detect.h"
#include "formats/tavo4_rows.h"
#include "formats/tavo4_sections.h"
#include "formats/tavo4_text.h"
#include "support/files.h"
#include "support/scripted_asker.h"

#include <cmath>
#include <functional>

namespace nmr::test {
namespace {

using tavo4::BlockEntry;

constexpr std::size_t kBlock = 1328;
constexpr std::size_t kParameters = kBlock + 768;

Status Decode(GlobalBlock& g, const FileBytes& file, std::int16_t slot = 0)
{
    ScriptedAsker asker;
    return DecodeTavo4(g, asker, file, slot);
}

/// Bytes of a page section: a count and words of its own.
CarriedSection Page(std::string_view label, std::int64_t address, std::size_t size)
{
    CarriedSection section{std::string(label), address, FileBytes(size)};
    for (std::size_t i = 16; i < size; ++i) section.Bytes[i] = static_cast<std::byte>(i * 7 + label.size());
    return section;
}

TEST(Tavo4, SaveReadSaveGivesTheSameBytes)
{
    auto g = NewBlock();
    FillSet(*g, 0);
    FillSet(*g, 1, 5, 1).par.COMNT = "another";
    FillSet(*g, 19, 3, 128);
    FillSet(*g, 20, 1, 1);
    g->Slots[0].Carried = {Page("## PRINTSET 1D", 5000, 1328), Page("## STRUCTURE", 9000, 77),
                           Page("## X-AXIS LABEL", 7000, 528)};
    const FileBytes first = Encoded(*g);
    auto other = NewBlock();
    ASSERT_TRUE(Decode(*other, first));
    for (const std::size_t used : {0, 1, 19, 20}) EXPECT_EQ(other->Slots[used].par.DataFromFile, 1) << used;
    EXPECT_TRUE(IsEmpty(other->Slots[2]));
    const FileBytes second = Encoded(*other);
    EXPECT_TRUE(first == second);
    // What a read brings besides the cells.
    const DataSet& set = other->Slots[0];
    EXPECT_EQ(set.par.COMNT, g->Slots[0].par.COMNT);
    EXPECT_EQ(set.par.DateSerial, 45365); // 14 March 2024
    EXPECT_NEAR(set.par.TimeOfDay, (15 * 3600 + 9 * 60 + 26) / 86400.0, 1e-6);
    EXPECT_EQ(set.Peaks[1].Point, 16777216);
    EXPECT_EQ(set.Integrals[0].EndPoint, 16777215);
    EXPECT_EQ(set.spec.XAxis, g->Slots[0].spec.XAxis);
    EXPECT_TRUE(std::ranges::equal(set.spec.SourceRe.all(), set.spec.DataRe.all()));
    EXPECT_TRUE(std::ranges::equal(set.spec.DataIm[1].first(8), g->Slots[0].spec.DataIm[1].first(8)));
}

/// Every member that has a place in the file, and what the lists hold besides.
void ExpectSameFields(DataSet& got, DataSet& wanted)
{
    ASSERT_TRUE(got.Integrals.size() == wanted.Integrals.size() && got.Peaks.size() == wanted.Peaks.size() &&
                got.MultiViews.size() == wanted.MultiViews.size() && got.SimPeaks.size() == wanted.SimPeaks.size() &&
                got.HistoryA.size() == wanted.HistoryA.size() && got.Carried.size() == wanted.Carried.size());
    const std::vector<Row> left = Rows(got), right = Rows(wanted);
    for (std::size_t n = 0; n < left.size(); ++n) {
        SCOPED_TRACE(testing::Message() << left[n].entry << " + " << left[n].at);
        std::visit(
            [&](const auto* member) {
                EXPECT_EQ(*member,
                          *std::get<std::remove_const_t<std::remove_pointer_t<decltype(member)>>*>(right[n].member));
            },
            left[n].member);
    }
    for (const auto text : {&ParamBlock::COMNT, &ParamBlock::DATIM, &ParamBlock::OrgFile})
        EXPECT_EQ(got.par.*text, wanted.par.*text);
    EXPECT_EQ(got.CommentRtf, wanted.CommentRtf);
    EXPECT_EQ(got.HistoryA, wanted.HistoryA);
    EXPECT_EQ(got.HistoryB, wanted.HistoryB);
    EXPECT_EQ(got.RowCount, wanted.RowCount);
    for (std::size_t i = 0; i < got.Peaks.size(); ++i) EXPECT_EQ(got.Peaks[i].Point, wanted.Peaks[i].Point);
    for (std::size_t i = 0; i < got.Integrals.size(); ++i)
        EXPECT_EQ(got.Integrals[i].EndPoint, wanted.Integrals[i].EndPoint);
    for (std::size_t i = 0; i < got.Carried.size(); ++i) // the label is laid anew
        EXPECT_TRUE(std::ranges::equal(ByteSpan(got.Carried[i].Bytes).subspan(16),
                                       ByteSpan(wanted.Carried[i].Bytes).subspan(16)));
    const auto points = static_cast<std::size_t>(wanted.par.POINT);
    EXPECT_TRUE(
        std::equal(got.spec.XAxis.begin(), got.spec.XAxis.begin() + wanted.par.POINT, wanted.spec.XAxis.begin()));
    for (std::size_t row = 0; row < static_cast<std::size_t>(wanted.RowCount); ++row) {
        EXPECT_TRUE(std::ranges::equal(got.spec.DataRe[row].first(points), wanted.spec.DataRe[row].first(points)));
        EXPECT_TRUE(std::ranges::equal(got.spec.DataIm[row].first(points), wanted.spec.DataIm[row].first(points)));
    }
}

TEST(Tavo4, EveryFieldComesBackFromTwoSaves)
{
    auto g = NewBlock();
    for (const auto slot : {std::int16_t{0}, std::int16_t{7}, std::int16_t{20}}) {
        DataSet& set = FillSet(*g, slot);
        FillUnique(set);
        set.par.WindowFunc = 3;
    }
    g->Slots[0].Carried = {Page("## PRINTSET 1D", 5000, 1328), Page("## SIM PRINTSET", 8000, 400),
                           Page("## STRUCTURE", 9000, 77)};
    GlobalBlock& first = *g;
    auto second = NewBlock(), third = NewBlock();
    const FileBytes file = Encoded(first);
    ASSERT_TRUE(Decode(*second, file));
    const FileBytes again = Encoded(*second);
    EXPECT_TRUE(file == again);
    ASSERT_TRUE(Decode(*third, again));
    for (const auto& read : {&second, &third})
        for (const std::size_t slot : {0U, 7U, 20U}) {
            SCOPED_TRACE(slot);
            // Labels of the page are the set's own, so they are carried once they are in a file.
            std::erase_if((*read)->Slots[0].Carried, [](const CarriedSection& section) {
                return section.Label.find("LABEL") != std::string::npos || section.Label == "## HISTORY";
            });
            ExpectSameFields((*read)->Slots[slot], first.Slots[slot]);
        }
}

TEST(Tavo4, AnEmptyRecordKeepsItsDefaultsThroughAFile)
{
    auto g = NewBlock();
    FillPoints(*g, 0, 8);
    const FileBytes first = Encoded(*g);
    auto other = NewBlock();
    ASSERT_TRUE(Decode(*other, first));
    const DataSet& set = other->Slots[0];
    EXPECT_EQ(set.XLabelPpm, g->settings.xlabel);
    EXPECT_EQ(set.par.IRNUC, "NUL");
    EXPECT_EQ(set.par.CTEMP, kNoTemperature);
    EXPECT_EQ(set.par.PeakDigits, 2);
    EXPECT_TRUE(set.SimPeaks.empty() && set.Peaks.empty() && set.MultiViews.empty() && set.par.COMNT.empty());
    EXPECT_TRUE(first == Encoded(*other));
}

// Arrays that have the right size already are not cleared before they are filled.
TEST(Tavo4, AReadLeavesNothingOfTheDataBefore)
{
    auto g = NewBlock();
    FillPoints(*g, 0, 8, 2);
    const FileBytes file = Encoded(*g);
    for (const std::int32_t points : {8, 16}) {
        SCOPED_TRACE(points);
        auto fresh = NewBlock(), used = NewBlock();
        SpecBuffer& spec = FillPoints(*used, 0, points, 2).spec;
        for (RowArray<float>* array : {&spec.DataRe, &spec.DataIm, &spec.SourceRe, &spec.SourceIm})
            std::ranges::fill(array->all(), 7.0F);
        std::ranges::fill(spec.XAxis, 7.0);
        ASSERT_TRUE(Decode(*fresh, file) && Decode(*used, file));
        const SpecBuffer& wanted = fresh->Slots[0].spec;
        EXPECT_EQ(spec.XAxis, wanted.XAxis);
        for (const auto member :
             {&SpecBuffer::DataRe, &SpecBuffer::DataIm, &SpecBuffer::SourceRe, &SpecBuffer::SourceIm})
            EXPECT_TRUE(std::ranges::equal((spec.*member).all(), (wanted.*member).all()));
    }
}

TEST(Tavo4, ASlotAboveZeroIsSavedAloneAndReadIntoAnother)
{
    auto g = NewBlock();
    FillSet(*g, 0);
    FillSet(*g, 5, 6, 1);
    g->Slots[0].Carried = {Page("## PRINTSET 1D", 5000, 1328)};
    const FileBytes file = Encoded(*g, 5);
    EXPECT_EQ(Long(file, BlockEntry(5)), 0);
    for (std::size_t entry = 692; entry < 832; entry += 8) EXPECT_EQ(Long(file, entry), 0) << entry << ": labels only";
    FindLabel(file, "## PRINTSET 1D");
    auto other = NewBlock();
    FillPoints(*other, 0, 4);
    ASSERT_TRUE(Decode(*other, file, 7));
    EXPECT_EQ(other->Slots[7].par.POINT, 6);
    EXPECT_EQ(other->Slots[7].par.SlotNumber, 7);
    EXPECT_EQ(other->Slots[0].par.POINT, 4) << "untouched";
}

struct RepairCase {
    const char* name;
    std::function<void(GlobalBlock&)> spoil;
    std::function<void(const DataSet&)> expect;
};

TEST(Tavo4, DriftedFieldsAreRepairedInTheRecord)
{
    const RepairCase cases[] = {
        {"start of the axis", [](GlobalBlock& g) { g.Slots[0].par.PhaseWord1 = 77; },
         [](const DataSet& set) { EXPECT_EQ(set.par.PhaseWord1, -1.5F); }},
        {"centre from slot 0, 0 ppm from the centre",
         [](GlobalBlock& g) { g.Slots[1].par.ObsCenter = g.Slots[1].par.OBFRQ0PPM = 0; }, [](const DataSet&) {}},
        {"width 2 % off", [](GlobalBlock& g) { g.Slots[0].par.FREQU = 87.5F * 1.02F; },
         [](const DataSet& set) { EXPECT_EQ(set.par.FREQU, 87.5F); }},
        {"width half a per cent off", [](GlobalBlock& g) { g.Slots[0].par.FREQU = 87.9F; },
         [](const DataSet& set) { EXPECT_EQ(set.par.FREQU, 87.9F); }},
        {"resolution", [](GlobalBlock& g) { g.Slots[0].par.RESOL = 1.0; },
         [](const DataSet& set) { EXPECT_EQ(set.par.RESOL, 87.5 / 8); }},
        {"rows", [](GlobalBlock& g) { g.Slots[0].RowCount = 0; },
         [](const DataSet& set) {
             EXPECT_EQ(set.RowCount, 1);
             EXPECT_EQ(set.par.RowCountCopy, 1);
         }},
        {"step of several rows", [](GlobalBlock& g) { g.Slots[0].par.Resolution2 = 5; },
         [](const DataSet& set) { EXPECT_EQ(set.par.Resolution2, 0.03125); }},
        {"step of a single row is left",
         [](GlobalBlock& g) {
             g.Slots[0].par.Resolution2 = 5;
             g.Slots[0].RowCount = 1;
         },
         [](const DataSet& set) { EXPECT_EQ(set.par.Resolution2, 5); }},
    };
    for (const RepairCase& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = NewBlock();
        FillPoints(*g, 0, 8, 2);
        FillPoints(*g, 1, 8);
        c.spoil(*g);
        Encoded(*g);
        c.expect(g->Slots[0]);
        EXPECT_EQ(g->Slots[1].par.ObsCenter, 400.002);
        EXPECT_GE(g->Slots[1].par.OBFRQ0PPM, 400.0);
    }
}

TEST(Tavo4, AnAxisThatAFloatCanNotStartIsStableFromTheFirstReadOn)
{
    auto g = NewBlock();
    DataSet& set = FillPoints(*g, 0, 1000, 3);
    for (std::size_t i = 0; i < 1000; ++i) set.spec.XAxis[i] = 0.1 + 12.3 * static_cast<double>(i) / 999;
    auto second = NewBlock(), third = NewBlock();
    ASSERT_TRUE(Decode(*second, Encoded(*g)));
    const FileBytes file = Encoded(*second);
    ASSERT_TRUE(Decode(*third, file));
    EXPECT_TRUE(file == Encoded(*third));
    EXPECT_NEAR(third->Slots[0].spec.XAxis[999], 12.4, 1e-6);
}

TEST(Tavo4, ReadersRules)
{
    struct Case {
        const char* name;
        std::function<void(FileBytes&)> change;
        std::function<void(const DataSet&)> expect; ///< nullptr: the block is no good
    };
    const auto put_double = [](FileBytes& file, std::size_t at, double value) {
        tavo4::Store(tavo4::MutableBytes(file).subspan(at), value);
    };
    const auto put_float = [](FileBytes& file, std::size_t at, float value) {
        tavo4::Store(tavo4::MutableBytes(file).subspan(at), value);
    };
    const auto read = [](const DataSet& set) { EXPECT_EQ(set.par.POINT, 8); };
    const Case cases[] = {
        {"nothing changed", [](FileBytes&) {}, read},
        {"temperature limits of 0 were replaced", [](FileBytes&) {},
         [](const DataSet& set) {
             EXPECT_EQ(set.par.TempLimit1, 10.6F);
             EXPECT_EQ(set.par.TempLimit2, 10.6F);
             EXPECT_EQ(set.par.RGAIN, -1);
         }},
        {"section beyond the end of the file",
         [](FileBytes& file) { PutLong(file, kBlock + 76, static_cast<std::int32_t>(file.size())); },
         [](const DataSet& set) {
             EXPECT_TRUE(set.Peaks.empty());
             EXPECT_EQ(set.Integrals.size(), 2U) << "nothing else is dropped";
         }},
        {"more peaks than the section holds",
         [](FileBytes& file) { PutLong(file, static_cast<std::size_t>(Long(file, kBlock + 72)) + 16, 0x7FFFFFFF); },
         [](const DataSet& set) { EXPECT_EQ(set.Peaks.size(), 2U); }},
        {"negative count",
         [](FileBytes& file) { PutLong(file, static_cast<std::size_t>(Long(file, kBlock + 64)) + 16, -1); },
         [](const DataSet& set) { EXPECT_TRUE(set.Integrals.empty()); }},
        {"fit whose count is out of range",
         [](FileBytes& file) { PutLong(file, static_cast<std::size_t>(Long(file, kBlock + 88)) + 20, 9); },
         [](const DataSet& set) { EXPECT_EQ(set.SimPeaks.size(), 2U); }},
        {"array description that ends before its heading",
         [](FileBytes& file) { PutLong(file, kBlock + 108, 112 + 16); },
         [](const DataSet& set) {
             EXPECT_EQ(set.RowValueB[1], 11.0F);
             EXPECT_EQ(set.RowHeading, "");
         }},
        {"array description cut off", [](FileBytes& file) { PutLong(file, kBlock + 108, 40); },
         [](const DataSet& set) { EXPECT_EQ(set.RowCount, 2) << "the parameters tell it too"; }},
        {"rows told by the array description alone", [](FileBytes& file) { PutLong(file, kParameters + 1240, 0); },
         [](const DataSet& set) { EXPECT_EQ(set.RowCount, 2); }},
        {"no plain comment", [](FileBytes& file) { PutLong(file, kBlock + 60, 0); },
         [](const DataSet& set) { EXPECT_EQ(set.par.COMNT, "rich"); }},
        {"no file name", [](FileBytes& file) { PutLong(file, kBlock + 132, 0); },
         [](const DataSet& set) { EXPECT_EQ(set.par.FileName, "/data/raw/1/fid"); }},
        {"old form of sample and labels only",
         [](FileBytes& file) {
             PutLong(file, kBlock + 196, 0);
             PutLong(file, kBlock + 188, 0);
         },
         [](const DataSet& set) {
             EXPECT_EQ(set.par.SampleId, "S-1 CDCl3");
             EXPECT_EQ(set.XLabelPpm, "ppm");
         }},
        {"span shares its upper half", [](FileBytes&) {},
         [](const DataSet& set) {
             const auto upper = std::bit_cast<std::uint32_t>(set.par.DispLeft);
             EXPECT_EQ(set.par.Span2, std::uint64_t{upper} << 32 | 0x12345678U);
         }},
        {"no resolution", [=](FileBytes& file) { put_double(file, kParameters + 1144, 0.0); },
         [](const DataSet& set) { EXPECT_EQ(set.par.RESOL, 0.03125 * 400.0); }},
        {"no step: the axis comes from width and reference",
         [=](FileBytes& file) {
             put_double(file, kParameters + 1288, 0.0);
             PutLong(file, kParameters + 1152, 2);
             put_float(file, kParameters + 1156, 7.5F);
         },
         [](const DataSet& set) {
             const double step_ppm = 87.5 / 400.0 / 8;
             EXPECT_DOUBLE_EQ(set.spec.XAxis[2], 7.5);
             EXPECT_DOUBLE_EQ(set.spec.XAxis[7], 7.5 + 5 * step_ppm);
             EXPECT_DOUBLE_EQ(set.par.Resolution2, step_ppm);
         }},
        {"a first position that a float rounds to -0",
         [=](FileBytes& file) {
             put_double(file, kParameters + 1288, 0.0);
             put_double(file, kParameters + 1208, 1e10);
             put_float(file, kParameters + 1140, 1e-38F);
             PutLong(file, kParameters + 1152, 1);
             put_float(file, kParameters + 1156, 0.0F);
         },
         [](const DataSet& set) { EXPECT_LT(set.spec.XAxis[0], 0.0); }},
        {"a resolution of -0",
         [=](FileBytes& file) {
             put_double(file, kParameters + 1288, -1e-79);
             put_double(file, kParameters + 1208, 0.0);
             put_double(file, kParameters + 1200, 0.0);
             put_float(file, kParameters + 1140, 0.0F);
             PutLong(file, kParameters + 1240, 1);
         },
         [](const DataSet& set) { EXPECT_EQ(set.par.OBFRQ0PPM, 0.0); }},
        {"no label of the ppm axis",
         [](FileBytes& file) {
             for (const std::size_t entry : {160U, 184U})
                 std::fill_n(file.begin() + Long(file, kBlock + entry) + 16, 64, std::byte{0});
         },
         [](const DataSet& set) { EXPECT_EQ(set.XLabelHz, "Hz") << "the others stay"; }},
        {"labels that end behind the second", [](FileBytes& file) { PutLong(file, kBlock + 188, 16 + 64 + 64); },
         [](const DataSet& set) { EXPECT_EQ(set.XLabelHz, "Hz"); }},
        {"a point that is no number",
         [=](FileBytes& file) {
             put_float(file, static_cast<std::size_t>(Long(file, kBlock + 48)) + 16, std::nanf(""));
         },
         [](const DataSet& set) {
             EXPECT_EQ(set.spec.DataRe[0][0], 0.0F);
             EXPECT_EQ(set.Warnings.size(), 1U);
         }},
        {"words out of range",
         [](FileBytes& file) {
             const auto print = static_cast<std::size_t>(Long(file, kBlock + 96));
             PutLong(file, print + 100, 30000);
             PutLong(file, print + 104, 9);
         },
         [](const DataSet& set) {
             EXPECT_EQ(set.par.FIDShift, 7);
             EXPECT_EQ(set.par.WindowFunc, 0);
         }},
        {"neither step nor frequency",
         [=](FileBytes& file) {
             put_double(file, kParameters + 1288, 0.0);
             put_double(file, kParameters + 1208, 0.0);
         },
         nullptr},
        {"first position that no float holds",
         [=](FileBytes& file) {
             put_double(file, kParameters + 1288, 0.0);
             put_double(file, kParameters + 1208, 5e-315);
             PutLong(file, kParameters + 1152, 1077067776);
         },
         nullptr},
        {"infinite step", [=](FileBytes& file) { put_double(file, kParameters + 1288, HUGE_VAL); }, nullptr},
        {"no points", [](FileBytes& file) { PutLong(file, kBlock + 52, 0); }, nullptr},
        {"no parameters", [](FileBytes& file) { PutLong(file, kBlock + 44, 0); }, nullptr},
        {"a point more than there is", [](FileBytes& file) { PutLong(file, kParameters + 1136, 9); }, nullptr},
        {"a row more than there is", [](FileBytes& file) { PutLong(file, kParameters + 1240, 3); }, nullptr},
        {"POINT negative", [](FileBytes& file) { PutLong(file, kParameters + 1136, -8); }, nullptr},
        {"POINT beyond the limit", [](FileBytes& file) { PutLong(file, kParameters + 1136, 1048577); }, nullptr},
        {"another kind of block", [](FileBytes& file) { file[kBlock] = std::byte{'2'}; }, nullptr},
    };
    auto g = NewBlock();
    DataSet& full = FillSet(*g, 0);
    full.par.TempLimit1 = 0;
    full.par.TempLimit2 = -1;
    full.par.RGAIN = 40000;
    full.par.Span2 = 0xFFFFFFFF12345678U;
    full.par.DispLeft = 1234.5F;
    const FileBytes good = Encoded(*g);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FileBytes file = good;
        c.change(file);
        auto other = NewBlock();
        ScriptedAsker asker;
        const Status status = DecodeTavo4(*other, asker, file, 0);
        EXPECT_EQ(static_cast<bool>(status), c.expect != nullptr);
        if (c.expect) {
            c.expect(other->Slots[0]);
            const FileBytes saved = Encoded(*other);
            auto again = NewBlock();
            EXPECT_TRUE(Decode(*again, saved));
            EXPECT_TRUE(saved == Encoded(*again)) << "what was read is stable";
            continue;
        }
        EXPECT_TRUE(IsEmpty(other->Slots[0]));
        ASSERT_EQ(asker.boxes.size(), 1U);
        EXPECT_EQ(asker.boxes[0].text, "0th Spectrum Data is invalid\nPress OK to continue.");
    }
}

TEST(Tavo4, StoredLengthsGiveWayToTheDistanceOfTheBlocks)
{
    auto g = NewBlock();
    FillPoints(*g, 0, 8);
    FillPoints(*g, 1, 8);
    FileBytes file = Encoded(*g);
    PutLong(file, BlockEntry(0) + 4, 300); // stored too short, the next block tells better
    PutLong(file, BlockEntry(1) + 4, 0x7FFFFFFF);
    auto other = NewBlock();
    ASSERT_TRUE(Decode(*other, file));
    EXPECT_EQ(other->Slots[1].par.POINT, 8) << "a length beyond the file ends with it";
    // A next block that stands too near is not believed.
    PutLong(file, BlockEntry(0) + 4, Long(file, BlockEntry(1)) - 1328);
    PutLong(file, BlockEntry(1), 1312 + 16 + 256);
    ScriptedAsker asker;
    auto third = NewBlock();
    EXPECT_TRUE(DecodeTavo4(*third, asker, file, 0));
    EXPECT_EQ(third->Slots[0].par.POINT, 8);
    ASSERT_EQ(asker.boxes.size(), 1U);
    EXPECT_EQ(asker.boxes[0].text, "1th Spectrum Data is invalid\nPress OK to continue.");
    EXPECT_TRUE(IsEmpty(third->Slots[1]));
}

TEST(Tavo4, ASpectrumThatIsThereIsOverwrittenOnlyWhenTheUserSaysSo)
{
    auto g = NewBlock();
    for (const auto slot : {std::int16_t{0}, std::int16_t{1}, std::int16_t{3}}) FillPoints(*g, slot, 8);
    const FileBytes file = Encoded(*g);
    auto other = NewBlock();
    for (const auto slot : {std::int16_t{0}, std::int16_t{1}, std::int16_t{3}}) FillPoints(*other, slot, 4);
    ScriptedAsker asker{Button::no, Button::yes};
    ASSERT_TRUE(DecodeTavo4(*other, asker, file, 0));
    ASSERT_EQ(asker.boxes.size(), 2U);
    EXPECT_EQ(asker.boxes[0].text, "Overwrite on existing Data (2)?");
    EXPECT_EQ(asker.boxes[0].title, "Query of Overwrite on the Data");
    EXPECT_EQ(asker.boxes[1].text, "Overwrite on existing Data (4)?");
    EXPECT_EQ(other->Slots[0].par.POINT, 8);
    EXPECT_EQ(other->Slots[1].par.POINT, 4);
    EXPECT_EQ(other->Slots[3].par.POINT, 8);
}

TEST(Tavo4, ForeignFilesAreRefused)
{
    auto g = NewBlock();
    FillPoints(*g, 0, 8);
    const FileBytes good = Encoded(*g);
    struct Case {
        const char* name;
        std::function<void(FileBytes&)> change;
        ErrorCode code;
        std::string text;
    };
    const Case cases[] = {
        {"another version", [](FileBytes& file) { file[14] = std::byte{'2'}; }, ErrorCode::bad_format, "Invalid Data"},
        {"empty", [](FileBytes& file) { file.clear(); }, ErrorCode::bad_format, "Invalid Data"},
        {"shorter than the head", [](FileBytes& file) { file.resize(1295); }, ErrorCode::truncated, ""},
        {"no first block", [](FileBytes& file) { PutLong(file, 520, 0); }, ErrorCode::bad_format, ""},
        {"first block before the file", [](FileBytes& file) { PutLong(file, 520, -16); }, ErrorCode::bad_format, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FileBytes file = good;
        c.change(file);
        ScriptedAsker asker;
        auto other = NewBlock();
        const Status status = DecodeTavo4(*other, asker, file, 0);
        ASSERT_FALSE(status);
        EXPECT_EQ(status.error().code, c.code);
        EXPECT_EQ(status.error().where, "ReadDataTavo4/1DDRW");
        EXPECT_EQ(status.error().user_knows, !c.text.empty());
        ASSERT_EQ(asker.boxes.size(), c.text.empty() ? 0U : 1U);
        if (c.text.empty()) continue;
        EXPECT_EQ(asker.boxes[0].text, c.text);
        EXPECT_TRUE(asker.boxes[0].title.starts_with("Data Error(RDR V4 in DRW"));
    }
}

// The shorter address table of version 4.00 has two sections at other places.
TEST(Tavo4, AFileOfVersion400IsReadAndSavedAs401)
{
    auto g = NewBlock();
    FillSet(*g, 0);
    g->Slots[0].Carried = {Page("## SIM PRINTSET", 5000, 500), Page("## T1Cal SET", 6000, 704),
                           Page("## LINE DATA 2D", 8000, 80), Page("## STRUCTURE", 9000, 60)};
    FileBytes file = Encoded(*g);
    file[14] = std::byte{'0'};
    for (const std::size_t entry : {720U, 712U})
        std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(entry - 8), 8,
                    file.begin() + static_cast<std::ptrdiff_t>(entry));
    PutLong(file, 704, 0x01010101);
    PutLong(file, 728, 0x01010101);
    auto other = NewBlock();
    ASSERT_TRUE(Decode(*other, file));
    const FileBytes saved = Encoded(*other);
    EXPECT_EQ(tavo4::ReadEntry(saved, 704).length, 500);
    EXPECT_EQ(tavo4::ReadEntry(saved, 712).length, 704);
    EXPECT_EQ(tavo4::ReadEntry(saved, 720).length, 0) << "version 4.00 has no lines of a 2D page";
    EXPECT_EQ(tavo4::ReadEntry(saved, 792).length, 60);
    EXPECT_EQ(static_cast<char>(saved[14]), '1');
    const auto section = static_cast<std::size_t>(Long(saved, 712));
    EXPECT_TRUE(std::equal(saved.begin() + static_cast<std::ptrdiff_t>(section) + 16,
                           saved.begin() + static_cast<std::ptrdiff_t>(section) + 704,
                           g->Slots[0].Carried[1].Bytes.begin() + 16));
}

// A page with a text and a picture, and a spectrum in a block beyond the last slot, move when the main
// set grows: the addresses inside them must go on pointing to the same bytes.
TEST(Tavo4, AddressesInsideCarriedSectionsAreMended)
{
    constexpr std::int32_t kTextAt = 100000, kPictureAt = 200000;
    CarriedSection text{"## TEXT DATA-0", kTextAt, FileBytes(200)};
    PutLong(text.Bytes, 16, 2);
    PutLong(text.Bytes, 20, kTextAt + 32);
    PutLong(text.Bytes, 24, 40); // not an address of this section: left alone
    PutLong(text.Bytes, 32 + 32, kTextAt + 112);
    PutLong(text.Bytes, 32 + 36, 4);
    PutLong(text.Bytes, 32 + 40, kTextAt + 116);
    PutLong(text.Bytes, 112, 0x64636261);
    CarriedSection picture{"## PICTURE-0", kPictureAt, FileBytes(120)};
    PutLong(picture.Bytes, 16, 1);
    PutLong(picture.Bytes, 36, kPictureAt + 60);
    PutLong(picture.Bytes, 60, 0x7A797877);

    auto g = NewBlock();
    FillPoints(*g, 0, 8);
    FillPoints(*g, 1, 8).par.COMNT = "beyond";
    g->Slots[0].Carried = {text, picture};
    FileBytes file = Encoded(*g);
    // The second spectrum becomes one beyond the last slot.
    std::copy_n(file.begin() + 528, 8, file.begin() + static_cast<std::ptrdiff_t>(BlockEntry(39)));
    PutLong(file, 528, 0);

    auto other = NewBlock();
    ASSERT_TRUE(Decode(*other, file));
    FillPoints(*other, 5, 300);
    const FileBytes saved = Encoded(*other);
    const auto at = [&](std::size_t place) { return static_cast<std::size_t>(Long(saved, place)); };
    const std::size_t record = at(at(776) + 20);
    EXPECT_EQ(Long(saved, at(record + 32)), 0x64636261);
    EXPECT_EQ(at(record + 40), at(record + 32) + 4);
    EXPECT_EQ(Long(saved, at(776) + 24), 40);
    EXPECT_EQ(Long(saved, at(at(784) + 36)), 0x7A797877);
    EXPECT_GT(at(776), static_cast<std::size_t>(Long(file, 776))) << "the section has moved";

    const std::size_t block = at(BlockEntry(39)) + 16;
    const auto comment = at(block + 56);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(saved.data()) + comment, 10), "%% COMMENT");
    FileBytes alone = saved;
    std::copy_n(saved.begin() + static_cast<std::ptrdiff_t>(BlockEntry(39)), 8, alone.begin() + 520);
    PutLong(alone, BlockEntry(5), 0);
    auto third = NewBlock();
    ASSERT_TRUE(Decode(*third, alone));
    EXPECT_EQ(third->Slots[0].par.COMNT, "beyond");
    EXPECT_EQ(third->Slots[0].spec.DataRe[0][7], 1007.5F);
}

TEST(Tavo4, RichTextOfAnEditedCommentIsDropped)
{
    auto g = NewBlock();
    FillSet(*g, 0).par.COMNT = "edited";
    const FileBytes file = Encoded(*g);
    EXPECT_EQ(Long(file, kBlock + 172), 0);
}

TEST(Tavo4, TextsAreCutBetweenCharacters)
{
    auto g = NewBlock();
    // 17 two-byte characters in a field of 32 bytes, and blanks that a reader would trim.
    std::string wide;
    for (int i = 0; i < 17; ++i) wide += "\xE6\xB0\xB4";
    DataSet& set = FillPoints(*g, 0, 8);
    set.par.Probe = "x" + wide;
    set.par.Instrument = "  ends with blanks  ";
    set.par.PulseProg = "no such letter: \xC3\xB8";
    const FileBytes file = Encoded(*g);
    auto other = NewBlock();
    ASSERT_TRUE(Decode(*other, file));
    EXPECT_EQ(other->Slots[0].par.Probe, "x" + wide.substr(0, 3 * 15));
    EXPECT_EQ(other->Slots[0].par.Instrument, "ends with blanks");
    EXPECT_EQ(other->Slots[0].par.PulseProg, "no such letter: ?");
    EXPECT_TRUE(file == Encoded(*other));
}

TEST(Tavo4, PlainTextOfFormattedText)
{
    struct Case {
        const char* code;
        const char* plain;
    };
    const Case codes[] = {
        {"plain (text)", "plain (text)"},
        {"\\< \\g1 d\\g0 /ppm", "d/ppm"},
        {"\\<CH\\-1 3\\-0 \\cr OH\\>behind", "CH3\r\nOH"},
        {"\\<\\f:Symbol: a\\c:ff00: b\\p:12: c\\\\\\'b0:C\\>", "abc\\\xC2\xB0"
                                                               "C"},
        {"CH\\-(3)(x) \\f:Arial(y)\\(13)z", "CH3(x) y\r\nz"},
        {"\\", "\\"},
        {"\\<\\f:never ends", ""},
    };
    for (const Case& c : codes) EXPECT_EQ(tavo4::PlainFromCode(c.code), c.plain) << c.code;
    const Case rich[] = {
        {"no rich text", "no rich text"},
        {"{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}{\\*\\generator x;}\\fs20 one\\par two \\'8e\\'71\\{\\}}",
         "one\r\ntwo \xE5\xAD\x90{}"},
        {"{\\rtf1 \\", ""},
        {"{\\rtf1 }}}a\\'", "a"},
    };
    for (const Case& c : rich) EXPECT_EQ(tavo4::PlainFromRtf(c.code), c.plain) << c.code;
}

TEST(Tavo4, WhatCanNotBeSavedIsRefusedBeforeAnythingIsWritten)
{
    TempFolder folder;
    auto g = NewBlock();
    const Status empty = WriteDataTavo4(*g, folder / "a.tvo1", 0);
    ASSERT_FALSE(empty);
    EXPECT_EQ(empty.error().code, ErrorCode::bad_value);
    FillPoints(*g, 0, 8).par.POINT = 9;
    EXPECT_FALSE(WriteDataTavo4(*g, folder / "a.tvo1", 0));
    EXPECT_FALSE(WriteDataTavo4(*g, folder / "a.tvo1", 21));
    EXPECT_TRUE(ListFiles(folder.path(), "*").empty());
    FillPoints(*g, 0, 8);
    const Status vanished = WriteDataTavo4(*g, folder / "none/a.tvo1", 0);
    ASSERT_FALSE(vanished);
    EXPECT_EQ(vanished.error().where, "WriteDataTavo4/1DDRW");
    EXPECT_EQ(vanished.error().system_error, ENOENT);
}

TEST(Tavo4, TheFileIsDetectedAndReadByItsFamily)
{
    TempFolder folder;
    ScriptedAsker asker;
    auto g = NewBlock();
    g->nuclides = NuclearTable::BuiltIn();
    FillSet(*g, 0);
    for (const char* name : {"a.tvo1", "b.tvo", "c.tv1", "d.dat"}) {
        SCOPED_TRACE(name);
        const std::string path = folder / name;
        ASSERT_TRUE(WriteDataTavo4(*g, path, 0));
        const FileType type = ReadFileType(path, asker, g->nuclides);
        EXPECT_EQ(type.tag, "TAVO1_V4");
        EXPECT_EQ(type.code, 0x110C);
        const FormatRow* row = FindFormat(FamilyOf(type.code));
        ASSERT_TRUE(row != nullptr && row->read != nullptr && row->writes);
        auto other = NewBlock();
        ASSERT_TRUE(row->read({*other, asker, type, 0}));
        EXPECT_TRUE(Encoded(*other) == Encoded(*g));
    }
}

} // namespace
} // namespace nmr::test
