#include "session/picture_commands.h"

#include "core/error_report.h"
#include "core/numbers.h"
#include "layout/spectrum_scene.h"
#include "session/display_scope.h"
#include "session/folders.h"
#include "session/read_flow.h"
#include "session/save_flow.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr char kMillimetres[] = "mm", kPixels[] = "pixels";
constexpr double kPageMargin = 10;    // mm at each side, at least
constexpr double kPaperTolerance = 2; // mm by which a printer may report another size of the same paper
constexpr int kOwnPaperCodes = 100;   // of a printer's own papers, from here on

/// The plot as it is shown, drawn for paper. `absolute` holds the row where the magnitude is shown.
SpectrumScene ShownScene(const GlobalBlock& g, std::vector<float>& absolute)
{
    SceneOptions options;
    options.row = g.CurrentRow;
    options.left_ppm = static_cast<double>(g.ViewLeft);
    options.right_ppm = static_cast<double>(g.ViewRight);
    options.magnification = Magnification(g.Slots[0]);
    options.paper = true;
    if (g.AbsoluteMode != 0) absolute = AbsoluteRow(g.Slots[0], g.CurrentRow);
    options.instead = absolute;
    return MakeScene(g.Slots[0], g.settings, options);
}

struct ShownPlot {
    explicit ShownPlot(const GlobalBlock& g) : scene(ShownScene(g, absolute)) {}
    DrawPage draw() const
    {
        return [this](Canvas& canvas, const RectD& rect) { DrawSpectrumScene(canvas, rect, scene); };
    }
    std::vector<float> absolute;
    SpectrumScene scene;
};

std::string StemOfData(const GlobalBlock& g)
{
    const std::string stem = fs::path(g.Slots[0].par.FileName).stem().string();
    return stem.empty() ? "spectrum" : stem;
}

FilterRow FilterOf(const PictureFormatRow& row)
{
    return {std::string(row.caption), "*" + std::string(row.extension)};
}

std::optional<std::string> AskForFile(Session& s, const PictureFormatRow& row, const char* title)
{
    FileDialog dialog;
    dialog.kind = FileDialog::Kind::save;
    dialog.title = title;
    dialog.filters = {FilterOf(row)};
    dialog.folder = DialogFolder(s.g, FolderGroup::image);
    dialog.extension = row.extension;
    dialog.name = StemOfData(s.g) + dialog.extension;
    const auto choice = s.asker.File(dialog);
    if (!choice || choice->path.empty()) return std::nullopt;
    return AbsolutePath(choice->path);
}

/// Makes the picture and puts it in the place of the file; a failure leaves what was there.
void SaveJob(Session& s, const PictureJob& job, const std::string& path)
{
    const auto picture = s.pictures->Make(job);
    if (!picture) {
        ErrorReport(s.asker, picture.error());
        return;
    }
    const ByteSpan bytes = std::as_bytes(std::span(*picture));
    if (const Status saved = Safe_Save(path, bytes, OldVersion::remove); !saved) {
        ErrorReport(s.asker, saved.error());
        return;
    }
    RememberFolder(s.g, FolderGroup::image, path);
    s.asker.Notice(fs::path(path).filename().string() + " is written.");
}

/// The plot's own size on paper in the middle of the page, smaller where the page has no room for it.
RectD PlotOnPage(const RectD& page, const Settings& settings)
{
    const double margin = kPageMargin * kUnitsPerMillimetre;
    double width = settings.x_length * 10 * kUnitsPerMillimetre, height = settings.y_length * 10 * kUnitsPerMillimetre;
    const double fit = std::min({1.0, (page.width - 2 * margin) / width, (page.height - 2 * margin) / height});
    width *= fit, height *= fit;
    return {page.x + (page.width - width) / 2, page.y + (page.height - height) / 2, width, height};
}

bool SamePaper(const RectD& a, const RectD& b)
{
    return std::abs(a.width - b.width) <= kPaperTolerance && std::abs(a.height - b.height) <= kPaperTolerance;
}

/// False when the user gives up because the printer has no such paper.
bool TakePaper(Session& s, PrintDevice& printer, const PrintChoice& choice)
{
    for (;;) {
        const RectD reported = printer.SetPaper(choice);
        if (choice.paper >= kOwnPaperCodes || SamePaper(reported, PaperSizeOf(choice.paper, choice.orientation)))
            return true;
        const Button answer = s.asker.Message({"Can not print the paper\nChange Printer Name, or Paper Size",
                                               "Print Size Error",
                                               {Button::abort, Button::retry, Button::ignore},
                                               Icon::warning,
                                               true});
        if (answer != Button::retry) return answer == Button::ignore;
    }
}

void PrintToFile(Session& s, const PrintChoice& choice, const DrawPage& draw)
{
    const PictureFormatRow& pdf = RowOf(PictureFormat::pdf);
    const auto path = AskForFile(s, pdf, "Print");
    if (!path) return;
    const RectD paper = PaperSizeOf(choice.paper, choice.orientation);
    SaveJob(s, {draw, PictureFormat::pdf, {paper.width, paper.height, true}, StemOfData(s.g)}, *path);
}

void PrintOnPaper(Session& s, const PrintChoice& choice, const DrawPage& draw)
{
    const auto printer = s.pictures->Open(choice.printer);
    if (printer == nullptr) {
        s.asker.Message({"No Printer is available", "Printer Error"});
        return;
    }
    if (!TakePaper(s, *printer, choice)) return;
    s.asker.Notice("Now Processing");
    if (!printer->Print(StemOfData(s.g), draw))
        s.asker.Message({"Document could not be printed\nPlease, Retry", "Print Error"});
}

} // namespace

// ---- what the forms hold

PictureChoice PictureChoice::From(const Settings& settings)
{
    PictureChoice choice;
    choice.size.width = std::round(settings.x_length * 10);
    choice.size.height = std::round(settings.y_length * 10);
    return choice;
}

PictureChoice PictureChoice::From(const forms::Values& values)
{
    using namespace forms;
    PictureChoice choice;
    choice.format = PictureFormatOf("a" + Text(values, kPictureFormat)).value_or(PictureFormat::pdf);
    choice.size = {Number(values, kPictureWidth), Number(values, kPictureHeight), Text(values, kPictureUnit) != kPixels,
                   Number(values, kPictureDpi)};
    return choice;
}

forms::Values PictureChoice::ToValues() const
{
    using namespace forms;
    return {{kPictureFormat, std::string(RowOf(format).extension)},
            {kPictureWidth, NumberValue(size.width)},
            {kPictureHeight, NumberValue(size.height)},
            {kPictureUnit, size.millimetres ? kMillimetres : kPixels},
            {kPictureDpi, NumberValue(DpiOf(size))}};
}

std::string PictureChoice::Hint() const
{
    const Status possible = CheckPictureSize(size, format);
    if (!possible) {
        std::string text = possible.error().text;
        text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
        return text + ".";
    }
    const RectD units = UnitsOf(size), pixels = PixelsOf(size);
    if (!RowOf(format).pixels)
        return fmt::format("{:.1f} x {:.1f} mm", units.width / kUnitsPerMillimetre, units.height / kUnitsPerMillimetre);
    constexpr double kBytesAPixel = 3, kPngShare = 1.0 / 20;
    const double bytes = pixels.width * pixels.height * kBytesAPixel * (format == PictureFormat::png ? kPngShare : 1);
    return fmt::format("{:.0f} x {:.0f} pixels, {} Kbyte", pixels.width, pixels.height,
                       FormatNumber("#####0.0#", bytes / 1024));
}

PrintChoice PrintChoice::From(const Settings& settings)
{
    PrintChoice choice;
    choice.printer = settings.user_printer.empty() ? kPdfPrinter : settings.user_printer;
    choice.paper = PaperOf(settings.paper_size).code;
    choice.orientation = settings.paper_orient == static_cast<int>(Orientation::portrait) ? Orientation::portrait
                                                                                          : Orientation::landscape;
    return choice;
}

PrintChoice PrintChoice::From(const forms::Values& values)
{
    using namespace forms;
    PrintChoice choice;
    choice.printer = Text(values, kPrinter);
    choice.paper = static_cast<int>(Number(values, kPaper));
    choice.orientation = Text(values, kLandscape) == Switch(true) ? Orientation::landscape : Orientation::portrait;
    return choice;
}

forms::Values PrintChoice::ToValues() const
{
    using namespace forms;
    return {
        {kPrinter, printer}, {kPaper, NumberValue(paper)}, {kLandscape, Switch(orientation == Orientation::landscape)}};
}

void PrintChoice::Keep(Settings& settings) const
{
    settings.user_printer = printer;
    settings.paper_size = paper;
    settings.paper_orient = static_cast<std::int32_t>(orientation);
}

// ---- commands

void SavePicture_Click(Session& s)
{
    if (s.pictures == nullptr) return;
    const PictureChoice before = s.pictures->last.value_or(PictureChoice::From(s.g.settings));
    const FormAnswer answer = s.asker.Form({forms::kSavePicture, before.ToValues()});
    if (answer.dialog_result != forms::kOk) return;
    PictureChoice choice = PictureChoice::From(answer.values);
    s.pictures->last = choice;
    const auto path = AskForFile(s, RowOf(choice.format), "Save Picture");
    if (!path) return;
    // A name with the extension of another format means that format.
    choice.format = PictureFormatOf(*path).value_or(choice.format);
    const ShownPlot plot(s.g);
    SaveJob(s, {plot.draw(), choice.format, choice.size, plot.scene.title}, *path);
}

void CopyPicture_Click(Session& s)
{
    if (s.pictures == nullptr) return;
    const PictureChoice choice = s.pictures->last.value_or(PictureChoice::From(s.g.settings));
    const ShownPlot plot(s.g);
    std::vector<CopiedPicture> pictures;
    // The bitmap is the quickest of those made of pixels; the clipboard has it in any of their formats.
    for (const PictureFormat format :
         {PictureFormat::svg, PictureFormat::pdf, PictureFormat::emf, PictureFormat::bmp}) {
        if (!CheckPictureSize(choice.size, format)) continue; // a poster has too many pixels, but goes as a drawing
        auto picture = s.pictures->Make({plot.draw(), format, choice.size, plot.scene.title});
        if (!picture) {
            ErrorReport(s.asker, picture.error());
            return;
        }
        pictures.push_back({format, std::move(*picture)});
    }
    s.pictures->Copy(pictures);
    s.asker.Notice("The plot is on the clipboard.");
}

void PrintPicture_Click(Session& s)
{
    if (s.pictures == nullptr) return;
    const FormAnswer answer = s.asker.Form({forms::kPrint, PrintChoice::From(s.g.settings).ToValues()});
    if (answer.dialog_result != forms::kOk) return;
    const PrintChoice choice = PrintChoice::From(answer.values);
    choice.Keep(s.g.settings);
    s.g.SettingsChanged = true;
    const ShownPlot plot(s.g);
    const DrawPage draw = [&](Canvas& canvas, const RectD& page) {
        DrawSpectrumScene(canvas, PlotOnPage(page, s.g.settings), plot.scene);
    };
    if (choice.printer == kPdfPrinter)
        PrintToFile(s, choice, draw);
    else
        PrintOnPaper(s, choice, draw);
}

} // namespace nmr
