#include "QuellonProbe/ConnectionList.h"

#include <algorithm>
#include <tuple>

namespace quellon {

void ConnectionList::see(const InetSocket& socket, std::uint32_t interface)
{
    auto& connection = connections_[socket.cookie];
    if (connection.isClosed) return;
    connection.socket = socket;
    connection.round = round_;
    if (interface != 0) connection.interface = interface;
}

bool ConnectionList::close(const InetSocket& socket, std::uint32_t interface)
{
    const auto place = connections_.find(socket.cookie);
    const bool isKnown = place != connections_.end();
    if (isKnown && place->second.isClosed) return false;
    // Refused connections and the like: there is nothing to tell of them.
    if (!isKnown && socket.bytesIn == 0 && socket.bytesOut == 0) return false;
    if (closed_ >= mostClosed && !(isKnown && place->second.wasAnswered)) {
        if (isKnown) connections_.erase(place);
        return false;
    }
    auto& connection = isKnown ? place->second : connections_[socket.cookie];
    if (!isKnown) connection.socket = socket;
    connection.isClosed = true;
    ++closed_;
    connection.socket.bytesIn = std::max(connection.socket.bytesIn, socket.bytesIn);
    connection.socket.bytesOut = std::max(connection.socket.bytesOut, socket.bytesOut);
    if (connection.interface == 0) connection.interface = interface;
    return !connection.wasAnswered;
}

void ConnectionList::pass(Connection& connection, std::int32_t owner)
{
    if (connection.owner == owner) return;
    remember(connection);
    connection.owner = owner;
    connection.passedIn = connection.answeredIn;
    connection.passedOut = connection.answeredOut;
}

void ConnectionList::remember(const Connection& connection)
{
    const auto in = connection.answeredIn - connection.passedIn;
    const auto out = connection.answeredOut - connection.passedOut;
    if (in == 0 && out == 0) return;
    const Label label{connection.owner, connection.socket.ends};
    auto place = remembered_.find(label);
    if (place == remembered_.end()) {
        if (remembered_.size() >= mostRemembered) return;
        place = remembered_.emplace(label, Counters{}).first;
    }
    auto& counters = place->second;
    counters.in += in;
    counters.out += out;
    counters.listed = now_;
}

void ConnectionList::addRemembered(std::vector<ConnectionRow>& rows)
{
    std::erase_if(remembered_, [&](const auto& entry) { return now_ - entry.second.listed > memory; });
    if (remembered_.empty()) return;
    for (auto& row : rows) {
        const auto place = remembered_.find({row.owner, row.ends});
        if (place == remembered_.end()) continue;
        row.bytesIn += place->second.in;
        row.bytesOut += place->second.out;
        place->second.listed = now_;
    }
}

namespace {

auto labelOf(const ConnectionRow& row)
{
    return std::tie(row.owner, row.ends);
}

/// Adds up neighbours with the same label; the interface is the first that is known.
void mergeEqualLabels(std::vector<ConnectionRow>& rows)
{
    auto last = rows.begin();
    for (auto row = rows.begin(); row != rows.end(); ++row) {
        if (row == last) continue;
        if (labelOf(*row) == labelOf(*last)) {
            if (last->interface == 0) last->interface = row->interface;
            last->bytesIn += row->bytesIn;
            last->bytesOut += row->bytesOut;
        } else {
            *++last = *row;
        }
    }
    if (!rows.empty()) rows.erase(last + 1, rows.end());
}

} // namespace

std::vector<ConnectionRow> ConnectionList::answer(double now)
{
    now_ = now;
    std::vector<ConnectionRow> rows;
    rows.reserve(connections_.size());
    for (auto& [cookie, connection] : connections_) {
        if (!isListed(connection)) continue;
        auto& socket = connection.socket;
        rows.push_back({connection.owner, socket.ends, connection.interface, socket.bytesIn - connection.passedIn,
                        socket.bytesOut - connection.passedOut});
        connection.wasAnswered = true;
        connection.answeredIn = socket.bytesIn;
        connection.answeredOut = socket.bytesOut;
    }
    std::ranges::sort(rows, {}, labelOf);
    mergeEqualLabels(rows);
    addRemembered(rows);
    std::erase_if(connections_, [&](const auto& entry) {
        const auto& connection = entry.second;
        if (!connection.isClosed && connection.round + 1 >= round_) return false;
        remember(connection);
        return true;
    });
    closed_ = 0;
    ++round_;
    return rows;
}

} // namespace quellon
