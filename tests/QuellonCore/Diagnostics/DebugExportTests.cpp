#include "QuellonCore/Diagnostics/DebugExport.h"

#include <gtest/gtest.h>

#include <limits>

namespace quellon {
namespace {

using Isolation = DebugStateGuard::Isolation;
using Kind = StateFileKind;

constexpr Date moment{Seconds{795'261'600.75}};

DebugSnapshot healthy()
{
    DebugSnapshot snapshot;
    snapshot.version = "1.2.0 (7)";
    snapshot.osVersion = "14.5.0";
    snapshot.stateDirectoryPath = "/Users/a/Library/Application Support/Quellon";
    snapshot.isolation = Isolation::realState();
    snapshot.files = {{"budget-C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11.json", 600, moment, Kind::profileBudget},
                      {"ledger.json", 3'670'016, moment, Kind::known},
                      {"ledger.json.tmp", 1'073'741'824, std::nullopt, Kind::temporary},
                      {"notifications.log", 0, moment, Kind::log},
                      {"notes.txt", 52'428, moment, Kind::unknown}};
    snapshot.isRunning = true;
    snapshot.isMetered = true;
    snapshot.sampleInterval = 5.0;
    snapshot.sampling.recordCompleted(Seconds{1.25}, moment);
    snapshot.sampling.recordCompleted(Seconds{0.5}, moment);
    snapshot.sampling.recordSkipped(moment);
    snapshot.process = ProcessMetrics{31'457'280, 20'971'520, 4};
    return snapshot;
}

TEST(DebugExport, text)
{
    EXPECT_EQ(DebugExport::text(healthy(), "/Users/a", Platform::macOS()),
              "# Quellon debug snapshot\n"
              "# No app names, no network addresses, no per-app traffic.\n"
              "\n"
              "app        1.2.0 (7) · edition pro\n"
              "system     macOS 14.5.0\n"
              "state dir  ~/Library/Application Support/Quellon  [REAL STATE · writes disabled]\n"
              "guard      running · metered · interval 5.0s\n"
              "sampling   last 0.50s · max 1.25s · completed 2 · skipped 1 (33.3%)\n"
              "           verdict healthy\n"
              "process    resident 30.0 MB · footprint 20.0 MB · threads 4\n"
              "notify     authorized=true alerts=true canNotify=true\n"
              "\n"
              "state files\n"
              "  budget-C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11.json  0.0 MB · 2026-03-15T10:00:00Z\n"
              "  ledger.json                     3.5 MB · 2026-03-15T10:00:00Z\n"
              "  ledger.json.tmp                 1.00 GB · —  ⚠ leftover\n"
              "  notifications.log               0.0 MB · 2026-03-15T10:00:00Z\n"
              "  notes.txt                       0.0 MB · 2026-03-15T10:00:00Z  ⚠ unknown\n"
              "  total 1.00 GB");
}

TEST(DebugExport, aFreshGuardOnLinux)
{
    DebugSnapshot snapshot;
    snapshot.renderedEdition = AppEdition::appStore;
    snapshot.version = "dev";
    snapshot.osVersion = "6.1.0";
    snapshot.stateDirectoryPath = "/tmp/QuellonTransient-7";
    snapshot.isolation = Isolation::isolated(Isolation::Reason::transientSandbox);
    snapshot.sampleInterval = 2.25;
    snapshot.notifications = {.authorized = true, .alertsEnabled = false, .inAppChannelAvailable = false};
    EXPECT_EQ(DebugExport::text(snapshot, "/home/user", Platform::linux()),
              "# Quellon debug snapshot\n"
              "# No app names, no network addresses, no per-app traffic.\n"
              "\n"
              "app        dev · edition pro → rendered as appStore (FAKED)\n"
              "system     Linux 6.1.0\n"
              "state dir  /tmp/QuellonTransient-7  [ISOLATED · transientSandbox]\n"
              "guard      stopped · not metered · interval 2.2s\n"
              "sampling   last — · max 0.00s · completed 0 · skipped 0\n"
              "           verdict unknown\n"
              "process    unavailable (/proc/self/status can't be read)\n"
              "notify     authorized=true alerts=false canNotify=false\n"
              "\n"
              "state files\n"
              "  (empty)");
}

/// The line that begins with `label`.
std::string line(const DebugSnapshot& snapshot, std::string_view label, const Platform& platform = Platform::linux())
{
    const std::string all = "\n" + DebugExport::text(snapshot, "", platform) + "\n";
    const auto from = all.find("\n" + std::string{label});
    return from == std::string::npos ? "" : all.substr(from + 1, all.find('\n', from + 1) - from - 1);
}

TEST(DebugExport, theWordsForAProcessThatIsNotTold)
{
    DebugSnapshot snapshot;
    EXPECT_EQ(line(snapshot, "process", Platform::macOS()), "process    unavailable (task_info failed)");
}

TEST(DebugExport, anOverride)
{
    DebugSnapshot snapshot;
    snapshot.stateDirectoryPath = "/copy";
    snapshot.isolation = Isolation::isolated(Isolation::Reason::explicitOverride);
    EXPECT_EQ(line(snapshot, "state dir"), "state dir  /copy  [ISOLATED · explicitOverride]");
}

TEST(DebugExport, theVerdictFollowsTheInterval)
{
    DebugSnapshot snapshot;
    snapshot.sampling.recordCompleted(Seconds{1.5}, moment);
    snapshot.sampleInterval = 5.0;
    EXPECT_EQ(line(snapshot, "           verdict"), "           verdict slow");
    snapshot.sampleInterval = 1.5;
    EXPECT_EQ(line(snapshot, "           verdict"), "           verdict overlapping");
}

TEST(DebugExport, skippedTicksAlone)
{
    DebugSnapshot snapshot;
    snapshot.sampling.recordSkipped(moment);
    EXPECT_EQ(line(snapshot, "sampling"), "sampling   last — · max 0.00s · completed 0 · skipped 1 (100.0%)");
}

TEST(DebugExport, canNotify)
{
    struct Case {
        const char* name;
        NotificationCapability notifications;
        const char* line;
    };
    constexpr Case cases[] = {
        {"all", {true, true, true}, "notify     authorized=true alerts=true canNotify=true"},
        {"on the screen only", {false, false, true}, "notify     authorized=false alerts=false canNotify=true"},
        {"by the system only", {true, true, false}, "notify     authorized=true alerts=true canNotify=true"},
        {"allowed but not shown", {true, false, false}, "notify     authorized=true alerts=false canNotify=false"},
        {"nothing", {false, true, false}, "notify     authorized=false alerts=true canNotify=false"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        DebugSnapshot snapshot;
        snapshot.notifications = c.notifications;
        EXPECT_EQ(line(snapshot, "notify"), c.line);
    }
}

TEST(DebugExport, namesKeepToTheirLine)
{
    DebugSnapshot snapshot;
    snapshot.stateDirectoryPath = "/a\nb";
    snapshot.files = {{"x\n\xFF\x1B[31m", 0, std::nullopt, Kind::unknown}};
    EXPECT_EQ(line(snapshot, "state dir"), "state dir  /a�b  [REAL STATE · writes disabled]");
    EXPECT_EQ(line(snapshot, "  x"), "  x���[31m                        0.0 MB · —  ⚠ unknown");
}

TEST(DebugExport, namesArePaddedByCharacters)
{
    DebugSnapshot snapshot;
    snapshot.files = {{"预算.json", 0, std::nullopt, Kind::unknown},
                      {std::string(30, 'x'), 0, std::nullopt, Kind::log}};
    EXPECT_EQ(line(snapshot, "  预"), "  预算.json" + std::string(23, ' ') + "  0.0 MB · —  ⚠ unknown");
    EXPECT_EQ(line(snapshot, "  x"), "  " + std::string(30, 'x') + "  0.0 MB · —");
}

TEST(DebugExport, aTotalBeyondAllNumbers)
{
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    DebugSnapshot snapshot;
    snapshot.files = {{"a", most, std::nullopt, Kind::unknown}, {"b", most, std::nullopt, Kind::unknown}};
    EXPECT_EQ(line(snapshot, "  total"), "  total 17179869184.00 GB");
}

TEST(DebugExport, redactHome)
{
    struct Case {
        const char* name;
        std::string_view path;
        std::string_view home;
        std::string_view redacted;
    };
    constexpr Case cases[] = {
        {"below it", "/Users/a/x", "/Users/a", "~/x"},
        {"the home itself", "/Users/a", "/Users/a", "~"},
        {"the home with a slash", "/Users/a", "/Users/a/", "~"},
        {"below a home with a slash", "/Users/a/x/y", "/Users/a/", "~/x/y"},
        {"the home and a slash", "/Users/a/", "/Users/a", "~/"},
        {"only one slash goes", "/Users/a/x", "/Users/a//", "/Users/a/x"},
        {"somebody else's", "/Users/ab/x", "/Users/a", "/Users/ab/x"},
        {"above it", "/Users", "/Users/a", "/Users"},
        {"elsewhere", "/tmp/x", "/Users/a", "/tmp/x"},
        {"no home", "/Users/a/x", "", "/Users/a/x"},
        {"no path", "", "/Users/a", ""},
        {"neither", "", "", ""},
        {"the home in the middle", "/x/Users/a/y", "/Users/a", "/x/Users/a/y"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(DebugExport::redactHome(c.path, c.home), c.redacted);
    }
}

} // namespace
} // namespace quellon
