// Where the head and the parameters of a Delta file go in a data set.

#include "core/dates.h"
#include "core/numbers.h"
#include "core/param_table.h"
#include "core/text.h"
#include "formats/delta_fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace nmr {

namespace {

constexpr double kKelvin = 273.15;
constexpr double kToMicro = 1e6, kToMega = 1e-6;
constexpr double kLeastMHz = 1, kMostMHz = 2000;
constexpr double kSecondsOfDay = 86400;
constexpr double kLastDate = 4e9; // seconds since 1990

struct DeltaField {
    std::string_view name;
    double factor; ///< from the base unit to that of the field
    ParamMember member;
};

// A later row of the same field wins where its parameter is there.
const DeltaField kFields[] = {
    {"EXPERIMENT", 1, &ParamBlock::EXMOD},
    {"EXPERIMENT", 1, &ParamBlock::PulseProg},
    {"SCANS", 1, &ParamBlock::SCANS},
    {"SCANS", 1, &ParamBlock::TIMES},
    {"TOTAL_SCANS", 1, &ParamBlock::TOSCN},
    {"IRR_FREQ", kToMega, &ParamBlock::IRFRQ},
    {"IRR_PWIDTH", kToMicro, &ParamBlock::IRRPW},
    {"X_RESOLUTION", 1, &ParamBlock::RESOL},
    {"X_SWEEP", 1, &ParamBlock::FREQU},
    {"X_ACQ_TIME", 1, &ParamBlock::ACQTM},
    {"X_ACQ_DURATION", 1, &ParamBlock::ACQTM},
    {"X90", kToMicro, Element(&ParamBlock::PW, 0)},
    {"X_90_WIDTH", kToMicro, Element(&ParamBlock::PW, 0)},
    {"X_PULSE", kToMicro, Element(&ParamBlock::PW, 0)},
    {"X90", kToMicro, Element(&ParamBlock::PW, 1)},
    {"X_90_WIDTH", kToMicro, Element(&ParamBlock::PW, 1)},
    {"RELAXATION_DELAY", 1, &ParamBlock::PD},
    {"REPETITION_TIME", 1, &ParamBlock::TR},
    {"INITIAL_WAIT", 1, &ParamBlock::IWT},
    {"RECVR_GAIN", 1, &ParamBlock::RGAIN},
    {"FILTER_MODE", 1, &ParamBlock::FilterType},
    {"FILTER_WIDTH", 1, &ParamBlock::FILTR},
    {"SOLVENT", 1, &ParamBlock::SLVNT},
    {"SAMPLE_ID", 1, &ParamBlock::SampleId},
    {"ADC_CARD", 1, &ParamBlock::ADBIT},
    {"TEMP_GET", 1, &ParamBlock::CTEMP},
    {"TEMP_SET", 1, &ParamBlock::TempSet},
    {"SPIN_GET", 1, &ParamBlock::CSPED},
    {"SPIN_GET", 1, &ParamBlock::SpinSet},
    {"X_PRESCANS", 1, &ParamBlock::DUMMY},
    {"ACQ_DELAY", kToMicro, &ParamBlock::DEADT},
};

void Store(std::string& field, const DeltaParameter& parameter, double)
{
    if (parameter.kind == DeltaParameter::Kind::text && !parameter.text.empty()) field = parameter.text;
}

template <class T>
void Store(T& field, const DeltaParameter& parameter, double factor)
{
    if (parameter.kind != DeltaParameter::Kind::number || !std::isfinite(parameter.number)) return;
    const double offset = parameter.unit == DeltaUnit::kelvin ? -kKelvin : 0; // temperatures alone have it
    const double limit = static_cast<double>(std::numeric_limits<T>::max());
    const double value = std::clamp(parameter.number * factor + offset, -limit, limit);
    if constexpr (std::is_integral_v<T>)
        field = static_cast<T>(RoundHalfEven(value));
    else
        field = static_cast<T>(value);
}

bool IsObserveFrequency(double mhz)
{
    return mhz >= kLeastMHz && mhz <= kMostMHz; // false for NaN
}

/// The observe frequency: X_FREQ where its unit makes sense, else the base frequency of the head.
double ObserveMHz(const DeltaHeader& header, const DeltaParameters& parameters, std::vector<std::string>& warnings)
{
    const auto hertz = parameters.Number("X_FREQ");
    const double mhz = hertz.value_or(0) * kToMega;
    if (IsObserveFrequency(mhz)) return mhz;
    if (!IsObserveFrequency(header.base_mhz)) return 0;
    warnings.push_back(hertz ? fmt::format("X_FREQ can't be {} MHz: the frequency of the head is used.", mhz)
                             : "There is no X_FREQ: the frequency of the head is used.");
    return header.base_mhz;
}

void StoreNuclei(const DeltaHeader& header, const DeltaParameters& parameters, const NuclearTable& nuclides,
                 DataSet& set)
{
    const auto named = [&](const std::string& text) { return text.empty() ? "??" : nuclides.Nucleus_Normalize(text); };
    set.par.OBNUC = named(parameters.Text("X_DOMAIN"));
    if (set.par.OBNUC == "??") set.par.OBNUC = named(header.nucleus);
    if (set.par.OBNUC == "??") {
        const std::string guess = Nucleus_From_Frequency(set.par.ObsCenter);
        if (!guess.empty()) set.par.OBNUC = guess;
        set.Warnings.push_back("The file names no known nucleus" +
                               (guess.empty() ? "." : ": taken for " + guess + "."));
    }
    if (const std::string other = named(parameters.Text("IRR_DOMAIN")); other != "??") set.par.IRNUC = other;
}

/// The start of the measurement, else its end; seconds since 1990.
void StoreDate(const DeltaParameters& parameters, ParamBlock& par)
{
    auto seconds = parameters.Number("ACTUAL_START_TIME");
    if (!seconds) seconds = parameters.Number("END_TIME");
    if (!seconds || !(*seconds >= 0) || *seconds > kLastDate) return;
    const double days = std::floor(*seconds / kSecondsOfDay);
    const DateTime when{kDeltaEpochSerial + static_cast<std::int32_t>(days),
                        (*seconds - days * kSecondsOfDay) / kSecondsOfDay};
    par.DateSerial = when.serial;
    par.TimeOfDay = static_cast<float>(when.fraction_of_day);
    par.DATIM = FormatDate("dd/mmm/yyyy", when) + "  " + FormatDate("hh:nn:ss", when);
}

} // namespace

Status FillParaDelta(GlobalBlock& g, std::int16_t slot, const DeltaHeader& header, const DeltaParameters& parameters)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    ParamBlock& par = set.par;
    par.Instrument = "JEOL ECP";
    par.DTYPE = "DELTA";
    for (const DeltaField& field : kFields)
        if (const DeltaParameter* parameter = parameters.Find(field.name))
            std::visit([&](auto member) { Store(FieldOf(par, member), *parameter, field.factor); }, field.member);
    par.ExpTitle = par.COMNT = header.title;
    par.EXPCM = header.comment;
    par.Operator = header.author;
    par.ObsCenter = ObserveMHz(header, parameters, set.Warnings);
    if (par.ObsCenter == 0)
        return Error{ErrorCode::bad_value, std::string(kDeltaWhere), "the file gives no observe frequency"};
    par.OBFRQ = static_cast<float>(par.ObsCenter);
    StoreNuclei(header, parameters, g.nuclides, set);
    StoreDate(parameters, par);
    return {};
}

std::optional<double> DeltaCentrePpm(const DeltaParameters& parameters, double obs_mhz)
{
    const auto value = parameters.Number("X_OFFSET");
    if (!value) return std::nullopt;
    const DeltaUnit unit = parameters.Find("X_OFFSET")->unit;
    if (unit != DeltaUnit::hertz && unit != DeltaUnit::ppm) return std::nullopt;
    const double ppm = unit == DeltaUnit::hertz ? *value / obs_mhz : *value;
    return std::fabs(ppm) < 1e5 ? std::optional(ppm) : std::nullopt;
}

} // namespace nmr
