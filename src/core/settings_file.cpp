// The two settings files: \1DCommon.ini, shared by all users, and the initial settings of one user.

#include "core/settings_file.h"

#include "core/dates.h"
#include "core/file_layer.h"
#include "core/settings_lines.h"
#include "core/settings_table.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>
#include <variant>
#include <vector>

namespace nmr {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCommonKeyWidth = 15;
constexpr std::size_t kUserKeyWidth = 26;
constexpr SettingsTag kCommonTags[] = {{"1D COMMON SETTING VER.4", kCommonKeyWidth},
                                       {"1D COMMON SETTING", kCommonKeyWidth}};
constexpr SettingsTag kUserTags[] = {{"1D INITIAL SETTING VER.4", 21}, {"1D INITIAL SETTING", 17}};
constexpr std::string_view kCommonTitle = "1D Common Setting Ver.4\n";
constexpr std::string_view kUserTitle = "1D Initial setting Ver.4\n";
constexpr std::size_t kMaxRecent = 21;
constexpr std::size_t kMaxOperators = 101;

// \1DCommon.ini.

using CommonMember = std::variant<std::int32_t CommonSettings::*, std::string CommonSettings::*>;
struct CommonRow {
    std::string_view key;
    CommonMember member;
};
constexpr CommonRow kCommonRows[] = {
    {"LOG DIR", &CommonSettings::LogDir},           {"LOG MODE", &CommonSettings::LogMode},
    {"ACCESS COUNT", &CommonSettings::AccessCount}, {"USER MODE", &CommonSettings::UserMode},
    {"LATEST USER", &CommonSettings::LatestUser},
};
constexpr std::size_t kRowsBeforeLatestAccess = 3;

fs::path FileOfFolder(const fs::path& folder, std::string_view name)
{
    return FindInFolder(folder.string(), name).value_or(folder / name);
}

std::int32_t OneMore(std::int32_t count)
{
    return std::clamp(count, 0, std::numeric_limits<std::int32_t>::max() - 1) + 1;
}

std::string CommonLine(const CommonSettings& common, const CommonRow& row)
{
    const std::string value = std::visit([&](auto member) { return ValueText(common.*member); }, row.member);
    return FormatSettingLine(row.key, value, kCommonKeyWidth);
}

// Initial settings: what lies outside Settings.

/// Frequency and centre of the last transform, over all and by group of nuclei, live in the global
/// block while the program runs.
template <class Block>
auto GlobalCentres(Block& g)
{
    return std::array{
        std::pair{&g.LastObsCenter, &g.LastCentre},
        std::pair{&g.GroupObsCenter[0], &g.GroupCentre[0]},
        std::pair{&g.GroupObsCenter[1], &g.GroupCentre[1]},
        std::pair{&g.GroupObsCenter[2], &g.GroupCentre[2]},
    };
}
/// The settings that keep them, in the same order.
constexpr std::array kCentres = {
    std::pair{&Settings::centre_ref_freq, &Settings::centre_ref},
    std::pair{&Settings::hcentre_ref_freq, &Settings::hcentre_ref},
    std::pair{&Settings::ccentre_ref_freq, &Settings::ccentre_ref},
    std::pair{&Settings::xcentre_ref_freq, &Settings::xcentre_ref},
};

void SettingsToGlobals(GlobalBlock& g)
{
    const auto targets = GlobalCentres(g);
    for (std::size_t i = 0; i < kCentres.size(); ++i) {
        *targets[i].first = g.settings.*kCentres[i].first;
        *targets[i].second = g.settings.*kCentres[i].second;
    }
}

/// The settings as they are to be written: what the run has learnt stands in the global block.
Settings SettingsWithGlobals(const GlobalBlock& g)
{
    Settings settings = g.settings;
    const auto sources = GlobalCentres(g);
    for (std::size_t i = 0; i < kCentres.size(); ++i) {
        if (*sources[i].first == 0) continue; // no transform yet
        settings.*kCentres[i].first = *sources[i].first;
        settings.*kCentres[i].second = *sources[i].second;
    }
    if (settings.user_name.empty()) settings.user_name = g.CurrentUser; // or the list of users would lack it
    return settings;
}

// The repeated group of one row of ExpShiftTable, in the order of writing. The first key begins a row.
using ExpMember = std::variant<std::int32_t ExpShiftRow::*, double ExpShiftRow::*, std::string ExpShiftRow::*>;
struct ExpRow {
    std::string_view key;
    ExpMember member;
};
constexpr ExpRow kExpRows[] = {
    {"INSTRUMENT", &ExpShiftRow::instrument},         {"FID SHIFT VAL", &ExpShiftRow::FIDShift},
    {"REF CENTER FRQ", &ExpShiftRow::ref_center_frq}, {"REF CENTER EX", &ExpShiftRow::ref_center},
    {"INSTRUMENT ID", &ExpShiftRow::instrument_id},   {"GROUP DELAY", &ExpShiftRow::group_delay},
};

/// Takes the lines of one initial-settings file.
class UserSettingsReader {
public:
    explicit UserSettingsReader(GlobalBlock& g) : g_(g) {}

    void Take(const SettingLine& line)
    {
        if (const SettingRow* row = FindSetting(line.key))
            SetSetting(g_.settings, *row, line.value);
        else if (!TakeList(line) && !TakeExperiment(line) && !TakeFileType(line))
            TakeIndexed(line);
    }

private:
    bool TakeList(const SettingLine& line)
    {
        if (line.key == "RECENT FILE") return Append(g_.RecentFiles, kMaxRecent, line.value);
        if (line.key == "OPERATOR INDEX") return Append(g_.Operators, kMaxOperators, line.value);
        if (line.key != "DIGITAL FILTER") return false;
        std::int32_t points = 0;
        if (SetValue(points, line.value) && points >= 1 && points <= 10) g_.DigitalFilterPoints = points;
        return true;
    }

    static bool Append(std::vector<std::string>& list, std::size_t most, const std::string& value)
    {
        if (!value.empty() && list.size() < most) list.push_back(value);
        return true;
    }

    bool TakeExperiment(const SettingLine& line)
    {
        const auto row = std::ranges::find(kExpRows, line.key, &ExpRow::key);
        if (row == std::end(kExpRows)) return false;
        if (row == std::begin(kExpRows)) ++experiments_;
        if (experiments_ >= 1 && experiments_ <= g_.ExpShiftTable.size()) {
            ExpShiftRow& target = g_.ExpShiftTable[experiments_ - 1];
            std::visit([&](auto member) { SetValue(target.*member, line.value); }, row->member);
        }
        return true;
    }

    /// "FILE TYPE 1" to "5" with their names; older files knew one type of the user's own, the last slot.
    bool TakeFileType(const SettingLine& line)
    {
        const std::string value = line.value == "-----" ? std::string() : line.value;
        for (std::size_t slot = 1; slot < g_.FileTypeSlots.size(); ++slot) {
            const bool last = slot + 1 == g_.FileTypeSlots.size();
            const std::string number = std::to_string(slot);
            if (line.key == "FILE TYPE " + number || (last && line.key == "USER EXTENSION"))
                g_.FileTypeSlots[slot] = value;
            else if (line.key == "FILE TYPE NAME " + number || (last && line.key == "USER EXT TITLE"))
                g_.FileTypeNames[slot] = value;
            else
                continue;
            return true;
        }
        return false;
    }

    void TakeIndexed(const SettingLine& line)
    {
        for (const IndexedSetting& setting : IndexedSettings())
            if (const std::size_t index = IndexOfKey(setting, line.key); index < setting.count)
                setting.set(g_.settings, index, line.value);
    }

    GlobalBlock& g_;
    std::size_t experiments_ = 0;
};

/// A file's lists replace those of the block.
void ClearLists(GlobalBlock& g)
{
    g.RecentFiles.clear();
    g.Operators.clear();
    g.ExpShiftTable.fill({});
}

void AppendLists(const GlobalBlock& g, std::string& out)
{
    const auto line = [&](std::string_view key, std::string_view value) {
        out += FormatSettingLine(key, value, kUserKeyWidth);
    };
    for (std::size_t i = 0; i < std::min(g.Operators.size(), kMaxOperators); ++i)
        if (!g.Operators[i].empty()) line("OPERATOR INDEX", g.Operators[i]);
    for (std::size_t i = 0; i < std::min(g.RecentFiles.size(), kMaxRecent); ++i)
        if (!g.RecentFiles[i].empty()) line("RECENT FILE", g.RecentFiles[i]);
    for (const ExpShiftRow& experiment : g.ExpShiftTable) {
        if (experiment.instrument.empty()) continue;
        for (const ExpRow& row : kExpRows)
            line(row.key, std::visit([&](auto member) { return ValueText(experiment.*member); }, row.member));
    }
}

void AppendIndexed(const Settings& settings, std::string& out)
{
    static const Settings defaults;
    for (const IndexedSetting& setting : IndexedSettings())
        for (std::size_t i = 0; i < setting.count; ++i) {
            const std::string value = setting.text(settings, i);
            if (setting.sparse && value == setting.text(defaults, i)) continue;
            const std::string number = (i < 10 ? "-0" : "-") + std::to_string(i);
            out += FormatSettingLine(std::string(setting.key) + number, value, kUserKeyWidth);
        }
}

void AppendFileTypes(const GlobalBlock& g, std::string& out)
{
    for (std::size_t slot = 1; slot < g.FileTypeSlots.size(); ++slot) {
        const std::string number = std::to_string(slot);
        out += FormatSettingLine("FILE TYPE " + number, g.FileTypeSlots[slot], kUserKeyWidth);
        out += FormatSettingLine("FILE TYPE NAME " + number, g.FileTypeNames[slot], kUserKeyWidth);
    }
}

void LoadNamedParamTable(GlobalBlock& g)
{
    const std::string& name = g.settings.parameter_table;
    if (name.empty()) return;
    auto table = LoadParamTable(Below(g.AppPath, name));
    if (!table) table = LoadParamTable(name);
    if (table) g.ParamTable = std::move(*table);
}

} // namespace

void InitGlobals(GlobalBlock& g)
{
    g.settings = Settings{};
    g.common = CommonSettings{};
    ClearLists(g);
    // Rows 1, 2, 3 and 16 of the table of file types; the fifth slot is the user's own.
    g.FileTypeSlots = {"", "*.als", "*.jdf", "*.gxd*", "*.jdx;*.dx", ""};
    g.FileTypeNames = {
        "", "JEOL Alice2(Excalibur) File", "JEOL Delta(ECA/ECP) File", "JEOL GX/GSX/EX File", "JCAMP File", ""};
    g.DigitalFilterPoints = 1;
    SettingsToGlobals(g);
}

void ReadCommonSettings(GlobalBlock& g)
{
    if (g.AppPath.empty()) return;
    const auto file = ReadSettingsLines(FileOfFolder(g.AppPath, "1DCommon.ini"), kCommonTags);
    for (const SettingLine& line : file.lines) {
        const auto row = std::ranges::find(kCommonRows, line.key, &CommonRow::key);
        if (row == std::end(kCommonRows)) continue;
        std::visit([&](auto member) { SetValue(g.common.*member, line.value); }, row->member);
    }
    g.common.AccessCount = OneMore(g.common.AccessCount);
    g.BackupFile = g.AppPath / ("BackUp1_" + std::to_string(g.common.AccessCount) + ".tvo1");
    // A folder that can't be written is no reason to stop: the defaults stand.
    if (!WriteCommonSettings(g)) return;
}

Status WriteCommonSettings(const GlobalBlock& g)
{
    if (g.AppPath.empty())
        return Error{ErrorCode::unwritable, "WriteCommonSettings/1DSet", "No data folder is chosen."};
    std::string text(kCommonTitle);
    for (std::size_t i = 0; i < std::size(kCommonRows); ++i) {
        if (i == kRowsBeforeLatestAccess)
            text += FormatSettingLine("LATEST ACCESS", FormatDate("yyyy/mm/dd hh:nn:ss", NowLocal()), kCommonKeyWidth);
        text += CommonLine(g.common, kCommonRows[i]);
    }
    const auto users = static_cast<std::int32_t>(ListFiles(g.AppPath, "NMRCOL*.ini").size());
    text += FormatSettingLine("USER COUNT", ValueText(users), kCommonKeyWidth);
    return WriteSettingsFile(FileOfFolder(g.AppPath, "1DCommon.ini"), kCommonTags, text);
}

void ReadUserSettings(GlobalBlock& g)
{
    if (g.UserIniFile.empty()) return;
    const auto file = ReadSettingsLines(g.UserIniFile, kUserTags);
    if (file.state == SettingsFileState::read) {
        ClearLists(g);
        ClearTickSettings(g.settings);
        UserSettingsReader reader(g);
        for (const SettingLine& line : file.lines) reader.Take(line);
        SettingsToGlobals(g);
    }
    if (g.settings.user_name.empty()) g.settings.user_name = g.CurrentUser;
    CheckSettings(g.settings);
    LoadNamedParamTable(g);
    g.settings.access_count = OneMore(g.settings.access_count);
    if (!WriteUserSettings(g)) return; // as with the common file
}

Status WriteUserSettings(const GlobalBlock& g)
{
    const Settings settings = SettingsWithGlobals(g);
    std::string text(kUserTitle);
    for (const SettingRow& row : SettingRows())
        text += FormatSettingLine(row.key, SettingText(settings, row), kUserKeyWidth);
    AppendLists(g, text);
    AppendIndexed(settings, text);
    AppendFileTypes(g, text);
    for (const SettingRow& row : OwnSettingRows())
        text += FormatSettingLine(row.key, SettingText(settings, row), kUserKeyWidth);
    return WriteSettingsFile(g.UserIniFile, kUserTags, text);
}

std::string ReadUserName(const fs::path& file)
{
    const auto lines = ReadSettingsLines(file, kUserTags).lines;
    const auto found = std::ranges::find(lines, "USER NAME", &SettingLine::key);
    return found == lines.end() ? std::string() : found->value;
}

} // namespace nmr
