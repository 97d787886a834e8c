#include "session/journal_records.h"

#include "core/dates.h"
#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"

#include <fmt/format.h>

#include <algorithm>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kLargestFileLookedAt = std::uint64_t{256} << 20U;

Patch PatchBetween(SectionKey key, std::span<const std::byte> before, std::span<const std::byte> after)
{
    Patch patch{key.slot, key.section, 0, 0, 0, {}, Checksum64(after)};
    const std::size_t shorter = std::min(before.size(), after.size());
    const auto head =
        std::mismatch(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(shorter), after.begin());
    const auto same_head = static_cast<std::size_t>(head.first - before.begin());
    std::size_t same_tail = 0;
    while (same_tail < shorter - same_head &&
           before[before.size() - 1 - same_tail] == after[after.size() - 1 - same_tail])
        ++same_tail;
    const auto inserted = after.subspan(same_head, after.size() - same_head - same_tail);
    patch.kept_before = static_cast<std::uint32_t>(same_head);
    patch.removed = static_cast<std::uint32_t>(before.size() - same_head - same_tail);
    patch.bytes.assign(inserted.begin(), inserted.end());
    return patch;
}

bool Apply(const Patch& patch, StateImage& image)
{
    const SectionKey key{patch.slot, patch.section};
    if (patch.gone != 0) return image.erase(key) == 1;
    std::vector<std::byte>& bytes = image[key];
    if (patch.kept_before > bytes.size() || patch.removed > bytes.size() - patch.kept_before) return false;
    const auto at = bytes.begin() + patch.kept_before;
    const auto behind = bytes.erase(at, at + patch.removed);
    bytes.insert(behind, patch.bytes.begin(), patch.bytes.end());
    return Checksum64(bytes) == patch.checksum;
}

} // namespace

std::vector<Patch> Differences(const StateImage& before, const StateImage& after,
                               const std::array<bool, kSlotCount>& kept)
{
    std::vector<Patch> patches;
    for (const auto& [key, bytes] : after) {
        const auto old = before.find(key);
        if (old == before.end())
            patches.push_back(PatchBetween(key, {}, bytes));
        else if (old->second != bytes)
            patches.push_back(PatchBetween(key, old->second, bytes));
    }
    for (const auto& [key, bytes] : before)
        if (key.slot >= 0 && !kept[static_cast<std::size_t>(key.slot)])
            patches.push_back({key.slot, key.section, 0, 0, 1, {}, 0});
    return patches;
}

bool Apply(const std::vector<Patch>& patches, StateImage& image)
{
    return std::ranges::all_of(patches, [&](const Patch& patch) { return Apply(patch, image); });
}

HeadRecord DescribeRun(const std::string& file)
{
    HeadRecord head;
    head.run = ThisRun();
    head.file = file;
    head.length = file.empty() ? -1 : FileLen(file);
    if (head.length < 0) return head;
    if (const auto bytes = ReadWholeFile(file, kLargestFileLookedAt)) head.checksum = Checksum64(*bytes);
    return head;
}

double NowAsNumber()
{
    const DateTime now = NowLocal();
    return now.serial + now.fraction_of_day;
}

fs::path JournalPath(const fs::path& folder, int work_number)
{
    return folder / fmt::format("Journal_1D{:04}.jnl", work_number);
}

std::optional<int> WorkNumberOf(const std::string& name)
{
    constexpr std::string_view mark = "_1D";
    const std::size_t at = ToUpper(name).find(mark);
    if (at == std::string::npos) return std::nullopt;
    const auto number = ParseInteger(std::string_view(name).substr(at + mark.size(), 4));
    if (!number || *number < 0) return std::nullopt;
    return static_cast<int>(*number);
}

fs::path PointsPath(const fs::path& journal, std::int16_t slot, int number)
{
    return journal.parent_path() / fmt::format("{}_S{:02}.{:03}", journal.stem().string(), slot, number);
}

std::string PointsPattern(const fs::path& journal)
{
    return journal.stem().string() + "_S*";
}

} // namespace nmr
