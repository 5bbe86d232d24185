#include "Picture.h"

namespace quellon {

std::vector<Picture> pictures()
{
    std::vector<Picture> result;
    for (const auto& part :
         {panelPictures(), settingsPictures(), debugPictures(), toastPictures(), trayPictures(), symbolPictures()})
        result.insert(result.end(), part.begin(), part.end());
    return result;
}

QString fileName(const Picture& picture, bool dark, double scale)
{
    return QStringLiteral("%1-%2-%3x.png")
        .arg(picture.name, dark ? QStringLiteral("dark") : QStringLiteral("light"))
        .arg(scale);
}

} // namespace quellon
