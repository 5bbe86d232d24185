#include "QuellonCore/Measurement/Capabilities.h"

#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

constexpr std::string_view sandboxText = "沙盒版无法直接读取各 App 的流量，需要启用网络扩展后才能统计。";
constexpr std::string_view nettopText = "读取流量数据失败：系统未返回 nettop 结果。";
constexpr std::string_view editionText =
    "App Store 版受系统沙盒限制，只能提醒，无法暂停或结束其他 App。需要自动处置请使用官网下载的 Pro 版。";

TEST(AppEdition, table)
{
    ASSERT_EQ(appEditions.rows.size(), 2U);
    EXPECT_EQ(appEditions.rows[0].value, AppEdition::pro);
    EXPECT_EQ(appEditions.rows[1].value, AppEdition::appStore);
    EXPECT_EQ(appEditions.raw(AppEdition::pro), "pro");
    EXPECT_EQ(appEditions.raw(AppEdition::appStore), "appStore");
    EXPECT_EQ(displayName(AppEdition::pro), "Quellon Pro");
    EXPECT_EQ(displayName(AppEdition::appStore), "Quellon");
    for (const auto& row : appEditions.rows) {
        EXPECT_EQ(appEditions.parse(row.raw), row.value);
        EXPECT_EQ(allowsEnforcement(row.value), row.value == AppEdition::pro);
        EXPECT_EQ(allowsSystemCommands(row.value), allowsEnforcement(row.value));
    }
    EXPECT_EQ(appEditions.parse("Pro"), std::nullopt);
    EXPECT_EQ(currentEdition, AppEdition::pro);
}

TEST(AppEdition, availableActions)
{
    using enum EnforcementAction;
    EXPECT_THAT(availableActions(AppEdition::pro), testing::ElementsAre(warn, suspend, terminate, kill));
    EXPECT_THAT(availableActions(AppEdition::appStore), testing::ElementsAre(warn));
}

TEST(Capabilities, detect)
{
    struct Case {
        const char* name;
        AppEdition edition;
        bool hasKey;
        Capabilities capabilities;
        std::optional<std::string_view> samplingReason;
        std::optional<std::string_view> enforcementReason;
    };
    constexpr Case cases[] = {
        {"pro", AppEdition::pro, false, {AppEdition::pro, false, true, true}, {}, {}},
        {"pro in the sandbox", AppEdition::pro, true, {AppEdition::pro, true, false, false}, sandboxText, editionText},
        {"app store",
         AppEdition::appStore,
         false,
         {AppEdition::appStore, false, false, false},
         nettopText,
         editionText},
        {"app store in the sandbox",
         AppEdition::appStore,
         true,
         {AppEdition::appStore, true, false, false},
         sandboxText,
         editionText},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedHost host;
        if (c.hasKey) host.environment("APP_SANDBOX_CONTAINER_ID", "");
        const auto capabilities = Capabilities::detect(c.edition, host.host().processes);
        EXPECT_EQ(capabilities, c.capabilities);
        EXPECT_EQ(capabilities.samplingBlockedReason(), c.samplingReason);
        EXPECT_EQ(capabilities.enforcementBlockedReason(), c.enforcementReason);
    }
}

TEST(Capabilities, enforcementFollowsFromTheRest)
{
    constexpr Capabilities blind{AppEdition::pro, false, false};
    EXPECT_TRUE(blind.canEnforce);
    EXPECT_EQ(blind.enforcementBlockedReason(), std::nullopt);
    EXPECT_EQ(blind.samplingBlockedReason(), nettopText);

    EXPECT_FALSE((Capabilities{AppEdition::pro, true, true}.canEnforce));
    EXPECT_FALSE((Capabilities{AppEdition::appStore, false, true}.canEnforce));

    constexpr Capabilities handMade{AppEdition::pro, false, true, false};
    EXPECT_EQ(handMade.enforcementBlockedReason(), std::nullopt);
}

} // namespace
} // namespace quellon
