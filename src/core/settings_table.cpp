#include "core/settings_table.h"

#include "core/settings_rows.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <unordered_map>
#include <vector>

namespace nmr {

namespace {

constexpr SettingRow kOwnRows[] = {
    settings_rows::Count("THEME", &Settings::theme, 0, 2),
    settings_rows::Count("VENDOR START", &Settings::vendor_start, 0, 1),
    settings_rows::Count("ASK DATA TYPE", &Settings::ask_data_type, 0, 1),
    settings_rows::Count("ROBUST PHASE", &Settings::robust_phase, 0, 1),
    settings_rows::Count("BASE LINE METHOD", &Settings::base_line_method, 0, 2),
    settings_rows::Number("BASE LINE BEND", &Settings::base_line_bend, 0.1, 100),
    settings_rows::Count("BASE LINE DEGREE", &Settings::base_line_degree, 1, 20),
    settings_rows::Count("NEGATIVE PEAKS", &Settings::negative_peaks, 0, 1),
    settings_rows::Count("INTERPOLATE TOPS", &Settings::interpolate_tops, 0, 1),
};

struct Alias {
    std::string_view old_key, key;
};

// Spellings of older files. Fonts have one rule for all: see ModernEnding.
constexpr Alias kAliases[] = {
    {"CURSOL COL 0", "CURSOR COL 0"},
    {"CURSOL COL 1", "CURSOR COL 1"},
    {"CURSOL COL 3", "CURSOR COL 3"},
    {"CURSOL COL START", "CURSOR COL START"},
    {"CURSOL COL END", "CURSOR COL END"},
    {"SHOW CURSOL", "SHOW CURSOR"},
    {"AXIS TIC INCRE", "AXIS TIC STEP"},
    {"AXIS TIC INCRE 2", "AXIS TIC STEP 2"},
    {"AX TIC INCR 1H", "AX TIC STEP 1H"},
    {"AX TIC INCR2 1H", "AX TIC STEP2 1H"},
    {"AX TIC INCR 13C", "AX TIC STEP 13C"},
    {"AX TIC INCR2 13C", "AX TIC STEP2 13C"},
    {"AX TIC INCR OTHER", "AX TIC STEP OTHER"},
    {"AX TIC INCR OTH", "AX TIC STEP OTHER"},
    {"AX TIC INCR2 OTHER", "AX TIC STEP2 OTHER"},
    {"AX TIC INCR2 OTH", "AX TIC STEP2 OTHER"},
    {"AX TIC STEP OTH", "AX TIC STEP OTHER"},
    {"AX TIC STEP2 OTH", "AX TIC STEP2 OTHER"},
    {"INTEGRAL LIST HEIGHT", "INTEGRALK LIST HEIGHT"},
    {"INTEGRAL LIST WIDTH", "INTEGRALK LIST WIDTH"},
    {"INTEGRAL LIST WAKU WIDTH", "INTEGRALK LIST WAKU WIDTH"},
    {"MU BG COLOR", "MUL BG COLOR"},
    {"PARA TABLE", "PARAMETER TABLE"},
    {"DEFAULT FONT", "DEFAULT FONT ENG"},
    {"DEFAULT FONT JPN", "DEFAULT FONT ENG"},
    {"UNIT POSITION", "DEFAULT UNIT POS"},
    {"UNIT POSITION-0", "DEFAULT UNIT POS"},
    {"INTEGRAL DIGIT", "DEFAULT INTEG DIGIT"},
    {"PEAK DIGIT", "DEFAULT PEAK DIGIT"},
    {"PEAK-VAL UNIT", "DEFAULT PEAK UNIT"},
    {"PEAK BOTTOM MARG", "PEAK BOTTOM HEIGHT"},
    {"ML SCALE INC1", "ML SCALE STEP1"},
    {"ML SCALE INC2", "ML SCALE STEP2"},
};

// The tick settings of the shown data and of the three groups of nuclei.
constexpr std::int32_t Settings::*kTickDivisions[] = {
    &Settings::axis_tic_div,   &Settings::axis_tic_div_2,   &Settings::ax_tic_div_1h,    &Settings::ax_tic_div_2_1h,
    &Settings::ax_tic_div_13c, &Settings::ax_tic_div_2_13c, &Settings::ax_tic_div_other, &Settings::ax_tic_div_2_other,
};
constexpr double Settings::*kTickSteps[] = {
    &Settings::axis_tic_step,     &Settings::axis_tic_step_2,    &Settings::ax_tic_step_1h,
    &Settings::ax_tic_step2_1h,   &Settings::ax_tic_step_13c,    &Settings::ax_tic_step2_13c,
    &Settings::ax_tic_step_other, &Settings::ax_tic_step2_other,
};

template <auto Member>
constexpr IndexedSetting Entries(std::string_view key, std::size_t count, bool sparse)
{
    return {key, count, sparse, [](const Settings& s, std::size_t i) { return ValueText((s.*Member)[i]); },
            [](Settings& s, std::size_t i, std::string_view text) { return SetValue((s.*Member)[i], text); }};
}
template <auto Fonts, auto Member>
constexpr IndexedSetting FontEntries(std::string_view key)
{
    return {key, kSpectrumColors, true,
            [](const Settings& s, std::size_t i) { return ValueText((s.*Fonts.*Member)[i]); },
            [](Settings& s, std::size_t i, std::string_view text) { return SetValue((s.*Fonts.*Member)[i], text); }};
}

constexpr auto kIntegral = &Settings::integ_fonts;
constexpr auto kPeakNumber = &Settings::peak_num_fonts;
constexpr IndexedSetting kIndexed[] = {
    Entries<&Settings::color>("COLOR", kSpectrumColors, false),
    FontEntries<kIntegral, &SpectrumFonts::name>("INTEG FONT NAMES"),
    FontEntries<kIntegral, &SpectrumFonts::size>("INTEG FONT SIZES"),
    FontEntries<kIntegral, &SpectrumFonts::bold>("INTEG FONT BOLDS"),
    FontEntries<kIntegral, &SpectrumFonts::italic>("INTEG FONT ITALICS"),
    FontEntries<kIntegral, &SpectrumFonts::charset>("INTEG FONT CHARSETS"),
    FontEntries<kPeakNumber, &SpectrumFonts::name>("PEAK NUM FONTS"),
    FontEntries<kPeakNumber, &SpectrumFonts::size>("PEAK NUM SIZES"),
    FontEntries<kPeakNumber, &SpectrumFonts::bold>("PEAK NUM BOLDS"),
    FontEntries<kPeakNumber, &SpectrumFonts::italic>("PEAK NUM ITALICS"),
    FontEntries<kPeakNumber, &SpectrumFonts::charset>("PEAK NUM CHARSETS"),
    Entries<&Settings::fid_shift_delay>("FID SHIFT DELAY", kFidShiftKeys, true),
};

std::string CollapseBlanks(std::string_view key)
{
    std::string out;
    for (const char c : Trim(key))
        if (c != ' ' || out.back() != ' ') out += c;
    return out;
}

using RowIndex = std::unordered_map<std::string, const SettingRow*>;

RowIndex MakeRowIndex()
{
    RowIndex index;
    for (const auto rows : {SettingRows(), OwnSettingRows()})
        for (const SettingRow& row : rows) index.emplace(CollapseBlanks(row.key), &row);
    for (const Alias& alias : kAliases) index.emplace(alias.old_key, index.at(CollapseBlanks(alias.key)));
    return index;
}

/// "AXIS FONT BLD" -> "AXIS FONT BOLD", "AXIS FONT ITA" -> "AXIS FONT ITALIC"; empty for other endings.
std::string ModernEnding(const std::string& key)
{
    if (key.ends_with("BLD")) return key.substr(0, key.size() - 3) + "BOLD";
    if (key.ends_with("ITA")) return key + "LIC";
    return {};
}

bool Inside(const SettingRow& row, double value)
{
    return row.min == row.max || (value >= row.min && value <= row.max);
}

double Mended(const SettingRow& row, double value, double standard)
{
    if (std::isfinite(value) && Inside(row, value)) return value;
    switch (row.mend) {
    case Mend::nearest:
        return std::clamp(std::isnan(value) ? row.min : value, row.min, row.max);
    case Mend::fallback:
        return row.fallback;
    case Mend::keep:
        break;
    }
    return standard;
}

} // namespace

std::span<const SettingRow> SettingRows()
{
    static const std::vector<SettingRow> rows = [] {
        std::vector<SettingRow> all;
        for (const auto part :
             {settings_rows::DisplayRows(), settings_rows::LayoutRows(), settings_rows::AnalysisRows()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return rows;
}

std::span<const SettingRow> OwnSettingRows()
{
    return kOwnRows;
}

const SettingRow* FindSetting(std::string_view key)
{
    static const RowIndex index = MakeRowIndex();
    const std::string wanted = CollapseBlanks(key);
    auto found = index.find(wanted);
    if (found == index.end()) found = index.find(ModernEnding(wanted));
    return found == index.end() ? nullptr : found->second;
}

bool SetValue(double& target, std::string_view text)
{
    const auto value = ParseNumber(text);
    if (!value || !std::isfinite(*value)) return false;
    target = *value;
    return true;
}

bool SetValue(std::int32_t& target, std::string_view text)
{
    double value = 0;
    if (!SetValue(value, text) || std::abs(value) > 2147483647.0) return false;
    target = RoundHalfEven(value);
    return true;
}

bool SetValue(std::string& target, std::string_view text)
{
    target = text;
    return true;
}

std::string ValueText(std::int32_t value)
{
    return std::to_string(value);
}

std::string ValueText(double value)
{
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), end.ptr};
}

std::string ValueText(const std::string& value)
{
    return value;
}

std::string SettingText(const Settings& settings, const SettingRow& row)
{
    return std::visit([&](auto member) { return ValueText(settings.*member); }, row.member);
}

bool SetSetting(Settings& settings, const SettingRow& row, std::string_view text)
{
    return std::visit(
        [&](auto member) {
            auto value = settings.*member;
            if (!SetValue(value, text)) return false;
            if constexpr (!std::is_same_v<decltype(value), std::string>)
                if (row.mend == Mend::keep && !Inside(row, static_cast<double>(value))) return false;
            settings.*member = std::move(value);
            return true;
        },
        row.member);
}

std::span<const IndexedSetting> IndexedSettings()
{
    return kIndexed;
}

std::size_t IndexOfKey(const IndexedSetting& setting, std::string_view key)
{
    if (!key.starts_with(setting.key)) return setting.count;
    key.remove_prefix(setting.key.size());
    if (!key.starts_with('-')) return setting.count;
    key.remove_prefix(1);
    std::size_t index = 0;
    const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), index);
    return error == std::errc{} && end == key.data() + key.size() && index < setting.count ? index : setting.count;
}

void CheckSettings(Settings& settings)
{
    static const Settings defaults;
    for (const auto rows : {SettingRows(), OwnSettingRows()})
        for (const SettingRow& row : rows) {
            if (const auto* whole = std::get_if<std::int32_t Settings::*>(&row.member))
                settings.** whole = RoundHalfEven(Mended(row, settings.**whole, defaults.**whole));
            else if (const auto* real = std::get_if<double Settings::*>(&row.member))
                settings.** real = Mended(row, settings.**real, defaults.**real);
        }
    for (std::int32_t& color : settings.color) color = std::clamp(color, 0, 0xFFFFFF);
}

void ClearTickSettings(Settings& settings)
{
    for (const auto member : kTickDivisions) settings.*member = 0;
    for (const auto member : kTickSteps) settings.*member = 0;
}

SettingLine SplitSettingLine(std::string_view line, std::size_t key_width)
{
    const std::size_t semicolon = line.find(';');
    if (semicolon != std::string_view::npos && semicolon >= 1) {
        std::string_view value = Trim(line.substr(semicolon + 1));
        value = Trim(value.substr(0, value.find('\t')));
        return {std::string(Trim(line.substr(0, semicolon))), std::string(value)};
    }
    if (line.size() < key_width) return {};
    return {std::string(Trim(line.substr(0, key_width))), std::string(Trim(line.substr(key_width)))};
}

std::string FormatSettingLine(std::string_view key, std::string_view value, std::size_t key_width)
{
    std::string line(key);
    line.resize(std::max(line.size(), key_width), ' ');
    line += "; ";
    // A control character would end the line or cut the value when it is read back.
    for (const char c : value) line += static_cast<unsigned char>(c) < 32 || c == 127 ? ' ' : c;
    return line + '\n';
}

} // namespace nmr
