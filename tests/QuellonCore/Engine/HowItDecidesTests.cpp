#include "ActingWorld.h"
#include "QuellonCore/Persistence/StateFile.h"
#include "QuellonCore/Presentation/BudgetPresentation.h"
#include "QuellonCore/Presentation/DateTexts.h"
#include "QuellonCore/Rules/RuleDerivation.h"

#include <gtest/gtest.h>

// The numbers of docs/how-it-decides.md, worked out by the program itself.

namespace quellon {
namespace {

using MenuPresentation::format;

std::string minutes(Seconds time)
{
    const auto seconds = static_cast<int>(time.count());
    return fmt::format("{}:{:02}", seconds / 60, seconds % 60);
}

void expectInDocument(const std::string& text)
{
    static const std::string document = fileText(TEST_DATA "/../../docs/how-it-decides.md");
    EXPECT_NE(document.find(text), std::string::npos) << "docs/how-it-decides.md does not have:\n" << text;
}

/// One application on a hotspot, and what the guard does about it as rows of a table.
struct Story : ActingWorld {
    static constexpr std::int32_t first = 501;
    std::string table = "| Time | What the guard does |\n|---|---|\n";

    Story()
    {
        settings.planGB() = 30.0;
        CountedIdentifiers ids;
        settings.rederiveRules(ids);
        process(first, 501, first, "/opt/photo-sync/photo-sync");
        options.onEvent = [this](const GuardEvent& event) { add(event.message); };
        options.notifier = [this](const NotificationPlan& plan) {
            std::string text = fmt::format("*{}* {}", plan.title, plan.subtitle);
            for (const auto action : plan.actions) text += fmt::format(" [{}]", notificationActions.label(action));
            add(text);
        };
    }

    void add(const std::string& text) { table += fmt::format("| {} | {} |\n", minutes(host.elapsed()), text); }

    /// The first two lines of a start are none of the guard's decisions.
    void startWithoutTelling()
    {
        const std::string kept = table;
        begin();
        table = kept;
    }

    /// So many rounds in which the application gets so many bytes a second, while it is not frozen.
    void streams(int rounds, std::uint64_t bytesPerSecond, std::int32_t pid = first)
    {
        for (int i = 0; i < rounds; ++i) {
            if (!isStopped(pid)) moves(pid, bytesPerSecond * 5);
            round();
        }
    }
};

TEST(HowItDecides, theLimitsOfPlans)
{
    CountedIdentifiers ids;
    constexpr struct {
        double planGB;
        UsageProfile profile;
    } plans[] = {{30.0, UsageProfile::light},
                 {30.0, UsageProfile::developer},
                 {30.0, UsageProfile::heavy},
                 {5.0, UsageProfile::developer},
                 {100.0, UsageProfile::developer}};
    std::string rows;
    for (const auto& plan : plans) {
        const auto rules = RuleDerivation::defaultRules(plan.planGB, plan.profile, ids);
        rows += fmt::format("| {} GB | {} | {} | {} | {} |\n", plan.planGB, usageProfiles.label(plan.profile),
                            format(RuleDerivation::dailyBudgetBytes(plan.planGB)), format(rules[0].thresholdBytes),
                            format(rules[1].thresholdBytes));
    }
    expectInDocument(rows);
}

TEST(HowItDecides, aMegabyteASecondIsToldOf)
{
    Story story;
    story.startWithoutTelling();
    story.streams(132, 1'000'000);
    expectInDocument(story.table);
}

TEST(HowItDecides, aStreamThatStaysBelowTheMinuteIsAskedAboutByTheHour)
{
    Story story;
    story.startWithoutTelling();
    story.streams(152, 500'000);
    expectInDocument(story.table);
}

TEST(HowItDecides, aTrickleGetsASnail)
{
    Story story;
    story.startWithoutTelling();
    while (story.engine->chronic().empty() && story.host.elapsed() < 1h) story.streams(1, 100'000);
    expectInDocument(fmt::format("after {} minutes", minutes(story.host.elapsed())));
}

TEST(HowItDecides, aRuleThatStepsInFreezesAndFreezesAgain)
{
    Story story;
    story.settings.rules() = {Story::rule(1, 60s, 50 * mebibyte, ActionLevel::enforce)};
    story.startWithoutTelling();
    story.streams(23, 1'000'000);
    story.host.advance(3s);
    story.engine->resumeApps({"photo-sync"}, 0);
    story.host.advance(2s);
    story.streams(12, 1'000'000);
    expectInDocument(story.table);
}

TEST(HowItDecides, aLoopIsBroken)
{
    Story story;
    story.settings.rules() = {Story::rule(1, 60s, 50 * mebibyte, ActionLevel::enforce)};
    story.settings.enforcementAction = EnforcementAction::terminate;
    story.startWithoutTelling();
    for (const std::int32_t pid : {501, 601, 701}) {
        if (pid != Story::first) story.process(pid, 501, pid, "/opt/photo-sync/photo-sync");
        story.streams(11, 1'000'000, pid);
        if (pid != 701) story.leaves(pid);
    }
    EXPECT_TRUE(story.isStopped(701));
    expectInDocument(story.table);
}

TEST(HowItDecides, aBlockedApplicationIsAskedAbout)
{
    Story story;
    story.settings.setPolicy(AppPolicy::always, "photo-sync");
    story.startWithoutTelling();
    story.streams(121, 20'000);
    expectInDocument(story.table);
}

TEST(HowItDecides, aCycle)
{
    const Calendar calendar;
    BudgetStore store;
    store.planGB = 30.0;
    store.billingCycleStartDay = 15;
    constexpr std::uint64_t tenth = 1024 * mebibyte / 10;
    constexpr struct {
        int day;
        std::uint64_t tenths;
    } days[] = {{15, 10}, {16, 15}, {17, 5}, {18, 20}, {19, 10}, {20, 6}};
    for (const auto& each : days) {
        store.add(each.tenths * tenth, *calendar.moment({2026, 3, each.day}, 12h), calendar);
    }
    const Date now = *calendar.moment({2026, 3, 20}, 18h);
    const BudgetStatus status = store.status(now, calendar);
    const DailyBudgetStatus daily = store.dailyStatus(now, calendar);
    const auto row = BudgetPresentation::row(status, daily, calendar, DateTexts{});
    ASSERT_TRUE(row.runsOut && row.today);
    expectInDocument(fmt::format("```\nThis month  {}\n            {} · {}\nToday       {} · {}\n```\n", row.amounts,
                                 row.rest, *row.runsOut, row.today->amounts, row.today->rest));
    store.calibrate(7 * 1024 * mebibyte, now, calendar);
    expectInDocument(
        fmt::format("a correction of {}", format(static_cast<std::uint64_t>(store.calibrationOffsetBytes))));
    EXPECT_EQ(format(store.status(now, calendar).usedBytes), "7.00 GB");
}

} // namespace
} // namespace quellon
