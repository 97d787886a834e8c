#pragma once
// Reading and writing the frame of a settings file: version tag and lines.

#include "core/result.h"
#include "core/settings_table.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

/// A version tag, in upper case, and where keys end in its lines that have no ";".
struct SettingsTag {
    std::string_view tag;
    std::size_t key_width;
};

enum class SettingsFileState { missing, foreign, read };
struct SettingsLines {
    SettingsFileState state = SettingsFileState::missing;
    std::vector<SettingLine> lines; ///< those with a key
};

/// Nothing of a file whose first line is none of the tags is read.
SettingsLines ReadSettingsLines(const std::filesystem::path& file, std::span<const SettingsTag> tags);

/// Small text file beside the program as UTF-8; empty when it is missing or can't be read.
std::string ReadSmallText(const std::filesystem::path& file);

/// Its lines, trimmed.
std::vector<std::string> TrimmedLines(std::string_view text);

/// Writes the file. One of a foreign tag that stands there is kept beside it, with ".old" behind its
/// name: it may be of another version, and holds what somebody set.
Status WriteSettingsFile(const std::filesystem::path& file, std::span<const SettingsTag> tags, std::string_view text);

} // namespace nmr
