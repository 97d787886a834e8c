#pragma once
// The fields that travel under a key: one table for readers, writers, lists and editors.

#include "core/data_set.h"

#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace nmr {

/// One element of an array member counts as a member of its own.
template <class T, std::size_t N>
struct ElementOf {
    std::array<T, N> ParamBlock::*member;
    std::size_t index;
};
template <std::size_t N>
constexpr ElementOf<float, N> Element(std::array<float, N> ParamBlock::*member, std::size_t index)
{
    return {member, index};
}

/// The field that a row of a table stands for.
template <class Block, class T>
auto& FieldOf(Block& par, T ParamBlock::*member)
{
    return par.*member;
}
template <class Block, class T, std::size_t N>
auto& FieldOf(Block& par, ElementOf<T, N> element)
{
    return (par.*element.member)[element.index];
}

using ParamMember =
    std::variant<std::int16_t ParamBlock::*, std::int32_t ParamBlock::*, float ParamBlock::*, double ParamBlock::*,
                 std::string ParamBlock::*, ElementOf<float, 5>, ElementOf<float, 4>, ElementOf<std::int32_t, 5>>;

struct ParamField {
    std::string_view key;     ///< "OBFRQ"; empty for a field that travels only in the native file
    std::string_view name;    ///< member name, "OBFRQ0PPM"
    std::string_view label;   ///< "ObsFreq"
    std::string_view pattern; ///< "#####0.0###"; empty for text
    std::string_view unit;    ///< " MHz", as it stands behind the number
    ParamMember member;
};

/// All fields, in the order of the record.
std::span<const ParamField> ParamFields();

/// The field of a key, or of an alias key; nullptr when none has it. Keys compare case-blind.
const ParamField* FindParam(std::string_view key);

/// The value as text, by the field's pattern; text fields as they are.
std::string ParamText(const ParamBlock& block, const ParamField& field);

/// Sets the field from text. False when the text is no number, or out of the field's range; the
/// field then keeps its value.
bool SetParam(ParamBlock& block, const ParamField& field, std::string_view text);

} // namespace nmr
