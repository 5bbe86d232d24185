#include "QuellonCore/Diagnostics/StoreRedaction.h"

#include "QuellonCore/Diagnostics/RedactedOutline.h"
#include "QuellonCore/Persistence/StateRecords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using StoreRedaction::Refusal;
using Shape = RedactedString::Shape;

RedactedJSON redactOf(std::string_view text)
{
    return StoreRedaction::redact(parseJson(text).value());
}

/// The lines of what is left of a text, read the one way and the other.
std::string outline(const std::string& text)
{
    const auto read = StoreRedaction::redactText(text);
    if (const auto* refusal = std::get_if<Refusal>(&read)) return std::string{StoreRedaction::words(*refusal)};
    return RedactedOutline::text(std::get<RedactedJSON>(read));
}

TEST(StoreRedaction, structuralKeysAreThoseOfAllStateFiles)
{
    const auto& keys = StoreRedaction::structuralKeys();
    EXPECT_EQ(keys.size(), 67U);
    for (const char* key : {"profiles", "lastProfileByInterface", "starts", "pids", "explanation", "id", "at"}) {
        EXPECT_TRUE(keys.contains(std::string_view{key})) << key;
    }
    for (const char* key : {"settings", "x", "y", "Profiles", "", "other", "Player"}) {
        EXPECT_FALSE(keys.contains(std::string_view{key})) << key;
    }
}

TEST(StoreRedaction, allowedValuesAreTheRawTextsOfTheEnumerations)
{
    const StoreRedaction::Texts expected{"global",    "never",      "always",   // what is done about an application
                                         "unasked",   "granted",    "denied",   // a consent
                                         "light",     "developer",  "heavy",    // what a plan is used for
                                         "both",      "incoming",   "outgoing", // what counts
                                         "warn",      "suspend",    "terminate",    "kill", // ways to step in
                                         "highlight", "notify",     "ask",          "enforce",   "browser", "messaging",
                                         "media",     "cloud-sync", "updater",      "dev-tool",  "system",  "security",
                                         "vpn-proxy", "game",       "productivity", "ai",        "other",   "safe",
                                         "caution",   "avoid",      "reviewed",     "generated", "pack",    "cloud",
                                         "enforced",  "asked"};
    EXPECT_EQ(StoreRedaction::allowedValues(), expected);
}

TEST(StoreRedaction, shape)
{
    struct Case {
        const char* name;
        std::string_view text;
        Shape shape;
    };
    constexpr Case cases[] = {
        {"identifier", "6F9619FF-8B86-4D01-B42D-00CF4FC964FF", Shape::uuid},
        {"identifier in lower case", "6f9619ff-8b86-4d01-b42d-00cf4fc964ff", Shape::uuid},
        {"nearly an identifier", "6F9619FF-8B86-4D01-B42D-00CF4FC964FG", Shape::other},
        {"identifier in braces", "{6F9619FF-8B86-4D01-B42D-00CF4FC964FF}", Shape::other},
        {"moment", "2026-08-09T12:34:56Z", Shape::timestamp},
        {"moment of a zone", "2026-08-09T12:34:56+05:30", Shape::timestamp},
        {"moment of a western zone", "2026-08-09T23:59:59-11:00", Shape::timestamp},
        {"leap day", "2024-02-29T00:00:00Z", Shape::timestamp},
        {"no leap day", "2026-02-29T00:00:00Z", Shape::other},
        {"moment without a zone", "2026-08-09T12:34:56", Shape::other},
        {"moment with a fraction", "2026-08-09T12:34:56.5Z", Shape::other},
        {"moment with something behind", "2026-08-09T12:34:56Z Anna", Shape::other},
        {"moment with a name for a zone", "2026-08-09T12:34:56+Anna", Shape::other},
        {"hour 24", "2026-08-09T24:00:00Z", Shape::other},
        {"second 60", "2026-08-09T12:34:60Z", Shape::other},
        {"zone of 24 hours", "2026-08-09T12:34:56+24:00", Shape::other},
        {"month 13", "2026-13-09T12:34:56Z", Shape::other},
        {"a blank for the T", "2026-08-09 12:34:56Z", Shape::other},
        {"day", "2026-08-09", Shape::timestamp},
        {"no day of any calendar", "2026-99-99", Shape::timestamp},
        {"other lengths", "2026-1-234", Shape::timestamp},
        {"digits of another script", "٢٠٢٦-٠٨-٠٩", Shape::timestamp},
        {"a letter at the end", "2026-8-09x", Shape::other},
        {"nine characters", "2026-8-09", Shape::other},
        {"eleven characters", "2026-08-099", Shape::other},
        {"a year of three", "202-608-09", Shape::other},
        {"a year of five", "20260-8-09", Shape::other},
        {"an empty month", "2026--0809", Shape::other},
        {"an empty day", "2026-0809-", Shape::other},
        {"four parts", "2026-8-9-1", Shape::other},
        {"two parts", "2026-08090", Shape::other},
        {"a sign", "2026-+8-09", Shape::other},
        {"ten bytes, fewer characters", "2026-é-08", Shape::other},
        {"path", "/home/anna", Shape::path},
        {"root", "/", Shape::path},
        {"path from home", "~/x", Shape::path},
        {"home", "~", Shape::other},
        {"somebody's home", "~anna/x", Shape::other},
        {"relative path", "home/anna", Shape::other},
        {"free text", "Player", Shape::other},
        {"nothing", "", Shape::other},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(StoreRedaction::shape(c.text), c.shape);
    }
}

TEST(StoreRedaction, values)
{
    struct Case {
        const char* name;
        const char* text;
        const char* outline;
    };
    const Case cases[] = {
        {"null", "null", "null\n"},
        {"true", "true", "true\n"},
        {"false", "false", "false\n"},
        {"whole", "50", "50\n"},
        {"negative", "-52428800", "-52428800\n"},
        {"the largest whole one", "18446744073709551615", "18446744073709551615\n"},
        {"beyond 64 bits", "123456789012345678901234567890", "123456789012345678901234567890\n"},
        {"with a point", "5.0", "5.0\n"},
        {"with many digits", "795261600.250000001", "795261600.250000001\n"},
        {"with an exponent", "1e3", "1e3\n"},
        {"with a signed exponent", "-1.50E-07", "-1.50E-07\n"},
        {"zero with a minus and a point", "-0.0", "-0.0\n"},
        {"an own word", "\"suspend\"", "suspend\n"},
        {"a word that another enumeration has", "\"other\"", "other\n"},
        {"an own word in another letter case", "\"Suspend\"", "‹other, 7 characters›\n"},
        {"a word with escapes", "\"susp\\u0065nd\"", "suspend\n"},
        {"an identifier", "\"6F9619FF-8B86-4D01-B42D-00CF4FC964FF\"", "6F9619FF-8B86-4D01-B42D-00CF4FC964FF\n"},
        {"a day", "\"2026-08-09\"", "2026-08-09\n"},
        {"no day", "\"2026-8-09x\"", "‹other, 10 characters›\n"},
        {"a path", "\"/home/anna\"", "‹path, 10 characters›\n"},
        {"one character", "\"x\"", "‹other, 1 character›\n"},
        {"no characters", "\"\"", "‹other, no characters›\n"},
        {"characters, not bytes", "\"云盘 é\"", "‹other, 4 characters›\n"},
        {"beyond the first plane", "\"\\ud83d\\udcf6\"", "‹other, 1 character›\n"},
        {"a zero character", "\"a\\u0000b\"", "‹other, 3 characters›\n"},
        {"no items", "[]", "no items\n"},
        {"no fields", "{}", "no fields\n"},
        {"an array", "[1,\"x\"]", "2 items\n  [0]: 1\n  [1]: ‹other, 1 character›\n"},
        {"a byte-order mark", "\xEF\xBB\xBF[]", "no items\n"},
        {"white space", " \n\t[ ]\r\n", "no items\n"},
        {"own keys", R"({"profiles":[{"name":"Home"}]})",
         "1 field\n  profiles: 1 item\n    [0]: 1 field\n      name: ‹other, 4 characters›\n"},
        {"keys that are data", R"({"npm":"always","Mail":"never","/bin/x":1})",
         "3 fields\n  ‹path, 6 characters›: 1\n  ‹other, 4 characters›: never\n  ‹other, 3 characters›: always\n"},
        {"keys that would stay as values", R"({"suspend":1,"2026-08-09":2,"6F9619FF-8B86-4D01-B42D-00CF4FC964FF":3})",
         "3 fields\n  ‹timestamp, 10 characters›: 2\n  ‹uuid, 36 characters›: 3\n  ‹other, 7 characters›: 1\n"},
        {"keys ascend byte by byte", R"({"é":1,"a":2,"Z":3,"at":4})",
         "4 fields\n  ‹other, 1 character›: 3\n  ‹other, 1 character›: 2\n  at: 4\n  ‹other, 1 character›: 1\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(outline(c.text), c.outline);
    }
}

TEST(StoreRedaction, ofDuplicateKeysTheLastOneHolds)
{
    const std::string text = R"({"app":1,"npm":"kill","app":[2],"npm":"warn","app":"ask"})";
    EXPECT_EQ(outline(text), "2 fields\n  app: ask\n  ‹other, 3 characters›: warn\n");
    EXPECT_EQ(RedactedOutline::text(redactOf(text)), outline(text));
}

TEST(StoreRedaction, keysKeepTheirLength)
{
    const RedactedJSON tree = redactOf(R"({"Visual Studio Code":1})");
    const auto& object = std::get<RedactedJSON::Object>(tree.value);
    ASSERT_EQ(object.fields.size(), 1U);
    EXPECT_EQ(object.fields[0].key, RedactedKey::mapped({18, Shape::other}));
    EXPECT_EQ(object.fields[0].key.structuralKey(), nullptr);
    EXPECT_EQ(object.fields[0].value, (RedactedJSON{RedactedJSON::Number{"1"}}));
    EXPECT_EQ(*RedactedKey::structural("app").structuralKey(), "app");
}

std::string nested(std::size_t depth, std::string_view inner = "")
{
    return std::string(depth, '[') + std::string{inner} + std::string(depth, ']');
}

TEST(StoreRedaction, depth)
{
    std::string expected;
    for (std::size_t i = 0; i < 12; ++i) {
        expected += (i == 0 ? "" : std::string(2 * i, ' ') + "[0]: ") + (i == 11 ? "no items\n" : "1 item\n");
    }
    EXPECT_EQ(outline(nested(12)), expected);
    expected.replace(expected.rfind("no items"), 9, "1 item\n" + std::string(24, ' ') + "[0]: …\n");
    for (const auto& text : {nested(13), nested(12, "\"Player\""), nested(12, "7"), nested(100), nested(128),
                             nested(12, R"({"a":[{"b":[]},[]]})")}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(outline(text), expected);
        EXPECT_EQ(RedactedOutline::text(redactOf(text)), expected);
    }
    EXPECT_THAT(outline(nested(12, "1,[2],{\"x\":3}")),
                testing::EndsWith("[0]: …\n" + std::string(24, ' ') + "[1]: …\n" + std::string(24, ' ') + "[2]: …\n"));
}

TEST(StoreRedaction, depthBeginsWhereItIsTold)
{
    const RedactedJSON cut{RedactedJSON::TooDeep{}};
    EXPECT_EQ(StoreRedaction::redact(Json(1), 11), (RedactedJSON{RedactedJSON::Number{"1"}}));
    EXPECT_EQ(StoreRedaction::redact(Json(1), 12), cut);
    EXPECT_EQ(StoreRedaction::redact(Json(), 99), cut);
    EXPECT_EQ(StoreRedaction::redact(Json::array({1}), 11), (RedactedJSON{RedactedJSON::Array{1, {cut}}}));
}

TEST(StoreRedaction, valuesThatJsonDoesNotKnow)
{
    EXPECT_EQ(StoreRedaction::redact(Json::binary({1, 2})), (RedactedJSON{RedactedString{0, Shape::other}}));
    EXPECT_EQ(StoreRedaction::redact(Json(Json::value_t::discarded)), (RedactedJSON{RedactedString{0, Shape::other}}));
}

TEST(StoreRedaction, refusals)
{
    struct Case {
        const char* name;
        std::string text;
        Refusal refusal;
    };
    const Case cases[] = {
        {"nothing", "", Refusal::notJson},
        {"no JSON", "hello", Refusal::notJson},
        {"cut short", R"({"app":"Pla)", Refusal::notJson},
        {"something behind", "[] []", Refusal::notJson},
        {"a trailing comma", "[1,]", Refusal::notJson},
        {"a comment", "[] // x", Refusal::notJson},
        {"not a number", "[NaN]", Refusal::notJson},
        {"a number beyond all", "[1e999]", Refusal::notJson},
        {"not UTF-8", "[\"\xFF\"]", Refusal::notJson},
        {"not UTF-8 in a key", "{\"\xC3\":1}", Refusal::notJson},
        {"half a pair", R"(["\ud83d"])", Refusal::notJson},
        {"a zero byte", std::string("[]\0", 3), Refusal::notJson},
        {"too deep", nested(129), Refusal::nestsTooDeep},
        {"too deep in objects",
         [] {
             std::string text;
             for (int i = 0; i < 129; ++i) text += "{\"app\":";
             return text + "1" + std::string(129, '}');
         }(),
         Refusal::nestsTooDeep},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto read = StoreRedaction::redactText(c.text);
        ASSERT_TRUE(std::holds_alternative<Refusal>(read));
        EXPECT_EQ(std::get<Refusal>(read), c.refusal);
    }
    EXPECT_EQ(StoreRedaction::words(Refusal::notJson), "is not a JSON text");
    EXPECT_EQ(StoreRedaction::words(Refusal::nestsTooDeep), "nests deeper than 128 levels");
    EXPECT_EQ(StoreRedaction::words(Refusal::tooManyValues), "holds more than 4,000,000 values");
}

TEST(StoreRedaction, aTextOfAHundredThousandLevels)
{
    EXPECT_EQ(outline(nested(100'000)), "nests deeper than 128 levels");
    EXPECT_EQ(outline(std::string(100'000, '[')), "nests deeper than 128 levels");
    Json json = Json::array();
    for (int i = 0; i < 2'000; ++i) json = Json::array({std::move(json)});
    EXPECT_THAT(RedactedOutline::text(StoreRedaction::redact(json)), testing::EndsWith("[0]: …\n"));
}

TEST(StoreRedaction, aTextOfMillionsOfValues)
{
    std::string text = "[";
    for (std::size_t i = 0; i < StoreRedaction::mostValues; ++i) text += "1,";
    text.back() = ']';
    EXPECT_EQ(outline(nested(12, text)), "holds more than 4,000,000 values") << "those that are cut count as well";
}

TEST(StoreRedaction, theDocumentedFilesKeepEveryKeyButData)
{
    for (const StateRecord& record : stateRecords) {
        if (record.file == Persistence::windowsFile) continue;
        SCOPED_TRACE(record.file);
        const std::string text = documented(std::string{record.file});
        const std::string shown = outline(text);
        EXPECT_EQ(shown, RedactedOutline::text(redactOf(text)));
        EXPECT_THAT(shown, testing::Not(testing::HasSubstr("Player")));
        const Json json = parseJson(text).value();
        for (const auto& [key, value] : (json.is_array() ? json.front() : json).items()) {
            EXPECT_THAT(shown, testing::HasSubstr(key + ": "));
        }
    }
}

} // namespace
} // namespace quellon
