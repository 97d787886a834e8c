#pragma once
// NMR1D_Form11 "FFT & Phase": the FID with its window above, the spectrum below, both live, and the
// controls beside them. The widgets decide nothing: every change goes to FftForm.

#include "session/fft_form.h"
#include "ui/fft_panels.h"

#include <QDialog>

#include <string>
#include <vector>

class QBoxLayout;
class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QSplitter;

namespace nmr {

class PhaseControl;
class StepField;

class FftDialog : public QDialog {
public:
    explicit FftDialog(FftForm& logic, QWidget* parent = nullptr);

    FidPanel& fid() { return *fid_; }
    PreviewPanel& preview() { return *preview_; }
    /// "Complete".
    void accept() override;
    /// "Close (Discard Present Data)" and the key Escape: with the logic's question.
    void reject() override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* MakePlots();
    QWidget* MakeColumn();
    void AddWindow(QBoxLayout& column);
    void AddZeroFill(QBoxLayout& column);
    void AddShift(QBoxLayout& column);
    void AddRows(QBoxLayout& column);
    void AddPhase(QBoxLayout& column);
    void AddAutoPhase(QBoxLayout& column);
    void AddStart(QBoxLayout& column);
    void AddUser(QBoxLayout& column);
    void AddFoot(QBoxLayout& column);
    QPushButton* MakeButton(const char* name, const QString& caption, std::function<void()> action);
    void KeepRatio();
    void OpenWindowDialog();
    /// After a change of what is transformed.
    void TransformChanged();
    /// After a change of phase or marks.
    void PhaseChanged();
    void ShowState();
    ParamBlock& par() { return logic_.block().Slots[0].par; }

    FftForm& logic_;
    QSplitter* splitter_ = nullptr;
    FidPanel* fid_ = nullptr;
    PreviewPanel* preview_ = nullptr;
    QWidget* controls_ = nullptr;
    QComboBox* window_ = nullptr;
    QPushButton* double_ = nullptr;
    QLabel* points_ = nullptr;
    StepField* shift_ = nullptr;
    QComboBox* row_ = nullptr; ///< only for several rows
    std::vector<PhaseControl*> phases_;
    QCheckBox* auto_phase_ = nullptr;
    QLabel* quality_ = nullptr;
    QCheckBox* vendor_start_ = nullptr;
    QProgressBar* progress_ = nullptr;
};

/// Shows the form on an opened logic until it is left.
/// @return DialogResult: "OK" after a commit, else "CANCEL"
std::string ShowFftForm(FftForm& logic, QWidget* parent);

} // namespace nmr
