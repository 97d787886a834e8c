#include "formats/tavo4_tables.h"

namespace nmr::tavo4 {
namespace {

using P = ParamBlock;
using Short = std::int16_t;

// Limits of the temperature that make no sense are replaced by this one.
constexpr float kTempLimit = 10.6F;
constexpr std::int32_t kLargestGain = 32767;

template <auto Member>
constexpr Cell<P> TempLimit(std::uint16_t offset)
{
    Cell<P> cell = Number<Member>(offset);
    cell.put = [](const P& par, MutableBytes out) { Store(out, par.*Member > 0.0F ? par.*Member : kTempLimit); };
    return cell;
}

constexpr Cell<P> ReceiverGain(std::uint16_t offset)
{
    Cell<P> cell = Number<&P::RGAIN>(offset);
    cell.put = [](const P& par, MutableBytes out) { Store(out, par.RGAIN > kLargestGain ? -1 : par.RGAIN); };
    return cell;
}

/// The date once more; only the first is read.
constexpr Cell<P> WrittenOnly(Cell<P> cell)
{
    cell.get = nullptr;
    return cell;
}

constexpr Cell<P> ConstantOne(std::uint16_t offset)
{
    return {offset, 2, [](const P&, MutableBytes out) { Store(out, Short{1}); }, nullptr};
}

// Elements of FlagCtoK.
enum Flag : std::size_t { kFlagC, kFlagD, kFlagE, kFlagF, kFlagG, kFlagH, kFlagI, kFlagJ, kFlagK };

constexpr Cell<P> kParameter[] = {
    Text<&P::DATIM>(16, 32),
    Text<&P::Probe>(48, 32),
    Text<&P::Instrument>(80, 32),
    Text<&P::PulseProg>(112, 32),
    Text<&P::GradProg>(144, 32),
    Text<&P::FilterType>(176, 32),
    Text<&P::SampleMisc1>(208, 16),
    Text<&P::SampleMisc2>(224, 48),
    Text<&P::ExpComment2>(272, 32),
    WrittenOnly(Text<&P::DATIM>(304, 32)),
    Text<&P::IRTitle>(336, 32),
    Number<&P::Flag20>(368),
    Number<&P::IfGain>(372),
    Number<&P::Limit164>(376),
    Number<&P::SpinSet>(380),
    Number<&P::CSPED>(384),
    Number<&P::TempSet>(388),
    Number<&P::CTEMP>(392),
    Number<&P::FlagP>(396),
    Number<&P::SpinFlag>(400),
    Number<&P::FlagB>(404),
    Number<&P::FlagL>(408),
    Number<&P::ProbeRange>(412),
    Element<&P::FlagCtoK, kFlagC>(416),
    Number<&P::FlagA>(420),
    Number<&P::FlagN>(424),
    Number<&P::DataFormat>(428),
    Element<&P::FlagCtoK, kFlagG, Short>(432),
    Element<&P::FlagCtoK, kFlagK, Short>(436),
    Element<&P::FlagCtoK, kFlagI, Short>(440),
    Element<&P::FlagCtoK, kFlagJ>(444),
    Element<&P::FlagCtoK, kFlagD>(448),
    Element<&P::FlagCtoK, kFlagE, Short>(452),
    Element<&P::FlagCtoK, kFlagF, Short>(456),
    Number<&P::FlagO>(460),
    Element<&P::FlagCtoK, kFlagH, Short>(464),
    Number<&P::OBFRQ>(468),
    Number<&P::OBSET>(472),
    Number<&P::OBFIN>(476),
    Number<&P::OBST2>(480),
    Number<&P::OBFN2>(484),
    Number<&P::OBATN>(488),
    Number<&P::IRFRQ>(492),
    Number<&P::IRSET>(496),
    Number<&P::IRFIN>(500),
    Number<&P::IRST2>(504),
    Number<&P::IRFN2>(508),
    Number<&P::IRPHS>(512),
    Number<&P::IRATN>(516),
    Number<&P::IRRPW>(520),
    Number<&P::IrrFlag>(524),
    Number<&P::TRFRQ>(528),
    Number<&P::TRSET>(532),
    Number<&P::TRFIN>(536),
    Number<&P::TRST2>(540),
    Number<&P::TRFN2>(544),
    Number<&P::TRPHS>(548),
    Number<&P::TRATN>(552),
    Number<&P::TRRPW>(556),
    Number<&P::TrFlag>(560),
    Run<&P::LOOP>(564),
    Run<&P::PS>(584),
    Run<&P::Scan2>(604),
    Number<&P::TR>(624),
    Number<&P::IWT>(628),
    Number<&P::DEADT>(632),
    Number<&P::DELAY>(636),
    Number<&P::FlagM>(640),
    Number<&P::INTVL>(644),
    Number<&P::FILTR>(648),
    Number<&P::SMODE>(652),
    ReceiverGain(656),
    Number<&P::ADBIT>(660),
    Text<&P::OBNUC>(672, 8),
    Text<&P::IRNUC>(680, 8),
    Text<&P::TRNUC>(688, 8),
    Text<&P::SLVNT>(696, 16),
    Text<&P::EXMOD>(712, 32),
    Text<&P::EXPCM>(744, 256),
    Text<&P::ProbeSerial>(1000, 32),
    Number<&P::TIMES>(1040),
    Number<&P::SCANS>(1044),
    Number<&P::DUMMY>(1048),
    Number<&P::TOSCN>(1052),
    Number<&P::ACQTM>(1056),
    Number<&P::PD>(1060),
    Run<&P::PW>(1064),
    Run<&P::PI>(1084),
    TempLimit<&P::TempLimit1>(1104),
    TempLimit<&P::TempLimit2>(1108),
    Number<&P::JCNST>(1112),
    ConstantOne(1132),
    Number<&P::POINT>(1136),
    Number<&P::FREQU>(1140),
    Number<&P::RESOL>(1144),
    Number<&P::SMTMS>(1152),
    Number<&P::RefX>(1156),
    Number<&P::BF1>(1160),
    Run<&P::Trap>(1164),
    Number<&P::WinStart3>(1180),
    Number<&P::WinEnd3>(1184),
    Number<&P::PhaseWord6>(1188),
    Element<&P::PhaseWord7to13, 1>(1192),
    Element<&P::PhaseWord7to13, 0>(1196),
    Number<&P::ObsCenter>(1200),
    Number<&P::OBFRQ0PPM>(1208),
    Number<&P::SpanOrg>(1216),
    Number<&P::OBPHS>(1224),
    Number<&P::TrPulse>(1228),
    // The largest magnitude takes the upper half of the span; whoever reads either has it so.
    Number<&P::Span2>(1232),
    Number<&P::DispLeft>(1236),
    Number<&P::RowCountCopy>(1240),
    Number<&P::ProcLimit>(1244),
    Number<&P::ProcFlag>(1248),
    Number<&P::YFill>(1252),
    Number<&P::DispBase>(1256),
    Element<&P::PhaseWord4to5, 0>(1260),
    Number<&P::PhaseWord3>(1264),
    Element<&P::PhaseWord4to5, 1>(1272),
    Number<&P::SMEXR>(1276),
    Number<&P::PhaseWord2>(1280),
    Number<&P::YMag>(1284),
    Number<&P::Resolution2>(1288),
    Number<&P::PhaseWord1>(1296),
    Number<&P::GF>(1300),
    Number<&P::BF2>(1304),
    Number<&P::WinStart4>(1308),
    Number<&P::WinStart1>(1312),
    Number<&P::WinStart2>(1316),
    Number<&P::WinEnd4>(1320),
    Number<&P::WinEnd2>(1324),
    Run<&P::WinFlags, 1>(1328),
    Number<&P::AcqMode>(1344),
    Number<&P::FFTMode>(1348),
    Number<&P::RowBase>(1352),
    Element<&P::PhaseWord7to13, 3>(1356),
    Element<&P::PhaseWord7to13, 2>(1360),
    Element<&P::PhaseWord7to13, 6>(1364),
    Element<&P::PhaseWord7to13, 5>(1368),
    Element<&P::PhaseWord7to13, 4>(1372),
    Number<&P::TimeStamp2>(1376),
    Number<&P::RefState>(1384),
    Text<&P::Operator>(2064, 64),
    Text<&P::InstrumentID>(2128, 32),
    Text<&P::DataVersion>(2160, 8),
    Text<&P::DTYPE>(2176, 8),
};

constexpr Cell<DataSet> kPhaseTables[] = {
    Run<&DataSet::PhaseTableB>(1552),
    Run<&DataSet::PhaseTableA>(1680),
    Run<&DataSet::PhaseTableD>(1808),
    Run<&DataSet::PhaseTableC>(1936),
};

/// The number of entries of a list; read with the entries, which know how many there can be.
template <auto List>
constexpr Cell<DataSet> Count(std::uint16_t offset)
{
    return {offset, 4,
            [](const DataSet& set, MutableBytes out) { Store(out, static_cast<std::int32_t>((set.*List).size())); },
            nullptr};
}

/// A copy of the display scale, which is read from the parameters alone.
constexpr Cell<DataSet> DisplayScaleCopy(std::uint16_t offset)
{
    return {offset, 4,
            [](const DataSet& set, MutableBytes out) { Store(out, set.Integrals.empty() ? 1.0F : set.par.YFill); },
            nullptr};
}

constexpr Cell<DataSet> kIntegral[] = {
    Count<&DataSet::Integrals>(16),       Number<&DataSet::IntegralRef>(20),   Number<&DataSet::IntegralAux>(24),
    Number<&DataSet::IntegralDigits>(26), Number<&DataSet::IntegralScale>(28), DisplayScaleCopy(32),
    Number<&DataSet::IntegralOffset>(36),
};

constexpr Cell<IntegralEntry> kIntegralEntry[] = {
    Number<&IntegralEntry::Start>(0),
    Number<&IntegralEntry::End>(4),
    Number<&IntegralEntry::B0>(8),
    Number<&IntegralEntry::StartPoint>(12),
    Number<&IntegralEntry::EndPoint, float>(16),
};

constexpr Short kDigitsOfEmptyList = 2;

constexpr Cell<DataSet> PeakDigits(std::uint16_t offset)
{
    return {offset, 2,
            [](const DataSet& set, MutableBytes out) {
                Store(out, set.Peaks.empty() ? kDigitsOfEmptyList : set.par.PeakDigits);
            },
            [](DataSet& set, ByteSpan in) { set.par.PeakDigits = FromLittle<Short>(in); }};
}

constexpr Cell<DataSet> kPeak[] = {
    Count<&DataSet::Peaks>(16),      Number<&DataSet::PeakNoise>(24), Number<&DataSet::PeakThreshold>(28),
    Number<&DataSet::PeakWidth>(32), Number<&DataSet::PeakFlags>(36), PeakDigits(38),
};

constexpr Cell<PeakEntry> kPeakEntry[] = {
    Number<&PeakEntry::Point, float>(0), Number<&PeakEntry::Height>(4),    Number<&PeakEntry::Amplitude>(8),
    Number<&PeakEntry::Kind>(12),        Number<&PeakEntry::Position>(16),
};

using V = MultiViewEntry;

template <auto Font>
constexpr Cell<V> ViewFont(std::uint16_t offset)
{
    return {offset, kFontSize, [](const V& view, MutableBytes out) { PutCells(out, FontCellsB(), view.*Font); },
            [](V& view, ByteSpan in) { GetCells(in, FontCellsB(), view.*Font); }};
}

constexpr Cell<V> kMultiView[] = {
    Number<&V::FrameLeft>(40),         Number<&V::FrameTop>(44),        Number<&V::FrameRight>(48),
    Number<&V::FrameBottom>(52),       Number<&V::ShownLeft>(56),       Number<&V::ShownRight>(60),
    Number<&V::MagnifyX>(64),          Number<&V::MagnifyY>(68),        Number<&V::Offset>(72),
    Element<&V::Values, 0>(76),        Element<&V::Words, 0>(80),       Element<&V::Words, 1>(84),
    Element<&V::Words, 2>(88),         Element<&V::Words, 3>(92),       Element<&V::Words, 4>(96),
    Element<&V::Words, 5>(100),        Element<&V::Words, 6>(104),      Element<&V::Words, 7>(108),
    Element<&V::Words, 8>(112),        Element<&V::Words, 9>(116),      Element<&V::Words, 10>(120),
    Element<&V::Words, 11>(124),       Element<&V::Values, 1>(128),     Element<&V::Values, 2>(132),
    Element<&V::Values, 3>(136),       Element<&V::Values, 4>(140),     Element<&V::Values, 5>(144),
    Element<&V::Values, 6>(148),       Element<&V::Words, 12>(152),     Element<&V::Words, 13>(156),
    Element<&V::Words, 14>(160),       Element<&V::Values, 7>(164),     Element<&V::Values, 8>(168),
    Element<&V::Values, 9>(172),       Element<&V::Words, 15>(176),     Element<&V::Words, 16>(180),
    Element<&V::Words, 17>(184),       ViewFont<&V::FontAxis>(248),     ViewFont<&V::FontPeakPosition>(296),
    ViewFont<&V::FontPeakNumber>(344), ViewFont<&V::FontIntegral>(392),
};

constexpr Cell<DataSet> SimCount(std::uint16_t offset)
{
    Cell<DataSet> cell = Element<&DataSet::SimWords, 0>(offset);
    cell.put = [](const DataSet& set, MutableBytes out) { Store(out, static_cast<std::int32_t>(set.SimPeaks.size())); };
    return cell;
}

constexpr Cell<DataSet> kSimulate[] = {
    Number<&DataSet::SimFlag>(16),      SimCount(20),
    Element<&DataSet::SimWords, 1>(24), Element<&DataSet::SimWords, 2>(28),
    Element<&DataSet::SimWords, 3>(32), Element<&DataSet::SimWords, 4>(36),
};

constexpr Cell<SimPeak> kSimPeak[] = {
    Number<&SimPeak::Height>(0),
    Number<&SimPeak::Width>(4),
    Number<&SimPeak::Position>(8),
    Number<&SimPeak::GaussRatio>(12),
};

constexpr Cell<DataSet> kPrintSet[] = {
    Element<&DataSet::PrintWords, 0>(16),  Element<&DataSet::PrintWords, 1>(20),  Element<&DataSet::PrintWords, 2>(24),
    Element<&DataSet::PrintWords, 3>(28),  Element<&DataSet::PrintWords, 4>(32),  Element<&DataSet::PrintWords, 5>(36),
    Element<&DataSet::PrintWords, 6>(40),  Element<&DataSet::PrintWords, 7>(44),  Element<&DataSet::PrintWords, 8>(48),
    Element<&DataSet::PrintWords, 9>(60),  Element<&DataSet::PrintWords, 10>(64), Element<&DataSet::PrintWords, 11>(68),
    Element<&DataSet::PrintWords, 12>(72), Element<&DataSet::PrintWords, 13>(76), Element<&DataSet::PrintWords, 14>(80),
    Element<&DataSet::PrintWords, 15>(84), Run<&DataSet::PrintValues>(88),        Element<&DataSet::PrintWords, 16>(96),
    Run<&DataSet::PrintTable>(108),
};

constexpr Cell<P> kPrintSetParameters[] = {
    Number<&P::PrintTopMargin>(52),
    Number<&P::PrintLeftMargin>(56),
    Number<&P::FIDShift, Short>(100),
    Number<&P::WindowFunc>(104),
};

constexpr Cell<DataSet> kArray[] = {
    Number<&DataSet::RowMode>(16),
    Number<&DataSet::RowMin>(20),
    Number<&DataSet::RowMax>(24),
    Number<&DataSet::RowWord>(28),
    Text<&DataSet::RowParamName>(32, 32),
    Text<&DataSet::RowParamUnit>(64, 32),
    {96, 4, [](const DataSet& set, MutableBytes out) { Store(out, set.RowCount); }, nullptr},
};

constexpr Cell<DataSet> kHistory[] = {
    Text<&DataSet::FFTUser>(16, 32),
    Text<&DataSet::HistoryHead2>(48, 32),
};

constexpr std::int32_t kNoColor = -1;

constexpr Cell<RegionColor> kRegion[] = {
    Number<&RegionColor::Start>(0),
    Number<&RegionColor::End>(4),
    {8, 4,
     [](const RegionColor& region, MutableBytes out) {
         Store(out, region.Start == 0.0F && region.End == 0.0F ? kNoColor : region.Color);
     },
     [](RegionColor& region, ByteSpan in) { region.Color = FromLittle<std::int32_t>(in); }},
};

constexpr Cell<FontRec> kFontA[] = {
    Number<&FontRec::Size>(0),      Number<&FontRec::Bold>(4),    Number<&FontRec::Italic>(6),
    Number<&FontRec::Underline>(8), Number<&FontRec::Strike>(10), Number<&FontRec::Color>(12),
    Text<&FontRec::Name>(16, 32),
};

constexpr Cell<FontRec> kFontB[] = {
    Number<&FontRec::Size>(0),      Number<&FontRec::Bold>(4),    Number<&FontRec::Italic>(6),
    Number<&FontRec::Underline>(8), Number<&FontRec::Strike>(10), Text<&FontRec::Name>(12, 32),
    Number<&FontRec::Color>(44),
};

} // namespace

// clang-format off
Cells<ParamBlock> ParameterCells() { return kParameter; }
Cells<DataSet> PhaseTableCells() { return kPhaseTables; }
Cells<DataSet> IntegralCells() { return kIntegral; }
Cells<IntegralEntry> IntegralEntryCells() { return kIntegralEntry; }
Cells<DataSet> PeakCells() { return kPeak; }
Cells<PeakEntry> PeakEntryCells() { return kPeakEntry; }
Cells<MultiViewEntry> MultiViewCells() { return kMultiView; }
Cells<DataSet> SimulateCells() { return kSimulate; }
Cells<SimPeak> SimPeakCells() { return kSimPeak; }
Cells<DataSet> PrintSetCells() { return kPrintSet; }
Cells<ParamBlock> PrintSetParameterCells() { return kPrintSetParameters; }
Cells<DataSet> ArrayCells() { return kArray; }
Cells<DataSet> HistoryCells() { return kHistory; }
Cells<RegionColor> RegionCells() { return kRegion; }
Cells<FontRec> FontCellsA() { return kFontA; }
Cells<FontRec> FontCellsB() { return kFontB; }
// clang-format on

} // namespace nmr::tavo4
