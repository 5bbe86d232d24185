#include "ScriptedHttp.h"

#include <algorithm>
#include <utility>

namespace quellon {

void ScriptedHttp::send(HttpRequest request, Done done)
{
    requests.push_back(request);
    if (observer_ != nullptr) observer_->requested(request);
    auto response = reply.takes <= request.timeout ? reply.response : std::nullopt;
    if (response) response->body.resize(std::min(response->body.size(), request.maximumBodyBytes + 1));
    runLoop_.postAfter(std::min(reply.takes, request.timeout),
                       [done = std::move(done), response = std::move(response)] { done(response); });
}

} // namespace quellon
