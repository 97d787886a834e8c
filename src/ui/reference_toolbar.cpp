// The bar of the reference.

#include "core/numbers.h"
#include "session/instrument_table.h"
#include "session/reference_shifts.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/form_fields.h"
#include "ui/tool_panels.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>

namespace nmr {
namespace {

QString Ppm(double ppm)
{
    return QStringLiteral("%1 ppm").arg(ppm, 0, 'f', 4);
}

QString Caption(const ReferenceShift& row)
{
    return QStringLiteral("%1   %2   %3").arg(ToQString(row.compound), ToQString(row.signal)).arg(row.ppm, 0, 'f', 2);
}

} // namespace

ReferenceToolbar::ReferenceToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::reference, "ReferenceToolbar", QStringLiteral("Set Reference"))
{
    BeginGroup();
    line_ = AddLabel({});
    line_->setObjectName(QStringLiteral("ReferenceLine"));
    line_->setMinimumWidth(line_->fontMetrics().horizontalAdvance(QStringLiteral("Only noise at -100.0000 ppm")));
    BeginGroup();
    shift_ = AddValue("ReferenceShift", QStringLiteral("Shift"), QStringLiteral("The shift that this line is to have"));
    shift_->shown = [this] {
        return tools_.has_reference_line() ? FormatNumber("####0.00##", tools_.reference_line()) : std::string();
    };
    shift_->typed = [this](double ppm) { Take(ppm); };
    AddLabel(QStringLiteral("ppm"));
    shifts_ = new QComboBox(this);
    shifts_->setObjectName(QStringLiteral("ReferenceShifts"));
    shifts_->setToolTip(QStringLiteral("Solvents and standards of this nucleus; those of the data's solvent first"));
    shifts_->setFocusPolicy(Qt::NoFocus);
    shifts_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(shifts_, &QComboBox::activated, this, [this](int index) { Take(shifts_->itemData(index).toDouble()); });
    AddWidget(shifts_);
    BeginGroup();
    auto* update = new QCheckBox(QStringLiteral("Into the table of instruments"), this);
    update->setObjectName(QStringLiteral("UpdateInstrument"));
    update->setToolTip(QStringLiteral("With Fix, the next data of this instrument get their axis from this reference"));
    update->setFocusPolicy(Qt::NoFocus);
    connect(update, &QCheckBox::toggled, this, [this](bool on) { tools_.SetUpdateInstrument(on); });
    AddWidget(update);
    AddButton("InstrumentTable", QStringLiteral("Table..."),
              QStringLiteral("Arrange Instrumental Data for Reference Setting"), [this] { m44_Click(session_); });
    AddEnd("ReferenceFix", QStringLiteral("Fix"), QStringLiteral("Keeps the reference (Enter)"), "ReferenceCancel",
           QStringLiteral("Cancel"), QStringLiteral("Puts the axis back (Esc)"));
}

void ReferenceToolbar::Take(double ppm)
{
    if (tools_.has_reference_line()) tools_.SetReference(tools_.reference_line(), ppm);
    Refresh();
}

void ReferenceToolbar::FillShifts()
{
    const ParamBlock& par = g_.Slots[0].par;
    QStringList captions;
    const auto rows = ReferenceShiftsFor(par.OBNUC, par.SLVNT);
    for (const ReferenceShift& row : rows) captions << Caption(row);
    QStringList shown;
    for (int i = 0; i < shifts_->count(); ++i) shown << shifts_->itemText(i);
    if (shown == captions) return;
    shifts_->clear();
    for (const ReferenceShift& row : rows) shifts_->addItem(Caption(row), row.ppm);
    shifts_->setPlaceholderText(QStringLiteral("Solvent or standard"));
    shifts_->setCurrentIndex(-1);
}

void ReferenceToolbar::Refresh()
{
    ToolPanel::Refresh();
    const bool some = tools_.has_reference_line();
    const QString what = tools_.reference_in_noise() ? QStringLiteral("Only noise at ") : QStringLiteral("Line at ");
    line_->setText(some ? what + Ppm(tools_.reference_line()) : QStringLiteral("Click at a line"));
    shift_->setEnabled(some);
    shift_->Show();
    FillShifts();
    if (!some) shifts_->setCurrentIndex(-1);
    shifts_->setEnabled(some && shifts_->count() > 0);
}

} // namespace nmr
