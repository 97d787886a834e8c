#include "ui/flow_layout.h"

#include <algorithm>

namespace nmr {

FlowLayout::~FlowLayout() = default;

QLayoutItem* FlowLayout::itemAt(int index) const
{
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index)
{
    if (itemAt(index) == nullptr) return nullptr;
    const auto at = items_.begin() + index;
    QLayoutItem* item = at->release();
    items_.erase(at);
    return item;
}

void FlowLayout::setGeometry(const QRect& rect)
{
    QLayout::setGeometry(rect);
    Arrange(rect, true);
}

QSize FlowLayout::sizeHint() const
{
    int width = 0, height = 0;
    for (const auto& item : items_) {
        if (item->isEmpty()) continue;
        width += (width > 0 ? gap_ : 0) + item->sizeHint().width();
        height = std::max(height, item->sizeHint().height());
    }
    const QMargins m = contentsMargins();
    return {width + m.left() + m.right(), height + m.top() + m.bottom()};
}

QSize FlowLayout::minimumSize() const
{
    QSize least;
    for (const auto& item : items_)
        if (!item->isEmpty()) least = least.expandedTo(item->minimumSize());
    const QMargins m = contentsMargins();
    return least + QSize(m.left() + m.right(), m.top() + m.bottom());
}

/// What is wider than a whole line is pressed into it, as far as it can be.
QSize FlowLayout::SizeIn(const QLayoutItem& item, int room)
{
    const QSize wanted = item.sizeHint();
    return {std::min(wanted.width(), std::max(room, item.minimumSize().width())), wanted.height()};
}

/// The items of a line stand on its middle.
int FlowLayout::PlaceLine(std::size_t first, std::size_t last, const QRect& room, bool move) const
{
    int height = 0;
    for (std::size_t i = first; i < last; ++i)
        if (!items_[i]->isEmpty()) height = std::max(height, items_[i]->sizeHint().height());
    int x = room.x();
    for (std::size_t i = first; i < last && move; ++i) {
        if (items_[i]->isEmpty()) continue;
        const QSize size = SizeIn(*items_[i], room.width());
        items_[i]->setGeometry({QPoint(x, room.y() + (height - size.height()) / 2), size});
        x += size.width() + gap_;
    }
    return height;
}

int FlowLayout::Arrange(const QRect& rect, bool move) const
{
    const QRect room = rect.marginsRemoved(contentsMargins());
    int x = 0, y = room.y();
    std::size_t first = 0;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (items_[i]->isEmpty()) continue;
        const int width = SizeIn(*items_[i], room.width()).width();
        if (x > 0 && x + width > room.width()) {
            y += PlaceLine(first, i, {room.x(), y, room.width(), 0}, move) + line_gap_;
            first = i;
            x = 0;
        }
        x += width + gap_;
    }
    y += PlaceLine(first, items_.size(), {room.x(), y, room.width(), 0}, move);
    return y - rect.y() + contentsMargins().bottom();
}

} // namespace nmr
