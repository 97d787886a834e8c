#include "session/parameter_list.h"

#include "core/dates.h"
#include "core/numbers.h"
#include "core/param_edit.h"
#include "core/text.h"
#include "fid/window.h"

#include <fmt/format.h>

#include <algorithm>

namespace nmr {
namespace {

constexpr char kPercentPattern[] = "##0.0##";
constexpr char kWidthPattern[] = "#####0.0###";

using RowText = std::string (*)(const DataSet&);

// A row of a field of the table, with its pattern and unit, or one with a text of its own.
struct ListRow {
    std::string_view label;
    std::string_view field; ///< member name; empty with a text
    RowText text = nullptr;
};

std::string Date(const DataSet& set)
{
    return set.par.DateSerial > 0 ? FormatDate("dd/mmm/yyyy", {set.par.DateSerial, 0.0}) : set.par.DATIM;
}

std::string Time(const DataSet& set)
{
    if (set.par.DateSerial <= 0) return {};
    return FormatDate("hh:nn:ss", {set.par.DateSerial, static_cast<double>(set.par.TimeOfDay)});
}

/// The value that stands for no temperature is none.
std::string Temperature(const DataSet& set)
{
    return set.par.CTEMP == kNoTemperature ? std::string() : ParamText(set.par, *FindParamByName("CTEMP"));
}

std::string WindowName(const DataSet& set)
{
    constexpr std::string_view kNames[] = {"Exponential", "SineBell", "Hann(Squared SineBell)", "Gaussian",
                                           "Blackman Harris"};
    const auto kind = static_cast<std::size_t>(set.par.WindowFunc);
    return kind < std::size(kNames) ? std::string(kNames[kind]) : std::string();
}

constexpr ListRow kUpToTrapezoid[] = {
    {"Instrument ID", "InstrumentID"},
    {"Data Type(Org.)", "DTYPE"},
    {"File Name", "FileName"},
    {"Date", "", Date},
    {"Date(2)", "", Time},
    {"Comment", "COMNT"},
    {"Sample ID", "SampleId"},
    {"ExMode", "EXMOD"},
    {"ExpComment", "EXPCM"},
    {"Pulse Program", "PulseProg"},
    {"AD Bit", "ADBIT"},
    {"ObNuc", "OBNUC"},
    {"ObsFreq", "OBFRQ"},
    {"ObsSet", "OBSET"},
    {"ObsSet-2", "OBST2"},
    {"ObsFine", "OBFIN"},
    {"ObsFine-2", "OBFN2"},
    {"Obs phase", "OBPHS"},
    {"Obs Attn.", "OBATN"},
    {"Point", "POINT"},
    {"FID Shift", "FIDShift"},
    {"Dummy Scan", "DUMMY"},
    {"Scan", "SCANS"},
    {"Total Scan", "TOSCN"},
    {"Acquisition Time", "ACQTM"},
    {"PD", "PD"},
    {"Pulse Interval", "INTVL"},
    {"Pulse-1", "PW1"},
    {"Pulse-2", "PW2"},
    {"Pulse-3", "PW3"},
    {"Pulse-4", "PW4"},
    {"Pulse-5", "PW5"},
    {"Pulse Intv-1", "PI1"},
    {"Pulse Intv-2", "PI2"},
    {"Pulse Intv-3", "PI3"},
    {"Pulse Intv-4", "PI4"},
    {"Pulse Intv-5", "PI5"},
    {"IrrNuc", "IRNUC"},
    {"IrrFreq", "IRFRQ"},
    {"IrrSet", "IRSET"},
    {"IrrSet-2", "IRST2"},
    {"IrrFine", "IRFIN"},
    {"IrrFine-2", "IRFN2"},
    {"Irr Phase", "IRPHS"},
    {"Irr Attn.", "IRATN"},
    {"IrrPulse width", "IRRPW"},
    {"Temperature", "", Temperature},
    {"Spinning Speed", "CSPED"},
    {"Spinning Speed(Set)", "SpinSet"},
    {"Solvent", "SLVNT"},
    {"Trapezoid 1", "Trap1"},
    {"Trapezoid 2", "Trap2"},
    {"Trapezoid 3", "Trap3"},
    {"Trapezoid 4", "Trap4"},
};

constexpr ListRow kFromResolution[] = {
    {"Resolution", "RESOL"},
    {"Obs. Center Freq.", "ObsCenter"},
    {"Obs. Freq.(0 ppm)", "OBFRQ0PPM"},
    {"Frequency(Span)", "FREQU"},
    {"Reference", "SMEXR"},
    {"Ref. Point", "SMTMS"},
    {"RGain", "RGAIN"},
    {"Filter", "FILTR"},
    {"delay", "DELAY"},
    {"dead time", "DEADT"},
    {"TrNuc", "TRNUC"},
    {"TrFreq", "TRFRQ"},
    {"TrSet", "TRSET"},
    {"TrSet-2", "TRST2"},
    {"TrFine", "TRFIN"},
    {"TrFine-2", "TRFN2"},
    {"Tr Phase", "TRPHS"},
    {"Tr Attn.", "TRATN"},
    {"TrPulse width", "TrPulse"},
    {"Probe Head", "Probe"},
    {"Instrument", "Instrument"},
    {"Pulse Program", "PulseProg"},
    {"Gradient Program", "GradProg"},
    {"FID Point", "FIDPoints"},
    {"FFT User", "", [](const DataSet& set) { return set.FFTUser; }},
};

struct WindowListRow {
    WindowKind kind;
    std::string_view label;
    WindowField field;
    std::string_view pattern, unit;
};
// "Window Func." itself stands between the range and the widths.
constexpr WindowListRow kWindowRange[] = {
    {WindowKind::sine_bell, "Window Start", WindowField::start, kPercentPattern, " %"},
    {WindowKind::sine_bell, "Window End", WindowField::end, kPercentPattern, " %"},
    {WindowKind::hann, "Window Start", WindowField::start, kPercentPattern, " %"},
    {WindowKind::hann, "Window End", WindowField::end, kPercentPattern, " %"},
    {WindowKind::blackman_harris, "Window Start", WindowField::start, kPercentPattern, " %"},
    {WindowKind::blackman_harris, "Window End", WindowField::end, kPercentPattern, " %"},
    {WindowKind::gaussian, "Window Start", WindowField::center, kPercentPattern, " %"},
};
constexpr WindowListRow kWindowWidths[] = {
    {WindowKind::exponential, "BF", WindowField::bf1, kWidthPattern, " Hz"},
    {WindowKind::gaussian, "BF", WindowField::bf2, kWidthPattern, " Hz"},
    {WindowKind::gaussian, "GF", WindowField::gf, kWidthPattern, " Hz"},
};

void Add(std::vector<ParameterRow>& rows, const DataSet& set, std::span<const ListRow> table)
{
    for (const ListRow& row : table) {
        if (row.text != nullptr) {
            rows.push_back({std::string(row.label), row.text(set)});
            continue;
        }
        const ParamField& field = *FindParamByName(row.field);
        rows.push_back({std::string(row.label), ParamText(set.par, field) + std::string(field.unit)});
    }
}

void Add(std::vector<ParameterRow>& rows, const DataSet& set, std::span<const WindowListRow> table)
{
    for (const WindowListRow& row : table) {
        if (static_cast<WindowKind>(set.par.WindowFunc) != row.kind) continue;
        const double value = ShortestDouble(static_cast<float>(GetWindowField(set.par, row.field)));
        rows.push_back({std::string(row.label), FormatNumber(row.pattern, value) + std::string(row.unit)});
    }
}

} // namespace

std::vector<ParameterRow> ParameterRows(const DataSet& set)
{
    std::vector<ParameterRow> rows;
    Add(rows, set, std::span<const ListRow>(kUpToTrapezoid));
    Add(rows, set, std::span<const WindowListRow>(kWindowRange));
    rows.push_back({"Window Func.", WindowName(set)});
    Add(rows, set, std::span<const WindowListRow>(kWindowWidths));
    Add(rows, set, std::span<const ListRow>(kFromResolution));
    if (set.par.AcqMode > 0) {
        rows.push_back({"Acq Mode", ParamText(set.par, *FindParamByName("AcqMode"))});
        rows.push_back({"FFT Mode", set.par.FFTMode == 0 ? "Normal" : "Bruker Corrected"});
    }
    return rows;
}

std::string ParameterListText(const DataSet& set)
{
    std::string text;
    for (const ParameterRow& row : ParameterRows(set)) {
        std::string value;
        for (const std::string& line : Split(row.value, '\n'))
            if (!Trim(line).empty()) value += (value.empty() ? "" : " / ") + std::string(Trim(line));
        text += fmt::format("{}\t{}\n", row.label, value);
    }
    return text;
}

} // namespace nmr
