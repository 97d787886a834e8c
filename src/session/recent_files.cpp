#include "session/read_flow.h"

#include <fmt/format.h>

#include <algorithm>

namespace nmr {
namespace {

constexpr std::size_t kRecentLimit = 21;

bool StartsCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

/// Characters of UTF-8 text.
std::size_t Length(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

/// The last `count` characters.
std::string_view Tail(std::string_view text, std::size_t count)
{
    std::size_t at = text.size();
    while (at > 0 && count > 0)
        if (StartsCharacter(text[--at])) --count;
    return text.substr(at);
}

/// A "&" of the path itself must not become an access key of the menu.
std::string ForMenu(const std::string& path)
{
    std::string out;
    for (const char c : path) {
        if (c == '&') out += '&';
        out += c;
    }
    return out;
}

} // namespace

void AddRecentFile(GlobalBlock& g, const std::string& path)
{
    if (path.empty()) return;
    std::erase(g.RecentFiles, path);
    g.RecentFiles.insert(g.RecentFiles.begin(), path);
    if (g.RecentFiles.size() > kRecentLimit) g.RecentFiles.resize(kRecentLimit);
}

std::string ShortenPath(const std::string& path, std::size_t limit)
{
    constexpr std::string_view kGap = "...";
    if (Length(path) <= limit) return path;
    const std::size_t first_end = path.find('/', 1);
    const std::string head = first_end == std::string::npos ? std::string() : path.substr(0, first_end + 1);
    // The end of a path tells more than its start: as many whole names from the right as fit.
    for (std::size_t cut = path.find('/', head.size()); cut != std::string::npos; cut = path.find('/', cut + 1)) {
        const std::string shortened = head + std::string(kGap) + path.substr(cut);
        if (Length(shortened) <= limit) return shortened;
    }
    if (limit <= kGap.size()) return std::string(Tail(path, limit));
    return std::string(kGap) + std::string(Tail(path, limit - kGap.size()));
}

std::string RecentCaption(const GlobalBlock& g, std::size_t index)
{
    if (index >= g.RecentFiles.size()) return {};
    const std::string path = ForMenu(ShortenPath(g.RecentFiles[index]));
    return fmt::format("  {}{}. {}", index + 1 < 10 ? "&" : "", index + 1, path);
}

} // namespace nmr
