#pragma once

#include "QuellonCore/Host/HttpClient.h"
#include "QuellonCore/Support/EnumTable.h"
#include "QuellonCore/Support/Time.h"
#include "QuellonCore/Support/UUID.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace quellon {

/// One exchange that the program had over the network.
struct NetworkLogEntry {
    /// Whom it asked.
    enum class Service { update, explain };
    /// What it asked for.
    enum class Action { manifest, explain };
    /// How it ended: with a reply of this HTTP status (0 when it was not HTTP), or with none.
    struct Outcome {
        std::optional<int> status; ///< Absent: the transfer failed.

        [[nodiscard]] bool isTransportFailure() const { return !status; }
        bool operator==(const Outcome&) const = default;
    };

    UUID id;
    Date at{}; ///< When the exchange ended.
    Service service = Service::update;
    Action action = Action::manifest;
    Outcome outcome;
    std::size_t responseBytes = 0; ///< Of the body, as far as it was read.
    Seconds durationSeconds{0.0};

    /// The entry of an exchange that began at `startedAt` and ended `now`; without a response it failed.
    [[nodiscard]] static NetworkLogEntry make(const UUID& id, Service service, Action action,
                                              const std::optional<HttpResponse>& response, Date startedAt, Date now);

    bool operator==(const NetworkLogEntry&) const = default;
};

inline constexpr EnumTable<NetworkLogEntry::Service, 2> networkServices{{{
    {NetworkLogEntry::Service::update, "update", "Update check"},
    {NetworkLogEntry::Service::explain, "explain", "App lookup"},
}}};
inline constexpr EnumTable<NetworkLogEntry::Action, 2> networkActions{{{
    {NetworkLogEntry::Action::manifest, "manifest", "Version manifest"},
    {NetworkLogEntry::Action::explain, "explain", "Explanation"},
}}};

constexpr const auto& enumTable(NetworkLogEntry::Service /*type*/)
{
    return networkServices;
}
constexpr const auto& enumTable(NetworkLogEntry::Action /*type*/)
{
    return networkActions;
}

/// The latest exchanges of this run, for the user to see what has left the machine. Never saved. Any thread.
class NetworkLog {
public:
    /// How many entries are kept.
    static constexpr std::size_t capacity = 200;

    /// The program's own log.
    static NetworkLog& shared();

    /// Adds an entry; the oldest one goes when there are too many.
    void record(const NetworkLogEntry& entry);
    /// The entries, newest first.
    [[nodiscard]] std::vector<NetworkLogEntry> snapshot() const;
    void clear();

private:
    mutable std::mutex lock_;
    std::deque<NetworkLogEntry> entries_;
};

} // namespace quellon
