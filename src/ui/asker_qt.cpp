#include "ui/asker_qt.h"

#include "ui/canvas/qt_canvas.h"
#include "ui/form_table.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>

namespace nmr {
namespace {

QMessageBox::StandardButton ToQt(Button button)
{
    constexpr QMessageBox::StandardButton kButtons[] = {QMessageBox::Ok,    QMessageBox::Cancel, QMessageBox::Yes,
                                                        QMessageBox::No,    QMessageBox::Retry,  QMessageBox::Abort,
                                                        QMessageBox::Ignore};
    return kButtons[static_cast<std::size_t>(button)];
}

QMessageBox::Icon ToQt(Icon icon)
{
    constexpr QMessageBox::Icon kIcons[] = {QMessageBox::NoIcon, QMessageBox::Information, QMessageBox::Question,
                                            QMessageBox::Warning, QMessageBox::Critical};
    return kIcons[static_cast<std::size_t>(icon)];
}

/// What closing the box means: the button that changes least.
Button EscapeOf(const std::vector<Button>& buttons)
{
    for (const Button quiet : {Button::cancel, Button::no, Button::abort, Button::ignore})
        if (std::ranges::find(buttons, quiet) != buttons.end()) return quiet;
    return buttons.empty() ? Button::ok : buttons.front();
}

QStringList FilterTexts(const FileDialog& dialog)
{
    QStringList filters;
    for (const FilterRow& row : dialog.filters) filters << FilterText(row);
    return filters;
}

QString WithExtension(QString path, const FileDialog& dialog)
{
    const bool bare = QFileInfo(path).suffix().isEmpty();
    return bare && dialog.kind == FileDialog::Kind::save ? path + ToQString(dialog.extension) : path;
}

/// "int" of "ASCII Format (*.int)"; empty where a filter has no single extension.
QString SuffixOf(const QString& filter)
{
    static const QRegularExpression kOne(QStringLiteral("\\(\\*\\.(\\w+)\\)$"));
    return kOne.match(filter).captured(1);
}

/// The proposed name goes with the filter that is chosen.
void FollowFilter(QFileDialog& window, const QStringList& filters)
{
    QObject::connect(&window, &QFileDialog::filterSelected, &window, [&window, filters](const QString& filter) {
        const QString suffix = SuffixOf(filter);
        if (suffix.isEmpty()) return;
        window.setDefaultSuffix(suffix);
        const QFileInfo name(window.selectedFiles().value(0));
        for (const QString& other : filters)
            if (!name.suffix().isEmpty() && name.suffix() == SuffixOf(other))
                return window.selectFile(name.completeBaseName() + QLatin1Char('.') + suffix);
    });
}

void SetMode(QFileDialog& window, FileDialog::Kind kind)
{
    window.setAcceptMode(kind == FileDialog::Kind::save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    window.setFileMode(kind == FileDialog::Kind::open   ? QFileDialog::ExistingFile
                       : kind == FileDialog::Kind::save ? QFileDialog::AnyFile
                                                        : QFileDialog::Directory);
    window.setOption(QFileDialog::ShowDirsOnly, kind == FileDialog::Kind::folder);
}

/// A box must stand over the form that asks, which may be a modal one over the main window.
QWidget* Front(QWidget* main_window)
{
    QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : main_window;
}

} // namespace

QString FilterText(const FilterRow& row)
{
    QString patterns = ToQString(row.expression);
    patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
    // Brackets in the description would be taken for the patterns.
    QString description = ToQString(row.description);
    description.replace(QLatin1Char('('), QLatin1Char('[')).replace(QLatin1Char(')'), QLatin1Char(']'));
    return QStringLiteral("%1 (%2)").arg(description, patterns.simplified());
}

Button QtAsker::Message(const MessageBox& box)
{
    if (before_question_) before_question_();
    if (box.beep) Beep();
    QMessageBox window(Front(parent_));
    window.setIcon(ToQt(box.icon));
    window.setWindowTitle(ToQString(box.title));
    window.setTextFormat(Qt::PlainText);
    window.setText(ToQString(box.text));
    for (const Button button : box.buttons) window.addButton(ToQt(button));
    window.setEscapeButton(ToQt(EscapeOf(box.buttons)));
    const int pressed = window.exec();
    for (const Button button : box.buttons)
        if (ToQt(button) == pressed) return button;
    return EscapeOf(box.buttons);
}

std::optional<FileChoice> QtAsker::File(const FileDialog& dialog)
{
    if (before_question_) before_question_();
    QFileDialog window(Front(parent_), ToQString(dialog.title), ToQString(dialog.folder));
    SetMode(window, dialog.kind);
    const QStringList filters = FilterTexts(dialog);
    if (!filters.isEmpty()) {
        window.setNameFilters(filters);
        window.selectNameFilter(filters.value(std::clamp<qsizetype>(dialog.filter_index - 1, 0, filters.size() - 1)));
    }
    // The dialog asks before it hands back a name that exists, so it must know the whole name.
    if (dialog.kind == FileDialog::Kind::save) window.setDefaultSuffix(ToQString(dialog.extension));
    if (dialog.kind == FileDialog::Kind::save) FollowFilter(window, filters);
    if (!dialog.name.empty()) window.selectFile(ToQString(dialog.name));
    if (window.exec() != QDialog::Accepted || window.selectedFiles().isEmpty()) return std::nullopt;
    const QString path = WithExtension(window.selectedFiles().constFirst(), dialog);
    const auto index = filters.indexOf(window.selectedNameFilter());
    return FileChoice{path.toStdString(), static_cast<int>(std::max<qsizetype>(index, 0)) + 1};
}

FormAnswer QtAsker::Form(const FormRequest& request)
{
    if (before_question_) before_question_();
    if (const FormFunction show = FindForm(request.form)) return show(request, Front(parent_));
    // Never taken for a yes: a form that is missing must not decide anything.
    std::fprintf(stderr, "nmr1d: there is no form %s\n", request.form.c_str());
    return {"CANCEL", {}};
}

void QtAsker::Beep()
{
    QApplication::beep();
}

void QtAsker::Notice(const std::string& text)
{
    if (notice_line_)
        notice_line_(ToQString(text));
    else
        std::fprintf(stderr, "%s\n", text.c_str());
}

} // namespace nmr
