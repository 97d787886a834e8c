// The parameter file of Varian consoles: records of text, read as tokens separated by blanks, since a
// quoted string may run over lines. Grammar as the OpenVnmrJ sources write and read it.

#include "core/numbers.h"
#include "core/text.h"
#include "formats/probes.h"

#include <cmath>
#include <optional>

namespace nmr {

using namespace probe_detail;

namespace {

constexpr int kFieldsBehindName = 10;
constexpr int kStringType = 2;

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

bool ReadRecord(VarianTokens& tokens, VarianRecord& record)
{
    std::optional<std::int64_t> basic_type;
    for (int i = 0; i < kFieldsBehindName; ++i) {
        const auto word = tokens.Word();
        if (!word || !ParseNumber(*word)) return false;
        if (i == 1) basic_type = ParseInteger(*word);
    }
    const bool text = basic_type == kStringType;
    std::vector<std::string> allowed; // the values that the console offers
    return ReadList(tokens, text, record.values) && ReadList(tokens, text, allowed);
}

/// What the decision needs.
struct VarianValues {
    std::string array;
    double array_rows = 0, observe_mhz = 0, decouple_mhz = 0;
    std::string observe = "NUL", decouple = "NUL";
};

/// False for a file without a record, or with one that can't be read.
bool ReadValues(ByteSpan file, const NuclearTable& nuclides, VarianValues& values)
{
    bool any = false;
    for (std::size_t position = 0;;) {
        const VarianRecord record = Varian_Line(file, position);
        if (record.name == "ERROR:") return false;
        if (record.name.empty()) return any;
        any = true;
        if (record.values.empty()) continue;
        const std::string name = ToUpper(record.name);
        const std::string& value = record.values.front();
        if (name == "ARRAY") values.array = ToUpper(Trim(value));
        if (name == "ARRAYDIM") values.array_rows = ParseNumber(value).value_or(0.0);
        if (name == "SFRQ") values.observe_mhz = ParseNumber(value).value_or(0.0);
        if (name == "DFRQ") values.decouple_mhz = ParseNumber(value).value_or(0.0);
        if (name == "TN") values.observe = nuclides.Nucleus_Normalize(value);
        if (name == "DN") values.decouple = nuclides.Nucleus_Normalize(value);
    }
}

/// Rows of one parameter look like increments of a second dimension: only the user can tell.
bool UserSaysTwoDimensional(Asker& asker)
{
    const MessageBox box{.text = "2D Data(Yes) or Array Data(No)?",
                         .title = "Data Type",
                         .buttons = {Button::yes, Button::no},
                         .icon = Icon::question,
                         .beep = true};
    return asker.Message(box) == Button::yes;
}

bool IsTwoDimensionalSet(const VarianValues& values, Asker& asker)
{
    const bool increments = values.array.empty() || values.array == "PHASE";
    if (values.array_rows <= 1) return false;
    // More rows than an array may have, without a parameter that explains them.
    if (increments && values.array_rows > 32) return true;
    return UserSaysTwoDimensional(asker);
}

ProbeAnswer VarianMode2D(VarianValues values)
{
    const bool phase_sensitive = values.array == "PHASE";
    const bool increments = values.array.empty() || phase_sensitive;
    const bool same_nucleus = values.observe == values.decouple || values.decouple == "NUL";
    if (increments && same_nucleus) values.decouple_mhz = values.observe_mhz;
    if (values.observe_mhz <= 0 || values.decouple_mhz <= 0) return Failed();

    // The kind goes by frequency, which a wrong nucleus name does not deceive.
    const double apart = std::fabs(values.observe_mhz - values.decouple_mhz) / values.observe_mhz;
    ProbeAnswer answer = Found({}, false);
    ModeOf2D(phase_sensitive, apart < 0.01, answer.kind_2d);
    int unused = 0;
    answer.mode = increments ? ModeOf2D(phase_sensitive, same_nucleus, unused) : "V2D:";
    answer.mode.pop_back(); // this family's modes stand without the colon
    return answer;
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

ProbeAnswer ReadModeVarian(ByteSpan head, const ProbeContext& context)
{
    VarianValues values;
    if (!ReadValues(head, context.nuclides, values)) return Failed();
    if (!IsTwoDimensionalSet(values, context.asker)) return Found("1D:", false);
    return VarianMode2D(std::move(values));
}

} // namespace nmr
