#pragma once
// Questions to the user in windows.

#include "core/asker.h"

#include <QPointer>
#include <QWidget>

#include <functional>

namespace nmr {

class QtAsker : public Asker {
public:
    /// The window that questions stand over; may come later than the first question.
    void SetParent(QWidget* parent) { parent_ = parent; }
    /// Called before every question: the splash must not hide it.
    void SetBeforeQuestion(std::function<void()> hook) { before_question_ = std::move(hook); }
    /// Where notices go; standard error until it is set.
    void SetNoticeLine(std::function<void(const QString&)> line) { notice_line_ = std::move(line); }

    Button Message(const MessageBox& box) override;
    std::optional<FileChoice> File(const FileDialog& dialog) override;
    FormAnswer Form(const FormRequest& request) override;
    void Beep() override;
    void Notice(const std::string& text) override;

private:
    QPointer<QWidget> parent_;
    std::function<void(const QString&)> notice_line_;
    std::function<void()> before_question_;
};

/// "JCAMP File (*.jdx *.dx)".
QString FilterText(const FilterRow& row);

} // namespace nmr
