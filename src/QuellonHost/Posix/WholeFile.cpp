#include "QuellonHost/Posix/WholeFile.h"

#include "QuellonHost/Posix/Descriptor.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quellon::WholeFile {

namespace {

Problem unreadable(int error)
{
    return {fmt::format("can't be read: {}", std::generic_category().message(error)), false};
}

Problem tooLarge(std::size_t largest)
{
    constexpr std::size_t mebibyte = std::size_t{1024} * 1024;
    return {fmt::format("is larger than {} MB", largest / mebibyte), true};
}

} // namespace

Content read(const std::filesystem::path& file, std::size_t largest)
{
    const Descriptor descriptor{open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)};
    if (!descriptor) return unreadable(errno);
    return read(descriptor.get(), largest);
}

Content read(int descriptor, std::size_t largest)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return unreadable(errno);
    if (S_ISREG(status.st_mode) && status.st_size > static_cast<off_t>(largest)) return tooLarge(largest);
    std::string content;
    std::array<char, 65'536> buffer{};
    while (true) {
        const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return unreadable(errno);
        if (count == 0) return content;
        content.append(buffer.data(), static_cast<std::size_t>(count));
        if (content.size() > largest) return tooLarge(largest);
    }
}

} // namespace quellon::WholeFile
