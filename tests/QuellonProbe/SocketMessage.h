#pragma once

#include "QuellonProbe/InetSocket.h"

#include <arpa/inet.h>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <linux/inet_diag.h>
#include <linux/tcp.h>
#include <span>
#include <string>
#include <vector>

namespace quellon::testing {

/// An address from its text; all zero when it is none.
inline InetAddress address(const std::string& text)
{
    std::array<std::byte, 16> bytes{};
    const bool isIPv4 = text.find(':') == std::string::npos;
    inet_pton(isIPv4 ? AF_INET : AF_INET6, text.c_str(), bytes.data());
    return *InetAddress::from(std::span{bytes}.first(isIPv4 ? 4 : 16));
}

inline Endpoints endpoints(const std::string& local, std::uint16_t localPort, const std::string& remote,
                           std::uint16_t remotePort)
{
    return {address(local), address(remote), localPort, remotePort, 0};
}

/// The body of a row of a socket dump, as the kernel lays it out.
class SocketMessage {
public:
    explicit SocketMessage(std::uint8_t family = AF_INET) { head.idiag_family = family; }

    inet_diag_msg head{};

    SocketMessage& ends(const std::string& local, std::uint16_t localPort, const std::string& remote,
                        std::uint16_t remotePort)
    {
        inet_pton(head.idiag_family, local.c_str(), head.id.idiag_src);
        inet_pton(head.idiag_family, remote.c_str(), head.id.idiag_dst);
        head.id.idiag_sport = htons(localPort);
        head.id.idiag_dport = htons(remotePort);
        return *this;
    }
    SocketMessage& attribute(std::uint16_t type, std::span<const std::byte> value)
    {
        const auto length = static_cast<std::uint16_t>(value.size() + 4);
        append(std::as_bytes(std::span{&length, 1}));
        append(std::as_bytes(std::span{&type, 1}));
        append(value);
        attributes.resize((attributes.size() + 3) / 4 * 4);
        return *this;
    }
    SocketMessage& counters(std::uint64_t in, std::uint64_t out, std::size_t size = sizeof(tcp_info))
    {
        tcp_info info{};
        info.tcpi_bytes_received = in;
        info.tcpi_bytes_acked = out;
        return attribute(INET_DIAG_INFO, std::as_bytes(std::span{&info, 1}).first(size));
    }
    [[nodiscard]] std::vector<std::byte> body() const
    {
        const auto front = std::as_bytes(std::span{&head, 1});
        std::vector<std::byte> result{front.begin(), front.end()};
        result.insert(result.end(), attributes.begin(), attributes.end());
        return result;
    }

private:
    void append(std::span<const std::byte> bytes) { attributes.insert(attributes.end(), bytes.begin(), bytes.end()); }

    std::vector<std::byte> attributes;
};

} // namespace quellon::testing
