#include "formats/key_values.h"

#include "core/text.h"

#include <algorithm>

namespace nmr {

bool Split_KeyValue(std::string_view line, std::string& key, std::string& value)
{
    line = Trim(line);
    const auto end = line.find_first_of("= \t");
    key = std::string(line.substr(0, end));
    value.clear();
    if (key.empty()) return false;
    if (end == std::string_view::npos) return true;
    std::string_view rest = Trim(line.substr(end));
    if (rest.starts_with('=')) rest.remove_prefix(1);
    value = std::string(Trim(rest));
    return true;
}

KeyValues KeyValues::Parse(ByteSpan bytes)
{
    KeyValues file;
    LineReader reader(bytes);
    for (std::string line, key, value; !(line = reader.Read_TextLine()).empty();)
        if (Split_KeyValue(line, key, value)) file.lines_.emplace_back(key, value);
    return file;
}

const std::string* KeyValues::Find(std::string_view key) const
{
    auto found = std::ranges::find_if(lines_, [&](const auto& line) { return line.first == key; });
    if (found == lines_.end())
        found = std::ranges::find_if(lines_, [&](const auto& line) { return EqualsNoCase(line.first, key); });
    return found == lines_.end() ? nullptr : &found->second;
}

} // namespace nmr
