#pragma once
// The file of a journal: what was done to the data, record behind record, so that a run that is killed
// loses nothing. What the records mean is told in session/recovery.h.
//
// Layout, numbers as they lie in the machine's memory:
//   head    8 bytes "NMR1DJ1\n", u64 identity of this file, u64 layout of the records, u64 checksum of these
//   record  u32 length of the payload, u32 kind, u64 checksum of both and the payload, payload
// The checksum of a record takes the file's identity and the record's number in: bytes of another file, or
// at another place, are no record. Reading stops at the first record that is cut or damaged; all before it
// are whole.
//
// What reaches the disk when: an append is one write and no flush. The kernel has the bytes then, so that
// the death of the process loses nothing. What a power cut must not take is flushed behind the back of the
// edits, see flusher.h; a record or a snapshot that the cut has torn is seen by its checksum.

#include "core/file_layer.h"
#include "core/result.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace nmr {

struct JournalRecord {
    std::uint32_t kind = 0;
    std::span<const std::byte> payload; ///< what is not owned here
};

struct JournalContents {
    std::vector<JournalRecord> records; ///< the whole ones from the start
    bool cut = false;                   ///< something stood behind them that is no record
};

/// @return bad_format when there is no head, or one of another layout
Result<JournalContents> ParseJournal(std::span<const std::byte> file, std::uint64_t layout);

/// A file descriptor with the lock that says that its run lives; the system drops the lock with the process.
class LockedFile {
public:
    LockedFile() = default;
    explicit LockedFile(int descriptor) : descriptor_(descriptor) {}
    ~LockedFile() { Close(); }
    LockedFile(LockedFile&& other) noexcept;
    LockedFile& operator=(LockedFile&& other) noexcept;
    explicit operator bool() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }
    void Close();

private:
    int descriptor_ = -1;
};

/// Opens and locks a journal that no run holds; nothing when one does, or when it is gone. Several may
/// look at it at a time, one may take it over.
enum class LockFor { look, take };
LockedFile LockJournal(const std::filesystem::path& path, LockFor purpose);

class JournalWriter {
public:
    /// Begins a new file in the place of an old one, which gives way only when these records are written.
    Status Begin(const std::filesystem::path& path, std::uint64_t layout, std::span<const JournalRecord> records);
    /// One write. After a failure the file ends where it ended before.
    Status Append(std::uint32_t kind, std::span<const std::byte> payload);
    void Close() { file_.Close(); }
    bool is_open() const { return static_cast<bool>(file_); }
    const std::filesystem::path& path() const { return path_; }
    int descriptor() const { return file_.get(); }

private:
    std::filesystem::path path_;
    LockedFile file_;
    std::uint64_t identity_ = 0;
    std::uint64_t number_ = 0; ///< of the next record
    std::uint64_t length_ = 0; ///< of the file
};

} // namespace nmr
