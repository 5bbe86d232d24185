#pragma once

#include "QuellonCore/Host/FileStore.h"
#include "QuellonCore/Host/Platform.h"
#include "ScriptedObserver.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// A file system in memory with the faults of real ones. Holds the root, the home folder and the temporary folder at
/// first. Paths are absolute; symbolic links are followed, though not by `write` at the end of a path.
class MemoryFileStore final : public FileStore {
public:
    using Path = std::filesystem::path;

    explicit MemoryFileStore(const Platform& platform);

    [[nodiscard]] std::optional<std::string> read(const Path& file) const override;
    [[nodiscard]] bool write(const Path& file, std::string_view content) override;
    [[nodiscard]] bool replace(const Path& from, const Path& to) override;
    bool remove(const Path& file) override;
    [[nodiscard]] bool createDirectories(const Path& directory) override;
    [[nodiscard]] Path canonical(const Path& path) const override;
    [[nodiscard]] std::optional<Path> applicationSupportDirectory() const override;
    [[nodiscard]] Path homeDirectory() const override { return "/home/user"; }
    [[nodiscard]] Path temporaryDirectory() const override { return "/tmp"; }
    [[nodiscard]] bool append(const Path& file, std::string_view content) override;
    /// Files have no dates but those of `setModified`.
    [[nodiscard]] std::vector<FileFacts> regularFiles(const Path& directory) const override;

    /// Puts a file there, with the folders above it, whatever faults are set.
    void set(const Path& file, std::string content);
    /// Dates the file from now on, whatever is written to it.
    void setModified(const Path& file, std::optional<Date> at) { modified_[canonical(file)] = at; }
    /// Puts a symbolic link there, with the folders above it.
    void link(const Path& path, const Path& target);
    /// The file's content; absent when there is none.
    [[nodiscard]] std::optional<std::string> get(const Path& file) const { return read(file); }
    /// Every file, ascending.
    [[nodiscard]] std::vector<Path> list() const;
    [[nodiscard]] bool isDirectory(const Path& path) const;

    /// From now on these calls fail, without effect.
    void failReads(bool fails = true) { failsReads_ = fails; }
    void failWrites(bool fails = true) { failsWrites_ = fails; }
    void failReplaces(bool fails = true) { failsReplaces_ = fails; }
    void failRemoves(bool fails = true) { failsRemoves_ = fails; }
    void failCreateDirectories(bool fails = true) { failsCreateDirectories_ = fails; }
    /// Every call that changes something fails.
    void readOnly(bool is = true);
    /// The disk holds this many bytes of content: a write beyond it stops where the disk is full, and fails.
    void limit(std::optional<std::uint64_t> bytes) { limit_ = bytes; }
    /// The platform names no folder for application data.
    void noApplicationSupport() { hasApplicationSupport_ = false; }

    /// From now on told of what changes; null for nobody.
    void observe(ScriptedObserver* observer) { observer_ = observer; }

    /// How often each has succeeded or failed since construction.
    [[nodiscard]] std::size_t writes() const { return writes_; }
    [[nodiscard]] std::size_t replaces() const { return replaces_; }

private:
    const Platform& platform_;
    std::map<Path, std::string> files_;
    std::map<Path, std::optional<Date>> modified_;
    std::map<Path, Path> links_;
    std::set<Path> directories_;
    std::optional<std::uint64_t> limit_;
    ScriptedObserver* observer_ = nullptr;
    std::size_t writes_ = 0;
    std::size_t replaces_ = 0;
    bool hasApplicationSupport_ = true;
    bool failsReads_ = false;
    bool failsWrites_ = false;
    bool failsReplaces_ = false;
    bool failsRemoves_ = false;
    bool failsCreateDirectories_ = false;

    bool makeDirectories(const Path& directory);
    /// Adds what the disk has room for. False when that is not all.
    bool store(std::string& stored, std::string_view content);
    [[nodiscard]] std::uint64_t usedBytes() const;
};

} // namespace quellon
