#include "core/param_table.h"

#include "core/numbers.h"
#include "core/text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <type_traits>

namespace nmr {

namespace {

using FloatOf4 = ElementOf<float, 4>;
using FloatOf5 = ElementOf<float, 5>;
using IntOf5 = ElementOf<std::int32_t, 5>;

constexpr std::string_view kText;
constexpr std::string_view kShort = "#####0";
constexpr std::string_view kWhole = "########0";
constexpr std::string_view kPhase = "#####0.0#";
constexpr std::string_view kFloat = "#####0.0###";
constexpr std::string_view kLong = "#####0.0############";

// Key, member, label, pattern, unit. Fields that only pass through the native file have no row.
constexpr ParamField kFields[] = {
    {"DTYPE", "DTYPE", "Data Type(Org.)", kText, "", &ParamBlock::DTYPE},
    {"", "OrgFile", "Original File", kText, "", &ParamBlock::OrgFile},
    {"DFILE", "FileName", "File Name", kText, "", &ParamBlock::FileName},
    {"ADBIT", "ADBIT", "AD Bit", "#####", "", &ParamBlock::ADBIT},
    {"", "ExpComment2", "ExpComment-2", kText, "", &ParamBlock::ExpComment2},
    {"", "IfGain", "IF Gain", kFloat, "", &ParamBlock::IfGain},
    {"", "AcqMode", "Acq Mode", kShort, "", &ParamBlock::AcqMode},
    {"", "FFTMode", "FFT Mode", kShort, "", &ParamBlock::FFTMode},
    {"ACQTM", "ACQTM", "Acquisition Time", kFloat, " s", &ParamBlock::ACQTM},
    {"", "BF1", "BF", kFloat, " Hz", &ParamBlock::BF1},
    {"", "BF2", "BF2", kFloat, " Hz", &ParamBlock::BF2},
    {"", "GF", "GF", kFloat, " Hz", &ParamBlock::GF},
    {"CLFRQ", "CLFRQ", "Clock Freq.", kFloat, "", &ParamBlock::CLFRQ},
    {"CLPNT", "CLPNT", "Clock Point", kWhole, "", &ParamBlock::CLPNT},
    {"", "ClockSpan", "Clock Span", kLong, "", &ParamBlock::ClockSpan},
    {"CLRSO", "CLRSO", "Clock Resolution", kFloat, "", &ParamBlock::CLRSO},
    {"", "ExpTitle", "Title", kText, "", &ParamBlock::ExpTitle},
    {"COMNT", "COMNT", "Comment", kText, "", &ParamBlock::COMNT},
    {"CSPED", "CSPED", "Spinning Speed", kFloat, " Hz", &ParamBlock::CSPED},
    {"CTEMP", "CTEMP", "Temperature", kFloat, "", &ParamBlock::CTEMP},
    {"", "RowBase", "Moving Average Points", kWhole, "", &ParamBlock::RowBase},
    {"DATIM", "DATIM", "Date", kText, "", &ParamBlock::DATIM},
    {"DELAY", "DELAY", "delay", kFloat, "", &ParamBlock::DELAY},
    {"DEADT", "DEADT", "dead time", kFloat, "", &ParamBlock::DEADT},
    {"", "DataFormat", "Data Type", kShort, "", &ParamBlock::DataFormat},
    {"DUMMY", "DUMMY", "Dummy Scan", kWhole, "", &ParamBlock::DUMMY},
    {"EXMOD", "EXMOD", "ExMode", kText, "", &ParamBlock::EXMOD},
    {"EXPCM", "EXPCM", "ExpComment", kText, "", &ParamBlock::EXPCM},
    {"", "FIDPoints", "FID Point", kWhole, "", &ParamBlock::FIDPoints},
    {"", "FIDPointsRaw", "FID Point(Read)", kWhole, "", &ParamBlock::FIDPointsRaw},
    {"", "FilterType", "Filter Type", kText, "", &ParamBlock::FilterType},
    {"FILTR", "FILTR", "Filter", kFloat, " Hz", &ParamBlock::FILTR},
    {"FREQU", "FREQU", "Frequency(Span)", kFloat, " Hz", &ParamBlock::FREQU},
    {"", "GradProg", "Gradient Program", kText, "", &ParamBlock::GradProg},
    {"IRFRQ", "IRFRQ", "IrrFreq", kFloat, " MHz", &ParamBlock::IRFRQ},
    {"", "Instrument", "Instrument", kText, "", &ParamBlock::Instrument},
    {"", "BaseValue", "Base Value", kLong, "", &ParamBlock::BaseValue},
    {"INTVL", "INTVL", "Pulse Interval", kFloat, "", &ParamBlock::INTVL},
    {"", "SpanOrg", "Frequency(Original Span)", kLong, " Hz", &ParamBlock::SpanOrg},
    {"IRATN", "IRATN", "Irr Attn.", kShort, "", &ParamBlock::IRATN},
    {"IRFIN", "IRFIN", "IrrFine", kFloat, " Hz", &ParamBlock::IRFIN},
    {"IRFN2", "IRFN2", "IrrFine-2", kFloat, " Hz", &ParamBlock::IRFN2},
    {"", "IRTitle", "Irr Title", kText, "", &ParamBlock::IRTitle},
    {"IRNUC", "IRNUC", "IrrNuc", kText, "", &ParamBlock::IRNUC},
    {"IRPHS", "IRPHS", "Irr Phase", kPhase, "", &ParamBlock::IRPHS},
    {"IRRPW", "IRRPW", "IrrPulse width", kShort, "", &ParamBlock::IRRPW},
    {"IRSET", "IRSET", "IrrSet", kFloat, " kHz", &ParamBlock::IRSET},
    {"IRST2", "IRST2", "IrrSet-2", kFloat, " kHz", &ParamBlock::IRST2},
    {"IWT", "IWT", "Init. Wait", kFloat, "", &ParamBlock::IWT},
    {"", "JCNST", "J-CH", kFloat, " Hz", &ParamBlock::JCNST},
    {"LOOP1", "LOOP1", "Loop-1", kWhole, "", IntOf5{&ParamBlock::LOOP, 0}},
    {"LOOP2", "LOOP2", "Loop-2", kWhole, "", IntOf5{&ParamBlock::LOOP, 1}},
    {"LOOP3", "LOOP3", "Loop-3", kWhole, "", IntOf5{&ParamBlock::LOOP, 2}},
    {"LOOP4", "LOOP4", "Loop-4", kWhole, "", IntOf5{&ParamBlock::LOOP, 3}},
    {"LOOP5", "LOOP5", "Loop-5", kWhole, "", IntOf5{&ParamBlock::LOOP, 4}},
    {"", "ObsCenter", "Obs. Center Freq.", kLong, "", &ParamBlock::ObsCenter},
    {"", "OBFRQ0PPM", "Obs. Freq.(0 ppm)", kLong, "", &ParamBlock::OBFRQ0PPM},
    {"", "OBFRQ0PPMRead", "Obs. Freq.(0 ppm, Read)", kLong, "", &ParamBlock::OBFRQ0PPMRead},
    {"OBATN", "OBATN", "Obs Attn.", kShort, "", &ParamBlock::OBATN},
    {"OBFIN", "OBFIN", "ObsFine", kFloat, " Hz", &ParamBlock::OBFIN},
    {"OBFN2", "OBFN2", "ObsFine-2", kFloat, " Hz", &ParamBlock::OBFN2},
    {"OBNUC", "OBNUC", "ObNuc", kText, "", &ParamBlock::OBNUC},
    {"OBPHS", "OBPHS", "Obs phase", kPhase, "", &ParamBlock::OBPHS},
    {"OBSET", "OBSET", "ObsSet", kFloat, " kHz", &ParamBlock::OBSET},
    {"OBST2", "OBST2", "ObsSet-2", kFloat, " kHz", &ParamBlock::OBST2},
    {"OBFRQ", "OBFRQ", "ObsFreq", kFloat, " MHz", &ParamBlock::OBFRQ},
    {"PD", "PD", "PD", kFloat, " s", &ParamBlock::PD},
    {"PI1", "PI1", "Pulse Intv-1", kFloat, "", FloatOf5{&ParamBlock::PI, 0}},
    {"PI2", "PI2", "Pulse Intv-2", kFloat, "", FloatOf5{&ParamBlock::PI, 1}},
    {"PI3", "PI3", "Pulse Intv-3", kFloat, "", FloatOf5{&ParamBlock::PI, 2}},
    {"PI4", "PI4", "Pulse Intv-4", kFloat, "", FloatOf5{&ParamBlock::PI, 3}},
    {"PI5", "PI5", "Pulse Intv-5", kFloat, "", FloatOf5{&ParamBlock::PI, 4}},
    {"POINT", "POINT", "Point", kWhole, "", &ParamBlock::POINT},
    {"", "Probe", "Probe Head", kText, "", &ParamBlock::Probe},
    {"", "ProbeSerial", "Probe Serial No.", kText, "", &ParamBlock::ProbeSerial},
    {"PS1", "PS1", "Pulse Sequence-1", kFloat, "", FloatOf5{&ParamBlock::PS, 0}},
    {"PS2", "PS2", "Pulse Sequence-2", kFloat, "", FloatOf5{&ParamBlock::PS, 1}},
    {"PS3", "PS3", "Pulse Sequence-3", kFloat, "", FloatOf5{&ParamBlock::PS, 2}},
    {"PS4", "PS4", "Pulse Sequence-4", kFloat, "", FloatOf5{&ParamBlock::PS, 3}},
    {"PS5", "PS5", "Pulse Sequence-5", kFloat, "", FloatOf5{&ParamBlock::PS, 4}},
    {"", "PulseProg", "Pulse Program", kText, "", &ParamBlock::PulseProg},
    {"PW1", "PW1", "Pulse-1", kFloat, "", FloatOf5{&ParamBlock::PW, 0}},
    {"PW2", "PW2", "Pulse-2", kFloat, "", FloatOf5{&ParamBlock::PW, 1}},
    {"PW3", "PW3", "Pulse-3", kFloat, "", FloatOf5{&ParamBlock::PW, 2}},
    {"PW4", "PW4", "Pulse-4", kFloat, "", FloatOf5{&ParamBlock::PW, 3}},
    {"PW5", "PW5", "Pulse-5", kFloat, "", FloatOf5{&ParamBlock::PW, 4}},
    {"SMEXR", "SMEXR", "Reference", kFloat, "", &ParamBlock::SMEXR},
    {"", "RefX", "Reference Position", kFloat, " ppm", &ParamBlock::RefX},
    {"SMTMS", "SMTMS", "Ref. Point", kWhole, "", &ParamBlock::SMTMS},
    {"", "RefState", "Reference State", kWhole, "", &ParamBlock::RefState},
    {"RESOL", "RESOL", "Resolution", "####0.0####", "", &ParamBlock::RESOL},
    {"", "Resolution2", "Resolution(ppm)", kLong, " ppm", &ParamBlock::Resolution2},
    {"RGAIN", "RGAIN", "RGain", kWhole, "", &ParamBlock::RGAIN},
    {"SMODE", "SMODE", "Data Mode", kShort, "", &ParamBlock::SMODE},
    {"", "SampleName", "Sample Name", kText, "", &ParamBlock::SampleName},
    {"", "SampleId", "Sample ID", kText, "", &ParamBlock::SampleId},
    {"SCANS", "SCANS", "Scan", kWhole, "", &ParamBlock::SCANS},
    {"", "SampleMisc2", "Sample Text-2", kText, "", &ParamBlock::SampleMisc2},
    {"", "SampleMisc1", "Sample Text-1", kText, "", &ParamBlock::SampleMisc1},
    {"SLVNT", "SLVNT", "Solvent", kText, "", &ParamBlock::SLVNT},
    {"", "SpinSet", "Spinning Speed(Set)", kFloat, " Hz", &ParamBlock::SpinSet},
    {"", "Trap1", "Trapezoid 1", kFloat, " %", FloatOf4{&ParamBlock::Trap, 0}},
    {"", "Trap2", "Trapezoid 2", kFloat, " %", FloatOf4{&ParamBlock::Trap, 1}},
    {"", "Trap3", "Trapezoid 3", kFloat, " %", FloatOf4{&ParamBlock::Trap, 2}},
    {"", "Trap4", "Trapezoid 4", kFloat, " %", FloatOf4{&ParamBlock::Trap, 3}},
    {"", "TempSet", "Temperature(Set)", kFloat, "", &ParamBlock::TempSet},
    {"TIMES", "TIMES", "Scan(Set)", kWhole, "", &ParamBlock::TIMES},
    {"TOSCN", "TOSCN", "Total Scan", kWhole, "", &ParamBlock::TOSCN},
    {"TR", "TR", "Repetition Time", kFloat, "", &ParamBlock::TR},
    {"TRATN", "TRATN", "Tr Attn.", kShort, "", &ParamBlock::TRATN},
    {"TRFIN", "TRFIN", "TrFine", kFloat, " Hz", &ParamBlock::TRFIN},
    {"TRFN2", "TRFN2", "TrFine-2", kFloat, " Hz", &ParamBlock::TRFN2},
    {"TRFRQ", "TRFRQ", "TrFreq", kFloat, " MHz", &ParamBlock::TRFRQ},
    {"TRNUC", "TRNUC", "TrNuc", kText, "", &ParamBlock::TRNUC},
    {"", "TrPulse", "TrPulse width", kFloat, "", &ParamBlock::TrPulse},
    {"", "TRPHS", "Tr Phase", kPhase, "", &ParamBlock::TRPHS},
    {"TRRPW", "TRRPW", "TrPulse width-3", kShort, "", &ParamBlock::TRRPW},
    {"TRSET", "TRSET", "TrSet", kFloat, " kHz", &ParamBlock::TRSET},
    {"TRST2", "TRST2", "TrSet-2", kFloat, " kHz", &ParamBlock::TRST2},
    {"", "Operator", "Operator", kText, "", &ParamBlock::Operator},
    {"", "InstrumentID", "Instrument ID", kText, "", &ParamBlock::InstrumentID},
    {"", "DataVersion", "Data Version", kText, "", &ParamBlock::DataVersion},
    {"", "FIDShift", "FID Shift", kWhole, " points", &ParamBlock::FIDShift},
    {"", "WindowFunc", "Window Func.", kShort, "", &ParamBlock::WindowFunc},
};

struct Alias {
    std::string_view alias, key;
};
constexpr Alias kAliases[] = {{"FLT", "FILTR"}, {"IFR", "FREQU"}, {"INIWT", "IWT"}};

bool Assign(std::string& target, std::string_view text)
{
    target = text;
    return true;
}

bool Assign(std::floating_point auto& target, std::string_view text)
{
    using Number = std::remove_reference_t<decltype(target)>;
    const auto value = ParseNumber(text);
    if (!value || std::abs(*value) > std::numeric_limits<Number>::max()) return false;
    target = static_cast<Number>(*value);
    return true;
}

/// Files write whole numbers as "16384.0" too, so the text is read as any number and rounded.
bool Assign(std::integral auto& target, std::string_view text)
{
    using Number = std::remove_reference_t<decltype(target)>;
    const auto value = ParseNumber(text);
    if (!value) return false;
    const double whole = std::nearbyint(*value);
    if (whole < std::numeric_limits<Number>::min() || whole > std::numeric_limits<Number>::max()) return false;
    target = static_cast<Number>(whole);
    return true;
}

std::string Text(const std::string& value, std::string_view)
{
    return value;
}

std::string Text(float value, std::string_view pattern)
{
    return FormatNumber(pattern, ShortestDouble(value));
}

std::string Text(double value, std::string_view pattern)
{
    return FormatNumber(pattern, value);
}

std::string Text(std::integral auto value, std::string_view pattern)
{
    return FormatNumber(pattern, static_cast<double>(value));
}

} // namespace

std::span<const ParamField> ParamFields()
{
    return kFields;
}

const ParamField* FindParam(std::string_view key)
{
    key = Trim(key);
    if (key.empty()) return nullptr;
    for (const Alias& row : kAliases)
        if (EqualsNoCase(row.alias, key)) key = row.key;
    const auto field = std::ranges::find_if(kFields, [&](const ParamField& f) { return EqualsNoCase(f.key, key); });
    return field == std::end(kFields) ? nullptr : &*field;
}

std::string ParamText(const ParamBlock& block, const ParamField& field)
{
    return std::visit([&](const auto& member) { return Text(FieldOf(block, member), field.pattern); }, field.member);
}

bool SetParam(ParamBlock& block, const ParamField& field, std::string_view text)
{
    return std::visit([&](const auto& member) { return Assign(FieldOf(block, member), text); }, field.member);
}

} // namespace nmr
