// The lists as a window shows them and as they are copied.

#include "session/list_tables.h"
#include "support/row_block.h"

#include <cmath>

namespace nmr::test {
namespace {

/// Three peaks on samples, the last with a top between two of them, and two regions.
std::unique_ptr<GlobalBlock> Sample()
{
    std::vector<double> re(1001, 0.0);
    re[100] = 8;
    re[250] = 20;
    re[749] = 3, re[750] = 5, re[751] = 4;
    auto g = BlockOf(re, {.first_ppm = -1, .step_ppm = 0.01, .mhz = 400});
    DataSet& set = g->Slots[0];
    set.par.SLVNT = "CHLOROFORM-D";
    set.Peaks = {{.Point = 100, .Position = 0.9996 * 400},
                 {.Point = 250, .Position = 2.5 * 400},
                 {.Point = 751, .Position = 7.5 * 400}};
    set.Integrals = {
        {.Start = 3, .StartPoint = 300, .End = 2, .EndPoint = 200, .Value = 1, .Label = {}},
        {.Start = 8, .StartPoint = 800, .End = 7.25F, .EndPoint = 725, .B1 = -0.002F, .Value = 0.25F, .Label = {}}};
    set.IntegralScale = 3;
    return g;
}

std::vector<std::size_t> Order(ListTable table, std::size_t column, bool descending)
{
    SortTable(table, column, descending);
    std::vector<std::size_t> order;
    for (const ListTable::Row& row : table.rows) order.push_back(row.index);
    return order;
}

TEST(ListTables, AreCopiedWithTabsAsTheyAreShown)
{
    const auto g = Sample();
    struct Case {
        const char* name;
        ListTable (*make)(const GlobalBlock&, ListUnit);
        ListUnit unit;
        int interpolate;
        std::string text;
    };
    const Case cases[] = {
        {"peaks", PeakListTable, ListUnit::ppm, 0,
         "No\tPosition(ppm)\tFrequency(Hz)\tAmplitude\tHeight(%)\n1\t-0.0004\t-0.16\t8.0000\t40.00\n"
         "2\t1.5000\t600.00\t20.0000\t100.00\n3\t6.5000\t2600.00\t5.0000\t25.00\n"},
        // A parabola through 3, 5, 4: its top a sixth of a point on, 5 + 1/24 high.
        {"tops apart, kHz", PeakListTable, ListUnit::khz, 1,
         "No\tPosition(ppm)\tFrequency(kHz)\tAmplitude\tHeight(%)\tTop(ppm)\tTop(kHz)\tTop Amplitude\n"
         "1\t-0.0004\t-0.00016\t8.0000\t40.00\t0.0000\t0.00000\t8.0000\n"
         "2\t1.5000\t0.60000\t20.0000\t100.00\t1.5000\t0.60000\t20.0000\n"
         "3\t6.5000\t2.60000\t5.0000\t25.00\t6.5017\t2.60067\t5.0417\n"},
        {"integrals, Hz", IntegralListTable, ListUnit::hz, 0,
         "No\tIntegral\tStart(Hz)\tEnd(Hz)\tSum\tB0/Ymax\tB1/Ymax\n1\t3.00\t800.00\t400.00\t1.00000\t0\t0\n"
         "2\t0.75\t2800.00\t2500.00\t0.25000\t0\t-0.002\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        g->settings.interpolate_tops = c.interpolate;
        EXPECT_EQ(TabbedText(c.make(*g, c.unit)), c.text);
    }
    EXPECT_TRUE(IntegralListTable(*g, ListUnit::ppm).rows[0].marked);
}

TEST(ListTables, SortByEachColumnWithGapsLast)
{
    const auto g = Sample();
    const ListTable peaks = PeakListTable(*g, ListUnit::ppm);
    using Rows = std::vector<std::size_t>;
    for (const std::size_t column : {0U, 1U, 2U}) {
        EXPECT_EQ(Order(peaks, column, false), (Rows{0, 1, 2}));
        EXPECT_EQ(Order(peaks, column, true), (Rows{2, 1, 0}));
    }
    for (const std::size_t column : {3U, 4U}) EXPECT_EQ(Order(peaks, column, true), (Rows{1, 0, 2}));
    EXPECT_EQ(Order(peaks, 99, true), (Rows{0, 1, 2})) << "no such column";
    ListTable gaps = peaks;
    gaps.rows[1].keys[3] = std::nan("");
    for (const bool descending : {false, true}) EXPECT_EQ(Order(gaps, 3, descending).back(), 1U);
    g->Slots[0].Integrals[0].Value = 0; // the reference: nothing has a value then
    EXPECT_EQ(IntegralListTable(*g, ListUnit::ppm).rows[1].cells[1], "");
}

TEST(ListTables, PeaksForAPaper)
{
    struct Case {
        const char *name, *nucleus, *solvent;
        double mhz;
        int interpolate;
        std::size_t peaks;
        const char *plain, *html;
    };
    const Case cases[] = {
        {"protons", "1H", "CHLOROFORM-D", 400, 0, 3, "1H NMR (400 MHz, CDCl3) δ 6.50, 1.50, 0.00.",
         "<sup>1</sup>H NMR (400 MHz, CDCl<sub>3</sub>) δ 6.50, 1.50, 0.00."},
        {"carbon", "C13", "dmso", 100.6, 0, 3, "13C NMR (101 MHz, DMSO-d6) δ 6.5, 1.5, 0.0.",
         "<sup>13</sup>C NMR (101 MHz, DMSO-<i>d</i><sub>6</sub>) δ 6.5, 1.5, 0.0."},
        {"tops between samples", "1H", " ", 399.6, 1, 3, "1H NMR (400 MHz) δ 6.50, 1.50, 0.00.", nullptr},
        {"a mixture", "31P", "H2O+D2O", 161.9, 0, 1, "31P NMR (162 MHz, H2O+D2O) δ 0.0.", nullptr},
        {"none", "1H", "<b>", 60, 0, 0, "1H NMR (60 MHz, <b>) δ ", "<sup>1</sup>H NMR (60 MHz, &lt;b&gt;) δ "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto g = Sample();
        DataSet& set = g->Slots[0];
        set.par.OBNUC = c.nucleus;
        set.par.SLVNT = c.solvent;
        set.par.ObsCenter = c.mhz;
        set.Peaks.resize(c.peaks);
        g->settings.interpolate_tops = c.interpolate;
        EXPECT_EQ(PeaksForPaper(*g).plain, c.plain);
        if (c.html != nullptr) {
            EXPECT_EQ(PeaksForPaper(*g).html, c.html);
        }
    }
}

} // namespace
} // namespace nmr::test
