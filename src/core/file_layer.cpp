#include "core/file_layer.h"

#include "core/text.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace nmr {

namespace fs = std::filesystem;

namespace {

bool IsSeparator(char c)
{
    return c == '/' || c == '\\';
}

std::string WithSlashes(std::string_view path)
{
    std::string out(path);
    std::ranges::replace(out, '\\', '/');
    return out;
}

bool Exists(const fs::path& path)
{
    std::error_code ignored;
    return fs::exists(path, ignored);
}

/// The entry of `folder` that spells `name` in other letters; of several the alphabetically first.
std::optional<std::string> FindOtherCase(const fs::path& folder, std::string_view name)
{
    std::optional<std::string> found;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        std::string entry = it->path().filename().string();
        if (EqualsNoCase(entry, name) && (!found || entry < *found) && Exists(it->path())) found = std::move(entry);
    }
    return found;
}

class FileHandle {
public:
    explicit FileHandle(int descriptor) : descriptor_(descriptor) {}
    ~FileHandle()
    {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    FileHandle(FileHandle&& other) noexcept : descriptor_(other.Take()) {}
    int get() const { return descriptor_; }
    /// Hands the descriptor over; who takes it closes it.
    int Take() { return std::exchange(descriptor_, -1); }
    /// Closes early, for the error that a full disk may only give here.
    bool Close() { return ::close(std::exchange(descriptor_, -1)) == 0; }

private:
    int descriptor_;
};

Error FileError(ErrorCode code, const char* where, std::string_view path, std::string_view reason)
{
    return {code, where, std::string(path) + ": " + std::string(reason)};
}

ErrorCode OpenErrorCode(int number)
{
    return number == ENOENT || number == ENOTDIR ? ErrorCode::not_found : ErrorCode::unreadable;
}

/// Reads up to `most` bytes; what the file system says of the size is only a first guess, so that a
/// file that grows or shrinks meanwhile does no harm.
int ReadUpTo(int descriptor, std::uint64_t guess, std::uint64_t most, Bytes& out)
{
    constexpr std::uint64_t kChunk = 65536;
    std::size_t filled = 0;
    out.resize(static_cast<std::size_t>(std::min(guess, most)));
    for (;;) {
        if (filled == out.size()) {
            if (filled >= most) return 0;
            // One byte more tells the end of a file of the size that was promised.
            std::array<std::byte, kChunk> more;
            const auto room = static_cast<std::size_t>(std::min(kChunk, most - filled));
            const ssize_t got = ::read(descriptor, more.data(), room);
            if (got == 0) return 0;
            if (got < 0 && errno != EINTR) return errno;
            if (got > 0) out.insert(out.end(), more.begin(), more.begin() + got);
            filled = out.size();
            continue;
        }
        const ssize_t got = ::read(descriptor, out.data() + filled, out.size() - filled);
        if (got < 0 && errno != EINTR) return errno;
        if (got > 0) filled += static_cast<std::size_t>(got);
        if (got == 0) {
            out.resize(filled);
            return 0;
        }
    }
}

/// Opens a regular file for reading. Without O_NONBLOCK the open of a pipe would wait for a writer.
int OpenRegular(const fs::path& path, struct stat& info, std::string& reason, ErrorCode& code)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        code = OpenErrorCode(errno);
        reason = std::strerror(errno);
        return -1;
    }
    if (::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode)) return descriptor;
    code = ErrorCode::unreadable;
    reason = S_ISDIR(info.st_mode) ? "is a folder" : "is no ordinary file";
    ::close(descriptor);
    return -1;
}

/// A file that can't be found may only be hidden in a folder that this user may not enter.
Error MissingError(std::string_view name, const char* where)
{
    if (const std::string obstacle = ReadObstacle(name); !obstacle.empty())
        return FileError(ErrorCode::unreadable, where, name, obstacle);
    return FileError(ErrorCode::not_found, where, name, "is not found");
}

enum class Beyond { refuse, cut };
constexpr const char* kTooLarge = "is too large";

/// Opens a file and looks at its size.
Result<FileHandle> OpenToRead(std::string_view name, const char* where, std::uint64_t& size)
{
    const auto path = ResolvePath(name);
    if (!path) return MissingError(name, where);
    struct stat info {};
    std::string reason;
    ErrorCode code = ErrorCode::unreadable;
    FileHandle file(OpenRegular(*path, info, reason, code));
    if (file.get() < 0) return FileError(code, where, name, reason);
    size = static_cast<std::uint64_t>(std::max<off_t>(info.st_size, 0));
    return file;
}

Result<Bytes> ReadFile(std::string_view name, std::uint64_t most, Beyond beyond, const char* where)
{
    std::uint64_t size = 0;
    const auto file = OpenToRead(name, where, size);
    if (!file) return file.error();
    if (beyond == Beyond::refuse && size > most) return FileError(ErrorCode::too_large, where, name, kTooLarge);
    try {
        Bytes bytes;
        if (const int error = ReadUpTo(file->get(), size, most, bytes); error != 0)
            return FileError(ErrorCode::unreadable, where, name, std::strerror(error));
        return bytes;
    } catch (const std::bad_alloc&) {
        return FileError(ErrorCode::too_large, where, name, "is too large for the memory");
    }
}

constexpr const char* kWriteWhere = "WriteWholeFile/1DFile";

Error WriteError(const fs::path& path, std::string_view reason, int number = 0)
{
    return {ErrorCode::unwritable, kWriteWhere, "Can't write " + path.string() + ": " + std::string(reason) + ".",
            number};
}

/// Where the bytes go in the end: behind a symbolic link, so that the link stays one.
fs::path WriteTarget(const fs::path& path)
{
    std::error_code error;
    if (!fs::is_symlink(path, error)) return path;
    fs::path target = fs::canonical(path, error);
    return error ? path : target;
}

/// Creates a new file beside `target`. The name is short: a long one of the target could not grow.
int CreateBeside(const fs::path& target, fs::path& made)
{
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        made =
            target.parent_path() / (".nmr1d-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".tmp");
        const int descriptor = ::open(made.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0 || errno != EEXIST) return descriptor;
    }
    return -1;
}

bool WriteAll(int descriptor, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t put = ::write(descriptor, bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(put));
    }
    return true;
}

struct Obstacle {
    std::string reason;
    int number = 0; ///< errno
};

/// Why `target` may not be replaced; no reason when it may, or is new.
Obstacle ReplaceObstacle(const fs::path& target, struct stat& info, bool& is_new)
{
    is_new = ::stat(target.c_str(), &info) != 0;
    if (is_new) return {};
    if (S_ISDIR(info.st_mode)) return {"it is a folder", EISDIR};
    if (!S_ISREG(info.st_mode)) return {"it is no ordinary file", ENXIO};
    if (::access(target.c_str(), W_OK) == 0) return {};
    return {std::strerror(errno), errno};
}

/// Fills the file made beside the target and puts it there; errno tells why not.
bool FillAndRename(FileHandle& file, const fs::path& made, const fs::path& target, std::span<const std::byte> bytes,
                   const struct stat* replaced, Flush flush)
{
    if (!WriteAll(file.get(), bytes)) return false;
    // A file system without rights of its own may refuse the mode, which is no reason not to save.
    if (replaced != nullptr && ::fchmod(file.get(), replaced->st_mode & 07777U) != 0) errno = 0;
    // The old contents must not be given up before the new ones are on the disk.
    const bool wanted = replaced != nullptr || flush == Flush::always;
    if (wanted && ::fdatasync(file.get()) != 0 && errno != EINVAL) return false;
    return file.Close() && ::rename(made.c_str(), target.c_str()) == 0;
}

/// "*" and "?" against a name, case-blind; goes back to the last "*" on a mismatch.
bool MatchesPattern(std::string_view name, std::string_view pattern)
{
    std::size_t n = 0, p = 0, star = std::string_view::npos, star_name = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            star_name = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || EqualsNoCase(pattern.substr(p, 1), name.substr(n, 1)))) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++star_name;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

} // namespace

PathParts Path_Split(std::string_view path, NameCase name_case)
{
    PathParts parts;
    if (path.size() < 3) return parts;
    std::size_t name_end = path.size(), name_begin = 0;
    for (std::size_t i = path.size() - 1; i-- > 0;) {
        if (IsSeparator(path[i])) {
            parts.directory = path.substr(0, i);
            name_begin = i + 1;
            break;
        }
        if (path[i] == '.' && name_end == path.size()) name_end = i;
    }
    parts.extension = ToUpper(path.substr(name_end));
    parts.name = path.substr(name_begin, name_end - name_begin);
    if (name_case == NameCase::upper) parts.name = ToUpper(parts.name);
    return parts;
}

std::optional<fs::path> ResolvePath(std::string_view path)
{
    if (path.empty() || path.find('\0') != std::string_view::npos) return std::nullopt;
    // A name may really hold a backslash, so the exact spelling comes first.
    if (fs::path exact(path); Exists(exact)) return exact;
    const std::string text = WithSlashes(path);
    fs::path found = text.front() == '/' ? "/" : "";
    for (const std::string& part : Split(text, '/')) {
        if (part.empty()) continue;
        if (Exists(found / part)) {
            found /= part;
            continue;
        }
        const auto other = FindOtherCase(found.empty() ? fs::path(".") : found, part);
        if (!other) return std::nullopt;
        found /= *other;
    }
    return found;
}

std::optional<fs::path> FindInFolder(std::string_view directory, std::string_view name)
{
    if (name.empty()) return std::nullopt;
    if (directory.empty()) return ResolvePath(name);
    std::string path(directory);
    if (!IsSeparator(path.back()) && !IsSeparator(name.front())) path += '/';
    path += name;
    return ResolvePath(path);
}

std::int64_t FileLen(std::string_view path)
{
    const auto found = ResolvePath(path);
    struct stat info {};
    if (!found || ::stat(found->c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return -1;
    return ::access(found->c_str(), R_OK) == 0 ? static_cast<std::int64_t>(info.st_size) : -1;
}

bool IsFolder(std::string_view path)
{
    const auto found = ResolvePath(path);
    std::error_code ignored;
    return found && fs::is_directory(*found, ignored);
}

std::string ReadObstacle(std::string_view path)
{
    const auto found = ResolvePath(path);
    const std::string name = found ? found->string() : WithSlashes(path);
    const int rights = IsFolder(name) ? R_OK | X_OK : R_OK;
    return ::access(name.c_str(), rights) != 0 && errno == EACCES ? std::strerror(EACCES) : std::string();
}

Result<Bytes> ReadWholeFile(std::string_view path, std::uint64_t limit)
{
    return ReadFile(path, limit, Beyond::refuse, "ReadWholeFile/1DFile");
}

Result<OpenedFile> OpenedFile::Open(std::string_view path, std::uint64_t limit)
{
    constexpr const char* where = "OpenedFile/1DFile";
    std::uint64_t size = 0;
    auto file = OpenToRead(path, where, size);
    if (!file) return file.error();
    if (size > limit) return FileError(ErrorCode::too_large, where, path, kTooLarge);
    return OpenedFile(file->Take(), size);
}

OpenedFile::~OpenedFile()
{
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::size_t OpenedFile::ReadAt(std::uint64_t offset, std::span<std::byte> out) const
{
    std::size_t filled = 0;
    while (filled < out.size()) {
        const ssize_t got =
            ::pread(descriptor_, out.data() + filled, out.size() - filled, static_cast<off_t>(offset + filled));
        if (got == 0 || (got < 0 && errno != EINTR)) break;
        if (got > 0) filled += static_cast<std::size_t>(got);
    }
    return filled;
}

Result<Bytes> ReadFileHead(std::string_view path, std::size_t count)
{
    return ReadFile(path, count, Beyond::cut, "ReadFileHead/1DFile");
}

Status WriteWholeFile(const fs::path& path, std::span<const std::byte> bytes, Flush flush)
{
    const fs::path target = WriteTarget(path);
    struct stat info {};
    bool is_new = true;
    if (target.filename().empty()) return WriteError(path, "it has no file name");
    if (const Obstacle obstacle = ReplaceObstacle(target, info, is_new); !obstacle.reason.empty())
        return WriteError(path, obstacle.reason, obstacle.number);
    fs::path made;
    FileHandle file(CreateBeside(target, made));
    if (file.get() < 0) {
        const int number = errno;
        return WriteError(path, std::strerror(number), number);
    }
    if (FillAndRename(file, made, target, bytes, is_new ? nullptr : &info, flush))
        return flush == Flush::always ? FlushFolder(target.parent_path()) : Status();
    const int number = errno;
    ::unlink(made.c_str());
    return WriteError(path, std::strerror(number), number);
}

Status FlushFolder(const fs::path& folder)
{
    const fs::path named = folder.empty() ? fs::path(".") : folder;
    const FileHandle handle(::open(named.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A folder may be writable and not readable: then its names reach the disk when the system likes.
    if (handle.get() < 0 && errno == EACCES) return {};
    if (handle.get() >= 0 && (::fsync(handle.get()) == 0 || errno == EINVAL || errno == EROFS)) return {};
    const int number = errno;
    return WriteError(named, std::strerror(number), number);
}

Status WriteWholeFile(const fs::path& path, std::string_view text)
{
    return WriteWholeFile(path, std::as_bytes(std::span(text.data(), text.size())));
}

std::vector<std::string> ListFiles(const fs::path& directory, std::string_view pattern)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        std::error_code ignored;
        std::string name = it->path().filename().string();
        if (MatchesPattern(name, pattern) && it->is_regular_file(ignored)) names.push_back(std::move(name));
    }
    std::ranges::sort(names);
    return names;
}

fs::path Below(const fs::path& folder, std::string_view name)
{
    while (!name.empty() && IsSeparator(name.front())) name.remove_prefix(1);
    return folder / WithSlashes(name);
}

fs::path MapDrivePath(const fs::path& data_folder, std::string_view path)
{
    const bool letter = path.size() >= 2 && ToUpper(path.substr(0, 1)) >= "A" && ToUpper(path.substr(0, 1)) <= "Z";
    if (!letter || path[1] != ':' || (path.size() > 2 && !IsSeparator(path[2]))) return WithSlashes(path);
    path.remove_prefix(2);
    while (!path.empty() && IsSeparator(path.back())) path.remove_suffix(1);
    return path.empty() ? data_folder : Below(data_folder, path);
}

bool IsWritableFolder(const fs::path& folder)
{
    std::error_code ignored;
    return fs::is_directory(folder, ignored) && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

} // namespace nmr
