#include "QuellonCore/Diagnostics/NetworkLog.h"

#include <gtest/gtest.h>

#include <thread>

namespace quellon {
namespace {

using Service = NetworkLogEntry::Service;
using Action = NetworkLogEntry::Action;
constexpr Date began{Seconds{100.0}};
constexpr Date ended{Seconds{100.25}};

NetworkLogEntry entry(std::size_t bytes)
{
    return NetworkLogEntry::make({}, Service::update, Action::manifest, HttpResponse{200, std::string(bytes, 'x')},
                                 began, ended);
}

TEST(NetworkLog, make)
{
    const UUID id{{1}};
    const auto made =
        NetworkLogEntry::make(id, Service::explain, Action::explain, HttpResponse{503, "busy"}, began, ended);
    const NetworkLogEntry expected{id, ended, Service::explain, Action::explain, {503}, 4, Seconds{0.25}};
    EXPECT_EQ(made, expected);
    EXPECT_FALSE(made.outcome.isTransportFailure());
}

TEST(NetworkLog, makeWithoutAResponse)
{
    const auto made = NetworkLogEntry::make({}, Service::update, Action::manifest, std::nullopt, began, ended);
    EXPECT_TRUE(made.outcome.isTransportFailure());
    EXPECT_EQ(made.responseBytes, 0U);
    EXPECT_EQ(made.durationSeconds, Seconds{0.25});
}

TEST(NetworkLog, aReplyThatIsNotHTTPHasStatusZero)
{
    const auto made = NetworkLogEntry::make({}, Service::update, Action::manifest, HttpResponse{0, "x"}, began, ended);
    EXPECT_EQ(made.outcome.status, 0);
}

TEST(NetworkLog, rawTexts)
{
    EXPECT_EQ(networkServices.raw(Service::update), "update");
    EXPECT_EQ(networkServices.raw(Service::explain), "explain");
    EXPECT_EQ(networkActions.raw(Action::manifest), "manifest");
    EXPECT_EQ(networkActions.raw(Action::explain), "explain");
}

TEST(NetworkLog, keepsTheLatestTwoHundred)
{
    NetworkLog log;
    for (std::size_t i = 1; i <= 201; ++i) log.record(entry(i));
    const auto entries = log.snapshot();
    ASSERT_EQ(entries.size(), 200U);
    EXPECT_EQ(entries.front().responseBytes, 201U);
    EXPECT_EQ(entries.back().responseBytes, 2U);
}

TEST(NetworkLog, clear)
{
    NetworkLog log;
    log.record(entry(1));
    log.clear();
    EXPECT_TRUE(log.snapshot().empty());
}

TEST(NetworkLog, anyThread)
{
    NetworkLog log;
    const auto fill = [&log] {
        for (std::size_t i = 0; i < 150; ++i) log.record(entry(i));
    };
    std::thread other{fill};
    fill();
    other.join();
    EXPECT_EQ(log.snapshot().size(), 200U);
}

} // namespace
} // namespace quellon
