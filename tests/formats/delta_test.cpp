// Delta files made here: byte orders, number types, axes, units, the filter's delay, bad input.

#include "formats/delta.h"

#include "formats/reader_fixture.h"
#include "samples/vendor_samples.h"

#include <algorithm>

namespace nmr::test {
namespace {

/// A read from bytes, without the disk.
struct BytesRead {
    std::unique_ptr<GlobalBlock> g = std::make_unique<GlobalBlock>();
    Status status;

    explicit BytesRead(const std::string& file)
    {
        g->nuclides = NuclearTable::BuiltIn();
        status = ReadDataDelta(*g, 0, std::as_bytes(std::span(file)));
    }
    explicit BytesRead(const DeltaSet& set) : BytesRead(DeltaSetFile(set).str()) {}
    const DataSet& set() const { return g->Slots[0]; }
    const ParamBlock& par() const { return set().par; }
    bool Warned(std::string_view part) const
    {
        return std::ranges::any_of(set().Warnings,
                                   [&](const std::string& w) { return w.find(part) != std::string::npos; });
    }
};

DeltaSet With(std::vector<DeltaValue> changes)
{
    DeltaSet set;
    for (DeltaValue& change : changes) {
        std::erase_if(set.values, [&](const DeltaValue& v) { return v.name == change.name; });
        if (!change.text.empty() || change.type != 0) set.values.push_back(std::move(change));
    }
    return set;
}

TEST(Delta, DelayOfTheDigitalFilter)
{
    struct Case {
        const char* orders;
        const char* factors;
        std::optional<double> delay;
    };
    const Case cases[] = {
        {"2 54 73", "8  2", 19.65625},
        {"1 69", "2", 17.0},
        {"2 41 73", "6  2", 19.0 + 2.0 / 3},
        {"2 54 73", "8 12", (53.0 / 96 + 72.0 / 12) / 2},
        {"3 5 9 17", "2 2 2", (4.0 / 8 + 8.0 / 4 + 16.0 / 2) / 2},
        {"2 54", "8 2", std::nullopt},
        {"2 54 73", "8", std::nullopt},
        {"", "", std::nullopt},
        {"1 x", "2", std::nullopt},
        {"1 69", "0", std::nullopt},
    };
    for (const Case& c : cases) {
        const auto delay = DeltaGroupDelay(c.orders, c.factors);
        ASSERT_EQ(delay.has_value(), c.delay.has_value()) << c.orders;
        EXPECT_NEAR(delay.value_or(0), c.delay.value_or(0), 1e-12) << c.orders << " / " << c.factors;
    }
}

TEST(Delta, FidsOfEveryOrderAndType)
{
    for (const bool little : {true, false})
        for (const bool float32 : {true, false}) {
            SCOPED_TRACE(std::to_string(little) + std::to_string(float32));
            const BytesRead read(DeltaSet{.little = little, .float32 = float32});
            ASSERT_TRUE(read.status) << read.status.error().text;
            EXPECT_TRUE(read.set().Warnings.empty());
            const ParamBlock& par = read.par();
            ASSERT_EQ(par.POINT, 16);
            EXPECT_EQ(par.FREQU, 4000.0F) << "X_SWEEP stands in kHz";
            EXPECT_EQ(par.ObsCenter, 400.0);
            EXPECT_EQ(par.OBNUC, "1H");
            EXPECT_EQ(par.ExpTitle + par.EXPCM + par.Operator + par.EXMOD, "a titlea commentoperatorsingle_pulse.jxp");
            EXPECT_NEAR((par.ObsCenter - par.FileRefMHz) / par.FileRefMHz * 1e6, 5, 1e-6);
            for (int i = 0; i < 16; ++i) {
                const auto value = LinePoint(i, 0.125, 16);
                EXPECT_NEAR(read.set().spec.DataRe[0][static_cast<std::size_t>(i)], value[0], 1e-3);
                EXPECT_NEAR(read.set().spec.DataIm[0][static_cast<std::size_t>(i)], value[1], 1e-3);
            }
            EXPECT_NEAR(StrongestLine(read.set(), 0, FidSense::as_transformed).first, 6.25, 4000.0 / 32 / 400);
        }
}

TEST(Delta, AHeadOfTheOtherOrderIsReadInIt)
{
    std::string file = DeltaSetFile().str();
    const auto turn = [&](std::size_t offset, std::size_t width) {
        std::reverse(file.begin() + static_cast<std::ptrdiff_t>(offset),
                     file.begin() + static_cast<std::ptrdiff_t>(offset + width));
    };
    for (std::size_t offset : {176U, 180U, 208U, 240U, 1212U, 1216U, 1284U, 1292U}) turn(offset, 4);
    for (std::size_t offset : {272U, 336U, 1064U}) turn(offset, 8);
    const BytesRead read(file);
    ASSERT_TRUE(read.status) << read.status.error().text;
    EXPECT_EQ(read.par().POINT, 16);
    EXPECT_TRUE(read.set().Warnings.empty());
}

TEST(Delta, OnlyTheValidPointsAreRead)
{
    const BytesRead read(DeltaSet{.stored = 24, .first = 3, .last = 18});
    ASSERT_TRUE(read.status);
    ASSERT_EQ(read.par().POINT, 16);
    EXPECT_NEAR(read.set().spec.DataRe[0][0], LinePoint(3, 0.125, 16)[0], 1e-3);
    EXPECT_NEAR(read.set().spec.DataIm[0][15], LinePoint(18, 0.125, 16)[1], 1e-3);
    EXPECT_TRUE(BytesRead(DeltaSet{.first = 9, .last = 3}).Warned("can't be the valid ones"));
    EXPECT_TRUE(BytesRead(DeltaSet{.last = 16}).Warned("can't be the valid ones"));
}

TEST(Delta, ParametersStandInPrefixedUnits)
{
    const BytesRead read(With({{"x_pulse", 5.2, 33, 28},
                               {"X90", 0.0104, 17, 28},
                               {"irr_freq", 100.5, 225, 13},
                               {"IRR_DOMAIN", 0, 1, 0, "Carbon13", 0},
                               {"irr_pwidth", 147, 33, 28},
                               {"filter_width", 63, 241, 13},
                               {"spin_get", 0.015, 241, 13},
                               {"temp_get", 300, 1, 14},
                               {"ACQ_DELAY", 7.94e-6, 1, 28},
                               {"relaxation_delay", 200, 17, 28},
                               {"scans", 8, 1, 0, {}, 1},
                               {"ACTUAL_START_TIME", 971372677, 1, 0, {}, 1},
                               {"end_time", 971472677}}));
    ASSERT_TRUE(read.status);
    const ParamBlock& par = read.par();
    EXPECT_FLOAT_EQ(par.PW[0], 5.2F);
    EXPECT_FLOAT_EQ(par.PW[1], 10.4F);
    EXPECT_FLOAT_EQ(par.IRFRQ, 100.5F);
    EXPECT_EQ(par.IRNUC, "13C");
    EXPECT_EQ(par.IRRPW, 147);
    EXPECT_FLOAT_EQ(par.FILTR, 63000.0F);
    EXPECT_FLOAT_EQ(par.SpinSet, 15.0F);
    EXPECT_NEAR(par.CTEMP, 26.85, 1e-4);
    EXPECT_FLOAT_EQ(par.DEADT, 7.94F);
    EXPECT_FLOAT_EQ(par.PD, 0.2F);
    EXPECT_EQ(par.SCANS, 8);
    // 11242 days and 63877 s after 1990-01-01
    EXPECT_EQ(par.DATIM, "12/Oct/2020  17:44:37");
    EXPECT_EQ(par.DateSerial, 32874 + 11242);
    EXPECT_NEAR(par.TimeOfDay, 63877 / 86400.0, 1e-7);
    const BytesRead epoch(With({{"ACTUAL_START_TIME", 0, 1, 0, {}, 1}}));
    EXPECT_EQ(epoch.par().DATIM, "01/Jan/1990  00:00:00");
}

TEST(Delta, FrequencyWidthAndReferenceHaveFallBacks)
{
    struct Case {
        const char* name;
        DeltaSet set;
        double obs_mhz, width_hz, centre_ppm;
        const char* warning = nullptr;
    };
    DeltaSet unnamed = With({DeltaText("X_DOMAIN", "")});
    unnamed.nucleus = "Fluorine19";
    const Case cases[] = {
        {"X_FREQ in MHz", With({{"X_FREQ", 399.5, 225, 13}}), 399.5, 4000, 5},
        {"X_FREQ without its unit", With({{"X_FREQ", 399.5, 1, 13}}), 400, 4000, 5, "X_FREQ can't be"},
        {"no X_FREQ", With({{"X_FREQ", 0, 1, 13, {}, 0}}), 400, 4000, 5, "no X_FREQ"},
        {"no X_SWEEP", With({{"X_SWEEP", 0, 1, 13, {}, 0}}), 400, 4000, 5, "no X_SWEEP"},
        {"X_SWEEP that the axis denies", With({{"X_SWEEP", 8000, 1, 13}}), 400, 8000, 5, "the time axis gives"},
        {"X_OFFSET in kHz", With({{"X_OFFSET", 0.8, 241, 13}}), 400, 4000, 2},
        {"no X_OFFSET", With({{"X_OFFSET", 0, 1, 26, {}, 0}}), 400, 4000, 0, "no reference"},
        {"nucleus of the head", unnamed, 400, 4000, 5},
        {"X_POINTS of another count", With({{"X_POINTS", 99, 1, 0, {}, 1}}), 400, 4000, 5, "X_POINTS is 99"},
        {"lists that don't fit", With({DeltaText("orders", "2 54"), DeltaText("factors", "8")}), 400, 4000, 5,
         "give no delay"},
        {"real alone", DeltaSet{.axis_type = 1}, 400, 4000, 5, "one channel"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const BytesRead read(c.set);
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_NEAR(read.par().ObsCenter, c.obs_mhz, 1e-9);
        EXPECT_NEAR(read.par().FREQU, c.width_hz, 1e-3);
        const double zero = read.par().FileRefMHz > 0 ? read.par().FileRefMHz : read.par().ObsCenter;
        EXPECT_NEAR((read.par().ObsCenter - zero) / zero * 1e6, c.centre_ppm, 1e-6);
        EXPECT_EQ(read.set().Warnings.size(), c.warning == nullptr ? 0U : 1U);
        EXPECT_TRUE(c.warning == nullptr || read.Warned(c.warning));
    }
    EXPECT_EQ(BytesRead(unnamed).par().OBNUC, "19F");
    const BytesRead filtered(
        With({DeltaText("orders", "1 9"), DeltaText("factors", "2"), DeltaText("DIGITAL_FILTER", "TRUE")}));
    EXPECT_EQ(filtered.par().GroupDelay, 2.0);
    const BytesRead off(
        With({DeltaText("orders", "1 9"), DeltaText("factors", "2"), DeltaText("DIGITAL_FILTER", "FALSE")}));
    EXPECT_EQ(off.par().GroupDelay, 0.0);
}

TEST(Delta, SpectraRiseInPpm)
{
    struct Case {
        const char* name;
        DeltaSet set;
        double first_ppm, last_ppm;
        std::size_t top; ///< index of the line that the file has at its point 4
    };
    const auto axis = [](unsigned prefix, unsigned unit, double start, double stop, unsigned type = 1) {
        DeltaSet set{.axis_type = type, .prefix = prefix, .unit = unit, .start = start, .stop = stop};
        set.value = [](int i) { return std::array<double, 2>{i == 4 ? 7.0 : 1.0, 2.0}; };
        return set;
    };
    const Case cases[] = {
        {"ppm", axis(1, 26, 10, -5), -5, 10, 11},        {"Hz", axis(1, 13, 4000, -2000), -5, 10, 11},
        {"kHz", axis(241, 13, 4, -2), -5, 10, 11},       {"the other way", axis(1, 26, -5, 10), -5, 10, 4},
        {"complex", axis(1, 26, 10, -5, 3), -5, 10, 11},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const BytesRead read(c.set);
        ASSERT_TRUE(read.status) << read.status.error().text;
        const DataSet& set = read.set();
        EXPECT_EQ(set.par.SMODE, 1);
        EXPECT_NEAR(set.spec.XAxis[0], c.first_ppm, 1e-9);
        EXPECT_NEAR(set.spec.XAxis[15], c.last_ppm, 1e-9);
        EXPECT_EQ(set.spec.DataRe[0][c.top], 7);
        EXPECT_EQ(set.par.DispLeft, c.set.axis_type == 3 ? std::sqrt(53.0F) : 7.0F);
        EXPECT_EQ(set.spec.SourceRe[0][c.top], 7);
        EXPECT_EQ(set.spec.DataIm[0][0], c.set.axis_type == 3 ? 2 : 0);
        EXPECT_EQ(read.Warned("no imaginary part"), c.set.axis_type != 3);
        EXPECT_NEAR(set.par.FREQU, 16 * 400.0, 1e-2);
    }
    EXPECT_EQ(BytesRead(axis(1, 26, 3, 3)).status.error().code, ErrorCode::bad_value);
    EXPECT_EQ(BytesRead(axis(1, 26, NAN, 3)).status.error().code, ErrorCode::bad_value);
}

TEST(Delta, BadFilesAreRefused)
{
    struct Case {
        const char* name;
        std::string file;
        ErrorCode code;
    };
    const auto with = [](std::size_t offset, std::uint64_t value, std::size_t width = 4) {
        return DeltaSetFile().Big(offset, value, width).str();
    };
    DeltaSet nowhere = With({{"X_FREQ", 0, 1, 13, {}, 0}});
    nowhere.base_mhz = 0;
    const Case cases[] = {
        {"another banner", DeltaSetFile().Text(0, "JEOL.NMS").str(), ErrorCode::bad_format},
        {"a head alone", DeltaSetFile().first(1536), ErrorCode::bad_format},
        {"two dimensions", DeltaSetFile().Byte(12, 2).Byte(34, 1).Byte(35, 28).str(), ErrorCode::two_dimensional},
        {"numbers of an unknown type", with(14, 0x81, 1), ErrorCode::bad_format},
        {"no points", with(176, 0), ErrorCode::bad_value},
        {"more points than a row holds", DeltaSetFile().Big(176, 4000000, 4).Big(240, 3999999, 4).str(),
         ErrorCode::too_large},
        {"no frequency", DeltaSetFile(nowhere).str(), ErrorCode::bad_value},
        {"points beyond the file", with(1284, 0x7FFFFFFF), ErrorCode::truncated},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const BytesRead read(c.file);
        ASSERT_FALSE(read.status);
        EXPECT_EQ(read.status.error().code, c.code) << read.status.error().text;
    }
}

TEST(Delta, NoCutOfAFileIsSilent)
{
    for (const bool float32 : {true, false}) {
        const std::string file = DeltaSetFile({.float32 = float32}).str();
        ASSERT_TRUE(BytesRead(file).set().Warnings.empty());
        for (std::size_t size = 0; size < file.size(); ++size) {
            const BytesRead read(file.substr(0, size));
            EXPECT_TRUE(!read.status || read.Warned("cut short")) << size;
        }
    }
}

} // namespace
} // namespace nmr::test
