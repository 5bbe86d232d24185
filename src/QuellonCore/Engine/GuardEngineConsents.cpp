#include "QuellonCore/Engine/GuardEngine.h"

#include <utility>

namespace quellon {

namespace {

UpdateCheckConsent answer(bool granted)
{
    return granted ? UpdateCheckConsent::granted : UpdateCheckConsent::denied;
}

} // namespace

void GuardEngine::answerUpdateCheckConsent(bool granted)
{
    GuardSettings settings = settings_;
    settings.updateCheckConsent = answer(granted);
    setSettings(std::move(settings));
}

void GuardEngine::answerExplainConsent(bool granted)
{
    GuardSettings settings = settings_;
    settings.explainConsent = answer(granted);
    setSettings(std::move(settings));
    persistence_.save(settings_, Persistence::settingsFile);
}

} // namespace quellon
