#include "QuellonProbe/ApplicationPath.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <sys/stat.h>

namespace quellon {
namespace {

constexpr std::string_view deletedMark = " (deleted)";
constexpr std::string_view sandboxFolder = "/app/";
constexpr std::string_view mountMark = "/.mount_";
constexpr std::size_t mountRandom = 6; ///< letters that mkdtemp() puts in
constexpr std::array<std::string_view, 2> snapFolders{"/snap/", "/var/lib/snapd/snap/"};
constexpr std::array<std::string_view, 2> flatpakFolders{"/flatpak/app/", "/flatpak/runtime/"};
constexpr std::array<std::string_view, 9> sharedNames{"bin",     "sbin",  "lib",   "lib32", "lib64",
                                                      "libexec", "share", "games", "local"};
constexpr std::array<std::string_view, 3> sharedParents{"/usr", "/usr/local", "/var"};

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& texts, std::string_view text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

std::string_view parent(std::string_view path)
{
    return path.substr(0, std::min(path.rfind('/'), path.size()));
}

std::string_view lastName(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

bool isShared(std::string_view folder)
{
    const auto above = parent(folder);
    return above.empty() || contains(sharedParents, above) || lastName(above) == "home" ||
           contains(sharedNames, lastName(folder));
}

bool isExecutableFile(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & 0111U) != 0;
}

/// The end of the component that begins at `begin`: the place of the next slash, or npos when it is the last one.
std::size_t componentEnd(std::string_view path, std::size_t begin)
{
    return begin > path.size() ? std::string_view::npos : path.find('/', begin);
}

std::optional<std::string> withoutSnapRevision(std::string_view path)
{
    for (const auto folder : snapFolders) {
        if (path.substr(0, folder.size()) != folder) continue;
        const auto name = componentEnd(path, folder.size());
        if (name == std::string_view::npos) return std::nullopt;
        const auto revision = componentEnd(path, name + 1);
        if (revision == std::string_view::npos) return std::nullopt;
        return std::string{snapFolders[0]}
            .append(path.substr(folder.size(), name - folder.size()))
            .append(path.substr(revision));
    }
    return std::nullopt;
}

std::optional<std::string> withoutFlatpakCommit(std::string_view path)
{
    constexpr std::string_view files = "/files/";
    for (const auto folder : flatpakFolders) {
        const auto at = path.find(folder);
        if (at == std::string_view::npos) continue;
        const auto id = componentEnd(path, at + folder.size());
        auto end = id;
        for (int component = 0; component < 3 && end != std::string_view::npos; ++component) {
            end = componentEnd(path, end + 1); // architecture, branch, commit
        }
        if (end == std::string_view::npos || path.substr(end, files.size()) != files) return std::nullopt;
        return std::string{path.substr(0, id)}.append(path.substr(end));
    }
    return std::nullopt;
}

std::optional<std::string> withoutMountRandom(std::string_view path)
{
    const auto at = path.find(mountMark);
    if (at == std::string_view::npos) return std::nullopt;
    const auto name = at + mountMark.size();
    const auto end = componentEnd(path, name);
    if (end == std::string_view::npos || end - name < mountRandom) return std::nullopt;
    return std::string{path.substr(0, end - mountRandom)}.append(path.substr(end));
}

/// The value of `key=` in a section of a key file; empty when there is none.
std::string_view keyFileValue(std::string_view text, std::string_view section, std::string_view key)
{
    bool inside = false;
    while (!text.empty()) {
        const auto line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (!line.empty() && line.front() == '[')
            inside = line == section;
        else if (inside && line.size() > key.size() && line.substr(0, key.size()) == key && line[key.size()] == '=')
            return line.substr(key.size() + 1);
    }
    return {};
}

bool isApplicationId(std::string_view id)
{
    const auto allowed = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '-' ||
               c == '_';
    };
    return id.size() <= 255 && id.find('.') != std::string_view::npos && id.front() != '.' &&
           std::all_of(id.begin(), id.end(), allowed);
}

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

} // namespace

std::optional<std::string> ApplicationPath::mainExecutable(std::string_view path, const std::string& root)
{
    if (path.empty() || path.front() != '/') return std::nullopt;
    for (auto folder = parent(path); !folder.empty(); folder = parent(folder)) {
        if (isShared(folder)) continue;
        auto candidate = std::string{folder}.append("/").append(lastName(folder));
        if (isExecutableFile(root + candidate)) return candidate;
    }
    return std::nullopt;
}

std::string ApplicationPath::stable(std::string_view path)
{
    if (auto snap = withoutSnapRevision(path)) return *snap;
    if (auto flatpak = withoutFlatpakCommit(path)) return *flatpak;
    if (auto image = withoutMountRandom(path)) return *image;
    return std::string{path};
}

std::optional<std::string> ApplicationPath::outOfSandbox(std::string_view path, std::string_view flatpakInfo)
{
    const auto id = keyFileValue(flatpakInfo, "[Application]", "name");
    if (path.substr(0, sandboxFolder.size()) != sandboxFolder || !isApplicationId(id)) return std::nullopt;
    const auto installed = keyFileValue(flatpakInfo, "[Instance]", "app-path");
    const auto idFolder = std::string{flatpakFolders[0]}.append(id).append("/");
    const bool plausible = !installed.empty() && installed.front() == '/' && endsWith(installed, "/files") &&
                           installed.find(idFolder) != std::string_view::npos &&
                           installed.find("/../") == std::string_view::npos;
    std::string host = plausible ? std::string{installed} : "/var/lib" + idFolder + "files";
    return host.append(path.substr(sandboxFolder.size() - 1));
}

std::string ApplicationPath::of(std::string_view executable, const std::string& root)
{
    if (endsWith(executable, deletedMark)) executable.remove_suffix(deletedMark.size());
    const auto home = mainExecutable(executable, root);
    return stable(home ? std::string_view{*home} : executable);
}

} // namespace quellon
