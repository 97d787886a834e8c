#include "cli/process.h"

#include "cli/array_writers.h"
#include "cli/picture.h"
#include "cli/report.h"
#include "cli/run.h"
#include "core/text.h"
#include "session/fft_form.h"
#include "session/read_flow.h"
#include "session/save_flow.h"

#include <fmt/format.h>

#include <filesystem>

namespace nmr {
namespace {

void PrintReport(const nlohmann::ordered_json& report, bool json)
{
    if (json)
        fmt::print("{}\n", report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
    else
        fmt::print("{}", ReportText(report));
}

// A read that failed: the words on standard error, the detection's answer as JSON when asked for.
Exit Refuse(const Run& run, const std::string& path, const Error& error, bool json)
{
    TellWarnings(run, path, error.text);
    Complain(path, error.text);
    if (json) PrintReport(RefusalReport(run.type, path, error.text, run.asker.warnings()), true);
    return ExitFor(error.code);
}

std::int32_t PowerOfTwoFactor(const ZeroFill& fill, std::int32_t raw)
{
    if (fill.kind == ZeroFill::Kind::off || raw < 1) return 1;
    const std::int64_t wanted = fill.kind == ZeroFill::Kind::factor ? std::int64_t{raw} * fill.value : fill.value;
    std::int64_t factor = 1;
    while (raw * factor < wanted && raw * factor * 2 <= kMaxPoints) factor *= 2;
    return static_cast<std::int32_t>(factor);
}

void Warn(FftForm& form, std::string text)
{
    form.block().Slots[0].Warnings.push_back(std::move(text));
}

Status ApplyVendorWindow(FftForm& form)
{
    if (!form.TakeVendorWindow()) Warn(form, "The files tell no window that can be had here: the usual one is used.");
    return form.WindowChanged();
}

Status ApplyWindow(FftForm& form, const WindowChoice& choice)
{
    if (choice.vendor) return ApplyVendorWindow(form);
    ParamBlock& par = form.block().Slots[0].par;
    par.WindowFunc = static_cast<std::int16_t>(choice.kind);
    if (choice.trapezoid) par.WinFlags.at(static_cast<std::size_t>(choice.kind)) = *choice.trapezoid ? 0 : 1;
    for (const auto& [field, value] : choice.fields) SetWindowField(par, field, value);
    return form.SetWindowKind(choice.kind);
}

// With the shift at hand, else with the vendor's own, which its phases always fit.
void ApplyVendorPhase(FftForm& form, bool shift_given)
{
    const bool taken = form.TakeVendorPhase() || (!shift_given && form.TakeVendorShift() && form.TakeVendorPhase());
    if (!taken) Warn(form, "The files tell no phases that can be had here: automatic phasing is used.");
    form.SetAutoPhase(!taken);
    static_cast<void>(form.WindowChanged());
}

bool IsAutomatic(const PhaseChoice& choice)
{
    return choice.kind <= PhaseChoice::Kind::robust;
}

void ApplyPhase(FftForm& form, const PhaseChoice& choice, bool shift_given)
{
    if (IsAutomatic(choice)) return;
    if (choice.kind == PhaseChoice::Kind::vendor) return ApplyVendorPhase(form, shift_given);
    GlobalBlock& g = form.block();
    form.SetAutoPhase(false);
    if (choice.pivot) g.PivotPoint = std::clamp(*choice.pivot, 0, form.points() - 1);
    form.SetPhase0(choice.p0_deg);
    form.SetPhase1(choice.p1_deg);
}

/// Without them the phases of neighbouring lines have nothing to do with each other.
Status FillMissingPoints(FftForm& form)
{
    if (!form.TakeMissingPoints()) return {};
    Warn(form, fmt::format("By its files the FID lacks its first {} points: zeros stand for them.",
                           -form.block().Slots[0].par.FIDShift));
    return form.WindowChanged();
}

Status ApplyOptions(FftForm& form, const ProcessOptions& options)
{
    const GlobalBlock& g = form.block();
    form.SetAutoPhase(IsAutomatic(options.phase));
    if (options.zero_fill.kind != ZeroFill::Kind::by_settings) {
        const auto factor = PowerOfTwoFactor(options.zero_fill, g.Slots[0].par.FIDPointsRaw);
        if (const Status status = form.SetZeroFill(factor); !status) return status;
    }
    if (options.window)
        if (const Status status = ApplyWindow(form, *options.window); !status) return status;
    if (options.shift)
        form.SetShift(*options.shift);
    else if (const Status status = FillMissingPoints(form); !status)
        return status;
    ApplyPhase(form, options.phase, options.shift.has_value());
    return {};
}

bool IsNativeExtension(const std::string& extension)
{
    return extension == ".tvo1" || extension == ".tvo" || extension == ".tv1";
}

Status WriteOutput(Session& s, const ProcessOptions& options, const std::string& path)
{
    const DataSet& set = s.g.Slots[0];
    const auto row = static_cast<std::size_t>(options.row - 1);
    const std::string extension = ToLower(std::filesystem::path(path).extension().string());
    if (IsNativeExtension(extension)) return Save_Ver4(s, path);
    if (IsListExtension(extension)) return WriteList(s.g, path, extension);
    if (extension == ".npy") return WriteNpy(set, path);
    if (extension == ".csv") return WriteCsv(set, row, options.range_ppm, path);
    return WritePicture(s.g, options, path);
}

bool KnownOutput(const std::string& path)
{
    const std::string extension = ToLower(std::filesystem::path(path).extension().string());
    return extension == ".npy" || extension == ".csv" || IsListExtension(extension) || IsNativeExtension(extension) ||
           IsPicture(path);
}

// The transform as the options want it, in place of the form.
struct ScriptedTransform {
    const ProcessOptions& options;
    TransformUsed used;
    Status status;

    std::string operator()(FftForm& form)
    {
        GlobalBlock& g = form.block();
        const auto row = static_cast<std::int16_t>(options.row - 1);
        // The form has transformed and phased the row that it shows already.
        if (row != g.CurrentRow && row < g.Slots[0].RowCount) form.SetRow(row);
        status = ApplyOptions(form, options);
        if (!status) return "CANCEL";
        used = {true, static_cast<double>(g.Phase0Deg), static_cast<double>(g.Phase1Deg), g.PivotPoint, form.quality()};
        status = form.Command3();
        return status ? "OK" : "CANCEL";
    }
};

} // namespace

namespace {

/// Reads a file and prints what `print` makes of it; a FID is left as it is.
template <class Print>
Exit ReadAndPrint(const std::string& path, bool json, Print print)
{
    Run run;
    bool printed = false;
    run.session.run_fft_form = [&](FftForm&) {
        print(run);
        printed = true;
        return std::string("CANCEL"); // information needs no spectrum
    };
    const Status status = Read_Path(run.session, path, run.type);
    if (printed) return Exit::done;
    if (!status) return Refuse(run, path, status.error(), json);
    print(run);
    return Exit::done;
}

} // namespace

Exit RunInfo(const std::string& path, bool json)
{
    return ReadAndPrint(path, json, [&](const Run& run) {
        PrintReport(Report(*run.g, run.type, path, {}, 0, run.asker.warnings()), json);
    });
}

Exit RunHistory(const std::string& path, bool json)
{
    return ReadAndPrint(path, json, [&](const Run& run) {
        const nlohmann::ordered_json report = HistoryReport(*run.g, path);
        if (json)
            PrintReport(report, true);
        else
            fmt::print("{}", HistoryText(report));
    });
}

Exit RunProcess(const ProcessOptions& options)
{
    for (const std::string& out : options.outputs) {
        if (!KnownOutput(out)) {
            Complain(out,
                     "the extension must be .tvo1, .tvo, .tv1, .npy, .csv, .red, .int, .Ilist, " + PictureExtensions());
            return Exit::usage;
        }
        if (!IsPicture(out)) continue;
        if (const Status size = CheckPicture(options, out); !size) {
            Complain(out, size.error().text);
            return Exit::usage;
        }
    }
    Run run;
    run.asker.SetTableValues(options.table);
    run.asker.SetBlock(options.block);
    if (options.phase.kind == PhaseChoice::Kind::automatic) run.g->settings.robust_phase = 0;
    if (options.phase.kind == PhaseChoice::Kind::robust) run.g->settings.robust_phase = 1;
    run.g->settings.ref_initital = options.file_reference ? 1 : 0;
    ScriptedTransform transform{options, {}, {}};
    run.session.run_fft_form = [&](FftForm& form) { return transform(form); };
    const Status status = Read_Path(run.session, options.path, run.type);
    if (!transform.status) return Refuse(run, options.path, transform.status.error(), options.json);
    if (!status) return Refuse(run, options.path, status.error(), options.json);
    if (!HasRowAndBlock(run, options.path, options.row)) return Exit::bad_parameters;
    if (const Status done = Analyse(*run.g, options.analysis); !done) {
        Complain(options.path, done.error().text);
        return Exit::bad_parameters;
    }
    for (const std::string& out : options.outputs)
        if (const Status written = WriteOutput(run.session, options, out); !written) {
            Complain(out, written.error().text);
            return Exit::not_written;
        }
    auto report = Report(*run.g, run.type, options.path, transform.used, static_cast<std::size_t>(options.row - 1),
                         run.asker.warnings());
    ReportAnalysis(*run.g, options.analysis, report);
    const bool text = !options.json && options.outputs.empty();
    if (!text) TellWarnings(run, options.path);
    if (text || options.json) PrintReport(report, options.json);
    return Exit::done;
}

} // namespace nmr
