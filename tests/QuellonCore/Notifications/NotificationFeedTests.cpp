#include "QuellonCore/Notifications/NotificationFeed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

NotificationPlan titled(std::string title)
{
    NotificationPlan plan;
    plan.title = std::move(title);
    return plan;
}

class NotificationFeedTest : public testing::Test {
protected:
    NotificationFeed feed;
    std::vector<std::string> shown;

    std::function<void(const NotificationPlan&)> shows(const std::string& name)
    {
        return [this, name](const NotificationPlan& plan) { shown.push_back(name + ": " + plan.title); };
    }
};

TEST_F(NotificationFeedTest, nobodyListens)
{
    feed.deliver(titled("lost"));
}

TEST_F(NotificationFeedTest, everybodyIsToldInOrder)
{
    const NotificationFeed::Subscription first{feed, shows("first")};
    {
        const NotificationFeed::Subscription second{feed, shows("second")};
        feed.deliver(titled("a"));
    }
    feed.deliver(titled("b"));
    EXPECT_THAT(shown, ElementsAre("first: a", "second: a", "first: b"));
}

TEST_F(NotificationFeedTest, aPlanWithoutATitleIsDropped)
{
    const NotificationFeed::Subscription subscription{feed, shows("first")};
    NotificationPlan plan = titled("");
    plan.body = "text";
    feed.deliver(plan);
    EXPECT_THAT(shown, IsEmpty());
}

TEST_F(NotificationFeedTest, comingAndGoingInTheCourseOfADelivery)
{
    std::optional<NotificationFeed::Subscription> second;
    std::optional<NotificationFeed::Subscription> third;
    const NotificationFeed::Subscription first{feed, [&](const NotificationPlan& plan) {
                                                   shown.push_back("first: " + plan.title);
                                                   second.reset();
                                                   if (!third) third.emplace(feed, shows("third"));
                                               }};
    second.emplace(feed, shows("second"));
    feed.deliver(titled("a"));
    EXPECT_THAT(shown, ElementsAre("first: a", "third: a"));
    feed.deliver(titled("b"));
    EXPECT_THAT(shown, ElementsAre("first: a", "third: a", "first: b", "third: b"));
}

TEST_F(NotificationFeedTest, oneMayEndItself)
{
    std::optional<NotificationFeed::Subscription> only;
    only.emplace(feed, [&](const NotificationPlan& plan) {
        only.reset();
        shown.push_back(plan.title);
    });
    feed.deliver(titled("a"));
    feed.deliver(titled("b"));
    EXPECT_THAT(shown, ElementsAre("a"));
}

} // namespace
} // namespace quellon
