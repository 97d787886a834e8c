// The robust phase on the shown row of the block, and its memory of what it has phased already.

#include "analysis/phase.h"
#include "analysis/robust_phase.h"
#include "core/text.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <future>

namespace nmr {

namespace {

constexpr std::size_t kSideBySide = 16384;   ///< points from which a thread is worth its start
constexpr std::size_t kMostRemembered = 256; ///< rows
constexpr std::size_t kDigested = 4096;      ///< points of a row; any turn changes nearly all

struct ComplexSpan {
    std::span<const float> re, im;
};

/// Of the bits of points all over the row (FNV-1a of 64 bits).
std::uint64_t DigestOf(const ComplexSpan& row)
{
    std::uint64_t digest = 0xcbf29ce484222325U;
    const auto add = [&](std::uint64_t word) { digest = (digest ^ word) * 0x100000001b3U; };
    add(row.re.size());
    const std::size_t step = std::max<std::size_t>(row.re.size() / kDigested, 1);
    for (std::size_t i = 0; i < row.re.size(); i += step) {
        add(std::bit_cast<std::uint32_t>(row.re[i]));
        add(std::bit_cast<std::uint32_t>(row.im[i]));
    }
    return digest;
}

void Remember(GlobalBlock& g, const PhasedRow& row)
{
    if (std::ranges::find(g.PhasedRows, row.digest, &PhasedRow::digest) != g.PhasedRows.end()) return;
    if (g.PhasedRows.size() >= kMostRemembered) g.PhasedRows.erase(g.PhasedRows.begin());
    g.PhasedRows.push_back(row);
}

DataSet& SlotOf(GlobalBlock& g)
{
    const int slot = g.CurrentMultiSlot;
    return g.Slots[static_cast<std::size_t>(slot > 0 && slot < kSlotCount ? slot : 0)];
}

/// The points of the shown row that both arrays have, at most n.
ComplexSpan ShownRow(const RowArray<float>& re, const RowArray<float>& im, const GlobalBlock& g, std::int32_t n)
{
    const auto row = static_cast<std::size_t>(std::max<std::int32_t>(g.CurrentRow, 0));
    auto count = static_cast<std::size_t>(std::max(n, 0));
    for (const RowArray<float>* a : {&re, &im}) count = std::min(count, row < a->rows() ? a->columns() : 0);
    return count == 0 ? ComplexSpan{} : ComplexSpan{re[row].first(count), im[row].first(count)};
}

/// Searches, with the circle fit as one of the proposals. That works on the block and on the shown row, the search on
/// the source alone: side by side they take the time of one.
RobustPhase Search(GlobalBlock& g, const ComplexSpan& source, LineSigns signs, double known_phase1_deg)
{
    const auto policy = source.re.size() < kSideBySide ? std::launch::deferred : std::launch::async;
    auto circle = std::async(policy, [&g, n = static_cast<std::int32_t>(source.re.size())] {
        Auto_Phase(g, PhaseMode::full, n);
        return PhaseProposal{static_cast<double>(g.Phase0Deg), static_cast<double>(g.Phase1Deg), g.PivotPoint};
    });
    const RobustPhase found =
        Find_Robust_Phase(source.re, source.im, {known_phase1_deg, signs, [&circle] { return circle.get(); }});
    if (circle.valid()) circle.wait(); // a row without lines asks for no proposal
    return found;
}

} // namespace

LineSigns Expected_Signs(const ParamBlock& par)
{
    for (const std::string* text : {&par.EXMOD, &par.PulseProg, &par.ExpTitle})
        for (const char* word : {"dept", "apt", "jmod", "attach"})
            if (ContainsNoCase(*text, word)) return LineSigns::alternate;
    return LineSigns::by_evidence;
}

double Auto_Phase_Robust(GlobalBlock& g, std::int32_t n, double known_phase1_deg)
{
    DataSet& set = SlotOf(g);
    const ComplexSpan source = ShownRow(set.spec.SourceRe, set.spec.SourceIm, g, n);
    if (source.re.empty()) return 0.0;
    // What it has phased stays so: where two phases cost alike, a search might take the other one this time.
    const auto known = std::ranges::find(g.PhasedRows, DigestOf(source), &PhasedRow::digest);
    RobustPhase found;
    if (known != g.PhasedRows.end()) {
        found.pivot = known->pivot;
        found.quality = known->quality;
    } else {
        found = Search(g, source, Expected_Signs(set.par), known_phase1_deg);
    }
    set.par.PhaseP0 = g.PivotPoint = found.pivot;
    g.P2Point = -1;
    g.Phase0Deg = static_cast<float>(found.phase0_deg);
    g.Phase1Deg = static_cast<float>(found.phase1_deg);
    Phase_Apply(g, g.Phase0Deg, g.Phase1Deg, static_cast<std::int32_t>(source.re.size()));
    Remember_Phased_Row(g, static_cast<std::int32_t>(source.re.size()), found.quality);
    return found.quality;
}

void Remember_Phased_Row(GlobalBlock& g, std::int32_t n, double quality)
{
    const ComplexSpan phased = ShownRow(SlotOf(g).spec.DataRe, SlotOf(g).spec.DataIm, g, n);
    if (!phased.re.empty()) Remember(g, {DigestOf(phased), g.PivotPoint, quality});
}

} // namespace nmr
