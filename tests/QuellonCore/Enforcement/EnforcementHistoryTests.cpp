#include "QuellonCore/Enforcement/EnforcementHistory.h"

#include "QuellonCore/Persistence/StateFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace quellon {
namespace {

using Kind = EnforcementHistory::Kind;
using Record = EnforcementHistory::Record;

constexpr Date now{Seconds{800'000'000.0}};
constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();

Record record(Seconds age, std::uint64_t bytes, std::optional<Kind> kind, std::string app = "app")
{
    return {std::move(app), now - age, bytes, std::nullopt, std::nullopt, std::nullopt, kind};
}

TEST(EnforcementHistory, kindTexts)
{
    ASSERT_EQ(EnforcementHistory::kinds.rows.size(), 2U);
    EXPECT_EQ(EnforcementHistory::kinds.rows[0].value, Kind::enforced);
    EXPECT_EQ(EnforcementHistory::kinds.rows[0].raw, "enforced");
    EXPECT_EQ(EnforcementHistory::kinds.rows[1].value, Kind::asked);
    EXPECT_EQ(EnforcementHistory::kinds.rows[1].raw, "asked");
}

TEST(EnforcementHistory, emptyHistory)
{
    const EnforcementHistory history;
    EXPECT_EQ(history.count("app", now), 0U);
    EXPECT_EQ(history.wastedBytes("app", now), 0U);
    EXPECT_EQ(history.askCount("app", now), 0U);
    EXPECT_EQ(history.askCount("app", now, Seconds{60.0}), 0U);
    EXPECT_EQ(history.askedBytes("app", now), 0U);
    EXPECT_EQ(history.lastRecord("app", now), std::nullopt);
    EXPECT_FALSE(history.isRepeatOffender("app", now));
    EXPECT_TRUE(history.shouldSendNotice("app", now));
}

TEST(EnforcementHistory, queries)
{
    struct Case {
        const char* name;
        std::vector<Record> records;
        std::size_t count;
        std::uint64_t wasted;
        std::size_t asks;
        std::uint64_t asked;
    };
    const Seconds edge{21'600.0};
    const Seconds beyond{21'600.001};
    const Case cases[] = {
        {"without a kind", {record(Seconds{5}, 3, std::nullopt)}, 1, 3, 0, 0},
        {"enforced", {record(Seconds{5}, 3, Kind::enforced)}, 1, 3, 0, 0},
        {"asked", {record(Seconds{5}, 3, Kind::asked)}, 0, 0, 1, 3},
        {"both", {record(Seconds{5}, 3, Kind::asked), record(Seconds{4}, 4, Kind::enforced)}, 1, 4, 1, 3},
        {"of nothing", {record(Seconds{5}, 0, Kind::enforced), record(Seconds{4}, 0, Kind::asked)}, 1, 0, 1, 0},
        {"at the edge", {record(edge, 3, Kind::enforced), record(edge, 4, Kind::asked)}, 1, 3, 1, 4},
        {"a millisecond beyond", {record(beyond, 3, Kind::enforced), record(beyond, 4, Kind::asked)}, 0, 0, 0, 0},
        {"ahead of now", {record(Seconds{-60}, 3, Kind::enforced)}, 1, 3, 0, 0},
        {"another application", {record(Seconds{5}, 3, Kind::enforced, "App")}, 0, 0, 0, 0},
        {"sums", {record(Seconds{5}, most - 1, std::nullopt), record(Seconds{4}, 1, Kind::enforced)}, 2, most, 0, 0},
        {"old ones in a sum", {record(beyond, most, Kind::enforced), record(edge, 2, Kind::enforced)}, 1, 2, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const EnforcementHistory history{c.records, {}};
        EXPECT_EQ(history.count("app", now), c.count);
        EXPECT_EQ(history.wastedBytes("app", now), c.wasted);
        EXPECT_EQ(history.askCount("app", now), c.asks);
        EXPECT_EQ(history.askedBytes("app", now), c.asked);
        EXPECT_EQ(history.isRepeatOffender("app", now), c.count > 1);
        EXPECT_EQ(history.lastRecord("app", now).has_value(), c.count > 0);
        EXPECT_EQ(history.records, c.records) << "a query prunes nothing";
    }
}

TEST(EnforcementHistory, overflowingSumEndsTheProgram)
{
    const EnforcementHistory history{{record(Seconds{5}, most, Kind::enforced), record(Seconds{4}, 1, Kind::enforced)},
                                     {}};
    EXPECT_EXIT((void)history.wastedBytes("app", now), testing::ExitedWithCode(70), "fatal: ");
}

TEST(EnforcementHistory, askCountWithin)
{
    const EnforcementHistory history{{record(Seconds{30'000}, 1, Kind::asked), record(Seconds{21'600}, 1, Kind::asked),
                                      record(Seconds{600}, 1, Kind::asked), record(Seconds{10}, 1, Kind::enforced),
                                      record(Seconds{5}, 1, Kind::asked)},
                                     {}};
    struct Case {
        const char* name;
        double within;
        std::size_t count;
    };
    constexpr Case cases[] = {
        {"nothing", 0.0, 0},      {"the last one", 5.0, 1},    {"before the second", 599.9, 1},
        {"the second", 600.0, 2}, {"the window", 21'600.0, 3}, {"beyond the window", 90'000.0, 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(history.askCount("app", now, Seconds{c.within}), c.count);
    }
    EXPECT_EQ(history.askCount("app", now), 3U);
}

TEST(EnforcementHistory, lastRecordIsTheLastInOrderNotInTime)
{
    const EnforcementHistory history{{record(Seconds{5}, 1, Kind::enforced), record(Seconds{50}, 2, std::nullopt),
                                      record(Seconds{1}, 3, Kind::asked), record(Seconds{1}, 4, Kind::enforced, "b"),
                                      record(Seconds{21'601}, 5, Kind::enforced)},
                                     {}};
    EXPECT_EQ(history.lastRecord("app", now), history.records[1]);
}

TEST(EnforcementHistory, shouldSendNotice)
{
    EnforcementHistory history;
    history.markNoticed("app", now);
    struct Case {
        const char* name;
        double later;
        bool should;
    };
    constexpr Case cases[] = {
        {"at once", 0.0, false},     {"a clock set back", -100.0, false}, {"just before the hour", 3'599.9, false},
        {"the hour", 3'600.0, true}, {"long after", 90'000.0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(history.shouldSendNotice("app", now + Seconds{c.later}), c.should);
    }
    EXPECT_TRUE(history.shouldSendNotice("other", now));
    history.markNoticed("app", now + Seconds{3'600.0});
    EXPECT_FALSE(history.shouldSendNotice("app", now + Seconds{3'600.0})) << "the later notice counts";
}

TEST(EnforcementHistory, recordAppends)
{
    EnforcementHistory history;
    history.record("a", 7, now, EnforcementAction::kill, "10 MB / 1min", true, Kind::enforced);
    history.record("b", 8, now + Seconds{1.0}, std::nullopt, std::nullopt, false, Kind::asked);
    const std::vector<Record> expected{
        {"a", now, 7, EnforcementAction::kill, "10 MB / 1min", true, Kind::enforced},
        {"b", now + Seconds{1.0}, 8, std::nullopt, std::nullopt, std::nullopt, Kind::asked},
    };
    EXPECT_EQ(history.records, expected);
}

TEST(EnforcementHistory, recordWritesNoLoopBreakerOfFalse)
{
    EnforcementHistory history;
    history.record("a", 7, now, EnforcementAction::kill, "x", false, Kind::enforced);
    EXPECT_EQ(encode(history).find("loopBreaker"), std::string::npos);
    history.record("a", 7, now, EnforcementAction::kill, "x", true, Kind::enforced);
    EXPECT_NE(encode(history).find(R"("loopBreaker":true)"), std::string::npos);
}

TEST(EnforcementHistory, recordPrunes)
{
    EnforcementHistory history{{record(Seconds{21'600.001}, 1, Kind::enforced),
                                record(Seconds{21'600}, 2, Kind::enforced, "z"),
                                record(Seconds{30'000}, 3, Kind::asked), record(Seconds{5}, 4, Kind::asked)},
                               {{"edge", now - Seconds{3'600.0}}, {"old", now - Seconds{3'600.1}}, {"new", now}}};
    history.record("a", 7, now, std::nullopt, std::nullopt, false, Kind::asked);
    EXPECT_EQ(history.records,
              (std::vector<Record>{record(Seconds{21'600}, 2, Kind::enforced, "z"), record(Seconds{5}, 4, Kind::asked),
                                   record(Seconds{0}, 7, Kind::asked, "a")}));
    EXPECT_EQ(history.lastNoticeAt, (decltype(history.lastNoticeAt){{"edge", now - Seconds{3'600.0}}, {"new", now}}));
    EXPECT_TRUE(history.shouldSendNotice("old", now));
}

TEST(EnforcementHistory, actionAfterLoopBreaker)
{
    struct Case {
        const char* name;
        EnforcementAction intended;
        std::size_t count;
        EnforcementAction action;
    };
    using enum EnforcementAction;
    constexpr Case cases[] = {
        {"the first quit", terminate, 0, terminate},
        {"one earlier", terminate, 1, terminate},
        {"two earlier", terminate, 2, suspend},
        {"many earlier", terminate, 50, suspend},
        {"the first force-quit", kill, 0, kill},
        {"one earlier force-quit", kill, 1, kill},
        {"two earlier force-quits", kill, 2, suspend},
        {"a freeze stays", suspend, 2, suspend},
        {"a warning stays", warn, 2, warn},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(EnforcementHistory::actionAfterLoopBreaker(c.intended, c.count), c.action);
    }
}

TEST(EnforcementHistory, loopEndsAfterSixQuietHours)
{
    EnforcementHistory history;
    for (const double age : {120.0, 60.0}) {
        history.record("app", 1, now - Seconds{age}, EnforcementAction::kill, std::nullopt, false, Kind::enforced);
        history.record("app", 1, now - Seconds{age}, std::nullopt, std::nullopt, false, Kind::asked);
    }
    EXPECT_TRUE(history.isRepeatOffender("app", now));
    EXPECT_TRUE(decode<EnforcementHistory>(encode(history))->isRepeatOffender("app", now)) << "outlives the process";
    EXPECT_FALSE(history.isRepeatOffender("app", now + Seconds{21'500.0})) << "the first one has left the window";
}

TEST(EnforcementHistory, fromJson)
{
    struct Case {
        const char* name;
        const char* text;
        std::optional<EnforcementHistory> history;
    };
    const Date at{Seconds{5.25}};
    const Case cases[] = {
        {"empty object", "{}", EnforcementHistory{}},
        {"null for both", R"({"records":null,"lastNoticeAt":null})", EnforcementHistory{}},
        {"unknown keys", R"({"x":[1]})", EnforcementHistory{}},
        {"the shortest record", R"({"records":[{"app":"a","at":5.25,"bytes":7}]})",
         EnforcementHistory{{{"a", at, 7, {}, {}, {}, {}}}, {}}},
        {"a whole record",
         R"({"records":[{"app":"a","at":5.25,"bytes":7,"action":"kill","ruleLabel":"r","loopBreaker":true,)"
         R"("kind":"asked"}],"lastNoticeAt":{"a":5.25}})",
         EnforcementHistory{{{"a", at, 7, EnforcementAction::kill, "r", true, Kind::asked}}, {{"a", at}}}},
        {"no app", R"({"records":[{"at":5.25,"bytes":7}]})", std::nullopt},
        {"no date", R"({"records":[{"app":"a","bytes":7}]})", std::nullopt},
        {"no bytes", R"({"records":[{"app":"a","at":5.25}]})", std::nullopt},
        {"one bad record of two", R"({"records":[{"app":"a","at":5.25,"bytes":7},{}]})", std::nullopt},
        {"unknown action", R"({"records":[{"app":"a","at":5.25,"bytes":7,"action":"pause"}]})", std::nullopt},
        {"unknown kind", R"({"records":[{"app":"a","at":5.25,"bytes":7,"kind":"told"}]})", std::nullopt},
        {"negative bytes", R"({"records":[{"app":"a","at":5.25,"bytes":-1}]})", std::nullopt},
        {"2^64 bytes", R"({"records":[{"app":"a","at":5.25,"bytes":18446744073709551616}]})", std::nullopt},
        {"a notice that is no date", R"({"lastNoticeAt":{"a":"x"}})", std::nullopt},
        {"as many bytes as a file may hold",
         R"({"records":[{"app":"a","at":5.25,"bytes":4611686018427387902},)"
         R"({"app":"a","at":5.25,"bytes":1,"kind":"asked"},{"app":"b","at":5.25,"bytes":1}]})",
         EnforcementHistory{{{"a", at, 4'611'686'018'427'387'902, {}, {}, {}, {}},
                             {"a", at, 1, {}, {}, {}, Kind::asked},
                             {"b", at, 1, {}, {}, {}, {}}},
                            {}}},
        {"one byte more of the same application",
         R"({"records":[{"app":"a","at":5,"bytes":4611686018427387904},{"app":"a","at":6,"bytes":1}]})", std::nullopt},
        {"one byte more of another application",
         R"({"records":[{"app":"a","at":5,"bytes":4611686018427387904},{"app":"b","at":6,"bytes":1}]})", std::nullopt},
        {"one byte more of another kind",
         R"({"records":[{"app":"a","at":5,"bytes":4611686018427387904,"kind":"asked"},{"app":"a","at":6,"bytes":1}]})",
         std::nullopt},
        {"a sum of 2^64",
         R"({"records":[{"app":"a","at":5,"bytes":18446744073709551615},{"app":"a","at":6,"bytes":1}]})", std::nullopt},
        {"an array", "[]", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decode<EnforcementHistory>(c.text), c.history);
    }
}

TEST(EnforcementHistory, writesBothKeysAlways)
{
    EXPECT_EQ(encode(EnforcementHistory{}), R"({"lastNoticeAt":{},"records":[]})");
    EXPECT_EQ(encode(EnforcementHistory{{{"a", Date{Seconds{5.25}}, 7, {}, {}, {}, {}}}, {}}),
              R"({"lastNoticeAt":{},"records":[{"app":"a","at":5.25,"bytes":7}]})");
}

TEST(EnforcementHistory, encodesAndDecodesToItself)
{
    std::mt19937_64 random{42};
    const auto label = [&random] { return "app" + std::to_string(random() % 5); };
    const auto date = [&random] { return now + Seconds{static_cast<double>(random() % 100'000) / 7.0}; };
    for (int round = 0; round < 50; ++round) {
        EnforcementHistory history;
        for (std::uint64_t left = random() % 10; left > 0; --left) {
            std::optional<EnforcementAction> action;
            if (random() % 2 == 0) action = enforcementActions.rows.at(random() % 4).value;
            std::optional<std::string> ruleLabel;
            if (random() % 2 == 0) ruleLabel = label();
            history.record(label(), random() >> 8U, date(), action, ruleLabel, random() % 2 == 0,
                           EnforcementHistory::kinds.rows.at(random() % 2).value);
            if (random() % 2 == 0) history.records.back().kind.reset();
            if (random() % 2 == 0) history.markNoticed(label(), date());
        }
        EXPECT_EQ(decode<EnforcementHistory>(encode(history)), history);
    }
}

} // namespace
} // namespace quellon
