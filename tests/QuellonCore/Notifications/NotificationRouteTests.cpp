#include "QuellonCore/Notifications/NotificationRoute.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace quellon {
namespace {

TEST(NotificationRoute, destination)
{
    struct Case {
        const char* name;
        std::vector<std::string> apps;
        NotificationRoute::Destination destination;
    };
    const Case cases[] = {
        {"about nobody: the log", {}, {std::nullopt, SettingsTab::log}},
        {"about one: its details", {"Player"}, {"Player", SettingsTab::apps}},
        {"one without a name is one", {""}, {"", SettingsTab::apps}},
        {"merged: the log", {"Player", "Mailer"}, {std::nullopt, SettingsTab::log}},
        {"the same one twice is several", {"Player", "Player"}, {std::nullopt, SettingsTab::log}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(NotificationRoute::destination(c.apps), c.destination);
    }
}

TEST(SettingsTab, textsInTheOrderOfTheTabs)
{
    std::vector<std::string> raws;
    std::vector<std::string> labels;
    for (const auto& row : settingsTabs.rows) {
        raws.emplace_back(row.raw);
        labels.emplace_back(row.label);
    }
    EXPECT_EQ(raws, (std::vector<std::string>{"plan", "rules", "apps", "log", "about"}));
    EXPECT_EQ(labels, (std::vector<std::string>{"Plan", "Rules", "Apps", "Log", "About"}));
}

} // namespace
} // namespace quellon
