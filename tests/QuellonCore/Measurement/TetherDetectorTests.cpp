#include "QuellonCore/Measurement/TetherDetector.h"

#include "QuellonCore/Measurement/MeteredNetwork.h"
#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

constexpr auto& prefixes = MeteredNetwork::defaultHotspotGateways;
using Addresses = std::vector<TetherDetector::InterfaceAddress>;

TEST(TetherDetector, idleTether)
{
    struct Case {
        const char* name;
        const char* defaultRoute;
        Addresses addresses;
        std::optional<std::string> tether;
    };
    const Case cases[] = {
        {"no addresses", "en0", {}, std::nullopt},
        {"no tether", "en0", {{"lo0", "127.0.0.1"}, {"en0", "192.168.1.2"}}, std::nullopt},
        {"tether beside the default route", "en0", {{"en0", "192.168.1.2"}, {"en5", "172.20.10.2"}}, "en5"},
        {"tether is the default route", "en5", {{"en5", "172.20.10.2"}}, std::nullopt},
        {"another address of the default route", "en5", {{"en5", "172.20.10.2"}, {"en5", "172.20.10.3"}}, std::nullopt},
        {"two tethers: the first is named", "en0", {{"en7", "172.20.10.3"}, {"en5", "172.20.10.2"}}, "en7"},
        {"offline", "", {{"en5", "172.20.10.2"}}, std::nullopt},
        {"just outside the range", "en0", {{"en5", "172.20.100.2"}}, std::nullopt},
        {"second address in the range", "en0", {{"en5", "10.0.0.1"}, {"en5", "172.20.10.2"}}, "en5"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(TetherDetector::idleTether(c.defaultRoute, c.addresses, prefixes), c.tether);
    }
}

TEST(TetherDetector, otherPrefixes)
{
    const Addresses addresses{{"en4", "192.168.43.7"}, {"en5", "172.20.10.2"}};
    const std::string_view several[] = {"172.20.10.", "192.168.43."};
    EXPECT_EQ(TetherDetector::idleTether("en0", addresses, several), "en4") << "the order of the addresses decides";
    EXPECT_EQ(TetherDetector::idleTether("en0", addresses, {}), std::nullopt);
}

TEST(TetherDetector, current)
{
    ScriptedHost host;
    EXPECT_THAT(TetherDetector::systemAddresses(host), testing::IsEmpty());
    EXPECT_EQ(TetherDetector::current(host, "en0", prefixes), std::nullopt);

    const Addresses addresses{{"en0", "192.168.1.2"}, {"en5", "172.20.10.2"}};
    host.setAddresses(addresses);
    EXPECT_EQ(TetherDetector::systemAddresses(host), addresses);
    EXPECT_EQ(TetherDetector::current(host, "en0", prefixes), "en5");
    EXPECT_EQ(TetherDetector::current(host, "en5", prefixes), std::nullopt);
    EXPECT_TRUE(host.runs().empty()) << "no command is needed";
}

} // namespace
} // namespace quellon
