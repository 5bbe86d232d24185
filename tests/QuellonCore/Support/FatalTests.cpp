#include "QuellonCore/Support/Fatal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quellon {
namespace {

void say(const char* text)
{
    std::fputs(text, stderr);
}

/// Fails in a process of its own: must end with 70, and must have written what `expected` matches.
#define EXPECT_FATAL(statement, expected) EXPECT_EXIT(statement, testing::ExitedWithCode(70), expected)

TEST(FatalDeathTest, saysWhatHappened)
{
    EXPECT_FATAL(fatal("too much"), "^fatal: too much\n$");
}

TEST(FatalDeathTest, cleansUpFirstTheOldestFirst)
{
    const FatalCleanup first{[] { say("one "); }};
    const FatalCleanup second{[] { say("two "); }};
    EXPECT_FATAL(fatal("too much"), "^one two fatal: too much\n$");
}

TEST(FatalDeathTest, whatIsNoMoreIsNotDone)
{
    const FatalCleanup first{[] { say("one "); }};
    std::optional<FatalCleanup> second{std::in_place, [] { say("two "); }};
    const FatalCleanup third{[] { say("three "); }};
    second.reset();
    EXPECT_FATAL(fatal("too much"), "^one three fatal: too much\n$");
}

TEST(FatalDeathTest, aCleanupThatFailsInTurnDoesNotStopTheOthers)
{
    const FatalCleanup first{[] {
        say("one ");
        fatal("again");
    }};
    const FatalCleanup second{[] { say("two "); }};
    EXPECT_FATAL(fatal("too much"), "^one two fatal: again\n$");
}

TEST(FatalDeathTest, aCleanupMayEndAnother)
{
    std::optional<FatalCleanup> second;
    std::optional<FatalCleanup> first{std::in_place, [&] {
                                          say("one ");
                                          second.reset();
                                      }};
    second.emplace([] { say("two "); });
    EXPECT_FATAL(fatal("too much"), "^one fatal: too much\n$");
}

#ifdef __linux__ // which tells of a thread whether it waits

/// True when this thread of the process waits for something.
bool isAsleep(pid_t thread)
{
    std::ifstream file{"/proc/self/task/" + std::to_string(thread) + "/stat"};
    std::string text;
    std::getline(file, text);
    return text.find(") S ") != std::string::npos;
}

TEST(FatalDeathTest, aSecondThreadThatFailsWaitsForTheCleanup)
{
    const auto failTwice = [] {
        std::atomic<pid_t> second{0};
        const FatalCleanup first{[&second] {
            std::thread{[&second] {
                second = gettid();
                fatal("second");
            }}.detach();
            while (second == 0 || !isAsleep(second)) std::this_thread::yield();
            say("done ");
        }};
        fatal("first");
    };
    EXPECT_FATAL(failTwice(), "^done fatal: first\n$");
}

#endif

} // namespace
} // namespace quellon
