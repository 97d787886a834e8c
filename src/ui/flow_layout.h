#pragma once
// Groups of controls in lines, like words: what does not fit into the width goes to the next line.

#include <QLayout>

#include <memory>
#include <vector>

namespace nmr {

class FlowLayout : public QLayout {
public:
    FlowLayout(QWidget* parent, int gap, int line_gap) : QLayout(parent), gap_(gap), line_gap_(line_gap) {}
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override { items_.emplace_back(item); }
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return Arrange({0, 0, width, 0}, false); }
    void setGeometry(const QRect& rect) override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;

private:
    /// Height that the lines take in a width; moves the items when asked.
    int Arrange(const QRect& rect, bool move) const;
    int PlaceLine(std::size_t first, std::size_t last, const QRect& room, bool move) const;
    static QSize SizeIn(const QLayoutItem& item, int room);

    std::vector<std::unique_ptr<QLayoutItem>> items_;
    int gap_, line_gap_;
};

} // namespace nmr
