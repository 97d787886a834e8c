#pragma once
// NMR1D_Form11_WindowFunc: the numbers of the window function. They take effect at once, so that the
// spectrum behind the dialog follows.

#include "session/fft_form.h"

#include <QDialog>

#include <functional>
#include <string>
#include <utility>
#include <vector>

class QCheckBox;
class QGridLayout;

namespace nmr {

class ValueEdit;

class CodePicture;

class WindowDialog : public QDialog {
public:
    /// @param changed  after each change of the curve and the preview
    WindowDialog(FftForm& logic, std::function<void()> changed, QWidget* parent);
    /// "Cancel": all values back to what they were at opening.
    void reject() override;
    /// "Fix"; takes what is being typed.
    void accept() override;

private:
    ParamBlock& par() { return logic_.block().Slots[0].par; }
    void AddExpression();
    void ShowExpression();
    void AddFields();
    void AddTrapezoid();
    void AddField(QGridLayout& grid, const QString& caption, WindowField field);
    void Apply();
    void ShowFields();
    void Refuse();
    void PutBack();

    FftForm& logic_;
    std::function<void()> changed_;
    const ParamBlock before_; ///< of which the window's words are put back
    std::vector<std::pair<ValueEdit*, WindowField>> fields_;
    CodePicture* expression_ = nullptr;
    QWidget* trapezoid_ = nullptr; ///< its corners
    QCheckBox* multiply_ = nullptr;
};

} // namespace nmr
