// Finding and reading the files of a Varian data set.

#include "formats/varian.h"

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"

#include <filesystem>

namespace nmr {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTwoDimensional = "rows of two-dimensional data can't be read here";
// Nothing beyond the largest set of rows, with as much again for wide blocks, is looked at.
constexpr std::uint64_t kMaxFile = std::uint64_t{4} * kMaxPoints * 4 * kMaxRows;

VarianUse UseOf(const FileType& type)
{
    return IsSpectrum(type.code) ? VarianUse::spectrum : VarianUse::fid;
}

std::string PointsFile(const FileType& type)
{
    const bool phased = EqualsNoCase(type.data_name, "PHASEFILE");
    const std::string_view name = UseOf(type) == VarianUse::fid ? "fid" : phased ? "phasefile" : "data";
    const auto path = FindInFolder(type.directory, name);
    return path ? path->string() : std::string();
}

/// First and second line that are not blank, of the comment file beside the points or one folder above.
void ReadComment(const std::string& folder, ParamBlock& par)
{
    auto path = FindInFolder(folder, "text");
    if (!path) path = FindInFolder((fs::path(folder) / "..").string(), "text");
    if (!path) return;
    const auto bytes = ReadFileHead(path->string(), 4096);
    if (!bytes) return;
    std::string_view rest(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    std::string* field = &par.ExpTitle;
    while (!rest.empty() && field != nullptr) {
        const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        const std::string line = FromUnknownCodePage(Trim(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (line.empty()) continue;
        *field = line;
        field = field == &par.ExpTitle ? &par.EXPCM : nullptr;
    }
    par.COMNT = par.ExpTitle;
}

} // namespace

std::string FindVarianParameters(const std::string& folder, VarianUse use)
{
    const std::string parent = (fs::path(folder) / "..").string();
    const bool fid = use == VarianUse::fid;
    for (const char* name : {fid ? "procpar" : "curpar", fid ? "curpar" : "procpar"})
        for (const std::string& place : {folder, parent})
            if (const auto path = FindInFolder(place, name)) return path->string();
    return {};
}

Result<VarianParameters> ReadParaVarian(const ReadRequest& request, const std::string& path)
{
    constexpr const char* where = "ReadParaVarian/1DDRW";
    if (path.empty()) return Error{ErrorCode::not_found, where, "there is no procpar"};
    auto parameters = VarianParameters::Read(path);
    if (!parameters) return Error{parameters.error().code, where, parameters.error().text};
    if (Status filled = FillParaVarian(request.g, request.slot, *parameters); !filled) return filled.error();
    return parameters;
}

Status ReadVarian(const ReadRequest& request)
{
    const VarianUse use = UseOf(request.type);
    const std::string where = use == VarianUse::fid ? "ReadDataVarian/1DDRW" : "ReadDataVarianProc/1DDRW";
    if (IsTwoDimensional(request.type.code))
        return Error{ErrorCode::two_dimensional, where, std::string(kTwoDimensional)};
    const auto parameters = ReadParaVarian(request, FindVarianParameters(request.type.directory, use));
    if (!parameters) return parameters.error();
    const std::string path = PointsFile(request.type);
    if (path.empty()) return Error{ErrorCode::not_found, where, "there is no file of points"};
    const auto file = OpenedFile::Open(path, kMaxFile);
    if (!file) return Error{file.error().code, where, file.error().text};
    const auto read = use == VarianUse::fid ? ReadDataVarian : ReadDataVarianProc;
    if (Status points = read(request.g, request.slot, *parameters, *file); !points) return points;
    ReadComment(request.type.directory, request.g.Slots[static_cast<std::size_t>(request.slot)].par);
    request.asker.Notice("Read");
    return {};
}

void LeaveVarianDummy(const FileType& type)
{
    if (!IsWritableFolder(type.directory)) return;
    const std::string_view name = IsSpectrum(type.code) ? "SPEC.VARD" : "SPEC.VARF";
    if (FindInFolder(type.directory, name)) return;
    // The detection knows a small file by its first six characters.
    const Status ignored = WriteWholeFile(fs::path(type.directory) / name, std::string_view("VARIAN"));
    static_cast<void>(ignored);
}

} // namespace nmr
