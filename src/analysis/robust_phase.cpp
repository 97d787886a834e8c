#include "analysis/robust_phase.h"

#include "analysis/line_phases.h"
#include "analysis/phase.h"
#include "analysis/smoothed_row.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <future>
#include <numbers>
#include <vector>

namespace nmr {

namespace {

constexpr double kRadians = std::numbers::pi / 180.0;
constexpr std::size_t kRun = 64; ///< points that share one rotation
constexpr std::size_t kLanes = 8;
constexpr std::size_t kAngles = 120; ///< of the table of a block, over a full turn
constexpr double kAngleStep = 360.0 / static_cast<double>(kAngles);
constexpr double kLargestPhase1 = 1080.0; ///< off what is known
constexpr double kPhase1Step = 20.0;
constexpr double kFarPenalty = 0.1; ///< of the cost, for each turn of first order off what is known
constexpr double kFeetShare = 0.5;
constexpr double kLineShare = 0.45;
constexpr double kAsGood = 1.015;          ///< cost of what is known beforehand, over that of the best
constexpr double kStay = 1.08;             ///< cost of the row as it stands, over that of the best
constexpr double kNoTurn = 1.0;            ///< degrees that are not worth a change
constexpr std::size_t kSideBySide = 16384; ///< points from which a thread is worth its start

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

/// Difference between the two feet of a line. In phase, only the dispersion has one: it is then imaginary. A base
/// line that rolls slowly hardly tells on it.
struct Feet {
    double position, weight, angle_deg;
};

std::vector<Feet> FeetOf(const Smoothed& row, double center)
{
    constexpr std::size_t kMostLines = 60;
    const std::size_t n = row.re.size();
    std::vector<std::size_t> tops;
    const auto least = static_cast<float>(std::max(0.02 * static_cast<double>(row.top), 8.0 * row.noise));
    for (std::size_t i = 1; i + 1 < n; ++i)
        if (row.magnitude[i] > least && row.magnitude[i] >= row.magnitude[i - 1] &&
            row.magnitude[i] > row.magnitude[i + 1])
            tops.push_back(i);
    std::ranges::sort(tops, [&](std::size_t a, std::size_t b) { return row.magnitude[a] > row.magnitude[b]; });
    if (tops.size() > kMostLines) tops.resize(kMostLines);
    std::vector<Feet> feet;
    for (const std::size_t i : tops) {
        std::size_t width = 1; // half, at half height
        while (width < n / 16 && i >= width && i + width < n &&
               std::max(row.magnitude[i - width], row.magnitude[i + width]) > 0.5F * row.magnitude[i])
            ++width;
        const std::size_t near = 2 * width, far = 5 * width;
        if (i < far || i + far >= n) continue;
        double re = 0, im = 0;
        for (std::size_t k = near; k <= far; ++k) {
            re += static_cast<double>(row.re[i + k]) - static_cast<double>(row.re[i - k]);
            im += static_cast<double>(row.im[i + k]) - static_cast<double>(row.im[i - k]);
        }
        if (re == 0.0 && im == 0.0) continue;
        feet.push_back({(static_cast<double>(i) - center) / static_cast<double>(n),
                        std::pow(static_cast<double>(row.magnitude[i]), 0.6), std::atan2(im, re) / kRadians});
    }
    double total = 0;
    for (const Feet& f : feet) total += f.weight;
    for (Feet& f : feet) f.weight /= total;
    return feet;
}

/// 0 where all feet are even, 1 where all are as uneven as can be.
double FeetCost(const std::vector<Feet>& feet, const Phases& p)
{
    double cost = 0;
    for (const Feet& f : feet)
        cost += f.weight * std::fabs(std::cos((f.angle_deg + p.p0 + p.p1 * f.position) * kRadians));
    return cost;
}

/// The phase that one line asks for.
struct LineTerm {
    double position, weight, angle_deg;
};

std::vector<LineTerm> LineTermsOf(const std::vector<LinePhase>& lines, double center, std::size_t n)
{
    std::vector<LineTerm> terms;
    double total = 0;
    for (const LinePhase& l : lines) {
        const double doubt = 0.0025 + l.misfit * l.misfit + 0.1 * l.overlap * l.overlap;
        const double weight = std::sqrt(l.height) / doubt;
        terms.push_back({(l.point - center) / static_cast<double>(n), weight, l.angle_deg});
        total += weight;
    }
    for (LineTerm& t : terms) t.weight /= total;
    return terms;
}

/// 0 where the line is in phase, 1 where it is far out: how far hardly matters, so that few bad ones decide nothing.
double LineTermCost(double off_deg, bool same)
{
    constexpr double kWidth = 22.0;
    const double off = std::remainder(off_deg, same ? 360.0 : 180.0) / kWidth;
    return off * off / (1.0 + off * off);
}

double LineCost(const std::vector<LineTerm>& terms, const Phases& p, bool same)
{
    double cost = 0;
    for (const LineTerm& t : terms) cost += t.weight * LineTermCost(t.angle_deg + p.p0 + p.p1 * t.position, same);
    return cost;
}

/// What a block of neighbouring runs adds to AbsoluteCost at each angle, as if all its points turned alike.
struct Block {
    double position = 0;
    std::array<float, kAngles> one_sign{}, both_signs{};
};

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

/// The lowest places of a grid over both orders, no two of them near each other.
std::vector<Rated> CoarseSearch(const std::vector<Block>& blocks, double size, double known_p1, bool same)
{
    constexpr std::size_t kKept = 4;
    std::vector<Rated> best;
    for (double off = -kLargestPhase1; off <= kLargestPhase1; off += kPhase1Step) {
        std::array<float, kAngles> costs{};
        for (const Block& b : blocks) AddTurned(same ? b.one_sign : b.both_signs, (known_p1 + off) * b.position, costs);
        const auto lowest = std::ranges::min_element(costs);
        const double p0 = kAngleStep * static_cast<double>(lowest - costs.begin());
        Rated line{{p0, known_p1 + off}, static_cast<double>(*lowest)};
        // What is far from the known first order must be better to be believed.
        line.cost = line.cost / size * (1.0 + kFarPenalty * std::abs(off) / 360.0);
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
    std::vector<Feet> feet;
    std::vector<LineTerm> lines;
    double known_p1 = 0;

    double Cost(const Phases& p, LineSigns signs) const
    {
        const double far = std::abs(p.p1 - known_p1) / 360.0;
        return AbsoluteCost(signal, p, signs == LineSigns::same) * (1.0 + kFarPenalty * far) +
               kFeetShare * FeetCost(feet, p) + kLineShare * LineCost(lines, p, signs == LineSigns::same);
    }
};

/// The lines' phases take part in the search as further blocks.
void AddLineBlocks(Judged& j)
{
    for (const LineTerm& t : j.lines) {
        Block block;
        block.position = t.position;
        const double share = kLineShare * t.weight * j.signal.size;
        for (std::size_t k = 0; k < kAngles; ++k) {
            const double off = t.angle_deg + static_cast<double>(k) * kAngleStep;
            block.one_sign[k] = static_cast<float>(share * LineTermCost(off, true));
            block.both_signs[k] = static_cast<float>(share * LineTermCost(off, false));
        }
        j.blocks.push_back(block);
    }
}

/// What a search came to: the best phases, and the other low places that it left.
struct Found {
    Rated best;
    std::vector<Rated> others;
};

/// Search and refinement for one opinion on the signs.
Found Propose(const Judged& j, LineSigns signs)
{
    Found found{{{}, 1e300}, {}};
    const auto cost = [&](const Phases& p) { return j.Cost(p, signs); };
    for (const Rated& start : CoarseSearch(j.blocks, j.signal.size, j.known_p1, signs == LineSigns::same)) {
        found.others.push_back(Refine(start.phases, 3.0, 15.0, 5, cost));
        if (found.others.back().cost < found.best.cost) found.best = found.others.back();
    }
    Rated& best = found.best;
    best = Refine(best.phases, 1.0, 5.0, 16, cost);
    // A single line tells no first order: what is known beforehand stays unless the row says otherwise.
    const Rated known = Refine({best.phases.p0, j.known_p1}, kAngleStep, 0.0, 12, cost);
    if (known.cost <= kAsGood * best.cost) best = known;
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
    constexpr double kEvidence = 0.9, kOneSign = 0.7;
    if (expected != LineSigns::by_evidence) return ChoiceOf(Propose(j, expected), expected);
    const Found same = Propose(j, LineSigns::same), both = Propose(j, LineSigns::alternate);
    const Phases &p = same.best.phases, &q = both.best.phases;
    const double ratio = AbsoluteCost(j.signal, q, false) / AbsoluteCost(j.signal, p, false);
    // Or the search for one sign has come to the same place, and lines point down there all the same.
    const Sums sums = AllSums(j.signal, p);
    const bool down = std::abs(sums.plain) < kOneSign * sums.absolute;
    if (ratio >= kEvidence && !(down && ratio < 1.02)) return ChoiceOf(same, LineSigns::same);
    return ChoiceOf(both, LineSigns::alternate);
}

/// Takes the other proposal, or its half turn, where it costs less.
void Consider(const Judged& j, const Phases& other, PhaseCriterion criterion, Choice& choice)
{
    for (const double half : {0.0, 180.0}) {
        const Phases turned{other.p0 + half, other.p1};
        if (j.Cost(turned, choice.signs) >= j.Cost(choice.phases, choice.signs)) continue;
        choice.phases = turned;
        choice.criterion = criterion;
    }
}

/// What the lines' own phases and the entropy of the derivative propose, each by itself.
void ConsiderOthers(const Judged& j, Choice& choice)
{
    const bool same = choice.signs == LineSigns::same;
    const auto lines = [&](const Phases& p) { return LineCost(j.lines, p, same); };
    const auto entropy = [&](const Phases& p) { return EntropyCost(j.signal, p, same); };
    Consider(j, Refine(choice.phases, 5.0, 20.0, 12, lines).phases, PhaseCriterion::lines, choice);
    Consider(j, Refine(choice.phases, 5.0, 20.0, 12, entropy).phases, PhaseCriterion::entropy, choice);
}

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
    return clear * (1.0 - LineCost(j.lines, choice.phases, choice.signs == LineSigns::same));
}

/// The row is as good as it stands: a second press must not wander about in what the criteria can't tell apart.
bool StaysAsIs(const Judged& j, const Choice& choice)
{
    const bool hardly_turns = std::ranges::all_of(j.signal.runs, [&](const Signal::Run& run) {
        return std::abs(std::remainder(AngleAt(run, choice.phases), 360.0)) < kNoTurn;
    });
    return hardly_turns || j.Cost({}, choice.signs) <= kStay * j.Cost(choice.phases, choice.signs);
}

} // namespace

RobustPhase Find_Robust_Phase(std::span<const float> re, std::span<const float> im, const PhaseHint& hint)
{
    RobustPhase result;
    const std::size_t n = std::min(re.size(), im.size());
    if (n < 16) return result;
    Smoothed row = SmoothToNoise(re.first(n), im.first(n));
    if (!(row.top > 0.0F) || !std::isfinite(row.top)) return result;
    result.pivot = static_cast<std::int32_t>(std::ranges::max_element(row.magnitude) - row.magnitude.begin());
    const auto factor = static_cast<double>(Thin(row));
    Flatten(row);
    Judged j{SignalOf(row), {}, {}, {}, hint.phase1_deg};
    if (j.signal.runs.empty() || !(j.signal.size > 0.0) || !std::isfinite(j.signal.size)) return result;
    j.blocks = Blocks(j.signal);
    j.feet = FeetOf(row, j.signal.center);
    j.lines = LineTermsOf(LinesOf(row), j.signal.center, row.re.size());
    AddLineBlocks(j);
    // The middle of the signal as a point of the whole row.
    const double center = (j.signal.center + 0.5) * factor - 0.5, points = static_cast<double>(n);
    Choice choice = Choose(j, hint.signs);
    if (hint.circle) {
        const PhaseProposal c = hint.circle();
        Consider(j, {c.phase0_deg + c.phase1_deg * (center - c.pivot) / points, c.phase1_deg}, PhaseCriterion::circle,
                 choice);
    }
    ConsiderOthers(j, choice);
    if (AllSums(j.signal, choice.phases).plain < 0.0) choice.phases.p0 += 180.0;
    result.quality = 100.0 * std::clamp(QualityOf(j, choice), 0.0, 1.0);
    result.alternating = choice.signs == LineSigns::alternate;
    if (StaysAsIs(j, choice)) {
        result.criterion = PhaseCriterion::stays_as_is;
        return result;
    }
    result.criterion = choice.criterion;
    result.phase1_deg = choice.phases.p1;
    result.phase0_deg = std::remainder(choice.phases.p0 + choice.phases.p1 * (result.pivot - center) / points, 360.0);
    return result;
}

LineSigns Expected_Signs(const ParamBlock& par)
{
    for (const std::string* text : {&par.EXMOD, &par.PulseProg, &par.ExpTitle})
        for (const char* word : {"dept", "apt", "jmod", "attach"})
            if (ContainsNoCase(*text, word)) return LineSigns::alternate;
    return LineSigns::by_evidence;
}

double Auto_Phase_Robust(GlobalBlock& g, std::int32_t n, double known_phase1_deg)
{
    const int slot = g.CurrentMultiSlot;
    DataSet& set = g.Slots[static_cast<std::size_t>(slot > 0 && slot < kSlotCount ? slot : 0)];
    const auto row = static_cast<std::size_t>(std::max<std::int32_t>(g.CurrentRow, 0));
    auto count = static_cast<std::size_t>(std::max(n, 0));
    for (const RowArray<float>* a : {&set.spec.SourceRe, &set.spec.SourceIm})
        count = std::min(count, row < a->rows() ? a->columns() : 0);
    if (count == 0) return 0.0;
    // The circle fit is one of the proposals. It works on the block and on the shown row, the search on the source
    // alone: side by side they take the time of one.
    const LineSigns signs = Expected_Signs(set.par);
    auto circle = std::async(count < kSideBySide ? std::launch::deferred : std::launch::async, [&g, count] {
        Auto_Phase(g, PhaseMode::full, static_cast<std::int32_t>(count));
        return PhaseProposal{static_cast<double>(g.Phase0Deg), static_cast<double>(g.Phase1Deg), g.PivotPoint};
    });
    const RobustPhase found =
        Find_Robust_Phase(set.spec.SourceRe[row].first(count), set.spec.SourceIm[row].first(count),
                          {known_phase1_deg, signs, [&circle] { return circle.get(); }});
    if (circle.valid()) circle.wait(); // a row without lines asks for no proposal
    set.par.PhaseP0 = g.PivotPoint = found.pivot;
    g.P2Point = -1;
    g.Phase0Deg = static_cast<float>(found.phase0_deg);
    g.Phase1Deg = static_cast<float>(found.phase1_deg);
    Phase_Apply(g, g.Phase0Deg, g.Phase1Deg, static_cast<std::int32_t>(count));
    return found.quality;
}

} // namespace nmr
