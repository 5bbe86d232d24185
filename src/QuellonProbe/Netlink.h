#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <linux/netlink.h>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace quellon {

using Bytes = std::span<const std::byte>;

/// One message of a netlink datagram. `body` is what follows the header, a view into the datagram.
struct NetlinkMessage {
    std::uint16_t type = 0;
    std::uint16_t flags = 0;
    std::uint32_t sequence = 0;
    Bytes body;
};

/// One attribute of a message. `type` without the flags "nested" and "network order".
struct NetlinkAttribute {
    std::uint16_t type = 0;
    Bytes value;
};

/// Reading netlink's bytes. Nothing here reads outside the span it is given, whatever the span holds.
namespace Netlink {

/// Takes the message at the front of `rest` off it, padding included. Absent, with `rest` emptied, when what is left
/// is no whole message.
[[nodiscard]] std::optional<NetlinkMessage> takeMessage(Bytes& rest);

/// Takes the attribute at the front of `rest` off it, padding included. Absent, with `rest` emptied, when what is left
/// is no whole attribute.
[[nodiscard]] std::optional<NetlinkAttribute> takeAttribute(Bytes& rest);

/// The value of the first attribute of this type; absent when there is none before the end or a broken attribute.
[[nodiscard]] std::optional<Bytes> attribute(Bytes attributes, std::uint16_t type);

/// What follows the first `size` bytes and their padding to 4; empty when there are no more.
[[nodiscard]] Bytes behind(Bytes bytes, std::size_t size);

/// The number or record at the front of `bytes`, whose place need not be aligned; absent when there are too few bytes.
template <typename T>
[[nodiscard]] std::optional<T> read(Bytes bytes)
{
    static_assert(std::is_trivially_copyable_v<T>);
    if (bytes.size() < sizeof(T)) return std::nullopt;
    T value;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

/// read() of the first attribute of this type.
template <typename T>
[[nodiscard]] std::optional<T> readAttribute(Bytes attributes, std::uint16_t type)
{
    const auto value = attribute(attributes, type);
    return value ? read<T>(*value) : std::nullopt;
}

/// The record at the front of `bytes` as far as it is there; what an older kernel leaves out behind it is zero.
template <typename T>
[[nodiscard]] T readPrefix(Bytes bytes)
{
    static_assert(std::is_trivially_copyable_v<T>);
    T value{};
    std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
    return value;
}

/// The bytes as text, up to the first zero byte.
[[nodiscard]] std::string_view text(Bytes bytes);

} // namespace Netlink

/// A request under construction: the message header, then the records and attributes in the order they were added.
class NetlinkRequest {
public:
    /// NLM_F_REQUEST is added to `flags`; the socket adds what a dump needs, and the sequence number.
    explicit NetlinkRequest(std::uint16_t type, std::uint16_t flags = 0);

    /// Appends a fixed record, padded to 4 bytes.
    template <typename T>
    NetlinkRequest& add(const T& record)
    {
        static_assert(std::is_trivially_copyable_v<T>);
        return append(std::as_bytes(std::span{&record, 1}));
    }
    /// Appends an attribute, padded to 4 bytes. A value of more than 65 531 bytes is an error of the caller.
    NetlinkRequest& attribute(std::uint16_t type, Bytes value);

    /// The whole message with these flags added and this sequence number.
    [[nodiscard]] std::vector<std::byte> message(std::uint16_t flags, std::uint32_t sequence) const;

private:
    NetlinkRequest& append(Bytes bytes);

    std::uint16_t type_;
    std::uint16_t flags_;
    std::vector<std::byte> body_;
};

/// A netlink socket with a buffer that is used again for each answer. Not thread-safe. Movable, not copyable.
class NetlinkSocket {
public:
    using Visit = std::function<void(const NetlinkMessage&)>;
    using Begin = std::function<void()>;

    /// A socket of the netlink family (NETLINK_ROUTE, NETLINK_SOCK_DIAG, …); absent, with errno set, when refused.
    [[nodiscard]] static std::optional<NetlinkSocket> open(int family);

    NetlinkSocket(NetlinkSocket&& other) noexcept;
    NetlinkSocket& operator=(NetlinkSocket&& other) noexcept;
    ~NetlinkSocket();

    /// For poll(): readable when an event of a joined group waits.
    [[nodiscard]] int descriptor() const { return descriptor_; }

    /// Subscribes to a group of the family. 0 or the error number.
    int join(unsigned int group);
    /// Asks the kernel for room for this many bytes of unread events; it may give less.
    void setReceiveBuffer(int bytes);

    /// Sends the request and shows its one answer. 0, or the error number the kernel gave (ENODEV, ENETUNREACH, …), or
    /// ETIMEDOUT when no answer came within a second, after one more try.
    int request(const NetlinkRequest& request, const Visit& visit);

    /// Sends the request as a dump and shows each message of the answer. A dump that the kernel calls inconsistent, or
    /// of which something was lost, is asked for again, up to four times in all; `begin` is called before each try, for
    /// the caller to forget the messages of the last. 0; EINTR when the last try was still inconsistent, and what it
    /// showed is the best there is; otherwise the error number.
    int dump(const NetlinkRequest& request, const Begin& begin, const Visit& visit);

    /// Shows every event that waits, without waiting for more. 0; ENOBUFS when the kernel had to drop events since the
    /// last call, those that are left having been shown; otherwise the error number.
    int receiveEvents(const Visit& visit);

private:
    struct Received {
        int error = 0;
        Bytes datagram;
    };

    explicit NetlinkSocket(int descriptor);
    int send(const NetlinkRequest& request, std::uint16_t flags);
    Received receive(int flags);
    int readAnswer(const Visit& visit);
    int readDump(const Visit& visit);

    int descriptor_ = -1;
    std::uint32_t sequence_ = 0;
    std::vector<std::byte> buffer_;
};

} // namespace quellon
