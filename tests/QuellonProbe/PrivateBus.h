#pragma once

#include "QuellonProbe/TemporaryFolder.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <sys/types.h>
#include <thread>

namespace quellon::testing {

/// A message bus of the test's own, run by the real dbus-daemon.
class PrivateBus {
public:
    PrivateBus() { start(); }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus() { stop(); }

    /// False when this machine has no dbus-daemon.
    [[nodiscard]] bool isRunning() const { return pid_ > 0; }
    /// The same before and after a new start.
    [[nodiscard]] std::string address() const { return "unix:path=" + folder_.path() + "/bus"; }
    void stop();
    void start();

private:
    TemporaryFolder folder_;
    pid_t pid_ = -1;
};

/// The few methods of the NetworkManager service that are asked for, on a private bus, for one device.
class FakeNetworkManager {
public:
    static constexpr const char* interface = "wlan0";

    explicit FakeNetworkManager(const PrivateBus& bus) : address_{bus.address()} { start(); }
    FakeNetworkManager(const FakeNetworkManager&) = delete;
    FakeNetworkManager& operator=(const FakeNetworkManager&) = delete;
    ~FakeNetworkManager() { stop(); }

    std::atomic<std::uint32_t> metered = 0;
    std::atomic<std::uint32_t> deviceType = 2; ///< Wi-Fi; 8 is a modem
    std::atomic<bool> answers = true;          ///< otherwise it takes each call and says nothing

    /// Leaves the bus, and comes back. Returns when the bus knows.
    void stop();
    void start();
    /// False when it couldn't take its name on the bus.
    [[nodiscard]] bool isRunning() const { return owned_; }

private:
    void run();

    std::string address_;
    std::atomic<bool> quit_ = false;
    std::atomic<bool> ready_ = false;
    std::atomic<bool> owned_ = false;
    std::thread thread_;
};

} // namespace quellon::testing
