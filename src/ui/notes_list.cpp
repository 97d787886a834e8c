#include "ui/notes_list.h"

#include "ui/form_parts.h"

#include <QScreen>
#include <QScrollArea>

#include <algorithm>

namespace nmr {
namespace {

constexpr int kListWidth = 460, kMostHeight = 320;

QLabel* NoteLabel(const std::string& note, QWidget* parent)
{
    auto* label = new QLabel(QStringLiteral("\u2022  ") + Qs(note), parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

/// The notes one below the other, as high as they need up to a limit.
QScrollArea* NoteArea(const std::vector<std::string>& notes, QWidget* parent)
{
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 6, 0);
    for (const std::string& note : notes) column->addWidget(NoteLabel(note, page));
    column->addStretch(1);
    auto* area = new QScrollArea(parent);
    area->setFrameStyle(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(page);
    area->setFixedHeight(std::min(column->heightForWidth(kListWidth - 40) + 16, kMostHeight));
    return area;
}

} // namespace

NotesButton::NotesButton(QWidget* parent) : QToolButton(parent)
{
    setObjectName(QStringLiteral("Notes"));
    setAutoRaise(true);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setArrowType(Qt::UpArrow);
    setFocusPolicy(Qt::NoFocus);
    setToolTip(QStringLiteral("What was mended or missed in the file"));
    hide();
    connect(this, &QToolButton::clicked, this, [this] { ShowList(); });
}

void NotesButton::SetNotes(const std::vector<std::string>& notes)
{
    notes_ = notes;
    setVisible(!notes_.empty());
    setText(QStringLiteral("%1 %2 on reading").arg(notes_.size()).arg(notes_.size() == 1 ? "note" : "notes"));
}

void NotesButton::ShowList()
{
    auto* list = new QDialog(this, Qt::Popup);
    list->setObjectName(QStringLiteral("NotesList"));
    list->setAttribute(Qt::WA_DeleteOnClose);
    list->setFixedWidth(kListWidth);
    auto* column = new QVBoxLayout(list);
    column->setContentsMargins(14, 12, 8, 12);
    auto* head = new QLabel(text(), list);
    QFont bold = head->font();
    bold.setBold(true);
    head->setFont(bold);
    column->addWidget(head);
    column->addWidget(NoteArea(notes_, list));
    list->adjustSize();
    const QPoint corner = mapToGlobal(QPoint(width() - kListWidth, -list->height() - 4));
    const QRect room = screen()->availableGeometry();
    list->move(std::max(room.left(), corner.x()), std::max(room.top(), corner.y()));
    list->show();
}

} // namespace nmr
