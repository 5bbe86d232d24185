#include "QuellonProbe/MessageBus.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace quellon {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view conventionalAddress = "unix:path=/run/dbus/system_bus_socket";
constexpr std::size_t longestGreeting = 1024;

std::string_view takeUpTo(std::string_view& rest, char separator)
{
    const auto taken = rest.substr(0, rest.find(separator));
    rest.remove_prefix(std::min(taken.size() + 1, rest.size()));
    return taken;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Undoes the %XX of a value; absent when a percent sign isn't followed by two digits.
std::optional<std::string> unescaped(std::string_view value)
{
    std::string plain;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] != '%') {
            plain += value[at];
            continue;
        }
        const int high = at + 2 < value.size() ? hexDigit(value[at + 1]) : -1;
        const int low = at + 2 < value.size() ? hexDigit(value[at + 2]) : -1;
        if (high < 0 || low < 0) return std::nullopt;
        plain += static_cast<char>(high * 16 + low);
        at += 2;
    }
    return plain;
}

std::optional<std::string> socketName(std::string_view alternative)
{
    if (takeUpTo(alternative, ':') != "unix") return std::nullopt;
    while (!alternative.empty()) {
        auto value = takeUpTo(alternative, ',');
        const auto key = takeUpTo(value, '=');
        if (key != "path" && key != "abstract") continue;
        const auto name = unescaped(value);
        if (!name || name->empty()) return std::nullopt;
        return key == "path" ? *name : std::string(1, '\0') + *name;
    }
    return std::nullopt;
}

} // namespace

MessageBus::MessageBus(std::string address) : address_{std::move(address)} {}

MessageBus::~MessageBus()
{
    disconnect();
}

std::string MessageBus::systemAddress()
{
    const char* given = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return given != nullptr && *given != '\0' ? std::string{given} : std::string{conventionalAddress};
}

std::vector<std::string> MessageBus::socketNames(std::string_view address)
{
    std::vector<std::string> names;
    while (!address.empty()) {
        if (auto name = socketName(takeUpTo(address, ';'))) names.push_back(std::move(*name));
    }
    return names;
}

std::optional<BusMessage> MessageBus::call(const BusCall& call, Deadline deadline)
{
    std::optional<BusMessage> reply;
    const bool wasConnected = descriptor_ >= 0;
    auto outcome = attempt(call, deadline, reply);
    // A kept connection may have ended long ago, with a bus that has been started anew since.
    if (outcome == Outcome::lost && wasConnected) outcome = attempt(call, deadline, reply);
    if (outcome != Outcome::answered || reply->kind != BusMessage::Kind::reply) return std::nullopt;
    return reply;
}

MessageBus::Outcome MessageBus::attempt(const BusCall& call, Deadline deadline, std::optional<BusMessage>& reply)
{
    if (descriptor_ < 0 && !connect(deadline)) return Outcome::failed;
    const auto serial = ++serial_;
    if (send(BusWire::encode(call, serial, false), deadline)) reply = awaitReply(serial, deadline);
    if (reply) return Outcome::answered;
    // Also when only the time is up: whatever part of a message is on the way goes with the connection.
    disconnect();
    return Outcome::lost;
}

void MessageBus::disconnect()
{
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
    serial_ = 0;
    received_.clear();
}

bool MessageBus::connect(Deadline deadline)
{
    static const BusCall hello{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "Hello", {}};
    for (const auto& name : socketNames(address_)) {
        const auto serial = serial_ + 1;
        if (openSocket(name, deadline) && authenticate(deadline) &&
            send(BusWire::encode(hello, serial, false), deadline)) {
            serial_ = serial;
            const auto reply = awaitReply(serial, deadline);
            if (reply && reply->kind == BusMessage::Kind::reply) return true;
        }
        disconnect();
    }
    return false;
}

bool MessageBus::openSocket(const std::string& name, Deadline deadline)
{
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    if (name.size() >= sizeof place.sun_path) return false;
    std::memcpy(place.sun_path, name.data(), name.size());
    const bool isAbstract = name.front() == '\0';
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + (isAbstract ? 0 : 1));
    descriptor_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor_ < 0) return false;
    // A full backlog gives EAGAIN, and there is no event to wait for.
    if (::connect(descriptor_, reinterpret_cast<const sockaddr*>(&place), size) == 0) return true;
    return errno == EINPROGRESS && wait(POLLOUT, deadline);
}

/// Says that this is whoever the kernel tells the bus it is. To name the user would fail in a user namespace, where the
/// same user has another number.
bool MessageBus::authenticate(Deadline deadline)
{
    if (!send("\0AUTH EXTERNAL\r\nDATA\r\n"sv, deadline)) return false;
    for (const std::string_view expected : {"DATA", "OK "}) {
        auto end = received_.find("\r\n");
        while (end == std::string::npos) {
            if (received_.size() > longestGreeting || !receive(deadline)) return false;
            end = received_.find("\r\n");
        }
        if (received_.compare(0, expected.size(), expected) != 0) return false;
        received_.erase(0, end + 2);
    }
    return send("BEGIN\r\n", deadline);
}

std::optional<BusMessage> MessageBus::awaitReply(std::uint32_t serial, Deadline deadline)
{
    for (;;) {
        const auto length = BusWire::length(received_);
        if (length == std::size_t{0}) return std::nullopt;
        if (!length || received_.size() < *length) {
            if (!receive(deadline)) return std::nullopt;
            continue;
        }
        auto message = BusWire::decode(std::string_view{received_}.substr(0, *length));
        received_.erase(0, *length);
        if (!message) return std::nullopt;
        const bool isAnswer = message->kind == BusMessage::Kind::reply || message->kind == BusMessage::Kind::error;
        if (isAnswer && message->replySerial == serial) return message;
    }
}

bool MessageBus::wait(short events, Deadline deadline) const
{
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        if (left <= 0) return false;
        pollfd waiting{descriptor_, events, 0};
        const int ready = poll(&waiting, 1, static_cast<int>(std::min<long long>(left, 60'000)));
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

bool MessageBus::send(std::string_view bytes, Deadline deadline)
{
    while (!bytes.empty()) {
        const auto sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            if (!wait(POLLOUT, deadline)) return false;
        } else if (errno != EINTR)
            return false;
    }
    return true;
}

/// Adds what has come to `received_`, waiting for it when there is nothing. False at the end of the connection and of
/// the time.
bool MessageBus::receive(Deadline deadline)
{
    std::array<char, 4096> buffer;
    for (;;) {
        const auto size = recv(descriptor_, buffer.data(), buffer.size(), 0);
        if (size > 0) {
            received_.append(buffer.data(), static_cast<std::size_t>(size));
            return true;
        }
        if (size == 0) return false;
        if (errno == EINTR) continue;
        if ((errno != EAGAIN && errno != EWOULDBLOCK) || !wait(POLLIN, deadline)) return false;
    }
}

} // namespace quellon
