#include "QuellonCore/Diagnostics/DebugExport.h"

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Calendar.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace quellon::DebugExport {

namespace {

std::string edition(const DebugSnapshot& snapshot)
{
    const std::string_view compiled = appEditions.raw(snapshot.compiledEdition);
    if (snapshot.renderedEdition == snapshot.compiledEdition) return std::string{compiled};
    return fmt::format("{} → rendered as {} (FAKED)", compiled, appEditions.raw(snapshot.renderedEdition));
}

std::string isolation(const DebugStateGuard::Isolation& isolation)
{
    if (!isolation.reason) return "REAL STATE · writes disabled";
    return fmt::format("ISOLATED · {}", DebugStateGuard::isolationReasons.raw(*isolation.reason));
}

std::string guardLine(const DebugSnapshot& snapshot)
{
    return fmt::format("guard      {} · {} · interval {:.1f}s", snapshot.isRunning ? "running" : "stopped",
                       snapshot.isMetered ? "metered" : "not metered", snapshot.sampleInterval);
}

std::string samplingLine(const SamplingDiagnostics& sampling)
{
    const auto& last = sampling.lastDurationSeconds;
    std::string line = fmt::format("sampling   last {} · max {:.2f}s · completed {} · skipped {}",
                                   last ? fmt::format("{:.2f}s", last->count()) : "—",
                                   sampling.maxDurationSeconds.count(), sampling.completedTicks, sampling.skippedTicks);
    if (sampling.completedTicks + sampling.skippedTicks > 0)
        line += fmt::format(" ({:.1f}%)", sampling.skipRate() * 100);
    return line;
}

std::string processLine(const std::optional<ProcessMetrics>& process, const Platform& platform)
{
    if (!process) return fmt::format("process    unavailable ({})", platform.vitalsFailure);
    return fmt::format("process    resident {} · footprint {} · threads {}",
                       MenuPresentation::format(process->residentBytes),
                       MenuPresentation::format(process->footprintBytes), process->threadCount);
}

std::string notifyLine(const NotificationCapability& notifications)
{
    return fmt::format("notify     authorized={} alerts={} canNotify={}", notifications.authorized,
                       notifications.alertsEnabled, !notifications.blockedReason());
}

/// "2026-03-15T10:00:00Z".
std::string iso8601(Date date)
{
    const Calendar utc;
    const CalendarDay day = utc.day(date);
    return fmt::format("{:04}-{:02}-{:02}T{}Z", day.year, day.month, day.day, utc.clockTime(date));
}

/// `text` with blanks behind it up to so many characters.
std::string padded(std::string text, std::size_t columns)
{
    std::size_t count = 0;
    for (std::string_view rest = text; !rest.empty(); ++count) static_cast<void>(takeCharacter(rest));
    if (count < columns) text.append(columns - count, ' ');
    return text;
}

std::string fileLine(const StateFileEntry& file)
{
    constexpr std::size_t nameColumns = 30;
    std::string line =
        fmt::format("  {}  {} · {}", padded(plainText(file.name), nameColumns),
                    MenuPresentation::format(file.byteCount), file.modifiedAt ? iso8601(*file.modifiedAt) : "—");
    if (file.kind == StateFileKind::temporary) line += "  ⚠ leftover";
    if (file.kind == StateFileKind::unknown) line += "  ⚠ unknown";
    return line;
}

/// What all files hold together; the largest number when that is more.
std::uint64_t totalBytes(const std::vector<StateFileEntry>& files)
{
    std::uint64_t total = 0;
    for (const StateFileEntry& file : files) {
        total += std::min(file.byteCount, std::numeric_limits<std::uint64_t>::max() - total);
    }
    return total;
}

} // namespace

std::string text(const DebugSnapshot& snapshot, std::string_view home, const Platform& platform)
{
    std::vector<std::string> lines{
        "# Quellon debug snapshot",
        "# No app names, no network addresses, no per-app traffic.",
        "",
        fmt::format("app        {} · edition {}", snapshot.version, edition(snapshot)),
        fmt::format("system     {} {}", platform.name, snapshot.osVersion),
        fmt::format("state dir  {}  [{}]", plainText(redactHome(snapshot.stateDirectoryPath, home)),
                    isolation(snapshot.isolation)),
        guardLine(snapshot),
        samplingLine(snapshot.sampling),
        fmt::format("           verdict {}",
                    samplingVerdicts.raw(snapshot.sampling.verdict(Seconds{snapshot.sampleInterval}))),
        processLine(snapshot.process, platform),
        notifyLine(snapshot.notifications),
        "",
        "state files",
    };
    for (const StateFileEntry& file : snapshot.files) lines.push_back(fileLine(file));
    lines.push_back(snapshot.files.empty()
                        ? "  (empty)"
                        : fmt::format("  total {}", MenuPresentation::format(totalBytes(snapshot.files))));
    return fmt::format("{}", fmt::join(lines, "\n"));
}

std::string redactHome(std::string_view path, std::string_view home)
{
    if (home.empty()) return std::string{path};
    if (home.ends_with('/')) home.remove_suffix(1);
    if (path == home) return "~";
    const std::string_view rest = path.starts_with(home) ? path.substr(home.size()) : std::string_view{};
    return rest.starts_with('/') ? fmt::format("~{}", rest) : std::string{path};
}

} // namespace quellon::DebugExport
