#include "QuellonUI/TextLabel.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace quellon {

TextLabel::TextLabel(const QFont& font, QWidget* parent) : QLabel(parent)
{
    setFont(font);
    setTextFormat(Qt::PlainText);
}

void TextLabel::setColour(const QColor& colour)
{
    QPalette changed = palette();
    changed.setColor(QPalette::WindowText, colour);
    setPalette(changed);
}

QSize TextLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void TextLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter{this};
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), static_cast<int>(alignment() | Qt::AlignVCenter | Qt::TextSingleLine),
                     fontMetrics().elidedText(text(), Qt::ElideRight, width()));
}

bool TextLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) return QLabel::event(event);
    if (fontMetrics().horizontalAdvance(text()) > width()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
    }
    return true;
}

} // namespace quellon
