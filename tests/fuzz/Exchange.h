#pragma once

#include "Check.h"
#include "QuellonCore/Diagnostics/NetworkLog.h"
#include "ScriptedHost.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// What the targets for replies from the network share.
namespace quellon::fuzz {

/// A world in which every request is answered with what the target says, and what came of the answer.
struct Exchange {
    ScriptedHost host;
    NetworkLog log;

    /// Does `fetch`, which calls what it is given with a `Result`, while replies are this. That must happen exactly
    /// once, and leave one line in the log.
    template <typename Result, typename Fetch>
    Result run(int status, std::string_view body, std::size_t limit, Fetch fetch)
    {
        std::optional<Result> result;
        log.clear();
        host.http().requests.clear();
        host.http().reply = {HttpResponse{status, std::string{body}}, Seconds{0}};
        fetch([&result](const Result& each) {
            FUZZ_CHECK(!result);
            result = each;
        });
        FUZZ_CHECK(!result);
        host.advance(Seconds{0});
        FUZZ_CHECK(result.has_value());
        FUZZ_CHECK(host.http().requests.size() == 1);
        const auto entries = log.snapshot();
        FUZZ_CHECK(entries.size() == 1 && entries.front().outcome.status == status);
        FUZZ_CHECK(entries.front().responseBytes == std::min(body.size(), limit + 1));
        return *std::move(result);
    }
};

inline std::string_view text(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace quellon::fuzz
