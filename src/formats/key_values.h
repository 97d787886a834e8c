#pragma once
// Parameter files of lines "key value" or "key=value" (Chemagnetics CMX, GE Omega, JEOL EX).

#include "formats/data_conversion.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nmr {

/// Key and value of a line; false for a line without a key.
bool Split_KeyValue(std::string_view line, std::string& key, std::string& value);

/// All lines of such a file. Keys are looked up as spelled, else case-blind; of equal keys the first counts.
class KeyValues {
public:
    static KeyValues Parse(ByteSpan bytes);

    const std::string* Find(std::string_view key) const; ///< nullptr when there is none
    /// In the order of the file.
    const std::vector<std::pair<std::string, std::string>>& lines() const { return lines_; }

private:
    std::vector<std::pair<std::string, std::string>> lines_;
};

} // namespace nmr
