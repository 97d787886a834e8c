// Number types, layouts, arrays, references and bad input of Varian sets, on sets made here.

#include "formats/varian.h"

#include "formats/reader_fixture.h"
#include "samples/vendor_samples.h"

#include <algorithm>
#include <cmath>

namespace nmr::test {
namespace {

ByteSpan Span(const std::string& text)
{
    return std::as_bytes(std::span(text));
}

/// A read from bytes, without the disk.
struct BytesRead {
    std::unique_ptr<GlobalBlock> g = std::make_unique<GlobalBlock>();
    Status status;

    BytesRead(const std::string& procpar, const std::string& file, VarianUse use = VarianUse::fid)
    {
        g->nuclides = NuclearTable::BuiltIn();
        const auto parameters = VarianParameters::Parse(Span(procpar));
        if (!parameters)
            status = parameters.error();
        else if (Status filled = FillParaVarian(*g, 0, *parameters); !filled)
            status = filled;
        else
            status = (use == VarianUse::fid ? ReadDataVarian : ReadDataVarianProc)(*g, 0, *parameters, Span(file));
    }
    const DataSet& set() const { return g->Slots[0]; }
    bool Warned(std::string_view part) const
    {
        return std::ranges::any_of(set().Warnings,
                                   [&](const std::string& w) { return w.find(part) != std::string::npos; });
    }
};

/// Shift of the line of the sample: an eighth of the width above the carrier at 5 ppm.
constexpr double kLinePpm = 5 + 500.0 / 400;

TEST(Varian, EveryNumberTypeAndLayoutGivesTheSameRows)
{
    struct Case {
        const char* name;
        VarianSample sample;
        double tolerance;
        const char* warning = nullptr;
    };
    const Case cases[] = {
        {"int32", {}, 1e-4},
        {"int16", {.word = VarianWord::i16}, 1e-4},
        {"float32", {.word = VarianWord::f32}, 1e-6},
        {"float32 wins over the integer bit", {.word = VarianWord::f32, .status = 0x4D}, 1e-6},
        {"without the bit of data", {.status = 0x4104}, 1e-4},
        {"16-bit status of 4-byte values", {.status = 0x41}, 1e-4, "read as 32-bit"},
        {"two block heads", {.heads = 2}, 1e-4},
        {"blocks with room behind them", {.padding = 100}, 1e-4},
        {"marked as a spectrum", {.status = 0x47}, 1e-4, "marked as a spectrum"},
    };
    for (Case c : cases) {
        SCOPED_TRACE(c.name);
        c.sample.blocks = 3;
        const BytesRead read(SampleProcpar({{"arraydim", {"3"}}}), VarianFile(c.sample).str());
        ASSERT_TRUE(read.status) << read.status.error().text;
        ASSERT_EQ(read.set().RowCount, 3);
        ASSERT_EQ(read.set().par.POINT, 16);
        EXPECT_TRUE(c.warning == nullptr || read.Warned(c.warning));
        for (int row = 0; row < 3; ++row) {
            const auto value = [&](int i) { return c.sample.value(row, i); };
            double mean_re = 0, mean_im = 0;
            for (int i = 10; i < 16; ++i) { // the last 40 % of 16 points
                mean_re += value(i)[0] / 6;
                mean_im += value(i)[1] / 6;
            }
            for (int i = 0; i < 16; ++i) {
                const auto at = static_cast<std::size_t>(i);
                EXPECT_NEAR(read.set().spec.DataRe[static_cast<std::size_t>(row)][at], (value(i)[0] - mean_re) / 1e4,
                            c.tolerance);
                EXPECT_NEAR(read.set().spec.DataIm[static_cast<std::size_t>(row)][at], (value(i)[1] - mean_im) / 1e4,
                            c.tolerance);
            }
        }
    }
}

TEST(Varian, ParametersGoToTheirFields)
{
    const BytesRead read(SampleProcpar({{"ct", {"6"}, 7},
                                        {"d1", {"1.5"}, 3},
                                        {"temp", {"30"}, 1, false},
                                        {"spin", {"20"}},
                                        {"gain", {"37.6"}},
                                        {"seqfil", {"\"s2pul\""}, 2},
                                        {"pslabel", {"\"PROTON\""}, 2},
                                        {"samplename", {"\"ABC\""}, 2},
                                        {"dfrq", {"100.5"}},
                                        {"operator_", {"\"jo\""}, 2}}),
                         VarianFile().str());
    ASSERT_TRUE(read.status);
    const ParamBlock& par = read.set().par;
    EXPECT_EQ(par.Instrument, "Varian UNITY");
    EXPECT_EQ(par.OBNUC + par.IRNUC + par.PulseProg + par.EXMOD, "1H13Cs2pulPROTON");
    EXPECT_EQ(par.SLVNT + par.SampleName + par.Operator, "cdcl3ABCjo");
    EXPECT_EQ(par.SCANS, 6);
    EXPECT_EQ(par.TIMES, 8);
    EXPECT_EQ(par.PD, 1.5F);
    EXPECT_EQ(par.PW[0], 7.5F);
    EXPECT_EQ(par.RGAIN, 38);
    EXPECT_EQ(par.CSPED, 20);
    EXPECT_EQ(par.CTEMP, kNoTemperature) << "the value is switched off";
    EXPECT_EQ(par.IRFRQ, 100.5F);
    // 6 Jun 2007 is day 39239 of a calendar that begins on 30 Dec 1899.
    EXPECT_EQ(par.DateSerial, 39239);
    EXPECT_NEAR(par.TimeOfDay, (10 * 3600 + 15 * 60 + 30) / 86400.0, 1e-7);
    EXPECT_EQ(par.DATIM, "06/Jun/2007 10:15:30");
    const BytesRead other_day(SampleProcpar({{"date", {"\"Feb 26 93\""}, 2}}), VarianFile().str());
    EXPECT_EQ(other_day.set().par.DATIM, "26/Feb/1993") << "the time belongs to another day";
}

TEST(Varian, References)
{
    struct Case {
        const char* name;
        std::vector<VarianValue> changes;
        double centre_ppm; ///< as (carrier - zero) / zero
        const char* warning = nullptr;
    };
    const Case cases[] = {
        {"reffrq alone", {}, 5},
        {"rfl, which has 0 ppm at the right edge plus 100 Hz", {{"reffrq", {"0"}}, {"rfl", {"100"}}}, 4.75},
        {"rfl and rfp: that line stands at 400 Hz", {{"reffrq", {"0"}}, {"rfl", {"500"}}, {"rfp", {"400"}}}, 4.75},
        {"both agree", {{"reffrq", {"400.000102"}}, {"rfl", {"102"}}}, 4.745},
        {"both differ", {{"rfl", {"100"}}}, 4.75, "100.0 Hz apart"},
        {"none", {{"reffrq", {"0"}}}, 0, "no reference"},
        {"one of another nucleus", {{"reffrq", {"100"}}}, 0, "no reference"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const BytesRead read(SampleProcpar(c.changes), VarianFile().str());
        ASSERT_TRUE(read.status);
        const double zero = read.set().par.FileRefMHz > 0 ? read.set().par.FileRefMHz : read.set().par.ObsCenter;
        EXPECT_NEAR((read.set().par.ObsCenter - zero) / zero * 1e6, c.centre_ppm, 2e-5);
        EXPECT_EQ(read.set().Warnings.size(), c.warning == nullptr ? 0U : 1U);
        EXPECT_TRUE(c.warning == nullptr || read.Warned(c.warning));
    }
    const BytesRead read(SampleProcpar(), VarianFile({.points = 32}).str());
    EXPECT_NEAR(StrongestLine(read.set(), 0, FidSense::as_transformed).first, kLinePpm, 4000.0 / 64 / 400);
}

TEST(Varian, ShiftsBeforeTheTransform)
{
    const std::pair<VarianValue, int> cases[] = {
        {{"lsfid", {"3"}, 7}, 3},   {{"lsfid", {"3"}, 7, false}, 0}, {{"lsfid", {"-2"}, 7}, 0},
        {{"lsfid", {"900"}, 7}, 0}, {{"lsfid", {"0"}, 7}, 0},
    };
    for (const auto& [value, shift] : cases) {
        const BytesRead read(SampleProcpar({value}), VarianFile().str());
        EXPECT_EQ(read.set().par.FIDShift, shift) << value.values[0];
        EXPECT_EQ(read.Warned("lsfid"), value.values[0] == "-2");
    }
}

TEST(Varian, NamesInTheArrayText)
{
    using Levels = std::vector<std::vector<std::string>>;
    const std::pair<const char*, Levels> cases[] = {
        {"", {}},
        {"d2", {{"d2"}}},
        {"d2,pw", {{"d2"}, {"pw"}}},
        {"(sw,d1)", {{"sw", "d1"}}},
        {" (sw , d1),pw,(a,b)", {{"sw", "d1"}, {"pw"}, {"a", "b"}}},
        {"((,)),", {}},
        {"(open", {{"open"}}},
    };
    for (const auto& [text, levels] : cases) EXPECT_EQ(ParseVarianArray(text), levels) << text;
}

TEST(Varian, RowValues)
{
    struct Case {
        const char* name;
        std::vector<VarianValue> changes;
        std::vector<float> a, b;
        const char* label;
        const char* warning = nullptr;
    };
    const VarianValue d2{"d2", {"0.1", "0.2", "0.5"}, 3}, pw{"pw", {"5", "10"}, 6};
    const Case cases[] = {
        {"delays",
         {{"array", {"\"d2\""}, 2}, {"d2", {"1", "2", "3", "4", "5", "6"}, 3}},
         {1, 2, 3, 4, 5, 6},
         {0, 0, 0, 0, 0, 0},
         "d2 s t(s)"},
        {"the last name varies fastest",
         {{"array", {"\"d2,pw\""}, 2}, d2, pw},
         {0.1F, 0.1F, 0.2F, 0.2F, 0.5F, 0.5F},
         {5, 10, 5, 10, 5, 10},
         "d2 s t(s)"},
        {"names that step together",
         {{"array", {"\"(p1,d2)\""}, 2},
          {"p1", {"1", "2", "3", "4", "5", "6"}, 6},
          {"d2", {"6", "5", "4", "3", "2", "1"}, 3}},
         {1, 2, 3, 4, 5, 6},
         {6, 5, 4, 3, 2, 1},
         "p1 us p1(us)"},
        {"fewer values than rows",
         {{"array", {"\"d2\""}, 2}, d2},
         {0.1F, 0.2F, 0.5F, 0.1F, 0.2F, 0.5F},
         {},
         "d2 s t(s)",
         "3 values for 6 rows"},
        {"words",
         {{"array", {"\"dm\""}, 2}, {"dm", {"\"y\"", "\"n\"", "\"y\"", "\"n\"", "\"y\"", "\"n\""}, 4}},
         {1, 2, 3, 4, 5, 6},
         {},
         "dm  dm",
         "words"},
        {"a name without values",
         {{"array", {"\"gone\""}, 2}},
         {1, 2, 3, 4, 5, 6},
         {},
         "No.  No.",
         "\"gone\" are missing"},
        {"no name", {}, {1, 2, 3, 4, 5, 6}, {}, "No.  No.", "No arrayed parameter"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const BytesRead read(SampleProcpar(c.changes), VarianFile({.blocks = 6}).str());
        ASSERT_TRUE(read.status);
        const DataSet& set = read.set();
        ASSERT_EQ(set.RowCount, 6);
        EXPECT_TRUE(std::equal(c.a.begin(), c.a.end(), set.RowValueA.begin()));
        EXPECT_TRUE(std::equal(c.b.begin(), c.b.end(), set.RowValueB.begin()));
        EXPECT_EQ(set.RowParamName + " " + set.RowParamUnit + " " + set.RowHeading, c.label);
        EXPECT_TRUE(c.warning == nullptr ? set.Warnings.empty() : read.Warned(c.warning));
    }
}

TEST(Varian, SpectraRunFromHighToLowPpm)
{
    struct Case {
        const char* name;
        bool complex;
        int status;
    };
    for (const Case& c : {Case{"data", true, 0x1B}, Case{"phasefile", false, 0x0B}}) {
        SCOPED_TRACE(c.name);
        VarianSample sample{.word = VarianWord::f32, .points = 32, .status = c.status, .complex = c.complex};
        sample.value = [](int, int i) { return std::array<double, 2>{i == 8 ? 50.0 : 1.0, 2.0}; };
        const TempFolder folder;
        WriteText(folder / "procpar", SampleProcpar({{"reffrq", {"400.001"}}}));
        WriteText(folder / "curpar", SampleProcpar({{"rp", {"30"}}}));
        WriteText(folder / "data", VarianFile(sample).str());
        WriteText(folder / c.name, VarianFile(sample).str());
        const AnyRead read(folder / c.name);
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_EQ(read.type.code, 0x1106);
        const DataSet& set = read.set();
        ASSERT_EQ(set.par.POINT, 32);
        EXPECT_EQ(set.par.SMODE, 1);
        // 4000 Hz around 2000 Hz: the left edge at 10 ppm, point 8 a quarter of the width below it.
        EXPECT_NEAR(set.spec.XAxis[0], 10, 1e-6);
        EXPECT_NEAR(set.spec.XAxis[8], 7.5, 1e-6);
        EXPECT_NEAR(set.par.Resolution2, -10.0 / 32, 1e-9);
        EXPECT_EQ(set.spec.DataRe[0][8], 50);
        EXPECT_EQ(set.spec.DataIm[0][0], c.complex ? 2 : 0);
        EXPECT_EQ(read.Warned("before phasing"), c.complex);
        EXPECT_EQ(read.Warned("no imaginary part"), !c.complex);
        EXPECT_GE(set.par.DispLeft, 50);
    }
}

TEST(Varian, ParameterFilesAreFoundNextToTheDataOrAbove)
{
    struct Case {
        std::vector<const char*> files;
        const char* fid;
        const char* spectrum;
    };
    const Case cases[] = {
        {{"exp/procpar", "exp/curpar", "procpar", "curpar"}, "exp/procpar", "exp/curpar"},
        {{"exp/procpar", "curpar"}, "exp/procpar", "curpar"},
        {{"exp/curpar"}, "exp/curpar", "exp/curpar"},
        {{"procpar"}, "procpar", "procpar"},
        {{}, "", ""},
    };
    for (const Case& c : cases) {
        const TempFolder folder;
        std::filesystem::create_directories(folder / "exp");
        for (const char* file : c.files) WriteText(folder / file, "x");
        const auto expected = [&](const std::string& name) { return name.empty() ? name : folder / name; };
        const auto found = [&](VarianUse use) {
            return std::filesystem::path(FindVarianParameters(folder / "exp", use)).lexically_normal().string();
        };
        EXPECT_EQ(found(VarianUse::fid), expected(c.fid));
        EXPECT_EQ(found(VarianUse::spectrum), expected(c.spectrum));
    }
}

TEST(Varian, BadHeadsAreRefused)
{
    const auto with = [](std::size_t offset, std::uint64_t value, std::size_t width = 4) {
        return VarianFile().Big(offset, value, width).str();
    };
    struct Case {
        const char* name;
        std::string file;
        ErrorCode code;
    };
    const Case cases[] = {
        {"no block", with(0, 0), ErrorCode::bad_value},
        {"negative blocks", with(0, 0xFFFFFFFF), ErrorCode::bad_value},
        {"no rows in a block", with(4, 0), ErrorCode::bad_value},
        {"one value", with(8, 1), ErrorCode::bad_value},
        {"negative values", with(8, 0x80000000), ErrorCode::bad_value},
        {"129 rows", with(0, 129), ErrorCode::too_large},
        {"counts whose product is no 32-bit number", VarianFile().Big(0, 65536, 4).Big(4, 65536, 4).str(),
         ErrorCode::too_large},
        {"more points than a row holds", with(8, 2 * kMaxPoints + 2), ErrorCode::too_large},
        {"head alone", VarianFile().first(32), ErrorCode::truncated},
        {"no point", VarianFile().first(63), ErrorCode::truncated},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const BytesRead read(SampleProcpar(), c.file);
        ASSERT_FALSE(read.status);
        EXPECT_EQ(read.status.error().code, c.code);
        EXPECT_FALSE(read.status.error().where.empty());
    }
    EXPECT_TRUE(BytesRead(SampleProcpar(), with(0, 128)).Warned("1 of 128 rows"));
    EXPECT_TRUE(BytesRead(SampleProcpar(), with(20, 77)).Warned("77 bytes for a block"));
    EXPECT_EQ(BytesRead(SampleProcpar({{"sfrq", {"0"}}}), VarianFile().str()).status.error().code,
              ErrorCode::bad_value);
    EXPECT_EQ(BytesRead(SampleProcpar({{"sw", {"1e30"}}}), VarianFile().str()).status.error().code,
              ErrorCode::bad_value);
}

TEST(Varian, WordsThatAreNoNumbersReadAsZero)
{
    VarianSample sample{.word = VarianWord::f32};
    sample.value = [](int, int i) { return std::array<double, 2>{i == 3 ? NAN : i == 4 ? INFINITY : 1.0, 0.0}; };
    const BytesRead read(SampleProcpar(), VarianFile(sample).str());
    ASSERT_TRUE(read.status);
    EXPECT_TRUE(read.Warned("2 values are no numbers"));
    for (const float value : read.set().spec.DataRe.all()) EXPECT_LE(std::fabs(value), 1.1F);
}

TEST(Varian, NoCutOfTheFilesIsSilent)
{
    const std::string procpar =
        SampleProcpar({{"array", {"\"d2\""}, 2}, {"d2", {"1", "2", "3"}, 3}, {"arraydim", {"3"}}});
    const std::string file = VarianFile({.blocks = 3}).str();
    const BytesRead whole(procpar, file);
    ASSERT_TRUE(whole.status);
    ASSERT_TRUE(whole.set().Warnings.empty());
    for (std::size_t size = 0; size < file.size(); ++size) {
        const BytesRead read(procpar, file.substr(0, size));
        EXPECT_TRUE(!read.status || read.Warned("cut short")) << size;
    }
    for (std::size_t size = 0; size < procpar.size(); ++size) {
        const BytesRead read(procpar.substr(0, size), file);
        if (!read.status || !read.set().Warnings.empty()) continue;
        // Cut behind everything that matters.
        EXPECT_EQ(read.set().par.FREQU, whole.set().par.FREQU) << size;
        EXPECT_EQ(read.set().par.FileRefMHz, whole.set().par.FileRefMHz) << size;
        EXPECT_EQ(read.set().RowValueA, whole.set().RowValueA) << size;
    }
}

TEST(Varian, LeavesADummyThatStandsForTheFolder)
{
    const TempFolder folder;
    WriteText(folder / "procpar", SampleProcpar());
    WriteText(folder / "fid", VarianFile({.points = 256}).str());
    const AnyRead read(folder / "fid");
    ASSERT_TRUE(read.status);
    LeaveVarianDummy(read.type);
    const AnyRead again(folder / "SPEC.VARF");
    ASSERT_TRUE(again.status);
    EXPECT_EQ(again.type.path, read.type.path);
    EXPECT_EQ(again.par().FIDPoints, 256);
}

} // namespace
} // namespace nmr::test
