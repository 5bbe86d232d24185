#include "QuellonCore/Presentation/Controls.h"

#include "QuellonCore/Engine/NotificationActionRouter.h"
#include "QuellonCore/Presentation/AppActionPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"

#include <algorithm>
#include <set>
#include <utility>

namespace quellon {

Controls::Controls(GuardEngine& engine, NotificationFeed& feed, std::function<void()> changed)
    : engine_(engine),
      changed_(std::move(changed)),
      subscription_(feed, [this](const NotificationPlan& plan) { show(plan); })
{
}

void Controls::show(const NotificationPlan& plan)
{
    const Place place = plan.actions.empty() ? &Controls::note_ : &Controls::question_;
    settle();
    const bool replaces = (this->*place).has_value();
    Shown& shown = (this->*place).emplace(Shown{plan, nullptr, nullptr});
    if (replaces) {
        shown.hold = engine_.host().runLoop.after(replacedTime, [this, place] { (this->*place)->hold.reset(); });
    }
    if (plan.style == NotificationStyle::transient) {
        shown.end = engine_.host().runLoop.after(transientTime, [this, place] {
            (this->*place).reset();
            soon();
        });
    }
    soon();
}

void Controls::soon()
{
    soon_ = engine_.host().runLoop.after(Seconds{0.0}, [this] { changed_(); });
}

void Controls::settle()
{
    if (!question_) return;
    const NotificationPlan& plan = question_->plan;
    const NotificationAction first = plan.actions.front();
    // What asks whether to resume is settled once nothing of it is paused any more.
    const bool asksToResume = first == NotificationAction::resume || first == NotificationAction::resumeAndSnooze;
    const auto isPausedApp = [this](const std::string& app) { return isPaused(app); };
    if (asksToResume && std::none_of(plan.apps.begin(), plan.apps.end(), isPausedApp)) question_.reset();
}

bool Controls::isPaused(const std::string& app) const
{
    const auto& paused = engine_.suspended();
    return std::any_of(paused.begin(), paused.end(), [&](const SuspendedApp& each) { return each.app == app; });
}

std::vector<std::string> Controls::selectable() const
{
    std::vector<std::string> result;
    std::set<std::string> known;
    const auto add = [&](const std::string& app) {
        if (known.insert(app).second) result.push_back(app);
    };
    for (const SuspendedApp& each : engine_.suspended()) add(each.app);
    for (const AppUsage& each : engine_.usage()) add(each.app);
    return result;
}

std::optional<std::string> Controls::selected() const
{
    if (choice_) {
        const auto& usage = engine_.usage();
        const bool moves =
            std::any_of(usage.begin(), usage.end(), [this](const AppUsage& each) { return each.app == *choice_; });
        if (moves || isPaused(*choice_)) return choice_;
    }
    if (engine_.suspended().empty()) return std::nullopt;
    return engine_.suspended().front().app;
}

void Controls::select(int step)
{
    const auto apps = selectable();
    if (apps.empty()) return;
    const auto current = selected();
    if (!current) {
        choice_ = step > 0 ? apps.front() : apps.back();
        return;
    }
    const auto last = static_cast<std::ptrdiff_t>(apps.size()) - 1;
    const auto place = std::find(apps.begin(), apps.end(), *current) - apps.begin();
    choice_ = apps[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(place + step, 0, last))];
}

std::vector<ControlsModel::Offer> Controls::offers() const
{
    std::vector<ControlsModel::Offer> result;
    result.push_back({ControlCommand::startOrStop, engine_.isRunning() ? "stops" : "starts"});
    const auto app = selected();
    const bool paused = app && isPaused(*app);
    if (paused) result.push_back({ControlCommand::resume, "resumes"});
    if (!engine_.suspended().empty()) result.push_back({ControlCommand::resumeAll, "resumes all"});
    if (app) result.push_back({ControlCommand::snooze, "snoozes"});
    if (!engine_.suspended().empty() || !engine_.usage().empty()) {
        result.push_back({ControlCommand::selectNext, "select"});
    }
    if (question_ || note_) result.push_back({ControlCommand::dismiss, "dismisses"});
    return result;
}

ControlsModel Controls::model(Date now)
{
    settle();
    ControlsModel model;
    model.menuBar = engine_.menuBar(now);
    if (const auto& status = engine_.budgetStatus()) {
        model.budget = BudgetPresentation::row(*status, engine_.dailyStatus(), engine_.host().clock.calendar());
    }
    const auto app = selected();
    for (const SuspendedApp& each : engine_.suspended()) {
        model.paused.push_back({plainText(each.app), AppActionPresentation::relative(each.at, now), each.app == app});
    }
    const auto& usage = engine_.usage();
    const auto row = std::find_if(usage.begin(), usage.end(), [&](const AppUsage& each) { return each.app == app; });
    if (row != usage.end()) model.selectedRow = static_cast<std::size_t>(row - usage.begin());
    if (question_) model.question = ControlsModel::Notice::of(question_->plan);
    if (note_) model.note = ControlsModel::Notice::of(note_->plan);
    model.offers = offers();
    return model;
}

void Controls::perform(ControlCommand command)
{
    settle();
    const auto app = selected();
    switch (command) {
    case ControlCommand::startOrStop:
        if (engine_.isRunning())
            engine_.stop();
        else
            engine_.start();
        break;
    case ControlCommand::selectPrevious:
        select(-1);
        break;
    case ControlCommand::selectNext:
        select(1);
        break;
    case ControlCommand::resume:
        if (app) engine_.resumeApps({*app}, 0);
        break;
    case ControlCommand::snooze:
        if (app && isPaused(*app))
            engine_.resumeApps({*app});
        else if (app)
            engine_.snooze(*app);
        break;
    case ControlCommand::resumeAll:
        if (!engine_.suspended().empty()) engine_.resumeAll(false);
        break;
    case ControlCommand::dismiss:
        if (question_)
            question_.reset();
        else
            note_.reset();
        break;
    }
    soon();
}

void Controls::answer(std::size_t button)
{
    settle();
    if (!question_ || question_->hold || button >= question_->plan.actions.size()) return;
    const NotificationPlan plan = question_->plan;
    question_.reset();
    NotificationActionRouter::perform(plan.actions[button], plan.apps, engine_, [&](SettingsTab /*tab*/) {
        if (!plan.apps.empty()) choice_ = plan.apps.front();
    });
    soon();
}

} // namespace quellon
