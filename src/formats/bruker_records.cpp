// Where the records of acqus go in a data set: one table.

#include "core/dates.h"
#include "core/numbers.h"
#include "core/param_table.h"
#include "core/text.h"
#include "formats/bruker.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nmr {

namespace {

constexpr double kKelvin = 273.15;
constexpr double kLastDate = 4e9; // seconds since 1970 of the year 2096
constexpr std::size_t kScalar = 1000;

struct BrukerRecord {
    std::string_view name;
    ParamMember member;
    std::size_t element = kScalar; ///< of an array record
    double offset = 0;             ///< added to the number
    bool fid_only = false;         ///< a spectrum has it from procs
};

// Pulses are microseconds and delays seconds in the file as in the fields; RO is Hz, FW Hz, DE microseconds.
const BrukerRecord kRecords[] = {
    {"PULPROG", &ParamBlock::PulseProg},
    {"PULPROG", &ParamBlock::EXMOD},
    {"PROBHD", &ParamBlock::Probe},
    {"GRDPROG", &ParamBlock::GradProg},
    {"INSTRUM", &ParamBlock::Instrument},
    {"SOLVENT", &ParamBlock::SLVNT},
    {"DE", &ParamBlock::DEADT},
    {"BF1", &ParamBlock::OBFRQ0PPM, kScalar, 0, true},
    {"DS", &ParamBlock::DUMMY},
    {"FW", &ParamBlock::FILTR},
    {"RO", &ParamBlock::CSPED},
    {"SFO1", &ParamBlock::ObsCenter},
    {"SFO1", &ParamBlock::OBFRQ},
    {"SW_h", &ParamBlock::FREQU, kScalar, 0, true},
    {"P", Element(&ParamBlock::PW, 0), 1},
    {"P", Element(&ParamBlock::PW, 1), 2},
    {"P", Element(&ParamBlock::PW, 2), 3},
    {"P", Element(&ParamBlock::PW, 3), 4},
    {"P", Element(&ParamBlock::PW, 4), 5},
    {"D", Element(&ParamBlock::PI, 0), 1},
    {"D", Element(&ParamBlock::PI, 1), 2},
    {"D", Element(&ParamBlock::PI, 2), 3},
    {"D", Element(&ParamBlock::PI, 3), 4},
    {"D", Element(&ParamBlock::PI, 4), 5},
    {"CNST", &ParamBlock::JCNST, 2},
    {"RG", &ParamBlock::RGAIN},
    {"NS", &ParamBlock::SCANS},
    {"NS", &ParamBlock::TIMES},
    {"TE", &ParamBlock::CTEMP, kScalar, -kKelvin},
    {"TE", &ParamBlock::TempSet, kScalar, -kKelvin},
};

void Store(std::string& field, const BrukerParameters& acqus, const BrukerRecord& record)
{
    const auto text = acqus.Text(record.name);
    if (text && !text->empty()) field = *text;
}

template <class T>
void Store(T& field, const BrukerParameters& acqus, const BrukerRecord& record)
{
    std::optional<double> number;
    if (record.element == kScalar) {
        number = acqus.Number(record.name);
    } else {
        const auto numbers = acqus.Numbers(record.name);
        if (record.element < numbers.size()) number = numbers[record.element];
    }
    if (!number || (record.offset != 0 && *number <= 0)) return; // 0 K was not measured
    const double value = *number + record.offset;
    if constexpr (std::is_same_v<T, float>) {
        constexpr double limit = std::numeric_limits<float>::max();
        field = static_cast<float>(std::clamp(value, -limit, limit));
    } else if constexpr (std::is_integral_v<T>) {
        constexpr double low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
        field = static_cast<T>(RoundHalfEven(std::clamp(value, low, high)));
    } else {
        field = value;
    }
}

/// "23Na" of NUC1; what is switched off or unknown there may stand in NUCLEUS (old programs), and what
/// is told nowhere follows from the frequency if it is that of protons.
std::string ObservedNucleus(const BrukerParameters& acqus, const NuclearTable& nuclides, double mhz)
{
    for (std::string_view name : {"NUC1", "NUCLEUS", "AXNUC"}) {
        const std::string nucleus = nuclides.Nucleus_Normalize(acqus.Text(name).value_or(""));
        if (nucleus != "??" && nucleus != "OFF" && nucleus != "NUL") return nucleus;
    }
    const std::string guess = Nucleus_From_Frequency(mhz);
    return guess.empty() ? "??" : guess;
}

void StoreDate(double seconds, ParamBlock& par)
{
    if (!(seconds > 0) || seconds > kLastDate) return; // 0 stands for "never measured"
    const DateTime when = FromUnixSeconds(seconds);
    par.DateSerial = when.serial;
    par.TimeOfDay = static_cast<float>(when.fraction_of_day);
    par.DATIM = FormatDate("dd/mmm/yyyy hh:nn:ss", when);
}

/// 1 one channel, 2 simultaneous, 3 sequential, 4 digital quadrature. Old files have flags in the
/// higher bits (193 for simultaneous).
std::int16_t AcquisitionMode(double aq_mod)
{
    if (!(aq_mod >= 0) || aq_mod > 1e6) return 0;
    return static_cast<std::int16_t>((static_cast<int>(aq_mod) & 3) + 1);
}

} // namespace

void ApplyBrukerRecords(const BrukerParameters& acqus, BrukerUse use, const NuclearTable& nuclides, ParamBlock& par)
{
    par.Instrument = "BRUKER";
    for (const BrukerRecord& record : kRecords) {
        if (record.fid_only && use == BrukerUse::spectrum) continue;
        std::visit([&](auto member) { Store(FieldOf(par, member), acqus, record); }, record.member);
    }
    if (par.PD == 0) par.PD = par.PI[0];
    par.PhaseFlag = 0;
    par.OBNUC = ObservedNucleus(acqus, nuclides, par.ObsCenter);
    const std::string irradiated = nuclides.Nucleus_Normalize(acqus.Text("DECNUC").value_or(""));
    if (irradiated != "??") par.IRNUC = irradiated;
    StoreDate(acqus.Number("DATE").value_or(0), par);
    par.AcqMode = AcquisitionMode(acqus.Number("AQ_mod").value_or(-1));
}

} // namespace nmr
