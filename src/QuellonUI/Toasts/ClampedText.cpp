#include "QuellonUI/Toasts/ClampedText.h"

#include "QuellonUI/Kit/ToolTipText.h"
#include "QuellonUI/Theme.h"

#include <QEvent>
#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

namespace quellon {

ClampedText::ClampedText(const QFont& font, int width, int mostLines, Qt::TextElideMode elide, QWidget* parent)
    : QLabel(parent), mostLines_(mostLines), elide_(elide)
{
    setTextFormat(Qt::PlainText);
    setFont(font);
    setFixedWidth(width);
    arrange();
}

void ClampedText::setText(const QString& text)
{
    if (text == this->text()) return;
    QLabel::setText(text);
    arrange();
}

void ClampedText::setTint(Tint tint)
{
    if (tint == tint_) return;
    tint_ = tint;
    update();
}

void ClampedText::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) arrange();
}

void ClampedText::arrange()
{
    const QChar separator{QChar::LineSeparator};
    const QChar ellipsis{0x2026};
    QString rest = text();
    rest.replace(QLatin1Char{'\n'}, separator);
    QTextLayout layout{rest, font(), this};
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    std::vector<QString> lines;
    bool cut = false;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid() && !rest.isEmpty() && !cut; line = layout.createLine()) {
        line.setLineWidth(width());
        const auto end = line.textStart() + line.textLength();
        QString shown = rest.mid(line.textStart(), line.textLength());
        cut = static_cast<int>(lines.size()) + 1 == mostLines_ && end < rest.size();
        // The ellipsis comes of what follows, or else where a line ends that others follow.
        if (cut) {
            const bool isWhole = shown.endsWith(separator);
            shown = rest.mid(line.textStart()).section(separator, 0, 0);
            if (isWhole) shown += ellipsis;
        }
        shown.remove(separator);
        lines.push_back(cut ? fontMetrics().elidedText(shown, elide_, width()) : shown);
    }
    layout.endLayout();
    lines_ = std::move(lines);
    setFixedHeight(static_cast<int>(lines_.size()) * fontMetrics().lineSpacing());
    setAccessibleName(text());
    setToolTip(cut ? toolTipOf(text()) : QString{});
    update();
}

void ClampedText::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter{this};
    painter.setPen(Theme::of(palette()).textTint(tint_));
    QRect place = rect();
    place.setHeight(fontMetrics().lineSpacing());
    for (const QString& line : lines_) {
        painter.drawText(place, static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine), line);
        place.translate(0, place.height());
    }
}

} // namespace quellon
