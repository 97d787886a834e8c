// The bar of the base line correction.

#include "core/numbers.h"
#include "ui/form_fields.h"
#include "ui/tool_panels.h"

#include <QComboBox>
#include <QPushButton>

#include <algorithm>

namespace nmr {
namespace {

struct MethodRow {
    const char* caption;
    const char* tip;
};
// In the order of the setting.
constexpr MethodRow kMethods[] = {{"Straight lines", "Straight lines between base points"},
                                  {"Whittaker", "A smooth curve under the whole row; needs no points"},
                                  {"Bernstein", "A polynomial under the whole row; needs no points"}};

} // namespace

BaselineToolbar::BaselineToolbar(Tools& tools, Session& session) :
    ToolPanel(tools, session, Tool::base_line, "BaselineToolbar", QStringLiteral("Baseline Corr."))
{
    BeginGroup();
    AddLabel(QStringLiteral("Method"));
    method_ = new QComboBox(this);
    method_->setObjectName(QStringLiteral("BaseLineMethod"));
    method_->setFocusPolicy(Qt::NoFocus);
    method_->setToolTip(QStringLiteral("How the base line is found"));
    for (const MethodRow& row : kMethods) {
        method_->addItem(QLatin1String(row.caption));
        method_->setItemData(method_->count() - 1, QLatin1String(row.tip), Qt::ToolTipRole);
    }
    connect(method_, &QComboBox::activated, this, [this](int index) { tools_.SetBaseLineMethod(index); });
    AddWidget(method_);
    AddPoints();
    AddShapes();
    BeginGroup();
    preview_ = AddButton("BaseCorCommand1", QStringLiteral("Preview"),
                         QStringLiteral("Show Corrected Spectra(UnFixed)"), [this] {
                             tools_.SetPreview(preview_->isChecked());
                             Refresh();
                         });
    preview_->setCheckable(true);
    AddEnd("BaseCorCommand2", QStringLiteral("OK"), QStringLiteral("Save Corrected Spectrum and Exit"),
           "BaseCorCommand3", QStringLiteral("Cancel"), QStringLiteral("Discard Correction and  Exit"));
}

void BaselineToolbar::AddPoints()
{
    groups_[0].push_back(BeginGroup());
    AddButton("BasePointsAuto", QStringLiteral("Auto"), QStringLiteral("Finds base points by a test of the noise"),
              [this] { tools_.AutoBasePoints(); });
    average_ = AddValue("BaselineText1", QStringLiteral("Average"),
                        QStringLiteral("Points on either side over which the level of a base point is averaged"), 56);
    average_->shown = [this] { return std::to_string(g_.settings.average_point); };
    average_->typed = [this](double points) { tools_.SetAveragePoints(RoundHalfEven(points)); };
    average_->stepped = [this](int steps) {
        tools_.SetAveragePoints(g_.settings.average_point + steps);
        average_->Forget();
    };
    delete_on_lines_ = AddButton("BasePointsOnLines", QStringLiteral("Delete on Lines"), {},
                                 [this] { tools_.DeleteBasePointsOnLines(); });
    groups_[0].push_back(BeginGroup());
    AddAction(ToolAction::add_base_point, QStringLiteral("Add"), QStringLiteral("A click adds a base point"));
    AddAction(ToolAction::move_base_point, QStringLiteral("Move"),
              QStringLiteral("A drag moves a base point up and down"));
    AddAction(ToolAction::delete_base_point, QStringLiteral("Delete"),
              QStringLiteral("A click at a base point deletes it"));
    delete_all_ = AddButton("BasePointsDelete", QStringLiteral("Delete All"), QStringLiteral("Deletes all base points"),
                            [this] { tools_.DeleteAllBasePoints(); });
    undo_ = AddButton("BasePointsUndo", QStringLiteral("UnDo"), {}, [this] { tools_.UndoBasePoint(); });
    redo_ = AddButton("BasePointsRedo", QStringLiteral("ReDo"), {}, [this] { tools_.RedoBasePoint(); });
}

void BaselineToolbar::AddShapes()
{
    groups_[1].push_back(BeginGroup());
    bend_ = AddValue("BaseLineBend", QStringLiteral("Bend over"),
                     QStringLiteral("The part of the spectrum over which the curve may bend: more is stiffer"), 56);
    bend_->shown = [this] { return FormatNumber("##0.0#", g_.settings.base_line_bend); };
    bend_->typed = [this](double percent) { tools_.SetBaseLineBend(percent); };
    bend_->stepped = [this](int steps) { tools_.SetBaseLineBend(g_.settings.base_line_bend + steps); };
    AddLabel(QStringLiteral("% of the spectrum"));
    groups_[2].push_back(BeginGroup());
    degree_ = AddValue("BaseLineDegree", QStringLiteral("Degree"), QStringLiteral("Of the polynomial, 1 to 20"), 56);
    degree_->shown = [this] { return std::to_string(g_.settings.base_line_degree); };
    degree_->typed = [this](double degree) { tools_.SetBaseLineDegree(RoundHalfEven(degree)); };
    degree_->stepped = [this](int steps) { tools_.SetBaseLineDegree(g_.settings.base_line_degree + steps); };
}

void BaselineToolbar::Refresh()
{
    ToolPanel::Refresh();
    const int method = std::clamp(g_.settings.base_line_method, 0, 2);
    method_->setCurrentIndex(method);
    for (int i = 0; i < 3; ++i)
        for (QWidget* group : groups_[i]) group->setVisible(i == method);
    for (ValueEdit* edit : {average_, bend_, degree_}) edit->Show();
    delete_all_->setEnabled(!g_.BasePoints.empty());
    const std::size_t doubtful = method == 0 ? tools_.BasePointsOnLines().size() : 0;
    delete_on_lines_->setEnabled(doubtful > 0);
    delete_on_lines_->setToolTip(doubtful == 0
                                     ? QStringLiteral("No base point seems to stand on a line")
                                     : QStringLiteral("Deletes the %1 base points, with a ring, that seem to stand on "
                                                      "lines: they would spoil the integrals there")
                                           .arg(doubtful));
    undo_->setEnabled(!g_.PointUndo.empty());
    undo_->setToolTip(QString::fromStdString(g_.PointUndo.Caption()) + QStringLiteral(" (Ctrl+Z)"));
    redo_->setEnabled(g_.PointUndo.can_redo());
    redo_->setToolTip(QString::fromStdString(g_.PointUndo.RedoCaption()) + QStringLiteral(" (Ctrl+Shift+Z)"));
    preview_->setEnabled(method != 0 || !g_.BasePoints.empty());
    preview_->setChecked(tools_.previewed());
    ShowPressed(*preview_);
}

} // namespace nmr
