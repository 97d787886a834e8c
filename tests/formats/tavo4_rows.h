#pragma once
// The members of a set and their places in the native file, as literal numbers of bytes. Reader and writer
// know nothing of this table.

#include "formats/tavo4_fixture.h"

#include <variant>

namespace nmr::test {

using Place = std::variant<float*, double*, std::int16_t*, std::int32_t*, std::uint32_t*, std::uint64_t*, std::string*>;
/// A member and its offset in the section whose address stands at `entry` of the block's table.
struct Row {
    std::size_t entry, at;
    Place member;
};

/// Needs two integrals, peaks, views and lines of a fit, two rows, and three entries of history.
inline std::vector<Row> Rows(DataSet& d)
{
    ParamBlock& p = d.par;
    std::vector<Row> rows;
    const auto add = [&](std::size_t entry, std::initializer_list<std::pair<std::size_t, Place>> places) {
        for (const auto& [at, member] : places) rows.push_back({entry, at, member});
    };
    const auto run = [&](std::size_t entry, std::size_t at, auto& array, std::size_t first = 0, std::size_t step = 4) {
        for (std::size_t i = first; i < array.size(); ++i) rows.push_back({entry, at + step * (i - first), &array[i]});
    };
    const auto font = [&](std::size_t entry, std::size_t at, FontRec& f, std::size_t name, std::size_t color) {
        add(entry, {{at, &f.Size}, {at + 4, &f.Bold}, {at + 6, &f.Italic}, {at + 8, &f.Underline}});
        add(entry, {{at + 10, &f.Strike}, {at + name, &f.Name}, {at + color, &f.Color}});
    };
    // clang-format off
    add(40, {
        {48, &p.Probe}, {80, &p.Instrument}, {112, &p.PulseProg}, {144, &p.GradProg}, {176, &p.FilterType},
        {208, &p.SampleMisc1}, {224, &p.SampleMisc2}, {272, &p.ExpComment2}, {336, &p.IRTitle}, {368, &p.Flag20},
        {372, &p.IfGain}, {376, &p.Limit164}, {380, &p.SpinSet}, {384, &p.CSPED}, {388, &p.TempSet}, {392, &p.CTEMP},
        {396, &p.FlagP}, {400, &p.SpinFlag}, {404, &p.FlagB}, {408, &p.FlagL}, {412, &p.ProbeRange},
        {416, &p.FlagCtoK[0]}, {420, &p.FlagA}, {424, &p.FlagN}, {428, &p.DataFormat}, {444, &p.FlagCtoK[7]},
        {448, &p.FlagCtoK[1]}, {460, &p.FlagO}, {468, &p.OBFRQ}, {472, &p.OBSET}, {476, &p.OBFIN}, {480, &p.OBST2},
        {484, &p.OBFN2}, {488, &p.OBATN}, {492, &p.IRFRQ}, {496, &p.IRSET}, {500, &p.IRFIN}, {504, &p.IRST2},
        {508, &p.IRFN2}, {512, &p.IRPHS}, {516, &p.IRATN}, {520, &p.IRRPW}, {524, &p.IrrFlag}, {528, &p.TRFRQ},
        {532, &p.TRSET}, {536, &p.TRFIN}, {540, &p.TRST2}, {544, &p.TRFN2}, {548, &p.TRPHS}, {552, &p.TRATN},
        {556, &p.TRRPW}, {560, &p.TrFlag}, {624, &p.TR}, {628, &p.IWT}, {632, &p.DEADT}, {636, &p.DELAY},
        {640, &p.FlagM}, {644, &p.INTVL}, {648, &p.FILTR}, {660, &p.ADBIT}, {672, &p.OBNUC}, {680, &p.IRNUC},
        {688, &p.TRNUC}, {696, &p.SLVNT}, {712, &p.EXMOD}, {744, &p.EXPCM}, {1000, &p.ProbeSerial}, {1040, &p.TIMES},
        {1044, &p.SCANS}, {1048, &p.DUMMY}, {1052, &p.TOSCN}, {1056, &p.ACQTM}, {1060, &p.PD}, {1104, &p.TempLimit1},
        {1108, &p.TempLimit2}, {1112, &p.JCNST}, {1152, &p.SMTMS}, {1156, &p.RefX}, {1160, &p.BF1},
        {1180, &p.WinStart3}, {1184, &p.WinEnd3}, {1188, &p.PhaseWord6}, {1192, &p.PhaseWord7to13[1]},
        {1196, &p.PhaseWord7to13[0]}, {1216, &p.SpanOrg}, {1224, &p.OBPHS}, {1228, &p.TrPulse}, {1236, &p.DispLeft},
        {1244, &p.ProcLimit}, {1248, &p.ProcFlag}, {1252, &p.YFill}, {1256, &p.DispBase}, {1260, &p.PhaseWord4to5[0]},
        {1264, &p.PhaseWord3}, {1272, &p.PhaseWord4to5[1]}, {1276, &p.SMEXR}, {1280, &p.PhaseWord2}, {1284, &p.YMag},
        {1300, &p.GF}, {1304, &p.BF2}, {1308, &p.WinStart4}, {1312, &p.WinStart1}, {1316, &p.WinStart2},
        {1320, &p.WinEnd4}, {1324, &p.WinEnd2}, {1344, &p.AcqMode}, {1348, &p.FFTMode}, {1352, &p.RowBase},
        {1356, &p.PhaseWord7to13[3]}, {1360, &p.PhaseWord7to13[2]}, {1364, &p.PhaseWord7to13[6]},
        {1368, &p.PhaseWord7to13[5]}, {1372, &p.PhaseWord7to13[4]}, {1376, &p.TimeStamp2}, {1384, &p.RefState},
        {2064, &p.Operator}, {2128, &p.InstrumentID}, {2160, &p.DataVersion}, {2176, &p.DTYPE}});
    run(40, 564, p.LOOP); run(40, 584, p.PS); run(40, 604, p.Scan2); run(40, 1064, p.PW); run(40, 1084, p.PI);
    run(40, 1164, p.Trap); run(40, 1328, p.WinFlags, 1); run(40, 1552, d.PhaseTableB); run(40, 1680, d.PhaseTableA);
    run(40, 1808, d.PhaseTableD); run(40, 1936, d.PhaseTableC);
    add(64, {{20, &d.IntegralRef}, {24, &d.IntegralAux}, {26, &d.IntegralDigits}, {28, &d.IntegralScale}, {36, &d.IntegralOffset}});
    add(72, {{24, &d.PeakNoise}, {28, &d.PeakThreshold}, {32, &d.PeakWidth}, {36, &d.PeakFlags}, {38, &p.PeakDigits}});
    add(88, {{16, &d.SimFlag}});
    run(88, 24, d.SimWords, 1);
    for (std::size_t i = 0; i < 2; ++i) {
        IntegralEntry& area = d.Integrals[i];
        add(64, {{40 + 24 * i, &area.Start}, {44 + 24 * i, &area.End}, {48 + 24 * i, &area.B0}, {52 + 24 * i, &area.StartPoint}});
        PeakEntry& peak = d.Peaks[i];
        add(72, {{44 + 24 * i, &peak.Height}, {48 + 24 * i, &peak.Amplitude}, {52 + 24 * i, &peak.Kind}, {56 + 24 * i, &peak.Position}});
        SimPeak& sim = d.SimPeaks[i];
        add(88, {{272 + 20 * i, &sim.Height}, {276 + 20 * i, &sim.Width}, {280 + 20 * i, &sim.Position}, {284 + 20 * i, &sim.GaussRatio}});
        MultiViewEntry& v = d.MultiViews[i];
        const std::size_t at = 512 * i;
        add(80, {{40 + at, &v.FrameLeft}, {44 + at, &v.FrameTop}, {48 + at, &v.FrameRight}, {52 + at, &v.FrameBottom},
                 {56 + at, &v.ShownLeft}, {60 + at, &v.ShownRight}, {64 + at, &v.MagnifyX}, {68 + at, &v.MagnifyY},
                 {72 + at, &v.Offset}, {76 + at, &v.Values[0]}, {176 + at, &v.Words[15]}, {180 + at, &v.Words[16]},
                 {184 + at, &v.Words[17]}});
        for (std::size_t k = 0; k < 12; ++k) add(80, {{80 + 4 * k + at, &v.Words[k]}});
        for (std::size_t k = 0; k < 6; ++k) add(80, {{128 + 4 * k + at, &v.Values[1 + k]}});
        for (std::size_t k = 0; k < 3; ++k) add(80, {{152 + 4 * k + at, &v.Words[12 + k]}, {164 + 4 * k + at, &v.Values[7 + k]}});
        font(80, 248 + at, v.FontAxis, 12, 44); font(80, 296 + at, v.FontPeakPosition, 12, 44);
        font(80, 344 + at, v.FontPeakNumber, 12, 44); font(80, 392 + at, v.FontIntegral, 12, 44);
        add(104, {{100 + 8 * i, &d.RowValueB[i]}, {104 + 8 * i, &d.RowValueA[i]}});
        RegionColor& region = d.Regions[40 * i];
        add(144, {{32 + 640 * i, &region.Start}, {36 + 640 * i, &region.End}, {40 + 640 * i, &region.Color}});
        add(112, {{96 + 128 * i, &d.HistoryA[2 * i]}, {128 + 128 * i, &d.HistoryB[2 * i]}});
    }
    for (std::size_t k = 0; k < 9; ++k) add(96, {{16 + 4 * k, &d.PrintWords[k]}});
    for (std::size_t k = 0; k < 7; ++k) add(96, {{60 + 4 * k, &d.PrintWords[9 + k]}});
    add(96, {{52, &p.PrintTopMargin}, {56, &p.PrintLeftMargin}, {96, &d.PrintWords[16]}, {104, &p.WindowFunc}});
    run(96, 88, d.PrintValues); run(96, 108, d.PrintTable);
    add(104, {{16, &d.RowMode}, {20, &d.RowMin}, {24, &d.RowMax}, {28, &d.RowWord}, {32, &d.RowParamName}, {64, &d.RowParamUnit}, {128, &d.RowHeading}});
    add(112, {{16, &d.FFTUser}, {48, &d.HistoryHead2}});
    font(120, 16, d.FontMain, 16, 12); font(120, 64, d.FontPeak, 16, 12); font(120, 112, d.FontInt, 16, 12);
    add(128, {{16, &p.FileName}});
    add(176, {{16, &d.SimComment}}); add(192, {{16, &p.SampleId}});
    add(184, {{16, &d.XLabelPpm}, {80, &d.XLabelHz}, {144, &d.XLabelKHz}}); add(160, {{16, &d.XLabelPpm}, {80, &d.XLabelHz}, {144, &d.XLabelKHz}});
    // clang-format on
    return rows;
}

/// A value that belongs to one row: two members that have changed places are found.
template <class T>
T Unique(std::size_t n)
{
    if constexpr (std::is_same_v<T, std::string>)
        return "t" + std::to_string(n);
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(n) + T{0.25};
    else if constexpr (sizeof(T) == 2)
        return static_cast<T>(-1 - static_cast<int>(n));
    else
        return static_cast<T>(n + 1) << (8 * sizeof(T) - 16) | 0x55;
}

/// Gives every row a value of its own, which its place can hold.
inline void FillUnique(DataSet& set)
{
    const std::vector<Row> rows = Rows(set);
    for (std::size_t n = 0; n < rows.size(); ++n)
        std::visit([&](auto* member) { *member = Unique<std::decay_t<decltype(*member)>>(n); }, rows[n].member);
}

} // namespace nmr::test
