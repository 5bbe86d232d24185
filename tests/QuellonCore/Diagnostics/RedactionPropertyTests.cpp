#include "../Engine/EngineWorld.h"
#include "QuellonCore/Diagnostics/DebugExport.h"
#include "QuellonCore/Diagnostics/RedactedOutline.h"
#include "QuellonCore/Diagnostics/StoreRedaction.h"
#include "QuellonCore/Persistence/SecretState.h"
#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <regex>

namespace quellon {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Makes JSON values, always the same ones.
class RandomJson {
public:
    explicit RandomJson(unsigned seed) : random_{seed} {}

    Json value(int depth = 0)
    {
        const bool goesOn = depth < 14 && below(8) > 0;
        const std::size_t kind = goesOn ? 6 + below(3) : below(depth > 18 ? 6 : 9);
        if (kind == 0) return {};
        if (kind == 1) return Json(below(2) == 1);
        if (kind == 2) return Json(random_() - 0x8000'0000LL);
        if (kind == 3) return Json(static_cast<double>(random_()) / 997.0);
        if (kind <= 5) return Json(text());
        const std::size_t size = goesOn && below(4) > 0 ? 1 : below(4);
        Json result = kind == 6 ? Json::object() : Json::array();
        for (std::size_t i = 0; i < size; ++i) {
            if (kind == 6)
                result[text()] = value(depth + 1);
            else
                result.push_back(value(depth + 1));
        }
        return result;
    }

private:
    std::mt19937 random_;

    std::size_t below(std::size_t limit) { return random_() % limit; }

    std::string text()
    {
        static const std::vector<std::string> some{"Player",
                                                   "suspend",
                                                   "other",
                                                   "app",
                                                   "profiles",
                                                   "/home/anna",
                                                   "~/x",
                                                   "2026-08-09",
                                                   "2026-08-09T10:00:00Z",
                                                   "6F9619FF-8B86-4D01-B42D-00CF4FC964FF",
                                                   "",
                                                   "云盘",
                                                   "\n\x1B[31m",
                                                   "wlan0",
                                                   "2026-8-09x",
                                                   "anna.example"};
        std::string result = some[below(some.size())];
        if (below(4) == 0) result += some[below(some.size())];
        if (below(8) == 0) result += static_cast<char>(' ' + below(90));
        return result;
    }
};

/// Whether a text may be seen, by a rule of its own.
bool mayStay(const std::string& text)
{
    static const std::regex date{"[0-9]{4}-[0-9]+-[0-9]+(T[0-9:]{8}(Z|[+-][0-9]{2}:[0-9]{2}))?"};
    static const std::regex identifier{"[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}"};
    return StoreRedaction::allowedValues().contains(text) || std::regex_match(text, date) ||
           std::regex_match(text, identifier);
}

/// Expects that `tree` is `json` without what may not be seen, and that nothing else has changed.
void expectShapeOf(const Json& json, const RedactedJSON& tree, int depth = 0)
{
    if (depth == StoreRedaction::maximumDepth) {
        EXPECT_TRUE(std::holds_alternative<RedactedJSON::TooDeep>(tree.value));
    } else if (json.is_object()) {
        const auto* object = std::get_if<RedactedJSON::Object>(&tree.value);
        ASSERT_TRUE(object != nullptr && object->fields.size() == json.size());
        std::size_t i = 0;
        for (const auto& [key, value] : json.items()) {
            const RedactedField& field = object->fields[i++];
            if (const std::string* stays = field.key.structuralKey()) {
                EXPECT_EQ(*stays, key);
                EXPECT_TRUE(StoreRedaction::structuralKeys().contains(key));
            }
            expectShapeOf(value, field.value, depth + 1);
        }
    } else if (json.is_array()) {
        const auto* array = std::get_if<RedactedJSON::Array>(&tree.value);
        ASSERT_TRUE(array != nullptr && array->count == json.size() && array->items.size() == json.size());
        for (std::size_t i = 0; i < json.size(); ++i) expectShapeOf(json[i], array->items[i], depth + 1);
    } else if (json.is_string()) {
        if (const auto* text = std::get_if<RedactedJSON::Text>(&tree.value)) {
            EXPECT_EQ(text->text, json.get<std::string>());
            EXPECT_TRUE(mayStay(text->text)) << text->text;
        } else {
            EXPECT_TRUE(std::holds_alternative<RedactedString>(tree.value));
            EXPECT_FALSE(StoreRedaction::allowedValues().contains(json.get<std::string>()));
        }
    } else if (json.is_boolean()) {
        EXPECT_EQ(tree, (RedactedJSON{RedactedJSON::Bool{json.get<bool>()}}));
    } else if (json.is_number()) {
        EXPECT_EQ(tree, (RedactedJSON{RedactedJSON::Number{json.dump()}}));
    } else {
        EXPECT_TRUE(std::holds_alternative<RedactedJSON::Null>(tree.value));
    }
}

TEST(RedactionProperty, theStructureStaysAndNoOtherText)
{
    std::size_t deepest = 0;
    for (unsigned seed = 0; seed < 3'000; ++seed) {
        SCOPED_TRACE(seed);
        const Json json = RandomJson{seed}.value();
        const RedactedJSON tree = StoreRedaction::redact(json);
        expectShapeOf(json, tree);
        const auto read = StoreRedaction::redactText(json.dump());
        ASSERT_TRUE(std::holds_alternative<RedactedJSON>(read));
        EXPECT_EQ(std::get<RedactedJSON>(read), tree) << json;
        const std::string lines = RedactedOutline::text(tree);
        if (lines.find("…") != std::string::npos) ++deepest;
        for (const char* secret : {"Player", "anna", "wlan0", "云盘", "\x1B"})
            EXPECT_THAT(lines, Not(HasSubstr(secret)));
        if (HasFailure()) break;
    }
    EXPECT_GT(deepest, 100U) << "many are cut";
}

TEST(RedactionProperty, noSecretOfAStateFileIsLeft)
{
    const SecretState state;
    ASSERT_GT(state.count(), 60U);
    for (const auto& [name, text] : state.files()) {
        SCOPED_TRACE(name);
        if (name != Persistence::windowsFile) { ASSERT_THAT(text, HasSubstr(SecretState::mark)); }
        const auto read = StoreRedaction::redactText(text);
        if (const auto* tree = std::get_if<RedactedJSON>(&read)) {
            const std::string lines = RedactedOutline::text(*tree);
            EXPECT_THAT(lines, Not(HasSubstr(SecretState::mark)));
            EXPECT_THAT(lines, Not(HasSubstr("云")));
            EXPECT_THAT(lines, HasSubstr("‹"));
        } else {
            EXPECT_FALSE(name.ends_with(".json"));
        }
    }
}

TEST(RedactionProperty, noSecretOfARunningGuardIsInItsSnapshot)
{
    EngineWorld world;
    ScriptedHost& host = world.host;
    const SecretState state;
    for (const auto& [name, text] : state.files()) host.files().set(world.stateFolder / name, text);
    GuardEngine engine{host};
    world.playTwoRounds();
    host.tool(ToolRole::netstat).prints(EngineWorld::counterText("en0", 50'000, 7'000));
    host.advance(Seconds{60});
    engine.stop();
    ASSERT_THAT(engine.settings().activeProfile().name, HasSubstr(SecretState::mark)) << "the guard has read them";
    for (const auto& [name, text] : state.files()) {
        const bool isSaved = name == Persistence::ledgerFile || name == engine.settings().activeProfile().budgetFile;
        if (isSaved) { ASSERT_NE(host.files().get(world.stateFolder / name), text) << name << " is saved anew"; }
    }
    for (const auto& snapshot :
         {DebugSnapshot::capture(engine, "1", "2", host.now()), DebugSnapshot::ofStateDirectory(host, "1", "2")}) {
        const std::string text = DebugExport::text(snapshot, "/home/user", host.host().platform);
        for (const std::string_view secret : {SecretState::mark, std::string_view{"Player"}, std::string_view{"en0"}})
            EXPECT_THAT(text, Not(HasSubstr(secret)));
        EXPECT_THAT(text, HasSubstr("  settings.json  "));
    }
}

} // namespace
} // namespace quellon
