#include "ui/main_window.h"

#include "session/display_commands.h"
#include "session/display_scope.h"
#include "session/read_flow.h"
#include "session/recovery.h"
#include "session/startup.h"
#include "session/text_commands.h"
#include "ui/canvas/letter_face.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/help_sheet.h"
#include "ui/theme.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDropEvent>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QPointer>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace nmr {
namespace {

enum WindowState : std::int32_t { kNormal = 0, kMaximised = 2 };
constexpr int kLeastWidth = 480, kLeastHeight = 320;
constexpr int kNoticeMs = 2500; // that a notice in the status line stands at least

/// Runs a handler later, from the event loop: a drop or a click must end before its dialogs begin.
void Later(QObject* context, std::function<void()> command)
{
    QTimer::singleShot(0, context, std::move(command));
}

} // namespace

NMR1D_Form1::NMR1D_Form1(Session& session, QtAsker& asker) :
    session_(session), g_(session.g), tools_(session), tool_marks_(tools_, g_)
{
    setObjectName(QStringLiteral("NMR1D_Form1"));
    setWindowTitle(QStringLiteral("NMR 1D"));
    setAcceptDrops(true);
    plot_ = new PlotWidget(g_);
    overview_ = new OverviewStrip(*plot_);
    auto* centre = new QWidget(this);
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    BuildPanels(*column);
    column->addWidget(overview_);
    column->addWidget(plot_, 1);
    setCentralWidget(centre);
    BuildMenu();
    BuildToolBar();
    BuildTools();
    BuildLists();
    BuildStatusLine();
    plot_->installEventFilter(this);
    plot_->cursor_moved = [this](const auto& position) { ShowPosition(position); };
    plot_->view_changed = [this] {
        overview_->update();
        RefreshToolBar();
        distance_->Refresh();
    };
    plot_->read_asked = [this] { Later(this, [this] { Run([this] { NMR1D_m11_Command(session_); }); }); };
    plot_->axis_title_asked = [this] { Later(this, [this] { Run([this] { Edit_Axis_Label(session_); }); }); };
    session_.tools = &tools_;
    session_.pictures = &pictures_;
    session_.tool_moved = [this](ToolChange change) { ToolMoved(change); };
    session_.display_changed = [this] { RefreshAll(); };
    session_.set_title = [this](const std::string& title) { setWindowTitle(ToQString(title).trimmed()); };
    session_.notes_of_read = [this](const std::vector<std::string>& notes) {
        if (!notes.empty()) statusBar()->showMessage(ToQString(NotesLine(notes)), 8000);
    };
    // A paint finds out what is missing, and must be over before the line is written.
    SetFontNotice([window = QPointer<QMainWindow>(this)](const std::string& text) {
        if (window) Later(window, [window, text] { window->statusBar()->showMessage(ToQString(text), 12000); });
    });
    asker.SetNoticeLine([this](const QString& text) { statusBar()->showMessage(text, 8000); });
    RestorePlace();
    RefreshAll();
    plot_->setFocus();
}

NMR1D_Form1::~NMR1D_Form1()
{
    session_.tools = nullptr;
    session_.pictures = nullptr;
    session_.tool_moved = {};
    session_.copy_text = {};
}

/// One command at a time: the forms of a command keep the queue running, and with it drops and timers.
void NMR1D_Form1::Run(const std::function<void()>& command)
{
    if (running_) return;
    running_ = true;
    command();
    running_ = false;
    session_.display_changed();
}

void NMR1D_Form1::ReadPath(const QString& path)
{
    Run([&] { static_cast<void>(Read_Path(session_, path.toStdString())); });
}

void NMR1D_Form1::ReadCommandLineFile()
{
    Run([this] {
        Offer_Recovery(session_);
        Read_Command_Line_File(session_);
    });
}

void NMR1D_Form1::RefreshAll()
{
    plot_->Refresh();
    overview_->setVisible(plot_->HasSpectrum());
    RefreshMenu();
    RefreshToolBar();
    RefreshDataLine();
    RefreshPanels();
    for (ListDock* list : lists_) list->Refresh();
    notes_->SetNotes(plot_->HasSpectrum() ? g_.Slots[0].Warnings : std::vector<std::string>());
}

void NMR1D_Form1::CycleUnit()
{
    if (!plot_->HasSpectrum() || !(g_.Slots[0].par.OBFRQ0PPM > 0)) return;
    g_.settings.axis_mode_ppm = (g_.settings.axis_mode_ppm + 1) % 3;
    g_.SettingsChanged = true;
    RefreshAll();
}

void NMR1D_Form1::StepRow(int by)
{
    const int row = std::clamp(g_.CurrentRow + by, 0, std::max(0, g_.Slots[0].RowCount - 1));
    if (row == g_.CurrentRow || !plot_->HasSpectrum() || !DataCombo->isEnabled()) return;
    tools_.SetRow(static_cast<std::int16_t>(row));
}

void NMR1D_Form1::ToggleGrid()
{
    m367_Click(session_);
}

void NMR1D_Form1::SetTheme(std::int32_t theme)
{
    g_.settings.theme = theme;
    g_.SettingsChanged = true;
    ApplyTheme(*qApp, theme);
}

void NMR1D_Form1::RestorePlace()
{
    const Settings& s = g_.settings;
    QRect place(s.window_left, s.window_top, std::max(s.window_width, kLeastWidth),
                std::max(s.window_height, kLeastHeight));
    const QScreen* screen = QGuiApplication::screenAt(place.center());
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    if (screen != nullptr) {
        const QRect room = screen->availableGeometry();
        place.setSize(place.size().boundedTo(room.size()));
        place.moveLeft(std::clamp(place.left(), room.left(), room.right() - place.width() + 1));
        place.moveTop(std::clamp(place.top(), room.top(), room.bottom() - place.height() + 1));
    }
    setGeometry(place);
    if (s.window_state == kMaximised) setWindowState(Qt::WindowMaximized);
}

void NMR1D_Form1::StorePlace()
{
    const QRect place = isMaximized() ? normalGeometry() : geometry();
    Settings& s = g_.settings;
    s.window_state = isMaximized() ? kMaximised : kNormal;
    s.window_left = place.left();
    s.window_top = place.top();
    s.window_width = place.width();
    s.window_height = place.height();
}

void NMR1D_Form1::closeEvent(QCloseEvent* event)
{
    StorePlace();
    if (running_ || !m19_Click(session_)) {
        event->ignore();
        return;
    }
    event->accept();
}

void NMR1D_Form1::dragEnterEvent(QDragEnterEvent* event)
{
    const auto urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.constFirst().isLocalFile() && !running_) event->acceptProposedAction();
}

void NMR1D_Form1::dropEvent(QDropEvent* event)
{
    const auto urls = event->mimeData()->urls();
    if (urls.isEmpty()) return;
    const QString path = urls.constFirst().toLocalFile();
    event->acceptProposedAction();
    Later(this, [this, path] { ReadPath(path); });
}

void NMR1D_Form1::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        tools_.Fix();
        return;
    case Qt::Key_U:
        CycleUnit();
        return;
    case Qt::Key_G:
        if (actions_["m367"]->isEnabled()) ToggleGrid();
        return;
    case Qt::Key_Escape:
        tools_.Cancel();
        return;
    case Qt::Key_PageUp:
        StepRow(-1);
        return;
    case Qt::Key_PageDown:
        StepRow(1);
        return;
    default:
        QMainWindow::keyPressEvent(event);
    }
}

void NMR1D_Form1::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && plot_ != nullptr) {
        plot_->update();
        overview_->update();
        RefreshPanels(); // pressed buttons have a colour of their own
    }
}

bool NMR1D_Form1::eventFilter(QObject* object, QEvent* event)
{
    if (object == plot_ && event->type() == QEvent::Resize) distance_->MoveToCorner();
    if (object == plot_ && TakenByPanel(*event)) return true;
    if (object == plot_ && event->type() == QEvent::Paint && first_paint_done) {
        const auto done = std::exchange(first_paint_done, {});
        Later(this, done);
    }
    return QMainWindow::eventFilter(object, event);
}

/// Keys and turns of the wheel over the plot, before the plot sees them.
bool NMR1D_Form1::TakenByPanel(QEvent& event)
{
    ToolPanel* panel = OpenPanel();
    if (panel == nullptr) return false;
    if (event.type() == QEvent::KeyPress) {
        const auto& key = static_cast<QKeyEvent&>(event);
        return panel->TakeKey(key.key(), key.modifiers());
    }
    if (event.type() != QEvent::Wheel) return false;
    const auto& wheel = static_cast<QWheelEvent&>(event);
    if (!(wheel.modifiers() & (Qt::ShiftModifier | Qt::AltModifier))) return false;
    const int notches = wheel_notches_.Take(wheel);
    return panel->TakeWheel(notches, wheel.modifiers());
}

void NMR1D_Form1::ShowPosition(const std::optional<PlotPosition>& position)
{
    if (!position) {
        position_line_->clear();
        return;
    }
    // A notice hides the place; who moves on has seen it.
    if (notice_clock_.isValid() && notice_clock_.hasExpired(kNoticeMs)) statusBar()->clearMessage();
    QString text = QStringLiteral("%1 ppm").arg(position->ppm, 0, 'f', 4);
    if (position->has_hz) text += QStringLiteral("     %1 Hz").arg(position->hz, 0, 'f', 2);
    if (position->on_data) text += QStringLiteral("     Intensity %1").arg(position->intensity, 0, 'g', 5);
    if (position->tool_text.empty()) return position_line_->setText(text);
    position_line_->setText(text + QStringLiteral("     ") + ToQString(position->tool_text));
}

void NMR1D_Form1::RefreshDataLine()
{
    if (!plot_->HasSpectrum()) {
        data_line_->clear();
        return;
    }
    const ParamBlock& par = g_.Slots[0].par;
    QStringList parts;
    if (!par.OBNUC.empty()) parts << ToQString(par.OBNUC);
    if (par.OBFRQ0PPM > 0) parts << QStringLiteral("%1 MHz").arg(par.OBFRQ0PPM, 0, 'f', 2);
    if (!par.SLVNT.empty()) parts << ToQString(par.SLVNT);
    parts << QStringLiteral("%L1 points").arg(par.POINT);
    if (g_.AbsoluteMode != 0) parts << QStringLiteral("Absolute");
    data_line_->setText(parts.join(QStringLiteral("   \u00b7   ")));
}

/// What works in the plot beside the zoom.
void NMR1D_Form1::BuildTools()
{
    distance_ = new DistancePanel(g_, *plot_);
    plot_->AddTool(*distance_);
    plot_->AddTool(tool_marks_);
}

/// The lists stand beside the spectrum, one behind the other.
void NMR1D_Form1::BuildLists()
{
    lists_ = {new ListDock(ListDock::Kind::peaks, session_, tools_, *plot_, this),
              new ListDock(ListDock::Kind::integrals, session_, tools_, *plot_, this)};
    for (ListDock* list : lists_) {
        addDockWidget(Qt::RightDockWidgetArea, list);
        list->hide();
    }
    tabifyDockWidget(lists_[0], lists_[1]);
    session_.copy_text = CopyToClipboard;
}

void NMR1D_Form1::BuildPanels(QVBoxLayout& column)
{
    panels_ = {new PhaseToolbar(tools_, session_),    new ReferenceToolbar(tools_, session_),
               new BaselineToolbar(tools_, session_), new PeakToolbar(tools_, session_),
               new IntegralToolbar(tools_, session_), new ColorToolbar(tools_, session_)};
    for (ToolPanel* panel : panels_) column.addWidget(panel);
}

ToolPanel* NMR1D_Form1::OpenPanel() const
{
    const auto panel = std::ranges::find(panels_, tools_.open(), &ToolPanel::tool);
    return panel == panels_.end() ? nullptr : *panel;
}

void NMR1D_Form1::RefreshPanels()
{
    tool_marks_.Refresh();
    ToolPanel* open = OpenPanel();
    for (ToolPanel* panel : panels_)
        if (panel != open) panel->hide();
    if (open == nullptr) return;
    open->Refresh();
    open->show();
}

/// At each step of a drag, so nothing but what it can have changed.
void NMR1D_Form1::ToolMoved(ToolChange change)
{
    tool_marks_.Refresh();
    if (ToolPanel* open = OpenPanel()) open->Refresh();
    if (change == ToolChange::points) {
        plot_->PointsChanged();
        overview_->update();
    }
    plot_->update();
}

void NMR1D_Form1::BuildStatusLine()
{
    position_line_ = new QLabel(this);
    position_line_->setObjectName(QStringLiteral("Position"));
    position_line_->setContentsMargins(12, 0, 0, 0);
    data_line_ = new QLabel(this);
    data_line_->setObjectName(QStringLiteral("Data"));
    data_line_->setContentsMargins(0, 0, 8, 0);
    statusBar()->addWidget(position_line_, 1);
    notes_ = new NotesButton(this);
    statusBar()->addPermanentWidget(notes_);
    statusBar()->addPermanentWidget(data_line_);
    statusBar()->setSizeGripEnabled(false);
    connect(statusBar(), &QStatusBar::messageChanged, this,
            [this](const QString& text) { text.isEmpty() ? notice_clock_.invalidate() : notice_clock_.start(); });
}

} // namespace nmr
