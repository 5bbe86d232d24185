#include "QuellonUI/Kit/Appearance.h"

#include "QuellonUI/Kit/Style.h"
#include "QuellonUI/Theme.h"

#include <QApplication>
#include <QToolTip>

namespace quellon::Appearance {

void apply(bool dark)
{
    const Theme& theme = dark ? Theme::dark() : Theme::light();
    if (qobject_cast<Style*>(QApplication::style()) == nullptr) {
        QApplication::setStyle(new Style);
        QApplication::setFont(Fonts::body());
        QToolTip::setFont(Fonts::caption());
    }
    QApplication::setPalette(theme.palette());
    QToolTip::setPalette(theme.palette());
}

} // namespace quellon::Appearance
