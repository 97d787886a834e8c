#pragma once
// NMR1D_Form1: the main window.

#include "session/menu.h"
#include "session/session.h"
#include "ui/asker_qt.h"
#include "ui/distance_panel.h"
#include "ui/form_fields.h"
#include "ui/list_dock.h"
#include "ui/notes_list.h"
#include "ui/picture_devices.h"
#include "ui/plot_widget.h"
#include "ui/theme.h"
#include "ui/tool_overlay.h"
#include "ui/tool_panels.h"

#include <QElapsedTimer>
#include <QMainWindow>

#include <functional>
#include <map>
#include <optional>
#include <string>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QToolBar;
class QVBoxLayout;

namespace nmr {

class NMR1D_Form1 : public QMainWindow {
public:
    /// Takes over the hooks of the session: display_changed, set_title, the tools.
    NMR1D_Form1(Session& session, QtAsker& asker);
    ~NMR1D_Form1() override;

    /// Data or state changed: menu, tool bar, plot and status line anew.
    void RefreshAll();
    void ReadPath(const QString& path);
    /// The file that the run was started with.
    void ReadCommandLineFile();
    PlotWidget& plot() { return *plot_; }
    Tools& tools() { return tools_; }
    /// Steps of the tool bar and keys.
    void CycleUnit();
    void StepRow(int by);
    void ToggleGrid();
    /// Size, place and state from the settings, on a screen that is there.
    void RestorePlace();
    void SetTheme(std::int32_t theme);

    /// Called once, after the first paint of the window.
    std::function<void()> first_paint_done;

protected:
    void closeEvent(QCloseEvent*) override;
    void dragEnterEvent(QDragEnterEvent*) override;
    void dropEvent(QDropEvent*) override;
    void keyPressEvent(QKeyEvent*) override;
    void changeEvent(QEvent*) override;
    bool eventFilter(QObject*, QEvent*) override;

private:
    void BuildMenu();
    void AddOwnEntries();
    QAction* AddEntry(QMenu& menu, const MenuRow& row);
    void BuildToolBar();
    QAction* AddButton(Glyph glyph, const QString& name, const QString& tip, const std::function<void()>& step);
    void AddHeight();
    void AddUnit();
    void AddRowSelector();
    void BuildTools();
    void BuildLists();
    void BuildPanels(QVBoxLayout& column);
    void RefreshPanels();
    void ToolMoved(ToolChange change);
    ToolPanel* OpenPanel() const;
    bool TakenByPanel(QEvent& event);
    void BuildStatusLine();
    void Run(const std::function<void()>& command);
    void RefreshMenu();
    void RefreshRecentFiles(const MenuState& state);
    void RefreshNumbered(const MenuState& state);
    void RefreshRowSelector(const MenuState& state);
    void RefreshToolBar();
    void RefreshDataLine();
    void ShowPosition(const std::optional<PlotPosition>& position);
    void TakeMagnification();
    void StorePlace();

    Session& session_;
    GlobalBlock& g_;
    QtPictureDevices pictures_;
    Tools tools_;
    ToolOverlay tool_marks_;
    std::vector<ToolPanel*> panels_;
    std::vector<ListDock*> lists_;
    /// Entries of numbered lists: the entry that stands for the list, and what was made of it.
    struct NumberedEntries {
        QMenu* menu;
        const MenuRow* row;
        QList<QAction*> entries;
    };
    std::vector<NumberedEntries> numbered_;
    WheelNotches wheel_notches_;
    PlotWidget* plot_ = nullptr;
    OverviewStrip* overview_ = nullptr;
    std::map<std::string, QMenu*, std::less<>> menus_;
    std::map<std::string, QAction*, std::less<>> actions_;
    QAction* recent_place_ = nullptr;
    QList<QAction*> recent_actions_;
    QToolBar* display_bar_ = nullptr;
    QLineEdit* BasicText1 = nullptr;
    QComboBox* unit_ = nullptr;
    QComboBox* DataCombo = nullptr;
    QLabel* Label6 = nullptr;
    QList<QAction*> data_actions_, row_actions_;
    QAction* grid_action_ = nullptr;
    QLabel *position_line_ = nullptr, *data_line_ = nullptr;
    QElapsedTimer notice_clock_; ///< of the notice in the status line
    NotesButton* notes_ = nullptr;
    DistancePanel* distance_ = nullptr;
    bool running_ = false; ///< a command is under way: its forms run the event queue
};

} // namespace nmr
