#pragma once
// A formatted text as it is drawn on the page.

#include "layout/code_text.h"

#include <QWidget>

#include <string>

namespace nmr {

class CodePicture : public QWidget {
public:
    explicit CodePicture(QWidget* parent = nullptr);

    /// The base font's colour gives way to the palette's, and other colours are turned for a dark ground.
    void SetText(const std::string& code, const FontSpec& font, const CodeTextStyle& style = {});
    QSize sizeHint() const override { return size_; }
    QSize minimumSizeHint() const override { return size_; }

protected:
    void paintEvent(QPaintEvent*) override;

private:
    std::string code_;
    FontSpec font_;
    CodeTextStyle style_;
    QSize size_;
};

/// A colour of a formatted text as it shows on the program's windows; `base` is that of plain letters.
QColor ShownColor(std::int32_t color, std::int32_t base, const QPalette& palette);

} // namespace nmr
