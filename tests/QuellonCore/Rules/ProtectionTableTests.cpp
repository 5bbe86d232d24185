#include "QuellonCore/Host/Platform.h"
#include "QuellonCore/Persistence/StateFile.h"
#include "QuellonCore/Rules/ProtectionTable.h"
#include "QuellonCore/Support/CaseFold.h"
#include "QuellonCore/Support/Text.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {
namespace {

using Names = std::vector<std::string>;

/// What stands in backquotes, in its order.
Names quoted(std::string_view text)
{
    Names names;
    while (text.find('`') != std::string_view::npos) {
        (void)takeUntil(text, '`');
        names.emplace_back(takeUntil(text, '`'));
    }
    return names;
}

/// The entries of the tables of docs/protection.md by the heading above them. The entries of a row stand in its second
/// column.
std::map<std::string, std::vector<Names>> documentedTables()
{
    const std::string text = fileText(TEST_DATA "/../../docs/protection.md");
    std::map<std::string, std::vector<Names>> tables;
    std::string heading;
    for (std::string_view rest = text; !rest.empty();) {
        std::string_view line = takeLine(rest);
        if (line.starts_with('#')) heading = trimmed(line.substr(line.find(' ')));
        if (!line.starts_with("| ")) continue;
        (void)takeUntil(line, '|');
        (void)takeUntil(line, '|');
        if (Names names = quoted(takeUntil(line, '|')); !names.empty()) tables[heading].push_back(std::move(names));
    }
    return tables;
}

Names joined(const std::vector<Names>& rows)
{
    Names all;
    for (const Names& row : rows) all.insert(all.end(), row.begin(), row.end());
    return all;
}

TEST(ProtectionTable, isDocumentedForMacOS)
{
    const auto tables = documentedTables();
    const ProtectionTable table = ProtectionTable::macOS();
    ASSERT_TRUE(tables.contains("macOS"));
    EXPECT_EQ(tables.at("macOS"),
              (std::vector<Names>{table.protectedNames.names(), table.cliOnlyNames.names(), table.systemPathPrefixes}));
}

TEST(ProtectionTable, isDocumentedForLinux)
{
    struct Case {
        const char* heading;
        Names names;
    };
    const ProtectionTable table = ProtectionTable::linux();
    const Case cases[] = {
        {"Sessions: protected with their process group", table.protectedNames.names()},
        {"Login shells: protected with their process group where they lead it", table.loginShells.names()},
        {"Machinery of the session: protected alone", table.machineryNames.names()},
    };
    const auto tables = documentedTables();
    EXPECT_EQ(tables.size(), std::size(cases) + 1) << "these and macOS";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.heading);
        ASSERT_TRUE(tables.contains(c.heading));
        EXPECT_EQ(joined(tables.at(c.heading)), c.names);
    }
}

TEST(ProtectionTable, namesOfLinuxStandOnce)
{
    const ProtectionTable table = ProtectionTable::linux();
    std::set<std::string> folded;
    for (const ExecutableNames* names : {&table.protectedNames, &table.loginShells, &table.machineryNames}) {
        for (const std::string& name : names->names()) {
            EXPECT_TRUE(folded.insert(caseFolded(name)).second) << name;
            EXPECT_FALSE(name.empty());
            EXPECT_EQ(name.find('/'), std::string::npos) << name;
        }
    }
    EXPECT_GT(folded.size(), 100U);
}

TEST(ProtectionTable, whatMovesTheUsersDataStaysTouchable)
{
    const ProtectionTable table = ProtectionTable::linux();
    for (const char* name : {"firefox",
                             "chrome",
                             "chromium",
                             "thunderbird",
                             "evolution",
                             "nautilus",
                             "dolphin",
                             "gvfsd",
                             "gvfsd-http",
                             "kioworker",
                             "packagekitd",
                             "gnome-software",
                             "plasma-discover",
                             "DiscoverNotifier",
                             "nextcloud",
                             "dropbox",
                             "syncthing",
                             "rclone",
                             "steam",
                             "git",
                             "curl",
                             "wget",
                             "rsync",
                             "sftp-server",
                             "apt",
                             "dnf",
                             "flatpak",
                             "snap",
                             "docker",
                             "node",
                             "python3",
                             "java",
                             "sh",
                             "dash",
                             "busybox",
                             "code",
                             "gjs-console",
                             "bwrap"}) {
        SCOPED_TRACE(name);
        for (const ExecutableNames* names : {&table.protectedNames, &table.loginShells, &table.machineryNames}) {
            EXPECT_EQ(names->find(name), nullptr);
        }
    }
}

TEST(ProtectionTable, standsInThePlatform)
{
    EXPECT_EQ(Platform::macOS().protection, ProtectionTable::macOS());
    EXPECT_EQ(Platform::linux().protection, ProtectionTable::linux());
    EXPECT_TRUE(ProtectionTable::linux().systemPathPrefixes.empty());
}

} // namespace
} // namespace quellon
