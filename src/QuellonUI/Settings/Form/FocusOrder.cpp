#include "QuellonUI/Settings/Form/FocusOrder.h"

#include <QComboBox>
#include <QWidget>

#include <vector>

namespace quellon::FocusOrder {

namespace {

bool takesTab(const QWidget& widget)
{
    return (widget.focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget.focusProxy() == nullptr;
}

void collect(QWidget& widget, std::vector<QWidget*>& found)
{
    if (takesTab(widget)) found.push_back(&widget);
    // What a box opens is a window of its own.
    if (qobject_cast<QComboBox*>(&widget) != nullptr) return;
    for (QObject* const child : widget.children()) {
        if (!child->isWidgetType()) continue;
        auto& each = *static_cast<QWidget*>(child);
        if (!each.isWindow()) collect(each, found);
    }
}

} // namespace

void follow(QWidget& window)
{
    std::vector<QWidget*> order;
    collect(window, order);
    for (std::size_t i = 1; i < order.size(); ++i) QWidget::setTabOrder(order[i - 1], order[i]);
}

QWidget* next(QWidget& area, bool forward)
{
    QWidget* const from = area.focusWidget() != nullptr ? area.focusWidget() : &area;
    const auto step = [forward](QWidget* widget) {
        return forward ? widget->nextInFocusChain() : widget->previousInFocusChain();
    };
    for (QWidget* each = step(from); each != from; each = step(each)) {
        if (area.isAncestorOf(each) && takesTab(*each) && each->isVisible() && each->isEnabled()) return each;
    }
    return nullptr;
}

} // namespace quellon::FocusOrder
