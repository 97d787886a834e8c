// From a folder on the disk to a referenced spectrum in slot 0, and whole runs of nmr1d-cli.

#include "bench.h"
#include "sample_block.h"
#include "session/fft_form.h"
#include "session/read_flow.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace nmr::bench {
namespace {

namespace fs = std::filesystem;

fs::path ProgramFolder()
{
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

bool Shell(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

// `count` runs of nmr1d-cli, two at a time; runs in a second.
double BatchRate(const fs::path& sample, int count)
{
    const std::string command = "seq " + std::to_string(count) + " | xargs -P2 -I{} '" +
                                (ProgramFolder() / "nmr1d-cli").string() + "' process '" + (sample / "1").string() +
                                "' --json";
    return count / (OnceMs([&] { Shell(command); }) / 1000);
}

std::vector<BenchRow> Reading()
{
    const fs::path sample = fs::temp_directory_path() / ("nmr1d-bench-" + std::to_string(getpid()));
    if (!Shell("'" + (ProgramFolder() / "make_sample_fid").string() + "' '" + sample.string() + "'"))
        return {{"the sample could not be made: build make_sample_fid", 0, "", 0, {}}};
    std::vector<BenchRow> rows;
    SampleBlock block(1024);
    Session s{block.g(), block.asker(), {}, {}, {}, {}, false, {}};
    bool read = true;
    const double ms = BestMs(10, [&] {
        block.g().Slots[0].par.DataChanged = 0; // else the read asks first
        read = read && Read_Path(s, (sample / "1").string());
    });
    rows.push_back({"64k FID folder to referenced spectrum", ms, "ms", 150, read ? "" : "the read failed"});
    rows.push_back({"seconds for 1,000 runs of nmr1d-cli process --json, two at a time", 1000 / BatchRate(sample, 100),
                    "s", 50, "from 100 runs"});
    std::error_code ignored;
    fs::remove_all(sample, ignored);
    return rows;
}

const bool registered = Register("reading", Reading);

} // namespace
} // namespace nmr::bench
