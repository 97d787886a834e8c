// Taking a step back and doing it again, at the largest length.

#include "bench.h"
#include "core/global_block.h"
#include "sample_block.h"
#include "session/recovery.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace nmr::bench {
namespace {

namespace fs = std::filesystem;

constexpr double kDataLimitMs = 50, kListLimitMs = 1, kJournalLimitMs = 1;
constexpr std::size_t kPeaks = 1000;

/// A folder for the snapshots, where temporary files of this machine are.
class Folder {
public:
    Folder() : path_(fs::temp_directory_path() / fmt::format("nmr1d-bench-{}", ::getpid()))
    {
        fs::create_directories(path_);
    }
    ~Folder()
    {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

void ChangePoints(DataSet& set)
{
    for (float& value : set.spec.DataRe.all()) value *= 1.01F;
    CopyDataToSource(set);
}

struct Times {
    double push = 0, undo = 0, redo = 0;
};

/// The best of some rounds; each round pushes a step anew.
template <class Change>
Times Measure(GlobalBlock& g, Change change)
{
    Times best{1e9, 1e9, 1e9};
    for (int round = 0; round < 8; ++round) {
        best.push = std::min(best.push, change());
        best.undo = std::min(best.undo, OnceMs([&] { g.Undo.UnDo(g); }));
        best.redo = std::min(best.redo, OnceMs([&] { g.Undo.ReDo(g); }));
    }
    return best;
}

/// A time of nothing done would be a fine time.
bool TakesBack(GlobalBlock& g)
{
    const float changed = g.Slots[0].spec.DataRe[0][7];
    const bool undone = g.Undo.UnDo(g) && g.Slots[0].spec.DataRe[0][7] != changed;
    return undone && g.Undo.ReDo(g) && g.Slots[0].spec.DataRe[0][7] == changed;
}

void AddRows(std::vector<BenchRow>& rows, const std::string& name, const Times& times, double limit)
{
    rows.push_back({name + ", step kept", times.push, "ms", 0, {}});
    rows.push_back({name + ", undo", times.undo, "ms", limit, {}});
    rows.push_back({name + ", redo", times.redo, "ms", limit, {}});
}

/// What the journal adds to an edit.
std::vector<BenchRow> Journal()
{
    const Folder folder;
    SampleBlock sample(kMaxPoints);
    GlobalBlock& g = sample.g();
    g.AppPath = folder.path();
    g.WorkFile = folder.path() / "Work_File_1D0000.wkf";
    DataSet& set = g.Slots[0];
    set.par.SMODE = 1;
    set.Peaks.resize(kPeaks);
    SilentAsker asker;
    Recorder recorder(g);
    bool written = true;
    std::vector<BenchRow> rows;
    const auto add = [&](const char* name, double limit, auto change) {
        double best = 1e9;
        for (int round = 0; round < 10; ++round) {
            change();
            best = std::min(best, OnceMs([&] { written = recorder.Note(asker) && written; }));
        }
        rows.push_back({name, best, "ms", limit, {}});
    };
    add("journal, after a read, 1048576 points", 0, [&] {
        ChangePoints(set);
        g.Undo.Empty();
    });
    add("journal, peak, 1048576 points, 1000 peaks", kJournalLimitMs, [&] { set.Peaks[kPeaks / 2].Point += 1; });
    add("journal, parameter, 1048576 points", kJournalLimitMs, [&] { set.par.COMNT += "x"; });
    add("journal, nothing changed", kJournalLimitMs, [] {});
    add("journal, reference (a new axis), 1048576 points", 0, [&] {
        for (double& ppm : set.spec.XAxis) ppm += 0.01;
    });
    add("journal, phase, 1048576 points", 0, [&] {
        UndoStep step = g.Undo.Begin(g, static_cast<std::int32_t>(UndoKind::phase));
        ChangePoints(set);
        g.Undo.Commit(g, std::move(step));
    });
    recorder.End();
    return written ? rows : std::vector<BenchRow>{};
}

std::vector<BenchRow> Undo()
{
    const Folder folder;
    SampleBlock sample(kMaxPoints);
    GlobalBlock& g = sample.g();
    g.AppPath = folder.path();
    DataSet& set = g.Slots[0];
    set.Peaks.resize(kPeaks);
    std::vector<BenchRow> rows;
    const auto phase = static_cast<std::int32_t>(UndoKind::phase);
    AddRows(rows, "phase, 1048576 points",
            Measure(g,
                    [&] {
                        UndoStep step;
                        double ms = OnceMs([&] { step = g.Undo.Begin(g, phase); });
                        ChangePoints(set);
                        ms += OnceMs([&] { g.Undo.Commit(g, std::move(step)); });
                        return ms;
                    }),
            kDataLimitMs);
    if (!TakesBack(g)) return {};
    AddRows(rows, "peak list, 1000 peaks",
            Measure(g,
                    [&] {
                        const double ms = OnceMs([&] { PushUndoStep(g, UndoKind::add_peak); });
                        set.Peaks.back().Point += 1;
                        return ms;
                    }),
            kListLimitMs);
    for (BenchRow& row : Journal()) rows.push_back(std::move(row));
    return rows;
}

const bool registered = Register("undo", Undo);

} // namespace
} // namespace nmr::bench
