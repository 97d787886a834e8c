#include "layout/paper.h"

#include <fmt/format.h>

#include <algorithm>

namespace nmr {
namespace {

constexpr PaperRow kPapers[] = {{0, "A3", 297, 420},      {1, "A4", 210, 297},      {2, "A4(small)", 210, 297},
                                {3, "A5", 148, 210},      {4, "B4", 250, 354},      {5, "B5", 182, 257},
                                {93, "A4 Half", 210, 83}, {94, "A4 Full", 210, 175}};

} // namespace

std::span<const PaperRow> Papers()
{
    return kPapers;
}

const PaperRow& PaperOf(int code)
{
    const auto row = std::ranges::find(kPapers, code, &PaperRow::code);
    return row == std::end(kPapers) ? kPapers[1] : *row;
}

RectD PaperSizeOf(int code, Orientation orientation)
{
    const PaperRow& row = PaperOf(code);
    if (orientation == Orientation::landscape) return {0, 0, row.height_mm, row.width_mm};
    return {0, 0, row.width_mm, row.height_mm};
}

std::string PaperCaption(int code, Orientation orientation, PaperUnit unit)
{
    const RectD size = PaperSizeOf(code, orientation);
    const double factor = unit == PaperUnit::cm ? 0.1 : 1;
    return fmt::format("{}: {:g}x{:g} {} {}", PaperOf(code).name, size.width * factor, size.height * factor,
                       unit == PaperUnit::cm ? "cm" : "mm",
                       orientation == Orientation::landscape ? "Landscape" : "Portrait");
}

} // namespace nmr
