// Any bytes as a formatted text: drawn, measured, laid out line by line and rewritten.

#include "layout/code_rtf.h"
#include "layout/code_text.h"
#include "support/recording_canvas.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace nmr;
    std::string text(reinterpret_cast<const char*>(data), size);
    const bool current = size % 3 != 0;
    if (current) text.insert(0, "\\<");
    const FontSpec font;
    test::RecordingCanvas canvas;
    CodeTextPlace place{.angle_deg = 30, .right_limit = size % 2 == 0 ? 50.0 : 0.0};
    static_cast<void>(Draw_CodeText(canvas, text, font, place));
    if (!std::isfinite(place.right_limit) || !std::isfinite(place.bottom)) std::abort();
    static_cast<void>(Measure_CodeText(canvas, text, font, 1, Lines::all));
    const std::string tidy = Tidy_Code(text, font);
    if (Plain_From_Code(tidy) != Plain_From_Code(text)) std::abort();
    if (Tidy_Code(tidy, font) != tidy) std::abort();
    static_cast<void>(Code_To_Group(text));
    if (!text.empty() && !Code_To_Rtf(text, font, 10).starts_with("{\\rtf1")) std::abort();
    // Line by line it comes to an end, and each line takes something.
    constexpr std::size_t kLongest = 500; // each line copies the rest
    std::string rest = text.size() < kLongest ? text : std::string();
    for (std::size_t lines = 0; !rest.empty(); ++lines) {
        CodeTextPlace line{.direction = 0, .one_line = true, .right_limit = 50};
        rest = Draw_CodeText(canvas, rest, font, line);
        if (lines > 2 * size + 2) std::abort();
    }
    return 0;
}
