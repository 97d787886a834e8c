// nmr1d-phase-table: how near both automatic phases come to a known truth, as a table.
//
//     nmr1d-phase-table FOLDER [SEEDS [FIRST]]
//
// FOLDER holds instrument data whose files tell the operator's phases; SEEDS made spectra of each kind follow,
// from seed FIRST on. The figure is the phase that is left at the points above 5 % of the tallest, as a root mean
// square weighted by intensity; half a turn is forgiven.

#include "analysis/phase.h"
#include "analysis/robust_phase.h"
#include "made_spectra.h"
#include "session/fft_form.h"
#include "session/read_flow.h"
#include "session/startup.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <vector>

namespace {

using namespace nmr;

class SilentAsker : public Asker {
public:
    Button Message(const MessageBox& box) override { return box.buttons.front(); }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest&) override { return {"OK", {}}; }
    void Beep() override {}
    void Notice(const std::string&) override {}
};

struct Turn {
    double p0 = 0, p1 = 0, pivot = 0;
    double At(double i, double n) const { return p0 + (i - pivot) * p1 / n; }
};

Turn Present(const GlobalBlock& g)
{
    return {static_cast<double>(g.Phase0Deg), static_cast<double>(g.Phase1Deg), static_cast<double>(g.PivotPoint)};
}

/// Degrees left, weighted by magnitude, the better of the phase and its half turn.
double LeftDegrees(std::span<const float> re, std::span<const float> im, const Turn& truth, const Turn& found)
{
    const auto n = static_cast<double>(re.size());
    std::vector<double> magnitude(re.size());
    double top = 0;
    for (std::size_t i = 0; i < re.size(); ++i) {
        magnitude[i] = std::hypot(static_cast<double>(re[i]), static_cast<double>(im[i]));
        top = std::max(top, magnitude[i]);
    }
    double best = 1e9;
    for (const double half : {0.0, 180.0}) {
        double sum = 0, weight = 0;
        for (std::size_t i = 0; i < re.size(); ++i) {
            if (magnitude[i] < 0.05 * top) continue;
            const auto at = static_cast<double>(i);
            const double d = std::remainder(truth.At(at, n) - found.At(at, n) + half, 360.0);
            sum += magnitude[i] * d * d;
            weight += magnitude[i];
        }
        best = std::min(best, std::sqrt(sum / std::max(weight, 1e-300)));
    }
    return best;
}

struct Score {
    double plain = 0, robust = 0, quality = 0, plain_ms = 0, robust_ms = 0;
};

template <class Body>
double Milliseconds(Body body)
{
    // Processor time: other work on the machine does not count.
    const std::clock_t start = std::clock();
    body();
    return 1e3 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

Score Measure(GlobalBlock& g, std::int32_t n, const Turn& truth, double known_p1)
{
    const auto row = static_cast<std::size_t>(g.CurrentRow);
    const auto count = static_cast<std::size_t>(n);
    const auto re = g.Slots[0].spec.SourceRe[row].first(count), im = g.Slots[0].spec.SourceIm[row].first(count);
    Score score;
    score.plain_ms = Milliseconds([&] { Auto_Phase(g, PhaseMode::full, n); });
    // What the transform form adds where one line tells no first order.
    if (g.Phase1Deg == 0.0F) g.Phase1Deg = static_cast<float>(known_p1);
    score.plain = LeftDegrees(re, im, truth, Present(g));
    score.robust_ms = Milliseconds([&] { score.quality = Auto_Phase_Robust(g, n, known_p1); });
    score.robust = LeftDegrees(re, im, truth, Present(g));
    return score;
}

struct Group {
    int count = 0, plain = 0, robust = 0;
    double plain_ms = 0, robust_ms = 0;
    void Add(const Score& s)
    {
        ++count;
        plain += s.plain <= 10 ? 1 : 0;
        robust += s.robust <= 10 ? 1 : 0;
        plain_ms = std::max(plain_ms, s.plain_ms);
        robust_ms = std::max(robust_ms, s.robust_ms);
    }
};

void RealSet(const std::filesystem::path& folder, std::map<std::string, Group>& groups)
{
    auto g = std::make_unique<GlobalBlock>();
    Start_Batch(*g);
    g->settings.vendor_start = 0;
    SilentAsker asker;
    Session session{*g, asker, {}, {}, {}, {}, false};
    session.run_fft_form = [&](FftForm& form) {
        const std::string nucleus = g->Slots[0].par.OBNUC;
        const std::int32_t n = form.points();
        const double known = form.known_phase1();
        if (!form.TakeVendorPhase()) return std::string("CANCEL");
        const Turn truth = Present(*g);
        const Score s = Measure(*g, n, truth, known);
        fmt::print("{:<38} {:<5} {:>8} {:>9.1f} {:>9.1f} {:>8.0f} {:>9.1f} {:>9.1f}\n", folder.filename().string(),
                   nucleus, n, s.plain, s.robust, s.quality, s.plain_ms, s.robust_ms);
        groups["real " + nucleus].Add(s);
        return std::string("CANCEL");
    };
    static_cast<void>(Read_Path(session, folder.string()));
}

void MadeSet(int kind, unsigned seed, bool verbose, std::map<std::string, Group>& groups)
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
    const Score s = Measure(*g, n, {made.p0_deg, made.p1_deg, 0}, 0.0);
    if (verbose)
        fmt::print("{:<38} seed {:>5} p1 {:>6.0f} {:>9.1f} {:>9.1f} {:>8.0f} {:>9.1f}  found p1 {:.0f}\n", made.kind,
                   seed, made.p1_deg, s.plain, s.robust, s.quality, s.robust_ms, static_cast<double>(g->Phase1Deg));
    groups["made " + made.kind].Add(s);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        fmt::print(stderr, "usage: nmr1d-phase-table FOLDER [SEEDS [FIRST]]\n");
        return 2;
    }
    std::map<std::string, Group> groups;
    fmt::print(
        "degrees left                           nucl.   points     plain    robust  quality  plain ms robust ms\n");
    std::vector<std::filesystem::path> folders;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1], error)) folders.push_back(entry.path());
    std::ranges::sort(folders);
    for (const auto& folder : folders)
        if (std::filesystem::is_directory(folder)) RealSet(folder, groups);
    const int seeds = argc > 2 ? std::atoi(argv[2]) : 20;
    const int first = argc > 3 ? std::atoi(argv[3]) : 1;
    for (int kind = 0; kind < bench::MadeKinds(); ++kind)
        for (int seed = first; seed < first + seeds; ++seed)
            MadeSet(kind, static_cast<unsigned>(seed), argc > 4, groups);
    fmt::print("\nwithin 10 degrees                        sets     plain    robust  plain ms robust ms (longest)\n");
    for (const auto& [name, group] : groups)
        fmt::print("{:<38} {:>6} {:>8.0f}% {:>8.0f}% {:>9.1f} {:>9.1f}\n", name, group.count,
                   100.0 * group.plain / group.count, 100.0 * group.robust / group.count, group.plain_ms,
                   group.robust_ms);
    return 0;
}
