// Forms for what is shown: display scope, default areas, grid.

#include "session/display_scope.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_parts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QPushButton>
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
    for (std::string_view step : StepList()) box->addItem(Qs(step));
    box->setCurrentText(QString::number(value, 'g', 7));
    return box;
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
    return {edit_areas ? kEditAreas : kOk, scope.ToValues()};
}

FormAnswer NMR1D_Form34(const FormRequest& request, QWidget* parent)
{
    DefaultAreas areas(request.values);
    PlainForm form("Set Default Display Area", parent);
    auto* tabs = new QTabWidget(&form);
    const char* group_names[] = {"1H", "13C", "Other"};
    for (int group = 0; group < 3; ++group) {
        auto* page = new QWidget;
        auto* grid = new QGridLayout(page);
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
        tabs->addTab(page, group_names[group]);
    }
    form.column()->addWidget(tabs);
    form.AddFoot("OK", "Cancel");
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
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
