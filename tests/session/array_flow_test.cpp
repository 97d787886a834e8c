// Rows of an array on their way through a read: padding, order, transform.

#include "samples/vendor_samples.h"
#include "session/rig.h"

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

using test::Rig;

constexpr int kRows = 5;
constexpr int kPoints = 300; // padded to 512
const float kDelays[kRows] = {0.3F, 0.1F, 0.5F, 0.2F, 0.4F};

/// Share of the width above the carrier.
double Turns(int row)
{
    return (row - 2) / 8.0 + 1 / 16.0;
}

/// A Varian array whose row r has one line of height r + 1, on a point of the padded spectrum.
std::string WriteArray(const std::filesystem::path& folder)
{
    test::VarianSample sample{.word = test::VarianWord::f32, .blocks = kRows, .points = kPoints};
    sample.value = [](int row, int i) { return test::LinePoint(i, Turns(row), kPoints, 1e3 * (row + 1)); };
    test::WriteText(folder / "fid", test::VarianFile(sample).str());
    test::VarianValue d2{"d2", {}, 3};
    for (const float delay : kDelays) d2.values.push_back(std::to_string(delay));
    test::WriteText(folder / "procpar",
                    test::SampleProcpar({{"array", {"\"d2\""}, 2}, {"arraydim", {std::to_string(kRows)}}, d2}));
    return (folder / "fid").string();
}

TEST(ArrayFlow, RowsArePaddedTransformedAndSortedTogetherWithTheirValues)
{
    struct Case {
        const char* name;
        int sort;
        std::vector<int> order; ///< rows of the file
    };
    const Case cases[] = {{"as in the file", 0, {0, 1, 2, 3, 4}},
                          {"small first", 1, {1, 3, 0, 4, 2}},
                          {"large first", 2, {2, 4, 0, 3, 1}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const forms::Values choice{{forms::kArrayMode, c.sort == 0 ? "1" : "2"},
                                   {forms::kDescending, c.sort == 2 ? "1" : "0"}};
        // An array, not two dimensions; its rows stay rows.
        Rig rig({Button::no, test::Pressed("OK", choice), test::Pressed(forms::kFirstRow)});
        rig.Boot();
        rig.g.settings.auto_zerofill = 0;
        ASSERT_TRUE(Read_Path(rig.s, WriteArray(rig.folder.path() / "array.fid")));
        const DataSet& set = rig.g.Slots[0];
        ASSERT_EQ(set.RowCount, kRows);
        ASSERT_EQ(set.par.POINT, 512);
        EXPECT_EQ(set.par.FIDPoints, kPoints);
        EXPECT_EQ(set.RowParamName + " " + set.RowParamUnit, "d2 s");
        ASSERT_EQ(set.spec.DataRe.rows(), static_cast<std::size_t>(kRows));
        double unit = 0;
        for (std::size_t row = 0; row < kRows; ++row) {
            const int source = c.order[row];
            EXPECT_FLOAT_EQ(set.RowValueA[row], kDelays[source]);
            double top = 0;
            std::size_t place = 0;
            for (std::size_t i = 0; i < 512; ++i) {
                const double size = std::hypot(set.spec.DataRe[row][i], set.spec.DataIm[row][i]);
                if (size <= top) continue;
                top = size;
                place = i;
            }
            EXPECT_NEAR(set.spec.XAxis[place], 5 + Turns(source) * 4000 / 400, 0.01 * 4000.0 / 512 / 400);
            if (row == 0) unit = top / (source + 1);
            EXPECT_NEAR(top, unit * (source + 1), 0.01 * top) << "heights keep their ratios";
        }
    }
}

} // namespace
} // namespace nmr
