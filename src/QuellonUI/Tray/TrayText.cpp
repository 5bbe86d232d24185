#include "QuellonUI/Tray/TrayText.h"

#include "QuellonUI/Theme.h"

namespace quellon {

QString toolTipText(const std::string& text)
{
    constexpr QChar leftAngle{0x2039};
    return toQString(text).replace(QLatin1Char{'<'}, leftAngle).replace(QLatin1Char{'&'}, QLatin1Char{'+'});
}

} // namespace quellon
