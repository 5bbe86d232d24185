#include "QuellonTerminal/PlainView.h"

#include "QuellonCore/Engine/ActingWorld.h"
#include "QuellonTerminal/Utf8Locale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <string>
#include <unistd.h>

namespace quellon {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A pipe whose reader is this test.
class ReadPipe {
public:
    ReadPipe()
    {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) std::abort();
        readEnd_ = ends[0];
        writeEnd_ = ends[1];
        fcntl(readEnd_, F_SETFL, O_NONBLOCK);
    }
    ~ReadPipe()
    {
        closeReader();
        close(writeEnd_);
    }
    ReadPipe(const ReadPipe&) = delete;
    ReadPipe& operator=(const ReadPipe&) = delete;

    int writeEnd() const { return writeEnd_; }
    std::string read() const
    {
        std::string result;
        std::array<char, 4096> bytes{};
        for (ssize_t count = 0; (count = ::read(readEnd_, bytes.data(), bytes.size())) > 0;) {
            result.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return result;
    }
    void closeReader()
    {
        if (readEnd_ >= 0) close(readEnd_);
        readEnd_ = -1;
    }

private:
    int readEnd_ = -1;
    int writeEnd_ = -1;
};

class PlainViewTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(useUtf8Locale());
        std::signal(SIGPIPE, SIG_IGN);
    }

    EngineWorld world;
    ReadPipe pipe;
    NotificationFeed feed;
    std::optional<PlainView::End> end;
    GuardEngine engine{world.host, options()};
    std::optional<PlainView> view;

    GuardEngine::Options options()
    {
        auto result = world.stopped();
        result.notifier = [this](const NotificationPlan& plan) { feed.deliver(plan); };
        return result;
    }
    void openView()
    {
        view.emplace(engine, feed, pipe.writeEnd(), [this](PlainView::End reason) {
            ASSERT_FALSE(end) << "told once";
            end = reason;
        });
    }
};

TEST_F(PlainViewTest, aMinuteOnAHotspot)
{
    engine.start();
    openView();
    EXPECT_EQ(pipe.read(), "10:00:00 info      Quellon Pro started · 2 rules\n");
    world.host.advance(0s);
    EXPECT_EQ(pipe.read(), "10:00:00 info      📶 en0 · gateway 172.20.10.1 (hotspot range)\n"
                           "10:00:00 Guarding · en0 · gateway 172.20.10.1 (hotspot range) · Wi-Fi ↓ 0.0 MB  ↑ 0.0 MB\n"
                           "  No traffic yet\n");
    world.moves(1'000 + 3 * 1024 * 1024, 10);
    world.host.advance(5s);
    EXPECT_EQ(pipe.read(), "10:00:05 Guarding · en0 · gateway 172.20.10.1 (hotspot range) · Wi-Fi ↓ 0.0 MB  ↑ 0.0 MB\n"
                           "  1min window  last minute  share  app\n"
                           "       3.0 MB       3.0 MB   100%  Player\n");
    world.host.tool(ToolRole::nettop).fails();
    world.host.advance(5s);
    EXPECT_EQ(pipe.read(), "10:00:10 Guarding · en0 · gateway 172.20.10.1 (hotspot range) · Wi-Fi ↓ 0.0 MB  ↑ 0.0 MB\n"
                           "  Couldn't read per-app traffic at 10:00:10 — retrying\n"
                           "  1min window  last minute  share  app\n"
                           "       3.0 MB       3.0 MB   100%  Player\n");
    world.goHome();
    world.host.advance(5s);
    EXPECT_EQ(pipe.read(), "10:00:15 Idle · not a metered network · en0 · gateway 192.168.1.1 · not metered\n"
                           "  1min window  last minute  share  app\n"
                           "       3.0 MB       3.0 MB   100%  Player\n");
    EXPECT_EQ(end, std::nullopt);
}

TEST_F(PlainViewTest, aNotificationFollowsItsLineOfTheLog)
{
    GuardSettings settings = engine.settings();
    settings.rules() = {ActingWorld::rule(1, 60s, 1024 * 1024, ActionLevel::enforce)};
    engine.setSettings(std::move(settings));
    world.host.process(501, {.start = "then"});
    openView();
    engine.start();
    world.host.advance(0s);
    static_cast<void>(pipe.read());
    world.moves(1'000 + 3 * 1024 * 1024, 10);
    world.host.advance(5s);
    EXPECT_THAT(pipe.read(), StartsWith("10:00:05 enforced  Player used 3.0 MB in 1min → 暂停（可恢复）\n"
                                        "10:00:05 notice    Player was paused\n"
                                        "  3.0 MB in 1min\n"
                                        "  It is frozen, not closed — resume and it picks up where it left off.\n"
                                        "  [Resume] [Resume + snooze]\n"
                                        "10:00:05 Guarding"));
}

TEST_F(PlainViewTest, readerGone)
{
    openView();
    pipe.closeReader();
    engine.start();
    world.host.advance(0s);
    EXPECT_EQ(end, PlainView::End::readerGone);
    world.host.advance(60s);
}

TEST_F(PlainViewTest, outputThatCanNotBeWritten)
{
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    if (full < 0) GTEST_SKIP() << "no device that is always full";
    engine.start();
    view.emplace(engine, feed, full, [this](PlainView::End reason) { end = reason; });
    world.host.advance(10s);
    EXPECT_EQ(end, PlainView::End::failed);
    close(full);
}

TEST_F(PlainViewTest, aStoppedReaderHoldsNothingUp)
{
    openView();
    engine.start();
    world.host.advance(0s);
    const std::string first = pipe.read();
    for (int i = 0; i < 40; ++i) {
        engine.append(GuardEvent::Kind::info, std::string(4'000, 'x'));
        world.host.advance(0s);
    }
    engine.append(GuardEvent::Kind::info, "the last");
    world.host.advance(5s);
    std::string text = pipe.read();
    EXPECT_THAT(text, Not(HasSubstr("the last"))) << "a pipe does not hold that much";
    for (int i = 0; i < 10 && text.find("the last") == std::string::npos; ++i) {
        world.host.advance(1s);
        text += pipe.read();
    }
    EXPECT_THAT(text, HasSubstr("the last"));
    EXPECT_EQ(std::count(text.begin(), text.end(), 'x'), 40 * 4'000) << "nothing was lost or doubled";
    EXPECT_EQ(end, std::nullopt);
}

TEST_F(PlainViewTest, whatWaitsHasALimit)
{
    openView();
    engine.start();
    for (int i = 0; i < 80; ++i) {
        engine.append(GuardEvent::Kind::info, std::string(20'000, 'x'));
        world.host.advance(0s);
    }
    std::string text;
    for (int i = 0; i < 100; ++i) {
        text += pipe.read();
        world.host.advance(1s);
    }
    EXPECT_GT(text.size(), PlainView::mostWaiting / 2);
    EXPECT_LT(text.size(), PlainView::mostWaiting + 200'000);
}

} // namespace
} // namespace quellon
