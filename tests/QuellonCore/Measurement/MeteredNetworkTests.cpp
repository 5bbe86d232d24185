#include "QuellonCore/Measurement/MeteredNetwork.h"

#include "QuellonCore/Measurement/Shell.h"
#include "ScriptedHost.h"
#include "ToolCaptures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>

namespace quellon {
namespace {

constexpr auto& gateways = MeteredNetwork::defaultHotspotGateways;
constexpr std::string_view wifi = "   gateway: 192.168.1.1\n  interface: en1\n";

struct Verdict {
    MeteredStatus status;
    int calls = 0;
};

Verdict evaluate(std::string_view route, const std::string& flags,
                 std::span<const std::string_view> prefixes = gateways)
{
    Verdict verdict;
    const auto ifconfigOutput = [&] {
        ++verdict.calls;
        return flags;
    };
    verdict.status = MeteredNetwork::evaluate(route, ifconfigOutput, prefixes);
    return verdict;
}

TEST(MeteredNetwork, defaultGateways)
{
    EXPECT_THAT(gateways, testing::ElementsAre("172.20.10."));
}

TEST(MeteredNetwork, evaluate)
{
    struct Case {
        const char* name;
        std::string route;
        std::string flags;
        MeteredStatus status;
        int calls;
    };
    const std::string plain{wifi};
    const MeteredStatus offline{false, "", "No default route — offline"};
    const MeteredStatus notMetered{false, "en1", "en1 · gateway 192.168.1.1 · not metered"};
    const Case cases[] = {
        {"empty text", "", "expensive", offline, 0},
        {"gateway without an interface", "gateway: 172.20.10.1\n", "", offline, 0},
        {"interface line without a name", "gateway: 172.20.10.1\ninterface: \t\n", "", offline, 0},
        {"hotspot gateway",
         "gateway: 172.20.10.1\ninterface: en1",
         "",
         {true, "en1", "en1 · gateway 172.20.10.1 (hotspot range)"},
         0},
        {"the prefix ends in a point",
         "gateway: 172.20.100.1\ninterface: en1\n",
         "",
         {false, "en1", "en1 · gateway 172.20.100.1 · not metered"},
         1},
        {"gateway in IPv6",
         "gateway: fe80::1%en1\ninterface: en1\n",
         "expensive",
         {true, "en1", "en1 · flagged expensive"},
         1},
        {"gateway as a link name",
         "gateway: link#14\ninterface: en1\n",
         "",
         {false, "en1", "en1 · gateway link#14 · not metered"},
         1},
        {"no gateway", "interface: utun3\n", "", {false, "utun3", "utun3 · gateway ? · not metered"}, 1},
        {"no flags", plain, "flags=8863<UP>", notMetered, 1},
        {"interface text failed", plain, "", notMetered, 1},
        {"constrained", plain, "en1: mtu 1500 constrained", {true, "en1", "en1 · flagged constrained"}, 1},
        {"expensive", plain, "a expensive b", {true, "en1", "en1 · flagged expensive"}, 1},
        {"cellular", plain, "type: cellular\n", {true, "en1", "en1 · flagged cellular"}, 1},
        {"inside another word", plain, "unconstrained", {true, "en1", "en1 · flagged constrained"}, 1},
        {"upper case is no match", plain, "type: CELLULAR Expensive", notMetered, 1},
        {"two words: expensive before cellular",
         plain,
         "cellular expensive",
         {true, "en1", "en1 · flagged expensive"},
         1},
        {"all words: constrained first",
         plain,
         "cellular expensive constrained",
         {true, "en1", "en1 · flagged constrained"},
         1},
        {"the last line of each kind wins", "interface: en9\ngateway: 172.20.10.1\n" + plain, "", notMetered, 1},
        {"an empty later interface wins too", plain + "interface:\n", "", offline, 0},
        {"tabs around", "\tinterface:\ten1\t\n\n\tgateway:192.168.1.1\n", "", notMetered, 1},
        {"a key in the middle of a line", "my interface: en7\n" + plain, "", notMetered, 1},
        {"a carriage return is part of the name",
         "interface: en1\r\n",
         "",
         {false, "en1\r", "en1\r · gateway ? · not metered"},
         1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Verdict verdict = evaluate(c.route, c.flags);
        EXPECT_EQ(verdict.status, c.status);
        EXPECT_EQ(verdict.status.detail, c.status.detail);
        EXPECT_EQ(verdict.calls, c.calls);
    }
}

TEST(MeteredNetwork, otherGateways)
{
    const std::string_view route = "gateway: 10.1.2.3\ninterface: en1\n";
    const std::string_view several[] = {"192.168.43.", "10.1."};
    EXPECT_EQ(evaluate(route, "", several).status,
              (MeteredStatus{true, "en1", "en1 · gateway 10.1.2.3 (hotspot range)"}));

    const std::string_view hotspot = "gateway: 172.20.10.1\ninterface: en1\n";
    EXPECT_EQ(evaluate(hotspot, "", {}).status,
              (MeteredStatus{false, "en1", "en1 · gateway 172.20.10.1 · not metered"}));
    EXPECT_EQ(evaluate(hotspot, "constrained", {}).status, (MeteredStatus{true, "en1", "en1 · flagged constrained"}));
}

TEST(MeteredNetwork, currentRunsTheInterfaceCommandOnlyWhenNeeded)
{
    ScriptedHost host;
    host.tool(ToolRole::route).prints(std::string{wifi});
    host.tool(ToolRole::ifconfig).prints("en1: flags=8863 mtu 1500 constrained\n");
    EXPECT_EQ(MeteredNetwork::current(host, gateways), (MeteredStatus{true, "en1", "en1 · flagged constrained"}));
    ASSERT_EQ(host.runs().size(), 2U);
    EXPECT_EQ(host.runs()[0].command, (Command{"/sbin/route", {"-n", "get", "default"}}));
    EXPECT_EQ(host.runs()[1].command, (Command{"/sbin/ifconfig", {"en1"}}));

    host.tool(ToolRole::route).prints("gateway: 172.20.10.1\ninterface: en1\n");
    host.clearRuns();
    EXPECT_TRUE(MeteredNetwork::current(host, gateways).isMetered);
    EXPECT_EQ(host.runs(ToolRole::ifconfig), 0U) << "the gateway decided";

    host.tool(ToolRole::route).prints("gateway: 10.0.0.1\n");
    EXPECT_EQ(MeteredNetwork::current(host, gateways), (MeteredStatus{false, "", "No default route — offline"}));
    EXPECT_EQ(host.runs(ToolRole::ifconfig), 0U) << "there is no interface";
}

TEST(MeteredNetwork, currentWithFailedCommands)
{
    const MeteredStatus unknown{true, "", "Route lookup failed — assuming metered"};
    const MeteredStatus notMetered{false, "en1", "en1 · gateway 192.168.1.1 · not metered"};
    ScriptedHost host;
    EXPECT_EQ(MeteredNetwork::current(host, gateways), unknown) << "could not be started";
    host.tool(ToolRole::route).prints("interface: \xFF\n");
    EXPECT_EQ(MeteredNetwork::current(host, gateways), unknown) << "not UTF-8";
    host.tool(ToolRole::route).prints("");
    EXPECT_EQ(MeteredNetwork::current(host, gateways).detail, "No default route — offline") << "printed nothing";

    host.tool(ToolRole::route).prints(std::string{wifi});
    EXPECT_EQ(MeteredNetwork::current(host, gateways), notMetered) << "no flags to be had";

    (void)Shell::drainTimeouts();
    host.tool(ToolRole::ifconfig).timesOut();
    EXPECT_EQ(MeteredNetwork::current(host, gateways), notMetered);
    host.tool(ToolRole::route).timesOut();
    EXPECT_EQ(MeteredNetwork::current(host, gateways), unknown);
    EXPECT_THAT(Shell::drainTimeouts(), testing::ElementsAre("/sbin/ifconfig", "/sbin/route"));
}

TEST(NetworkCaptures, routes)
{
    struct Case {
        const char* name;
        MeteredStatus status;
    };
    const Case cases[] = {
        {"001-whichway-wired-en7", {false, "en7", "en7 · gateway 192.168.6.1 · not metered"}},
        {"003-default-en0-behind-split-vpn", {false, "en0", "en0 · gateway 10.62.96.1 · not metered"}},
        {"004-ipsec0-no-gateway", {false, "ipsec0", "ipsec0 · gateway ? · not metered"}},
        {"006-hotspot-172.20.10.1-stripped", {true, "en0", "en0 · gateway 172.20.10.1 (hotspot range)"}},
        {"008-no-gateway-broadcast", {false, "en0", "en0 · gateway ? · not metered"}},
        {"010-not-in-table", {false, "", "No default route — offline"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string route = toolCapture(std::string{"route/"} + c.name + ".txt");
        ASSERT_FALSE(route.empty());
        EXPECT_EQ(evaluate(route, "").status, c.status);
        EXPECT_EQ(evaluate(route, "").status.detail, c.status.detail);
    }
}

TEST(NetworkCaptures, interfaces)
{
    struct Case {
        const char* name;
        const char* detail;
    };
    constexpr Case cases[] = {
        {"001-whichway-full", "en1 · gateway 192.168.1.1 · not metered"},
        {"002-jc-osx-10.14.6", "en1 · gateway 192.168.1.1 · not metered"},
        {"007-iphone-usb-en7-constrained-inactive", "en1 · flagged constrained"},
        {"009-hotspot-en0-not-constrained-mojave", "en1 · gateway 192.168.1.1 · not metered"},
        {"010-v-en0-wifi", "en1 · gateway 192.168.1.1 · not metered"},
        {"012-v-en6-usb-dongle", "en1 · gateway 192.168.1.1 · not metered"},
        {"014-v-pdp_ip0-expensive-cellular", "en1 · gateway 192.168.1.1 · not metered"}, // only in capitals
        {"015-bridge100-sharing", "en1 · gateway 192.168.1.1 · not metered"},
        {"018-wired-gigabit-en0", "en1 · gateway 192.168.1.1 · not metered"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string flags = toolCapture(std::string{"ifconfig/"} + c.name + ".txt");
        ASSERT_FALSE(flags.empty());
        EXPECT_EQ(evaluate(wifi, flags).status.detail, c.detail);
    }
}

} // namespace
} // namespace quellon
