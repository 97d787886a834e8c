// Pseudo-two-dimensional sets of the Bruker family: a ser file whose rows were measured with one changing
// parameter, told by a list file beside it (vdlist and its like).

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"
#include "formats/bruker.h"
#include "formats/fid_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace nmr {

namespace {

constexpr std::string_view kWhere = "ReadDataBruker/1DDRW";
constexpr std::size_t kLargestList = 1 << 16; // bytes
constexpr float kFidScale = 0.1F;             // intensity factor, as of single FIDs
constexpr std::uint64_t kRowBlock = 1024;     // bytes: each row begins at a multiple of it

/// How the numbers of a list are written, and what a row value is.
struct ListKind {
    std::string_view file;
    std::string_view parameter, unit, heading;
    double plain_seconds; ///< an entry without unit; 0 for lists of plain numbers
    double scale;         ///< from seconds to the unit
};

constexpr std::string_view kSer = ".SER"; // extension of a flat file of rows

constexpr ListKind kLists[] = {
    {"vdlist", "vd", "s", "t(s)", 1, 1},
    {"vplist", "vp", "us", "vp(us)", 1e-6, 1e6},
    {"vclist", "vc", "", "vc", 0, 1},
    {"vtlist", "vt", "K", "vt(K)", 0, 1},
};

const ListKind* KindOfList(std::string_view file)
{
    const auto kind = std::ranges::find_if(kLists, [&](const ListKind& k) { return EqualsNoCase(k.file, file); });
    return kind == std::end(kLists) ? nullptr : &*kind;
}

/// "0.25s", "100m", "30us", "5": the value of one line in the unit of its list.
std::optional<double> ListValue(std::string_view line, const ListKind& kind, bool& without_unit)
{
    const std::size_t letters = line.find_first_of("smunSMUN");
    const auto number = ParseNumber(std::string(Trim(line.substr(0, letters))));
    if (!number || !std::isfinite(*number)) return std::nullopt;
    if (kind.plain_seconds == 0) return letters == std::string_view::npos ? number : std::nullopt;
    if (letters == std::string_view::npos) {
        without_unit = true;
        return *number * kind.plain_seconds * kind.scale;
    }
    const std::string suffix = ToLower(std::string(Trim(line.substr(letters))));
    constexpr std::pair<std::string_view, double> kSuffixes[] = {{"s", 1},     {"m", 1e-3}, {"ms", 1e-3}, {"u", 1e-6},
                                                                 {"us", 1e-6}, {"n", 1e-9}, {"ns", 1e-9}};
    for (const auto& [name, seconds] : kSuffixes)
        if (suffix == name) return *number * seconds * kind.scale;
    return std::nullopt;
}

std::vector<float> ReadList(std::string_view text, const ListKind& kind, std::vector<std::string>& warnings)
{
    std::vector<float> values;
    bool without_unit = false;
    std::size_t unread = 0;
    while (!text.empty() && values.size() < static_cast<std::size_t>(kMaxRows)) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string_view line = Trim(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty()) continue;
        if (const auto value = ListValue(line, kind, without_unit))
            values.push_back(static_cast<float>(*value));
        else
            ++unread;
    }
    if (unread > 0)
        warnings.push_back(fmt::format("{} lines of {} are no values and are left out.", unread, kind.file));
    if (without_unit && kind.plain_seconds != 1)
        warnings.push_back(fmt::format("Values of {} without a unit are taken for microseconds.", kind.file));
    return values;
}

/// The first list of values in a folder; its name is empty when there is none.
BrukerList FindList(const std::string& folder)
{
    for (const ListKind& kind : kLists) {
        const auto path = FindInFolder(folder, kind.file);
        if (!path) continue;
        const auto bytes = ReadFileHead(path->string(), kLargestList);
        if (!bytes) continue;
        return {std::string(kind.file), std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size())};
    }
    return {};
}

BrukerParameters Indirect(const std::string& folder)
{
    for (std::string_view name : {"acqu2s", "acqu2"}) {
        const auto path = FindInFolder(folder, name);
        if (!path) continue;
        if (auto read = BrukerParameters::Read(path->string()); read && read->Number("TD")) return std::move(*read);
    }
    return {};
}

/// Where the rows of a ser file stand.
struct SerLayout {
    BrukerCode code;
    std::uint64_t values = 0; ///< of a row
    std::uint64_t stride = 0; ///< bytes from row to row
    std::size_t size = 4;     ///< bytes of a value

    std::size_t Held(const ByteSource& file, std::uint64_t row) const ///< values that the file has of a row
    {
        const std::uint64_t begin = row * stride;
        return begin >= file.size() ? 0 : static_cast<std::size_t>(std::min(values, (file.size() - begin) / size));
    }
};

SerLayout LayoutOf(const BrukerParameters& acqus, BrukerFamily family, const ByteSource& file, std::uint64_t told_rows)
{
    SerLayout layout;
    layout.values = static_cast<std::uint64_t>(acqus.Number("TD").value_or(0));
    // Length tells nothing of the type here: rows are padded. The numbers themselves do in flat files.
    Bytes buffer;
    const std::size_t looked_at = family == BrukerFamily::flat ? static_cast<std::size_t>(file.size()) : kRowBlock;
    layout.code = FindBrukerCode(acqus, "DTYPA", "BYTORDA", family, file.Read(0, looked_at, buffer), 0);
    layout.size = layout.code.number == BrukerNumber::float64 ? 8 : 4;
    const std::uint64_t row = layout.values * layout.size;
    layout.stride = (row + kRowBlock - 1) / kRowBlock * kRowBlock;
    const bool exact = row > 0 && file.size() % row == 0; // the rows of flat files are not filled up
    if (told_rows > 1 ? file.size() == row * told_rows : family == BrukerFamily::flat && exact) layout.stride = row;
    return layout;
}

/// Rows that the file begins, at most those that were told; 0 told means as many as there are.
std::uint64_t RowsOf(const SerLayout& layout, BrukerFamily family, const ByteSource& file, std::uint64_t told,
                     std::vector<std::string>& warnings)
{
    const std::uint64_t begun = (file.size() + layout.stride - 1) / layout.stride;
    if (told == 0) {
        if (family == BrukerFamily::directory)
            warnings.emplace_back("acqu2s does not tell the number of rows: it follows from the length of ser.");
        return begun;
    }
    if (begun < told) warnings.push_back(fmt::format("ser is cut short: {} of {} rows are there.", begun, told));
    return std::min(begun, told);
}

} // namespace

bool IsBrukerRows(const FileType& type)
{
    return EqualsNoCase(type.data_name, "SER") ||
           EqualsNoCase(std::filesystem::path(type.path).extension().string(), kSer);
}

bool IsBrukerArray(const FileType& type)
{
    if (!IsBrukerRows(type) || FindList(type.directory).name.empty()) return false;
    return HasNoQuadrature(Indirect(type.directory));
}

bool HasNoQuadrature(const BrukerParameters& indirect)
{
    const double mode = indirect.Number("FnMODE").value_or(0);
    return mode == 0 || mode == 1;
}

void SetBrukerRowValues(const BrukerList& list, DataSet& set)
{
    const auto rows = std::min(static_cast<std::size_t>(set.RowCount), set.RowValueA.size());
    const ListKind* kind = KindOfList(list.name);
    const std::vector<float> values = kind ? ReadList(list.text, *kind, set.Warnings) : std::vector<float>();
    set.par.RowCountCopy = set.RowCount;
    if (values.empty()) {
        for (std::size_t row = 0; row < rows; ++row) set.RowValueA[row] = static_cast<float>(row + 1);
        set.RowParamName = set.RowHeading = "No.";
        set.Warnings.emplace_back("No list tells the values of the rows: they are numbered.");
        return;
    }
    // The console starts again at the top of a list that is too short.
    for (std::size_t row = 0; row < rows; ++row) set.RowValueA[row] = values[row % values.size()];
    if (values.size() != rows)
        set.Warnings.push_back(fmt::format("{} has {} values for {} rows.", kind->file, values.size(), rows));
    set.RowParamName = kind->parameter;
    set.RowParamUnit = kind->unit;
    set.RowHeading = kind->heading;
}

Status ReadBrukerArray(GlobalBlock& g, std::int16_t slot, const BrukerParameters& acqus, const BrukerParameters* procs,
                       BrukerFamily family, const std::string& folder, const ByteSource& ser)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    const double td = Indirect(folder).Number("TD").value_or(0);
    const auto told = static_cast<std::uint64_t>(std::clamp(td, 0.0, 1e9));
    const SerLayout layout = LayoutOf(acqus, family, ser, told);
    if (ser.size() < 2 * layout.size) return Error{ErrorCode::truncated, std::string(kWhere), "ser holds no points"};
    const std::uint64_t rows = RowsOf(layout, family, ser, told, set.Warnings);
    if (rows > static_cast<std::uint64_t>(kMaxRows))
        return Error{ErrorCode::too_large, std::string(kWhere), fmt::format("{} rows", rows)};
    set.RowCount = static_cast<std::int32_t>(rows);
    if (Status made = AllocateSpecBuffer(g, set.par.POINT, slot); !made) return made;
    if (layout.Held(ser, rows - 1) < layout.values)
        set.Warnings.push_back(fmt::format("ser is cut short in row {}: what is missing is zero.", rows));
    const bool reversed = procs != nullptr && EqualsNoCase(procs->Text("REVERSE").value_or("no"), "yes");
    const WordRows words{static_cast<std::size_t>(rows),
                         static_cast<std::size_t>(set.par.FIDPoints),
                         KindOf(layout.code.number),
                         OrderOf(layout.code),
                         set.par.AcqMode == 1 ? std::size_t{1} : std::size_t{2},
                         reversed ? -1.0 : 1.0,
                         [&](std::size_t row) { return row * layout.stride; }};
    const auto damaged = StoreWordRows(ser, words, set.spec);
    if (!damaged) return damaged.error();
    if (*damaged > 0)
        set.Warnings.push_back(fmt::format("{} values of ser are no numbers and read as zero.", *damaged));
    g.DataScale = kFidScale;
    set.par.Limit164 = kFidScale;
    SetBrukerRowValues(FindList(folder), set);
    return {};
}

} // namespace nmr
