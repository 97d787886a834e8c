#pragma once
// What the program prints: one JSON object, or lines for people.

#include "core/global_block.h"
#include "formats/detect.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace nmr {

/// What the transform used, kept before the commit sets the phases back.
struct TransformUsed {
    bool done = false;
    double p0_deg = 0, p1_deg = 0;
    std::int32_t pivot = 0;
    std::optional<double> quality{}; ///< of the robust automatic phase, percent
};

/// The object of `info` and `process` for slot 0. `row` is from 0.
nlohmann::ordered_json Report(const GlobalBlock& g, const FileType& type, const std::string& file,
                              const TransformUsed& used, std::size_t row, const std::vector<std::string>& warnings);

/// The detection's answer alone, for a file that was refused.
nlohmann::ordered_json RefusalReport(const FileType& type, const std::string& file, const std::string& reason,
                                     const std::vector<std::string>& warnings);

/// What was done to slot 0: {"original_file": ..., "history": [{"subject", "operator", "date"}]}.
nlohmann::ordered_json HistoryReport(const GlobalBlock& g, const std::string& file);
/// The same as a table.
std::string HistoryText(const nlohmann::ordered_json& report);

/// A report as lines "key  value" for a terminal.
std::string ReportText(const nlohmann::ordered_json& report);

/// The table of families.
std::string FormatsText();

} // namespace nmr
