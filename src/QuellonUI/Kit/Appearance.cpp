#include "QuellonUI/Kit/Appearance.h"

#include "QuellonUI/Kit/Style.h"
#include "QuellonUI/Theme.h"

#include <QApplication>
#include <QToolTip>

#include <utility>

namespace quellon::Appearance {

void apply(bool dark)
{
    applyColours(dark);
    applyFonts();
}

void applyColours(bool dark)
{
    const Theme& theme = dark ? Theme::dark() : Theme::light();
    if (qobject_cast<Style*>(QApplication::style()) == nullptr) QApplication::setStyle(new Style);
    QApplication::setPalette(theme.palette());
    QToolTip::setPalette(theme.palette());
}

void applyFonts()
{
    static bool areSet = false;
    if (std::exchange(areSet, true)) return;
    QApplication::setFont(Fonts::body());
    QToolTip::setFont(Fonts::caption());
}

} // namespace quellon::Appearance
