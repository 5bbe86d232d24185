#include "QuellonUI/Kit/TextLabel.h"

#include "QuellonUI/Kit/ToolTipText.h"
#include "QuellonUI/Theme.h"

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

void TextLabel::setText(const QString& text)
{
    if (text != this->text()) QLabel::setText(text);
}

void TextLabel::setTint(Tint tint)
{
    if (tint == tint_) return;
    tint_ = tint;
    update();
}

void TextLabel::setElastic(bool elastic)
{
    if (elastic == elastic_) return;
    elastic_ = elastic;
    updateGeometry();
}

QString TextLabel::shownText() const
{
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
}

QSize TextLabel::minimumSizeHint() const
{
    return {elastic_ ? 0 : QLabel::sizeHint().width(), QLabel::minimumSizeHint().height()};
}

void TextLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter{this};
    painter.setPen(Theme::of(palette()).textTint(tint_));
    painter.drawText(contentsRect(), static_cast<int>(alignment() | Qt::AlignVCenter | Qt::TextSingleLine),
                     shownText());
}

bool TextLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) return QLabel::event(event);
    if (shownText() != text()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipOf(text()), this);
        return true;
    }
    return QLabel::event(event);
}

} // namespace quellon
