#pragma once

#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quellon {

/// One request. What stands here is sent, and nothing else that tells of the machine or its user.
struct HttpRequest {
    std::string method; ///< "GET" or "POST".
    std::string url;    ///< An "https" address.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;               ///< Of a POST.
    Seconds timeout{};              ///< For the whole exchange, from the look-up of the host to the last byte.
    std::size_t maximumBodyBytes{}; ///< A longer reply is not read further than one byte beyond this.

    bool operator==(const HttpRequest&) const = default;
};

/// What came back.
struct HttpResponse {
    int status = 0; ///< The HTTP status of the last reply, after the redirects that were followed; 0 when the reply was
                    ///< not HTTP.
    std::string body; ///< At most one byte more than the request allows.

    bool operator==(const HttpResponse&) const = default;
};

/// Seam: exchanges over HTTP, each on its own: no cookies, no cache, nothing kept between two of them. Main thread
/// only.
class HttpClient {
public:
    /// The response; absent when the transfer failed or was out of time.
    using Done = std::function<void(std::optional<HttpResponse> response)>;

    virtual ~HttpClient() = default;

    /// Begins the exchange and returns at once. `done` is called on the main thread in a later turn, exactly once,
    /// unless the client or the run loop ends first: then never. A host's certificate must be one that the system
    /// trusts. A GET follows redirects, which must lead to "https" again; a POST follows none, so that its body goes to
    /// nobody but the host that it is for: the redirect is then the reply.
    virtual void send(HttpRequest request, Done done) = 0;
};

} // namespace quellon
