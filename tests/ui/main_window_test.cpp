#include "session/display_scope.h"
#include "support/files.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/help_sheet.h"
#include "ui/main_window.h"
#include "ui/run_options.h"
#include "ui/theme.h"
#include "window_rig.h"

#include <QAction>
#include <QComboBox>
#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>

#include <gmock/gmock.h>

#include <cmath>

namespace nmr {
namespace {

using namespace test;
using testing::HasSubstr;

TEST(MainWindow, MouseAndKeysMoveTheViewAsTheSheetSays)
{
    WindowRig rig;
    PlotWidget& plot = rig.window->plot();
    const double at = rig.X(7.26);
    Wheel(plot, {at, 100}, 120, Qt::ControlModifier);
    EXPECT_NEAR(rig.Width(), 14 / 1.25, 1e-4);
    EXPECT_NEAR(rig.X(7.26), at, 0.1) << "the place under the cursor stays";
    Wheel(plot, {at, 100}, 240);
    EXPECT_NEAR(plot.magnification(), 1.25 * 1.25, 1e-6);
    EXPECT_NEAR(Magnification(rig.g.Slots[0]), 1.25 * 1.25, 1e-6) << "the data set carries it";

    Key(plot, Qt::Key_Home);
    EXPECT_NEAR(rig.Width(), 14, 1e-4);
    EXPECT_EQ(plot.magnification(), 1);
    plot.grab();
    Drag(plot, {rig.X(8), 100}, {rig.X(7), 150});
    EXPECT_NEAR(static_cast<double>(rig.g.ViewLeft), 8, 0.02);
    EXPECT_NEAR(static_cast<double>(rig.g.ViewRight), 7, 0.02);
    plot.grab();
    Drag(plot, {rig.X(7.5), 100}, {rig.X(7.6), 100}, Qt::RightButton);
    EXPECT_NEAR(static_cast<double>(rig.g.ViewLeft), 7.9, 0.02) << "what was taken hold of follows the cursor";
    EXPECT_NEAR(rig.Width(), 1, 0.02);
    Key(plot, Qt::Key_Right);
    EXPECT_NEAR(static_cast<double>(rig.g.ViewLeft), 7.8, 0.03);
    Key(plot, Qt::Key_Left);
    Key(plot, Qt::Key_Plus);
    EXPECT_NEAR(plot.magnification(), 1.25, 1e-6);
    Key(plot, Qt::Key_Down);
    EXPECT_NEAR(plot.magnification(), 1, 1e-6);
    Mouse(plot, QEvent::MouseButtonDblClick, {200, 100});
    EXPECT_NEAR(rig.Width(), 14, 1e-4) << "back one zoom";
}

TEST(MainWindow, FollowsARangeThatACommandSets)
{
    WindowRig rig;
    rig.g.ViewLeft = 4;
    rig.g.ViewRight = 3;
    rig.window->RefreshAll();
    EXPECT_NEAR(rig.window->plot().Scene().left_ppm, 4, 1e-6);
    Key(rig.window->plot(), Qt::Key_Backspace);
    EXPECT_NEAR(rig.Width(), 14, 1e-4);
    // A deep zoom keeps the digits that the block's single precision has not.
    for (int i = 0; i < 40; ++i) rig.window->plot().ScaleWidth(0.8);
    const auto scene = rig.window->plot().Scene();
    rig.window->RefreshAll();
    EXPECT_EQ(rig.window->plot().Scene().left_ppm, scene.left_ppm);
    EXPECT_LT(scene.left_ppm - scene.right_ppm, 0.01);
}

TEST(MainWindow, StatusLineTellsPlaceAndData)
{
    WindowRig rig;
    PlotWidget& plot = rig.window->plot();
    rig.g.ViewLeft = 7.27F;
    rig.g.ViewRight = 7.25F;
    rig.window->RefreshAll();
    plot.grab();
    Mouse(plot, QEvent::MouseMove, {rig.X(7.26), 80}, Qt::NoButton);
    EXPECT_THAT(rig.LabelText("Position").toStdString(), HasSubstr("7.26"));
    EXPECT_THAT(rig.LabelText("Position").toStdString(), HasSubstr("2904."));
    EXPECT_THAT(rig.LabelText("Position").toStdString(), HasSubstr("Intensity 1000"));
    EXPECT_THAT(rig.LabelText("Data").toStdString(), HasSubstr("1H"));
    EXPECT_THAT(rig.LabelText("Data").toStdString(), HasSubstr("400.00 MHz"));
    EXPECT_THAT(rig.LabelText("Data").toStdString(), HasSubstr("8,193 points"));
    const QString before = rig.LabelText("Position");
    Key(plot, Qt::Key_Right);
    plot.grab();
    EXPECT_NE(rig.LabelText("Position"), before) << "the spectrum has moved under the cursor";
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&plot, &leave);
    EXPECT_EQ(rig.LabelText("Position"), "");
}

TEST(MainWindow, UnitAndGridFollowTheirKeys)
{
    WindowRig rig;
    PlotWidget& plot = rig.window->plot();
    auto& unit = Find<QComboBox>(*rig.window, "Unit");
    for (const char* expected : {"Hz", "kHz", "ppm"}) {
        Key(plot, Qt::Key_U);
        EXPECT_EQ(unit.currentText(), expected);
        EXPECT_EQ(plot.Scene().axis.title, expected);
    }
    Key(plot, Qt::Key_G);
    EXPECT_TRUE(plot.Scene().show_grid);
    EXPECT_TRUE(rig.Entry("Grid")->isChecked());
    rig.g.Slots[0].par.OBFRQ0PPM = 0;
    rig.window->RefreshAll();
    EXPECT_FALSE(unit.isEnabled());
    Key(plot, Qt::Key_U);
    EXPECT_EQ(plot.Scene().axis.title, "ppm");
}

TEST(MainWindow, ShowsOneRowOfSeveralAndStepsThroughThem)
{
    WindowRig rig(3);
    auto& rows = Find<QComboBox>(*rig.window, "DataCombo");
    EXPECT_EQ(rows.count(), 3);
    EXPECT_TRUE(rows.isVisibleTo(rig.window.get()));
    for (const int expected : {1, 2, 2}) {
        Key(rig.window->plot(), Qt::Key_PageDown);
        EXPECT_EQ(rig.g.CurrentRow, expected);
        EXPECT_EQ(rows.currentIndex(), expected);
    }
    const auto scene = rig.window->plot().Scene();
    EXPECT_EQ(scene.curves.front().row.data(), rig.g.Slots[0].spec.DataRe[2].data());
    const WindowRig single;
    EXPECT_FALSE(Find<QComboBox>(*single.window, "DataCombo").isVisibleTo(single.window.get()));
}

TEST(MainWindow, WithoutASpectrumItInvitesAndOffersNothingElse)
{
    WindowRig empty(0);
    EXPECT_FALSE(empty.window->plot().HasSpectrum());
    EXPECT_TRUE(empty.window->plot().Scene().curves.empty());
    for (const char* name : {"BasicYMag_Up", "BasicYMag_Down", "All", "Back", "Grid"})
        EXPECT_FALSE(Find<QAction>(*empty.window, name).isEnabled()) << name;
    EXPECT_TRUE(empty.Entry("Read")->isEnabled());
    EXPECT_FALSE(empty.Entry("Show All Data")->isEnabled());
    // A FID in slot 0 belongs to the transform form; nothing of it is drawn here.
    WindowRig fid;
    fid.g.Slots[0].par.SMODE = 0;
    fid.window->plot().grab();
    fid.window->RefreshAll();
    EXPECT_FALSE(fid.window->plot().HasSpectrum());
}

TEST(MainWindow, SurvivesAPaintWhileACommandReplacesTheData)
{
    WindowRig rig;
    EXPECT_TRUE(AllocateSpecBuffer(rig.g, 64, 0)); // shorter arrays, POINT not yet told
    rig.window->plot().grab();
    rig.g.Slots[0].par.POINT = 64;
    rig.window->plot().grab();
    ClearDataSet(rig.g, 0);
    rig.window->plot().grab();
    rig.window->grab();
    EXPECT_FALSE(rig.window->plot().HasSpectrum());
}

TEST(MainWindow, ListsRecentFilesWithTheirAccessKeys)
{
    WindowRig rig;
    rig.g.RecentFiles = {"/data/one/fid", "/data/two & three/fid"};
    rig.window->RefreshAll();
    EXPECT_NE(rig.Entry("  &1. /data/one/fid"), nullptr);
    EXPECT_NE(rig.Entry("  &2. /data/two && three/fid"), nullptr);
    EXPECT_TRUE(rig.Entry("Delete History")->isVisible());
    rig.Entry("Delete History")->trigger();
    EXPECT_EQ(rig.Entry("  &1. /data/one/fid"), nullptr);
    EXPECT_FALSE(rig.Entry("Delete History")->isVisible());
}

TEST(MainWindow, ReadsWhatIsDropped)
{
    WindowRig rig;
    const TempFolder folder;
    WriteText(folder / "notes.xyz", "nothing of NMR");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(folder / "notes.xyz"))});
    QDragEnterEvent enter(QPoint(100, 100), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(rig.window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(100, 100), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(rig.window.get(), &drop);
    QString text;
    WhenModal([&](QDialog& box) {
        text = static_cast<QMessageBox&>(box).text();
        box.close();
    });
    QCoreApplication::processEvents();
    EXPECT_THAT(text.toStdString(), HasSubstr("NMR"));
    EXPECT_TRUE(rig.window->plot().HasSpectrum()) << "what was there stays";
}

TEST(MainWindow, ComesBackOnAScreenThatIsThere)
{
    WindowRig rig;
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    struct Case {
        const char* name;
        int left, top, width, height;
    };
    for (const Case& c : {Case{"far right of every screen", 90000, 10, 600, 400}, Case{"above", 10, -5000, 600, 400},
                          Case{"larger than the screen", 0, 0, 90000, 90000}, Case{"no size", 10, 10, 0, 0}}) {
        SCOPED_TRACE(c.name);
        Settings& s = rig.g.settings;
        s.window_left = c.left, s.window_top = c.top, s.window_width = c.width, s.window_height = c.height;
        rig.window->RestorePlace();
        EXPECT_TRUE(room.contains(rig.window->geometry()));
        EXPECT_GE(rig.window->width(), 300);
    }
}

TEST(MainWindow, TheSheetListsEveryShortcut)
{
    WindowRig rig;
    std::string all;
    for (const HelpSection& section : HelpSections())
        for (const HelpRow& row : section.rows) all += std::string(row.gesture) + "\n";
    std::erase(all, ' ');
    for (QAction* action : rig.window->findChildren<QAction*>()) {
        if (action->shortcut().isEmpty()) continue;
        EXPECT_THAT(all, HasSubstr(action->shortcut().toString().toStdString())) << action->text().toStdString();
    }
}

// To look at: set NMR1D_SHOTS to a folder.
TEST(MainWindow, Pictures)
{
    if (ShotFolder().isEmpty()) GTEST_SKIP() << "NMR1D_SHOTS is not set";
    WindowRig rig(3);
    rig.g.settings.display_grid = 1;
    for (const int theme : {1, 2}) {
        rig.window->SetTheme(theme);
        SetMagnification(rig.g.Slots[0], 1);
        QCoreApplication::processEvents();
        rig.window->RefreshAll();
        Mouse(rig.window->plot(), QEvent::MouseMove, {300, 100}, Qt::NoButton);
        EXPECT_TRUE(rig.window->grab().save(ShotFolder() + QStringLiteral("/main-rows-%1.png").arg(theme)));
    }
}

TEST(MainWindow, NotesOfAReadStandBehindAButton)
{
    WindowRig rig;
    auto& button = Find<QAbstractButton>(*rig.window, "Notes");
    EXPECT_FALSE(button.isVisible());
    rig.g.Slots[0].Warnings = {"The count is one off.", "No date."};
    rig.session.notes_of_read(rig.g.Slots[0].Warnings);
    rig.window->RefreshAll();
    EXPECT_TRUE(button.isVisible());
    EXPECT_EQ(button.text(), "2 notes on reading");
    EXPECT_EQ(rig.window->statusBar()->currentMessage(), "2 notes on reading: The count is one off.");
    button.click();
    auto& list = Find<QDialog>(*rig.window, "NotesList");
    QStringList texts;
    for (const QLabel* label : list.findChildren<QLabel*>()) texts << label->text();
    EXPECT_THAT(texts.join('\n').toStdString(), HasSubstr("No date."));
    Key(list, Qt::Key_Escape);
    EXPECT_FALSE(list.isVisible());
}

TEST(MainWindow, TwoCursorsTellTheirDistance)
{
    WindowRig rig;
    Settle(*rig.window);
    auto& panel = Find<QFrame>(*rig.window, "Picture3");
    EXPECT_FALSE(panel.isVisible());
    rig.Entry("Show Distance of Peaks/Cursol Data")->trigger();
    ASSERT_TRUE(panel.isVisible());
    Settle(*rig.window);
    PlotWidget& plot = rig.window->plot();
    const double range_before = rig.Width();
    // Cursor 1 stands a third of the way from 12 to -2 ppm; near the line it jumps to its top.
    Drag(plot, {rig.X(12 - 14.0 / 3), 200}, {rig.X(7.26) + 3, 200});
    const double top = PointToPpm(rig.g.Slots[0], PpmToPoint(rig.g.Slots[0], 7.26));
    EXPECT_EQ(Find<QLabel>(panel, "Cursor 1").text(),
              QStringLiteral("%1 ppm   %2 Hz").arg(top, 0, 'f', 4).arg(top * 400, 0, 'f', 2));
    const QString other = Find<QLabel>(panel, "Cursor 2").text();
    const double second = other.split(' ').front().toDouble();
    EXPECT_NEAR(second, 12 - 28.0 / 3, 1e-3);
    EXPECT_NEAR(Find<QLabel>(panel, "Distance").text().split(' ').front().toDouble(), top - second, 1.5e-4);
    EXPECT_EQ(rig.Width(), range_before) << "a cursor was dragged, not the zoom";
    Drag(plot, {rig.X(10), 200}, {rig.X(9), 200});
    EXPECT_LT(rig.Width(), 1.2) << "beside the cursors the zoom works as ever";
    Find<QAbstractButton>(panel, "m801").click();
    EXPECT_FALSE(panel.isVisible());
}

TEST(MainWindow, RegionsAreColouredByDragAndClearedByClick)
{
    WindowRig rig;
    rig.Entry("Set Color on the Selected Region")->trigger();
    Settle(*rig.window);
    EXPECT_TRUE(Find<QFrame>(*rig.window, "ColorToolbar").isVisible());
    PlotWidget& plot = rig.window->plot();
    Drag(plot, {rig.X(8), 200}, {rig.X(6), 200});
    const auto& region = rig.g.Slots[0].Regions[0];
    EXPECT_NEAR(region.Start, 8, 0.02);
    EXPECT_NEAR(region.End, 6, 0.02);
    EXPECT_EQ(region.Color, rig.g.settings.def_region_color);
    EXPECT_EQ(plot.Scene().regions.size(), 1U);
    Drag(plot, {rig.X(7), 200}, {rig.X(7), 200});
    EXPECT_TRUE(plot.Scene().regions.empty());
    rig.Entry("UnDo(ReSet Color Region)")->trigger();
    EXPECT_EQ(plot.Scene().regions.size(), 1U);
    Key(*rig.window, Qt::Key_Escape);
    EXPECT_EQ(rig.g.ToolMode, 0);
    EXPECT_FALSE(Find<QFrame>(*rig.window, "ColorToolbar").isVisible());
}

TEST(MainWindow, AbsoluteModeDrawsTheMagnitude)
{
    WindowRig rig;
    DataSet& set = rig.g.Slots[0];
    const auto top = static_cast<std::size_t>(PpmToPoint(set, 7.26));
    set.spec.DataIm[0][top] = 500;
    rig.Entry("Absoluter Spectrum Mode")->trigger();
    EXPECT_FLOAT_EQ(rig.window->plot().Scene().curves[0].row[top], std::hypot(1000.0F, 500.0F));
    EXPECT_TRUE(rig.LabelText("Data").endsWith("Absolute"));
    rig.Entry("Absoluter Spectrum Mode")->trigger();
    EXPECT_EQ(rig.window->plot().Scene().curves[0].row[top], 1000);
}

TEST(QtAsker, ShowsTextTitleAndButtonsToTheLetter)
{
    App();
    QtAsker asker;
    struct Case {
        const char* name;
        std::vector<Button> buttons;
        Button closed; ///< what closing the box answers
    };
    const Case cases[] = {{"note", {Button::ok}, Button::ok},
                          {"question", {Button::yes, Button::no}, Button::no},
                          {"three ways", {Button::yes, Button::no, Button::cancel}, Button::cancel},
                          {"failure", {Button::abort, Button::retry, Button::ignore}, Button::abort}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WhenModal([&](QDialog& form) {
            auto& box = static_cast<QMessageBox&>(form);
            EXPECT_EQ(box.text(), "Data <b>was</b> Changed !");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.windowTitle(), "Caution!");
            EXPECT_EQ(static_cast<std::size_t>(box.buttons().size()), c.buttons.size());
            box.close();
        });
        EXPECT_EQ(asker.Message({"Data <b>was</b> Changed !", "Caution!", c.buttons, Icon::warning, false}), c.closed);
    }
    WhenModal([](QDialog& box) { static_cast<QMessageBox&>(box).button(QMessageBox::Yes)->click(); });
    EXPECT_EQ(asker.Message({"Go on?", "", {Button::yes, Button::no}, Icon::question, false}), Button::yes);
}

TEST(QtAsker, AFormThatIsNotThereDecidesNothing)
{
    App();
    QtAsker asker;
    testing::internal::CaptureStderr();
    EXPECT_EQ(asker.Form({"NMR1D_Form999", {}}).dialog_result, "CANCEL");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("NMR1D_Form999"));
    EXPECT_EQ(FilterText({"JCAMP File(s)", "*.jdx;*.dx"}), "JCAMP File[s] (*.jdx *.dx)");
}

TEST(RunOptions, TakesWhatItKnowsAndRefusesTheRest)
{
    struct Case {
        QStringList arguments;
        bool good;
    };
    const Case cases[] = {
        {{"/data/1"}, true},
        {{"--screenshot", "a.png", "--size", "800x500", "--scale", "2", "--theme", "dark", "x"}, true},
        {{"--range", "4:2.5"}, true},
        {{"--size", "800"}, false},
        {{"--size", "0x0"}, false},
        {{"--theme", "pink"}, false},
        {{"--scale", "100"}, false},
        {{"--range", "a:b"}, false},
        {{"--screenshot"}, false},
        {{"--frobnicate"}, false},
        {{"a", "b"}, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ParseRunOptions(c.arguments).error.isEmpty(), c.good) << c.arguments.join(' ').toStdString();
        for (const QString& argument : c.arguments)
            EXPECT_TRUE(!c.good || !argument.startsWith("--") || RunHelp().contains(argument));
    }
    const auto options = ParseRunOptions({"--range", "2.5:4", "--screenshot", "a.png", "dir"});
    EXPECT_EQ(options.range->first, 4);
    EXPECT_EQ(options.file, "dir");
    EXPECT_TRUE(options.quiet());
}

} // namespace
} // namespace nmr
