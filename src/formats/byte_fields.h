#pragma once
// Fixed binary heads as tables: the offset of a field and the member that takes it, whose type is the
// width of the field. The only place of a reader that knows offsets.

#include "core/text.h"
#include "formats/data_conversion.h"

#include <bit>
#include <cstdint>
#include <span>
#include <string>
#include <variant>

namespace nmr {

template <class Record>
struct ByteField {
    std::size_t offset;
    std::variant<std::uint8_t Record::*, std::int16_t Record::*, std::int32_t Record::*, std::uint32_t Record::*,
                 double Record::*>
        member;
};

/// A text is trimmed and ends at a zero byte.
template <class Record>
struct TextField {
    std::size_t offset, length;
    std::string Record::*member;
};

namespace byte_fields_detail {

inline void Get(ByteSpan field, bool, std::uint8_t& value)
{
    value = std::to_integer<std::uint8_t>(field[0]);
}
inline void Get(ByteSpan field, bool big, std::int16_t& value)
{
    value = big ? GetShortBE(field, 0) : GetShortLE(field, 0);
}
inline void Get(ByteSpan field, bool big, std::int32_t& value)
{
    value = big ? GetLongBE(field, 0) : GetLongLE(field, 0);
}
inline void Get(ByteSpan field, bool big, std::uint32_t& value)
{
    value = static_cast<std::uint32_t>(big ? GetLongBE(field, 0) : GetLongLE(field, 0));
}
inline void Get(ByteSpan field, bool big, double& value)
{
    value = big ? GetDoubleBE(field, 0) : GetDoubleLE(field, 0);
}

inline bool Holds(ByteSpan bytes, std::size_t offset, std::size_t width)
{
    return offset <= bytes.size() && width <= bytes.size() - offset;
}

} // namespace byte_fields_detail

/// Fills the members of `record`; a field that does not lie wholly within the bytes leaves its member.
template <class Record>
void DecodeFields(std::span<const ByteField<Record>> table, ByteSpan bytes, std::endian order, Record& record)
{
    for (const ByteField<Record>& field : table)
        std::visit(
            [&](auto member) {
                constexpr std::size_t width = sizeof(record.*member);
                if (byte_fields_detail::Holds(bytes, field.offset, width))
                    byte_fields_detail::Get(bytes.subspan(field.offset, width), order == std::endian::big,
                                            record.*member);
            },
            field.member);
}

template <class Record>
void DecodeTexts(std::span<const TextField<Record>> table, ByteSpan bytes, Record& record)
{
    for (const TextField<Record>& field : table)
        if (byte_fields_detail::Holds(bytes, field.offset, field.length))
            record.*field.member = std::string(Trim(GetText(bytes, field.offset, field.length)));
}

} // namespace nmr
