#pragma once

#include "QuellonCore/Knowledge/NetworkExplanationFetcher.h"
#include "QuellonCore/UpdateCheck/NetworkManifestFetcher.h"
#include "QuellonHost/Posix/SystemClock.h"
#include "QuellonHost/Support/CurlHttpClientTest.h"
#include "QuellonHost/Support/HurriedHttp.h"
#include "QuellonHost/Support/MemoryPeak.h"
#include "ScriptedHost.h"

#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <string>
#include <variant>

namespace quellon::testing {

/// How one fetch ended: what the caller was given, and the one line of the network log.
struct Fetched {
    std::string result; ///< "accepted", or the failure, such as "transport" or "badStatus 404".
    std::string logged; ///< Such as "explain/explain 200, 34 bytes" or "update/manifest failed, 0 bytes".

    bool operator==(const Fetched&) const = default;
};

inline void PrintTo(const Fetched& fetched, std::ostream* out)
{
    *out << fetched.result << "; logged: " << fetched.logged;
}

/// Both fetchers, each over a real HTTPS client, asking a real server.
class FetcherTest : public CurlHttpClientTest {
protected:
    static constexpr std::size_t limit = 65'536;

    Fetched explain(const std::string& url, const std::string& label = "Sync")
    {
        explanation.reset();
        NetworkExplanationFetcher fetcher{host(), "Quellon/1.2.0 (Linux 6.1.0)", url, log};
        return ended([&](const auto& done) {
            fetcher.fetchExplanation(label, [&, done](const ExplanationFetching::Result& result) {
                if (const auto* value = std::get_if<AppExplanation>(&result)) explanation = *value;
                const auto* error = std::get_if<ExplainError>(&result);
                done(error != nullptr ? text(*error) : "accepted");
            });
        });
    }

    Fetched fetchManifest(const std::string& url)
    {
        manifest.reset();
        NetworkManifestFetcher fetcher{host(), "Quellon/1.2.0 (Linux 6.1.0)", log};
        return ended([&](const auto& done) {
            fetcher.fetchManifest(url, [&, done](const UpdateManifestFetching::Result& result) {
                if (const auto* value = std::get_if<UpdateManifest>(&result)) manifest = *value;
                const auto* error = std::get_if<UpdateCheckError>(&result);
                done(error != nullptr ? text(*error) : "accepted");
            });
        });
    }

    /// Real where a fetcher has to do with it.
    Host host()
    {
        const Host rest = scripted_.host();
        return {clock_,         *loop,    rest.commands,    rest.processes, rest.files,
                rest.addresses, rest.log, rest.identifiers, http,           rest.platform};
    }

    HurriedHttp http{*client};
    NetworkLog log;
    std::optional<AppExplanation> explanation; ///< Of the last `explain`, when it was accepted.
    std::optional<UpdateManifest> manifest;    ///< Of the last `fetchManifest`, when it was accepted.
    Seconds took{0};                           ///< How long the last fetch did.
    std::size_t grew = 0;                      ///< By how many bytes this process did meanwhile, at most.

private:
    ScriptedHost scripted_;
    SystemClock clock_{scripted_.host().processes};

    template <typename Begin>
    Fetched ended(Begin begin)
    {
        Fetched fetched;
        bool isDone = false;
        log.clear();
        const MemoryPeak peak;
        const auto began = std::chrono::steady_clock::now();
        begin([&](std::string result) {
            EXPECT_FALSE(isDone) << "answered twice";
            fetched.result = std::move(result);
            isDone = true;
        });
        EXPECT_FALSE(isDone) << "answers come in a later turn";
        runUntil(isDone);
        took = std::chrono::steady_clock::now() - began;
        grew = peak.growth();
        const auto entries = log.snapshot();
        EXPECT_EQ(entries.size(), 1U);
        if (!entries.empty()) fetched.logged = text(entries.front());
        return fetched;
    }

    std::string text(const NetworkLogEntry& entry) const
    {
        EXPECT_LE(entry.durationSeconds, took + Seconds{0.01});
        EXPECT_GE(entry.durationSeconds, Seconds{0});
        const auto status =
            entry.outcome.isTransportFailure() ? std::string{"failed"} : std::to_string(*entry.outcome.status);
        return std::string{networkServices.raw(entry.service)} + "/" + std::string{networkActions.raw(entry.action)} +
               " " + status + ", " + std::to_string(entry.responseBytes) + " bytes";
    }
    static std::string text(const ExplainError& error)
    {
        switch (error.kind) {
        case ExplainError::Kind::badStatus:
            return "badStatus " + std::to_string(error.status);
        case ExplainError::Kind::transport:
            return "transport";
        case ExplainError::Kind::unavailable:
            return "unavailable";
        case ExplainError::Kind::malformedPayload:
            return "malformedPayload";
        case ExplainError::Kind::unrecognized:
            return "unrecognized";
        }
        return "no kind";
    }
    static std::string text(const UpdateCheckError& error)
    {
        switch (error.kind) {
        case UpdateCheckError::Kind::badStatus:
            return "badStatus " + std::to_string(error.status);
        case UpdateCheckError::Kind::transport:
            return "transport";
        case UpdateCheckError::Kind::malformedPayload:
            return "malformedPayload";
        }
        return "no kind";
    }
};

} // namespace quellon::testing
