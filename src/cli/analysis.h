#pragma once
// Base line, peaks and integrals of `process`: their options, and what they add to the report.

#include "analysis/smooth_base_line.h"
#include "core/global_block.h"
#include "core/result.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace CLI {
class App;
}

namespace nmr {

struct BaseLineChoice {
    enum class Kind { off, automatic, whittaker, bernstein };
    Kind kind = Kind::off;
    std::optional<std::int32_t> points; ///< half-width of the line fit at a base point; by the settings without
    bool on_lines = false;              ///< base points that seem to stand on lines stay
    BaseLineShape shape;
};

struct PeakChoice {
    std::optional<double> noise, detect, base; ///< fractions of the highest point; as the data have them without
    bool negative = false, interpolate = false;
};

struct AnalysisOptions {
    BaseLineChoice base_line;
    std::optional<PeakChoice> peaks;
    std::vector<std::pair<double, double>> regions_ppm;
    std::int32_t reference = 1; ///< region, from 1, as given
    double reference_value = 1;
};

/// "auto:points=20,lines=on": the method, after a colon the parameters it has.
Result<BaseLineChoice> ParseBaseLine(const std::string& text);
Result<PeakChoice> ParsePeaks(const std::string& text);
Result<std::vector<std::pair<double, double>>> ParseRegions(const std::string& text);
Result<std::pair<std::int32_t, double>> ParseReferenceIntegral(const std::string& text);

void AddAnalysisOptions(CLI::App& app, AnalysisOptions& options);
/// Arguments in which --peaks always has a value, an empty one where none was given: what follows it is its own
/// only when it has the form KEY=..., since a data file may stand behind it as well.
std::vector<std::string> SettlePeaks(std::vector<std::string> arguments);

/// Works on the shown row of slot 0, in the order base line, peaks, integrals. What could not be done goes to
/// the warnings of the set. bad_value for a region outside the axis or a reference that does not exist.
Status Analyse(GlobalBlock& g, const AnalysisOptions& options);
/// "peaks" and "integrals" into the report.
void ReportAnalysis(const GlobalBlock& g, const AnalysisOptions& options, nlohmann::ordered_json& report);

bool IsListExtension(std::string_view lower_case_extension);
Status WriteList(const GlobalBlock& g, const std::string& path, std::string_view lower_case_extension);

} // namespace nmr
