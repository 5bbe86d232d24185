#include "QuellonCore/Persistence/Persistence.h"

#include "QuellonCore/Persistence/DebugStateGuard.h"
#include "QuellonCore/Support/CaseFold.h"

#include <algorithm>
#include <array>

namespace quellon {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view temporarySuffix = ".tmp";

/// Files of the folder that are no budgets.
constexpr std::array<std::string_view, 8> otherFiles{
    Persistence::settingsFile,
    Persistence::ledgerFile,
    Persistence::suspendedFile,
    Persistence::livenessFile,
    Persistence::enforcementHistoryFile,
    Persistence::explanationsFile,
    Persistence::windowsFile,
    "notifications.log",
};

constexpr std::array<std::string_view, 3> testEnvironmentKeys{
    "XCTestConfigurationFilePath",
    "XCTestBundlePath",
    "XCTestSessionIdentifier",
};
constexpr std::string_view testRunnerName = "xctest";
/// The last one covers the package tool's "…PackageTests" and this project's own "…Tests".
constexpr std::array<std::string_view, 2> testNameEndings{".xctest", "Tests"};

fs::path resolve(const Host& host)
{
    const auto environment = [&host](std::string_view name) { return host.processes.environment(name); };
    const std::string name = host.processes.processName();
    return Persistence::resolveDirectory(environment(Persistence::stateDirectoryEnvironmentKey), name,
                                         Persistence::isRunningInTestHost(name, environment),
                                         DebugStateGuard::applicationSupport(host.files),
                                         host.files.temporaryDirectory(), host.processes.processID());
}

} // namespace

Persistence::Persistence(const Host& host) : files_(host.files), directory_(resolve(host)) {}

fs::path Persistence::resolveDirectory(const std::optional<std::string>& override, std::string_view processName,
                                       bool isTestHost, const fs::path& applicationSupport, const fs::path& temporary,
                                       std::int32_t pid)
{
    if (override && !override->empty()) return *override;
    if (processName == appProcessName && !isTestHost) return applicationSupport / appProcessName;
    return temporary / (std::string{transientPrefix} + std::to_string(pid));
}

bool Persistence::isPlainName(std::string_view name)
{
    constexpr std::string_view notInNames{"/\0", 2};
    return !name.empty() && name != "." && name != ".." && name.find_first_of(notInNames) == std::string_view::npos;
}

bool Persistence::isFreeForBudgets(std::string_view name)
{
    const auto isSame = [name](std::string_view other) { return equalCaseFolded(name, other); };
    return isPlainName(name) && !name.ends_with(temporarySuffix) && std::ranges::none_of(otherFiles, isSame);
}

bool Persistence::isRunningInTestHost(std::string_view processName, const Environment& environment)
{
    const auto isSet = [&](std::string_view key) { return environment(key).has_value(); };
    const auto endsName = [&](std::string_view ending) { return processName.ends_with(ending); };
    return std::any_of(testEnvironmentKeys.begin(), testEnvironmentKeys.end(), isSet) ||
           processName == testRunnerName || std::any_of(testNameEndings.begin(), testNameEndings.end(), endsName);
}

void Persistence::saveText(std::string_view name, const std::function<std::optional<std::string>()>& encode) const
{
    if (!isPlainName(name) || !files_.createDirectories(directory_)) return;
    const auto text = encode();
    if (!text) return;
    // One fixed name is enough: only the main thread saves.
    const fs::path temporary = directory_ / (std::string{name} += temporarySuffix);
    if (!files_.write(temporary, *text)) return;
    // A failure leaves the temporary file to be overwritten by the next save.
    static_cast<void>(files_.replace(temporary, directory_ / name));
}

std::optional<std::string> Persistence::loadText(std::string_view name) const
{
    if (!isPlainName(name)) return std::nullopt;
    auto text = files_.read(directory_ / name);
    if (text && name != ledgerFile) {
        const std::size_t largest = name == explanationsFile ? largestExplanationsFile : largestFile;
        if (text->size() > largest) return std::nullopt;
    }
    return text;
}

void Persistence::remove(std::string_view name) const
{
    if (isPlainName(name)) files_.remove(directory_ / name);
}

} // namespace quellon
