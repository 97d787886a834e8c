#include "cli/analysis.h"

#include "analysis/base_line.h"
#include "analysis/integrals.h"
#include "analysis/peak_pick.h"
#include "analysis/robust_phase.h"
#include "analysis/shown_row.h"
#include "analysis/smooth_base_line.h"
#include "cli/options.h"
#include "core/list_values.h"
#include "core/text.h"
#include "formats/list_files.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <array>
#include <cmath>

namespace nmr {
namespace {

using Json = nlohmann::ordered_json;

Error Usage(std::string text)
{
    return Error{ErrorCode::bad_value, "nmr1d-cli", std::move(text)};
}

using Kind = BaseLineChoice::Kind;
constexpr std::array<std::pair<std::string_view, Kind>, 4> kBaseLines{
    {{"off", Kind::off}, {"auto", Kind::automatic}, {"whittaker", Kind::whittaker}, {"bernstein", Kind::bernstein}}};

/// What a method of the base line takes: numbers in a range, or on and off for a range of 0 to 1.
struct BaseLineParameter {
    Kind kind;
    std::string_view key;
    double least, most;
    bool whole;
    void (*set)(BaseLineChoice&, double);
    bool is_switch() const { return most == 1; }
};
constexpr std::array<BaseLineParameter, 4> kBaseLineParameters{
    {{Kind::automatic, "points", 1, 10000, true,
      [](BaseLineChoice& c, double v) { c.points = static_cast<std::int32_t>(v); }},
     {Kind::automatic, "lines", 0, 1, true, [](BaseLineChoice& c, double v) { c.on_lines = v != 0; }},
     {Kind::whittaker, "bend", 0.1, 100, false, [](BaseLineChoice& c, double v) { c.shape.stiffness = v / 100; }},
     {Kind::bernstein, "degree", 1, 20, true,
      [](BaseLineChoice& c, double v) { c.shape.degree = static_cast<int>(v); }}}};

/// No number for what does not fit.
double BaseLineValue(const BaseLineParameter& parameter, const std::string& text)
{
    if (parameter.is_switch()) return text == "on" ? 1 : text == "off" ? 0 : std::nan("");
    const double value = ParseNumber(text).value_or(std::nan(""));
    const bool fits = value >= parameter.least && value <= parameter.most;
    return fits && (!parameter.whole || value == std::floor(value)) ? value : std::nan("");
}

/// "points=1 to 10000 and lines=on or off".
std::string BaseLineUsage(Kind kind)
{
    std::string text;
    for (const BaseLineParameter& p : kBaseLineParameters)
        if (p.kind == kind)
            text +=
                (text.empty() ? "" : " and ") + (p.is_switch() ? fmt::format("{}=on or off", p.key)
                                                               : fmt::format("{}={} to {}", p.key, p.least, p.most));
    return text.empty() ? "no parameter" : text;
}

bool SetBaseLineWord(BaseLineChoice& choice, const std::string& part)
{
    const auto equals = part.find('=');
    if (equals == std::string::npos) return false;
    for (const BaseLineParameter& p : kBaseLineParameters) {
        if (p.kind != choice.kind || p.key != part.substr(0, equals)) continue;
        const double value = BaseLineValue(p, part.substr(equals + 1));
        if (std::isnan(value)) return false;
        p.set(choice, value);
        return true;
    }
    return false;
}

constexpr std::array<std::pair<std::string_view, std::optional<double> PeakChoice::*>, 3> kLevels{
    {{"noise", &PeakChoice::noise}, {"detect", &PeakChoice::detect}, {"base", &PeakChoice::base}}};
constexpr std::array<std::pair<std::string_view, bool PeakChoice::*>, 2> kSwitches{
    {{"negative", &PeakChoice::negative}, {"interpolate", &PeakChoice::interpolate}}};

constexpr double kNoLevel = 1e38;

/// In place of a value that was not given.
constexpr char kPlainPeaks[] = "negative=off";

bool SetPeakWord(PeakChoice& choice, std::string_view key, const std::string& value)
{
    for (const auto& [name, member] : kLevels)
        if (name == key) {
            choice.*member = ParseNumber(value);
            // Levels are kept as floats.
            return std::abs((choice.*member).value_or(kNoLevel)) < kNoLevel;
        }
    for (const auto& [name, member] : kSwitches)
        if (name == key) {
            choice.*member = value == "on";
            return value == "on" || value == "off";
        }
    return false;
}

/// A level taken from a line spoils the integrals around it, and nobody looks at the points of a batch.
void SettleBasePoints(GlobalBlock& g, bool keep_on_lines)
{
    std::vector<std::string>& warnings = g.Slots[0].Warnings;
    const std::size_t found = g.BasePoints.size();
    const std::size_t doubtful = keep_on_lines ? Base_Points_On_Lines(g).size() : Drop_Base_Points_On_Lines(g);
    if (doubtful > 0)
        warnings.push_back(fmt::format("{} of {} base points seem to stand on lines{}", doubtful, found,
                                       keep_on_lines ? "." : ": they were left out."));
    if (g.BasePoints.empty()) warnings.emplace_back("No place for base points was found: no base line is taken.");
}

void CorrectBaseLine(GlobalBlock& g, const BaseLineChoice& choice)
{
    DataSet& set = g.Slots[0];
    if (choice.kind == Kind::off) return;
    if (choice.kind == Kind::automatic) {
        Auto_Base_Points(g, choice.points.value_or(g.settings.average_point));
        SettleBasePoints(g, choice.on_lines);
        Subtract_Straight_Base_Line(g);
    } else {
        const auto row = set.spec.SourceRe[ShownRowIndex(g, set)].first(HeldPoints(set));
        BaseLineShape shape = choice.shape;
        shape.asymmetry = Expected_Signs(set.par) == LineSigns::alternate ? 0.0 : 1.0;
        Subtract_Base_Line(g, choice.kind == Kind::whittaker ? Whittaker_Base_Line(row, shape)
                                                             : Bernstein_Base_Line(row, shape));
    }
    set.spec.SourceRe = set.spec.DataRe;
    set.par.BaseLineDone = 1;
}

void PickPeaks(GlobalBlock& g, const PeakChoice& choice)
{
    DataSet& set = g.Slots[0];
    if (choice.base) Set_Base_Level(set, *choice.base);
    if (choice.noise) Set_Noise_Level(set, *choice.noise);
    if (choice.detect) Set_Detect_Level(set, *choice.detect);
    set.Peaks.clear();
    Peak_Pick(g, 0, set.par.POINT - 1);
    if (choice.negative) Peak_Pick_Negative(g, 0, set.par.POINT - 1);
}

/// The index of each region of the options in the list, which is in order of position.
std::vector<std::size_t> ListOrder(const DataSet& set, const AnalysisOptions& options)
{
    std::vector<std::size_t> order;
    for (const auto& [a, b] : options.regions_ppm) {
        const auto [low, high] = std::minmax({PpmToPoint(set, a), PpmToPoint(set, b)});
        const auto found = std::ranges::find_if(set.Integrals, [&, low = low, high = high](const IntegralEntry& e) {
            return e.StartPoint == high && e.EndPoint == low;
        });
        order.push_back(static_cast<std::size_t>(found - set.Integrals.begin()));
    }
    return order;
}

Status Integrate(GlobalBlock& g, const AnalysisOptions& options)
{
    DataSet& set = g.Slots[0];
    Delete_All_Integrals(set);
    for (const auto& [a, b] : options.regions_ppm)
        if (Add_Integral(g, a, b) < 0) return Usage(fmt::format("there is no region {}:{} in the spectrum", a, b));
    const auto order = ListOrder(set, options);
    const auto reference = static_cast<std::size_t>(options.reference) - 1;
    if (reference >= order.size()) return Usage(fmt::format("there is no region {} to relate to", options.reference));
    Set_Integral_Reference(set, static_cast<std::int32_t>(order[reference]), options.reference_value);
    return {};
}

Json PeakJson(const PeakLine& line, bool interpolate)
{
    Json out = {{"ppm", line.ppm},
                {"hz", line.hz},
                {"height", line.amplitude},
                {"height_percent", line.height_percent},
                {"point", line.point}};
    if (interpolate) out["top"] = {{"ppm", line.top.ppm}, {"hz", line.top.hz}, {"height", line.top.amplitude}};
    return out;
}

Json IntegralJson(const IntegralLine& line)
{
    // The sum is kept as a float: the shortest decimal that reads back as the same one.
    return {{"from_ppm", line.start_ppm},
            {"to_ppm", line.end_ppm},
            {"value", ShortestDouble(static_cast<float>(line.sum))},
            {"relative", line.value ? Json(*line.value) : Json(nullptr)}};
}

/// "noise=0.1": a word of small letters before the sign.
bool HasKey(std::string_view text)
{
    const auto equals = text.find('=');
    return equals != std::string_view::npos && equals > 0 &&
           std::ranges::all_of(text.substr(0, equals), [](char c) { return c >= 'a' && c <= 'z'; });
}

template <class Parser, class Take>
CLI::Option* AddText(CLI::App& app, const std::string& name, Parser parse, Take take, const std::string& help)
{
    return app
        .add_option_function<std::string>(
            name,
            [parse, take](const std::string& text) {
                auto value = parse(text);
                if (!value) throw CLI::ValidationError(value.error().text);
                take(*value);
            },
            help)
        ->type_name("TEXT");
}

} // namespace

Result<BaseLineChoice> ParseBaseLine(const std::string& text)
{
    const auto colon = text.find(':');
    const std::string name = text.substr(0, colon);
    const auto row = std::ranges::find(kBaseLines, name, &std::pair<std::string_view, Kind>::first);
    if (row == kBaseLines.end())
        return Usage("--baseline takes auto, whittaker, bernstein or off, not \"" + name + "\"");
    BaseLineChoice choice;
    choice.kind = row->second;
    if (colon == std::string::npos) return choice;
    for (const std::string& part : Split(text.substr(colon + 1), ','))
        if (!SetBaseLineWord(choice, part))
            return Usage(fmt::format("--baseline {} takes {}, not \"{}\"", name, BaseLineUsage(choice.kind), part));
    return choice;
}

Result<PeakChoice> ParsePeaks(const std::string& text)
{
    PeakChoice choice;
    if (text.empty()) return choice;
    for (const std::string& part : Split(text, ',')) {
        const auto equals = part.find('=');
        if (equals == std::string::npos || !SetPeakWord(choice, part.substr(0, equals), part.substr(equals + 1)))
            return Usage(
                "--peaks takes noise=, detect= and base= with a fraction of the highest point, negative=on and "
                "interpolate=on, not \"" +
                part + "\"");
    }
    return choice;
}

Result<std::vector<std::pair<double, double>>> ParseRegions(const std::string& text)
{
    std::vector<std::pair<double, double>> regions;
    for (const std::string& part : Split(text, ',')) {
        const auto range = ParseRange(part);
        if (!range) return Usage("--integrate takes A:B[,A:B...] in ppm, not \"" + part + "\"");
        regions.push_back(*range);
    }
    if (regions.size() > kMaxIntegrals)
        return Usage(fmt::format("--integrate takes {} regions at most", kMaxIntegrals));
    return regions;
}

Result<std::pair<std::int32_t, double>> ParseReferenceIntegral(const std::string& text)
{
    const auto equals = text.find('=');
    const auto number = ParseInteger(text.substr(0, equals));
    const auto value = equals == std::string::npos ? std::nullopt : ParseNumber(text.substr(equals + 1));
    if (!number || !value || *number < 1 || *number > static_cast<std::int64_t>(kMaxIntegrals) ||
        !IsIntegralScale(*value))
        return Usage("--ref-integral takes N=V, a region from 1 and a value above 0, not \"" + text + "\"");
    return std::pair{static_cast<std::int32_t>(*number), *value};
}

void AddAnalysisOptions(CLI::App& app, AnalysisOptions& options)
{
    AddText(
        app, "--baseline", ParseBaseLine, [&](const BaseLineChoice& choice) { options.base_line = choice; },
        "auto[:points=N,lines=off]: straight lines between quiet places, each the mean of 2N+1 points, without those "
        "that "
        "seem to stand on lines; whittaker[:bend=%] or bernstein[:degree=N]: smooth curves; off");
    AddText(
        app, "--peaks", ParsePeaks, [&](const PeakChoice& choice) { options.peaks = choice; },
        "picks peaks; [noise=..,detect=..,base=..] as fractions of the highest point, negative=on, interpolate=on");
    AddText(
        app, "--integrate", ParseRegions, [&](const auto& regions) { options.regions_ppm = regions; },
        "A:B[,A:B...] in ppm");
    AddText(
        app, "--ref-integral", ParseReferenceIntegral,
        [&](const auto& pair) { std::tie(options.reference, options.reference_value) = pair; },
        "N=V: region N counts V; 1=1 without it")
        ->needs("--integrate");
}

std::vector<std::string> SettlePeaks(std::vector<std::string> arguments)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] != "--peaks") continue;
        const bool own = i + 1 < arguments.size() && HasKey(arguments[i + 1]);
        if (!own) arguments.insert(arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1, kPlainPeaks);
    }
    return arguments;
}

Status Analyse(GlobalBlock& g, const AnalysisOptions& options)
{
    if (HeldPoints(g.Slots[0]) == 0 || g.Slots[0].par.SMODE != 1) return {};
    CorrectBaseLine(g, options.base_line);
    if (options.peaks) PickPeaks(g, *options.peaks);
    return options.regions_ppm.empty() ? Status() : Integrate(g, options);
}

void ReportAnalysis(const GlobalBlock& g, const AnalysisOptions& options, Json& report)
{
    const DataSet& set = g.Slots[0];
    const std::size_t row = ShownRowIndex(g, set);
    if (options.peaks) {
        Json& peaks = report["peaks"] = Json::array();
        for (const PeakLine& line : PeakLines(set, row)) peaks.push_back(PeakJson(line, options.peaks->interpolate));
    }
    if (options.regions_ppm.empty()) return;
    Json& integrals = report["integrals"] = Json::array();
    for (const std::size_t index : ListOrder(set, options))
        if (index < set.Integrals.size()) integrals.push_back(IntegralJson(IntegralLineOf(set, index)));
}

bool IsListExtension(std::string_view lower_case_extension)
{
    return lower_case_extension == ".red" || lower_case_extension == ".int" || lower_case_extension == ".ilist";
}

Status WriteList(const GlobalBlock& g, const std::string& path, std::string_view lower_case_extension)
{
    const ListUnit unit = ShownListUnit(g);
    if (lower_case_extension == ".red") return WriteDataRed(path, g, unit);
    return lower_case_extension == ".int" ? WriteDataInt(path, g, unit) : WriteDataIntList(path, g, unit);
}

} // namespace nmr
