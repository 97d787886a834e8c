#include "ui/text_editor.h"

#include "session/forms.h"
#include "session/text_forms.h"
#include "ui/code_picture.h"
#include "ui/form_dialogs.h"
#include "ui/form_parts.h"
#include "ui/text_panes.h"

#include <QColorDialog>
#include <QComboBox>
#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QMenu>
#include <QPainter>
#include <QScrollArea>
#include <QToolButton>
#include <QWidgetAction>

#include <array>

namespace nmr {
namespace {

struct MarkRow {
    TextMark mark;
    const char *name, *text, *tip;
    QKeySequence::StandardKey key = QKeySequence::UnknownKey;
};
constexpr MarkRow kMarks[] = {{TextMark::bold, "Bold", "B", "Bold", QKeySequence::Bold},
                              {TextMark::italic, "Italic", "I", "Italic", QKeySequence::Italic},
                              {TextMark::underline, "Underline", "U", "Underline", QKeySequence::Underline},
                              {TextMark::strikeout, "Strikeout", "S", "Strikeout"},
                              {TextMark::super, "Super", "x²", "Superscript"},
                              {TextMark::sub, "Sub", "x₂", "Subscript"},
                              {TextMark::greek, "Greek", "αβ", "Greek: letters typed or selected become Greek ones"}};

struct ColorRow {
    const char* name;
    std::int32_t color; ///< red + 256 green + 65536 blue
};
constexpr ColorRow kColors[] = {{"Black", 0x000000},  {"Blue", 0xB27200},   {"Vermilion", 0x005ED5},
                                {"Green", 0x739E00},  {"Purple", 0xA779CC}, {"Sky Blue", 0xE9B456},
                                {"Orange", 0x009FE6}, {"Red", 0x0000FF},    {"Gray", 0x808080}};

constexpr const char* kGreekRows[] = {"αβγδεζηθικλμ", "νξοπρστυφχψω", "ΓΔΘΛΞΠΣΥΦΨΩ∂", "±×·÷≤≥≠≈∞°→Å"};
constexpr double kSizes[] = {6, 7, 8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 36, 48, 72};
constexpr int kSwatch = 14;

QIcon Swatch(const QColor& color)
{
    QPixmap pixmap(kSwatch * 2, kSwatch * 2);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(0, 0, kSwatch, kSwatch), 3, 3);
    return pixmap;
}

QColor FromNumber(std::int32_t color)
{
    return {color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF};
}

/// A line of its own over a pane.
QLabel* Heading(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace

TextEditor::TextEditor(Kind kind, const std::string& code, const FontSpec& font, QWidget* parent) :
    QWidget(parent), kind_(kind), font_(font)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    BuildToolBar(*column);
    column->addWidget(Heading(kind == Kind::rich ? "Set Format at selected text" : "Internal Code", this));
    pane_place_ = new QVBoxLayout;
    column->addLayout(pane_place_, 3);
    column->addWidget(Heading("Actual Expression", this));
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setBackgroundRole(QPalette::Base);
    picture_ = new CodePicture(scroll);
    picture_->setObjectName("Picture1");
    scroll->setWidget(picture_);
    scroll->setMinimumHeight(84);
    column->addWidget(scroll, 2);
    SetCode(code);
}

TextEditor::~TextEditor()
{
    delete pane_->widget(); // which may still call the pane
}

void TextEditor::SetCode(const std::string& code)
{
    TakePane(kind_ == Kind::rich ? MakeRichPane(code, font_, this) : MakeCodePane(code, this));
}

void TextEditor::TakePane(std::unique_ptr<TextPane> pane)
{
    if (pane_) delete pane_->widget();
    pane_ = std::move(pane);
    pane_place_->addWidget(pane_->widget());
    pane_->widget()->setMinimumHeight(84);
    pane_->changed = [this] { ShowText(); };
    pane_->caret_moved = [this] { ShowCaret(); };
    setFocusProxy(pane_->widget());
    ShowText();
    ShowCaret();
}

std::string TextEditor::code() const
{
    const std::string code = pane_->code();
    return Plain_From_Code(code).empty() ? std::string() : Group_To_Code(code);
}

void TextEditor::ShowText()
{
    picture_->SetText(pane_->code(), font_);
    undo_->setEnabled(pane_->can_undo());
    redo_->setEnabled(pane_->can_redo());
}

void TextEditor::ShowCaret()
{
    const CaretState* caret = pane_->caret();
    if (caret == nullptr) return;
    for (std::size_t i = 0; i < marks_.size(); ++i) marks_[i]->setChecked(caret->marks[i]);
    const QSignalBlocker faces(faces_), sizes(sizes_);
    faces_->setCurrentText(Qs(caret->face));
    sizes_->setCurrentText(QString::number(caret->size, 'g', 4));
}

QToolButton* TextEditor::AddTool(QBoxLayout& bar, const QString& name, const QString& text, const QString& tip)
{
    auto* button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(text);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus); // a click leaves the caret in the pane
    button->setMinimumWidth(button->fontMetrics().height() * 2);
    bar.addWidget(button);
    return button;
}

void TextEditor::BuildToolBar(QBoxLayout& column)
{
    auto* bar = new QHBoxLayout;
    bar->setSpacing(2);
    AddMarks(*bar);
    bar->addSpacing(8);
    AddFonts(*bar);
    AddColors(*bar);
    bar->addSpacing(8);
    AddLetters(*bar);
    bar->addStretch(1);
    undo_ = AddTool(*bar, "UnDo", "UnDo", "Take the last change back (Ctrl+Z)");
    redo_ = AddTool(*bar, "ReDo", "ReDo", "Do again what was taken back (Ctrl+Shift+Z)");
    connect(undo_, &QToolButton::clicked, this, [this] { pane_->UnDo(); });
    connect(redo_, &QToolButton::clicked, this, [this] { pane_->ReDo(); });
    column.addLayout(bar);
}

void TextEditor::AddMarks(QBoxLayout& bar)
{
    for (const MarkRow& row : kMarks) {
        QToolButton* button = AddTool(bar, row.name, row.text, row.tip);
        QFont font = button->font();
        font.setBold(row.mark == TextMark::bold);
        font.setItalic(row.mark == TextMark::italic);
        font.setUnderline(row.mark == TextMark::underline);
        font.setStrikeOut(row.mark == TextMark::strikeout);
        button->setFont(font);
        button->setCheckable(kind_ == Kind::rich);
        if (row.key != QKeySequence::UnknownKey) button->setShortcut(row.key);
        connect(button, &QToolButton::clicked, this, [this, mark = row.mark](bool on) {
            pane_->Mark(mark, on || kind_ == Kind::codes);
            ShowCaret();
        });
        marks_.push_back(button);
    }
}

void TextEditor::AddFonts(QBoxLayout& bar)
{
    faces_ = new QComboBox(this);
    faces_->setObjectName("Combo3");
    faces_->setAccessibleName("Font");
    faces_->setToolTip("Font");
    faces_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    faces_->setMinimumContentsLength(14);
    QStringList names{Qs(font_.Name)};
    for (const QString& name : QFontDatabase::families())
        if (!names.contains(name) && name != "OpenSymbol") names << name;
    faces_->addItems(names);
    connect(faces_, &QComboBox::textActivated, this, [this](const QString& name) {
        pane_->SetFace(name == Qs(font_.Name) ? std::string() : name.toStdString());
    });
    sizes_ = new QComboBox(this);
    sizes_->setObjectName("Combo4");
    sizes_->setAccessibleName("Size in points");
    sizes_->setToolTip("Size in points");
    sizes_->setEditable(true);
    sizes_->setInsertPolicy(QComboBox::NoInsert);
    sizes_->setMaximumWidth(72);
    for (const double size : kSizes) sizes_->addItem(QString::number(size));
    sizes_->setCurrentText(QString::number(static_cast<double>(font_.Size)));
    connect(sizes_, &QComboBox::textActivated, this, [this](const QString& text) {
        const double size = text.toDouble();
        if (size >= 1 && size <= 1000) pane_->SetSize(size == static_cast<double>(font_.Size) ? 0 : size);
    });
    bar.addWidget(faces_);
    bar.addWidget(sizes_);
}

void TextEditor::AddColors(QBoxLayout& bar)
{
    auto* button = AddTool(bar, "Picture4", {}, "Colour");
    button->setIcon(Swatch(FromNumber(kColors[2].color)));
    button->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(button);
    menu->addAction("Own colour of the text", this, [this] { pane_->SetColor(-1); });
    for (const ColorRow& row : kColors)
        menu->addAction(Swatch(FromNumber(row.color)), row.name, this, [this, &row] { pane_->SetColor(row.color); });
    menu->addSeparator();
    menu->addAction("More...", this, [this] {
        const QColor color = QColorDialog::getColor(Qt::black, this, "Colour");
        if (color.isValid()) pane_->SetColor(color.red() | color.green() << 8 | color.blue() << 16);
    });
    button->setMenu(menu);
}

void TextEditor::AddLetters(QBoxLayout& bar)
{
    auto* greek = AddTool(bar, "GreekLetters", "Ω", "Greek letters and signs");
    greek->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(greek);
    auto* panel = new QWidget(menu);
    auto* grid = new QGridLayout(panel);
    grid->setSpacing(1);
    grid->setContentsMargins(6, 6, 6, 6);
    int line = 0;
    for (const char* letters : kGreekRows) {
        int place = 0;
        for (const char32_t letter : QString::fromUtf8(letters).toUcs4()) {
            auto* button = new QToolButton(panel);
            button->setText(QString::fromUcs4(&letter, 1));
            button->setAutoRaise(true);
            button->setFixedSize(30, 30);
            connect(button, &QToolButton::clicked, this, [this, menu, text = button->text().toStdString()] {
                menu->close();
                pane_->Insert(text);
            });
            grid->addWidget(button, line, place++);
        }
        ++line;
    }
    auto* action = new QWidgetAction(menu);
    action->setDefaultWidget(panel);
    menu->addAction(action);
    greek->setMenu(menu);
    auto* special = AddTool(bar, "Special", "°±µ", "Special characters");
    connect(special, &QToolButton::clicked, this, [this] {
        const FormAnswer answer = Form105_X({forms::kSpecialLetters, {}}, this);
        const std::string letters = forms::Text(answer.values, forms::kText);
        if (!letters.empty()) pane_->Insert(letters);
    });
}

} // namespace nmr
