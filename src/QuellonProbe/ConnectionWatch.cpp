#include "QuellonProbe/ConnectionWatch.h"

#include "QuellonProbe/NettopText.h"
#include "QuellonProbe/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <limits>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <sys/socket.h>
#include <unistd.h>
#include <unordered_set>

namespace quellon {

namespace {

// Room for the news of some 10,000 destroyed sockets; the kernel gives as much of it as its limit allows.
constexpr int eventBuffer = 4 * 1024 * 1024;

// After a connection has closed unseen, the next of its kind is about to be open.
constexpr double lookDelay = 0.003;
constexpr double shortestLookInterval = 0.02;
constexpr double lookCostFactor = 40;
constexpr double lookMemory = 60;

double seconds(clockid_t clock)
{
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double now()
{
    return seconds(CLOCK_MONOTONIC);
}

} // namespace

ConnectionWatch::ConnectionWatch(const ProcFolder& proc, ProcessNames& names)
    : owners_{proc, ControlGroups{proc}, names},
      user_{::geteuid()},
      lastAnswer_{-std::numeric_limits<double>::infinity()}
{
}

void ConnectionWatch::subscribe()
{
    events_ = NetlinkSocket::open(NETLINK_SOCK_DIAG);
    if (!events_) return complain("closed connections can't be watched", errno);
    events_->setReceiveBuffer(eventBuffer);
    for (const unsigned int group : {SKNLGRP_INET_TCP_DESTROY, SKNLGRP_INET6_TCP_DESTROY}) {
        const int error = events_->join(group);
        if (error == 0) continue;
        complain("closed connections can't be watched", error);
        events_.reset();
        return;
    }
    // What closes before the first answer is told from what stays on the machine.
    if (open()) refreshAddresses();
}

void ConnectionWatch::refreshAddresses()
{
    if (const int error = addresses_.refresh(*route_)) complain("the machine's addresses can't be read", error);
}

std::optional<std::string> ConnectionWatch::answer()
{
    if (!open()) return std::nullopt;
    readEvents();
    refreshAddresses();
    if (!dumpAll()) return std::nullopt;
    findInterfaces();
    dropLostOwners();
    findOwners(false);
    lastAnswer_ = now();
    const auto rows = list_.answer(lastAnswer_);
    rememberOwners(rows);
    return text(rows);
}

bool ConnectionWatch::open()
{
    if (!diagnosis_) diagnosis_ = NetlinkSocket::open(NETLINK_SOCK_DIAG);
    if (!diagnosis_) return complain("sockets can't be listed", errno), false;
    if (!route_) route_ = NetlinkSocket::open(NETLINK_ROUTE);
    if (!route_) return complain("the machine's addresses can't be read", errno), false;
    return true;
}

int ConnectionWatch::dump(std::uint8_t family)
{
    const auto visit = [&](const NetlinkMessage& message) {
        if (message.type != SOCK_DIAG_BY_FAMILY) return;
        if (const auto socket = SocketDiagnosis::parse(message.body)) see(*socket);
    };
    // What a first try has shown stays true when the dump is asked for again.
    const int error = diagnosis_->dump(
        SocketDiagnosis::dumpRequest(family), [] {}, visit);
    return error == EINTR ? 0 : error;
}

bool ConnectionWatch::dumpAll()
{
    for (const std::uint8_t family : std::array<std::uint8_t, 2>{AF_INET, AF_INET6}) {
        const int error = dump(family);
        const bool isMissing = error == ENOENT || error == EAFNOSUPPORT || error == EOPNOTSUPP || error == EINVAL;
        // A kernel without IPv6 refuses that one.
        if (error != 0 && (family == AF_INET || !isMissing)) {
            complain("sockets can't be listed", error);
            return false;
        }
    }
    return true;
}

void ConnectionWatch::see(const InetSocket& socket)
{
    if (addresses_.isExternal(socket.ends)) list_.see(socket, interfaceOf(socket));
}

void ConnectionWatch::closed(const InetSocket& socket)
{
    if (!addresses_.isExternal(socket.ends)) return;
    if (!list_.close(socket, interfaceOf(socket)) || nextLook_) return;
    const auto time = now();
    if (time - lastAnswer_ < lookMemory) nextLook_ = std::max(time + lookDelay, earliestLook_);
}

std::uint32_t ConnectionWatch::interfaceOf(const InetSocket& socket) const
{
    const auto interface = addresses_.interface(socket.ends.local, socket.device);
    return interface != 0 ? interface : socket.device;
}

/// A connection over an address that is new since the last answer may have closed by now.
void ConnectionWatch::findInterfaces()
{
    for (auto& [cookie, connection] : list_.connections()) {
        if (connection.interface == 0) connection.interface = interfaceOf(connection.socket);
    }
}

void ConnectionWatch::readEvents()
{
    if (!events_) return;
    const int error = events_->receiveEvents([&](const NetlinkMessage& message) {
        if (message.type != SOCK_DIAG_BY_FAMILY) return;
        if (const auto socket = SocketDiagnosis::parse(message.body)) closed(*socket);
    });
    if (error == 0) return;
    if (error == ENOBUFS) return complain("some closed connections were missed");
    complain("closed connections can't be watched any more", error);
    events_.reset();
}

/// An owner that has ended leaves its open connections to whoever else holds them. What nobody holds any more stays
/// its own, unless its number now means another process.
void ConnectionWatch::dropLostOwners()
{
    std::unordered_map<std::int32_t, Owners::Presence> presences;
    for (auto& [cookie, connection] : list_.connections()) {
        if (connection.owner == 0 || !list_.isListed(connection)) continue;
        const auto [place, isNew] = presences.try_emplace(connection.owner);
        if (isNew) place->second = owners_.presence(connection.owner);
        if (place->second == Owners::Presence::same) continue;
        const bool isHeld = !connection.isClosed && connection.socket.inode != 0;
        if (place->second == Owners::Presence::gone && !isHeld) continue;
        list_.pass(connection, 0);
        connection.wasSearched = false;
    }
}

void ConnectionWatch::findOwners(bool onlyNew)
{
    std::vector<SocketSearch> searches;
    std::vector<ConnectionList::Connection*> connections;
    for (auto& [cookie, connection] : list_.connections()) {
        const auto& socket = connection.socket;
        if (connection.owner != 0 || connection.isClosed || socket.inode == 0) continue;
        // Nobody but root may see what other users' processes hold.
        if (user_ != 0 && socket.user != user_) continue;
        if (onlyNew && connection.wasSearched) continue;
        searches.push_back({socket.inode, socket.cgroup, !connection.wasSearched, 0});
        connections.push_back(&connection);
    }
    if (searches.empty()) return;
    owners_.find(searches, now());
    for (std::size_t i = 0; i < searches.size(); ++i) {
        connections[i]->wasSearched = true;
        if (searches[i].owner != 0) list_.pass(*connections[i], searches[i].owner);
    }
}

void ConnectionWatch::lookBetweenAnswers()
{
    nextLook_.reset();
    const auto start = seconds(CLOCK_THREAD_CPUTIME_ID);
    if (open() && dumpAll()) findOwners(true);
    const auto cost = seconds(CLOCK_THREAD_CPUTIME_ID) - start;
    earliestLook_ = now() + std::max(shortestLookInterval, lookCostFactor * cost);
}

void ConnectionWatch::rememberOwners(const std::vector<ConnectionRow>& rows)
{
    seen_.clear();
    std::unordered_set<std::int32_t> inUse;
    for (const auto& row : rows) {
        if (!inUse.insert(row.owner).second) continue;
        if (const auto* process = owners_.seen(row.owner)) seen_.push_back(*process);
    }
    owners_.prune(inUse, lastAnswer_);
}

std::string ConnectionWatch::text(const std::vector<ConnectionRow>& rows)
{
    const NettopNames names{[&](std::int32_t pid) -> std::string_view { return owners_.name(pid); },
                            [&](std::uint32_t index) -> std::string_view { return addresses_.name(index); }};
    return nettopText(rows, timeOfDay(), names);
}

int ConnectionWatch::descriptor() const
{
    return events_ ? events_->descriptor() : -1;
}

void ConnectionWatch::readable()
{
    readEvents();
}

int ConnectionWatch::timeout() const
{
    if (!nextLook_) return -1;
    return static_cast<int>(std::ceil(std::clamp(*nextLook_ - now(), 0.0, 3600.0) * 1000));
}

void ConnectionWatch::timedOut()
{
    lookBetweenAnswers();
}

} // namespace quellon
