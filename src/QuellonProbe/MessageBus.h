#pragma once

#include "QuellonProbe/BusMessage.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// A connection to the system's message bus, made when it is first needed and kept; a lost one is made again by the
/// next call. Not thread-safe.
class MessageBus {
public:
    using Deadline = std::chrono::steady_clock::time_point;

    /// `address` in D-Bus's form; alternatives behind semicolons are tried in their order. Only "unix:path=" and
    /// "unix:abstract=" are known; others are passed over.
    explicit MessageBus(std::string address);
    MessageBus(const MessageBus&) = delete;
    MessageBus& operator=(const MessageBus&) = delete;
    ~MessageBus();

    /// $DBUS_SYSTEM_BUS_ADDRESS or, without it, where the system's bus is by convention.
    [[nodiscard]] static std::string systemAddress();

    /// The reply to a call, never later than the deadline. Absent when there is no bus or no such service, when the
    /// service answers with an error, and when the time is up. Never starts a service.
    [[nodiscard]] std::optional<BusMessage> call(const BusCall& call, Deadline deadline);

    /// The places of an address in the order given, each as the name that a unix socket is bound to (an abstract one
    /// begins with a zero byte).
    [[nodiscard]] static std::vector<std::string> socketNames(std::string_view address);

private:
    enum class Outcome { answered, failed, lost };

    Outcome attempt(const BusCall& call, Deadline deadline, std::optional<BusMessage>& reply);
    bool connect(Deadline deadline);
    bool openSocket(const std::string& name, Deadline deadline);
    bool authenticate(Deadline deadline);
    bool send(std::string_view bytes, Deadline deadline);
    bool receive(Deadline deadline);
    std::optional<BusMessage> awaitReply(std::uint32_t serial, Deadline deadline);
    bool wait(short events, Deadline deadline) const;
    void disconnect();

    std::string address_;
    int descriptor_ = -1;
    std::uint32_t serial_ = 0;
    std::string received_; ///< bytes that no one has read yet
};

} // namespace quellon
