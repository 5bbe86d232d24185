#include "QuellonUI/Settings/Form/PageScroll.h"

#include <QEvent>
#include <QLayout>

#include <algorithm>

namespace quellon {

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
