#include "layout/peak_marks.h"

#include "core/numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kLeader = 1.4;    // height of the slanted part of a line, in letter heights
constexpr double kGap = 0.3;       // between label and line, and above a top, likewise
constexpr double kRowPitch = 1.05; // of labels beside each other, likewise
constexpr double kMostAside = 9;   // labels' pitches that a label may stand off its peak
constexpr double kCross = 0.15;    // half of the cross on a top between the samples, likewise
constexpr int kMostDigits = 9;

std::string TextOf(const DataSet& set, const PeakEntry& peak, std::size_t number, const Settings& settings)
{
    const bool hz = settings.default_peak_unit == 1;
    const int digits = std::clamp(settings.default_peak_digit, 0, kMostDigits);
    const std::string position = fmt::format("{:.{}f}", hz ? PeakHz(set, peak) : PeakPpm(set, peak), digits);
    if (settings.peak_num_disp == 0) return position;
    return fmt::format("{}: {}", number, position);
}

struct PlacedLabel {
    double wanted; ///< place of the peak
    const PeakLabel* label;
};

/// Room for a row of labels: how near they may stand, how far off their peaks, and between which limits.
struct LabelRoom {
    double pitch, aside, low, high;
    bool Holds(const std::vector<PlacedLabel>& row) const
    {
        double next = low;
        for (const PlacedLabel& placed : row) {
            const double at = std::max(next, placed.wanted - aside);
            if (at > std::min(high, std::max(low, placed.wanted + aside))) return false;
            next = at + pitch;
        }
        return true;
    }
};

/// Labels that fit side by side without standing so far off that their lines can't be followed: the tallest in
/// sight first, each with its room; in the order of the plot.
std::vector<PlacedLabel> Fitting(const PeakMarks& marks, const PlotFrame& frame, const LabelRoom& room)
{
    std::vector<PlacedLabel> seen, row;
    for (const PeakLabel& label : marks.labels)
        if (!label.text.empty() && label.ppm <= frame.left_ppm && label.ppm >= frame.right_ppm)
            seen.push_back({frame.X(label.ppm), &label});
    std::ranges::stable_sort(seen, std::ranges::greater{},
                             [](const PlacedLabel& placed) { return std::abs(placed.label->top); });
    const auto most = static_cast<std::size_t>(std::max(1.0, std::floor((room.high - room.low) / room.pitch) + 1));
    for (const PlacedLabel& placed : seen) {
        if (row.size() == most) break;
        const auto at = row.insert(std::ranges::upper_bound(row, placed.wanted, {}, &PlacedLabel::wanted), placed);
        if (!room.Holds(row)) row.erase(at);
    }
    return row;
}

void DrawTops(Canvas& canvas, const PlotFrame& frame, const PeakMarks& marks, double letter)
{
    std::vector<Segment> lines;
    for (const PeakLabel& label : marks.labels) {
        const double x = frame.X(label.ppm), y = frame.Y(label.top);
        if (x < frame.rect.x || x > frame.rect.right() || y < frame.rect.y || y > frame.rect.bottom()) continue;
        const double from = y - std::copysign(kGap * letter * 0.5, label.top);
        lines.push_back({{x, from}, {x, from - std::copysign(std::max(marks.top_height, 0.3) * letter, label.top)}});
    }
    for (const PeakLabel& label : marks.labels) {
        if (!label.between) continue;
        const double x = frame.X(label.between->ppm), y = frame.Y(label.between->amplitude), arm = kCross * letter;
        if (x < frame.rect.x || x > frame.rect.right() || y < frame.rect.y || y > frame.rect.bottom()) continue;
        lines.push_back({{x - arm, y - arm}, {x + arm, y + arm}});
        lines.push_back({{x - arm, y + arm}, {x + arm, y - arm}});
    }
    canvas.SetPen(marks.top);
    canvas.Lines(lines);
}

} // namespace

std::vector<double> SpreadApart(const std::vector<double>& wanted, double distance, double low, double high)
{
    // Without the distances the task is the nearest rising sequence: neighbours in the wrong order share
    // their mean.
    struct Group {
        double sum = 0;
        std::size_t count = 0;
        double mean() const { return sum / static_cast<double>(count); }
    };
    std::vector<Group> groups;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        groups.push_back({wanted[i] - static_cast<double>(i) * distance, 1});
        while (groups.size() > 1 && groups[groups.size() - 2].mean() >= groups.back().mean()) {
            groups[groups.size() - 2].sum += groups.back().sum;
            groups[groups.size() - 2].count += groups.back().count;
            groups.pop_back();
        }
    }
    const double most = high - static_cast<double>(wanted.size() > 0 ? wanted.size() - 1 : 0) * distance;
    std::vector<double> placed;
    for (const Group& group : groups)
        for (std::size_t i = 0; i < group.count; ++i)
            placed.push_back(std::clamp(group.mean(), low, std::max(low, most)) +
                             static_cast<double>(placed.size()) * distance);
    return placed;
}

PeakMarks MakePeakMarks(const DataSet& set, std::span<const float> row, const Settings& settings, Rgba text)
{
    PeakMarks marks;
    if (settings.peak_pick_disp == 0 || row.empty()) return marks;
    for (std::size_t i = 0; i < set.Peaks.size(); ++i) {
        const PeakEntry& peak = set.Peaks[i];
        const auto index = std::min(static_cast<std::size_t>(PeakIndex(set, peak)), row.size() - 1);
        PeakLabel label{PeakPpm(set, peak), static_cast<double>(row[index]), TextOf(set, peak, i + 1, settings), {}};
        if (settings.interpolate_tops == 1) label.between = TopBetween(set, row, static_cast<std::int32_t>(index));
        marks.labels.push_back(std::move(label));
    }
    std::ranges::stable_sort(marks.labels, std::ranges::greater{}, &PeakLabel::ppm);
    marks.at_bottom = set.PeakFlags != 0;
    marks.show_tops = settings.peak_top_disp != 0;
    marks.top_height = settings.peak_top_height;
    marks.line = {text, std::clamp(settings.disp_peak_width, 1.0, 20.0), PenStyle::solid};
    marks.text = text;
    marks.font = {"Liberation Sans", std::clamp(settings.peak_data_size, 6.0, 72.0) * 96 / 72,
                  settings.peak_data_bold != 0, settings.peak_data_italic != 0};
    return marks;
}

double PeakRowHeight(Canvas& canvas, const PeakMarks& marks)
{
    const auto longest =
        std::ranges::max_element(marks.labels, {}, [](const PeakLabel& label) { return label.text.size(); });
    if (longest == marks.labels.end() || longest->text.empty()) return 0;
    // Digits are equally wide, so one label tells for all, in each paint.
    canvas.SetFont(marks.font);
    const double widest = canvas.Measure(longest->text).width;
    return widest + (kLeader + 2 * kGap) * canvas.Measure("X").height();
}

void DrawPeakMarks(Canvas& canvas, const PlotFrame& frame, const PeakMarks& marks, double row_y)
{
    canvas.SetFont(marks.font);
    const TextExtent letter = canvas.Measure("X");
    const double pitch = kRowPitch * letter.height();
    if (marks.show_tops) DrawTops(canvas, frame, marks, letter.height());
    const LabelRoom room{pitch, kMostAside * pitch, frame.rect.x + pitch / 2,
                         std::max(frame.rect.right() - pitch / 2, frame.rect.x + pitch / 2)};
    const auto labels = Fitting(marks, frame, room);
    std::vector<double> wanted;
    for (const PlacedLabel& placed : labels) wanted.push_back(placed.wanted);
    const auto places = SpreadApart(wanted, pitch, room.low, room.high);
    // Below the axis everything is turned upside down.
    const double down = marks.at_bottom ? -1 : 1;
    const double text_y = row_y - down * (kLeader + kGap) * letter.height();
    std::vector<Segment> lines;
    canvas.SetPen({marks.text, 1, PenStyle::solid});
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const double peak = frame.Y(labels[i].label->top) - kGap * letter.height();
        const double foot = marks.at_bottom ? row_y : std::clamp(peak, row_y, frame.rect.bottom());
        lines.push_back({{places[i], text_y + down * kGap * letter.height()}, {wanted[i], row_y}});
        // Long lines through the plot would hide it: a short one shows the way.
        if (!marks.at_bottom)
            lines.push_back({{wanted[i], row_y}, {wanted[i], std::min(foot, row_y + 0.8 * letter.height())}});
        const double middle = places[i] + (letter.ascent - letter.descent) / 2;
        canvas.Text({middle, text_y}, labels[i].label->text, marks.at_bottom ? TextAlign::right : TextAlign::left, 90);
    }
    canvas.SetPen(marks.line);
    canvas.Lines(lines);
}

} // namespace nmr
