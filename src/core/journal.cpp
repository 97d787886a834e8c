#include "core/journal.h"

#include "core/checksum.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr char kMagic[] = "NMR1DJ1\n";
constexpr char kWhere[] = "Journal/1DF1";
constexpr std::size_t kMagicSize = sizeof kMagic - 1;

struct Head {
    std::array<char, kMagicSize> magic{};
    std::uint64_t identity = 0, layout = 0, checksum = 0;
};
struct RecordHead {
    std::uint32_t length = 0, kind = 0;
    std::uint64_t checksum = 0;
};
static_assert(sizeof(Head) == 32 && sizeof(RecordHead) == 16);

template <class T>
std::span<const std::byte> BytesOf(const T& value)
{
    return std::as_bytes(std::span(&value, 1));
}

std::uint64_t HeadChecksum(const Head& head)
{
    return Checksum64(BytesOf(head).first(offsetof(Head, checksum)));
}

std::uint64_t RecordChecksum(const RecordHead& head, std::span<const std::byte> payload, std::uint64_t identity,
                             std::uint64_t number)
{
    const std::uint64_t place = Checksum64(BytesOf(number), identity);
    return Checksum64(payload, Checksum64(BytesOf(head).first(offsetof(RecordHead, checksum)), place));
}

template <class T>
T Load(std::span<const std::byte> bytes)
{
    T value;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

std::vector<std::byte> MakeRecord(std::uint32_t kind, std::span<const std::byte> payload, std::uint64_t identity,
                                  std::uint64_t number)
{
    RecordHead head{static_cast<std::uint32_t>(payload.size()), kind, 0};
    head.checksum = RecordChecksum(head, payload, identity, number);
    std::vector<std::byte> bytes(sizeof head + payload.size());
    std::memcpy(bytes.data(), &head, sizeof head);
    if (!payload.empty()) std::memcpy(bytes.data() + sizeof head, payload.data(), payload.size());
    return bytes;
}

Error Failure(const fs::path& file, int reason)
{
    return {ErrorCode::unwritable, kWhere, "Can't write " + file.string() + ": " + std::strerror(reason) + ".", reason};
}

/// All bytes, or an errno.
int WriteAll(int descriptor, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t done = ::write(descriptor, bytes.data(), bytes.size());
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return done == 0 ? ENOSPC : errno;
        bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
    return 0;
}

std::uint64_t NewIdentity()
{
    std::random_device source;
    return (std::uint64_t{source()} << 32U) | source();
}

/// False when another holds it. A file system without locks counts as free: the process number decides.
bool Lock(int descriptor, int kind)
{
    return ::flock(descriptor, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

/// The name still leads to the file: a run that begins a new journal puts it in the place of the old one.
bool SameFile(int descriptor, const fs::path& path)
{
    struct stat open {
    }, named{};
    return ::fstat(descriptor, &open) == 0 && ::stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

} // namespace

LockedFile::LockedFile(LockedFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

LockedFile& LockedFile::operator=(LockedFile&& other) noexcept
{
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

void LockedFile::Close()
{
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = -1;
}

LockedFile LockJournal(const fs::path& path, LockFor purpose)
{
    LockedFile file(::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    const int kind = purpose == LockFor::take ? LOCK_EX : LOCK_SH;
    if (!file || !Lock(file.get(), kind) || !SameFile(file.get(), path)) return {};
    return file;
}

Result<JournalContents> ParseJournal(std::span<const std::byte> file, std::uint64_t layout)
{
    const Error bad{ErrorCode::bad_format, kWhere, "This is no journal of this version of the program"};
    if (file.size() < sizeof(Head)) return bad;
    const Head head = Load<Head>(file);
    if (std::memcmp(head.magic.data(), kMagic, kMagicSize) != 0 || head.checksum != HeadChecksum(head)) return bad;
    if (head.layout != layout) return bad;
    JournalContents contents;
    for (file = file.subspan(sizeof head); !file.empty();) {
        contents.cut = true;
        if (file.size() < sizeof(RecordHead)) break;
        const auto record = Load<RecordHead>(file);
        file = file.subspan(sizeof record);
        if (record.length > file.size()) break;
        const auto payload = file.first(record.length);
        if (record.checksum != RecordChecksum(record, payload, head.identity, contents.records.size())) break;
        contents.records.push_back({record.kind, payload});
        contents.cut = false;
        file = file.subspan(record.length);
    }
    return contents;
}

Status JournalWriter::Begin(const fs::path& path, std::uint64_t layout, std::span<const JournalRecord> records)
{
    const fs::path fresh = path.string() + ".$";
    LockedFile file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600));
    if (!file || !Lock(file.get(), LOCK_EX)) return Failure(fresh, errno);
    Head head{{}, NewIdentity(), layout, 0};
    std::memcpy(head.magic.data(), kMagic, kMagicSize);
    head.checksum = HeadChecksum(head);
    int reason = WriteAll(file.get(), BytesOf(head));
    std::uint64_t number = 0, length = sizeof head;
    for (const JournalRecord& record : records) {
        const auto bytes = MakeRecord(record.kind, record.payload, head.identity, number++);
        if (reason == 0) reason = WriteAll(file.get(), bytes);
        length += bytes.size();
    }
    if (reason == 0 && ::rename(fresh.c_str(), path.c_str()) != 0) reason = errno;
    if (reason != 0) {
        ::unlink(fresh.c_str());
        return Failure(path, reason);
    }
    path_ = path;
    file_ = std::move(file);
    identity_ = head.identity;
    number_ = number;
    length_ = length;
    return {};
}

Status JournalWriter::Append(std::uint32_t kind, std::span<const std::byte> payload)
{
    if (!file_) return Failure(path_, EBADF);
    if (payload.size() > std::numeric_limits<std::uint32_t>::max()) return Failure(path_, EFBIG);
    const auto record = MakeRecord(kind, payload, identity_, number_);
    if (const int reason = WriteAll(file_.get(), record); reason != 0) {
        // A half record would hide all that come behind it.
        if (::ftruncate(file_.get(), static_cast<off_t>(length_)) != 0) file_.Close();
        return Failure(path_, reason);
    }
    length_ += record.size();
    ++number_;
    return {};
}

} // namespace nmr
