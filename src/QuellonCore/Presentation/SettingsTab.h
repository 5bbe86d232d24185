#pragma once

#include "QuellonCore/Support/EnumTable.h"

#include <string_view>

namespace quellon {

/// A page of the settings window.
enum class SettingsTab { plan, rules, apps, log, about };

/// In the order of the tabs.
inline constexpr EnumTable<SettingsTab, 5> settingsTabs{{{
    {SettingsTab::plan, "plan", "Plan"},
    {SettingsTab::rules, "rules", "Rules"},
    {SettingsTab::apps, "apps", "Apps"},
    {SettingsTab::log, "log", "Log"},
    {SettingsTab::about, "about", "About"},
}}};

constexpr const auto& enumTable(SettingsTab /*type*/)
{
    return settingsTabs;
}

/// The name of the tab's symbol.
[[nodiscard]] constexpr std::string_view symbol(SettingsTab tab)
{
    switch (tab) {
    case SettingsTab::plan:
        return "chart.pie";
    case SettingsTab::rules:
        return "gauge.with.needle";
    case SettingsTab::apps:
        return "lock.shield";
    case SettingsTab::log:
        return "list.bullet";
    case SettingsTab::about:
        break;
    }
    return "info.circle";
}

} // namespace quellon
