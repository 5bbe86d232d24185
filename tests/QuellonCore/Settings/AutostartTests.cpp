#include "QuellonCore/Settings/Autostart.h"
#include "QuellonCore/Settings/AutostartEntry.h"
#include "QuellonCore/Settings/LaunchAgent.h"
#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quellon {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const fs::path program = "/usr/bin/Quellon";
const fs::path entry = "/home/user/.config/autostart/org.quellon.Quellon.desktop";
const fs::path list = "/home/user/Library/LaunchAgents/org.quellon.Quellon.plist";

class AutostartTest : public testing::Test {
protected:
    AutostartTest() { host.platform(Platform::linux()); }
    [[nodiscard]] Autostart autostart(const fs::path& executable = program) { return {host.host(), executable}; }
    ScriptedHost host;
};

TEST_F(AutostartTest, onAndOff)
{
    Autostart autostart = this->autostart();
    EXPECT_EQ(autostart.file(), entry);
    EXPECT_FALSE(autostart.isOn());
    EXPECT_EQ(autostart.setOn(true), std::nullopt);
    EXPECT_TRUE(autostart.isOn());
    EXPECT_EQ(host.files().get(entry), AutostartEntry::text(program));
    EXPECT_EQ(host.files().list(), std::vector{entry}) << "nothing else is left";
    EXPECT_EQ(autostart.setOn(false), std::nullopt);
    EXPECT_FALSE(autostart.isOn());
    EXPECT_EQ(host.files().list(), std::vector<fs::path>{});
    EXPECT_EQ(autostart.setOn(false), std::nullopt) << "again";
}

TEST_F(AutostartTest, folder)
{
    struct Case {
        const char* name;
        const char* configuration;
        fs::path file;
    };
    const Case cases[] = {
        {"elsewhere", "/etc/mine", "/etc/mine/autostart/org.quellon.Quellon.desktop"},
        {"empty", "", entry},
        {"relative", "mine", entry},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        host.environment("XDG_CONFIG_HOME", c.configuration);
        EXPECT_EQ(autostart().file(), c.file);
    }
}

TEST_F(AutostartTest, filesOfTheUser)
{
    struct Case {
        const char* name;
        std::string before;
        bool isOn;
        std::string afterOn;
        std::optional<std::string> afterOff;
    };
    const std::string ours = *AutostartEntry::text(program);
    const std::string hidden = "[Desktop Entry]\nHidden=true\n";
    const std::string optioned = "[Desktop Entry]\nExec=\"/usr/bin/Quellon\" --auto-resume 60\n";
    const std::string other = "[Desktop Entry]\nExec=\"/opt/old/Quellon\"\n";
    const Case cases[] = {
        {"ours", ours, true, ours, std::nullopt},
        {"hidden", hidden, false, ours, hidden},
        {"with options", optioned, true, optioned, std::nullopt},
        {"another copy", other, true, ours, std::nullopt},
        {"empty", "", false, ours, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Autostart autostart = this->autostart();
        host.files().set(entry, c.before);
        EXPECT_EQ(autostart.isOn(), c.isOn);
        EXPECT_EQ(autostart.setOn(false), std::nullopt);
        EXPECT_EQ(host.files().get(entry), c.afterOff);
        EXPECT_FALSE(autostart.isOn());
        host.files().set(entry, c.before);
        EXPECT_EQ(autostart.setOn(true), std::nullopt);
        EXPECT_EQ(host.files().get(entry), c.afterOn);
        EXPECT_TRUE(autostart.isOn());
    }
}

TEST_F(AutostartTest, failures)
{
    struct Case {
        const char* name;
        void (*prepare)(MemoryFileStore& files);
    };
    const Case cases[] = {
        {"no folder", [](MemoryFileStore& files) { files.failCreateDirectories(); }},
        {"no file", [](MemoryFileStore& files) { files.failWrites(); }},
        {"a full disk", [](MemoryFileStore& files) { files.limit(10); }},
        {"no replacement", [](MemoryFileStore& files) { files.failReplaces(); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedHost failing;
        failing.platform(Platform::linux());
        c.prepare(failing.files());
        Autostart autostart{failing.host(), program};
        EXPECT_EQ(autostart.setOn(true), entry.native() + " can't be written");
        EXPECT_FALSE(autostart.isOn());
        EXPECT_EQ(failing.files().get(entry), std::nullopt);
    }
}

TEST_F(AutostartTest, aFailureLeavesWhatWasThere)
{
    const std::string before = "[Desktop Entry]\nExec=\"/opt/old/Quellon\"\n";
    host.files().set(entry, before);
    host.files().readOnly();
    Autostart autostart = this->autostart();
    EXPECT_EQ(autostart.setOn(true), entry.native() + " can't be written");
    EXPECT_EQ(autostart.setOn(false), entry.native() + " can't be removed");
    EXPECT_EQ(host.files().get(entry), before);
}

TEST_F(AutostartTest, aPathThatNoEntryHolds)
{
    Autostart autostart = this->autostart("/opt/a=b/Quellon");
    EXPECT_EQ(autostart.setOn(true), "a program can't be started with the session from /opt/a=b/Quellon");
    EXPECT_EQ(host.files().list(), std::vector<fs::path>{});
}

TEST_F(AutostartTest, asALaunchAgent)
{
    host.platform(Platform::macOS());
    const fs::path executable = "/Applications/A & <B>/Quellon.app/Contents/MacOS/Quellon";
    Autostart autostart = this->autostart(executable);
    EXPECT_EQ(autostart.file(), list);
    EXPECT_EQ(autostart.setOn(true), std::nullopt);
    EXPECT_TRUE(autostart.isOn());
    EXPECT_THAT(host.files().get(list).value(),
                HasSubstr("<string>/Applications/A &amp; &lt;B&gt;/Quellon.app/Contents/MacOS/Quellon</string>"));
    EXPECT_EQ(autostart.setOn(false), std::nullopt);
    EXPECT_FALSE(autostart.isOn());
    EXPECT_EQ(host.files().list(), std::vector<fs::path>{});
}

TEST(LaunchAgent, isOn)
{
    const std::string ours = *LaunchAgent::text(program);
    struct Case {
        const char* name;
        std::string list;
        bool isOn;
    };
    const Case cases[] = {
        {"ours", ours, true},
        {"nothing", "", false},
        {"disabled", "<dict><key>RunAtLoad</key><true/><key>Disabled</key>\n  <true/></dict>", false},
        {"not disabled", "<dict><key>RunAtLoad</key><true/><key>Disabled</key><false/></dict>", true},
        {"not at the beginning", "<dict><key>RunAtLoad</key><false/></dict>", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LaunchAgent::isOn(c.list), c.isOn);
    }
    EXPECT_TRUE(LaunchAgent::starts(ours, program));
    EXPECT_FALSE(LaunchAgent::starts(ours, "/usr/bin"));
    EXPECT_EQ(LaunchAgent::text("Quellon"), std::nullopt);
    EXPECT_EQ(LaunchAgent::text("/a\nb"), std::nullopt);
    EXPECT_EQ(LaunchAgent::text("/\xFF"), std::nullopt);
}

} // namespace
} // namespace quellon
