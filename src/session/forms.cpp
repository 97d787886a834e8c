#include "session/forms.h"

#include "core/numbers.h"
#include "core/text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>

namespace nmr::forms {

std::string Indexed(std::string_view name, int index)
{
    return fmt::format("{} {}", name, index);
}

std::string NumberValue(double value)
{
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), end.ptr};
}

std::string Switch(bool on)
{
    return std::string(1, on ? '1' : '0');
}

std::string Text(const Values& values, const std::string& key)
{
    const auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
}

double Number(const Values& values, const std::string& key, double fallback)
{
    return ParseNumber(Text(values, key)).value_or(fallback);
}

std::string JoinLines(const std::vector<std::string>& entries)
{
    std::string out;
    for (const std::string& entry : entries) {
        if (entry.empty()) continue;
        if (!out.empty()) out += '\n';
        out += entry;
    }
    return out;
}

std::vector<std::string> SplitLines(std::string_view text)
{
    std::vector<std::string> out;
    for (std::string& line : Split(text, '\n'))
        if (!line.empty()) out.push_back(std::move(line));
    return out;
}

} // namespace nmr::forms
