#include "ui/fft_dialog.h"

#include "core/numbers.h"
#include "fid/window.h"
#include "session/menu.h"
#include "ui/fft_controls.h"
#include "ui/form_parts.h"
#include "ui/help_sheet.h"
#include "ui/tool_panels.h"
#include "ui/window_dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr int kColumnWidth = 300;
constexpr int kPhase0Tenths = 3600, kPhase1Tenths = 18000;

QLabel* Heading(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

QString GroupedNumber(std::int32_t number)
{
    return QLocale(QLocale::English).toString(number);
}

} // namespace

FftDialog::FftDialog(FftForm& logic, QWidget* parent) : QDialog(parent), logic_(logic)
{
    setObjectName("NMR1D_Form11");
    setWindowTitle("FFT & Phase");
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(10, 10, 12, 10);
    row->setSpacing(12);
    row->addWidget(MakePlots(), 1);
    controls_ = MakeColumn();
    row->addWidget(controls_);
    const QSize room = screen()->availableSize();
    resize(std::min(1180, room.width() * 95 / 100), std::min(780, room.height() * 90 / 100));
    preview_->setFocus(); // its keys work at once; those that it leaves are the form's
    TransformChanged();
}

QWidget* FftDialog::MakePlots()
{
    splitter_ = new QSplitter(Qt::Vertical, this);
    splitter_->setChildrenCollapsible(false);
    fid_ = new FidPanel(logic_, splitter_);
    preview_ = new PreviewPanel(logic_, splitter_);
    for (QWidget* panel : {static_cast<QWidget*>(fid_), static_cast<QWidget*>(preview_)}) {
        panel->setMinimumSize(240, 100);
        splitter_->addWidget(panel);
    }
    connect(splitter_, &QSplitter::splitterMoved, this, [this] { KeepRatio(); });
    preview_->mark_moved = [this] { PhaseChanged(); };
    return splitter_;
}

void FftDialog::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    const double upper = std::clamp(logic_.block().settings.fft_gamen_ratio, 0.05, 0.95);
    const int room = splitter_->height() - splitter_->handleWidth();
    const int above = static_cast<int>(std::lround(room * upper));
    splitter_->setSizes({above, room - above});
}

void FftDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F1)
        ShowHelpSheet(this);
    else
        QDialog::keyPressEvent(event);
}

void FftDialog::KeepRatio()
{
    const QList<int> sizes = splitter_->sizes();
    const int sum = sizes[0] + sizes[1];
    if (sum <= 0) return;
    GlobalBlock& g = logic_.block();
    g.settings.fft_gamen_ratio = std::clamp(static_cast<double>(sizes[0]) / sum, 0.05, 0.95);
    g.SettingsChanged = true;
}

// ---- controls

QPushButton* FftDialog::MakeButton(const char* name, const QString& caption, std::function<void()> action)
{
    auto* button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAutoDefault(false); // Enter is "Complete" wherever the focus is
    connect(button, &QPushButton::clicked, this, std::move(action));
    return button;
}

QWidget* FftDialog::MakeColumn()
{
    auto* widget = new QWidget(this);
    widget->setFixedWidth(kColumnWidth);
    auto* column = new QVBoxLayout(widget);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    AddWindow(*column);
    AddZeroFill(*column);
    AddShift(*column);
    AddRows(*column);
    AddPhase(*column);
    AddStart(*column);
    column->addStretch(1);
    AddUser(*column);
    AddFoot(*column);
    return widget;
}

void FftDialog::AddWindow(QBoxLayout& column)
{
    window_ = new QComboBox(this);
    window_->setObjectName("Combo1");
    for (const WindowRow& row : WindowRows()) window_->addItem(Qs(row.caption), static_cast<int>(row.kind));
    connect(window_, &QComboBox::activated, this, [this](int index) {
        // What makes a curve impossible has been reported.
        static_cast<void>(logic_.SetWindowKind(static_cast<WindowKind>(window_->itemData(index).toInt())));
        TransformChanged();
    });
    column.addWidget(Heading("Window", this));
    auto* row = new QHBoxLayout;
    row->addWidget(window_, 1);
    row->addWidget(MakeButton("SetWindow", "Set...", [this] { OpenWindowDialog(); }));
    column.addLayout(row);
    column.addSpacing(8);
}

void FftDialog::AddZeroFill(QBoxLayout& column)
{
    points_ = new QLabel(this);
    points_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    double_ = MakeButton("Command1", "ZeroFill", [this] {
        static_cast<void>(logic_.Command1());
        TransformChanged();
    });
    double_->setToolTip("Doubles the number of points");
    auto* none = MakeButton("Command4", "Non ZeroFill", [this] {
        static_cast<void>(logic_.Command4());
        TransformChanged();
    });
    none->setToolTip("Goes back to the points of the FID");
    auto* head = new QHBoxLayout;
    head->addWidget(Heading("Zero fill", this));
    head->addWidget(points_, 1);
    column.addLayout(head);
    auto* row = new QHBoxLayout;
    row->addWidget(double_, 1);
    row->addWidget(none, 1);
    column.addLayout(row);
    column.addSpacing(8);
}

void FftDialog::AddShift(QBoxLayout& column)
{
    shift_ = new StepField(this, 84);
    ValueEdit* edit = shift_->edit();
    edit->setObjectName("FIDShift");
    edit->setToolTip("Points cut off at the start of the FID; below 0, zeros put before it");
    edit->shown = [this] { return std::to_string(par().FIDShift); };
    edit->typed = [this](double points) {
        logic_.SetShift(RoundHalfEven(points));
        TransformChanged();
    };
    edit->stepped = [this](int steps) {
        logic_.SetShift(par().FIDShift + steps);
        TransformChanged();
    };
    shift_->up()->setObjectName("FIDShiftUp");
    shift_->down()->setObjectName("FIDShiftDown");
    auto* row = new QHBoxLayout;
    row->addWidget(Heading("FID shift", this), 1);
    row->addWidget(shift_);
    column.addLayout(row);
    column.addSpacing(8);
}

void FftDialog::AddRows(QBoxLayout& column)
{
    const DataSet& set = logic_.block().Slots[0];
    if (set.RowCount < 2) return;
    row_ = new QComboBox(this);
    row_->setObjectName("Row");
    for (int row = 0; row < set.RowCount; ++row) row_->addItem(Qs(RowCaption(set, row)));
    connect(row_, &QComboBox::activated, this, [this](int index) {
        logic_.SetRow(static_cast<std::int16_t>(index));
        TransformChanged();
    });
    auto* row = new QHBoxLayout;
    row->addWidget(Heading("Data No.", this), 1);
    row->addWidget(row_);
    column.addLayout(row);
    column.addSpacing(8);
}

void FftDialog::AddPhase(QBoxLayout& column)
{
    const GlobalBlock& g = logic_.block();
    const auto then_show = [this](auto change) {
        return [this, change](double degrees) {
            change(degrees);
            PhaseChanged();
        };
    };
    const PhaseControl::Order orders[] = {
        {"Zero order", "Text8", "Phase0ScrollBar", "Label1", kPhase0Tenths,
         [&g] { return static_cast<double>(g.Phase0Deg); }, then_show([this](double d) { logic_.SetPhase0(d); }),
         then_show([this](double d) { logic_.AddPhase0(d); })},
        {"First order", "Text9", "Phase1ScrollBar", "Label13", kPhase1Tenths,
         [&g] { return static_cast<double>(g.Phase1Deg); }, then_show([this](double d) { logic_.SetPhase1(d); }),
         then_show([this](double d) { logic_.AddPhase1(d); })},
    };
    column.addWidget(Heading("Phase", this));
    for (const PhaseControl::Order& order : orders) {
        phases_.push_back(new PhaseControl(order, this));
        column.addWidget(phases_.back());
        column.addSpacing(4);
    }
    AddAutoPhase(column);
    auto* imaginary = new QCheckBox("Show imaginary part", this);
    imaginary->setObjectName("ShowImaginary");
    connect(imaginary, &QCheckBox::toggled, this, [this](bool on) {
        preview_->show_imaginary = on;
        preview_->Refresh();
    });
    column.addWidget(imaginary);
}

/// The automatic phases by button, the quality of the robust one, and which of them follows each transform.
void FftDialog::AddAutoPhase(QBoxLayout& column)
{
    struct Way {
        const char *name, *caption, *tip;
        void (FftForm::*run)();
    };
    constexpr Way kWays[] = {
        {"AutoRobust", "Auto (robust)", "Tries several criteria and takes the best", &FftForm::AutoRobust},
        {"Command8", "Auto", "A circle through the strongest line", &FftForm::Command8},
        {"Command7", "Semi Auto", "The same at the marks PP and P2", &FftForm::Command7}};
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    for (const Way& way : kWays) {
        QPushButton* button = MakeButton(way.name, way.caption, [this, run = way.run] {
            (logic_.*run)();
            PhaseChanged();
        });
        button->setToolTip(way.tip);
        row->addWidget(button, way.run == &FftForm::AutoRobust ? 4 : 3);
    }
    column.addLayout(row);
    quality_ = new QLabel(this);
    quality_->setObjectName("PhaseQuality");
    quality_->setToolTip("How well the robust phase fits, 0 to 100 %");
    quality_->setAlignment(Qt::AlignRight);
    auto_phase_ = new QCheckBox("Auto Phase correction", this);
    auto_phase_->setObjectName("Check2");
    auto_phase_->setToolTip("Phases anew after each change of window, shift or zero fill");
    connect(auto_phase_, &QCheckBox::toggled, this, [this](bool on) { logic_.SetAutoPhase(on); });
    auto* line = new QHBoxLayout;
    line->addWidget(auto_phase_, 1);
    line->addWidget(quality_);
    column.addLayout(line);
    auto* robust = new QCheckBox("with the robust phase", this);
    robust->setObjectName("RobustPhase");
    robust->setToolTip("Which automatic phase follows a transform; kept for the next data");
    robust->setChecked(logic_.robust());
    connect(robust, &QCheckBox::toggled, this, [this](bool on) { logic_.SetRobust(on); });
    auto* indented = new QHBoxLayout;
    indented->addSpacing(kExplanationIndent);
    indented->addWidget(robust);
    column.addLayout(indented);
}

void FftDialog::AddStart(QBoxLayout& column)
{
    vendor_start_ = new QCheckBox("Start as the instrument did", this);
    vendor_start_->setObjectName("VendorStart");
    vendor_start_->setToolTip(logic_.has_vendor_values()
                                  ? "Size, window, shift and phase as the operator left them at the instrument"
                                  : "These data tell nothing of their processing; the choice counts for the next");
    vendor_start_->setChecked(logic_.vendor_start());
    connect(vendor_start_, &QCheckBox::toggled, this, [this](bool on) {
        // What makes a curve impossible has been reported.
        static_cast<void>(logic_.SetVendorStart(on));
        TransformChanged();
    });
    column.addWidget(vendor_start_);
}

/// The user box: who stands in the history and in the parameters of this transform.
void FftDialog::AddUser(QBoxLayout& column)
{
    const GlobalBlock& g = logic_.block();
    auto* user = new QComboBox(this);
    user->setObjectName("FFTUser");
    user->setEditable(true);
    user->setInsertPolicy(QComboBox::NoInsert);
    user->setToolTip("Stands in the history of the data; ETC, Add/Delete Operator Name changes the list");
    user->addItem(Qs(g.CurrentUser));
    for (const std::string& name : g.Operators)
        if (name != g.CurrentUser) user->addItem(Qs(name));
    user->setCurrentText(Qs(logic_.user().empty() ? g.CurrentUser : logic_.user()));
    connect(user, &QComboBox::currentTextChanged, this,
            [this](const QString& name) { logic_.SetUser(name.trimmed().toStdString()); });
    auto* row = new QHBoxLayout;
    row->addWidget(Heading("User", this));
    row->addWidget(user, 1);
    column.addLayout(row);
    column.addSpacing(4);
}

void FftDialog::AddFoot(QBoxLayout& column)
{
    progress_ = new QProgressBar(this);
    progress_->setRange(0, 100);
    progress_->hide();
    auto* complete = MakeButton("Command3", "Complete", [this] { accept(); });
    complete->setDefault(true);
    complete->setMinimumHeight(34);
    auto* close = MakeButton("m19", "Close (Discard Present Data)", [this] { reject(); });
    column.addWidget(progress_);
    column.addWidget(complete);
    column.addWidget(close);
}

// ---- what happens

void FftDialog::OpenWindowDialog()
{
    WindowDialog dialog(
        logic_, [this] { TransformChanged(); }, this);
    dialog.adjustSize();
    // Over the controls, so that both plots stay in sight.
    const QPoint corner = mapToGlobal(QPoint(width() - dialog.width() - 8, height() - dialog.height() - 8));
    dialog.move(corner);
    dialog.exec();
}

void FftDialog::TransformChanged()
{
    fid_->Refresh();
    PhaseChanged();
}

void FftDialog::PhaseChanged()
{
    preview_->Refresh();
    ShowState();
}

void FftDialog::ShowState()
{
    const DataSet& set = logic_.block().Slots[0];
    window_->setCurrentIndex(window_->findData(static_cast<int>(set.par.WindowFunc)));
    points_->setText(GroupedNumber(set.par.POINT) + " points");
    const std::int64_t doubled = std::int64_t{set.par.FIDPointsRaw} * std::max(set.ProcMark1, 1) * 2;
    double_->setEnabled(logic_.can_transform_again() && doubled <= kMaxPoints);
    shift_->edit()->Show();
    if (row_ != nullptr) row_->setCurrentIndex(logic_.block().CurrentRow);
    for (PhaseControl* phase : phases_) phase->Show();
    quality_->setText(QualityText(logic_.quality()));
    const QSignalBlocker quiet(auto_phase_);
    auto_phase_->setChecked(logic_.auto_phase());
}

void FftDialog::accept()
{
    const bool several = logic_.block().Slots[0].RowCount > 1;
    progress_->setValue(0);
    progress_->setVisible(several);
    controls_->setEnabled(false);
    splitter_->setUpdatesEnabled(false); // the rows that the plots draw from are in the making
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Status done = logic_.Command3([&](int percent) {
        if (!several) return;
        progress_->setValue(percent);
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    });
    QApplication::restoreOverrideCursor();
    controls_->setEnabled(true);
    splitter_->setUpdatesEnabled(true);
    progress_->hide();
    if (done)
        QDialog::accept();
    else
        TransformChanged();
}

void FftDialog::reject()
{
    if (logic_.Close()) QDialog::reject();
}

std::string ShowFftForm(FftForm& logic, QWidget* parent)
{
    FftDialog dialog(logic, parent);
    dialog.exec();
    return logic.block().DialogResult;
}

} // namespace nmr
