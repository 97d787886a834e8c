#include "core/history.h"

#include "core/file_hash.h"
#include "core/file_layer.h"
#include "core/text.h"

#include <algorithm>

namespace nmr {
namespace {

constexpr std::string_view kPattern = "yyyy-mm-dd hh:nn:ss";
constexpr std::int64_t kLargestNoted = std::int64_t{256} << 20;
constexpr std::int32_t kFirstSerial = 21916; ///< 1960-01-01: earlier dates are words that no instrument set

std::string DateText(std::int32_t serial, double fraction)
{
    return FormatDate(kPattern, {serial, std::clamp(fraction, 0.0, 0.9999999)});
}

std::size_t CharacterLength(unsigned char lead)
{
    return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

bool BeginsWithDate(std::string_view text)
{
    constexpr std::string_view kShape = "0000-00-00 00:00:00";
    if (text.size() < kShape.size()) return false;
    for (std::size_t i = 0; i < kShape.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (kShape[i] == '0' ? !digit : text[i] != kShape[i]) return false;
    }
    return true;
}

HistoryRow EntryRow(const DataSet& set, std::size_t i)
{
    HistoryRow row;
    if (i < set.HistoryA.size()) row.operator_name = set.HistoryA[i];
    const std::string text = i < set.HistoryB.size() ? set.HistoryB[i] : std::string();
    if (!BeginsWithDate(text)) {
        row.subject = text;
        return row;
    }
    row.date = text.substr(0, kPattern.size());
    row.subject = std::string(Trim(std::string_view(text).substr(kPattern.size())));
    return row;
}

} // namespace

std::string CutForFile(std::string_view utf8, std::size_t bytes)
{
    std::size_t end = 0, taken = 0;
    while (end < utf8.size()) {
        const std::size_t length = std::min(CharacterLength(static_cast<unsigned char>(utf8[end])), utf8.size() - end);
        taken += ToCp932(utf8.substr(end, length)).size();
        if (taken > bytes) break;
        end += length;
    }
    return std::string(utf8.substr(0, end));
}

void AppendHistory(DataSet& set, std::string_view operator_name, std::string_view subject, const DateTime& when)
{
    // A file may have brought more of one column than of the other.
    const std::size_t count = std::max(set.HistoryA.size(), set.HistoryB.size());
    set.HistoryA.resize(count);
    set.HistoryB.resize(count);
    set.HistoryA.push_back(CutForFile(operator_name, kHistoryBytes));
    set.HistoryB.push_back(
        CutForFile(DateText(when.serial, when.fraction_of_day) + " " + std::string(subject), kHistoryBytes));
}

void AppendHistory(DataSet& set, std::string_view operator_name, std::string_view subject)
{
    AppendHistory(set, operator_name, subject, NowLocal());
}

void NoteOriginal(DataSet& set, const std::filesystem::path& file)
{
    if (!set.HistoryHead2.empty() || FileLen(file.string()) > kLargestNoted) return;
    if (const auto digest = Sha256OfFile(file)) set.HistoryHead2 = digest->substr(0, kHistoryBytes);
}

Original CheckOriginal(const DataSet& set)
{
    const std::string& noted = set.HistoryHead2;
    const bool is_digest =
        noted.size() == kHistoryBytes && noted.find_first_not_of("0123456789abcdef") == std::string::npos;
    if (!is_digest) return Original::not_noted;
    const auto digest = Sha256OfFile(set.par.OrgFile);
    if (!digest) return Original::missing;
    return digest->starts_with(noted) ? Original::unchanged : Original::changed;
}

std::vector<HistoryRow> HistoryRows(const DataSet& set)
{
    std::vector<HistoryRow> rows;
    const bool dated = set.par.DateSerial >= kFirstSerial;
    rows.push_back({kHistoryMeasured, set.par.Operator,
                    dated ? DateText(set.par.DateSerial, static_cast<double>(set.par.TimeOfDay)) : std::string()});
    const std::size_t count = std::max(set.HistoryA.size(), set.HistoryB.size());
    for (std::size_t i = 0; i < count; ++i) rows.push_back(EntryRow(set, i));
    return rows;
}

} // namespace nmr
