#pragma once
// The options of `process`, and how their texts are read.

#include "cli/analysis.h"
#include "core/result.h"
#include "fid/window.h"
#include "layout/picture_job.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nmr {

/// Exit codes of the program.
enum class Exit : int {
    done = 0,
    usage = 2,
    unreadable = 3,
    two_dimensional = 4,
    bad_parameters = 5,
    not_written = 6,
    internal = 70,
};
Exit ExitFor(ErrorCode code);

struct ZeroFill {
    enum class Kind { by_settings, off, factor, points };
    Kind kind = Kind::by_settings;
    std::int32_t value = 0;
};

struct WindowChoice {
    bool vendor = false; ///< the one that the vendor's files tell; the rest is then not used
    WindowKind kind = WindowKind::exponential;
    std::vector<std::pair<WindowField, double>> fields;
    std::optional<bool> trapezoid;
};

struct PhaseChoice {
    enum class Kind { by_settings, automatic, robust, off, given, vendor };
    Kind kind = Kind::by_settings;
    double p0_deg = 0, p1_deg = 0;
    std::optional<std::int32_t> pivot; ///< point index, as the JSON gives it
};

/// Values of the form for text tables, in place of what the file shows.
using TableValues = std::map<std::string, std::string>;

struct ProcessOptions {
    std::string path;
    ZeroFill zero_fill;
    std::optional<WindowChoice> window;
    std::optional<std::int32_t> shift; ///< points; nothing for automatic
    PhaseChoice phase;
    bool file_reference = true;
    std::int32_t row = 1;                               ///< from 1
    std::optional<int> block;                           ///< of a file of several data sets, from 1
    std::optional<std::pair<double, double>> range_ppm; ///< left, right
    std::vector<std::string> outputs;
    bool json = false;
    TableValues table;
    AnalysisOptions analysis;
    PictureSize size; ///< of pictures
};

Result<ZeroFill> ParseZeroFill(const std::string& text);
Result<WindowChoice> ParseWindow(const std::string& text);
Result<std::optional<std::int32_t>> ParseShift(const std::string& text);
Result<PhaseChoice> ParsePhase(const std::string& text);
Result<std::pair<double, double>> ParseRange(const std::string& text);
/// "KEY=VALUE", several of them split at ";", by the keys of the form for text tables.
Result<TableValues> ParseTable(const std::string& text);

} // namespace nmr
