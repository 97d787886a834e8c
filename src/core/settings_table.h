#pragma once
// The one list of settings: key, member, limits. Defaults are the initialisers of Settings; reader,
// writer, mending and tests all walk these rows.

#include "core/settings.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace nmr {

using SettingMember = std::variant<std::int32_t Settings::*, double Settings::*, std::string Settings::*>;

/// What becomes of a number outside its limits.
enum class Mend {
    keep,     ///< a line of a file is passed over; CheckSettings takes the default
    nearest,  ///< the nearer limit
    fallback, ///< a value of its own
};

struct SettingRow {
    std::string_view key; ///< spelt as in the file, oddities included
    SettingMember member;
    double min = 0, max = 0; ///< of a number; equal: no limit
    Mend mend = Mend::keep;
    double fallback = 0;
};

/// All single settings, in the order in which they are written.
std::span<const SettingRow> SettingRows();
/// Single settings of our own, written behind everything else.
std::span<const SettingRow> OwnSettingRows();

/// The row of a key as it stands in a file, older spellings included; nullptr when there is none. Keys
/// are compared exactly, but for runs of blanks, which count as one.
const SettingRow* FindSetting(std::string_view key);

/// The value as it is written; a double in the shortest form that reads back to the same bits.
std::string SettingText(const Settings& settings, const SettingRow& row);

/// Sets the member from text. False, with the member unchanged, for text that is no number and for a
/// number outside the limits of a row that keeps its value; other rows take it for CheckSettings to mend.
bool SetSetting(Settings& settings, const SettingRow& row, std::string_view text);

/// Settings with a key for each of several entries, "COLOR-00" to "COLOR-19" and the like: the key
/// without its number, and access to one entry.
struct IndexedSetting {
    std::string_view key;
    std::size_t count;
    bool sparse; ///< entries that still have their default are not written
    std::string (*text)(const Settings& settings, std::size_t index);
    bool (*set)(Settings& settings, std::size_t index, std::string_view text);
};
std::span<const IndexedSetting> IndexedSettings();

/// "COLOR-07" -> 7 for the key "COLOR"; the count of entries when the text is none of them.
std::size_t IndexOfKey(const IndexedSetting& setting, std::string_view key);

/// Brings every number back into its limits: colours and line widths to the nearer limit, other
/// values to their fallback or default. Nothing is reported.
void CheckSettings(Settings& settings);

/// The tick settings to 0, so that a file without them ends with the defaults of CheckSettings.
void ClearTickSettings(Settings& settings);

/// One line of a settings file.
struct SettingLine {
    std::string key, value;
};
/// Splits at the first ";" from the second character on; else at `key_width`, if the line is that
/// long; else the key is empty. A value ends at a tab inside it.
SettingLine SplitSettingLine(std::string_view line, std::size_t key_width);

/// `key` padded to `key_width`, "; ", the value on one line.
std::string FormatSettingLine(std::string_view key, std::string_view value, std::size_t key_width);

// Conversions of one value, shared with the other tables of keys.
bool SetValue(std::int32_t& target, std::string_view text);
bool SetValue(double& target, std::string_view text);
bool SetValue(std::string& target, std::string_view text);
std::string ValueText(std::int32_t value);
std::string ValueText(double value);
std::string ValueText(const std::string& value);

} // namespace nmr
