#include "QuellonCore/Knowledge/AppExplanation.h"
#include "QuellonCore/Support/Json.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {
namespace {

using Category = AppExplanation::Category;
using LimitAdvice = AppExplanation::LimitAdvice;
using Confidence = AppExplanation::Confidence;
using Source = AppExplanation::Source;

template <typename Enum>
struct Row {
    Enum value;
    std::string_view raw;
    std::optional<std::string_view> label; ///< Absent where nobody reads it.
};

/// Walks the enumeration's table beside the expected one.
template <typename Enum, std::size_t N>
void expectTable(const Row<Enum> (&expected)[N])
{
    const auto& table = enumTable(Enum{});
    ASSERT_EQ(table.rows.size(), N);
    for (std::size_t i = 0; i < N; ++i) {
        SCOPED_TRACE(expected[i].raw);
        EXPECT_EQ(table.rows[i].value, expected[i].value);
        EXPECT_EQ(table.rows[i].raw, expected[i].raw);
        if (expected[i].label) { EXPECT_EQ(table.rows[i].label, *expected[i].label); }
    }
}

TEST(AppExplanation, categories)
{
    constexpr Row<Category> rows[] = {
        {Category::browser, "browser", "Browser"},
        {Category::messaging, "messaging", "Messaging"},
        {Category::media, "media", "Media"},
        {Category::cloudSync, "cloud-sync", "Cloud sync"},
        {Category::updater, "updater", "Updater"},
        {Category::devTool, "dev-tool", "Developer tool"},
        {Category::system, "system", "System"},
        {Category::security, "security", "Security"},
        {Category::vpnProxy, "vpn-proxy", "VPN / proxy"},
        {Category::game, "game", "Games"},
        {Category::productivity, "productivity", "Productivity"},
        {Category::ai, "ai", "AI"},
        {Category::other, "other", "Other"},
    };
    expectTable(rows);
}

TEST(AppExplanation, limitAdvices)
{
    constexpr Row<LimitAdvice> rows[] = {
        {LimitAdvice::safe, "safe", "Safe to limit"},
        {LimitAdvice::caution, "caution", "Limiting pauses sync or notifications"},
        {LimitAdvice::avoid, "avoid", "Avoid limiting"},
    };
    expectTable(rows);
}

TEST(AppExplanation, confidencesAndSources)
{
    constexpr Row<Confidence> confidences[] = {
        {Confidence::reviewed, "reviewed", std::nullopt},
        {Confidence::generated, "generated", std::nullopt},
    };
    constexpr Row<Source> sources[] = {
        {Source::pack, "pack", std::nullopt},
        {Source::cloud, "cloud", std::nullopt},
    };
    expectTable(confidences);
    expectTable(sources);
}

const AppExplanation whole{.whatItIs = "A radio.",
                           .whyTraffic = "Streams 1 MB per minute — “all day”.",
                           .category = Category::media,
                           .vendor = "Radio makers",
                           .limitAdvice = LimitAdvice::avoid,
                           .limitNote = "The music stops.",
                           .confidence = Confidence::reviewed,
                           .source = Source::cloud};
constexpr const char* wholeText = R"({"category":"media","confidence":"reviewed","limitAdvice":"avoid",)"
                                  R"("limitNote":"The music stops.","source":"cloud","vendor":"Radio makers",)"
                                  R"("whatItIs":"A radio.","whyTraffic":"Streams 1 MB per minute — “all day”."})";

TEST(AppExplanation, reads)
{
    AppExplanation unknownSource;
    unknownSource.source = Source::cloud;
    struct Case {
        const char* name;
        std::string text;
        std::optional<AppExplanation> expected;
    };
    const Case cases[] = {
        {"an object without keys", "{}", AppExplanation{}},
        {"unknown raw values", R"({"source":"x","category":"x","limitAdvice":"x","confidence":"x"})", unknownSource},
        {"raw values in another case", R"({"source":"Pack","category":"AI","limitAdvice":"Safe"})", unknownSource},
        {"the name of a case is no raw value", R"({"category":"cloudSync"})", AppExplanation{}},
        {"unknown keys", R"({"recognized":true,"rows":[1]})", AppExplanation{}},
        {"null counts as missing", R"({"source":null,"vendor":null,"whatItIs":null})", AppExplanation{}},
        {"all keys", wholeText, whole},
        {"whatItIs is a number", R"({"whatItIs":1})", std::nullopt},
        {"whyTraffic is an array", R"({"whyTraffic":[]})", std::nullopt},
        {"category is a number", R"({"category":0})", std::nullopt},
        {"vendor is false", R"({"vendor":false})", std::nullopt},
        {"limitAdvice is an object", R"({"limitAdvice":{}})", std::nullopt},
        {"limitNote is a number", R"({"limitNote":1.5})", std::nullopt},
        {"confidence is true", R"({"confidence":true})", std::nullopt},
        {"source is an array", R"({"source":["pack"]})", std::nullopt},
        {"one wrong type among right ones", R"({"whatItIs":"A radio.","source":1})", std::nullopt},
        {"an array", "[]", std::nullopt},
        {"a text", "\"A radio.\"", std::nullopt},
        {"null", "null", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decodeJson<AppExplanation>(c.text), c.expected);
    }
}

TEST(AppExplanation, defaults)
{
    const AppExplanation record;
    EXPECT_EQ(record.whatItIs, "");
    EXPECT_EQ(record.whyTraffic, "");
    EXPECT_EQ(record.category, Category::other);
    EXPECT_EQ(record.vendor, std::nullopt);
    EXPECT_EQ(record.limitAdvice, LimitAdvice::caution);
    EXPECT_EQ(record.limitNote, std::nullopt);
    EXPECT_EQ(record.confidence, Confidence::generated);
    EXPECT_EQ(record.source, Source::pack);
}

TEST(AppExplanation, writes)
{
    EXPECT_EQ(encodeJson(whole), wholeText);
    EXPECT_EQ(encodeJson(AppExplanation{}), R"({"category":"other","confidence":"generated","limitAdvice":"caution",)"
                                            R"("source":"pack","whatItIs":"","whyTraffic":""})")
        << "no vendor and no limitNote";
}

} // namespace
} // namespace quellon
