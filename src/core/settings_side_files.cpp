// The small tables beside the program: parameter tables (.prt), nuclides, required files, instruments.

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/settings_file.h"
#include "core/settings_lines.h"
#include "core/settings_table.h"
#include "core/text.h"

#include <algorithm>
#include <string>

namespace nmr {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMaxRequiredFiles = 41;
constexpr std::size_t kMaxInstruments = 2001;
constexpr std::string_view kInstrumentFile = "OB_0ppm.frq";
constexpr std::string_view kFrequencyPattern = "###0.0#####";
constexpr std::string_view kZeroPpmPattern = "####.##########";

std::string Table(const fs::path& app_path, std::string_view name)
{
    const auto file = app_path.empty() ? std::nullopt : FindInFolder(app_path.string(), name);
    return file ? ReadSmallText(*file) : std::string();
}

fs::path WithTableExtension(fs::path file)
{
    return file.has_extension() ? file : file.replace_extension(".prt");
}

/// "{Label} ; Format", as it stands behind the key; without ";" all that is left is the format.
void SplitLabelAndFormat(std::string_view text, ParamTableEntry& entry)
{
    const std::size_t open = text.find('{');
    if (open != std::string_view::npos && open < text.find(';')) {
        const std::string_view inside = text.substr(open + 1);
        std::size_t end = inside.find('}');
        const bool closed = end != std::string_view::npos;
        if (!closed) end = std::min(inside.find_first_of(" \t"), inside.size());
        entry.Label = std::string(inside.substr(0, end));
        text = inside.substr(end + (closed ? 1 : 0));
    }
    const std::size_t semicolon = text.find(';');
    entry.Format = std::string(Trim(semicolon == std::string_view::npos ? text : text.substr(semicolon + 1)));
}

ParamTableEntry ParseParamLine(std::string_view line)
{
    if (line.starts_with(';')) return {";", "", std::string(line.substr(1))};
    ParamTableEntry entry;
    std::size_t key_end = 1;
    if (line.starts_with('$'))
        entry.Key = "$";
    else
        entry.Key = std::string(line.substr(0, key_end = std::min(line.find_first_of("{ \t"), line.size())));
    SplitLabelAndFormat(line.substr(key_end), entry);
    return entry;
}

std::string ParamLine(const ParamTableEntry& entry)
{
    if (entry.Key == ";") return ";" + entry.Format + "\n";
    std::string label = entry.Label;
    std::ranges::replace(label, '}', ')'); // it would end the label
    return entry.Key + " {" + label + "} ; " + entry.Format + "\n";
}

std::string FieldText(std::string_view text)
{
    std::string out(Trim(text));
    std::ranges::replace_if(
        out, [](char c) { return c == ';' || static_cast<unsigned char>(c) < 32; }, ' ');
    return out + ";";
}

bool ParseInstrument(const std::string& line, InstrumentRow& row)
{
    std::vector<std::string> fields = Split(line, ';');
    if (fields.size() < 5) return false;
    fields.resize(std::max<std::size_t>(fields.size(), 6));
    for (std::string& field : fields) field = std::string(Trim(field));
    row = {fields[0], fields[1], fields[2], 0, 0, fields[5]};
    return SetValue(row.frequency, fields[3]) && SetValue(row.ppm0, fields[4]) && row.frequency > 0 && row.ppm0 > 0;
}

std::string InstrumentLine(const InstrumentRow& row)
{
    return FieldText(row.instrument) + FieldText(row.probe) + FieldText(row.nucleus) +
           FieldText(FormatNumber(kFrequencyPattern, row.frequency)) +
           FieldText(FormatNumber(kZeroPpmPattern, row.ppm0)) + FieldText(row.date) + "\n";
}

} // namespace

Result<std::vector<ParamTableEntry>> LoadParamTable(const fs::path& file)
{
    const fs::path name = WithTableExtension(file);
    if (FileLen(name.string()) < 0)
        return Error{ErrorCode::not_found, "LoadParamTable/1DSet", "There is no parameter table " + name.string()};
    std::vector<ParamTableEntry> table;
    for (const std::string& line : TrimmedLines(ReadSmallText(name)))
        if (!line.empty()) table.push_back(ParseParamLine(line));
    return table;
}

Status SaveParamTable(const fs::path& file, const std::vector<ParamTableEntry>& table)
{
    std::string text;
    for (const ParamTableEntry& entry : table) text += ParamLine(entry);
    return WriteWholeFile(WithTableExtension(file), text);
}

void LoadNuclearTable(GlobalBlock& g)
{
    g.nuclides = NuclearTable::Parse(Table(g.AppPath, "Nuclear.dat"));
    if (g.nuclides.rows().empty()) g.nuclides = NuclearTable::BuiltIn();
}

void LoadRequiredFiles(GlobalBlock& g)
{
    g.RequiredFiles.clear();
    for (const std::string& line : TrimmedLines(Table(g.AppPath, "requiredFile1D_E.txt"))) {
        if (line.size() < 3 || g.RequiredFiles.size() >= kMaxRequiredFiles) continue;
        const std::vector<std::string> columns = Split(line, ',');
        RequiredFile row;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const std::string_view column = Trim(columns[i]);
            std::string& target = i == 0 ? row.format : i == 1 ? row.required : row.notes;
            if (i > 2) target += '\n';
            target += column;
        }
        g.RequiredFiles.push_back(std::move(row));
    }
}

void LoadInstrumentTable(GlobalBlock& g)
{
    g.Instruments.clear();
    g.InstrumentsChanged = false;
    for (const std::string& line : TrimmedLines(Table(g.AppPath, kInstrumentFile))) {
        InstrumentRow row;
        if (g.Instruments.size() < kMaxInstruments && ParseInstrument(line, row)) g.Instruments.push_back(row);
    }
}

Status SaveInstrumentTable(GlobalBlock& g)
{
    if (g.AppPath.empty())
        return Error{ErrorCode::unwritable, "SaveInstrumentTable/1DSet", "No data folder is chosen."};
    std::string text;
    for (std::size_t i = 0; i < std::min(g.Instruments.size(), kMaxInstruments); ++i)
        text += InstrumentLine(g.Instruments[i]);
    const Status written =
        WriteWholeFile(FindInFolder(g.AppPath.string(), kInstrumentFile).value_or(g.AppPath / kInstrumentFile), text);
    if (written) g.InstrumentsChanged = false;
    return written;
}

} // namespace nmr
