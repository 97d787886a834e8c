#include "cli/options.h"

#include "core/numbers.h"
#include "core/text.h"
#include "formats/csv_choice.h"

#include <algorithm>
#include <array>

namespace nmr {
namespace {

Error Usage(std::string text)
{
    return Error{ErrorCode::bad_value, "nmr1d-cli", std::move(text)};
}

std::optional<std::int32_t> Int32(std::string_view text)
{
    const auto value = ParseInteger(text);
    if (!value || *value < -kMaxPoints || *value > kMaxPoints) return std::nullopt;
    return static_cast<std::int32_t>(*value);
}

struct WindowName {
    std::string_view name;
    WindowKind kind;
};
constexpr std::array kWindowNames{WindowName{"exponential", WindowKind::exponential},
                                  WindowName{"sinebell", WindowKind::sine_bell}, WindowName{"hann", WindowKind::hann},
                                  WindowName{"gaussian", WindowKind::gaussian},
                                  WindowName{"blackman-harris", WindowKind::blackman_harris}};

struct FieldName {
    std::string_view name;
    WindowField field;
};
constexpr std::array kFieldNames{FieldName{"lb", WindowField::bf1},      FieldName{"bf", WindowField::bf2},
                                 FieldName{"gf", WindowField::gf},       FieldName{"center", WindowField::center},
                                 FieldName{"start", WindowField::start}, FieldName{"end", WindowField::end},
                                 FieldName{"trap1", WindowField::trap1}, FieldName{"trap2", WindowField::trap2},
                                 FieldName{"trap3", WindowField::trap3}, FieldName{"trap4", WindowField::trap4}};

// Which fields shape which window; the trapezoid goes with all of them.
bool FieldBelongs(WindowKind kind, WindowField field)
{
    switch (field) {
    case WindowField::bf1:
        return kind == WindowKind::exponential;
    case WindowField::bf2:
    case WindowField::gf:
    case WindowField::center:
        return kind == WindowKind::gaussian;
    case WindowField::start:
    case WindowField::end:
        return kind != WindowKind::exponential && kind != WindowKind::gaussian;
    default:
        return true;
    }
}

Status ParseWindowPart(const std::string& part, WindowChoice& choice)
{
    const auto equals = part.find('=');
    if (equals == std::string::npos) return Usage("a window parameter is key=value, not \"" + part + "\"");
    const std::string key = part.substr(0, equals), value = part.substr(equals + 1);
    if (key == "trapezoid") {
        if (value != "on" && value != "off") return Usage("trapezoid is on or off");
        choice.trapezoid = value == "on";
        return {};
    }
    const auto row =
        std::find_if(kFieldNames.begin(), kFieldNames.end(), [&](const FieldName& f) { return f.name == key; });
    if (row == kFieldNames.end() || !FieldBelongs(choice.kind, row->field))
        return Usage("this window has no parameter \"" + key + "\"");
    const auto number = ParseNumber(value);
    if (!number) return Usage("\"" + value + "\" is no number");
    choice.fields.emplace_back(row->field, *number);
    return {};
}

} // namespace

Exit ExitFor(ErrorCode code)
{
    switch (code) {
    case ErrorCode::two_dimensional:
        return Exit::two_dimensional;
    case ErrorCode::too_large:
    case ErrorCode::bad_value:
        return Exit::bad_parameters;
    case ErrorCode::unwritable:
        return Exit::not_written;
    case ErrorCode::internal:
        return Exit::internal;
    default:
        return Exit::unreadable;
    }
}

Result<ZeroFill> ParseZeroFill(const std::string& text)
{
    if (text == "off") return ZeroFill{ZeroFill::Kind::off, 0};
    const bool factor = !text.empty() && (text.front() == 'x' || text.front() == 'X');
    const auto value = Int32(factor ? text.substr(1) : text);
    if (!value || *value < 1) return Usage("--zero-fill takes a number of points, xK or off, not \"" + text + "\"");
    return ZeroFill{factor ? ZeroFill::Kind::factor : ZeroFill::Kind::points, *value};
}

Result<WindowChoice> ParseWindow(const std::string& text)
{
    const auto colon = text.find(':');
    const std::string name = ToLower(text.substr(0, colon));
    WindowChoice choice;
    choice.vendor = text == "vendor";
    if (choice.vendor) return choice;
    const auto row =
        std::find_if(kWindowNames.begin(), kWindowNames.end(), [&](const WindowName& w) { return w.name == name; });
    if (row == kWindowNames.end())
        return Usage("--window takes exponential, sinebell, hann, gaussian, blackman-harris or vendor, not \"" + name +
                     "\"");
    choice.kind = row->kind;
    if (colon == std::string::npos) return choice;
    for (const std::string& part : Split(text.substr(colon + 1), ','))
        if (const Status status = ParseWindowPart(part, choice); !status) return status.error();
    return choice;
}

Result<std::optional<std::int32_t>> ParseShift(const std::string& text)
{
    if (text == "auto") return std::optional<std::int32_t>();
    const auto value = Int32(text);
    if (!value) return Usage("--shift takes a number of points or auto, not \"" + text + "\"");
    return std::optional<std::int32_t>(*value);
}

Result<PhaseChoice> ParsePhase(const std::string& text)
{
    PhaseChoice choice;
    constexpr std::array<std::pair<std::string_view, PhaseChoice::Kind>, 4> kNames{
        {{"auto", PhaseChoice::Kind::automatic},
         {"robust", PhaseChoice::Kind::robust},
         {"off", PhaseChoice::Kind::off},
         {"vendor", PhaseChoice::Kind::vendor}}};
    for (const auto& [name, kind] : kNames)
        if (text == name) {
            choice.kind = kind;
            return choice;
        }
    const auto parts = Split(text, ',');
    const auto p0 = ParseNumber(parts.at(0));
    const auto p1 = parts.size() > 1 ? ParseNumber(parts[1]) : 0.0;
    const auto pivot = parts.size() > 2 ? Int32(parts[2]) : std::optional<std::int32_t>(0);
    if (!p0 || !p1 || !pivot || parts.size() > 3)
        return Usage("--phase takes auto, robust, off, vendor or P0[,P1[,PIVOT]], not \"" + text + "\"");
    choice.kind = PhaseChoice::Kind::given;
    choice.p0_deg = *p0;
    choice.p1_deg = *p1;
    if (parts.size() > 2) choice.pivot = *pivot;
    return choice;
}

Result<std::pair<double, double>> ParseRange(const std::string& text)
{
    const auto colon = text.find(':');
    const auto left = ParseNumber(text.substr(0, colon));
    const auto right = colon == std::string::npos ? std::nullopt : ParseNumber(text.substr(colon + 1));
    if (!left || !right || *left == *right) return Usage("--range takes LEFT:RIGHT in ppm, not \"" + text + "\"");
    return std::pair{std::max(*left, *right), std::min(*left, *right)};
}

Result<TableValues> ParseTable(const std::string& text)
{
    const TableValues known = CsvChoice().ToValues();
    TableValues values;
    for (const std::string& part : Split(text, ';')) {
        const auto equals = part.find('=');
        const std::string key = ToUpper(Trim(part.substr(0, equals)));
        if (equals == std::string::npos || !known.contains(key))
            return Usage("--table takes KEY=VALUE[;KEY=VALUE...], not \"" + part + "\"");
        values[key] = Trim(part.substr(equals + 1));
    }
    return values;
}

} // namespace nmr
