#pragma once
// The one place that touches the file system: names as users and old settings write them (either
// separator, any case) become real paths here, and files are read and written whole.

#include "core/result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nmr {

struct PathParts {
    std::string extension; ///< with its dot, upper case; empty when the name has none
    std::string directory; ///< without the closing separator, as given
    std::string name;      ///< without directory and extension; upper case when asked for
};
enum class NameCase { keep, upper };

/// Splits a path at "/" or "\". The dot counts only right of the last separator, and the last
/// character is never looked at for dot or separator. A path shorter than 3 characters yields all empty.
PathParts Path_Split(std::string_view path, NameCase name_case = NameCase::keep);

/// The real path of a name: both separators, each component first by its exact spelling, then
/// case-blind (the alphabetically first of several). Nothing when a component does not exist.
std::optional<std::filesystem::path> ResolvePath(std::string_view path);

/// `directory` + separator + `name`, resolved; nothing when there is none.
std::optional<std::filesystem::path> FindInFolder(std::string_view directory, std::string_view name);

/// Length in bytes of a regular file found by ResolvePath, -1 when missing, unreadable or a folder.
std::int64_t FileLen(std::string_view path);

bool IsFolder(std::string_view path);

/// What keeps this user from reading a file or entering a folder ("Permission denied"); empty when
/// nothing does, or when nothing of the name is there.
std::string ReadObstacle(std::string_view path);

using Bytes = std::vector<std::byte>;
constexpr std::uint64_t kAnySize = ~std::uint64_t{0};

/// The whole file. Refuses anything above `limit` bytes and what is no regular file.
Result<Bytes> ReadWholeFile(std::string_view path, std::uint64_t limit = std::uint64_t{4} << 30);

/// The first `count` bytes, or all of a shorter file.
Result<Bytes> ReadFileHead(std::string_view path, std::size_t count);

/// A regular file that is read piece by piece.
class OpenedFile {
public:
    /// Refuses anything above `limit` bytes and what is no regular file.
    static Result<OpenedFile> Open(std::string_view path, std::uint64_t limit);
    OpenedFile(OpenedFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)), size_(other.size_) {}
    OpenedFile& operator=(OpenedFile&&) = delete;
    ~OpenedFile();
    std::uint64_t size() const { return size_; } ///< when it was opened
    /// Fills `out` from an offset and returns how many bytes came: fewer at the end and after an error.
    std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const;

private:
    OpenedFile(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}
    int descriptor_;
    std::uint64_t size_;
};

/// When the bytes must be on the disk: before an old file gives way (its contents only), or also of a new
/// file, and its name in the folder too, before the call returns.
enum class Flush { replaced_only, always };

/// Writes the file beside its place and renames it there, so that a reader sees the old or the new one.
Status WriteWholeFile(const std::filesystem::path& path, std::span<const std::byte> bytes,
                      Flush flush = Flush::replaced_only);
Status WriteWholeFile(const std::filesystem::path& path, std::string_view text);

/// Puts the names of a folder on the disk: renames and new files of it survive a power cut. A file system
/// that can't do it is no error.
Status FlushFolder(const std::filesystem::path& folder);

/// File names (not paths) in `directory` that match a pattern of "*" and "?", case-blind, sorted.
std::vector<std::string> ListFiles(const std::filesystem::path& directory, std::string_view pattern);

/// "\Work_File_1D0001.wkf" below `folder`: the leading separator, of either kind, is dropped.
std::filesystem::path Below(const std::filesystem::path& folder, std::string_view name);

/// A drive path of a setting ("C:\NMRLog") as a folder below `data_folder` ("…/NMRLog"); any other
/// path unchanged but for its separators.
std::filesystem::path MapDrivePath(const std::filesystem::path& data_folder, std::string_view path);

/// True when files can be created in the folder.
bool IsWritableFolder(const std::filesystem::path& folder);

} // namespace nmr
