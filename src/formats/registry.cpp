#include "formats/registry.h"

#include "core/text.h"
#include "formats/bruker.h"
#include "formats/cmx.h"
#include "formats/csv.h"
#include "formats/delta.h"
#include "formats/jcamp.h"
#include "formats/tavo4.h"
#include "formats/varian.h"

#include <algorithm>

namespace nmr {
namespace {

constexpr FidSense kOpposite = FidSense::opposite;
constexpr FidSense kAsTransformed = FidSense::as_transformed;

// FID sense: shown on pairs of FID and spectrum for Bruker, Varian, Delta and text, taken from other
// readers' handling for CMX. JCAMP-DX FIDs have the sense of Bruker data; its reader turns those of JEOL.
constexpr FormatRow kRows[] = {
    {0, "JEOL Alice", "*.als", "ALS1", "ALS2D", "ALS2F", kAsTransformed},
    {1, "JEOL GX/GSX/EX", "*.gxd (*.gxp)", "GXD1", "GXD2D", "GXD2F", kAsTransformed},
    {2, "JEOL Lambda", "*.nmdata, *.nmfid", "LAMBDA1", "LAMBDA2D", "LAMBDA2F", kAsTransformed},
    {3, "JEOL Delta", "*.jdf", "ECP1", "ECP2D", "ECP2F", kAsTransformed, ReadDelta},
    {4, "Bruker directory", "fid, ser, 1r (acqus, procs)", "BRU1", "BRU2D", "BRU2F", kOpposite, ReadBruker},
    {5, "JEOL Alpha", "*.nmf, *.nmd", "ALPHA1", "ALPHA2D", "ALPHA2F", kAsTransformed},
    {6, "Varian", "fid, data, phasefile (procpar, curpar)", "VAR1", "VAR2D", "VAR2F", kAsTransformed, ReadVarian},
    {7, "Nuts", "*.fid, *.h1, *.c13", "NUTS1", "NUTS2D", "NUTS2F", kAsTransformed},
    {8, "Bruker flat files", "*.fid (*.aqs), *.1r (*.fqs)", "BRUX1D", "BRUX2D", "BRUX2F", kOpposite, ReadBruker},
    {9, "Varian CMX", "data (acq, acq_2, proc)", "CMX1", "", "", kOpposite, ReadCmx},
    {10, "GE Omega", "*.fid (*.hed)", "GE1", "GE2D", "GE2F", kAsTransformed},
    {11, "Native Ver.3", "*.tv1", "TAVO1", "TAVO2D", "TAVO2F", kAsTransformed},
    {12, "Native Ver.4", "*.tvo, *.tvo1", "TAVO1_V4", "TAVO2D_V4", "TAVO2D_V4", kAsTransformed, ReadTavo4, true},
    {13, "JCAMP-DX", "*.jdx, *.dx", "JCAMP1", "JCAMP2D", "JCAMP2F", kOpposite, ReadDataJCAMP, true},
    {14, "CSV", "*.csv, *.txt, *.dat, *.asc", "CSV1", "", "", kOpposite, ReadDataCSV, true},
    {15, "MSL/Aspect", "*.msl", "MSL1", "MSL2D", "MSL2F", kAsTransformed},
    {16, "Siemens/DICOM", "*.ima, *.dcm", "SIEMENS", "", "", kAsTransformed},
    {17, "Mac Alice", "*.import", "MAC1", "MAC2D", "MAC2F", kAsTransformed},
};

constexpr FileTypeRow kFileTypes[] = {
    {"", "-----"},
    {"*.als", "JEOL Alice2(Excalibur)"},
    {"*.jdf", "JEOL Delta(ECA/ECP)"},
    {"*.gxd*", "JEOL GX/GSX/EX"},
    {"*.nmf*", "JEOL Alpha(FID)"},
    {"*.nmd*", "JEOL Alpha(Spectrum)"},
    {"*.nmf*;*.nmd*", "JEOL Alpha"},
    {"*.nmdata*", "JEOL Lambda(Spectrum)"},
    {"*.nmfid*", "JEOL Lambda(FID)"},
    {"*.nmdata*;*.nmfid*", "JEOL Lambda"},
    {"1r;*.brud", "Bruker(Spectrum)"},
    {"*.1r;*.fid", "Bruker(2)(FID/Spectrum)"},
    {"fid;*.bruf", "Bruker(FID)"},
    {"data;*.vard", "Varian Unity(Spectrum)"},
    {"fid;*.varf", "Varian Unity(FID)"},
    {"data;*.cmx", "Varian CMX"},
    {"*.jdx;*.dx", "JCAMP"},
    {"*.fid*;*.h1*;*.c13*", "Nuts"},
    {"*.import*", "Mac Alice"},
    {"*.ima;*.dcm", "SIEMENS"},
    {"", ""}, // kept free
};

/// What a slot is called: the words stored with it, else those of the table's row.
std::string SlotDescription(const std::string& expression, const std::string& stored)
{
    if (!stored.empty()) return stored;
    const auto row = std::ranges::find_if(
        kFileTypes, [&](const FileTypeRow& type) { return EqualsNoCase(type.expression, expression); });
    return row == std::end(kFileTypes) ? expression : std::string(row->description) + " File";
}

} // namespace

std::span<const FormatRow> FormatRows()
{
    return kRows;
}

const FormatRow* FindFormat(int family)
{
    const auto row = std::ranges::find(kRows, family, &FormatRow::family);
    return row == std::end(kRows) ? nullptr : &*row;
}

bool IsRowArray(const FileType& type)
{
    constexpr int kJcamp = 13;
    if (!IsTwoDimensional(type.code)) return false;
    return FamilyOf(type.code) == kJcamp ? IsJcampArray(type) : IsBrukerArray(type);
}

FileType AsRowArray(FileType type)
{
    const FormatRow* row = FindFormat(FamilyOf(type.code));
    const bool flat_fid = row != nullptr && row->tag_2d_fid == "BRUX2F" && !IsSpectrum(type.code);
    type.code = (type.code & ~kTwoDimensionalBit) | kOneDimensionalBit;
    if (row != nullptr) type.tag = flat_fid ? "BRUX1F" : row->tag_1d;
    if (type.mode.starts_with("2D")) type.mode[0] = '1';
    return type;
}

std::span<const FileTypeRow> FileTypeTable()
{
    return kFileTypes;
}

std::vector<FilterRow> OpenDialogFilters(const GlobalBlock& g)
{
    std::vector<FilterRow> rows{{"Ver.3/4 Type", "*.tv1;*.tvo*"}};
    for (std::size_t slot = 1; slot < g.FileTypeSlots.size(); ++slot)
        if (const std::string& expression = g.FileTypeSlots[slot]; !expression.empty())
            rows.push_back({SlotDescription(expression, g.FileTypeNames[slot]), expression});
    rows.push_back({"All File", "*.*"});
    return rows;
}

} // namespace nmr
