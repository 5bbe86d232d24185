#include "QuellonCore/Measurement/ProcessTable.h"

#include "QuellonCore/Support/Text.h"
#include "ToolCaptures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

namespace quellon {
namespace {

using Rows = std::vector<ProcessEntry>;

Rows rowsOf(std::string_view psOutput)
{
    const auto table = ProcessTable::parse(psOutput);
    return {table.begin(), table.end()};
}

TEST(ProcessTable, parse)
{
    struct Case {
        const char* name;
        const char* text;
        Rows rows;
    };
    const Case cases[] = {
        {"empty", "", {}},
        {"only line feeds", "\n\n\n", {}},
        {"one process", "    1     0     1 /sbin/launchd\n", {{1, 0, 1, "/sbin/launchd"}}},
        {"no line feed at the end", "1 0 1 /sbin/launchd", {{1, 0, 1, "/sbin/launchd"}}},
        {"blanks and tabs at the ends", "\t 1 0 1  /sbin/launchd \t\n", {{1, 0, 1, "/sbin/launchd"}}},
        {"blanks in the path",
         "9 501 9 /Applications/Some App.app/Contents/MacOS/Some  App\n",
         {{9, 501, 9, "/Applications/Some App.app/Contents/MacOS/Some  App"}}},
        {"header", "PID UID PGID COMM\n7 1 2 x\n", {{7, 1, 2, "x"}}},
        {"three pieces", "1 2 3\n", {}},
        {"three pieces and blanks", "1 2 3   \n", {}},
        {"a tab separates nothing", "1\t2 3 4 x\n", {}},
        {"pid is no number", "x 2 3 c\n", {}},
        {"uid is negative", "1 -2 3 c\n", {}},
        {"uid of minus zero", "1 -0 3 c\n", {{1, 0, 3, "c"}}},
        {"largest uid", "1 4294967295 3 c\n", {{1, 4294967295U, 3, "c"}}},
        {"uid does not fit", "1 4294967296 3 c\n", {}},
        {"pgid is negative", "1 2 -3 c\n", {{1, 2, -3, "c"}}},
        {"pid is negative", "-1 2 3 c\n", {{-1, 2, 3, "c"}}},
        {"pid does not fit", "2147483648 2 3 c\n", {}},
        {"plus and leading zeros", "+07 007 +3 c\n", {{7, 7, 3, "c"}}},
        {"a later line replaces an earlier", "5 1 1 old\n6 1 1 x\n5 2 2 new\n", {{5, 2, 2, "new"}, {6, 1, 1, "x"}}},
        {"a bad later line replaces nothing", "5 1 1 old\n5 x 2 new\n", {{5, 1, 1, "old"}}},
        {"any order", "30 0 0 c\n10 0 0 a\n20 0 0 b\n", {{10, 0, 0, "a"}, {20, 0, 0, "b"}, {30, 0, 0, "c"}}},
        {"a carriage return ends no line", "1 0 1 a\r2 0 2 b\r\n", {{1, 0, 1, "a\r2 0 2 b\r"}}},
        {"a name in brackets", "2 0 0 [kthreadd]\n", {{2, 0, 0, "[kthreadd]"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(rowsOf(c.text), c.rows);
    }
}

TEST(ProcessTable, find)
{
    const auto table = ProcessTable::parse("30 0 0 c\n10 0 0 a\n-1 0 0 z\n");
    ASSERT_NE(table.find(10), nullptr);
    EXPECT_EQ(*table.find(10), (ProcessEntry{10, 0, 0, "a"}));
    ASSERT_NE(table.find(-1), nullptr);
    EXPECT_EQ(table.find(-1)->command, "z");
    EXPECT_EQ(table.find(0), nullptr);
    EXPECT_EQ(table.find(20), nullptr);
    EXPECT_EQ(table.find(31), nullptr);
    EXPECT_EQ(ProcessTable::Entries{}.find(1), nullptr);
    EXPECT_TRUE(ProcessTable::Entries{}.empty());
    EXPECT_EQ(table.size(), 3U);
}

TEST(ProcessTable, appLabel)
{
    struct Case {
        const char* name;
        const char* command;
        const char* label;
    };
    constexpr Case cases[] = {
        {"empty", "", ""},
        {"only slashes", "//", ""},
        {"daemon", "/usr/libexec/rapportd", "rapportd"},
        {"no slashes", "bash", "bash"},
        {"trailing slash", "/usr/bin/tool/", "tool"},
        {"trailing slashes", "/usr/bin/tool///", "tool"},
        {"application", "/Applications/Browser.app/Contents/MacOS/Browser", "Browser"},
        {"blanks in the name", "/Applications/Safari Technology Preview.app/Contents/MacOS/x",
         "Safari Technology Preview"},
        {"nested helper counts for the outer one",
         "/Applications/Browser.app/Contents/Frameworks/Browser Helper.app/Contents/MacOS/Browser Helper", "Browser"},
        {"relative path", "Browser.app/x", "Browser"},
        {"no name before the suffix", "/Applications/.app/x", "Applications"},
        {"only the suffix", ".app/x", ""},
        {"suffix at the end", "/Applications/Browser.app", "Browser.app"},
        {"suffix in capitals", "/Applications/Browser.APP/Contents/MacOS/Browser Main", "Browser Main"},
        {"suffix and slash at the end", "/Applications/Browser.app/", "Browser"},
        {"other suffix", "/x/Thing.appex/Contents/MacOS/Thing Extension", "Thing Extension"},
        {"doubled slash before the suffix", "/Applications//Browser.app/x", "Browser"},
        {"slashes before the suffix", "/Applications/Tool//.app/x", "Tool"},
        {"kernel thread", "[kworker/0:1]", "0:1]"},
        {"arguments are not cut off", "/bin/sh -c /tmp/x", "x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ProcessTable::appLabel(c.command), c.label);
    }
}

TEST(ProcessTable, pathWithBlanksAsCommandAndLabel)
{
    const auto table =
        ProcessTable::parse("  501   502   501 /Applications/Google Chrome.app/Contents/MacOS/Google Chrome\n");
    ASSERT_NE(table.find(501), nullptr);
    EXPECT_EQ(table.find(501)->command, "/Applications/Google Chrome.app/Contents/MacOS/Google Chrome");
    EXPECT_EQ(ProcessTable::appLabel(table.find(501)->command), "Google Chrome");
}

TEST(ProcessCaptures, otherColumns)
{
    struct Case {
        const char* name;
        std::size_t entries;
    };
    // Where the first three columns are numbers by chance, the fourth piece is the rest of the line.
    constexpr Case cases[] = {
        {"001-e-o-pid-comm", 0},          {"003-comm-not-last-is-truncated", 3}, {"005-axo-pid-pcpu-comm-a", 0},
        {"006-jc-osx-10.11.6-ps-ef", 18}, {"008-jc-osx-10.14.6-ps-axu", 0},      {"010-fastfetch-ps-ef-excerpt", 2},
        {"012-axo-pid-uid-user", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string text = toolCapture(std::string{"ps/"} + c.name + ".txt");
        ASSERT_FALSE(text.empty());
        EXPECT_EQ(ProcessTable::parse(text).size(), c.entries);
    }
    EXPECT_EQ(rowsOf(toolCapture("ps/003-comm-not-last-is-truncated.txt")).front(),
              (ProcessEntry{1, 0, 0, "0.0  0.1 /sbin/launchd    /sbin/launchd"}));
}

/// A capture of `ps -ef` in the columns of the process table, the parent in the place of the group.
std::string asProcessTable(std::string_view fullFormat)
{
    std::string result;
    while (!fullFormat.empty()) {
        std::string_view rest = takeLine(fullFormat);
        std::array<std::string, 7> columns;
        for (auto& column : columns) column = takeWord(rest);
        result += columns[1] + ' ' + columns[0] + ' ' + columns[2] + ' ' + std::string{rest} + '\n';
    }
    return result;
}

TEST(ProcessCaptures, wholeMachine)
{
    const auto table = ProcessTable::parse(asProcessTable(toolCapture("ps/006-jc-osx-10.11.6-ps-ef.txt")));
    EXPECT_EQ(table.size(), 210U);
    ASSERT_NE(table.find(1), nullptr);
    EXPECT_EQ(*table.find(1), (ProcessEntry{1, 0, 0, "/sbin/launchd"}));
    ASSERT_NE(table.find(45), nullptr);
    EXPECT_EQ(table.find(45)->command, "/usr/libexec/UserEventAgent (System)");
}

TEST(ProcessCaptures, labelsOfRealPaths)
{
    const std::string excerpt = toolCapture("ps/010-fastfetch-ps-ef-excerpt.txt");
    const auto browser = ProcessTable::parse(asProcessTable(excerpt));
    ASSERT_EQ(browser.size(), 6U);
    ASSERT_NE(browser.find(64659), nullptr);
    EXPECT_EQ(ProcessTable::appLabel(browser.find(64659)->command), "Safari Technology Preview");
    ASSERT_NE(browser.find(65593), nullptr);
    EXPECT_EQ(ProcessTable::appLabel(browser.find(65593)->command), "countryd");

    const std::string busiest = toolCapture("ps/005-axo-pid-pcpu-comm-a.txt");
    std::string_view text = busiest;
    std::vector<std::string> labels;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        (void)takeWord(line);
        (void)takeWord(line);
        labels.emplace_back(ProcessTable::appLabel(line));
    }
    EXPECT_THAT(labels,
                testing::ElementsAre("WindowServer", "Codex", "Finder", "fseventsd", "syspolicyd",
                                     "com.apple.DriverKit-AppleBCMWLAN", "Google Chrome", "com.apple.WebKit.WebContent",
                                     "logioptionsplus_agent", "Lark", "mds_stores", "trustd"));
}

} // namespace
} // namespace quellon
