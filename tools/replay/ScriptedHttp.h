#pragma once

#include "QuellonCore/Host/HttpClient.h"
#include "ScriptedObserver.h"
#include "ScriptedRunLoop.h"

#include <optional>
#include <vector>

namespace quellon {

/// How the servers of a scripted world answer.
struct ScriptedReply {
    std::optional<HttpResponse> response; ///< Absent: the transfer fails.
    Seconds takes{0.0};                   ///< More than the request's time-out is a failure at the time-out.
};

/// Sends nothing: each request gets the reply that is set when it begins. At first every transfer fails.
class ScriptedHttp final : public HttpClient {
public:
    explicit ScriptedHttp(ScriptedRunLoop& runLoop) : runLoop_{runLoop} {}

    void send(HttpRequest request, Done done) override;
    /// From now on told of each request; null for nobody.
    void observe(ScriptedObserver* observer) { observer_ = observer; }

    ScriptedReply reply;
    std::vector<HttpRequest> requests; ///< Those that were sent so far.

private:
    ScriptedRunLoop& runLoop_;
    ScriptedObserver* observer_ = nullptr;
};

} // namespace quellon
