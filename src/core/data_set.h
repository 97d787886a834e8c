#pragma once
// One measurement: parameters, points, analysis lists. Names of fields are those under which they
// travel in files and logs, so they keep their spelling.

#include "core/row_array.h"
#include "core/vendor_processing.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nmr {

inline constexpr int kSlotCount = 21;
inline constexpr std::int16_t kScratchSlotNumber = 100;
inline constexpr float kNoTemperature = -273.15F;

/// Picked peak.
struct PeakEntry {
    std::int32_t Point = 0; ///< index as stored by the picking; clamp before indexing data
    float Height = 0.0F;    ///< 0 unless a file gave it: lists compute it
    float Amplitude = 0.0F; ///< likewise
    double Position = 0.0;  ///< Hz relative to XAxis[0]: ppm = XAxis[0] + Position / OBFRQ0PPM
    std::int16_t Kind = 0;
};

/// Integral region. StartPoint and EndPoint are the truth for sums, Start and End for display.
struct IntegralEntry {
    float Start = 0.0F; ///< ppm relative to XAxis[0]
    std::int32_t StartPoint = 0;
    float End = 0.0F; ///< ppm relative to XAxis[0]
    std::int32_t EndPoint = 0;
    std::int32_t Flag = 0;
    float B0 = 0.0F;
    float B1 = 0.0F;
    float Value = 0.0F;
    std::string Label;
};

/// Coloured region, in use when Start or End is not 0.
struct RegionColor {
    std::int32_t Color = -1; ///< red + 256 green + 65536 blue, or -1 for none
    float Start = 0.0F;      ///< absolute ppm
    float End = 0.0F;        ///< absolute ppm
};

struct FontRec {
    std::string Name = "Liberation Sans";
    float Size = 10.0F; ///< points
    std::int16_t Bold = 0;
    std::int16_t Italic = 0;
    std::int16_t CharSet = 0;
    std::int16_t Underline = 0;
    std::int16_t Strike = 0;
    std::int32_t Color = 0; ///< red + 256 green + 65536 blue
};

/// Enlarged inset view.
struct MultiViewEntry {
    float FrameLeft = 0, FrameTop = 0, FrameRight = 0, FrameBottom = 0;
    float ShownLeft = 0, ShownRight = 0, ShownTop = 0, ShownBottom = 0;
    float MagnifyX = 2, MagnifyY = 2, Offset = 0;
    FontRec FontAxis, FontPeakPosition, FontPeakNumber, FontIntegral;
    // Axis and number formats. Words in the order of the record: twelve of the axis (unit, tic mode,
    // interval pairs), peak unit, peak digits, integral digits, one without a name, use of the display
    // font, transparency. Values: a reserved one, six of the axis, then height of the leadout line,
    // its upper and its bottom position.
    std::array<std::int16_t, 24> Words{};
    std::array<float, 10> Values{};
    std::array<std::string, 4> Labels;
};

/// A part of a native file that is not used here: kept as bytes, written back when the set is saved.
struct CarriedSection {
    std::string Label;        ///< "## PICTURE-0"
    std::int64_t Address = 0; ///< where it stood: addresses inside it count from the start of that file
    std::vector<std::byte> Bytes;
};

/// Peak of the deconvolution table. Position is ppm relative to XAxis[0].
struct SimPeak {
    float Height = 0, Width = 0, Position = 0, GaussRatio = 0;
    std::array<std::int16_t, 4> Fix{};
};

/// The scalar fields of a set, in the order of the record. Frequencies of the observe channel
/// (OBFRQ, ObsCenter, OBFRQ0PPM) are MHz, widths Hz, delays s, pulses microseconds.
struct ParamBlock {
    std::int16_t SlotNumber = 0;
    std::int16_t SubKind = 0;
    std::int16_t DataKind = 0; ///< low 16 bits of the DataTypeCode
    std::string DTYPE;         ///< type tag of the data as read, such as "BRU1"
    std::string OrgFile;
    std::string FileName;
    std::int16_t Flag20 = 0;
    float ADBIT = 12.0F;
    std::string ExpComment2;
    float IfGain = 0;
    std::int16_t AcqMode = 0;
    std::int16_t FFTMode = 0;
    float ACQTM = 0;                           ///< s
    float BF1 = 0.25F, BF2 = 0.1F, GF = 0.25F; ///< Hz
    // In the order of the record; percent of the FID.
    float WinStart1 = 0, WinEnd2 = 100, WinStart2 = 0, WinStart3 = 0, WinEnd3 = 100, WinStart4 = 0, WinEnd4 = 100;
    std::array<std::int32_t, 5> WinFlags{0, 1, 1, 1, 1};
    float CLFRQ = 0;
    std::int32_t CLPNT = 0;
    double ClockSpan = 0;
    float CLRSO = 0;
    std::string ExpTitle;
    std::string COMNT;
    float CSPED = 0;              ///< Hz
    float CTEMP = kNoTemperature; ///< degrees Celsius
    std::int32_t RowBase = 1;
    std::string DATIM;
    float DELAY = 0;
    float DEADT = 0;
    std::int16_t DataFormat = 0;
    std::int32_t DUMMY = 0;
    float Limit164 = 1e-6F;
    std::string EXMOD;
    std::string EXPCM;
    float FlagA = 0;
    std::int32_t FIDPoints = 0;    ///< measured complex points
    std::int32_t FIDPointsRaw = 0; ///< length of the FID as read: a power of two, never altered by a fill
    std::string FilterType;
    float FILTR = 0; ///< Hz
    float FREQU = 0; ///< spectral width, Hz
    std::string GradProg;
    std::int32_t FlagB = 0;
    float IRFRQ = 0;
    std::string Instrument;
    double BaseValue = 0;
    float INTVL = 0;
    double SpanOrg = 0;
    std::int16_t IRATN = 0;
    float IRFIN = 0, IRFN2 = 0;
    std::string IRTitle;
    std::string IRNUC = "NUL";
    std::int16_t IrrFlag = 0;
    float IRPHS = 0;
    std::int16_t IRRPW = 0;
    float IRSET = 0, IRST2 = 0;
    float IWT = 0;
    std::int32_t DateSerial = 0;             ///< days from 30 Dec 1899
    float TimeOfDay = 0;                     ///< fraction of the day
    float JCNST = 125.0F;                    ///< Hz
    std::array<std::uint32_t, 9> FlagCtoK{}; ///< instrument words, carried as raw 32-bit values
    std::array<std::int32_t, 5> LOOP{};
    std::int32_t FlagL = 0;
    double ObsCenter = 0;     ///< MHz: frequency of the centre of the spectrum
    double OBFRQ0PPM = 0;     ///< MHz: the factor from ppm to Hz
    double OBFRQ0PPMRead = 0; ///< the same as first read
    std::int16_t OBATN = 0;
    float OBFIN = 0, OBFN2 = 0;
    std::string OBNUC;
    float OBPHS = 0;
    float OBSET = 0, OBST2 = 0;
    float OBFRQ = 0;
    float PD = 0;
    std::array<float, 5> PI{};
    std::int32_t POINT = 0; ///< points of each row
    float FlagM = 0;
    std::string Probe;
    std::int16_t ProbeRange = 0;
    std::string ProbeSerial;
    std::array<float, 5> PS{};
    float TempLimit1 = 10.7F, TempLimit2 = 20.0F;
    std::string PulseProg;
    std::array<float, 5> PW{10.0F, 0, 0, 0, 0};
    float SMEXR = 0;        ///< ppm of the reference point
    float RefX = 0;         ///< set with SMEXR
    std::int32_t SMTMS = 0; ///< index of the reference point
    std::int32_t RefState = 0;
    float FlagN = 0;
    double RESOL = 0;       ///< Hz per point
    double Resolution2 = 0; ///< ppm per point, signed; every routine that builds XAxis sets it
    std::int16_t FlagO = 0;
    std::int32_t RGAIN = 0;
    std::int16_t SMODE = 0; ///< 0 FID, 1 spectrum
    std::string SampleName;
    std::string SampleId;
    std::int32_t SCANS = 0;
    std::string SampleMisc2, SampleMisc1;
    std::string SLVNT;
    std::int16_t SpinFlag = 0;
    float SpinSet = 0;
    std::array<float, 4> Trap{0, 0, 80, 100}; ///< Trap1..Trap4, percent
    float FlagP = 0;
    float TempSet = kNoTemperature;
    std::array<float, 5> Scan2{};
    std::int32_t TIMES = 0;
    std::int32_t TOSCN = 0;
    std::int32_t RowCountCopy = 0;
    float TR = 0;
    std::uint64_t Span2 = 0; ///< raw 8 bytes
    std::int16_t TRATN = 0;
    float TRFIN = 0, TRFN2 = 0;
    float TRFRQ = 0;
    std::string TRNUC = "NUL";
    float TrPulse = 0, TRPHS = 0;
    std::int16_t TRRPW = 0;
    std::int16_t TrFlag = 0;
    float TRSET = 0, TRST2 = 0;
    float ExtraA = 0, ExtraB = 0;
    float ProcLimit = 4000.0F;
    std::int32_t ProcFlag = 0;
    std::string Operator;
    std::string InstrumentID;
    std::string DataVersion;
    float DataMax = 0, DataMin = 0;
    float YFill = 1.0F;     ///< share of the plot height that the highest point reaches
    float DispBase = 0.05F; ///< offset ratio of the base line in the plot
    float PrintLeftMargin = 0.5F, PrintTopMargin = 2.0F;
    float YMag = 0, YOffset = 0;
    float DispLeft = 0;  ///< largest magnitude: the unit of peak levels and integrals
    float DispRight = 0; ///< smallest real value
    std::int16_t DataChanged = 0;
    std::int16_t DataFromFile = 0;
    std::int32_t FIDShift = 0;
    std::int16_t WindowFunc = 0; ///< 0 exponential, 1 sine bell, 2 Hann, 3 Gaussian, 4 Blackman Harris
    // Phase, shift and digital-filter words.
    std::int32_t PhaseP0 = 0; ///< pivot found at the last automatic phasing
    std::int16_t BaseLineDone = 0;
    std::int16_t PhaseFlag = 0;
    std::int16_t PeakDigits = 0;
    float PhaseWord1 = 0;
    std::int16_t PhaseWord2 = 0;
    double PhaseWord3 = 0;
    std::array<std::uint32_t, 2> PhaseWord4to5{};
    std::int16_t PhaseWord6 = 0;
    std::array<std::uint32_t, 7> PhaseWord7to13{}; ///< raw 32-bit words, carried
    std::uint64_t TimeStamp2 = 0;                  ///< raw 8 bytes
    // What the file says of its digital filter and reference; 0 when it says nothing.
    double GroupDelay = 0; ///< complex points before the FID's true start
    double FileRefMHz = 0; ///< 0 ppm frequency of the file's own
};

/// The point arrays of a slot; every row has points + 1 elements.
struct SpecBuffer {
    std::vector<double> XAxis; ///< ppm
    RowArray<float> DataRe, DataIm;
    RowArray<float> SourceRe, SourceIm; ///< before the current phase: a rotation goes from Source to Data
    RowArray<float> IntegralCurve;      ///< one row: copy of the shown row
    std::vector<float> IntegralSum;     ///< its axis, ppm
    RowArray<float> AuxCurve;           ///< one row, slots 1 to 20 only
    std::int32_t AllocatedPoints = 0;
};

struct DataSet {
    ParamBlock par;

    std::string FFTUser;
    std::string HistoryHead2;
    std::vector<std::string> HistoryA, HistoryB; ///< HistoryCount entries each

    std::int32_t ProcMark1 = 1; ///< zero-fill factor
    std::int32_t ProcMark2 = 1; ///< linear-prediction fill factor
    std::int32_t LPBackwardUsed = 0, LPStartUsed = 0, LPPointUsed = 0, LPOrderUsed = 0;

    std::int32_t RowCount = 1;
    std::array<float, 128> RowValueA{}, RowValueB{};
    std::string RowHeading;
    std::int16_t RowMode = 0;
    std::string RowParamName, RowParamUnit;
    float RowMin = 0, RowMax = 1;
    std::array<float, 32> PhaseTableA{}, PhaseTableB{}, PhaseTableC{}, PhaseTableD{};

    SpecBuffer spec;

    std::vector<IntegralEntry> Integrals;
    std::int16_t IntegralRef = 0;
    float IntegralScale = 1.0F;
    std::int16_t IntegralAux = 0;
    float IntegralOffset = 1.0F;
    std::int16_t IntegralDigits = 0;

    FontRec FontMain;
    std::int16_t PeakFlags = 0;
    std::vector<PeakEntry> Peaks;
    float PeakThreshold = 0.005F, PeakNoise = 0.01F, PeakWidth = 0;
    FontRec FontPeak, FontInt;

    std::array<RegionColor, 41> Regions{};
    std::vector<MultiViewEntry> MultiViews; ///< at most 21

    std::int16_t SimFlag = 0;
    std::array<std::int32_t, 5> SimWords{};
    std::vector<SimPeak> SimPeaks;
    std::string SimComment;

    std::string XLabelPpm, XLabelHz, XLabelKHz;

    VendorProcessing vendor; ///< of a FID as read; starting values of the transform

    // What a native file brings besides.
    std::array<std::int16_t, 17> PrintWords{};  ///< print mode, then words of the print settings
    std::array<float, 2> PrintValues{};         ///< two more of them
    std::array<std::uint32_t, 40> PrintTable{}; ///< carried as raw words
    std::uint32_t RowWord = 0;                  ///< word of the array description, carried
    std::string CommentRtf;                     ///< the comment as rich text ...
    std::string CommentRtfPlain;                ///< ... of this COMNT: another one makes it stale
    std::vector<CarriedSection> Carried;        ///< slot 0 only: page layout and the like

    std::vector<std::string> Warnings; ///< what a reader mended or missed, one sentence each
};

// Positions of a peak: the only conversion for lists, drawing and files.
double PeakPpm(const DataSet& set, const PeakEntry& peak);
double PeakHz(const DataSet& set, const PeakEntry& peak);

/// ppm of a point; the index is clamped into the row.
double PointToPpm(const DataSet& set, std::int32_t point);
/// Nearest point of a ppm position on an axis of either direction, half to even, clamped to the row.
std::int32_t PpmToPoint(const DataSet& set, double ppm);
double PpmToHz(const DataSet& set, double ppm);

} // namespace nmr
