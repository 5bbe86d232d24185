#include "QuellonUI/Kit/ToolTipText.h"

#include <QTextDocument>

namespace quellon {

QString toolTipOf(const QString& text)
{
    return Qt::mightBeRichText(text) ? QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()) : text;
}

} // namespace quellon
