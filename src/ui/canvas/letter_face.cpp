#include "ui/canvas/letter_face.h"

#include "ui/canvas/qt_canvas.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QTextLayout>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <tuple>

namespace nmr {
namespace {

constexpr int kMeasuredPixels = 2048; // the grid that outlines are usually drawn on: widths are whole numbers
constexpr char kOrdinaryFace[] = "Liberation Sans", kLiberation[] = "fonts-liberation";

/// What stands in for faces of other systems, best first, and what brings the first.
struct FaceRow {
    const char* name;
    std::array<const char*, 2> instead;
    const char* package;
};
constexpr FaceRow kFaces[] = {{kOrdinaryFace, {"Arimo", "DejaVu Sans"}, kLiberation},
                              {"Liberation Serif", {"Tinos", "DejaVu Serif"}, kLiberation},
                              {"Liberation Mono", {"Cousine", "DejaVu Sans Mono"}, kLiberation},
                              {"Arial", {kOrdinaryFace, "DejaVu Sans"}, kLiberation},
                              {"Helvetica", {kOrdinaryFace, "DejaVu Sans"}, kLiberation},
                              {"Microsoft Sans Serif", {kOrdinaryFace, "DejaVu Sans"}, kLiberation},
                              {"MS Sans Serif", {kOrdinaryFace, "DejaVu Sans"}, kLiberation},
                              {"Times", {"Liberation Serif", "DejaVu Serif"}, kLiberation},
                              {"Times New Roman", {"Liberation Serif", "DejaVu Serif"}, kLiberation},
                              {"Courier", {"Liberation Mono", "DejaVu Sans Mono"}, kLiberation},
                              {"Courier New", {"Liberation Mono", "DejaVu Sans Mono"}, kLiberation},
                              {"Calibri", {"Carlito", kOrdinaryFace}, "fonts-crosextra-carlito"},
                              {"Cambria", {"Caladea", "Liberation Serif"}, "fonts-crosextra-caladea"},
                              {"Georgia", {"Gelasio", "Liberation Serif"}, "fonts-gelasio"},
                              {"Verdana", {"DejaVu Sans", kOrdinaryFace}, "fonts-dejavu-core"},
                              {"Tahoma", {"DejaVu Sans", kOrdinaryFace}, "fonts-dejavu-core"},
                              {"MS Gothic", {"IPAGothic", "Noto Sans Mono CJK JP"}, "fonts-ipafont-gothic"},
                              {"MS PGothic", {"IPAPGothic", "Noto Sans CJK JP"}, "fonts-ipafont-gothic"},
                              {"MS UI Gothic", {"IPAPGothic", "Noto Sans CJK JP"}, "fonts-ipafont-gothic"},
                              {"MS Mincho", {"IPAMincho", "Noto Serif CJK JP"}, "fonts-ipafont-mincho"},
                              {"MS PMincho", {"IPAPMincho", "Noto Serif CJK JP"}, "fonts-ipafont-mincho"},
                              {"Meiryo", {"Noto Sans CJK JP", "IPAPGothic"}, "fonts-noto-cjk"}};

/// Letters that ordinary faces lack, by their range.
struct ScriptRow {
    char32_t first, last;
    const char *name, *package;
};
constexpr ScriptRow kScripts[] = {{0x2E80, 0x9FFF, "Chinese or Japanese", "fonts-noto-cjk"},
                                  {0xAC00, 0xD7AF, "Korean", "fonts-noto-cjk"},
                                  {0xF900, 0xFAFF, "Chinese or Japanese", "fonts-noto-cjk"},
                                  {0xFF00, 0xFFEF, "Chinese or Japanese", "fonts-noto-cjk"},
                                  {0x20000, 0x3FFFF, "Chinese or Japanese", "fonts-noto-cjk"},
                                  {0x0370, 0x03FF, "Greek", kLiberation},
                                  {0x2000, 0x2BFF, "mathematical or technical", "fonts-dejavu-core"}};
constexpr ScriptRow kOtherScripts{0, 0x10FFFF, "some", "fonts-noto-core"};

std::function<void(const std::string&)>& Notice()
{
    static std::function<void(const std::string&)> notice = [](const std::string& text) {
        std::fprintf(stderr, "%s\n", text.c_str());
    };
    return notice;
}

void TellOnce(const QString& text)
{
    thread_local std::set<QString> told;
    if (told.insert(text).second) Notice()(text.toStdString());
}

QString Installed(const QString& name)
{
    const FaceRow* row = std::ranges::find_if(
        kFaces, [&](const FaceRow& r) { return name.compare(QLatin1String(r.name), Qt::CaseInsensitive) == 0; });
    const bool known = row != std::end(kFaces);
    QString instead = QFont().defaultFamily();
    for (const char* face : {kOrdinaryFace, "DejaVu Sans"})
        if (QFontDatabase::hasFamily(face)) {
            instead = face;
            break;
        }
    if (known)
        for (const char* face : row->instead)
            if (QFontDatabase::hasFamily(face)) {
                if (face == row->instead.front()) return face; // cut for the same widths: nothing to tell
                instead = face;
                break;
            }
    QString text = QString("The font \"%1\" is not installed; \"%2\" stands in for it.").arg(name, instead);
    if (known) text += QString(" The Debian package %1 brings one that fits.").arg(row->package);
    TellOnce(text);
    return instead;
}

void TellMissing(char32_t letter)
{
    const ScriptRow* row =
        std::ranges::find_if(kScripts, [&](const ScriptRow& r) { return letter >= r.first && letter <= r.last; });
    const ScriptRow& script = row == std::end(kScripts) ? kOtherScripts : *row;
    TellOnce(QString("No installed font has %1 letters of a text; \"?\" stands for them. The Debian package %2 "
                     "brings a font that has them.")
                 .arg(QLatin1String(script.name), QLatin1String(script.package)));
}

/// Whether a text is drawn with real letters only, those of other faces included.
bool HasGlyphs(const QString& text, const QFont& font)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    const auto runs = layout.glyphRuns();
    return !runs.isEmpty() &&
           std::ranges::none_of(runs, [](const QGlyphRun& run) { return run.glyphIndexes().contains(0); });
}

using Key = std::tuple<std::string, bool, bool>;
using KeyView = std::tuple<std::string_view, bool, bool>;

/// Looks names up without a copy.
struct KeyLess {
    using is_transparent = void;
    static KeyView ToView(const Key& key) { return {std::get<0>(key), std::get<1>(key), std::get<2>(key)}; }
    static const KeyView& ToView(const KeyView& view) { return view; }
    template <class A, class B>
    bool operator()(const A& a, const B& b) const
    {
        return ToView(a) < ToView(b);
    }
};

} // namespace

LetterFace::LetterFace(const QString& family, bool bold, bool italic) : large_(family)
{
    large_.setBold(bold);
    large_.setItalic(italic);
    large_.setKerning(false);
    large_.setHintingPreference(QFont::PreferNoHinting);
    // Grey edges, whatever the screen's own are: a picture must not hang on the screen.
    large_.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    // The least spacing there is keeps letters from being joined to one.
    large_.setLetterSpacing(QFont::AbsoluteSpacing, 1.0 / 64);
    large_.setPixelSize(kMeasuredPixels);
    const QFontMetricsF metrics(large_);
    ascent_ = metrics.ascent() / kMeasuredPixels;
    descent_ = metrics.descent() / kMeasuredPixels;
}

const LetterFace::Letter& LetterFace::LetterOf(char32_t letter)
{
    const auto [place, added] = letters_.try_emplace(letter);
    if (added) {
        QString text = QString::fromUcs4(&letter, 1);
        const QFontMetricsF metrics(large_);
        const bool shows = letter > U' ' && letter != 0xA0 && letter != 0xAD;
        place->second.missing = shows && !metrics.inFontUcs4(letter) && !HasGlyphs(text, large_);
        if (place->second.missing) {
            TellMissing(letter);
            text = QStringLiteral("?");
        }
        place->second.width = metrics.horizontalAdvance(text) / kMeasuredPixels;
    }
    return place->second;
}

double LetterFace::Width(char32_t letter)
{
    return LetterOf(letter).width;
}

QString LetterFace::Drawable(std::string_view utf8)
{
    QString text = ToQString(utf8);
    if (std::ranges::all_of(utf8, [](char c) { return static_cast<unsigned char>(c) < 128; }))
        return text; // every face has these
    bool missing = false;
    for (const uint letter : text.toUcs4()) missing = missing || LetterOf(letter).missing;
    if (!missing) return text;
    QString drawn;
    for (const char32_t letter : text.toUcs4())
        drawn += LetterOf(letter).missing ? QStringLiteral("?") : QString::fromUcs4(&letter, 1);
    return drawn;
}

const QFont& LetterFace::FontOf(int pixels, bool underline, bool strikeout)
{
    const auto [place, added] = fonts_.try_emplace({pixels, underline, strikeout}, large_);
    if (added) {
        place->second.setPixelSize(pixels);
        place->second.setUnderline(underline);
        place->second.setStrikeOut(strikeout);
    }
    return place->second;
}

LetterFace& FaceOf(const FontSpecD& font)
{
    thread_local std::map<Key, std::unique_ptr<LetterFace>, KeyLess> faces;
    const KeyView wanted{font.family, font.bold, font.italic};
    if (const auto found = faces.find(wanted); found != faces.end()) return *found->second;
    QString family = ToQString(font.family);
    if (!QFontDatabase::hasFamily(family)) family = Installed(family);
    auto face = std::make_unique<LetterFace>(family, font.bold, font.italic);
    return *faces.emplace(Key{std::string(font.family), font.bold, font.italic}, std::move(face)).first->second;
}

void SetFontNotice(std::function<void(const std::string&)> notice)
{
    Notice() = std::move(notice);
}

} // namespace nmr
