#include "formats/jcamp_fields.h"

#include "core/dates.h"
#include "core/param_table.h"
#include "core/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

// --- Records

struct TextRecord {
    std::string_view label;
    std::string ParamBlock::*field;
};
constexpr TextRecord kTextRecords[] = {
    {"TITLE", &ParamBlock::ExpTitle},
    {"SPECTROMETERDATASYSTEM", &ParamBlock::Instrument},
    {"SAMPLEDESCRIPTION", &ParamBlock::SampleName},
    {".SOLVENTNAME", &ParamBlock::SLVNT},
    {".PULSESEQUENCE", &ParamBlock::PulseProg},
};

struct NumberRecord {
    std::string_view label, key; ///< key of the parameter table
};
constexpr NumberRecord kNumberRecords[] = {
    {".AVERAGES", "SCANS"},
    {".AVERAGES", "TIMES"},
    {".DIGITISER", "ADBIT"},
    {".DIGITISERRES", "ADBIT"},
};

struct ModeWord {
    std::string_view word;
    std::int16_t mode;
};
constexpr ModeWord kModeWords[] = {{"SIMULTANEOUS", 2}, {"SIMULATANEOUS", 2}, {"SEQUENTIAL", 3}, {"SINGLE", 1}};

/// Text of a file: UTF-8 is kept; else JEOL programs write Shift-JIS, all others Latin-1.
std::string TextOf(std::string_view bytes, bool is_jeol)
{
    std::string text = FromUnknownCodePage(bytes);
    return text == bytes || !is_jeol ? text : FromCp932(bytes);
}

/// A number for a field, as the parameter table reads it.
void SetNumber(ParamBlock& par, std::string_view key, double value)
{
    if (const ParamField* field = FindParam(key)) SetParam(par, *field, fmt::format("{}", value));
}

// --- Dates

/// "97/08/29" and "25/07/2024", the orders that the common reading of dates does not know.
std::string YearFirst(std::string_view text)
{
    const std::string_view day = text.substr(0, text.find(' '));
    const std::vector<std::string> parts = Split(day, '/');
    if (parts.size() != 3) return std::string(text);
    const std::string rest(text.substr(day.size()));
    if (parts[2].size() == 4) return fmt::format("{}/{}/{}{}", parts[2], parts[1], parts[0], rest);
    if (parts[0].size() != 2 || parts[2].size() != 2) return std::string(text);
    return fmt::format("{}{}/{}/{}{}", parts[0] < "70" ? "20" : "19", parts[0], parts[1], parts[2], rest);
}

void FillDate(const JcampBlock& block, ParamBlock& par)
{
    std::string text(block.Value("LONGDATE"));
    if (text.empty()) {
        text = block.Value("DATE");
        if (const std::string_view time = block.Value("TIME"); !time.empty() && text.find(':') == text.npos)
            text += " " + std::string(time);
    }
    if (Trim(text).empty()) return;
    if (const auto when = Parse_DateTime(YearFirst(text))) {
        par.DateSerial = when->serial;
        par.TimeOfDay = static_cast<float>(when->fraction_of_day);
        par.DATIM = FormatDate("dd/mmm/yyyy hh:nn:ss", *when);
    } else {
        par.DATIM = FromUnknownCodePage(Trim(text));
    }
}

// --- Private keys

/// The table and the head tell these better, or they are told elsewhere.
constexpr std::string_view kIgnoredKeys[] = {"POINT", "SMODE", "DFILE", "SMTMS", "SMEXR", "RESOL", "FREQU", "DTYPE"};
constexpr std::string_view kNucleusKeys[] = {"OBNUC", "IRNUC", "TRNUC"};

struct Unit {
    std::string_view name; ///< upper case
    double size;
    bool is_time;
};
constexpr Unit kUnits[] = {{"HZ", 1, false},   {"KHZ", 1e3, false}, {"MHZ", 1e6, false}, {"US", 1e-6, true},
                           {"MS", 1e-3, true}, {"SEC", 1, true},    {"S", 1, true}};

const Unit* FindUnit(std::string_view name)
{
    const std::string upper = ToUpper(Trim(name));
    const auto unit = std::ranges::find(kUnits, upper, &Unit::name);
    return unit == std::end(kUnits) ? nullptr : &*unit;
}

/// From the unit behind a value to the field's: pulses are microseconds, delays and waits seconds.
double UnitFactor(const ParamField& field, std::string_view given)
{
    const Unit *from = FindUnit(given), *to = FindUnit(field.unit);
    if (from == nullptr) return 1;
    if (from->is_time && to == nullptr) to = FindUnit(field.key.starts_with("PI") || field.key == "IWT" ? "S" : "US");
    return to == nullptr || to->is_time != from->is_time ? 1 : from->size / to->size;
}

bool IsText(const ParamField& field)
{
    return std::holds_alternative<std::string ParamBlock::*>(field.member);
}

void SetPrivate(const JcampPrivate& entry, bool is_jeol, const NuclearTable& nuclides, ParamBlock& par)
{
    if (EqualsNoCase(entry.key, "DTYPE")) {
        // A number is the program's own data type word.
        if (const auto number = JcampNumber(entry.value))
            par.DataFormat = static_cast<std::int16_t>(std::clamp(*number, -32768.0, 32767.0));
        else if (!entry.value.empty())
            par.DTYPE = TextOf(entry.value, is_jeol);
        return;
    }
    const auto is_key = [&](std::string_view key) { return EqualsNoCase(key, entry.key); };
    const ParamField* field = FindParam(entry.key);
    if (field == nullptr || entry.value.empty() || std::ranges::any_of(kIgnoredKeys, is_key)) return;
    if (IsText(*field)) {
        std::string text = TextOf(entry.value, is_jeol);
        if (std::ranges::any_of(kNucleusKeys, is_key))
            if (std::string nucleus = nuclides.Nucleus_Normalize(text); nucleus != "??") text = nucleus;
        SetParam(par, *field, text);
    } else if (const auto number = JcampNumber(entry.value)) {
        SetParam(par, *field, fmt::format("{}", *number * UnitFactor(*field, entry.unit)));
    }
}

std::optional<BrukerParameters> ParseBruker(const JcampBlock& block, DataSet& set)
{
    if (!block.has_bruker) return std::nullopt;
    auto parameters = BrukerParameters::Parse(std::as_bytes(std::span(block.bruker)));
    if (parameters) return std::move(*parameters);
    set.Warnings.push_back("The block of Bruker parameters can't be read: " + parameters.error().text + ".");
    return std::nullopt;
}

void FillRecords(const JcampBlock& block, const NuclearTable& nuclides, ParamBlock& par)
{
    for (const TextRecord& record : kTextRecords)
        if (const std::string_view value = block.Value(record.label); !value.empty())
            par.*record.field = TextOf(value, block.has_jeol);
    for (const NumberRecord& record : kNumberRecords)
        if (const auto number = block.Number(record.label)) SetNumber(par, record.key, *number);
    if (const auto mhz = block.Number(".OBSERVEFREQUENCY"); mhz && *mhz > 0 && *mhz < 1e5) {
        par.ObsCenter = *mhz;
        par.OBFRQ = static_cast<float>(*mhz);
        par.OBFRQ0PPM = *mhz;
    }
    std::string nucleus(block.Value(".OBSERVENUCLEUS"));
    std::erase(nucleus, '^');
    nucleus = nuclides.Nucleus_Normalize(nucleus);
    if (nucleus != "NUL" && nucleus != "??") par.OBNUC = nucleus;
    const std::string mode = ToUpper(block.Value(".ACQUISITIONMODE"));
    for (const ModeWord& word : kModeWords)
        if (mode.starts_with(word.word)) par.AcqMode = word.mode;
    FillDate(block, par);
    par.COMNT = par.ExpTitle;
}

/// What the Bruker block adds; the records of the head, which every program writes, stand.
void FillBruker(const BrukerParameters& bruker, BrukerUse use, const NuclearTable& nuclides, ParamBlock& par)
{
    const ParamBlock head = par;
    ApplyBrukerRecords(bruker, use, nuclides, par);
    if (head.ObsCenter > 0) {
        par.ObsCenter = head.ObsCenter;
        par.OBFRQ = head.OBFRQ;
    }
    if (!(par.OBFRQ0PPM > 0)) par.OBFRQ0PPM = par.ObsCenter;
    if (!head.OBNUC.empty() && head.OBNUC != "NUL") par.OBNUC = head.OBNUC;
    par.Instrument = head.Instrument;
    if (par.AcqMode == 0) par.AcqMode = head.AcqMode;
}

} // namespace

JcampHead FillJcampFields(const JcampBlock& block, const NuclearTable& nuclides, DataSet& set)
{
    ParamBlock& par = set.par;
    par.EXMOD = par.DTYPE = "JCAMP-DX";
    par.Instrument = "JCAMP";
    FillRecords(block, nuclides, par);
    for (const JcampPrivate& entry : block.own) SetPrivate(entry, block.has_jeol, nuclides, par);
    JcampHead head;
    head.bruker = ParseBruker(block, set);
    const BrukerUse use = KindOf(block) == JcampKind::fid ? BrukerUse::fid : BrukerUse::spectrum;
    if (head.bruker) FillBruker(*head.bruker, use, nuclides, par);
    if (const JcampPrivate* sweep = block.Own("FREQU")) {
        if (const auto number = JcampNumber(sweep->value)) {
            const Unit* unit = FindUnit(sweep->unit);
            head.sweep_hz = *number * (unit == nullptr || unit->is_time ? 1 : unit->size);
        }
    }
    return head;
}

} // namespace nmr
