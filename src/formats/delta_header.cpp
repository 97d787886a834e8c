#include "formats/delta_header.h"

#include "core/text.h"
#include "formats/byte_fields.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace nmr {

namespace {

constexpr ByteField<DeltaHeader> kHead[] = {
    {8, &DeltaHeader::little_sections},    {12, &DeltaHeader::dimensions},        {14, &DeltaHeader::number_type},
    {24, &DeltaHeader::axis_type},         {32, &DeltaHeader::axis_prefix},       {33, &DeltaHeader::axis_unit},
    {34, &DeltaHeader::second_prefix},     {35, &DeltaHeader::second_unit},       {176, &DeltaHeader::points},
    {180, &DeltaHeader::points2},          {208, &DeltaHeader::first_valid},      {240, &DeltaHeader::last_valid},
    {272, &DeltaHeader::axis_start},       {336, &DeltaHeader::axis_stop},        {1064, &DeltaHeader::base_mhz},
    {1212, &DeltaHeader::parameter_start}, {1216, &DeltaHeader::parameter_bytes}, {1284, &DeltaHeader::data_start},
    {1292, &DeltaHeader::data_bytes},      {1300, &DeltaHeader::context_start},   {1304, &DeltaHeader::context_bytes},
};
constexpr TextField<DeltaHeader> kTexts[] = {
    {48, 124, &DeltaHeader::title},    {424, 128, &DeltaHeader::site},   {552, 128, &DeltaHeader::author},
    {680, 128, &DeltaHeader::comment}, {808, 32, &DeltaHeader::nucleus}, {840, 32, &DeltaHeader::nucleus2},
};

constexpr std::uint64_t kSectionHead = 16;
constexpr std::uint64_t kRecordSmallest = 64, kRecordLargest = 4096;
constexpr std::uint64_t kMostRecords = 65536; // real files have some 200
constexpr std::size_t kValueWidth = 16, kNameWidth = 28;
constexpr std::int32_t kTextValue = 0, kIntegerValue = 1, kFloatValue = 2;

DeltaHeader Decode(ByteSpan head, std::endian order)
{
    DeltaHeader header;
    DecodeFields<DeltaHeader>(kHead, head, order, header);
    DecodeTexts<DeltaHeader>(kTexts, head, header);
    return header;
}

bool IsPossible(const DeltaHeader& header, std::uint64_t file_size)
{
    return header.parameter_start <= file_size && header.data_start <= file_size && header.points <= file_size;
}

struct RecordWords {
    std::uint8_t prefix = 0, unit = 0;
    std::int32_t integer = 0;
    double real = 0;
    std::int32_t type = 0;
};
constexpr ByteField<RecordWords> kRecord[] = {
    {6, &RecordWords::prefix}, {7, &RecordWords::unit},  {16, &RecordWords::integer},
    {16, &RecordWords::real},  {32, &RecordWords::type},
};

DeltaParameter Parameter(ByteSpan record, std::endian order)
{
    RecordWords words;
    DecodeFields<RecordWords>(kRecord, record, order, words);
    DeltaParameter parameter;
    parameter.unit = static_cast<DeltaUnit>(words.unit);
    if (words.type == kTextValue) {
        parameter.text = std::string(Trim(GetText(record, 16, kValueWidth)));
    } else if (words.type == kIntegerValue || words.type == kFloatValue) {
        const double value = words.type == kIntegerValue ? words.integer : words.real;
        parameter.kind = DeltaParameter::Kind::number;
        parameter.number = value * DeltaPrefixFactor(words.prefix);
    } else {
        parameter.kind = DeltaParameter::Kind::other; // complex, infinity: nothing that is looked for
    }
    return parameter;
}

} // namespace

bool DeltaHeader::IsSpectrum() const
{
    const auto unit = static_cast<DeltaUnit>(axis_unit);
    return unit == DeltaUnit::ppm || unit == DeltaUnit::hertz;
}

DeltaHeader ReadDeltaHeader(ByteSpan head, std::uint64_t file_size)
{
    const DeltaHeader big = Decode(head, std::endian::big);
    if (!big.little() || IsPossible(big, file_size)) return big;
    const DeltaHeader little = Decode(head, std::endian::little);
    return IsPossible(little, file_size) ? little : big;
}

bool StartsDeltaFile(ByteSpan head)
{
    return head.size() >= kDeltaSmallest && GetText(head, 0, 8) == "JEOL.NMR";
}

double DeltaPrefixFactor(std::uint8_t prefix)
{
    const int nibble = prefix >> 4;
    const int power = nibble >= 8 ? nibble - 16 : nibble;
    return std::pow(10.0, -3 * power);
}

DeltaParameters DeltaParameters::Parse(ByteSpan file, const DeltaHeader& header)
{
    DeltaParameters parameters;
    const std::uint64_t start = header.parameter_start;
    if (start + kSectionHead > file.size()) {
        parameters.cut_ = true;
        return parameters;
    }
    const std::endian order = header.little() ? std::endian::little : std::endian::big;
    const auto word = [&](std::uint64_t offset) -> std::uint64_t {
        const auto at = static_cast<std::size_t>(offset);
        return static_cast<std::uint32_t>(header.little() ? GetLongLE(file, at) : GetLongBE(file, at));
    };
    const std::uint64_t size = word(start), count = std::min(word(start + 8) + 1, kMostRecords);
    if (size < kRecordSmallest || size > kRecordLargest) return parameters;
    std::uint64_t section_end = start + kSectionHead + count * size;
    if (header.parameter_bytes >= kSectionHead) section_end = std::min(section_end, start + header.parameter_bytes);
    for (std::uint64_t record = start + kSectionHead; record + size <= section_end; record += size) {
        if (record + size > file.size()) {
            parameters.cut_ = true;
            break;
        }
        const ByteSpan bytes = file.subspan(static_cast<std::size_t>(record), static_cast<std::size_t>(size));
        parameters.parameters_.emplace(ToUpper(Trim(GetText(bytes, 36, kNameWidth))), Parameter(bytes, order));
    }
    return parameters;
}

const DeltaParameter* DeltaParameters::Find(std::string_view name) const
{
    const auto found = parameters_.find(name);
    return found == parameters_.end() ? nullptr : &found->second;
}

std::optional<double> DeltaParameters::Number(std::string_view name) const
{
    const DeltaParameter* parameter = Find(name);
    const bool usable = parameter != nullptr && parameter->kind == DeltaParameter::Kind::number;
    return usable && std::isfinite(parameter->number) ? std::optional(parameter->number) : std::nullopt;
}

std::string DeltaParameters::Text(std::string_view name) const
{
    const DeltaParameter* parameter = Find(name);
    return parameter == nullptr ? std::string() : parameter->text;
}

} // namespace nmr
