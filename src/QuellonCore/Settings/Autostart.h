#pragma once

#include "QuellonCore/Host/Host.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quellon {

/// Whether the user's session starts the program. It is the file in the user's own folder that says so, so it holds for
/// every copy of the program, and may be changed by the desktop's settings at any time. Main thread only; each call
/// reads or writes one small file.
class Autostart {
public:
    /// `executable` is the absolute path of what is started. The parts of `host` outlive this.
    Autostart(const Host& host, std::filesystem::path executable);

    /// The file that decides. It need not exist.
    [[nodiscard]] const std::filesystem::path& file() const { return file_; }

    /// False as well when there is no file or it can't be read.
    [[nodiscard]] bool isOn() const;

    /// Switches it: the file is written as a whole or removed. A file that says so already is left as it is, with what
    /// the user has changed in it, unless it starts another executable. Absent when it is done; otherwise what went
    /// wrong in a sentence for the user.
    [[nodiscard]] std::optional<std::string> setOn(bool isOn);

private:
    /// The functions of the file's format.
    struct Format {
        std::optional<std::string> (*text)(const std::filesystem::path& executable);
        bool (*isOn)(std::string_view content);
        bool (*starts)(std::string_view content, const std::filesystem::path& executable);
    };

    FileStore& files_;
    std::filesystem::path executable_;
    Format format_;
    std::filesystem::path file_;

    [[nodiscard]] static Format format(const Platform& platform);
    [[nodiscard]] std::optional<std::string> write(const std::string& text);
};

} // namespace quellon
