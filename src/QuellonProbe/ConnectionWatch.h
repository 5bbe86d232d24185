#pragma once

#include "QuellonProbe/ConnectionList.h"
#include "QuellonProbe/LocalAddresses.h"
#include "QuellonProbe/Netlink.h"
#include "QuellonProbe/Owners.h"
#include "QuellonProbe/Proc.h"
#include "QuellonProbe/ProcessNames.h"
#include "QuellonProbe/SeenProcess.h"
#include "QuellonProbe/Server.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quellon {

/// The role `nettop`: every TCP connection that leaves the machine, its bytes and its owner. Not thread-safe.
///
/// As the background of a Server it hears when the kernel destroys a socket, which tells the last counters but not the
/// owner. So while connections come and go unseen between two answers, it looks at the sockets more often, to learn the
/// owners of those that are open just then: no sooner than 20 ms after the last such look and with no more than 1/40 of
/// one processor's time, and only within a minute of an answer.
class ConnectionWatch final : public Server::Background {
public:
    /// Both outlive the object.
    ConnectionWatch(const ProcFolder& proc, ProcessNames& names);

    /// Begins to hear of destroyed sockets. Where the kernel refuses, it says so on standard error and goes on without.
    void subscribe();

    /// The answer; absent when the kernel refuses to list its sockets.
    [[nodiscard]] std::optional<std::string> answer();

    /// The owners of the last answer as they were when they were found, ascending by pid. Valid until the next answer.
    [[nodiscard]] std::span<const SeenProcess> seen() const { return seen_; }

    [[nodiscard]] int descriptor() const override;
    void readable() override;
    [[nodiscard]] int timeout() const override;
    void timedOut() override;

private:
    bool open();
    int dump(std::uint8_t family);
    bool dumpAll();
    void refreshAddresses();
    void findInterfaces();
    void readEvents();
    void see(const InetSocket& socket);
    void closed(const InetSocket& socket);
    [[nodiscard]] std::uint32_t interfaceOf(const InetSocket& socket) const;
    void dropLostOwners();
    void findOwners(bool onlyNew);
    void lookBetweenAnswers();
    void rememberOwners(const std::vector<ConnectionRow>& rows);
    [[nodiscard]] std::string text(const std::vector<ConnectionRow>& rows);

    std::optional<NetlinkSocket> diagnosis_;
    std::optional<NetlinkSocket> events_;
    std::optional<NetlinkSocket> route_;
    LocalAddresses addresses_;
    ConnectionList list_;
    Owners owners_;
    std::vector<SeenProcess> seen_;
    std::uint32_t user_;
    double lastAnswer_;
    double earliestLook_ = 0;        ///< the budget allows no look before
    std::optional<double> nextLook_; ///< absent: none is wanted
};

} // namespace quellon
