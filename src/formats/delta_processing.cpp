// The list of processing commands that Delta files carry along.
//
// Two spellings occur in published files: "zerofill : 1;" and "zerofill( 4 );". A spectrum of 4 times the
// points of its FID came from "zerofill( 4 )", so the number is a factor.

#include "core/numbers.h"
#include "core/text.h"
#include "formats/delta_fields.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace nmr {

namespace {

constexpr std::size_t kMostContext = std::size_t{1} << 20; // bytes that are looked at
constexpr double kWidest = 1e4;                            // Hz

struct Command {
    std::string name; ///< lower case
    std::vector<double> numbers;
};

/// The numbers of "2[Hz] : 0.5[Hz]" or "1.0[Hz], 0.6[Hz]"; units in brackets are left away.
std::vector<double> Numbers(std::string_view text)
{
    std::vector<double> numbers;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(":,()"), text.size());
        const std::string_view part = Trim(text.substr(0, end));
        if (const auto number = ParseNumber(Trim(part.substr(0, part.find('['))))) numbers.push_back(*number);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return numbers;
}

Command ParseCommand(std::string_view text)
{
    const std::size_t end = std::min(text.find_first_of(":("), text.size());
    return {ToLower(Trim(text.substr(0, end))), Numbers(text.substr(end))};
}

/// The printable text around "zerofill", which every list has.
std::string_view FindList(std::string_view context)
{
    const std::size_t at = context.rfind("zerofill");
    if (at == context.npos) return {};
    const auto is_text = [&](std::size_t i) { return context[i] >= ' ' && context[i] < 127; };
    std::size_t begin = at, end = at;
    while (begin > 0 && is_text(begin - 1)) --begin;
    while (end < context.size() && is_text(end)) ++end;
    return context.substr(begin, end - begin);
}

std::vector<Command> Commands(std::string_view list)
{
    std::vector<Command> commands;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(';'), list.size());
        commands.push_back(ParseCommand(list.substr(0, end)));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return commands;
}

std::optional<std::array<double, 4>> Trapezoid(const std::vector<double>& percent)
{
    if (percent.size() != 4 || !std::ranges::is_sorted(percent) || percent[0] < 0 || percent[3] > 100)
        return std::nullopt;
    return std::array{percent[0], percent[1], percent[2], percent[3]};
}

/// None when a command shapes the FID in a way that no window here has.
std::optional<VendorWindow> FindWindow(const std::vector<Command>& commands)
{
    constexpr std::string_view kOthers[] = {"dexp", "gauss", "sine", "sinebell", "hamming", "trapezoid3", "kaiser"};
    VendorWindow window;
    for (const Command& command : commands) {
        if (std::ranges::find(kOthers, command.name) != std::end(kOthers)) return std::nullopt;
        if (command.name == "sexp") {
            if (command.numbers.empty() || !(std::fabs(command.numbers[0]) < kWidest)) return std::nullopt;
            window.broadening_hz = command.numbers[0];
        }
        if (command.name == "trapezoid") {
            window.trapezoid_percent = Trapezoid(command.numbers);
            if (!window.trapezoid_percent) return std::nullopt;
        }
    }
    return window.broadening_hz >= 0 ? std::optional(window) : std::nullopt;
}

} // namespace

VendorProcessing FindDeltaProcessing(ByteSpan file, const DeltaHeader& header, std::int32_t points)
{
    VendorProcessing found;
    if (header.context_start >= file.size()) return found;
    const ByteSpan context = file.subspan(header.context_start);
    const std::size_t bytes = std::min({context.size(), std::size_t{header.context_bytes}, kMostContext});
    const std::string_view list = FindList({reinterpret_cast<const char*>(context.data()), bytes});
    if (list.empty()) return found;
    const std::vector<Command> commands = Commands(list);
    for (const Command& command : commands)
        if (command.name == "zerofill" && !command.numbers.empty() && command.numbers[0] >= 1 &&
            command.numbers[0] * points <= kMaxPoints)
            found.points = static_cast<std::int32_t>(command.numbers[0] * points);
    found.window = FindWindow(commands);
    return found;
}

} // namespace nmr
