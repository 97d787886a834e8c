// From a path to a family: the place of the file (a folder, a dummy beside instrument data, a flat
// file with its sibling), then what its head says, then its extension or name, then the family's probe.

#include "formats/detect.h"

#include "core/error_report.h"
#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"
#include "formats/probes.h"
#include "formats/registry.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <optional>

namespace nmr {
namespace {

/// Enough for every probe but those that a long header sends further into the file.
constexpr std::size_t kHeadBytes = 65536;
/// Parameter files are read whole; the largest in use are below 1 MB.
constexpr std::uint64_t kLargestParameterFile = std::uint64_t{64} << 20;
/// Of what is read whole because its head does not tell enough. The largest one-dimensional data set as
/// text is a fifth of it.
constexpr std::uint64_t kLargestProbedFile = std::uint64_t{256} << 20;

using OptionalPath = std::optional<std::filesystem::path>;

// --- Places

constexpr std::string_view kDataNames[] = {"FID", "SER", "1R", "2RR", "DATA", "PHASEFILE"};

/// What a folder stands for: the first of these that holds something.
constexpr std::string_view kFolderFiles[] = {"fid", "ser", "1r", "2rr", "data", "phasefile"};

/// Two files side by side that differ in the extension: points and parameters of flat Bruker data.
struct FlatRow {
    std::string_view extension, sibling, word;
};
constexpr FlatRow kFlatRows[] = {
    {".1R", ".FQS", ".BRUP"},
    {".FID", ".AQS", ".BRUA"},
    {".2RR", ".FQS", ".BRUP2"},
    {".SER", ".AQS", ".BRUA2"},
};

/// Dummy files stand for the instrument data of their folder: the first file that is there counts.
struct DummyRow {
    std::string_view extension, data_name, word;
};
constexpr DummyRow kDummyRows[] = {
    {".VAR", "FID", ".VARF"}, {".VAR", "DATA", ".VARD"}, {".VAR", "PHASEFILE", ".VARD"}, {".BRU", "FID", ".BRUF"},
    {".BRU", "SER", ".BRUF"}, {".BRU", "1R", ".BRUD"},   {".BRU", "2RR", ".BRUD"},       {".CMX", "DATA", ".CMX"},
};

/// Parameter files that make a bare name such as "data" an instrument's, whatever its bytes look like.
constexpr std::string_view kCompanions[] = {"acqus", "acqu", "procs", "procpar", "curpar", "acq"};

struct SniffRow {
    std::string_view sniff, extension;
};
/// A sniff that begins so overrules the extension.
constexpr SniffRow kSniffRows[] = {
    {"ECP", ".ECP"},     {"ALICE", ".ALS"},  {"TAV1", ".TV1"},  {"TAV2", ".TV2"}, {"TAVX_1", ".TVO1"},
    {"TAVX_2", ".TVO2"}, {"ASPECT", ".MSL"}, {"ALPHA", ".ALP"}, {"IMA", ".IMA"},  {"DICM", ".DCM"},
    {"NUTS", ".NUT"},    {"LAMBDA", ".LAM"}, {"CSV", ".CSV"},
};
constexpr std::string_view kTextExtensions[] = {".TXT", ".DAT", ".ASC"};

/// Families that one probe of the file itself decides.
struct ExtensionRow {
    std::string_view extension;
    std::size_t compared; ///< characters of the extension that count; 0: all
    int family;
    ProbeFunction probe;
};
constexpr ExtensionRow kExtensionRows[] = {
    {".ALS", 0, 0, ReadModeAls},     {".TV1", 0, 11, ReadModeTavo3},  {".TV2", 0, 11, ReadModeTavo3},
    {".TVO1", 0, 12, ReadModeTavo4}, {".TVO2", 0, 12, ReadModeTavo4}, {".ECP", 0, 3, ReadModeECP},
    {".DX", 0, 13, ReadModeJCAMP},   {".JDX", 0, 13, ReadModeJCAMP},  {".ALP", 4, 5, ReadModeAlpha},
    {".LAM", 4, 2, ReadModeLambda},  {".NUT", 0, 7, ReadModeNut},     {".CSV", 0, 14, ReadModeCSV},
    {".MSL", 0, 15, ReadModeMSL},    {".IMPORT", 7, 17, ReadModeMac},
};

/// Flat Bruker data by the code word of the step before.
struct BrukerFlatRow {
    std::string_view word, sibling;
    ProbeFunction probe;
    std::string_view tag;
    bool two_dimensional;
};
constexpr BrukerFlatRow kBrukerFlatRows[] = {
    {".BRUA", ".AQS", ReadModeBruker, "BRUX1F", false},
    {".BRUA2", ".AQS", ReadModeBruker, "BRUX2F", true},
    {".BRUP", ".FQS", ReadModeBrukerProc, "BRUX1D", false},
    {".BRUP2", ".FQS", ReadModeBrukerProc, "BRUX2D", true},
};

bool HoldsData(const std::string& path)
{
    return FileLen(path) > 0;
}

/// The real, absolute path without a closing separator.
OptionalPath RealPath(std::string_view path)
{
    const OptionalPath found = ResolvePath(path);
    if (!found) return std::nullopt;
    std::error_code error;
    std::filesystem::path whole = std::filesystem::absolute(*found, error).lexically_normal();
    if (error) return found;
    return whole.has_filename() ? whole : whole.parent_path();
}

/// False for an empty file and for what is no file; true for one that can't be read, so that the reason is told.
bool MayHoldData(const std::filesystem::path& path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && FileLen(path.string()) != 0;
}

/// The numbered folders below "pdata", from the lowest number.
std::vector<std::filesystem::path> ProcessingFolders(const std::filesystem::path& pdata)
{
    std::map<std::int64_t, std::filesystem::path> folders;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(pdata, error), end; !error && entry != end; entry.increment(error))
        if (const auto number = ParseInteger(entry->path().filename().string()))
            folders.emplace(*number, entry->path());
    std::vector<std::filesystem::path> sorted;
    for (auto& [number, folder] : folders) sorted.push_back(std::move(folder));
    return sorted;
}

/// The data file inside a folder.
OptionalPath DataFileOf(const std::string& folder)
{
    for (const std::string_view name : kFolderFiles)
        if (auto file = FindInFolder(folder, name); file && MayHoldData(*file)) return file;
    const OptionalPath processed = FindInFolder(folder, "pdata");
    if (!processed) return std::nullopt;
    for (const auto& processing : ProcessingFolders(*processed))
        for (const char* name : {"1r", "2rr"})
            if (auto file = FindInFolder(processing.string(), name); file && MayHoldData(*file)) return file;
    return std::nullopt;
}

std::string_view ProbeName(ProbeFunction probe)
{
    const auto row = std::ranges::find(Probes(), probe, &ProbeRow::probe);
    return row == Probes().end() ? std::string_view("ReadFileType") : row->name;
}

/// One run of the detection.
class Detector {
public:
    Detector(Asker& asker, const NuclearTable& nuclides) : asker_(asker), context_{asker, nuclides} {}

    FileType Run(const std::string& path)
    {
        if (!Place(path)) return type_;
        const Result<std::string> sniff = ReadDataMode(given_);
        if (!sniff) {
            ErrorReport(asker_, sniff.error());
            return type_;
        }
        Overrule(*sniff);
        Select();
        if (type_.code > 0) type_.extension = extension_;
        return type_;
    }

private:
    // Where the data are.
    bool Place(const std::string& path);
    bool Refuse(const std::string& path, std::string_view reason);
    void SetDataFile(const std::filesystem::path& path);
    void ResolveExtension();
    bool IsDummy() const { return given_ != type_.path; }
    void Overrule(const std::string& sniff);
    bool IsInstrumentData() const;

    // Which family.
    void Select();
    bool SelectByExtension();
    void SelectGe();
    void SelectEx();
    bool SelectByDataName();
    bool SelectFlatBruker();
    void SelectBrukerFid();
    void SelectBrukerSpectrum();
    void SelectVarianFid();
    void SelectVarianSpectrum(const OptionalPath& parameters);
    void SelectData();
    OptionalPath VarianSpectrumParameters() const;
    std::string ExperimentOfSpectrum() const;

    OptionalPath Beside(std::string_view name) const { return FindInFolder(type_.directory, name); }
    bool DataBeside(std::string_view name) const
    {
        const OptionalPath file = Beside(name);
        return file && HoldsData(file->string());
    }
    std::string Parent() const { return std::filesystem::path(type_.directory).parent_path().string(); }
    /// The file of the same name with another extension.
    std::string Sibling(std::string_view extension) const
    {
        return (std::filesystem::path(type_.directory) / name_).string() + std::string(extension);
    }

    ProbeAnswer ProbeData(const std::string& path, ProbeFunction probe);
    ProbeAnswer ProbeParameters(const std::string& path, ProbeFunction probe);
    ProbeAnswer Unreadable(Error error, ProbeFunction probe);

    // The answer.
    void Interpret(int family, const ProbeAnswer& answer);
    void Accept(int family, std::int32_t bits, std::string_view tag, const ProbeAnswer& answer);

    Asker& asker_;
    ProbeContext context_;
    std::string given_;     ///< the file whose head counts: what was asked for, or a dummy
    std::string name_;      ///< of it, without extension
    std::string extension_; ///< as corrected so far, or a code word
    FileType type_;
};

// --- Places

bool Detector::Refuse(const std::string& path, std::string_view reason)
{
    ErrorReport(asker_, Error{ErrorCode::not_found, "ReadDataMode/1DDRW", path + ": " + std::string(reason)});
    return false;
}

void Detector::SetDataFile(const std::filesystem::path& path)
{
    type_.path = path.string();
    type_.directory = path.parent_path().string();
}

bool Detector::Place(const std::string& path)
{
    OptionalPath real = RealPath(path);
    if (!real) return Refuse(path, "is not found");
    SetDataFile(*real);
    if (IsFolder(type_.path)) {
        real = DataFileOf(type_.path);
        if (!real) return false;
        SetDataFile(*real);
    }
    given_ = type_.path;
    const PathParts parts = Path_Split(given_);
    name_ = parts.name;
    extension_ = parts.extension;
    if (const std::string upper = ToUpper(name_);
        extension_.empty() && std::ranges::find(kDataNames, upper) != std::end(kDataNames))
        type_.data_name = upper;
    ResolveExtension();
    // No family has files without a byte, but a dummy may be one.
    return IsDummy() || FileLen(given_) != 0;
}

void Detector::ResolveExtension()
{
    const std::string start(Left(extension_, 4));
    for (const FlatRow& row : kFlatRows) {
        if (start != row.extension || !HoldsData(Sibling(row.sibling))) continue;
        extension_ = row.word;
        return;
    }
    for (const DummyRow& row : kDummyRows) {
        const OptionalPath data = start == row.extension ? Beside(row.data_name) : std::nullopt;
        if (!data || !HoldsData(data->string())) continue;
        extension_ = row.word;
        type_.data_name = row.data_name;
        SetDataFile(*data);
        return;
    }
    if (start == ".GXP") { // the header was chosen: the points are beside it
        extension_[3] = 'D';
        const OptionalPath data = RealPath(Sibling(extension_));
        SetDataFile(data ? *data : std::filesystem::path(Sibling(extension_)));
        given_ = type_.path;
    }
}

/// True when the place of the file already says whose data these are.
bool Detector::IsInstrumentData() const
{
    if (extension_.starts_with(".BRU") || IsDummy()) return true;
    return !type_.data_name.empty() &&
           std::ranges::any_of(kCompanions, [this](std::string_view name) { return Beside(name).has_value(); });
}

void Detector::Overrule(const std::string& sniff)
{
    for (const SniffRow& row : kSniffRows) {
        if (!sniff.starts_with(row.sniff)) continue;
        // The first points of a FID may look like a number; a banner is never chance.
        if (row.extension == ".CSV" && IsInstrumentData()) return;
        extension_ = row.extension;
        type_.data_name.clear();
        SetDataFile(given_);
        return;
    }
    if (std::ranges::find(kTextExtensions, Left(extension_, 4)) != std::end(kTextExtensions)) extension_ = ".CSV";
}

// --- Probes of files

ProbeAnswer Detector::Unreadable(Error error, ProbeFunction probe)
{
    error.where = std::string(ProbeName(probe)) + "/1DDRW";
    ErrorReport(asker_, error);
    return {};
}

ProbeAnswer Detector::ProbeData(const std::string& path, ProbeFunction probe)
{
    const Result<Bytes> head = ReadFileHead(path, kHeadBytes);
    if (!head) return Unreadable(head.error(), probe);
    ProbeAnswer answer = probe(*head, context_);
    if (!answer.needs_more || head->size() < kHeadBytes) return answer;
    const Result<Bytes> whole = ReadWholeFile(path, kLargestProbedFile);
    if (!whole) return Unreadable(whole.error(), probe);
    return probe(*whole, context_);
}

ProbeAnswer Detector::ProbeParameters(const std::string& path, ProbeFunction probe)
{
    const Result<Bytes> file = ReadWholeFile(path, kLargestParameterFile);
    return file ? probe(*file, context_) : Unreadable(file.error(), probe);
}

// --- Families

void Detector::Select()
{
    if (SelectByExtension() || SelectFlatBruker() || SelectByDataName()) return;
    if (extension_ == ".HED" || extension_ == ".FID") SelectGe();
    if (extension_.starts_with(".GXD")) SelectEx();
    if ((extension_ == ".IMA" || extension_ == ".DCM") && HoldsData(type_.path)) {
        constexpr int kSiemens = 16;
        Accept(kSiemens, kOneDimensionalBit, "SIEMENS", {});
    }
}

bool Detector::SelectByExtension()
{
    for (const ExtensionRow& row : kExtensionRows) {
        const bool hit =
            row.compared == 0 ? extension_ == row.extension : Left(extension_, row.compared) == row.extension;
        if (!hit) continue;
        Interpret(row.family, ProbeData(type_.path, row.probe));
        return true;
    }
    return false;
}

void Detector::SelectGe()
{
    constexpr int kGeOmega = 10;
    const OptionalPath header = RealPath(Sibling(".HED"));
    if (!header) return;
    if (const OptionalPath data = RealPath(Sibling(".FID"))) SetDataFile(*data);
    Interpret(kGeOmega, ProbeParameters(header->string(), ReadModeGEOmega));
}

void Detector::SelectEx()
{
    constexpr int kEx = 1;
    std::string header_extension = extension_;
    header_extension[3] = 'P';
    if (const OptionalPath header = RealPath(Sibling(header_extension)))
        Interpret(kEx, ProbeParameters(header->string(), ReadModeEX));
}

bool Detector::SelectFlatBruker()
{
    constexpr int kBrukerFlat = 8;
    const auto row = std::ranges::find(kBrukerFlatRows, extension_, &BrukerFlatRow::word);
    if (row == std::end(kBrukerFlatRows)) return false;
    ProbeAnswer answer = ProbeParameters(Sibling(row->sibling), row->probe);
    if (answer.status != 0) return true;
    if (row->two_dimensional) answer.mode.replace(0, 2, "2D");
    const std::int32_t dimension = row->two_dimensional ? kTwoDimensionalBit : kOneDimensionalBit;
    Accept(kBrukerFlat, dimension | (answer.spectrum_flag == 1 ? kSpectrumBit : 0), row->tag, answer);
    return true;
}

/// A bare name is of the instrument whose parameter files are beside it.
bool Detector::SelectByDataName()
{
    const std::string& name = type_.data_name;
    if (extension_ == ".VARF") {
        SelectVarianFid();
    } else if (extension_ == ".VARD" || name == "DATA" || name == "PHASEFILE" || extension_ == ".CMX") {
        SelectData();
    } else if (name == "SER" || (name == "FID" && (Beside("acqus") || Beside("acqu")))) {
        SelectBrukerFid();
    } else if (name == "FID") {
        SelectVarianFid();
    } else if (name == "1R" || name == "2RR" || extension_ == ".BRUD") {
        SelectBrukerSpectrum();
    } else {
        return false;
    }
    return true;
}

constexpr int kBruker = 4;

void Detector::SelectBrukerFid()
{
    OptionalPath acqus = Beside("acqus");
    if (!acqus) acqus = Beside("acqu"); // as set, where what was done is missing
    if (!acqus) return;
    ProbeAnswer answer = ProbeParameters(acqus->string(), ReadModeBruker);
    if (answer.status != 0) return;
    if (type_.data_name == "SER") {
        answer.mode.replace(0, 2, "2D");
        Accept(kBruker, kTwoDimensionalBit, "BRU2F", answer);
    } else {
        Accept(kBruker, kOneDimensionalBit, "BRU1", answer);
    }
}

/// The name of the experiment stands with the acquisition, two folders above the processing.
std::string Detector::ExperimentOfSpectrum() const
{
    const std::string experiment = std::filesystem::path(Parent()).parent_path().string();
    for (const std::string& folder : {type_.directory, experiment}) {
        const OptionalPath acqus = FindInFolder(folder, "acqus");
        if (!acqus) continue;
        const Result<Bytes> file = ReadWholeFile(acqus->string(), kLargestParameterFile);
        const ProbeAnswer answer = file ? ReadModeBruker(*file, context_) : ProbeAnswer{};
        if (answer.status == 0) return answer.mode;
    }
    return "1D:";
}

void Detector::SelectBrukerSpectrum()
{
    const bool two_dimensional = DataBeside("2rr");
    OptionalPath procs = Beside("procs");
    if (!procs) procs = Beside("curpar");
    if (!procs || (!two_dimensional && !DataBeside("1r"))) return;
    ProbeAnswer answer = ProbeParameters(procs->string(), ReadModeBrukerProc);
    if (answer.status != 0) return;
    if (answer.mode == "1D:") answer.mode = ExperimentOfSpectrum();
    if (two_dimensional) {
        answer.mode.replace(0, 2, "2D");
        Accept(kBruker, kTwoDimensionalBit | kSpectrumBit, "BRU2D", answer);
    } else {
        Accept(kBruker, kOneDimensionalBit | kSpectrumBit, "BRU1", answer);
    }
}

constexpr int kVarian = 6;

void Detector::SelectVarianFid()
{
    const OptionalPath procpar = Beside("procpar");
    if (!procpar || !DataBeside("fid")) return;
    const ProbeAnswer answer = ProbeParameters(procpar->string(), ReadModeVarian);
    if (answer.status != 0) return;
    if (answer.mode.starts_with('V'))
        Accept(kVarian, kTwoDimensionalBit, "VAR2F", answer);
    else
        Accept(kVarian, kOneDimensionalBit, "VAR1", answer);
}

OptionalPath Detector::VarianSpectrumParameters() const
{
    for (const char* name : {"curpar", "procpar"})
        for (const std::string& folder : {type_.directory, Parent()})
            if (auto file = FindInFolder(folder, name)) return file;
    return std::nullopt;
}

void Detector::SelectVarianSpectrum(const OptionalPath& parameters)
{
    if (!parameters) return;
    const ProbeAnswer answer = ProbeParameters(parameters->string(), ReadModeVarian);
    if (answer.status != 0) return;
    if (answer.mode.starts_with('V'))
        Accept(kVarian, kTwoDimensionalBit | kSpectrumBit, "VAR2D", answer);
    else
        Accept(kVarian, kOneDimensionalBit | kSpectrumBit, "VAR1", answer);
}

/// "data" is the name of Varian spectra and of CMX points. An experiment folder of Varian keeps the
/// parameters one level above its spectra, so only the parameter file of CMX decides for CMX.
void Detector::SelectData()
{
    constexpr int kCmx = 9;
    if (!DataBeside("data")) return;
    const OptionalPath acq = Beside("procpar") ? std::nullopt : Beside("acq");
    if (!acq) {
        SelectVarianSpectrum(VarianSpectrumParameters());
        return;
    }
    const ProbeAnswer answer = ProbeParameters(acq->string(), ReadModeCMX);
    if (answer.status != 0) return;
    Accept(kCmx, kOneDimensionalBit | (answer.spectrum_flag == 1 ? kSpectrumBit : 0), "CMX1", answer);
}

// --- The answer

void Detector::Accept(int family, std::int32_t bits, std::string_view tag, const ProbeAnswer& answer)
{
    type_.code = bits | family;
    type_.tag = tag;
    type_.mode = answer.mode;
    type_.acq_mode = answer.acq_mode;
    type_.byte_order = answer.byte_order;
    type_.kind_2d = answer.kind_2d;
}

void Detector::Interpret(int family, const ProbeAnswer& answer)
{
    const FormatRow* row = FindFormat(family);
    if (answer.status != 0 || row == nullptr) return;
    const bool spectrum = answer.spectrum_flag == 1;
    const std::int32_t flag = spectrum ? kSpectrumBit : 0;
    if (answer.mode.starts_with("1D")) {
        Accept(family, kOneDimensionalBit | flag, row->tag_1d, answer);
        return;
    }
    std::string_view tag = spectrum ? row->tag_2d_spectrum : row->tag_2d_fid;
    constexpr int kJcamp = 13; // it says "2D" where others say "V2D"
    const bool plane = answer.mode.starts_with('V') || (family == kJcamp && answer.mode.starts_with("2D"));
    if (!plane || tag.empty()) return;
    if (tag == "GXD2F" && answer.mode.starts_with("VPH")) tag = "GXD2FPH";
    Accept(family, kTwoDimensionalBit | flag, tag, answer);
}

} // namespace

Result<std::string> ReadDataMode(const std::string& path)
{
    const auto failure = [](Error error) { return Error{error.code, "ReadDataMode/1DDRW", error.text}; };
    const Result<Bytes> head = ReadFileHead(path, kHeadBytes);
    if (!head) return failure(head.error());
    const bool whole_file = head->size() < kHeadBytes;
    const std::int64_t length = whole_file ? static_cast<std::int64_t>(head->size()) : FileLen(path);
    Sniff sniff = SniffDataMode(*head, static_cast<std::uint64_t>(std::max<std::int64_t>(length, 0)));
    if (sniff.needs_more && !whole_file) {
        const Result<Bytes> whole = ReadWholeFile(path, kLargestProbedFile);
        if (!whole) return failure(whole.error());
        sniff = SniffDataMode(*whole, whole->size());
    }
    return sniff.result;
}

FileType ReadFileType(const std::string& path, Asker& asker, const NuclearTable& nuclides)
{
    FileType type = Detector(asker, nuclides).Run(path);
    if (type.code > 0) return type;
    // A link to the data file alone: its companions stand beside what it points to.
    std::error_code error;
    const OptionalPath real = RealPath(path);
    if (!real || !std::filesystem::is_symlink(*real, error)) return type;
    const std::filesystem::path target = std::filesystem::canonical(*real, error);
    return error ? type : Detector(asker, nuclides).Run(target.string());
}

} // namespace nmr
