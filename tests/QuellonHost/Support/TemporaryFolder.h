#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace quellon::testing {

/// A fresh folder that is removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "quellon-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error{"no temporary folder"};
        path_ = std::filesystem::canonical(name);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    /// Writes an executable script.
    [[nodiscard]] std::filesystem::path script(std::string_view name, std::string_view text) const
    {
        const auto file = path_ / name;
        std::ofstream{file} << text;
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
        return file;
    }

private:
    std::filesystem::path path_;
};

} // namespace quellon::testing
