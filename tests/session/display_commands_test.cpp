// Inversion, coloured regions, the distance of two cursors, absolute display.

#include "session/display_commands.h"

#include "layout/spectrum_scene.h"
#include "session/color_regions.h"
#include "session/cursor_distance.h"
#include "session/inversion.h"
#include "session/menu.h"
#include "session/rig.h"
#include "session/tool_commands.h"
#include "session/tools.h"

#include <cmath>

namespace nmr {
namespace {

using namespace test;

std::unique_ptr<Rig> WithSpectrum(double line_hz = 1000)
{
    auto rig = std::make_unique<Rig>();
    rig->Boot();
    BrukerSpec spec;
    spec.tones = {{line_hz, 1.0, 20.0}, {-2500, 0.4, 20.0}};
    EXPECT_TRUE(Read_Path(rig->s, WriteBrukerFid(rig->folder.path() / "exp", spec)));
    return rig;
}

/// "8..6:255 5..4:1", as stored.
std::string Shown(const DataSet& set)
{
    std::string text;
    for (const RegionColor& region : set.Regions)
        if (IsColored(region))
            text += (text.empty() ? "" : " ") + forms::NumberValue(static_cast<double>(region.Start)) + ".." +
                    forms::NumberValue(static_cast<double>(region.End)) + ":" + std::to_string(region.Color);
    return text;
}

TEST(ColorRegions, ANewOneTakesItsPlaceFromTheOthers)
{
    struct Case {
        const char* name;
        double a, b;
        const char* regions; ///< over 8..6 in 1 and 5..4 in 2
    };
    const Case cases[] = {
        {"beside", 1, 2, "8..6:1 5..4:2 2..1:9"},
        {"over one", 3.5, 5.5, "8..6:1 5.5..3.5:9"},
        {"inside one", 7, 7.5, "8..7.5:1 7.5..7:9 7..6:1 5..4:2"},
        {"over two edges", 4.5, 7, "8..7:1 7..4.5:9 4.5..4:2"},
        {"over all", 10, -1, "10..-1:9"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto rig = WithSpectrum();
        DataSet& set = rig->g.Slots[0];
        ASSERT_TRUE(SetColorRegion(rig->g, 6, 8, 1));
        ASSERT_TRUE(SetColorRegion(rig->g, 5, 4, 2));
        set.par.DataChanged = 0;
        ASSERT_TRUE(SetColorRegion(rig->g, c.a, c.b, 9));
        EXPECT_EQ(Shown(set), c.regions);
        EXPECT_EQ(set.par.DataChanged, 1);
        m20_Click(rig->s);
        EXPECT_EQ(Shown(set), "8..6:1 5..4:2");
        ReDo_Click(rig->s);
        EXPECT_EQ(Shown(set), c.regions);
    }
}

TEST(ColorRegions, GoOneByOneOrAllAtOnce)
{
    const auto rig = WithSpectrum();
    GlobalBlock& g = rig->g;
    ASSERT_TRUE(SetColorRegion(g, 6, 8, 1));
    ASSERT_TRUE(SetColorRegion(g, 5, 4, 2));
    EXPECT_FALSE(ResetColorRegion(g, 5.5));
    EXPECT_FALSE(SetColorRegion(g, 3, 3, 1));
    EXPECT_FALSE(SetColorRegion(g, 3, std::nan(""), 1));
    EXPECT_TRUE(ResetColorRegion(g, 7));
    EXPECT_EQ(Shown(g.Slots[0]), "5..4:2");
    EXPECT_EQ(g.Undo.Caption(), "UnDo(ReSet Color Region)");
    EXPECT_TRUE(ResetAllColorRegions(g));
    EXPECT_FALSE(ResetAllColorRegions(g));
    m20_Click(rig->s);
    m20_Click(rig->s);
    EXPECT_EQ(Shown(g.Slots[0]), "8..6:1 5..4:2");
    for (int i = 0; i < 60; ++i) SetColorRegion(g, 20 + i, 20.5 + i, 3);
    EXPECT_FALSE(SetColorRegion(g, 200, 201, 3)) << "all places are taken";
    EXPECT_TRUE(SetColorRegion(g, 20, 80.5, 4)) << "what takes over others needs no new place";
}

TEST(ColorRegions, TheToolOpensAndLeaves)
{
    const auto rig = WithSpectrum();
    rig->g.settings.r_color_disp = 0;
    Tools tools(rig->s);
    rig->s.tools = &tools;
    m242_Click(rig->s);
    EXPECT_TRUE(SetMenuActivateForm1(rig->g).at("m242").checked);
    EXPECT_EQ(rig->g.settings.r_color_disp, 1) << "what is coloured is to be seen";
    m242_Click(rig->s);
    EXPECT_EQ(tools.open(), Tool::none);
    m369_Click(rig->s);
    EXPECT_FALSE(SetMenuActivateForm1(rig->g).at("m369").checked);
}

TEST(Inversion, MirrorsAboutTheCarrierWithAllThatBelongsToTheSpectrum)
{
    const auto rig = WithSpectrum(1000);
    const auto mirror = WithSpectrum(-1000);
    GlobalBlock& g = rig->g;
    DataSet& set = g.Slots[0];
    const double top = HighestPpm(set), carrier = (set.par.ObsCenter / set.par.OBFRQ0PPM - 1) * 1e6;
    set.Peaks.push_back({PpmToPoint(set, top), 0, 0, (top - set.spec.XAxis[0]) * set.par.OBFRQ0PPM, 0});
    IntegralEntry integral;
    integral.StartPoint = PpmToPoint(set, top + 0.1);
    integral.EndPoint = PpmToPoint(set, top - 0.2);
    integral.B0 = 0.01F;
    integral.B1 = 0.5F;
    set.Integrals.push_back(integral);
    set.Integrals.push_back(integral);
    set.Integrals[1].StartPoint += 200;
    set.IntegralRef = 1;
    Calc_All_Integrals(g);
    ASSERT_TRUE(SetColorRegion(g, top - 0.2, top + 0.1, 5));
    const DataSet before = set;
    m291_Click(rig->s);
    EXPECT_NEAR(HighestPpm(set), 2 * carrier - top, std::abs(set.par.Resolution2) / 10);
    EXPECT_NEAR(PeakPpm(set, set.Peaks[0]), HighestPpm(set), 1e-9);
    const auto value = [](const DataSet& data, std::int32_t point) {
        return data.spec.DataRe[0][static_cast<std::size_t>(point)];
    };
    // The list runs up the axis again, the reference stays a region's, and so do base line and value.
    EXPECT_EQ(value(set, set.Integrals[1].StartPoint), value(before, integral.EndPoint));
    EXPECT_EQ(value(set, set.Integrals[1].EndPoint), value(before, integral.StartPoint));
    EXPECT_EQ(set.IntegralRef, 0);
    for (const std::size_t i : {0, 1}) EXPECT_NEAR(set.Integrals[i].Value, before.Integrals[1 - i].Value, 1e-4);
    EXPECT_NEAR(static_cast<double>(set.Regions[0].Start), HighestPpm(set) + 0.2, 2e-3);
    EXPECT_EQ(set.par.DataChanged, 1);
    EXPECT_EQ(g.Undo.Caption(), "UnDo(Inversion of Spectrum)");
    // The same as a measurement in the other sense, as far as the digits of the axis go.
    EXPECT_NEAR(HighestPpm(set), HighestPpm(mirror->g.Slots[0]), 2 * std::abs(set.par.Resolution2));
    m20_Click(rig->s);
    EXPECT_EQ(set.spec.XAxis, before.spec.XAxis);
    EXPECT_EQ(set.spec.DataRe[0].size(), before.spec.DataRe[0].size());
    EXPECT_TRUE(std::ranges::equal(set.spec.DataIm[0], before.spec.DataIm[0]));
    EXPECT_EQ(PeakPpm(set, set.Peaks[0]), PeakPpm(before, before.Peaks[0]));
    EXPECT_EQ(Shown(set), Shown(before));
}

TEST(Inversion, TwiceIsNothingAndAFidIsRefused)
{
    const auto rig = WithSpectrum();
    DataSet& set = rig->g.Slots[0];
    const DataSet before = set;
    m291_Click(rig->s);
    EXPECT_FALSE(std::ranges::equal(set.spec.DataRe[0], before.spec.DataRe[0]));
    m291_Click(rig->s);
    EXPECT_TRUE(std::ranges::equal(set.spec.DataRe[0], before.spec.DataRe[0]));
    EXPECT_TRUE(std::ranges::equal(set.spec.DataIm[0], before.spec.DataIm[0]));
    EXPECT_NEAR(set.spec.XAxis[0], before.spec.XAxis[0], 1e-9);
    set.par.SMODE = 0;
    m291_Click(rig->s);
    EXPECT_EQ(rig->Texts().size(), 1U);
    EXPECT_TRUE(std::ranges::equal(set.spec.DataRe[0], before.spec.DataRe[0]));
}

TEST(CursorDistance, TellsBothUnitsAndJumpsToTops)
{
    const auto rig = WithSpectrum();
    const DataSet& set = rig->g.Slots[0];
    const double top = HighestPpm(set);
    EXPECT_EQ(NearestTop(set, 0, top + 0.02, 0.05), top);
    EXPECT_EQ(NearestTop(set, 0, top + 0.02, 0.0), top + 0.02);
    const double step = std::abs(set.par.Resolution2), flank = top + 6 * step;
    EXPECT_EQ(NearestTop(set, 0, flank, 3 * step), flank) << "a flank is no line";
    EXPECT_EQ(NearestTop(set, 7, top, 0.05), top) << "there is no such row";
    EXPECT_EQ(NearestTop(set, 0, 1e6, 0.05), 1e6) << "far beside the axis";
    CursorDistance cursors;
    cursors.PlaceIn(9, 0);
    EXPECT_EQ(cursors.ppm(0), 6);
    EXPECT_EQ(cursors.ppm(1), 3);
    cursors.Move(0, 2.5);
    cursors.Move(1, std::nan(""));
    EXPECT_EQ(cursors.ppm(1), 3);
    DataSet own;
    own.par.OBFRQ0PPM = 400;
    EXPECT_EQ(cursors.Position(own, 0), "2.5000 ppm   1000.00 Hz");
    EXPECT_EQ(cursors.Distance(own), "0.5000 ppm   200.00 Hz");
    own.par.OBFRQ0PPM = 0;
    EXPECT_EQ(cursors.Distance(own), "0.5000 ppm");
}

TEST(AbsoluteDisplay, ShowsTheMagnitudeAndLeavesTheData)
{
    const auto rig = WithSpectrum();
    DataSet& set = rig->g.Slots[0];
    const auto before = std::vector<float>(set.spec.DataRe[0].begin(), set.spec.DataRe[0].end());
    m34_Click(rig->s);
    EXPECT_EQ(rig->g.AbsoluteMode, 1);
    const std::vector<float> absolute = AbsoluteRow(set, 0);
    ASSERT_EQ(absolute.size(), static_cast<std::size_t>(set.par.POINT));
    for (const std::size_t i : {std::size_t{0}, absolute.size() / 2, absolute.size() - 1})
        EXPECT_FLOAT_EQ(absolute[i], std::hypot(set.spec.DataRe[0][i], set.spec.DataIm[0][i]));
    EXPECT_TRUE(std::ranges::equal(set.spec.DataRe[0], before));
    EXPECT_TRUE(AbsoluteRow(set, 5).empty());
    m34_Click(rig->s);
    EXPECT_EQ(rig->g.AbsoluteMode, 0);
}

} // namespace
} // namespace nmr
