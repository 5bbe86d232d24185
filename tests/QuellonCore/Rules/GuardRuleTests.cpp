#include "QuellonCore/Rules/GuardRule.h"

#include "QuellonCore/Persistence/StateFile.h"
#include "QuellonCore/Rules/RuleBreach.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <utility>

namespace quellon {
namespace {

constexpr const char* idText = "12345678-9ABC-4DEF-8123-456789ABCDEF";

GuardRule hourlyRule()
{
    return {*UUID::parse(idText), Seconds{3600.0}, 268'435'456, ActionLevel::ask, false};
}

/// The object of `hourlyRule` with the value of one key replaced by another JSON text; the key dropped for none.
std::string ruleText(const std::string& changedKey = {}, const std::string& value = {})
{
    const std::pair<const char*, std::string> members[] = {
        {"enabled", "false"},        {"id", '"' + std::string{idText} + '"'},
        {"level", "\"ask\""},        {"thresholdBytes", "268435456"},
        {"windowSeconds", "3600.0"},
    };
    std::string text;
    for (const auto& [key, present] : members) {
        const std::string& shown = key == changedKey ? value : present;
        if (shown.empty()) continue;
        text += (text.empty() ? "{\"" : ",\"") + std::string{key} + "\":" + shown;
    }
    return text + "}";
}

TEST(GuardRule, windowLabel)
{
    struct Case {
        const char* name;
        double seconds;
        const char* label;
    };
    constexpr Case cases[] = {
        {"a minute", 60.0, "1min"},
        {"an hour", 3600.0, "1h"},
        {"two hours are hours", 7200.0, "2h"},
        {"two minutes are minutes", 120.0, "2min"},
        {"61 stays in seconds", 61.0, "61s"},
        {"90 stays in seconds", 90.0, "90s"},
        {"an hour and a half is minutes", 5400.0, "90min"},
        {"a day is hours", 86'400.0, "24h"},
        {"one second", 1.0, "1s"},
        {"the fraction is cut off", 60.9, "1min"},
        {"a fraction below a second", 0.9, "0h"},
        {"nothing is a multiple of an hour", 0.0, "0h"},
        {"below nothing", -60.0, "-1min"},
        {"far too long", 1e300, "9223372036854775807s"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ((GuardRule{.id = {}, .windowSeconds = Seconds{c.seconds}}.windowLabel()), c.label);
    }
}

TEST(GuardRule, windowLabelOfNoNumberIsFatal)
{
    const GuardRule rule{.id = {}, .windowSeconds = Seconds{std::numeric_limits<double>::infinity()}};
    EXPECT_EXIT((void)rule.windowLabel(), testing::ExitedWithCode(70), "not finite");
}

TEST(GuardRule, readsAndWrites)
{
    EXPECT_EQ(decode<GuardRule>(ruleText()), hourlyRule());
    EXPECT_EQ(encode(hourlyRule()), ruleText());
    for (const auto& level : actionLevels.rows) {
        SCOPED_TRACE(level.raw);
        GuardRule rule = hourlyRule();
        rule.level = level.value;
        rule.enabled = true;
        rule.windowSeconds = Seconds{0.1};
        rule.thresholdBytes = std::numeric_limits<std::uint64_t>::max();
        EXPECT_EQ(decode<GuardRule>(encode(rule)), rule);
    }
}

TEST(GuardRule, whatIsWrittenReadsTheSame)
{
    std::mt19937_64 random{3600};
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        GuardRule rule;
        for (auto& byte : rule.id.bytes) byte = static_cast<std::uint8_t>(random());
        do {
            rule.windowSeconds = Seconds{std::bit_cast<double>(random())};
        } while (!std::isfinite(rule.windowSeconds.count()));
        rule.thresholdBytes = random() >> (random() % 64);
        rule.level = actionLevels.rows[random() % actionLevels.rows.size()].value;
        rule.enabled = random() % 2 != 0;
        ASSERT_EQ(decode<GuardRule>(encode(rule)), rule);
    }
}

TEST(GuardRule, everyKeyIsRequired)
{
    for (const char* key : {"id", "windowSeconds", "thresholdBytes", "level", "enabled"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(decode<GuardRule>(ruleText(key, "")), std::nullopt);
        EXPECT_EQ(decode<GuardRule>(ruleText(key, "null")), std::nullopt);
        EXPECT_EQ(decode<GuardRule>(ruleText(key, "[]")), std::nullopt);
    }
}

TEST(GuardRule, strictTypes)
{
    struct Case {
        const char* name;
        const char* key;
        const char* value;
        bool isRead;
    };
    constexpr Case cases[] = {
        {"a whole number written with a fraction of nothing", "thresholdBytes", "5.0", true},
        {"a real fraction", "thresholdBytes", "5.5", false},
        {"the largest count", "thresholdBytes", "18446744073709551615", true},
        {"2^64 does not fit", "thresholdBytes", "18446744073709551616", false},
        {"2^64 as a double does not fit", "thresholdBytes", "1.8446744073709552e19", false},
        {"less than nothing", "thresholdBytes", "-1", false},
        {"a number as text", "thresholdBytes", "\"5\"", false},
        {"a window as a whole number", "windowSeconds", "90", true},
        {"a window beyond every double", "windowSeconds", "1e400", false},
        {"a window as text", "windowSeconds", "\"90\"", false},
        {"an unknown level", "level", "\"panic\"", false},
        {"a level in capitals", "level", "\"Ask\"", false},
        {"a level by its rank", "level", "2", false},
        {"a flag as a number", "enabled", "1", false},
        {"an identifier in lower case", "id", "\"12345678-9abc-4def-8123-456789abcdef\"", true},
        {"no identifier", "id", "\"first\"", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decode<GuardRule>(ruleText(c.key, c.value)).has_value(), c.isRead);
    }
    EXPECT_EQ(decode<GuardRule>("[]"), std::nullopt);
    EXPECT_EQ(decode<GuardRule>(ruleText("thresholdBytes", "5.0"))->thresholdBytes, 5U);
    EXPECT_EQ(decode<GuardRule>(ruleText("windowSeconds", "90"))->windowSeconds, Seconds{90.0});
}

TEST(RuleBreach, levelIsThatOfItsRule)
{
    EXPECT_EQ((RuleBreach{.app = "App", .rule = hourlyRule(), .bytes = 1, .pids = {}}.level()), ActionLevel::ask);
}

} // namespace
} // namespace quellon
