#pragma once

#include "QuellonCore/Host/HttpClient.h"
#include "QuellonCore/Host/RunLoop.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quellon {

/// Exchanges by libcurl, driven by one thread that begins with the first of them. Each has a connection, a TLS session
/// and a host look-up of its own, speaks HTTP/1.1, and sends no headers but those of the request, "Host" and
/// "Content-Length". Proxies are those of the environment.
class CurlHttpClient final : public HttpClient {
public:
    /// A chain of more redirects than this is a failure.
    static constexpr long mostRedirects = 5;
    /// All replies of one exchange have no longer headers than this together; more is a failure. libcurl keeps a record
    /// for each header, which takes some twenty times the memory of the shortest.
    static constexpr std::size_t mostHeaderBytes = std::size_t{16} << 10U;

    /// For tests, which talk to servers of their own. Nothing else sets them.
    struct Options {
        std::string certificateAuthorities; ///< A PEM file to trust, whatever the system's store holds; or empty.
        std::vector<std::string> addresses; ///< "host:port:address" each, for hosts that are not looked up.
    };

    /// Both belong to the main thread; `loop` outlives the client.
    explicit CurlHttpClient(RunLoop& loop) : CurlHttpClient{loop, Options{}} {}
    CurlHttpClient(RunLoop& loop, Options options);
    /// Ends what is under way without waiting for anybody: neither for a server nor for a look-up.
    ~CurlHttpClient() override;
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;

    /// See the seam. A url that is none or not "https", and a header that would break the line, are failed transfers.
    void send(HttpRequest request, Done done) override;

private:
    class Worker;
    using Pending = std::map<std::uint64_t, Done>; ///< By the number of the exchange.

    RunLoop& loop_;
    Options options_;
    std::uint64_t nextNumber_ = 0;
    /// Only the main thread looks into it. What the worker posts holds it weakly: a client that is gone answers nobody.
    std::shared_ptr<Pending> pending_ = std::make_shared<Pending>();
    std::unique_ptr<Worker> worker_; ///< Empty before the first exchange.
};

} // namespace quellon
