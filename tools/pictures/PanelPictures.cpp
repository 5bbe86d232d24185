#include "Canvas.h"
#include "PanelWorlds.h"
#include "Picture.h"

#include "QuellonUI/Panel/MenuPanel.h"

namespace quellon {

QImage panelPicture(const MenuPanelModel& model)
{
    MenuPanel panel;
    panel.setModel(model);
    constexpr QRect roomy{0, 0, 1'000, 4'000};
    panel.openAt(roomy.topLeft(), roomy);
    return Canvas::drawn(panel);
}

namespace {

/// On a small screen it scrolls.
QImage scrolling()
{
    MenuPanel panel;
    panel.setModel(ordinaryWorld()->panel());
    constexpr QRect narrow{0, 0, 800, 360};
    panel.openAt(narrow.topLeft(), narrow);
    return Canvas::drawn(panel);
}

} // namespace

std::vector<Picture> panelPictures()
{
    std::vector<Picture> result;
    for (const PanelMoment& moment : panelMoments()) {
        const QString name = QStringLiteral("panel-%1").arg(QString::fromLatin1(moment.name));
        result.push_back({name, [model = moment.model] { return panelPicture(model()); }});
    }
    result.front().isGolden = true;
    result.push_back({QStringLiteral("panel-scrolling"), scrolling});
    return result;
}

} // namespace quellon
