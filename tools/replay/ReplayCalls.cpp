#include "ReplayVerbs.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace quellon::ReplayVerbs {

namespace {

using Operation = std::function<void(GuardEngine&)>;

/// A plan by its identifier, or by its name.
struct PlanReference {
    std::optional<UUID> id;
    std::optional<std::string> name;

    static PlanReference read(ReplayFields& line)
    {
        PlanReference plan{line.optional<UUID>("id"), line.optional<std::string>("name")};
        if (plan.id.has_value() == plan.name.has_value()) line.refuse("has either \"id\" or \"name\"");
        return plan;
    }
    /// The identifier need not be a plan's; the name must, the first one's that has it.
    [[nodiscard]] UUID resolve(const GuardSettings& settings) const
    {
        if (id) return *id;
        const auto found = std::find_if(settings.profiles.begin(), settings.profiles.end(),
                                        [this](const PlanProfile& plan) { return plan.name == *name; });
        if (found == settings.profiles.end()) throw ReplayError{"no plan has the name \"" + *name + "\""};
        return found->id;
    }
};

/// The first paused application of this name, as it stands.
SuspendedApp pausedEntry(const GuardEngine& engine, const std::string& app)
{
    const auto& list = engine.suspended();
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const SuspendedApp& each) { return each.app == app; });
    if (found == list.end()) throw ReplayError{"\"" + app + "\" is not paused"};
    return *found;
}

/// Changes a copy of the settings, as the settings' window does.
void edit(GuardEngine& engine, const std::function<void(GuardSettings&)>& change)
{
    GuardSettings settings = engine.settings();
    change(settings);
    engine.setSettings(std::move(settings));
}

Operation enforceNow(ReplayFields& line)
{
    return
        [apps = line.required<std::vector<std::string>>("apps"),
         action = line.required<EnforcementAction>("action")](GuardEngine& engine) { engine.enforceNow(apps, action); };
}

Operation resume(ReplayFields& line)
{
    return [app = line.required<std::string>("app"), minutes = line.optional<double>("snoozeMinutes")](
               GuardEngine& engine) { engine.resume(pausedEntry(engine, app), minutes); };
}

Operation resumeApps(ReplayFields& line)
{
    return [named = line.required<std::vector<std::string>>("named"), minutes = line.optional<double>("snoozeMinutes")](
               GuardEngine& engine) { engine.resumeApps(named, minutes); };
}

Operation resumeAll(ReplayFields& line)
{
    return [silent = line.optional("silent", false)](GuardEngine& engine) { engine.resumeAll(silent); };
}

Operation snooze(ReplayFields& line)
{
    return [app = line.required<std::string>("app"), minutes = line.optional<double>("minutes")](GuardEngine& engine) {
        engine.snooze(app, minutes);
    };
}

/// An operation on one application at the present time.
template <auto operation>
Operation onAppNow(ReplayFields& line)
{
    return [app = line.required<std::string>("app")](GuardEngine& engine) {
        static_cast<void>((engine.*operation)(app, engine.host().clock.now()));
    };
}

template <auto operation>
Operation onApp(ReplayFields& line)
{
    return [app = line.required<std::string>("app")](GuardEngine& engine) { (engine.*operation)(app); };
}

/// An operation without arguments.
template <auto operation>
Operation plain(ReplayFields& /*line*/)
{
    return [](GuardEngine& engine) { (engine.*operation)(); };
}

template <auto operation>
Operation onPlan(ReplayFields& line)
{
    return [plan = PlanReference::read(line)](GuardEngine& engine) {
        (engine.*operation)(plan.resolve(engine.settings()));
    };
}

template <auto operation>
Operation onConsent(ReplayFields& line)
{
    return [granted = line.required<bool>("granted")](GuardEngine& engine) { (engine.*operation)(granted); };
}

Operation checkForUpdatesIfAllowed(ReplayFields& /*line*/)
{
    return [](GuardEngine& engine) { engine.checkForUpdatesIfAllowed(engine.host().clock.now()); };
}

Operation addProfile(ReplayFields& line)
{
    return [named = line.required<std::string>("named")](GuardEngine& engine) { engine.addProfile(named); };
}

Operation calibrate(ReplayFields& line)
{
    return [actual = line.required<std::uint64_t>("actualUsedBytes")](GuardEngine& engine) {
        BudgetStore budget = engine.budget();
        budget.calibrate(actual, engine.host().clock.now(), engine.host().clock.calendar());
        engine.setBudget(std::move(budget));
    };
}

Operation addDevToolPresets(ReplayFields& /*line*/)
{
    return [](GuardEngine& engine) { edit(engine, [](GuardSettings& settings) { settings.addDevToolPresets(); }); };
}

Operation setPolicy(ReplayFields& line)
{
    return [app = line.required<std::string>("app"), policy = line.required<AppPolicy>("policy")](GuardEngine& engine) {
        edit(engine, [&](GuardSettings& settings) { settings.setPolicy(policy, app); });
    };
}

Operation rederiveRules(ReplayFields& /*line*/)
{
    return [](GuardEngine& engine) {
        edit(engine, [&](GuardSettings& settings) { settings.rederiveRules(engine.host().identifiers); });
    };
}

struct Call {
    const char* name;
    Operation (*read)(ReplayFields& line);
};
constexpr std::array<Call, 25> calls{{
    {"start", plain<&GuardEngine::start>},
    {"stop", plain<&GuardEngine::stop>},
    {"tick", plain<&GuardEngine::tick>},
    {"enforceNow", enforceNow},
    {"resume", resume},
    {"resumeApps", resumeApps},
    {"resumeAll", resumeAll},
    {"snooze", snooze},
    {"allowUntilTransferEnds", onAppNow<&GuardEngine::allowUntilTransferEnds>},
    {"resumeWatching", onApp<&GuardEngine::resumeWatching>},
    {"muteAsks", onAppNow<&GuardEngine::muteAsks>},
    {"unmuteAsks", onApp<&GuardEngine::unmuteAsks>},
    {"selectProfile", onPlan<&GuardEngine::selectProfile>},
    {"addProfile", addProfile},
    {"deleteProfile", onPlan<&GuardEngine::deleteProfile>},
    {"calibrate", calibrate},
    {"markAlertsSeen", plain<&GuardEngine::markAlertsSeen>},
    {"answerUpdateCheckConsent", onConsent<&GuardEngine::answerUpdateCheckConsent>},
    {"checkForUpdatesIfAllowed", checkForUpdatesIfAllowed},
    {"dismissAvailableUpdate", plain<&GuardEngine::dismissAvailableUpdate>},
    {"answerExplainConsent", onConsent<&GuardEngine::answerExplainConsent>},
    {"requestExplanation", onApp<&GuardEngine::requestExplanation>},
    {"addDevToolPresets", addDevToolPresets},
    {"setPolicy", setPolicy},
    {"rederiveRules", rederiveRules},
}};

} // namespace

Action call(ReplayFields& line, Context& context)
{
    const auto name = line.required<std::string>("call");
    const auto known = std::find_if(calls.begin(), calls.end(), [&](const Call& each) { return name == each.name; });
    if (known == calls.end()) line.refuse("the guard has no operation \"" + name + "\"");
    requireRun(context);
    return [operation = known->read(line)](ReplaySession& session) { operation(session.engine()); };
}

} // namespace quellon::ReplayVerbs
