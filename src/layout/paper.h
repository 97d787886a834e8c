#pragma once
// Sizes of paper, by the codes that settings and pages name them with.

#include "layout/canvas.h"

#include <span>
#include <string>
#include <string_view>

namespace nmr {

struct PaperRow {
    int code;
    std::string_view name;
    double width_mm, height_mm; ///< upright
};
std::span<const PaperRow> Papers();
/// A code that is none of theirs means A4.
const PaperRow& PaperOf(int code);

enum class Orientation { portrait = 1, landscape = 2 }; ///< as PAPER ORIENT has them
/// Width and height in mm as the paper lies.
RectD PaperSizeOf(int code, Orientation orientation);
enum class PaperUnit { mm, cm };
/// "A4: 210x297 mm Portrait".
std::string PaperCaption(int code, Orientation orientation, PaperUnit unit = PaperUnit::mm);

} // namespace nmr
