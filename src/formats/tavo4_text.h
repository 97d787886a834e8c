#pragma once
// Plain text from the two formatted kinds that a native file carries: internal code ("\<a\+1 2\+0 \>"
// and its older group form "\+(2)") and rich text.

#include <string>
#include <string_view>

namespace nmr::tavo4 {

/// The letters of a text in internal code, without its codes; a text without codes as it stands.
std::string PlainFromCode(std::string_view code);

/// The letters of rich text, lines ended by "\r\n"; a text that is no rich text as it stands.
std::string PlainFromRtf(std::string_view rtf);

bool IsRtf(std::string_view text);

} // namespace nmr::tavo4
