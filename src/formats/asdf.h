#pragma once
// ASDF, the number forms of JCAMP-DX tables: AFFN, PAC, SQZ, DIF and DUP, to and fro.
//
// Source: JCAMP-DX 4.24 and 5.01, sections on ASDF tables, and the published conformance files (one
// spectrum in every form). What real tables add to the standard:
// - "E" is a digit of SQZ as well as an exponent. A table that holds any other letter of ASDF is taken
//   for ASDF as a whole; a single line may have no other letter than E ("83920E4420E5294").
// - Whether a line begins with a check value follows from the last item of the line before it.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

enum class AsdfKind : std::uint8_t {
    end,     ///< nothing more on this line
    affn,    ///< plain or packed number
    sqz,     ///< number whose first digit carries the sign
    dif,     ///< difference from the value before
    dup,     ///< count of the item before
    unknown, ///< "?": no value
    error,   ///< a character that no form has
};

/// What "E" behind a digit means in a table: an exponent, or (unless a sign and a digit follow) the
/// digit 5 of the next SQZ number.
enum class AsdfE : std::uint8_t { exponent, squeezed };

/// One item of a line.
struct AsdfItem {
    AsdfKind kind = AsdfKind::end;
    double value = 0;            ///< number or difference, with its sign
    std::uint64_t dup_count = 0; ///< of a dup: times that the item before stands in all, 1 or more
};

/// "ASDF", "AFFN" or "ERROR"; empty for the end of a line and for "?".
std::string_view AsdfTag(AsdfKind kind);

/// The item at `position`, which moves behind it. Tabs, blanks, commas and zero bytes separate; "$" ends
/// the line (a checksum or a comment follows).
AsdfItem Read_AsdfValue(std::string_view text, std::size_t& position, AsdfE e);

/// Decided once for a whole table.
AsdfE FindAsdfE(std::string_view table);

/// Cuts the next line off, whatever ends it.
std::string_view TakeLine(std::string_view& rest);

/// What was met while a table was decoded.
struct AsdfReport {
    enum class Failure : std::uint8_t { none, bad_character, no_x, dup_first, too_many };
    Failure failure = Failure::none;
    std::size_t line = 0;          ///< of the failure, from 1
    std::size_t failed_checks = 0; ///< check values that differ from the value they repeat
    std::size_t unknown = 0;       ///< "?" in place of a value
    std::size_t misplaced = 0;     ///< lines whose X does not fit the number of values before them
};

/// Decodes all lines of a table of the form X, Y, Y, ... The ordinates as stored, without the factor, go
/// to `values`, which is cleared first. Nothing is sized by a count of the file: decoding stops with
/// too_many once more than `limit` values have come.
AsdfReport DecodeAsdfTable(std::string_view table, std::size_t limit, std::vector<double>& values);

enum class AsdfForm { sqz, dif, dup, pac, affn };

/// Text of one integer: "A00", "N", "T", "+100", " 100".
std::string Format_AsdfValue(std::int64_t value, AsdfForm form);
/// The same, appended.
void AppendAsdfValue(std::string& out, std::int64_t value, AsdfForm form);

/// Appends one line of at most 80 characters and its line end: X, the value at `first` in SQZ, then
/// differences, repeats of them as DUP where that fits.
/// @param first  index of the line's first value; in all lines but the table's first one it repeats the
///               last value of the line before, as check
/// @return index of the last value on the line: `first` of the next one
std::size_t Write_AsdfLine(std::span<const std::int64_t> values, std::size_t first, std::int64_t x, std::string& out);

/// Largest absolute ordinate that the encoders are given: differences stay in 32 bits.
inline constexpr double kMaxOrdinate = 1e9;

} // namespace nmr
