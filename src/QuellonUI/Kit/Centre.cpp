#include "QuellonUI/Kit/Centre.h"

#include "QuellonCore/Presentation/FirstPlace.h"

#include <QScreen>
#include <QWidget>

namespace quellon {

void centre(QWidget& window, const QScreen& screen)
{
    const QRect free = screen.availableGeometry();
    const auto place =
        FirstPlace::centred(window.width(), window.height(), {free.x(), free.y(), free.width(), free.height()});
    window.move(place.x, place.y);
}

} // namespace quellon
