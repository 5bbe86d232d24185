#pragma once

#include "QuellonCore/Notifications/NotificationPlan.h"

#include <functional>
#include <vector>

namespace quellon {

/// Hands each notification of the engine to everybody who shows them. Main thread only.
class NotificationFeed {
public:
    /// What keeps somebody told; its destruction ends that, also from within the call. It must not outlive the feed.
    class Subscription {
    public:
        Subscription(NotificationFeed& feed, std::function<void(const NotificationPlan&)> show);
        ~Subscription();
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;

    private:
        friend class NotificationFeed;
        NotificationFeed& feed_;
        std::function<void(const NotificationPlan&)> show_;
    };

    NotificationFeed() = default;
    NotificationFeed(const NotificationFeed&) = delete;
    NotificationFeed& operator=(const NotificationFeed&) = delete;

    /// Shows the notification to all, in the order in which they came. One without a title is dropped.
    void deliver(const NotificationPlan& plan);

private:
    std::vector<Subscription*> subscriptions_; ///< Null: gone in the course of a delivery.
};

} // namespace quellon
