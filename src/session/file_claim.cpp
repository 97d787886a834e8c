// Which data file a run has open. The only line of a run's work file is that file's path; runs that
// share a data folder read each other's.

#include "core/file_layer.h"
#include "core/text.h"
#include "session/read_flow.h"
#include "session/recovery.h"

#include <system_error>

namespace nmr {
namespace {

constexpr std::uint64_t kLongestWorkFile = 1U << 16;

/// Two names of one file give one key: separators and case as on the disk, links of "." and ".." gone.
std::string ClaimKey(const std::string& path)
{
    return ToUpper(AbsolutePath(path));
}

std::string FirstLine(const std::filesystem::path& file)
{
    const auto bytes = ReadWholeFile(file.string(), kLongestWorkFile);
    if (!bytes) return {};
    std::string line;
    for (const std::byte byte : *bytes) {
        const char c = static_cast<char>(byte);
        if (c == '\n' || c == '\r') break;
        line += c;
    }
    return std::string(Trim(line));
}

} // namespace

std::string AbsolutePath(const std::string& path)
{
    const std::filesystem::path real = ResolvePath(path).value_or(std::filesystem::path(path));
    std::error_code failed;
    const std::filesystem::path whole = std::filesystem::absolute(real, failed);
    return (failed ? real : whole).lexically_normal().string();
}

bool IsFileInUse(const GlobalBlock& g, const std::string& path)
{
    if (g.AppPath.empty()) return false;
    const std::string own = ToUpper(g.WorkFile.string());
    const std::string key = ClaimKey(path);
    for (const std::string& name : ListFiles(g.AppPath, kWorkFilePattern)) {
        const std::filesystem::path file = g.AppPath / name;
        if (ToUpper(file.string()) == own) continue;
        const std::string line = FirstLine(file);
        const bool same = !line.empty() && (ToUpper(line) == ToUpper(path) || ClaimKey(line) == key);
        if (same && !IsDeadClaim(g.AppPath, name)) return true;
    }
    return false;
}

void ClaimFile(const GlobalBlock& g, const std::string& path)
{
    if (g.WorkFile.empty()) return;
    // Without a claim the run goes on: another one may then open the same file, which loses nothing.
    static_cast<void>(WriteWholeFile(g.WorkFile, path.empty() ? std::string() : AbsolutePath(path) + "\n"));
}

} // namespace nmr
