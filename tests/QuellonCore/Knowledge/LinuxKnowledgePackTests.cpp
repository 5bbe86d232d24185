#include "QuellonCore/Host/Platform.h"
#include "QuellonCore/Knowledge/KnowledgePack.h"
#include "QuellonCore/Knowledge/KnowledgeTexts.h"
#include "QuellonCore/Knowledge/LinuxKnowledgePack.h"
#include "QuellonCore/Rules/ProtectionTable.h"
#include "QuellonCore/Support/CaseFold.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace quellon {
namespace {

using LimitAdvice = AppExplanation::LimitAdvice;

TEST(LinuxKnowledgePack, explainsWhatLinuxUsersMeet)
{
    struct Case {
        const char* name;
        std::vector<const char*> keys;
    };
    const Case cases[] = {
        {"browsers", {"chrome", "chromium", "firefox-esr", "brave", "vivaldi", "msedge"}},
        {"mail", {"thunderbird", "evolution", "kmail", "geary"}},
        {"package managers", {"apt", "dnf", "pacman", "zypper", "flatpak", "snap", "nix"}},
        {"their daemons", {"packagekitd", "snapd", "nix-daemon", "fwupd", "update-notifier"}},
        {"sync clients", {"nextcloud", "megasync", "insync", "rclone", "seaf-daemon"}},
        {"containers", {"dockerd", "containerd", "podman", "buildah", "passt.avx2"}},
        {"virtual machines", {"qemu-system-x86_64", "VirtualBoxVM", "vmware-vmx"}},
        {"desktop services", {"gnome-shell", "plasmashell", "goa-daemon", "gvfsd-google", "kdeconnectd"}},
        {"name resolution", {"systemd-resolved", "dnsmasq", "unbound", "avahi-daemon"}},
        {"time", {"chronyd", "systemd-timesyncd"}},
        {"printing", {"cupsd", "cups-browsed"}},
        {"remote access", {"sshd-session", "mosh-client", "remmina", "anydesk"}},
        {"games", {"steamwebhelper", "heroic", "wine64-preloader", "prismlauncher"}},
        {"messengers", {"telegram-desktop", "signal-desktop", "element-desktop", "zoom"}},
        {"media players", {"mpv", "rhythmbox", "totem", "kodi.bin"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const char* key : c.keys) EXPECT_TRUE(LinuxKnowledgePack::entries().contains(key)) << key;
    }
    EXPECT_GE(LinuxKnowledgePack::entries().size(), 60U);
}

TEST(LinuxKnowledgePack, hidesNoRowAndHasNoneThatIsHidden)
{
    std::map<std::string, std::string> folded;
    for (const auto& [key, row] : KnowledgePack::entries()) folded.emplace(caseFolded(key), key);
    for (const auto& [key, row] : LinuxKnowledgePack::entries()) {
        const auto [known, isNew] = folded.emplace(caseFolded(key), key);
        EXPECT_TRUE(isNew) << key << " and " << known->second;
    }
}

TEST(LinuxKnowledgePack, hasTextsThatAreFitToShow)
{
    ExplanationMap rows = KnowledgePack::entries();
    rows.erase("Quellon Pro"); // the same record as "Quellon"
    rows.insert(LinuxKnowledgePack::entries().begin(), LinuxKnowledgePack::entries().end());
    EXPECT_EQ(problemsOf(rows), std::vector<std::string>{});
}

TEST(LinuxKnowledgePack, isWholeAndNotReviewed)
{
    for (const auto& [key, row] : LinuxKnowledgePack::entries()) {
        SCOPED_TRACE(key);
        EXPECT_TRUE(row.vendor.has_value());
        EXPECT_NE(row.category, AppExplanation::Category::other);
        EXPECT_EQ(row.confidence, AppExplanation::Confidence::generated);
        EXPECT_EQ(row.source, AppExplanation::Source::pack);
        EXPECT_EQ(key.find('/'), std::string::npos) << "names have no folder";
    }
}

/// What the guard refuses to touch is nothing to recommend.
TEST(LinuxKnowledgePack, callsNothingSafeThatIsProtected)
{
    const ProtectionTable table = ProtectionTable::linux();
    int met = 0;
    for (const auto& [key, row] : LinuxKnowledgePack::entries()) {
        const std::string command = "/usr/bin/" + key;
        const bool isProtected = table.protectedNames.find(command) != nullptr ||
                                 table.loginShells.find(command) != nullptr ||
                                 table.machineryNames.find(command) != nullptr;
        met += isProtected ? 1 : 0;
        if (isProtected) { EXPECT_NE(row.limitAdvice, LimitAdvice::safe) << key; }
    }
    EXPECT_GT(met, 10);
}

TEST(LinuxKnowledgePack, isForTheSystemCalledLinux)
{
    EXPECT_EQ(Platform::linux().name, LinuxKnowledgePack::platformName);
    EXPECT_NE(Platform::macOS().name, LinuxKnowledgePack::platformName);
}

TEST(LinuxKnowledgePack, isTheDocument)
{
    EXPECT_EQ(documentRows("knowledge-pack-linux.json"), LinuxKnowledgePack::entries());
}

TEST(LinuxKnowledgePack, tellsWhereItComesFrom)
{
    EXPECT_TRUE(isDigest(LinuxKnowledgePack::sourceSHA256)) << LinuxKnowledgePack::sourceSHA256;
    EXPECT_TRUE(isDay(LinuxKnowledgePack::generatedAt)) << LinuxKnowledgePack::generatedAt;
    EXPECT_NE(LinuxKnowledgePack::sourceSHA256, KnowledgePack::sourceSHA256);
}

} // namespace
} // namespace quellon
