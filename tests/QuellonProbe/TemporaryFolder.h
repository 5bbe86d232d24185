#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace quellon::testing {

/// A folder of its own for one test, gone with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string place = (std::filesystem::temp_directory_path() / "quellon-probe-XXXXXX").string();
        if (mkdtemp(place.data()) != nullptr) path_ = place;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::string& path() const { return path_; }

    /// Writes a file below the folder, with the folders above it.
    void write(const std::string& name, std::string_view text, unsigned mode = 0644) const
    {
        const auto file = std::filesystem::path{path_ + "/" + name};
        std::filesystem::create_directories(file.parent_path());
        std::ofstream{file, std::ios::binary} << text;
        chmod(file.c_str(), mode);
    }
    void executable(const std::string& name) const { write(name, "#!/bin/sh\n", 0755); }
    void link(const std::string& name, const std::string& target) const
    {
        const auto file = std::filesystem::path{path_ + "/" + name};
        std::filesystem::create_directories(file.parent_path());
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
        std::filesystem::create_symlink(target, file);
    }
    void remove(const std::string& name) const { std::filesystem::remove_all(path_ + "/" + name); }

private:
    std::string path_;
};

} // namespace quellon::testing
