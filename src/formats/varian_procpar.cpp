#include "formats/varian_procpar.h"

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

constexpr int kFieldsBehindName = 10;
constexpr int kSubtypeField = 0, kBasicTypeField = 1, kActiveField = 8;
constexpr std::int64_t kLastSubtype = 7;
constexpr std::int64_t kStringType = 2;
constexpr std::uint64_t kMaxParameterFile = std::uint64_t{16} << 20;

/// Tokens of a parameter file: words between blanks, or text in double quotes.
class VarianTokens {
public:
    VarianTokens(ByteSpan file, std::size_t position) : file_(file), position_(position) {}
    std::size_t position() const { return position_; }

    /// Nothing at the end of the file.
    std::optional<std::string> Word()
    {
        SkipBlanks();
        std::string word;
        while (position_ < file_.size() && Char() > ' ') word += static_cast<char>(file_[position_++]);
        return word.empty() ? std::nullopt : std::optional(word);
    }
    /// Nothing when no quote stands here or none closes.
    std::optional<std::string> Quoted()
    {
        SkipBlanks();
        if (position_ >= file_.size() || Char() != '"') return std::nullopt;
        ++position_;
        std::string text;
        while (position_ < file_.size() && Char() != '"') {
            if (Char() == '\\' && position_ + 1 < file_.size() && file_[position_ + 1] == std::byte{'"'})
                ++position_; // a quote inside the text; nothing else is escaped
            text += static_cast<char>(file_[position_++]);
        }
        if (position_ >= file_.size()) return std::nullopt;
        ++position_;
        return text;
    }
    std::optional<std::int64_t> Count()
    {
        const auto word = Word();
        return word ? ParseInteger(*word) : std::nullopt;
    }

private:
    unsigned char Char() const { return std::to_integer<unsigned char>(file_[position_]); }
    void SkipBlanks()
    {
        while (position_ < file_.size() && Char() <= ' ') ++position_;
    }

    ByteSpan file_;
    std::size_t position_;
};

/// "count value value ..."; an unreadable count or value gives false. The list grows by what the
/// file holds, never by the count alone.
bool ReadList(VarianTokens& tokens, bool quoted, std::vector<std::string>& values)
{
    const auto count = tokens.Count();
    if (!count || *count < 0) return false;
    for (std::int64_t i = 0; i < *count; ++i) {
        auto value = quoted ? tokens.Quoted() : tokens.Word();
        if (!value) return false;
        values.push_back(std::move(*value));
    }
    return true;
}

VarianSubtype SubtypeOf(std::string_view word)
{
    const auto number = ParseInteger(word);
    if (!number || *number < 0 || *number > kLastSubtype) return VarianSubtype::undefined;
    return static_cast<VarianSubtype>(*number);
}

bool ReadRecord(VarianTokens& tokens, VarianRecord& record)
{
    std::optional<std::int64_t> basic_type;
    for (int i = 0; i < kFieldsBehindName; ++i) {
        const auto word = tokens.Word();
        if (!word || !ParseNumber(*word)) return false;
        if (i == kSubtypeField) record.subtype = SubtypeOf(*word);
        if (i == kBasicTypeField) basic_type = ParseInteger(*word);
        if (i == kActiveField) record.active = ParseNumber(*word) != 0.0;
    }
    const bool text = basic_type == kStringType;
    std::vector<std::string> allowed; // the values that the console offers
    return ReadList(tokens, text, record.values) && ReadList(tokens, text, allowed);
}

std::optional<double> FirstNumber(const VarianRecord* record)
{
    if (record == nullptr || record->values.empty()) return std::nullopt;
    const auto number = ParseNumber(record->values.front());
    return number && std::isfinite(*number) ? number : std::nullopt;
}

} // namespace

VarianRecord Varian_Line(ByteSpan file, std::size_t& position)
{
    VarianTokens tokens(file, position);
    VarianRecord record;
    if (auto name = tokens.Word()) {
        record.name = std::move(*name);
        if (!ReadRecord(tokens, record)) record = {"ERROR:", {}};
    }
    position = tokens.position();
    return record;
}

Result<VarianParameters> VarianParameters::Read(const std::string& path)
{
    const auto bytes = ReadWholeFile(path, kMaxParameterFile);
    if (!bytes) return bytes.error();
    return Parse(*bytes);
}

Result<VarianParameters> VarianParameters::Parse(ByteSpan bytes)
{
    VarianParameters parameters;
    std::string last = "the beginning";
    for (std::size_t position = 0;;) {
        VarianRecord record = Varian_Line(bytes, position);
        if (record.name == "ERROR:")
            return Error{ErrorCode::bad_format, "Varian_Line/1DDRW",
                         "a record can't be read, behind " + FromUnknownCodePage(Left(last, 60))};
        if (record.name.empty()) break;
        last = record.name;
        parameters.records_.insert_or_assign(last, std::move(record));
    }
    if (parameters.records_.empty())
        return Error{ErrorCode::bad_format, "Varian_Line/1DDRW", "the file has no parameters"};
    return parameters;
}

const VarianRecord* VarianParameters::Find(std::string_view name) const
{
    const auto exact = records_.find(name);
    if (exact != records_.end()) return &exact->second;
    const auto same = std::find_if(records_.begin(), records_.end(),
                                   [&](const auto& record) { return EqualsNoCase(record.first, name); });
    return same == records_.end() ? nullptr : &same->second;
}

std::optional<double> VarianParameters::Number(std::string_view name) const
{
    return FirstNumber(Find(name));
}

std::optional<double> VarianParameters::ActiveNumber(std::string_view name) const
{
    const VarianRecord* record = Find(name);
    return record != nullptr && record->active ? FirstNumber(record) : std::nullopt;
}

std::optional<std::string> VarianParameters::Text(std::string_view name) const
{
    const VarianRecord* record = Find(name);
    if (record == nullptr || record->values.empty()) return std::nullopt;
    return FromUnknownCodePage(Trim(record->values.front()));
}

} // namespace nmr
