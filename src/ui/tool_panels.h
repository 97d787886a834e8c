#pragma once
// The bars of the tools, below the menu: one is shown while its tool is open. They decide nothing: every
// button, field and box goes to Tools.

#include "session/tools.h"

#include <QFrame>

#include <functional>
#include <utility>
#include <vector>

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QToolButton;

namespace nmr {

class FlowLayout;
class PhaseControl;
class ValueEdit;

/// A bar: groups of controls that go to a second line where the window is narrow.
class ToolPanel : public QFrame {
public:
    /// @param name     object name, "PhaseToolbar"
    /// @param caption  shown in bold at its start
    ToolPanel(Tools& tools, Session& session, Tool tool, const char* name, const QString& caption);

    Tool tool() const { return tool_; }
    /// State and values anew; called only while the bar is shown, during each drag too.
    virtual void Refresh();
    /// A key that the plot leaves; true when the bar has taken it.
    virtual bool TakeKey(int /*key*/, Qt::KeyboardModifiers /*keys*/) { return false; }
    /// Turns of the wheel over the plot with Shift or Alt, in notches; true when taken.
    virtual bool TakeWheel(int /*notches*/, Qt::KeyboardModifiers /*keys*/) { return false; }

protected:
    /// A group of its own; what follows is put into it.
    QWidget* BeginGroup();
    /// Pressed as long as the mouse does this.
    QToolButton* AddAction(ToolAction action, const QString& caption, const QString& tip);
    QPushButton* AddButton(const char* name, const QString& caption, const QString& tip, std::function<void()> step);
    QLabel* AddLabel(const QString& text);
    void AddWidget(QWidget* widget);
    /// A field with its caption; the caller sets what it shows and takes.
    ValueEdit* AddValue(const char* name, const QString& caption, const QString& tip, int width = 84);
    /// The pair that ends the tool, in a group of its own.
    void AddEnd(const char* fix_name, const QString& fix, const QString& fix_tip, const char* cancel_name = nullptr,
                const QString& cancel = {}, const QString& cancel_tip = {});

    Tools& tools_;
    Session& session_;
    GlobalBlock& g_;

private:
    Tool tool_;
    FlowLayout* flow_;
    QWidget* group_ = nullptr;
    std::vector<std::pair<ToolAction, QToolButton*>> actions_;
};

/// A checked button in the colour of what is chosen: pressed alone does not show on dark ground.
void ShowPressed(QAbstractButton& button);

/// "Quality 87 %" of a robust phase; empty for none.
QString QualityText(const std::optional<double>& percent);

/// With the plot in front, Shift and the arrows turn by 1 degree, with Ctrl by 0.1: left and right the zero
/// order, up and down the first; likewise the wheel, with Shift the zero order, with Alt the first.
class PhaseToolbar : public ToolPanel {
public:
    PhaseToolbar(Tools& tools, Session& session);
    void Refresh() override;
    bool TakeKey(int key, Qt::KeyboardModifiers keys) override;
    bool TakeWheel(int notches, Qt::KeyboardModifiers keys) override;

private:
    void AddOrders();

    std::vector<PhaseControl*> orders_;
    QWidget* all_rows_ = nullptr; ///< for arrays only
    QLabel* quality_ = nullptr;
};

class BaselineToolbar : public ToolPanel {
public:
    BaselineToolbar(Tools& tools, Session& session);
    void Refresh() override;

private:
    void AddPoints();
    void AddShapes();

    QComboBox* method_ = nullptr;
    ValueEdit *average_ = nullptr, *bend_ = nullptr, *degree_ = nullptr;
    std::vector<QWidget*> groups_[3]; ///< what belongs to each method
    QPushButton *delete_on_lines_ = nullptr, *delete_all_ = nullptr, *undo_ = nullptr, *redo_ = nullptr,
                *preview_ = nullptr;
};

class ReferenceToolbar : public ToolPanel {
public:
    ReferenceToolbar(Tools& tools, Session& session);
    void Refresh() override;

private:
    void Take(double ppm);
    void FillShifts();

    QLabel* line_ = nullptr;
    ValueEdit* shift_ = nullptr;
    QComboBox* shifts_ = nullptr;
};

class PeakToolbar : public ToolPanel {
public:
    PeakToolbar(Tools& tools, Session& session);
    void Refresh() override;

private:
    void AddLevels();
    QCheckBox* AddSwitch(const char* name, const QString& caption, const QString& tip, std::int32_t Settings::*on);

    QPushButton* delete_all_ = nullptr;
    std::vector<ValueEdit*> levels_;
    QCheckBox *negative_ = nullptr, *interpolate_ = nullptr;
};

class IntegralToolbar : public ToolPanel {
public:
    IntegralToolbar(Tools& tools, Session& session);
    void Refresh() override;

private:
    void AddBases();

    QToolButton *add_ = nullptr, *divide_ = nullptr;
    QPushButton* delete_all_ = nullptr;
    ValueEdit* scale_ = nullptr;
    std::vector<ValueEdit*> base_fields_;
    std::vector<QToolButton*> fine_buttons_;
};

/// Coloured regions: a drag colours what it passes over, a click into a region takes it away.
class ColorToolbar : public ToolPanel {
public:
    ColorToolbar(Tools& tools, Session& session);
    void Refresh() override;

private:
    void ChooseColor();

    QPushButton *color_ = nullptr, *reset_all_ = nullptr;
};

} // namespace nmr
