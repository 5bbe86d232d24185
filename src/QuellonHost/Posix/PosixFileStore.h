#pragma once

#include "QuellonCore/Host/FileStore.h"
#include "QuellonCore/Host/ProcessControl.h"

namespace quellon {

/// The real file system. Content is not forced onto the disk before `replace`: the file systems of desktops order the
/// two themselves, and a guard that waits for a disk does not guard.
class PosixFileStore final : public FileStore {
public:
    /// Where a platform keeps the data of applications.
    enum class DataFolder {
        xdg,     ///< `$XDG_DATA_HOME` when that is an absolute path, otherwise `~/.local/share`.
        library, ///< `~/Library/Application Support`.
    };

    /// Folders are those of the environment that `processes` tells at this moment.
    PosixFileStore(const ProcessControl& processes, DataFolder dataFolder);

    [[nodiscard]] std::optional<std::string> read(const std::filesystem::path& file) const override;
    [[nodiscard]] bool write(const std::filesystem::path& file, std::string_view content) override;
    [[nodiscard]] bool replace(const std::filesystem::path& from, const std::filesystem::path& to) override;
    bool remove(const std::filesystem::path& file) override;
    [[nodiscard]] bool createDirectories(const std::filesystem::path& directory) override;
    [[nodiscard]] std::filesystem::path canonical(const std::filesystem::path& path) const override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() const override;
    /// `$HOME` when that is an absolute path, otherwise what the user database says, otherwise "/".
    [[nodiscard]] std::filesystem::path homeDirectory() const override { return home_; }
    /// `$TMPDIR` when that is an absolute path, otherwise "/tmp".
    [[nodiscard]] std::filesystem::path temporaryDirectory() const override { return temporary_; }
    [[nodiscard]] bool append(const std::filesystem::path& file, std::string_view content) override;
    [[nodiscard]] std::vector<FileFacts> regularFiles(const std::filesystem::path& directory) const override;

private:
    std::filesystem::path home_;
    std::filesystem::path temporary_;
    std::optional<std::filesystem::path> applicationSupport_;
};

} // namespace quellon
