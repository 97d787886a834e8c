#include "ui/canvas/stripes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace nmr {
namespace {

constexpr int kFull = 255; ///< coverage of a whole pixel
constexpr std::size_t kMostParts = 16;
constexpr int kAcross = 16; ///< pixels of one cache line

/// A stripe in rows of the image.
struct Part {
    float top, bottom;
};

/// The premultiplied colour at every coverage.
std::array<QRgb, kFull + 1> Shades(QRgb color)
{
    std::array<QRgb, kFull + 1> shades{};
    for (int i = 0; i <= kFull; ++i)
        shades[static_cast<std::size_t>(i)] =
            qPremultiply(qRgba(qRed(color), qGreen(color), qBlue(color), qAlpha(color) * i / kFull));
    return shades;
}

/// What the parts of one pixel column come down to: rows that all of them cover whole, between rows
/// that must be weighed.
struct Column {
    std::array<Part, kMostParts> parts;
    std::size_t count = 0;
    int first = 0, core_first = 0, core_last = 0, last = 0;
};

void Add(Column& column, Part part, float height)
{
    part = {std::max(part.top, 0.0F), std::min(part.bottom, height)};
    if (part.top < part.bottom && column.count < kMostParts) column.parts[column.count++] = part;
}

void FindRows(Column& column)
{
    column.first = column.core_first = column.core_last = column.last = 0;
    if (column.count == 0) return;
    float highest = column.parts[0].top, lowest = column.parts[0].bottom, core_top = highest, core_bottom = lowest;
    for (std::size_t i = 1; i < column.count; ++i) {
        highest = std::min(highest, column.parts[i].top);
        lowest = std::max(lowest, column.parts[i].bottom);
        core_top = std::max(core_top, column.parts[i].top);
        core_bottom = std::min(core_bottom, column.parts[i].bottom);
    }
    column.first = static_cast<int>(highest);
    column.last = static_cast<int>(std::ceil(lowest));
    column.core_first = static_cast<int>(std::ceil(core_top));
    column.core_last = static_cast<int>(core_bottom);
    if (column.core_first >= column.core_last) column.core_first = column.core_last = column.last;
}

class Painter {
public:
    Painter(QImage& image, QRgb color, float share) :
        bits_(reinterpret_cast<QRgb*>(image.bits())), pitch_(image.bytesPerLine() / 4), shades_(Shades(color)),
        scale_(share * kFull), steps_(static_cast<std::size_t>(image.height()) + 3)
    {
    }

    /// Columns side by side from x on. Where they share whole rows, these are filled across: writing
    /// down a column touches a cache line for every pixel.
    void Fill(int x, std::span<const Column> columns)
    {
        int from = 0, to = std::numeric_limits<int>::max();
        for (const Column& column : columns) {
            const bool whole = Covered(static_cast<float>(column.count)) == kFull;
            from = std::max(from, column.core_first);
            to = std::min(to, whole ? column.core_last : 0);
        }
        if (from >= to) from = to = 0;
        for (int y = from; y < to; ++y) std::fill_n(bits_ + y * pitch_ + x, columns.size(), shades_[kFull]);
        for (const Column& column : columns) Fill(x++, column, from, to);
    }

private:
    int Covered(float parts) const { return std::min(kFull, static_cast<int>(parts * scale_ + 0.5F)); }

    /// Everything but the rows from..to, which are done.
    void Fill(int x, const Column& column, int from, int to)
    {
        if (column.count == 0) return;
        for (std::size_t i = 0; i < column.count; ++i) AddSteps(column.parts[i]);
        int covered = Weigh(x, column.first, column.core_first, 0);
        if (column.core_first < column.core_last) {
            covered += std::exchange(Step(column.core_first), 0);
            const QRgb shade = Shade(covered);
            const bool split = from < to;
            Run(x, column.core_first, split ? from : column.core_last, shade);
            if (split) Run(x, to, column.core_last, shade);
            Weigh(x, column.core_last, column.last, covered);
        }
        Step(column.last) = Step(column.last + 1) = 0;
    }

    int& Step(int row) { return steps_[static_cast<std::size_t>(row)]; }

    /// What a part covers of row after row is a sum of four steps: its first row and the one below it
    /// rise, its last row and the one below that fall.
    void AddSteps(const Part& part)
    {
        const int first = static_cast<int>(part.top), last = static_cast<int>(part.bottom);
        const int rise = Fixed(static_cast<float>(first + 1) - part.top);
        const int fall = Fixed(static_cast<float>(last + 1) - part.bottom);
        Step(first) += rise;
        Step(first + 1) += Fixed(1) - rise;
        Step(last) -= fall;
        Step(last + 1) -= Fixed(1) - fall;
    }

    int Fixed(float share) const { return static_cast<int>(share * scale_ * kOne); }
    QRgb Shade(int covered) const
    {
        return shades_[static_cast<std::size_t>(std::clamp((covered + kOne / 2) / kOne, 0, kFull))];
    }

    void Run(int x, int first, int last, QRgb shade)
    {
        QRgb* pixel = bits_ + first * pitch_ + x;
        for (int y = first; y < last; ++y, pixel += pitch_) *pixel = shade;
    }

    /// Sums the steps up over rows, which clears them. Returns what the last row is covered by.
    int Weigh(int x, int first, int last, int covered)
    {
        QRgb* pixel = bits_ + first * pitch_ + x;
        for (int y = first; y < last; ++y, pixel += pitch_) {
            covered += std::exchange(Step(y), 0);
            *pixel = Shade(covered);
        }
        return covered;
    }

    static constexpr int kOne = 1 << 16; ///< of the fixed-point coverage
    QRgb* bits_;
    std::ptrdiff_t pitch_;
    std::array<QRgb, kFull + 1> shades_;
    float scale_;
    std::vector<int> steps_; ///< of the coverage from row to row; zero between columns
};

} // namespace

void FillStripes(QImage& image, std::span<const Stripe> stripes, const StripePlace& place, QRgb color)
{
    Painter painter(image, color, static_cast<float>(std::min(1.0, place.width)));
    const auto y = static_cast<float>(place.y), scale = static_cast<float>(place.scale);
    const auto height = static_cast<float>(image.height());
    std::array<Column, kAcross> columns;
    std::size_t next = 0;
    // A stripe belongs to the pixel that holds its middle.
    const auto pixel_of = [&](std::size_t k) {
        return static_cast<int>(std::floor(place.x + (static_cast<double>(k) + 0.5) * place.width));
    };
    for (int x = 0; x < image.width(); x += kAcross) {
        const int end = std::min(x + kAcross, image.width());
        for (Column& column : columns) column.count = 0;

        for (; next < stripes.size() && pixel_of(next) < end; ++next)
            if (const int at = pixel_of(next); at >= x)
                Add(columns[static_cast<std::size_t>(at - x)],
                    {y + stripes[next].top * scale, y + stripes[next].bottom * scale}, height);
        for (Column& column : columns) FindRows(column);
        painter.Fill(x, {columns.data(), static_cast<std::size_t>(end - x)});
    }
}

} // namespace nmr
