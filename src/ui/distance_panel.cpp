#include "ui/distance_panel.h"

#include "session/display_commands.h"
#include "session/forms.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/form_dialogs.h"
#include "ui/plot_widget.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <utility>

namespace nmr {
namespace {

constexpr double kReach = 6;    // pixels from a cursor that take hold of it
constexpr double kTopReach = 5; // pixels in which a cursor jumps to the top of a line
constexpr int kMargin = 10;
constexpr const char* kNames[] = {"Cursor 1", "Cursor 2", "Distance"};
const QColor kCursorColors[] = {QColor(213, 94, 0), QColor(0, 158, 115)}; // visible on light and dark

QToolButton* SmallButton(const QString& text, const QString& tip, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setText(text);
    button->setToolTip(tip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

/// One below the other: figure spaces, as wide as digits, before the shorter ones.
void AlignHz(std::array<QString, 3>& texts)
{
    const auto after_ppm = [](const QString& text) { return text.size() - text.indexOf(QLatin1String("ppm")); };
    const auto longest = after_ppm(*std::ranges::max_element(texts, {}, after_ppm));
    for (QString& text : texts)
        if (text.endsWith(QLatin1String("Hz")))
            text.insert(text.indexOf(QLatin1String("ppm")) + 6, QString(longest - after_ppm(text), QChar(0x2007)));
}

} // namespace

// The window belongs to the plot of the main window, which asks for it.
FormAnswer Picture3(const FormRequest&, QWidget* parent)
{
    auto* frame = parent != nullptr ? parent->findChild<QFrame*>(QLatin1String(kDistanceWindow)) : nullptr;
    auto* panel = dynamic_cast<DistancePanel*>(frame);
    if (panel != nullptr) panel->Toggle();
    return {forms::kClose, {}};
}

DistancePanel::DistancePanel(GlobalBlock& g, PlotWidget& plot) : QFrame(&plot), g_(g), plot_(plot)
{
    setObjectName(QLatin1String(kDistanceWindow));
    setFrameStyle(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setCursor(Qt::ArrowCursor);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(10, 4, 6, 8);
    grid->setHorizontalSpacing(12);
    auto* head = new QLabel(QStringLiteral("Distance of Peaks"), this);
    QFont bold = head->font();
    bold.setBold(true);
    head->setFont(bold);
    grid->addWidget(head, 0, 0, 1, 2);
    auto* here =
        SmallButton(QStringLiteral("Bring here"), QStringLiteral("Put both cursors into the shown range"), this);
    auto* close =
        SmallButton(QStringLiteral("\u00d7"), QStringLiteral("Close Distance Peak/Cursol Data Window (Ctrl+D)"), this);
    close->setObjectName(QStringLiteral("m801"));
    connect(here, &QToolButton::clicked, this, [this] { BringHere(); });
    connect(close, &QToolButton::clicked, this, [this] { Toggle(); });
    grid->addWidget(here, 0, 2);
    grid->addWidget(close, 0, 3);
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        auto* name = new QLabel(QLatin1String(kNames[i]), this);
        if (i < 2) {
            QPalette colored = name->palette();
            colored.setColor(QPalette::WindowText, kCursorColors[i]);
            name->setPalette(colored);
        }
        lines_[i] = new QLabel(this);
        lines_[i]->setObjectName(QLatin1String(kNames[i]));
        lines_[i]->setAlignment(Qt::AlignRight);
        lines_[i]->setTextInteractionFlags(Qt::TextSelectableByMouse);
        grid->addWidget(name, static_cast<int>(i) + 1, 0);
        grid->addWidget(lines_[i], static_cast<int>(i) + 1, 1, 1, 3);
    }
    hide();
}

void DistancePanel::Toggle()
{
    const bool shown = !isVisible() && plot_.HasSpectrum();
    setVisible(shown);
    if (shown) {
        BringHere();
        ChooseCorner();
        MoveToCorner();
        raise();
    }
    plot_.update();
}

void DistancePanel::BringHere()
{
    const auto& range = std::as_const(plot_).view().shown();
    cursors_.PlaceIn(range.left, range.right);
    Refresh();
}

void DistancePanel::Refresh()
{
    if (!isVisible()) return;
    if (!plot_.HasSpectrum()) {
        hide();
        return;
    }
    const DataSet& set = g_.Slots[0];
    std::array<QString, 3> texts;
    for (std::size_t i = 0; i < 2; ++i) texts[i] = QString::fromStdString(cursors_.Position(set, i));
    texts[2] = QString::fromStdString(cursors_.Distance(set));
    AlignHz(texts);
    for (std::size_t i = 0; i < texts.size(); ++i) lines_[i]->setText(texts[i]);
    MoveToCorner();
    plot_.update();
}

void DistancePanel::ChooseCorner()
{
    if (!plot_.pyramid()) return;
    adjustSize();
    const PlotFrame& frame = plot_.frame();
    const auto top = [&](double from, double to) {
        const auto [first, last] =
            std::minmax({PpmToPoint(g_.Slots[0], frame.Ppm(from)), PpmToPoint(g_.Slots[0], frame.Ppm(to))});
        return plot_.pyramid()->Over(static_cast<std::size_t>(first), static_cast<std::size_t>(last)).high;
    };
    const RectD& rect = frame.rect;
    const double wide = width() + 2.0 * kMargin;
    at_left_ = top(rect.x, rect.x + wide) < top(rect.right() - wide, rect.right());
}

void DistancePanel::MoveToCorner()
{
    adjustSize();
    const RectD& frame = std::as_const(plot_).frame().rect;
    const auto left = static_cast<int>(frame.x), right = static_cast<int>(frame.right());
    const int corner = at_left_ ? left + kMargin : right - width() - kMargin;
    // Below the row of peak labels.
    const QPoint wanted = placed_ ? pos() : QPoint(corner, static_cast<int>(frame.y) + kMargin);
    move(std::clamp(wanted.x(), 0, std::max(0, plot_.width() - width())),
         std::clamp(wanted.y(), 0, std::max(0, plot_.height() - height())));
}

void DistancePanel::mousePressEvent(QMouseEvent* event)
{
    grip_ = event->position().toPoint();
}

void DistancePanel::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton)) return;
    placed_ = true;
    move(mapToParent(event->position().toPoint() - grip_));
    MoveToCorner();
}

std::optional<std::size_t> DistancePanel::CursorAt(const PlotFrame& frame, QPointF at) const
{
    if (!isVisible()) return std::nullopt;
    std::optional<std::size_t> nearest;
    double least = kReach;
    for (std::size_t i = 0; i < 2; ++i) {
        const double away = std::abs(frame.X(cursors_.ppm(i)) - at.x());
        if (away > least) continue;
        least = away;
        nearest = i;
    }
    return nearest;
}

bool DistancePanel::Grab(const PlotFrame& frame, QPointF at, Qt::KeyboardModifiers)
{
    held_ = CursorAt(frame, at);
    return held_.has_value();
}

std::optional<Qt::CursorShape> DistancePanel::Shape(const PlotFrame& frame, QPointF at) const
{
    return CursorAt(frame, at) ? std::optional(Qt::SplitHCursor) : std::nullopt;
}

void DistancePanel::Move(const PlotFrame& frame, QPointF at)
{
    if (!held_) return;
    const double ppm = frame.Ppm(at.x());
    const double reach = std::abs(frame.Ppm(at.x() + kTopReach) - ppm);
    const bool free = QApplication::keyboardModifiers() & Qt::ShiftModifier;
    cursors_.Move(*held_, free ? ppm : NearestTop(g_.Slots[0], g_.CurrentRow, ppm, reach));
    Refresh();
}

void DistancePanel::Drop(const PlotFrame&)
{
    held_.reset();
}

void DistancePanel::Draw(QtCanvas& canvas, const PlotFrame& frame)
{
    if (!isVisible()) return;
    const double pixel = 1 / canvas.Resolution();
    for (std::size_t i = 0; i < 2; ++i) {
        const double x = std::floor(frame.X(cursors_.ppm(i)) / pixel) * pixel;
        if (x < frame.rect.x || x > frame.rect.right()) continue;
        canvas.painter().fillRect(QRectF(x, frame.rect.y, std::max(pixel, 1.0), frame.rect.height), kCursorColors[i]);
    }
}

} // namespace nmr
