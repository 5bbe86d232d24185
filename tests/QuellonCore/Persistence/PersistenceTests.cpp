#include "QuellonCore/Persistence/Persistence.h"

#include "ScriptedHost.h"

#include <gtest/gtest.h>

#include <limits>

namespace quellon {
namespace {

using Path = std::filesystem::path;
using Numbers = std::vector<double>;

constexpr std::string_view name = "numbers.json";

Path realDirectory(ScriptedHost& host)
{
    return host.files().applicationSupportDirectory().value() / "Quellon";
}

TEST(Persistence, fileNames)
{
    EXPECT_EQ(Persistence::settingsFile, "settings.json");
    EXPECT_EQ(Persistence::ledgerFile, "ledger.json");
    EXPECT_EQ(Persistence::budgetFile, "budget.json");
    EXPECT_EQ(Persistence::suspendedFile, "suspended.json");
    EXPECT_EQ(Persistence::livenessFile, "liveness.json");
    EXPECT_EQ(Persistence::enforcementHistoryFile, "enforcement-history.json");
    EXPECT_EQ(Persistence::explanationsFile, "explanations.json");
}

TEST(Persistence, resolveDirectory)
{
    struct Case {
        const char* name;
        std::optional<std::string> override;
        const char* processName;
        bool isTestHost;
        const char* directory;
    };
    const Case cases[] = {
        {"the real application", std::nullopt, "Quellon", false, "/data/Quellon"},
        {"an override", "/elsewhere", "Quellon", false, "/elsewhere"},
        {"an override for another process", "/elsewhere", "other", true, "/elsewhere"},
        {"an override as it stands", " rel/../x ", "Quellon", false, " rel/../x "},
        {"an empty override is none", "", "Quellon", false, "/data/Quellon"},
        {"an override of white space is a path", " \n", "Quellon", false, " \n"},
        {"a test host", std::nullopt, "Quellon", true, "/tmp/QuellonTransient-42"},
        {"another letter case", std::nullopt, "quellon", false, "/tmp/QuellonTransient-42"},
        {"a longer name", std::nullopt, "Quellon2", false, "/tmp/QuellonTransient-42"},
        {"no name", std::nullopt, "", false, "/tmp/QuellonTransient-42"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Persistence::resolveDirectory(c.override, c.processName, c.isTestHost, "/data", "/tmp", 42),
                  Path{c.directory});
    }
}

TEST(Persistence, isRunningInTestHost)
{
    struct Case {
        const char* name;
        const char* processName;
        const char* key;
        bool isTestHost;
    };
    constexpr Case cases[] = {
        {"the application", "Quellon", nullptr, false},
        {"an unrelated key", "Quellon", "XCTest", false},
        {"the configuration key", "Quellon", "XCTestConfigurationFilePath", true},
        {"the bundle key", "Quellon", "XCTestBundlePath", true},
        {"the session key", "Quellon", "XCTestSessionIdentifier", true},
        {"the runner", "xctest", nullptr, true},
        {"not quite the runner", "xctester", nullptr, false},
        {"a test bundle", "Quellon.xctest", nullptr, true},
        {"package tests", "QuellonPackageTests", nullptr, true},
        {"one of our own", "QuellonCoreTests", nullptr, true},
        {"tests in the middle", "TestsOfQuellon", nullptr, false},
        {"no name", "", nullptr, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto environment = [&](std::string_view key) {
            return c.key != nullptr && key == c.key ? std::optional<std::string>{""} : std::nullopt;
        };
        EXPECT_EQ(Persistence::isRunningInTestHost(c.processName, environment), c.isTestHost);
    }
}

TEST(Persistence, directoryOfAProcess)
{
    {
        ScriptedHost host;
        EXPECT_EQ(Persistence{host.host()}.directory(), realDirectory(host));
        EXPECT_TRUE(host.files().list().empty());
    }
    {
        ScriptedHost host;
        host.files().noApplicationSupport();
        EXPECT_EQ(Persistence{host.host()}.directory(), host.files().homeDirectory() / "Quellon");
    }
    {
        ScriptedHost host;
        host.environment("XCTestBundlePath", "/x");
        host.processID(7);
        EXPECT_EQ(Persistence{host.host()}.directory(), host.files().temporaryDirectory() / "QuellonTransient-7");
    }
    {
        ScriptedHost host;
        host.environment("QUELLON_STATE_DIR", "/state");
        const Persistence persistence{host.host()};
        host.environment("QUELLON_STATE_DIR", "/other");
        EXPECT_EQ(persistence.directory(), Path{"/state"});
    }
}

TEST(Persistence, savesAndLoads)
{
    ScriptedHost host;
    const Persistence persistence{host.host()};
    EXPECT_EQ(persistence.load<Numbers>(name), std::nullopt);
    EXPECT_FALSE(host.files().isDirectory(persistence.directory())) << "loading makes no folder";

    persistence.save(Numbers{1, 2.5}, name);
    EXPECT_EQ(host.files().get(realDirectory(host) / "numbers.json"), "[1.0,2.5]");
    EXPECT_EQ(persistence.load<Numbers>(name), (Numbers{1, 2.5}));
    EXPECT_EQ(host.files().list().size(), 1U) << "nothing else stays";

    persistence.save(Numbers{3}, name);
    EXPECT_EQ(persistence.load<Numbers>(name), Numbers{3});

    persistence.remove(name);
    EXPECT_EQ(persistence.load<Numbers>(name), std::nullopt);
    persistence.remove(name); // not there: nothing happens
    EXPECT_TRUE(host.files().list().empty());
}

/// Names of other files, folders or nothing; each would lead out of the state folder, or is none for a file in it.
const std::string notPlainNames[] = {
    "",
    ".",
    "..",
    "../numbers.json",
    "../../numbers.json",
    "/numbers.json",
    "/",
    "sub/numbers.json",
    "sub/..",
    "./numbers.json",
    "numbers.json/",
    std::string{"numbers.json\0", 13},
    std::string{"\0", 1},
};

TEST(Persistence, isPlainName)
{
    for (const auto& each : notPlainNames) EXPECT_FALSE(Persistence::isPlainName(each)) << each;
    for (const char* each :
         {"numbers.json", "...", "..json", ".json", " ", "\\", "C:", "a\nb", "微信.json", "\xFF", "~"}) {
        EXPECT_TRUE(Persistence::isPlainName(each)) << each;
    }
}

TEST(Persistence, nothingOutsideOfTheFolderIsTouched)
{
    for (const auto& each : notPlainNames) {
        SCOPED_TRACE(each);
        ScriptedHost host;
        const Persistence persistence{host.host()};
        const Path folder = persistence.directory();
        for (const Path& place : {folder, folder / "sub", folder.parent_path(), folder.parent_path().parent_path()}) {
            host.files().set(place / name, "[7.0]");
        }
        host.files().set("/numbers.json", "[7.0]");
        const auto before = host.files().list();
        const std::size_t writes = host.files().writes();

        persistence.save(Numbers{1}, each);
        EXPECT_EQ(persistence.load<Numbers>(each), std::nullopt);
        EXPECT_EQ(persistence.load(each, fromJson<Numbers>), std::nullopt);
        persistence.remove(each);
        EXPECT_EQ(host.files().writes(), writes);
        EXPECT_EQ(host.files().list(), before);
    }
}

TEST(Persistence, isFreeForBudgets)
{
    for (const auto& each : notPlainNames) EXPECT_FALSE(Persistence::isFreeForBudgets(each)) << each;
    for (const char* each : {"settings.json", "ledger.json", "suspended.json", "liveness.json",
                             "enforcement-history.json", "explanations.json", "windows.json", "notifications.log",
                             "Settings.JSON", "\u017Fettings.json", "settings.json.tmp", "budget.json.tmp"}) {
        EXPECT_FALSE(Persistence::isFreeForBudgets(each)) << each;
    }
    for (const char* each : {"budget.json", "budget-6F9619FF-8B86-4D01-B42D-00CF4FC964FF.json", "a.json",
                             "my settings.json", "settings.json2", "Reise 旅行"}) {
        EXPECT_TRUE(Persistence::isFreeForBudgets(each)) << each;
    }
}

TEST(Persistence, loadsWhatTheReaderMakesOfAFile)
{
    ScriptedHost host;
    const Persistence persistence{host.host()};
    const auto plus = [&](std::int32_t more) {
        return persistence.load(name, [more](const Json& json) -> std::optional<std::int32_t> {
            const auto number = fromJson<std::int32_t>(json);
            return number ? std::optional{*number + more} : std::nullopt;
        });
    };
    EXPECT_EQ(plus(1), std::nullopt) << "no file";
    persistence.save(std::int32_t{41}, name);
    EXPECT_EQ(plus(1), 42);
    persistence.save(std::string{"41"}, name);
    EXPECT_EQ(plus(1), std::nullopt) << "refused by the reader";
    host.files().set(persistence.directory() / name, "{");
    EXPECT_EQ(plus(1), std::nullopt) << "no JSON";
}

TEST(Persistence, leftoverTemporaryFile)
{
    ScriptedHost host;
    const Persistence persistence{host.host()};
    const Path temporary = realDirectory(host) / "numbers.json.tmp";
    host.files().set(temporary, "[9.0]");
    EXPECT_EQ(persistence.load<Numbers>(name), std::nullopt) << "never read";
    persistence.save(Numbers{1}, name);
    EXPECT_EQ(persistence.load<Numbers>(name), Numbers{1});
    EXPECT_EQ(host.files().get(temporary), std::nullopt);
}

TEST(Persistence, aFailedStepLeavesTheFormerFile)
{
    struct Case {
        const char* name;
        void (*fail)(MemoryFileStore&);
        std::size_t writes;
        std::size_t replaces;
        std::optional<std::string> temporary; ///< What is left of the attempt.
    };
    const Case cases[] = {
        {"the write fails", [](MemoryFileStore& files) { files.failWrites(); }, 1, 0, std::nullopt},
        {"the disk is full", [](MemoryFileStore& files) { files.limit(7); }, 1, 0, "[2"},
        {"the replacement fails", [](MemoryFileStore& files) { files.failReplaces(); }, 1, 1, "[2.0]"},
        {"the disk is read-only", [](MemoryFileStore& files) { files.readOnly(); }, 1, 0, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedHost host;
        const Persistence persistence{host.host()};
        persistence.save(Numbers{1}, name);
        const std::size_t writes = host.files().writes();
        const std::size_t replaces = host.files().replaces();

        c.fail(host.files());
        persistence.save(Numbers{2}, name);
        EXPECT_EQ(host.files().writes() - writes, c.writes);
        EXPECT_EQ(host.files().replaces() - replaces, c.replaces);
        EXPECT_EQ(persistence.load<Numbers>(name), Numbers{1});
        EXPECT_EQ(host.files().get(realDirectory(host) / "numbers.json.tmp"), c.temporary);

        host.files().readOnly(false);
        host.files().limit(std::nullopt);
        persistence.save(Numbers{3}, name);
        EXPECT_EQ(persistence.load<Numbers>(name), Numbers{3}) << "the next save is whole again";
        EXPECT_EQ(host.files().list().size(), 1U);
    }
}

TEST(Persistence, withoutAFolderNothingIsEncodedOrWritten)
{
    struct Encodes {
        bool* encoded;
        Json toJson() const
        {
            *encoded = true;
            return Json::object();
        }
    };
    for (const bool isReadOnly : {false, true}) {
        ScriptedHost host;
        const Persistence persistence{host.host()};
        bool encoded = false;
        if (isReadOnly)
            host.files().readOnly();
        else
            host.files().failCreateDirectories();
        persistence.save(Encodes{&encoded}, name);
        EXPECT_FALSE(encoded);
        EXPECT_EQ(host.files().writes(), 0U);

        host.files().readOnly(false);
        persistence.save(Encodes{&encoded}, name);
        EXPECT_TRUE(encoded);
        EXPECT_EQ(host.files().list().size(), 1U);
    }
}

TEST(Persistence, aValueThatCannotBeWrittenSavesNothing)
{
    ScriptedHost host;
    const Persistence persistence{host.host()};
    persistence.save(Numbers{std::numeric_limits<double>::quiet_NaN()}, name);
    persistence.save(std::string{"\xFF"}, name);
    EXPECT_TRUE(host.files().list().empty());
    EXPECT_TRUE(host.files().isDirectory(persistence.directory())) << "the folder comes before the encoding";
}

TEST(Persistence, aFileThatCannotBeReadStaysAsItIs)
{
    for (const std::string content : {"", "{", "[1", R"({"a":1})", "[\"1\"]", "null"}) {
        SCOPED_TRACE(content);
        ScriptedHost host;
        const Path file = realDirectory(host) / "numbers.json";
        host.files().set(file, content);
        EXPECT_EQ(Persistence{host.host()}.load<Numbers>(name), std::nullopt);
        EXPECT_EQ(host.files().get(file), content);
        EXPECT_EQ(host.files().writes(), 0U);
    }
    ScriptedHost host;
    host.files().set(realDirectory(host) / "numbers.json", "[1]");
    host.files().failReads();
    EXPECT_EQ(Persistence{host.host()}.load<Numbers>(name), std::nullopt);
}

} // namespace
} // namespace quellon
