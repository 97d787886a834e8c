// nmr1d-cli: the same commands as the window, without one.

#include "cli/convert.h"
#include "cli/process.h"
#include "cli/report.h"
#include "core/numbers.h"
#include "session/startup.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>

namespace {

using namespace nmr;

// Parses one text option into its place; a text that can't be read is a usage error.
template <class T, class Parser>
void AddParsed(CLI::App& app, const std::string& name, Parser parse, T& target, const std::string& help)
{
    app.add_option_function<std::string>(
           name,
           [parse, &target](const std::string& text) {
               auto value = parse(text);
               if (!value) throw CLI::ValidationError(value.error().text);
               target = *value;
           },
           help)
        ->type_name("TEXT");
}

constexpr char kTableHelp[] =
    "how a text table is read, in place of what it shows: KEY=VALUE[;KEY=VALUE...] with OFR (MHz), OBNUC, FREQU (Hz), "
    "SMODE (0 FID, 1 spectrum), SEPARATOR, DECIMAL, HEAD LINES, LAYOUT, POSITION, POSITION UNIT, REAL, IMAGINARY ...";

void AddReference(CLI::App& app, bool& file_reference)
{
    app.add_option_function<std::string>(
           "--reference", [&](const std::string& text) { file_reference = text == "file"; },
           "file: the 0 ppm frequency that the file gives; none: without it")
        ->check(CLI::IsMember({"file", "none"}));
}

void AddRowAndBlock(CLI::App& app, std::int32_t& row, std::optional<int>& block)
{
    app.add_option("--row", row, "row of array data, from 1")->check(CLI::Range(1, kMaxRows));
    app.add_option("--block", block, "data set of a JCAMP-DX file that holds several, from 1")
        ->check(CLI::Range(1, 9999));
}

void AddPictureOptions(CLI::App& app, PictureSize& size)
{
    app.add_option_function<std::string>(
           "--size",
           [&size](const std::string& text) {
               const auto wanted = ParsePictureSize(text);
               if (!wanted) throw CLI::ValidationError(wanted.error().text);
               size = {wanted->width, wanted->height, wanted->millimetres, size.dpi};
           },
           "of pictures: WxH in pixels (1200x700) or WxHmm (160x90mm)")
        ->type_name("TEXT");
    app.add_option("--dpi", size.dpi, "dots per inch of pictures: 96 unless told, 300 for a size in mm")
        ->check([](const std::string& text) {
            const auto number = ParseNumber(text);
            return number && *number > 0 ? std::string()
                                         : "--dpi takes dots per inch, such as 300, not \"" + text + '"';
        });
}

void AddProcess(CLI::App& app, ProcessOptions& options)
{
    app.add_option("path", options.path, "data file or folder")->required();
    AddParsed(app, "--zero-fill", ParseZeroFill, options.zero_fill, "N points, xK times, or off");
    AddParsed(
        app, "--window", ParseWindow, options.window,
        "exponential[:lb=HZ], sinebell, hann or blackman-harris[:start=%,end=%], gaussian[:bf=HZ,gf=HZ,center=%]; "
        "each with trapezoid=on|off and trap1..trap4=%; or vendor");
    AddParsed(app, "--shift", ParseShift, options.shift, "points dropped at the start of the FID, or auto");
    AddParsed(app, "--phase", ParsePhase, options.phase,
              "robust (as without it), auto (circle fit), off, vendor (what the files tell), or P0[,P1[,PIVOT]] in "
              "degrees and point");
    AddReference(app, options.file_reference);
    AddRowAndBlock(app, options.row, options.block);
    AddParsed(app, "--range", ParseRange, options.range_ppm, "LEFT:RIGHT in ppm, for pictures and .csv");
    app.add_option("--out", options.outputs,
                   "write FILE: .tvo1, .npy, .csv, .red, .int, .Ilist, " + PictureExtensions() + "; may be given again")
        ->take_all()
        ->allow_extra_args(false);
    AddPictureOptions(app, options.size);
    app.add_flag("--json", options.json, "one JSON object on standard output");
    AddParsed(app, "--table", ParseTable, options.table, kTableHelp);
    AddAnalysisOptions(app, options.analysis);
}

void AddConvert(CLI::App& app, ConvertOptions& options)
{
    app.add_option("in", options.in, "data file or folder")->required();
    app.add_option("out", options.out, "file to write; its extension tells its form:\n" + ConvertHelp())->required();
    app.add_option_function<std::string>(
           "--ascii",
           [&](const std::string& text) {
               const auto choice = ParseAsciiWord(text);
               if (!choice) throw CLI::ValidationError("--ascii takes R, R1, R2 or D[,POINTS], not \"" + text + "\"");
               options.ascii = *choice;
           },
           "intensities as they are (R), relative (R1, R2) or as displayed with a head (D), and how many points")
        ->type_name("TEXT");
    app.add_flag("--reduced", options.reduced, "JCAMP-DX with real and imaginary page");
    AddReference(app, options.file_reference);
    AddRowAndBlock(app, options.row, options.block);
    AddParsed(app, "--table", ParseTable, options.table, kTableHelp);
}

int Run(int argc, char** argv)
{
    CLI::App app{"Processing of one-dimensional NMR data"};
    app.name("nmr1d-cli");
    app.set_version_flag("--version", "nmr1d-cli " + VersionText());
    app.require_subcommand(1);
    ProcessOptions options;
    std::string info_path;
    bool info_json = false;
    CLI::App* formats = app.add_subcommand("formats", "the families of files and what can be done with each");
    CLI::App* info = app.add_subcommand("info", "what a file is, and its parameters");
    info->add_option("path", info_path, "data file or folder")->required();
    info->add_flag("--json", info_json, "one JSON object on standard output");
    CLI::App* history = app.add_subcommand("history", "what was done to the data of a file, by whom and when");
    history->add_option("path", info_path, "data file or folder")->required();
    history->add_flag("--json", info_json, "one JSON object on standard output");
    CLI::App* process = app.add_subcommand("process", "from FID to spectrum");
    AddProcess(*process, options);
    ConvertOptions conversion;
    CLI::App* convert = app.add_subcommand("convert", "saves the spectrum of a file in another form");
    AddConvert(*convert, conversion);
    try {
        std::vector<std::string> arguments = SettlePeaks({argv + std::min(argc, 1), argv + argc});
        std::ranges::reverse(arguments); // the parser takes them from the end
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? 0 : static_cast<int>(Exit::usage);
    }
    if (*formats) {
        fmt::print("{}", FormatsText());
        return 0;
    }
    if (*history) return static_cast<int>(RunHistory(info_path, info_json));
    if (*convert) return static_cast<int>(RunConvert(conversion));
    return static_cast<int>(*info ? RunInfo(info_path, info_json) : RunProcess(options));
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const int result = Run(argc, argv);
        if (std::fflush(stdout) == 0) return result;
        fmt::print(stderr, "nmr1d-cli: standard output: {}\n", std::strerror(errno));
        return static_cast<int>(Exit::not_written);
    } catch (const std::exception& e) {
        fmt::print(stderr, "nmr1d-cli: {}\n", e.what());
        return static_cast<int>(Exit::internal);
    }
}
