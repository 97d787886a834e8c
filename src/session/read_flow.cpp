#include "session/read_flow.h"

#include "analysis/integrals.h"
#include "core/error_report.h"
#include "core/file_layer.h"
#include "core/history.h"
#include "core/log.h"
#include "core/text.h"
#include "fid/fft_pipeline.h"
#include "formats/bruker.h"
#include "formats/csv.h"
#include "formats/detect.h"
#include "formats/registry.h"
#include "formats/varian.h"
#include "session/array_choice.h"
#include "session/backup.h"
#include "session/display_scope.h"
#include "session/fft_form.h"
#include "session/fid_intake.h"
#include "session/folders.h"
#include "session/forms.h"
#include "session/save_flow.h"
#include "session/tool_commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace nmr {
namespace {

constexpr char kWhere[] = "NMR1D_m11_Click/1DF1";
constexpr int kFileNotFound = 53; // run-time error number
constexpr float kReadYFill = 0.95F;
constexpr int kBrukerDirectory = 4, kBrukerFlat = 8;
constexpr std::int16_t kSequential = 3; // AcqMode
constexpr int kVarian = 6;
// The two native families carry their own display range.
constexpr int kNativeVer3 = 11;
constexpr int kNativeVer4 = 12;

bool IsNative(std::int32_t family)
{
    return family == kNativeVer3 || family == kNativeVer4;
}

void Warn(Asker& asker, const char* text, const char* title)
{
    asker.Message({text, title, {Button::ok}, Icon::warning, true});
}

Status Cancelled()
{
    return Error{ErrorCode::cancelled, kWhere, "Cancelled"};
}

void Refresh(const Session& s)
{
    if (s.display_changed) s.display_changed();
}

/// What the user sees of a failure, and the failure itself.
Status Refuse(Asker& asker, const Error& error)
{
    if (error.user_knows) return error;
    switch (error.code) {
    case ErrorCode::not_nmr:
        Warn(asker, "Non NMR Data !", "Data Error");
        break;
    case ErrorCode::two_dimensional:
        Warn(asker, "2D Data !\nRetry", "Data Error");
        break;
    case ErrorCode::too_large:
    case ErrorCode::bad_value:
        Warn(asker, "Data is too Large, or Parameter Error", "Data Error");
        asker.Notice(error.text); // the box does not say which parameter
        break;
    case ErrorCode::in_use:
        Warn(asker, "This File is under using by other application", "File Warning");
        break;
    case ErrorCode::unsupported:
        Warn(asker, error.text.c_str(), "Data Error");
        break;
    case ErrorCode::cancelled:
        break;
    default:
        ErrorReport(asker, error);
    }
    return error;
}

/// Whether another file of the dialog may be tried after this refusal.
bool MayRetry(ErrorCode code)
{
    return code == ErrorCode::not_nmr || code == ErrorCode::two_dimensional || code == ErrorCode::unsupported ||
           code == ErrorCode::not_found || code == ErrorCode::unreadable;
}

Error MissingError(const std::string& path)
{
    if (const std::string obstacle = ReadObstacle(path); !obstacle.empty())
        return {ErrorCode::unreadable, kWhere, path + ": " + obstacle};
    return {ErrorCode::not_found, kWhere, FileErrorText(kFileNotFound) + ": " + path};
}

Error KindError(const FileType& type)
{
    if (const std::string obstacle = ReadObstacle(type.path); !obstacle.empty())
        return {ErrorCode::unreadable, kWhere, type.path + ": " + obstacle};
    if (IsTwoDimensional(type.code)) return {ErrorCode::two_dimensional, kWhere, "Two-dimensional data"};
    return {ErrorCode::not_nmr, kWhere, "No NMR data that this program knows"};
}

struct Candidate {
    FileType type;
    const FormatRow* row = nullptr;
    std::string file; ///< absolute
};

/// Finds out what a file is.
using Detection = FileType (*)(const std::string& path, Asker& asker, const NuclearTable& nuclides);

/// Everything that is known before slot 0 is touched.
Result<Candidate> Inspect(Session& s, const std::string& path, FileType& detected, Detection detect)
{
    if (!ResolvePath(path)) return MissingError(path);
    Candidate found;
    found.type = detected = detect(path, s.asker, s.g.nuclides);
    // Rows measured along a list of values are an array, though the file is that of a plane.
    if (IsRowArray(found.type)) found.type = AsRowArray(found.type);
    s.g.DataKind = found.type.code;
    if (!IsOneDimensional(found.type.code)) return KindError(found.type);
    s.g.FormatIndex = FamilyOf(found.type.code);
    found.row = FindFormat(s.g.FormatIndex);
    if (found.row == nullptr || found.row->read == nullptr) {
        const std::string_view family = found.row == nullptr ? std::string_view("An unknown family") : found.row->name;
        return Error{ErrorCode::unsupported, kWhere,
                     fmt::format("{}: data of this family are recognised, but can't be read yet", family)};
    }
    found.file = AbsolutePath(found.type.path);
    if (IsFileInUse(s.g, found.file))
        return Error{ErrorCode::in_use, kWhere, "This File is under using by other application"};
    return found;
}

/// Unsaved data (DataChanged 1, which they keep) on the way out, with what belongs to their display.
struct Replaced {
    DataSet set;
    std::int16_t current_row = 0;
    float view_left = 0, view_right = 0;
    bool no_spectrum_yet = false, no_fid_file = false;
};

std::optional<Replaced> PutAside(GlobalBlock& g)
{
    if (g.Slots[0].par.DataChanged != 1) return std::nullopt;
    Replaced old{std::move(g.Slots[0]), g.CurrentRow, g.ViewLeft, g.ViewRight, g.NoSpectrumYet, g.NoFIDFile};
    g.Slots[0] = DataSet{};
    return old;
}

void BringBack(GlobalBlock& g, Replaced& old, bool fid_overwritten)
{
    // The work arrays have the length of the file that failed; they must fit these rows again.
    g.Slots[0].RowCount = old.set.RowCount;
    static_cast<void>(AllocateSpecBuffer(g, old.set.spec.AllocatedPoints, 0));
    g.Slots[0] = std::move(old.set);
    g.CurrentRow = old.current_row;
    g.ViewLeft = old.view_left;
    g.ViewRight = old.view_right;
    g.NoSpectrumYet = old.no_spectrum_yet;
    g.NoFIDFile = old.no_fid_file || fid_overwritten;
    UpdateShownHz(g);
}

void Empty(Session& s)
{
    s.g.Undo.Empty();
    s.g.PointUndo.Empty();
    ClearDataSet(s.g, 0);
    static_cast<void>(AllocateSpecBuffer(s.g, s.g.DefaultPoints, 0));
    s.g.NoSpectrumYet = false;
    ClaimFile(s.g, {});
    ShowFileTitle(s, {});
}

Status CheckRead(const DataSet& set)
{
    const ParamBlock& par = set.par;
    if (par.POINT > kMaxPoints || set.RowCount > kMaxRows)
        return Error{ErrorCode::too_large, kWhere, fmt::format("{} points in {} rows", par.POINT, set.RowCount)};
    if (par.POINT < 1 || set.spec.AllocatedPoints < par.POINT)
        return Error{ErrorCode::bad_value, kWhere, "The file holds no points"};
    return {};
}

Status RunReader(Session& s, const Candidate& found)
{
    GlobalBlock& g = s.g;
    ClearDataSet(g, 0);
    ParamBlock& par = g.Slots[0].par;
    // Before the reader, so that a file's own scale wins.
    par.YFill = kReadYFill;
    par.DispBase = 0.0F;
    g.DataScale = 1.0F;
    g.CurrentRow = 0;
    par.SMODE = IsSpectrum(found.type.code) ? 1 : 0;
    par.DataKind = static_cast<std::int16_t>(found.type.code);
    par.DTYPE = found.type.tag;
    if (Status status = found.row->read({g, s.asker, found.type, 0}); !status) return status;
    return CheckRead(g.Slots[0]);
}

void FillFonts(DataSet& set, const Settings& settings)
{
    for (FontRec* font : {&set.FontMain, &set.FontPeak, &set.FontInt})
        if (font->Name.empty())
            font->Name = settings.default_font_eng.empty() ? FontRec{}.Name : settings.default_font_eng;
}

/// Fields that no reader has to know about.
void CompleteParameters(GlobalBlock& g, const Candidate& found)
{
    DataSet& set = g.Slots[0];
    ParamBlock& par = set.par;
    par.FileName = found.file;
    if (par.OrgFile.empty()) par.OrgFile = found.file;
    if (!IsNative(g.FormatIndex)) NoteOriginal(set, found.file);
    if (par.RESOL == 0) par.RESOL = static_cast<double>(par.FREQU) / par.POINT;
    if (par.EXMOD.empty()) {
        const std::size_t colon = found.type.mode.find(':');
        if (colon != std::string::npos) par.EXMOD = found.type.mode.substr(colon + 1);
    }
    par.DataChanged = 0;
    par.DataFromFile = 1;
    FillFonts(set, g.settings);
    FillDataLimits(set, g.CurrentRow);
}

ArraySort SortOf(const GlobalBlock& g)
{
    return static_cast<ArraySort>(std::clamp(g.settings.array_sort, 0, 2));
}

void FinishSpectrum(GlobalBlock& g)
{
    DataSet& set = g.Slots[0];
    SortRows(set, SortOf(g));
    FillDisplayLimits(set);
    // A file of our own brings its scale.
    if (set.par.YMag == 0 && set.par.YFill > 0) set.par.YMag = set.par.DataMax / set.par.YFill;
    set.par.YOffset = set.par.DataMin;
    if (set.par.OBFRQ0PPMRead == 0) set.par.OBFRQ0PPMRead = set.par.OBFRQ0PPM;
    CopyDataToSource(set);
    Calc_All_Integrals(g); // a file holds the regions, not their sums
    g.NoSpectrumYet = false;
}

Status PrepareFid(GlobalBlock& g, const FormatRow& row)
{
    DataSet& set = g.Slots[0];
    if (Status padded = PadToPowerOfTwo(g); !padded) return padded;
    const bool is_bruker = row.family == kBrukerDirectory || row.family == kBrukerFlat;
    if (is_bruker && set.par.AcqMode == kSequential) AlignSequential(g);
    ApplySense(set, row.sense);
    SortRows(set, SortOf(g));
    set.par.DataVersion = FormatNumber("###0.00", set.par.ObsCenter * 20.0);
    set.ProcMark1 = set.ProcMark2 = 1;
    g.NoSpectrumYet = true;
    return {};
}

/// The form's answer for a FID that is ready.
Status Transform(Session& s)
{
    GlobalBlock& g = s.g;
    g.NoFIDFile = !Write_FID_Work(g);
    FftForm form(g, s.asker);
    if (Status opened = form.Open(); !opened) return opened;
    if (s.run_fft_form)
        g.DialogResult = s.run_fft_form(form);
    else if (Status done = form.Command3(); !done)
        return done;
    if (g.DialogResult != forms::kOk) return Error{ErrorCode::cancelled, kWhere, "The transform was abandoned"};
    ParamBlock& par = g.Slots[0].par;
    par.SMODE = 1;
    // No file holds the spectrum yet.
    par.DataChanged = 1;
    par.DataFromFile = 0;
    g.NoSpectrumYet = false;
    FillDataLimits(g.Slots[0], g.CurrentRow);
    return {};
}

/// From the points of the file to a spectrum.
Status Complete(Session& s, const Candidate& found, bool& fid_overwritten)
{
    if (s.g.Slots[0].par.SMODE == 1) {
        FinishSpectrum(s.g);
        return {};
    }
    if (Status ready = PrepareFid(s.g, *found.row); !ready) return ready;
    fid_overwritten = true;
    return Transform(s);
}

Status FillSlot(Session& s, const Candidate& found, bool& fid_overwritten)
{
    if (Status read = RunReader(s, found); !read) return Refuse(s.asker, read.error());
    const Result<ArrayUse> use = AskArrayUse(s);
    if (!use) return use.error();
    CompleteParameters(s.g, found);
    if (Status done = Complete(s, found, fid_overwritten); !done) return Refuse(s.asker, done.error());
    if (Status spread = SpreadRows(s.g, *use); !spread) return Refuse(s.asker, spread.error());
    return {};
}

void LeaveDummy(const FileType& type)
{
    if (FamilyOf(type.code) == kBrukerDirectory) LeaveBrukerDummy(type);
    if (FamilyOf(type.code) == kVarian) LeaveVarianDummy(type);
}

void RememberFile(Session& s, const Candidate& found)
{
    GlobalBlock& g = s.g;
    RememberFolder(g, FolderGroup::read, found.file);
    ClaimFile(g, found.file);
    AddRecentFile(g, found.file);
    if (s.may_leave_dummy_files) LeaveDummy(found.type);
    ShowFileTitle(s, found.file);
    WriteLog(g, s.asker, kLogRead, found.file);
}

Status ReadCandidate(Session& s, const Candidate& found)
{
    GlobalBlock& g = s.g;
    ReadBackup backup(g);
    MultiSpectra deleted;
    if (!ConfirmDeleteMulti(s, MultiState::normal, &deleted)) {
        backup.Withdraw();
        return Cancelled();
    }
    std::optional<Replaced> old = PutAside(g);
    bool fid_overwritten = false;
    Status filled = FillSlot(s, found, fid_overwritten);
    if (!filled) {
        backup.Withdraw();
        if (old)
            BringBack(g, *old, fid_overwritten);
        else
            Empty(s);
        for (auto& [slot, set] : deleted) g.Slots[slot] = std::move(set);
        Refresh(s);
        return filled;
    }
    // The steps belong to the data that are gone; after a failure, which brings those back, they hold.
    g.Undo.Empty();
    g.PointUndo.Empty();
    backup.Offer();
    if (!IsNative(g.FormatIndex)) Set_Display_Range(g);
    RememberFile(s, found);
    Refresh(s);
    if (s.notes_of_read) s.notes_of_read(g.Slots[0].Warnings);
    return {};
}

Status ReadFrom(Session& s, const std::string& path, FileType& detected, Detection detect = ReadFileType)
{
    const Result<Candidate> found = Inspect(s, path, detected, detect);
    if (!found) return Refuse(s.asker, found.error());
    return ReadCandidate(s, *found);
}

/// True when the data in slot 0 may go.
bool MayReplaceData(Session& s)
{
    return Settle_Unsaved(s, "Caution!", "Data was Changed");
}

std::optional<std::string> AskForFile(Session& s)
{
    GlobalBlock& g = s.g;
    FileDialog dialog;
    dialog.title = "Read Data";
    dialog.filters = OpenDialogFilters(g);
    const int last = std::max(static_cast<int>(dialog.filters.size()), 1);
    dialog.filter_index = std::clamp(g.settings.initiatl_file, 1, last);
    dialog.folder = DialogFolder(g, FolderGroup::read);
    const std::optional<FileChoice> choice = s.asker.File(dialog);
    if (!choice || choice->path.empty()) return std::nullopt;
    g.settings.initiatl_file = choice->filter_index;
    return choice->path;
}

std::optional<std::string> AskForTable(Session& s)
{
    FileDialog dialog;
    dialog.title = "Read CSV Data";
    dialog.filters = {{"CSV", "*.csv;*.txt;*.dat;*.asc"}, {"All File", "*.*"}};
    dialog.folder = DialogFolder(s.g, FolderGroup::read);
    const std::optional<FileChoice> choice = s.asker.File(dialog);
    if (!choice || choice->path.empty()) return std::nullopt;
    return choice->path;
}

} // namespace

std::string WindowTitle(const std::string& file)
{
    return fmt::format("{:<20}{}", "NMR 1D", file);
}

Status NMR1D_m112_Click(Session& s)
{
    if (!Close_Tool(s)) return Cancelled();
    FileType detected;
    if (!MayReplaceData(s)) return Cancelled();
    for (;;) {
        const std::optional<std::string> path = AskForTable(s);
        if (!path) return Cancelled();
        Status status = ReadFrom(s, *path, detected, CsvFileType);
        if (status || !MayRetry(status.error().code)) return status;
    }
}

std::string NotesLine(const std::vector<std::string>& notes)
{
    if (notes.empty()) return {};
    return fmt::format("{} {} on reading: {}", notes.size(), notes.size() == 1 ? "note" : "notes", notes.front());
}

void ShowFileTitle(const Session& s, const std::string& file)
{
    if (s.set_title) s.set_title(WindowTitle(file));
}

Status NMR1D_m11_Click(Session& s)
{
    if (!Close_Tool(s)) return Cancelled();
    FileType detected;
    const std::string named = std::exchange(s.g.CmdLineFile, {});
    if (!MayReplaceData(s)) return Cancelled();
    if (!named.empty()) return ReadFrom(s, named, detected);
    for (;;) {
        const std::optional<std::string> path = AskForFile(s);
        if (!path) return Cancelled();
        Status status = ReadFrom(s, *path, detected);
        if (status || !MayRetry(status.error().code)) return status;
    }
}

Status Read_Path(Session& s, const std::string& path)
{
    FileType detected;
    return Read_Path(s, path, detected);
}

Status Read_Path(Session& s, const std::string& path, FileType& detected)
{
    if (!Close_Tool(s)) return Cancelled();
    if (!MayReplaceData(s)) return Cancelled();
    return ReadFrom(s, path, detected);
}

bool ConfirmDeleteMulti(Session& s, MultiState state, MultiSpectra* deleted)
{
    GlobalBlock& g = s.g;
    const std::int16_t mark = std::exchange(g.Slots[0].par.SubKind, std::int16_t{0});
    const auto in_use = [](const DataSet& set) { return set.par.POINT > 0; };
    if (state == MultiState::keep || std::none_of(g.Slots.begin() + 1, g.Slots.end(), in_use)) return true;
    const FormAnswer answer = s.asker.Form({forms::kDeleteMulti, {}});
    if (answer.dialog_result == forms::kPreserve) return true;
    if (answer.dialog_result != forms::kDeleteAll) {
        g.Slots[0].par.SubKind = mark; // the data stay as they were
        return false;
    }
    for (std::int16_t slot = 1; slot < kSlotCount; ++slot) {
        DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
        if (deleted != nullptr && !IsEmpty(set)) deleted->emplace_back(slot, std::move(set));
        ClearDataSet(g, slot);
        set.spec = SpecBuffer{};
    }
    return true;
}

void Set_Display_Range(GlobalBlock& g)
{
    TakeTickPreset(g);
    const ShownRange preset = GetPreset(g.settings, NucleusGroup(g.Slots[0].par.OBNUC), 1, XUnit::ppm);
    const ShownRange axis = AxisEnds(g.Slots[0]);
    // A preset beside the data would show an empty plot.
    if (preset.right >= axis.left || preset.left <= axis.right || !(preset.left > preset.right)) {
        Show_All_Data(g);
        return;
    }
    g.ViewLeft = static_cast<float>(preset.left);
    g.ViewRight = static_cast<float>(preset.right);
    UpdateShownHz(g);
}

void Show_All_Data(GlobalBlock& g)
{
    const ShownRange axis = AxisEnds(g.Slots[0]);
    g.ViewLeft = static_cast<float>(axis.left);
    g.ViewRight = static_cast<float>(axis.right);
    UpdateShownHz(g);
}

} // namespace nmr
