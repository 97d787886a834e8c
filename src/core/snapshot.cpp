#include "core/snapshot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <span>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr int kLastNumber = 999;
constexpr std::size_t kCompareBlock = std::size_t{1} << 18;

class Descriptor {
public:
    Descriptor(const fs::path& file, int flags) : fd_(::open(file.c_str(), flags | O_CLOEXEC, 0600)) {}
    ~Descriptor() { static_cast<void>(Close()); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    explicit operator bool() const { return fd_ >= 0; }
    int get() const { return fd_; }
    bool Close() { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }
    std::uint64_t Length() const
    {
        struct stat info {};
        return ::fstat(fd_, &info) == 0 && S_ISREG(info.st_mode) ? static_cast<std::uint64_t>(info.st_size) : 0;
    }

private:
    int fd_;
};

bool WriteAll(int fd, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t done = ::write(fd, bytes.data(), bytes.size());
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
    return true;
}

bool ReadAll(int fd, std::span<std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t done = ::read(fd, bytes.data(), bytes.size());
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
    return true;
}

std::size_t RowsOf(const DataSet& set)
{
    return static_cast<std::size_t>(std::max(set.RowCount, 1));
}

std::size_t PointsOf(const DataSet& set)
{
    return static_cast<std::size_t>(std::max(set.par.POINT, 0));
}

/// The arrays really have the rows and points that the parameters tell.
bool HasPoints(const DataSet& set)
{
    const auto fits = [&](const RowArray<float>& a) { return a.rows() >= RowsOf(set) && a.columns() >= PointsOf(set); };
    return PointsOf(set) > 0 && fits(set.spec.DataRe) && fits(set.spec.DataIm);
}

std::uint64_t SnapshotLength(const DataSet& set)
{
    return std::uint64_t{2} * sizeof(float) * RowsOf(set) * PointsOf(set);
}

/// Calls `act` with each line of the snapshot in the order of the file; false as soon as one fails.
template <class Set, class Act>
bool EachLine(Set& set, Act act)
{
    for (auto* part : {&set.spec.DataRe, &set.spec.DataIm})
        for (std::size_t row = 0; row < RowsOf(set); ++row)
            if (!act((*part)[row].first(PointsOf(set)))) return false;
    return true;
}

bool SameBytes(int fd, std::span<const std::byte> bytes, std::vector<std::byte>& buffer)
{
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), buffer.size());
        if (!ReadAll(fd, std::span(buffer).first(count))) return false;
        if (std::memcmp(buffer.data(), bytes.data(), count) != 0) return false;
        bytes = bytes.subspan(count);
    }
    return true;
}

Error Failure(ErrorCode code, const fs::path& file, const std::string& reason)
{
    return {code, "WriteSpcDataTemp/1DF1", file.string() + ": " + reason};
}

} // namespace

Status WriteSpcDataTemp(const DataSet& set, const fs::path& file)
{
    if (!HasPoints(set)) return Failure(ErrorCode::bad_value, file, "there are no points to keep");
    Descriptor out(file, O_WRONLY | O_CREAT | O_TRUNC);
    if (!out) return Failure(ErrorCode::unwritable, file, std::strerror(errno));
    const bool written = EachLine(set, [&](auto line) { return WriteAll(out.get(), std::as_bytes(line)); });
    const int reason = errno;
    if (out.Close() && written) return {};
    std::error_code ignored;
    fs::remove(file, ignored);
    return Failure(ErrorCode::unwritable, file, std::strerror(reason));
}

bool ReadSpcDataTemp(DataSet& set, const fs::path& file)
{
    if (!HasPoints(set)) return false;
    const Descriptor in(file, O_RDONLY);
    if (!in || in.Length() < SnapshotLength(set)) return false;
    return EachLine(set, [&](auto line) { return ReadAll(in.get(), std::as_writable_bytes(line)); });
}

bool HoldsSnapshotOf(const DataSet& set, const fs::path& file)
{
    if (!HasPoints(set)) return false;
    const Descriptor in(file, O_RDONLY);
    if (!in || in.Length() != SnapshotLength(set)) return false;
    std::vector<std::byte> buffer(kCompareBlock);
    return EachLine(set, [&](auto line) { return SameBytes(in.get(), std::as_bytes(line), buffer); });
}

bool ExchangeFiles(const fs::path& a, const fs::path& b)
{
    if (::renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0) return true;
    // Not every file system can do it in one step.
    const fs::path aside = a.string() + ".$";
    return ::rename(a.c_str(), aside.c_str()) == 0 && ::rename(b.c_str(), a.c_str()) == 0 &&
           ::rename(aside.c_str(), b.c_str()) == 0;
}

fs::path MoveToFreeNumber(const fs::path& from, const fs::path& stem)
{
    for (int number = 1; number <= kLastNumber; ++number) {
        const fs::path to = fmt::format("{}{:03}", stem.string(), number);
        if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return to;
        if (errno == EEXIST) continue;
        if (errno != EINVAL && errno != ENOSYS) return {};
        // A file system without the exclusive rename: the gap to another run is a look at the name.
        if (::access(to.c_str(), F_OK) == 0) continue;
        return ::rename(from.c_str(), to.c_str()) == 0 ? to : fs::path();
    }
    return {};
}

} // namespace nmr
