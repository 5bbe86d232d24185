#include "QuellonCore/Diagnostics/DebugSnapshot.h"

#include "QuellonCore/Diagnostics/DebugExport.h"
#include "QuellonCore/Diagnostics/DebugHooks.h"
#include "ScriptedHost.h"

#include <gtest/gtest.h>

#include <map>

namespace quellon {
namespace {

GuardEngine::Options notStarted()
{
    GuardEngine::Options options;
    options.autoStart = false;
    return options;
}

class DebugSnapshotTest : public ::testing::Test {
protected:
    DebugSnapshotTest()
    {
        host.environment("QUELLON_STATE_DIR", "/state");
        host.metrics(ProcessMetrics{30'000'000, 20'000'000, 4});
    }

    /// Every file and what it holds.
    [[nodiscard]] std::map<std::filesystem::path, std::string> world() const
    {
        std::map<std::filesystem::path, std::string> result;
        for (const auto& file : host.files().list()) result[file] = host.files().get(file).value_or("");
        return result;
    }

    mutable ScriptedHost host;
};

TEST_F(DebugSnapshotTest, captureIsWhatTheEngineHolds)
{
    host.files().set("/state/settings.json", R"({"onboarded": true, "sampleInterval": 2.5, "meteredOnly": false})");
    GuardEngine::Options options = notStarted();
    options.capabilities = Capabilities{.edition = AppEdition::appStore};
    GuardEngine engine{host, options};
    const NotificationCapability silent{.authorized = false, .alertsEnabled = true, .inAppChannelAvailable = false};
    engine.setNotificationCapability(silent);

    DebugSnapshot expected;
    expected.compiledEdition = AppEdition::pro;
    expected.renderedEdition = AppEdition::appStore;
    expected.version = "1.2.0";
    expected.osVersion = "14.5.0";
    expected.stateDirectoryPath = "/state";
    expected.isolation = DebugStateGuard::Isolation::isolated(DebugStateGuard::Isolation::Reason::explicitOverride);
    expected.files = StateDirectoryReport::scan(host.files(), "/state");
    expected.sampleInterval = 2.5;
    expected.process = ProcessMetrics{30'000'000, 20'000'000, 4};
    expected.notifications = silent;
    EXPECT_EQ(DebugSnapshot::capture(engine, "1.2.0", "14.5.0", host.now()), expected);

    engine.start();
    host.advance(Seconds{60});
    const auto running = DebugSnapshot::capture(engine, "1.2.0", "14.5.0", host.now());
    EXPECT_TRUE(running.isRunning);
    EXPECT_TRUE(running.isMetered) << "a route that can't be read counts as metered";
    EXPECT_GT(running.sampling.completedTicks, 0);
    EXPECT_EQ(running.sampling, engine.sampling());
    EXPECT_FALSE(running.files.empty());
}

TEST_F(DebugSnapshotTest, aRelativeFolderIsToldInFull)
{
    for (const char* folder : {"copy", "./x/../copy/", "/copy"}) {
        SCOPED_TRACE(folder);
        ScriptedHost other;
        other.environment("QUELLON_STATE_DIR", folder);
        const GuardEngine engine{other, notStarted()};
        EXPECT_EQ(DebugSnapshot::capture(engine, "1", "2", other.now()).stateDirectoryPath, "/copy");
        EXPECT_EQ(DebugSnapshot::ofStateDirectory(other, "1", "2").stateDirectoryPath, "/copy");
    }
}

TEST_F(DebugSnapshotTest, captureWritesNothing)
{
    const GuardEngine engine{host, notStarted()};
    const auto before = world();
    (void)DebugSnapshot::capture(engine, "1", "2", host.now());
    EXPECT_EQ(world(), before);
}

TEST_F(DebugSnapshotTest, theUsersOwnState)
{
    ScriptedHost real;
    real.processName("Quellon");
    const GuardEngine engine{real, notStarted()};
    EXPECT_EQ(DebugSnapshot::capture(engine, "1", "2", real.now()).isolation, DebugStateGuard::Isolation::realState());
}

TEST_F(DebugSnapshotTest, withoutAGuardTheFolderTells)
{
    host.files().set("/state/settings.json", R"({"sampleInterval": 2.5})");
    host.files().set("/state/ledger.json.tmp", "123");
    host.metrics(std::nullopt);
    const auto before = world();
    const auto snapshot = DebugSnapshot::ofStateDirectory(host, "1.2.0", "14.5.0");
    EXPECT_EQ(world(), before) << "an older layout is left as it is";
    DebugSnapshot expected;
    expected.version = "1.2.0";
    expected.osVersion = "14.5.0";
    expected.stateDirectoryPath = "/state";
    expected.isolation = DebugStateGuard::Isolation::isolated(DebugStateGuard::Isolation::Reason::explicitOverride);
    expected.files = {{"ledger.json.tmp", 3, std::nullopt, StateFileKind::temporary},
                      {"settings.json", 23, std::nullopt, StateFileKind::known}};
    expected.sampleInterval = 2.5;
    EXPECT_EQ(snapshot, expected);
}

TEST_F(DebugSnapshotTest, withoutAFolderTooThereIsAText)
{
    const auto snapshot = DebugSnapshot::ofStateDirectory(host, "1.2.0", "14.5.0");
    EXPECT_TRUE(snapshot.files.empty());
    EXPECT_EQ(snapshot.sampleInterval, 5.0);
    host.files().set("/state/settings.json", "no settings");
    EXPECT_EQ(DebugSnapshot::ofStateDirectory(host, "1.2.0", "14.5.0").sampleInterval, 5.0);
}

TEST(DebugHooks, openWithoutAPanelDoesNothing)
{
    ScriptedHost host;
    GuardEngine engine{host, notStarted()};
    ASSERT_FALSE(DebugHooks::openDebugPanel);
    ASSERT_FALSE(DebugHooks::refreshNotificationCapability);
    DebugHooks::open(engine);
    EXPECT_FALSE(engine.isRunning());
}

TEST(DebugHooks, openCallsThePanelWithTheEngine)
{
    ScriptedHost host;
    GuardEngine engine{host, notStarted()};
    std::vector<GuardEngine*> opened;
    DebugHooks::openDebugPanel = [&opened](GuardEngine& each) { opened.push_back(&each); };
    DebugHooks::open(engine);
    DebugHooks::open(engine);
    DebugHooks::openDebugPanel = nullptr;
    EXPECT_EQ(opened, (std::vector<GuardEngine*>{&engine, &engine}));
}

} // namespace
} // namespace quellon
