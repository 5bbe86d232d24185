#include "QuellonCore/Measurement/InterfaceNames.h"

#include "QuellonCore/Measurement/Shell.h"
#include "ScriptedHost.h"
#include "ToolCaptures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using Map = InterfaceNames::Map;

TEST(InterfaceNames, parse)
{
    struct Case {
        const char* name;
        const char* text;
        Map names;
    };
    const Case cases[] = {
        {"empty", "", {}},
        {"one block", "\nHardware Port: Wi-Fi\nDevice: en0\nEthernet Address: x\n", {{"en0", "Wi-Fi"}}},
        {"blanks and tabs", "\t Hardware Port:\tiPhone USB \n  Device:en5\t", {{"en5", "iPhone USB"}}},
        {"device before any port", "Device: en0\nHardware Port: Wi-Fi\n", {}},
        {"empty device", "Hardware Port: Wi-Fi\nDevice:\n", {}},
        {"empty port", "Hardware Port: \nDevice: en0\n", {}},
        {"empty port after another", "Hardware Port: Wi-Fi\nHardware Port:\nDevice: en0\n", {}},
        {"two devices in one block",
         "Hardware Port: Hub\nDevice: en5\nDevice: en6\n",
         {{"en5", "Hub"}, {"en6", "Hub"}}},
        {"the first port stays", "Hardware Port: A\nDevice: en5\nHardware Port: B\nDevice: en5\n", {{"en5", "A"}}},
        {"other lines", "VLAN\nDevice (\"Hardware\" Port): vlan0\nhardware port: x\ndevice: y\n", {}},
        {"key in the middle of a line", "Hardware Port: A\nParent Device: en0\n", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(InterfaceNames::parse(c.text), c.names);
    }
}

TEST(InterfaceNames, display)
{
    const Map names{{"en0", "Wi-Fi"}};
    EXPECT_EQ(InterfaceNames::display("en0", names), "Wi-Fi");
    EXPECT_EQ(InterfaceNames::display("en1", names), "en1");
    EXPECT_EQ(InterfaceNames::display("", names), "");
}

TEST(InterfaceNames, current)
{
    ScriptedHost host;
    EXPECT_EQ(InterfaceNames::current(host), Map{}) << "could not be started";
    host.tool(ToolRole::networksetup).prints("Hardware Port: Wi-Fi\nDevice: en0\n");
    EXPECT_EQ(InterfaceNames::current(host), (Map{{"en0", "Wi-Fi"}}));
    EXPECT_EQ(host.runs().back().command, (Command{"/usr/sbin/networksetup", {"-listallhardwareports"}}));
    (void)Shell::drainTimeouts();
    host.tool(ToolRole::networksetup).timesOut();
    EXPECT_EQ(InterfaceNames::current(host), Map{});
    EXPECT_THAT(Shell::drainTimeouts(), testing::ElementsAre("/usr/sbin/networksetup"));
}

TEST(NameCaptures, everyPort)
{
    struct Case {
        const char* name;
        Map names;
    };
    const Case cases[] = {
        {"001-nonocast-iphone-usb",
         {{"en0", "Wi-Fi"},
          {"en5", "iPhone USB"},
          {"en3", "Bluetooth PAN"},
          {"en1", "Thunderbolt 1"},
          {"en2", "Thunderbolt 2"},
          {"bridge0", "Thunderbolt Bridge"}}},
        {"003-multipass-vlan-block",
         {{"en0", "Ethernet"},
          {"en1", "Wi-Fi"},
          {"en4", "Bluetooth PAN"},
          {"en2", "Thunderbolt 1"},
          {"en3", "Thunderbolt 2"},
          {"bridge0", "Thunderbolt Bridge"},
          {"en11", "USB 10/100/1000 LAN"},
          {"en12", "iPhone USB"},
          {"bridge2", "TestBridge2"}}},
        {"005-ethernet-adapter-en5",
         {{"en5", "Ethernet Adapter (en5)"},
          {"bridge0", "Thunderbolt Bridge"},
          {"en0", "Wi-Fi"},
          {"en1", "Thunderbolt 1"}}},
        {"007-real-abridged", {{"bridge0", "Thunderbolt Bridge"}, {"en0", "Wi-Fi"}, {"en1", "Thunderbolt 1"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(InterfaceNames::parse(toolCapture(std::string{"networksetup/"} + c.name + ".txt")), c.names);
    }
}

} // namespace
} // namespace quellon
