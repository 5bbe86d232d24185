#include "QuellonCore/Presentation/AppDetailModel.h"

#include "QuellonCore/Presentation/AppActionPresentation.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"

#include <fmt/format.h>

namespace quellon {

namespace {

constexpr Seconds hour{3'600.0};

std::string subtitleText(const AppExplanation& explanation)
{
    std::string text{AppExplanation::categories.label(explanation.category)};
    if (explanation.vendor && !explanation.vendor->empty()) text += " · " + plainText(*explanation.vendor);
    return text;
}

Tint tint(AppExplanation::LimitAdvice advice)
{
    switch (advice) {
    case AppExplanation::LimitAdvice::safe:
        return Tint::green;
    case AppExplanation::LimitAdvice::caution:
        return Tint::yellow;
    case AppExplanation::LimitAdvice::avoid:
        break;
    }
    return Tint::red;
}

std::string_view provenance(const AppExplanation& explanation)
{
    if (explanation.source == AppExplanation::Source::cloud) {
        return "Looked up online · AI-written, not human-reviewed.";
    }
    return explanation.confidence == AppExplanation::Confidence::generated
               ? "From the built-in knowledge pack · AI-written, not yet human-reviewed."
               : "From the built-in knowledge pack.";
}

AppDetailModel::Identity identityModel(const AppExplanation& explanation)
{
    AppDetailModel::Identity identity;
    identity.whatItIs = plainText(explanation.whatItIs);
    identity.whyTraffic = plainText(explanation.whyTraffic);
    identity.adviceTint = tint(explanation.limitAdvice);
    identity.advice = AppExplanation::limitAdvices.label(explanation.limitAdvice);
    if (explanation.limitNote && !explanation.limitNote->empty())
        identity.limitNote = plainText(*explanation.limitNote);
    identity.provenance = provenance(explanation);
    return identity;
}

AppDetailModel::Unknown unknownModel(const GuardEngine& engine, const std::string& app, bool askingConsent)
{
    AppDetailModel::Unknown unknown;
    unknown.text = "Not in the knowledge pack yet. The activity below is still tracked in full.";
    if (engine.canRequestExplanation(app)) {
        if (engine.explainInFlight().contains(app)) {
            unknown.lookingUp = "Looking it up…";
        } else if (askingConsent) {
            unknown.consent = ExplainConsentRow::of(app, engine.host().platform.machine);
        } else {
            unknown.explain = FormButton{"Explain online…", fmt::format("Look up {} online", plainText(app)),
                                         SettingsActions::ExplainOnline{app}};
        }
    }
    const auto failure = engine.explainFailures().find(app);
    if (failure != engine.explainFailures().end()) unknown.failure = plainText(failure->second);
    return unknown;
}

std::vector<FormButton> pauseControls(const AppActionSummary& summary, const std::string& app, Date now)
{
    std::vector<FormButton> result;
    if (summary.mutedUntil && *summary.mutedUntil > now) {
        result.push_back(
            {"Ask me again", fmt::format("Stop muting {}", plainText(app)), SettingsActions::UnmuteAsks{app}});
    }
    if (summary.allowedUntilTransferEnds) {
        result.push_back(
            {"Stop allowing", fmt::format("Watch {} again", plainText(app)), SettingsActions::ResumeWatching{app}});
    }
    return result;
}

} // namespace

ExplainConsentRow ExplainConsentRow::of(const std::string& app, std::string_view machine)
{
    ExplainConsentRow row;
    row.title = "Look up unknown apps online?";
    row.text = fmt::format(
        "When you click Explain, this app sends just that one process name (like \"GoogleUpdater\") to Quellon's "
        "lookup service and gets back a short description. Nothing is ever sent automatically, and no account or usage "
        "data is involved. Answers are saved on this {}, so each name is looked up at most once.",
        machine);
    row.allow = {"Allow lookups", "Allow online app lookups", SettingsActions::AnswerExplainConsent{app, true}};
    row.decline = {"No thanks", "Decline online app lookups", SettingsActions::AnswerExplainConsent{app, false}};
    return row;
}

AppDetailModel AppDetailModel::of(const GuardEngine& engine, const std::string& app, bool askingConsent, Date now)
{
    const AppActionSummary summary = engine.actionSummary(app, now);
    AppDetailModel model;
    model.app = plainText(app);
    model.policy = FormControls::policy(app, engine.settings().appPolicies.policy(app));
    if (const auto explanation = engine.explanation(app)) {
        model.subtitle = subtitleText(*explanation);
        model.identity = identityModel(*explanation);
    } else {
        model.unknown = unknownModel(engine, app, askingConsent);
    }
    model.lastHour = {"Last hour", MenuPresentation::format(engine.totalBytes(app, hour, now))};
    if (summary.isChronic) model.chronic = "🐌 slow but steady";
    for (const std::string& line : AppActionPresentation::lines(summary, now, engine.host().clock.calendar())) {
        model.actions.push_back(plainText(line));
    }
    model.pauseControls = quellon::pauseControls(summary, app, now);
    model.close = {"Close", "Close", SettingsActions::CloseDetails{}};
    return model;
}

} // namespace quellon
