#include "QuellonCore/Notifications/NotificationFeed.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quellon {

NotificationFeed::Subscription::Subscription(NotificationFeed& feed, std::function<void(const NotificationPlan&)> show)
    : feed_(feed), show_(std::move(show))
{
    feed_.subscriptions_.push_back(this);
}

NotificationFeed::Subscription::~Subscription()
{
    // Set to nothing instead of erased: the feed may be walking the list at this moment.
    std::replace(feed_.subscriptions_.begin(), feed_.subscriptions_.end(), this, static_cast<Subscription*>(nullptr));
}

void NotificationFeed::deliver(const NotificationPlan& plan)
{
    if (plan.title.empty()) return;
    std::erase(subscriptions_, nullptr);
    // By index: somebody may come in the course of this. A copy: somebody may also go.
    for (std::size_t i = 0; i < subscriptions_.size(); ++i) {
        if (subscriptions_[i] == nullptr) continue;
        const auto show = subscriptions_[i]->show_;
        show(plan);
    }
}

} // namespace quellon
