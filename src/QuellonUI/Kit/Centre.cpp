#include "QuellonUI/Kit/Centre.h"

#include "QuellonCore/Settings/WindowPlaces.h"

#include <QScreen>
#include <QWidget>

namespace quellon {

void centre(QWidget& window, const QScreen& screen)
{
    const QRect free = screen.availableGeometry();
    const auto place =
        WindowPlaces::centred(window.width(), window.height(), {free.x(), free.y(), free.width(), free.height()});
    window.move(place.x, place.y);
}

} // namespace quellon
