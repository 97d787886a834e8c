#pragma once
// The parameter files of Varian consoles (procpar, curpar): records of text, read as tokens separated
// by blanks, since a quoted string may run over lines. Grammar as the OpenVnmrJ sources write and read it:
//
//   name subtype basictype maximum minimum step Ggroup Dgroup protection active 64
//   count value value ...             numbers; texts stand in double quotes
//   count value value ...             what the console offers to choose from

#include "core/result.h"
#include "formats/data_conversion.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

enum class VarianSubtype { undefined, real, text, delay, flag, frequency, pulse, integer };

/// One record of a parameter file.
struct VarianRecord {
    std::string name;                ///< as written; "ERROR:" for a record that can't be read
    std::vector<std::string> values; ///< without quotes
    VarianSubtype subtype = VarianSubtype::undefined;
    bool active = true; ///< false: the value stands there, but is switched off
};

/// Reads the record at `position` and moves behind it. An empty name means the end of the file.
VarianRecord Varian_Line(ByteSpan file, std::size_t& position);

/// A whole parameter file. Names are looked up as spelled, else case-blind.
class VarianParameters {
public:
    static Result<VarianParameters> Read(const std::string& path);
    /// bad_format for a record that can't be read and for a file without any.
    static Result<VarianParameters> Parse(ByteSpan bytes);

    const VarianRecord* Find(std::string_view name) const; ///< nullptr when there is none
    /// The first value, switched off or not; nothing for a text, and for what is not finite.
    std::optional<double> Number(std::string_view name) const;
    /// The same, but only when the parameter is switched on.
    std::optional<double> ActiveNumber(std::string_view name) const;
    std::optional<std::string> Text(std::string_view name) const; ///< first value, trimmed, UTF-8

private:
    std::map<std::string, VarianRecord, std::less<>> records_;
};

} // namespace nmr
