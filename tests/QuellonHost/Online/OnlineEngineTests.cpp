#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Knowledge/NetworkExplanationFetcher.h"
#include "QuellonCore/UpdateCheck/NetworkManifestFetcher.h"
#include "QuellonHost/Linux/LinuxHost.h"
#include "QuellonHost/Support/SocketWatch.h"
#include "QuellonHost/Support/StuckLookup.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "QuellonHost/Support/TlsServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;
using testing::SocketWatch;
using testing::StuckLookup;
using testing::TlsServer;

/// Tells of a hotspot on which one application moves little.
constexpr std::string_view probe = R"(#!/bin/sh
answer() { printf '%s\n%s' "${#1}" "$1"; }
while read -r role argument; do
    case $role in
    nettop) answer 'time,,interface,bytes_in,bytes_out,
12:00:00.000001,helperd.501,,100,10,
12:00:00.000001,tcp4 172.20.10.4:50000<->203.0.113.9:443,wlan0,100,10,
' ;;
    ps) answer '501 1000 501 /opt/tests/helperd
' ;;
    route) answer '    gateway: 172.20.10.1
  interface: wlan0
' ;;
    *) printf '0\n' ;;
    esac
done
)";

/// Where an engine that is made meanwhile keeps its state.
class StateFolder : public testing::TemporaryFolder {
public:
    StateFolder() { setenv("QUELLON_STATE_DIR", path().c_str(), 1); }
    ~StateFolder() { unsetenv("QUELLON_STATE_DIR"); }
    StateFolder(const StateFolder&) = delete;
    StateFolder& operator=(const StateFolder&) = delete;
};

/// An engine on this very system, with a stand-in for the probe, state in a folder of its own, and servers that the
/// test runs.
class OnlineEngine : public ::testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<TlsServer>(); }
    static void TearDownTestSuite() { server_.reset(); }

    OnlineEngine()
    {
        for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) unsetenv(name);
        server().forget();
        server().reply("/quellon/appcast/1.2.0.json", 200,
                       R"({"latestVersion":"1.3","downloadURL":"https://quellon.example/download"})");
        server().reply("/v1/explain", 200, R"({"recognized":true,"whatItIs":"A helper of a test."})");
    }

    static TlsServer& server() { return *server_; }
    void settings(std::string_view members)
    {
        std::ofstream{folder_ / "settings.json"} << R"({"onboarded":true,"sampleInterval":0.1)" << members << "}";
    }
    [[nodiscard]] std::string stateFile(std::string_view name) const
    {
        std::ifstream file{folder_ / name};
        return {std::istreambuf_iterator<char>{file}, {}};
    }
    [[nodiscard]] Host host()
    {
        const Host real = linux_.host();
        return {real.clock,     real.runLoop, real.commands,    real.processes, real.files,
                real.addresses, real.log,     real.identifiers, *http_,         real.platform};
    }
    [[nodiscard]] GuardEngine::Options online()
    {
        const std::string agent = "Quellon/1.2.0 (Linux 6.1.0)";
        GuardEngine::Options options;
        auto manifests = std::make_shared<NetworkManifestFetcher>(host(), agent, log);
        options.updateCheck =
            UpdateCheckContext{{std::move(manifests), server().url("/quellon/appcast/1.2.0.json")}, "1.2.0", "6.1.0"};
        options.explain = ExplainContext{
            std::make_shared<NetworkExplanationFetcher>(host(), agent, server().url("/v1/explain"), log)};
        return options;
    }
    /// Lets the program go on until this holds. False when that takes longer than 20 seconds.
    bool runUntil(const std::function<bool()>& holds)
    {
        bool late = false;
        const auto limit = linux_.runLoop().after(20s, [&] { late = true; });
        while (!holds() && !late) {
            const auto turn = linux_.runLoop().after(5ms, [] {}); // what a server was told is to be asked for
            pollfd waited{linux_.runLoop().descriptor(), POLLIN, 0};
            const auto next = linux_.runLoop().nextDeadline().value_or(1s);
            (void)poll(&waited, 1, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(next).count()));
            linux_.runLoop().turn();
        }
        return !late;
    }
    /// One more round of the engine.
    bool awaitRound(const GuardEngine& engine)
    {
        const auto before = engine.sampling().completedTicks;
        return runUntil([&] { return engine.sampling().completedTicks > before; });
    }
    /// All that a user can do about the two features but saying yes; the program starts and stops meanwhile.
    void useEverything(GuardEngine& engine)
    {
        EXPECT_TRUE(awaitRound(engine));
        EXPECT_TRUE(engine.status().isMetered) << "it is a guard at work";
        EXPECT_TRUE(engine.canRequestExplanation("helperd"));
        EXPECT_FALSE(engine.requestExplanation("helperd"));
        EXPECT_EQ(engine.explanation("helperd"), std::nullopt);
        (void)engine.showsExplainConsentPrompt();
        (void)engine.showsUpdateConsentPrompt();
        engine.setDetailApp("helperd");
        engine.checkForUpdatesIfAllowed(host().clock.now());
        engine.checkForUpdatesIfAllowed(host().clock.now() + 100'000s);
        engine.dismissAvailableUpdate();
        engine.stop();
        engine.start();
        EXPECT_TRUE(awaitRound(engine));
        EXPECT_FALSE(engine.requestExplanation("helperd"));
        engine.persist();
    }
    void endClient() { http_.reset(); }

    NetworkLog log;

private:
    inline static std::unique_ptr<TlsServer> server_;
    StateFolder folder_; ///< First: the host's parts look at the environment once.
    LinuxHost linux_{folder_.script("quellon-probe", probe)};
    std::optional<CurlHttpClient> http_{std::in_place, linux_.runLoop(),
                                        CurlHttpClient::Options{server().authority(), server().addresses()}};
};

TEST_F(OnlineEngine, opensNoSocketWithoutAYes)
{
    struct Case {
        const char* name;
        const char* settings;
        void (*answer)(GuardEngine& engine);
    };
    const auto nothing = [](GuardEngine&) {};
    const auto no = [](GuardEngine& engine) {
        EXPECT_FALSE(engine.answerUpdateCheckConsent(false));
        engine.answerExplainConsent(false);
    };
    const Case cases[] = {
        {"never asked", "", nothing},
        {"not answered", R"(,"updateCheckConsent":"unasked","explainConsent":"unasked")", nothing},
        {"denied in an earlier run", R"(,"updateCheckConsent":"denied","explainConsent":"denied")", nothing},
        {"denied now", "", no},
        {"an answer that is none", R"(,"updateCheckConsent":"Granted","explainConsent":"yes")", nothing},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        settings(c.settings);
        const SocketWatch watch;
        {
            GuardEngine engine{host(), online()};
            c.answer(engine);
            useEverything(engine);
        }
        EXPECT_EQ(watch.opened(), 0);
        EXPECT_EQ(SocketWatch::openNow(), 0);
        EXPECT_EQ(server().connections(), 0);
        EXPECT_TRUE(log.snapshot().empty());
        EXPECT_THAT(stateFile("settings.json"), ::testing::Not(HasSubstr("updateLastCheckedAt")));
        EXPECT_EQ(stateFile("explanations.json"), "");
    }
}

/// What the other test would see of an engine that does not ask.
TEST_F(OnlineEngine, opensOneForEachRequestAfterAYes)
{
    settings("");
    GuardEngine engine{host(), online()};
    ASSERT_TRUE(awaitRound(engine));
    const SocketWatch updates;
    EXPECT_TRUE(engine.answerUpdateCheckConsent(true));
    ASSERT_TRUE(runUntil([&] { return engine.availableUpdate().has_value(); }));
    EXPECT_EQ(engine.availableUpdate(), (AvailableUpdate{"1.3", "https://quellon.example/download"}));
    EXPECT_EQ(server().connections(), 1);
    EXPECT_GE(updates.opened(), 1);

    const SocketWatch lookups;
    engine.answerExplainConsent(true);
    ASSERT_TRUE(awaitRound(engine));
    EXPECT_EQ(lookups.opened(), 0) << "the yes itself asks nobody";
    EXPECT_TRUE(engine.requestExplanation("helperd"));
    ASSERT_TRUE(runUntil([&] { return engine.explainInFlight().empty(); }));
    EXPECT_EQ(engine.explanation("helperd").value_or(AppExplanation{}).whatItIs, "A helper of a test.");
    EXPECT_EQ(server().connections(), 2);
    EXPECT_GE(lookups.opened(), 1);
    EXPECT_EQ(log.snapshot().size(), 2U);
    EXPECT_THAT(stateFile("explanations.json"), HasSubstr("A helper of a test."));
    EXPECT_THAT(stateFile("settings.json"), HasSubstr("updateLastCheckedAt"));

    const SocketWatch afterwards;
    EXPECT_FALSE(engine.requestExplanation("helperd")) << "it is known now";
    EXPECT_FALSE(engine.requestExplanation("ollama")) << "it was always known";
    engine.stop();
    engine.start();
    EXPECT_TRUE(awaitRound(engine));
    EXPECT_EQ(afterwards.opened(), 0) << "once a day, and once a name";
    EXPECT_EQ(SocketWatch::openNow(), 0) << "none is kept";
}

TEST_F(OnlineEngine, anEarlierYesIsOneUntilItIsTakenBack)
{
    settings(R"(,"updateCheckConsent":"granted","explainConsent":"granted")");
    GuardEngine engine{host(), online()};
    ASSERT_TRUE(runUntil([&] { return engine.availableUpdate().has_value(); }));
    EXPECT_EQ(server().connections(), 1);
    engine.answerUpdateCheckConsent(false);
    engine.answerExplainConsent(false);
    const SocketWatch watch;
    useEverything(engine);
    EXPECT_EQ(watch.opened(), 0);
    EXPECT_EQ(server().connections(), 1);
}

TEST_F(OnlineEngine, endsAtOnceWhileBothAreUnderWay)
{
    server().reply("/quellon/appcast/1.2.0.json", {});
    server().reply("/v1/explain", {{"HTTP/1.1 200 OK\r\n\r\n{"}});
    settings(R"(,"updateCheckConsent":"granted","explainConsent":"granted")");
    auto engine = std::make_unique<GuardEngine>(host(), online());
    EXPECT_TRUE(engine->requestExplanation("helperd"));
    ASSERT_TRUE(runUntil([&] { return server().connections() == 2; }));
    ASSERT_EQ(server().awaitRequests(2).size(), 2U);
    const auto begin = std::chrono::steady_clock::now();
    engine->stop();
    engine.reset();
    endClient();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
    EXPECT_TRUE(log.snapshot().empty());
    EXPECT_THAT(stateFile("settings.json"), ::testing::Not(HasSubstr("updateLastCheckedAt")));
}

/// A process that ends while its thread asks for a host waits for nobody: the death of a child is bounded by the test.
TEST(OnlineEngineDeathTest, aHostThatIsLookedUpWithoutEndKeepsNoProcess)
{
    const auto leave = [] {
        alarm(10);
        StuckLookup stuck;
        PosixRunLoop loop;
        {
            CurlHttpClient client{loop};
            client.send({"GET", "https://" + std::string{StuckLookup::host} + "/", {}, "", 10s, 100},
                        [](const std::optional<HttpResponse>&) { std::abort(); });
            if (!stuck.awaitBegin()) std::abort();
        }
        std::exit(7);
    };
    EXPECT_EXIT(leave(), ::testing::ExitedWithCode(7), "^$");
}

} // namespace
} // namespace quellon
