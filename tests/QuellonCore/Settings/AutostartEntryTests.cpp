#include "QuellonCore/Settings/AutostartEntry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quellon {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(AutostartEntry, quoting)
{
    struct Case {
        const char* name;
        std::string_view path;
        std::string_view exec; ///< As it stands in the file.
        std::string_view tryExec;
    };
    constexpr Case cases[] = {
        {"a plain path", "/usr/bin/Quellon", R"("/usr/bin/Quellon")", "/usr/bin/Quellon"},
        {"blanks", "/opt/My Programs/Quellon", R"("/opt/My Programs/Quellon")", "/opt/My Programs/Quellon"},
        {"a dollar sign", "/opt/$HOME/Quellon", R"("/opt/\\$HOME/Quellon")", "/opt/$HOME/Quellon"},
        {"a back quote", "/opt/`/Quellon", R"("/opt/\\`/Quellon")", "/opt/`/Quellon"},
        {"a quote", "/opt/\"/Quellon", R"("/opt/\\"/Quellon")", "/opt/\"/Quellon"},
        {"a backslash", "/opt/\\/Quellon", R"("/opt/\\\\/Quellon")", R"(/opt/\\/Quellon)"},
        {"a percent sign", "/opt/100%/Quellon", R"("/opt/100%%/Quellon")", "/opt/100%/Quellon"},
        {"signs that need nothing", "/opt/a'b;c&d#e/Quellon", R"("/opt/a'b;c&d#e/Quellon")", "/opt/a'b;c&d#e/Quellon"},
        {"other letters", "/home/张三/Quellon", R"("/home/张三/Quellon")", "/home/张三/Quellon"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto text = AutostartEntry::text(c.path);
        ASSERT_TRUE(text);
        EXPECT_THAT(*text, StartsWith("[Desktop Entry]\nType=Application\n"));
        EXPECT_THAT(*text, HasSubstr("\nExec=" + std::string{c.exec} + "\n"));
        EXPECT_THAT(*text, HasSubstr("\nTryExec=" + std::string{c.tryExec} + "\n"));
        EXPECT_TRUE(AutostartEntry::isOn(*text));
        EXPECT_TRUE(AutostartEntry::starts(*text, c.path));
        EXPECT_FALSE(AutostartEntry::starts(*text, "/usr/local/bin/Quellon"));
    }
}

TEST(AutostartEntry, pathsThatItCanNotHold)
{
    struct Case {
        const char* name;
        std::string_view path;
    };
    constexpr Case cases[] = {
        {"empty", ""},
        {"relative", "bin/Quellon"},
        {"a line feed", "/opt/a\nHidden=true/Quellon"},
        {"a tab", "/opt/a\tb/Quellon"},
        {"delete", "/opt/a\x7F/Quellon"},
        {"an equals sign", "/opt/a=b/Quellon"},
        {"no UTF-8", "/opt/\xFF/Quellon"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(AutostartEntry::text(c.path), std::nullopt);
    }
}

TEST(AutostartEntry, isOn)
{
    struct Case {
        const char* name;
        std::string_view entry;
        bool isOn;
    };
    constexpr Case cases[] = {
        {"nothing", "", false},
        {"no entry at all", "hello", false},
        {"a command", "[Desktop Entry]\nExec=Quellon\n", true},
        {"no command", "[Desktop Entry]\nName=Quellon\n", false},
        {"an empty command", "[Desktop Entry]\nExec= \n", false},
        {"hidden", "[Desktop Entry]\nExec=Quellon\nHidden=true\n", false},
        {"hidden and nothing else", "[Desktop Entry]\nHidden=true\n", false},
        {"hidden, with blanks", "[Desktop Entry]\nExec=Quellon\nHidden = true \n", false},
        {"hidden, lines with carriage returns", "[Desktop Entry]\r\nExec=Quellon\r\nHidden=true\r\n", false},
        {"hidden, in the last line without an end", "[Desktop Entry]\nExec=Quellon\nHidden=true", false},
        {"not hidden", "[Desktop Entry]\nExec=Quellon\nHidden=false\n", true},
        {"hidden in a comment", "[Desktop Entry]\nExec=Quellon\n#Hidden=true\n", true},
        {"hidden in another group", "[Desktop Entry]\nExec=Quellon\n[Other]\nHidden=true\n", true},
        {"a command in another group", "[Desktop Action]\nExec=Quellon\n", false},
        {"switched off by GNOME", "[Desktop Entry]\nExec=Quellon\nX-GNOME-Autostart-enabled=false\n", false},
        {"switched on by GNOME", "[Desktop Entry]\nExec=Quellon\nX-GNOME-Autostart-enabled=true\n", true},
        {"a longer key", "[Desktop Entry]\nExec=Quellon\nHiddenAway=true\n", true},
        {"a comment first", "# mine\n\n[Desktop Entry]\nExec=Quellon --plain\n", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(AutostartEntry::isOn(c.entry), c.isOn);
    }
}

TEST(AutostartEntry, starts)
{
    struct Case {
        const char* name;
        std::string_view entry;
        bool starts;
    };
    constexpr Case cases[] = {
        {"with options", "[Desktop Entry]\nExec=\"/usr/bin/Quellon\" --auto-resume 60\n", true},
        {"a longer name", "[Desktop Entry]\nExec=\"/usr/bin/Quellon\"2\n", false},
        {"by name alone", "[Desktop Entry]\nExec=Quellon\n", false},
        {"nothing", "[Desktop Entry]\n", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(AutostartEntry::starts(c.entry, "/usr/bin/Quellon"), c.starts);
    }
}

} // namespace
} // namespace quellon
