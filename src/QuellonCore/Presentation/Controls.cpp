#include "QuellonCore/Presentation/Controls.h"

#include "QuellonCore/Engine/NotificationActionRouter.h"
#include "QuellonCore/Presentation/AppActionPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"

#include <fmt/format.h>

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
    settle();
    if (plan.style == NotificationStyle::transient) {
        note_ = Notification{plan, ++lastSerial_};
        noteEnd_ = engine_.host().runLoop.after(transientTime, [this] {
            note_.reset();
            soon();
        });
        if (questions_.empty()) hold();
    } else {
        questions_.push_back({plan, ++lastSerial_});
        if (questions_.size() == 1) hold();
        if (questions_.size() > mostQuestions) takeQuestion();
    }
    soon();
}

void Controls::soon()
{
    soon_ = engine_.host().runLoop.after(Seconds{0.0}, [this] { changed_(); });
}

void Controls::hold()
{
    hold_ = engine_.host().runLoop.after(holdTime, [this] {
        hold_.reset();
        changed_();
    });
}

NotificationPlan Controls::takeQuestion()
{
    NotificationPlan plan = std::move(questions_.front().plan);
    questions_.pop_front();
    hold();
    return plan;
}

void Controls::settle()
{
    const bool endsTurn = !questions_.empty() && isMoot(questions_.front().plan);
    std::erase_if(questions_, [this](const Notification& each) { return isMoot(each.plan); });
    if (endsTurn) hold();
}

bool Controls::isMoot(const NotificationPlan& plan) const
{
    const auto onlyResumes = [](NotificationAction action) {
        return action == NotificationAction::resume || action == NotificationAction::resumeAndSnooze;
    };
    return !plan.actions.empty() && std::all_of(plan.actions.begin(), plan.actions.end(), onlyResumes) &&
           std::none_of(plan.apps.begin(), plan.apps.end(), [this](const std::string& app) { return isPaused(app); });
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
    if (!questions_.empty() || note_) result.push_back({ControlCommand::dismiss, "dismisses"});
    return result;
}

ControlsModel Controls::model(Date now)
{
    settle();
    ControlsModel model;
    model.menuBar = engine_.menuBar(now);
    model.menuBar.title = plainText(model.menuBar.title);
    if (const auto& status = engine_.budgetStatus()) {
        model.budget = BudgetPresentation::row(*status, engine_.dailyStatus(), engine_.host().clock.calendar());
    }
    const auto app = selected();
    for (const SuspendedApp& each : engine_.suspended()) {
        model.paused.push_back(
            {plainText(each.app), AppActionPresentation::relative(each.at, now), each.app == app, each.id()});
    }
    const auto& usage = engine_.usage();
    const auto row = std::find_if(usage.begin(), usage.end(), [&](const AppUsage& each) { return each.app == app; });
    if (row != usage.end()) model.selectedRow = static_cast<std::size_t>(row - usage.begin());
    if (!questions_.empty()) {
        model.question = ControlsModel::Notice::of(questions_.front().plan, questions_.front().serial);
        model.held = static_cast<bool>(hold_);
    }
    if (questions_.size() > 1) model.questionPlace = fmt::format("1 of {}", questions_.size());
    if (note_) model.note = ControlsModel::Notice::of(note_->plan, note_->serial);
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
        dismiss();
        break;
    }
    soon();
}

void Controls::resume(const std::string& id)
{
    const auto& paused = engine_.suspended();
    const auto entry =
        std::find_if(paused.begin(), paused.end(), [&](const SuspendedApp& each) { return each.id() == id; });
    if (entry == paused.end()) return;
    engine_.resumeApps({entry->app}, 0);
    soon();
}

void Controls::dismiss()
{
    if (hold_) return;
    if (!questions_.empty()) {
        takeQuestion();
        return;
    }
    note_.reset();
    noteEnd_.reset();
}

void Controls::answer(std::size_t button)
{
    settle();
    if (hold_ || questions_.empty() || button >= questions_.front().plan.actions.size()) return;
    const NotificationPlan plan = takeQuestion();
    NotificationActionRouter::perform(plan.actions[button], plan.apps, engine_, [&](SettingsTab /*tab*/) {
        if (!plan.apps.empty()) choice_ = plan.apps.front();
    });
    soon();
}

} // namespace quellon
