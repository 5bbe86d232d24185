#include "QuellonProbe/Netlink.h"

#include <cerrno>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace quellon {
namespace {

constexpr std::size_t initialBuffer = 32'768; ///< the largest datagram the kernel fills in a dump of small records
constexpr int dumpTries = 4;
constexpr int requestTries = 2;

constexpr std::size_t padded(std::size_t size)
{
    return (size + 3) & ~static_cast<std::size_t>(3);
}

/// The error that a message of type NLMSG_ERROR or NLMSG_DONE carries, as a positive number; 0 for none.
int carriedError(const NetlinkMessage& message)
{
    const int error = Netlink::read<std::int32_t>(message.body).value_or(0);
    if (error == 0) return 0;
    return error < 0 && error > -4096 ? -error : EPROTO;
}

} // namespace

namespace Netlink {

Bytes behind(Bytes bytes, std::size_t size)
{
    return bytes.subspan(std::min(padded(size), bytes.size()));
}

std::optional<NetlinkMessage> takeMessage(Bytes& rest)
{
    const auto header = read<nlmsghdr>(rest);
    if (!header || header->nlmsg_len < sizeof(nlmsghdr) || header->nlmsg_len > rest.size()) {
        rest = {};
        return std::nullopt;
    }
    const Bytes body = rest.subspan(sizeof(nlmsghdr), header->nlmsg_len - sizeof(nlmsghdr));
    rest = behind(rest, header->nlmsg_len);
    return NetlinkMessage{header->nlmsg_type, header->nlmsg_flags, header->nlmsg_seq, body};
}

std::optional<NetlinkAttribute> takeAttribute(Bytes& rest)
{
    const auto header = read<nlattr>(rest);
    if (!header || header->nla_len < sizeof(nlattr) || header->nla_len > rest.size()) {
        rest = {};
        return std::nullopt;
    }
    const Bytes value = rest.subspan(sizeof(nlattr), header->nla_len - sizeof(nlattr));
    rest = behind(rest, header->nla_len);
    return NetlinkAttribute{static_cast<std::uint16_t>(header->nla_type & NLA_TYPE_MASK), value};
}

std::optional<Bytes> attribute(Bytes attributes, std::uint16_t type)
{
    while (const auto next = takeAttribute(attributes)) {
        if (next->type == type) return next->value;
    }
    return std::nullopt;
}

std::string_view text(Bytes bytes)
{
    std::string_view all{reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    return all.substr(0, all.find('\0'));
}

} // namespace Netlink

NetlinkRequest::NetlinkRequest(std::uint16_t type, std::uint16_t flags)
    : type_{type}, flags_{static_cast<std::uint16_t>(flags | NLM_F_REQUEST)}
{
}

NetlinkRequest& NetlinkRequest::append(Bytes bytes)
{
    body_.insert(body_.end(), bytes.begin(), bytes.end());
    body_.resize(padded(body_.size()));
    return *this;
}

NetlinkRequest& NetlinkRequest::attribute(std::uint16_t type, Bytes value)
{
    const nlattr header{static_cast<std::uint16_t>(sizeof(nlattr) + value.size()), type};
    add(header);
    return append(value);
}

std::vector<std::byte> NetlinkRequest::message(std::uint16_t flags, std::uint32_t sequence) const
{
    nlmsghdr header{};
    header.nlmsg_len = static_cast<std::uint32_t>(sizeof header + body_.size());
    header.nlmsg_type = type_;
    header.nlmsg_flags = static_cast<std::uint16_t>(flags_ | flags);
    header.nlmsg_seq = sequence;
    const Bytes front = std::as_bytes(std::span{&header, 1});
    std::vector<std::byte> bytes{front.begin(), front.end()};
    bytes.insert(bytes.end(), body_.begin(), body_.end());
    return bytes;
}

NetlinkSocket::NetlinkSocket(int descriptor) : descriptor_{descriptor}, buffer_(initialBuffer) {}

NetlinkSocket::NetlinkSocket(NetlinkSocket&& other) noexcept
    : descriptor_{std::exchange(other.descriptor_, -1)}, sequence_{other.sequence_}, buffer_{std::move(other.buffer_)}
{
}

NetlinkSocket& NetlinkSocket::operator=(NetlinkSocket&& other) noexcept
{
    std::swap(descriptor_, other.descriptor_);
    std::swap(sequence_, other.sequence_);
    std::swap(buffer_, other.buffer_);
    return *this;
}

NetlinkSocket::~NetlinkSocket()
{
    if (descriptor_ >= 0) close(descriptor_);
}

std::optional<NetlinkSocket> NetlinkSocket::open(int family)
{
    const int descriptor = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, family);
    if (descriptor < 0) return std::nullopt;
    NetlinkSocket opened{descriptor};
    const timeval patience{1, 0};
    if (setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience) != 0) return std::nullopt;
    // Links, routes and addresses are then filtered by the kernel as the request says; older kernels refuse the option.
    const int on = 1;
    setsockopt(descriptor, SOL_NETLINK, NETLINK_GET_STRICT_CHK, &on, sizeof on);
    return opened;
}

int NetlinkSocket::join(unsigned int group)
{
    // A socket without an address of its own has the kernel's, 0, and is passed over as the sender of what it tells.
    sockaddr_nl own{};
    socklen_t size = sizeof own;
    if (getsockname(descriptor_, reinterpret_cast<sockaddr*>(&own), &size) != 0) return errno;
    own.nl_family = AF_NETLINK;
    if (own.nl_pid == 0 && bind(descriptor_, reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0) return errno;
    return setsockopt(descriptor_, SOL_NETLINK, NETLINK_ADD_MEMBERSHIP, &group, sizeof group) == 0 ? 0 : errno;
}

void NetlinkSocket::setReceiveBuffer(int bytes)
{
    setsockopt(descriptor_, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof bytes);
}

int NetlinkSocket::send(const NetlinkRequest& request, std::uint16_t flags)
{
    const auto bytes = request.message(flags, ++sequence_);
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    for (;;) {
        const auto sent = sendto(descriptor_, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&kernel),
                                 sizeof kernel);
        if (sent >= 0) return 0;
        if (errno != EINTR) return errno;
    }
}

/// One datagram of the kernel. A datagram that is longer than the buffer is lost (ENOBUFS), and the buffer grows so
/// that the next one of that length fits.
NetlinkSocket::Received NetlinkSocket::receive(int flags)
{
    for (;;) {
        sockaddr_nl sender{};
        socklen_t senderSize = sizeof sender;
        const auto size = recvfrom(descriptor_, buffer_.data(), buffer_.size(), flags | MSG_TRUNC,
                                   reinterpret_cast<sockaddr*>(&sender), &senderSize);
        if (size < 0 && errno == EINTR) continue;
        if (size < 0) return {errno, {}};
        if (sender.nl_pid != 0) continue; // no message of the kernel
        const auto length = static_cast<std::size_t>(size);
        if (length > buffer_.size()) {
            buffer_.resize(length * 2);
            return {ENOBUFS, {}};
        }
        return {0, Bytes{buffer_}.first(length)};
    }
}

int NetlinkSocket::readAnswer(const Visit& visit)
{
    for (;;) {
        auto [error, rest] = receive(0);
        if (error == EAGAIN || error == EWOULDBLOCK) return ETIMEDOUT;
        if (error != 0) return error;
        while (const auto message = Netlink::takeMessage(rest)) {
            if (message->sequence != sequence_) continue;
            if (message->type == NLMSG_ERROR || message->type == NLMSG_DONE) return carriedError(*message);
            visit(*message);
            return 0;
        }
    }
}

int NetlinkSocket::request(const NetlinkRequest& request, const Visit& visit)
{
    int error = 0;
    for (int tried = 0; tried < requestTries; ++tried) {
        error = send(request, 0);
        if (error == 0) error = readAnswer(visit);
        if (error != ENOBUFS && error != ETIMEDOUT && error != EBUSY) break;
    }
    return error;
}

/// One pass over the answer to the end, even when something was lost, since the kernel takes no other dump before.
/// 0, EINTR for an inconsistent one, or the error number.
int NetlinkSocket::readDump(const Visit& visit)
{
    bool intact = true;
    for (;;) {
        auto [error, rest] = receive(0);
        if (error == EAGAIN || error == EWOULDBLOCK) return ETIMEDOUT;
        if (error == ENOBUFS) {
            intact = false;
            continue;
        }
        if (error != 0) return error;
        while (const auto message = Netlink::takeMessage(rest)) {
            if (message->sequence != sequence_) continue;
            if ((message->flags & NLM_F_DUMP_INTR) != 0) intact = false;
            if (message->type == NLMSG_ERROR || message->type == NLMSG_DONE) {
                if (const int carried = carriedError(*message); carried != 0) return carried;
                return intact ? 0 : EINTR;
            }
            if (message->type >= NLMSG_MIN_TYPE) visit(*message);
        }
    }
}

int NetlinkSocket::dump(const NetlinkRequest& request, const Begin& begin, const Visit& visit)
{
    int error = 0;
    for (int tried = 0; tried < dumpTries; ++tried) {
        begin();
        error = send(request, NLM_F_DUMP);
        if (error == 0) error = readDump(visit);
        if (error != EINTR && error != ETIMEDOUT && error != EBUSY) break;
    }
    return error;
}

int NetlinkSocket::receiveEvents(const Visit& visit)
{
    bool lost = false;
    for (;;) {
        auto [error, rest] = receive(MSG_DONTWAIT);
        if (error == EAGAIN || error == EWOULDBLOCK) return lost ? ENOBUFS : 0;
        if (error == ENOBUFS)
            lost = true;
        else if (error != 0)
            return error;
        while (const auto message = Netlink::takeMessage(rest)) {
            if (message->type >= NLMSG_MIN_TYPE) visit(*message);
        }
    }
}

} // namespace quellon
