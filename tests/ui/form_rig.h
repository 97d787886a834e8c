#pragma once
// Forms without a screen: an application, a FID with known lines, and ways to press, type and grab.

#include "fid/fft_pipeline.h"
#include "session/fft_form.h"
#include "session/startup.h"
#include "support/scripted_asker.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>
#include <QWheelEvent>

#include <cmath>
#include <memory>

namespace nmr::test {

/// The one application of the test program, on no screen.
inline QApplication& App()
{
    static int count = 1;
    static char name[] = "test_ui";
    static char* arguments[] = {name, nullptr};
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qApp == nullptr) new QApplication(count, arguments); // lives as long as the program
    return *qApp;
}

/// A logic for the transform form on two decaying lines, opened.
struct FormRig {
    explicit FormRig(int points = 4096, int rows = 1, std::initializer_list<ScriptedAsker::Answer> answers = {}) :
        asker(answers)
    {
        App();
        Start_Batch(g);
        g.settings.auto_zerofill = 0;
        g.settings.auto_phase_on = 1;
        DataSet& set = g.Slots[0];
        set.RowCount = rows;
        EXPECT_TRUE(AllocateSpecBuffer(g, points, 0));
        set.par.POINT = set.par.FIDPoints = points;
        set.par.FREQU = 8000;
        set.par.ObsCenter = set.par.OBFRQ0PPM = 400;
        set.par.OBNUC = "1H";
        for (int row = 0; row < rows; ++row) FillRow(static_cast<std::size_t>(row), points);
        EXPECT_TRUE(Write_FID_Work(g));
        EXPECT_TRUE(form.Open());
    }
    void FillRow(std::size_t row, int points)
    {
        for (int i = 0; i < points; ++i) {
            const double t = i / 8000.0, decay = std::exp(-6 * t) * 1000.0 / static_cast<double>(row + 1);
            const auto at = static_cast<std::size_t>(i);
            g.Slots[0].spec.DataRe[row][at] =
                static_cast<float>(decay * (std::cos(2 * kPi * 1100 * t) + 0.5 * std::cos(2 * kPi * -2300 * t)));
            g.Slots[0].spec.DataIm[row][at] =
                static_cast<float>(decay * (std::sin(2 * kPi * 1100 * t) + 0.5 * std::sin(2 * kPi * -2300 * t)));
        }
    }
    ParamBlock& par() { return g.Slots[0].par; }

    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    GlobalBlock& g = *block;
    ScriptedAsker asker;
    FftForm form{g, asker};
};

template <class Widget>
Widget& Find(QWidget& form, const QString& name)
{
    auto* widget = form.findChild<Widget*>(name);
    if (widget == nullptr) throw std::runtime_error("no " + name.toStdString());
    return *widget;
}

inline void Key(QWidget& widget, int key, const QString& text = {})
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text), release(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &press);
    QCoreApplication::sendEvent(&widget, &release);
}

/// Types over what stands in a field.
inline void Write(QLineEdit& edit, const QString& text)
{
    edit.setFocus();
    edit.selectAll();
    if (text.isEmpty()) Key(edit, Qt::Key_Backspace);
    for (const QChar letter : text) Key(edit, 0, letter);
}
inline void Type(QLineEdit& edit, const QString& text)
{
    Write(edit, text);
    Key(edit, Qt::Key_Return);
}

inline void Wheel(QWidget& widget, QPointF at, int eighths, Qt::KeyboardModifiers keys = Qt::NoModifier)
{
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, eighths}, Qt::NoButton, keys, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

inline void Mouse(QWidget& widget, QEvent::Type type, QPointF at, Qt::MouseButton button = Qt::LeftButton)
{
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
    QMouseEvent event(type, at, widget.mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : button, held,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}
inline void Drag(QWidget& widget, QPointF from, QPointF to, Qt::MouseButton button = Qt::LeftButton)
{
    Mouse(widget, QEvent::MouseButtonPress, from, button);
    Mouse(widget, QEvent::MouseMove, (from + to) / 2, button);
    Mouse(widget, QEvent::MouseMove, to, button);
    Mouse(widget, QEvent::MouseButtonRelease, to, button);
}

/// Shows a widget and lets it paint once, so that its plots know their frames.
inline void Settle(QWidget& widget)
{
    widget.show();
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    widget.grab();
}

/// Calls `act` on the modal form that the next exec() shows.
inline void WhenModal(std::function<void(QDialog&)> act)
{
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
        auto* form = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (form == nullptr) {
            ADD_FAILURE() << "no form is shown";
            return;
        }
        act(*form);
        if (form->isVisible()) form->done(QDialog::Rejected); // a test that forgot must not hang
    });
}

/// A folder for pictures of the forms, from NMR1D_SHOTS; empty when none are wanted.
inline QString ShotFolder()
{
    return qEnvironmentVariable("NMR1D_SHOTS");
}

} // namespace nmr::test
