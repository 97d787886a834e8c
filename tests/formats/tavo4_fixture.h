#pragma once
// A store whose sets have something in every place that a native file keeps.

#include "core/global_block.h"
#include "formats/tavo4.h"
#include "formats/tavo4_layout.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace nmr::test {

using FileBytes = std::vector<std::byte>;

inline constexpr char kTavo4Path[] = "/data/measured/first.tvo1";

inline std::unique_ptr<GlobalBlock> NewBlock()
{
    auto g = std::make_unique<GlobalBlock>();
    NumberSlots(*g);
    return g;
}

/// Points and axis: rows of distinct numbers on an axis that a float can start.
inline DataSet& FillPoints(GlobalBlock& g, std::int16_t slot, std::int32_t points, std::int32_t rows = 1)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    ClearDataSet(g, slot);
    set.par.POINT = points;
    set.par.SMODE = 1;
    set.RowCount = rows;
    EXPECT_TRUE(AllocateSpecBuffer(g, points, slot));
    set.par.Resolution2 = 0.03125;
    set.par.OBFRQ0PPM = 400.0;
    set.par.ObsCenter = 400.002;
    for (std::size_t i = 0; i < static_cast<std::size_t>(points); ++i) {
        set.spec.XAxis[i] = -1.5 + static_cast<double>(i) * set.par.Resolution2;
        for (std::size_t row = 0; row < static_cast<std::size_t>(rows); ++row) {
            set.spec.DataRe[row][i] = 1000.0F * static_cast<float>(slot) + static_cast<float>(100 * row + i) + 0.5F;
            set.spec.DataIm[row][i] = -set.spec.DataRe[row][i] / 3.0F;
        }
    }
    set.par.FREQU = 400.0F * 0.03125F * static_cast<float>(points - 1);
    set.par.RESOL = static_cast<double>(set.par.FREQU) / points;
    CopyDataToSource(set);
    return set;
}

inline FontRec TestFont(int number)
{
    FontRec font;
    font.Name = "Font " + std::to_string(number);
    font.Size = 8.5F + static_cast<float>(number);
    font.Bold = -1;
    font.Italic = static_cast<std::int16_t>(number % 2);
    font.Underline = 1;
    font.Strike = -1;
    font.Color = 0x00102030 + number;
    return font;
}

inline void FillLists(DataSet& set)
{
    set.Integrals = {{0.25F, 3, 0.5F, 16777215, 0, 0.125F, 0, 0, ""}, {1.25F, 40, 1.5F, 48, 0, 0.0625F, 0, 0, ""}};
    set.IntegralRef = 1;
    set.IntegralAux = 2;
    set.IntegralDigits = 4;
    set.IntegralScale = 3.0F;
    set.IntegralOffset = 0.75F;
    set.Peaks = {{5, 1.5F, 2.5F, 123.456, 1}, {16777216, 3.5F, 4.5F, -7.25, -2}};
    set.PeakNoise = 0.02F;
    set.PeakThreshold = 0.03F;
    set.PeakWidth = 6.0F;
    set.PeakFlags = 1;
    set.par.PeakDigits = 3;
    MultiViewEntry view;
    view.FrameLeft = 1.5F;
    view.FrameTop = 2.5F;
    view.FrameRight = 3.5F;
    view.FrameBottom = 4.5F;
    view.ShownLeft = 5.5F;
    view.ShownRight = 6.5F;
    view.MagnifyX = 7.5F;
    view.MagnifyY = 8.5F;
    view.Offset = 9.5F;
    for (std::size_t i = 0; i < 18; ++i) view.Words[i] = static_cast<std::int16_t>(i + 11);
    for (std::size_t i = 0; i < view.Values.size(); ++i) view.Values[i] = static_cast<float>(i) + 100.5F;
    view.FontAxis = TestFont(4);
    view.FontPeakPosition = TestFont(5);
    view.FontPeakNumber = TestFont(6);
    view.FontIntegral = TestFont(7);
    set.MultiViews = {view, view};
    set.MultiViews[1].FrameLeft = -1.5F;
    set.SimFlag = 1;
    set.SimWords = {2, 11, 12, 13, 14};
    set.SimPeaks = {{1.0F, 2.0F, 3.0F, 0.25F, {}}, {5.0F, 6.0F, 7.0F, 0.5F, {}}};
    set.Regions[0] = {255, 1.5F, 2.5F};
    set.Regions[40] = {65280, -0.5F, 0.0F};
}

inline void FillTexts(DataSet& set)
{
    set.par.COMNT =
        "\xE3\x82\xA8\xE3\x82\xBF\xE3\x83\x8E\xE3\x83\xBC\xE3\x83\xAB in CDCl3\r\nsecond line "; // Japanese "ethanol"
    set.CommentRtf = "{\\rtf1 rich}";
    set.CommentRtfPlain = set.par.COMNT;
    set.SimComment = "fit of two lines";
    set.par.SampleId = "\\< S-1 CDCl\\-1 3\\-0 \\>";
    set.XLabelPpm = "\\< \\b1 p\\b0 pm\\>";
    set.XLabelHz = "Hz";
    set.XLabelKHz = "kHz";
    set.FFTUser = "Yamada";
    set.HistoryHead2 = "head";
    set.HistoryA = {"Yamada", "", "Sato"};
    set.HistoryB = {"2024-05-01 Save", "", "2024-05-02 Save"};
    set.par.DATIM = "14/Mar/2024 15:09:26";
    set.par.OrgFile = "/data/raw/1/fid";
    set.par.FileName = kTavo4Path;
    set.RowHeading = "t1";
    set.RowParamName = "delay";
    set.RowParamUnit = "s";
}

inline void FillDisplay(DataSet& set)
{
    set.FontMain = TestFont(1);
    set.FontPeak = TestFont(2);
    set.FontInt = TestFont(3);
    for (std::size_t i = 0; i < set.PrintWords.size(); ++i) set.PrintWords[i] = static_cast<std::int16_t>(i + 1);
    set.PrintValues = {0.5F, 1.5F};
    for (std::size_t i = 0; i < set.PrintTable.size(); ++i) set.PrintTable[i] = 0xC0000000U + static_cast<unsigned>(i);
    set.par.FIDShift = -70;
    set.par.WindowFunc = 3;
    set.RowMode = 2;
    set.RowMin = 0.5F;
    set.RowMax = 2.5F;
    set.RowWord = 0xDEADBEEF;
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.RowCount); ++i) {
        set.RowValueA[i] = 1.0F + static_cast<float>(i);
        set.RowValueB[i] = 10.0F + static_cast<float>(i);
    }
    for (std::size_t i = 0; i < 32; ++i) {
        const auto n = static_cast<float>(i);
        set.PhaseTableA[i] = 100 + n;
        set.PhaseTableB[i] = 200 + n;
        set.PhaseTableC[i] = 300 + n;
        set.PhaseTableD[i] = 400 + n;
    }
}

/// A set with something in every list, text and table.
inline DataSet& FillSet(GlobalBlock& g, std::int16_t slot, std::int32_t points = 8, std::int32_t rows = 2)
{
    DataSet& set = FillPoints(g, slot, points, rows);
    FillLists(set);
    FillTexts(set);
    FillDisplay(set);
    return set;
}

inline std::int32_t Long(const FileBytes& file, std::size_t at)
{
    return tavo4::FromLittle<std::int32_t>(ByteSpan(file).subspan(at));
}
inline void PutLong(FileBytes& file, std::size_t at, std::int32_t value)
{
    tavo4::Store(tavo4::MutableBytes(file).subspan(at), value);
}
/// Start of the section with this label at or behind `from`; fails the test when there is none.
inline std::size_t FindLabel(const FileBytes& file, std::string_view label, std::size_t from = 0)
{
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    std::string padded(label);
    padded.resize(16);
    for (std::size_t at = text.find(padded, from); at != std::string_view::npos; at = text.find(padded, at + 1))
        if (at % 16 == 0) return at;
    ADD_FAILURE() << "no section " << label;
    return 0;
}

inline FileBytes Encoded(GlobalBlock& g, std::int16_t slot = 0, const std::string& path = kTavo4Path)
{
    auto bytes = EncodeTavo4(g, path, slot);
    EXPECT_TRUE(bytes) << (bytes ? "" : bytes.error().text);
    return bytes ? *bytes : FileBytes{};
}

} // namespace nmr::test
