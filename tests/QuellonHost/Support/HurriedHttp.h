#pragma once

#include "QuellonCore/Host/HttpClient.h"

#include <optional>
#include <utility>

namespace quellon::testing {

/// Hands requests on with less time than they ask for, so that no test waits as long as a user may.
class HurriedHttp final : public HttpClient {
public:
    explicit HurriedHttp(HttpClient& client) : client_{client} {}

    void send(HttpRequest request, Done done) override
    {
        askedTimeout = request.timeout;
        if (timeout) request.timeout = *timeout;
        client_.send(std::move(request), std::move(done));
    }

    Seconds askedTimeout{};         ///< What the last request asked for.
    std::optional<Seconds> timeout; ///< What it got instead; absent: what it asked for.

private:
    HttpClient& client_;
};

} // namespace quellon::testing
