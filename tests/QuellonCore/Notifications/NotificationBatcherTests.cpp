#include "QuellonCore/Notifications/NotificationBatcher.h"

#include <gtest/gtest.h>

#include <string>

namespace quellon {
namespace {

RuleBreach breach(const char* app, ActionLevel level, std::uint64_t bytes = 1)
{
    return {app, {.id = {}, .thresholdBytes = 1, .level = level}, bytes, {}};
}

/// The applications with their bytes: "A 1, B 2"; "nothing" for an absent batch.
std::string text(const std::optional<std::vector<RuleBreach>>& batch)
{
    if (!batch) return "nothing";
    std::string result;
    for (const auto& each : *batch) {
        result += (result.empty() ? "" : ", ") + each.app + ' ' + std::to_string(each.bytes);
    }
    return result;
}

constexpr auto notify = ActionLevel::notify;
constexpr auto ask = ActionLevel::ask;
constexpr auto enforce = ActionLevel::enforce;

TEST(NotificationBatcher, offer)
{
    struct Step {
        double at;
        std::vector<RuleBreach> breaches;
        const char* batch;
    };
    struct Case {
        const char* name;
        std::vector<Step> steps;
    };
    constexpr const char* nothing = "nothing";
    const Case cases[] = {
        {"held for the window",
         {{0, {breach("A", notify)}, nothing}, {4.9, {}, nothing}, {5.0, {}, "A 1"}, {10.0, {}, nothing}}},
        {"a batch that is late closes at the next call", {{0, {breach("A", notify)}, nothing}, {60, {}, "A 1"}}},
        {"the offer that closes is in it",
         {{0, {breach("A", notify)}, nothing}, {5, {breach("B", ask, 2), breach("A", ask, 3)}, "A 3, B 2"}}},
        {"nothing opens no batch",
         {{0, {}, nothing}, {4, {breach("A", notify)}, nothing}, {8.9, {}, nothing}, {9, {}, "A 1"}}},
        {"later offers do not extend it",
         {{0, {breach("A", notify)}, nothing},
          {2.5, {breach("B", notify)}, nothing},
          {4.9, {breach("C", notify)}, nothing},
          {5, {}, "A 1, B 1, C 1"}}},
        {"a higher level takes the place",
         {{0, {breach("A", notify, 1)}, nothing}, {1, {breach("A", enforce, 2)}, nothing}, {5, {}, "A 2"}}},
        {"a lower level is dropped",
         {{0, {breach("A", enforce, 1)}, nothing}, {1, {breach("A", notify, 2)}, nothing}, {5, {}, "A 1"}}},
        {"an equal level is dropped, though it shows more",
         {{0, {breach("A", ask, 1)}, nothing}, {1, {breach("A", ask, 9)}, nothing}, {5, {}, "A 1"}}},
        {"the order of arrival stays when the first is replaced",
         {{0, {breach("B", notify, 1)}, nothing},
          {1, {breach("A", notify, 2)}, nothing},
          {2, {breach("B", ask, 3)}, nothing},
          {5, {}, "B 3, A 2"}}},
        {"twice in one offer", {{0, {breach("A", notify, 1), breach("A", ask, 2)}, nothing}, {5, {}, "A 2"}}},
        {"the next breach opens a new window",
         {{0, {breach("A", enforce)}, nothing},
          {5, {}, "A 1"},
          {6, {breach("A", notify, 7)}, nothing},
          {10.9, {}, nothing},
          {11, {}, "A 7"}}},
        {"a clock that was set back holds it",
         {{100, {breach("A", notify)}, nothing}, {50, {}, nothing}, {105, {}, "A 1"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        NotificationBatcher batcher{Seconds{5.0}};
        for (const auto& step : c.steps) {
            SCOPED_TRACE(step.at);
            EXPECT_EQ(text(batcher.offer(step.breaches, Date{Seconds{step.at}})), step.batch);
        }
    }
}

TEST(NotificationBatcher, theReplacementIsTheWholeBreach)
{
    NotificationBatcher batcher{Seconds{5.0}};
    EXPECT_FALSE(batcher.offer({breach("A", notify, 1)}, Date{}));
    EXPECT_FALSE(batcher.offer({breach("A", enforce, 2)}, Date{}));
    EXPECT_EQ(batcher.pending(), std::vector{breach("A", enforce, 2)});
}

TEST(NotificationBatcher, isEmptyOnceTaken)
{
    const Date start{Seconds{1000.0}};
    NotificationBatcher batcher{Seconds{5.0}};
    EXPECT_EQ(batcher.window(), Seconds{5.0});
    EXPECT_TRUE(batcher.isEmpty());
    EXPECT_EQ(batcher.firstSeenAt(), std::nullopt);
    EXPECT_FALSE(batcher.offer({breach("A", notify)}, start));
    EXPECT_FALSE(batcher.isEmpty());
    EXPECT_EQ(batcher.firstSeenAt(), start);
    EXPECT_TRUE(batcher.offer({}, start + Seconds{5.0}));
    EXPECT_TRUE(batcher.isEmpty());
    EXPECT_EQ(batcher.firstSeenAt(), std::nullopt);
}

TEST(NotificationBatcher, withoutAWindowClosesAtOnce)
{
    NotificationBatcher batcher{Seconds{0.0}};
    EXPECT_EQ(text(batcher.offer({breach("A", notify)}, Date{})), "A 1");
}

TEST(NotificationBatcher, flush)
{
    NotificationBatcher batcher{Seconds{5.0}};
    EXPECT_TRUE(batcher.flush().empty());
    EXPECT_FALSE(batcher.offer({breach("A", notify), breach("B", ask, 2)}, Date{}));
    EXPECT_EQ(text(batcher.flush()), "A 1, B 2");
    EXPECT_TRUE(batcher.isEmpty());
    EXPECT_EQ(batcher.firstSeenAt(), std::nullopt);
    EXPECT_TRUE(batcher.flush().empty());
}

} // namespace
} // namespace quellon
