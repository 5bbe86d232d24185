#pragma once

#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Support/Json.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace quellon {

/// The state files: small JSON files in one folder. Which folder is decided once, so that a process that is not the
/// real application never touches the user's files. Main thread only. No failure shows: what can't be saved is saved
/// by the next save, and what can't be read is not there. A name that is none for a file in the folder is such a
/// failure: the names of budgets come from a file, and nothing outside of the folder is ever read, written or removed.
class Persistence {
public:
    static constexpr std::string_view settingsFile = "settings.json";
    static constexpr std::string_view ledgerFile = "ledger.json";
    static constexpr std::string_view budgetFile = "budget.json";
    static constexpr std::string_view suspendedFile = "suspended.json";
    static constexpr std::string_view livenessFile = "liveness.json";
    static constexpr std::string_view enforcementHistoryFile = "enforcement-history.json";
    static constexpr std::string_view explanationsFile = "explanations.json";
    static constexpr std::string_view windowsFile = "windows.json";

    /// The largest state file that is looked into, apart from the two below. Honest ones hold some kilobytes.
    static constexpr std::size_t largestFile = std::size_t{8} * 1024 * 1024;
    /// The same for the answers of the lookup service: as many as are kept, each as long as a reply may be. The ledger
    /// may be as large as a file store reads.
    static constexpr std::size_t largestExplanationsFile = std::size_t{16} * 1024 * 1024;

    /// The environment variable that names another folder.
    static constexpr std::string_view stateDirectoryEnvironmentKey = "QUELLON_STATE_DIR";
    /// The process name of the real application, and the name of its folder.
    static constexpr std::string_view appProcessName = "Quellon";
    /// What the process id follows in the name of a throw-away folder.
    static constexpr std::string_view transientPrefix = "QuellonTransient-";

    /// Looks up the value of an environment variable.
    using Environment = std::function<std::optional<std::string>(std::string_view)>;

    /// Decides the folder; touches no file.
    explicit Persistence(const Host& host);

    /// The state folder. It need not exist.
    [[nodiscard]] const std::filesystem::path& directory() const { return directory_; }

    /// Writes the file anew as a whole: the readable file is always a complete earlier version or this one. A value
    /// that JSON can't hold (a number that is not finite, a text that is not UTF-8) saves nothing.
    template <typename T>
    void save(const T& value, std::string_view name) const
    {
        saveText(name, [&value] { return encodeJson(value); });
    }

    /// The file's value; absent when the file can't be read, is too large or does not hold a `T`. The file stays as it
    /// is.
    template <typename T>
    [[nodiscard]] std::optional<T> load(std::string_view name) const
    {
        const auto text = loadText(name);
        return text ? decodeJson<T>(*text) : std::nullopt;
    }
    /// The same for a value that `decode` makes of the JSON, as an optional.
    template <typename Decode>
    [[nodiscard]] std::invoke_result_t<Decode, const Json&> load(std::string_view name, Decode decode) const
    {
        const auto text = loadText(name);
        const auto json = text ? parseJson(*text) : std::nullopt;
        if (!json) return std::nullopt;
        return decode(*json);
    }

    /// Removes the file, if it is there.
    void remove(std::string_view name) const;

    /// The folder for these inputs: `override` as it stands unless empty; the application's own folder for the real
    /// application; otherwise a throw-away folder of this process.
    [[nodiscard]] static std::filesystem::path resolveDirectory(const std::optional<std::string>& override,
                                                                std::string_view processName, bool isTestHost,
                                                                const std::filesystem::path& applicationSupport,
                                                                const std::filesystem::path& temporary,
                                                                std::int32_t pid);

    /// Whether the name is that of a file in the folder itself: not empty, "." or "..", without a slash or a zero byte.
    [[nodiscard]] static bool isPlainName(std::string_view name);

    /// Whether a plan's budget may have this name: a plain one that no other file of the program has. Letter case makes
    /// no difference, as to some file systems.
    [[nodiscard]] static bool isFreeForBudgets(std::string_view name);

    /// Whether a process of this name and environment runs tests: under XCTest, or as one of our test programs.
    [[nodiscard]] static bool isRunningInTestHost(std::string_view processName, const Environment& environment);

private:
    void saveText(std::string_view name, const std::function<std::optional<std::string>()>& encode) const;
    [[nodiscard]] std::optional<std::string> loadText(std::string_view name) const;

    FileStore& files_;
    std::filesystem::path directory_;
};

} // namespace quellon
