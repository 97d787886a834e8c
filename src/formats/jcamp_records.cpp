// The record layer of JCAMP-DX: lines to labels, blocks, private blocks and tables.

#include "core/numbers.h"
#include "core/text.h"
#include "formats/jcamp.h"

#include <algorithm>

namespace nmr {

namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::size_t kMostText = 65536; // of one record with its further lines
// A record costs more memory than its text: what goes beyond any real file is passed over.
constexpr std::size_t kMostRecords = 200'000;
constexpr std::size_t kMostBlocks = 4096;
constexpr std::size_t kMostPageName = 64;
constexpr std::string_view kCarriedFile = "BRUKER FILE";

/// Without a comment behind "$$".
std::string_view WithoutComment(std::string_view text)
{
    return Trim(text.substr(0, text.find("$$")));
}

bool IsTableLabel(std::string_view label)
{
    constexpr std::array<std::string_view, 4> kLabels{"XYDATA", "DATATABLE", "XYPOINTS", "PEAKTABLE"};
    return std::ranges::find(kLabels, label) != kLabels.end();
}

/// 'R' of "(X++(R..R)), XYDATA", 'Y' of "(XY..XY)".
char OrdinateSymbol(std::string_view form)
{
    const std::size_t dots = form.find("..");
    if (dots == form.npos || dots == 0) return 0;
    return ToUpper(form.substr(dots - 1, 1)).front();
}

/// "T2" of "(T2++(R..R)), PROFILE".
std::string AbscissaSymbol(std::string_view form)
{
    const std::size_t end = form.find("++");
    if (end == form.npos) return "X";
    form = form.substr(0, end);
    const std::size_t begin = form.rfind('(');
    return ToUpper(Trim(form.substr(begin == form.npos ? 0 : begin + 1)));
}

/// Splits at separators; parts are trimmed.
std::vector<std::string> SplitAt(std::string_view text, std::string_view separators)
{
    std::vector<std::string> parts;
    while (parts.size() < kMostFields) {
        const std::size_t end = std::min(text.find_first_of(separators), text.size());
        parts.emplace_back(Trim(text.substr(0, end)));
        if (end == text.size()) break;
        text.remove_prefix(end + 1);
    }
    return parts;
}

/// Splits at every comma that has a blank behind it, or stands last.
std::vector<std::string> SplitAtCommaBlank(std::string_view text)
{
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size() && parts.size() < kMostFields; ++i) {
        if (text[i] != ',' || (i + 1 < text.size() && kBlanks.find(text[i + 1]) == kBlanks.npos)) continue;
        parts.emplace_back(Trim(text.substr(begin, i - begin)));
        begin = i + 1;
    }
    parts.emplace_back(Trim(text.substr(begin)));
    return parts;
}

} // namespace

bool Split_Label(const std::string& line, std::string& label, std::vector<std::string>& fields)
{
    fields.assign(4, {});
    LabelledRecord record;
    if (!Split_Value(line, record)) return false;
    label = record.label;
    // The value itself has no tabs any more.
    const std::size_t end = line.find_first_of("=\t");
    if (end == line.npos) return true;
    fields = SplitAt(std::string_view(line).substr(end + 1), ",\t");
    if (fields.size() < 4) fields.resize(4);
    return true;
}

bool Split_PrivateLine(const std::string& line, std::string& label, std::vector<std::string>& fields)
{
    fields.clear();
    if (!line.starts_with("##$")) return false;
    const std::size_t end = line.find('=');
    label = std::string(Trim(std::string_view(line).substr(3, end == line.npos ? line.npos : end - 3)));
    if (label.empty()) return false;
    if (end == line.npos) return true;
    std::string_view rest = WithoutComment(std::string_view(line).substr(end + 1));
    constexpr std::string_view kSeparators = ", \t";
    while (fields.size() < kMostFields) {
        rest.remove_prefix(std::min(rest.find_first_not_of(kSeparators), rest.size()));
        if (rest.empty()) break;
        std::size_t stop = std::min(rest.find_first_of(kSeparators), rest.size());
        if (rest.front() == '<') stop = std::min(rest.find('>'), rest.size() - 1) + 1;
        std::string_view value = rest.substr(0, stop);
        if (value.size() >= 2 && value.front() == '<' && value.back() == '>') value = value.substr(1, value.size() - 2);
        fields.emplace_back(value);
        rest.remove_prefix(stop);
    }
    return true;
}

std::string NormalLabel(std::string_view label)
{
    std::string out;
    for (const char c : ToUpper(Trim(label)))
        if (c != ' ' && c != '-' && c != '/' && c != '_' && c != '\t') out += c;
    return out;
}

std::optional<double> JcampNumber(std::string_view text)
{
    text = Trim(text);
    if (const auto number = ParseNumber(text)) return number;
    const std::size_t comma = text.find(',');
    if (comma == text.npos || text.find(',', comma + 1) != text.npos || text.find('.') != text.npos)
        return std::nullopt;
    std::string with_point(text);
    with_point[comma] = '.';
    return ParseNumber(with_point);
}

std::vector<std::string> SplitColumns(std::string_view text, std::size_t columns)
{
    std::vector<std::string> loose = SplitAtCommaBlank(text);
    return columns > 1 && loose.size() == columns ? loose : SplitAt(text, ",");
}

std::string_view JcampBlock::Value(std::string_view normal_label) const
{
    for (const auto& [label, value] : records)
        if (label == normal_label && !value.empty()) return value;
    return {};
}

std::optional<double> JcampBlock::Number(std::string_view normal_label) const
{
    return JcampNumber(Value(normal_label));
}

const JcampPrivate* JcampBlock::Own(std::string_view key) const
{
    const auto found = std::ranges::find_if(own, [&](const JcampPrivate& p) { return EqualsNoCase(p.key, key); });
    return found == own.end() ? nullptr : &*found;
}

// --- Blocks

namespace {

class Scanner {
public:
    explicit Scanner(std::string_view bytes) : rest_(bytes) {}

    JcampFile Run()
    {
        while (!rest_.empty() && file_.blocks.size() < kMostBlocks) {
            const char* begin = rest_.data();
            const std::string_view line = TakeLine(rest_);
            const std::size_t first = std::min(line.find_first_not_of(kBlanks), line.size());
            Take(line.substr(first), begin);
        }
        CloseTable(rest_.data());
        file_.ended = !file_.blocks.empty() && open_.empty();
        return std::move(file_);
    }

private:
    enum class Private { none, own, bruker, bruker_f1 };

    bool InBruker() const { return private_ == Private::bruker || private_ == Private::bruker_f1; }
    JcampBlock* Current() { return open_.empty() ? nullptr : &file_.blocks[open_.back()]; }

    void Take(std::string_view line, const char* begin)
    {
        if (line.starts_with("##")) {
            CloseTable(begin);
            TakeRecord(line.substr(2));
        } else if (table_begin_ != nullptr) {
            return;
        } else if (line.starts_with("$$")) {
            continued_ = nullptr;
            TakeComment(line.substr(2));
        } else if (InBruker() && Current() != nullptr && !line.empty()) {
            AddBrukerLine(line); // arrays and texts run over lines
        } else if (continued_ != nullptr && continued_->size() < kMostText && !WithoutComment(line).empty()) {
            *continued_ += ' ';
            *continued_ += WithoutComment(line);
        }
    }

    void TakeRecord(std::string_view line)
    {
        continued_ = nullptr;
        in_list_ = false;
        if (++records_ > kMostRecords) return;
        const std::size_t equals = line.find('=');
        const std::string_view label = Trim(line.substr(0, equals));
        const std::string_view value = equals == line.npos ? std::string_view() : line.substr(equals + 1);
        if (label.starts_with('$')) {
            TakePrivate(label.substr(1), value, equals != line.npos);
            return;
        }
        private_ = Private::none;
        const std::string normal = NormalLabel(label);
        if (normal == "TITLE")
            Open();
        else if (normal == "END") {
            Close();
            return;
        }
        if (Current() == nullptr) Open();
        if (IsTableLabel(normal)) {
            Current()->tables.push_back({normal, OrdinateSymbol(value), AbscissaSymbol(value), page_, {}});
            table_begin_ = rest_.data();
            table_block_ = open_.back();
            return;
        }
        // The comment behind the version names the program that wrote the file.
        if (normal == "JCAMPDX" && value.find("$$") != value.npos)
            Current()->records.emplace_back("JCAMPDXPROGRAM", Trim(value.substr(value.find("$$") + 2)));
        Current()->records.emplace_back(normal, std::string(WithoutComment(value)));
        if (normal == "PAGE") page_ = Left(WithoutComment(value), kMostPageName);
        if (equals != line.npos) continued_ = &Current()->records.back().second;
    }

    void Open()
    {
        open_.push_back(file_.blocks.size());
        file_.blocks.emplace_back();
        private_ = Private::none;
    }

    void Close()
    {
        if (open_.empty()) return;
        Current()->ended = true;
        open_.pop_back();
    }

    void CloseTable(const char* end)
    {
        if (table_begin_ == nullptr) return;
        file_.blocks[table_block_].tables.back().text =
            std::string_view(table_begin_, static_cast<std::size_t>(end - table_begin_));
        table_begin_ = nullptr;
    }

    void TakePrivate(std::string_view key, std::string_view value, bool has_value)
    {
        JcampBlock* block = Current();
        if (block == nullptr || !has_value) return;
        if (InBruker()) {
            AddBrukerLine("##$" + std::string(Trim(key)) + "= " + std::string(Trim(value)));
            return;
        }
        // Files that the vendor's program carries along stand in comments behind their names.
        if (key.starts_with(kCarriedFile) && IsList(Trim(value)) && block->list.empty()) {
            block->list_name = std::string(Trim(value));
            in_list_ = true;
        }
        const std::size_t comment = value.find("$$");
        JcampPrivate entry{std::string(Trim(key)), std::string(WithoutComment(value)), {}};
        if (comment != value.npos) entry.unit = std::string(Trim(value.substr(comment + 2)));
        (private_ == Private::own ? block->own : block->loose).push_back(std::move(entry));
    }

    /// Comments go, but not in a text in angle brackets.
    void AddBrukerLine(std::string_view line)
    {
        std::string& text = private_ == Private::bruker ? Current()->bruker : Current()->bruker_f1;
        if (line.find('<') == line.npos) line = line.substr(0, line.find("$$"));
        text += line;
        text += '\n';
    }

    static bool IsList(std::string_view name)
    {
        constexpr std::array<std::string_view, 4> kLists{"vdlist", "vplist", "vclist", "vtlist"};
        return std::ranges::find(kLists, name) != kLists.end();
    }

    void TakeComment(std::string_view comment)
    {
        if (in_list_ && Current() != nullptr && Current()->list.size() < kMostText) {
            Current()->list += comment;
            Current()->list += '\n';
        }
        const std::string words = ToUpper(Trim(comment));
        JcampBlock* block = Current();
        if (words.starts_with("END OF ")) {
            private_ = Private::none;
        } else if (block == nullptr) {
            return;
        } else if (words.starts_with("BRUKER SPECIFIC PARAMETERS FOR F1")) {
            private_ = Private::bruker_f1;
        } else if (words.starts_with("BRUKER SPECIFIC PARAMETERS")) {
            private_ = Private::bruker;
            block->has_bruker = true;
        } else if (words.starts_with("JEOL SPECIFIC PARAMETERS")) {
            private_ = Private::own;
            block->has_jeol = true;
        } else if (words.starts_with("NMR SPECIFIC PARAMETERS")) {
            private_ = Private::own;
        }
    }

    std::string_view rest_;
    JcampFile file_;
    std::vector<std::size_t> open_; ///< blocks without their END so far
    const char* table_begin_ = nullptr;
    std::size_t table_block_ = 0;
    std::size_t records_ = 0;
    std::string page_;                 ///< of the tables to come
    bool in_list_ = false;             ///< comments are lines of a list
    std::string* continued_ = nullptr; ///< the value that further lines belong to
    Private private_ = Private::none;
};

} // namespace

JcampFile ScanJcamp(std::string_view bytes)
{
    return Scanner(bytes).Run();
}

} // namespace nmr
