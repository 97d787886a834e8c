// Any bytes as a formatted text and as rich text: read, drawn, measured and rewritten.

#include "layout/code_rtf.h"
#include "layout/code_text.h"
#include "support/recording_canvas.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace nmr;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const FontSpec font;
    const std::string code = Rtf_To_Code(bytes, font);
    static_cast<void>(Rtf_Plain(bytes));
    static_cast<void>(Rtf_Scale(bytes, 1.5));
    static_cast<void>(Code_To_Group(code));
    test::RecordingCanvas canvas;
    CodeTextPlace place{.one_line = size % 2 == 0, .right_limit = 50};
    static_cast<void>(Draw_CodeText(canvas, code, font, place));
    static_cast<void>(Measure_CodeText(canvas, code, font, 1, Lines::all));
    // Rich text of ours reads back as the same letters, but for a line end at the end.
    std::string plain = Plain_From_Code(Tidy_Code(code, font));
    if (plain != Plain_From_Code(code)) std::abort();
    if (!Code_To_Rtf(code, font, 10).starts_with("{\\rtf1") && !code.empty()) std::abort();
    return 0;
}
