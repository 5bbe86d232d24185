#pragma once

#include "QuellonProbe/InetSocket.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quellon {

/// One row of an answer.
struct ConnectionRow {
    std::int32_t owner = 0;
    Endpoints ends;
    std::uint32_t interface = 0;
    std::uint64_t bytesIn = 0;
    std::uint64_t bytesOut = 0;

    friend bool operator==(const ConnectionRow&, const ConnectionRow&) = default;
};

/// The connections known so far and what the answers have said of them. Pure: it asks nobody. Not thread-safe.
///
/// Who reads the answers follows a counter by process and label. So that no byte is told twice and none is lost:
/// - a connection that has closed is listed, with its last counters, by exactly one answer;
/// - a connection that changes hands is listed under the new owner without what was listed under the old;
/// - when a label is used again by the same process, its counters go on from where they were.
class ConnectionList {
public:
    struct Connection {
        InetSocket socket; ///< as described last
        std::uint32_t interface = 0;
        std::int32_t owner = 0; ///< 0: nobody known
        bool isClosed = false;
        bool wasSearched = false;     ///< its owner was looked for in vain
        bool wasAnswered = false;     ///< an answer has listed it
        std::uint64_t answeredIn = 0; ///< its counters in that answer
        std::uint64_t answeredOut = 0;
        std::uint64_t passedIn = 0; ///< of these, what was listed under earlier owners
        std::uint64_t passedOut = 0;
        std::uint64_t round = 0; ///< the last round in which a dump showed it
    };
    using Connections = std::unordered_map<std::uint64_t, Connection>;

    /// Connections that close between two answers are kept up to this many; of more, those that close last are lost,
    /// unless an answer has listed them.
    static constexpr std::size_t mostClosed = 8192;
    /// Labels whose counters are remembered after their connection, and for how many seconds since they were listed
    /// last. The reader takes a label that was away for 120 s for a new one, so this must be less.
    static constexpr std::size_t mostRemembered = 4096;
    static constexpr double memory = 115;

    /// A dump has shown this socket. `interface` 0 means unknown and changes nothing that was known before.
    void see(const InetSocket& socket, std::uint32_t interface);
    /// The kernel has destroyed this socket. True when no answer has listed the connection, so that what is known of it
    /// may be no more than this.
    bool close(const InetSocket& socket, std::uint32_t interface);
    /// Gives one of connections() another owner; 0 for none.
    void pass(Connection& connection, std::int32_t owner);

    /// Ascending by owner, then by endpoints; each pair of these once. What an answer has listed as closed is
    /// forgotten, as is what no dump has shown since the answer before the last. `now` in seconds of a clock that
    /// doesn't jump.
    [[nodiscard]] std::vector<ConnectionRow> answer(double now);

    /// By cookie.
    [[nodiscard]] Connections& connections() { return connections_; }
    /// Whether the last dump has shown the connection, or the kernel has said that it is closed.
    [[nodiscard]] bool isListed(const Connection& connection) const
    {
        return connection.isClosed || connection.round == round_;
    }

private:
    using Label = std::pair<std::int32_t, Endpoints>;
    struct Counters {
        std::uint64_t in = 0;
        std::uint64_t out = 0;
        double listed = 0;
    };

    void remember(const Connection& connection);
    void addRemembered(std::vector<ConnectionRow>& rows);

    Connections connections_;
    std::size_t closed_ = 0;
    std::uint64_t round_ = 1; ///< of the dumps for the next answer
    double now_ = 0;          ///< time of the last answer
    std::map<Label, Counters> remembered_;
};

} // namespace quellon
