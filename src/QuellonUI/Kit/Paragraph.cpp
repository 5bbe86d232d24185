#include "QuellonUI/Kit/Paragraph.h"

#include "QuellonUI/Theme.h"

#include <QEvent>

namespace quellon {

Paragraph::Paragraph(const QFont& font, QWidget* parent) : QLabel(parent)
{
    setFont(font);
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setMinimumWidth(1);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::ClickFocus);
    colour();
}

void Paragraph::setText(const QString& text)
{
    if (text != this->text()) QLabel::setText(text);
}

void Paragraph::setTint(Tint tint)
{
    if (tint == tint_) return;
    tint_ = tint;
    colour();
}

void Paragraph::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) colour();
}

void Paragraph::colour()
{
    const QColor wanted = Theme::of(palette()).textTint(tint_);
    if (palette().color(QPalette::WindowText) == wanted) return;
    QPalette changed = palette();
    changed.setColor(QPalette::WindowText, wanted);
    setPalette(changed);
}

} // namespace quellon
