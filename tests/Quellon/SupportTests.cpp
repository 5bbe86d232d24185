#include "FreezingWorld.h"
#include "QuellonCore/Persistence/SecretState.h"
#include "ShellEnding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace quellon {
namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What a command printed, its errors for themselves, and how it ended.
struct Ending : ShellEnding {
    std::string errors;
};

/// A user's folders, of which the program knows no others, and no display or message bus.
class SupportTest : public ::testing::Test {
protected:
    SupportTest()
    {
        std::string name = (fs::temp_directory_path() / "quellon-support-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) return;
        home = fs::canonical(name);
        fs::create_directory(home / "state");
        fs::create_directory(home / "run");
        fs::create_directory(home / "tmp");
        fs::permissions(home / "run", fs::perms::owner_all);
    }
    ~SupportTest() override
    {
        std::error_code error;
        fs::remove_all(home, error);
    }

    fs::path home;

    void put(const std::string& name, std::string_view content) const
    {
        std::ofstream{home / "state" / name, std::ios::binary} << content;
    }

    /// Runs a shell's words, in which `$PROGRAM` is the program.
    [[nodiscard]] Ending shell(const std::string& words) const
    {
        const std::string whole =
            "exec 2>'" + (home / "errors").string() + "'; cd '" + home.string() +
            "'; exec env -i PATH=/usr/bin:/bin TZ=UTC HOME=\"$PWD\" TMPDIR=\"$PWD/tmp\" XDG_RUNTIME_DIR=\"$PWD/run\" "
            "QUELLON_STATE_DIR=\"$PWD/state\" PROGRAM='" QUELLON_PROGRAM "' sh -c '" +
            words + "'";
        Ending result{ShellEnding::of(whole), {}};
        result.errors = fileText(home / "errors");
        return result;
    }

    /// The guard on the same folders.
    [[nodiscard]] ChildTerminal::Setup guard(const std::string& view) const
    {
        return {.arguments = {view},
                .environment = {{"HOME", home},
                                {"TMPDIR", home / "tmp"},
                                {"XDG_RUNTIME_DIR", home / "run"},
                                {"QUELLON_STATE_DIR", home / "state"}}};
    }

    /// Whether the socket's folders are as empty as before.
    [[nodiscard]] bool isTidy() const { return fs::is_empty(home / "run") && fs::is_empty(home / "tmp"); }
};

TEST_F(SupportTest, withoutAGuardTheFilesTell)
{
    put("settings.json", R"({"onboarded": true, "sampleInterval": 2.5})");
    put("ledger.json.tmp", "x");
    const Ending ending = shell("exec \"$PROGRAM\" --snapshot");
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, StartsWith("# Quellon debug snapshot\n"));
    EXPECT_THAT(ending.output, HasSubstr("\nstate dir  ~/state  [ISOLATED · explicitOverride]\n"));
    EXPECT_THAT(ending.output, HasSubstr("\nguard      stopped · not metered · interval 2.5s\n"));
    EXPECT_THAT(ending.output, HasSubstr("\n  ledger.json.tmp "));
    EXPECT_THAT(ending.output, HasSubstr("  ⚠ leftover\n"));
    EXPECT_THAT(ending.output, HasSubstr("\n# Read from the state directory: no guard has answered.\n"));
    EXPECT_EQ(ending.errors, "Quellon: no running guard was found; this is what the state directory tells.\n");
    EXPECT_TRUE(isTidy());
    EXPECT_EQ(fs::file_size(home / "state/settings.json"), 42U) << "nothing was written";
}

TEST_F(SupportTest, withoutAStateFolderThereIsATextToo)
{
    fs::remove(home / "state");
    const Ending ending = shell("exec \"$PROGRAM\" --snapshot");
    EXPECT_EQ(ending.status, 0);
    EXPECT_THAT(ending.output, HasSubstr("state files\n  (empty)\n"));
    EXPECT_FALSE(fs::exists(home / "state"));
}

TEST_F(SupportTest, theRunningGuardTells)
{
    for (const char* view : {"--plain", "--terminal"}) {
        SCOPED_TRACE(view);
        ChildTerminal terminal{guard(view)};
        ASSERT_TRUE(terminal.waitFor("Quellon Pro started")) << terminal.screen();
        const Ending ending = shell("exec \"$PROGRAM\" --snapshot");
        EXPECT_EQ(ending.status, 0);
        EXPECT_EQ(ending.errors, "");
        EXPECT_THAT(ending.output, StartsWith("# Quellon debug snapshot\n"));
        EXPECT_THAT(ending.output, HasSubstr("\nguard      running · "));
        EXPECT_THAT(ending.output, HasSubstr("\nprocess    resident "));
        EXPECT_THAT(ending.output, Not(HasSubstr("no guard has answered")));
        terminal.signal(SIGTERM);
        EXPECT_EQ(terminal.wait(), 0);
        EXPECT_TRUE(isTidy()) << "the socket is gone with it";
    }
}

TEST_F(SupportTest, theGuardOfADesktopTells)
{
    auto setup = guard("--auto-resume=60"); // of no meaning here
    setup.environment.insert(setup.environment.end(), {{"DISPLAY", ":63999"}, {"QT_QPA_PLATFORM", "offscreen"}});
    ChildTerminal desktop{setup};
    const Ending ending = shell("for i in $(seq 300); do \"$PROGRAM\" --snapshot 2>/dev/null >text; "
                                "if grep -q \"^guard  *running\" text; then exec cat text; fi; done");
    EXPECT_THAT(ending.output, StartsWith("# Quellon debug snapshot\n"));
    EXPECT_THAT(ending.output, HasSubstr("\nguard      running · "));
    desktop.signal(SIGTERM);
    EXPECT_EQ(desktop.wait(), 0);
    EXPECT_TRUE(isTidy());
}

TEST_F(SupportTest, aGuardOnOtherStateIsNotAsked)
{
    ChildTerminal terminal{guard("--plain")};
    ASSERT_TRUE(terminal.waitFor("Quellon Pro started")) << terminal.screen();
    const Ending other = shell("QUELLON_STATE_DIR=\"$PWD/other\" exec \"$PROGRAM\" --snapshot");
    EXPECT_THAT(other.output, HasSubstr("\nguard      stopped · "));
    const Ending same = shell("cd run && QUELLON_STATE_DIR=../state exec \"$PROGRAM\" --snapshot");
    EXPECT_THAT(same.output, HasSubstr("\nguard      running · ")) << "by whatever name";
}

TEST_F(SupportTest, theGuardIsFoundWithoutARuntimeFolder)
{
    auto setup = guard("--plain");
    setup.environment.emplace_back("XDG_RUNTIME_DIR", std::nullopt);
    ChildTerminal terminal{setup};
    ASSERT_TRUE(terminal.waitFor("Quellon Pro started")) << terminal.screen();
    EXPECT_TRUE(fs::is_empty(home / "run"));
    EXPECT_THAT(shell("exec \"$PROGRAM\" --snapshot").output, HasSubstr("\nguard      running · "));
    terminal.signal(SIGINT);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(isTidy());
}

TEST_F(SupportTest, aGuardThatWasKilledLeavesNobodyWaiting)
{
    {
        ChildTerminal terminal{guard("--plain")};
        ASSERT_TRUE(terminal.waitFor("Quellon Pro started")) << terminal.screen();
        terminal.signal(SIGKILL);
        EXPECT_EQ(terminal.wait(), 128 + SIGKILL);
    }
    EXPECT_FALSE(isTidy());
    EXPECT_THAT(shell("exec \"$PROGRAM\" --snapshot").errors, StartsWith("Quellon: no running guard was found; "));
    ChildTerminal next{guard("--plain")};
    ASSERT_TRUE(next.waitFor("Quellon Pro started")) << next.screen();
    EXPECT_THAT(shell("exec \"$PROGRAM\" --snapshot").output, HasSubstr("\nguard      running · "));
}

TEST_F(SupportTest, aGuardThatHangsIsNotWaitedForLong)
{
    put("settings.json", "{}");
    ChildTerminal terminal{guard("--plain")};
    ASSERT_TRUE(terminal.waitFor("Quellon Pro started")) << terminal.screen();
    terminal.signal(SIGSTOP);
    const auto begin = std::chrono::steady_clock::now();
    const Ending ending = shell("exec \"$PROGRAM\" --snapshot");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{15});
    terminal.signal(SIGCONT);
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "Quellon: the running guard has not answered; this is what the state directory tells.\n");
    EXPECT_THAT(ending.output, HasSubstr("\n# Read from the state directory: no guard has answered.\n"));
    EXPECT_THAT(shell("exec \"$PROGRAM\" --snapshot").output, HasSubstr("\nguard      running · ")) << "it goes on";
}

TEST_F(SupportTest, askedAHundredTimesAtOnceItGoesOn)
{
    ChildTerminal terminal{guard("--plain")};
    ASSERT_TRUE(terminal.waitFor("Quellon Pro started")) << terminal.screen();
    // On a busy machine some may lose patience, and print what the files tell.
    const Ending ending = shell("for i in $(seq 100); do \"$PROGRAM\" --snapshot >\"tmp/$i\" 2>/dev/null & done; wait; "
                                "grep -lE \"^guard  *(running|stopped) \" tmp/* | grep -c .; rm tmp/*");
    EXPECT_EQ(ending.output, "100\n") << "each has a text";
    EXPECT_THAT(shell("exec \"$PROGRAM\" --snapshot").output, HasSubstr("\nguard      running · "));
    terminal.signal(SIGTERM);
    EXPECT_EQ(terminal.wait(), 0);
}

TEST_F(SupportTest, noSecretLeavesTheStateFolder)
{
    const SecretState state;
    for (const auto& [name, text] : state.files()) {
        // Nobody is asked over the network by a test.
        put(name, std::regex_replace(text, std::regex{"\"granted\""}, "\"denied\""));
    }
    const auto expectNoSecret = [](const Ending& ending) {
        for (const std::string& text : {ending.output, ending.errors}) {
            EXPECT_THAT(text, Not(HasSubstr(SecretState::mark)));
            EXPECT_THAT(text, Not(HasSubstr("云")));
        }
    };
    expectNoSecret(shell("exec \"$PROGRAM\" --snapshot"));
    std::size_t shown = 0;
    for (const auto& [name, text] : state.files()) {
        SCOPED_TRACE(name);
        const Ending ending = shell("exec \"$PROGRAM\" --redact \"state/" + name + "\"");
        expectNoSecret(ending);
        EXPECT_EQ(ending.status, name.ends_with(".json") ? 0 : 65);
        if (ending.status == 0) ++shown;
    }
    EXPECT_EQ(shown, stateRecords.size() + 1);
    ChildTerminal terminal{guard("--plain")};
    ASSERT_TRUE(terminal.waitFor("Quellon Pro started")) << terminal.screen();
    const Ending running = shell("exec \"$PROGRAM\" --snapshot");
    EXPECT_THAT(running.output, HasSubstr("\nguard      running · "));
    expectNoSecret(running);
}

TEST_F(SupportTest, redact)
{
    put("settings.json", R"({"profiles":[{"name":"Phone","planGB":30.0}],"appPolicies":{"npm":"always"}})");
    const std::string expected = "2 fields\n"
                                 "  appPolicies: 1 field\n"
                                 "    ‹other, 3 characters›: always\n"
                                 "  profiles: 1 item\n"
                                 "    [0]: 2 fields\n"
                                 "      name: ‹other, 5 characters›\n"
                                 "      planGB: 30.0\n";
    for (const char* words :
         {"exec \"$PROGRAM\" --redact state/settings.json", "exec \"$PROGRAM\" --redact=state/settings.json",
          "exec \"$PROGRAM\" --redact - <state/settings.json", "cat state/settings.json | \"$PROGRAM\" --redact -",
          "DISPLAY=:63999 exec \"$PROGRAM\" --redact state/settings.json"}) {
        SCOPED_TRACE(words);
        const Ending ending = shell(words);
        EXPECT_EQ(ending.output, expected);
        EXPECT_EQ(ending.errors, "");
        EXPECT_EQ(ending.status, 0);
    }
    EXPECT_TRUE(isTidy());
}

TEST_F(SupportTest, whatCanNotBeRedacted)
{
    put("not.json", "Player moved 5 MB");
    put("empty.json", "");
    put("deep.json", std::string(100'000, '[') + std::string(100'000, ']'));
    put("large.json", "[");
    fs::resize_file(home / "state/large.json", std::uintmax_t{100} * 1024 * 1024);
    put("line\nend", "x");
    struct Case {
        const char* name;
        const char* file;
        int status;
        const char* errors;
    };
    constexpr Case cases[] = {
        {"missing", "none", 66, "Quellon: state/none can't be read: No such file or directory.\n"},
        {"a folder", ".", 66, "Quellon: state/. can't be read: Is a directory.\n"},
        {"no JSON", "not.json", 65, "Quellon: state/not.json is not a JSON text.\n"},
        {"nothing", "empty.json", 65, "Quellon: state/empty.json is not a JSON text.\n"},
        {"a hundred thousand levels", "deep.json", 65, "Quellon: state/deep.json nests deeper than 128 levels.\n"},
        {"a hundred megabytes", "large.json", 65, "Quellon: state/large.json is larger than 64 MB.\n"},
        {"a line end in the name", "line\nend", 65, "Quellon: state/line�end is not a JSON text.\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Ending ending = shell("exec \"$PROGRAM\" --redact \"state/" + std::string{c.file} + "\"");
        EXPECT_EQ(ending.output, "");
        EXPECT_EQ(ending.errors, c.errors);
        EXPECT_EQ(ending.status, c.status);
    }
    const Ending input = shell("head -c 100000000 /dev/zero | \"$PROGRAM\" --redact -");
    EXPECT_EQ(input.errors, "Quellon: standard input is larger than 64 MB.\n");
    EXPECT_EQ(input.status, 65);
    const Ending closed = shell("exec \"$PROGRAM\" --redact - <&-");
    EXPECT_EQ(closed.errors, "Quellon: standard input can't be read: Bad file descriptor.\n");
    EXPECT_EQ(closed.status, 66);
}

TEST_F(SupportTest, outputThatCanNotBeWritten)
{
    put("settings.json", "{}");
    EXPECT_EQ(shell("exec \"$PROGRAM\" --snapshot >/dev/full").status, 1);
    EXPECT_EQ(shell("exec \"$PROGRAM\" --redact state/settings.json >/dev/full").status, 1);
}

} // namespace
} // namespace quellon
