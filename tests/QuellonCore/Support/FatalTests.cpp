#include "QuellonCore/Support/Fatal.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
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

} // namespace
} // namespace quellon
