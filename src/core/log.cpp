#include "core/log.h"

#include "core/file_layer.h"

#include <fmt/format.h>

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace nmr {
namespace {

namespace fs = std::filesystem;

enum LogMode : std::int32_t { kMonthly = 0, kDaily = 1 };

/// One line stays one line, whatever a path or a name holds.
std::string OneLine(std::string_view text)
{
    std::string out(text);
    std::ranges::replace_if(
        out, [](char c) { return static_cast<unsigned char>(c) < 32; }, ' ');
    return out;
}

/// One write to a file opened for append: lines of two runs never mix.
void AppendLine(const fs::path& file, const std::string& line)
{
    const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) return;
    if (::write(fd, line.data(), line.size()) < 0) {
        // The log is not worth a message.
    }
    ::close(fd);
}

bool MakeDefaultFolder(const GlobalBlock& g, const fs::path& folder)
{
    std::error_code failed;
    return g.common.LogDir == CommonSettings{}.LogDir && fs::create_directories(folder, failed);
}

} // namespace

fs::path LogFolder(const GlobalBlock& g)
{
    return MapDrivePath(g.AppPath, g.common.LogDir);
}

void WriteLog(const GlobalBlock& g, Asker& asker, std::string_view text1, std::string_view text2)
{
    WriteLog(g, asker, text1, text2, NowLocal());
}

void WriteLog(const GlobalBlock& g, Asker& asker, std::string_view text1, std::string_view text2, const DateTime& when)
{
    const std::int32_t mode = g.common.LogMode;
    if (g.AppPath.empty() || (mode != kMonthly && mode != kDaily)) return;
    const fs::path folder = LogFolder(g);
    if (!IsFolder(folder.string()) && !MakeDefaultFolder(g, folder)) {
        asker.Message({"Invalid Folder Name(WL)", "Folder Error", {Button::ok}, Icon::warning, true});
        return;
    }
    const std::string date = FormatDate(mode == kMonthly ? "yyyy_mm" : "yyyy_mm_dd", when);
    AppendLine(folder / fmt::format("1D{}.log", date),
               fmt::format("{}{},{},{},{}\n", FormatDate("yyyy/mmm/dd,", when), FormatDate("hh:nn:ss", when),
                           OneLine(g.CurrentUser), OneLine(text1), OneLine(text2)));
}

} // namespace nmr
