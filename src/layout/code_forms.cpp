// The forms of a text in the text language: older groups, plain text, numbers with an exponent.

#include "core/numbers.h"
#include "core/text.h"
#include "layout/code_state.h"
#include "layout/code_text.h"
#include "layout/code_tokens.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace nmr {
namespace {

constexpr std::string_view kOpen = "\\< ", kClose = "\\>", kLineEnd = "\\cr ", kTab = "    ";

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}
bool IsHex(char c)
{
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

void DropFinalLineEnd(std::string& code)
{
    if (code.ends_with(kLineEnd)) code.resize(code.size() - kLineEnd.size());
}

/// Rewrites the group form; what a group's ")" must write lies on a stack.
class GroupReader {
public:
    explicit GroupReader(std::string_view text) : text_(text) {}

    std::string Run()
    {
        while (at_ < text_.size()) TakeOne();
        DropFinalLineEnd(out_);
        return out_ + std::string(kClose);
    }

private:
    struct Group {
        std::string closing;
        bool fraction = false;
    };

    bool Has(std::size_t at, char c) const { return at < text_.size() && text_[at] == c; }

    void TakeOne()
    {
        const char c = text_[at_];
        if (c == '\\') return TakeBackslash();
        ++at_;
        if (c == '\r' && Has(at_, '\n')) return;
        if (c == '\r' || c == '\n') {
            out_ += kLineEnd;
        } else if (c == '(') {
            out_ += c;
            groups_.push_back({")"});
        } else if (c == ')') {
            Close();
        } else if (c == ',' && !groups_.empty() && groups_.back().fraction) {
            out_ += "\\u1 ";
        } else {
            out_ += c;
        }
    }

    void Close()
    {
        if (groups_.empty()) {
            out_ += ')';
            return;
        }
        out_ += groups_.back().closing;
        groups_.pop_back();
    }

    void Enter(std::size_t behind, std::string opening, std::string closing, bool fraction = false)
    {
        out_ += opening;
        groups_.push_back({std::move(closing), fraction});
        at_ = behind;
    }

    void TakeBackslash()
    {
        const std::size_t code = at_ + 1;
        if (code >= text_.size()) {
            at_ = code;
            return;
        }
        const char letter =
            text_[code] >= 'A' && text_[code] <= 'Z' ? static_cast<char>(text_[code] + 32) : text_[code];
        if (TakeGroup(letter, code) || (letter == '(' && TakeCharacter(code))) return;
        // A code of the other form, or one that is unknown: the walk knows.
        out_.append(text_.substr(at_, 2));
        at_ += 2;
    }

    bool TakeGroup(char letter, std::size_t code)
    {
        constexpr std::string_view kPlain = "ibusg-+";
        const std::size_t value = code + 1;
        if (kPlain.find(letter) != std::string_view::npos && Has(value, '(')) {
            Enter(value + 1, fmt::format("\\{}1 ", letter), fmt::format("\\{}0 ", letter));
            return true;
        }
        if (letter == 'r' && Has(value, '('))
            Enter(value + 1, "", "");
        else if (letter == '=' && Has(value, '('))
            Enter(value + 1, "\\d1 ", "\\+0 ", true);
        else
            return TakeValueGroup(letter, value);
        return true;
    }

    bool TakeValueGroup(char letter, std::size_t value)
    {
        const bool face = letter == 'f' && Has(value, ':');
        const bool color = letter == 'c' || letter == 'h';
        if (!face && !color && letter != 'p') return false;
        const std::size_t begin = face ? value + 1 : value;
        const auto inside = [&](char c) {
            return face ? c != '(' && c != '\\' : color ? IsHex(c) : IsDigit(c) || c == '.';
        };
        std::size_t end = begin;
        while (end < text_.size() && inside(text_[end])) ++end;
        if (end == begin || !Has(end, '(')) return false;
        const char name = color ? 'c' : letter;
        Enter(end + 1, fmt::format("\\{}:{}: ", name, text_.substr(begin, end - begin)), fmt::format("\\{}0 ", name));
        return true;
    }

    /// "\(n)"
    bool TakeCharacter(std::size_t code)
    {
        const std::size_t end = text_.find_first_not_of("0123456789", code + 1);
        const auto number = ParseInteger(text_.substr(code + 1, std::min(end, text_.size()) - code - 1));
        if (!number || !Has(end, ')')) return false;
        at_ = end + 1;
        if (*number == 13)
            out_ += kLineEnd;
        else if (*number == '\\')
            out_ += "\\\\";
        else if (*number >= 128 && *number < 256)
            out_ += fmt::format("\\'{:02x}:", *number);
        else if (*number >= 32 && *number < 0x110000)
            AppendUtf8(out_, static_cast<char32_t>(*number));
        return true;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::string out_{kOpen};
    std::vector<Group> groups_;
};

/// A character as it is written in current form.
void AppendLetter(std::string& out, const CodeToken& token)
{
    if (token.coded)
        out += fmt::format("\\'{:02x}:", static_cast<unsigned>(token.character));
    else if (token.character == U'\\')
        out += "\\\\";
    else
        AppendUtf8(out, token.character);
}

bool AreBalanced(const std::vector<CodeToken>& run)
{
    int depth = 0;
    for (const CodeToken& token : run) {
        depth += token.character == U'(' ? 1 : token.character == U')' ? -1 : 0;
        if (depth < 0) return false;
    }
    return depth == 0;
}

/// The groups that make base letters what a state asks for.
std::vector<std::string> GroupsOf(const CodeState& base, const CodeState& state)
{
    std::vector<std::string> groups;
    const std::string codes = state.CodesFrom(base);
    CodeReader reader(codes);
    for (CodeToken token = reader.Next(); token.kind == CodeKind::code; token = reader.Next()) {
        const char letter = token.code[0];
        if (token.code == "f:")
            groups.push_back(fmt::format("\\f:{}(", token.value));
        else if (token.code[1] == ':')
            groups.push_back(fmt::format("\\{}{}(", letter, token.value));
        else if (token.code[1] == '1')
            groups.push_back(fmt::format("\\{}(", letter));
    }
    return groups;
}

/// Writes the group form, run by run.
class GroupWriter {
public:
    void Letter(const CodeToken& token, const CodeState& state)
    {
        if (!state.SameLetters(current_)) {
            EndRun();
            current_ = state;
        }
        run_.push_back(token);
    }
    void Raw(std::string_view text)
    {
        EndRun();
        out_ += text;
    }
    std::string Finish()
    {
        EndRun();
        return std::move(out_);
    }

private:
    void EndRun()
    {
        if (run_.empty()) return;
        const auto groups = GroupsOf(base_, current_);
        for (const std::string& group : groups) out_ += group;
        const bool balanced = AreBalanced(run_);
        for (const CodeToken& token : run_) {
            const bool bracket = token.character == U'(' || token.character == U')';
            if (token.coded || (bracket && !balanced))
                out_ += fmt::format("\\({})", static_cast<unsigned>(token.character));
            else
                AppendLetter(out_, token);
        }
        out_.append(groups.size(), ')');
        run_.clear();
    }

    FontSpec font_;
    CodeTextStyle style_;
    CodeState base_{font_, style_}, current_{font_, style_};
    std::string out_;
    std::vector<CodeToken> run_;
};

} // namespace

std::string Group_To_Code(std::string_view text)
{
    if (text.starts_with("\\<")) return std::string(text);
    return GroupReader(text).Run();
}

std::string Code_To_Group(std::string_view text)
{
    const std::string code = Group_To_Code(text);
    const FontSpec font;
    const CodeTextStyle style;
    CodeState state(font, style);
    GroupWriter writer;
    CodeReader reader(code);
    for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
         token = reader.Next()) {
        if (token.kind == CodeKind::character)
            writer.Letter(token, state);
        else if (token.Is("cr"))
            writer.Raw("\\(13)");
        else if (token.Is("tb"))
            writer.Raw(kTab);
        else
            state.Apply(token);
    }
    return writer.Finish();
}

std::string Code_From_Plain(std::string_view text)
{
    std::string out(kOpen);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (c == '\r' || c == '\n')
            out += kLineEnd;
        else if (c == '\t')
            out += kTab;
        else if (c == '\\')
            out += "\\\\";
        else if (static_cast<unsigned char>(c) >= 32)
            out += c;
    }
    return out + std::string(kClose);
}

std::string Plain_From_Code(std::string_view text)
{
    const std::string code = Group_To_Code(text);
    const FontSpec font;
    const CodeTextStyle style;
    CodeState state(font, style);
    CodeReader reader(code);
    std::string out;
    for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
         token = reader.Next()) {
        if (token.kind == CodeKind::character)
            AppendUtf8(out, LetterOf(token, state.greek()));
        else if (token.Is("cr"))
            out += '\n';
        else if (token.Is("tb"))
            out += '\t';
        else
            state.Apply(token);
    }
    return out;
}

std::string Tidy_Code(std::string_view text, const FontSpec& font)
{
    const std::string code = Group_To_Code(text);
    const CodeTextStyle style;
    CodeState state(font, style), written = state;
    bool changed = false;
    CodeReader reader(code);
    std::string out(kOpen);
    for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
         token = reader.Next()) {
        const bool place = token.Is("cr") || token.Is("tb");
        if (token.kind != CodeKind::character && !place) {
            changed = state.Apply(token) || changed;
            continue;
        }
        if (std::exchange(changed, false)) {
            out += state.CodesFrom(written);
            written = state;
        }
        if (place)
            out += token.Is("cr") ? kLineEnd : std::string_view("\\tb ");
        else
            AppendLetter(out, token);
    }
    return out + std::string(kClose);
}

std::string Format_Exp(double value, int digits, ExponentSigns signs)
{
    const bool plain = signs == ExponentSigns::plain;
    const std::string scientific = fmt::format("{:.{}e}", value, std::clamp(digits, 0, 15));
    const std::size_t e = scientific.find('e');
    if (e == std::string::npos) return scientific; // no number
    std::string mantissa = scientific.substr(0, e);
    if (mantissa.find('.') != std::string::npos) mantissa.erase(mantissa.find_last_not_of('0') + 1);
    if (mantissa.ends_with('.')) mantissa.pop_back();
    const auto with_signs = [&](std::string text) {
        if (plain || !text.starts_with('-')) return text;
        return "\xC2\xAD" + text.substr(1);
    };
    const int exponent = static_cast<int>(ParseInteger(scientific.substr(e + 1)).value_or(0));
    return with_signs(mantissa) + (plain ? "x" : "\xC3\x97") + "10\\+1 " + with_signs(std::to_string(exponent)) +
           "\\+0 ";
}

} // namespace nmr
