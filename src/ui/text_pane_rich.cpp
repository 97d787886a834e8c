// Letters as they look. The document holds Unicode; letters of the Symbol face get their codes when the text
// is handed back.

#include "layout/code_pieces.h"
#include "layout/code_rtf.h"
#include "layout/code_tokens.h"
#include "ui/code_picture.h"
#include "ui/form_parts.h"
#include "ui/text_panes.h"

#include <QMimeData>
#include <QTextBlock>
#include <QTextEdit>

namespace nmr {
namespace {

constexpr char kRtf[] = "text/rtf";
constexpr int kColorProperty = QTextFormat::UserProperty + 1;
constexpr QChar kLineEnd(0x2028);

/// Greek for the Latin letter that shares its key, and back; others stay.
QString TurnGreek(const QString& text, bool greek)
{
    QString turned;
    for (const char32_t letter : text.toUcs4()) {
        const auto code = SymbolCodeOf(letter);
        const char32_t latin = code && *code < 128 ? char32_t{*code} : letter;
        const char32_t other = !greek ? latin : letter < 128 ? SymbolToUnicode(letter) : letter;
        turned += QString::fromUcs4(&other, 1);
    }
    return turned;
}

class RichEdit : public QTextEdit {
public:
    RichEdit(const FontSpec& base, QWidget* parent) : QTextEdit(parent), base_(base)
    {
        QFont font(Qs(base.Name));
        font.setPointSizeF(std::max(1.0, static_cast<double>(base.Size)));
        document()->setDefaultFont(font);
        setCurrentCharFormat(FormatOf({{}, {}, base_}));
    }

    QTextCharFormat FormatOf(const CodePiece& piece) const
    {
        const FontSpec& font = piece.font;
        QTextCharFormat format;
        format.setFontFamilies({Qs(font.Name)});
        format.setFontPointSize(static_cast<double>(font.Size));
        format.setFontWeight(font.Bold != 0 ? QFont::Bold : QFont::Normal);
        format.setFontItalic(font.Italic != 0);
        format.setFontUnderline(font.Underline != 0);
        format.setFontStrikeOut(font.Strikeout != 0);
        format.setVerticalAlignment(piece.script == Script::super ? QTextCharFormat::AlignSuperScript
                                    : piece.script == Script::sub ? QTextCharFormat::AlignSubScript
                                                                  : QTextCharFormat::AlignNormal);
        SetColor(format, font.Color);
        return format;
    }
    void SetColor(QTextCharFormat& format, std::int32_t color) const
    {
        format.setProperty(kColorProperty, color);
        format.setForeground(ShownColor(color, base_.Color, palette()));
    }

    void InsertPieces(QTextCursor cursor, const std::vector<CodePiece>& pieces) const
    {
        cursor.beginEditBlock();
        for (const CodePiece& piece : pieces) {
            if (piece.kind == CodePiece::Kind::line_end)
                cursor.insertBlock();
            else
                cursor.insertText(piece.kind == CodePiece::Kind::tab ? QStringLiteral("\t") : Qs(piece.text),
                                  FormatOf(piece));
        }
        cursor.endEditBlock();
    }

    /// What stands between two positions of the document.
    std::vector<CodePiece> PiecesOf(int from, int to) const
    {
        std::vector<CodePiece> pieces;
        for (QTextBlock block = document()->findBlock(from); block.isValid() && block.position() <= to;
             block = block.next()) {
            if (block.position() > from) pieces.push_back({CodePiece::Kind::line_end, {}, base_});
            for (auto part = block.begin(); !part.atEnd(); ++part) {
                const QTextFragment fragment = part.fragment();
                const int begin = std::max(from, fragment.position());
                const int end = std::min(to, fragment.position() + fragment.length());
                if (begin >= end) continue;
                const CodePiece letters = PieceOf(fragment.charFormat());
                AddLetters(pieces, letters, fragment.text().mid(begin - fragment.position(), end - begin));
            }
        }
        return pieces;
    }
    std::string Code() const { return Pieces_To_Code(PiecesOf(0, document()->characterCount() - 1), base_); }

    /// Letters typed become Greek ones.
    bool greek = false;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const QString text = event->text();
        const bool letter = !text.isEmpty() && text[0].isPrint() && !(event->modifiers() & Qt::ControlModifier);
        if (!greek || !letter) return QTextEdit::keyPressEvent(event);
        textCursor().insertText(TurnGreek(text, true), currentCharFormat());
        ensureCursorVisible();
    }
    QMimeData* createMimeDataFromSelection() const override
    {
        QMimeData* mime = QTextEdit::createMimeDataFromSelection();
        const QTextCursor cursor = textCursor();
        const std::string code = Pieces_To_Code(PiecesOf(cursor.selectionStart(), cursor.selectionEnd()), base_);
        mime->setData(kRtf, QByteArray::fromStdString(Code_To_Rtf(code, base_, static_cast<double>(base_.Size))));
        return mime;
    }
    void insertFromMimeData(const QMimeData* mime) override
    {
        for (const char* format : {kRtf, "application/rtf"}) {
            const QByteArray rich = mime->data(format);
            if (!rich.startsWith("{\\rtf")) continue;
            QTextCursor cursor = textCursor();
            cursor.removeSelectedText();
            InsertPieces(cursor, Code_To_Pieces(Rtf_To_Code(rich.toStdString(), base_), base_));
            return;
        }
        if (mime->hasText()) textCursor().insertText(mime->text(), currentCharFormat());
    }

private:
    CodePiece PieceOf(const QTextCharFormat& format) const
    {
        CodePiece piece{CodePiece::Kind::letters, {}, base_};
        const QStringList families = format.fontFamilies().toStringList();
        if (!families.isEmpty()) piece.font.Name = families.constFirst().toStdString();
        if (format.hasProperty(QTextFormat::FontPointSize))
            piece.font.Size = static_cast<float>(format.fontPointSize());
        const auto flag = [](bool on) { return static_cast<std::int16_t>(on ? -1 : 0); };
        piece.font.Bold = flag(format.fontWeight() >= QFont::DemiBold);
        piece.font.Italic = flag(format.fontItalic());
        piece.font.Underline = flag(format.fontUnderline());
        piece.font.Strikeout = flag(format.fontStrikeOut());
        if (format.hasProperty(kColorProperty)) piece.font.Color = format.intProperty(kColorProperty);
        piece.script = format.verticalAlignment() == QTextCharFormat::AlignSuperScript ? Script::super
                       : format.verticalAlignment() == QTextCharFormat::AlignSubScript ? Script::sub
                                                                                       : Script::none;
        return piece;
    }
    static void AddLetters(std::vector<CodePiece>& pieces, const CodePiece& like, const QString& text)
    {
        QString letters;
        const auto end_piece = [&] {
            if (letters.isEmpty()) return;
            pieces.push_back(like);
            pieces.back().text = letters.toStdString();
            letters.clear();
        };
        for (const QChar letter : text) {
            if (letter != '\t' && letter != kLineEnd) {
                if (letter.isPrint()) letters += letter; // pasted pictures are none
                if (letter.isSurrogate()) letters += letter;
                continue;
            }
            end_piece();
            const auto kind = letter == '\t' ? CodePiece::Kind::tab : CodePiece::Kind::line_end;
            pieces.push_back({kind, {}, like.font, like.script});
        }
        end_piece();
    }
    const FontSpec base_;
};

class RichPane : public TextPane {
public:
    RichPane(const std::string& code, const FontSpec& font, QWidget* parent) :
        original_(code), base_(font), edit_(new RichEdit(font, parent))
    {
        edit_->setObjectName("RichTextBox1");
        edit_->setTabChangesFocus(false);
        edit_->document()->setUndoRedoEnabled(false); // the text itself is no step
        edit_->InsertPieces(edit_->textCursor(), Code_To_Pieces(code, font));
        edit_->document()->setUndoRedoEnabled(true);
        edit_->document()->setModified(false);
        edit_->moveCursor(QTextCursor::End);
        QObject::connect(edit_, &QTextEdit::textChanged, edit_, [this] {
            if (changed) changed();
        });
        QObject::connect(edit_, &QTextEdit::currentCharFormatChanged, edit_, [this] { TellCaret(); });
        TellCaret();
    }
    QWidget* widget() override { return edit_; }
    std::string code() const override { return edit_->document()->isModified() ? edit_->Code() : original_; }

    void Mark(TextMark mark, bool on) override
    {
        if (mark == TextMark::greek) return SetGreek(on);
        QTextCharFormat format;
        if (mark == TextMark::bold) format.setFontWeight(on ? QFont::Bold : QFont::Normal);
        if (mark == TextMark::italic) format.setFontItalic(on);
        if (mark == TextMark::underline) format.setFontUnderline(on);
        if (mark == TextMark::strikeout) format.setFontStrikeOut(on);
        if (mark == TextMark::super || mark == TextMark::sub)
            format.setVerticalAlignment(!on                       ? QTextCharFormat::AlignNormal
                                        : mark == TextMark::super ? QTextCharFormat::AlignSuperScript
                                                                  : QTextCharFormat::AlignSubScript);
        Merge(format);
    }
    void SetFace(const std::string& face) override
    {
        QTextCharFormat format;
        format.setFontFamilies({Qs(face.empty() ? base_.Name : face)});
        Merge(format);
    }
    void SetSize(double points) override
    {
        QTextCharFormat format;
        format.setFontPointSize(points < 1 ? static_cast<double>(base_.Size) : points);
        Merge(format);
    }
    void SetColor(std::int32_t color) override
    {
        QTextCharFormat format;
        edit_->SetColor(format, color < 0 ? base_.Color : color);
        Merge(format);
    }
    void Insert(const std::string& letters) override
    {
        edit_->textCursor().insertText(Qs(letters), edit_->currentCharFormat());
        edit_->setFocus();
    }
    void UnDo() override { edit_->undo(); }
    void ReDo() override { edit_->redo(); }
    bool can_undo() const override { return edit_->document()->isUndoAvailable(); }
    bool can_redo() const override { return edit_->document()->isRedoAvailable(); }
    const CaretState* caret() const override { return &caret_; }

private:
    void Merge(const QTextCharFormat& format)
    {
        edit_->mergeCurrentCharFormat(format);
        edit_->setFocus();
        TellCaret();
    }
    void SetGreek(bool on)
    {
        QTextCursor cursor = edit_->textCursor();
        if (cursor.hasSelection()) {
            const int begin = cursor.selectionStart(), end = cursor.selectionEnd();
            auto pieces = edit_->PiecesOf(begin, end);
            for (CodePiece& piece : pieces) piece.text = TurnGreek(Qs(piece.text), on).toStdString();
            cursor.beginEditBlock();
            cursor.removeSelectedText();
            edit_->InsertPieces(cursor, pieces);
            cursor.endEditBlock();
            cursor.setPosition(begin);
            cursor.setPosition(end, QTextCursor::KeepAnchor);
            edit_->setTextCursor(cursor);
        } else {
            edit_->greek = on;
        }
        edit_->setFocus();
        TellCaret();
    }
    void TellCaret()
    {
        const QTextCharFormat format = edit_->currentCharFormat();
        const auto set = [&](TextMark mark, bool on) { caret_.marks[static_cast<std::size_t>(mark)] = on; };
        set(TextMark::bold, format.fontWeight() >= QFont::DemiBold);
        set(TextMark::italic, format.fontItalic());
        set(TextMark::underline, format.fontUnderline());
        set(TextMark::strikeout, format.fontStrikeOut());
        set(TextMark::super, format.verticalAlignment() == QTextCharFormat::AlignSuperScript);
        set(TextMark::sub, format.verticalAlignment() == QTextCharFormat::AlignSubScript);
        set(TextMark::greek, edit_->greek);
        const QStringList families = format.fontFamilies().toStringList();
        caret_.face = families.isEmpty() ? base_.Name : families.constFirst().toStdString();
        caret_.size = format.fontPointSize() > 0 ? format.fontPointSize() : static_cast<double>(base_.Size);
        if (caret_moved) caret_moved();
    }

    const std::string original_;
    const FontSpec base_;
    RichEdit* edit_;
    CaretState caret_;
};

} // namespace

std::unique_ptr<TextPane> MakeRichPane(const std::string& code, const FontSpec& font, QWidget* parent)
{
    return std::make_unique<RichPane>(code, font, parent);
}

} // namespace nmr
