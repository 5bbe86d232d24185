#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonHost/Linux/LinuxHost.h"
#include "QuellonHost/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace quellon {
namespace {

constexpr const char* names[] = {"settings.json",  "ledger.json",   "budget.json",
                                 "suspended.json", "liveness.json", "enforcement-history.json"};

/// How many bytes this process has read from files, pipes and the like.
std::uint64_t bytesRead()
{
    std::ifstream file{"/proc/self/io"};
    std::string key;
    std::uint64_t value = 0;
    file >> key >> value;
    return key == "rchar:" ? value : 0;
}

/// A guard on real files, which is constructed and nothing else; how many bytes that has read.
std::uint64_t bytesReadByAStart(const testing::TemporaryFolder& folder)
{
    setenv("QUELLON_STATE_DIR", folder.path().c_str(), 1); // NOLINT(concurrency-mt-unsafe): no other thread
    LinuxHost system{folder / "missing"};
    unsetenv("QUELLON_STATE_DIR"); // NOLINT(concurrency-mt-unsafe)
    GuardEngine::Options options;
    options.autoStart = false;
    const std::uint64_t before = bytesRead();
    const GuardEngine engine{system.host(), options};
    const std::uint64_t after = bytesRead();
    EXPECT_GT(before, 0U);
    EXPECT_EQ(engine.settings().planGB(), 30.0);
    EXPECT_TRUE(engine.suspended().empty());
    EXPECT_TRUE(engine.ledger().snapshot().buckets.empty());
    EXPECT_TRUE(engine.enforcementHistory().records.empty());
    return after - before;
}

constexpr std::uint64_t allElse = 1'000'000; ///< Time zones, /proc, and whatever else a start reads.

TEST(StateFilesOnDisk, hugeOnesAreRefusedByTheirSize)
{
    constexpr std::uintmax_t huge = 100'000'000;
    const testing::TemporaryFolder folder;
    for (const char* name : names) {
        std::ofstream{folder / name} << "{}";
        std::filesystem::resize_file(folder / name, huge); // a hole: nothing is written
    }
    EXPECT_LT(bytesReadByAStart(folder), allElse);
    for (const char* name : names) EXPECT_EQ(std::filesystem::file_size(folder / name), huge) << name;
}

TEST(StateFilesOnDisk, deepOnesAreReadOnce)
{
    constexpr std::uintmax_t levels = 100'000;
    const testing::TemporaryFolder folder;
    for (const char* name : names) std::ofstream{folder / name} << std::string(levels, '[');
    const std::uint64_t count = bytesReadByAStart(folder);
    EXPECT_GE(count, std::size(names) * levels);
    EXPECT_LT(count, std::size(names) * levels + allElse);
    for (const char* name : names) EXPECT_EQ(std::filesystem::file_size(folder / name), levels) << name;
}

} // namespace
} // namespace quellon
