#pragma once
// What survives the death of a run. Each run keeps a journal beside its work file, with the same number:
// \Journal_1D0000.jnl. After every edit the parts of the state that differ from what was written last are
// appended to it; the points are named by their checksum and lie in the snapshot files of the undo, or, for
// the multi spectra, in \Journal_1D0000_S04.001. A read begins the journal anew. A run that ends in order
// removes it; a run that finds one whose process is gone offers the work.
//
// Whatever changes the data is seen, since states are compared, not commands listed: a new tool has nothing
// to do for it but to call display_changed, as it must for the display. What the comparison costs is one
// look at parameters and lists; points and axis are looked at in places only, unless an undo step tells of
// a change (UndoStack::point_changes), so a tool that changes a few points has to take such a step.

#include "core/flusher.h"
#include "core/journal.h"
#include "core/result.h"
#include "core/state_image.h"
#include "session/session.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nmr {

/// Writes the journal of one run.
class Recorder {
public:
    /// Begins the journal of the run's work number.
    explicit Recorder(GlobalBlock& g);

    /// Appends what has changed since the last call; nothing while a FID waits for its transform. The user
    /// is told once when it can't be written.
    /// @return whether all of the present state is in the journal
    bool Note(Asker& asker);
    /// What the next record holds was the work of a dead run, told by its journal and process.
    void TakeOver(std::string run) { took_over_ = std::move(run); }
    /// Removes the journal and its points: the run ends in order.
    void End();

private:
    struct SlotMark {
        std::uint64_t axis = 0, glance = 0, changes = 0;
        PointsMark points;
        std::filesystem::path own_file; ///< points of a multi spectrum
    };
    struct Change;
    bool Write(Change& change);
    Status TakePoints(Change& change, std::int16_t slot);
    void TakeSlot(Change& change, std::int16_t slot);
    std::vector<std::byte> Head() const;

    GlobalBlock& g_;
    JournalWriter journal_;
    Flusher flusher_;
    StateImage image_;
    std::array<SlotMark, kSlotCount> marks_{};
    std::uint64_t reads_ = 0, saves_ = 0; ///< of the undo stack at the last record
    int next_file_ = 0;
    std::string took_over_;
    bool told_ = false;
};

/// Begins the journal of this run; nothing in a run without a work file.
void Begin_Journal(Session& s);
/// From here on every display_changed is noted first. After the window has set its hooks.
void Watch_Edits(Session& s);
void End_Journal(Session& s);

/// Looks for journals of runs that are gone, and asks for each what becomes of its work: brought back into
/// this run, kept for later, or discarded. Journals without unsaved work are removed.
void Offer_Recovery(Session& s);

/// A claim of a run that is gone does not hold its file any more.
/// @param work_file name of the claim in `folder`
bool IsDeadClaim(const std::filesystem::path& folder, const std::string& work_file);
/// Journals of other runs, alive or not, in this run's folder: what lies there is not to be tidied up.
bool OtherJournals(const GlobalBlock& g);

} // namespace nmr
