#include "ReplayDetail.h"

#include <string>
#include <utility>

namespace quellon {

namespace {

OrderedJson object(const FormButton& button)
{
    return {{"title", button.title}, {"accessibilityLabel", button.accessibilityLabel}};
}

OrderedJson object(const FormChoice& choice)
{
    OrderedJson options = OrderedJson::array();
    for (const auto& each : choice.options) options.push_back(each.title);
    OrderedJson result = {{"accessibilityLabel", choice.accessibilityLabel}, {"options", std::move(options)}};
    if (choice.selected) result["selected"] = choice.options[*choice.selected].title;
    return result;
}

OrderedJson object(const AppDetailModel::Identity& identity)
{
    OrderedJson result = {{"whatItIs", identity.whatItIs},
                          {"whyTraffic", identity.whyTraffic},
                          {"adviceTint", tints.raw(identity.adviceTint)},
                          {"advice", identity.advice}};
    if (identity.limitNote) result["limitNote"] = *identity.limitNote;
    result["provenance"] = identity.provenance;
    return result;
}

OrderedJson object(const ExplainConsentRow& row)
{
    return {{"title", row.title}, {"text", row.text}, {"buttons", {object(row.allow), object(row.decline)}}};
}

OrderedJson object(const AppDetailModel::Unknown& unknown)
{
    OrderedJson result = {{"text", unknown.text}};
    if (unknown.lookingUp) result["lookingUp"] = *unknown.lookingUp;
    if (unknown.consent) result["consent"] = object(*unknown.consent);
    if (unknown.explain) result["explain"] = object(*unknown.explain);
    if (unknown.failure) result["failure"] = {{"text", *unknown.failure}, {"tint", tints.raw(Tint::orange)}};
    return result;
}

} // namespace

OrderedJson replayDetail(const AppDetailModel& model)
{
    OrderedJson result = {{"app", model.app}};
    if (model.subtitle) result["subtitle"] = *model.subtitle;
    result["policy"] = object(model.policy);
    if (model.identity) result["identity"] = object(*model.identity);
    if (model.unknown) result["unknown"] = object(*model.unknown);
    OrderedJson usage = {
        {"heading", AppDetailModel::usageHeading}, {"label", model.lastHour.label}, {"value", model.lastHour.value}};
    if (model.chronic) usage["chronic"] = *model.chronic;
    result["usage"] = std::move(usage);
    result["actions"] = {{"heading", AppDetailModel::actionsHeading}, {"lines", model.actions}};
    OrderedJson controls = OrderedJson::array();
    for (const FormButton& each : model.pauseControls) controls.push_back(object(each));
    result["pauseControls"] = std::move(controls);
    result["close"] = object(model.close);
    return result;
}

} // namespace quellon
