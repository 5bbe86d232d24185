#include "QuellonUI/Kit/Style.h"

#include <QWidget>

namespace quellon {

Style::Style() : QProxyStyle(QStringLiteral("Fusion")) {}

void Style::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    return QProxyStyle::pixelMetric(metric, option, widget);
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* returned) const
{
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

} // namespace quellon
