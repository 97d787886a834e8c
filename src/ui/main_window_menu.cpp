// Menu and tool bar of the main window.

#include "session/display_scope.h"
#include "session/read_flow.h"
#include "session/tool_commands.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/help_sheet.h"
#include "ui/main_window.h"
#include "ui/theme.h"

#include <QActionGroup>
#include <QApplication>
#include <QComboBox>
#include <QDoubleValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QToolBar>

#include <algorithm>

namespace nmr {
namespace {

constexpr std::string_view kUnits[] = {"ppm", "Hz", "kHz"};
constexpr std::string_view kThemes[] = {"As the Desktop", "Light", "Dark"};

/// Pushes what follows in the tool bar to its end.
QWidget* Gap(QWidget* parent)
{
    auto* gap = new QWidget(parent);
    gap->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    return gap;
}

} // namespace

void NMR1D_Form1::BuildMenu()
{
    for (const MenuRow& row : MenuRows()) {
        if (row.parent.empty()) {
            menus_[std::string(row.control)] = menuBar()->addMenu(QLatin1Char('&') + ToQString(row.caption));
            continue;
        }
        QMenu& menu = *menus_.find(row.parent)->second;
        if (row.separator_before) menu.addSeparator();
        actions_[std::string(row.control)] = AddEntry(menu, row);
    }
    AddOwnEntries();
}

/// A submenu, an entry with its handler, or an entry that the window itself carries out.
QAction* NMR1D_Form1::AddEntry(QMenu& menu, const MenuRow& row)
{
    const bool has_entries =
        std::ranges::any_of(MenuRows(), [&](const MenuRow& other) { return other.parent == row.control; });
    if (has_entries) {
        QMenu* sub = menu.addMenu(ToQString(row.caption));
        menus_[std::string(row.control)] = sub;
        return sub->menuAction();
    }
    QAction* action = menu.addAction(ToQString(row.caption));
    if (row.numbered != nullptr) numbered_.push_back({&menu, &row, {}});
    action->setCheckable(row.checkable);
    if (!row.shortcut.empty()) action->setShortcut(QKeySequence(ToQString(row.shortcut)));
    if (row.control == kExitControl) connect(action, &QAction::triggered, this, &QWidget::close);
    if (row.control == kRecentControl) {
        action->setVisible(false);
        recent_place_ = action;
    }
    if (row.handler != nullptr)
        connect(action, &QAction::triggered, this, [this, &row] {
            Run([&] {
                if (Leaves_Tool_Open(row) || Close_Tool(session_)) row.handler(session_);
            });
        });
    return action;
}

/// What belongs to this window alone and changes no data.
void NMR1D_Form1::AddOwnEntries()
{
    if (const auto display = menus_.find("m3"); display != menus_.end()) {
        display->second->addSeparator();
        QMenu* theme = display->second->addMenu(QStringLiteral("Light or Dark"));
        auto* group = new QActionGroup(theme);
        for (int i = 0; i < 3; ++i) {
            QAction* action = theme->addAction(ToQString(kThemes[i]));
            action->setCheckable(true);
            group->addAction(action);
            connect(action, &QAction::triggered, this, [this, i] { SetTheme(i); });
        }
        connect(theme, &QMenu::aboutToShow, this,
                [this, group] { group->actions().at(std::clamp(g_.settings.theme, 0, 2))->setChecked(true); });
    }
    if (const auto etc = menus_.find("m40"); etc != menus_.end()) {
        etc->second->addSeparator();
        QAction* help = etc->second->addAction(QStringLiteral("Mouse and Keys"));
        help->setShortcut(QKeySequence(Qt::Key_F1));
        connect(help, &QAction::triggered, this, [this] { ShowHelpSheet(this); });
    }
}

void NMR1D_Form1::RefreshMenu()
{
    const MenuState state = SetMenuActivateForm1(g_);
    for (const auto& [control, action] : actions_) {
        const auto item = state.find(control);
        if (item == state.end() || action == recent_place_) continue;
        if (action->text().isEmpty()) { // stands for a numbered list
            action->setVisible(false);
            continue;
        }
        action->setEnabled(item->second.enabled);
        action->setVisible(item->second.visible);
        if (action->isCheckable()) action->setChecked(item->second.checked);
        if (!item->second.caption.empty()) action->setText(ToQString(item->second.caption));
    }
    for (const ListDock* list : lists_) actions_[list->objectName().toStdString()]->setChecked(!list->isHidden());
    RefreshNumbered(state);
    RefreshRecentFiles(state);
    RefreshRowSelector(state);
}

void NMR1D_Form1::RefreshNumbered(const MenuState& state)
{
    for (auto& [menu, row, entries] : numbered_) {
        qDeleteAll(entries);
        entries.clear();
        for (int number = 1; number < kSlotCount; ++number) {
            const auto item = state.find(NumberedItem(row->control, number));
            if (item == state.end()) continue;
            QAction* action = menu->addAction(ToQString(item->second.caption));
            const auto slot = static_cast<std::int16_t>(number - 1);
            // The action goes when the list is rebuilt, so the command waits until it has done its work.
            connect(
                action, &QAction::triggered, this,
                [this, save = row->numbered, slot] {
                    Run([&] {
                        if (Close_Tool(session_)) save(session_, slot);
                    });
                },
                Qt::QueuedConnection);
            entries << action;
        }
    }
}

void NMR1D_Form1::RefreshRecentFiles(const MenuState& state)
{
    if (recent_place_ == nullptr) return;
    qDeleteAll(recent_actions_);
    recent_actions_.clear();
    const auto item = state.find(kRecentControl);
    if (item == state.end() || !item->second.visible) return;
    auto* menu = menus_.find("NMR_m1")->second;
    for (std::size_t i = 0; i < g_.RecentFiles.size(); ++i) {
        auto* action = new QAction(ToQString(RecentCaption(g_, i)), menu);
        action->setToolTip(ToQString(g_.RecentFiles[i]));
        action->setEnabled(item->second.enabled);
        menu->insertAction(recent_place_, action);
        // The action goes when the list is rebuilt, so the command waits until it has done its work.
        connect(
            action, &QAction::triggered, this, [this, i] { Run([&] { RecentFile_Click(session_, i); }); },
            Qt::QueuedConnection);
        recent_actions_ << action;
    }
}

void NMR1D_Form1::RefreshRowSelector(const MenuState& state)
{
    const QSignalBlocker quiet(DataCombo);
    QStringList rows;
    for (int row = 1;; ++row) {
        const auto item = state.find(NumberedItem("DataCombo", row));
        if (item == state.end()) break;
        rows << ToQString(item->second.caption);
    }
    QStringList shown;
    for (int i = 0; i < DataCombo->count(); ++i) shown << DataCombo->itemText(i);
    if (rows != shown) {
        DataCombo->clear();
        DataCombo->addItems(rows);
    }
    DataCombo->setCurrentIndex(g_.CurrentRow);
    const auto& combo = state.at("DataCombo");
    DataCombo->setEnabled(combo.enabled);
    for (QAction* action : row_actions_) action->setVisible(combo.visible);
}

QAction* NMR1D_Form1::AddButton(Glyph glyph, const QString& name, const QString& tip, const std::function<void()>& step)
{
    QAction* action = display_bar_->addAction(GlyphIcon(glyph), tip);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, [this, step] {
        step();
        plot_->setFocus();
    });
    return action;
}

void NMR1D_Form1::BuildToolBar()
{
    display_bar_ = addToolBar(QStringLiteral("Display"));
    display_bar_->setMovable(false);
    display_bar_->setContextMenuPolicy(Qt::PreventContextMenu);
    display_bar_->setIconSize(QSize(20, 20));
    AddButton(Glyph::open, QStringLiteral("Read"), QStringLiteral("Read (Ctrl+O)"),
              [this] { Run([this] { NMR1D_m11_Command(session_); }); });
    display_bar_->addSeparator();
    AddHeight();
    display_bar_->addSeparator();
    data_actions_ << AddButton(Glyph::narrower, QStringLiteral("Wider"), QStringLiteral("Show more (Ctrl+\u2212)"),
                               [this] { plot_->ScaleWidth(kMagnificationStep); });
    data_actions_ << AddButton(Glyph::wider, QStringLiteral("Narrower"), QStringLiteral("Show less (Ctrl++)"),
                               [this] { plot_->ScaleWidth(1 / kMagnificationStep); });
    data_actions_ << AddButton(Glyph::back, QStringLiteral("Back"), QStringLiteral("Back one zoom (Backspace)"),
                               [this] { plot_->ZoomBack(); });
    data_actions_ << AddButton(Glyph::all, QStringLiteral("All"), QStringLiteral("Whole spectrum (Home)"),
                               [this] { plot_->ShowAll(); });
    display_bar_->addSeparator();
    AddUnit();
    grid_action_ = AddButton(Glyph::grid, QStringLiteral("Grid"), QStringLiteral("Grid (G)"), [this] { ToggleGrid(); });
    grid_action_->setCheckable(true);
    data_actions_ << grid_action_;
    display_bar_->addSeparator();
    data_actions_ << AddButton(Glyph::parameters, QStringLiteral("BasicCommand1"),
                               QStringLiteral("Show Parameter (Ctrl+I)"),
                               [this] { actions_["BasicCommand1"]->trigger(); });
    AddRowSelector();
}

/// BasicYMag_Down, BasicText1, BasicYMag_Up.
void NMR1D_Form1::AddHeight()
{
    data_actions_ << AddButton(Glyph::lower, QStringLiteral("BasicYMag_Down"), QStringLiteral("Lower (Down)"),
                               [this] { plot_->ScaleHeight(1 / kMagnificationStep); });
    BasicText1 = new QLineEdit(this);
    BasicText1->setObjectName(QStringLiteral("BasicText1"));
    BasicText1->setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("000000.0")) + 16);
    BasicText1->setAlignment(Qt::AlignHCenter);
    BasicText1->setToolTip(QStringLiteral("Magnification"));
    auto* numbers = new QDoubleValidator(1e-2, 1e7, 6, BasicText1);
    numbers->setLocale(QLocale::c());
    BasicText1->setValidator(numbers);
    connect(BasicText1, &QLineEdit::editingFinished, this, [this] { TakeMagnification(); });
    display_bar_->addWidget(BasicText1);
    data_actions_ << AddButton(Glyph::taller, QStringLiteral("BasicYMag_Up"), QStringLiteral("Taller (Up)"),
                               [this] { plot_->ScaleHeight(kMagnificationStep); });
}

void NMR1D_Form1::AddUnit()
{
    unit_ = new QComboBox(this);
    unit_->setObjectName(QStringLiteral("Unit"));
    for (const auto unit : kUnits) unit_->addItem(ToQString(unit));
    unit_->setToolTip(QStringLiteral("Unit of the axis (U)"));
    connect(unit_, &QComboBox::activated, this, [this](int index) {
        g_.settings.axis_mode_ppm = index;
        g_.SettingsChanged = true;
        RefreshAll();
        plot_->setFocus();
    });
    display_bar_->addWidget(unit_);
}

void NMR1D_Form1::AddRowSelector()
{
    display_bar_->addWidget(Gap(display_bar_));
    Label6 = new QLabel(QStringLiteral("Row "), this);
    DataCombo = new QComboBox(this);
    DataCombo->setObjectName(QStringLiteral("DataCombo"));
    DataCombo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    DataCombo->setToolTip(QStringLiteral("Row of the array (Page Up, Page Down)"));
    connect(DataCombo, &QComboBox::activated, this, [this](int index) {
        StepRow(index - g_.CurrentRow);
        plot_->setFocus();
    });
    row_actions_ << display_bar_->addWidget(Label6) << display_bar_->addWidget(DataCombo)
                 << AddButton(Glyph::previous, QStringLiteral("RowUp"), QStringLiteral("Previous row (Page Up)"),
                              [this] { StepRow(-1); })
                 << AddButton(Glyph::next, QStringLiteral("RowDown"), QStringLiteral("Next row (Page Down)"),
                              [this] { StepRow(1); });
}

void NMR1D_Form1::RefreshToolBar()
{
    const bool some = plot_->HasSpectrum();
    for (QAction* action : data_actions_) action->setEnabled(some);
    BasicText1->setEnabled(some);
    if (!BasicText1->hasFocus() || !some)
        BasicText1->setText(some ? QString::number(plot_->magnification(), 'g', 3) : QString());
    unit_->setEnabled(some && g_.Slots[0].par.OBFRQ0PPM > 0);
    unit_->setCurrentIndex(unit_->isEnabled() ? std::clamp(g_.settings.axis_mode_ppm, 0, 2) : 0);
    grid_action_->setChecked(g_.settings.display_grid != 0);
}

void NMR1D_Form1::TakeMagnification()
{
    bool number = false;
    const double wanted = QLocale::c().toDouble(BasicText1->text(), &number);
    plot_->setFocus();
    if (number && wanted > 0 && plot_->HasSpectrum()) plot_->ScaleHeight(wanted / plot_->magnification());
    RefreshToolBar();
}

} // namespace nmr
