// Forms for what is shown: display scope, default areas, grid.

#include "session/display_scope.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_parts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>

namespace nmr {
namespace {

using namespace forms;

constexpr XUnit kUnits[] = {XUnit::ppm, XUnit::hz, XUnit::khz};
constexpr const char* kUnitNames[] = {"ppm", "Hz", "kHz"};
constexpr ScopeEdge kEdges[] = {ScopeEdge::left, ScopeEdge::right};

// The six fields of the display scope: two ends in three units, kept in step.
struct ScopeFields {
    std::array<std::array<QLineEdit*, 3>, 2> edits{};
    void Show(const DisplayScope& scope, const QObject* but = nullptr)
    {
        for (std::size_t e = 0; e < 2; ++e)
            for (std::size_t u = 0; u < 3; ++u)
                if (edits[e][u] != but) edits[e][u]->setText(QString::number(scope.Get(kEdges[e], kUnits[u]), 'g', 7));
    }
};

QGridLayout* AddScopeGrid(PlainForm& form, DisplayScope& scope, ScopeFields& fields)
{
    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel("Left", &form), 1, 0);
    grid->addWidget(new QLabel("Right", &form), 2, 0);
    for (std::size_t u = 0; u < 3; ++u) {
        grid->addWidget(new QLabel(kUnitNames[u], &form), 0, static_cast<int>(u) + 1, Qt::AlignRight);
        for (std::size_t e = 0; e < 2; ++e) {
            QLineEdit* edit = fields.edits[e][u] = NumberField(&form, 0);
            grid->addWidget(edit, static_cast<int>(e) + 1, static_cast<int>(u) + 1);
            QObject::connect(edit, &QLineEdit::textEdited, &form, [&scope, &fields, edit, e, u](const QString& text) {
                bool ok = false;
                const double value = QLocale::c().toDouble(text, &ok);
                if (ok && scope.Set(kEdges[e], kUnits[u], value)) fields.Show(scope, edit);
            });
        }
    }
    return grid;
}

QComboBox* StepBox(QWidget* parent, double value)
{
    auto* box = new QComboBox(parent);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->lineEdit()->setAlignment(Qt::AlignRight);
    for (std::string_view step : StepList()) box->addItem(Qs(step));
    box->setCurrentText(QString::number(value, 'g', 7));
    return box;
}

QSpinBox* DivisionBox(QWidget* parent, int value)
{
    auto* box = new QSpinBox(parent);
    box->setRange(1, 100);
    box->setValue(value);
    box->setAlignment(Qt::AlignRight);
    return box;
}

/// Fields of the steps of an axis: a row for steps and one for divisions, ppm and Hz beside each other.
class TickFields {
public:
    TickFields(QWidget* parent, const TickSteps& steps) :
        step_{StepBox(parent, steps.step_ppm), StepBox(parent, steps.step_hz)},
        divisions_{DivisionBox(parent, steps.divisions_ppm), DivisionBox(parent, steps.divisions_hz)}
    {
    }
    /// Two fields each, `span` columns wide, from a cell on.
    void AddTo(QGridLayout& grid, int row, int column, int span)
    {
        for (int i = 0; i < 2; ++i) {
            grid.addWidget(step_[static_cast<std::size_t>(i)], row, column + i * span, 1, span);
            grid.addWidget(divisions_[static_cast<std::size_t>(i)], row + 1, column + i * span, 1, span);
        }
    }
    void SetEnabled(bool on)
    {
        for (std::size_t i = 0; i < 2; ++i) {
            step_[i]->setEnabled(on);
            divisions_[i]->setEnabled(on);
        }
    }
    TickSteps steps() const
    {
        const QLocale c = QLocale::c();
        return {c.toDouble(step_[0]->currentText()), c.toDouble(step_[1]->currentText()), divisions_[0]->value(),
                divisions_[1]->value()};
    }

private:
    std::array<QComboBox*, 2> step_;
    std::array<QSpinBox*, 2> divisions_;
};

/// "Axis" of the display scope.
class AxisGroup {
public:
    AxisGroup(PlainForm& form, const TickChoice& choice) :
        group_(new QGroupBox("Steps of the axis", &form)), automatic_(new QRadioButton("Auto", group_)),
        individual_(new QRadioButton("Individual", group_)), fields_(group_, choice.steps)
    {
        automatic_->setObjectName("TicAuto");
        individual_->setObjectName("TicIndividual");
        auto* grid = new QGridLayout(group_);
        grid->addWidget(automatic_, 0, 0);
        grid->addWidget(individual_, 1, 0);
        grid->addWidget(new QLabel("Step", group_), 1, 1);
        grid->addWidget(new QLabel("Divisions", group_), 2, 1);
        grid->addWidget(new QLabel("ppm", group_), 0, 2, Qt::AlignRight);
        grid->addWidget(new QLabel("Hz", group_), 0, 3, Qt::AlignRight);
        fields_.AddTo(*grid, 1, 2, 1);
        grid->setColumnStretch(2, 1);
        grid->setColumnStretch(3, 1);
        QObject::connect(individual_, &QRadioButton::toggled, group_, [this](bool on) { fields_.SetEnabled(on); });
        (choice.individual ? individual_ : automatic_)->setChecked(true);
        fields_.SetEnabled(choice.individual);
        form.column()->addWidget(group_);
    }
    TickChoice choice() const { return {individual_->isChecked(), fields_.steps()}; }

private:
    QGroupBox* group_;
    QRadioButton *automatic_, *individual_;
    TickFields fields_;
};

Values WithTicks(Values values, const AxisGroup& axis)
{
    axis.choice().PutInto(values);
    return values;
}

} // namespace

FormAnswer NMR1D_Form31(const FormRequest& request, QWidget* parent)
{
    DisplayScope scope(request.values);
    PlainForm form("Change of Display Scope", parent);
    ScopeFields fields;
    form.column()->addLayout(AddScopeGrid(form, scope, fields));
    auto* row = new QHBoxLayout;
    const auto add = [&](const char* caption, auto action) {
        auto* button = new QPushButton(caption, &form);
        button->setAutoDefault(false);
        QObject::connect(button, &QPushButton::clicked, &form, [&, action] {
            action();
            fields.Show(scope);
        });
        row->addWidget(button);
    };
    add("Set Default Value", [&] { scope.SetDefaultValue(); });
    add("Set Default Value-1", [&] { scope.TakePreset(2); });
    add("Set Default Value-2", [&] { scope.TakePreset(3); });
    form.column()->addLayout(row);
    const AxisGroup axis(form, TickChoice::From(request.values));
    auto* foot = form.AddFoot("OK", "Cancel");
    bool edit_areas = false;
    auto* areas = foot->addButton("Default Areas...", QDialogButtonBox::ResetRole);
    areas->setAutoDefault(false);
    QObject::connect(areas, &QPushButton::clicked, &form, [&] {
        edit_areas = true;
        form.accept();
    });
    fields.Show(scope);
    for (const auto& edge : fields.edits)
        for (QLineEdit* edit : edge)
            QObject::connect(edit, &QLineEdit::textChanged, foot,
                             [foot, &scope] { foot->buttons().front()->setEnabled(scope.IsUsable()); });
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    return {edit_areas ? kEditAreas : kOk, WithTicks(scope.ToValues(), axis)};
}

FormAnswer NMR1D_Form34(const FormRequest& request, QWidget* parent)
{
    DefaultAreas areas(request.values);
    PlainForm form("Set Default Display Area", parent);
    auto* tabs = new QTabWidget(&form);
    const char* group_names[] = {"1H", "13C", "Other"};
    std::vector<TickFields> ticks;
    for (int group = 0; group < 3; ++group) {
        auto* page = new QWidget;
        auto* grid = new QGridLayout(page);
        grid->setHorizontalSpacing(8);
        const char* heads[] = {"Left (ppm)", "Right (ppm)", "Left (Hz)", "Right (Hz)"};
        for (int column = 0; column < 4; ++column)
            grid->addWidget(new QLabel(heads[column]), 0, column + 1, Qt::AlignRight);
        for (int n = 1; n <= kPresetCount; ++n) {
            grid->addWidget(new QLabel(n == 1 ? QString("Default") : "Value-" + QString::number(n - 1)), n, 0);
            for (int column = 0; column < 4; ++column) {
                const XUnit unit = column < 2 ? XUnit::ppm : XUnit::hz;
                const ScopeEdge edge = column % 2 == 0 ? ScopeEdge::left : ScopeEdge::right;
                const ShownRange range = areas.Get(group, unit, n);
                auto* edit = NumberField(page, edge == ScopeEdge::left ? range.left : range.right);
                grid->addWidget(edit, n, column + 1);
                QObject::connect(edit, &QLineEdit::textEdited, &form,
                                 [&areas, group, unit, n, edge](const QString& text) {
                                     bool ok = false;
                                     const double value = QLocale::c().toDouble(text, &ok);
                                     if (ok) areas.Set(group, unit, n, edge, value);
                                 });
            }
        }
        auto* line = new QFrame(page);
        line->setFrameStyle(QFrame::HLine | QFrame::Sunken);
        grid->addWidget(line, kPresetCount + 1, 0, 1, 5);
        grid->addWidget(new QLabel("Axis step", page), kPresetCount + 2, 0);
        grid->addWidget(new QLabel("Divisions", page), kPresetCount + 3, 0);
        ticks.emplace_back(page, areas.Ticks(group)).AddTo(*grid, kPresetCount + 2, 1, 2);
        tabs->addTab(page, group_names[group]);
    }
    form.column()->addWidget(tabs);
    form.AddFoot("OK", "Cancel");
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    for (int group = 0; group < 3; ++group) areas.Ticks(group) = ticks[static_cast<std::size_t>(group)].steps();
    return {kOk, areas.ToValues()};
}

FormAnswer NMR1D_Form33(const FormRequest& request, QWidget* parent)
{
    GridChoice choice = GridChoice::From(request.values);
    PlainForm form("Setting of Grid", parent);
    auto* shown = new QCheckBox("Show the grid", &form);
    shown->setChecked(choice.shown);
    form.column()->addWidget(shown);
    auto* grid = new QGridLayout;
    QComboBox* steps[] = {StepBox(&form, choice.x_inc_ppm), StepBox(&form, choice.x_inc_hz),
                          StepBox(&form, choice.y_inc)};
    QCheckBox* automatic[] = {new QCheckBox("Auto", &form), new QCheckBox("Auto", &form)};
    automatic[0]->setChecked(choice.x_auto);
    automatic[1]->setChecked(choice.y_auto);
    const char* captions[] = {"X interval (ppm)", "X interval (Hz)", "Y interval"};
    for (int i = 0; i < 3; ++i) {
        grid->addWidget(new QLabel(captions[i], &form), i, 0);
        grid->addWidget(steps[i], i, 1);
    }
    grid->addWidget(automatic[0], 0, 2);
    grid->addWidget(automatic[1], 2, 2);
    auto* width = NumberField(&form, choice.width);
    grid->addWidget(new QLabel("Line width", &form), 3, 0);
    grid->addWidget(width, 3, 1);
    form.column()->addLayout(grid);
    const auto enable = [&] {
        steps[0]->setEnabled(!automatic[0]->isChecked());
        steps[1]->setEnabled(!automatic[0]->isChecked());
        steps[2]->setEnabled(!automatic[1]->isChecked());
    };
    for (QCheckBox* box : automatic) QObject::connect(box, &QCheckBox::toggled, &form, enable);
    enable();
    form.AddFoot("OK", "Cancel");
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    const QLocale c = QLocale::c();
    choice.x_inc_ppm = c.toDouble(steps[0]->currentText());
    choice.x_inc_hz = c.toDouble(steps[1]->currentText());
    choice.y_inc = c.toDouble(steps[2]->currentText());
    choice.x_auto = automatic[0]->isChecked();
    choice.y_auto = automatic[1]->isChecked();
    choice.shown = shown->isChecked();
    choice.width = c.toDouble(width->text());
    return {kOk, choice.ToValues()};
}

} // namespace nmr
