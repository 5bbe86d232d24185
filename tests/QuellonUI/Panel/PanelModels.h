#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"

#include <fmt/format.h>

#include <string>
#include <utility>

/// Panels made by hand, as the views get them.
namespace quellon::PanelModels {

using Kind = PanelAction::Kind;

inline PanelButton button(std::string title, Kind kind, std::string target = {})
{
    std::string label = title;
    return {std::move(title), std::move(label), {kind, std::move(target)}};
}

inline UsageRowModel usageRow(const std::string& app, const std::string& amount, double fraction,
                              Tint tint = Tint::green)
{
    UsageRowModel row;
    row.name = app;
    row.toggle = {"", "Explain " + app, {Kind::toggleRow, app}};
    row.chevron = PanelSymbols::collapsed;
    row.amount = amount;
    row.amountTint = fraction >= 1.0 ? Tint::red : Tint::secondary;
    row.fraction = fraction;
    row.barTint = tint;
    return row;
}

inline void expand(UsageRowModel& row, std::string whatItIs, std::optional<std::string> actionLine = {})
{
    row.toggle.accessibilityLabel = "Collapse " + row.name;
    row.chevron = PanelSymbols::expanded;
    row.details = {std::move(whatItIs),
                   std::move(actionLine),
                   {"Details…", "Open details for " + row.name, {Kind::openDetails, row.toggle.action.target}}};
}

/// A hotspot with some traffic, and nothing to decide.
inline MenuPanelModel guarding()
{
    MenuPanelModel model;
    model.header = {
        Tint::green, "Guarding", "wlan0 · gateway 172.20.10.1 (hotspot range)", true, {"", "Guard", {Kind::stop, {}}}};
    model.budget =
        BudgetPresentation::Row{"3.62 GB / 10.00 GB", 0.362, Tint::green, "6.38 GB left · 12d to reset", {}, {}, {}};
    model.budget->today = BudgetPresentation::Today{"120.0 MB / 544.4 MB", "424.4 MB left today", Tint::secondary};
    model.usage.title = "Last 1min";
    model.usage.limit = "limit 75.0 MB";
    model.usage.rows = {usageRow("firefox", "61.3 MB", 0.817, Tint::yellow), usageRow("syncthing", "31.8 MB", 0.424),
                        usageRow("apt", "18.4 MB", 0.245)};
    model.usage.hiddenUsage = "5 more apps · 3.1 MB";
    model.resumeAll = button("Resume all", Kind::resumeAll);
    model.liveness = {"", {{"Peak this week"}, {"firefox 88.1 MB", Tint::primary}, {"of 75.0 MB"}}};
    model.footer = {{"Settings…", "Open settings", {Kind::openSettings, {}}}, button("Quit Quellon", Kind::quit)};
    return model;
}

inline MenuPanelModel::NoticeRow tetherHint(bool steps = false)
{
    MenuPanelModel::NoticeRow row;
    row.symbol = PanelSymbols::tether;
    row.title = "Your phone is connected, but traffic isn't using it";
    row.text = "usb0 is ready, but Linux is still using Wi-Fi.";
    if (steps) row.steps = "1. Open Network settings\n2. Turn Wi-Fi off\n3. Choose the phone";
    row.buttons = {steps ? button("Open Network settings", Kind::openNetworkSettings)
                         : button("How to fix", Kind::showTetherSteps),
                   button("Don't show again", Kind::dismissTetherHint)};
    return row;
}

inline MenuPanelModel::NoticeRow updateConsent()
{
    MenuPanelModel::NoticeRow row;
    row.symbol = PanelSymbols::updateConsent;
    row.title = "Check for updates?";
    row.text = "Once a day this app can ask updates.example whether a newer version exists. It sends only the version "
               "number and your Linux version — no account, no usage data, no app names.";
    row.buttons = {{"Yes, check daily", "Allow daily update checks", {Kind::allowUpdateChecks, {}}},
                   {"No thanks", "Decline update checks", {Kind::declineUpdateChecks, {}}}};
    return row;
}

inline MenuPanelModel::NoticeRow updateAvailable()
{
    MenuPanelModel::NoticeRow row;
    row.symbol = PanelSymbols::updateAvailable;
    row.symbolTint = Tint::blue;
    row.title = "Version 1.3 is available";
    row.text = "You're running an older build.";
    row.buttons = {button("Open download page", Kind::openDownloadPage, "https://example.org/d"),
                   {"Later", "Dismiss update notice", {Kind::dismissUpdate, {}}}};
    return row;
}

inline MenuPanelModel::ProfileSwitcher profiles(const std::string& active = "Pixel 8")
{
    MenuPanelModel::ProfileSwitcher result{
        "Switch plan profile", PanelSymbols::profile, active, PanelSymbols::profileMenu, {}};
    result.items = {{button(active, Kind::selectProfile, "id-1"), PanelSymbols::activeProfile},
                    {button("Travel & work", Kind::selectProfile, "id-2"), {}}};
    return result;
}

inline MenuPanelModel::Paused paused(const std::string& app)
{
    return {app, button("Resume", Kind::resume, app + "-5.0")};
}

/// Every section that can stand beside the others, and every mark that a row can have.
inline MenuPanelModel everything()
{
    MenuPanelModel model = guarding();
    model.tetherHint = tetherHint();
    model.updateAvailable = updateAvailable();
    model.profiles = profiles();
    model.budget->tint = Tint::red;
    model.budget->fraction = 0.93;
    model.budget->amounts = "9.30 GB / 10.00 GB";
    model.budget->rest = "0.70 GB left · 12d to reset";
    model.budget->runsOut = "runs out Mar 20";
    model.budget->today = BudgetPresentation::Today{"120.0 MB / 59.7 MB", "over today's pace", Tint::orange};
    model.budget->gaps = "at least — 2 gap(s) couldn't be measured";
    model.usage.rows[0] = usageRow("firefox", "91.3 MB", 1.0, Tint::red);
    expand(model.usage.rows[0], "A web browser. What it loads depends on the pages that are open.",
           "Asked 2 times today · the last answer was to allow it");
    model.usage.rows[1].chronicBadge = "🐌";
    model.usage.rows[1].chronicHelp = "Slow but steady — high usage over the long window";
    model.usage.rows[2].snooze = "zzz 12m";
    model.paused = {paused("cloud-sync"), paused("Steam")};
    return model;
}

inline MenuPanelModel idle()
{
    MenuPanelModel model = guarding();
    model.header = {Tint::orange,
                    "Idle · not a metered network",
                    "eth0 · gateway 192.168.1.1 · not metered",
                    true,
                    {"", "Guard", {Kind::stop, {}}}};
    model.usage.rows.clear();
    model.usage.hiddenUsage.reset();
    model.usage.empty = "No traffic yet";
    model.liveness = {PanelSymbols::neverTriggered, {{"Never triggered"}, {"·"}, {"guarding for 3d 4h"}}};
    return model;
}

inline MenuPanelModel off()
{
    MenuPanelModel model = idle();
    model.header = {Tint::secondary, "Off", "eth0 · gateway 192.168.1.1", false, {"", "Guard", {Kind::start, {}}}};
    model.usage.empty = "Guard is off";
    model.budget.reset();
    model.liveness = {PanelSymbols::triggered, {{"Stepped in 4 times"}, {"·"}, {"guarding for 3d 4h"}}};
    return model;
}

inline MenuPanelModel warning()
{
    MenuPanelModel model = guarding();
    model.updateConsent = updateConsent();
    model.usage.rows.clear();
    model.usage.hiddenUsage.reset();
    model.usage.warning = "Couldn't read per-app traffic just now — retrying";
    return model;
}

inline MenuPanelModel longNames()
{
    MenuPanelModel model = everything();
    model.tetherHint = tetherHint(true);
    model.updateAvailable.reset();
    const std::string chinese = "非常长的云盘同步助手名称桌面版本企业专用增强加速下载器";
    model.header.detail = "📶 " + chinese + " · gateway 172.20.10.1 (hotspot range)";
    model.profiles = profiles(chinese + chinese);
    model.usage.rows = {usageRow(chinese + chinese, "91.3 MB", 1.0, Tint::red),
                        usageRow("暂停（可恢复）", "31.8 MB", 0.4),
                        usageRow("an-application-with-a-name-that-does-not-fit-in-one-line", "18.4 MB", 0.245)};
    model.usage.rows[0].chronicBadge = "🐌";
    model.usage.rows[0].snooze = "zzz 12m";
    expand(model.usage.rows[1], chinese + "。" + chinese + "。" + chinese + "。");
    model.paused = {paused(chinese + chinese), paused("暂停（可恢复）")};
    model.liveness = {"", {{"Peak this week"}, {chinese + " 88.1 MB", Tint::primary}, {"of 75.0 MB"}}};
    return model;
}

/// More than a small screen holds.
inline MenuPanelModel tall()
{
    MenuPanelModel model = everything();
    model.tetherHint = tetherHint(true);
    model.usage.rows.clear();
    for (int i = 1; i <= 6; ++i) model.usage.rows.push_back(usageRow(fmt::format("app{}", i), "20.0 MB", 0.1 * i));
    model.usage.hiddenUsage = "6 more apps · 12.0 MB";
    for (int i = 0; i < 12; ++i) model.paused.push_back(paused(fmt::format("paused{}", i)));
    return model;
}

struct Named {
    const char* name;
    MenuPanelModel model;
};

inline std::vector<Named> all()
{
    return {{"guarding", guarding()}, {"everything", everything()}, {"idle", idle()}, {"off", off()},
            {"warning", warning()},   {"long-names", longNames()},  {"tall", tall()}};
}

} // namespace quellon::PanelModels
