#include "Canvas.h"
#include "PanelWorlds.h"
#include "Picture.h"
#include "SettingsWorlds.h"
#include "Studio.h"

#include <algorithm>
#include <string_view>

namespace quellon {

namespace {

constexpr int gap = 24;

SettingsModel moment(std::string_view name)
{
    const auto moments = settingsMoments();
    return std::find_if(moments.begin(), moments.end(), [&](const auto& each) { return each.name == name; })->model();
}

QImage panels()
{
    Studio::light(false);
    const QImage left = panelPicture(ordinaryWorld()->panel());
    Studio::light(true);
    return Canvas::row({left, panelPicture(ordinaryWorld()->panel())}, gap, 0, Qt::transparent);
}

QImage settings()
{
    Studio::light(false);
    const QImage left = settingsPicture(moment("plan"));
    Studio::light(true);
    return Canvas::row({left, settingsPicture(moment("rules"))}, gap, 0, Qt::transparent);
}

} // namespace

std::vector<Picture> readmePictures()
{
    return {{QStringLiteral("panel"), panels}, {QStringLiteral("settings"), settings}};
}

} // namespace quellon
