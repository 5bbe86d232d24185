#include "QuellonHost/Posix/ChildProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace quellon {
namespace {

TEST(ChildProcess, noDescriptorButTheStandardOnesIsInherited)
{
    // As a library opens one that thinks of no children.
    const Descriptor open{::open("/dev/null", O_RDONLY)}; // NOLINT: without O_CLOEXEC
    ASSERT_GT(open.get(), STDERR_FILENO);
    const std::string test = "test -e /dev/fd/" + std::to_string(open.get());
    ASSERT_EQ(access(("/dev/fd/" + std::to_string(open.get())).c_str(), F_OK), 0) << "the way to look works";

    auto child = ChildProcess::start({"/bin/sh", {"-c", test + " && echo open || echo closed"}}, {});
    ASSERT_TRUE(child);
    std::string said;
    char byte = 0;
    while (read(child->output.get(), &byte, 1) == 1) said += byte;
    child->awaitExit();
    EXPECT_TRUE(child->reap(Deadline{}));
    EXPECT_EQ(said, "closed\n");
}

} // namespace
} // namespace quellon
