#include "core/param_edit.h"

#include <algorithm>

namespace nmr {
namespace {

constexpr ParamEditRow kRows[] = {
    {"OrgFile", "Original File"},
    {"Operator", "Operator", true},
    {"InstrumentID", "Instrument ID"},
    {"Instrument", "Instrument"},
    {"Probe", "Probe Head"},
    {"ProbeSerial", "Probe Serial No."},
    {"SampleName", "Sample Name"},
    {"SLVNT", "Solvent"},
    {"TempSet", "Temperature(Set)"},
    {"CTEMP", "Temperature(Actual)"},
    {"SpinSet", "Spinner Speed(Set)"},
    {"CSPED", "Spinner Speed(Actual)"},
    {"TIMES", "Scan(Set)"},
    {"SCANS", "Scan(Actual)"},
    {"DUMMY", "Dummy Scan"},
    {"EXMOD", "ExMode"},
    {"ExpTitle", "Title"},
    {"EXPCM", "ExpComment"},
    {"PulseProg", "Pulse Program"},
    {"GradProg", "Gradient Program"},
    {"ACQTM", "Acquisition Time"},
    {"PD", "PD"},
    {"INTVL", "Pulse Interval"},
    {"PW1", "PulseWidth-1"},
    {"PW2", "PulseWidth-2"},
    {"PW3", "PulseWidth-3"},
    {"PW4", "PulseWidth-4"},
    {"PW5", "PulseWidth-5"},
    {"PI1", "Pulse Intv-1"},
    {"PI2", "Pulse Intv-2"},
    {"PI3", "Pulse Intv-3"},
    {"PI4", "Pulse Intv-4"},
    {"PI5", "Pulse Intv-5"},
    {"RGAIN", "RGain"},
    {"FILTR", "Low Pass Filter"},
    {"FilterType", "Filter Type"},
    {"DELAY", "Delay"},
    {"DEADT", "Dead time"},
    {"OBATN", "Obs Attn."},
    {"IRNUC", "IrrNuc"},
    {"IRFRQ", "IrrFreq"},
    {"IRATN", "Irr Attn."},
    {"IRRPW", "IrrPulse width"},
    {"TRNUC", "TrNuc"},
    {"TRFRQ", "TrFreq"},
    {"TRATN", "Tr Attn."},
    {"TrPulse", "TrPulse width"},
    {"SampleId", "Sample ID"},
    {"COMNT", "Comment"},
};

} // namespace

std::span<const ParamEditRow> ParamEditRows()
{
    return kRows;
}

const ParamField* FindParamByName(std::string_view name)
{
    const auto fields = ParamFields();
    const auto field = std::ranges::find(fields, name, &ParamField::name);
    return field == fields.end() ? nullptr : &*field;
}

} // namespace nmr
