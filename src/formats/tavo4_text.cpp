#include "formats/tavo4_text.h"

#include "core/text.h"
#include "formats/tavo4_cells.h"

#include <charconv>
#include <vector>

namespace nmr::tavo4 {
namespace {

bool IsLead(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

/// The longest start of CP932 bytes that fits and ends with a whole character.
std::string_view WholeCharacters(std::string_view bytes, std::size_t width)
{
    if (bytes.size() <= width) return bytes;
    std::size_t end = 0;
    for (std::size_t next = 0; next <= width;) {
        end = next;
        next += IsLead(bytes[next]) ? 2 : 1;
    }
    return bytes.substr(0, end);
}

std::string_view TrimBlanks(std::string_view text)
{
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// A character code below 256, read as Latin-1.
void AppendCharacter(std::string& out, unsigned code)
{
    const char byte = static_cast<char>(code & 0xFFU);
    if (code >= 32) out += FromUnknownCodePage(std::string_view(&byte, 1));
}

unsigned Hex(std::string_view digits)
{
    unsigned value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return value;
}

/// Walks a text in either form of the internal code.
class CodeWalk {
public:
    explicit CodeWalk(std::string_view text) : text_(text), grouped_(!text.starts_with("\\<")) {}

    std::string Plain()
    {
        while (at_ < text_.size() && !ended_) {
            const char c = text_[at_++];
            if (c == '\\' && at_ < text_.size())
                Code(TakeCharacter());
            else if (grouped_ && (c == '(' || c == ')'))
                Bracket(c);
            else
                out_ += c;
        }
        return std::move(out_);
    }

private:
    void Bracket(char c)
    {
        if (c == '(') {
            hidden_.push_back(false);
            out_ += c;
            return;
        }
        const bool hidden = !hidden_.empty() && hidden_.back();
        if (!hidden_.empty()) hidden_.pop_back();
        if (!hidden) out_ += c;
    }
    void SkipBlank()
    {
        if (at_ < text_.size() && text_[at_] == ' ') ++at_;
    }
    /// The first byte of the next character, which is passed whole.
    char TakeCharacter()
    {
        const char first = text_[at_++];
        while (at_ < text_.size() && (static_cast<unsigned char>(text_[at_]) & 0xC0U) == 0x80U) ++at_;
        return first;
    }
    /// What stands before the next `end`, which is passed.
    std::string_view Until(char end)
    {
        const std::size_t stop = std::min(text_.find(end, at_), text_.size());
        const std::string_view value = text_.substr(at_, stop - at_);
        at_ = std::min(stop + 1, text_.size());
        return value;
    }
    void Code(char code)
    {
        if (code == '\\') {
            out_ += code;
        } else if (code == '>') {
            ended_ = true;
        } else if (code == '<') {
            SkipBlank();
        } else if (code == '\'') {
            AppendCharacter(out_, Hex(Until(':')));
            SkipBlank();
        } else if (grouped_) {
            GroupCode(code);
        } else {
            TwoCharacterCode(code);
        }
    }
    void TwoCharacterCode(char code)
    {
        const char second = at_ < text_.size() ? TakeCharacter() : ' ';
        if (second == ':') Until(':');
        if (code == 'c' && second == 'r') out_ += "\r\n";
        if (code == 't' && second == 'b') out_ += '\t';
        SkipBlank();
    }
    /// "\+(" and the like open a group, "\(13)" is the character of that number.
    void GroupCode(char code)
    {
        if (code != '(') {
            Until('(');
            hidden_.push_back(true);
            return;
        }
        unsigned number = 0;
        const std::string_view digits = Until(')');
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (number == 13)
            out_ += "\r\n";
        else
            AppendCharacter(out_, number);
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool grouped_;
    bool ended_ = false;
    std::vector<bool> hidden_; ///< for each open group: its closing bracket is not part of the text
    std::string out_;
};

/// Walks rich text; groups that describe the document are passed over.
class RtfWalk {
public:
    explicit RtfWalk(std::string_view text) : text_(text) {}

    std::string Plain()
    {
        while (at_ < text_.size()) {
            const char c = text_[at_++];
            if (c == '{')
                skipped_.push_back(skipping());
            else if (c == '}')
                Close();
            else if (c == '\\')
                Control();
            else if (c != '\r' && c != '\n')
                Add(c);
        }
        return FromCp932(out_);
    }

private:
    bool skipping() const { return !skipped_.empty() && skipped_.back(); }
    void Add(char c)
    {
        if (!skipping()) out_ += c;
    }
    void Close()
    {
        if (!skipped_.empty()) skipped_.pop_back();
    }
    void Control()
    {
        if (at_ >= text_.size()) return;
        const char c = text_[at_++];
        if (c == '\'') {
            const unsigned code = Hex(text_.substr(at_, 2));
            at_ = std::min(at_ + 2, text_.size());
            if (code != 0) Add(static_cast<char>(code));
        } else if (c == '*') {
            if (!skipped_.empty()) skipped_.back() = true;
        } else if (IsLetter(c)) {
            --at_;
            Word();
        } else {
            Add(c);
        }
    }
    void Word()
    {
        const std::size_t start = at_;
        while (at_ < text_.size() && IsLetter(text_[at_])) ++at_;
        const std::string_view word = text_.substr(start, at_ - start);
        while (at_ < text_.size() && (text_[at_] == '-' || (text_[at_] >= '0' && text_[at_] <= '9'))) ++at_;
        if (at_ < text_.size() && text_[at_] == ' ') ++at_;
        for (const std::string_view group : {"fonttbl", "colortbl", "stylesheet", "info", "pict"})
            if (word == group && !skipped_.empty()) skipped_.back() = true;
        if ((word == "par" || word == "line") && !skipping()) out_ += "\r\n";
        if (word == "tab") Add('\t');
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::vector<bool> skipped_; ///< for each open group
    std::string out_;           ///< CP932
};

} // namespace

std::string FieldText(std::string_view text, std::size_t width)
{
    const std::string bytes = ToCp932(TrimBlanks(text.substr(0, text.find('\0'))));
    return std::string(TrimBlanks(WholeCharacters(bytes, width)));
}

std::string PlainFromCode(std::string_view code)
{
    return CodeWalk(code).Plain();
}

bool IsRtf(std::string_view text)
{
    return text.starts_with("{\\rtf");
}

std::string PlainFromRtf(std::string_view rtf)
{
    return IsRtf(rtf) ? RtfWalk(rtf).Plain() : std::string(rtf);
}

} // namespace nmr::tavo4
