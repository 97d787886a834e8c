#pragma once
// How the rows of the settings table are written down; only for the files that hold rows.

#include "core/numbers.h"
#include "core/settings_table.h"

#include <span>

namespace nmr::settings_rows {

using S = Settings;
using Whole = std::int32_t S::*;
using Real = double S::*;

constexpr SettingRow Text(std::string_view key, std::string S::*member)
{
    return {key, member};
}
/// A switch, a mode, or a code whose values other programs may extend: any whole number.
constexpr SettingRow Word(std::string_view key, Whole member)
{
    return {key, member};
}
constexpr SettingRow Count(std::string_view key, Whole member, double min, double max)
{
    return {key, member, min, max};
}
/// A number of points; what can't be used becomes 65536.
constexpr SettingRow Points(std::string_view key, Whole member, double min)
{
    return {key, member, min, kMaxPoints, Mend::fallback, 65536};
}
constexpr SettingRow Color(std::string_view key, Whole member)
{
    return {key, member, 0, 0xFFFFFF, Mend::nearest};
}
constexpr SettingRow Number(std::string_view key, Real member, double min = 0, double max = 0)
{
    return {key, member, min, max};
}
constexpr SettingRow LineWidth(std::string_view key, Real member)
{
    return {key, member, 1, 100, Mend::nearest};
}
/// A length or a place on paper, cm.
constexpr SettingRow Place(std::string_view key, Real member)
{
    return {key, member, -1000, 1000};
}
constexpr SettingRow Extent(std::string_view key, Real member)
{
    return {key, member, 0.01, 1000};
}
constexpr SettingRow FontSize(std::string_view key, Real member)
{
    return {key, member, 1, 500};
}
constexpr SettingRow Step(std::string_view key, Real member)
{
    return {key, member, 1e-6, 1e9};
}
constexpr SettingRow Divisions(std::string_view key, Whole member)
{
    return {key, member, 1, 1000};
}
constexpr SettingRow Digits(std::string_view key, Whole member)
{
    return {key, member, 0, 12};
}

// The rows stand in three files; this is their order.
std::span<const SettingRow> DisplayRows();
std::span<const SettingRow> LayoutRows();
std::span<const SettingRow> AnalysisRows();

} // namespace nmr::settings_rows
