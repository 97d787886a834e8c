#include "ui/tool_panels.h"

#include "ui/flow_layout.h"
#include "ui/form_fields.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>

namespace nmr {
namespace {

constexpr int kPadding = 22, kLeastWidth = 52; // of a button, pixels

} // namespace

void ShowPressed(QAbstractButton& button)
{
    QPalette palette;
    if (button.isChecked()) {
        palette.setColor(QPalette::Button, palette.color(QPalette::Highlight));
        palette.setColor(QPalette::ButtonText, palette.color(QPalette::HighlightedText));
    }
    button.setPalette(palette);
}

ToolPanel::ToolPanel(Tools& tools, Session& session, Tool tool, const char* name, const QString& caption) :
    tools_(tools), session_(session), g_(session.g), tool_(tool), flow_(new FlowLayout(this, 14, 6))
{
    setObjectName(QLatin1String(name));
    setAutoFillBackground(true);
    flow_->setContentsMargins(10, 5, 10, 5);
    QLabel* title = AddLabel(caption);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    hide();
}

void ToolPanel::Refresh()
{
    for (const auto& [action, button] : actions_) {
        button->setChecked(tools_.action() == action);
        ShowPressed(*button);
    }
}

QWidget* ToolPanel::BeginGroup()
{
    group_ = new QWidget(this);
    auto* row = new QHBoxLayout(group_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    flow_->addWidget(group_);
    return group_;
}

void ToolPanel::AddWidget(QWidget* widget)
{
    if (group_ == nullptr) BeginGroup();
    group_->layout()->addWidget(widget);
}

QToolButton* ToolPanel::AddAction(ToolAction action, const QString& caption, const QString& tip)
{
    auto* button = new QToolButton(this);
    button->setText(caption);
    button->setToolTip(tip);
    button->setCheckable(true);
    button->setFocusPolicy(Qt::NoFocus); // the keys stay the plot's
    button->setObjectName(QStringLiteral("Action%1").arg(static_cast<int>(action)));
    connect(button, &QToolButton::clicked, this, [this, action] {
        tools_.SetAction(action);
        Refresh(); // an action that is not to be had leaves the buttons as they were
    });
    actions_.emplace_back(action, button);
    AddWidget(button);
    return button;
}

QPushButton* ToolPanel::AddButton(const char* name, const QString& caption, const QString& tip,
                                  std::function<void()> step)
{
    auto* button = new QPushButton(caption, this);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::NoFocus);
    button->setMaximumWidth(std::max(button->fontMetrics().horizontalAdvance(caption) + kPadding, kLeastWidth));
    connect(button, &QPushButton::clicked, this, std::move(step));
    AddWidget(button);
    return button;
}

QLabel* ToolPanel::AddLabel(const QString& text)
{
    auto* label = new QLabel(text, this);
    AddWidget(label);
    return label;
}

ValueEdit* ToolPanel::AddValue(const char* name, const QString& caption, const QString& tip, int width)
{
    QLabel* label = AddLabel(caption);
    auto* edit = new ValueEdit(this);
    edit->setObjectName(QLatin1String(name));
    edit->setToolTip(tip);
    edit->setFixedWidth(width);
    label->setBuddy(edit);
    AddWidget(edit);
    return edit;
}

void ToolPanel::AddEnd(const char* fix_name, const QString& fix, const QString& fix_tip, const char* cancel_name,
                       const QString& cancel, const QString& cancel_tip)
{
    BeginGroup();
    AddButton(fix_name, fix, fix_tip, [this] { tools_.Fix(); });
    if (cancel_name != nullptr) AddButton(cancel_name, cancel, cancel_tip, [this] { tools_.Cancel(); });
}

} // namespace nmr
