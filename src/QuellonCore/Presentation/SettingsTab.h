#pragma once

#include "QuellonCore/Support/EnumTable.h"

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

} // namespace quellon
