#include "session/other_runs.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>

namespace nmr {
namespace fs = std::filesystem;

bool AnotherRunPresent()
{
    std::error_code failed;
    const fs::path own = fs::read_symlink("/proc/self/exe", failed);
    if (failed) return true;
    const std::string own_pid = std::to_string(getpid());
    fs::directory_iterator processes("/proc", failed);
    if (failed) return true;
    // Stepped by hand: a process may end, and its folder go, in the middle of the walk.
    for (; processes != fs::directory_iterator(); processes.increment(failed)) {
        if (failed) return true;
        const std::string pid = processes->path().filename().string();
        const auto is_digit = [](unsigned char c) { return std::isdigit(c) != 0; };
        if (pid == own_pid || !std::all_of(pid.begin(), pid.end(), is_digit)) continue;
        std::error_code gone;
        if (fs::read_symlink(processes->path() / "exe", gone) == own && !gone) return true;
    }
    return false;
}

} // namespace nmr
