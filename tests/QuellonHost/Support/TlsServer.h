#pragma once

#include "QuellonHost/Posix/ChildProcess.h"
#include "QuellonHost/Support/TemporaryFolder.h"

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon::testing {

/// An HTTPS server on loopback in a process of its own, with certificates made for it. It answers what the test told it
/// to, byte by byte. Every wait is bounded; what goes wrong throws.
class TlsServer {
public:
    /// A piece of a reply.
    struct Step {
        std::string bytes;
        /// Sent again and again after this many seconds, until the client has gone; absent: once.
        std::optional<double> every = std::nullopt;
    };
    /// What follows the steps.
    enum class End {
        hang,  ///< The client is the one to close; until then what it sends is noted.
        close, ///< A proper end of the connection.
        cut,   ///< The connection ends without the end that TLS prescribes.
    };

    TlsServer();
    TlsServer(const TlsServer&) = delete;
    TlsServer& operator=(const TlsServer&) = delete;
    ~TlsServer();

    /// The file with the authority that signed all certificates but the one of "unknown".
    [[nodiscard]] const std::string& authority() const { return authority_; }
    /// The hosts of the certificates.
    static constexpr const char* host = "api.quellon.example";
    static constexpr const char* otherHost = "other.quellon.example";
    /// "host:port:127.0.0.1" of both hosts for each port of the server.
    [[nodiscard]] std::vector<std::string> addresses() const;
    /// One of the listeners that tls_server.py tells of.
    [[nodiscard]] int port(const std::string& listener = "valid") const { return ports_.at(listener); }
    /// "https://{host}:{port}{path}".
    [[nodiscard]] std::string url(std::string_view path, const std::string& listener = "valid",
                                  std::string_view name = host) const;

    /// From now on requests for `path` get this. Others get nothing at all.
    void reply(std::string_view path, const std::vector<Step>& steps, End end = End::hang);
    /// Shorthand for a whole reply: status line, "Content-Length" and body.
    void reply(std::string_view path, int status, std::string_view body);

    /// Waits until so many requests have been read. All requests until now, each byte for byte.
    [[nodiscard]] std::vector<std::string> awaitRequests(std::size_t count);
    /// The same once so many connections with a request have ended, with all that was sent on them.
    [[nodiscard]] std::vector<std::string> awaitEnds(std::size_t count);
    /// So many connections a listener has taken until now.
    [[nodiscard]] int connections(const std::string& listener = "valid");
    /// What so many zero bytes are when packed.
    [[nodiscard]] std::string gzippedZeros(std::size_t count);
    /// As after the start.
    void forget();

private:
    TemporaryFolder folder_;
    ChildProcess process_;
    std::string unread_;
    std::string authority_;
    std::map<std::string, int> ports_;

    nlohmann::json ask(const nlohmann::json& command);
    nlohmann::json readLine();
    std::vector<std::string> await(const char* what, std::size_t count);
};

} // namespace quellon::testing
