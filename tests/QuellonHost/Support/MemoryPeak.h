#pragma once

#include <cstddef>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace quellon::testing {

/// How much more this process has held in memory at any moment since this was made, as the system tells.
class MemoryPeak {
public:
    /// What a measurement may be off by. Sanitizers keep for a while what is freed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr std::size_t allowance = std::size_t{32} << 20U;
#else
    static constexpr std::size_t allowance = std::size_t{1} << 20U;
#endif

    MemoryPeak()
    {
#ifdef __GLIBC__
        malloc_trim(0); // what is free but still here would hide growth
#endif
        before_ = residentBytes("VmRSS:");
        std::ofstream{"/proc/self/clear_refs"} << "5"; // the most counts anew
    }

    [[nodiscard]] std::size_t growth() const
    {
        const auto most = residentBytes("VmHWM:");
        return most > before_ ? most - before_ : 0;
    }

private:
    std::size_t before_ = 0;

    static std::size_t residentBytes(std::string_view name)
    {
        std::ifstream status{"/proc/self/status"};
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with(name)) return std::stoul(line.substr(name.size() + 1)) * 1024;
        }
        ADD_FAILURE() << "no " << name;
        return 0;
    }
};

} // namespace quellon::testing
