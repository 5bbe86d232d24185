#include "ShellEnding.h"

#include <array>
#include <cstdio>
#include <sys/wait.h>

namespace quellon {

ShellEnding ShellEnding::of(const std::string& commands)
{
    ShellEnding result;
    FILE* const pipe = popen(commands.c_str(), "r");
    if (pipe == nullptr) return result;
    std::array<char, 4096> bytes{};
    for (std::size_t count = 0; (count = std::fread(bytes.data(), 1, bytes.size(), pipe)) > 0;) {
        result.output.append(bytes.data(), count);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

} // namespace quellon
