#pragma once
// Faces of letters: which one stands in for a face that isn't installed, and how wide the letters are.

#include "layout/canvas.h"

#include <QFont>

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <unordered_map>

namespace nmr {

/// One face, upright or slanted, light or bold. Widths are shares of the em, measured once without hinting
/// and kerning, one letter at a time, so that they are the same on every target.
class LetterFace {
public:
    LetterFace(const QString& family, bool bold, bool italic);

    double Width(char32_t letter);
    double ascent() const { return ascent_; }
    double descent() const { return descent_; }
    /// The letters of a text, those that no installed face has replaced by "?".
    QString Drawable(std::string_view utf8);
    /// @param pixels whole ones: sizes between them are a matter of the painter's scale
    const QFont& FontOf(int pixels, bool underline, bool strikeout);

private:
    struct Letter {
        double width = 0;
        bool missing = false;
    };
    const Letter& LetterOf(char32_t letter);

    QFont large_; ///< that is measured
    double ascent_ = 0, descent_ = 0;
    std::unordered_map<char32_t, Letter> letters_;
    std::map<std::tuple<int, bool, bool>, QFont> fonts_; ///< kept: a new one looks its outlines up again
};

/// The face that a name means: itself, or one that stands in for it. It lives as long as the thread.
LetterFace& FaceOf(const FontSpecD& font);

/// Called with one sentence, once for each face and each script that is missing, while something is drawn or
/// measured; names the Debian package where one is known. Standard error until it is set.
void SetFontNotice(std::function<void(const std::string&)> notice);

} // namespace nmr
