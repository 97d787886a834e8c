// The native file against a plain write of a new file and a read of the same bytes on the same disk; both
// writes flush the file and its folder.

#include "bench.h"
#include "core/file_layer.h"
#include "formats/tavo4.h"
#include "sample_block.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace nmr::bench {
namespace {

namespace fs = std::filesystem;

constexpr double kTimeLimit = 1.5, kMemoryLimit = 2.5;
constexpr int kRounds = 20;

bool PlainWrite(const fs::path& file, const Bytes& bytes)
{
    const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    const bool flushed = ::fsync(fd) == 0 && FlushFolder(file.parent_path());
    return ::close(fd) == 0 && flushed && done == bytes.size();
}

bool PlainRead(const fs::path& file, std::size_t size)
{
    Bytes bytes(size);
    const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    std::size_t done = 0;
    while (fd >= 0 && done < size) {
        const ssize_t count = ::read(fd, bytes.data() + done, size - done);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    if (fd >= 0) ::close(fd);
    return done == size;
}

/// A line of /proc/self/status, bytes.
double Memory(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key + ":")) return std::stod(line.substr(key.size() + 1)) * 1024;
    return 0;
}

/// Largest memory during a call beyond what is held before or after it, whichever is more.
template <class Body>
double PassingMemory(Body&& body)
{
    ::malloc_trim(0);
    const double before = Memory("VmRSS");
    std::ofstream("/proc/self/clear_refs") << "5\n"; // forgets the old peak
    body();
    const double peak = Memory("VmHWM");
    ::malloc_trim(0);
    return peak - std::max(before, Memory("VmRSS"));
}

std::vector<BenchRow> Native()
{
    const fs::path folder = fs::temp_directory_path() / fmt::format("nmr1d-bench-native-{}", ::getpid());
    fs::create_directories(folder);
    const fs::path plain = folder / "plain", native = folder / "native.tvo1";
    SampleBlock sample(kMaxPoints);
    GlobalBlock& g = sample.g();
    DataSet& set = g.Slots[0];
    set.par.SMODE = 1;
    set.par.Resolution2 = 1e-5;
    for (std::size_t i = 0; i < set.spec.XAxis.size(); ++i) set.spec.XAxis[i] = 1e-5 * static_cast<double>(i);
    const auto bytes = EncodeTavo4(g, native.string(), 0);
    if (!bytes) return {};
    bool good = true;
    const auto write = [&] { good = WriteDataTavo4(g, native.string(), 0) && good; };
    const auto read = [&] { good = ReadDataTavo4(g, sample.asker(), native.string(), 0) && good; };
    const auto nothing = [] {};
    const auto remove = [&] { fs::remove(plain); };
    const auto writes =
        BestMsInTurns(kRounds, {{remove, [&] { good = PlainWrite(plain, *bytes) && good; }}, {nothing, write}});
    const auto reads =
        BestMsInTurns(kRounds, {{nothing, [&] { good = PlainRead(plain, bytes->size()) && good; }}, {nothing, read}});
    const auto size = static_cast<double>(bytes->size());
    const double write_memory = PassingMemory(write) / size, read_memory = PassingMemory(read) / size;
    const std::string what = fmt::format("1048576 points, {:.1f} MB", size / 1e6);
    const std::string note = good ? "" : "it failed";
    const auto share = [&](const std::vector<double>& times) {
        return fmt::format("{:.2f} ms, plain {:.2f} ms {}", times[1], times[0], note);
    };
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    return {{what + ", write and read", (writes[1] + reads[1]) / (writes[0] + reads[0]), "x plain", kTimeLimit, note},
            {what + ", write", writes[1] / writes[0], "x plain", 0, share(writes)},
            {what + ", read", reads[1] / reads[0], "x plain", 0, share(reads)},
            {what + ", passing memory of a write", write_memory, "x file", kMemoryLimit, {}},
            {what + ", passing memory of a read", read_memory, "x file", kMemoryLimit, {}}};
}

const bool registered = Register("native", Native);

} // namespace
} // namespace nmr::bench
