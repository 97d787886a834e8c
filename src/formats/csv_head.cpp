// The parameter head of the block form: one table of keys for reading and writing.

#include "formats/csv.h"

#include "core/dates.h"
#include "core/numbers.h"
#include "core/param_table.h"
#include "core/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kMostMHz = 1e5;
constexpr double kMostHz = 1e9;

// In the order of writing. DUMMY and the fourth and fifth pulse interval are not written.
constexpr std::string_view kWritten[] = {"ACQTM", "ADBIT", "CGNBL", "CPHBL", "COMNT", "CSPED", "CTEMP", "DATIM",
                                         "DELAY", "DET",   "EXMOD", "EXPCM", "FLT",   "FREQU", "IFR",   "IRATN",
                                         "IRNUC", "IRPHS", "IRRPW", "OBATN", "OBNUC", "OBPHS", "OFR",   "PD",
                                         "PI1",   "PI2",   "PI3",   "POINT", "PW1",   "PW2",   "PW3",   "PW4",
                                         "PW5",   "RESOL", "RGAIN", "SMODE", "SCANS", "SLVNT", "TOSCN"};
constexpr std::string_view kReadOnly[] = {"DUMMY"};
constexpr std::string_view kWithoutField[] = {"CGNBL", "CPHBL"}; ///< constants of the form

template <std::size_t N>
bool Has(const std::string_view (&keys)[N], std::string_view key)
{
    return std::ranges::find(keys, key) != std::end(keys);
}

/// The field of a key; the form calls the dead time DET.
const ParamField* FieldOf(std::string_view key)
{
    return FindParam(key == "DET" ? std::string_view("DEADT") : key);
}

bool IsText(const ParamField& field)
{
    return std::holds_alternative<std::string ParamBlock::*>(field.member);
}

std::string Digits9(double value)
{
    return fmt::format("{:.9g}", value);
}

struct NumberText {
    const ParamBlock& par;
    std::string operator()(std::string ParamBlock::*m) const { return par.*m; }
    std::string operator()(float ParamBlock::*m) const { return Digits9(ShortestDouble(par.*m)); }
    std::string operator()(double ParamBlock::*m) const { return fmt::format("{:.15g}", par.*m); }
    std::string operator()(std::int16_t ParamBlock::*m) const { return fmt::format("{}", par.*m); }
    std::string operator()(std::int32_t ParamBlock::*m) const { return fmt::format("{}", par.*m); }
    template <std::size_t N>
    std::string operator()(ElementOf<float, N> e) const
    {
        return Digits9(ShortestDouble((par.*(e.member))[e.index]));
    }
    template <std::size_t N>
    std::string operator()(ElementOf<std::int32_t, N> e) const
    {
        return fmt::format("{}", (par.*(e.member))[e.index]);
    }
};

/// Reads one head, line by line.
class HeadReader {
public:
    HeadReader(const NuclearTable& nuclides, DataSet& set) : nuclides_(nuclides), set_(set), par_(set.par) {}

    CsvHead Run(CsvLines& lines)
    {
        std::string_view line;
        while (!head_.ended && lines.Next(line)) {
            Split_Comma(line, key_, value_, unit_);
            if (key_ == "$END")
                head_.ended = true;
            else if (!key_.empty())
                Take(line);
        }
        Finish();
        return head_;
    }

private:
    void Take(std::string_view line)
    {
        if (Has(kWithoutField, key_)) return;
        if (!Has(kWritten, key_) && !Has(kReadOnly, key_)) {
            unknown_ += (unknown_.empty() ? "" : ", ") + FromUnknownCodePage(std::string_view(key_).substr(0, 20));
            return;
        }
        const ParamField* field = FieldOf(key_);
        if (key_ == "OFR")
            TakeFrequency();
        else if (key_ == "FREQU" || key_ == "IFR" || key_ == "RESOL")
            TakeWidth();
        else if (key_ == "POINT")
            TakePoint();
        else if (field != nullptr && IsText(*field))
            TakeText(*field, line);
        else if (field != nullptr && !value_.empty() && !SetParam(par_, *field, value_))
            NotANumber();
        head_.has_smode = head_.has_smode || (key_ == "SMODE" && !value_.empty());
        head_.has_acqtm = head_.has_acqtm || (key_ == "ACQTM" && ParseNumber(value_).value_or(0) > 0);
    }

    /// Text may hold commas: all of the line counts, but for the comma that closes it.
    void TakeText(const ParamField& field, std::string_view line)
    {
        std::string_view rest = line.substr(std::min(line.find(',') + 1, line.size()));
        rest = Trim(rest);
        if (rest.ends_with(',')) rest.remove_suffix(1);
        const std::string text = FromUnknownCodePage(Trim(rest));
        if (key_ == "OBNUC" || key_ == "IRNUC")
            SetParam(par_, field, nuclides_.Nucleus_Normalize(text));
        else
            SetParam(par_, field, text);
        if (key_ == "COMNT") par_.ExpTitle = text;
        if (key_ == "DATIM") TakeDate(text);
    }

    void TakeDate(const std::string& text)
    {
        const auto when = Parse_DateTime(text);
        if (!when) {
            if (!text.empty()) Warn("The date is not understood: " + text);
            return;
        }
        par_.DateSerial = when->serial;
        par_.TimeOfDay = static_cast<float>(when->fraction_of_day);
        par_.DATIM = FormatDate("dd/mmm/yyyy hh:nn:ss", *when);
    }

    /// The number in Hz, by the unit of the third field; `plain` is what stands without one.
    std::optional<double> InHz(double plain)
    {
        struct Unit {
            std::string_view name;
            double hz;
        };
        constexpr Unit kUnits[] = {{"HZ", 1}, {"KHZ", 1e3}, {"MHZ", 1e6}};
        const auto number = ParseNumber(value_);
        if (!number) {
            if (!value_.empty()) NotANumber();
            return std::nullopt;
        }
        if (unit_.empty() || unit_ == ",") return *number * plain;
        for (const Unit& unit : kUnits)
            if (EqualsNoCase(unit.name, unit_)) return *number * unit.hz;
        Warn(fmt::format("The unit of {} is not known and was passed over.", key_));
        return *number * plain;
    }

    void TakeFrequency()
    {
        const auto hz = InHz(1e6);
        if (!hz) return;
        const double mhz = *hz / 1e6;
        if (!(mhz > 0 && mhz < kMostMHz)) return Warn("OFR is no observe frequency.");
        par_.ObsCenter = par_.OBFRQ0PPM = mhz;
        par_.OBFRQ = static_cast<float>(mhz);
        head_.has_ofr = true;
    }

    void TakeWidth()
    {
        const auto hz = InHz(1);
        if (!hz) return;
        if (!(*hz > 0 && *hz < kMostHz)) {
            if (*hz != 0) Warn(fmt::format("{} is no width in Hz.", key_));
            return;
        }
        if (key_ == "RESOL") {
            par_.RESOL = *hz;
            head_.has_resol = true;
        } else if (key_ == "FREQU") {
            par_.FREQU = static_cast<float>(*hz);
            head_.has_frequ = true;
        } else {
            width_beside_ = *hz;
        }
    }

    void TakePoint()
    {
        const auto number = ParseNumber(value_);
        if (number && *number >= 1 && *number < 1e15)
            head_.point = static_cast<std::int64_t>(*number);
        else if (!value_.empty())
            Warn("POINT is no number of points.");
    }

    void Finish()
    {
        // The same width stands twice in files of this form; FREQU is the one that counts.
        if (!head_.has_frequ && width_beside_ > 0) {
            par_.FREQU = static_cast<float>(width_beside_);
            head_.has_frequ = true;
        }
        if (!unknown_.empty())
            Warn(fmt::format("Keys that are not known were passed over: {}", unknown_.substr(0, 200)));
    }

    void NotANumber() { Warn(fmt::format("{} is no number and was passed over.", key_)); }
    void Warn(std::string text) { set_.Warnings.push_back(std::move(text)); }

    const NuclearTable& nuclides_;
    DataSet& set_;
    ParamBlock& par_;
    CsvHead head_;
    std::string key_, value_, unit_, unknown_;
    double width_beside_ = 0;
};

} // namespace

CsvHead ReadCsvHead(CsvLines& lines, const NuclearTable& nuclides, DataSet& set)
{
    return HeadReader(nuclides, set).Run(lines);
}

std::span<const std::string_view> CsvHeadKeys()
{
    return kWritten;
}

std::string CsvHeadValue(const ParamBlock& par, std::string_view key)
{
    if (key == "CGNBL") return " 1";
    if (key == "CPHBL") return " 0";
    if (key == "OFR") return fmt::format("{:.15g}", par.OBFRQ0PPM);
    const ParamField* field = FieldOf(key); // IFR is written as the width, of which it is an alias
    if (field == nullptr) return {};
    std::string text = std::visit(NumberText{par}, field->member);
    // A value is one line.
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < 32; }, ' ');
    return text;
}

} // namespace nmr
