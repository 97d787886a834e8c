// Lists of peaks and integrals as text.

#include "formats/list_files.h"
#include "support/files.h"
#include "support/row_block.h"

#include <cmath>

namespace nmr::test {
namespace {

std::unique_ptr<GlobalBlock> Sample()
{
    std::vector<double> re(1001, 0.0);
    re[250] = 20;
    re[750] = 5;
    auto g = BlockOf(re, {.first_ppm = -1, .step_ppm = 0.01, .mhz = 400});
    DataSet& set = g->Slots[0];
    set.par.FileName = "C:\\data\\a.tvo1";
    set.par.COMNT = "two\r\nlines";
    set.Peaks = {{.Point = 250, .Position = 2.5 * 400}, {.Point = 751, .Position = 7.5 * 400}};
    set.Integrals = {{.Start = 3, .StartPoint = 300, .End = 2, .EndPoint = 200, .Value = 1, .Label = {}},
                     {.Start = 8,
                      .StartPoint = 800,
                      .End = 7.25F,
                      .EndPoint = 725,
                      .B0 = 0.1F,
                      .B1 = -0.002F,
                      .Value = 0.25F,
                      .Label = {}}};
    set.IntegralScale = 3;
    return g;
}

TEST(ListFiles, HaveTheirLayoutToTheLetter)
{
    const TempFolder folder;
    const auto g = Sample();
    const std::string head = "File: C:\\data\\a.tvo1\r\nComment:  two  lines\r\n";
    struct Case {
        const char* name;
        Status (*write)(const std::string&, const GlobalBlock&, ListUnit);
        ListUnit unit;
        std::string text;
    };
    const Case cases[] = {
        {"peaks", WriteDataRed, ListUnit::ppm,
         head + "Data No.= 2\r\nNo, Position(ppm), Frequency(Hz), Amplitude, Height(%)\r\n"
                "1, 1.5, 600.0, 20.0, 100.0\r\n2, 6.5, 2600.0, 5.0, 25.0\r\n"},
        {"peaks, kHz", WriteDataRed, ListUnit::khz,
         head + "Data No.= 2\r\nNo, Position(ppm), Frequency(kHz), Amplitude, Height(%)\r\n"
                "1, 1.5, 0.6, 20.0, 100.0\r\n2, 6.5, 2.6, 5.0, 25.0\r\n"},
        {"integrals", WriteDataIntList, ListUnit::ppm,
         "List of Integral Intensity\r\n" + head +
             "No, Integral, Start(ppm), End(ppm), B0/Ymax, B1/Ymax\r\n"
             "1,  3.0, 2.0000, 1.0000, 0.0, 0.0\r\n2,  0.8, 7.0000, 6.2500, 0.1, -0.002\r\n"},
        {"integrals, Hz", WriteDataIntList, ListUnit::hz,
         "List of Integral Intensity\r\n" + head +
             "No, Integral, Start(Hz), End(Hz), B0/Ymax, B1/Ymax\r\n"
             "1,  3.0, 800.00, 400.00, 0.0, 0.0\r\n2,  0.8, 2800.00, 2500.00, 0.1, -0.002\r\n"},
        {"integrals, short form", WriteDataInt, ListUnit::khz,
         head + "No, Integral, Start(kHz), End(kHz), B0/Ymax, B1/Ymax\r\n"
                "1,  3.0,  0.800,  0.400, 0.0, 0.0\r\n2,  0.8,  2.800,  2.500, 0.1, -0.002\r\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(c.write(folder / "list", *g, c.unit));
        EXPECT_EQ(ReadText(folder / "list"), c.text);
        const Status refused = c.write(folder / "no/such/folder", *g, c.unit);
        ASSERT_FALSE(refused);
        EXPECT_TRUE(refused.error().where.starts_with("WriteData") && refused.error().where.ends_with("/1DDRW"));
    }
    g->Slots[0].par.OBNUC = "13C";
    g->Slots[0].Integrals[0].Value = 0; // the reference: no values then
    ASSERT_TRUE(WriteDataInt(folder / "list", *g, ListUnit::ppm));
    EXPECT_TRUE(ReadText(folder / "list")
                    .ends_with("1, , 2.00000, 1.00000, 0.0, 0.0\r\n"
                               "2, , 7.00000, 6.25000, 0.1, -0.002\r\n"));
    g->Slots[0].Peaks.clear();
    ASSERT_TRUE(WriteDataRed(folder / "list", *g, ListUnit::hz));
    EXPECT_EQ(ReadText(folder / "list"),
              head + "Data No.= 0\r\nNo, Position(ppm), Frequency(Hz), Amplitude, Height(%)\r\n");
}

TEST(ListFiles, TheFixedReportHasItsRecordsAndColumns)
{
    const TempFolder folder;
    const auto g = Sample();
    ASSERT_TRUE(WriteDataRedAls(folder / "list", *g));
    EXPECT_EQ(ReadText(folder / "list"), "NO.           PPM      INT(%)      FREQ(Hz)  POSITION  \r\n"
                                         "PEAK  2\r\nMXINT 20.0000000\r\nRESOL 4.0000000 Hz\r\n"
                                         "RESOL 0.0100000 PPM\r\nEXREF 0.0000000 PPM\r\nABOBS 400000.0000000 kHz\r\n"
                                         "NGAIN 1\r\nCOMNT  two  lines\r\n"
                                         "  1        1.50000 100.00000\r\n  2        6.50000  25.00000\r\n");
}

TEST(ListFiles, RunningSumsEndAtTheListedValues)
{
    const TempFolder folder;
    const auto g = Sample();
    DataSet& set = g->Slots[0];
    set.Integrals = {{.Start = 3, .StartPoint = 252, .End = 2, .EndPoint = 249, .Value = 1, .Label = {}}};
    ASSERT_TRUE(WriteDataIntCurve(folder / "curve.csv", *g, ListUnit::ppm));
    EXPECT_EQ(ReadText(folder / "curve.csv"),
              "File: C:\\data\\a.tvo1\r\nComment:  two  lines\r\nNo, Position(ppm), Sum, Integral\r\n"
              "1, 1.520000, 0, 0\r\n1, 1.510000, 0, 0\r\n1, 1.500000, 1, 3\r\n1, 1.490000, 1, 3\r\n");
    set.Integrals.push_back({.StartPoint = 9000, .EndPoint = -9, .Value = 1, .Label = {}}); // of another row
    ASSERT_TRUE(WriteDataIntCurve(folder / "curve.csv", *g, ListUnit::hz));
    set.spec = {};
    ASSERT_TRUE(WriteDataIntCurve(folder / "curve.csv", *g, ListUnit::hz));
    EXPECT_TRUE(ReadText(folder / "curve.csv").ends_with("Integral\r\n"));
    EXPECT_FALSE(WriteDataIntCurve(folder / "no/such", *g, ListUnit::hz));
}

TEST(ListFiles, ReadBackWhatTheyWrote)
{
    const TempFolder folder;
    const auto g = Sample();
    for (const ListUnit unit : {ListUnit::ppm, ListUnit::hz, ListUnit::khz}) {
        ASSERT_TRUE(WriteDataRed(folder / "a.red", *g, unit));
        const auto peaks = ReadDataRed(folder / "a.red");
        ASSERT_TRUE(peaks);
        ASSERT_EQ(peaks->size(), 2U);
        EXPECT_NEAR((*peaks)[1].ppm, 6.5, 1e-5);
        EXPECT_NEAR((*peaks)[1].hz, 2600, 1);
        EXPECT_NEAR((*peaks)[1].height_percent, 25, 1e-3);
        for (const auto write : {WriteDataInt, WriteDataIntList}) {
            ASSERT_TRUE(write(folder / "a.int", *g, unit));
            const auto list = ReadDataInt(folder / "a.int");
            ASSERT_TRUE(list);
            ASSERT_EQ(list->regions.size(), 2U);
            EXPECT_EQ(list->unit, unit);
            EXPECT_NEAR(list->regions[1].start, unit == ListUnit::ppm ? 7 : unit == ListUnit::hz ? 2800 : 2.8, 1e-4);
            EXPECT_NEAR(list->regions[1].b1, -0.002, 1e-9);
            EXPECT_TRUE(list->regions[1].has_value);
        }
    }
    struct Case {
        const char *name, *text;
    };
    const Case bad[] = {
        {"empty", ""},
        {"no head", "1, 2, 3, 4, 5\n"},
        {"another list", "No, Something\n1, 2\n"},
        {"cut line", "No, Position(ppm), Frequency(Hz), Amplitude, Height(%)\n1, 2, 3\n"},
        {"words", "No, Integral, Start(ppm), End(ppm), B0/Ymax, B1/Ymax\n1, two, 3, 4, 5, 6\n"},
    };
    for (const Case& c : bad) {
        SCOPED_TRACE(c.name);
        WriteText(folder / "bad", c.text);
        EXPECT_FALSE(ReadDataRed(folder / "bad"));
        EXPECT_FALSE(ReadDataInt(folder / "bad"));
    }
    EXPECT_FALSE(ReadDataRed(folder / "none"));
}

} // namespace
} // namespace nmr::test
