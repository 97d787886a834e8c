// The main window used at random: keys, mouse, buttons, fields, menu entries, and whatever the boxes that open
// offer. Nothing of it may fail, and when all steps are taken back the spectrum is that of the start.

#include "core/state_image.h"
#include "session/tool_commands.h"
#include "support/files.h"
#include "window_rig.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QScrollBar>
#include <QTableView>

#include <random>

namespace nmr {
namespace {

using namespace test;

/// Reads, saves and prints are left out: they go outside, or take the time of a test.
const QStringList kLeftOut = {"Read", "SaveList", "Exit", "ColorChoose"};
constexpr std::array kEntries = {"Inversion of Spectrum",
                                 "Show All Data",
                                 "Absoluter Spectrum Mode",
                                 "UnDo",
                                 "ReDo",
                                 "Integral Base Line",
                                 "Phase Correction",
                                 "Set Reference (Main Spectrum)",
                                 "Base Line Correction",
                                 "Peak Picking",
                                 "Integral",
                                 "Set Color on the Selected Region",
                                 "Peak List",
                                 "Integral List",
                                 "Top",
                                 "Bottom",
                                 "Show Distance of Peaks/Cursol Data",
                                 "Copy Peaks as Text",
                                 "Display Area",
                                 "Set Grid",
                                 "Edit Parameters",
                                 "Show Parameter"};

struct User {
    std::mt19937 random;
    TempFolder folder;
    WindowRig rig{3};
    QTimer answers;

    explicit User(unsigned seed) : random(seed)
    {
        rig.g.AppPath = folder.path();
        DataSet& set = rig.g.Slots[0];
        for (std::size_t row = 0; row < 3; ++row)
            for (std::size_t i = 0; i < static_cast<std::size_t>(set.par.POINT); ++i) {
                const double x = (set.spec.XAxis[i] - 2.0 * static_cast<double>(row + 1)) / 0.01;
                set.spec.DataRe[row][i] += static_cast<float>(500 / (1 + x * x) + 10);
                set.spec.DataIm[row][i] -= static_cast<float>(500 * x / (1 + x * x));
            }
        CopyDataToSource(set);
        rig.window->RefreshAll();
        QObject::connect(&answers, &QTimer::timeout, [this] { Answer(); });
        answers.start(0);
    }
    int Below(std::size_t count) { return static_cast<int>(random() % count); }

    /// Boxes and forms are left by one of their buttons.
    void Answer()
    {
        auto* form = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (form == nullptr) return;
        QList<QAbstractButton*> ways;
        if (const auto* box = qobject_cast<QMessageBox*>(form)) ways = box->buttons();
        if (const auto* foot = form->findChild<QDialogButtonBox*>(); ways.isEmpty() && foot != nullptr)
            ways = foot->buttons();
        QAbstractButton* way = ways.isEmpty() ? nullptr : ways[Below(static_cast<std::size_t>(ways.size()))];
        const bool leaves = way != nullptr && way->isEnabled() && qobject_cast<QFileDialog*>(form) == nullptr;
        if (leaves) way->click();
        if (form->isVisible() && (!leaves || Below(2) == 0)) form->reject();
    }

    QPointF Place()
    {
        const QSize size = rig.window->plot().size();
        return {double(Below(static_cast<std::size_t>(size.width() + 40)) - 20),
                double(Below(static_cast<std::size_t>(size.height() + 40)) - 20)};
    }
    void UseMouse()
    {
        PlotWidget& plot = rig.window->plot();
        const Qt::MouseButton button = Below(6) == 0 ? Qt::RightButton : Qt::LeftButton;
        QPointF at = Place();
        Mouse(plot, Below(20) == 0 ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress, at, button);
        for (int moves = Below(4); moves > 0; --moves) Mouse(plot, QEvent::MouseMove, at = Place(), button);
        if (Below(8) == 0) UseKeys(); // with the button down
        if (Below(8) == 0) UseButton();
        Mouse(plot, QEvent::MouseButtonRelease, at, button);
    }
    void UseKeys()
    {
        constexpr int kKeys[] = {Qt::Key_Return, Qt::Key_Escape,    Qt::Key_U,    Qt::Key_G,    Qt::Key_PageUp,
                                 Qt::Key_Left,   Qt::Key_Right,     Qt::Key_Up,   Qt::Key_Down, Qt::Key_PageDown,
                                 Qt::Key_Home,   Qt::Key_Backspace, Qt::Key_Plus, Qt::Key_Minus};
        constexpr Qt::KeyboardModifier kModifiers[] = {Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier};
        QKeyEvent press(QEvent::KeyPress, kKeys[Below(std::size(kKeys))], kModifiers[Below(3)]);
        QCoreApplication::sendEvent(&rig.window->plot(), &press);
    }
    template <class Widget>
    Widget* AnyShown()
    {
        QList<Widget*> shown;
        for (Widget* widget : rig.window->findChildren<Widget*>())
            if (widget->isVisible() && widget->isEnabled() && !kLeftOut.contains(widget->objectName())) shown << widget;
        return shown.isEmpty() ? nullptr : shown[Below(static_cast<std::size_t>(shown.size()))];
    }
    void UseButton()
    {
        auto* button = AnyShown<QAbstractButton>();
        if (button != nullptr && !kLeftOut.contains(button->text())) button->click();
    }
    void UseField()
    {
        constexpr const char* kTexts[] = {"", "0", "-1", "0.05", "3.7", "1e9", "-1e300", "nan", "12 4", "x"};
        if (auto* field = AnyShown<QLineEdit>()) Type(*field, kTexts[Below(std::size(kTexts))]);
    }
    void UseBox()
    {
        auto* box = AnyShown<QComboBox>();
        if (box == nullptr || box->count() == 0) return;
        box->setCurrentIndex(Below(static_cast<std::size_t>(box->count())));
        emit box->activated(box->currentIndex());
    }
    void UseEntry()
    {
        QAction* entry = rig.Entry(kEntries[static_cast<std::size_t>(Below(kEntries.size()))]);
        if (entry != nullptr && entry->isEnabled()) entry->trigger();
    }
    void UseList()
    {
        auto* view = AnyShown<QTableView>();
        if (view == nullptr || view->model()->rowCount() == 0) return;
        const int row = Below(static_cast<std::size_t>(view->model()->rowCount()));
        view->selectRow(row);
        if (Below(3) == 0)
            Key(*view, Qt::Key_Delete);
        else if (Below(3) == 0)
            emit view->doubleClicked(view->model()->index(row, 0));
    }
    void Step()
    {
        switch (Below(12)) {
        case 0:
            return UseKeys();
        case 1:
            return UseField();
        case 2:
            return UseBox();
        case 3:
            return UseEntry();
        case 4:
            return UseList();
        case 5:
        case 6:
            return UseButton();
        case 7:
            rig.window->grab();
            return;
        default:
            return UseMouse();
        }
    }
    StateImage Set() const
    {
        StateImage image = TakeWholeImage(rig.g);
        std::erase_if(image, [](const auto& entry) {
            const Section s = entry.first.section;
            return entry.first.slot != 0 || (s != Section::points && s != Section::axis && s != Section::integrals);
        });
        return image;
    }
};

TEST(RandomUse, FailsNowhereAndIsTakenBack)
{
    const int seeds = qEnvironmentVariableIntValue("NMR1D_RANDOM_USES");
    for (unsigned seed = 1; seed <= static_cast<unsigned>(std::max(seeds, 3)); ++seed) {
        SCOPED_TRACE(seed);
        User user(seed);
        const StateImage start = user.Set();
        for (int step = 0; step < 300 && user.rig.g.Undo.steps().size() < 18; ++step) {
            user.Step();
            QCoreApplication::processEvents();
        }
        Tools& tools = user.rig.window->tools();
        tools.StopDrag();
        tools.Cancel();
        while (!user.rig.g.Undo.empty()) m20_Click(user.rig.session);
        EXPECT_EQ(user.Set(), start);
    }
}

} // namespace
} // namespace nmr
