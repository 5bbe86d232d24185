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
    colour();
    update();
}

void TextLabel::setSelectable()
{
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::ClickFocus);
    colour();
}

/// What can be selected is drawn by the toolkit, in the palette's colour.
void TextLabel::colour()
{
    const QColor wanted = Theme::of(palette()).textTint(tint_);
    if (!isSelectable() || palette().color(QPalette::WindowText) == wanted) return;
    QPalette changed = palette();
    changed.setColor(QPalette::WindowText, wanted);
    setPalette(changed);
}

/// In a text that is cut nobody sees where a part of it begins and ends.
void TextLabel::selectWhole()
{
    if (hasSelectedText() && shownText() != text()) setSelection(0, static_cast<int>(text().size()));
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

void TextLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) colour();
}

void TextLabel::mouseReleaseEvent(QMouseEvent* event)
{
    QLabel::mouseReleaseEvent(event);
    selectWhole();
}

void TextLabel::keyPressEvent(QKeyEvent* event)
{
    QLabel::keyPressEvent(event);
    selectWhole();
}

void TextLabel::paintEvent(QPaintEvent* event)
{
    const QString shown = shownText();
    if (isSelectable() && shown == text()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter{this};
    painter.setPen(Theme::of(palette()).textTint(tint_));
    if (hasSelectedText()) {
        painter.fillRect(contentsRect(), palette().highlight());
        painter.setPen(palette().highlightedText().color());
    }
    painter.drawText(contentsRect(), static_cast<int>(alignment() | Qt::AlignVCenter | Qt::TextSingleLine), shown);
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
