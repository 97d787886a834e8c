#include "ui/window_dialog.h"

#include "core/error_report.h"
#include "fid/window.h"
#include "session/forms.h"
#include "session/text_commands.h"
#include "ui/code_picture.h"
#include "ui/form_fields.h"
#include "ui/form_parts.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QPushButton>

#include <algorithm>
#include <limits>

namespace nmr {
namespace {

struct FieldRow {
    WindowField field;
    const char* caption;
};

// What each function has; the letters are those of its expression.
std::vector<FieldRow> FieldsOf(WindowKind kind)
{
    switch (kind) {
    case WindowKind::exponential:
        return {{WindowField::bf1, "Broadening factor BF (Hz)"}};
    case WindowKind::gaussian:
        return {{WindowField::bf2, "Broadening factor BF (Hz)"},
                {WindowField::gf, "Gauss factor GF (Hz)"},
                {WindowField::center, "Func.Center(%)"}};
    default:
        return {{WindowField::start, "Start WS (%)"}, {WindowField::end, "End WE (%)"}};
    }
}

constexpr FieldRow kTrapezoid[] = {{WindowField::trap1, "Left bottom"},
                                   {WindowField::trap2, "Left top"},
                                   {WindowField::trap3, "Right top"},
                                   {WindowField::trap4, "Right bottom"}};

const WindowRow& RowOf(const ParamBlock& par)
{
    const auto& rows = WindowRows();
    const auto row = std::ranges::find(rows, static_cast<WindowKind>(par.WindowFunc), &WindowRow::kind);
    return row == rows.end() ? rows.front() : *row;
}

std::string Shortest(double value)
{
    return forms::NumberValue(ShortestDouble(static_cast<float>(value)));
}

QString LimitText(const WindowLimits& limits)
{
    const QString low = Qs(Shortest(limits.low));
    if (limits.high >= static_cast<double>(std::numeric_limits<float>::max())) return "At least " + low;
    return low + " to " + Qs(Shortest(limits.high));
}

} // namespace

WindowDialog::WindowDialog(FftForm& logic, std::function<void()> changed, QWidget* parent) :
    QDialog(parent), logic_(logic), changed_(std::move(changed)), before_(par())
{
    setObjectName("NMR1D_Form11_WindowFunc");
    const WindowRow& row = RowOf(par());
    setWindowTitle("Set Window Function(" + Qs(row.dialog_name) + ")");
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(18, 14, 18, 14);
    column->setSpacing(10);
    column->addWidget(new QLabel("Window Function: " + Qs(row.dialog_name), this));
    AddExpression();
    AddFields();
    AddTrapezoid();
    auto* foot = new QDialogButtonBox(this);
    auto* fix = foot->addButton("Fix", QDialogButtonBox::AcceptRole);
    fix->setObjectName("Command1");
    fix->setDefault(true);
    auto* cancel = foot->addButton("Cancel", QDialogButtonBox::RejectRole);
    cancel->setObjectName("Command2");
    cancel->setAutoDefault(false);
    cancel->setFocusPolicy(Qt::TabFocus); // a click on it must not take what is being typed
    connect(foot, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(foot, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addSpacing(6);
    column->addStretch();
    column->addWidget(foot);
    setMinimumWidth(420);
    ShowFields();
    fields_.front().first->setFocus();
    fields_.front().first->selectAll();
}

void WindowDialog::AddExpression()
{
    auto* column = static_cast<QVBoxLayout*>(layout());
    auto* frame = new QFrame(this);
    frame->setFrameShape(QFrame::StyledPanel);
    frame->setBackgroundRole(QPalette::Base);
    frame->setAutoFillBackground(true);
    auto* inside = new QVBoxLayout(frame);
    inside->setContentsMargins(0, 0, 0, 0);
    expression_ = new CodePicture(frame);
    expression_->setObjectName("Picture1");
    inside->addWidget(expression_);
    column->addWidget(frame);
    auto* buttons = new QHBoxLayout;
    const auto add = [&](const char* name, const char* caption, auto act) {
        auto* button = new QPushButton(caption, this);
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, act);
        buttons->addWidget(button);
    };
    add("Command3", "Edit Function Expression", [this] {
        if (Edit_Expression(logic_.block(), logic_.asker(), RowOf(par()).kind)) ShowExpression();
    });
    add("Command16", "Set Initial Expression", [this] {
        Set_Initial_Expression(logic_.block(), RowOf(par()).kind);
        ShowExpression();
    });
    buttons->addStretch(1);
    column->addLayout(buttons);
    ShowExpression();
}

void WindowDialog::ShowExpression()
{
    CodeTextStyle style;
    style.SuperSubSize = logic_.block().settings.super_sub_size;
    expression_->SetText(ExpressionOf(logic_.block().settings, RowOf(par()).kind), FontSpec{}, style);
}

void WindowDialog::AddFields()
{
    auto* grid = new QGridLayout;
    grid->setColumnStretch(0, 1);
    for (const FieldRow& field : FieldsOf(RowOf(par()).kind)) AddField(*grid, field.caption, field.field);
    static_cast<QVBoxLayout*>(layout())->addLayout(grid);
}

void WindowDialog::AddTrapezoid()
{
    multiply_ = new QCheckBox("Multiply Trapezoid", this);
    multiply_->setObjectName("Check1");
    connect(multiply_, &QCheckBox::toggled, this, [this](bool on) {
        const auto function = static_cast<std::size_t>(RowOf(par()).kind);
        par().WinFlags[function] = on ? 0 : 1;
        Apply();
    });
    auto* column = static_cast<QVBoxLayout*>(layout());
    column->addSpacing(4);
    column->addWidget(multiply_);
    auto* corners = new QWidget(this);
    auto* grid = new QGridLayout(corners);
    grid->setContentsMargins(24, 0, 0, 0);
    grid->setColumnStretch(0, 1);
    for (const FieldRow& corner : kTrapezoid) AddField(*grid, QString(corner.caption) + " (%)", corner.field);
    trapezoid_ = corners;
    column->addWidget(corners);
}

void WindowDialog::AddField(QGridLayout& grid, const QString& caption, WindowField field)
{
    auto* label = new QLabel(caption, this);
    auto* step = new StepField(this);
    label->setBuddy(step->edit());
    step->edit()->setAccessibleName(caption);
    step->edit()->setObjectName(caption);
    step->edit()->shown = [this, field] { return Shortest(GetWindowField(par(), field)); };
    step->edit()->typed = [this, field](double value) {
        SetWindowField(par(), field, value);
        Apply();
    };
    step->edit()->stepped = [this, field](int steps) {
        for (int i = 0; i < std::abs(steps); ++i) StepWindowField(par(), field, steps > 0 ? 1 : -1);
        Apply();
    };
    step->edit()->refused = [this] { Refuse(); };
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(step, row, 1);
    fields_.emplace_back(step->edit(), field);
}

void WindowDialog::Refuse()
{
    ErrorReport(logic_.asker(), "WindowFunc/F11", 13, "Type mismatch");
}

void WindowDialog::Apply()
{
    static_cast<void>(logic_.WindowChanged()); // what is impossible has been reported; the form stays
    ShowFields();
    changed_();
}

void WindowDialog::ShowFields()
{
    const bool on = par().WinFlags[static_cast<std::size_t>(RowOf(par()).kind)] == 0;
    const QSignalBlocker quiet(multiply_);
    multiply_->setChecked(on);
    trapezoid_->setEnabled(on);
    for (const auto& [edit, field] : fields_) {
        edit->Show();
        edit->setToolTip(LimitText(LimitsOf(par(), field)));
    }
}

void WindowDialog::PutBack()
{
    ParamBlock& now = par();
    for (float ParamBlock::*word : {&ParamBlock::BF1, &ParamBlock::BF2, &ParamBlock::GF, &ParamBlock::WinStart1,
                                    &ParamBlock::WinStart2, &ParamBlock::WinEnd2, &ParamBlock::WinStart3,
                                    &ParamBlock::WinEnd3, &ParamBlock::WinStart4, &ParamBlock::WinEnd4})
        now.*word = before_.*word;
    now.WinFlags = before_.WinFlags;
    now.Trap = before_.Trap;
}

void WindowDialog::accept()
{
    for (const auto& [edit, field] : fields_)
        if (edit->isModified()) edit->Take();
    logic_.block().DialogResult = "OK";
    QDialog::accept();
}

void WindowDialog::reject()
{
    PutBack();
    for (const auto& [edit, field] : fields_) edit->Forget(); // the dialog takes the focus away as it closes
    Apply();
    logic_.block().DialogResult = "CANCEL";
    QDialog::reject();
}

} // namespace nmr
