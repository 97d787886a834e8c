// Reading and writing of large files: a JCAMP-DX spectrum in DIFDUP form, arrays of FIDs.

#include "bench.h"
#include "core/file_layer.h"
#include "formats/bruker.h"
#include "formats/jcamp.h"
#include "formats/varian.h"
#include "sample_block.h"
#include "samples/vendor_samples.h"

#include <fmt/format.h>

#include <cmath>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <malloc.h>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nmr::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kPoints = 1'048'576, kRows = 128, kRowPoints = 65'536;
constexpr double kMega = 1e6;

fs::path Scratch(const char* name)
{
    return fs::temp_directory_path() / fmt::format("nmr1d-bench-{}-{}", getpid(), name);
}

/// Lines on a noisy base line, ppm rising.
void FillSpectrum(GlobalBlock& g)
{
    DataSet& set = g.Slots[0];
    ClearDataSet(g, 0);
    set.par.POINT = kPoints;
    set.par.SMODE = 1;
    set.par.ObsCenter = set.par.OBFRQ0PPM = 400;
    set.par.OBNUC = "1H";
    set.RowCount = 1;
    if (!AllocateSpecBuffer(g, kPoints, 0)) return;
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < kPoints; ++i) {
        state = state * 1664525U + 1013904223U;
        const double noise = static_cast<double>(state >> 16) / 65536 - 0.5,
                     off = (static_cast<double>(i % 65536) - 30000) / 40;
        set.spec.XAxis[i] = static_cast<double>(i) * 20 / kPoints;
        set.spec.DataRe[0][i] = static_cast<float>(1e5 / (1 + off * off) + 20 * noise);
    }
}

FileType TypeOf(const fs::path& path, std::int32_t code)
{
    FileType type;
    type.code = code;
    type.path = path.string();
    type.directory = path.parent_path().string();
    type.data_name = path.filename().string();
    return type;
}

/// Megabytes that a child process needs for `body` above what it has after `prepare`.
double PeakMegabytes(const std::function<void()>& prepare, const std::function<void()>& body)
{
    int ends[2];
    if (pipe(ends) != 0) return 0;
    const auto peak = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return static_cast<double>(usage.ru_maxrss) / 1024;
    };
    const pid_t child = fork();
    if (child == 0) {
        prepare();
        const double before = peak();
        body();
        const double grown = peak() - before;
        _exit(write(ends[1], &grown, sizeof grown) == sizeof grown ? 0 : 1);
    }
    double grown = 0;
    if (child < 0 || read(ends[0], &grown, sizeof grown) != sizeof grown) grown = 0;
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    return grown;
}

std::vector<BenchRow> Jcamp()
{
    const fs::path path = Scratch("large.dx");
    SampleBlock block(1024);
    FillSpectrum(block.g());
    bool good = true;
    const double write_ms =
        BestCpuMs(5, [&] { good = static_cast<bool>(WriteDataDX(path.string(), block.g(), 0)) && good; });
    const double megabytes = static_cast<double>(fs::file_size(path)) / kMega;
    const FileType type = TypeOf(path, 0x110D);
    const auto read = [&] {
        ClearDataSet(block.g(), 0);
        good = static_cast<bool>(ReadDataJCAMP({block.g(), block.asker(), type, 0})) && good;
    };
    const double read_ms = BestCpuMs(5, read);
    // The slot's own arrays are those of any spectrum of that length.
    std::unique_ptr<GlobalBlock> fresh;
    const double peak = PeakMegabytes(
        [&] {
            malloc_trim(0); // what the runs before have left is not to be used again
            fresh = std::make_unique<GlobalBlock>();
            fresh->nuclides = NuclearTable::BuiltIn();
            static_cast<void>(AllocateSpecBuffer(*fresh, kPoints, 0));
        },
        [&] {
            static_cast<void>(ReadDataJCAMP({*fresh, block.asker(), type, 0}));
        });
    std::error_code ignored;
    fs::remove(path, ignored);
    const std::string failed = good ? "" : ", FAILED";
    return {
        {"JCAMP DIFDUP, 1048576 points: 60 MB read", 60 * read_ms / megabytes, "ms", 1000,
         fmt::format("{:.0f} MB/s, {:.2f} MB of text{}", 1000 * megabytes / read_ms, megabytes, failed)},
        {"JCAMP DIFDUP, 1048576 points: 40 MB written", 40 * write_ms / megabytes, "ms", 1000,
         fmt::format("{:.0f} MB/s", 1000 * megabytes / write_ms)},
        {"memory of the read beside text and slot", peak - megabytes, "MB", 4 * 8 * kPoints / kMega,
         "4 times the points, 8 bytes each"},
    };
}

/// The next read of the file comes from the disk.
void DropFromMemory(const fs::path& path)
{
    const int file = ::open(path.c_str(), O_RDONLY);
    if (file < 0) return;
    ::fdatasync(file);
    ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    ::close(file);
}

/// A reader against a plain read of the same file: from the disk, as data just measured come, and from memory.
void AddArrayRows(std::vector<BenchRow>& rows, const char* name, const fs::path& path,
                  const std::function<void()>& read)
{
    std::size_t bytes = 0;
    const auto plain = [&] {
        const auto whole = ReadWholeFile(path.string());
        bytes += whole ? whole->size() : 0;
    };
    const auto drop = [&] { DropFromMemory(path); };
    const auto nothing = [] {};
    const double megabytes = static_cast<double>(fs::file_size(path)) / kMega;
    const auto add = [&](const char* where, const std::function<void()>& prepare) {
        const std::vector<double> ms = BestMsInTurns(4, {{prepare, plain}, {prepare, read}});
        rows.push_back({fmt::format("{}, {}", name, where), ms[1] / ms[0], "x plain", 2,
                        fmt::format("{:.1f} ms, plain read {:.1f} ms, {:.0f} MB", ms[1], ms[0], megabytes)});
    };
    add("disk", drop);
    add("memory", nothing);
}

std::string RandomWords(std::size_t words)
{
    std::string bytes(4 * words, '\0');
    std::uint32_t state = 7;
    for (std::size_t i = 0; i < words; ++i) {
        state = state * 1664525U + 1013904223U;
        const std::uint32_t value = state >> 9; // of 23 bits
        std::memcpy(bytes.data() + 4 * i, &value, 4);
    }
    return bytes;
}

std::vector<BenchRow> Arrays()
{
    const fs::path folder = Scratch("array");
    std::error_code ignored;
    fs::create_directories(folder, ignored);
    SampleBlock block(1024);
    const std::size_t words = std::size_t{kRows} * kRowPoints * 2;
    bool good = true;
    std::vector<BenchRow> rows;
    // Bruker: rows of little-endian integers one behind the other.
    const std::string acqus = fmt::format(
        "##ORIGIN= UXNMR\n##$BYTORDA= 0\n##$DTYPA= 0\n##$AQ_mod= 3\n##$NUC1= <1H>\n##$BF1= 400\n##$SFO1= 400.002\n"
        "##$SW_h= 4000\n##$TD= {}\n##END=\n",
        2 * kRowPoints);
    good = WriteWholeFile(folder / "acqus", std::string_view(acqus)) && good;
    good = WriteWholeFile(folder / "acqu2s", std::string_view("##ORIGIN= UXNMR\n##$FnMODE= 1\n##$TD= 128\n##END=\n")) &&
           good;
    good = WriteWholeFile(folder / "vdlist", std::string_view("1s\n")) && good;
    good = WriteWholeFile(folder / "ser", std::string_view(RandomWords(words))) && good;
    const FileType ser = TypeOf(folder / "ser", 0x1004);
    AddArrayRows(rows, "Bruker array, 128 x 65536", folder / "ser", [&] {
        ClearDataSet(block.g(), 0);
        good = static_cast<bool>(ReadBruker({block.g(), block.asker(), ser, 0})) && good;
    });
    // Varian: a head before each row, big-endian integers.
    test::VarianSample head{.word = test::VarianWord::i32, .blocks = 1, .points = 1};
    std::string fid = test::VarianFile(head).first(32);
    const std::string row_words = RandomWords(2 * kRowPoints);
    const auto put = [&](std::size_t at, std::uint32_t value) {
        for (int i = 0; i < 4; ++i) fid[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (24 - 8 * i));
    };
    put(0, kRows);
    put(8, 2 * kRowPoints);
    put(16, 8 * kRowPoints);
    put(20, 8 * kRowPoints + 28);
    for (int row = 0; row < kRows; ++row) fid += std::string(28, '\0') + row_words;
    good = WriteWholeFile(folder / "fid", std::string_view(fid)) && good;
    good = WriteWholeFile(folder / "procpar",
                          std::string_view(test::SampleProcpar({{"np", {std::to_string(2 * kRowPoints)}, 7}}))) &&
           good;
    const FileType type = TypeOf(folder / "fid", 0x1006);
    AddArrayRows(rows, "Varian array, 128 x 65536", folder / "fid", [&] {
        ClearDataSet(block.g(), 0);
        good = static_cast<bool>(ReadVarian({block.g(), block.asker(), type, 0})) && good;
    });
    if (!good) rows.front().note += ", FAILED";
    fs::remove_all(folder, ignored);
    return rows;
}

const bool registered = Register("formats", [] {
    std::vector<BenchRow> rows = Jcamp();
    for (BenchRow& row : Arrays()) rows.push_back(std::move(row));
    return rows;
});

} // namespace
} // namespace nmr::bench
