#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Rules/ActionLevel.h"
#include "QuellonCore/Rules/UsageProfile.h"
#include "QuellonCore/Support/Json.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>

namespace quellon {
namespace {

template <typename Enum>
struct Row {
    Enum value;
    std::string_view raw;
    std::string_view label;
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
        EXPECT_EQ(table.raw(expected[i].value), expected[i].raw);
        EXPECT_EQ(table.label(expected[i].value), expected[i].label);
        EXPECT_EQ(toJson(expected[i].value), Json(expected[i].raw));
        EXPECT_EQ(fromJson<Enum>(Json(expected[i].raw)), expected[i].value);
    }
    for (const auto& json : {Json("Unknown"), Json(""), Json(0), Json(nullptr)}) {
        EXPECT_EQ(fromJson<Enum>(json), std::nullopt) << json;
    }
}

TEST(ActionLevel, table)
{
    constexpr Row<ActionLevel> rows[] = {
        {ActionLevel::highlight, "highlight", "Highlight only"},
        {ActionLevel::notify, "notify", "Notify me"},
        {ActionLevel::ask, "ask", "Ask me"},
        {ActionLevel::enforce, "enforce", "Step in automatically"},
    };
    expectTable(rows);
    EXPECT_EQ(fromJson<ActionLevel>(Json("Notify")), std::nullopt);
}

TEST(ActionLevel, comparesByRank)
{
    const auto& rows = actionLevels.rows;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rank(rows[i].value), static_cast<int>(i));
        for (std::size_t j = 0; j < rows.size(); ++j) EXPECT_EQ(rows[i].value < rows[j].value, i < j);
    }
}

TEST(UsageProfile, table)
{
    constexpr Row<UsageProfile> rows[] = {
        {UsageProfile::light, "light", "Light — mail, docs, browsing"},
        {UsageProfile::developer, "developer", "Development — code, dependencies, builds"},
        {UsageProfile::heavy, "heavy", "Heavy — video calls, streaming"},
    };
    expectTable(rows);
}

TEST(EnforcementAction, table)
{
    constexpr Row<EnforcementAction> rows[] = {
        {EnforcementAction::warn, "warn", "仅提醒"},
        {EnforcementAction::suspend, "suspend", "暂停（可恢复）"},
        {EnforcementAction::terminate, "terminate", "退出"},
        {EnforcementAction::kill, "kill", "强制结束"},
    };
    expectTable(rows);
}

} // namespace
} // namespace quellon
