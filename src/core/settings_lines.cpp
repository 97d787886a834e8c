#include "core/settings_lines.h"

#include "core/file_layer.h"
#include "core/text.h"

#include <algorithm>

namespace nmr {

namespace {

constexpr std::uint64_t kSizeLimit = std::uint64_t{16} << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

const SettingsTag* MatchTag(std::string_view first_line, std::span<const SettingsTag> tags)
{
    const std::string tag = ToUpper(Trim(first_line));
    const auto found = std::ranges::find(tags, tag, &SettingsTag::tag);
    return found == tags.end() ? nullptr : &*found;
}

} // namespace

std::string ReadSmallText(const std::filesystem::path& file)
{
    const auto bytes = ReadWholeFile(file.string(), kSizeLimit);
    if (!bytes) return {};
    std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    // What is no UTF-8 comes from older versions, which wrote the code page of Japanese Windows.
    return FromUnknownCodePage(text) == text ? std::string(text) : FromCp932(text);
}

std::vector<std::string> TrimmedLines(std::string_view text)
{
    std::vector<std::string> lines = Split(text, '\n');
    for (std::string& line : lines) line = std::string(Trim(line));
    return lines;
}

SettingsLines ReadSettingsLines(const std::filesystem::path& file, std::span<const SettingsTag> tags)
{
    const std::string text = ReadSmallText(file);
    if (text.empty()) return {};
    const std::vector<std::string> lines = Split(text, '\n');
    const SettingsTag* tag = MatchTag(lines.front(), tags);
    if (tag == nullptr) return {SettingsFileState::foreign, {}};
    SettingsLines out{SettingsFileState::read, {}};
    for (std::size_t i = 1; i < lines.size(); ++i) {
        std::string_view line = lines[i];
        if (line.ends_with('\r')) line.remove_suffix(1);
        SettingLine split = SplitSettingLine(line, tag->key_width);
        if (!split.key.empty()) out.lines.push_back(std::move(split));
    }
    return out;
}

Status WriteSettingsFile(const std::filesystem::path& file, std::span<const SettingsTag> tags, std::string_view text)
{
    if (file.empty()) return Error{ErrorCode::unwritable, "WriteSettingsFile/1DSet", "No settings file is chosen."};
    const std::string there = ReadSmallText(file);
    if (!there.empty() && MatchTag(std::string_view(there).substr(0, there.find('\n')), tags) == nullptr) {
        std::filesystem::path kept = file;
        kept += ".old";
        std::error_code error;
        std::filesystem::rename(file, kept, error);
    }
    return WriteWholeFile(file, text);
}

} // namespace nmr
