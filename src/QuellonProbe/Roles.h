#pragma once

#include "QuellonProbe/ConnectionWatch.h"
#include "QuellonProbe/IfconfigRole.h"
#include "QuellonProbe/KernelNetwork.h"
#include "QuellonProbe/LinkKind.h"
#include "QuellonProbe/MessageBus.h"
#include "QuellonProbe/NetworkManager.h"
#include "QuellonProbe/Proc.h"
#include "QuellonProbe/ProcessNames.h"
#include "QuellonProbe/PsRole.h"
#include "QuellonProbe/Server.h"

#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// All that the helper can be asked, by role and argument. Not thread-safe.
class Roles {
public:
    Roles();

    /// `request` is the role, or the role, one blank and its argument. A request that can't be understood, and a
    /// refusal by the kernel, are told on standard error.
    [[nodiscard]] Server::Reply reply(std::string_view request);

    [[nodiscard]] ConnectionWatch& connections() { return connections_; }

private:
    enum class Argument { none, interface, process };
    using Answer = std::optional<std::string>;
    struct Role {
        std::string_view word;
        Argument argument;
        Answer (Roles::*answer)(std::string_view argument);
    };
    static const Role table[];

    [[nodiscard]] static bool fits(Argument expected, std::string_view argument);
    [[nodiscard]] KernelNetwork* network();

    Answer nettop(std::string_view);
    Answer ps(std::string_view);
    Answer route(std::string_view);
    Answer ifconfig(std::string_view interface);
    Answer netstat(std::string_view interface);
    Answer networksetup(std::string_view);
    Answer start(std::string_view process);
    Answer parent(std::string_view process);

    ProcFolder proc_;
    ProcessNames names_;
    ConnectionWatch connections_;
    PsRole processes_;
    std::optional<KernelNetwork> network_; ///< opened when first needed
    DeviceFolder devices_;
    MessageBus bus_{MessageBus::systemAddress()};
    NetworkManager manager_{bus_};
};

} // namespace quellon
