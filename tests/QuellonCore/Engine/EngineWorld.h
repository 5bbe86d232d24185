#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "ScriptedHost.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quellon {

using namespace std::chrono_literals;

/// A scripted machine on a phone's hotspot, with one application that moves bytes.
struct EngineWorld {
    ScriptedHost host;
    const std::filesystem::path stateFolder = Persistence{host.host()}.directory();
    const std::filesystem::path ledgerFile = stateFolder / Persistence::ledgerFile;
    const std::filesystem::path settingsFile = stateFolder / Persistence::settingsFile;

    EngineWorld()
    {
        host.tool(ToolRole::networksetup)
            .prints("\nHardware Port: Wi-Fi\nDevice: en0\nEthernet Address: 0:0:0:0:0:0\n");
        host.tool(ToolRole::ifconfig).prints("");
        host.tool(ToolRole::netstat).prints(counterText("en0", 5'000, 700));
        host.tool(ToolRole::ps).prints("  501   501   501 /Applications/Player.app/Contents/MacOS/Player\n");
        host.tool(ToolRole::nettop).prints(trafficText("en0", 1'000, 10));
        joinHotspot();
    }

    void joinHotspot(std::string_view interface = "en0")
    {
        host.tool(ToolRole::route).prints(fmt::format("    gateway: 172.20.10.1\n  interface: {}\n", interface));
    }
    void goHome(std::string_view interface = "en0")
    {
        host.tool(ToolRole::route).prints(fmt::format("    gateway: 192.168.1.1\n  interface: {}\n", interface));
    }
    /// What the next engine finds as settings.
    void storeSettings(std::string json) { host.files().set(settingsFile, std::move(json)); }
    /// What the ledger's file holds; absent when there is none.
    [[nodiscard]] std::optional<std::string> savedLedger() { return host.files().get(ledgerFile); }

    void goOffline() { host.tool(ToolRole::route).prints(""); }

    /// Running totals of the one application.
    void moves(std::uint64_t in, std::uint64_t out, std::string_view interface = "en0")
    {
        host.tool(ToolRole::nettop).prints(trafficText(interface, in, out));
    }

    /// The first two rounds of an engine that has just started: the baseline, then one in which 1,000 bytes have come.
    void playTwoRounds()
    {
        host.advance(0s);
        moves(2'000, 10);
        host.advance(5s);
    }

    static std::string trafficText(std::string_view interface, std::uint64_t in, std::uint64_t out)
    {
        return fmt::format("time,,interface,bytes_in,bytes_out,\n"
                           "10:00:00.000000,Player.501,,{1},{2},\n"
                           "10:00:00.000000,tcp4 172.20.10.4:50000<->203.0.113.9:443,{0},{1},{2},\n",
                           interface, in, out);
    }
    static std::string counterText(std::string_view interface, std::uint64_t in, std::uint64_t out)
    {
        return fmt::format("Name Mtu Network Address Ipkts Ierrs Ibytes Opkts Oerrs Obytes Coll\n"
                           "{} 1500 <Link#4> 0:0:0:0:0:0 1 0 {} 1 0 {} 0\n",
                           interface, in, out);
    }

    GuardEngine::Options stopped() const
    {
        GuardEngine::Options options;
        options.autoStart = false;
        return options;
    }
};

/// The messages of the activity log, oldest first.
inline std::vector<std::string> messages(const GuardEngine& engine)
{
    std::vector<std::string> result;
    for (auto event = engine.events().rbegin(); event != engine.events().rend(); ++event) {
        result.push_back(event->message);
    }
    return result;
}

} // namespace quellon
