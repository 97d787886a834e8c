#pragma once
// Fields that numbers are typed into, and buttons that repeat while they are held.

#include "session/held_button.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QTimer>
#include <QToolButton>

#include <functional>
#include <string>

namespace nmr {

/// A flat button that takes a step when it is pressed, and goes on while it is held.
class HeldToolButton : public QToolButton {
public:
    HeldToolButton(QWidget* parent, std::function<void()> step);

protected:
    bool event(QEvent* event) override;

private:
    void Start();
    void Go();
    void StepOnce();

    std::function<void()> step_;
    HeldButton held_;
    QElapsedTimer clock_;
    QTimer timer_;
    bool stepping_ = false;
};

/// Whole notches out of the small turns that a fine wheel or a touch pad reports.
class WheelNotches {
public:
    /// Notches completed by this event, positive away from the user.
    int Take(const QWheelEvent& event);

private:
    int rest_ = 0; ///< eighths of a degree
};

/// A field for a number. The text counts when Enter is pressed or the field is left; Escape puts back
/// what stood there. Enter in a field that was not typed into is the form's.
class ValueEdit : public QLineEdit {
public:
    explicit ValueEdit(QWidget* parent);

    std::function<std::string()> shown; ///< text of the present value
    std::function<void(double)> typed;  ///< a number was typed
    std::function<void()> refused;      ///< what was typed is no number; the value stays
    std::function<void(int)> stepped;   ///< wheel or arrow key: steps up, negative down

    /// The present value as text, unless the user is just typing.
    void Show();
    /// Takes the text, and shows what became of it.
    void Take();
    /// The present value as text, whatever was typed.
    void Forget();
    /// As the wheel or an arrow key does.
    void Step(int steps);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    WheelNotches notches_;
};

/// A number with an arrow for either direction.
class StepField : public QWidget {
public:
    explicit StepField(QWidget* parent, int field_width = 76);
    ValueEdit* edit() const { return edit_; }
    HeldToolButton* up() const { return up_; }
    HeldToolButton* down() const { return down_; }

private:
    ValueEdit* edit_;
    HeldToolButton* up_;
    HeldToolButton* down_;
};

} // namespace nmr
