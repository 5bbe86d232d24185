#include "QuellonUI/Kit/FlowLayout.h"

#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace quellon {

FlowLayout::FlowLayout(int gap, int lineGap) : gap_(gap), lineGap_(lineGap) {}

FlowLayout::~FlowLayout()
{
    qDeleteAll(items_);
}

void FlowLayout::addItem(QLayoutItem* item)
{
    items_.append(item);
}

int FlowLayout::count() const
{
    return static_cast<int>(items_.size());
}

QLayoutItem* FlowLayout::itemAt(int index) const
{
    return items_.value(index);
}

QLayoutItem* FlowLayout::takeAt(int index)
{
    return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
}

QSize FlowLayout::sizeHint() const
{
    QSize result{0, 0};
    for (const QLayoutItem* const item : items_) {
        if (item->isEmpty()) continue;
        const QSize size = item->sizeHint();
        result = {result.width() + size.width() + (result.width() > 0 ? gap_ : 0),
                  std::max(result.height(), size.height())};
    }
    return result.grownBy(contentsMargins());
}

QSize FlowLayout::minimumSize() const
{
    QSize result{0, 0};
    for (const QLayoutItem* const item : items_) {
        if (!item->isEmpty()) result = result.expandedTo(item->minimumSize());
    }
    return result.grownBy(contentsMargins());
}

int FlowLayout::heightForWidth(int width) const
{
    return arrange(QRect{0, 0, width, 0}, false);
}

void FlowLayout::setGeometry(const QRect& rect)
{
    QLayout::setGeometry(rect);
    arrange(rect, true);
}

int FlowLayout::arrange(const QRect& rect, bool place) const
{
    const QMargins margins = contentsMargins();
    const QRect area = rect.marginsRemoved(margins);
    int left = area.left();
    int top = area.top();
    int lineHeight = 0;
    for (QLayoutItem* const item : items_) {
        if (item->isEmpty()) continue;
        const QSize size{std::min(item->sizeHint().width(), area.width()), item->sizeHint().height()};
        if (lineHeight > 0 && left + size.width() > area.left() + area.width()) {
            left = area.left();
            top += lineHeight + lineGap_;
            lineHeight = 0;
        }
        const Qt::LayoutDirection direction =
            parentWidget() != nullptr ? parentWidget()->layoutDirection() : Qt::LeftToRight;
        if (place) item->setGeometry(QStyle::visualRect(direction, area, QRect{QPoint{left, top}, size}));
        left += size.width() + gap_;
        lineHeight = std::max(lineHeight, size.height());
    }
    return top + lineHeight - rect.top() + margins.bottom();
}

} // namespace quellon
