#include "QuellonCore/Persistence/StateFile.h"
#include "QuellonCore/Rules/AppPolicyTable.h"
#include "QuellonCore/Rules/DevToolPresets.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace quellon {
namespace {

using Names = std::vector<std::string>;

TEST(AppPolicy, texts)
{
    struct Case {
        AppPolicy policy;
        const char* raw;
        const char* label;
        const char* shortLabel;
    };
    constexpr Case cases[] = {
        {AppPolicy::never, "never", "Never limit", "Never"},
        {AppPolicy::global, "global", "Use global rules", "Global"},
        {AppPolicy::always, "always", "Always block on hotspot", "Block"},
    };
    ASSERT_EQ(std::size(cases), appPolicies.rows.size());
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(cases[i].raw);
        EXPECT_EQ(appPolicies.rows[i].value, cases[i].policy);
        EXPECT_EQ(appPolicies.raw(cases[i].policy), cases[i].raw);
        EXPECT_EQ(appPolicies.label(cases[i].policy), cases[i].label);
        EXPECT_EQ(appPolicies.parse(cases[i].raw), cases[i].policy);
        EXPECT_EQ(shortLabel(cases[i].policy), cases[i].shortLabel);
    }
    EXPECT_EQ(appPolicies.parse("Never"), std::nullopt);
}

TEST(AppPolicyTable, holdsNoEntryOfGlobal)
{
    const AppPolicyTable table{{{"a", AppPolicy::never}, {"b", AppPolicy::global}, {"c", AppPolicy::always}}};
    EXPECT_EQ(table.entries(), (AppPolicyTable::Entries{{"a", AppPolicy::never}, {"c", AppPolicy::always}}));
    EXPECT_TRUE((AppPolicyTable{{{"b", AppPolicy::global}}}).isEmpty());
}

TEST(AppPolicyTable, policy)
{
    const AppPolicyTable table{{{"a", AppPolicy::never}, {"c", AppPolicy::always}}};
    EXPECT_EQ(table.policy("a"), AppPolicy::never);
    EXPECT_EQ(table.policy("c"), AppPolicy::always);
    EXPECT_EQ(table.policy("b"), AppPolicy::global);
    EXPECT_EQ(table.policy("A"), AppPolicy::global);
    EXPECT_EQ(table.policy(""), AppPolicy::global);
}

TEST(AppPolicyTable, setAndRemove)
{
    AppPolicyTable table;
    EXPECT_TRUE(table.isEmpty());
    table.set(AppPolicy::always, "a");
    table.set(AppPolicy::never, "a");
    table.set(AppPolicy::never, "b");
    EXPECT_EQ(table.entries(), (AppPolicyTable::Entries{{"a", AppPolicy::never}, {"b", AppPolicy::never}}));
    table.set(AppPolicy::global, "a");
    table.set(AppPolicy::global, "unknown");
    EXPECT_EQ(table.entries(), (AppPolicyTable::Entries{{"b", AppPolicy::never}}));
    table.remove("unknown");
    table.remove("b");
    EXPECT_TRUE(table.isEmpty());
}

TEST(AppPolicyTable, apps)
{
    const AppPolicyTable table{
        {{"b", AppPolicy::always}, {"B", AppPolicy::always}, {"a", AppPolicy::always}, {"n", AppPolicy::never}}};
    EXPECT_EQ(table.apps(AppPolicy::always), (Names{"B", "a", "b"}));
    EXPECT_EQ(table.apps(AppPolicy::never), (Names{"n"}));
    EXPECT_EQ(table.apps(AppPolicy::global), Names{});
}

TEST(AppPolicyTable, addDevToolPresets)
{
    const Names all{"Xcode", "Docker", "Docker Desktop", "npm",   "node", "pod", "flutter", "dart",
                    "brew",  "git",    "gradle",         "cargo", "go"};
    EXPECT_EQ(Names(DevToolPresets::names.begin(), DevToolPresets::names.end()), all);

    AppPolicyTable table;
    EXPECT_EQ(table.addDevToolPresets(), all);
    EXPECT_EQ(table.entries().size(), 13U);
    for (const auto& [app, policy] : table.entries()) EXPECT_EQ(policy, AppPolicy::always) << app;
    EXPECT_EQ(table.addDevToolPresets(), Names{});
}

TEST(AppPolicyTable, addDevToolPresetsLeavesWhatIsThere)
{
    for (const AppPolicy own : {AppPolicy::never, AppPolicy::always}) {
        AppPolicyTable table{{{"git", own}}};
        const Names added = table.addDevToolPresets();
        EXPECT_EQ(added, (Names{"Xcode", "Docker", "Docker Desktop", "npm", "node", "pod", "flutter", "dart", "brew",
                                "gradle", "cargo", "go"}));
        EXPECT_EQ(table.policy("git"), own);
    }
}

TEST(AppPolicyTable, fromJson)
{
    struct Case {
        const char* name;
        const char* text;
        std::optional<AppPolicyTable> table;
    };
    const Case cases[] = {
        {"empty", "{}", AppPolicyTable{}},
        {"a global entry is gone", R"({"a":"global"})", AppPolicyTable{}},
        {"global beside others", R"({"a":"global","b":"never"})", AppPolicyTable{{{"b", AppPolicy::never}}}},
        {"the last of equal labels", R"({"a":"never","a":"always"})", AppPolicyTable{{{"a", AppPolicy::always}}}},
        {"the empty label", R"({"":"always"})", AppPolicyTable{{{"", AppPolicy::always}}}},
        {"unknown text", R"({"a":"sometimes"})", std::nullopt},
        {"no text", R"({"a":1})", std::nullopt},
        {"null for an entry", R"({"a":null})", std::nullopt},
        {"an array", "[]", std::nullopt},
        {"null", "null", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decode<AppPolicyTable>(c.text), c.table);
    }
    EXPECT_TRUE(decode<AppPolicyTable>(R"({"a":"global"})")->isEmpty());
}

TEST(AppPolicyTable, encodesAndDecodesToItself)
{
    EXPECT_EQ(encode(AppPolicyTable{}), "{}");
    EXPECT_EQ(encode(AppPolicyTable{{{"b", AppPolicy::never}, {"a", AppPolicy::always}}}),
              R"({"a":"always","b":"never"})");

    std::mt19937_64 random{7};
    for (int round = 0; round < 200; ++round) {
        AppPolicyTable table;
        for (std::uint64_t left = random() % 8; left > 0; --left) {
            table.set(appPolicies.rows.at(random() % 3).value, "app" + std::to_string(random() % 20));
        }
        EXPECT_EQ(decode<AppPolicyTable>(encode(table)), table);
    }
}

} // namespace
} // namespace quellon
