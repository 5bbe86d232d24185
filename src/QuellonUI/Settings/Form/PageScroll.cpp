#include "QuellonUI/Settings/Form/PageScroll.h"

#include "QuellonUI/Settings/Form/FocusOrder.h"

#include <QEvent>
#include <QLayout>
#include <QScrollBar>
#include <QStyleOptionFocusRect>
#include <QStylePainter>

#include <algorithm>

namespace quellon {

/// Lies over all that is scrolled.
class PageScroll::Ring final : public QWidget {
public:
    explicit Ring(QWidget* parent) : QWidget(parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QStylePainter painter{this};
        QStyleOptionFocusRect option;
        option.initFrom(this);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
    }
};

PageScroll::PageScroll(QWidget& content, QWidget* parent) : QScrollArea(parent)
{
    setWidget(&content);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    // What is behind shows through.
    viewport()->setAutoFillBackground(false);
    content.setAutoFillBackground(false);
}

void PageScroll::takeKeyboard(const QString& name)
{
    if (accessibleName() != name) setAccessibleName(name);
    if (ring_ != nullptr) return;
    ring_ = new Ring{this};
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this](int from, int to) {
        const auto policy = to > from ? Qt::TabFocus : Qt::NoFocus;
        if (policy == focusPolicy()) return;
        setFocusPolicy(policy);
        FocusOrder::follow(*window());
    });
}

void PageScroll::focusInEvent(QFocusEvent* event)
{
    QScrollArea::focusInEvent(event);
    if (ring_ == nullptr) return;
    ring_->raise();
    ring_->show();
}

void PageScroll::focusOutEvent(QFocusEvent* event)
{
    QScrollArea::focusOutEvent(event);
    if (ring_ != nullptr) ring_->hide();
}

void PageScroll::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    if (ring_ != nullptr) ring_->setGeometry(rect());
}

bool PageScroll::viewportEvent(QEvent* event)
{
    const bool done = QScrollArea::viewportEvent(event);
    if (event->type() == QEvent::Resize && widget()->layout() != nullptr) {
        QMargins margins = widget()->layout()->contentsMargins();
        margins.setRight(std::max(0, margins.left() - (width() - viewport()->width())));
        if (margins != widget()->layout()->contentsMargins()) widget()->layout()->setContentsMargins(margins);
    }
    return done;
}

} // namespace quellon
