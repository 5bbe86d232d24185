#include "QuellonCore/Enforcement/SuspendedApp.h"
#include "QuellonCore/Persistence/StateFile.h"

#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

const SuspendedApp player{"Player", {501, 502}, {"A", "B"}, 1'048'576, Date{Seconds{795'261'600.25}}};

TEST(SuspendedApp, idTellsTheFreezesOfOneAppApart)
{
    struct Case {
        const char* name;
        double seconds; ///< Since the reference date.
        const char* id;
    };
    constexpr Case cases[] = {
        {"a fraction", 795'261'600.25, "Player-1773568800.25"},
        {"a whole number", 795'261'600.0, "Player-1773568800.0"},
        {"1970", -978'307'200.0, "Player-0.0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SuspendedApp entry = player;
        entry.at = Date{Seconds{c.seconds}};
        EXPECT_EQ(entry.id(), c.id);
    }
}

TEST(SuspendedApp, start)
{
    const SuspendedApp entry{"Player", {501, 502, 501, 503}, {"A", "B", "C"}, 0, {}};
    EXPECT_EQ(entry.start(501), "A");
    EXPECT_EQ(entry.start(502), "B");
    EXPECT_EQ(entry.start(503), std::nullopt);
    EXPECT_EQ(entry.start(504), std::nullopt);
}

TEST(SuspendedApp, verifiedLivePIDs)
{
    struct Case {
        const char* name;
        SuspendedApp entry;
        std::vector<std::int32_t> expected;
    };
    const Case cases[] = {
        {"both as recorded", {"P", {502, 501}, {"B", "A"}, 0, {}}, {502, 501}},
        {"one start for two: the second goes by life alone", {"P", {501, 502}, {"A"}, 0, {}}, {501, 502}},
        {"an older file without starts", {"P", {501, 502, 700}, {}, 0, {}}, {501, 502}},
        {"an empty start", {"P", {501}, {""}, 0, {}}, {501}},
        {"a stranger has the id", {"P", {501, 502}, {"Z", "B"}, 0, {}}, {502}},
        {"ended", {"P", {700}, {"C"}, 0, {}}, {}},
        {"no processes at all", {"P", {0, -1, -501}, {"", "", ""}, 0, {}}, {}},
        {"another user's process is alive", {"P", {600}, {"D"}, 0, {}}, {600}},
    };
    ScriptedHost world;
    world.process(501, {.start = "A"});
    world.process(502, {.start = "B"});
    world.process(600, {.start = "D", .denied = true});
    world.process(700, {.start = "C", .alive = false});
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::int32_t> pids;
        for (const auto& each : c.entry.verifiedLivePIDs(world.host())) pids.push_back(each->pid());
        EXPECT_EQ(pids, c.expected);
    }
    world.tool(ToolRole::startTime).fails();
    EXPECT_TRUE(player.verifiedLivePIDs(world.host()).empty());
}

TEST(SuspendedApp, file)
{
    EXPECT_EQ(encode(std::vector{player}),
              R"([{"app":"Player","at":795261600.25,"bytes":1048576,"pids":[501,502],"starts":["A","B"]}])");
    EXPECT_EQ(encode(SuspendedApp{}), R"({"app":"","at":0.0,"bytes":0,"pids":[],"starts":[]})");

    struct Case {
        const char* name;
        const char* text;
        std::optional<SuspendedApp> expected;
    };
    const Case cases[] = {
        {"whole", R"({"app":"Player","pids":[501,502],"starts":["A","B"],"bytes":1048576,"at":795261600.25})", player},
        {"no starts", R"({"app":"P","pids":[5],"bytes":1,"at":0})", SuspendedApp{"P", {5}, {}, 1, {}}},
        {"no app", R"({"pids":[5],"bytes":1,"at":0})", std::nullopt},
        {"no processes", R"({"app":"P","bytes":1,"at":0})", std::nullopt},
        {"no bytes", R"({"app":"P","pids":[5],"at":0})", std::nullopt},
        {"no date", R"({"app":"P","pids":[5],"bytes":1})", std::nullopt},
        {"a process id beyond 32 bits", R"({"app":"P","pids":[2147483648],"bytes":1,"at":0})", std::nullopt},
        {"negative bytes", R"({"app":"P","pids":[5],"bytes":-1,"at":0})", std::nullopt},
        {"bytes beyond 64 bits", R"({"app":"P","pids":[5],"bytes":18446744073709551616,"at":0})", std::nullopt},
        {"starts that are no texts", R"({"app":"P","pids":[5],"starts":[1],"bytes":1,"at":0})", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decode<SuspendedApp>(c.text), c.expected);
    }
}

} // namespace
} // namespace quellon
