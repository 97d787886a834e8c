// The layers below the readers: lines, labelled records, tables of JCAMP-DX numbers, records of procpar.
// The first byte of the input chooses which; the rest is the text.

#include "formats/jcamp.h"
#include "formats/key_values.h"
#include "formats/varian.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace nmr;

namespace {

void Require(bool holds)
{
    if (!holds) std::abort();
}

void RunLines(ByteSpan file)
{
    LineReader reader(file);
    std::string label, key, value;
    std::vector<std::string> fields;
    for (std::string line; !(line = reader.Read_TextLine()).empty();) {
        LabelledRecord record;
        const bool labelled = Split_Value(line, record);
        Require(Split_Label(line, label, fields) == labelled);
        Require(fields.size() >= 4 && fields.size() <= kMostFields);
        if (labelled) Require(NormalLabel(label) == NormalLabel(NormalLabel(label)));
        Split_PrivateLine(line, label, fields);
        Require(fields.size() <= kMostFields);
        Split_KeyValue(line, key, value);
        Require(SplitColumns(line, 4).size() <= kMostFields + 1);
    }
    Require(reader.at_end());
}

void RunItems(std::string_view text, AsdfE e)
{
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t before = position;
        const AsdfItem item = Read_AsdfValue(text, position, e);
        if (item.kind == AsdfKind::error || item.kind == AsdfKind::end) break;
        Require(position > before && !std::isnan(item.value));
    }
}

/// Whatever a table decodes to, written as integers it decodes to the same.
void RunTable(std::string_view text)
{
    constexpr std::size_t kMost = 4096;
    std::vector<double> values, again;
    const AsdfReport report = DecodeAsdfTable(text, kMost, values);
    Require(values.size() <= kMost + 1);
    // One value alone has no difference behind it, so that an E of its own can't be told from an exponent.
    if (report.failure != AsdfReport::Failure::none || values.size() < 2) return;
    std::vector<std::int64_t> whole;
    for (const double value : values) whole.push_back(std::fabs(value) <= kMaxOrdinate ? std::llround(value) : 0);
    std::string table;
    std::size_t last = 0;
    while (last + 1 < whole.size()) {
        const std::size_t begin = table.size();
        last = Write_AsdfLine(whole, last, static_cast<std::int64_t>(last), table);
        Require(table.size() - begin <= 81);
    }
    Write_AsdfLine(whole, last, static_cast<std::int64_t>(last), table);
    const AsdfReport read = DecodeAsdfTable(table, kMost, again);
    Require(read.failure == AsdfReport::Failure::none && read.failed_checks == 0);
    Require(again.size() == whole.size());
    for (std::size_t i = 0; i < whole.size(); ++i) Require(again[i] == static_cast<double>(whole[i]));
}

void RunProcpar(ByteSpan file)
{
    for (std::size_t position = 0; position < file.size();) {
        const std::size_t before = position;
        const VarianRecord record = Varian_Line(file, position);
        if (record.name.empty()) break;
        ParseVarianArray(record.values.empty() ? record.name : record.values.front());
        Require(position > before);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
    const ByteSpan file = std::as_bytes(std::span(data + 1, size - 1));
    const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
    switch (data[0] % 5) {
    case 0:
        RunLines(file);
        break;
    case 1:
        RunItems(text, AsdfE::exponent);
        break;
    case 2:
        RunItems(text, AsdfE::squeezed);
        break;
    case 3:
        RunTable(text);
        break;
    default:
        RunProcpar(file);
    }
    return 0;
}
