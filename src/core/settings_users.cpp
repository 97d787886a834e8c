// Who uses the program, and in which folder its files stand.

#include "core/file_layer.h"
#include "core/settings_file.h"
#include "core/text.h"

#include <algorithm>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace nmr {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCommonUser = "COMMON";
constexpr const char* kCommonFile = "NMRCOL.INI";
constexpr int kMaxUsers = 1000;

fs::path CommonUserFile(const fs::path& app_path)
{
    return FindInFolder(app_path.string(), kCommonFile).value_or(app_path / kCommonFile);
}

/// "NMRCOL0001.ini", the first that is free; empty when all are taken.
fs::path FreeUserFile(const fs::path& app_path)
{
    for (int number = 1; number <= kMaxUsers; ++number) {
        std::string digits = std::to_string(number);
        digits.insert(0, 4 - std::min<std::size_t>(digits.size(), 4), '0');
        const std::string name = "NMRCOL" + digits + ".ini";
        if (!FindInFolder(app_path.string(), name)) return app_path / name;
    }
    return {};
}

fs::path HomeFolder()
{
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') return home;
    if (const passwd* entry = ::getpwuid(::getuid()); entry != nullptr && entry->pw_dir != nullptr)
        return entry->pw_dir;
    return {};
}

/// The user's folder by the desktop's rules: XDG_DATA_HOME counts only when it is absolute.
fs::path UserDataFolder()
{
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/')
        return fs::path(data) / "nmr1d";
    const fs::path home = HomeFolder();
    return home.empty() ? fs::path() : home / ".local" / "share" / "nmr1d";
}

/// Folders of the system are nobody's data folder, even where root could write to them.
bool IsSystemFolder(const fs::path& folder)
{
    std::error_code error;
    const fs::path real = fs::weakly_canonical(folder, error);
    const fs::path relative = real.relative_path();
    if (relative.empty()) return true;
    constexpr std::string_view roots[] = {"usr", "bin", "sbin", "lib", "etc"};
    return std::ranges::find(roots, relative.begin()->string()) != std::end(roots);
}

/// Copies what the program ships and the folder lacks; what is there, the user may have changed.
void FillFolder(const fs::path& folder, const fs::path& shipped)
{
    std::error_code error;
    for (fs::directory_iterator it(shipped, error), end; !error && it != end; it.increment(error)) {
        std::error_code ignored;
        const std::string name = it->path().filename().string();
        if (!it->is_regular_file(ignored) || name == "README.md" || FindInFolder(folder.string(), name)) continue;
        fs::copy_file(it->path(), folder / name, ignored);
    }
}

} // namespace

std::vector<std::pair<std::string, fs::path>> ListUsers(const fs::path& app_path)
{
    std::vector<std::pair<std::string, fs::path>> users;
    for (const std::string& name : ListFiles(app_path, "NMRCOL*.ini")) {
        const fs::path file = app_path / name;
        std::string user = ReadUserName(file);
        if (user.empty() && EqualsNoCase(name, kCommonFile)) user = kCommonUser;
        if (!user.empty()) users.emplace_back(std::move(user), file);
    }
    if (users.empty()) users.emplace_back(kCommonUser, CommonUserFile(app_path));
    return users;
}

void SelectUser(GlobalBlock& g, std::string_view name)
{
    std::string user = ToUpper(Trim(name));
    fs::path file;
    if (!user.empty() && user != kCommonUser) {
        for (const auto& [known, known_file] : ListUsers(g.AppPath))
            if (file.empty() && EqualsNoCase(Trim(known), user)) file = known_file;
        if (file.empty()) file = FreeUserFile(g.AppPath);
    }
    if (file.empty()) {
        user = kCommonUser;
        file = CommonUserFile(g.AppPath);
    }
    g.CurrentUser = user;
    g.common.LatestUser = user;
    g.UserIniFile = file;
}

fs::path ChooseAppPath(const fs::path& program_folder, const fs::path& shipped)
{
    fs::path folder = program_folder;
    if (folder.empty() || IsSystemFolder(folder) || !IsWritableFolder(folder)) {
        folder = UserDataFolder();
        std::error_code error;
        if (!folder.empty()) fs::create_directories(folder, error);
        if (folder.empty() || error) return program_folder;
    }
    FillFolder(folder, shipped);
    return folder;
}

} // namespace nmr
