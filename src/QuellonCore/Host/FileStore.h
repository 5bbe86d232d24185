#pragma once

#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What a folder tells about one of its files.
struct FileFacts {
    std::string name; ///< In the folder, byte for byte as the file system has it.
    std::uint64_t byteCount = 0;
    std::optional<Date> modifiedAt; ///< When the content was last changed; absent when that can't be read.
    bool operator==(const FileFacts&) const = default;
};

/// Seam: the few file operations that state needs, and where the user's folders are. Main thread only. Nothing here
/// throws; a failure is the return value.
class FileStore {
public:
    virtual ~FileStore() = default;

    /// The largest file that is read. The ledger is the largest of the state: some 30 MB for a day of samples every 5
    /// seconds.
    static constexpr std::size_t largestFile = std::size_t{64} * 1024 * 1024;

    /// The whole content; absent when it can't be read, or is larger than `largestFile`.
    [[nodiscard]] virtual std::optional<std::string> read(const std::filesystem::path& file) const = 0;

    /// Creates or overwrites the file, readable by the user alone. False when any byte could not be written, and for a
    /// symbolic link: in a folder that others can write to it may lead to any of the user's files.
    [[nodiscard]] virtual bool write(const std::filesystem::path& file, std::string_view content) = 0;

    /// Puts `from` in the place of `to` in one atomic step; `to` need not exist. False when that failed.
    [[nodiscard]] virtual bool replace(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

    /// Removes the file. False when there was none or it could not be removed.
    virtual bool remove(const std::filesystem::path& file) = 0;

    /// Makes the folder with its missing parents; a new folder is readable by the user alone. True when it is there.
    [[nodiscard]] virtual bool createDirectories(const std::filesystem::path& directory) = 0;

    /// The path made absolute, without "." and "..", symbolic links resolved as far as the path exists, and without a
    /// trailing separator.
    [[nodiscard]] virtual std::filesystem::path canonical(const std::filesystem::path& path) const = 0;

    /// The per-user folder for application data (`~/Library/Application Support`, `$XDG_DATA_HOME`); absent when the
    /// platform names none.
    [[nodiscard]] virtual std::optional<std::filesystem::path> applicationSupportDirectory() const = 0;
    /// The user's home folder.
    [[nodiscard]] virtual std::filesystem::path homeDirectory() const = 0;
    /// The folder for files that need not last.
    [[nodiscard]] virtual std::filesystem::path temporaryDirectory() const = 0;

    /// Adds to the end of a file that is there. False when there is none or it can't be written to, when any byte could
    /// not be written, and for a symbolic link.
    [[nodiscard]] virtual bool append(const std::filesystem::path& file, std::string_view content) = 0;

    /// The regular files that lie in the folder itself, by name, ascending byte by byte; symbolic links, folders and
    /// whatever else is there are left out. Empty when the folder can't be listed.
    [[nodiscard]] virtual std::vector<FileFacts> regularFiles(const std::filesystem::path& directory) const = 0;
};

} // namespace quellon
