#include "MemoryFileStore.h"

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

constexpr int mostLinks = 40;

} // namespace

MemoryFileStore::MemoryFileStore(const Platform& platform) : platform_{platform}, directories_{"/"}
{
    makeDirectories(homeDirectory());
    makeDirectories(temporaryDirectory());
}

std::optional<std::string> MemoryFileStore::read(const Path& file) const
{
    const auto found = files_.find(canonical(file));
    if (failsReads_ || found == files_.end() || found->second.size() > largestFile) return std::nullopt;
    return found->second;
}

bool MemoryFileStore::write(const Path& file, std::string_view content)
{
    ++writes_;
    const Path path = canonical(file.parent_path()) / file.filename();
    if (failsWrites_ || links_.contains(path)) return false;
    if (isDirectory(path) || !isDirectory(path.parent_path())) return false;
    std::string& stored = files_[path];
    stored.clear();
    return store(stored, content);
}

bool MemoryFileStore::append(const Path& file, std::string_view content)
{
    ++writes_;
    const Path path = canonical(file.parent_path()) / file.filename();
    const auto found = files_.find(path);
    if (failsWrites_ || links_.contains(path) || found == files_.end()) return false;
    return store(found->second, content);
}

bool MemoryFileStore::store(std::string& stored, std::string_view content)
{
    const std::uint64_t used = usedBytes();
    const std::uint64_t room = !limit_ ? content.size() : *limit_ > used ? *limit_ - used : 0;
    const auto fits = static_cast<std::size_t>(std::min<std::uint64_t>(room, content.size()));
    stored += content.substr(0, fits);
    return fits == content.size();
}

bool MemoryFileStore::replace(const Path& from, const Path& to)
{
    ++replaces_;
    const Path source = canonical(from);
    const Path target = canonical(to.parent_path()) / to.filename(); // a link at the end is replaced, not followed
    const auto found = files_.find(source);
    if (failsReplaces_ || found == files_.end()) return false;
    if (isDirectory(target) || !isDirectory(target.parent_path())) return false;
    if (source == target) return true;
    links_.erase(target);
    files_[target] = std::move(found->second);
    files_.erase(source);
    if (observer_ != nullptr) observer_->saved(target);
    return true;
}

bool MemoryFileStore::remove(const Path& file)
{
    const Path path = canonical(file.parent_path()) / file.filename();
    if (failsRemoves_) return false;
    if (links_.erase(path) + files_.erase(path) == 0) return false;
    if (observer_ != nullptr) observer_->removed(path);
    return true;
}

bool MemoryFileStore::createDirectories(const Path& directory)
{
    if (isDirectory(directory)) return true;
    return !failsCreateDirectories_ && makeDirectories(canonical(directory));
}

bool MemoryFileStore::makeDirectories(const Path& directory)
{
    Path path;
    for (const auto& part : directory) {
        path /= part;
        if (files_.contains(path)) return false;
        directories_.insert(path);
    }
    return true;
}

MemoryFileStore::Path MemoryFileStore::canonical(const Path& path) const
{
    Path rest = ("/" / path).lexically_normal();
    for (int followed = 0; followed < mostLinks; ++followed) {
        Path resolved;
        bool changed = false;
        for (const auto& part : rest) {
            resolved /= part;
            const auto link = changed ? links_.end() : links_.find(resolved);
            if (link == links_.end()) continue;
            resolved = (resolved.parent_path() / link->second).lexically_normal();
            changed = true;
        }
        rest = resolved.lexically_normal();
        if (!changed) break;
    }
    return rest.has_filename() ? rest : rest.parent_path();
}

std::vector<FileFacts> MemoryFileStore::regularFiles(const Path& directory) const
{
    std::vector<FileFacts> result;
    if (failsReads_ || !isDirectory(directory)) return result;
    const Path folder = canonical(directory);
    for (const auto& [path, content] : files_) {
        if (path.parent_path() != folder || links_.contains(path)) continue;
        const auto at = modified_.find(path);
        result.push_back({path.filename().native(), content.size(), at != modified_.end() ? at->second : std::nullopt});
    }
    return result;
}

std::optional<MemoryFileStore::Path> MemoryFileStore::applicationSupportDirectory() const
{
    if (!hasApplicationSupport_) return std::nullopt;
    return homeDirectory() / (platform_.name == "macOS" ? "Library/Application Support" : ".local/share");
}

void MemoryFileStore::set(const Path& file, std::string content)
{
    const Path path = canonical(file);
    makeDirectories(path.parent_path());
    files_[path] = std::move(content);
}

void MemoryFileStore::link(const Path& path, const Path& target)
{
    const Path place = canonical(path.parent_path()) / path.filename();
    makeDirectories(place.parent_path());
    links_[place] = target;
}

std::vector<MemoryFileStore::Path> MemoryFileStore::list() const
{
    std::vector<Path> result;
    result.reserve(files_.size());
    for (const auto& file : files_) result.push_back(file.first);
    return result;
}

bool MemoryFileStore::isDirectory(const Path& path) const
{
    return directories_.contains(canonical(path));
}

void MemoryFileStore::readOnly(bool is)
{
    failsWrites_ = is;
    failsReplaces_ = is;
    failsRemoves_ = is;
    failsCreateDirectories_ = is;
}

std::uint64_t MemoryFileStore::usedBytes() const
{
    std::uint64_t sum = 0;
    for (const auto& file : files_) sum += file.second.size();
    return sum;
}

} // namespace quellon
