#include "QuellonCore/Persistence/DebugStateGuard.h"

#include "ScriptedHost.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using DebugStateGuard::Isolation;

constexpr auto real = Isolation::realState();
constexpr auto chosen = Isolation::isolated(Isolation::Reason::explicitOverride);
constexpr auto transient = Isolation::isolated(Isolation::Reason::transientSandbox);

TEST(DebugStateGuard, reasons)
{
    ASSERT_EQ(DebugStateGuard::isolationReasons.rows.size(), 2U);
    EXPECT_EQ(DebugStateGuard::isolationReasons.raw(Isolation::Reason::explicitOverride), "explicitOverride");
    EXPECT_EQ(DebugStateGuard::isolationReasons.raw(Isolation::Reason::transientSandbox), "transientSandbox");
}

TEST(DebugStateGuard, onlyACopyMayBeChanged)
{
    EXPECT_FALSE(real.allowsMutation());
    EXPECT_TRUE(chosen.allowsMutation());
    EXPECT_TRUE(transient.allowsMutation());
}

TEST(DebugStateGuard, isolation)
{
    struct Case {
        const char* name;
        const char* resolved;
        std::optional<std::string> override;
        Isolation isolation;
    };
    const Case cases[] = {
        {"the real folder", "/data/Quellon", std::nullopt, real},
        {"the real folder, written otherwise", "/data/./x/../Quellon/", std::nullopt, real},
        {"an override that is the real folder", "/data/Quellon", "/data/Quellon", real},
        {"an override that is a link to the real folder", "/link", "/link", real},
        {"an override", "/copy", "/copy", chosen},
        {"an override, written otherwise", "/copy", "/copy/.", chosen},
        {"an override that the folder does not follow", "/copy", "/other", transient},
        {"an empty override", "/tmp/QuellonTransient-1", "", transient},
        {"an override of white space", " \n", " \n", transient},
        {"no override", "/tmp/QuellonTransient-1", std::nullopt, transient},
    };
    ScriptedHost host;
    host.files().set("/data/Quellon/ledger.json", "");
    host.files().link("/link", "/data/Quellon");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(DebugStateGuard::isolation(host.files(), c.resolved, "/data/Quellon", c.override), c.isolation);
    }
}

TEST(DebugStateGuard, theRealFolderMayBeALinkItself)
{
    ScriptedHost host;
    host.files().set("/disk/Quellon/ledger.json", "");
    host.files().link("/data", "/disk");
    EXPECT_EQ(DebugStateGuard::isolation(host.files(), "/disk/Quellon", "/data/Quellon", "/disk/Quellon"), real);
}

TEST(DebugStateGuard, current)
{
    const auto isolation = [](ScriptedHost& host) {
        return DebugStateGuard::current(host.host(), Persistence{host.host()});
    };
    {
        ScriptedHost host;
        EXPECT_EQ(isolation(host), real);
    }
    {
        ScriptedHost host;
        host.processName("other");
        EXPECT_EQ(isolation(host), transient);
    }
    {
        ScriptedHost host;
        host.environment("QUELLON_STATE_DIR", "/copy");
        EXPECT_EQ(isolation(host), chosen);
    }
    {
        ScriptedHost host;
        host.environment("QUELLON_STATE_DIR", "/link");
        host.files().link("/link", DebugStateGuard::realStateDirectory(host.files()));
        EXPECT_FALSE(isolation(host).allowsMutation());
    }
}

TEST(DebugStateGuard, realStateDirectory)
{
    ScriptedHost host;
    host.environment("QUELLON_STATE_DIR", "/copy");
    host.processName("other");
    EXPECT_EQ(DebugStateGuard::realStateDirectory(host.files()),
              host.files().applicationSupportDirectory().value() / "Quellon");
    host.files().noApplicationSupport();
    EXPECT_EQ(DebugStateGuard::realStateDirectory(host.files()), host.files().homeDirectory() / "Quellon");
}

TEST(DebugStateGuard, relaunchCommand)
{
    EXPECT_EQ(DebugStateGuard::relaunchCommand("/opt/My Apps/Quellon", "/tmp/state"),
              "mkdir -p /tmp/state && QUELLON_STATE_DIR=/tmp/state \"/opt/My Apps/Quellon\"");
}

} // namespace
} // namespace quellon
