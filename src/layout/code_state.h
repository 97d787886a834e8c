#pragma once
// The state of the letters while a text of the text language is walked.

#include "layout/code_text.h"
#include "layout/code_tokens.h"

#include <string>

namespace nmr {

enum class Script { none, super, sub };

/// What the codes have made of the base font.
class CodeState {
public:
    CodeState(const FontSpec& base, const CodeTextStyle& style);

    /// Takes a code; what is no code of letters, or unknown, changes nothing. @return whether it was one
    bool Apply(const CodeToken& token);

    /// The font of the next letter, its size reduced in a script.
    FontSpec font() const;
    /// Points, before the reduction of a script.
    double size() const { return size_; }
    Script script() const { return script_; }
    bool italic() const { return shape_.Italic != 0; }
    bool greek() const { return shape_.Charset == kSymbolCharset; }

    /// The codes, each with its blank, that lead from another state of the same base to this one.
    std::string CodesFrom(const CodeState& other) const;
    bool SameLetters(const CodeState& other) const { return CodesFrom(other).empty(); }

private:
    bool ApplyValue(const CodeToken& token);

    const FontSpec* base_;
    const CodeTextStyle* style_;
    FontSpec shape_;
    double size_;
    Script script_ = Script::none;
};

/// A character as it is drawn by a font of this state: codes of the Symbol face and of the code page resolved.
char32_t LetterOf(const CodeToken& token, bool greek);

} // namespace nmr
