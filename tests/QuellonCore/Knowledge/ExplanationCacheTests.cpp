#include "QuellonCore/Knowledge/ExplanationCache.h"

#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Persistence/StateFile.h"
#include "ScriptedHost.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

Date at(double seconds)
{
    return Date{Seconds{seconds}};
}

AppExplanation explained(const std::string& whatItIs)
{
    AppExplanation result;
    result.whatItIs = whatItIs;
    return result;
}

TEST(ExplanationCache, answersForTheExactName)
{
    ExplanationCache cache;
    cache.store(explained("x"), "Sync", at(1));
    EXPECT_EQ(cache.explanation("Sync"), explained("x"));
    EXPECT_EQ(cache.explanation("sync"), std::nullopt);
    EXPECT_EQ(cache.explanation(""), std::nullopt);
}

TEST(ExplanationCache, aLaterAnswerReplacesTheEarlierOne)
{
    ExplanationCache cache;
    cache.store(explained("old"), "Sync", at(1));
    cache.store(explained("new"), "Sync", at(2));
    EXPECT_EQ(cache.entries, (decltype(cache.entries){{"Sync", {explained("new"), at(2)}}}));
}

TEST(ExplanationCache, the201stNameEvictsTheOldest)
{
    ExplanationCache cache;
    for (int i = 0; i < 200; ++i) cache.store(explained("x"), fmt::format("app {}", i), at(1000 - i));
    EXPECT_EQ(cache.entries.size(), 200U);
    cache.store(explained("x"), "one more", at(2000));
    EXPECT_EQ(cache.entries.size(), 200U);
    EXPECT_FALSE(cache.explanation("app 199")) << "fetched first";
    EXPECT_TRUE(cache.explanation("app 198"));
    EXPECT_TRUE(cache.explanation("one more"));
}

TEST(ExplanationCache, ofEqualDatesTheFirstNameGoes)
{
    ExplanationCache cache;
    for (int i = 0; i < 200; ++i) cache.store(explained("x"), fmt::format("app {:03}", i), at(1));
    cache.store(explained("x"), "zzz", at(1));
    EXPECT_FALSE(cache.explanation("app 000"));
    EXPECT_TRUE(cache.explanation("app 001"));
}

TEST(ExplanationCache, anAnswerFromThePastCanBeTheOneThatGoes)
{
    ExplanationCache cache;
    for (int i = 0; i < 200; ++i) cache.store(explained("x"), fmt::format("app {}", i), at(100));
    cache.store(explained("x"), "late", at(1));
    EXPECT_EQ(cache.entries.size(), 200U);
    EXPECT_FALSE(cache.explanation("late"));
}

TEST(ExplanationCache, asManyAnswersAsAreKeptCanBeReadBackHoweverLongTheyAre)
{
    constexpr std::size_t longestReply = 65'536;
    ScriptedHost host;
    const Persistence persistence{host.host()};
    ExplanationCache cache;
    for (int i = 0; i < 200; ++i) {
        cache.store(explained(std::string(longestReply, 'x')), fmt::format("app {}", i), at(i));
    }
    persistence.save(cache, Persistence::explanationsFile);
    EXPECT_EQ(persistence.load<ExplanationCache>(Persistence::explanationsFile), cache);
}

TEST(ExplanationCache, read)
{
    struct Case {
        const char* name;
        const char* text;
        std::optional<ExplanationCache> cache;
    };
    const Case cases[] = {
        {"an entry", R"({"entries":{"Sync":{"explanation":{"whatItIs":"x"},"fetchedAt":5}}})",
         ExplanationCache{{{"Sync", {explained("x"), at(5)}}}}},
        {"no entries", R"({"entries":{}})", ExplanationCache{}},
        {"no key for entries", "{}", ExplanationCache{}},
        {"an entry without an explanation", R"({"entries":{"Sync":{"fetchedAt":5}}})", {}},
        {"an entry without a date", R"({"entries":{"Sync":{"explanation":{}}}})", {}},
        {"a date that is a text", R"({"entries":{"Sync":{"explanation":{},"fetchedAt":"5"}}})", {}},
        {"an explanation of a wrong type", R"({"entries":{"Sync":{"explanation":{"whatItIs":5},"fetchedAt":5}}})", {}},
        {"entries that are an array", R"({"entries":[]})", {}},
        {"an array", "[]", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decode<ExplanationCache>(c.text), c.cache);
    }
}

} // namespace
} // namespace quellon
