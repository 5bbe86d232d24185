#include "SettingsWorlds.h"

#include "PanelWorlds.h"

#include <chrono>

namespace quellon {

namespace {

using namespace SettingsActions;
using namespace std::chrono_literals;

void enter(World& world, NumberField::Kind kind, const std::string& text)
{
    world.does(EditNumber{{kind, {}}, text});
    world.does(CommitNumber{{kind, {}}});
}

SettingsModel page(SettingsTab tab, const std::vector<SettingsAction>& actions = {})
{
    const auto world = ordinaryWorld();
    world->does(SelectTab{tab});
    for (const SettingsAction& action : actions) world->does(action);
    return world->settings();
}

/// A number is refused, and a plan without a budget's worth of use.
SettingsModel refused()
{
    World world;
    world.does(EditNumber{{NumberField::Kind::planSize, {}}, "1,500"});
    world.does(CommitNumber{{NumberField::Kind::planSize, {}}});
    return world.settings();
}

SettingsModel question()
{
    const auto world = ordinaryWorld();
    enter(*world, NumberField::Kind::planSize, "50");
    world->does(RederiveRules{});
    return world->settings();
}

SettingsModel riskyRules()
{
    const auto world = ordinaryWorld();
    world->does(SelectTab{SettingsTab::rules});
    world->does(AddRule{900s});
    for (const GuardRule& rule : world->engine().settings().rules())
        world->does(SetRuleLevel{rule.id, ActionLevel::enforce});
    world->does(SetEnforcementAction{EnforcementAction::kill});
    return world->settings();
}

const std::vector<SettingsAction> policies{
    SetPolicy{"dropbox", AppPolicy::always}, SetPolicy{"steam", AppPolicy::always},
    SetPolicy{"百度网盘同步空间客户端更新服务进程 with a very long name", AppPolicy::always},
    SetPolicy{"firefox-esr", AppPolicy::never}, SetPolicy{"telegram-desktop", AppPolicy::never}};

SettingsModel picker(const std::string& query)
{
    return page(SettingsTab::apps, {OpenPicker{}, FilterPicker{query}});
}

SettingsModel log()
{
    const auto world = ordinaryWorld();
    world->change([](GuardSettings& settings) { settings.rules()[0].level = ActionLevel::notify; });
    world->wait(400s);
    world->move({{"firefox-esr", 61 * mega}});
    world->wait(90s);
    world->engine().resumeAll(false);
    world->does(SelectTab{SettingsTab::log});
    return world->settings();
}

SettingsModel about()
{
    World world;
    world.state().startsAtLogin = true;
    world.does(SelectTab{SettingsTab::about});
    return world.settings();
}

SettingsModel details(const std::string& app)
{
    return page(SettingsTab::apps, {OpenDetails{app}});
}

SettingsModel consent()
{
    const std::string app = "helperd";
    return page(SettingsTab::apps, {OpenDetails{app}, ExplainOnline{app}});
}

SettingsModel lookingUp()
{
    const std::string app = "helperd";
    const auto world = ordinaryWorld();
    world->lookupAnswers("{}", 5s);
    world->engine().answerExplainConsent(true);
    for (const SettingsAction& action : {SettingsAction{OpenDetails{app}}, SettingsAction{ExplainOnline{app}}})
        world->does(action);
    world->engine().allowUntilTransferEnds(app, world->now());
    world->engine().muteAsks(app, world->now());
    return world->settings();
}

} // namespace

std::vector<SettingsMoment> settingsMoments()
{
    return {{"plan", [] { return page(SettingsTab::plan); }},
            {"plan-refused", refused},
            {"plan-question", question},
            {"rules", [] { return page(SettingsTab::rules); }},
            {"rules-risky", riskyRules},
            {"apps", [] { return page(SettingsTab::apps, policies); }},
            {"apps-empty", [] { return page(SettingsTab::apps); }},
            {"picker", [] { return picker(""); }},
            {"picker-filtered", [] { return picker("FIRE"); }},
            {"log", log},
            {"about", about},
            {"details", [] { return details("nextcloud"); }},
            {"details-unknown", [] { return details("helperd"); }},
            {"details-consent", consent},
            {"details-looking-up", lookingUp}};
}

OnboardingModel onboardingMoment()
{
    return World{}.onboarding();
}

} // namespace quellon
