#include "QuellonTerminal/PlainLines.h"

#include "Overviews.h"
#include "QuellonTerminal/Utf8Locale.h"

#include <gtest/gtest.h>

#include <string>

namespace quellon {
namespace {

class PlainLinesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(useUtf8Locale()); }
    PlainLines lines;
};

TEST_F(PlainLinesTest, firstTick)
{
    EXPECT_EQ(lines.next(overview(3, 2), "10:00:05", 1),
              "10:00:00 warning   nettop 超时未返回，本轮采样已跳过\n"
              "10:00:00 info      📶 wlan0 · gateway 172.20.10.1 (hotspot range)\n"
              "10:00:05 Guarding · wlan0 · gateway 172.20.10.1 (hotspot range) · Wi-Fi ↓ 812.4 MB  ↑ 20.1 MB\n"
              "  1min window  last minute  share  app\n"
              "     400.5 MB      12.0 MB    50%  cloud-sync\n"
              "     399.5 MB      12.0 MB    33%  firefox\n"
              "     398.5 MB      12.0 MB    25%  云盘同步助手\n");
}

TEST_F(PlainLinesTest, nothingNew)
{
    EXPECT_NE(lines.next(overview(3, 2), "10:00:05", 1), "");
    EXPECT_EQ(lines.next(overview(3, 2), "10:00:06", 1), "");
    EXPECT_EQ(lines.next(overview(2, 2), "10:00:06", 1), "") << "the table waits for the tick";
}

TEST_F(PlainLinesTest, everyTickGivesATable)
{
    EXPECT_NE(lines.next(overview(1, 0), "10:00:05", 1), "");
    EXPECT_EQ(lines.next(overview(1, 0), "10:00:10", 2),
              "10:00:10 Guarding · wlan0 · gateway 172.20.10.1 (hotspot range) · Wi-Fi ↓ 812.4 MB  ↑ 20.1 MB\n"
              "  1min window  last minute  share  app\n"
              "     400.5 MB      12.0 MB    50%  cloud-sync\n");
}

TEST_F(PlainLinesTest, notifications)
{
    EXPECT_NE(lines.next(overview(0, 0), "10:00:05", 1), "");
    lines.add({NotificationStyle::persistent,
               "apt keeps coming back",
               "3 times in 6 h",
               "Stopping it just makes it start over.\n",
               {NotificationAction::resumeAndSnooze, NotificationAction::allowlist},
               {"apt"}},
              "10:00:09");
    lines.add({NotificationStyle::transient, "radio\x1B[2J", "", "", {}, {"radio"}}, "10:00:10");
    EXPECT_EQ(lines.next(overview(0, 1), "10:00:10", 2),
              "10:00:00 info      📶 wlan0 · gateway 172.20.10.1 (hotspot range)\n"
              "10:00:09 notice    apt keeps coming back\n"
              "  3 times in 6 h\n"
              "  Stopping it just makes it start over.\n"
              "  [Resume + snooze] [Never limit]\n"
              "10:00:10 notice    radio�[2J\n"
              "10:00:10 Guarding · wlan0 · gateway 172.20.10.1 (hotspot range) · Wi-Fi ↓ 812.4 MB  ↑ 20.1 MB\n"
              "  No traffic yet\n");
    EXPECT_EQ(lines.next(overview(0, 1), "10:00:11", 2), "") << "once";
}

TEST_F(PlainLinesTest, activityComesOnceAndOldestFirst)
{
    auto model = overview(0, 1);
    const std::string first = "10:00:00 info      📶 wlan0 · gateway 172.20.10.1 (hotspot range)\n";
    EXPECT_EQ(lines.next(model, "10:00:00", 0), first);
    UUID id;
    for (const char* message : {"second", "third"}) {
        ++id.bytes[5];
        model.log.insert(model.log.begin(), {id, "10:00:01", GuardEvent::Kind::enforced, message});
    }
    EXPECT_EQ(lines.next(model, "10:00:01", 0), "10:00:01 enforced  second\n10:00:01 enforced  third\n");
    EXPECT_EQ(lines.next(model, "10:00:01", 0), "");
    model.log.erase(model.log.begin() + 1, model.log.end());
    EXPECT_EQ(lines.next(model, "10:00:01", 0), "") << "what has left the log at its end is not missed";
}

TEST_F(PlainLinesTest, notices)
{
    auto model = overview(0, 0);
    model.counters.reset();
    model.detail.clear();
    model.warning = "Couldn't read per-app traffic at 10:00:00 — retrying";
    model.hint = "en7 is ready, but macOS is still using Wi-Fi.";
    EXPECT_EQ(lines.next(model, "10:00:30", 7), "10:00:30 Guarding\n"
                                                "  Couldn't read per-app traffic at 10:00:00 — retrying\n"
                                                "  en7 is ready, but macOS is still using Wi-Fi.\n"
                                                "  No traffic yet\n");
}

} // namespace
} // namespace quellon
