#include "core/operators.h"

#include "core/text.h"

#include <algorithm>

namespace nmr {
namespace {

auto Find(std::vector<std::string>& names, std::string_view name)
{
    return std::ranges::find_if(names, [&](const std::string& known) { return EqualsNoCase(known, name); });
}

/// Names stand in a settings file, a name to a line.
std::string Cleaned(std::string_view name)
{
    std::string out(Trim(name));
    std::erase_if(out, [](char c) { return static_cast<unsigned char>(c) < 32; });
    return out;
}

} // namespace

bool AddOperator(std::vector<std::string>& names, std::string_view name)
{
    std::string cleaned = Cleaned(name);
    if (cleaned.empty() || names.size() >= kMaxOperators || Find(names, cleaned) != names.end()) return false;
    names.push_back(std::move(cleaned));
    return true;
}

bool DeleteOperator(std::vector<std::string>& names, std::string_view name)
{
    const auto found = Find(names, Trim(name));
    if (found == names.end()) return false;
    names.erase(found);
    return true;
}

void OfferOperator(GlobalBlock& g)
{
    DataSet& set = g.Slots[0];
    if (set.FFTUser.empty() && Find(g.Operators, Trim(set.par.Operator)) != g.Operators.end())
        set.FFTUser = set.par.Operator;
}

} // namespace nmr
