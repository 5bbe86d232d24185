#pragma once

#include "QuellonHost/Posix/CurlHttpClient.h"
#include "QuellonHost/Posix/PosixRunLoop.h"
#include "QuellonHost/Support/TlsServer.h"

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <utility>

namespace quellon::testing {

/// A client, its run loop, and a server that it trusts. The server serves all tests of a suite.
class CurlHttpClientTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<TlsServer>(); }
    static void TearDownTestSuite() { server_.reset(); }

    void SetUp() override
    {
        for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"}) {
            unsetenv(name);
        }
        server().forget();
    }

    static TlsServer& server() { return *server_; }
    static CurlHttpClient::Options trustingOptions() { return {server().authority(), server().addresses()}; }
    static HttpRequest get(std::string url, std::size_t maximumBodyBytes = 65'536)
    {
        return {"GET", std::move(url), {{"User-Agent", "Tests/1"}}, "", Seconds{10}, maximumBodyBytes};
    }

    /// Sends it and runs the loop until the answer is there, a test failure after 15 seconds.
    std::optional<HttpResponse> exchange(HttpRequest request)
    {
        std::optional<HttpResponse> result;
        bool answered = false;
        const auto begin = std::chrono::steady_clock::now();
        client->send(std::move(request), [&](std::optional<HttpResponse> response) {
            result = std::move(response);
            answered = true;
        });
        runUntil(answered);
        elapsed = std::chrono::steady_clock::now() - begin;
        return result;
    }

    /// Lets the loop turn until the flag is set.
    void runUntil(const bool& flag)
    {
        bool late = false;
        const auto limit = loop->after(Seconds{15}, [&] { late = true; });
        while (!flag && !late) turn();
        EXPECT_FALSE(late) << "no answer";
    }

    std::unique_ptr<PosixRunLoop> loop = std::make_unique<PosixRunLoop>();
    std::unique_ptr<CurlHttpClient> client = std::make_unique<CurlHttpClient>(*loop, trustingOptions());
    Seconds elapsed{0};

private:
    inline static std::unique_ptr<TlsServer> server_;

    /// Waits for something to do, and does it.
    void turn()
    {
        const auto wait = loop->nextDeadline().value_or(Seconds{1}).count() * 1000.0;
        pollfd waited{loop->descriptor(), POLLIN, 0};
        (void)poll(&waited, 1, static_cast<int>(wait) + 1);
        loop->turn();
    }
};

} // namespace quellon::testing
