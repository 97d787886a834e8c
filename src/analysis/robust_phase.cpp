#include "analysis/robust_phase.h"

#include "analysis/line_phases.h"
#include "analysis/phase.h"
#include "analysis/smoothed_row.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace nmr {

namespace {

constexpr double kRadians = std::numbers::pi / 180.0;
constexpr std::size_t kRun = 64; ///< points that share one rotation
constexpr std::size_t kLanes = 8;
constexpr std::size_t kAngles = 72; ///< of the table of a block, over a full turn
constexpr double kAngleStep = 360.0 / static_cast<double>(kAngles);
constexpr double kLargestPhase1 = 1080.0; ///< off what is known
constexpr double kPhase1Step = 20.0;
constexpr double kFarPenalty = 0.1; ///< of each turn of first order off what is known
constexpr double kLineShare = 0.45, kTailShare = 1.0;
constexpr double kAsGood = 1.005;     ///< cost of what is known beforehand, over that of the best
constexpr double kAsGoodHome = 1.015; ///< the same where that is near
constexpr double kStay = 1.03;        ///< cost of a row as it stands, over that of the best near it
constexpr double kNearHome = 5.0;     ///< degrees
constexpr double kNoTurn = 1.5;       ///< degrees that are not worth a change

/// The points that carry lines, in runs of neighbours.
struct Signal {
    std::vector<float> re, im;
    struct Run {
        std::size_t first, count; ///< in re and im
        double position;          ///< of its middle, share of the row from the middle of all signal
        float weight;
        double share = 0; ///< of all signal, weighted
    };
    std::vector<Run> runs;
    double center = 0; ///< point about which the phases turn here
    double size = 0;   ///< weighted sum of magnitudes
};

struct Phases {
    double p0 = 0, p1 = 0; ///< degrees; first order over the whole row, about Signal::center
};

void AddRun(Signal& s, std::span<const float> re, std::span<const float> im, std::size_t from, std::size_t to)
{
    s.runs.push_back({s.re.size(), to - from, static_cast<double>(from + to - 1) / 2.0, 1.0F});
    s.re.insert(s.re.end(), re.begin() + static_cast<std::ptrdiff_t>(from),
                re.begin() + static_cast<std::ptrdiff_t>(to));
    s.im.insert(s.im.end(), im.begin() + static_cast<std::ptrdiff_t>(from),
                im.begin() + static_cast<std::ptrdiff_t>(to));
}

/// One line far above all others (solvent) must not decide alone: groups of neighbouring runs weigh by a power of their
/// size.
void WeighRuns(Signal& s, std::size_t n)
{
    std::vector<double> size;
    for (const Signal::Run& run : s.runs) {
        double sum = 0;
        for (std::size_t i = run.first; i < run.first + run.count; ++i)
            sum += static_cast<double>(std::hypot(s.re[i], s.im[i]));
        size.push_back(sum);
    }
    const double near = static_cast<double>(n) / 200.0;
    for (std::size_t a = 0; a < s.runs.size();) {
        std::size_t b = a + 1;
        double sum = size[a];
        while (b < s.runs.size() && s.runs[b].position - s.runs[b - 1].position < 2.0 * kRun &&
               s.runs[b].position - s.runs[a].position < near)
            sum += size[b++];
        const double weight = std::pow(sum, -0.4);
        for (; a < b; ++a) s.runs[a].weight = static_cast<float>(weight);
    }
    double total = 0, moment = 0;
    for (std::size_t k = 0; k < s.runs.size(); ++k) {
        const double part = size[k] * static_cast<double>(s.runs[k].weight);
        total += part;
        moment += part * s.runs[k].position;
    }
    s.size = total;
    s.center = total > 0 ? moment / total : 0.0;
    for (std::size_t k = 0; k < s.runs.size(); ++k) {
        Signal::Run& run = s.runs[k];
        run.position = (run.position - s.center) / static_cast<double>(n);
        run.share = size[k] * static_cast<double>(run.weight) / total;
    }
}

Signal SignalOf(const Smoothed& row)
{
    Signal s;
    const std::size_t n = row.re.size();
    float threshold = Threshold(row);
    while (CountAbove(row, threshold) > kMostSignal) threshold *= 1.4F;
    for (std::size_t i = 0; i < n;) {
        if (!(row.magnitude[i] > threshold)) {
            ++i;
            continue;
        }
        std::size_t to = i;
        while (to < n && to - i < kRun && row.magnitude[to] > threshold) ++to;
        AddRun(s, row.re, row.im, i, to);
        i = to;
    }
    WeighRuns(s, n);
    return s;
}

/// Cosine and sine of an angle to 3e-6, from a table: the phases ask for them hundreds of thousands of times.
struct Unit {
    float c, d;
};

Unit UnitAt(double degrees)
{
    constexpr int kSteps = 4; // a degree
    static const auto table = [] {
        std::array<Unit, 360 * kSteps + 1> t{};
        for (std::size_t i = 0; i < t.size(); ++i) {
            const double angle = static_cast<double>(i) / kSteps * kRadians;
            t[i] = {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
        }
        return t;
    }();
    const double place = (degrees - 360.0 * std::floor(degrees / 360.0)) * kSteps;
    const auto at = static_cast<std::size_t>(std::clamp(place, 0.0, 360.0 * kSteps - 1.0));
    const auto part = static_cast<float>(place - static_cast<double>(at));
    const Unit &a = table[at], &b = table[at + 1];
    return {a.c + part * (b.c - a.c), a.d + part * (b.d - a.d)};
}

/// Sums of a run's real part turned by an angle: absolute, and as it is.
struct Sums {
    double absolute = 0, plain = 0;
};
Sums SumsAt(const Signal& s, const Signal::Run& run, double degrees)
{
    const auto [c, d] = UnitAt(degrees);
    const float *re = s.re.data() + run.first, *im = s.im.data() + run.first;
    std::array<float, kLanes> absolute{}, plain{};
    std::size_t i = 0;
    for (; i + kLanes <= run.count; i += kLanes)
        for (std::size_t k = 0; k < kLanes; ++k) {
            const float x = c * re[i + k] - d * im[i + k];
            plain[k] += x;
            absolute[k] += std::fabs(x);
        }
    Sums sums;
    for (; i < run.count; ++i) {
        const float x = c * re[i] - d * im[i];
        sums.plain += static_cast<double>(x);
        sums.absolute += static_cast<double>(std::fabs(x));
    }
    for (std::size_t k = 0; k < kLanes; ++k) {
        sums.plain += static_cast<double>(plain[k]);
        sums.absolute += static_cast<double>(absolute[k]);
    }
    return sums;
}

double AngleAt(const Signal::Run& run, const Phases& p)
{
    return p.p0 + p.p1 * run.position;
}

/// Share of the signal that the real part shows; with `same`, negative parts count twice more. Small is good.
double AbsoluteCost(const Signal& s, const Phases& p, bool same)
{
    double cost = 0;
    for (const Signal::Run& run : s.runs) {
        const Sums sums = SumsAt(s, run, AngleAt(run, p));
        const double negative = sums.absolute - sums.plain;
        cost += static_cast<double>(run.weight) * (sums.absolute + (same ? negative : 0.0));
    }
    return cost / s.size;
}

/// Entropy of the derivative of the real part: the fewer points hold its changes, the sharper are the lines. With
/// `same`, a negative part counts against it.
double EntropyCost(const Signal& s, const Phases& p, bool same)
{
    double sum = 0, product = 0;
    for (const Signal::Run& run : s.runs) {
        const auto [c, d] = UnitAt(AngleAt(run, p));
        float last = c * s.re[run.first] - d * s.im[run.first];
        for (std::size_t i = run.first + 1; i < run.first + run.count; ++i) {
            const float x = c * s.re[i] - d * s.im[i];
            const float step = run.weight * std::fabs(x - last);
            last = x;
            if (!(step > 0.0F)) continue;
            sum += static_cast<double>(step);
            product += static_cast<double>(step * std::log(step));
        }
    }
    const double entropy = sum > 0.0 ? std::log(sum) - product / sum : 0.0;
    return entropy + (same ? AbsoluteCost(s, p, true) : 0.0);
}

/// Phases that single lines, or the tails of groups of them, ask for.
struct Terms {
    struct Term {
        double position, weight, angle_deg;
        double width_deg; ///< off phase by that costs half of all
    };
    std::vector<Term> terms;
    double share = 0; ///< of the whole cost

    /// 0 in phase, 1 far out: how far hardly matters, so that few bad ones decide nothing.
    static double OneCost(const Term& t, double turned_deg, bool same)
    {
        const double turn = same ? 360.0 : 180.0, off_deg = t.angle_deg + turned_deg;
        const double off = (off_deg - turn * std::nearbyint(off_deg / turn)) / t.width_deg;
        return off * off / (1.0 + off * off);
    }

    double Cost(const Phases& p, bool same) const
    {
        double cost = 0;
        for (const Term& t : terms) cost += t.weight * OneCost(t, p.p0 + p.p1 * t.position, same);
        return cost;
    }

    /// The weights' sum becomes 1, less where all of them together are hardly worth one.
    void Level(double doubt)
    {
        double total = doubt;
        for (const Term& t : terms) total += t.weight;
        for (Term& t : terms) t.weight /= total;
    }
};

Terms LineTermsOf(const std::vector<LinePhase>& lines, double center, std::size_t n)
{
    Terms terms{{}, kLineShare};
    for (const LinePhase& l : lines) {
        const double doubt = 0.0025 + l.misfit * l.misfit + 0.1 * l.overlap * l.overlap;
        terms.terms.push_back(
            {(l.point - center) / static_cast<double>(n), std::sqrt(l.height) / doubt, l.angle_deg, 22.0});
    }
    terms.Level(1e-300);
    return terms;
}

Terms TailTermsOf(const std::vector<TailPhase>& tails, double center, std::size_t n)
{
    Terms terms{{}, kTailShare};
    for (const TailPhase& t : tails) {
        const double doubt = t.error_deg / 2.0;
        terms.terms.push_back({(t.point - center) / static_cast<double>(n),
                               std::sqrt(t.height / tails.front().height) / (1.0 + doubt * doubt), t.angle_deg,
                               std::hypot(10.0, 3.0 * t.error_deg)});
    }
    terms.Level(1.0);
    return terms;
}

/// What a block of neighbouring runs adds to AbsoluteCost at each angle, as if all its points turned alike.
struct Block {
    double position = 0;
    std::array<float, kAngles> one_sign{}, both_signs{};
};

/// Every other point of the long runs: enough for a first look.
Signal Coarse(const Signal& fine)
{
    Signal s;
    s.size = fine.size;
    s.center = fine.center;
    for (const Signal::Run& run : fine.runs) {
        const std::size_t step = run.count >= 2 * kLanes ? 2 : 1, first = s.re.size();
        for (std::size_t i = run.first; i < run.first + run.count; i += step) {
            s.re.push_back(fine.re[i]);
            s.im.push_back(fine.im[i]);
        }
        s.runs.push_back(run);
        s.runs.back().first = first;
        s.runs.back().count = s.re.size() - first;
        s.runs.back().weight *= static_cast<float>(step);
    }
    return s;
}

std::vector<Block> Blocks(const Signal& s)
{
    constexpr double kWidth = 1.0 / 128.0;
    std::vector<Block> blocks;
    for (std::size_t a = 0; a < s.runs.size();) {
        Block block;
        std::size_t b = a;
        double weight = 0;
        for (; b < s.runs.size() && s.runs[b].position - s.runs[a].position < kWidth; ++b) {
            const Signal::Run& run = s.runs[b];
            const auto w = static_cast<double>(run.weight);
            block.position += run.position * w;
            weight += w;
            for (std::size_t k = 0; k < kAngles / 2; ++k) {
                // Half a turn later only the sign differs.
                const Sums sums = SumsAt(s, run, static_cast<double>(k) * kAngleStep);
                const std::size_t opposite = k + kAngles / 2;
                for (const std::size_t at : {k, opposite})
                    block.both_signs[at] += static_cast<float>(w * sums.absolute);
                block.one_sign[k] += static_cast<float>(w * (2.0 * sums.absolute - sums.plain));
                block.one_sign[opposite] += static_cast<float>(w * (2.0 * sums.absolute + sums.plain));
            }
        }
        block.position /= weight;
        blocks.push_back(block);
        a = b;
    }
    return blocks;
}

/// Adds a block's costs for all zero orders at one first order.
void AddTurned(const std::array<float, kAngles>& table, double turn_deg, std::array<float, kAngles>& costs)
{
    const auto shift = static_cast<std::int64_t>(std::lround(turn_deg / kAngleStep)) % std::int64_t{kAngles};
    const auto first = static_cast<std::size_t>(shift < 0 ? shift + std::int64_t{kAngles} : shift);
    for (std::size_t k = 0; k < kAngles - first; ++k) costs[k] += table[first + k];
    for (std::size_t k = kAngles - first; k < kAngles; ++k) costs[k] += table[first + k - kAngles];
}

struct Rated {
    Phases phases;
    double cost = 0;
};

/// The lowest zero order for one first order.
Rated BestTurn(const std::vector<Block>& blocks, double p1, bool same)
{
    std::array<float, kAngles> costs{};
    for (const Block& b : blocks) AddTurned(same ? b.one_sign : b.both_signs, p1 * b.position, costs);
    const auto lowest = std::ranges::min_element(costs);
    return {{kAngleStep * static_cast<double>(lowest - costs.begin()), p1}, static_cast<double>(*lowest)};
}

/// The lowest places of a grid over both orders, no two of them near each other.
std::vector<Rated> CoarseSearch(const std::vector<Block>& blocks, double size, double known_p1, bool same)
{
    constexpr std::size_t kKept = 4;
    std::vector<Rated> best;
    for (double off = -kLargestPhase1; off <= kLargestPhase1; off += kPhase1Step) {
        Rated line = BestTurn(blocks, known_p1 + off, same);
        // What is far from the known first order must be better to be believed.
        line.cost = line.cost / size + kFarPenalty * std::abs(off) / 360.0;
        best.push_back(line);
    }
    std::vector<Rated> kept;
    for (std::size_t i = 0; i < best.size(); ++i) {
        const bool low =
            (i == 0 || best[i].cost <= best[i - 1].cost) && (i + 1 == best.size() || best[i].cost <= best[i + 1].cost);
        if (low) kept.push_back(best[i]);
    }
    std::ranges::sort(kept, {}, &Rated::cost);
    if (kept.size() > kKept) kept.resize(kKept);
    return kept;
}

/// Nelder and Mead in two dimensions, from a small triangle.
template <class Cost>
Rated Refine(Phases start, double step0, double step1, int rounds, Cost cost)
{
    std::array<Rated, 3> t{Rated{start, 0}, Rated{{start.p0 + step0, start.p1}, 0},
                           Rated{{start.p0, start.p1 + step1}, 0}};
    for (Rated& r : t) r.cost = cost(r.phases);
    const auto mix = [](const Phases& a, const Phases& b, double f) {
        return Phases{a.p0 + f * (b.p0 - a.p0), a.p1 + f * (b.p1 - a.p1)};
    };
    for (int i = 0; i < rounds; ++i) {
        std::ranges::sort(t, {}, &Rated::cost);
        const Phases middle = mix(t[0].phases, t[1].phases, 0.5);
        const auto tried = [&](double f) {
            const Phases p = mix(middle, t[2].phases, f);
            return Rated{p, cost(p)};
        };
        const Rated mirrored = tried(-1.0);
        if (mirrored.cost < t[0].cost) {
            const Rated farther = tried(-2.0);
            t[2] = farther.cost < mirrored.cost ? farther : mirrored;
        } else if (mirrored.cost < t[1].cost) {
            t[2] = mirrored;
        } else {
            const Rated nearer = tried(mirrored.cost < t[2].cost ? -0.5 : 0.5);
            if (nearer.cost < t[2].cost) {
                t[2] = nearer;
            } else {
                for (std::size_t k = 1; k < 3; ++k) {
                    t[k].phases = mix(t[0].phases, t[k].phases, 0.5);
                    t[k].cost = cost(t[k].phases);
                }
            }
        }
    }
    std::ranges::sort(t, {}, &Rated::cost);
    return t[0];
}

/// A spectrum as it is judged.
struct Judged {
    Signal signal;
    std::vector<Block> blocks;
    Terms lines, tails;
    double known_p1 = 0;

    bool Sound() const { return !signal.runs.empty() && signal.size > 0.0 && std::isfinite(signal.size); }

    double Cost(const Phases& p, LineSigns signs) const
    {
        const double far = std::abs(p.p1 - known_p1) / 360.0;
        const bool same = signs == LineSigns::same;
        return AbsoluteCost(signal, p, same) + kFarPenalty * far + lines.share * lines.Cost(p, same) +
               tails.share * tails.Cost(p, same);
    }
};

/// Terms take part in the search as further blocks.
void AddBlocks(Judged& j, const Terms& terms)
{
    for (const Terms::Term& t : terms.terms) {
        Block block;
        block.position = t.position;
        const double share = terms.share * t.weight * j.signal.size;
        for (std::size_t k = 0; k < kAngles; ++k) {
            const double turned = static_cast<double>(k) * kAngleStep;
            block.one_sign[k] = static_cast<float>(share * Terms::OneCost(t, turned, true));
            block.both_signs[k] = static_cast<float>(share * Terms::OneCost(t, turned, false));
        }
        j.blocks.push_back(block);
    }
}

/// What a search came to: the best phases, and the other low places that it left.
struct Found {
    Rated best;
    std::vector<Rated> others;
};

/// Root mean square of the angle between two phases over the signal, degrees; half a turn forgiven.
double Apart(const Signal& s, const Phases& a, const Phases& b)
{
    double best = 1e300;
    for (const double half : {0.0, 180.0}) {
        double sum = 0;
        for (const Signal::Run& run : s.runs) {
            const double off = std::remainder(AngleAt(run, a) - AngleAt(run, b) + half, 360.0);
            sum += run.share * off * off;
        }
        best = std::min(best, std::sqrt(sum));
    }
    return best;
}

/// Largest turn of a point of signal from one phase to the other.
double LargestTurn(const Signal& s, const Phases& from, const Phases& to)
{
    double largest = 0;
    for (const Signal::Run& run : s.runs)
        largest = std::max(largest, std::abs(std::remainder(AngleAt(run, to) - AngleAt(run, from), 360.0)));
    return largest;
}

/// To the bottom of the valley that the phases lie in.
Rated Settle(const Judged& j, const Phases& start, LineSigns signs)
{
    const auto cost = [&](const Phases& p) { return j.Cost(p, signs); };
    Rated best = Refine(Refine(start, 1.0, 5.0, 14, cost).phases, 0.3, 1.5, 8, cost);
    // A single line tells no first order: what is known beforehand stays unless the row says otherwise.
    const Rated known = Refine({best.phases.p0, j.known_p1}, 2.0, 0.0, 10, cost);
    return known.cost <= kAsGood * best.cost ? known : best;
}

/// The best zero order for the known first order: so stands a row that was phased before, whatever its zero order is
/// turned by now.
Rated Home(const Judged& j, LineSigns signs)
{
    const double start = BestTurn(j.blocks, j.known_p1, signs == LineSigns::same).phases.p0;
    return Refine({start, j.known_p1}, kAngleStep / 2.0, 0.0, 12, [&](const Phases& p) { return j.Cost(p, signs); });
}

/// Search and refinement for one opinion on the signs.
Found Propose(const Judged& j, LineSigns signs)
{
    Found found{{{}, 1e300}, {}};
    const auto cost = [&](const Phases& p) { return j.Cost(p, signs); };
    for (const Rated& start : CoarseSearch(j.blocks, j.signal.size, j.known_p1, signs == LineSigns::same)) {
        found.others.push_back(Refine(start.phases, 3.0, 15.0, 5, cost));
        if (found.others.back().cost < found.best.cost) found.best = found.others.back();
    }
    found.best = Settle(j, found.best.phases, signs);
    const Rated home = Home(j, signs);
    if (home.cost <= kAsGoodHome * found.best.cost && Apart(j.signal, home.phases, found.best.phases) < kNearHome)
        found.best = home;
    return found;
}

Sums AllSums(const Signal& s, const Phases& p)
{
    Sums all;
    for (const Signal::Run& run : s.runs) {
        const Sums sums = SumsAt(s, run, AngleAt(run, p));
        all.plain += static_cast<double>(run.weight) * sums.plain;
        all.absolute += static_cast<double>(run.weight) * sums.absolute;
    }
    return all;
}

struct Choice {
    Phases phases;
    LineSigns signs = LineSigns::same;
    PhaseCriterion criterion = PhaseCriterion::one_sign;
    std::vector<Rated> others{};
};

Choice ChoiceOf(const Found& found, LineSigns signs)
{
    const bool same = signs == LineSigns::same;
    return {found.best.phases, signs, same ? PhaseCriterion::one_sign : PhaseCriterion::both_signs, found.others};
}

Choice Choose(const Judged& j, LineSigns expected)
{
    // Lines of both signs must shrink the sum this much to be believed.
    constexpr double kEvidence = 0.9, kOneSign = 0.7, kAllUp = 0.05;
    if (expected != LineSigns::by_evidence) return ChoiceOf(Propose(j, expected), expected);
    const Found same = Propose(j, LineSigns::same), both = Propose(j, LineSigns::alternate);
    const Phases &p = same.best.phases, &q = both.best.phases;
    // Where all groups can point up, and all but exactly, they do: two lines alone could always point either way.
    if (j.tails.terms.size() > 1 && j.tails.Cost(p, true) < kAllUp) return ChoiceOf(same, LineSigns::same);
    const double ratio = AbsoluteCost(j.signal, q, false) / AbsoluteCost(j.signal, p, false);
    // Or the search for one sign has come to the same place, and lines point down there all the same.
    const Sums sums = AllSums(j.signal, p);
    const bool down = std::abs(sums.plain) < kOneSign * sums.absolute;
    if (ratio >= kEvidence && !(down && ratio < 1.02)) return ChoiceOf(same, LineSigns::same);
    return ChoiceOf(both, LineSigns::alternate);
}

/// Takes what is reached from the other proposal, or from its half turn, where that costs less.
void Consider(const Judged& j, const Phases& other, PhaseCriterion criterion, Choice& choice)
{
    const auto cost = [&](const Phases& p) { return j.Cost(p, choice.signs); };
    const double half = cost({other.p0 + 180.0, other.p1}) < cost(other) ? 180.0 : 0.0;
    const Rated reached = Refine({other.p0 + half, other.p1}, 3.0, 15.0, 5, cost);
    if (reached.cost >= cost(choice.phases)) return;
    const Rated settled = Settle(j, reached.phases, choice.signs);
    const bool near = Apart(j.signal, settled.phases, choice.phases) < kNearHome;
    if ((near ? kAsGoodHome : 1.0) * settled.cost >= cost(choice.phases)) return;
    choice.phases = settled.phases;
    choice.criterion = criterion;
}

/// What the lines' own phases and the entropy of the derivative propose, each by itself.
void ConsiderOthers(const Judged& j, Choice& choice)
{
    const bool same = choice.signs == LineSigns::same;
    const auto lines = [&](const Phases& p) { return j.lines.Cost(p, same); };
    const auto entropy = [&](const Phases& p) { return EntropyCost(j.signal, p, same); };
    Consider(j, Refine(choice.phases, 5.0, 20.0, 12, lines).phases, PhaseCriterion::lines, choice);
    Consider(j, Refine(choice.phases, 5.0, 20.0, 12, entropy).phases, PhaseCriterion::entropy, choice);
}

/// How much more the phases cost that are wrong: those turned by the tolerance, and what else the search left.
double Margin(const Judged& j, const Choice& choice)
{
    constexpr double kTolerance = 10.0; // degrees
    const double cost = j.Cost(choice.phases, choice.signs);
    double spread = 0;
    for (const Signal::Run& run : j.signal.runs) spread += run.share * run.position * run.position;
    // A row whose lines stand together shows hardly anything of its first order; nor does it need to.
    const double turn = kTolerance / std::max(std::sqrt(spread), 0.05);
    double nearest = 1e300;
    for (const double sign : {-1.0, 1.0}) {
        const Phases& p = choice.phases;
        nearest = std::min({nearest, j.Cost({p.p0 + sign * kTolerance, p.p1}, choice.signs),
                            j.Cost({p.p0, p.p1 + sign * turn}, choice.signs)});
    }
    for (const Rated& other : choice.others)
        if (Apart(j.signal, other.phases, choice.phases) > kTolerance) nearest = std::min(nearest, other.cost);
    return nearest / cost - 1.0;
}

/// 0 to 1: near 1 when any other phase is clearly worse and the lines agree, near 0 when another one does as well.
double QualityOf(const Judged& j, const Choice& choice)
{
    constexpr double kClear =
        0.2; // margin; of made spectra that were phased wrong by more than 25 degrees all had half
    const double clear = 1.0 - std::exp(-std::max(Margin(j, choice), 0.0) / kClear);
    return clear * (1.0 - j.lines.Cost(choice.phases, choice.signs == LineSigns::same));
}

Judged Judge(const Smoothed& row, double known_p1)
{
    constexpr std::size_t kMany = kMostSignal / 2;
    Judged j{SignalOf(row), {}, {}, {}, known_p1};
    if (!j.Sound()) return j;
    if (j.signal.re.size() > kMany) j.signal = Coarse(j.signal);
    j.blocks = Blocks(Coarse(j.signal));
    j.lines = LineTermsOf(LinesOf(row), j.signal.center, row.re.size());
    j.tails = TailTermsOf(TailsOf(row), j.signal.center, row.re.size());
    AddBlocks(j, j.lines);
    AddBlocks(j, j.tails);
    return j;
}

/// The search, and what it stands on.
struct Looked {
    const Smoothed& row; ///< with its slow part
    LineSigns expected;
    Judged judged;
    bool slow = false; ///< it has one, or may have
    Choice choice{};
    double turned0 = 0, turned1 = 0; ///< how far `judged` is from the row: of point 0, and over the row

    /// The choice as turn of the row: of point 0, and over the row.
    Phases Whole() const
    {
        const double before = judged.signal.center / static_cast<double>(row.re.size());
        return {turned0 + choice.phases.p0 - choice.phases.p1 * before, turned1 + choice.phases.p1};
    }

    /// Judges the row turned by what was found. What is slow in a row that turns is not quite the same.
    void JudgeTurned()
    {
        const Phases whole = Whole();
        Smoothed turned = row;
        Turn(turned, whole.p0, whole.p1);
        Flatten(turned);
        judged = Judge(turned, 0.0);
        turned0 = whole.p0;
        turned1 = whole.p1;
        choice.phases = {};
    }

    /// Searches anew from what was found, as a press on the phased row will, until that finds the same.
    void Steady()
    {
        constexpr int kRounds = 3;
        for (int round = 0; round < kRounds; ++round) {
            // From the first order that it knew, the search would come to the same.
            if (!slow && choice.phases.p1 == judged.known_p1) return;
            if (slow) JudgeTurned();
            if (!judged.Sound()) return;
            judged.known_p1 = choice.phases.p1;
            Choice next = Choose(judged, expected);
            const bool steady =
                next.signs == choice.signs && LargestTurn(judged.signal, choice.phases, next.phases) < kNoTurn / 3.0;
            // Without a slow part nothing is new but what else there is.
            if (steady && !slow) next.phases = choice.phases;
            choice = std::move(next);
            if (steady) return;
        }
    }

    /// A second press must not wander about in what the criteria can't tell apart.
    bool StaysAsIs() const
    {
        const double before = judged.signal.center / static_cast<double>(row.re.size());
        const Phases as_is{-turned0 - turned1 * before, -turned1};
        const double turn = LargestTurn(judged.signal, as_is, choice.phases);
        if (turn < kNoTurn) return true;
        return turn < 90.0 && Apart(judged.signal, as_is, choice.phases) < kNearHome &&
               judged.Cost(as_is, choice.signs) <= kStay * judged.Cost(choice.phases, choice.signs);
    }

    /// Up; where as much points down as up, the way that the row stands.
    void TakeUpright()
    {
        constexpr double kBalanced = 0.02;
        const Sums sums = AllSums(judged.signal, choice.phases);
        const Phases whole = Whole();
        const double middle = whole.p0 + whole.p1 * judged.signal.center / static_cast<double>(row.re.size());
        const bool balanced = std::abs(sums.plain) < kBalanced * sums.absolute;
        if (balanced ? std::abs(std::remainder(middle, 360.0)) > 90.0 : sums.plain < 0.0) choice.phases.p0 += 180.0;
    }
};

} // namespace

RobustPhase Find_Robust_Phase(std::span<const float> re, std::span<const float> im, const PhaseHint& hint)
{
    RobustPhase result;
    const std::size_t n = std::min(re.size(), im.size());
    if (n < 16) return result;
    Smoothed row = SmoothToNoise(re.first(n), im.first(n));
    if (!(row.top > 0.0F) || !std::isfinite(row.top)) return result;
    result.pivot = static_cast<std::int32_t>(std::ranges::max_element(row.magnitude) - row.magnitude.begin());
    const auto factor = static_cast<double>(Thin(row)), points = static_cast<double>(row.re.size());
    Smoothed flat = row;
    const bool slow = Flatten(flat) < 1.5 * kQuieter;
    Looked look{row, hint.signs, Judge(flat, hint.phase1_deg), slow};
    Judged& j = look.judged;
    if (!j.Sound()) return result;
    look.choice = Choose(j, hint.signs);
    if (hint.circle) {
        const PhaseProposal c = hint.circle();
        const double pivot = (c.pivot + 0.5) / factor - 0.5;
        Consider(j, {c.phase0_deg + c.phase1_deg * (j.signal.center - pivot) / points, c.phase1_deg},
                 PhaseCriterion::circle, look.choice);
    }
    ConsiderOthers(j, look.choice);
    look.Steady();
    if (!j.Sound()) return result;
    look.TakeUpright();
    result.quality = 100.0 * std::clamp(QualityOf(j, look.choice), 0.0, 1.0);
    result.alternating = look.choice.signs == LineSigns::alternate;
    const Phases whole = look.Whole();
    if (look.StaysAsIs()) {
        result.criterion = PhaseCriterion::stays_as_is;
        return result;
    }
    result.criterion = look.choice.criterion;
    result.phase1_deg = whole.p1;
    const double pivot = (result.pivot + 0.5) / factor - 0.5;
    result.phase0_deg = std::remainder(whole.p0 + whole.p1 * pivot / points, 360.0);
    return result;
}

} // namespace nmr
