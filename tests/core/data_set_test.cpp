#include "core/data_set.h"
#include "core/global_block.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

using namespace nmr;

namespace {

/// A row of `points` from `first` to `last` ppm at 400 MHz.
DataSet SetWithAxis(std::int32_t points, double first, double last)
{
    DataSet set;
    set.par.POINT = points;
    set.par.OBFRQ0PPM = 400;
    for (std::int32_t i = 0; i < points; ++i) set.spec.XAxis.push_back(first + (last - first) * i / (points - 1));
    return set;
}

} // namespace

TEST(DataSet, PointsAndPositionsAgreeOnAxesOfEitherDirection)
{
    for (const auto& [first, last] : {std::pair(-1.0, 9.0), std::pair(9.0, -1.0)}) {
        SCOPED_TRACE(first);
        const DataSet set = SetWithAxis(1001, first, last);
        for (const std::int32_t point : {0, 1, 499, 500, 1000})
            EXPECT_EQ(PpmToPoint(set, PointToPpm(set, point)), point);
        EXPECT_EQ(PpmToPoint(set, first * 3 - last * 2), 0);
        EXPECT_EQ(PpmToPoint(set, last * 3 - first * 2), 1000);
        EXPECT_EQ(PointToPpm(set, -5), first);
        EXPECT_EQ(PointToPpm(set, 99999), last);
        const double step = (last - first) / 1000;
        EXPECT_EQ(PpmToPoint(set, first + 0.4 * step), 0);
        EXPECT_EQ(PpmToPoint(set, first + 0.6 * step), 1);
    }
    const DataSet whole = SetWithAxis(11, 0, 10);
    EXPECT_EQ(PpmToPoint(whole, 2.5), 2) << "a half goes to the even point";
    EXPECT_EQ(PpmToPoint(whole, 3.5), 4);
    EXPECT_EQ(PpmToPoint(whole, std::nan("")), 0);
    EXPECT_DOUBLE_EQ(PpmToHz(whole, 2.5), 1000);
}

TEST(DataSet, APeakKeepsItsPlaceInTheSpectrumWhenTheReferenceMoves)
{
    DataSet set = SetWithAxis(1001, -1, 9);
    const PeakEntry peak{.Position = 3200}; // 8 ppm above the first point
    EXPECT_DOUBLE_EQ(PeakPpm(set, peak), 7);
    EXPECT_DOUBLE_EQ(PeakHz(set, peak), 2800);
    for (double& x : set.spec.XAxis) x += 0.5;
    EXPECT_DOUBLE_EQ(PeakPpm(set, peak), 7.5);
    EXPECT_EQ(PpmToPoint(set, PeakPpm(set, peak)), 800);
}

TEST(DataSet, AnEmptySetHasNoPositionsAndNoFault)
{
    DataSet set;
    EXPECT_EQ(PpmToPoint(set, 5), 0);
    EXPECT_EQ(PointToPpm(set, 5), 0);
    EXPECT_EQ(PeakPpm(set, {}), 0);
    set.par.POINT = 1000; // a count that no axis backs
    EXPECT_EQ(PointToPpm(set, 999), 0);
    set.spec.XAxis = {4.0};
    EXPECT_EQ(PpmToPoint(set, 7), 0);
    EXPECT_EQ(PointToPpm(set, 999), 4);
}

TEST(Store, SizesAllArraysByPointsAndRows)
{
    auto g = std::make_unique<GlobalBlock>();
    for (const std::int16_t slot : {std::int16_t{0}, std::int16_t{3}}) {
        for (const auto& [points, rows] : {std::pair(0, 0), std::pair(1000, 1), std::pair(64, 128), std::pair(8, 1)}) {
            SCOPED_TRACE(testing::Message() << "slot " << slot << ", " << points << " points, " << rows << " rows");
            DataSet& set = g->Slots[static_cast<std::size_t>(slot)];
            set.RowCount = rows;
            ASSERT_TRUE(AllocateSpecBuffer(*g, points, slot));
            const std::size_t columns = static_cast<std::size_t>(points) + 1;
            const std::size_t row_count = static_cast<std::size_t>(std::max(rows, 1));
            EXPECT_EQ(set.RowCount, std::max(rows, 1));
            EXPECT_EQ(set.spec.AllocatedPoints, points);
            EXPECT_EQ(set.spec.XAxis.size(), columns);
            EXPECT_EQ(set.spec.IntegralSum.size(), columns);
            for (const auto* array : {&set.spec.DataRe, &set.spec.DataIm, &set.spec.SourceRe, &set.spec.SourceIm}) {
                EXPECT_EQ(array->rows(), row_count);
                EXPECT_EQ(array->columns(), columns);
            }
            EXPECT_EQ(set.spec.AuxCurve.empty(), slot == 0);
            // What the arrays held is gone.
            for (const float x : set.spec.DataRe.all()) ASSERT_EQ(x, 0.0F);
            std::ranges::fill(set.spec.DataRe.all(), 7.0F);
            if (slot != 0) continue;
            EXPECT_EQ(g->RowPhase0.size(), row_count);
            EXPECT_EQ(g->WorkIm.all().size(), row_count * columns);
            EXPECT_EQ(g->WindowCurve.first(), -5000);
            EXPECT_EQ(g->WindowCurve.last(), points);
            EXPECT_EQ(g->SpareLines[3].size(), columns);
            EXPECT_EQ(g->PointFlag.size(), columns);
        }
    }
    EXPECT_EQ(g->WindowCurve.last(), 8) << "other slots leave the work arrays of slot 0 alone";
}

TEST(Store, RefusesWhatItCanNotHold)
{
    auto g = std::make_unique<GlobalBlock>();
    struct Case {
        const char* name;
        std::int32_t points, rows;
        std::int16_t slot;
        ErrorCode code;
    };
    const Case cases[] = {
        {"one point too many", 1'048'577, 1, 0, ErrorCode::too_large},
        {"one row too many", 16, 129, 0, ErrorCode::too_large},
        {"negative points", -1, 1, 0, ErrorCode::bad_value},
        {"slot 21", 16, 1, 21, ErrorCode::bad_value},
        {"slot -1", 16, 1, -1, ErrorCode::bad_value},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        g->Slots[0].RowCount = c.rows;
        const Status status = AllocateSpecBuffer(*g, c.points, c.slot);
        ASSERT_FALSE(status);
        EXPECT_EQ(status.error().code, c.code);
    }
    g->Slots[0].RowCount = 1;
    EXPECT_TRUE(AllocateSpecBuffer(*g, 1'048'576, 0));
}

TEST(Store, ClearingSetsDefaultsButKeepsNumberAndArrays)
{
    auto g = std::make_unique<GlobalBlock>();
    NumberSlots(*g);
    EXPECT_EQ(g->Slots[19].par.SlotNumber, 19);
    EXPECT_EQ(g->Slots[20].par.SlotNumber, 0);
    EXPECT_EQ(g->ScratchSet.par.SlotNumber, 100);
    g->settings.default_font_eng = "Liberation Serif";
    g->settings.xlabel = "ppm text";
    DataSet& set = g->Slots[5];
    ASSERT_TRUE(AllocateSpecBuffer(*g, 32, 5));
    set.spec.DataRe[0][3] = 4;
    set.par.CTEMP = 25;
    set.par.BaseLineDone = 1;
    set.par.OBNUC = "1H";
    set.RowCount = 7;
    set.RowValueA[3] = 1;
    set.Peaks.resize(4);
    set.Regions[2].Start = 5;
    set.HistoryA = {"x"};
    ClearDataSet(*g, 5);
    EXPECT_EQ(set.par.SlotNumber, 5);
    EXPECT_EQ(set.spec.DataRe[0][3], 4);
    EXPECT_EQ(set.spec.AllocatedPoints, 32);
    EXPECT_EQ(set.par.CTEMP, kNoTemperature);
    EXPECT_EQ(set.par.BaseLineDone, 0);
    EXPECT_EQ(set.par.OBNUC + set.par.IRNUC, "NUL");
    EXPECT_EQ(set.RowCount, 1);
    EXPECT_EQ(set.RowValueA[3], 0);
    EXPECT_TRUE(set.Peaks.empty() && set.HistoryA.empty());
    EXPECT_EQ(set.Regions[2].Start, 0);
    EXPECT_EQ(set.FontMain.Name + set.FontPeak.Name + set.FontInt.Name,
              "Liberation SerifLiberation SerifLiberation Serif");
    EXPECT_EQ(set.XLabelPpm, "ppm text");
    EXPECT_TRUE(IsEmpty(set));
    ClearDataSet(*g, 21); // outside the table: nothing happens
}

TEST(Store, DisplayLimitsSpanAllRowsUnlessTheFileGaveThem)
{
    auto g = std::make_unique<GlobalBlock>();
    DataSet& set = g->Slots[0];
    set.RowCount = 2;
    ASSERT_TRUE(AllocateSpecBuffer(*g, 4, 0));
    set.par.POINT = 4;
    set.spec.DataRe[0][1] = -2;
    set.spec.DataRe[1][2] = 3;
    set.spec.DataIm[1][2] = -4;
    set.spec.DataRe[1][4] = 99; // beyond the last point
    FillDisplayLimits(set);
    EXPECT_EQ(set.par.DispLeft, 5);
    EXPECT_EQ(set.par.DispRight, -2);
    set.spec.DataRe[0][0] = 50;
    FillDisplayLimits(set);
    EXPECT_EQ(set.par.DispLeft, 5) << "limits that are there stay";
    CopyDataToSource(set);
    EXPECT_EQ(set.spec.SourceIm[1][2], -4);
    EXPECT_EQ(set.spec.SourceRe.columns(), 5U);
}
