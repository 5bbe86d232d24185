#include "Quellon/Notifier.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <utility>

namespace quellon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum NotificationAction;
using Apps = std::vector<std::string>;

/// Keeps what it is asked until the test answers.
class FakeCenter final : public NotificationCenter {
public:
    std::vector<std::function<void(const Authorization&)>> authorizations;
    std::deque<std::function<void(const NotificationSettings&)>> readings;
    std::vector<std::vector<NotificationCategory>> categories; ///< As they were set, one after the other.
    std::vector<NotificationRequest> requests;

    void requestAuthorization(std::function<void(const Authorization&)> answer) override
    {
        authorizations.push_back(std::move(answer));
    }
    void readSettings(std::function<void(const NotificationSettings&)> answer) override
    {
        readings.push_back(std::move(answer));
    }
    void setCategories(const std::vector<NotificationCategory>& all) override { categories.push_back(all); }
    void add(const NotificationRequest& request) override { requests.push_back(request); }

    /// Answers the oldest reading.
    void answer(NotificationAuthorization authorization, NotificationAlerts alerts)
    {
        const auto reading = std::move(readings.front());
        readings.pop_front();
        reading({authorization, alerts});
    }
};

class NotifierTest : public ::testing::Test {
protected:
    NotifierTest() { make(); }

    FakeCenter center;
    std::vector<std::string> log;
    std::vector<std::pair<NotificationAction, Apps>> actions;
    std::vector<NotificationCapability> capabilities;
    std::unique_ptr<Notifier> notifier;

    void make()
    {
        notifier = std::make_unique<Notifier>(center, [this](std::string_view text) { log.emplace_back(text); });
        notifier->onAction = [this](NotificationAction action, const Apps& apps) {
            actions.emplace_back(action, apps);
        };
        notifier->onCapabilityChange = [this](const NotificationCapability& each) { capabilities.push_back(each); };
    }
    static NotificationPlan plan(std::vector<NotificationAction> actions, Apps apps = {"app"})
    {
        return {NotificationStyle::persistent, "title", "subtitle", "body", std::move(actions), std::move(apps)};
    }
};

TEST_F(NotifierTest, categoryIdentifier)
{
    EXPECT_EQ(Notifier::categoryIdentifier({resume, resumeAndSnooze}), "ql.resume.resumeAndSnooze");
    EXPECT_EQ(Notifier::categoryIdentifier({resumeAndSnooze, resume}), "ql.resumeAndSnooze.resume")
        << "the order is part of it";
    EXPECT_EQ(Notifier::categoryIdentifier({view}), "ql.view");
}

TEST_F(NotifierTest, aPlanGoesOutWhole)
{
    notifier->deliver(plan({suspend, view}, {"one", "two"}));
    ASSERT_EQ(center.requests.size(), 1U);
    const NotificationRequest expected{
        NotificationStyle::persistent, "title", "subtitle", "body", "ql.suspend.view", {"one", "two"}};
    EXPECT_EQ(center.requests[0], expected);
    const NotificationCategory category{"ql.suspend.view",
                                        {{"suspend", "Pause", true}, {"view", "Show details", false}}};
    EXPECT_THAT(center.categories, ElementsAre(std::vector{category}));
}

TEST_F(NotifierTest, aPlanWithoutTitleIsNone)
{
    auto silent = plan({view});
    silent.title.clear();
    notifier->deliver(silent);
    EXPECT_THAT(center.requests, IsEmpty());
    EXPECT_THAT(center.categories, IsEmpty());
}

TEST_F(NotifierTest, aPlanWithoutActionsHasNoCategoryButItsApps)
{
    notifier->deliver(plan({}));
    ASSERT_EQ(center.requests.size(), 1U);
    EXPECT_EQ(center.requests[0].category, "");
    EXPECT_EQ(center.requests[0].apps, Apps{"app"});
    EXPECT_THAT(center.categories, IsEmpty());
}

TEST_F(NotifierTest, theSameActionsRegisterOneCategory)
{
    notifier->deliver(plan({resume}));
    notifier->deliver(plan({resume}, {"another"}));
    EXPECT_EQ(center.categories.size(), 1U);
    notifier->deliver(plan({view}));
    ASSERT_EQ(center.categories.size(), 2U);
    EXPECT_EQ(center.categories[1].size(), 2U) << "each registration replaces what was there";
    EXPECT_EQ(center.requests.size(), 3U);
}

TEST_F(NotifierTest, everyActionHasItsRawTextAndTitle)
{
    for (const auto& row : notificationActions.rows) {
        SCOPED_TRACE(row.raw);
        actions.clear();
        notifier->deliver(plan({row.value}));
        const auto& button = center.categories.back().back().buttons.at(0);
        EXPECT_EQ(button.identifier, row.raw);
        EXPECT_EQ(button.title, row.label);
        EXPECT_EQ(button.destructive, row.value == suspend || row.value == terminate);
        center.onResponse(button.identifier, {"app"});
        EXPECT_THAT(actions, ElementsAre(std::pair{row.value, Apps{"app"}}));
    }
}

TEST_F(NotifierTest, answers)
{
    struct Case {
        const char* name;
        const char* action;
        Apps apps;
        std::vector<std::pair<NotificationAction, Apps>> told;
    };
    const Case cases[] = {
        {"a button", "snooze", {"app"}, {{snooze, {"app"}}}},
        {"the click on it", "default", {"app"}, {{view, {"app"}}}},
        {"the click on a merged one", "default", {"one", "two"}, {{view, {"one", "two"}}}},
        {"no apps", "snooze", {}, {{snooze, {}}}},
        {"dismissed", "dismiss", {"app"}, {}},
        {"nothing that is known", "Snooze", {"app"}, {}},
        {"nothing at all", "", {"app"}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        actions.clear();
        center.onResponse(c.action, c.apps);
        EXPECT_EQ(actions, c.told);
    }
    notifier->onAction = nullptr;
    center.onResponse("snooze", {"app"});
}

TEST_F(NotifierTest, capability)
{
    using enum NotificationAuthorization;
    using enum NotificationAlerts;
    struct Case {
        const char* name;
        NotificationAuthorization authorization;
        NotificationAlerts alerts;
        NotificationCapability told;
        const char* line;
    };
    constexpr Case cases[] = {
        {"all is well", authorized, enabled, {true, true, true}, "authStatus=2 alert=2"},
        {"not asked yet", notDetermined, notSupported, {false, true, true}, "authStatus=0 alert=0"},
        {"denied", denied, disabled, {false, false, true}, "authStatus=1 alert=1"},
        {"no server", denied, notSupported, {false, true, true}, "authStatus=1 alert=0"},
        {"one that can be started", provisional, enabled, {true, true, true}, "authStatus=3 alert=2"},
        {"alerts switched off", authorized, disabled, {true, false, true}, "authStatus=2 alert=1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        notifier->refreshCapability();
        center.answer(c.authorization, c.alerts);
        EXPECT_EQ(capabilities.back(), c.told);
        EXPECT_EQ(log.back(), std::string{"notification settings: "} + c.line + " canNotify=true\n");
    }
    notifier->onCapabilityChange = nullptr;
    notifier->refreshCapability();
    center.answer(authorized, enabled);
    EXPECT_EQ(log.size(), std::size(cases) + 1);
}

TEST_F(NotifierTest, requestAuthorization)
{
    struct Case {
        const char* name;
        NotificationCenter::Authorization authorization;
        const char* line;
    };
    const Case cases[] = {
        {"granted", {true, {}}, "authorization granted=true"},
        {"denied", {false, {}}, "authorization granted=false"},
        {"failed", {false, "no\nservice"}, "authorization failed: no�service"},
        {"an error counts first", {true, ""}, "authorization failed: "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        log.clear();
        notifier->requestAuthorization();
        EXPECT_THAT(center.readings, IsEmpty()) << "only once the answer is there";
        center.authorizations.back()(c.authorization);
        EXPECT_THAT(log, ElementsAre(c.line));
        center.answer(NotificationAuthorization::authorized, NotificationAlerts::enabled);
        EXPECT_EQ(log.size(), 2U) << "and the capability";
    }
    EXPECT_EQ(capabilities.size(), std::size(cases));
}

TEST_F(NotifierTest, aServiceThatChangesIsReadAnew)
{
    using enum NotificationAuthorization;
    using enum NotificationAlerts;
    notifier->refreshCapability();
    center.answer(authorized, enabled);
    center.onSettingsChange();
    center.answer(authorized, enabled);
    EXPECT_EQ(log.size(), 1U) << "what the log says already";
    EXPECT_EQ(capabilities.size(), 2U);
    center.onSettingsChange();
    center.answer(denied, notSupported);
    EXPECT_EQ(log.size(), 2U);
    EXPECT_FALSE(capabilities.back().authorized);
    notifier->refreshCapability();
    center.answer(denied, notSupported);
    EXPECT_EQ(log.size(), 3U) << "asked for";
}

TEST_F(NotifierTest, whatComesBehindItsEndIsIgnored)
{
    notifier->requestAuthorization();
    notifier->refreshCapability();
    notifier.reset();
    center.authorizations[0]({true, {}});
    center.answer(NotificationAuthorization::authorized, NotificationAlerts::enabled);
    EXPECT_FALSE(center.onResponse);
    EXPECT_FALSE(center.onSettingsChange);
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(capabilities, IsEmpty());
}

} // namespace
} // namespace quellon
