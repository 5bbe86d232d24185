#include "SettingsWorlds.h"

#include "Canvas.h"
#include "Picture.h"

#include "QuellonUI/Onboarding/OnboardingWindow.h"
#include "QuellonUI/Settings/SettingsWindow.h"

namespace quellon {

QImage settingsPicture(const SettingsModel& model)
{
    SettingsWindow window;
    window.setModel(model);
    return Canvas::drawn(window);
}

namespace {

QImage onboarding()
{
    OnboardingWindow window;
    window.setModel(onboardingMoment());
    return Canvas::drawn(window);
}

} // namespace

std::vector<Picture> settingsPictures()
{
    std::vector<Picture> result;
    for (const SettingsMoment& moment : settingsMoments()) {
        const QString name = QStringLiteral("settings-%1").arg(QString::fromLatin1(moment.name));
        result.push_back({name, [model = moment.model] { return settingsPicture(model()); }});
    }
    result.front().isGolden = true;
    result.push_back({QStringLiteral("onboarding"), onboarding});
    return result;
}

} // namespace quellon
