#include "QuellonCore/Diagnostics/ProcessVitals.h"

#include "ScriptedHost.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(ProcessVitals, isWhatTheSystemTells)
{
    ScriptedHost host;
    host.metrics(std::nullopt);
    EXPECT_EQ(ProcessVitals::current(host.host()), std::nullopt);
    const ProcessMetrics metrics{30'000'000, 20'000'000, 4};
    host.metrics(metrics);
    EXPECT_EQ(ProcessVitals::current(host.host()), metrics);
}

} // namespace
} // namespace quellon
