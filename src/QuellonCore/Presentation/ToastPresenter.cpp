#include "QuellonCore/Presentation/ToastPresenter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quellon {

ToastButtonStyle::Text ToastButtonStyle::text() const
{
    if (isDestructive) return Text::red;
    return isPrimary ? Text::white : Text::primary;
}

ToastButtonStyle::Ground ToastButtonStyle::ground() const
{
    if (isDestructive) return Ground::red;
    return isPrimary ? Ground::accent : Ground::grey;
}

double ToastButtonStyle::groundOpacity() const
{
    constexpr double red = 0.15;
    constexpr double grey = 0.18;
    if (isDestructive) return red;
    return isPrimary ? 1.0 : grey;
}

ToastModel ToastModel::of(const NotificationPlan& plan, std::uint64_t id)
{
    const bool persistent = plan.style == NotificationStyle::persistent;
    ToastModel toast;
    toast.id = id;
    toast.symbol = persistent ? "exclamationmark.triangle.fill" : "info.circle.fill";
    toast.tint = persistent ? Tint::orange : Tint::secondary;
    toast.notice = Notice::of(plan);
    for (const Notice::Button& button : toast.notice.buttons) {
        toast.buttonStyles.push_back({toast.buttonStyles.empty(), button.destructive});
    }
    return toast;
}

std::vector<ToastLayout::Point> ToastLayout::corners(const Frame& freeArea, const std::vector<Size>& toasts)
{
    constexpr int fromTop = 8;
    constexpr int gap = 12;
    std::vector<Point> result;
    int y = freeArea.top + fromTop;
    for (const Size& toast : toasts) {
        result.push_back({freeArea.left + freeArea.width - toast.width - gap, y});
        y += toast.height + gap;
    }
    return result;
}

ToastPresenter::ToastPresenter(RunLoop& runLoop, OnAction onAction, std::function<void()> changed)
    : runLoop_(runLoop), onAction_(std::move(onAction)), changed_(std::move(changed))
{
}

void ToastPresenter::show(const NotificationPlan& plan)
{
    if (plan.title.empty()) return;
    const std::uint64_t id = ++lastID_;
    Toast toast;
    toast.id = id;
    toast.plan = plan;
    if (plan.style == NotificationStyle::transient) {
        toast.end = runLoop_.after(Notice::transientTime, [this, id] { takeAway(id); });
    }
    toasts_.push_back(std::move(toast));
    if (toasts_.size() > Notice::mostWaiting)
        takeAway(toasts_.front().id);
    else
        tell();
}

void ToastPresenter::press(std::uint64_t id, std::size_t button)
{
    const auto toast = find(id);
    if (toast == toasts_.end() || toast->hold || button >= toast->plan.actions.size()) return;
    const NotificationAction action = toast->plan.actions[button];
    const std::vector<std::string> apps = toast->plan.apps;
    if (onAction_) onAction_(action, apps);
    takeAway(id); // which the action may have done already
}

void ToastPresenter::close(std::uint64_t id)
{
    const auto toast = find(id);
    if (toast == toasts_.end()) return;
    toasts_.erase(toast);
    tell();
}

void ToastPresenter::dismissAll()
{
    if (toasts_.empty()) return;
    toasts_.clear();
    tell();
}

std::vector<ToastModel> ToastPresenter::toasts() const
{
    std::vector<ToastModel> result;
    for (const Toast& each : toasts_) result.push_back(ToastModel::of(each.plan, each.id));
    return result;
}

ToastPresenter::Toasts::iterator ToastPresenter::find(std::uint64_t id)
{
    return std::find_if(toasts_.begin(), toasts_.end(), [id](const Toast& each) { return each.id == id; });
}

void ToastPresenter::takeAway(std::uint64_t id)
{
    const auto toast = find(id);
    if (toast == toasts_.end()) return;
    for (auto moved = std::next(toast); moved != toasts_.end(); ++moved) {
        const std::uint64_t movedID = moved->id;
        moved->hold = runLoop_.after(Notice::holdTime, [this, movedID] {
            const auto held = find(movedID);
            if (held != toasts_.end()) held->hold.reset();
        });
    }
    toasts_.erase(toast);
    tell();
}

void ToastPresenter::tell() const
{
    if (changed_) changed_();
}

} // namespace quellon
