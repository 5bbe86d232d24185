#include "QuellonProbe/ConnectionList.h"

#include "QuellonProbe/SocketMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using ::testing::ElementsAre;
using testing::endpoints;
using ::testing::IsEmpty;

const auto ends = endpoints("172.20.10.2", 50000, "93.184.216.34", 443);
constexpr std::uint32_t wlan = 3;

InetSocket socket(std::uint64_t cookie, std::uint64_t in, std::uint64_t out, const Endpoints& where = ends)
{
    InetSocket result;
    result.ends = where;
    result.cookie = cookie;
    result.bytesIn = in;
    result.bytesOut = out;
    return result;
}

ConnectionRow row(std::int32_t owner, std::uint64_t in, std::uint64_t out, const Endpoints& where = ends)
{
    return {owner, where, wlan, in, out};
}

TEST(ConnectionList, openConnectionIsListedEachTime)
{
    ConnectionList list;
    EXPECT_THAT(list.answer(0), IsEmpty());
    list.see(socket(1, 100, 10), wlan);
    list.pass(list.connections().at(1), 42);
    EXPECT_THAT(list.answer(1), ElementsAre(row(42, 100, 10)));
    list.see(socket(1, 150, 20), wlan);
    EXPECT_THAT(list.answer(2), ElementsAre(row(42, 150, 20)));
}

TEST(ConnectionList, closedConnectionIsListedOnceWithItsLastCounters)
{
    ConnectionList list;
    list.see(socket(1, 100, 10), wlan);
    list.pass(list.connections().at(1), 42);
    EXPECT_TRUE(list.close(socket(1, 20000, 30), 0)) << "no answer has listed it yet";
    EXPECT_FALSE(list.close(socket(1, 20000, 30), 0)) << "told twice";
    EXPECT_THAT(list.answer(1), ElementsAre(row(42, 20000, 30)));
    EXPECT_THAT(list.answer(2), IsEmpty());
}

TEST(ConnectionList, closedWithoutHavingBeenSeenHasNoOwner)
{
    ConnectionList list;
    EXPECT_TRUE(list.close(socket(1, 20000, 30), wlan));
    EXPECT_FALSE(list.close(socket(2, 0, 0), wlan)) << "a refused connection";
    EXPECT_THAT(list.answer(1), ElementsAre(row(0, 20000, 30)));
}

TEST(ConnectionList, aDumpThatIsOlderThanTheEndChangesNothing)
{
    ConnectionList list;
    list.close(socket(1, 20000, 30), wlan);
    list.see(socket(1, 100, 10), wlan);
    EXPECT_THAT(list.answer(1), ElementsAre(row(0, 20000, 30)));
    EXPECT_THAT(list.answer(2), IsEmpty());
}

TEST(ConnectionList, whatTheDumpNoLongerShowsWaitsOneAnswerForItsEnd)
{
    ConnectionList list;
    list.see(socket(1, 100, 10), wlan);
    list.see(socket(2, 7, 7, endpoints("172.20.10.2", 2, "8.8.8.8", 2)), wlan);
    EXPECT_EQ(list.answer(1).size(), 2U);
    EXPECT_THAT(list.answer(2), IsEmpty());
    EXPECT_FALSE(list.close(socket(1, 300, 10), 0)) << "an answer has listed it";
    EXPECT_THAT(list.answer(3), ElementsAre(row(0, 300, 10)));
    EXPECT_THAT(list.connections(), IsEmpty());
}

TEST(ConnectionList, newOwnerIsNotChargedWhatTheOldOneWas)
{
    ConnectionList list;
    list.see(socket(1, 100, 10), wlan);
    list.pass(list.connections().at(1), 42);
    EXPECT_THAT(list.answer(1), ElementsAre(row(42, 100, 10)));
    list.see(socket(1, 160, 15), wlan);
    list.pass(list.connections().at(1), 43);
    EXPECT_THAT(list.answer(2), ElementsAre(row(43, 60, 5)));
    list.see(socket(1, 170, 15), wlan);
    list.pass(list.connections().at(1), 42);
    EXPECT_THAT(list.answer(3), ElementsAre(row(42, 110, 10))) << "goes on from the 100 and 10 listed before";
}

TEST(ConnectionList, ownerFoundBeforeTheFirstAnswerGetsEverything)
{
    ConnectionList list;
    list.see(socket(1, 100, 10), wlan);
    list.pass(list.connections().at(1), 42);
    list.pass(list.connections().at(1), 43);
    EXPECT_THAT(list.answer(1), ElementsAre(row(43, 100, 10)));
}

TEST(ConnectionList, aLabelThatIsUsedAgainGoesOn)
{
    ConnectionList list;
    list.see(socket(1, 100, 10), wlan);
    list.pass(list.connections().at(1), 42);
    list.close(socket(1, 1000, 10), 0);
    list.see(socket(2, 50, 5), wlan);
    list.pass(list.connections().at(2), 42);
    EXPECT_THAT(list.answer(1), ElementsAre(row(42, 1050, 15))) << "one row for one label";
    list.see(socket(2, 80, 5), wlan);
    EXPECT_THAT(list.answer(2), ElementsAre(row(42, 1080, 15)));
    list.see(socket(2, 90, 5), wlan);
    EXPECT_THAT(list.answer(2 + ConnectionList::memory), ElementsAre(row(42, 1090, 15))) << "still in use";
    list.close(socket(2, 90, 5), 0);
    EXPECT_THAT(list.answer(3 + 2 * ConnectionList::memory), ElementsAre(row(42, 90, 5)))
        << "not listed for longer than the memory";
}

TEST(ConnectionList, theSameLabelOfTwoProcessesIsTwo)
{
    ConnectionList list;
    list.see(socket(1, 100, 10), wlan);
    list.see(socket(2, 50, 5), wlan);
    list.pass(list.connections().at(1), 43);
    list.pass(list.connections().at(2), 42);
    EXPECT_THAT(list.answer(1), ElementsAre(row(42, 50, 5), row(43, 100, 10)));
}

TEST(ConnectionList, manyClosedConnectionsDoNotFillTheMemory)
{
    ConnectionList list;
    for (std::uint64_t cookie = 1; cookie <= ConnectionList::mostClosed + 10; ++cookie) {
        list.close(socket(cookie, 1, 1, endpoints("172.20.10.2", static_cast<std::uint16_t>(cookie), "8.8.8.8", 1)),
                   wlan);
    }
    EXPECT_EQ(list.answer(1).size(), ConnectionList::mostClosed);
    EXPECT_THAT(list.connections(), IsEmpty());
    EXPECT_TRUE(list.close(socket(99999, 1, 1), wlan)) << "there is room again";
}

TEST(ConnectionList, closedConnectionsThatOnlyALookHasShownCountToo)
{
    ConnectionList list;
    list.see(socket(1, 1, 1), wlan);
    list.see(socket(2, 1, 1), wlan);
    EXPECT_EQ(list.answer(0).size(), 1U) << "both with one label";
    for (std::uint64_t cookie = 10; cookie < 10 + 2 * ConnectionList::mostClosed; ++cookie) {
        list.see(socket(cookie, 5, 5, endpoints("10.0.0.2", 1, "8.8.8.8", 1)), wlan);
        static_cast<void>(list.close(socket(cookie, 5, 5, endpoints("10.0.0.2", 1, "8.8.8.8", 1)), wlan));
    }
    EXPECT_EQ(list.connections().size(), ConnectionList::mostClosed + 2);
    EXPECT_FALSE(list.close(socket(1, 7, 7), wlan));
    EXPECT_TRUE(list.connections().at(1).isClosed) << "what an answer has listed keeps its last counters";
}

TEST(ConnectionList, oneLabelHasTheInterfaceThatIsKnown)
{
    for (const std::uint64_t known : {1U, 2U}) {
        ConnectionList list;
        for (const std::uint64_t cookie : {1U, 2U}) list.see(socket(cookie, 5, 6), cookie == known ? wlan : 0);
        EXPECT_THAT(list.answer(0), ElementsAre(row(0, 10, 12))) << known;
    }
}

TEST(ConnectionList, interfaceOnceKnownStays)
{
    ConnectionList list;
    list.see(socket(1, 1, 1), wlan);
    list.see(socket(1, 2, 2), 0);
    EXPECT_THAT(list.answer(1), ElementsAre(row(0, 2, 2)));
}

} // namespace
} // namespace quellon
