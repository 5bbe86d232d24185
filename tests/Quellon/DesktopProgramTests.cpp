#include "ShellEnding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::HasSubstr;

/// The program with these options, the toolkit asked for a platform that it does not have.
ShellEnding withoutPlatform(const std::string& options)
{
    return ShellEnding::of("exec 2>&1; cd /; export TZ=UTC HOME=/nonexistent QUELLON_STATE_DIR=/nonexistent "
                           "DISPLAY=:63999 QT_QPA_PLATFORM=no-such-platform; exec '" QUELLON_PROGRAM "' " +
                           options);
}

TEST(DesktopProgram, aPlatformThatIsMissing)
{
    EXPECT_EQ(withoutPlatform("--plain --duration 0.5").status, 0) << "not asked for a display";
    const ShellEnding desktop = withoutPlatform("--duration 0.5");
    EXPECT_EQ(desktop.status, 0);
    EXPECT_THAT(desktop.output, HasSubstr("\"no-such-platform\"")) << "what is missing";
    EXPECT_THAT(desktop.output, HasSubstr("going on without a window"));
    EXPECT_THAT(desktop.output, HasSubstr("Quellon Pro started"));
}

} // namespace
} // namespace quellon
