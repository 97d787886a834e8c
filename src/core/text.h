#pragma once
// Small text helpers. Text inside the program is UTF-8; data files carry Shift-JIS (CP932).

#include <string>
#include <string_view>
#include <vector>

namespace nmr {

std::string_view Trim(std::string_view text); ///< without blanks and control characters at both ends
std::string ToUpper(std::string_view text);   ///< ASCII letters only
std::string ToLower(std::string_view text);
bool EqualsNoCase(std::string_view a, std::string_view b);
bool ContainsNoCase(std::string_view text, std::string_view part);
std::string_view Left(std::string_view text, std::size_t count); ///< first characters (bytes), or all
std::vector<std::string> Split(std::string_view text, char separator);

/// CP932 bytes to UTF-8; what can't be converted becomes U+FFFD, never an error.
std::string FromCp932(std::string_view bytes);
/// UTF-8 to CP932; characters that CP932 lacks become "?".
std::string ToCp932(std::string_view utf8);
/// Bytes of a code page that contains ASCII, by its name ("CP1251"), to UTF-8; what can't be converted
/// becomes U+FFFD, and without such a page the bytes are read as FromUnknownCodePage does.
std::string FromCodePage(std::string_view bytes, const char* page);
/// Text of a vendor file in an unknown code page: valid UTF-8 is kept, anything else is read as
/// Latin-1 (0xB5 is a micro sign), so that every byte string gives valid UTF-8.
std::string FromUnknownCodePage(std::string_view bytes);

} // namespace nmr
