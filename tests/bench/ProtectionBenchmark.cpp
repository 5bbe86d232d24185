// The question who may be touched, asked about every process of a large machine.

#include "QuellonCore/Rules/ProtectionPolicy.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <vector>

namespace quellon {
namespace {

/// A mixture of applications, machinery, shells, kernel threads and names that the kernel has cut.
ProcessTable::Entries processes()
{
    constexpr std::array commands{"/usr/lib/firefox/firefox",
                                  "/usr/libexec/gsd-media-keys",
                                  "[kworker/3:1]",
                                  "gnome-keyring-d",
                                  "/home/someone/.local/bin/a-rather-long-name-of-an-application",
                                  "/usr/bin/python3.12",
                                  "/opt/google/chrome/chrome",
                                  "/usr/bin/bash",
                                  "/usr/bin/git",
                                  "/usr/bin/node"};
    std::vector<ProcessEntry> entries;
    for (std::int32_t pid = 1; pid <= 5'000; ++pid) {
        const std::int32_t group = pid % 3 == 0 ? pid : pid - pid % 3;
        entries.push_back({pid, pid % 5 == 0 ? 0U : 501U, group, commands.at(static_cast<std::size_t>(pid) % 10)});
    }
    return ProcessTable::Entries{std::move(entries)};
}

ProtectionPolicy policy()
{
    ProtectionPolicy policy = ProtectionPolicy::default_(Platform::linux());
    for (int i = 0; i < 20; ++i) policy.policies.set(AppPolicy::always, "app" + std::to_string(i));
    return policy;
}

void protectionGroups(benchmark::State& state)
{
    const ProtectionPolicy asked = policy();
    const auto table = processes();
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(asked.protectedGroups(table));
}
BENCHMARK(protectionGroups)->Unit(benchmark::kMillisecond);

void protectionDecide(benchmark::State& state)
{
    const ProtectionPolicy asked = policy();
    const auto table = processes();
    const auto groups = asked.protectedGroups(table);
    for ([[maybe_unused]] auto _ : state) {
        for (const ProcessEntry& process : table) benchmark::DoNotOptimize(asked.decide(process, {1, 2}, groups));
    }
}
BENCHMARK(protectionDecide)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quellon
