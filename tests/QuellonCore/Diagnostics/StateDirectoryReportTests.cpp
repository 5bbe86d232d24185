#include "QuellonCore/Diagnostics/StateDirectoryReport.h"

#include "QuellonCore/Diagnostics/NotificationLog.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "ScriptedHost.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using Kind = StateFileKind;

TEST(StateDirectoryReport, kinds)
{
    EXPECT_EQ(stateFileKinds.raw(Kind::known), "known");
    EXPECT_EQ(stateFileKinds.raw(Kind::profileBudget), "profileBudget");
    EXPECT_EQ(stateFileKinds.raw(Kind::temporary), "temporary");
    EXPECT_EQ(stateFileKinds.raw(Kind::log), "log");
    EXPECT_EQ(stateFileKinds.raw(Kind::unknown), "unknown");
}

TEST(StateDirectoryReport, classify)
{
    struct Case {
        const char* name;
        std::string_view file;
        Kind kind;
    };
    constexpr Case cases[] = {
        {"settings", Persistence::settingsFile, Kind::known},
        {"ledger", Persistence::ledgerFile, Kind::known},
        {"the first plan's budget", Persistence::budgetFile, Kind::known},
        {"what is frozen", Persistence::suspendedFile, Kind::known},
        {"liveness", Persistence::livenessFile, Kind::known},
        {"history", Persistence::enforcementHistoryFile, Kind::known},
        {"explanations", Persistence::explanationsFile, Kind::known},
        {"where windows stand", Persistence::windowsFile, Kind::known},
        {"a log", NotificationLog::file, Kind::log},
        {"any log", ".log", Kind::log},
        {"a budget", "budget-C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11.json", Kind::profileBudget},
        {"a budget of nobody", "budget-.json", Kind::profileBudget},
        {"a budget that is none", "budget-1.log", Kind::log},
        {"no hyphen", "budget1.json", Kind::unknown},
        {"left over", "settings.json.tmp", Kind::temporary},
        {"left over of a budget", "budget-1.json.tmp", Kind::temporary},
        {"nothing but the ending", ".tmp", Kind::temporary},
        {"a log in a log's place", "notifications.log.tmp", Kind::temporary},
        {"another letter case", "Settings.json", Kind::unknown},
        {"an ending in another letter case", "x.LOG", Kind::unknown},
        {"a copy", "settings.json~", Kind::unknown},
        {"something else", "notes.txt", Kind::unknown},
        {"nothing", "", Kind::unknown},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(StateDirectoryReport::classify(c.file), c.kind);
    }
}

TEST(StateDirectoryReport, scan)
{
    ScriptedHost host;
    const Date at{Seconds{795'261'600}};
    host.files().set("/state/settings.json", "{}");
    host.files().setModified("/state/settings.json", at);
    host.files().set("/state/ledger.json.tmp", "");
    host.files().set("/state/budget-1.json", "12345");
    host.files().set("/state/folder/below.json", "x");
    host.files().link("/state/link.json", "/state/settings.json");
    const std::vector<StateFileEntry> expected{{"budget-1.json", 5, std::nullopt, Kind::profileBudget},
                                               {"ledger.json.tmp", 0, std::nullopt, Kind::temporary},
                                               {"settings.json", 2, at, Kind::known}};
    EXPECT_EQ(StateDirectoryReport::scan(host.files(), "/state"), expected);
    EXPECT_TRUE(StateDirectoryReport::scan(host.files(), "/nowhere").empty());
    host.files().failReads();
    EXPECT_TRUE(StateDirectoryReport::scan(host.files(), "/state").empty());
}

} // namespace
} // namespace quellon
