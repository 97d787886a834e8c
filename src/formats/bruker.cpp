// Finding and reading the files of a Bruker data set.

#include "formats/bruker.h"

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

namespace fs = std::filesystem;

constexpr int kFlatFamily = 8;
// Nothing beyond the largest data set and its padding is looked at.
constexpr std::size_t kMaxFile = std::size_t{2} * kMaxPoints * 8 + 4096;
constexpr std::string_view kDataWhere = "ReadDataBruker/1DDRW";

BrukerFamily Family(const FileType& type)
{
    return FamilyOf(type.code) == kFlatFamily ? BrukerFamily::flat : BrukerFamily::directory;
}

std::string InFolder(const std::string& folder, std::string_view name)
{
    const auto path = FindInFolder(folder, name);
    return path ? path->string() : std::string();
}

/// The same name with another extension; empty when there is no such file.
std::string Sibling(const std::string& path, std::string_view extension)
{
    const auto found = ResolvePath(fs::path(path).replace_extension(extension).string());
    return found ? found->string() : std::string();
}

/// Folder of the processing parameters that belong to an experiment: the lowest number, as a rule 1.
std::string ProcessedFolder(const std::string& experiment)
{
    const std::string pdata = InFolder(experiment, "pdata");
    if (pdata.empty()) return {};
    std::string best;
    std::int64_t lowest = 0;
    std::error_code failed;
    for (fs::directory_iterator entry(pdata, failed), end; !failed && entry != end; entry.increment(failed)) {
        const auto number = ParseInteger(entry->path().filename().string());
        if (!number || (!best.empty() && *number >= lowest)) continue;
        if (InFolder(entry->path().string(), "procs").empty()) continue;
        best = entry->path().string();
        lowest = *number;
    }
    return best;
}

std::string AcquisitionFile(const std::string& folder)
{
    const std::string acqus = InFolder(folder, "acqus");
    return acqus.empty() ? InFolder(folder, "acqu") : acqus;
}

/// Where everything of one data set stands; an empty path means that it is not there.
struct BrukerPaths {
    std::string acqus, procs, title_folder;
    std::string data, imaginary; ///< fid, or 1r and 1i
};

BrukerPaths FindFlat(const FileType& type)
{
    BrukerPaths paths;
    paths.data = type.path;
    paths.acqus = Sibling(type.path, ".aqs");
    paths.procs = Sibling(type.path, ".fqs");
    if (IsSpectrum(type.code)) paths.imaginary = Sibling(type.path, ".1i");
    return paths;
}

BrukerPaths FindFid(const std::string& folder, std::string_view name)
{
    BrukerPaths paths;
    paths.data = InFolder(folder, name);
    paths.acqus = AcquisitionFile(folder);
    paths.title_folder = ProcessedFolder(folder);
    paths.procs = InFolder(paths.title_folder.empty() ? folder : paths.title_folder, "procs");
    if (paths.title_folder.empty()) paths.title_folder = folder;
    return paths;
}

/// A spectrum stands in exp/pdata/1 and its acqus in exp, or all files are in one folder.
BrukerPaths FindSpectrum(const std::string& folder)
{
    BrukerPaths paths;
    paths.data = InFolder(folder, "1r");
    paths.imaginary = InFolder(folder, "1i");
    paths.procs = InFolder(folder, "procs");
    paths.title_folder = folder;
    paths.acqus = AcquisitionFile(folder);
    if (paths.acqus.empty()) paths.acqus = AcquisitionFile((fs::path(folder) / ".." / "..").string());
    return paths;
}

BrukerPaths FindFiles(const FileType& type)
{
    if (Family(type) == BrukerFamily::flat) return FindFlat(type);
    return IsSpectrum(type.code) ? FindSpectrum(type.directory)
                                 : FindFid(type.directory, EqualsNoCase(type.data_name, "SER") ? "ser" : "fid");
}

/// First and second line that are not blank.
std::pair<std::string, std::string> FirstLines(const std::string& path)
{
    std::pair<std::string, std::string> lines;
    if (path.empty()) return lines;
    const auto head = ReadFileHead(path, 4096);
    if (!head) return lines;
    std::string_view text(reinterpret_cast<const char*>(head->data()), head->size());
    while (!text.empty() && lines.second.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string line = FromUnknownCodePage(Trim(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!line.empty()) (lines.first.empty() ? lines.first : lines.second) = line;
    }
    return lines;
}

void ReadTitle(const std::string& folder, ParamBlock& par)
{
    if (folder.empty()) return;
    std::string path = InFolder(folder, "title");
    if (path.empty()) path = InFolder(folder, "parm.txt");
    const auto [title, more] = FirstLines(path);
    par.ExpTitle = title;
    par.COMNT = title;
    par.EXPCM = more;
}

Result<BrukerParameters> ReadVendorFile(const std::string& path, std::string_view where, std::string_view name)
{
    if (path.empty()) return Error{ErrorCode::not_found, std::string(where), fmt::format("there is no {}", name)};
    auto parameters = BrukerParameters::Read(path);
    if (!parameters) return Error{parameters.error().code, std::string(where), parameters.error().text};
    if (!parameters->IsVendorFile())
        return Error{ErrorCode::bad_format, std::string(where), fmt::format("{} is no Bruker parameter file", name)};
    return parameters;
}

void WarnWhenCut(DataSet& set, const BrukerParameters& parameters, std::string_view name)
{
    if (!parameters.ended()) set.Warnings.push_back(fmt::format("{} ends early: parameters may be missing.", name));
}

DataSet& SlotOf(const ReadRequest& request)
{
    return request.g.Slots[static_cast<std::size_t>(request.slot)];
}

/// acqus, or acqu beside it (what was set for the next run) when acqus has no useful content.
Result<BrukerParameters> ReadAcquisition(DataSet& set, const std::string& path, std::string_view where)
{
    const auto useful = [](const Result<BrukerParameters>& acqus) { return acqus && acqus->Number("SFO1"); };
    auto acqus = ReadVendorFile(path, where, "acqus");
    const std::string spare = path.empty() ? path : InFolder(fs::path(path).parent_path().string(), "acqu");
    if (!useful(acqus) && !spare.empty())
        if (auto acqu = ReadVendorFile(spare, where, "acqu"); useful(acqu)) {
            acqus = std::move(acqu);
            set.Warnings.emplace_back(
                "acqus tells no frequency: acqu, what was set for the next run, is read instead.");
        }
    if (acqus) WarnWhenCut(set, *acqus, "acqus");
    return acqus;
}

/// The file's own 0 ppm: SF of procs, unless it belongs to another nucleus.
void TakeReference(const BrukerParameters& procs, ParamBlock& par)
{
    const double mhz = procs.Number("SF").value_or(0);
    if (IsSameNucleus(mhz, par.ObsCenter)) par.FileRefMHz = mhz;
}

Error PointsError(const Error& error, std::string_view where)
{
    return {error.code, std::string(where), error.text};
}

Result<Bytes> ReadPoints(const std::string& path, std::string_view where, std::string_view name)
{
    if (path.empty()) return Error{ErrorCode::not_found, std::string(where), fmt::format("there is no {}", name)};
    auto bytes = ReadFileHead(path, kMaxFile);
    if (!bytes) return PointsError(bytes.error(), where);
    return bytes;
}

/// "Form120", where the settings want it: old files do not tell what their numbers are.
void AskNumberType(const ReadRequest& request, BrukerParameters& parameters)
{
    constexpr std::pair<std::string_view, BrukerNumber> kWords[] = {
        {"LONG", BrukerNumber::int32}, {"SINGLE", BrukerNumber::float32}, {"DOUBLE", BrukerNumber::float64}};
    if (request.g.settings.ask_data_type != 1) return;
    const std::string answer = request.asker.Form({"Form120", {}}).dialog_result;
    for (const auto& [word, number] : kWords)
        if (answer == word) parameters.asked_number = number;
}

/// Rows may be too many for the memory together: they are read piece by piece.
Status ReadArray(const ReadRequest& request, const BrukerPaths& paths, BrukerParameters& acqus,
                 const BrukerParameters* procs)
{
    if (paths.data.empty()) return Error{ErrorCode::not_found, std::string(kDataWhere), "there is no ser"};
    const auto file = OpenedFile::Open(paths.data, kAnySize);
    if (!file) return PointsError(file.error(), kDataWhere);
    AskNumberType(request, acqus);
    return ReadBrukerArray(request.g, request.slot, acqus, procs, Family(request.type), request.type.directory, *file);
}

Status ReadOneFid(const ReadRequest& request, const BrukerPaths& paths, BrukerParameters& acqus,
                  const BrukerParameters* procs)
{
    const auto bytes = ReadPoints(paths.data, kDataWhere, "fid");
    if (!bytes) return bytes.error();
    if (const auto td = acqus.Number("TD"); !td || static_cast<double>(bytes->size()) != 8 * *td)
        AskNumberType(request, acqus);
    return ReadDataBruker(request.g, request.slot, acqus, procs, Family(request.type), *bytes);
}

Status ReadFid(const ReadRequest& request, const BrukerPaths& paths)
{
    auto acqus = ReadParaBruker(request, paths.acqus);
    if (!acqus) return acqus.error();
    DataSet& set = SlotOf(request);
    std::optional<BrukerParameters> procs; // only a help for a FID: without it BF1 is the reference
    if (!paths.procs.empty()) {
        if (auto read = BrukerParameters::Read(paths.procs); read && read->Number("SF"))
            procs = std::move(*read);
        else
            set.Warnings.emplace_back("procs tells no reference: 0 ppm stands at BF1 of acqus.");
    }
    if (procs) TakeReference(*procs, set.par);
    if (procs) set.vendor = FindBrukerProcessing(*procs, set.par);
    const auto read_points = IsBrukerRows(request.type) ? ReadArray : ReadOneFid;
    if (Status read = read_points(request, paths, *acqus, procs ? &*procs : nullptr); !read) return read;
    const double shown = RoundHalfEven(set.par.ObsCenter * 20) / 20.0;
    request.asker.Notice(FormatNumber("####0.00", shown) + " MHz, " +
                         FormatNumber("###0.0###", static_cast<double>(set.par.FREQU) / set.par.POINT) + " Hz");
    return {};
}

Status ReadSpectrum(const ReadRequest& request, const BrukerPaths& paths)
{
    if (!paths.acqus.empty()) {
        if (auto read = ReadParaBrukerAcq(request, paths.acqus); !read) return read.error();
    } else {
        SlotOf(request).Warnings.emplace_back("There is no acqus: nucleus and frequency follow from procs.");
    }
    auto procs = ReadParaBrukerProcs(request, paths.procs);
    if (!procs) return procs.error();
    AskNumberType(request, *procs);
    const auto re = ReadPoints(paths.data, "ReadDataBrukerProc/1DDRW", "1r");
    if (!re) return re.error();
    Bytes im;
    if (!paths.imaginary.empty())
        if (auto read = ReadPoints(paths.imaginary, "ReadDataBrukerProc/1DDRW", "1i"); read) im = std::move(*read);
    return ReadDataBrukerProc(request.g, request.slot, *procs, Family(request.type), *re, im);
}

} // namespace

Result<BrukerParameters> ReadParaBruker(const ReadRequest& request, const std::string& acqus_path)
{
    auto acqus = ReadAcquisition(SlotOf(request), acqus_path, "ReadParaBruker/1DDRW");
    if (!acqus) return acqus;
    if (Status filled = FillParaBruker(request.g, request.slot, *acqus); !filled) return filled.error();
    return acqus;
}

Result<BrukerParameters> ReadParaBrukerAcq(const ReadRequest& request, const std::string& acqus_path)
{
    auto acqus = ReadAcquisition(SlotOf(request), acqus_path, "ReadParaBrukerAcq/1DDRW");
    if (!acqus) return acqus;
    ApplyBrukerRecords(*acqus, BrukerUse::spectrum, request.g.nuclides, SlotOf(request).par);
    return acqus;
}

Result<BrukerParameters> ReadParaBrukerProcs(const ReadRequest& request, const std::string& procs_path)
{
    auto procs = ReadVendorFile(procs_path, "ReadParaBrukerProcs/1DDRW", "procs");
    if (!procs) return procs;
    DataSet& set = SlotOf(request);
    WarnWhenCut(set, *procs, "procs");
    if (Status filled = FillParaBrukerProcs(request.g, request.slot, *procs); !filled) return filled.error();
    if (set.par.OBNUC.empty()) {
        ParamBlock told;
        told.ObsCenter = set.par.ObsCenter;
        ApplyBrukerRecords(*procs, BrukerUse::spectrum, request.g.nuclides, told);
        set.par.OBNUC = told.OBNUC;
        set.par.Instrument = told.Instrument;
    }
    return procs;
}

Status ReadBruker(const ReadRequest& request)
{
    const bool plane = IsBrukerRows(request.type) && !IsBrukerArray(request.type);
    if (IsTwoDimensional(request.type.code) || plane || EqualsNoCase(request.type.data_name, "2RR"))
        return Error{ErrorCode::two_dimensional, "ReadDataBruker/1DDRW",
                     "two-dimensional data (ser, 2rr) can't be read here"};
    const BrukerPaths paths = FindFiles(request.type);
    Status read = IsSpectrum(request.type.code) ? ReadSpectrum(request, paths) : ReadFid(request, paths);
    if (!read) return read;
    ParamBlock& par = SlotOf(request).par;
    ReadTitle(paths.title_folder, par);
    par.DTYPE = request.type.tag;
    return {};
}

void LeaveBrukerDummy(const FileType& type)
{
    if (Family(type) == BrukerFamily::flat || !IsWritableFolder(type.directory)) return;
    const std::string_view name = IsSpectrum(type.code) ? "SPEC.BRUD" : "SPEC.BRUF";
    if (!InFolder(type.directory, name).empty()) return;
    // The detection knows a small file by its first six characters.
    const Status ignored = WriteWholeFile(fs::path(type.directory) / name, std::string_view("BRUKER"));
    static_cast<void>(ignored);
}

} // namespace nmr
