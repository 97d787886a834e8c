#include "cli/report.h"

#include "core/history.h"
#include "core/param_table.h"
#include "formats/registry.h"

#include <fmt/format.h>

#include <cmath>

namespace nmr {
namespace {

using Json = nlohmann::ordered_json;

// JSON knows no infinity and no NaN.
Json Number(double value)
{
    return std::isfinite(value) ? Json(value) : Json(nullptr);
}

// A float as the shortest decimal that reads back as the same float: 0.1, not 0.10000000149.
Json Number(float value)
{
    return std::isfinite(value) ? Json(std::stod(fmt::format("{}", value))) : Json(nullptr);
}

struct ParamJson {
    const ParamBlock& block;
    Json operator()(std::string ParamBlock::*m) const { return block.*m; }
    Json operator()(float ParamBlock::*m) const { return Number(block.*m); }
    Json operator()(double ParamBlock::*m) const { return Number(block.*m); }
    Json operator()(std::int16_t ParamBlock::*m) const { return block.*m; }
    Json operator()(std::int32_t ParamBlock::*m) const { return block.*m; }
    template <std::size_t N>
    Json operator()(ElementOf<float, N> e) const
    {
        return Number((block.*(e.member))[e.index]);
    }
    template <std::size_t N>
    Json operator()(ElementOf<std::int32_t, N> e) const
    {
        return (block.*(e.member))[e.index];
    }
};

Json Params(const ParamBlock& block)
{
    Json params = Json::object();
    // A field that travels without a key stands under its name.
    for (const ParamField& field : ParamFields()) {
        const std::string key(field.key.empty() ? field.name : field.key);
        if (!params.contains(key)) params[key] = std::visit(ParamJson{block}, field.member);
    }
    return params;
}

// The point of the largest magnitude, with the real value that stands there.
Json Strongest(const DataSet& set, std::size_t row)
{
    const auto re = set.spec.DataRe[row], im = set.spec.DataIm[row];
    std::size_t best = 0;
    double best_square = -1;
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.par.POINT); ++i) {
        const double square = static_cast<double>(re[i]) * static_cast<double>(re[i]) +
                              static_cast<double>(im[i]) * static_cast<double>(im[i]);
        if (square > best_square) {
            best_square = square;
            best = i;
        }
    }
    return {{"ppm", Number(set.spec.XAxis[best])}, {"intensity", Number(re[best])}};
}

void AddSpectrum(Json& out, const DataSet& set, std::size_t row)
{
    const auto last = static_cast<std::size_t>(set.par.POINT) - 1;
    const double first_ppm = set.spec.XAxis[0], last_ppm = set.spec.XAxis[last];
    const double step = last > 0 ? (last_ppm - first_ppm) / static_cast<double>(last) : 0.0;
    out["axis"] = {{"first_ppm", Number(first_ppm)}, {"last_ppm", Number(last_ppm)}, {"step_ppm", Number(step)}};
    out["max"] = Strongest(set, row);
}

void AppendText(std::string& text, const std::string& key, const Json& value)
{
    if (value.is_object()) {
        for (const auto& [name, inner] : value.items()) AppendText(text, key.empty() ? name : key + "." + name, inner);
    } else if (value.is_array()) {
        for (const Json& inner : value) AppendText(text, key, inner);
    } else {
        text += fmt::format("{:<19} {}\n", key, value.is_string() ? value.get<std::string>() : value.dump());
    }
}

} // namespace

Json Report(const GlobalBlock& g, const FileType& type, const std::string& file, const TransformUsed& used,
            std::size_t row, const std::vector<std::string>& warnings)
{
    const DataSet& set = g.Slots[0];
    const ParamBlock& par = set.par;
    Json out = {{"file", file},
                {"tag", type.tag},
                {"code", type.code},
                {"mode", type.mode},
                {"nucleus", par.OBNUC},
                {"obs_mhz", Number(par.ObsCenter)},
                {"ppm0_mhz", Number(par.OBFRQ0PPM)},
                {"sweep_hz", Number(par.FREQU)},
                {"points", par.POINT},
                {"fid_points", par.FIDPoints},
                {"rows", set.RowCount}};
    if (par.SMODE == 1 && par.POINT > 0 && row < static_cast<std::size_t>(set.RowCount)) AddSpectrum(out, set, row);
    if (par.SMODE == 0 || used.done) out["fid_shift"] = par.FIDShift;
    if (used.done) out["phase"] = {{"p0_deg", used.p0_deg}, {"p1_deg", used.p1_deg}, {"pivot", used.pivot}};
    if (used.quality) out["phase"]["quality"] = Number(*used.quality);
    out["params"] = Params(par);
    Json all = set.Warnings;
    for (const std::string& warning : warnings) all.push_back(warning);
    out["warnings"] = std::move(all);
    return out;
}

Json RefusalReport(const FileType& type, const std::string& file, const std::string& reason,
                   const std::vector<std::string>& warnings)
{
    return {{"file", file},      {"tag", type.tag}, {"code", type.code},
            {"mode", type.mode}, {"error", reason}, {"warnings", warnings}};
}

Json HistoryReport(const GlobalBlock& g, const std::string& file)
{
    const DataSet& set = g.Slots[0];
    Json rows = Json::array();
    for (const HistoryRow& row : HistoryRows(set))
        rows.push_back({{"subject", row.subject}, {"operator", row.operator_name}, {"date", row.date}});
    constexpr const char* kStates[] = {"not noted", "unchanged", "changed", "missing"};
    const Original state = CheckOriginal(set);
    Json report = {{"file", file}, {"original_file", set.par.OrgFile}};
    report["original_state"] = kStates[static_cast<std::size_t>(state)];
    if (state != Original::not_noted) report["original_sha256_begin"] = set.HistoryHead2;
    report["history"] = std::move(rows);
    return report;
}

std::string HistoryText(const Json& report)
{
    const std::string state = report["original_state"];
    std::string text =
        fmt::format("Original File Name {}{}\n{:<14} {:<20} {}\n", report["original_file"].get<std::string>(),
                    state == "not noted" ? "" : " (" + state + ")", "Subject", "Operator", "Date");
    for (const Json& row : report["history"]) {
        std::string line = fmt::format("{:<14} {:<20} {}", row["subject"].get<std::string>(),
                                       row["operator"].get<std::string>(), row["date"].get<std::string>());
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

std::string ReportText(const Json& report)
{
    std::string text;
    AppendText(text, {}, report);
    return text;
}

std::string FormatsText()
{
    std::string text = fmt::format("{:>2}  {:<20} {:<9} {:<9} {:<9} {:<11} {:<6} {}\n", "No", "Family", "1D",
                                   "2D spec.", "2D FID", "Read", "Write", "Files");
    for (const FormatRow& row : FormatRows())
        text += fmt::format("{:>2}  {:<20} {:<9} {:<9} {:<9} {:<11} {:<6} {}\n", row.family, row.name, row.tag_1d,
                            row.tag_2d_spectrum, row.tag_2d_fid, row.read ? "yes" : "recognised",
                            row.writes ? "yes" : "-", row.files);
    return text;
}

} // namespace nmr
