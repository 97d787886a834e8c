// Any bytes as rich text: read as a formatted text and as plain text, and scaled.

#include "layout/code_rtf.h"
#include "layout/code_text.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace nmr;
    const std::string rich = "{\\rtf" + std::string(reinterpret_cast<const char*>(data), size);
    const FontSpec font;
    const std::string code = Rtf_To_Code(rich, font);
    if (!code.starts_with("\\< ") || !code.ends_with("\\>")) std::abort();
    // What is written stays in proportion to what was read, so that the time does.
    if (code.size() > 400 * rich.size() + 1000) std::abort();
    static_cast<void>(Rtf_Plain(rich));
    static_cast<void>(Rtf_Scale(rich, 1.5));
    // What was read is a text like any other: it goes to rich text and back without losing letters that the
    // code page has.
    const std::string plain = Plain_From_Code(code);
    const std::string again = Rtf_To_Code(Code_To_Rtf(code, font, 10), font);
    bool ascii = true;
    for (const char c : plain) ascii = ascii && static_cast<unsigned char>(c) < 128;
    // Line ends at the end are dropped, as far as no code stands behind them.
    const auto body = [](const std::string& text) { return text.substr(0, text.find_last_not_of('\n') + 1); };
    if (ascii && body(Plain_From_Code(again)) != body(plain)) std::abort();
    return 0;
}
