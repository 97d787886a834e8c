#include "layout/code_rtf.h"

#include "core/numbers.h"
#include "core/text.h"
#include "layout/code_pages.h"
#include "layout/code_state.h"
#include "layout/code_tokens.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nmr {
namespace {

constexpr std::string_view kRichStart = "{\\rtf";
constexpr double kRise = 0.6; // of a script, in sizes of the base font

// --- Into rich text

struct TableFont {
    std::string name;
    std::int16_t charset;
    auto operator<=>(const TableFont&) const = default;
};

/// Entries in the order of their first use.
template <class T>
class IndexTable {
public:
    std::size_t IndexOf(const T& entry)
    {
        const auto [place, added] = places_.try_emplace(entry, entries_.size());
        if (added) entries_.push_back(entry);
        return place->second;
    }
    const T& operator[](std::size_t index) const { return entries_[index]; }
    const std::vector<T>& entries() const { return entries_; }

private:
    std::vector<T> entries_;
    std::map<T, std::size_t> places_;
};

class RtfWriter {
public:
    RtfWriter(const FontSpec& font, double size, const CodeTextStyle& style) :
        font_(font), size_(size), greek_{style.GreekFontName, kSymbolCharset}, state_(font, style)
    {
        fonts_.IndexOf({font.Name, font.Charset});
        greek_index_ = fonts_.IndexOf(greek_);
        colors_.IndexOf(font.Color);
    }

    std::string Run(std::string_view code)
    {
        CodeReader reader(code);
        for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
             token = reader.Next()) {
            if (token.kind == CodeKind::character) Letter(token);
            if (token.kind == CodeKind::code) Code(token);
        }
        EndForeign();
        constexpr std::string_view kLineEnd = "\\par ";
        if (body_.ends_with(kLineEnd)) body_.resize(body_.size() - kLineEnd.size());
        return Document();
    }

private:
    void Word(std::string_view word, std::optional<int> value = {})
    {
        body_ += fmt::format("\\{}{} ", word, value ? std::to_string(*value) : std::string());
    }
    static int Twice(double size) { return static_cast<int>(2 * size); }
    int Rise() const { return static_cast<int>(static_cast<double>(font_.Size) * kRise); }

    /// The same face in another character set, for letters that the code page lacks.
    void BeginForeign(std::int16_t charset)
    {
        if (foreign_ == charset) return;
        foreign_ = charset;
        const TableFont& face = fonts_[current_font_];
        Word("f", static_cast<int>(fonts_.IndexOf({face.charset == kSymbolCharset ? font_.Name : face.name, charset})));
    }
    void EndForeign()
    {
        if (foreign_ != 0) Word("f", static_cast<int>(current_font_));
        foreign_ = 0;
    }

    void Letter(const CodeToken& token)
    {
        const auto bytes = [&](std::string_view text) {
            for (const char c : text) body_ += fmt::format("\\'{:02x}", static_cast<unsigned char>(c));
        };
        if (token.coded || (state_.greek() && token.character > 127 && token.character < 256)) {
            EndForeign();
            body_ += fmt::format("\\'{:02x}", static_cast<unsigned>(token.character));
        } else if (token.character < 128) {
            EndForeign();
            const char c = static_cast<char>(token.character);
            if (c == '{' || c == '}' || c == '\\') body_ += '\\';
            body_ += c;
        } else if (const auto byte = ToCp1252(token.character); byte && !PageOfCharset(fonts_[current_font_].charset)) {
            EndForeign();
            body_ += fmt::format("\\'{:02x}", *byte);
        } else {
            const ForeignLetter letter = ToForeign(token.character);
            BeginForeign(letter.charset);
            bytes(letter.bytes);
        }
    }

    void SetFace(std::size_t index)
    {
        current_font_ = index;
        Word("f", static_cast<int>(index));
    }

    void Code(const CodeToken& token)
    {
        struct Row {
            std::string_view code, word;
        };
        constexpr std::array<Row, 12> kWords{{{"i1", "i"},
                                              {"i0", "i0"},
                                              {"b1", "b"},
                                              {"b0", "b0"},
                                              {"u1", "ul"},
                                              {"u0", "ulnone"},
                                              {"s1", "strike"},
                                              {"s0", "strike0"},
                                              {"tb", "tab"},
                                              {"cr", "par"},
                                              {"+0", "up0"},
                                              {"-0", "dn0"}}};
        EndForeign();
        state_.Apply(token);
        for (const Row& row : kWords)
            if (row.code == token.code) return Word(row.word);
        if (token.Is("+1") || token.Is("-1"))
            Word(token.Is("+1") ? "up" : "dn", Rise());
        else if (token.Is("g1"))
            SetFace(greek_index_);
        else if (token.Is("g0") || token.Is("f0"))
            SetFace(0);
        else if (token.Is("f:"))
            SetFace(fonts_.IndexOf({state_.font().Name, CharsetOf(token.value)}));
        else if (token.Is("p0"))
            Word("fs", Twice(size_));
        else if (token.Is("c0"))
            Word("cf", 1);
        else if (token.Is("c:"))
            Word("cf", static_cast<int>(colors_.IndexOf(CodeColor(token.value))) + 1);
        else if (token.Is("p:"))
            if (const auto size = CodeSize(token.value)) Word("fs", Twice(*size));
    }

    std::int16_t CharsetOf(std::string_view face) const
    {
        return face == "Symbol" || face == greek_.name ? kSymbolCharset : font_.Charset;
    }

    std::string Document() const
    {
        std::string out = "{\\rtf1{\\fonttbl";
        for (std::size_t i = 0; i < fonts_.entries().size(); ++i)
            out += fmt::format("{{\\f{}\\fnil\\fcharset{} {};}}", i, fonts_[i].charset, fonts_[i].name);
        out += "}{\\colortbl ";
        for (const std::int32_t color : colors_.entries())
            out += fmt::format(";\\red{}\\green{}\\blue{}", color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF);
        // The number behind \uc is what readers of these texts know, so letters never come as \u.
        out += fmt::format(";}}\\viewkind\\uc14\\pard\\cf1\\f0\\fs{} ", Twice(size_));
        return out + body_ + "\\par }";
    }

    const FontSpec& font_;
    double size_;
    TableFont greek_;
    IndexTable<TableFont> fonts_;
    IndexTable<std::int32_t> colors_;
    CodeState state_;
    std::size_t current_font_ = 0, greek_index_ = 0;
    std::int16_t foreign_ = 0; ///< character set of the letters under way, when it isn't the font's
    std::string body_;
};

// --- Out of rich text

struct RtfToken {
    enum class Kind { end, text, byte, open, close, word, symbol } kind = Kind::end;
    char character = 0; ///< of text, byte and symbol
    std::string_view word;
    std::optional<int> value;
    std::size_t begin = 0, end = 0; ///< place in the rich text
};

int HexOf(char c)
{
    return c >= '0' && c <= '9' ? c - '0' : (c | 32) >= 'a' && (c | 32) <= 'f' ? (c | 32) - 'a' + 10 : -1;
}

class RtfReader {
public:
    explicit RtfReader(std::string_view rich) : rich_(rich) {}

    RtfToken Next()
    {
        while (at_ < rich_.size() && (rich_[at_] == '\r' || rich_[at_] == '\n' || rich_[at_] == 0)) ++at_;
        RtfToken token;
        token.begin = at_;
        if (at_ < rich_.size()) Take(token);
        token.end = at_;
        return token;
    }
    void Skip(std::size_t bytes) { at_ = std::min(rich_.size(), at_ + bytes); }

private:
    using Kind = RtfToken::Kind;

    void Take(RtfToken& token)
    {
        const char c = rich_[at_++];
        token.character = c;
        token.kind = c == '{' ? Kind::open : c == '}' ? Kind::close : Kind::text;
        if (c == '\\') TakeControl(token);
    }
    void TakeControl(RtfToken& token)
    {
        token.kind = Kind::symbol;
        if (at_ >= rich_.size()) return;
        if (!IsLetter(rich_[at_])) {
            token.character = rich_[at_++];
            if (token.character == '\'') TakeByte(token);
            return;
        }
        token.kind = Kind::word;
        const std::size_t begin = at_;
        while (at_ < rich_.size() && IsLetter(rich_[at_])) ++at_;
        token.word = rich_.substr(begin, at_ - begin);
        const std::size_t number = at_;
        if (at_ < rich_.size() && rich_[at_] == '-') ++at_;
        while (at_ < rich_.size() && rich_[at_] >= '0' && rich_[at_] <= '9') ++at_;
        if (const auto value = ParseInteger(rich_.substr(number, at_ - number)))
            token.value = static_cast<int>(std::clamp<std::int64_t>(*value, -100000000, 100000000));
        if (at_ < rich_.size() && rich_[at_] == ' ') ++at_;
    }
    void TakeByte(RtfToken& token)
    {
        token.kind = Kind::byte;
        int value = 0;
        for (int i = 0; i < 2 && at_ < rich_.size() && HexOf(rich_[at_]) >= 0; ++i)
            value = value * 16 + HexOf(rich_[at_++]);
        token.character = static_cast<char>(static_cast<unsigned char>(value));
    }
    static bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

    std::string_view rich_;
    std::size_t at_ = 0;
};

constexpr int kNoCharset = -1; ///< the document's code page

struct RtfFont {
    std::string name;
    int charset = kNoCharset;
};

/// Letters and control words of the body; tables and what is no text are dealt with here.
class RtfBody {
public:
    explicit RtfBody(std::string_view rich) : reader_(rich) {}
    virtual ~RtfBody() = default;

    void Walk()
    {
        for (RtfToken token = reader_.Next(); token.kind != RtfToken::Kind::end; token = reader_.Next())
            Dispatch(token);
        EndText();
    }

protected:
    /// Bytes of the current font, in the order of the text.
    /// @param page code page, nullptr: the bytes stand for themselves
    virtual void Bytes(std::string_view bytes, const char* page, bool symbol) = 0;
    virtual void Unicode(char32_t character) = 0;
    virtual void Word(const RtfToken& token) = 0;
    virtual void GroupBegins() {}
    virtual void GroupEnds() {}

    const RtfFont* FontOf(int index) const
    {
        const auto found = fonts_.find(index);
        return found == fonts_.end() ? nullptr : &found->second;
    }
    std::unordered_map<int, RtfFont> fonts_;
    std::vector<std::int32_t> colors_;
    int current_font_ = 0;

private:
    using Kind = RtfToken::Kind;

    void Dispatch(const RtfToken& token)
    {
        const bool letter = token.kind == Kind::text || token.kind == Kind::byte;
        if (letter && skip_bytes_ > 0) {
            --skip_bytes_;
            return;
        }
        if (letter) {
            pending_ += token.character;
            return;
        }
        if (token.kind == Kind::symbol &&
            (token.character == '{' || token.character == '}' || token.character == '\\')) {
            pending_ += token.character;
            return;
        }
        EndText();
        skip_bytes_ = 0;
        switch (token.kind) {
        case Kind::open:
            Open();
            break;
        case Kind::close:
            Close();
            break;
        case Kind::word:
            TakeWord(token);
            break;
        case Kind::symbol:
            if (token.character == '~') pending_ += ' ';
            if (token.character == '_') pending_ += '-';
            break;
        default:
            break;
        }
    }

    void Open()
    {
        const RtfReader before = reader_;
        const RtfToken first = reader_.Next();
        constexpr std::array<std::string_view, 8> kNoText{"info",   "stylesheet", "pict",      "object",
                                                          "header", "footer",     "listtable", "generator"};
        if (first.kind == Kind::word && first.word == "fonttbl") return ReadFonts();
        if (first.kind == Kind::word && first.word == "colortbl") return ReadColors();
        const bool starred = first.kind == Kind::symbol && first.character == '*';
        if (starred || (first.kind == Kind::word && std::ranges::find(kNoText, first.word) != kNoText.end()))
            return SkipGroup();
        reader_ = before;
        if (font_stack_.size() >= kDeepest) {
            ++deeper_;
            return;
        }
        font_stack_.push_back(current_font_);
        GroupBegins();
    }

    void Close()
    {
        if (deeper_ > 0) {
            --deeper_;
        } else if (!font_stack_.empty()) {
            GroupEnds();
            current_font_ = font_stack_.back();
            font_stack_.pop_back();
        }
    }

    void SkipGroup()
    {
        int depth = 1;
        while (depth > 0) {
            const RtfToken token = reader_.Next();
            if (token.kind == Kind::end) return;
            depth += token.kind == Kind::open ? 1 : token.kind == Kind::close ? -1 : 0;
            if (token.kind == Kind::word && token.word == "bin")
                reader_.Skip(static_cast<std::size_t>(std::max(token.value.value_or(0), 0)));
        }
    }

    void ReadFonts()
    {
        RtfFont font;
        int depth = 1, index = 0;
        while (depth > 0) {
            const RtfToken token = reader_.Next();
            if (token.kind == Kind::end) return;
            depth += token.kind == Kind::open ? 1 : token.kind == Kind::close ? -1 : 0;
            if (token.kind == Kind::word && token.word == "f") {
                font = {};
                index = token.value.value_or(0);
            }
            if (token.kind == Kind::word && token.word == "fcharset") font.charset = token.value.value_or(0);
            const bool letter = token.kind == Kind::byte || (token.kind == Kind::text && token.character != ';');
            if (letter && font.name.size() < kLongestFace) font.name += token.character;
            if (token.kind != Kind::text || token.character != ';') continue;
            font.name = FaceName(font);
            if (font.name == "Symbol") font.charset = kSymbolCharset;
            fonts_.try_emplace(index, std::exchange(font, {}));
        }
    }

    /// As it may stand between the colons of a code.
    static std::string FaceName(const RtfFont& font)
    {
        const char* page = PageOfCharset(font.charset);
        std::string name = page != nullptr ? FromCodePage(font.name, page) : FromUnknownCodePage(font.name);
        std::erase_if(name, [](char c) { return c == ':' || c == '\\' || (c >= 0 && c < ' '); });
        return std::string(Trim(name));
    }

    void ReadColors()
    {
        std::int32_t color = 0;
        for (;;) {
            const RtfToken token = reader_.Next();
            if (token.kind == Kind::end || token.kind == Kind::close) return;
            const int value = std::clamp(token.value.value_or(0), 0, 255);
            if (token.word == "red") color |= value;
            if (token.word == "green") color |= value << 8;
            if (token.word == "blue") color |= value << 16;
            if (token.kind == Kind::text && token.character == ';') colors_.push_back(std::exchange(color, 0));
        }
    }

    void TakeWord(const RtfToken& token)
    {
        if (token.word == "f") current_font_ = token.value.value_or(0);
        if (token.word == "ansicpg") page_ = PageOfNumber(token.value.value_or(0));
        if (token.word == "uc") fallback_ = std::clamp(token.value.value_or(1), 0, 8);
        if (token.word == "bin") reader_.Skip(static_cast<std::size_t>(std::max(token.value.value_or(0), 0)));
        if (token.word == "u" && token.value) {
            Unicode(static_cast<char32_t>(*token.value < 0 ? *token.value + 65536 : *token.value) & 0xFFFFU);
            skip_bytes_ = fallback_;
            return;
        }
        struct Mark {
            std::string_view word;
            char32_t character;
        };
        constexpr std::array<Mark, 8> kMarks{{{"bullet", 0x2022},
                                              {"endash", 0x2013},
                                              {"emdash", 0x2014},
                                              {"lquote", 0x2018},
                                              {"rquote", 0x2019},
                                              {"ldblquote", 0x201C},
                                              {"rdblquote", 0x201D},
                                              {"line", U'\n'}}};
        for (const Mark& mark : kMarks)
            if (mark.word == token.word) return Unicode(mark.character);
        Word(token);
    }

    void EndText()
    {
        if (pending_.empty()) return;
        const RtfFont* font = FontOf(current_font_);
        const int charset = font == nullptr ? kNoCharset : font->charset;
        Bytes(pending_, charset == kNoCharset ? page_ : PageOfCharset(charset), charset == kSymbolCharset);
        pending_.clear();
    }

    static constexpr std::size_t kDeepest = 1000;   ///< of groups whose formats are kept
    static constexpr std::size_t kLongestFace = 64; ///< bytes; the names of faces have half of them
    const char* page_ = nullptr;                    ///< of fonts that name no character set
    RtfReader reader_;
    std::string pending_;
    std::size_t deeper_ = 0;
    std::vector<int> font_stack_;
    int fallback_ = 1, skip_bytes_ = 0;
};

/// Calls `take` with each letter that bytes of a code page stand for, and the byte where it is one.
template <class Take>
void EachLetter(std::string_view bytes, const char* page, bool symbol, Take take)
{
    if (page != nullptr) {
        const std::string utf8 = FromCodePage(bytes, page);
        for (std::size_t at = 0; at < utf8.size();) take(TakeUtf8(utf8, at), std::optional<unsigned char>());
        return;
    }
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        take(byte < 128 || symbol ? char32_t{byte} : FromCp1252(byte), std::optional(byte));
    }
}

class CodeMaker : public RtfBody {
public:
    CodeMaker(std::string_view rich, const FontSpec& font) : RtfBody(rich), base_(font) {}

    std::string Run()
    {
        Walk();
        constexpr std::string_view kLineEnd = "\\cr ";
        if (out_.ends_with(kLineEnd)) out_.resize(out_.size() - kLineEnd.size());
        return out_ + "\\>";
    }

private:
    // What ends with a group in rich text has to be taken back by codes.
    struct Format {
        std::string italic = "\\i0 ", bold = "\\b0 ", under = "\\u0 ", strike = "\\s0 ", face = "\\f0 ", size = "\\p0 ",
                    color = "\\c0 ", script = "\\+0 ";
    };
    static constexpr std::array kFormats{&Format::italic, &Format::bold, &Format::under, &Format::strike,
                                         &Format::face,   &Format::size, &Format::color, &Format::script};

    void Bytes(std::string_view bytes, const char* page, bool symbol) override
    {
        EachLetter(bytes, page, symbol, [&](char32_t letter, std::optional<unsigned char> byte) {
            if (letter == U'\\')
                out_ += "\\\\";
            else if (byte && *byte >= 128)
                out_ += fmt::format("\\'{:02x}:", *byte);
            else if (letter >= 32)
                AppendUtf8(out_, letter);
        });
    }
    void Unicode(char32_t character) override
    {
        if (character == U'\n')
            out_ += "\\cr ";
        else if (character >= 32 && (character < 0xD800 || character > 0xDFFF))
            AppendUtf8(out_, character);
    }
    void GroupBegins() override { stack_.push_back(now_); }
    void GroupEnds() override
    {
        if (stack_.empty()) return;
        const bool whole_document = stack_.size() == 1;
        for (const auto format : kFormats)
            if (!whole_document && now_.*format != stack_.back().*format) out_ += stack_.back().*format;
        now_ = stack_.back();
        stack_.pop_back();
    }

    void Put(std::string Format::*format, std::string code)
    {
        out_ += code;
        now_.*format = std::move(code);
    }
    void Switch(std::string Format::*format, char letter, const RtfToken& token)
    {
        Put(format, fmt::format("\\{}{} ", letter, token.value.value_or(1) != 0 ? 1 : 0));
    }

    void Word(const RtfToken& token) override
    {
        const std::string_view word = token.word;
        if (word == "par" || word == "row")
            out_ += "\\cr ";
        else if (word == "tab" || word == "cell")
            out_ += "\\tb ";
        else if (word == "i")
            Switch(&Format::italic, 'i', token);
        else if (word == "b")
            Switch(&Format::bold, 'b', token);
        else if (word == "ul")
            Switch(&Format::under, 'u', token);
        else if (word == "ulnone")
            Put(&Format::under, "\\u0 ");
        else if (word == "strike")
            Switch(&Format::strike, 's', token);
        else if (word == "sub")
            Put(&Format::script, "\\-1 ");
        else if (word == "super")
            Put(&Format::script, "\\+1 ");
        else if (word == "nosupersub")
            Put(&Format::script, "\\+0 ");
        else if (word == "up")
            Put(&Format::script, token.value.value_or(6) != 0 ? "\\+1 " : "\\+0 ");
        else if (word == "dn")
            Put(&Format::script, token.value.value_or(6) != 0 ? "\\-1 " : "\\-0 ");
        else if (word == "f")
            Put(&Format::face, Face());
        else if (word == "fs")
            Put(&Format::size, Size(token.value.value_or(24) / 2.0));
        else if (word == "cf")
            Put(&Format::color, Color(token.value.value_or(0)));
        else if (word == "pard")
            Reset();
    }

    void Reset()
    {
        now_ = {};
        for (const auto format : kFormats) out_ += now_.*format;
    }

    std::string Face()
    {
        const RtfFont* font = FontOf(current_font_);
        const bool was_greek = now_.face == "\\g1 ";
        if (font == nullptr || font->name == base_.Name) return was_greek ? "\\g0 " : "\\f0 ";
        if (font->name == "Symbol") return "\\g1 ";
        return fmt::format("\\f:{}: ", font->name);
    }
    std::string Size(double size) const
    {
        if (size < 1 || size == static_cast<double>(base_.Size)) return "\\p0 ";
        return fmt::format("\\p:{}: ", size);
    }
    std::string Color(int index) const
    {
        const auto at = static_cast<std::size_t>(std::max(index, 0));
        const bool known = at > 0 && at < colors_.size();
        if (!known || colors_[at] == base_.Color) return "\\c0 ";
        return fmt::format("\\c:{:x}: ", colors_[at]);
    }

    const FontSpec& base_;
    std::string out_ = "\\< ";
    Format now_;
    std::vector<Format> stack_;
};

class PlainMaker : public RtfBody {
public:
    using RtfBody::RtfBody;
    std::string Run()
    {
        Walk();
        if (out_.ends_with('\n')) out_.pop_back();
        return std::move(out_);
    }

private:
    void Bytes(std::string_view bytes, const char* page, bool symbol) override
    {
        EachLetter(bytes, page, symbol, [&](char32_t letter, std::optional<unsigned char>) {
            AppendUtf8(out_, symbol ? SymbolToUnicode(letter) : letter);
        });
    }
    void Unicode(char32_t character) override
    {
        if (character < 0xD800 || character > 0xDFFF) AppendUtf8(out_, character);
    }
    void Word(const RtfToken& token) override
    {
        if (token.word == "par" || token.word == "row") out_ += '\n';
        if (token.word == "tab" || token.word == "cell") out_ += '\t';
    }
    std::string out_;
};

} // namespace

std::string Code_To_Rtf(std::string_view text, const FontSpec& font, double size, const CodeTextStyle& style)
{
    if (text.empty()) return {};
    return RtfWriter(font, size, style).Run(Group_To_Code(text));
}

std::string Rtf_To_Code(std::string_view rich, const FontSpec& font)
{
    if (!rich.starts_with(kRichStart)) return std::string(rich);
    return CodeMaker(rich, font).Run();
}

std::string Rtf_Plain(std::string_view rich)
{
    if (!rich.starts_with(kRichStart)) return std::string(rich);
    return PlainMaker(rich).Run();
}

std::string Rtf_Scale(std::string_view rich, double factor)
{
    if (!rich.starts_with(kRichStart) || !std::isfinite(factor)) return std::string(rich);
    std::string out;
    std::size_t copied = 0;
    RtfReader reader(rich);
    for (RtfToken token = reader.Next(); token.kind != RtfToken::Kind::end; token = reader.Next()) {
        if (token.word == "bin") reader.Skip(static_cast<std::size_t>(std::max(token.value.value_or(0), 0)));
        const bool size = token.word == "fs" || token.word == "up" || token.word == "dn";
        if (!size || !token.value) continue;
        out += rich.substr(copied, token.begin - copied);
        out += fmt::format("\\{}{}", token.word, RoundHalfEven(*token.value * factor));
        if (rich[token.end - 1] == ' ') out += ' ';
        copied = token.end;
    }
    return out += rich.substr(copied);
}

} // namespace nmr
