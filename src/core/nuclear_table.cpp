#include "core/nuclear_table.h"

#include "core/numbers.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <span>

namespace nmr {

namespace {

constexpr std::size_t kMaxLines = 141;

constexpr std::string_view kBuiltInText =
#include "core/nuclear_builtin.inc"
    ;

struct Synonym {
    std::string_view text, nucleus;
};
constexpr Synonym kSynonyms[] = {
    {"", "NUL"},         {"NUL", "NUL"}, {"OFF", "OFF"},      {"PROTON", "1H"}, {"1H", "1H"},
    {"D", "2H"},         {"2D", "2H"},   {"DEUTERIUM", "2H"}, {"2H", "2H"},     {"CARBON", "13C"},
    {"CARBON13", "13C"}, {"13C", "13C"}, {"TRITIUM", "3H"},
};
constexpr Synonym kElementSpellings[] = {
    {"ALUMINUM", "ALUMINIUM"}, {"CESIUM", "CAESIUM"},   {"SULPHUR", "SULFUR"},     {"WOLFRAM", "TUNGSTEN"},
    {"PROTON", "HYDROGEN"},    {"PROTIUM", "HYDROGEN"}, {"DEUTERIUM", "HYDROGEN"}, {"TRITIUM", "HYDROGEN"},
};

/// Where protons resonate in the usual magnets, MHz.
constexpr std::array<std::array<double, 2>, 10> kProtonRanges{{{59.4, 60.6},
                                                               {89.1, 90.9},
                                                               {267.3, 272.7},
                                                               {297, 303},
                                                               {396, 404},
                                                               {495, 505},
                                                               {594, 606},
                                                               {792, 808},
                                                               {891, 909},
                                                               {990, 1010}}};

std::string_view Lookup(std::span<const Synonym> table, std::string_view text)
{
    const auto found = std::ranges::find(table, text, &Synonym::text);
    return found == table.end() ? std::string_view() : found->nucleus;
}

std::string Only(std::string_view text, bool (*wanted)(char))
{
    std::string out;
    std::ranges::copy_if(text, std::back_inserter(out), wanted);
    return out;
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}
bool IsUpperLetter(char c)
{
    return c >= 'A' && c <= 'Z';
}

double NumberField(const std::vector<std::string>& fields, std::size_t index)
{
    if (index >= fields.size()) return 0;
    const auto value = ParseNumber(fields[index]);
    return value && std::isfinite(*value) ? *value : 0;
}

/// The element of a symbol, from the built-in table: files of others have no names of elements.
std::string ElementOfSymbol(std::string_view name)
{
    static const NuclearTable table = NuclearTable::BuiltIn();
    const std::string symbol = Only(name, IsUpperLetter);
    const auto found =
        std::ranges::find_if(table.rows(), [&](const Nuclide& row) { return Only(row.name, IsUpperLetter) == symbol; });
    return found == table.rows().end() ? std::string() : found->element;
}

Nuclide ParseNuclide(const std::vector<std::string>& fields)
{
    Nuclide row;
    row.name = ToUpper(Trim(fields[0]));
    row.spin = NumberField(fields, 1);
    row.abundance = NumberField(fields, 2);
    row.gamma = NumberField(fields, 3);
    row.frequency = NumberField(fields, 4);
    row.quadrupole = NumberField(fields, 5);
    if (fields.size() > 6) row.element = ToUpper(Trim(fields[6]));
    return row;
}

/// "FLUORINE" and "19" -> "19F"; without a number the nuclide of that element which nature has most of.
const Nuclide* FindByElement(const std::vector<Nuclide>& rows, std::string element, const std::string& number)
{
    if (const std::string_view usual = Lookup(kElementSpellings, element); !usual.empty()) element = usual;
    const Nuclide* best = nullptr;
    for (const Nuclide& row : rows) {
        if (row.element != element) continue;
        if (number.empty() ? best == nullptr || row.abundance > best->abundance : Only(row.name, IsDigit) == number)
            best = &row;
    }
    return best;
}

} // namespace

NuclearTable NuclearTable::BuiltIn()
{
    return Parse(kBuiltInText);
}

NuclearTable NuclearTable::Parse(std::string_view text)
{
    NuclearTable table;
    const std::vector<std::string> lines = Split(text, '\n');
    for (std::size_t i = 0; i < std::min(lines.size(), kMaxLines); ++i) {
        Nuclide row = ParseNuclide(Split(lines[i], ';'));
        if (row.name.empty()) continue;
        if (row.element.empty()) row.element = ElementOfSymbol(row.name);
        table.rows_.push_back(std::move(row));
    }
    return table;
}

const Nuclide* NuclearTable::Find(std::string_view name) const
{
    const auto found = std::ranges::find(rows_, ToUpper(Trim(name)), &Nuclide::name);
    return found == rows_.end() ? nullptr : &*found;
}

std::string NuclearTable::Nucleus_Normalize(std::string_view text) const
{
    const std::string upper = ToUpper(Trim(text));
    if (const std::string_view known = Lookup(kSynonyms, upper); !known.empty()) return std::string(known);
    const std::string number = Only(upper, IsDigit);
    const std::string letters = Only(upper, IsUpperLetter);
    if (letters.empty()) return "??";
    if (const std::string_view known = Lookup(kSynonyms, number + letters); !known.empty()) return std::string(known);
    if (const Nuclide* row = Find(number + letters)) return row->name;
    if (const Nuclide* row = FindByElement(rows_, letters, number)) return row->name;
    return "??";
}

std::string Nucleus_From_Frequency(double mhz)
{
    const auto inside = [mhz](const std::array<double, 2>& range) { return mhz >= range[0] && mhz <= range[1]; };
    return std::ranges::any_of(kProtonRanges, inside) ? "1H" : "";
}

int NucleusGroup(std::string_view nucleus)
{
    const std::string name = ToUpper(Trim(nucleus));
    if (name.empty() || name == "1H" || name == "H1" || name == "NUL") return 0;
    return name == "13C" || name == "C13" ? 1 : 2;
}

} // namespace nmr
