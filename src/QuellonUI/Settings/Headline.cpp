#include "QuellonUI/Settings/Headline.h"

#include "QuellonUI/Theme.h"

#include <QPainter>
#include <QTextLayout>

namespace quellon {

Headline::Headline(QWidget* parent) : QLabel(parent)
{
    setFont(Fonts::body());
    setTextFormat(Qt::PlainText);
}

void Headline::setModel(const RulesTabModel::Headline& model)
{
    const QString before = toQString(model.before);
    const QString bold = toQString(model.bold);
    boldFrom_ = static_cast<int>(before.size());
    boldLength_ = static_cast<int>(bold.size());
    const QString whole = before + bold + toQString(model.after);
    if (whole != text()) setText(whole);
}

QSize Headline::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void Headline::paintEvent(QPaintEvent* /*event*/)
{
    QTextLayout::FormatRange range;
    range.start = boldFrom_;
    range.length = boldLength_;
    range.format.setFontWeight(QFont::Bold);
    QTextLayout layout{text(), font()};
    layout.setFormats({range});
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid()) line.setLineWidth(width());
    layout.endLayout();
    QPainter painter{this};
    painter.setPen(Theme::of(palette()).text);
    layout.draw(&painter, QPointF{0.0, (height() - line.height()) / 2});
}

} // namespace quellon
