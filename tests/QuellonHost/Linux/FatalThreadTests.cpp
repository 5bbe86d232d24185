#include "QuellonCore/Support/Fatal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <unistd.h>

namespace quellon {
namespace {

/// True when this thread of the process waits for something.
bool isAsleep(pid_t thread)
{
    std::ifstream file{"/proc/self/task/" + std::to_string(thread) + "/stat"};
    std::string text;
    std::getline(file, text);
    return text.find(") S ") != std::string::npos;
}

TEST(FatalThreadDeathTest, aSecondThreadThatFailsWaitsForTheCleanup)
{
    const auto failTwice = [] {
        std::atomic<pid_t> second{0};
        const FatalCleanup first{[&second] {
            std::thread{[&second] {
                second = gettid();
                fatal("second");
            }}.detach();
            while (second == 0 || !isAsleep(second)) std::this_thread::yield();
            std::fputs("done ", stderr);
        }};
        fatal("first");
    };
    EXPECT_EXIT(failTwice(), testing::ExitedWithCode(70), "^done fatal: first\n$");
}

} // namespace
} // namespace quellon
