#include "QuellonHost/SystemHost.h"
#include "ScriptedHost.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace quellon {
namespace {

struct RealWorld {
    SystemHost system;
    Host host = system.host();
};

struct ScriptedWorld {
    ScriptedHost scripted;
    Host host = scripted.host();
    ScriptedWorld()
    {
        scripted.setAddresses({{"lo", "127.0.0.1"}, {"en5", "172.20.10.4"}});
        scripted.metrics(ProcessMetrics{50'000'000, 40'000'000, 7});
    }
};

template <typename World>
class SmallSeamsContract : public ::testing::Test {
protected:
    World world;
    Host& host = world.host;
};
using Worlds = ::testing::Types<RealWorld, ScriptedWorld>;
TYPED_TEST_SUITE(SmallSeamsContract, Worlds);

TYPED_TEST(SmallSeamsContract, theClockTellsADateOfOurTime)
{
    using namespace std::chrono;
    constexpr Date before{sys_days{2025y / 1 / 1}.time_since_epoch() - referenceDateSince1970};
    EXPECT_GT(this->host.clock.now(), before);
}

TYPED_TEST(SmallSeamsContract, identifiersAreVersionFourAndNeverRepeat)
{
    std::set<UUID> seen;
    for (int i = 0; i < 1000; ++i) {
        const UUID each = this->host.identifiers.next();
        EXPECT_EQ(each.text()[14], '4');
        EXPECT_NE(std::string{"89AB"}.find(each.text()[19]), std::string::npos);
        EXPECT_TRUE(seen.insert(each).second) << each.text();
    }
}

TYPED_TEST(SmallSeamsContract, addressesAreInDottedDecimal)
{
    for (const auto& each : this->host.addresses.ipv4Addresses()) {
        EXPECT_FALSE(each.name.empty());
        EXPECT_EQ(std::count(each.ipv4.begin(), each.ipv4.end(), '.'), 3) << each.ipv4;
        EXPECT_EQ(each.ipv4.find_first_not_of("0123456789."), std::string::npos) << each.ipv4;
    }
}

TYPED_TEST(SmallSeamsContract, theOwnProcess)
{
    EXPECT_GT(this->host.processes.processID(), 1);
    EXPECT_FALSE(this->host.processes.processName().empty());
    EXPECT_EQ(this->host.processes.processName().find('/'), std::string::npos);
    EXPECT_EQ(this->host.processes.environment("QUELLON_NO_SUCH_VARIABLE"), std::nullopt);
    const auto metrics = this->host.processes.metrics();
    ASSERT_TRUE(metrics.has_value());
    EXPECT_GT(metrics->residentBytes, 100'000U);
    EXPECT_GT(metrics->footprintBytes, 0U);
    EXPECT_GE(metrics->threadCount, 1U);
}

TYPED_TEST(SmallSeamsContract, thePlatformHasACommandForEachRole)
{
    for (const auto& tool : this->host.platform.tools) EXPECT_FALSE(tool.path.empty());
}

} // namespace
} // namespace quellon
