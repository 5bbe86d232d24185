#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Knowledge/ExplainPolicy.h"

#include <memory>
#include <utility>

namespace quellon {

namespace {

UpdateCheckConsent answer(bool granted)
{
    return granted ? UpdateCheckConsent::granted : UpdateCheckConsent::denied;
}

} // namespace

bool GuardEngine::showsUpdateConsentPrompt() const
{
    return settings_.updateCheckConsent == UpdateCheckConsent::unasked && capabilities_.edition == AppEdition::pro &&
           updateCheck_.has_value();
}

bool GuardEngine::answerUpdateCheckConsent(bool granted)
{
    GuardSettings settings = settings_;
    settings.updateCheckConsent = answer(granted);
    setSettings(std::move(settings));
    if (granted) postUpdateCheck();
    return granted;
}

void GuardEngine::postUpdateCheck()
{
    host_.runLoop.post(whileAlive([this] { checkForUpdatesIfAllowed(host_.clock.now()); }));
}

void GuardEngine::checkForUpdatesIfAllowed(Date now)
{
    if (!updateCheck_) return;
    updateCheck_->checker.check(settings_.updateCheckConsent, settings_.updateLastCheckedAt,
                                updateCheck_->currentVersion, updateCheck_->systemVersion, now,
                                [this, alive = std::weak_ptr{alive_}](const UpdateCheckResult& result) {
                                    if (!alive.expired()) takeOver(result);
                                });
}

void GuardEngine::takeOver(const UpdateCheckResult& result)
{
    if (result.checkedAt) {
        GuardSettings settings = settings_;
        settings.updateLastCheckedAt = result.checkedAt;
        setSettings(std::move(settings));
    }
    if (result.outcome.kind != UpdateCheckOutcome::Kind::updateAvailable) return;
    availableUpdate_ = AvailableUpdate{result.outcome.version, result.outcome.downloadURL};
    append(GuardEvent::Kind::info, "Update available: " + result.outcome.version);
}

void GuardEngine::dismissAvailableUpdate()
{
    availableUpdate_.reset();
    changed();
}

std::optional<AppExplanation> GuardEngine::explanation(std::string_view app) const
{
    auto known = explanationStore_.explanation(app);
    return known ? known : cloudExplanations_.explanation(app);
}

bool GuardEngine::canRequestExplanation(std::string_view app) const
{
    return capabilities_.edition == AppEdition::pro && explain_ && !explanation(app);
}

bool GuardEngine::showsExplainConsentPrompt() const
{
    return settings_.explainConsent == UpdateCheckConsent::unasked;
}

void GuardEngine::answerExplainConsent(bool granted)
{
    GuardSettings settings = settings_;
    settings.explainConsent = answer(granted);
    setSettings(std::move(settings));
    persistence_.save(settings_, Persistence::settingsFile);
}

bool GuardEngine::requestExplanation(const std::string& app)
{
    const bool isWanted =
        explain_ &&
        ExplainPolicy::shouldFetch(settings_.explainConsent, explanationStore_.explanation(app).has_value(),
                                   cloudExplanations_.explanation(app).has_value(), explainInFlight_.contains(app));
    if (!isWanted) return false;
    explainInFlight_.insert(app);
    explainFailures_.erase(app);
    changed();
    host_.runLoop.post(whileAlive([this, app] {
        explain_->fetcher->fetchExplanation(
            app, [this, app, alive = std::weak_ptr{alive_}](const ExplanationFetching::Result& result) {
                if (!alive.expired()) takeOver(app, result);
            });
    }));
    return true;
}

void GuardEngine::takeOver(const std::string& app, const ExplanationFetching::Result& result)
{
    if (const auto* explanation = std::get_if<AppExplanation>(&result)) {
        cloudExplanations_.store(*explanation, app, host_.clock.now());
        persistence_.save(cloudExplanations_, Persistence::explanationsFile);
    } else {
        explainFailures_.insert_or_assign(app, std::string{std::get<ExplainError>(result).message()});
    }
    explainInFlight_.erase(app);
    changed();
}

} // namespace quellon
