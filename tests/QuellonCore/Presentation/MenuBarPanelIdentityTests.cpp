#include "QuellonCore/Presentation/MenuBarPanelIdentity.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(MenuBarPanelIdentity, isMenuBarPanel)
{
    struct Case {
        const char* name;
        const char* className;
        std::int64_t level;
        bool isPanel;
    };
    constexpr Case cases[] = {
        {"an unrelated class at level 101", "NSWindow", 101, true},
        {"no class name at level 101", "", 101, true},
        {"the marker at level 0", "MenuBarExtraWindow", 0, true},
        {"the marker within a longer name at level 0", "SwiftUI.MenuBarExtraWindow<Content>", 0, true},
        {"both", "MenuBarExtraWindow", 101, true},
        {"neither", "NSWindow", 0, false},
        {"the level below", "NSWindow", 100, false},
        {"the level above", "NSWindow", 102, false},
        {"a part of the marker", "MenuBarExtra", 0, false},
        {"the marker in other letters", "menubarextrawindow", 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(MenuBarPanelIdentity::isMenuBarPanel(c.className, c.level), c.isPanel);
    }
    EXPECT_EQ(MenuBarPanelIdentity::classNameMarker, "MenuBarExtraWindow");
    EXPECT_EQ(MenuBarPanelIdentity::popUpMenuLevel, 101);
}

} // namespace
} // namespace quellon
