// The replacing of a file: old version aside, new one beside and flushed, then one rename.

#include "core/file_layer.h"
#include "session/save_flow.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr char kWhere[] = "SafeSave/1DF1";

Error CanNot(const fs::path& file, const std::error_code& reason)
{
    return {ErrorCode::unwritable, kWhere, "Can't write " + file.string() + ": " + reason.message() + ".",
            reason.value()};
}

/// The old version of a file on its way to its backup, and back when the write fails.
class OldFile {
public:
    explicit OldFile(const fs::path& file) : file_(file), backup_(BackupName(file, "$")), older_(BackupName(file, "$$"))
    {
    }

    /// Gives the old version its second name. The file keeps its own until the new one takes it, so that
    /// a run that is killed here leaves the old version in its place.
    Status PutAside()
    {
        std::error_code failed;
        there_ = fs::exists(file_, failed);
        if (!there_) return {};
        if (::access(file_.c_str(), W_OK) != 0) return CanNot(file_, {errno, std::generic_category()});
        if (!fs::is_regular_file(file_, failed)) return CanNot(file_, std::make_error_code(std::errc::is_a_directory));
        if (fs::exists(backup_, failed)) {
            fs::remove(older_, failed);
            fs::rename(backup_, older_, failed);
            if (failed) return CanNot(file_, failed);
            moved_backup_ = true;
        }
        fs::create_hard_link(file_, backup_, failed);
        if (failed) fs::rename(file_, backup_, failed); // a file system without second names
        if (!failed) return {};
        PutBack();
        return CanNot(file_, failed);
    }

    /// Everything as before. Nothing that fails here can be helped.
    void PutBack()
    {
        std::error_code ignored;
        if (!there_) {
            fs::remove(file_, ignored);
            return;
        }
        if (fs::exists(backup_, ignored)) {
            fs::rename(backup_, file_, ignored);
            // Of two names of one file a rename leaves both.
            fs::remove(backup_, ignored);
        }
        if (moved_backup_) fs::rename(older_, backup_, ignored);
    }

    void Finish(OldVersion old_version)
    {
        std::error_code ignored;
        if (!there_) return;
        fs::remove(older_, ignored);
        if (old_version == OldVersion::remove) fs::remove(backup_, ignored);
    }

private:
    fs::path file_, backup_, older_;
    bool there_ = false;
    bool moved_backup_ = false;
};

/// The file itself, where the name is a symbolic link to it.
fs::path RealFile(const fs::path& file)
{
    std::error_code failed;
    if (!fs::is_symlink(file, failed)) return file;
    const fs::path real = fs::canonical(file, failed);
    return failed ? file : real;
}

} // namespace

fs::path BackupName(const fs::path& file, std::string_view mark)
{
    std::string extension = file.extension().string();
    if (!extension.empty()) extension.erase(0, 1);
    fs::path name = file.parent_path() / file.stem();
    name += "." + std::string(mark) + extension;
    return name;
}

Status Safe_Save(const fs::path& file, ByteSpan bytes, OldVersion old_version)
{
    const fs::path real = RealFile(file);
    OldFile old(real);
    if (Status aside = old.PutAside(); !aside) return aside;
    Status written = WriteWholeFile(real, bytes, Flush::always);
    if (!written) {
        old.PutBack();
        return written;
    }
    old.Finish(old_version);
    return {};
}

} // namespace nmr
