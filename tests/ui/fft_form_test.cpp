// The transform form: every control changes what it stands for, and the plots follow.

#include "form_rig.h"
#include "ui/fft_dialog.h"
#include "ui/form_fields.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QScrollBar>
#include <QSplitter>

#include <algorithm>

namespace nmr {
namespace {

using namespace test;

void Click(QWidget& form, const QString& name)
{
    Find<QAbstractButton>(form, name).click();
}

const ZoomView& View(const ZoomPanel& panel)
{
    return panel.view();
}

double PointX(const PreviewPanel& panel, const FftForm& form, double point)
{
    const auto shown = panel.view().shown();
    const double ppm_step = (shown.left - shown.right) / form.points();
    return panel.frame().X(shown.right + point * ppm_step);
}

TEST(FftFormWindow, ListMapsByTheFunctionsOwnNumber)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    auto& list = Find<QComboBox>(dialog, "Combo1");
    struct Case {
        const char* caption;
        int number; ///< as it stands in files
    };
    const Case cases[] = {
        {"Exponential", 0}, {"Gaussian", 3}, {"SineBell", 1}, {"Hann (SqrSineBell)", 2}, {"BlackmanHarris", 4}};
    ASSERT_EQ(list.count(), 5);
    for (int row = 4; row >= 0; --row) {
        const Case& c = cases[row];
        SCOPED_TRACE(c.caption);
        EXPECT_EQ(list.itemText(row), c.caption);
        list.setCurrentIndex(row);
        emit list.activated(row);
        EXPECT_EQ(rig.par().WindowFunc, c.number);
        EXPECT_EQ(list.currentIndex(), row);
    }
}

TEST(FftFormPhase, EveryControlTurnsByWhatItSays)
{
    struct Case {
        const char* name;
        std::function<void(FftDialog&)> act;
        double phase0, phase1;
        QString text8, text9;
    };
    const auto type = [](const char* field, const char* text) {
        return [=](FftDialog& d) { Type(Find<QLineEdit>(d, field), text); };
    };
    const auto bar = [](const char* name, int value) {
        return [=](FftDialog& d) { Find<QScrollBar>(d, name).setValue(value); };
    };
    const auto wheel = [](const char* name, int eighths, Qt::KeyboardModifiers keys = Qt::NoModifier) {
        return [=](FftDialog& d) { Wheel(Find<QWidget>(d, name), {5, 5}, eighths, keys); };
    };
    const auto press = [](const char* name) { return [=](FftDialog& d) { Click(d, name); }; };
    // All start from 20 and -30 degrees.
    const Case cases[] = {
        {"typed", type("Text8", "12.3"), 12.3, -30, "12.3", "-30.0"},
        {"typed with blanks", type("Text9", " -7.5 "), 20, -7.5, "20.0", "-7.5"},
        {"no number", type("Text8", "12,x"), 20, -30, "20.0", "-30.0"},
        {"empty", type("Text9", ""), 20, -30, "20.0", "-30.0"},
        {"not finite", type("Text8", "inf"), 20, -30, "20.0", "-30.0"},
        {"beyond the limit", type("Text8", "400"), 360, -30, "360.0", "-30.0"},
        {"below the limit", type("Text9", "-5000"), 20, -1800, "20.0", "-1800.0"},
        {"bar", bar("Phase0ScrollBar", 905), 90.5, -30, "90.5", "-30.0"},
        {"second bar at its end", bar("Phase1ScrollBar", -99999), 20, -1800, "20.0", "-1800.0"},
        {"first bar at its end", bar("Phase0ScrollBar", 99999), 360, -30, "360.0", "-30.0"},
        {"step of ten", press("Label1-10"), 10, -30, "10.0", "-30.0"},
        {"step of a tenth", press("Label1+0.1"), 20.1, -30, "20.1", "-30.0"},
        {"step of first order", press("Label13-0.5"), 20, -30.5, "20.0", "-30.5"},
        {"step of ten of first order", press("Label13+10"), 20, -20, "20.0", "-20.0"},
        {"wheel", wheel("Text8", 120), 20.1, -30, "20.1", "-30.0"},
        {"wheel back over the bar", wheel("Phase1ScrollBar", -240), 20, -30.2, "20.0", "-30.2"},
        {"wheel with Ctrl", wheel("Text8", 120, Qt::ControlModifier), 21, -30, "21.0", "-30.0"},
        {"half a notch", wheel("Text8", 60), 20, -30, "20.0", "-30.0"},
        {"key", [](FftDialog& d) { Key(Find<QWidget>(d, "Text9"), Qt::Key_Down); }, 20, -30.1, "20.0", "-30.1"},
        {"Escape in the field",
         [](FftDialog& d) {
             Write(Find<QLineEdit>(d, "Text8"), "55");
             Key(Find<QLineEdit>(d, "Text8"), Qt::Key_Escape);
         },
         20, -30, "20.0", "-30.0"},
    };
    FormRig rig;
    FftDialog dialog(rig.form);
    Settle(dialog);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        rig.form.SetPhase0(20);
        Type(Find<QLineEdit>(dialog, "Text9"), "-30");
        Type(Find<QLineEdit>(dialog, "Text8"), "20");
        c.act(dialog);
        EXPECT_NEAR(rig.g.Phase0Deg, c.phase0, 1e-4);
        EXPECT_NEAR(rig.g.Phase1Deg, c.phase1, 1e-4);
        EXPECT_EQ(Find<QLineEdit>(dialog, "Text8").text(), c.text8);
        EXPECT_EQ(Find<QLineEdit>(dialog, "Text9").text(), c.text9);
        EXPECT_EQ(Find<QScrollBar>(dialog, "Phase0ScrollBar").value(), std::lround(c.phase0 * 10));
        EXPECT_EQ(Find<QScrollBar>(dialog, "Phase1ScrollBar").value(), std::lround(c.phase1 * 10));
    }
}

// An automatic phase lies between two tenths, which is all that the bar can hold.
TEST(FftFormPhase, ShowingAPhaseDoesNotRoundIt)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    Click(dialog, "Command8");
    const float found = rig.g.Phase0Deg;
    ASSERT_GT(std::abs(found - std::round(found * 10) / 10), 1e-3F) << "the lines give a phase on a tenth";
    EXPECT_EQ(Find<QScrollBar>(dialog, "Phase0ScrollBar").value(), std::lround(static_cast<double>(found) * 10));
    Click(dialog, "ShowImaginary");
    EXPECT_EQ(rig.g.Phase0Deg, found);
}

TEST(FftFormPhase, TheSpectrumOnTheScreenFollows)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    Settle(dialog);
    const QImage before = dialog.preview().grab().toImage();
    Click(dialog, "Label1+10");
    EXPECT_NE(dialog.preview().grab().toImage(), before);
    Click(dialog, "Label1-10");
    EXPECT_EQ(dialog.preview().grab().toImage(), before);
    Click(dialog, "ShowImaginary");
    EXPECT_NE(dialog.preview().grab().toImage(), before);
}

TEST(FftFormPhase, BoxKeepsTheSettingTheOtherWayRound)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    auto& box = Find<QAbstractButton>(dialog, "Check2");
    EXPECT_FALSE(box.isChecked());
    box.click();
    EXPECT_EQ(rig.g.settings.auto_phase_on, 0);
    // Phased anew after a change of the transform.
    rig.form.SetPhase0(170);
    Type(Find<QLineEdit>(dialog, "FIDShift"), "1");
    EXPECT_LT(std::abs(rig.g.Phase0Deg), 60.0F);
    box.click();
    EXPECT_EQ(rig.g.settings.auto_phase_on, 1);
}

TEST(FftFormLength, ZeroFillDoublesUpToTheLimitAndGoesBack)
{
    FormRig rig(1024);
    FftDialog dialog(rig.form);
    auto& fill = Find<QAbstractButton>(dialog, "Command1");
    int presses = 0;
    while (fill.isEnabled() && presses < 20) {
        fill.click();
        ++presses;
    }
    EXPECT_EQ(presses, 10);
    EXPECT_EQ(rig.form.points(), 1'048'576);
    Click(dialog, "Command4");
    EXPECT_EQ(rig.form.points(), 1024);
    EXPECT_TRUE(fill.isEnabled());
    rig.g.NoFIDFile = true; // of a FID that could not be kept
    Click(dialog, "Label1+1");
    EXPECT_FALSE(fill.isEnabled());
}

TEST(FftFormShift, FieldArrowsAndLimits)
{
    FormRig rig(1024);
    FftDialog dialog(rig.form);
    auto& field = Find<QLineEdit>(dialog, "FIDShift");
    struct Case {
        const char* name;
        std::function<void()> act;
        int shift;
    };
    const Case cases[] = {
        {"typed", [&] { Type(field, "12"); }, 12},
        {"up", [&] { Click(dialog, "FIDShiftUp"); }, 13},
        {"down", [&] { Click(dialog, "FIDShiftDown"); }, 12},
        {"wheel",
         [&] {
             Wheel(field, {3, 3}, -360);
         },
         9},
        {"negative", [&] { Type(field, "-4"); }, -4},
        {"no number", [&] { Type(field, "4 points"); }, -4},
        {"beyond the FID", [&] { Type(field, "1e9"); }, 1023},
        {"typed, not finished, then an arrow",
         [&] {
             Write(field, "20");
             Click(dialog, "FIDShiftUp");
         },
         21},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.act();
        EXPECT_EQ(rig.par().FIDShift, c.shift);
        EXPECT_EQ(field.text(), QString::number(c.shift));
    }
}

TEST(FftFormShift, ZoomIntoTheStartOfTheFidStays)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    Settle(dialog);
    const auto& rect = dialog.fid().frame().rect;
    Drag(dialog.fid(), {rect.x, rect.y + 20}, {rect.x + 60, rect.y + 20});
    const auto shown = View(dialog.fid()).shown();
    Click(dialog, "FIDShiftUp");
    EXPECT_EQ(View(dialog.fid()).shown().right, shown.right);
    EXPECT_NEAR(View(dialog.fid()).shown().left, shown.left, 1.01 / 8000);
}

TEST(FftFormShift, ArrowRepeatsWhileItIsHeld)
{
    FormRig rig(1024);
    FftDialog dialog(rig.form);
    Settle(dialog);
    auto& arrow = Find<QAbstractButton>(dialog, "FIDShiftUp");
    const auto wait = [](int ms) {
        QElapsedTimer clock;
        for (clock.start(); clock.elapsed() < ms;) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    };
    Mouse(arrow, QEvent::MouseButtonPress, {5, 5});
    EXPECT_EQ(rig.par().FIDShift, 1);
    wait(350);
    EXPECT_EQ(rig.par().FIDShift, 1) << "the run begins after half a second";
    wait(650);
    const int reached = rig.par().FIDShift;
    EXPECT_GE(reached, 4);
    EXPECT_LE(reached, 12); // 500 ms, then one in 50 ms
    Mouse(arrow, QEvent::MouseButtonRelease, {5, 5});
    wait(150);
    EXPECT_EQ(rig.par().FIDShift, reached);

    Mouse(arrow, QEvent::MouseButtonPress, {5, 5});
    QEvent away(QEvent::WindowDeactivate); // a message box came in front and gets the release
    QCoreApplication::sendEvent(&arrow, &away);
    wait(700);
    EXPECT_EQ(rig.par().FIDShift, reached + 1);
}

TEST(FftFormMarks, PivotIsDraggedWithoutTurningTheSpectrum)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    Settle(dialog);
    Type(Find<QLineEdit>(dialog, "Text9"), "120");
    Settle(dialog);
    const int n = rig.form.points();
    const auto before = std::vector<float>(rig.g.Slots[0].spec.DataRe[0].begin(), rig.g.Slots[0].spec.DataRe[0].end());
    auto& panel = dialog.preview();
    const double from = PointX(panel, rig.form, rig.g.PivotPoint), to = PointX(panel, rig.form, 0.75 * n);
    Drag(panel, {from, 60}, {to, 60});
    const double point_per_pixel = n / panel.frame().rect.width;
    EXPECT_NEAR(rig.g.PivotPoint, 0.75 * n, point_per_pixel);
    EXPECT_FALSE(View(panel).zoomed());
    const float top = *std::ranges::max_element(before);
    for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i)
        ASSERT_NEAR(rig.g.Slots[0].spec.DataRe[0][i], before[i], 1e-4F * top) << i;
    EXPECT_EQ(Find<QLineEdit>(dialog, "Text8").text().toDouble(),
              std::round(static_cast<double>(rig.g.Phase0Deg) * 100) / 100);
}

TEST(FftFormMarks, SecondMarkWaitsInTheCornerAndLeavesByTheSide)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    Settle(dialog);
    ASSERT_EQ(rig.g.P2Point, -1);
    auto& panel = dialog.preview();
    const auto rect = panel.frame().rect;
    const double target = PointX(panel, rig.form, 1000);
    Drag(panel, {rect.right() - 9, rect.y + 6}, {target, rect.y + 40});
    EXPECT_NEAR(rig.g.P2Point, 1000, rig.form.points() / rect.width);
    Drag(panel, {target, rect.y + 90}, {rect.x - 12, rect.y + 90});
    EXPECT_EQ(rig.g.P2Point, -1);
    Drag(panel, {rect.right() - 9, rect.y + 90}, {rect.right() - 100, rect.y + 90});
    EXPECT_EQ(rig.g.P2Point, -1) << "far below the waiting name a drag is a zoom";
    EXPECT_TRUE(View(panel).zoomed());
}

TEST(FftFormPlots, RatioOfThePlotsIsKept)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    dialog.resize(900, 700);
    Settle(dialog);
    auto* splitter = dialog.findChild<QSplitter*>();
    const double room = splitter->sizes()[0] + splitter->sizes()[1];
    EXPECT_NEAR(splitter->sizes()[0] / room, rig.g.settings.fft_gamen_ratio, 0.01);
    QWidget& handle = *splitter->handle(1);
    Mouse(handle, QEvent::MouseButtonPress, {5, 2});
    Mouse(handle, QEvent::MouseMove, {5, 102});
    Mouse(handle, QEvent::MouseButtonRelease, {5, 2}); // it has moved with the mouse
    EXPECT_NEAR(rig.g.settings.fft_gamen_ratio, 0.4 + 100 / room, 0.01);
    EXPECT_TRUE(rig.g.SettingsChanged);
    dialog.resize(900, 560);
    Settle(dialog);
    const double less = splitter->sizes()[0] + splitter->sizes()[1];
    EXPECT_NEAR(splitter->sizes()[0] / less, rig.g.settings.fft_gamen_ratio, 0.01);
}

struct PaintingAsker : ScriptedAsker {
    std::function<void()> paint;
    Button Message(const MessageBox& box) override
    {
        if (paint) paint();
        return ScriptedAsker::Message(box);
    }
};

// A parameter file can give a window without a width; the zero fill has then moved all rows by the
// time that the box is shown over the plots.
TEST(FftFormPlots, PaintUnderAMessageBoxWhileTheRowsMove)
{
    FormRig rig(1024);
    PaintingAsker asker;
    FftForm form(rig.g, asker);
    ASSERT_TRUE(form.Open());
    FftDialog dialog(form);
    Settle(dialog);
    rig.par().WindowFunc = 1;
    rig.par().WinStart3 = rig.par().WinEnd3 = 50;
    asker.paint = [&] { dialog.grab(); };
    Click(dialog, "Command1");
    EXPECT_EQ(asker.boxes.size(), 1U);
    EXPECT_EQ(form.points(), 2048);
    rig.par().WinEnd3 = 100;
    Click(dialog, "Command1");
    EXPECT_EQ(asker.boxes.size(), 1U);
    EXPECT_GT(rig.par().DispLeft, 0.0F);
}

TEST(FftFormEnd, EnterTakesAFieldFirstAndThenCompletes)
{
    FormRig rig;
    FftDialog dialog(rig.form);
    Settle(dialog);
    auto& field = Find<QLineEdit>(dialog, "Text8");
    Type(field, "33");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(rig.par().SMODE, 0);
    Key(field, Qt::Key_Return);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(rig.par().SMODE, 1);
    EXPECT_EQ(rig.g.DialogResult, "OK");
}

TEST(FftFormEnd, LeavingAsksAndKeepsTheFid)
{
    FormRig rig(1024, 1, {Button::cancel, Button::ok});
    const std::vector<float> fid(rig.g.WorkRe[0].begin(), rig.g.WorkRe[0].begin() + 1024);
    FftDialog dialog(rig.form);
    Settle(dialog);
    Key(dialog, Qt::Key_Escape);
    ASSERT_EQ(rig.asker.boxes.size(), 1U);
    EXPECT_EQ(rig.asker.boxes[0].text, "Exit without FFT");
    EXPECT_TRUE(dialog.isVisible());
    dialog.close(); // the cross of the window
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(rig.g.DialogResult, "CANCEL");
    EXPECT_EQ(rig.par().SMODE, 0);
    EXPECT_TRUE(std::ranges::equal(fid, rig.g.Slots[0].spec.DataRe[0].first(1024)));
}

TEST(FftFormRows, RowListAndProgressOnlyForSeveral)
{
    FormRig one;
    FftDialog plain(one.form);
    EXPECT_EQ(plain.findChild<QComboBox*>("Row"), nullptr);

    FormRig rig(1024, 4);
    rig.g.Slots[0].RowValueA[2] = 0.25F;
    rig.g.Slots[0].RowParamUnit = "s";
    FftDialog dialog(rig.form);
    Settle(dialog);
    auto& rows = Find<QComboBox>(dialog, "Row");
    EXPECT_EQ(rows.count(), 4);
    EXPECT_EQ(rows.itemText(2), "3:  0.25 s");
    const float full = rig.par().DispLeft;
    emit rows.activated(2);
    EXPECT_EQ(rig.g.CurrentRow, 2);
    EXPECT_NEAR(rig.par().DispLeft, full / 3, 1e-3F * full);
    std::vector<int> percents;
    QObject::connect(dialog.findChild<QProgressBar*>(), &QProgressBar::valueChanged,
                     [&](int percent) { percents.push_back(percent); });
    dialog.accept();
    EXPECT_EQ(percents, (std::vector<int>{0, 25, 50, 75, 100}));
    EXPECT_EQ(rig.par().SMODE, 1);
}

TEST(FftFormUser, TheBoxOffersTheOperatorsAndTakesAnyName)
{
    FormRig rig;
    rig.g.CurrentUser = "COMMON";
    rig.g.Operators = {"Anna", "Ben"};
    rig.form.SetUser("Ben");
    FftDialog dialog(rig.form);
    auto& box = Find<QComboBox>(dialog, "FFTUser");
    EXPECT_EQ(box.currentText(), "Ben") << "who measured the data is offered";
    EXPECT_EQ(box.count(), 3);
    box.setCurrentIndex(box.findText("Anna"));
    EXPECT_EQ(rig.form.user(), "Anna");
    Write(*box.lineEdit(), "Clara");
    EXPECT_EQ(rig.form.user(), "Clara");
}

TEST(FftFormStart, TheBoxOfTheInstrumentsValuesActsAtOnce)
{
    FormRig rig;
    rig.g.settings.vendor_start = 0;
    rig.g.Slots[0].vendor.points = 16384;
    FftDialog dialog(rig.form);
    EXPECT_EQ(rig.form.points(), 4096);
    Click(dialog, "VendorStart");
    EXPECT_EQ(rig.form.points(), 16384);
    EXPECT_EQ(rig.g.settings.vendor_start, 1);
    Click(dialog, "VendorStart");
    EXPECT_EQ(rig.form.points(), 4096);
}

} // namespace
} // namespace nmr
