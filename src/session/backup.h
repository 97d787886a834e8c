#pragma once
// Unsaved work that a read replaces: it goes into BackupFile, and the step "UnDo(Data Read/OverWrite) "
// brings it back.

#include "session/session.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nmr {

/// Writes unsaved data (DataChanged 1 in slot 0) with every used slot into BackupFile before a read touches
/// them; without such data, or when the backup can't be written, it does nothing. One of Offer and
/// Withdraw ends it.
class ReadBackup {
public:
    explicit ReadBackup(GlobalBlock& g);
    /// After the read, on an undo stack that is empty: pushes the step and names the backup in
    /// OverwriteBackupName.
    void Offer();
    /// The read did not come about: a backup of an earlier read, which a step may still need, is back.
    void Withdraw();

private:
    GlobalBlock& g_;
    std::optional<UndoStep> step_;
    std::filesystem::path earlier_; ///< backup of an earlier read, put aside
};

} // namespace nmr
