#include "QuellonCore/Rules/ProtectionPolicy.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

namespace quellon {
namespace {

using Decision = ProtectionPolicy::Decision;
using Groups = std::set<std::int32_t>;

constexpr std::uint32_t user = 501;

ProtectionPolicy macOS(AppPolicyTable::Entries policies = {})
{
    ProtectionPolicy policy = ProtectionPolicy::default_(Platform::macOS());
    policy.policies = AppPolicyTable{std::move(policies)};
    return policy;
}

/// The reason of a decision with the guard as process 1 and its parent as 2, and group 70 protected; "" when allowed.
std::string reason(const ProtectionPolicy& policy, const ProcessEntry& process)
{
    const Decision decision = policy.decide(process, {1, 2}, {70});
    EXPECT_EQ(decision.isAllowed(), decision.reason.empty());
    return decision.reason;
}

TEST(ProtectionPolicy, defaultHasTheTableAndNothingElse)
{
    const ProtectionPolicy policy = ProtectionPolicy::default_(Platform::macOS());
    EXPECT_EQ(policy.protectedNames.names(),
              (std::vector<std::string>{"Terminal", "iTerm2", "ssh", "sshd", "tmux", "screen", "claude", "codex"}));
    EXPECT_EQ(policy.cliOnlyNames.names(), (std::vector<std::string>{"claude", "codex"}));
    EXPECT_EQ(policy.systemPathPrefixes,
              (std::vector<std::string>{"/System/", "/usr/", "/sbin/", "/bin/", "/Library/Apple/"}));
    EXPECT_EQ(policy.loginShells, ExecutableNames{});
    EXPECT_EQ(policy.machineryNames, ExecutableNames{});
    EXPECT_TRUE(policy.forcedTargets.empty());
    EXPECT_TRUE(policy.policies.isEmpty());
    EXPECT_NE(policy, ProtectionPolicy::default_(Platform::linux()));
}

TEST(ProtectionPolicy, decisionsCompareByKindAndReason)
{
    EXPECT_EQ(Decision::allowed(), Decision{});
    EXPECT_EQ(Decision::protected_("a"), Decision::protected_("a"));
    EXPECT_NE(Decision::protected_("a"), Decision::protected_("b"));
    EXPECT_NE(Decision::protected_(""), Decision::allowed());
}

TEST(ProtectionPolicy, decideOnMacOS)
{
    struct Case {
        const char* name;
        ProcessEntry process;
        const char* reason;
    };
    const Case cases[] = {
        {"an application", {9, user, 9, "/Applications/Chrome.app/Contents/MacOS/Chrome"}, ""},
        {"the guard", {1, user, 9, "/Applications/Quellon.app/Contents/MacOS/Quellon"}, "the guard itself"},
        {"what started it", {2, 0, 9, "/sbin/launchd"}, "the guard itself"},
        {"root", {9, 0, 9, "/usr/libexec/thing"}, "root process"},
        {"root's application", {9, 0, 9, "/Applications/A.app/Contents/MacOS/A"}, "root process"},
        {"System", {9, user, 9, "/System/Library/x"}, "system component"},
        {"usr", {9, user, 9, "/usr/bin/curl"}, "system component"},
        {"usr/local too", {9, user, 9, "/usr/local/bin/wget"}, "system component"},
        {"sbin", {9, user, 9, "/sbin/ping"}, "system component"},
        {"bin", {9, user, 9, "/bin/zsh"}, "system component"},
        {"Apple's library", {9, user, 9, "/Library/Apple/usr/bin/x"}, "system component"},
        {"another library", {9, user, 9, "/Library/Application Support/x"}, ""},
        {"a prefix needs its slash", {9, user, 9, "/binary/x"}, ""},
        {"a prefix in another case", {9, user, 9, "/USR/bin/x"}, ""},
        {"a prefix in the middle", {9, user, 9, "/opt/usr/bin/x"}, ""},
        {"system before tool", {9, user, 9, "/usr/bin/ssh"}, "system component"},
        {"a tool elsewhere", {9, user, 9, "/opt/homebrew/bin/ssh"}, "protected tool (ssh)"},
        {"the name as the list has it", {9, user, 9, "/opt/ITERM2"}, "protected tool (iTerm2)"},
        {"a tool in a bundle",
         {9, user, 9, "/Applications/iTerm.app/Contents/MacOS/iTerm2"},
         "protected tool (iTerm2)"},
        {"a name that merely contains one", {9, user, 9, "/opt/sshuttle"}, ""},
        {"a command-line tool", {9, user, 9, "/opt/homebrew/bin/claude"}, "protected tool (claude)"},
        {"its application", {9, user, 9, "/Applications/Claude.app/Contents/MacOS/Claude"}, ""},
        {"the other tool's application", {9, user, 9, "/Applications/Codex.app/Contents/MacOS/codex"}, ""},
        {"a bundle needs its slash", {9, user, 9, "/opt/x.application/codex"}, "protected tool (codex)"},
        {"in a session's group", {9, user, 70, "/opt/homebrew/bin/wget"}, "part of a protected session"},
        {"an application in a session's group",
         {9, user, 70, "/Applications/Claude.app/Contents/MacOS/Claude"},
         "part of a protected session"},
        {"no command", {9, user, 9, ""}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(reason(macOS(), c.process), c.reason);
    }
}

TEST(ProtectionPolicy, decideByTheUsersPolicies)
{
    struct Case {
        const char* name;
        AppPolicyTable::Entries policies;
        ProcessEntry process;
        const char* reason;
    };
    const Case cases[] = {
        {"root set to always", {{"thing", AppPolicy::always}}, {9, 0, 9, "/usr/libexec/thing"}, ""},
        {"the guard set to always", {{"Quellon", AppPolicy::always}}, {1, user, 9, "/x/Quellon"}, "the guard itself"},
        {"the guard set to never", {{"Quellon", AppPolicy::never}}, {1, user, 9, "/x/Quellon"}, "the guard itself"},
        {"a tool set to never",
         {{"Terminal", AppPolicy::never}},
         {9, user, 9, "/Applications/Utilities/Terminal.app/Contents/MacOS/Terminal"},
         "set to never limit"},
        {"a helper counts for its bundle",
         {{"Chrome", AppPolicy::never}},
         {9, user, 9, "/Applications/Chrome.app/Contents/Frameworks/Helper.app/Contents/MacOS/Helper"},
         "set to never limit"},
        {"labels are compared byte by byte", {{"chrome", AppPolicy::never}}, {9, user, 9, "/opt/Chrome"}, ""},
        {"a tool set to always", {{"ssh", AppPolicy::always}}, {9, user, 9, "/opt/ssh"}, ""},
        {"a tool set to always in its own session", {{"ssh", AppPolicy::always}}, {9, user, 70, "/opt/ssh"}, ""},
        {"set to always in a session",
         {{"wget", AppPolicy::always}},
         {9, user, 70, "/opt/wget"},
         "part of a protected session"},
        {"root in a session, set to always",
         {{"wget", AppPolicy::always}},
         {9, 0, 70, "/opt/wget"},
         "part of a protected session"},
        {"an application of a tool's name in a session, set to always",
         {{"Claude", AppPolicy::always}},
         {9, user, 70, "/Applications/Claude.app/Contents/MacOS/Claude"},
         "part of a protected session"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(reason(macOS(c.policies), c.process), c.reason);
    }
}

TEST(ProtectionPolicy, forcedTargets)
{
    struct Case {
        const char* name;
        std::vector<std::string> targets;
        AppPolicyTable::Entries policies;
        ProcessEntry process;
        const char* reason;
    };
    const Case cases[] = {
        {"below usr", {"curl"}, {}, {9, user, 9, "/usr/bin/curl"}, ""},
        {"a name that contains the target", {"url"}, {}, {9, user, 9, "/usr/bin/curlie"}, ""},
        {"case of the target", {"CURL"}, {}, {9, user, 9, "/usr/bin/curl"}, ""},
        {"case of the name", {"curl"}, {}, {9, user, 9, "/usr/bin/CURL"}, ""},
        {"the second target", {"x", "curl"}, {}, {9, user, 9, "/usr/bin/curl"}, ""},
        {"only the last component", {"usr"}, {}, {9, user, 9, "/usr/bin/curl"}, "system component"},
        {"root", {"curl"}, {}, {9, 0, 9, "/usr/bin/curl"}, ""},
        {"a tool", {"ssh"}, {}, {9, user, 9, "/opt/sshd"}, ""},
        {"in a session", {"wget"}, {}, {9, user, 70, "/opt/wget"}, ""},
        {"set to never", {"curl"}, {{"curl", AppPolicy::never}}, {9, user, 9, "/usr/bin/curl"}, "set to never limit"},
        {"the guard", {"quellon"}, {}, {1, user, 9, "/opt/Quellon"}, "the guard itself"},
        {"an empty target matches nothing", {""}, {}, {9, user, 9, "/usr/bin/curl"}, "system component"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ProtectionPolicy policy = macOS(c.policies);
        policy.forcedTargets = c.targets;
        EXPECT_EQ(reason(policy, c.process), c.reason);
    }
}

TEST(ProtectionPolicy, onlyGroupsAboveZeroProtect)
{
    const ProtectionPolicy policy = macOS({{"always", AppPolicy::always}});
    for (const std::int32_t group : {0, -1}) {
        SCOPED_TRACE(group);
        EXPECT_TRUE(policy.decide({9, user, group, "/opt/wget"}, {}, {group}).isAllowed());
        EXPECT_TRUE(policy.decide({9, user, group, "/opt/always"}, {}, {group}).isAllowed());
        EXPECT_EQ(policy.protectedGroups(ProcessTable::Entries{{{9, user, group, "/opt/ssh"}}}), Groups{});
    }
}

TEST(ProtectionPolicy, protectedGroups)
{
    const ProcessTable::Entries processes{{
        {10, user, 10, "/opt/tmux"},
        {11, user, 10, "/opt/wget"},
        {12, user, 12, "/opt/wget"},
        {13, 0, 13, "/usr/sbin/sshd"},
        {14, user, 14, "/opt/homebrew/bin/claude"},
        {15, user, 15, "/Applications/Claude.app/Contents/MacOS/Claude"},
        {16, user, 160, "/opt/SCREEN"},
        {17, user, 160, "/opt/screen"},
        {18, user, 18, "/bin/zsh"},
    }};
    EXPECT_EQ(macOS().protectedGroups(processes), (Groups{10, 13, 14, 160}));
    EXPECT_EQ(macOS().protectedGroups(ProcessTable::Entries{}), Groups{});
    EXPECT_EQ(macOS({{"tmux", AppPolicy::always}}).protectedGroups(processes), (Groups{10, 13, 14, 160}))
        << "policies change nothing about groups";
}

TEST(ProtectionPolicy, decideOnLinux)
{
    struct Case {
        const char* name;
        ProcessEntry process;
        const char* reason;
    };
    const Case cases[] = {
        {"a browser", {9, user, 9, "/usr/lib/firefox/firefox"}, ""},
        {"a browser started by the desktop shell", {9, user, 5, "/opt/google/chrome/chrome"}, ""},
        {"a software centre", {9, user, 9, "/usr/bin/gnome-software"}, ""},
        {"the user's own", {9, user, 9, "/home/someone/.local/bin/tool"}, ""},
        {"root's", {9, 0, 9, "/usr/bin/apt"}, "root process"},
        {"a kernel thread", {9, 0, 0, "[kworker/0:1]"}, "root process"},
        {"the desktop shell", {5, user, 5, "/usr/bin/gnome-shell"}, "protected tool (gnome-shell)"},
        {"the message bus", {9, user, 9, "/usr/bin/dbus-daemon"}, "protected tool (dbus-daemon)"},
        {"a terminal", {9, user, 5, "/usr/bin/konsole"}, "protected tool (konsole)"},
        {"a terminal, case aside", {9, user, 5, "/usr/bin/Konsole"}, "protected tool (konsole)"},
        {"the probe", {9, user, 5, "/usr/libexec/quellon-probe"}, "protected tool (quellon-probe)"},
        {"the guard, not by id", {9, user, 5, "/usr/bin/quellon"}, "protected tool (Quellon)"},
        {"ssh", {9, user, 9, "/usr/bin/ssh"}, "protected tool (ssh)"},
        {"ssh in another's group", {9, user, 8, "/usr/bin/ssh"}, "protected tool (ssh)"},
        {"in a session's group", {9, user, 70, "/usr/bin/wget"}, "part of a protected session"},
        {"a shell that leads", {9, user, 9, "/usr/bin/bash"}, "protected tool (bash)"},
        {"a shell that runs a script for the desktop", {9, user, 5, "/usr/bin/bash"}, ""},
        {"a shell in a session's group", {9, user, 70, "/usr/bin/bash"}, "part of a protected session"},
        {"a script's shell that leads", {9, user, 9, "/usr/bin/dash"}, ""},
        {"a name cut by the kernel", {9, user, 9, "gnome-keyring-d"}, "protected tool (gnome-keyring-daemon)"},
        {"a name that was short enough", {9, user, 9, "kwin_wayland"}, "protected tool (kwin_wayland)"},
        {"one byte less", {9, user, 9, "gnome-keyring-"}, ""},
        {"a path is never cut", {9, user, 9, "/usr/bin/gnome-keyring-d"}, ""},
        {"an interpreter", {9, user, 9, "/usr/bin/python3.12"}, ""},
        {"no command", {9, user, 9, ""}, ""},
    };
    const ProtectionPolicy policy = ProtectionPolicy::default_(Platform::linux());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(reason(policy, c.process), c.reason);
    }
}

TEST(ProtectionPolicy, machineryDoesNotProtectItsGroup)
{
    const ProcessTable::Entries processes{{
        {5, user, 5, "/usr/bin/gnome-shell"},
        {6, user, 5, "/usr/bin/xterm"},
        {7, user, 5, "/usr/bin/bash"},
        {8, user, 5, "/usr/lib/firefox/firefox"},
        {20, user, 20, "/usr/bin/zsh"},
        {21, user, 21, "/usr/bin/wget"},
        {30, user, 30, "/usr/bin/bash"},
        {31, user, 30, "/usr/bin/wget"},
        {40, user, 41, "/usr/bin/mosh-client"},
        {50, user, 50, "/usr/bin/dash"},
    }};
    const ProtectionPolicy policy = ProtectionPolicy::default_(Platform::linux());
    const Groups groups = policy.protectedGroups(processes);
    EXPECT_EQ(groups, (Groups{20, 30, 41}));
    EXPECT_TRUE(policy.decide(*processes.find(8), {}, groups).isAllowed());
    EXPECT_TRUE(policy.decide(*processes.find(21), {}, groups).isAllowed());
    EXPECT_EQ(policy.decide(*processes.find(31), {}, groups), Decision::protected_("part of a protected session"));
}

TEST(ProtectionPolicy, theDesktopsOwnGroupIsNoSession)
{
    const ProcessTable::Entries processes{{
        {5, user, 5, "/usr/bin/gnome-shell"},
        {6, user, 5, "/usr/share/code/code"},
        {7, user, 5, "/usr/bin/ssh"},
        {8, user, 5, "/usr/lib/firefox/firefox"},
        {20, user, 20, "/usr/bin/bash"},
        {21, user, 20, "/usr/bin/xinit"},
        {22, user, 20, "/usr/lib/firefox/firefox"},
        {30, user, 30, "/usr/bin/git"},
        {31, user, 30, "/usr/bin/ssh"},
        {40, user, 40, "/usr/bin/konsole"},
    }};
    const ProtectionPolicy policy = ProtectionPolicy::default_(Platform::linux());
    const Groups groups = policy.protectedGroups(processes);
    EXPECT_EQ(groups, (Groups{30}));
    struct Case {
        const char* name;
        std::int32_t pid;
        const char* reason;
    };
    constexpr Case cases[] = {
        {"the desktop shell", 5, "protected tool (gnome-shell)"},
        {"an editor that works over ssh", 6, ""},
        {"its ssh", 7, "protected tool (ssh)"},
        {"a browser beside it", 8, ""},
        {"the script that starts a desktop", 20, "protected tool (bash)"},
        {"a browser in such a desktop", 22, ""},
        {"a command that works over ssh", 30, "part of a protected session"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(policy.decide(*processes.find(c.pid), {}, groups).reason, c.reason);
    }
}

TEST(ProtectionPolicy, neverAllowsTheGuard)
{
    std::mt19937_64 random{33};
    const auto pick = [&random](const auto& from) { return from[random() % from.size()]; };
    const std::vector<std::string> commands{"/usr/bin/Quellon",
                                            "/opt/Quellon.app/Contents/MacOS/Quellon",
                                            "/opt/tmux",
                                            "/bin/bash",
                                            "/usr/lib/firefox/firefox",
                                            ""};
    const std::vector<std::string> labels{"Quellon", "tmux", "bash", "firefox", ""};
    std::vector<ProtectionPolicy> defaults{ProtectionPolicy::default_(Platform::macOS()),
                                           ProtectionPolicy::default_(Platform::linux())};
    int decisions = 0;
    for (int round = 0; round < 300; ++round) {
        ProtectionPolicy& policy = defaults[random() % 2];
        for (const std::string& label : labels) policy.policies.set(pick(appPolicies.rows).value, label);
        policy.forcedTargets = {pick(labels), pick(labels)};
        const auto id = [&random] { return static_cast<std::int32_t>(random() % 8) - 1; };
        const Groups selfPIDs{id(), id(), id()};
        const Groups groups{id(), id()};
        for (const std::int32_t pid : selfPIDs) {
            const ProcessEntry process{pid, static_cast<std::uint32_t>(random() % 2) * user, id(), pick(commands)};
            EXPECT_EQ(policy.decide(process, selfPIDs, groups), Decision::protected_("the guard itself"));
            ++decisions;
        }
    }
    EXPECT_GT(decisions, 300);
}

} // namespace
} // namespace quellon
