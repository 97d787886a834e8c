// Writing JCAMP-DX: one table of the real part, or pages of both parts.
//
// Order, patterns and spellings of the head ("##ORGIN", "##.ACQUISITION NODE") are those of the programs
// that exchange these files, odd or not. X of a line is a whole number of XFACTOR, so that X and the
// axis agree within half a step.

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/param_table.h"
#include "core/text.h"
#include "formats/jcamp.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

constexpr std::string_view kWholePattern = "########0";
constexpr std::string_view kFrequencyPattern = "#####.#########";
constexpr std::string_view kSolventPattern = "######.######";
constexpr std::string_view kReferencePattern = "#######0.##########";
constexpr std::string_view kTablePattern = "###0.##########";
constexpr std::string_view kFirstYPattern = "##########0.0#####";
constexpr std::string_view kColumnPattern = "###########0.########";
constexpr std::string_view kFactorPattern = "#####0.##########";
constexpr std::string_view kShortRule = "$$ -----------------------\n";
constexpr std::string_view kLongRule = "$$ -------------------------------\n";

constexpr std::string_view kKeys[] = {
    "DFILE", "ADBIT", "COMNT", "CSPED", "CTEMP", "DELAY", "DEADT", "DTYPE", "DUMMY", "EXMOD", "EXPCM",
    "FILTR", "FREQU", "IRFRQ", "INTVL", "IRATN", "IRFIN", "IRNUC", "IRPHS", "IRRPW", "IRSET", "INIWT",
    "LOOP1", "LOOP2", "LOOP3", "LOOP4", "LOOP5", "OBATN", "OBFIN", "OBNUC", "OBSET", "OBFRQ", "PD",
    "PI1",   "PI2",   "PI3",   "PI4",   "PI5",   "POINT", "PS1",   "PS2",   "PS3",   "PS4",   "PS5",
    "PW1",   "PW2",   "PW3",   "PW4",   "PW5",   "RESOL", "RGAIN", "SCANS", "SLVNT", "SMEXR", "SMODE",
    "SMTMS", "TIMES", "TOSCN", "TR",    "TRATN", "TRFIN", "TRFRQ", "TRNUC", "TRRPW", "TRSET"};

/// One line of text that can't be taken for a comment.
std::string OneLine(std::string text)
{
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 32) c = ' ';
    for (std::size_t at = 0; (at = text.find("$$", at)) != text.npos; at += 2) text.insert(at + 1, " ");
    return text;
}

void AddRecord(std::string& out, std::string_view label, std::string_view value)
{
    out += "##";
    out += label;
    out += '=';
    out += value;
    out += '\n';
}

void AddNumber(std::string& out, std::string_view label, std::string_view pattern, double value)
{
    AddRecord(out, label, FormatNumber(pattern, value));
}

/// The number that a reader gets.
double AsPrinted(std::string_view pattern, double value)
{
    return ParseNumber(FormatNumber(pattern, value)).value_or(value);
}

// --- What is written

/// X in Hz: shift times observe frequency.
struct HertzColumn {
    double mhz = 0, first = 0, last = 0, step = 0;
    double factor = 1; ///< as printed
    std::int64_t At(std::size_t index) const
    {
        return std::llround((first + static_cast<double>(index) * step) / factor);
    }
};

/// Ordinates as whole numbers of a factor.
struct Ordinates {
    double factor = 1; ///< as printed
    std::vector<std::int64_t> values;
    double First() const { return factor * static_cast<double>(values.front()); }
    double Last() const { return factor * static_cast<double>(values.back()); }
    double Min() const { return factor * static_cast<double>(*std::ranges::min_element(values)); }
    double Max() const { return factor * static_cast<double>(*std::ranges::max_element(values)); }
};

/// A power of ten of which the largest value holds 1E7 to 1E8, finer than a float tells it; but not below
/// 1E-10, the last digit that is printed.
double ChooseFactor(std::span<const float> row)
{
    constexpr int kDigits = 7, kSmallest = -10;
    double largest = 0;
    for (const float value : row)
        if (std::isfinite(value)) largest = std::max(largest, std::fabs(static_cast<double>(value)));
    if (largest == 0) return 1;
    const int exponent = std::max(static_cast<int>(std::floor(std::log10(largest))) - kDigits, kSmallest);
    return exponent >= 0 ? std::pow(10.0, exponent) : 1 / std::pow(10.0, -exponent);
}

Ordinates Quantise(std::span<const float> row, std::string_view pattern)
{
    Ordinates out;
    out.factor = AsPrinted(pattern, ChooseFactor(row));
    out.values.resize(row.size());
    std::ranges::transform(row, out.values.begin(), [&](float value) {
        const double whole = std::nearbyint(static_cast<double>(value) / out.factor); // half to even
        return std::isfinite(whole) ? static_cast<std::int64_t>(std::clamp(whole, -kMaxOrdinate, kMaxOrdinate)) : 0;
    });
    return out;
}

HertzColumn MakeHertz(const DataSet& set, std::size_t points, std::string_view factor_pattern)
{
    HertzColumn x;
    const double mhz = set.par.ObsCenter > 0 ? set.par.ObsCenter : set.par.OBFRQ0PPM;
    x.mhz = AsPrinted(kFrequencyPattern, mhz > 0 ? mhz : 1);
    x.first = set.spec.XAxis[0] * x.mhz;
    x.last = set.spec.XAxis[points - 1] * x.mhz;
    x.step = (x.last - x.first) / static_cast<double>(points - 1);
    const double factor = AsPrinted(factor_pattern, std::fabs(x.step));
    if (factor > 0) x.factor = factor;
    return x;
}

Status CheckSet(const DataSet& set, std::size_t row, std::string_view where)
{
    const auto points = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    const SpecBuffer& spec = set.spec;
    if (set.par.SMODE != 1) return Error{ErrorCode::bad_value, std::string(where), "A FID has to be transformed first"};
    const bool has_rows = row < spec.DataRe.rows() && row < spec.DataIm.rows() && spec.DataRe.columns() >= points &&
                          spec.DataIm.columns() >= points;
    if (points < 2 || !has_rows || spec.XAxis.size() < points || spec.XAxis[0] == spec.XAxis[points - 1])
        return Error{ErrorCode::bad_value, std::string(where), "There is no spectrum to write"};
    return {};
}

// --- Parts of the file

void AddHead(std::string& out, const ParamBlock& par, std::string_view data_class, double mhz)
{
    AddRecord(out, "TITLE", OneLine(par.ExpTitle));
    AddRecord(out, "JCAMP-DX", "5.00");
    AddRecord(out, "DATA TYPE", "NMR SPECTRUM");
    AddRecord(out, "DATA CLASS", data_class);
    AddRecord(out, "ORGIN", "NOT SPECIFIED");
    AddRecord(out, "OWNER", "GUEST");
    AddRecord(out, "DATE", OneLine(par.DATIM));
    AddRecord(out, "SPECTROMETER/DATA SYSTEM", OneLine(par.Instrument));
    AddNumber(out, ".OBSERVE FREQUENCY", kFrequencyPattern, mhz);
    AddRecord(out, ".OBSERVE NUCLEUS", "^" + OneLine(par.OBNUC));
    AddNumber(out, ".SOLVENT REFERENCE", kSolventPattern, 0);
    AddRecord(out, ".ACQUISITION NODE", "SIMULTANEOUS");
    AddNumber(out, ".AVERAGES", kWholePattern, par.SCANS);
}

void AddKeys(std::string& out, const ParamBlock& par)
{
    for (const std::string_view key : kKeys)
        if (const ParamField* field = FindParam(key))
            AddRecord(out, "$" + std::string(key), OneLine(ParamText(par, *field)));
}

void AddTable(std::string& out, const Ordinates& y, const HertzColumn& x)
{
    const std::span<const std::int64_t> values = y.values;
    std::size_t last = 0;
    while (last + 1 < values.size()) last = Write_AsdfLine(values, last, x.At(last), out);
    Write_AsdfLine(values, last, x.At(last), out); // the check value of the last difference
}

/// "##FIRST=" and its like: three numbers by a pattern, and the page.
void AddColumns(std::string& out, std::string_view label, std::string_view pattern, std::array<double, 3> values,
                std::string_view page)
{
    std::string text;
    for (const double value : values) text += FormatNumber(pattern, value) + ", ";
    AddRecord(out, label, text + std::string(page));
}

void AddPage(std::string& out, std::string_view comment, std::string_view number, std::string_view form,
             const Ordinates& y, const HertzColumn& x)
{
    out += kShortRule;
    out += comment;
    AddRecord(out, "PAGE", number);
    AddRecord(out, "DATA TABLE", form);
    AddTable(out, y, x);
    out += kLongRule;
}

std::span<const float> RowOf(const RowArray<float>& rows, std::size_t row, std::size_t points)
{
    return rows[row].first(points);
}

std::size_t ShownRow(const GlobalBlock& g, std::int16_t slot)
{
    return slot == 0 ? static_cast<std::size_t>(std::max<std::int16_t>(g.CurrentRow, 0)) : 0;
}

Status WriteText(const std::string& path, const GlobalBlock& g, std::int16_t slot, std::string_view where,
                 Result<std::string> (*make)(const DataSet&, std::size_t))
{
    if (slot < 0 || slot >= kSlotCount) return Error{ErrorCode::bad_value, std::string(where), "There is no such slot"};
    const auto text = make(g.Slots[static_cast<std::size_t>(slot)], ShownRow(g, slot));
    if (!text) return text.error();
    Status written = WriteWholeFile(path, std::string_view(*text));
    if (!written) return Error{written.error().code, std::string(where), written.error().text};
    return {};
}

constexpr std::string_view kWhereDX = "WriteDataDX/1DDRW";
constexpr std::string_view kWhereDx2 = "WriteDataDx2/1DDRW";

} // namespace

Result<std::string> JcampText(const DataSet& set, std::size_t row)
{
    if (Status sound = CheckSet(set, row, kWhereDX); !sound) return sound.error();
    const auto points = static_cast<std::size_t>(set.par.POINT);
    const HertzColumn x = MakeHertz(set, points, kTablePattern);
    const Ordinates y = Quantise(RowOf(set.spec.DataRe, row, points), kTablePattern);
    std::string out;
    out.reserve(8192 + 4 * points);
    AddHead(out, set.par, "XYDATA", x.mhz);
    out += "$$ NMR SPECIFIC PARAMETERS\n";
    AddKeys(out, set.par);
    // Hz from the end of low shifts up to 0 ppm.
    AddNumber(out, "$REFERENCE_POINT", kReferencePattern, -std::min(x.first, x.last));
    out += "$$ END OF NMR SPECIFIC PARAMETERS\n";
    AddRecord(out, "XUNITS", "HZ");
    AddRecord(out, "YUNITS", "ARBITRARY UNITS");
    AddNumber(out, "XFACTOR", kTablePattern, x.factor);
    AddNumber(out, "YFACTOR", kTablePattern, y.factor);
    AddNumber(out, "FIRSTX", kTablePattern, x.first);
    AddNumber(out, "LASTX", kTablePattern, x.last);
    AddNumber(out, "DELTAX", kTablePattern, x.step);
    AddNumber(out, "MAXY", kTablePattern, y.Max());
    AddNumber(out, "MINY", kTablePattern, y.Min());
    AddNumber(out, "NPOINTS", kWholePattern, set.par.POINT);
    AddNumber(out, "FIRSTY", kFirstYPattern, y.First());
    AddRecord(out, "XYDATA", "(X++(Y..Y))");
    AddTable(out, y, x);
    AddRecord(out, "END", "");
    return out;
}

Result<std::string> JcampPagesText(const DataSet& set, std::size_t row)
{
    if (Status sound = CheckSet(set, row, kWhereDx2); !sound) return sound.error();
    const auto points = static_cast<std::size_t>(set.par.POINT);
    const HertzColumn x = MakeHertz(set, points, kFactorPattern);
    const Ordinates re = Quantise(RowOf(set.spec.DataRe, row, points), kFactorPattern);
    const Ordinates im = Quantise(RowOf(set.spec.DataIm, row, points), kFactorPattern);
    std::string out;
    out.reserve(8192 + 8 * points);
    AddHead(out, set.par, "NTUPLES", x.mhz);
    out += "$$ NMR SPECIFIC PARAMETERS\n";
    AddKeys(out, set.par);
    out += "$$ END OF NMR SPECIFIC PARAMETERS\n";
    AddRecord(out, "NTUPLES", " NMR SPECTRUM");
    AddRecord(out, "VAR_NAME", "FREQUENCY, SPECTRUM/REAL, SPECTRUM/IMAG, PAGE NUMBER");
    AddRecord(out, "SYMBOL", "X, R, I, N");
    AddRecord(out, "VAR_TYPE", "INDEPENDENT, DEPENDENT, DEPENDENT, PAGE");
    AddRecord(out, "VAR_FORM", "AFFN, ASDF, ASDF,");
    const auto count = static_cast<double>(points);
    AddColumns(out, "VAR_DIM", kWholePattern, {count, count, count}, "2");
    AddRecord(out, "UNITS", "HZ, ARBITRARY UNITS, ARBITRARY UNITS,");
    AddColumns(out, "FIRST", kColumnPattern, {x.first, re.First(), im.First()}, "1");
    AddColumns(out, "LAST", kColumnPattern, {x.last, re.Last(), im.Last()}, "2");
    AddColumns(out, "MIN", kColumnPattern, {std::min(x.first, x.last), re.Min(), im.Min()}, "1");
    AddColumns(out, "MAX", kColumnPattern, {std::max(x.first, x.last), re.Max(), im.Max()}, "2");
    AddColumns(out, "FACTOR", kFactorPattern, {x.factor, re.factor, im.factor}, "1");
    AddPage(out, "$$ Real Data\n", "N=1", "(X++(R..R)), XYDATA", re, x);
    AddPage(out, "$$ Image Data\n", "N=2", "(X++(I..I)), XYDATA", im, x);
    AddRecord(out, "END NTUPLES", " NMR SPECTRUM");
    AddRecord(out, "END", "");
    return out;
}

Status WriteDataDX(const std::string& path, const GlobalBlock& g, std::int16_t slot)
{
    return WriteText(path, g, slot, kWhereDX, JcampText);
}

Status WriteDataDx2(const std::string& path, const GlobalBlock& g, std::int16_t slot)
{
    return WriteText(path, g, slot, kWhereDx2, JcampPagesText);
}

} // namespace nmr
