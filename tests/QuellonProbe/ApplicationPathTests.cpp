#include "QuellonProbe/ApplicationPath.h"

#include "QuellonProbe/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::TemporaryFolder;

TEST(ApplicationPath, stable)
{
    struct Case {
        const char* name;
        const char* path;
        const char* stable;
    };
    constexpr Case cases[] = {
        {"ordinary", "/usr/bin/curl", "/usr/bin/curl"},
        {"empty", "", ""},
        {"snap", "/snap/firefox/4793/usr/lib/firefox/firefox", "/snap/firefox/usr/lib/firefox/firefox"},
        {"snap installed by hand", "/snap/tool/x1/bin/tool", "/snap/tool/bin/tool"},
        {"snap where /snap is a link", "/var/lib/snapd/snap/tool/12/bin/tool", "/snap/tool/bin/tool"},
        {"too short for a snap", "/snap/bin/firefox", "/snap/bin/firefox"},
        {"snap folder elsewhere", "/home/u/snap/firefox/common/x", "/home/u/snap/firefox/common/x"},
        {"Flatpak of the system",
         "/var/lib/flatpak/app/org.mozilla.firefox/x86_64/stable/0a1b2c/files/lib/firefox/firefox",
         "/var/lib/flatpak/app/org.mozilla.firefox/files/lib/firefox/firefox"},
        {"Flatpak of a user", "/home/u/.local/share/flatpak/app/org.x.Y/aarch64/beta/ff00/files/bin/y",
         "/home/u/.local/share/flatpak/app/org.x.Y/files/bin/y"},
        {"Flatpak runtime", "/var/lib/flatpak/runtime/org.gnome.Platform/x86_64/45/aa/files/bin/python3.11",
         "/var/lib/flatpak/runtime/org.gnome.Platform/files/bin/python3.11"},
        {"Flatpak path without files", "/var/lib/flatpak/app/org.x.Y/x86_64/stable/0a1b2c/export/bin/y",
         "/var/lib/flatpak/app/org.x.Y/x86_64/stable/0a1b2c/export/bin/y"},
        {"Flatpak path that ends early", "/var/lib/flatpak/app/org.x.Y", "/var/lib/flatpak/app/org.x.Y"},
        {"AppImage", "/tmp/.mount_ObsidiaB3xY9/usr/bin/obsidian", "/tmp/.mount_Obsidi/usr/bin/obsidian"},
        {"AppImage with another temporary folder", "/var/tmp/.mount_xABCDEF/AppRun", "/var/tmp/.mount_x/AppRun"},
        {"name too short for an AppImage", "/tmp/.mount_abc/x", "/tmp/.mount_abc/x"},
        {"mount folder alone", "/tmp/.mount_ObsidiaB3xY9", "/tmp/.mount_ObsidiaB3xY9"},
        {"relative", "snap/x/1/y", "snap/x/1/y"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ApplicationPath::stable(c.path), c.stable);
    }
}

TEST(ApplicationPath, namesTheMainExecutable)
{
    const TemporaryFolder root;
    for (const auto* each : {"opt/google/chrome/chrome", "usr/share/code/code", "usr/bin/bin", "usr/lib/lib",
                             "home/alex/alex", "var/home/kim/kim", "usr/usr", "opt/opt", "home/alex/.local/bin/bin",
                             "usr/local/local", "root/root", "home/alex/apps/game/game", "usr/lib/firefox/firefox",
                             "snap/firefox/4793/usr/lib/firefox/firefox", "opt/suite/suite", "opt/suite/tools/tools"})
        root.executable(each);
    root.write("opt/data/data", "not executable");
    root.executable("opt/nested/nested/other");
    root.link("opt/linked/linked", "bin/linked-real");
    root.executable("opt/linked/bin/linked-real");
    root.link("opt/dangling/dangling", "nowhere");

    struct Case {
        const char* name;
        const char* path;
        const char* expected;
    };
    constexpr Case cases[] = {
        {"helper beside it", "/opt/google/chrome/chrome_crashpad_handler", "/opt/google/chrome/chrome"},
        {"itself", "/opt/google/chrome/chrome", "/opt/google/chrome/chrome"},
        {"replaced by an update", "/opt/google/chrome/chrome (deleted)", "/opt/google/chrome/chrome"},
        {"helper that is gone", "/opt/google/chrome/nacl_helper (deleted)", "/opt/google/chrome/chrome"},
        {"helper deep below", "/usr/share/code/resources/app/node_modules/ripgrep/bin/rg", "/usr/share/code/code"},
        {"nearest of two", "/opt/suite/tools/a/helper", "/opt/suite/tools/tools"},
        {"further of two", "/opt/suite/other/helper", "/opt/suite/suite"},
        {"below /usr/lib", "/usr/lib/firefox/pingsender", "/usr/lib/firefox/firefox"},
        {"in a snap", "/snap/firefox/4793/usr/lib/firefox/crashhelper", "/snap/firefox/usr/lib/firefox/firefox"},
        {"application in a home folder", "/home/alex/apps/game/lib/helper", "/home/alex/apps/game/game"},
        {"link to the real one", "/opt/linked/lib/helper", "/opt/linked/linked"},
        {"system folder called bin", "/usr/bin/curl", "/usr/bin/curl"},
        {"system folder called lib", "/usr/lib/git-core/git-remote-https", "/usr/lib/git-core/git-remote-https"},
        {"interpreter", "/usr/bin/python3.11", "/usr/bin/python3.11"},
        {"home folder of the same name", "/home/alex/downloads/tool", "/home/alex/downloads/tool"},
        {"home folder in /var", "/var/home/kim/tool", "/var/home/kim/tool"},
        {"root's home folder", "/root/tool", "/root/tool"},
        {"bin folder of a user", "/home/alex/.local/bin/tool", "/home/alex/.local/bin/tool"},
        {"/usr/local", "/usr/local/sbin/tool", "/usr/local/sbin/tool"},
        {"/opt itself", "/opt/thing", "/opt/thing"},
        {"file that can't be executed", "/opt/data/helper", "/opt/data/helper"},
        {"folder of that name", "/opt/nested/nested/other", "/opt/nested/nested/other"},
        {"dangling link", "/opt/dangling/helper", "/opt/dangling/helper"},
        {"file in the memory", "/memfd:loader (deleted)", "/memfd:loader"},
        {"in the uppermost folder", "/init", "/init"},
        {"relative", "init", "init"},
        {"empty", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ApplicationPath::of(c.path, root.path()), c.expected);
    }
}

TEST(ApplicationPath, outOfSandbox)
{
    struct Case {
        const char* name;
        const char* path;
        const char* info;
        std::optional<std::string> expected;
    };
    const Case cases[] = {
        {"installed files named", "/app/bin/x",
         "[Application]\nname=org.x.Y\nruntime=r\n\n[Instance]\n"
         "app-path=/home/u/.local/share/flatpak/app/org.x.Y/x86_64/stable/aa/files\n",
         "/home/u/.local/share/flatpak/app/org.x.Y/x86_64/stable/aa/files/bin/x"},
        {"installed files not named", "/app/bin/x", "[Application]\nname=org.x.Y\n",
         "/var/lib/flatpak/app/org.x.Y/files/bin/x"},
        {"installed files of another application", "/app/bin/x",
         "[Application]\nname=org.x.Y\n[Instance]\napp-path=/var/lib/flatpak/app/org.z/x86_64/stable/aa/files\n",
         "/var/lib/flatpak/app/org.x.Y/files/bin/x"},
        {"installed files by way of the parent folder", "/app/bin/x",
         "[Application]\nname=org.x.Y\n[Instance]\napp-path=/a/flatpak/app/org.x.Y/../../files\n",
         "/var/lib/flatpak/app/org.x.Y/files/bin/x"},
        {"outside of /app", "/usr/bin/python3.11", "[Application]\nname=org.x.Y\n", std::nullopt},
        {"no information", "/app/bin/x", "", std::nullopt},
        {"name in another section", "/app/bin/x", "[Other]\nname=org.x.Y\n", std::nullopt},
        {"id with a slash", "/app/bin/x", "[Application]\nname=../x.y\n", std::nullopt},
        {"id without a point", "/app/bin/x", "[Application]\nname=firefox\n", std::nullopt},
        {"empty id", "/app/bin/x", "[Application]\nname=\n", std::nullopt},
        {"line without an end", "/app/x", "[Application]\nname=a.b", "/var/lib/flatpak/app/a.b/files/x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ApplicationPath::outOfSandbox(c.path, c.info), c.expected);
    }
}

} // namespace
} // namespace quellon
