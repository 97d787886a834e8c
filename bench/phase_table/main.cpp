// nmr1d-phase-table: how near both automatic phases come to a known truth, as a table.
//
//     nmr1d-phase-table FOLDER [SEEDS [FIRST [KIND]]]
//
// FOLDER holds instrument data whose files tell the operator's phases; SEEDS made spectra of each kind follow,
// from seed FIRST on; with KIND only of the kinds whose name holds that word, and each set by itself. The figure is
// the phase that is left at the points above 5 % of the tallest, as a root mean square weighted by intensity; half a
// turn is forgiven. "again" is the largest turn of such a point by a second and a third press, each on the fixed
// result; "back" how far one is from that after a press on the result turned 20 degrees by hand.

#include "analysis/phase.h"
#include "made_spectra.h"
#include "measure.h"
#include "session/fft_form.h"
#include "session/read_flow.h"
#include "session/startup.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <vector>

namespace {

using namespace nmr;
using bench::Score;
using bench::Turn;

class SilentAsker : public Asker {
public:
    Button Message(const MessageBox& box) override { return box.buttons.front(); }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest&) override { return {"OK", {}}; }
    void Beep() override {}
    void Notice(const std::string&) override {}
};

struct Group {
    int count = 0, plain = 0, robust = 0, moved = 0, lost = 0;
    double plain_ms = 0, robust_ms = 0;
    void Add(const Score& s)
    {
        ++count;
        plain += s.plain <= 10 ? 1 : 0;
        robust += s.robust <= 10 ? 1 : 0;
        moved += s.again > 0 ? 1 : 0;
        lost += s.back > 1 ? 1 : 0;
        plain_ms = std::max(plain_ms, s.plain_ms);
        robust_ms = std::max(robust_ms, s.robust_ms);
    }
};
using Groups = std::map<std::string, Group>;

void PrintScore(const std::string& name, const std::string& nucleus, std::int32_t points, const Score& s)
{
    fmt::print("{:<38} {:<5} {:>8} {:>7.1f} {:>7.1f} {:>7.0f} {:>7.2f} {:>7.2f} {:>9.1f} {:>9.1f}\n", name, nucleus,
               points, s.plain, s.robust, s.quality, s.again, s.back, s.plain_ms, s.robust_ms);
}

/// How an instrument's FID is looked at.
struct Way {
    const char *title, *group;
    bool vendor_window; ///< the operator's window and line broadening, not the usual ones
    bool phased;        ///< from the operator's own phases, not from the raw row
};

/// Turns the source by the operator's phases, as the window's start from the vendor's values leaves it.
void TakePhased(GlobalBlock& g, std::int32_t n, const Turn& truth)
{
    g.PivotPoint = static_cast<std::int32_t>(truth.pivot);
    Phase_Apply(g, static_cast<float>(truth.p0), static_cast<float>(truth.p1), n);
    CopyDataToSource(g.Slots[0]);
}

void RealSet(const std::filesystem::path& folder, const Way& way, Groups& groups)
{
    auto g = std::make_unique<GlobalBlock>();
    Start_Batch(*g);
    g->settings.vendor_start = 0;
    SilentAsker asker;
    Session session{*g, asker, {}, {}, {}, {}, false};
    session.run_fft_form = [&](FftForm& form) {
        const std::string nucleus = g->Slots[0].par.OBNUC;
        if (way.vendor_window && (!form.TakeVendorWindow() || !form.WindowChanged())) return std::string("CANCEL");
        const std::int32_t n = form.points();
        double known = form.known_phase1();
        if (!form.TakeVendorPhase()) return std::string("CANCEL");
        Turn truth = bench::PresentTurn(*g);
        if (way.phased) {
            TakePhased(*g, n, truth);
            truth = {};
            known = 0;
        }
        const Score s = bench::Measure(*g, n, truth, known);
        PrintScore(folder.filename().string(), nucleus, n, s);
        groups[way.group + nucleus].Add(s);
        return std::string("CANCEL");
    };
    static_cast<void>(Read_Path(session, folder.string()));
}

void RealSets(const char* data, Groups& groups)
{
    constexpr Way kWays[] = {
        {"raw, usual window", "real ", false, false},
        {"raw, operator's window", "real, own window, ", true, false},
        {"on the operator's own phases, usual window", "phased ", false, true},
        {"on the operator's own phases and window", "phased, own window, ", true, true},
    };
    std::vector<std::filesystem::path> folders;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(data, error))
        if (entry.is_directory()) folders.push_back(entry.path());
    std::ranges::sort(folders);
    for (const Way& way : kWays) {
        fmt::print("{:<38} nucl.   points   plain  robust quality   again    back  plain ms robust ms\n", way.title);
        for (const auto& folder : folders) RealSet(folder, way, groups);
        fmt::print("\n");
    }
}

void MadeSet(int kind, unsigned seed, bool each, Groups& groups)
{
    const bench::MadeSpectrum made = bench::MakeSpectrum(kind, seed);
    auto g = std::make_unique<GlobalBlock>();
    Start_Batch(*g);
    const auto n = static_cast<std::int32_t>(made.re.size());
    if (!AllocateSpecBuffer(*g, n, 0)) return;
    DataSet& set = g->Slots[0];
    set.par.POINT = n;
    set.par.OBNUC = made.nucleus;
    if (made.dept) set.par.PulseProg = "dept135";
    std::ranges::copy(made.re, set.spec.SourceRe[0].begin());
    std::ranges::copy(made.im, set.spec.SourceIm[0].begin());
    const Score s = bench::Measure(*g, n, {made.p0_deg, made.p1_deg, 0}, 0.0);
    if (each) PrintScore(fmt::format("{} {}", made.kind, seed), made.nucleus, n, s);
    groups["made " + made.kind].Add(s);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        fmt::print(stderr, "usage: nmr1d-phase-table FOLDER [SEEDS [FIRST [KIND]]]\n");
        return 2;
    }
    Groups groups;
    RealSets(argv[1], groups);
    const int seeds = argc > 2 ? std::atoi(argv[2]) : 20;
    const int first = argc > 3 ? std::atoi(argv[3]) : 1;
    const std::string only = argc > 4 ? argv[4] : "";
    for (int kind = 0; kind < bench::MadeKinds(); ++kind)
        for (int seed = first; seed < first + seeds && bench::KindName(kind).find(only) != std::string::npos; ++seed)
            MadeSet(kind, static_cast<unsigned>(seed), argc > 4, groups);
    fmt::print("within 10 degrees                        sets   plain  robust  moved   lost  plain ms robust ms "
               "(longest)\n");
    for (const auto& [name, group] : groups)
        fmt::print("{:<38} {:>6} {:>6.0f}% {:>6.0f}% {:>6} {:>6} {:>9.1f} {:>9.1f}\n", name, group.count,
                   100.0 * group.plain / group.count, 100.0 * group.robust / group.count, group.moved, group.lost,
                   group.plain_ms, group.robust_ms);
    return 0;
}
