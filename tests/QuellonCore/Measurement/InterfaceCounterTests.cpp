#include "QuellonCore/Measurement/InterfaceCounter.h"

#include "QuellonCore/Measurement/Shell.h"
#include "ScriptedHost.h"
#include "ToolCaptures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace quellon {
namespace {

using Counter = std::optional<InterfaceCounter>;

const std::string header = "Name Mtu Network Address Ipkts Ierrs Ibytes Opkts Oerrs Obytes Coll\n";
const std::string link = "en0 1500 <Link#4> 02:00:00:00:00:01 1 0 300 2 0 400 0\n";

TEST(InterfaceCounter, parse)
{
    struct Case {
        const char* name;
        std::string text;
        Counter counter;
    };
    const Case cases[] = {
        {"empty", "", std::nullopt},
        {"only a header", header, std::nullopt},
        {"link row", header + link, InterfaceCounter{300, 400}},
        {"no line feed at the end", link.substr(0, link.size() - 1), InterfaceCounter{300, 400}},
        {"runs of blanks", "  en0   1500  <Link#4>   a 1 0   300 2 0 400 0  ", InterfaceCounter{300, 400}},
        {"interface that is down", "en0* 1500 <Link#4> a 1 0 300 2 0 400 0\n", InterfaceCounter{300, 400}},
        {"only one mark is dropped", "en0** 1500 <Link#4> a 1 0 300 2 0 400 0\n", std::nullopt},
        {"link row without an address", "en0 1500 <Link#4> 1 0 300 2 0 400 0\n", InterfaceCounter{300, 400}},
        {"row of 9 columns", "en0 1500 <Link#4> 0 300 2 0 400 0\n", std::nullopt},
        {"row with an IPv4 network", "en0 1500 192.168.1 192.168.1.2 1 - 300 2 - 400 -\n", std::nullopt},
        {"network row first", "en0 1500 192.168.1 192.168.1.2 1 - 3 2 - 4 -\n" + link, InterfaceCounter{300, 400}},
        {"other interface", "en1 1500 <Link#5> a 1 0 3 2 0 4 0\n", std::nullopt},
        {"name that only begins so", "en01 1500 <Link#5> a 1 0 3 2 0 4 0\n", std::nullopt},
        {"received is no number", "en0 1500 <Link#4> a 1 0 x 2 0 400 0\n", std::nullopt},
        {"a later row still counts", "en0 1500 <Link#4> a 1 0 x 2 0 4 0\n" + link, InterfaceCounter{300, 400}},
        {"sent is a dash", "en0 1500 <Link#4> a 1 0 300 2 0 - 0\n", std::nullopt},
        {"negative", "en0 1500 <Link#4> a 1 0 -300 2 0 400 0\n", std::nullopt},
        {"signs that are read", "en0 1500 <Link#4> a 1 0 +300 2 0 -0 0\n", InterfaceCounter{300, 0}},
        {"the first row wins", link + "en0 1500 <Link#4> a 1 0 7 2 0 8 0\n", InterfaceCounter{300, 400}},
        {"a tab separates nothing", "en0\t1500 <Link#4> a 1 0 300 2 0 400 0\n", std::nullopt},
        {"more columns, counted from the end", "en0 1500 <Link#4> a b c 1 0 300 2 0 400 0\n",
         InterfaceCounter{300, 400}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(InterfaceCounter::parse(c.text, "en0"), c.counter);
    }
}

TEST(InterfaceCounter, totalBytes)
{
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ((InterfaceCounter{}.totalBytes()), 0U);
    EXPECT_EQ((InterfaceCounter{300, 400}.totalBytes()), 700U);
    EXPECT_EQ((InterfaceCounter{largest - 1, 1}.totalBytes()), largest);
    EXPECT_EXIT((void)(InterfaceCounter{largest, 1}.totalBytes()), testing::ExitedWithCode(70), "fatal: ");
}

TEST(InterfaceCounter, current)
{
    ScriptedHost host;
    host.tool(ToolRole::netstat).prints(header + link);
    EXPECT_EQ(InterfaceCounter::current(host, "en0"), (InterfaceCounter{300, 400}));
    ASSERT_EQ(host.runs().size(), 1U);
    EXPECT_EQ(host.runs()[0].command, (Command{"/usr/sbin/netstat", {"-ib", "-I", "en0"}}));
    EXPECT_EQ(InterfaceCounter::current(host, "en1"), std::nullopt) << "a row of another interface";

    host.clearRuns();
    EXPECT_EQ(InterfaceCounter::current(host, ""), std::nullopt);
    EXPECT_TRUE(host.runs().empty()) << "no name, no command";

    host.tool(ToolRole::netstat).fails();
    EXPECT_EQ(InterfaceCounter::current(host, "en0"), std::nullopt);
    (void)Shell::drainTimeouts();
    host.tool(ToolRole::netstat).timesOut();
    EXPECT_EQ(InterfaceCounter::current(host, "en0"), std::nullopt);
    EXPECT_THAT(Shell::drainTimeouts(), testing::ElementsAre("/usr/sbin/netstat"));
}

TEST(CounterCaptures, everyLinkRow)
{
    struct Case {
        const char* file;
        const char* interface;
        Counter counter;
    };
    const Case cases[] = {
        {"001-datadog-old-narrow", "lo0", InterfaceCounter{368415571, 368415571}},
        {"001-datadog-old-narrow", "gif0", InterfaceCounter{0, 0}},
        {"001-datadog-old-narrow", "en0", InterfaceCounter{13309516362, 11363839527}},
        {"001-datadog-old-narrow", "en1", std::nullopt},
        {"003-vorssaint-new-wide", "lo0", InterfaceCounter{3540480, 3540480}},
        {"003-vorssaint-new-wide", "stf0", InterfaceCounter{0, 0}},
        {"003-vorssaint-new-wide", "en3", InterfaceCounter{0, 0}},
        {"005-ivanvolkov-mojave-cut-names", "en0", InterfaceCounter{7619996599, 1349290134}},
        {"005-ivanvolkov-mojave-cut-names", "awdl0", InterfaceCounter{14536, 18752}},
        {"005-ivanvolkov-mojave-cut-names", "utun0", InterfaceCounter{0, 200}},
        {"005-ivanvolkov-mojave-cut-names", "bridge0", std::nullopt}, // printed as "bridg"
        {"007-I-utun0-no-address", "utun0", InterfaceCounter{0, 80}},
        {"009-en0-cidr-overflowing-network", "en0", InterfaceCounter{27949362788, 29723901148}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string{c.file} + " " + c.interface);
        const std::string text = toolCapture(std::string{"netstat/"} + c.file + ".txt");
        ASSERT_FALSE(text.empty());
        EXPECT_EQ(InterfaceCounter::parse(text, c.interface), c.counter);
    }
}

TEST(CounterCaptures, tableWithoutByteColumns)
{
    const std::string text = toolCapture("netstat/011-jc-osx-10.14.6-i-without-b.txt");
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(InterfaceCounter::parse(text, "lo0"), std::nullopt);
    EXPECT_EQ(InterfaceCounter::parse(text, "en0"), std::nullopt);
}

} // namespace
} // namespace quellon
