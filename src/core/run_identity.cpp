// Source of the fields: proc(5), "stat": the second field is the name in parentheses, which may hold
// anything, the third the state, the 22nd the start.

#include "core/run_identity.h"

#include <array>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace nmr {
namespace {

constexpr int kFieldsToStart = 19; // from the state to the start

std::string FirstLineOf(const std::string& path)
{
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    return line;
}

/// The ticks at which a process began; 0 when there is none, or only its remains.
std::int64_t StartOf(std::int64_t process)
{
    const std::string line = FirstLineOf("/proc/" + std::to_string(process) + "/stat");
    const std::size_t name_end = line.rfind(')');
    if (name_end == std::string::npos) return 0;
    std::istringstream fields(line.substr(name_end + 1));
    std::string state, skipped;
    std::int64_t start = 0;
    fields >> state;
    for (int i = 1; i < kFieldsToStart; ++i) fields >> skipped;
    fields >> start;
    return state == "Z" || state == "X" || !fields ? 0 : start;
}

std::string HostName()
{
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

std::string BootIdentity()
{
    return FirstLineOf("/proc/sys/kernel/random/boot_id");
}

} // namespace

RunIdentity ThisRun()
{
    const std::int64_t process = ::getpid();
    return {HostName(), BootIdentity(), process, StartOf(process)};
}

bool IsAlive(const RunIdentity& run)
{
    if (run.host != HostName() || run.boot != BootIdentity() || run.process <= 0) return false;
    const std::int64_t start = StartOf(run.process);
    return start != 0 && start == run.start;
}

} // namespace nmr
