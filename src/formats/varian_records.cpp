// Where the parameters of a Varian set go: fields by one table, reference, date, rows of an array.

#include "core/dates.h"
#include "core/numbers.h"
#include "core/param_table.h"
#include "core/text.h"
#include "formats/varian.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace nmr {

namespace {

constexpr std::string_view kInstrument = "Varian UNITY";
constexpr double kSameNucleus = 0.01; // largest relative distance of the reference from sfrq
constexpr double kReferenceHz = 0.5;  // by which rfl and reffrq may differ

struct VarianField {
    std::string_view name;
    ParamMember member;
};

// Pulses and alfa are microseconds and delays seconds in the file as in the fields. A later row of the
// same field wins where its parameter is there.
const VarianField kFields[] = {
    {"sfrq", &ParamBlock::ObsCenter},
    {"sfrq", &ParamBlock::OBFRQ},
    {"dfrq", &ParamBlock::IRFRQ},
    {"sw", &ParamBlock::FREQU},
    {"at", &ParamBlock::ACQTM},
    {"d1", &ParamBlock::PD},
    {"d1", Element(&ParamBlock::PI, 0)},
    {"d2", Element(&ParamBlock::PI, 1)},
    {"pad", &ParamBlock::IWT},
    {"alfa", &ParamBlock::DEADT},
    {"pw", Element(&ParamBlock::PW, 0)},
    {"p1", Element(&ParamBlock::PW, 1)},
    {"gain", &ParamBlock::RGAIN},
    {"ct", &ParamBlock::SCANS},
    {"nt", &ParamBlock::TIMES},
    {"ss", &ParamBlock::DUMMY},
    {"temp", &ParamBlock::CTEMP},
    {"temp", &ParamBlock::TempSet},
    {"spin", &ParamBlock::CSPED},
    {"spin", &ParamBlock::SpinSet},
    {"fb", &ParamBlock::FILTR},
    {"seqfil", &ParamBlock::PulseProg},
    {"seqfil", &ParamBlock::EXMOD},
    {"pslabel", &ParamBlock::EXMOD},
    {"explist", &ParamBlock::ExpComment2},
    {"solvent", &ParamBlock::SLVNT},
    {"probe_", &ParamBlock::Probe},
    {"operator_", &ParamBlock::Operator},
    {"sample", &ParamBlock::SampleId},
    {"sample", &ParamBlock::SampleName},
    {"samplename", &ParamBlock::SampleName},
};

void Store(std::string& field, const VarianParameters& parameters, std::string_view name)
{
    const auto text = parameters.Text(name);
    if (text && !text->empty()) field = *text;
}

template <class T>
void Store(T& field, const VarianParameters& parameters, std::string_view name)
{
    const auto number = parameters.ActiveNumber(name);
    if (!number) return;
    if constexpr (std::is_same_v<T, float>) {
        constexpr double limit = std::numeric_limits<float>::max();
        field = static_cast<float>(std::clamp(*number, -limit, limit));
    } else if constexpr (std::is_integral_v<T>) {
        constexpr double low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
        field = static_cast<T>(RoundHalfEven(std::clamp(*number, low, high)));
    } else {
        field = *number;
    }
}

std::string Nucleus(const VarianParameters& parameters, std::string_view name, const NuclearTable& nuclides)
{
    return nuclides.Nucleus_Normalize(parameters.Text(name).value_or(""));
}

void StoreNuclei(const VarianParameters& parameters, const NuclearTable& nuclides, DataSet& set)
{
    set.par.OBNUC = Nucleus(parameters, "tn", nuclides);
    if (set.par.OBNUC == "??" || set.par.OBNUC == "NUL" || set.par.OBNUC == "OFF") {
        const std::string guess = Nucleus_From_Frequency(set.par.ObsCenter);
        set.par.OBNUC = guess.empty() ? "??" : guess;
        set.Warnings.push_back("The parameters name no observed nucleus (tn)" +
                               (guess.empty() ? "." : ": taken for " + guess + "."));
    }
    if (const std::string other = Nucleus(parameters, "dn", nuclides); other != "??") set.par.IRNUC = other;
}

/// Day of the measurement, with the time of that day when one of the time records has the same day.
void StoreDate(const VarianParameters& parameters, ParamBlock& par)
{
    const auto parsed = [&](std::string_view name) { return Parse_DateTime(parameters.Text(name).value_or("")); };
    const auto day = parsed("date");
    for (std::string_view name : {"time_submitted", "time_run", "time_complete"}) {
        const auto time = parsed(name);
        if (!time || (day && day->serial != time->serial)) continue;
        par.DateSerial = time->serial;
        par.TimeOfDay = static_cast<float>(time->fraction_of_day);
        par.DATIM = FormatDate("dd/mmm/yyyy hh:nn:ss", *time);
        return;
    }
    if (!day) return;
    par.DateSerial = day->serial;
    par.DATIM = FormatDate("dd/mmm/yyyy", *day);
}

/// 0 ppm frequency. rfl and rfp are what the console's own axis goes by: the reference line stands rfl
/// from the right edge and its true frequency is rfp. Old sets have no reffrq; zeros mean "not set".
double ReferenceMHz(const VarianParameters& parameters, double width_hz, double centre_mhz,
                    std::vector<std::string>& warnings)
{
    const auto near = [&](double mhz) { return std::fabs(mhz - centre_mhz) <= kSameNucleus * centre_mhz; };
    double mhz = parameters.Number("reffrq").value_or(0);
    if (!near(mhz)) mhz = 0;
    const double rfl = parameters.Number("rfl").value_or(0), rfp = parameters.Number("rfp").value_or(0);
    const double by_line = centre_mhz - (0.5 * width_hz - rfl + rfp) * 1e-6;
    if ((rfl == 0 && rfp == 0) || !near(by_line)) return mhz;
    if (mhz > 0 && std::fabs(by_line - mhz) * 1e6 > kReferenceHz)
        warnings.push_back(fmt::format("rfl and reffrq place 0 ppm {:.1f} Hz apart: rfl is used, as the console does.",
                                       std::fabs(by_line - mhz) * 1e6));
    return by_line;
}

/// lsfid points are left away before the transform. A negative count would put zeros in front.
void StoreShift(const VarianParameters& parameters, DataSet& set)
{
    const double points = parameters.ActiveNumber("lsfid").value_or(0);
    if (points < 0)
        set.Warnings.push_back(fmt::format("lsfid is {}: zeros in front of the FID are not added.", points));
    const double length = parameters.Number("np").value_or(0) / 2;
    if (points > 0 && points < 0.5 * length) set.par.FIDShift = static_cast<std::int32_t>(points);
}

} // namespace

Status FillParaVarian(GlobalBlock& g, std::int16_t slot, const VarianParameters& parameters)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    ParamBlock& par = set.par;
    par.Instrument = kInstrument;
    par.DTYPE = kInstrument;
    for (const VarianField& field : kFields)
        std::visit([&](auto member) { Store(FieldOf(par, member), parameters, field.name); }, field.member);
    const double width = parameters.Number("sw").value_or(0);
    if (!(par.ObsCenter > 0 && par.ObsCenter < 1e5) || !(width > 0 && width < 1e9))
        return Error{ErrorCode::bad_value, "ReadParaVarian/1DDRW",
                     fmt::format("sfrq is {}, sw is {}", par.ObsCenter, width)};
    par.FREQU = static_cast<float>(width);
    StoreNuclei(parameters, g.nuclides, set);
    StoreDate(parameters, par);
    par.FileRefMHz = ReferenceMHz(parameters, width, par.ObsCenter, set.Warnings);
    if (par.FileRefMHz == 0) set.Warnings.emplace_back("The parameters give no reference (rfl, rfp, reffrq).");
    par.OBFRQ0PPM = par.FileRefMHz > 0 ? par.FileRefMHz : par.ObsCenter;
    StoreShift(parameters, set);
    return {};
}

std::vector<std::vector<std::string>> ParseVarianArray(std::string_view text)
{
    std::vector<std::vector<std::string>> levels;
    bool together = false, open_level = false;
    std::string name;
    const auto finish = [&] {
        const std::string_view trimmed = Trim(name);
        if (!trimmed.empty()) {
            if (!together || !open_level) levels.emplace_back();
            levels.back().emplace_back(trimmed);
            open_level = true;
        }
        name.clear();
    };
    for (const char c : text) {
        if (c != '(' && c != ')' && c != ',') {
            name += c;
            continue;
        }
        finish();
        if (c == '(') open_level = false;
        if (c != ',') together = c == '(';
    }
    finish();
    return levels;
}

namespace {

std::string_view UnitOf(const VarianRecord& record)
{
    constexpr std::pair<std::string_view, std::string_view> kUnits[] = {
        {"sfrq", "MHz"}, {"dfrq", "MHz"}, {"temp", "C"},  {"sw", "Hz"},
        {"at", "s"},     {"gain", "dB"},  {"tpwr", "dB"}, {"dpwr", "dB"}};
    for (const auto& [name, unit] : kUnits)
        if (record.name == name) return unit;
    switch (record.subtype) {
    case VarianSubtype::delay:
        return "s";
    case VarianSubtype::pulse:
        return "us";
    case VarianSubtype::frequency:
        return "Hz";
    default:
        return {};
    }
}

/// One arrayed parameter and how it runs over the rows: value number (row / stride) % count.
struct ArrayColumn {
    const VarianRecord* record = nullptr;
    std::size_t stride = 1;

    double Value(std::size_t row) const
    {
        const std::size_t index = row / stride % record->values.size();
        const auto number = ParseNumber(record->values[index]);
        if (!number || !std::isfinite(*number)) return static_cast<double>(index + 1);
        constexpr double limit = std::numeric_limits<float>::max(); // rows keep floats
        return std::clamp(*number, -limit, limit);
    }
    bool IsNumeric() const
    {
        return std::ranges::all_of(record->values, [](const std::string& v) { return ParseNumber(v).has_value(); });
    }
};

constexpr std::size_t kMostNames = 64; // of arrayed parameters

/// Columns in the order of their names; the last level varies fastest. The rows of one cycle through
/// all values are counted in `cycle`, 0 when a name can't be used.
std::vector<ArrayColumn> Columns(const VarianParameters& parameters, std::string_view array, std::uint64_t& cycle)
{
    std::vector<ArrayColumn> columns;
    cycle = 1;
    auto levels = ParseVarianArray(array);
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        std::size_t count = 0;
        for (auto name = level->rbegin(); name != level->rend(); ++name) {
            const VarianRecord* record = parameters.Find(*name);
            const bool too_many = columns.size() >= kMostNames || cycle > static_cast<std::uint64_t>(kMaxRows);
            if (too_many || record == nullptr || record->values.empty()) {
                cycle = 0;
                return {};
            }
            columns.insert(columns.begin(), {record, static_cast<std::size_t>(cycle)});
            count = std::max(count, record->values.size());
        }
        cycle *= count;
    }
    return columns;
}

void NumberRows(DataSet& set, std::size_t rows)
{
    for (std::size_t row = 0; row < rows; ++row) set.RowValueA[row] = static_cast<float>(row + 1);
    set.RowParamName = "No.";
    set.RowHeading = "No.";
}

} // namespace

void ApplyVarianArray(const VarianParameters& parameters, DataSet& set)
{
    set.par.RowCountCopy = set.RowCount;
    if (set.RowCount < 2) return;
    const std::size_t rows = std::min(static_cast<std::size_t>(set.RowCount), set.RowValueA.size());
    const std::string array = parameters.Text("array").value_or("");
    std::uint64_t cycle = 0;
    const std::vector<ArrayColumn> columns = Columns(parameters, array, cycle);
    if (columns.empty()) {
        NumberRows(set, rows);
        set.Warnings.push_back(array.empty() ? "No arrayed parameter is named: the rows are numbered."
                                             : "The values of \"" + array + "\" are missing: the rows are numbered.");
        return;
    }
    const ArrayColumn& first = columns.front();
    for (std::size_t row = 0; row < rows; ++row) {
        set.RowValueA[row] = static_cast<float>(first.Value(row));
        if (columns.size() > 1) set.RowValueB[row] = static_cast<float>(columns[1].Value(row));
    }
    set.RowParamName = first.record->name;
    set.RowParamUnit = UnitOf(*first.record);
    const bool time = first.record->subtype == VarianSubtype::delay;
    set.RowHeading = time ? "t(s)" : set.RowParamName + (set.RowParamUnit.empty() ? "" : "(" + set.RowParamUnit + ")");
    if (!first.IsNumeric())
        set.Warnings.push_back("The values of \"" + set.RowParamName + "\" are words: they are numbered.");
    if (cycle != rows) set.Warnings.push_back(fmt::format("\"{}\" has {} values for {} rows.", array, cycle, rows));
}

} // namespace nmr
