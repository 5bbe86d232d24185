#include "QuellonCore/Notifications/NotificationComposer.h"

#include "QuellonCore/Presentation/MenuPresentation.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <iterator>
#include <limits>
#include <random>

namespace quellon {

/// What a failed comparison of plans shows.
static void PrintTo(const NotificationPlan& plan, std::ostream* out)
{
    *out << notificationStyles.raw(plan.style) << "\n title: " << plan.title << "\n subtitle: " << plan.subtitle
         << "\n body: " << plan.body << "\n actions:";
    for (const auto action : plan.actions) *out << ' ' << notificationActions.raw(action);
    *out << "\n apps:";
    for (const auto& app : plan.apps) *out << " [" << app << ']';
}

namespace {

using enum NotificationAction;

constexpr std::uint64_t mega = 1024 * 1024;
constexpr std::uint64_t giga = 1024 * mega;
constexpr auto transient = NotificationStyle::transient;
constexpr auto persistent = NotificationStyle::persistent;
const std::optional<BudgetStatus> noBudget;

std::optional<BudgetStatus> budget(std::uint64_t used, std::uint64_t plan)
{
    BudgetStatus status;
    status.usedBytes = used;
    status.planBytes = plan;
    return status;
}

const std::optional<BudgetStatus> aQuarter = budget(10 * giga, 40 * giga);
constexpr const char* aQuarterLine = "25% of your plan used · 30.00 GB left";

RuleBreach breach(const char* app, std::uint64_t bytes, ActionLevel level = ActionLevel::notify, double window = 60.0)
{
    return {app, {.id = {}, .windowSeconds = Seconds{window}, .thresholdBytes = 32 * mega, .level = level}, bytes, {7}};
}

TEST(NotificationComposer, planByLevel)
{
    const std::vector<NotificationAction> buttons{snooze, suspend, allowlist, view};
    const std::string title = "Google Chrome is using a lot of data";
    const std::string subtitle = "1.50 GB in 1h · limit 32.0 MB";
    struct Case {
        ActionLevel level;
        NotificationPlan plan;
    };
    const Case cases[] = {
        {ActionLevel::highlight, {transient, "", "", "", {}, {"Google Chrome"}}},
        {ActionLevel::notify, {transient, title, subtitle, aQuarterLine, {}, {"Google Chrome"}}},
        {ActionLevel::ask, {persistent, title, subtitle, aQuarterLine, buttons, {"Google Chrome"}}},
        {ActionLevel::enforce, {persistent, title, subtitle, aQuarterLine, buttons, {"Google Chrome"}}},
    };
    ASSERT_EQ(std::size(cases), actionLevels.rows.size());
    for (const auto& c : cases) {
        SCOPED_TRACE(actionLevels.raw(c.level));
        const auto crossed = breach("Google Chrome", 1536 * mega, c.level, 3600.0);
        EXPECT_EQ(NotificationComposer::plan(crossed, aQuarter), c.plan);
        NotificationPlan shorter = c.plan;
        shorter.body = "";
        EXPECT_EQ(NotificationComposer::plan(crossed, noBudget), shorter);
    }
}

TEST(NotificationComposer, budgetLine)
{
    struct Case {
        const char* name;
        std::uint64_t used, plan;
        const char* line;
    };
    constexpr Case cases[] = {
        {"a plan of 0 bytes", 0, 0, "0% of your plan used · 0.0 MB left"},
        {"use of a plan of 0 bytes", 5 * giga, 0, "0% of your plan used · 0.0 MB left"},
        {"nothing used", 0, 30 * giga, "0% of your plan used · 30.00 GB left"},
        {"percent are cut off", 1999, 100'000, "1% of your plan used · 0.1 MB left"},
        {"percent that a double puts just below a whole number", 29, 100, "28% of your plan used · 0.0 MB left"},
        {"a byte before the end", giga - 1, giga, "99% of your plan used · 0.0 MB left"},
        {"all", giga, giga, "100% of your plan used · 0.0 MB left"},
        {"more than all", 3 * giga, giga, "100% of your plan used · 0.0 MB left"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(NotificationComposer::plan(breach("App", giga), budget(c.used, c.plan)).body, c.line);
    }
}

TEST(NotificationComposer, mergedPlan)
{
    const std::vector<NotificationAction> buttons{view, snoozeAll};
    struct Case {
        const char* name;
        std::vector<RuleBreach> breaches;
        std::optional<BudgetStatus> budget;
        NotificationPlan plan;
    };
    const std::vector<RuleBreach> six{breach("F", 6 * mega), breach("E", 5 * mega), breach("D", 4 * mega),
                                      breach("C", 3 * mega), breach("B", 2 * mega), breach("A", mega)};
    const Case cases[] = {
        {"none", {}, noBudget, {persistent, "0 apps are using a lot of data", "0.0 MB in ", "", buttons, {}}},
        {"two, with the window of the first",
         {breach("B", 100 * mega, ActionLevel::ask, 3600.0), breach("A", 50 * mega)},
         noBudget,
         {persistent,
          "2 apps are using a lot of data",
          "150.0 MB in 1h",
          "B 100.0 MB · A 50.0 MB",
          buttons,
          {"B", "A"}}},
        {"a highlight is counted and named",
         {breach("A", mega, ActionLevel::highlight), breach("B", mega)},
         noBudget,
         {persistent, "2 apps are using a lot of data", "2.0 MB in 1min", "A 1.0 MB · B 1.0 MB", buttons, {"A", "B"}}},
        {"four are all named",
         {six[0], six[1], six[2], six[3]},
         noBudget,
         {persistent,
          "4 apps are using a lot of data",
          "18.0 MB in 1min",
          "F 6.0 MB · E 5.0 MB · D 4.0 MB · C 3.0 MB",
          buttons,
          {"F", "E", "D", "C"}}},
        {"six: four named, six counted and in apps",
         six,
         aQuarter,
         {persistent,
          "6 apps are using a lot of data",
          "21.0 MB in 1min",
          "F 6.0 MB · E 5.0 MB · D 4.0 MB · C 3.0 MB\n25% of your plan used · 30.00 GB left",
          buttons,
          {"F", "E", "D", "C", "B", "A"}}},
        {"none with a budget",
         {},
         aQuarter,
         {persistent,
          "0 apps are using a lot of data",
          "0.0 MB in ",
          "\n25% of your plan used · 30.00 GB left",
          buttons,
          {}}},
        {"exactly 1 GiB, and 1023.9 MiB",
         {breach("A", giga), breach("B", 1'073'637'000)},
         noBudget,
         {persistent,
          "2 apps are using a lot of data",
          "2.00 GB in 1min",
          "A 1.00 GB · B 1023.9 MB",
          buttons,
          {"A", "B"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(NotificationComposer::mergedPlan(c.breaches, c.budget), c.plan);
    }
}

/// The amount of a merged body by its own rule: mebibytes below 1024 of them, from there on gibibytes.
std::string mergedAmount(std::uint64_t bytes)
{
    char text[64];
    const double mebibytes = static_cast<double>(bytes) / 1'048'576.0;
    if (mebibytes < 1024.0)
        std::snprintf(text, sizeof text, "%.1f MB", mebibytes);
    else
        std::snprintf(text, sizeof text, "%.2f GB", mebibytes / 1024.0);
    return text;
}

TEST(NotificationComposer, mergedAmountsAgreeWithTheFormatOfAllOthers)
{
    std::mt19937_64 random{1024};
    std::vector<std::uint64_t> counts{
        0, 1, mega - 1, mega, giga - 1, giga, giga + 1, 1'073'637'000, std::numeric_limits<std::uint64_t>::max()};
    for (int i = 0; i < 2000; ++i) counts.push_back(random() >> (random() % 64));
    for (const std::uint64_t bytes : counts) {
        const auto plan = NotificationComposer::mergedPlan({breach("A", bytes)}, noBudget);
        ASSERT_EQ(plan.body, "A " + mergedAmount(bytes)) << bytes;
        ASSERT_EQ(mergedAmount(bytes), MenuPresentation::format(bytes)) << bytes;
    }
}

TEST(NotificationComposer, mergedSumBeyondACounterIsFatal)
{
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EXIT((void)NotificationComposer::mergedPlan({breach("A", most), breach("B", 1)}, noBudget),
                testing::ExitedWithCode(70), "overflow");
}

TEST(NotificationComposer, enforcedPlan)
{
    const NotificationPlan paused{persistent,
                                  "Steam was paused",
                                  "150.0 MB in 5min",
                                  "It is frozen, not closed — resume and it picks up where it left off.",
                                  {resume, resumeAndSnooze},
                                  {"Steam"}};
    const NotificationPlan stopped{persistent, "Steam was stopped", "150.0 MB in 5min", "", {view}, {"Steam"}};
    for (const auto& row : enforcementActions.rows) {
        SCOPED_TRACE(row.raw);
        EXPECT_EQ(NotificationComposer::enforcedPlan("Steam", 150 * mega, "5min", row.value),
                  row.value == EnforcementAction::suspend ? paused : stopped);
    }
}

TEST(NotificationComposer, loopBreakerPlan)
{
    const std::string body =
        "Stopping it just makes it start over, so it is frozen instead. Let it finish once, or never limit it.\n";
    NotificationPlan expected{
        persistent,          "Steam keeps coming back",          "3 times in 6 h · ≥1.50 GB spent retrying",
        body + aQuarterLine, {resumeAndSnooze, allowlist, view}, {"Steam"}};
    EXPECT_EQ(NotificationComposer::loopBreakerPlan("Steam", 3, 1536 * mega, aQuarter), expected);
    expected.body = body; // the line end stays without a budget
    EXPECT_EQ(NotificationComposer::loopBreakerPlan("Steam", 3, 1536 * mega, noBudget), expected);
}

TEST(NotificationComposer, blockedAppPlan)
{
    const NotificationPlan chosen{
        persistent,   "git is reaching for the hotspot",       "0.3 MB so far · you set this app to always block",
        aQuarterLine, {terminate, allowOnce, muteToday, view}, {"git"}};
    NotificationPlan seeded = chosen;
    seeded.subtitle = "0.3 MB so far · from the dev tools preset you added";
    NotificationPlan withoutBudget = chosen;
    withoutBudget.body = "";
    const std::string repeatedBody = "It is set to always block, so it is asked about every time it moves. Let this "
                                     "transfer finish, or stop asking until tomorrow.\n";
    const NotificationPlan repeated{persistent,
                                    "git keeps reaching for the hotspot",
                                    "Asked 4 times in the last hour · 0.3 MB in the last minute",
                                    repeatedBody + aQuarterLine,
                                    {allowOnce, muteToday, terminate, view},
                                    {"git"}};
    NotificationPlan often = repeated;
    often.subtitle = "Asked 100 times in the last hour · 0.3 MB in the last minute";
    often.body = repeatedBody;
    struct Case {
        const char* name;
        bool seeded;
        std::size_t asks;
        std::optional<BudgetStatus> budget;
        NotificationPlan plan;
    };
    const Case cases[] = {
        {"the first time", false, 0, aQuarter, chosen},
        {"from the preset", true, 0, aQuarter, seeded},
        {"without a budget", false, 1, noBudget, withoutBudget},
        {"asked 3 times", false, 3, aQuarter, chosen},
        {"asked 4 times", false, 4, aQuarter, repeated},
        {"asked 4 times, from the preset", true, 4, aQuarter, repeated},
        {"asked a hundred times, without a budget", false, 100, noBudget, often},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(NotificationComposer::blockedAppPlan("git", 300'000, c.budget, c.seeded, c.asks), c.plan);
    }
}

TEST(NotificationComposer, textsAreFitForALineAndLabelsStay)
{
    const char* label = "two\nlines";
    const std::string shown = "two\uFFFDlines";
    const NotificationPlan plans[] = {
        NotificationComposer::plan(breach(label, mega), noBudget),
        NotificationComposer::enforcedPlan(label, mega, "1min", EnforcementAction::suspend),
        NotificationComposer::enforcedPlan(label, mega, "1min", EnforcementAction::kill),
        NotificationComposer::loopBreakerPlan(label, 2, mega, noBudget),
        NotificationComposer::blockedAppPlan(label, mega, noBudget, false, 0),
        NotificationComposer::blockedAppPlan(label, mega, noBudget, false, 4),
    };
    for (const auto& plan : plans) {
        SCOPED_TRACE(plan.title);
        EXPECT_TRUE(plan.title.starts_with(shown));
        EXPECT_EQ(plan.apps, std::vector<std::string>{label});
    }
    const auto merged = NotificationComposer::mergedPlan({breach(label, mega)}, noBudget);
    EXPECT_EQ(merged.body, shown + " 1.0 MB");
    EXPECT_EQ(merged.apps, std::vector<std::string>{label});
}

TEST(NotificationComposer, ordinaryLabelsStandInTitlesAsTheyAre)
{
    for (const std::string label : {"网易云音乐", "Déjà Vu", "De\u0301ja\u0300 Vu", "דפדפן", "المتصفح",
                                    "\u200EChat\u200F", "👩\u200D💻 Code", " Google  Chrome ", "{} %s"}) {
        SCOPED_TRACE(label);
        EXPECT_EQ(NotificationComposer::plan(breach(label.c_str(), mega), noBudget).title,
                  label + " is using a lot of data");
        EXPECT_EQ(NotificationComposer::mergedPlan({breach(label.c_str(), mega)}, noBudget).body, label + " 1.0 MB");
    }
}

} // namespace
} // namespace quellon
