#pragma once
// What the records of a journal hold: who wrote it and over which file, then differences of states.

#include "core/run_identity.h"
#include "core/state_image.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nmr {

inline constexpr std::uint32_t kHeadRecord = 1, kEditRecord = 2;
inline constexpr char kJournalPattern[] = "Journal_1D*.jnl";

/// The first record. The file is the one that was read; its checksum tells whether it is still the same.
struct HeadRecord {
    RunIdentity run;
    std::string file;
    std::int64_t length = -1;   ///< bytes; -1 when there is no file
    std::uint64_t checksum = 0; ///< 0 for a file that is too large to be looked at
};
template <class Visit, class T>
requires std::same_as<std::remove_const_t<T>, HeadRecord>
void EachMember(Visit& visit, T& r)
{
    visit(r.run.host, r.run.boot, r.run.process, r.run.start, r.file, r.length, r.checksum);
}

/// How one section comes from its last state: between bytes that stay at its head and at its end, `removed`
/// bytes give way to others.
struct Patch {
    std::int16_t slot = -1;
    Section section = Section::parameters;
    std::uint32_t kept_before = 0, removed = 0;
    std::uint8_t gone = 0; ///< the section is no more: its slot was emptied
    std::vector<std::byte> bytes;
    std::uint64_t checksum = 0; ///< of the section that comes of it
};
template <class Visit, class T>
requires std::same_as<std::remove_const_t<T>, Patch>
void EachMember(Visit& visit, T& r)
{
    visit(r.slot, r.section, r.kept_before, r.removed, r.gone, r.bytes, r.checksum);
}

struct EditRecord {
    double when = 0;          ///< DateSerial, with its fraction of the day, local time
    std::uint8_t unsaved = 0; ///< a slot holds work that no file holds
    std::uint8_t saved = 0;   ///< the state is that of a file just read or saved
    std::string took_over;    ///< the dead run whose work this state is: its journal is done with
    std::vector<Patch> patches;
};
template <class Visit, class T>
requires std::same_as<std::remove_const_t<T>, EditRecord>
void EachMember(Visit& visit, T& r)
{
    visit(r.when, r.unsaved, r.saved, r.took_over, r.patches);
}

template <class Record>
std::vector<std::byte> PayloadOf(const Record& record)
{
    std::vector<std::byte> bytes;
    ImageWriter out(bytes);
    out(record);
    return bytes;
}
template <class Record>
std::optional<Record> RecordOf(std::span<const std::byte> payload)
{
    Record record;
    ImageReader in(payload);
    in(record);
    if (!in.complete()) return std::nullopt;
    return record;
}

/// From `before` to the sections of `after`; sections of slots that are not kept go. Axis and points of a
/// slot that is kept may be missing in `after`: they have not changed.
std::vector<Patch> Differences(const StateImage& before, const StateImage& after,
                               const std::array<bool, kSlotCount>& kept);
/// False when a patch does not fit, which leaves the image half done.
bool Apply(const std::vector<Patch>& patches, StateImage& image);

/// This run, and the file as it is now.
HeadRecord DescribeRun(const std::string& file);
double NowAsNumber();

std::filesystem::path JournalPath(const std::filesystem::path& folder, int work_number);
/// Of "Journal_1D0012.jnl", and of every other file of a run: the four digits behind "_1D".
std::optional<int> WorkNumberOf(const std::string& name);
/// "Journal_1D0012_S04.003" beside the journal.
std::filesystem::path PointsPath(const std::filesystem::path& journal, std::int16_t slot, int number);
std::string PointsPattern(const std::filesystem::path& journal);

} // namespace nmr
