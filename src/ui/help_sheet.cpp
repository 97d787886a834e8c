#include "ui/help_sheet.h"

#include "ui/canvas/qt_canvas.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace nmr {
namespace {

constexpr HelpRow kMouse[] = {
    {"Wheel", "height of the signals"},
    {"Ctrl + wheel", "width of the shown range, around the cursor"},
    {"Drag with the left button", "zoom into the range"},
    {"Double click", "back one zoom; on the title of the axis: edit it"},
    {"Drag with the right or middle button", "move the shown range"},
    {"Shift + drag, Shift + double click", "zoom in, and back, while a tool is open"},
    {"Drag in the overview", "move the shown range"},
    {"Drop a file or a folder", "read it"},
};
constexpr HelpRow kKeys[] = {
    {"Left, Right", "move the shown range"},
    {"Up, Down or +, \u2212", "height of the signals"},
    {"Ctrl + +, Ctrl + \u2212", "width of the shown range"},
    {"Backspace", "back one zoom"},
    {"Home", "the whole spectrum"},
    {"Page Up, Page Down", "previous or next row of array data"},
    {"U", "unit of the axis: ppm, Hz, kHz"},
    {"G", "grid"},
    {"Ctrl + O", "read a file"},
    {"Ctrl + S", "save the data"},
    {"Ctrl + C", "copy the plot, as drawing and as bitmap"},
    {"Ctrl + P, Ctrl + Shift + P", "print the plot, save it as a picture"},
    {"Ctrl + Z", "take the last change back"},
    {"Ctrl + Shift + Z", "do again what was taken back"},
    {"Ctrl + I", "list of the parameters"},
    {"Ctrl + D", "two cursors and their distance; Shift while dragging: no jump to the tops"},
    {"Ctrl + 1, Ctrl + 2, Ctrl + 3", "phase correction, reference, base line correction"},
    {"Ctrl + 4, Ctrl + 5", "peak picking, integrals"},
    {"Shift + Left, Right or wheel", "phase: zero order by 1 degree, with Ctrl by 0.1"},
    {"Shift + Up, Down, or Alt + wheel", "phase: first order, likewise"},
    {"Ctrl + L, Ctrl + Shift + L", "peak list, integral list"},
    {"Ctrl + Shift + C", "copy the peaks as a paper prints them"},
    {"Enter", "fix what the open tool has done"},
    {"Esc", "leave the open tool and put back what it has not fixed"},
    {"Ctrl + Q", "exit"},
    {"F1", "this sheet"},
};
constexpr HelpSection kSections[] = {{"Mouse, in every plot", kMouse}, {"Keys", kKeys}};

} // namespace

std::span<const HelpSection> HelpSections()
{
    return kSections;
}

void ShowHelpSheet(QWidget* parent)
{
    QDialog sheet(parent);
    sheet.setObjectName(QStringLiteral("HelpSheet"));
    sheet.setWindowTitle(QStringLiteral("Mouse and Keys"));
    auto* column = new QVBoxLayout(&sheet);
    column->setContentsMargins(24, 20, 24, 16);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(28);
    grid->setVerticalSpacing(6);
    int line = 0;
    for (const HelpSection& section : kSections) {
        auto* title = new QLabel(ToQString(section.title), &sheet);
        QFont bold = title->font();
        bold.setBold(true);
        title->setFont(bold);
        if (line > 0) grid->setRowMinimumHeight(line++, 8);
        grid->addWidget(title, line++, 0, 1, 2);
        for (const HelpRow& row : section.rows) {
            grid->addWidget(new QLabel(ToQString(row.gesture), &sheet), line, 0);
            grid->addWidget(new QLabel(ToQString(row.effect), &sheet), line++, 1);
        }
    }
    column->addLayout(grid);
    column->addSpacing(8);
    auto* foot = new QDialogButtonBox(QDialogButtonBox::Close, &sheet);
    QObject::connect(foot, &QDialogButtonBox::rejected, &sheet, &QDialog::reject);
    column->addWidget(foot);
    sheet.exec();
}

} // namespace nmr
