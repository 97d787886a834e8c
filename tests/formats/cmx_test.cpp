// CMX folders made here: numbers with units, arrays, references, bad input.

#include "formats/cmx.h"

#include "formats/reader_fixture.h"
#include "samples/vendor_samples.h"

#include <algorithm>

namespace nmr::test {
namespace {

struct CmxSample {
    std::string acq = SampleAcq(), acq_2 = "ac=3\nuse_array=0\nend_date=12/29/14\nend_time=14:07:34\n",
                proc = SampleProc();
    std::string data = CmxData().str();
};

AnyRead ReadSample(const CmxSample& sample)
{
    const TempFolder folder;
    WriteText(folder / "acq", sample.acq);
    WriteText(folder / "acq_2", sample.acq_2);
    WriteText(folder / "proc", sample.proc);
    WriteText(folder / "data", sample.data);
    return AnyRead(folder / "data");
}

TEST(Cmx, NumbersHaveUnitLetters)
{
    const std::pair<const char*, std::optional<double>> cases[] = {
        {"5.000000000000s", 5.0},
        {"4u", 4e-6},
        {"2m", 2e-3},
        {"3n", 3e-9},
        {"2k", 2048.0},
        {"0x1F", 31.0},
        {" 1e3 ", 1000.0},
        {"-2.5", -2.5},
        {"1pulse", std::nullopt},
        {"", std::nullopt},
        {"s", std::nullopt},
        {"0x", std::nullopt},
        {"0xZ", std::nullopt},
        {"1ss", std::nullopt},
        {"1e308k", std::nullopt},
    };
    for (const auto& [text, value] : cases) {
        const auto found = ParseCmxNumber(text);
        ASSERT_EQ(found.has_value(), value.has_value()) << text;
        if (value) {
            EXPECT_NEAR(*found, *value, 1e-15 * std::max(1.0, std::fabs(*value))) << text;
        }
    }
}

TEST(Cmx, AFidIsRead)
{
    const AnyRead read = ReadSample({});
    ASSERT_TRUE(read.status) << read.status.error().text;
    const ParamBlock& par = read.par();
    EXPECT_EQ(read.type.code, 0x1009);
    EXPECT_EQ(par.POINT, 16);
    EXPECT_EQ(par.ObsCenter, 300.13) << "the second channel observes";
    EXPECT_EQ(par.FREQU, 4000.0F);
    EXPECT_EQ(par.OBNUC, "1H");
    EXPECT_FLOAT_EQ(par.IRFRQ, 50.3075F);
    EXPECT_FLOAT_EQ(par.PW[0], 2.8F);
    EXPECT_FLOAT_EQ(par.DEADT, 4.0F);
    EXPECT_EQ(par.PD, 5.0F);
    EXPECT_EQ(par.TIMES, 4);
    EXPECT_EQ(par.SCANS, 3);
    EXPECT_EQ(par.PulseProg + " " + par.COMNT + " " + par.Instrument, "1pulse a comment CMX***");
    EXPECT_EQ(par.DATIM, "29/Dec/2014 14:07:34");
    // 300.132 MHz is 10 ppm. The sample's line has the sense of the other vendors, so it stands below
    // the carrier here.
    EXPECT_NEAR(par.FileRefMHz, 300.132 / (1 + 10e-6), 1e-9);
    const double line = 10 - (2000.0 + 500.0) / 300.13;
    EXPECT_NEAR(StrongestLine(read.set(), 0, FidSense::opposite).first, line, 4000.0 / 32 / 300);
    EXPECT_EQ(FindFormat(9)->sense, FidSense::opposite);
}

TEST(Cmx, RowsOfAnArrayThatWasUsed)
{
    const std::string array = "array_num_values_tau=2\narray_dim_tau=2\ntau[0]=1m\ntau[1]=5m\n"
                              "array_num_values_pw=3\narray_dim_pw=3\npw[0]=1\npw[1]=2\npw[2]=3\n";
    const AnyRead read = ReadSample({.acq = SampleAcq(array), .acq_2 = "use_array=1\n", .data = CmxData(16, 6).str()});
    ASSERT_TRUE(read.status) << read.status.error().text;
    const DataSet& set = read.set();
    ASSERT_EQ(set.RowCount, 6);
    EXPECT_EQ(set.RowParamName, "tau");
    const std::vector<float> tau{1e-3F, 5e-3F, 1e-3F, 5e-3F, 1e-3F, 5e-3F}, pw{1, 1, 2, 2, 3, 3};
    EXPECT_TRUE(std::equal(tau.begin(), tau.end(), set.RowValueA.begin()));
    EXPECT_TRUE(std::equal(pw.begin(), pw.end(), set.RowValueB.begin()));
    // Rows of the sample fall off as 1/row; all real parts stand before all imaginary ones.
    for (std::size_t row = 1; row < 6; ++row)
        EXPECT_NEAR(StrongestLine(set, row, FidSense::opposite).second * static_cast<double>(row + 1),
                    StrongestLine(set, 0, FidSense::opposite).second, 2e-3);
    EXPECT_EQ(ReadSample({.acq = SampleAcq(array)}).set().RowCount, 1) << "the array was not used";
}

TEST(Cmx, BadSetsAreRefused)
{
    struct Case {
        const char* name;
        CmxSample sample;
        ErrorCode code;
    };
    const std::string big_array = "array_num_values_tau=129\narray_dim_tau=2\n";
    const Case cases[] = {
        {"no frequency", {.acq = "ppfn=x\nch1=3\ndw=1u\nal=16\n"}, ErrorCode::bad_value},
        {"no width", {.acq = "ppfn=x\nch1=1\nsf1=100\nal=16\n"}, ErrorCode::bad_value},
        {"no points", {.acq = "ppfn=x\nch1=1\nsf1=100\ndw=1u\n"}, ErrorCode::bad_value},
        {"points beyond a row", {.acq = SampleAcq("al=2000000\n")}, ErrorCode::too_large},
        {"too many rows", {.acq = SampleAcq(big_array), .acq_2 = "use_array=1\n"}, ErrorCode::too_large},
        {"rows of a second dimension", {.acq = SampleAcq("al2=64\n")}, ErrorCode::two_dimensional},
        {"a spectrum", {.proc = "domain1=1\n"}, ErrorCode::unsupported},
        {"no imaginary values", {.data = CmxData().first(64)}, ErrorCode::truncated},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const AnyRead read = ReadSample(c.sample);
        ASSERT_EQ(read.type.code, 0x1009);
        ASSERT_FALSE(read.status);
        EXPECT_EQ(read.status.error().code, c.code) << read.status.error().text;
    }
}

TEST(Cmx, NoCutOfTheFilesIsSilent)
{
    const CmxSample sample;
    for (std::size_t size = 1; size < sample.data.size(); ++size) {
        const AnyRead read = ReadSample({.data = sample.data.substr(0, size)});
        EXPECT_TRUE(!read.status || read.Warned("cut short")) << size;
    }
    for (std::size_t size = 0; size < sample.acq.size(); ++size) {
        const AnyRead read = ReadSample({.acq = sample.acq.substr(0, size)});
        EXPECT_TRUE(!read.status || read.Warned("ends early") || read.Warned("(al)")) << size;
    }
    EXPECT_TRUE(ReadSample({.proc = "com=cut here"}).Warned("proc ends early"));
}

} // namespace
} // namespace nmr::test
